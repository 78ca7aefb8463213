// The tridiagonal sweeps against the plain loops written out here: every solution must
// have exactly their bits, whatever path the solver takes (beta kept in the solution or
// apart from it, one column or several interleaved, a work space reused across sizes).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "zr/linalg/linalg.h"

namespace {

using M3 = zrMatrix3Diag<double>;
using Col = zrColumnVector<double>;
using Vec = std::vector<double>;

// The sweep exactly as the library defines it, with alpha and beta in arrays of their own.
Vec PlainSweep(const Vec& up, const Vec& diag, const Vec& down, const Vec& b) {
  const int n = static_cast<int>(diag.size());
  Vec x(n), alpha(n), beta(n);
  if (n == 1) return {b[0] / diag[0]};
  alpha[0] = -up[0] / diag[0];
  beta[0] = b[0] / diag[0];
  for (int i = 1; i <= n - 2; ++i) {
    const double d = down[i - 1] * alpha[i - 1] + diag[i];
    alpha[i] = -up[i] / d;
    beta[i] = (b[i] - down[i - 1] * beta[i - 1]) / d;
  }
  x[n - 1] = (b[n - 1] - down[n - 2] * beta[n - 2]) / (down[n - 2] * alpha[n - 2] + diag[n - 1]);
  for (int i = n - 2; i >= 0; --i) x[i] = x[i + 1] * alpha[i] + beta[i];
  return x;
}

// The cyclic system through two plain sweeps of the leading block.
Vec PlainCycle(const Vec& up, const Vec& diag, const Vec& down, const Vec& b, double top,
               double bottom) {
  const int n = static_cast<int>(diag.size());
  const int m = n - 1;
  const Vec u1(up.begin(), up.begin() + (m - 1)), d1(diag.begin(), diag.begin() + m),
      l1(down.begin(), down.begin() + (m - 1));
  Vec x = PlainSweep(u1, d1, l1, Vec(b.begin(), b.begin() + m));
  Vec w(m, 0.0);
  w[0] = top;
  w[m - 1] = up[n - 2];
  const Vec z = PlainSweep(u1, d1, l1, w);
  const double last = (b[n - 1] - bottom * x[0] - down[n - 2] * x[n - 2]) /
                      (diag[n - 1] - down[n - 2] * z[n - 2] - bottom * z[0]);
  for (int i = 0; i < m; ++i) x[i] = x[i] - z[i] * last;
  x.push_back(last);
  return x;
}

struct System {
  Vec up, diag, down, b;
  M3 a;
  Col rhs;
};

// Diagonally dominant, magnitudes spread over a few binades so that rounding differs
// from row to row.
System Random(int n, std::mt19937_64& g) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::uniform_int_distribution<int> e(-3, 3);
  System s{Vec(n > 1 ? n - 1 : 0), Vec(n), Vec(n > 1 ? n - 1 : 0), Vec(n), M3(n), Col(n)};
  for (int i = 0; i < n; ++i) {
    s.diag[i] = 4.0 + u(g);
    s.b[i] = std::ldexp(u(g), e(g));
    s.a.Diag()[i] = s.diag[i];
    s.rhs[i] = s.b[i];
  }
  for (int i = 0; i + 1 < n; ++i) {
    s.up[i] = u(g);
    s.down[i] = u(g);
    s.a.Up()[i] = s.up[i];
    s.a.Down()[i] = s.down[i];
  }
  return s;
}

template <class V>
void ExpectBits(const Vec& want, const V& got, const char* what, int n) {
  ASSERT_EQ(static_cast<int>(want.size()), got.Len()) << what << " n=" << n;
  for (int i = 0; i < got.Len(); ++i)
    ASSERT_EQ(0, std::memcmp(&want[i], &got[i], sizeof(double)))
        << what << " n=" << n << " i=" << i << ": " << want[i] << " vs " << got[i];
}

const int kSizes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 17, 100, 1001};

