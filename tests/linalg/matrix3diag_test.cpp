#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "support/levels.h"
#include "support/linalg_values.h"
#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

using M3 = zrMatrix3Diag<double>;
using Col = zrColumnVector<double>;
using Dense = zrMatrix<double>;
using zr_test::ExpectSolves, zr_test::R, zr_test::RVec, zr_test::Tri, zr_test::Values;

TEST(Matrix3Diag, ViewsAndArithmetic) {
  // The band of a dense 3 x 4 matrix and of its transpose (other steps) writes through.
  Dense m(3, 4);
  for (int i = 0; i < 12; ++i) m.GetPointer()[i] = i;
  M3 v(m);
  v(0, 1) = -1;
  EXPECT_EQ(M3(m.T())(1, 0), -1);

  // operator= writes values through a view; the copy constructor and T() share; Copy()
  // detaches.
  const M3 src = Tri(3);
  v = src;
  EXPECT_EQ(m(2, 1), src(2, 1));
  M3 copy(v), t = v.T();
  copy(1, 1) = 100;
  t(0, 1) = 200;  // the transpose's Up is this Down
  EXPECT_TRUE(m(1, 1) == 100 && m(1, 0) == 200);
  copy.Copy();
  copy(1, 1) = 0;

  // A window of rows 1 ... 2 of a 4 x 4 matrix.
  M3 big = Tri(4), win;
  win.Set(big, 1, 2);
  win(1, 0) = 9;
  EXPECT_TRUE(big(2, 1) == 9 && m(1, 1) == 100);

  // Band products skip only structural zeros, so they equal the dense ones exactly.
  const M3 a = Tri(5), b = Tri(5);
  const Dense da = a.GetMatrix(), db = b.GetMatrix(), product = da * db;
  const Col x = RVec(5);
  EXPECT_TRUE(Values(a * b) == Values(product) && Values(a * db) == Values(product));
  EXPECT_TRUE(Values(a * x) == Values(da * x) && Values(a - db) == Values(da - db));
  EXPECT_TRUE(Values((a + b).GetMatrix()) == Values(da + db) && (a + 1.0)(2, 1) == a(2, 1) + 1);
}

// The sweep solves the dense system, plain and cyclic; the sweeps of several right-hand
// sides at once and of the cyclic system's two columns give every level the plain level's
// bits; every place the solution may be gives the bits of a fresh one: a vector of the
// right size, the right-hand side itself, storage the bands share (which must not hold the
// sweep's intermediate values). The five-band sweeps solve their dense systems too.
TEST(Matrix3Diag, SweepsSolveAgreeAtEveryLevelAndWherePlaced) {
  Col five, cyclic;
  for (const int n : {1, 2, 3, 4, 5, 9, 100}) {
    const M3 a = Tri(n);
    const Col b = RVec(n);
    Col fresh, sized(n), same(b);
    a.SolveEquationChaserMethod(fresh, b);
    ExpectSolves(a.GetMatrix(), b, fresh);
    same.Copy();
    a.SolveEquationChaserMethod(sized, b);
    a.SolveEquationChaserMethod(same, same);
    EXPECT_TRUE(Values(sized) == Values(fresh) && Values(same) == Values(fresh)) << n;
    // x one element on from a band, in its block (or viewing it without holding it):
    // each band is read after x's element beside it would be written, so x must wait for
    // the back pass, which reads no band.
    for (int k = 0; k < 4; ++k) {
      M3 c = a;
      c.Copy();
      zrVector<double>& band = k == 0 ? c.Up() : k == 1 ? c.Diag() : c.Down();
      const zrVector<double> values(band);
      zrVector<double> store(n + 1);
      band.Set(store, 0, band.Len());
      band = values;
      Col x;
      k < 3 ? x.Set(store, 1, n) : x.SetDirectly(store.GetPointer() + 1, n, 1);
      c.SolveEquationChaserMethod(x, b);
      EXPECT_EQ(Values(x), Values(fresh)) << n << " band " << k;
    }

    for (const int cols : {1, 2, 3, 9}) {
      Dense B(n, cols);
      for (int i = 0; i < n * cols; ++i) B.GetPointer()[i] = R();
      zr_test::ExpectLevelsAgree([&] {
        Dense X, in_place(B);
        in_place.Copy();
        a.SolveEquationChaserMethod(X, B);
        a.SolveEquationChaserMethod(in_place, in_place);
        EXPECT_EQ(Values(in_place), Values(X));
        return Values(X);
      });
    }
    if (n < 3) continue;
    zr_test::ExpectLevelsAgree([&] {
      Col x, in_place(b);
      in_place.Copy();
      a.SolveEquationCycleChaserMethod(x, b, 0.375, -0.625);
      a.SolveEquationCycleChaserMethod(in_place, in_place, 0.375, -0.625);
      Dense d = a.GetMatrix();
      d(0, n - 1) = 0.375, d(n - 1, 0) = -0.625;
      ExpectSolves(d, b, x);
      EXPECT_EQ(Values(in_place), Values(x));
      return Values(x);
    });

    // The five-band solvers, plain and cyclic, into the solutions of the last order, against
    // the dense system they stand for; up2 read through a step of 2.
    const zrVector<double> store = RVec(2 * n), down2 = RVec(n - 2);
    zrVector<double> up2;
    up2.Set(store, 0, n - 2, 2);
    a.SolveEquationFactorizeMethod(up2, down2, five, b);
    Dense d = a.GetMatrix();
    for (int i = 0; i + 2 < n; ++i) d(i, i + 2) = up2[i], d(i + 2, i) = down2[i];
    ExpectSolves(d, b, five);
    if (n < 5) continue;
    const double c[6] = {R(), R(), R(), R(), R(), R()};
    a.SolveEquationCycleFactorizeMethod(up2, down2, c[0], c[1], c[2], c[3], c[4], c[5], cyclic, b);
    d(0, n - 2) = c[0], d(0, n - 1) = c[1], d(1, n - 1) = c[2];
    d(n - 2, 0) = c[3], d(n - 1, 0) = c[4], d(n - 1, 1) = c[5];
    ExpectSolves(d, b, cyclic);
  }
}

