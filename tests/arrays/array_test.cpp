// zrArray<T>: element-wise arithmetic by the element type's own operators, reductions in
// index order, in-place selection, sorted insertion and the flat form.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using C = zrComplex;

template <class T>
zrArray<T> Of(std::initializer_list<T> values) {
  zrArray<T> a;
  for (const T& v : values) a.push_back(v);
  return a;
}

template <class T>
std::vector<T> Values(const zrArray<T>& a) {
  return std::vector<T>(a.begin(), a.end());
}

// Small values that every scalar element type holds exactly.
template <class T>
void CheckScalarElementType(const char* name) {
  SCOPED_TRACE(name);
  using V = std::vector<T>;
  zrArray<T> a = Of<T>({T(8), T(2), T(6)});
  EXPECT_EQ(Values(a + Of<T>({T(1), T(1), T(1)})), V({T(9), T(3), T(7)}));
  EXPECT_EQ(Values(a / Of<T>({T(4), T(2), T(4)})), V({T(2), T(1), T(6) / T(4)}));
  EXPECT_EQ(Values(a.Max(Of<T>({T(1), T(5), T(6)}))), V({T(8), T(5), T(6)}));
  EXPECT_EQ(a.Mul(), T(96));
  EXPECT_EQ((a > T(1)) + (a > T(2)), 1);

  EXPECT_EQ(zrMemSize(a), static_cast<int>(4 + 3 * sizeof(T)));
  EXPECT_EQ(a.Median(), T(6));
}

}  // namespace

TEST(Array, EveryElementType) {
#define ZR_TEST_ELEMENT_TYPE(T) CheckScalarElementType<T>(#T);
  ZR_SIMPLE_ARRAY_SCALAR_TYPES(ZR_TEST_ELEMENT_TYPE)
#undef ZR_TEST_ELEMENT_TYPE

  // Each instantiation, of either class, has an identity of its own, although their Type
  // functions are alike: a linker folding identical code must not merge them.
  std::set<std::uint64_t> ids;
#define ZR_ADD_IDENTITIES(T) ids.insert({zrArray<T>().GetType(), zrSimpleArray<T>().GetType()});
  ZR_ARRAY_TYPES(ZR_ADD_IDENTITIES)
#undef ZR_ADD_IDENTITIES
  EXPECT_EQ(ids.size(), 2u * 9);
}

TEST(Array, ValueElementsFollowTheirOwnOperators) {
  // Ordered by modulus (5, 1, 6, 2.2); by real part the answers would be 0, 2 and C(0, 1).
  zrArray<C> z = Of<C>({C(3, 4), C(0, 1), C(-6, 0), C(1, -2)});
  EXPECT_EQ(z.MaxIndex(), 2);
  EXPECT_EQ(z.MinIndex(), 1);
  EXPECT_EQ(z.Median(), C(1, -2));

  zrArray<C> a = Of<C>({C(1, 2), C(3, -1)});
  const zrArray<C> b = Of<C>({C(2, 1), C(0, 1)});
  EXPECT_EQ(a * b, Of<C>({C(0, 5), C(1, 3)}));
  a *= b;  // adds, as zrComplex::operator*= does
  EXPECT_EQ(a, Of<C>({C(3, 3), C(3, 0)}));

  EXPECT_EQ(Of<zrVec2>({zrVec2(1, 2), zrVec2(3, 4)}).Sum(), zrVec2(4, 6));
}

TEST(Array, WindowsShareAndCopiesDoNot) {
  zrArray<double> a = Of({1.0, 2.0, 3.0, 4.0});
  a.Mid(1, 2) += 10.0;  // in place, through the shared block
  EXPECT_EQ(Values(a), std::vector<double>({1, 12, 13, 4}));
  a.Right(2) = Of({7.0, 8.0});  // equal length: written into a's elements
  EXPECT_EQ(Values(a), std::vector<double>({1, 12, 7, 8}));

  zrArray<double> sum = a + 0.0;
  sum[0] = -1;
  EXPECT_EQ(a[0], 1);
  // A scalar operand that is an element of the array is read once, before the loop.
  a[0] = 2;
  a /= a[0];
  EXPECT_EQ(Values(a), std::vector<double>({1, 6, 3.5, 4}));
}

