// The tridiagonal sweeps of zrMatrix3Diag<double> for several right-hand sides at once:
// their recurrences interleave, so that one chain's divisions run while another's wait.
// Each column gets the bits of the class's own sweep (matrix3diag.cpp) on it alone.
#pragma once

#include "zr/linalg/matrix.h"

namespace zr::detail {

// Element i of a strided run of doubles.
struct Run {
  double* p;
  int step;
  double& operator[](int i) const { return p[static_cast<long long>(i) * step]; }
};

// The bands of a tridiagonal matrix.
struct Bands {
  Run up, diag, down;
};

// Solves the n x n system (n >= 2) for the columns of B into those of X (of B's size);
// X may be B but must not overlap the bands, since it holds the sweep's beta on the way.
// work holds 2n - 1 doubles. False, with nothing written, at the plain level.
bool SweepColumns(int n, const Bands& a, const zrMatrix<double>& B, zrMatrix<double>& X,
                  double* work);

// The same for two columns, with the matrix's own part formed on the way into alpha
// (n - 1 doubles) rather than first: for a pair solved once.
bool SweepPair(int n, const Bands& a, const Run* b, const Run* x, double* alpha);

}  // namespace zr::detail
