#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

const double kPi = std::acos(-1.0);
const std::string kPrefix = "Invalid parameters : ";

// Elements in storage order, compared exactly (eps 0) or within eps.
template <class M, int N>
void ExpectElements(const M& m, const double (&want)[N], double eps = 0) {
  for (int i = 0; i < N; ++i) EXPECT_NEAR(m.GetPointer()[i], want[i], eps) << "element " << i;
}

// R^T R = I and det R = 1.
void ExpectRotation(const zrTMatrix3x3<double>& r) {
  const zrTMatrix3x3<double> rtr = zrTMatrix3x3<double>(zrMatrix<double>(r).T()) * r;
  ExpectElements(rtr, {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-14);
  EXPECT_NEAR(r.Det(), 1, 1e-14);
}

void ExpectNear(const zrTVec3<double>& a, const zrTVec3<double>& b) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(a[i], b[i], 1e-14) << "component " << i;
}

TEST(Matrix2x2, ArithmeticAndInverse) {
  const zrMatrix2x2 a(1, 2, 3, 4);
  EXPECT_EQ(a(1, 0), 3);
  EXPECT_EQ(a.Det(), -2);
  EXPECT_EQ(zrVec2(1, 2) * a, zrVec2(7, 10));  // row times matrix
  EXPECT_EQ(a * zrVec2(1, 2), zrVec2(5, 11));  // matrix times column
  ExpectElements(a * zrMatrix2x2(0, 1, 1, 0), {2, 1, 4, 3});
  ExpectElements(MulCL(zrVec2(1, 2), zrVec2(3, 5)), {3, 5, 6, 10});
  EXPECT_TRUE(std::signbit((-(a - a))(0, 0)));
  ExpectElements(a.Inverse(), {-2, 1, 1.5, -0.5});

  // The threshold is absolute: det 1e-61 is refused, det 1e-59 inverted.
  EXPECT_EQ(zr_test::BadParametersText([] { zrMatrix2x2(1e-61, 0, 0, 1).Inverse(); }),
            kPrefix + "zrMatrix2x2::Inverse : det = 0 ");
  EXPECT_DOUBLE_EQ(zrMatrix2x2(1e-59, 0, 0, 1).Inverse()(0, 0), 1e59);
}

TEST(Matrix2x2, Turns) {
  zrMatrix2x2 r, v;
  r.SetTurn(kPi / 2);
  const zrVec2 y = r * zrVec2(1, 0);
  EXPECT_NEAR(y.X(), 0, 1e-16);
  EXPECT_EQ(y.Y(), 1);
  v.SetTurn(zrVec2(1, 0), zrVec2(0, 2));
  ExpectElements(v, {0, -1, 1, 0});
  ExpectElements(v, {r(0, 0), r(0, 1), r(1, 0), r(1, 1)}, 1e-16);

  // The axis forms turn the x axis (0) or the y axis (any other value) onto v.
  v.SetTurn(zrVec2(3, 4), 0);
  EXPECT_EQ(v(1, 0), 0.8);
  v.SetTurn(zrVec2(3, 4), 7);
  EXPECT_EQ(v(1, 0), -0.6);
  v.SetTurn(zrVec2(0, 0), zrVec2(1, 0));
  EXPECT_TRUE(std::isnan(v(0, 0)));
}

TEST(Matrix2x2, FlatFormAndConversions) {
  const zrMatrix2x2 a(1, -2, 3.5, 4);
  unsigned char buf[32];
  EXPECT_EQ(zrMemSize(a), 32);
  EXPECT_EQ(zrToMem(buf, a), 32);
  const double order[4] = {1, -2, 3.5, 4};
  EXPECT_EQ(std::memcmp(buf, order, 32), 0);
  zrMatrix2x2 b;
  EXPECT_EQ(zrFromMem(buf, b), 32);
  ExpectElements(b, order);

  // To a dense matrix stored by rows, and back from a strided view (the transpose).
  const zrMatrix<double> m = a;
  EXPECT_EQ(m.TabInLine(), 1);
  EXPECT_EQ(m(1, 0), 3.5);
  ExpectElements(zrMatrix2x2(m.T()), {1, 3.5, -2, 4});
  EXPECT_EQ(zr_test::BadParametersText([] { zrMatrix2x2 x(zrMatrix<double>(2, 3)); }),
            kPrefix + "zrMatrix2x2::zrMatrix2x2( const zrMatrix<double> & m ) : Matrix m != 2x2 ");

  zrVector<double> v(4), w;
  for (int i = 0; i < 4; ++i) v[i] = i + 1;
  w.Set(v, 1, 2, 2);  // elements 2 and 4
  EXPECT_EQ(zrToVec2(w), zrVec2(2, 4));
  EXPECT_EQ(zr_test::BadParametersText([&] { zrToVec2(v); }),
            kPrefix + "zrVec2: Dim must be equal 2 ");
}

