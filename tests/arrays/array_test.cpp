// zrArray<T>: element-wise arithmetic by the element type's own operators, reductions in
// index order, in-place selection, sorted insertion and the flat form.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/array_builders.h"
#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using zr_test::Values;
using C = zrComplex;
using D = zrArray<double>;
using I = zrArray<int>;
using zr_test::Of;

}  // namespace

TEST(Array, ElementWiseOperators) {
  // The element code is one template for every type: one scalar type shows its faults.
  const D a = Of<D>({8, 2, 6});
  EXPECT_EQ(Values(a + Of<D>({1, 1, 1})), std::vector<double>({9, 3, 7}));
  EXPECT_EQ(Values(a / Of<D>({4, 2, 4})), std::vector<double>({2, 1, 1.5}));
  EXPECT_EQ(Values(a.Max(Of<D>({1, 5, 6}))), std::vector<double>({8, 5, 6}));
  EXPECT_EQ(a.Mul(), 96);
  EXPECT_EQ((a > 1.0) + (a > 2.0), 1);
}

TEST(Array, ValueElementsFollowTheirOwnOperators) {
  // Ordered by modulus (5, 1, 6, 2.2); by real part the answers would be 0, 2 and C(0, 1).
  zrArray<C> z = Of<zrArray<C>>({C(3, 4), C(0, 1), C(-6, 0), C(1, -2)});
  EXPECT_EQ(z.MaxIndex() * 10 + z.MinIndex(), 21);
  EXPECT_EQ(z.Median(), C(1, -2));

  zrArray<C> a = Of<zrArray<C>>({C(1, 2), C(3, -1)});
  const zrArray<C> b = Of<zrArray<C>>({C(2, 1), C(0, 1)});
  EXPECT_EQ(a * b, Of<zrArray<C>>({C(0, 5), C(1, 3)}));
  a *= b;  // adds, as zrComplex::operator*= does
  EXPECT_EQ(a, Of<zrArray<C>>({C(3, 3), C(3, 0)}));
  EXPECT_EQ(Of<zrArray<zrVec2>>({zrVec2(1, 2), zrVec2(3, 4)}).Sum(), zrVec2(4, 6));
}

TEST(Array, WindowsShareAndCopiesDoNot) {
  D a = Of<D>({1, 2, 3, 4});
  a.Mid(1, 2) += 10.0;         // in place, through the shared block
  a.Right(2) = Of<D>({7, 8});  // equal length: written into a's elements
  EXPECT_EQ(Values(a), std::vector<double>({1, 12, 7, 8}));
  D sum = a + 0.0;
  sum[0] = -1;
  EXPECT_EQ(a[0], 1);
  // A scalar operand that is an element of the array is read once, before the loop.
  a[0] = 2;
  a /= a[0];
  EXPECT_EQ(Values(a), std::vector<double>({1, 6, 3.5, 4}));

  // An overlapping operand is read as it was: each element plus the one before it.
  I b = Of<I>({1, 2, 3, 4, 5});
  b.Mid(1, 4) += b.Left(4);
  EXPECT_EQ(Values(b), (std::vector<int>{1, 3, 5, 7, 9}));
  b.Left(4) -= b.Mid(1, 4);
  b *= b;  // the same elements: each read before it is written
  EXPECT_EQ(Values(b), (std::vector<int>{4, 4, 4, 4, 81}));
}

