// The checked reader of the N-dimensional arrays. The first byte picks the element type;
// the rest is the form, which comes back byte for byte: the sizes are kept as read, and
// the elements are written back in the storage order they were read in.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/ndarray/ndarray.h"

namespace {

// Into a fresh array, and into one that already has dimensions (which an empty list of
// sizes must not take away).
template <class T>
void Check(const unsigned char* form, std::size_t n) {
  zr_fuzz::CheckFlat<zrArrayND<T>>(form, n);
  zrArray<int> sizes(2, 2);
  zrArrayND<T> filled(sizes);
  filled.Fill(T{});
  zr_fuzz::CheckFlat(form, n, filled, [](const unsigned char*, int) { return true; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const unsigned char* form = data + 1;
  const std::size_t n = size - 1;
  switch (data[0] % 4) {
    case 0:
      Check<unsigned char>(form, n);
      break;
    case 1:
      Check<short>(form, n);
      break;
    case 2:
      Check<float>(form, n);
      break;
    default:
      Check<double>(form, n);
      break;
  }
  return 0;
}
