// The checked reader of the dense matrices (double, zrComplex, zrTVec3<double>) and of
// the fixed 2 x 2 matrix. The first byte picks the type. A form with a size of 0 reads
// as the empty matrix, which writes itself back as 0 x 0.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/linalg/linalg.h"

namespace {

template <class M>
void Check(const unsigned char* form, std::size_t n) {
  M m;
  zr_fuzz::CheckFlat(form, n, m, [](const unsigned char* d, int) {
    return zr_fuzz::CountAt(d, 0) > 0 && zr_fuzz::CountAt(d, 4) > 0;
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const unsigned char* form = data + 1;
  const std::size_t n = size - 1;
  switch (data[0] % 4) {
    case 0:
      Check<zrMatrix<double>>(form, n);
      break;
    case 1:
      Check<zrMatrix<zrComplex>>(form, n);
      break;
    case 2:
      Check<zrMatrix<zrTVec3<double>>>(form, n);
      break;
    default:
      zr_fuzz::CheckFlat<zrMatrix2x2>(form, n);
      break;
  }
  return 0;
}
