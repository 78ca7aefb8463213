#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

using M3 = zrMatrix3Diag<double>;
using Col = zrColumnVector<double>;
using Dense = std::vector<std::vector<double>>;

// Gaussian elimination, the reference the solvers are held to (the matrices here are
// diagonally dominant, so it needs no pivoting).
std::vector<double> DenseSolve(Dense a, std::vector<double> b) {
  const int n = static_cast<int>(b.size());
  for (int k = 0; k < n; ++k) {
    for (int i = k + 1; i < n; ++i) {
      const double l = a[i][k] / a[k][k];
      for (int j = k; j < n; ++j) a[i][j] -= l * a[k][j];
      b[i] -= l * b[k];
    }
  }
  for (int i = n - 1; i >= 0; --i) {
    for (int j = i + 1; j < n; ++j) b[i] -= a[i][j] * b[j];
    b[i] /= a[i][i];
  }
  return b;
}

void ExpectSolves(const Dense& a, const Col& b, const Col& x) {
  const std::vector<double> want = DenseSolve(a, std::vector<double>(b.begin(), b.end()));
  ASSERT_EQ(x.Len(), static_cast<int>(want.size()));
  for (int i = 0; i < x.Len(); ++i) EXPECT_NEAR(x[i], want[i], 1e-12) << "x[" << i << "]";
}

double R() {
  static std::mt19937 gen(1);
  static std::uniform_real_distribution<double> u(-1, 1);
  return u(gen);
}
Col RVec(int n) {
  Col v(n);
  for (int i = 0; i < n; ++i) v[i] = R();
  return v;
}
// Diagonally dominant, enough to take two more bands and corners.
M3 Tri(int n) {
  M3 a(n);
  for (int i = 0; i < n; ++i) a.Diag()[i] = 8 + R();
  for (int i = 0; i + 1 < n; ++i) a.Up()[i] = R(), a.Down()[i] = R();
  return a;
}

// The dense form of a, plus up2 and down2 when given, plus the six corners (0, n-2),
// (0, n-1), (1, n-1), (n-2, 0), (n-1, 0), (n-1, 1) when given.
Dense ToDense(const M3& a, const zrVector<double>* up2 = nullptr,
              const zrVector<double>* down2 = nullptr, const double* c = nullptr) {
  const int n = a.LineLen();
  const zrMatrix<double> m = a.GetMatrix();
  Dense d(n, std::vector<double>(n));
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) d[i][j] = m(i, j);
  for (int i = 0; up2 && i + 2 < n; ++i) d[i][i + 2] = (*up2)[i], d[i + 2][i] = (*down2)[i];
  if (c) {
    d[0][n - 2] = c[0], d[0][n - 1] = c[1], d[1][n - 1] = c[2];
    d[n - 2][0] = c[3], d[n - 1][0] = c[4], d[n - 1][1] = c[5];
  }
  return d;
}

