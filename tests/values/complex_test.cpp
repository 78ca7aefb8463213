// zrComplex: arithmetic with the library's kept rules, ordering by modulus, the square
// root of the complex norm and the flat form.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::Bits;
using zr_test::FromBits;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(zrComplex, ArithmeticKeepsTheLibraryRules) {
  const zrComplex a(1, 2), b(3, 4);
  EXPECT_EQ(a * b, zrComplex(-5.0, 10.0));

  // Division is by the modulus |b| = 5, not by its square.
  EXPECT_EQ(a / b, zrComplex(2.2, 0.4));
  EXPECT_EQ(zrComplex(2, 0) / zrComplex(0, 1), zrComplex(0.0, -2.0));
  zrComplex c = b;
  const zrComplex& same = c;
  c /= same;  // reads both parts of the divisor before writing
  EXPECT_EQ(c, zrComplex(5.0, 0.0));

  // *= adds, while * multiplies.
  c = a;
  EXPECT_EQ(&(c *= b), &c);
  EXPECT_EQ(c, zrComplex(4.0, 6.0));

  // A double converts with an imaginary part of exactly +0.
  EXPECT_FALSE(std::signbit(zrComplex(7.5).Im()));

  // Unary minus flips the signs of zeros too.
  const zrComplex z = -zrComplex(0.0, -0.0);
  EXPECT_TRUE(std::signbit(z.Re()));
  EXPECT_FALSE(std::signbit(z.Im()));
}

TEST(zrComplex, EqualityIsExactAndOrderingComparesModuli) {
  static_assert(std::is_same_v<decltype(zrComplex() < zrComplex()), int>);
  const zrComplex a(3, 4), b(-5, 0), small(0, 1);

  // Equal moduli: neither less nor greater, both <= and >=, yet not equal.
  EXPECT_EQ((a < b) + (a > b) + (a == b), 0);
  EXPECT_EQ((a <= b) + (a >= b) + (a != b), 3);
  EXPECT_EQ((small < a) + (a > small) + (small <= a), 3);
  EXPECT_EQ((a < small) + (small > a) + (small >= a), 0);
  EXPECT_EQ(zrComplex(0.0, 0.0) == zrComplex(-0.0, 0.0), 1);

  // A NaN part: unequal to itself, and no ordering holds.
  const zrComplex n(1, kNaN);
  EXPECT_EQ(n != n, 1);
  EXPECT_EQ((n < a) + (n > a) + (n <= a) + (n >= a) + (n == n), 0);
  EXPECT_EQ((a < n) + (a > n) + (a <= n) + (a >= n), 0);

  // The modulus is not scaled: the squares overflow.
  EXPECT_TRUE(std::isinf(zrAbs(zrComplex(1e200, 0))));
}

TEST(zrComplexNormSqrt, FollowsTheNormRule) {
  EXPECT_EQ(zrComplexNormSqrt(zrComplex(0, 4)), zrComplex(0.0, 4.0));
  EXPECT_EQ(zrComplexNormSqrt(zrComplex(4, 0)), zrComplex(4 * std::sqrt(0.5), 4 * std::sqrt(0.5)));
  // The angle comes from the imaginary part: x = -1.
  EXPECT_EQ(zrComplexNormSqrt(zrComplex(0, -4)), zrComplex(4.0, 0.0));
  // A zero modulus gives the value itself, signs of zeros included.
  const zrComplex z = zrComplexNormSqrt(zrComplex(-0.0, -0.0));
  EXPECT_TRUE(std::signbit(z.Re()) && std::signbit(z.Im()));
}

TEST(zrComplex, FlatFormIsTheRawPartsBackToBack) {
  // The second value has a NaN payload and a signed zero.
  const zrComplex values[] = {zrComplex(1.0, -2.0),
                              zrComplex(FromBits(0xFFF800000000ABCDull), -0.0)};
  EXPECT_EQ(zrMemSize(values[0]), 16);

  unsigned char buffer[40];
  std::memset(buffer, 0xEE, sizeof buffer);
  unsigned char* at = buffer + 3;  // unaligned
  for (const zrComplex& v : values) {
    EXPECT_EQ(zrToMem(at, v), 16);
    at += 16;
  }
  EXPECT_EQ(*at, 0xEE);
  const unsigned char expected[] = {0,    0,    0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0,
                                    0xCD, 0xAB, 0, 0, 0, 0, 0xF8, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0x80};
  EXPECT_EQ(std::memcmp(buffer + 3, expected, sizeof expected), 0);

  const unsigned char* from = buffer + 3;
  for (const zrComplex& v : values) {
    zrComplex read;
    EXPECT_EQ(zrFromMem(from, read), 16);
    from += 16;
    EXPECT_EQ(Bits(read.Re()), Bits(v.Re()));
    EXPECT_EQ(Bits(read.Im()), Bits(v.Im()));
  }
}
