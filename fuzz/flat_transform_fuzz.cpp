// The checked reader of the coordinate transforms: 48 bytes in the plane, 96 in space,
// raw doubles that come back byte for byte. The first byte picks the dimension.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/geometry/geometry.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  if (data[0] % 2 == 0) {
    zr_fuzz::CheckFlat<zrTransformCoord2D>(data + 1, size - 1);
  } else {
    zr_fuzz::CheckFlat<zrTransformCoord3D>(data + 1, size - 1);
  }
  return 0;
}