TEST(Matrix3Diag, ViewsArithmeticAndFlatForm) {
  // The band of a dense 3 x 4 matrix and of its transpose (other steps) writes through.
  zrMatrix<double> m(3, 4);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j) m(i, j) = 10 * i + j;
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
  EXPECT_EQ(m(1, 1), 100);
  EXPECT_EQ(m(1, 0), 200);
  copy.Copy();
  copy(1, 1) = 0;
  EXPECT_EQ(m(1, 1), 100);

  // A window of rows 1 ... 2 of a 4 x 4 matrix.
  M3 big = Tri(4), win;
  win.Set(big, 1, 2);
  win(1, 0) = 9;
  EXPECT_EQ(big(2, 1), 9);

  const M3 a = Tri(5), b = Tri(5);
  const zrMatrix<double> da = a.GetMatrix(), db = b.GetMatrix();
  // Band sums skip only structural zeros, so they equal the dense sums exactly.
  const auto same = [](const zrMatrix<double>& got, const zrMatrix<double>& want) {
    ASSERT_TRUE(got.ColumnLen() == want.ColumnLen() && got.LineLen() == want.LineLen());
    for (int i = 0; i < got.ColumnLen(); ++i)
      for (int j = 0; j < got.LineLen(); ++j) EXPECT_EQ(got(i, j), want(i, j)) << i << "," << j;
  };
  same(a * b, da * db);
  const Col x = RVec(5), ax = a * x, dax = da * x;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(ax[i], dax[i]);
  same((a + b).GetMatrix(), da + db);
  // The scalar results are fresh.
  M3 c = a + 1.0;
  c(0, 0) = 1e9;
  EXPECT_NE(a(0, 0), 1e9);

  // Flat form of a window: Up, Diag, Down, each as a length and its elements.
  M3 w, back;
  w.Set(big, 1, 3);
  EXPECT_EQ(zrMemSize(w), 2 * (4 + 2 * 8) + (4 + 3 * 8));
  std::vector<unsigned char> buf(w.MemSize());
  EXPECT_EQ(zrToMem(buf.data(), w), w.MemSize());
  double up1;
  std::memcpy(&up1, &buf[12], 8);  // after Up's length and Up[0]
  EXPECT_EQ(up1, big(2, 3));
  EXPECT_EQ(zrFromMem(buf.data(), back), w.MemSize());
  EXPECT_EQ(back(2, 1), big(3, 2));
}

TEST(Matrix3Diag, SolversMatchDense) {
  Col x, y;
  for (int n : {1, 2, 3, 10, 60}) {
    const M3 a = Tri(n);
    const Col b = RVec(n);
    a.SolveEquationChaserMethod(x, b);
    ExpectSolves(ToDense(a), b, x);
    if (n < 3) continue;
    const double corners[2] = {R(), R()};
    a.SolveEquationCycleChaserMethod(y, b, corners[0], corners[1]);
    Dense d = ToDense(a);
    d[0][n - 1] = corners[0], d[n - 1][0] = corners[1];
    ExpectSolves(d, b, y);
  }

  // x may be b itself, or a window, which is written through; many right-hand sides are
  // solved column by column to the same bits.
  const M3 a6 = Tri(6);
  const Col b6 = RVec(6);
  a6.SolveEquationChaserMethod(x, b6);
  Col in_place(b6), column;
  in_place.Copy();
  a6.SolveEquationChaserMethod(in_place, in_place);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(zr_test::Bits(in_place[i]), zr_test::Bits(x[i]));
  zrMatrix<double> B(6, 3), X(2, 2);
  B.Fill(0.25);
  B.GetColumn(column, 1);
  a6.SolveEquationChaserMethod(column, b6);
  EXPECT_EQ(B(5, 1), x[5]);
  a6.SolveEquationChaserMethod(X, B);
  Col b2, x2;
  B.GetColumn(b2, 2);
  X.GetColumn(x2, 2);
  a6.SolveEquationChaserMethod(x, b2);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(zr_test::Bits(x2[i]), zr_test::Bits(x[i]));

  for (int n : {3, 4, 5, 6, 9, 40}) {
    const M3 a = Tri(n);
    const Col b = RVec(n);
    // up2 read through a step of 2.
    const zrVector<double> store = RVec(2 * n), down2 = RVec(n - 2);
    zrVector<double> up2;
    up2.Set(store, 0, n - 2, 2);
    a.SolveEquationFactorizeMethod(up2, down2, x, b);
    ExpectSolves(ToDense(a, &up2, &down2), b, x);
    if (n < 5) continue;
    const double c[6] = {R(), R(), R(), R(), R(), R()};
    a.SolveEquationCycleFactorizeMethod(up2, down2, c[0], c[1], c[2], c[3], c[4], c[5], y, b);
    ExpectSolves(ToDense(a, &up2, &down2, c), b, y);
  }
}

