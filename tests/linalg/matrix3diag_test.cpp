#include <gtest/gtest.h>

#include <cmath>
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

// Gaussian elimination with partial pivoting: the reference the solvers are held to.
std::vector<double> DenseSolve(Dense a, std::vector<double> b) {
  const int n = static_cast<int>(b.size());
  for (int k = 0; k < n; ++k) {
    int p = k;
    for (int i = k + 1; i < n; ++i)
      if (std::fabs(a[i][k]) > std::fabs(a[p][k])) p = i;
    std::swap(a[k], a[p]);
    std::swap(b[k], b[p]);
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

void ExpectSameBits(const Col& a, const Col& b) {
  ASSERT_EQ(a.Len(), b.Len());
  for (int i = 0; i < a.Len(); ++i) EXPECT_EQ(zr_test::Bits(a[i]), zr_test::Bits(b[i])) << i;
}

class Random {
 public:
  explicit Random(unsigned seed) : gen_(seed) {}
  double operator()() { return u_(gen_); }
  Col Vec(int n) {
    Col v(n);
    for (int i = 0; i < n; ++i) v[i] = (*this)();
    return v;
  }
  // Diagonally dominant, enough to take two more bands and corners.
  M3 Tri(int n) {
    M3 a(n);
    for (int i = 0; i < n; ++i) a.Diag()[i] = 8 + (*this)();
    for (int i = 0; i + 1 < n; ++i) {
      a.Up()[i] = (*this)();
      a.Down()[i] = (*this)();
    }
    return a;
  }

 private:
  std::mt19937 gen_;
  std::uniform_real_distribution<double> u_{-1, 1};
};

// The dense form of a, plus up2 and down2 when given, plus the six corners (0, n-2),
// (0, n-1), (1, n-1), (n-2, 0), (n-1, 0), (n-1, 1) when given.
Dense ToDense(const M3& a, const zrVector<double>* up2 = nullptr,
              const zrVector<double>* down2 = nullptr, const double* c = nullptr) {
  const int n = a.LineLen();
  const zrMatrix<double> m = a.GetMatrix();
  Dense d(n, std::vector<double>(n));
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) d[i][j] = m(i, j);
  for (int i = 0; up2 && i + 2 < n; ++i) {
    d[i][i + 2] = (*up2)[i];
    d[i + 2][i] = (*down2)[i];
  }
  if (c) {
    d[0][n - 2] = c[0], d[0][n - 1] = c[1], d[1][n - 1] = c[2];
    d[n - 2][0] = c[3], d[n - 1][0] = c[4], d[n - 1][1] = c[5];
  }
  return d;
}

TEST(Matrix3Diag, ViewsAndSharing) {
  // The band of a dense 3 x 4 matrix and of its transpose (other steps) writes through.
  zrMatrix<double> m(3, 4);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j) m(i, j) = 10 * i + j;
  M3 v(m);
  EXPECT_EQ(v.LineLen(), 3);
  EXPECT_EQ(v(2, 1), 21);
  EXPECT_EQ(v(1, 2), 12);
  v(0, 1) = -1;
  EXPECT_EQ(m(0, 1), -1);
  const M3 vt(m.T());
  EXPECT_EQ(vt(1, 0), -1);
  EXPECT_EQ(vt(2, 2), 22);
  // The view holds the block: it outlives the dense matrix.
  const M3 kept = [] {
    zrMatrix<double> d(2, 2);
    d.Fill(5);
    return M3(d);
  }();
  EXPECT_EQ(kept(1, 0), 5);

  // operator= writes values through a view; the copy constructor and T() share; Copy()
  // detaches.
  Random r(1);
  const M3 src = r.Tri(3);
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
  M3 big = r.Tri(4), win;
  win.Set(big, 1, 2);
  EXPECT_EQ(win.Up().Len(), 1);
  win(1, 0) = 9;
  EXPECT_EQ(big(2, 1), 9);
  EXPECT_EQ(&big(3, 2), &big.Down()[2]);
  EXPECT_EQ(M3(1).Up().Len(), 0);
}