TEST(SweepBits, OneRightSideFreshInPlaceAndOverlappingTheMatrix) {
  std::mt19937_64 g(11);
  for (const int n : kSizes) {
    System s = Random(n, g);
    const Vec want = PlainSweep(s.up, s.diag, s.down, s.b);
    Col fresh;
    s.a.SolveEquationChaserMethod(fresh, s.rhs);
    ExpectBits(want, fresh, "fresh x", n);
    Col reused(n);  // written in place
    s.a.SolveEquationChaserMethod(reused, s.rhs);
    ExpectBits(want, reused, "sized x", n);
    Col same = s.rhs;  // x is b
    same.Copy();
    s.a.SolveEquationChaserMethod(same, same);
    ExpectBits(want, same, "x is b", n);

    // x a column of the dense matrix the bands view (outside the band): the solver
    // must keep its intermediate values apart.
    zrMatrix<double> m(n, n + 1);
    m.Fill(0.0);
    for (int i = 0; i < n; ++i) m(i, i) = s.diag[i];
    for (int i = 0; i + 1 < n; ++i) {
      m(i, i + 1) = s.up[i];
      m(i + 1, i) = s.down[i];
    }
    const M3 view(m);
    Col x;
    m.GetColumn(x, n);
    view.SolveEquationChaserMethod(x, s.rhs);
    ExpectBits(want, x, "x sharing the matrix's block", n);
    for (int i = 0; i < n; ++i) ASSERT_EQ(m(i, n), x[i]);
  }
}

TEST(SweepBits, ManyRightSidesInGroupsAndTails) {
  std::mt19937_64 g(12);
  for (const int n : {1, 2, 3, 5, 33}) {
    for (const int cols : {1, 2, 3, 4, 5, 7, 8, 9}) {
      System s = Random(n, g);
      zrMatrix<double> B(n, cols);
      std::uniform_real_distribution<double> u(-2.0, 2.0);
      std::vector<Vec> want(cols);
      for (int j = 0; j < cols; ++j) {
        Vec b(n);
        for (int i = 0; i < n; ++i) B(i, j) = b[i] = u(g);
        want[j] = PlainSweep(s.up, s.diag, s.down, b);
      }
      zrMatrix<double> X;
      s.a.SolveEquationChaserMethod(X, B);
      zrMatrix<double> inPlace(B);
      inPlace.Copy();
      s.a.SolveEquationChaserMethod(inPlace, inPlace);
      for (int j = 0; j < cols; ++j) {
        Col cx, cp;
        X.GetColumn(cx, j);
        inPlace.GetColumn(cp, j);
        ExpectBits(want[j], cx, "X", n);
        ExpectBits(want[j], cp, "X is B", n);
      }
    }
  }
}

TEST(SweepBits, CyclicSystem) {
  std::mt19937_64 g(13);
  for (const int n : {3, 4, 5, 6, 9, 100, 1001}) {
    System s = Random(n, g);
    const double top = 0.375, bottom = -0.625;
    const Vec want = PlainCycle(s.up, s.diag, s.down, s.b, top, bottom);
    Col x;
    s.a.SolveEquationCycleChaserMethod(x, s.rhs, top, bottom);
    ExpectBits(want, x, "cyclic", n);
    Col same = s.rhs;
    same.Copy();
    s.a.SolveEquationCycleChaserMethod(same, same, top, bottom);
    ExpectBits(want, same, "cyclic, x is b", n);
  }
}

// One matrix solving systems of changing size keeps its work space; shrinking and
// growing again must not leak old values into the results, and copies solve on their own.
TEST(SweepBits, WorkSpaceAcrossSizesAndCopies) {
  std::mt19937_64 g(14);
  M3 a;
  for (const int n : {50, 3, 400, 7, 400, 1}) {
    System s = Random(n, g);
    a.Set(n);
    a = s.a;
    Col x;
    a.SolveEquationChaserMethod(x, s.rhs);
    ExpectBits(PlainSweep(s.up, s.diag, s.down, s.b), x, "reused matrix", n);
    const M3 copy(a);
    Col y;
    copy.SolveEquationChaserMethod(y, s.rhs);
    ExpectBits(PlainSweep(s.up, s.diag, s.down, s.b), y, "copy", n);
  }
}

}  // namespace
