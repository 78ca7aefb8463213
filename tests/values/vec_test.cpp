// zrVec2 and zrTVec3<double>: componentwise arithmetic and partial order, products, the
// tie rules of Min and Max, zrSgn; and the flat forms of the value types.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "support/test_support.h"
#include "zr/zr.h"

using Vec3 = zrTVec3<double>;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Vec, ArithmeticIsComponentwise) {
  // A scalar is subtracted from and divided into each component, not the other way round.
  EXPECT_EQ((zrVec2(8, 6) - 1.0) / 2.0, zrVec2(3.5, 2.5));
  Vec3 t(8, 6, 4);
  ((t += 1.0) -= 3.0) /= Vec3(2, 4, 1);
  EXPECT_EQ(t, Vec3(3, 1, 2));

  // Unary minus flips the signs of zeros too.
  const zrVec2 p = -zrVec2(0.0, -0.0);
  const Vec3 v = -Vec3(-0.0, 0.0, 2.0);
  EXPECT_TRUE(std::signbit(p.X()) && !std::signbit(p.Y()));
  EXPECT_TRUE(!std::signbit(v.X()) && std::signbit(v.Y()));
}

TEST(Vec, OrderIsPartialAndNaNBreaksEverything) {
  // What holds counts +1, what fails -1: any flipped answer lowers the sum.
  const zrVec2 a(1, 2), b(1, 5), c(2, 3), n(1, kNaN);
  EXPECT_EQ((a <= a) + (a >= a) + (a == a) - (a < a) - (a > a) - (a != a), 3);
  EXPECT_EQ((a <= b) + (a < c) + (c > a) - (a < b), 3);  // a < b: only one component is smaller
  EXPECT_EQ((b < c) + (b > c) + (b <= c) + (b >= c), 0);
  EXPECT_EQ((n < c) + (n > zrVec2(0, 0)) + (n <= n) + (n >= n) + (n == n) + (n != n), 1);

  const Vec3 u(1, 2, 3), w(2, 3, 3), m(1, 2, kNaN);
  EXPECT_EQ((u <= w) + (w >= u) + (u != w) - (u < w) - (w > u), 3);  // z ties
  EXPECT_EQ((m < w) + (m > Vec3(0, 0, 0)) + (m <= m) + (m >= m) + (m == m) + (m != m), 1);
}

TEST(Vec, ProductsNormsAndSigns) {
  EXPECT_EQ(Vec3(1, 2, 3).ScalarMul(Vec3(4, 5, 6)), 32.0);
  EXPECT_EQ(zrVec2(3, -4).Norm(), 5.0);
  EXPECT_EQ(Vec3(1, 2, 3).VectorMul(Vec3(4, 5, 6)), Vec3(-3, 6, -3));
  EXPECT_EQ(Vec3(1, 2, 6).E(), 3.0);
  EXPECT_EQ(zrSgn(zrVec2(-0.0, kNaN)), zrVec2(0, 1));  // zeros give 0, NaN gives 1
  EXPECT_EQ(zrSgn(zrVec2(-3, 2)), zrVec2(-1, 1));

  // MulCL is the outer product with this vector as the column, stored by rows: element
  // (i, j) = a[i] * b[j] (the transpose would swap 2*5 and 3*4).
  const double m_want[] = {8, 10, 12, 15}, t_want[] = {1, 10, 100, 2, 20, 200, 3, 30, 300};
  EXPECT_EQ(std::memcmp(zrVec2(2, 3).MulCL(zrVec2(4, 5)).GetPointer(), m_want, sizeof m_want), 0);
  EXPECT_EQ(std::memcmp(Vec3(1, 2, 3).MulCL(Vec3(1, 10, 100)).GetPointer(), t_want, sizeof t_want),
            0);
}

TEST(Vec, MinAndMaxTakeTheLaterOnTiesAndNaN) {
  // Signed zeros tie: the later one is kept.
  EXPECT_TRUE(std::signbit(Vec3(0.0, -0.0, 1).Min()));
  EXPECT_FALSE(std::signbit(Vec3(-0.0, 0.0, -1).Max()));
  // A NaN gives way to what follows it and wins from last place.
  EXPECT_EQ(Vec3(kNaN, 1, 2).Min(), 1.0);
  EXPECT_EQ(Vec3(1, kNaN, 0).Max(), 0.0);
  EXPECT_TRUE(std::isnan(Vec3(1, 2, kNaN).Min()));

  // zrVec2 keeps its own component only when strictly greater (smaller), else b's.
  EXPECT_EQ(zrVec2(1, 5).Max(zrVec2(2, 3)), zrVec2(2, 5));
  EXPECT_EQ(zrVec2(1, 5).Min(zrVec2(2, 3)), zrVec2(1, 3));
  const zrVec2 mx = zrVec2(0.0, kNaN).Max(zrVec2(-0.0, 1));
  const zrVec2 mn = zrVec2(-0.0, 1).Min(zrVec2(0.0, kNaN));
  EXPECT_TRUE(std::signbit(mx.X()) && mx.Y() == 1.0);
  EXPECT_TRUE(!std::signbit(mn.X()) && std::isnan(mn.Y()));
}

TEST(ValueTypes, FlatFormsAreTheRawComponentsBackToBack) {
  // A NaN with a payload and a signed zero must come through bit for bit.
  const zrComplex z(zr_test::FromBits(0xFFF800000000ABCDull), -0.0);
  const zrVec2 p(1.0, -2.0);
  const Vec3 v(0.5, -0.0, zr_test::FromBits(0x7FF800000000BEEFull));
  EXPECT_TRUE(zrMemSize(z) == 16 && zrMemSize(p) == 16 && zrMemSize(v) == 24);

  unsigned char buffer[64];
  std::memset(buffer, 0xEE, sizeof buffer);
  unsigned char* at = buffer + 1;  // unaligned
  at += zrToMem(at, z);
  at += zrToMem(at, p);
  at += zrToMem(at, v);
  EXPECT_TRUE(at - buffer == 57 && *at == 0xEE);
  const unsigned char expected[] = {
      0xCD, 0xAB, 0, 0, 0, 0, 0xF8, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0x80,  // NaN, -0
      0,    0,    0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0,  // 1, -2
      0,    0,    0, 0, 0, 0, 0xE0, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0x80,  // 0.5, -0
      0xEF, 0xBE, 0, 0, 0, 0, 0xF8, 0x7F};                            // NaN
  EXPECT_EQ(std::memcmp(buffer + 1, expected, sizeof expected), 0);

  // Read back, bit for bit.
  zrComplex rz;
  zrVec2 rp;
  Vec3 rv;
  EXPECT_TRUE(zrFromMem(buffer + 1, rz) == 16 && zrFromMem(buffer + 17, rp) == 16 &&
              zrFromMem(buffer + 33, rv) == 24);
  EXPECT_TRUE(!std::memcmp(&rz, &z, 16) && !std::memcmp(&rp, &p, 16) && !std::memcmp(&rv, &v, 24));
}
