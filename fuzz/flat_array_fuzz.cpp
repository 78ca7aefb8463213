// The checked reader of the one-dimensional arrays. The first byte picks the element
// type, the rest is the form. Every accepted form comes back byte for byte.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/arrays/arrays.h"
#include "zr/values/values.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const unsigned char* form = data + 1;
  const std::size_t n = size - 1;
  switch (data[0] % 6) {
    case 0:
      zr_fuzz::CheckFlat<zrArray<char>>(form, n);
      break;
    case 1:
      zr_fuzz::CheckFlat<zrArray<unsigned short>>(form, n);
      break;
    case 2:
      zr_fuzz::CheckFlat<zrArray<int>>(form, n);
      break;
    case 3:
      zr_fuzz::CheckFlat<zrArray<double>>(form, n);
      break;
    case 4:
      zr_fuzz::CheckFlat<zrArray<zrComplex>>(form, n);
      break;
    default:
      zr_fuzz::CheckFlat<zrArray<zrVec2>>(form, n);
      break;
  }
  return 0;
}
