// The checked reader of the tridiagonal matrix: three vector forms whose lengths must
// make a well-formed matrix. A negative length reads as 0 and is written back as 0.
#include <cstddef>
#include <cstdint>

#include "flat_check.h"
#include "zr/linalg/linalg.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zrMatrix3Diag<double> m;
  zr_fuzz::CheckFlat(data, size, m, [](const unsigned char* d, int) {
    // Well-formed lengths are n - 1, n, n - 1 with n >= 2, or 0, n, 0 with n <= 1;
    // exact only when none was negative.
    int at = 0;
    for (int k = 0; k < 3; ++k) {
      const std::int32_t n = zr_fuzz::CountAt(d, at);
      if (n < 0) return false;
      at += 4 + n * 8;
    }
    return true;
  });
  return 0;
}
