// The blocked Gaussian elimination behind zrMatrix<double> (MatrixKernels<double>, declared
// in zr/linalg/matrix.h, defined in gauss_kernel.cpp).
//
// Every element of the elimination is a recurrence over the steps k in order,
//   a(j, m) <- (1 / l(j, k)) * a(j, m) - a(k, m),
// so the updates of a group of steps can be held back and applied to a tile of rows and
// columns at once, each element still going through its steps in order with the same
// multiplications and subtractions. The results are bit for bit those of the class
// template's loops, the row exchanges are the same, and so is everything left behind.
#pragma once

#include "zr/core/export.h"

namespace zr::detail {

/// Whether the kernel may eliminate in place: the rows x cols elements at a with the
/// steps sl (in line) and sc (in column) are all distinct, and, when b is given, its bn
/// elements at step bstep are distinct and lie outside the span of the matrix. Otherwise
/// the kernel declines and the class's own loops run.
ZR_API bool GaussSeparate(const double* a, int rows, int cols, int sl, int sc, const double* b,
                          int bn, int bstep);

}  // namespace zr::detail