TEST(Array, ReductionsAndComparisons) {
  const zrArray<double> one = Of({1.0});
  zrArray<double> two = Of({1.0, 2.0});
  const std::string different = "Invalid parameters : Different range";
  EXPECT_EQ(BadParametersText([&] { two += one; }), different);
  EXPECT_EQ(BadParametersText([&] { (void)(two < one); }), different);
  EXPECT_EQ((two == one), 0);

  zrArray<double> empty;
  EXPECT_EQ(BadParametersText([&] { empty.Sum(); }), "Invalid parameters : Array length is zero.");
  EXPECT_EQ(BadParametersText([&] { empty.Median(); }),
            "Invalid parameters : Lenght of array is equl zero.");

  // Every condition holds vacuously on an empty array; NaN is unequal to itself.
  EXPECT_EQ((empty == 5.0) + (empty < 5.0) + (empty > 5.0) + (empty <= empty), 4);
  EXPECT_EQ((empty != 5.0), 0);
  const zrArray<double> nan = Of({std::numeric_limits<double>::quiet_NaN()});
  EXPECT_EQ((nan == nan), 0);

  // Left to right, 1 + 1e16 rounds to 1e16; any other order keeps the 1.
  EXPECT_EQ(Of({1.0, 1e16, -1e16}).Sum(), 0.0);
  // x * x rounds to 1 + 2^-29; a fused multiply-add would keep the 2^-60.
  const double x = 1 + std::ldexp(1.0, -30);
  EXPECT_EQ(Of({-1.0, x}).ScalarMul(Of({1 + std::ldexp(1.0, -29), x})), 0.0);

  EXPECT_EQ(Of({2, 7, 7}).MaxIndex(), 1);
  EXPECT_EQ(Of({1, 0, 0}).MinIndex(), 1);
  EXPECT_EQ(Of({2, -3, 4}).GetNoPositive(), Of({0, -3, 0}));
}

TEST(Array, MedianSelectsTheLowerMiddleInPlace) {
  std::mt19937 random(7);
  for (int n = 1; n <= 40; ++n) {
    zrArray<int> b;  // many ties
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
  zrArray<int> a = Of({1, 3, 9});
  int found = -1;
  EXPECT_EQ(a.InsertIfNotExistB(5, found, 1), 2);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(a.InsertIfNotExistB(5, found, 1), 2);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(Values(a), std::vector<int>({1, 3, 5, 9}));

  zrArray<int> down = Of({9, 3});
  EXPECT_EQ(down.InsertIfNotExistB(4, found, 0), 1);
  zrArray<int> empty;
  EXPECT_EQ(empty.InsertIfNotExistB(4, found, 1), 0);
  EXPECT_EQ(Values(empty), std::vector<int>({4}));
}

TEST(Array, FlatForm) {
  const zrArray<double> a = Of({1.5, -2.0});
  unsigned char buffer[20];
  ASSERT_EQ(a.ToMem(buffer), 20);
  const unsigned char expected[20] = {2,    0,    0, 0, 0, 0, 0, 0, 0, 0,
                                      0xF8, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0};
  EXPECT_EQ(std::memcmp(buffer, expected, 20), 0);
  // One complex element holds the same two doubles after its length.
  unsigned char complex[20];
  ASSERT_EQ(Of<C>({C(1.5, -2.0)}).ToMem(complex), 20);
  EXPECT_EQ(complex[0], 1);
  EXPECT_EQ(std::memcmp(complex + 1, expected + 1, 19), 0);

  // An equal length is written in place, into every sharer.
  zrArray<double> b = Of({0.0, 0.0});
  const zrArray<double> sharer = b.Mid(0, 2);
  EXPECT_EQ(zrFromMem(buffer, b), 20);
  EXPECT_EQ(Values(sharer), std::vector<double>({1.5, -2.0}));

  // Another length takes a block of its own; zero empties the array.
  zrArray<double> c = Of({9.0, 9.0, 9.0});
  EXPECT_EQ(c.FromMem(buffer), 20);
  EXPECT_EQ(c, a);

  const unsigned char none[4] = {0, 0, 0, 0};
  EXPECT_EQ(c.FromMem(none), 4);
  EXPECT_EQ(c.Len(), 0);
  const unsigned char negative[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(BadParametersText([&] { b.FromMem(negative); }),
            "Invalid parameters : zrNewWithRef : n <= 0 ");
  EXPECT_EQ(Values(b), std::vector<double>({1.5, -2.0}));
}

TEST(Array, CompoundOperatorsReadAnOverlappingOperandAsItWas) {
  zrArray<int> a = Of<int>({1, 2, 3, 4, 5});
  a.Mid(1, 4) += a.Left(4);  // each element plus the one before it, as they were
  EXPECT_EQ(Values(a), (std::vector<int>{1, 3, 5, 7, 9}));
  a.Left(4) -= a.Mid(1, 4);
  EXPECT_EQ(Values(a), (std::vector<int>{-2, -2, -2, -2, 9}));
  a *= a;  // the same elements: each read before it is written
  EXPECT_EQ(Values(a), (std::vector<int>{4, 4, 4, 4, 81}));
}