TEST(Matrix3x3, ArithmeticCopyAndInverse) {
  zrTMatrix3x3<double> a;
  for (int i = 0; i < 9; ++i) a.GetPointer()[i] = i + 1;
  a(2, 2) = 10;
  EXPECT_EQ(a.Det(), -3);
  const zrTVec3<double> v(1, 2, 3);
  EXPECT_EQ(a * v, zrTVec3<double>(14, 32, 53));
  EXPECT_EQ(v * a, zrTVec3<double>(30, 36, 45));
  ExpectElements(MulCL(v, zrTVec3<double>(1, 10, 100)), {1, 10, 100, 2, 20, 200, 3, 30, 300});
  ExpectElements(a * a.Inverse(), {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-14);
  EXPECT_EQ(a(1, 0), 4);  // Inverse leaves it alone
  EXPECT_EQ(zr_test::BadParametersText([] { zrTMatrix3x3<double>(1.0).Inverse(); }),
            kPrefix + ZR_TEXT_SYSTEM_NOT_UNIQUE);

  // Copy leaves row n and column n alone.
  const zrMatrix2x2 m(11, 12, 21, 22);
  zrTMatrix3x3<double> c(0.0);
  c.Copy(m, 0);
  ExpectElements(c, {0, 0, 0, 0, 11, 12, 0, 21, 22});
  c.MakeE();
  c.Copy(m, 1);
  ExpectElements(c, {11, 0, 12, 0, 1, 0, 21, 0, 22});
  c.MakeNull();
  c.Copy(m, 2);
  ExpectElements(c, {11, 12, 0, 21, 22, 0, 0, 0, 0});
  EXPECT_EQ(zr_test::BadParametersText([&] { c.Copy(m, 3); }),
            kPrefix + "zrTMatrix3x3<TT>::Copy: n != {0,1,2}.");

  const zrMatrix<double> d = a;
  ExpectElements(zrTMatrix3x3<double>(d.T()), {1, 4, 7, 2, 5, 8, 3, 6, 10});
  EXPECT_EQ(
      zr_test::BadParametersText([] { zrTMatrix3x3<double> x(zrMatrix<double>(3, 2)); }),
      kPrefix + "zrTMatrix3x3<TT>::zrTMatrix3x3<TT>( const zrMatrix<TT> & m ) : Matrix m != 3x3 ");
}

TEST(Matrix3x3, Turns) {
  const zrTVec3<double> ex(1, 0, 0), ey(0, 1, 0), ez(0, 0, 1);
  // Positive angles turn +x toward +y about +z, and so on cyclically.
  zrTMatrix3x3<double> r, rx, ry, rz;
  r.SetTurn(kPi / 2, zrTVec3<double>(0, 0, 5));
  ExpectNear(r * ex, ey);
  r.SetTurn(kPi / 2, ex);
  ExpectNear(r * ey, ez);
  // Euler angles compose as Rz(c) * Ry(b) * Rx(a).
  rx.SetTurn(0.3, ex);
  ry.SetTurn(-1.1, ey);
  rz.SetTurn(2.0, ez);
  const zrTMatrix3x3<double> composed = rz * ry * rx;
  r.SetTurn(0.3, -1.1, 2.0);
  for (int i = 0; i < 9; ++i) EXPECT_NEAR(r.GetPointer()[i], composed.GetPointer()[i], 1e-15);
  r.SetTurn(1.0, zrTVec3<double>(0, 0, 0));
  EXPECT_TRUE(std::isnan(r(0, 0)));

  // From one direction to another: a rotation about their common normal.
  std::mt19937 gen(17);
  std::uniform_real_distribution<double> u(-2, 2);
  for (int k = 0; k < 50; ++k) {
    const zrTVec3<double> from(u(gen), u(gen), u(gen)), to(u(gen), u(gen), u(gen));
    r.SetTurn(from, to);
    ExpectRotation(r);
    ExpectNear(r * (from / from.Norm()), to / to.Norm());
    const zrTVec3<double> n = from.VectorMul(to);
    ExpectNear(r * n, n);
  }
  // Parallel: the identity; opposite: a half turn; a zero vector: NaNs.
  const zrTVec3<double> d(0, 3, 1);
  r.SetTurn(d, d * 2.0);
  ExpectElements(r, {1, 0, 0, 0, 1, 0, 0, 0, 1});
  r.SetTurn(d, -d);
  ExpectRotation(r);
  ExpectNear(r * d, -d);
  r.SetTurn(zrTVec3<double>(0, 0, 0), d);
  EXPECT_TRUE(std::isnan(r(0, 0)));
}

}  // namespace
