// The blocked dense product behind zrMatrix<double>::operator* and SelfTMulSelf. Internal to
// the library: the two functions are exported only so that the tests can run every variant.
#pragma once

#include "zr/core/export.h"

namespace zr::detail {

// The kernels a product may run on. kAuto takes the fastest one this processor has (chosen
// once) and keeps the plain loop for products too small to repay the packing; the others
// force one variant, which the caller has checked with ProductVariantAvailable (forcing a
// missing instruction set stops the program). kPortable is SSE2 on x86-64 and plain doubles
// elsewhere.
enum class ProductVariant { kAuto, kPlain, kPortable, kAvx2, kAvx512 };

// An m x k (or k x n) operand of any layout: element (i, j) is p[i * row_step + j * col_step].
struct ProductOperand {
  const double* p;
  long long row_step;
  long long col_step;
};

// c = a * b with a m x k, b k x n and c m x n stored by rows, row i starting at c + i * ldc;
// c must not overlap a or b. Every element is the sum of its k products in index order,
// the first product starting it (no 0 + ...), each multiply and add rounded on its own: the
// bits of the plain loop whatever the variant. k == 0 gives +0 everywhere. With mirror set
// (m == n, a product known to be symmetric such as T() * a) only the elements with j >= i
// are computed and each is copied to (j, i).
ZR_API void Product(ProductVariant variant, int m, int n, int k, ProductOperand a, ProductOperand b,
                    double* c, long long ldc, bool mirror = false);

// Whether this processor (and build) can run the variant; kAuto, kPlain and kPortable always.
ZR_API bool ProductVariantAvailable(ProductVariant variant);

}  // namespace zr::detail
