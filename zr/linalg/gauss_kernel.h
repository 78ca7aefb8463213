/// \file
/// Blocked Gaussian elimination for zrMatrix<double> (internal; used by zr/linalg/matrix_impl.h).
///
/// Every element of the elimination is a recurrence over the steps k in order,
///   a(j, m) <- (1 / l(j, k)) * a(j, m) - a(k, m),
/// so the updates of a group of steps can be held back and applied to a tile of rows and
/// columns at once, each element still going through its steps in order with the same
/// multiplications and subtractions. The results are bit for bit those of the plain loops
/// in matrix_impl.h, the row exchanges are the same, and so is everything left behind.
#pragma once

#include "zr/core/export.h"

namespace zr::detail {

/// Whether the rows x cols elements at a with the steps sl (in line) and sc (in column)
/// are all distinct, and, when b is given, whether its bn elements at step bstep are
/// distinct and lie outside the span of the matrix. Only then may GaussEliminate run.
ZR_API bool GaussSeparate(const double* a, int rows, int cols, int sl, int sc, const double* b,
                          int bn, int bstep);

/// ForwardEliminate of matrix_impl.h for double, with the same arguments, exchanges, results,
/// return value and exception. The elements reached through rows, b and e must be distinct.
ZR_API int GaussEliminate(double** rows, int n, int cols, int step, double** b, double** e, int en);

/// The solver's back substitution after elimination, for n <= the number of columns and
/// no zero on the diagonal: out[i * out_step] for i = n - 1 down to 0 as the plain loop
/// computes it.
ZR_API void GaussBackSolve(double* const* rows, int n, int step, double* const* b, double* out,
                           int out_step);

/// Inverse1's back substitution after elimination with no zero on the diagonal: r (n x n,
/// stored by rows) from the eliminated rows and the rows e of the transformed identity.
ZR_API void GaussBackInverse(double* const* rows, int n, int step, double* const* e, double* r);

/// The kernel sets, for tests: 0 portable, 1 AVX2, 2 AVX-512. GaussKernelLevels gives the
/// highest this processor runs; GaussUseKernelLevel picks one (clamped to it), -1 the best.
ZR_API int GaussKernelLevels();
ZR_API void GaussUseKernelLevel(int level);

}  // namespace zr::detail