TEST(Array, ReductionsAndComparisons) {
  const D one = Of<D>({1});
  D two = Of<D>({1, 2}), empty;
  const std::string different = "Invalid parameters : Different range";
  EXPECT_EQ(BadParametersText([&] { two += one; }), different);
  EXPECT_EQ(BadParametersText([&] { (void)(two < one); }), different);
  EXPECT_EQ((two == one), 0);
  EXPECT_EQ(BadParametersText([&] { empty.Sum(); }), "Invalid parameters : Array length is zero.");
  EXPECT_EQ(BadParametersText([&] { empty.Median(); }),
            "Invalid parameters : Lenght of array is equl zero.");
  // Every condition holds vacuously on an empty array; NaN is unequal to itself.
  EXPECT_EQ((empty == 5.0) + (empty < 5.0) + (empty > 5.0) + (empty <= empty), 4);
  EXPECT_EQ((empty != 5.0), 0);
  const D nan(1, std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ((nan == nan), 0);

  // Left to right, 1 + 1e16 rounds to 1e16; any other order keeps the 1.
  EXPECT_EQ(Of<D>({1.0, 1e16, -1e16}).Sum(), 0.0);
  // x * x rounds to 1 + 2^-29; a fused multiply-add would keep the 2^-60.
  const double x = 1 + std::ldexp(1.0, -30);
  EXPECT_EQ(Of<D>({-1.0, x}).ScalarMul(Of<D>({1 + std::ldexp(1.0, -29), x})), 0.0);

  EXPECT_EQ(Of<I>({2, 7, 7}).MaxIndex() + Of<I>({1, 0, 0}).MinIndex(), 2);  // the first
  EXPECT_EQ(Of<I>({2, -3, 4}).GetNoPositive(), Of<I>({0, -3, 0}));
}

TEST(Array, MedianSelectsTheLowerMiddleInPlace) {
  std::mt19937 random(7);
  for (int n = 1; n <= 40; ++n) {
    I b;  // many ties
    for (int i = 0; i < n; ++i) b.push_back(static_cast<int>(random() % 9));
    std::vector<int> sorted = Values(b);
    std::sort(sorted.begin(), sorted.end());
    const int k = (n - 1) / 2;
    ASSERT_EQ(b.Median(), sorted[k]) << n;
    for (int i = 0; i < n; ++i) ASSERT_TRUE(i < k ? b[i] <= b[k] : b[i] >= b[k]) << n;
    ASSERT_TRUE(std::is_permutation(b.begin(), b.end(), sorted.begin())) << n;
  }
}

TEST(Array, InsertIfNotExistBKeepsTheOrder) {
  I a = Of<I>({1, 3, 9}), down = Of<I>({9, 3}), empty;
  int found[4] = {-1, -1, -1, -1};
  EXPECT_EQ(
      std::vector<int>({a.InsertIfNotExistB(5, found[0], 1), a.InsertIfNotExistB(5, found[1], 1),
                        down.InsertIfNotExistB(4, found[2], 0),
                        empty.InsertIfNotExistB(4, found[3], 1), found[0], found[1]}),
      std::vector<int>({2, 2, 1, 0, 0, 1}));
  EXPECT_EQ(Values(a), std::vector<int>({1, 3, 5, 9}));
  EXPECT_EQ(Values(empty), std::vector<int>({4}));
}

TEST(Array, FlatForm) {
  const D a = Of<D>({1.5, -2.0});
  unsigned char buffer[20];
  ASSERT_EQ(a.ToMem(buffer), 20);
  const unsigned char expected[20] = {2,    0,    0, 0, 0, 0, 0, 0, 0, 0,
                                      0xF8, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0};
  EXPECT_EQ(std::memcmp(buffer, expected, 20), 0);

  // An equal length is written in place, into every sharer.
  D b = Of<D>({0, 0});
  const D sharer = b.Mid(0, 2);
  EXPECT_EQ(zrFromMem(buffer, b), 20);
  EXPECT_EQ(Values(sharer), std::vector<double>({1.5, -2.0}));
  // Another length takes a block of its own; zero empties the array.
  D c = Of<D>({9, 9, 9});
  EXPECT_EQ(c.FromMem(buffer), 20);
  EXPECT_EQ(c, a);
  const unsigned char none[4] = {0, 0, 0, 0};
  EXPECT_TRUE(c.FromMem(none) == 4 && c.Len() == 0);
  const unsigned char negative[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(BadParametersText([&] { b.FromMem(negative); }),
            "Invalid parameters : zrNewWithRef : n <= 0 ");
  EXPECT_EQ(Values(b), std::vector<double>({1.5, -2.0}));
}
