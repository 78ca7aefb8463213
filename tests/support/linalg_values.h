// Vectors and matrices for the tests of the linear-algebra classes: built from lists and
// read back as std::vector (a vector's elements in index order, through its step; a
// matrix's row by row); band matrices of mixed values; strided views laid in filled
// storage; and the texts the classes throw.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include "support/levels.h"
#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace zr_test {

// The prefix of every BadParameters text; the solver's two Windows-1251 texts, "Система
// имеет не единственное решение." and "Система не совместна.".
inline const std::string kInvalid = "Invalid parameters : ";
inline const std::string kNotUnique = kInvalid +
                                      "\xD1\xE8\xF1\xF2\xE5\xEC\xE0 \xE8\xEC\xE5\xE5\xF2 \xED\xE5 "
                                      "\xE5\xE4\xE8\xED\xF1\xF2\xE2\xE5\xED\xED\xEE\xE5 "
                                      "\xF0\xE5\xF8\xE5\xED\xE8\xE5.";
inline const std::string kInconsistent =
    kInvalid + "\xD1\xE8\xF1\xF2\xE5\xEC\xE0 \xED\xE5 \xF1\xEE\xE2\xEC\xE5\xF1\xF2\xED\xE0.";

// A vector of the class V with these elements: Of({1, 2}), Of<zrColumnVector<zrComplex>>(...).
template <class V = zrVector<double>>
V Of(std::initializer_list<typename V::value_type> xs) {
  V v(static_cast<int>(xs.size()));
  int i = 0;
  for (const auto& x : xs) v[i++] = x;
  return v;
}

// A matrix with these rows; common_type_t keeps TT out of deduction, so that
// Rows({{1, 2}}) is a double matrix.
template <class TT = double>
zrMatrix<TT> Rows(std::initializer_list<std::initializer_list<std::common_type_t<TT>>> rows) {
  zrMatrix<TT> m(static_cast<int>(rows.size()), static_cast<int>(rows.begin()->size()));
  TT* at = m.GetPointer();  // a new matrix is stored by rows
  for (const auto& row : rows)
    for (const TT& x : row) *at++ = x;
  return m;
}

template <class T>
std::vector<T> Values(const zrVector<T>& v) {
  std::vector<T> r;
  for (int i = 0; i < v.Len(); ++i) r.push_back(v[i]);
  return r;
}

template <class TT>
std::vector<TT> Values(const zrMatrix<TT>& m) {
  std::vector<TT> r;
  for (int i = 0; i < m.ColumnLen(); ++i)
    for (int j = 0; j < m.LineLen(); ++j) r.push_back(m(i, j));
  return r;
}

// Expects f to throw BadParameters with kInvalid + text.
template <class F>
void ExpectRefused(const std::string& text, F&& f) {
  EXPECT_EQ(BadParametersText(f), kInvalid + text);
}

// The text SolveEquationGaussMethod(x, rhs) throws on a copy of a; x is passed on.
template <class TT>
std::string SolveText(zrMatrix<TT> a, zrColumnVector<TT> rhs, zrColumnVector<TT>& x) {
  return BadParametersText([&] { a.SolveEquationGaussMethod(x, rhs); });
}

// Elements of a small matrix (or any class with GetPointer) in storage order, compared
// exactly (eps 0) or within eps.
template <class M, int N>
void ExpectElements(const M& m, const double (&want)[N], double eps = 0) {
  for (int i = 0; i < N; ++i) EXPECT_NEAR(m.GetPointer()[i], want[i], eps) << "element " << i;
}

// Values of mixed sign and magnitude from a counter, so that every call gives new ones.
inline double R() {
  static std::uint64_t seed = 0;
  return Mixed(1, ++seed)[0] / 4;
}
inline zrColumnVector<double> RVec(int n) {
  zrColumnVector<double> v(n);
  for (int i = 0; i < n; ++i) v[i] = R();
  return v;
}
// A band matrix of order n, diagonally dominant enough to take two more bands and corners.
inline zrMatrix3Diag<double> Tri(int n) {
  zrMatrix3Diag<double> a(n);
  for (int i = 0; i < n; ++i) a.Diag()[i] = 8 + R();
  for (int i = 0; i + 1 < n; ++i) a.Up()[i] = R(), a.Down()[i] = R();
  return a;
}

// x solves the dense system d x = b: its residual is at rounding level.
inline void ExpectSolves(const zrMatrix<double>& d, const zrColumnVector<double>& b,
                         const zrColumnVector<double>& x) {
  const zrColumnVector<double> r = d * x;
  ASSERT_EQ(x.Len(), b.Len());
  for (int i = 0; i < x.Len(); ++i) EXPECT_NEAR(r[i], b[i], 1e-14) << "row " << i;
}

// The fills of the storage under a laid view: values of mixed magnitude; small integers
// with many exact zeros (zero multipliers, ties, zero pivots); spread from subnormal to huge
// (infinities and NaNs on the way); or mostly signed zeros (a sum that starts at +0 instead
// of its first product shows).
enum Fill { kMixed, kSparse, kWide, kZeros };

// A rows x cols view with steps sl (in line) and sc (in column) and a right-hand side of
// rows elements at step bstep: right after the matrix's span, or, with inside, on the
// matrix's column 1.
struct Layout {
  int rows, cols, sl, sc;
  int bstep = 1;
  bool inside = false;
};

// A layout laid in storage of its own, every element of which is filled, so that code
// reading or writing the wrong one shows. M is zrMatrix<double> or a class derived from it.
template <class M>
struct Laid {
  std::vector<double> store;
  M m;
  zrColumnVector<double> b;

  Laid(const Layout& l, Fill fill, std::uint64_t seed) {
    const int along = (l.cols - 1) * l.sl, down = (l.rows - 1) * l.sc;
    const int low = std::min(along, 0) + std::min(down, 0), bspan = l.rows * std::abs(l.bstep);
    const int span = std::max(along, 0) + std::max(down, 0) - low + 1;
    store = Mixed(static_cast<std::size_t>(span + bspan + 8), seed);
    for (std::size_t i = 0; i < store.size(); ++i) {
      double& v = store[i];
      if (fill == kSparse) v = std::trunc(v * 0.75);
      if (fill == kWide) v = std::ldexp(v, static_cast<int>((i * 613) % 2040) - 1060);
      if (fill == kZeros && i % 5) v = i % 2 ? 0.0 : -0.0;
    }
    m.SetDirectly(store.data() + 4 - low, l.rows, l.cols, l.sl, l.sc);
    double* const after = store.data() + 4 + span + (l.bstep < 0 ? bspan + l.bstep : 0);
    b.SetDirectly(l.inside ? &m(0, 1) : after, l.rows, l.inside ? l.sc : l.bstep);
  }
};

// What op gave (or the text it threw, a double a byte), then what it left in the storage
// under s.
template <class L, class F>
std::vector<double> Left(const L& s, F op) {
  std::vector<double> out;
  try {
    out = op();
  } catch (const BadParameters& e) {
    for (const char* c = e.GetMessageText(); *c; ++c) out.push_back(*c);
  }
  out.insert(out.end(), s.store.begin(), s.store.end());
  return out;
}

}  // namespace zr_test
