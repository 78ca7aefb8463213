// The spline's records read as polynomials, and Check()'s tests on them: one copy, for
// the class and for its fast build alike. Library source, not installed.
#pragma once

#include <cmath>

#include "zr/numeric/polynom.h"
#include "zr/numeric/spline.h"

namespace zr::detail {

// Check()'s tolerance: absolute and fixed.
inline constexpr double kSplineTolerance = 0.01;

// Whether |a - b| stays within the check's tolerance; a NaN does not.
inline bool SplineClose(double a, double b) { return std::fabs(a - b) <= kSplineTolerance; }

// The polynomial of record r (koef coefficients, PowerKoef about r[0]) at x, in
// zrPolynom's operations and order.
template <class TT>
TT RecordValue(const TT* r, int koef, TT x) {
  const TT* c = r + 2;
  const TT t = x + (TT{} - r[0]);
  if (koef == 4) return ((c[0] * t + c[1]) * t + c[2]) * t + c[3];  // the loop, unrolled
  TT p = c[0];
  for (int i = 1; i < koef; ++i) p = p * t + c[i];
  return p;
}

// Its m-th derivative, as zrPolynom<TT>::Derivative forms it.
template <class TT>
TT RecordDerivative(const TT* r, int koef, TT x, int m) {
  if (m >= koef) return TT{};
  return PowerDerivative(r + 2, koef, x + (TT{} - r[0]), m);
}

// Interior row i of the cubic spline's system for the moments, from the steps before and
// after node i and the values at i - 1, i, i + 1: Up[i] = l, Down[i-1] = 1 - l and the
// right side d.
// The same from the slopes (y_i - y_(i-1)) / h_(i-1) and (y_(i+1) - y_i) / h_i, each of
// which two neighbouring rows share.
template <class TT>
void CubicRowOfSlopes(TT hPrev, TT h, TT slopePrev, TT slope, TT& l, TT& d) {
  const TT s = hPrev + h;
  l = h / s;
  d = 6 / s * (slope - slopePrev);
}
template <class TT>
void CubicRow(TT hPrev, TT h, TT yPrev, TT y, TT yNext, TT& l, TT& d) {
  CubicRowOfSlopes(hPrev, h, (y - yPrev) / hPrev, (yNext - y) / h, l, d);
}

// Check()'s test of segment r: within the tolerance of its own point and of the next
// one (the following record's x and y).
// At its own point the polynomial's argument x_i + (0 - x_i) is +0 (NaN for an infinite
// x_i), so each product is a zero and the value is the last coefficient (a zero's sign
// aside, which |value - y_i| does not see) when x_i and the other coefficients are finite,
// and NaN when one is not: the same verdict without the products.
template <class TT>
bool MeetsItsPoints(const TT* r, int koef) {
  bool finite = std::isfinite(r[0]);
  for (int i = 0; i + 1 < koef; ++i) finite = finite && std::isfinite(r[2 + i]);
  return finite && SplineClose(r[1 + koef], r[1]) &&
         SplineClose(RecordValue(r, koef, r[kSplineRecord]), r[kSplineRecord + 1]);
}

// Check()'s test at the node between segment r and the next: their derivatives of orders
// 1 ... koef - 2 within the tolerance of each other there.
template <class TT>
bool JoinsTheNext(const TT* r, int koef) {
  const TT* const next = r + kSplineRecord;
  for (int m = 1; m <= koef - 2; ++m)
    if (!SplineClose(RecordDerivative(r, koef, next[0], m),
                     RecordDerivative(next, koef, next[0], m)))
      return false;
  return true;
}

}  // namespace zr::detail