TEST(Matrix3Diag, ArithmeticAndProductsMatchDense) {
  Random r(2);
  const M3 a = r.Tri(5), b = r.Tri(5);
  const zrMatrix<double> da = a.GetMatrix(), db = b.GetMatrix();
  EXPECT_EQ(da(0, 2), 0);
  EXPECT_EQ(da(4, 3), a.Down()[3]);
  // Band sums skip only structural zeros, so they equal the dense sums exactly.
  const auto same = [](const zrMatrix<double>& got, const zrMatrix<double>& want) {
    ASSERT_EQ(got.ColumnLen(), want.ColumnLen());
    ASSERT_EQ(got.LineLen(), want.LineLen());
    for (int i = 0; i < got.ColumnLen(); ++i)
      for (int j = 0; j < got.LineLen(); ++j) EXPECT_EQ(got(i, j), want(i, j)) << i << "," << j;
  };
  same(a * b, da * db);
  zrMatrix<double> rect(5, 3);
  for (int i = 0; i < 5; ++i)
    for (int j = 0; j < 3; ++j) rect(i, j) = r();
  same(a * rect, da * rect);
  const Col x = r.Vec(5);
  const Col ax = a * x, dax = da * x;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(ax[i], dax[i]);
  same((a + b).GetMatrix(), da + db);
  same(a + db, da + db);
  same((-a).GetMatrix(), -da);
  same((a * 2.0).GetMatrix(), da * 2.0);

  // The scalar results are fresh; the compound ones work in place.
  M3 c = a + 1.0;
  c(0, 0) = 1e9;
  EXPECT_NE(a(0, 0), 1e9);
  EXPECT_EQ(c(3, 4), a(3, 4) + 1.0);
}

TEST(Matrix3Diag, FlatForm) {
  Random r(3);
  M3 big = r.Tri(4), a;
  a.Set(big, 1, 3);
  EXPECT_EQ(zrMemSize(a), 2 * (4 + 2 * 8) + (4 + 3 * 8));
  std::vector<unsigned char> buf(a.MemSize());
  EXPECT_EQ(zrToMem(buf.data(), a), a.MemSize());
  int n[2];
  double e[2];
  std::memcpy(&n[0], &buf[0], 4);   // Up's length
  std::memcpy(&e[0], &buf[12], 8);  // Up[1]
  std::memcpy(&n[1], &buf[20], 4);  // Diag's length
  std::memcpy(&e[1], &buf[24], 8);  // Diag[0]
  EXPECT_EQ(n[0], 2);
  EXPECT_EQ(n[1], 3);
  EXPECT_EQ(e[0], big(2, 3));
  EXPECT_EQ(e[1], big(1, 1));
  M3 back;
  EXPECT_EQ(zrFromMem(buf.data(), back), a.MemSize());
  EXPECT_EQ(back(2, 1), big(3, 2));
  back(1, 1) = 0;
  EXPECT_NE(big(2, 2), 0);  // fresh storage
}

TEST(Matrix3Diag, SweepsMatchDense) {
  // Two unknowns: steps 2, 4 and 5 only. 2x + y = 5, 4x + 3y = 11.
  M3 two(2);
  two.Diag()[0] = 2, two.Diag()[1] = 3, two.Up()[0] = 1, two.Down()[0] = 4;
  Col x, y, b2(2);
  b2[0] = 5, b2[1] = 11;
  two.SolveEquationChaserMethod(x, b2);
  EXPECT_EQ(x[0], 2);
  EXPECT_EQ(x[1], 1);

  Random r(4);
  for (int n : {1, 3, 4, 10, 60}) {
    const M3 a = r.Tri(n);
    const Col b = r.Vec(n);
    a.SolveEquationChaserMethod(x, b);
    ExpectSolves(ToDense(a), b, x);
    if (n < 3) continue;
    const double corners[2] = {r(), r()};
    a.SolveEquationCycleChaserMethod(y, b, corners[0], corners[1]);
    Dense d = ToDense(a);
    d[0][n - 1] = corners[0];
    d[n - 1][0] = corners[1];
    ExpectSolves(d, b, y);
    a.SolveEquationCycleChaserMethod(y, b, 0.0, 0.0);
    for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i], x[i], 1e-14);
  }

  // x may be b itself, or a window, which is written through.
  const M3 a = r.Tri(6);
  const Col b = r.Vec(6);
  a.SolveEquationChaserMethod(x, b);
  Col in_place(b);
  in_place.Copy();
  a.SolveEquationChaserMethod(in_place, in_place);
  ExpectSameBits(in_place, x);
  zrMatrix<double> store(6, 2);
  Col column;
  store.GetColumn(column, 1);
  a.SolveEquationChaserMethod(column, b);
  EXPECT_EQ(store(5, 1), x[5]);

  // Many right-hand sides: column by column, the same bits.
  zrMatrix<double> B(6, 3), X(2, 2);
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 3; ++j) B(i, j) = r();
  a.SolveEquationChaserMethod(X, B);
  for (int j = 0; j < 3; ++j) {
    Col bj, xj;
    B.GetColumn(bj, j);
    X.GetColumn(xj, j);
    a.SolveEquationChaserMethod(x, bj);
    ExpectSameBits(xj, x);
  }
}

