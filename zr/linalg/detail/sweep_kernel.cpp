#include "zr/linalg/detail/sweep_kernel.h"

#include "zr/core/detail/machine.h"

namespace zr::detail {
namespace {

// The part of the sweep that depends on the matrix alone, n >= 2: alpha[i] for i < n - 1
// and den[i], the denominator of row i (den[0] = Diag[0]), exactly as the sweep forms them.
void Factor(int n, const Bands& a, double* alpha, double* den) {
  den[0] = a.diag[0];
  double al = alpha[0] = -a.up[0] / a.diag[0];
  for (int i = 1; i <= n - 2; ++i) {
    const double d = a.down[i - 1] * al + a.diag[i];
    den[i] = d;
    al = alpha[i] = -a.up[i] / d;
  }
  den[n - 1] = a.down[n - 2] * al + a.diag[n - 1];
}

// The right-hand-side part for k <= 4 columns at once, with beta kept in x; n >= 2.
// Column c reads b[c] and writes x[c], which may be b[c]. With `fused` the matrix part is
// formed on the way into alpha (den is not used), else alpha and den come from Factor.
template <int k, bool fused>
void SolveColumns(int n, const Bands& a, double* alpha, const double* den, const Run* b,
                  const Run* x) {
  double prev[k];
  double d = fused ? a.diag[0] : den[0];
  double al = 0;
  if (fused) al = alpha[0] = -a.up[0] / a.diag[0];
  for (int c = 0; c < k; ++c) prev[c] = x[c][0] = b[c][0] / d;
  for (int i = 1; i <= n - 1; ++i) {
    const double dn = a.down[i - 1];
    if (fused) {
      d = dn * al + a.diag[i];
      if (i <= n - 2) al = alpha[i] = -a.up[i] / d;
    } else {
      d = den[i];
    }
    for (int c = 0; c < k; ++c) prev[c] = x[c][i] = (b[c][i] - dn * prev[c]) / d;
  }
  for (int i = n - 2; i >= 0; --i) {
    const double al = alpha[i];
    for (int c = 0; c < k; ++c) prev[c] = x[c][i] = prev[c] * al + x[c][i];
  }
}

}  // namespace

bool SweepColumns(int n, const Bands& a, const zrMatrix<double>& B, zrMatrix<double>& X,
                  double* work) {
  if (CurrentLevel() == Level::kPlain) return false;
  double* const alpha = work;
  double* const den = alpha + (n - 1);
  Factor(n, a, alpha, den);
  const int cols = B.LineLen();
  for (int j = 0; j < cols; j += 4) {
    Run b[4], x[4];
    const int k = cols - j < 4 ? cols - j : 4;
    for (int c = 0; c < k; ++c) {
      b[c] = Run{&B(0, j + c), B.TabInColumn()};
      x[c] = Run{&X(0, j + c), X.TabInColumn()};
    }
    switch (k) {
      case 1:
        SolveColumns<1, false>(n, a, alpha, den, b, x);
        break;
      case 2:
        SolveColumns<2, false>(n, a, alpha, den, b, x);
        break;
      case 3:
        SolveColumns<3, false>(n, a, alpha, den, b, x);
        break;
      default:
        SolveColumns<4, false>(n, a, alpha, den, b, x);
        break;
    }
  }
  return true;
}

bool SweepPair(int n, const Bands& a, const Run* b, const Run* x, double* alpha) {
  if (CurrentLevel() == Level::kPlain) return false;
  SolveColumns<2, true>(n, a, alpha, nullptr, b, x);
  return true;
}

}  // namespace zr::detail
