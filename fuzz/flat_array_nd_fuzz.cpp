// The checked reader of the N-dimensional arrays. The first byte picks the element type;
// the rest is the form, which comes back byte for byte: the sizes are kept as read, and
// the elements are written back in the storage order they were read in.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/ndarray/ndarray.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const unsigned char* form = data + 1;
  const std::size_t n = size - 1;
  switch (data[0] % 4) {
    case 0:
      zr_fuzz::CheckFlat<zrArrayND<unsigned char>>(form, n);
      break;
    case 1:
      zr_fuzz::CheckFlat<zrArrayND<short>>(form, n);
      break;
    case 2:
      zr_fuzz::CheckFlat<zrArrayND<float>>(form, n);
      break;
    default:
      zr_fuzz::CheckFlat<zrArrayND<double>>(form, n);
      break;
  }
  return 0;
}