TEST(Matrix3Diag, FactorisationsMatchDense) {
  Random r(5);
  Col x, y;
  for (int n : {3, 4, 5, 6, 9, 40}) {
    const M3 a = r.Tri(n);
    const Col b = r.Vec(n);
    // up2 read through a step of 2.
    const zrVector<double> store = r.Vec(2 * n), down2 = r.Vec(n - 2);
    zrVector<double> up2;
    up2.Set(store, 0, n - 2, 2);
    a.SolveEquationFactorizeMethod(up2, down2, x, b);
    ExpectSolves(ToDense(a, &up2, &down2), b, x);

    if (n >= 5) {
      const double c[6] = {r(), r(), r(), r(), r(), r()};
      a.SolveEquationCycleFactorizeMethod(up2, down2, c[0], c[1], c[2], c[3], c[4], c[5], y, b);
      ExpectSolves(ToDense(a, &up2, &down2, c), b, y);
      Col in_place(b);
      in_place.Copy();
      a.SolveEquationCycleFactorizeMethod(up2, down2, c[0], c[1], c[2], c[3], c[4], c[5], in_place,
                                          in_place);
      ExpectSameBits(in_place, y);
    }

    zrVector<double> zero(n - 2);
    zero.Fill(0);
    a.SolveEquationFactorizeMethod(zero, zero, x, b);
    a.SolveEquationChaserMethod(y, b);
    for (int i = 0; i < n; ++i) EXPECT_NEAR(x[i], y[i], 1e-14);
  }
}

TEST(Matrix3Diag, Errors) {
  Random r(6);
  M3 a4 = r.Tri(4);
  const M3 a2 = r.Tri(2), a5 = r.Tri(5);
  Col x;
  zrMatrix<double> X(2, 2);
  double* const before = X.GetPointer();
  const zrVector<double> none, two(2);
  const std::string size = "different size.", len = "different length.",
                    range = "zrMatrix3Diag: out of range", small = "invalid size : size < 3.";
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { a4(0, 2); }, range},
      {[&] { a4(3, 1); }, range},
      {[&] { M3().Set(a4, 2, 3); }, range},
      {[&] { a4* zrMatrix<double>(3, 3); }, size},
      {[&] { a4* Col(3); }, len},
      {[&] { a4.SolveEquationChaserMethod(x, Col(3)); }, size},
      {[&] { a4.SolveEquationChaserMethod(X, zrMatrix<double>(3, 2)); }, size},
      {[&] { a2.SolveEquationCycleChaserMethod(x, Col(2), 1, 1); }, size},
      {[&] { a4.SolveEquationCycleChaserMethod(x, Col(3), 1, 1); }, size},
      // b's length is checked before the size.
      {[&] { a2.SolveEquationFactorizeMethod(none, none, x, Col(3)); }, size},
      {[&] { a2.SolveEquationFactorizeMethod(none, none, x, Col(2)); }, small},
      {[&] { a4.SolveEquationFactorizeMethod(Col(1), two, x, Col(4)); }, size},
      {[&] { a2.SolveEquationCycleFactorizeMethod(none, none, 1, 1, 1, 1, 1, 1, x, Col(2)); },
       size},
      {[&] { a5.SolveEquationCycleFactorizeMethod(two, two, 1, 1, 1, 1, 1, 1, x, Col(5)); }, size},
      // The leading block of n - 2 rows must have three.
      {[&] { a4.SolveEquationCycleFactorizeMethod(two, two, 1, 1, 1, 1, 1, 1, x, Col(4)); }, small},
  };
  for (const auto& c : cases)
    EXPECT_EQ(zr_test::BadParametersText(c.first), "Invalid parameters : " + c.second);
  EXPECT_EQ(X.GetPointer(), before);  // untouched by the refused many-sided solve
  EXPECT_EQ(x.Len(), 0);
}

}  // namespace
