// The checked reader of the mathematical vectors (double, zrComplex, zrTVec3<double>)
// and of the polynomial that keeps their form. The first byte picks the type. A length
// below 1 reads as the empty vector, which writes itself back with length 0.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/linalg/linalg.h"
#include "zr/numeric/numeric.h"

namespace {

template <class V>
void Check(const unsigned char* form, std::size_t n) {
  V v;
  zr_fuzz::CheckFlat(form, n, v,
                     [](const unsigned char* d, int) { return zr_fuzz::CountAt(d, 0) >= 1; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const unsigned char* form = data + 1;
  const std::size_t n = size - 1;
  switch (data[0] % 4) {
    case 0:
      Check<zrVector<double>>(form, n);
      break;
    case 1:
      Check<zrVector<zrComplex>>(form, n);
      break;
    case 2:
      Check<zrVector<zrTVec3<double>>>(form, n);
      break;
    default:
      Check<zrPolynom<double>>(form, n);
      break;
  }
  return 0;
}