// Every refusal with its text, and nothing changed by it. The diagonals can be edited
// into lengths that do not fit (and the unchecked reader takes what it reads): what walks
// the band (all through one check) refuses such a matrix, as operand or as the matrix.
TEST(Matrix3Diag, Errors) {
  const std::string size = "different size.", len = "different length.",
                    range = "zrMatrix3Diag: out of range", small = "invalid size : size < 3.",
                    bad = "zrMatrix3Diag: diagonals of inconsistent lengths";
  const M3 a2 = Tri(2), a4 = Tri(4), a5 = Tri(5);
  M3 edited = Tri(4);
  edited.Up().ReSet(2);
  Col x(4), three(3), two(2), none;
  x.Fill(7);
  Dense X(2, 2);
  double* const before = X.GetPointer();
  const Col b = RVec(4);
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { M3().Set(a4, 2, 3); }, range},
      {[&] { a4* Col(3); }, len},
      {[&] { a4.SolveEquationChaserMethod(X, Dense(3, 2)); }, size},
      {[&] { a2.SolveEquationFactorizeMethod(none, none, x, Col(3)); }, size},  // b first
      {[&] { a2.SolveEquationFactorizeMethod(none, none, x, Col(2)); }, small},
      {[&] { a5.SolveEquationCycleFactorizeMethod(two, two, 1, 1, 1, 1, 1, 1, x, Col(5)); }, size},
      // The leading block of n - 2 rows must have three.
      {[&] { a4.SolveEquationCycleFactorizeMethod(two, two, 1, 1, 1, 1, 1, 1, x, Col(4)); }, small},
      {[&] { (void)M3(three, three, two); }, bad},
      {[&] { (void)M3(two, three, three); }, bad},
      {[&] { edited.SolveEquationChaserMethod(x, b); }, bad},
      {[&] { (void)(Tri(4) * edited); }, bad},
  };
  for (const auto& [f, text] : cases) zr_test::ExpectRefused(text, f);
  // Nothing was written or shared; the lengths that fit are taken.
  EXPECT_TRUE(X.GetPointer() == before && x.Len() == 4 && x[3] == 7 && three.GetNumOfRef() == 0);
  EXPECT_TRUE(M3(two, three, two).LineLen() == 3 && M3(none, none, none).LineLen() == 0);
}

}  // namespace
