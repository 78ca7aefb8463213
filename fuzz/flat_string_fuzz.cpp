// The checked reader of the string, and of the plane curve that keeps the array's form.
// The first byte picks which; the rest is the form, which comes back byte for byte.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/curves/curves.h"
#include "zr/text/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  if (data[0] % 2 == 0) {
    zr_fuzz::CheckFlat<zrString>(data + 1, size - 1);
  } else {
    zr_fuzz::CheckFlat<zrCurve2D>(data + 1, size - 1);
  }
  return 0;
}