TEST(Matrix3Diag, Errors) {
  const M3 a2 = Tri(2), a4 = Tri(4), a5 = Tri(5);
  Col x;
  zrMatrix<double> X(2, 2);
  double* const before = X.GetPointer();
  const zrVector<double> none, two(2);
  const std::string size = "different size.", len = "different length.",
                    range = "zrMatrix3Diag: out of range", small = "invalid size : size < 3.";
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { M3().Set(a4, 2, 3); }, range},
      {[&] { a4* Col(3); }, len},
      {[&] { a4.SolveEquationChaserMethod(X, zrMatrix<double>(3, 2)); }, size},
      // b's length is checked before the size.
      {[&] { a2.SolveEquationFactorizeMethod(none, none, x, Col(3)); }, size},
      {[&] { a2.SolveEquationFactorizeMethod(none, none, x, Col(2)); }, small},
      {[&] { a5.SolveEquationCycleFactorizeMethod(two, two, 1, 1, 1, 1, 1, 1, x, Col(5)); }, size},
      // The leading block of n - 2 rows must have three.
      {[&] { a4.SolveEquationCycleFactorizeMethod(two, two, 1, 1, 1, 1, 1, 1, x, Col(4)); }, small},
  };
  for (const auto& c : cases)
    EXPECT_EQ(zr_test::BadParametersText(c.first), "Invalid parameters : " + c.second);
  EXPECT_EQ(X.GetPointer(), before);  // untouched by the refused many-sided solve
  EXPECT_EQ(x.Len(), 0);
}

TEST(Matrix3Diag, DiagonalsOfInconsistentLengthsAreRefused) {
  const std::string bad = "Invalid parameters : zrMatrix3Diag: diagonals of inconsistent lengths";
  const Col three(3), two(2), none;
  EXPECT_EQ(zr_test::BadParametersText([&] { (void)M3(three, three, two); }), bad);
  EXPECT_EQ(zr_test::BadParametersText([&] { (void)M3(two, three, three); }), bad);
  EXPECT_EQ(zr_test::BadParametersText([&] { (void)M3(two, Col(1), none); }), bad);
  EXPECT_EQ(three.GetNumOfRef(), 0);  // nothing was shared
  EXPECT_EQ(M3(two, three, two).LineLen(), 3);
  EXPECT_EQ(M3(none, Col(1), none).LineLen(), 1);
  EXPECT_EQ(M3(none, none, none).LineLen(), 0);

  // The diagonals can still be edited, and the unchecked reader takes what it reads:
  // the operations that walk the band refuse such a matrix and change nothing.
  M3 a = Tri(4);
  a.Up().ReSet(2);
  Col x(4);
  x.Fill(7);
  const Col b = RVec(4);
  zrMatrix<double> X;
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { a.SolveEquationChaserMethod(x, b); }, bad},
      {[&] { a.SolveEquationChaserMethod(X, zrMatrix<double>(4, 1)); }, bad},
      {[&] { a.SolveEquationCycleChaserMethod(x, b, 1, 1); }, bad},
      {[&] { a.SolveEquationFactorizeMethod(Col(2), Col(2), x, b); }, bad},
      {[&] { (void)(a * b); }, bad},
      {[&] { (void)(Tri(4) * a); }, bad},
      {[&] { (void)a.GetMatrix(); }, bad},
      {[&] { (void)a.T(); }, bad},
  };
  for (const auto& c : cases) EXPECT_EQ(zr_test::BadParametersText(c.first), c.second);
  EXPECT_TRUE(x.Len() == 4 && x[3] == 7 && X.ColumnLen() == 0);

  M3 wrong = Tri(3);
  wrong.Diag().ReSet(2);  // Up and Down of two for a Diag of two
  std::vector<unsigned char> form(static_cast<std::size_t>(wrong.MemSize()));
  wrong.ToMem(form.data());
  M3 read;
  read.FromMem(form.data());
  EXPECT_EQ(zr_test::BadParametersText([&] { read.SolveEquationChaserMethod(x, b); }), bad);
}

}  // namespace
