// zrComplex: arithmetic with the library's kept rules, ordering by modulus and the square
// root of the complex norm.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/test_support.h"
#include "zr/zr.h"

TEST(zrComplex, ArithmeticKeepsTheLibraryRules) {
  const zrComplex a(1, 2), b(3, 4);
  EXPECT_EQ(a * b, zrComplex(-5.0, 10.0));
  // Division is by the modulus |b| = 5, not by its square.
  EXPECT_EQ(a / b, zrComplex(2.2, 0.4));
  // *= adds, while * multiplies.
  EXPECT_EQ(zrComplex(a) *= b, zrComplex(4.0, 6.0));

  // Unary minus flips zeros too.
  const zrComplex z = -zrComplex(0.0, -0.0);
  EXPECT_TRUE(std::signbit(z.Re()) && !std::signbit(z.Im()));
}

TEST(zrComplex, EqualityIsExactAndOrderingComparesModuli) {
  const zrComplex a(3, 4), b(-5, 0), small(0, 1), n(1, std::numeric_limits<double>::quiet_NaN());
  // Equal moduli: neither less nor greater, both <= and >=, yet not equal.
  EXPECT_EQ((a <= b) + (a >= b) + (a != b) - (a < b) - (a > b) - (a == b), 3);
  EXPECT_EQ(
      (small < a) + (a > small) + (small <= a) + (zrComplex(0.0, 0.0) == zrComplex(-0.0, 0.0)), 4);
  EXPECT_EQ((a < small) + (small > a) + (small >= a), 0);
  // A NaN part: unequal to itself, and no ordering holds.
  EXPECT_EQ((n < a) + (n > a) + (n <= a) + (n >= a) + (n == n), 0);
  EXPECT_EQ((a < n) + (a > n) + (a <= n) + (a >= n) + (n != n), 1);
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
