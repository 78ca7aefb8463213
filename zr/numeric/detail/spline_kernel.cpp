// The spline's fast paths for double that run once a build: the search tree and the cubic
// in one sweep over the records (the searches are inline in spline_kernel.h).
#include "zr/numeric/detail/spline_kernel.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "zr/core/detail/machine.h"
#include "zr/numeric/detail/spline_records.h"

namespace zr::detail {
namespace {

constexpr int kR = kSplineRecord;

bool Declines() { return CurrentLevel() == Level::kPlain; }

}  // namespace

// The keys x_1 ... x_(n-2) as a complete binary search tree stored by levels (node k has
// children 2k and 2k + 1), padded with +infinity to 2^depth - 1 keys.
int SplineKernels<double>::MakeTree(const double* records, int n, zrSimpleArray<double>& tree) {
  if (Declines()) return 0;
  const int m = n - 2;
  int depth = 1;
  while ((1LL << depth) - 1 < m) ++depth;
  const int size = static_cast<int>((1LL << depth) - 1);
  tree.Set(size + 1 + 64 / static_cast<int>(sizeof(double)));
  double* const nodes = AlignedNodes(tree.GetPointer());
  // The keys in sorted order are the nodes in order of an in-order walk: the one at
  // position p = 1 ... size, with t trailing zero bits, is node p >> (t + 1) of level
  // depth - 1 - t. Taking them in that order reads the records once, front to back.
  const double* r = records + kR;
  for (int p = 1; p <= size; ++p) {
    const int t = LowestBit(static_cast<std::uint32_t>(p));
    const int node = (1 << (depth - 1 - t)) + (p >> (t + 1));
    if (p <= m) {
      nodes[node] = *r;
      r += kR;
    } else {
      nodes[node] = std::numeric_limits<double>::infinity();
    }
  }
  return depth;
}

// zrMatrix3Diag's sweep with the rows formed as it reaches them:
//   alpha[0] = -Up[0] / Diag[0], beta[0] = d[0] / Diag[0];
//   row i: den = Down[i-1]*alpha[i-1] + Diag[i], alpha[i] = -Up[i] / den,
//          beta[i] = (d[i] - Down[i-1]*beta[i-1]) / den;
//   M[n-1] = (d[n-1] - Down[n-2]*beta[n-2]) / (Down[n-2]*alpha[n-2] + Diag[n-1]);
//   M[i] = M[i+1]*alpha[i] + beta[i],
// then each segment written as soon as its two moments are known, and tested there: the
// divisions of the coefficients fill the wait of the back substitution.
bool SplineKernels<double>::Cubic(double* records, int n, const SplineEnds<double>& ends,
                                  bool& ok) {
  if (Declines()) return false;
  // alpha[i] and beta[i] wait in record i's first two coefficient places, and the slope
  // (y_(i+1) - y_i) / h_i in its third: the back substitution reads them just before it
  // writes segment i's coefficients there. A slope is divided out once, for both rows that
  // use it and for its segment, which needs it too (the divider is what the build waits on,
  // five quotients a row: this file is compiled without pairing them, see CMakeLists.txt).
  records[2] = -ends.up0 / ends.diag0;
  records[3] = ends.d0 / ends.diag0;
  double hPrev = records[kR] - records[0];
  records[4] = (records[kR + 1] - records[1]) / hPrev;
  for (int i = 1; i < n - 1; ++i) {
    double* const rec = records + static_cast<std::int64_t>(i) * kR;
    const double h = rec[kR] - rec[0];
    rec[4] = (rec[kR + 1] - rec[1]) / h;
    double l, d;
    CubicRowOfSlopes(hPrev, h, rec[4 - kR], rec[4], l, d);
    const double down = 1 - l;  // Down[i-1]; Up[i] = l
    const double den = down * rec[2 - kR] + 2.0;
    rec[2] = -l / den;
    rec[3] = (d - down * rec[3 - kR]) / den;
    hPrev = h;
  }
  const double* const last = records + static_cast<std::int64_t>(n - 2) * kR;
  double m1 = (ends.dN - ends.downN * last[3]) / (ends.downN * last[2] + ends.diagN);
  ok = true;
  double sixth1 = m1 / 6;  // M_(i+1) / 6
  for (int i = n - 2; i >= 0; --i) {
    double* const rec = records + static_cast<std::int64_t>(i) * kR;
    const double m0 = m1 * rec[2] + rec[3];
    const double h = rec[kR] - rec[0];
    // m0 / 6 is (m0 / 3) * 0.5, bit for bit, wherever both quotients are normal numbers or
    // infinite (halving is exact and rounding commutes with it there): one division fewer.
    const double third0 = m0 / 3;
    const double sixth0 = std::fabs(m0) >= 0x1p-1016 ? third0 * 0.5 : m0 / 6;
    rec[2] = (m1 - m0) / (6 * h);
    rec[3] = 0.5 * m0;
    rec[4] = rec[4] - (sixth1 + third0) * h;
    rec[5] = rec[1];
    ok = ok && MeetsItsPoints(rec, 4) && (i == n - 2 || JoinsTheNext(rec, 4));
    m1 = m0;
    sixth1 = sixth0;
  }
  return true;
}

}  // namespace zr::detail
