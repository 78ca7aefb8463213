// Element-type traits, the flat form of the scalars, zrIntLog2 and the random numbers.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "zr/zr.h"

namespace {

// Name, code, signedness and high bit (0 for the floating types, which have none) of
// every scalar, in the order ZR_FOR_EACH_SCALAR lists the types.
using Traits = std::tuple<std::string, int, bool, unsigned long long>;

const std::vector<Traits> kExpected = {
    {"UInt8", 1, false, 0x80},
    {"Int8", 2, true, 0x40},
    {"UInt16", 3, false, 0x8000},
    {"Int16", 4, true, 0x4000},
    {"UInt32", 5, false, 0x80000000},
    {"Int32", 6, true, 0x40000000},
    {"Int64", 7, true, 0x4000000000000000},
    {"Real32", 11, true, 0},
    {"Real64", 12, true, 0},
};

template <class T, class = void>
struct HasHighBit : std::false_type {};
template <class T>
struct HasHighBit<T, std::void_t<decltype(zrType<T>::GetUHightBit())>> : std::true_type {};

template <class T>
Traits TraitsOf() {
  unsigned long long high_bit = 0;
  if constexpr (HasHighBit<T>::value) {
    static_assert(std::is_same_v<decltype(zrType<T>::GetUHightBit()), T>);
    high_bit = static_cast<std::make_unsigned_t<T>>(zrType<T>::GetUHightBit());
  }
  return {zrType<T>::GetValueTypeName(), zrType<T>::GetTypeCode(), zrType<T>::IsSigned(), high_bit};
}

// The traits answer at compile time.
static_assert(zrType<char>::GetUHightBit() == 0x40 && !HasHighBit<float>::value &&
              !HasHighBit<double>::value);

// The recurrence of rnd(), from the state a draw r = x / 12703.0 reveals.
int StateOf(double r) { return static_cast<int>(std::lround(r * 12703)); }
int NextState(int x) {
  x = 113 * x - 12703 * (x / 113);
  return x > 12703 ? x - 12703 : x;
}
double Value(int x) { return x / 12703.0; }

}  // namespace

TEST(zrType, MatchesTheTableForEveryScalar) {
#define ZR_TEST_TRAITS(T) TraitsOf<T>(),
  EXPECT_EQ(std::vector<Traits>({ZR_FOR_EACH_SCALAR(ZR_TEST_TRAITS)}), kExpected);
#undef ZR_TEST_TRAITS
  // std::int64_t may be another type than long long; both are "Int64".
  EXPECT_EQ(TraitsOf<std::int64_t>(), kExpected[6]);
  EXPECT_STREQ(zrType<zrComplex>::GetValueTypeName(), "Complex");
}

TEST(FlatForm, ScalarsAreTheirNativeBytesBackToBack) {
  // Written at an odd offset, one after another by the returned counts.
  unsigned char buffer[64];
  std::memset(buffer, 0xEE, sizeof buffer);
  unsigned char* at = buffer + 1;
#define ZR_TEST_WRITE(T)                                          \
  EXPECT_EQ(zrMemSize(static_cast<T>(-3)), int{sizeof(T)}) << #T; \
  at += zrToMem(at, static_cast<T>(-3));
  ZR_FOR_EACH_SCALAR(ZR_TEST_WRITE)
#undef ZR_TEST_WRITE
  ASSERT_EQ(at - buffer, 1 + 34);  // 1+1+2+2+4+4+8 integer bytes, 4+8 floating
  EXPECT_EQ(*at, 0xEE);

  // Little-endian integers and IEEE-754 values: the int is FD FF FF FF, the double
  // -3.0 is 00 .. 00 08 C0.
  EXPECT_EQ(std::memcmp(buffer + 1 + 10, "\xFD\xFF\xFF\xFF", 4), 0);
  EXPECT_EQ(std::memcmp(buffer + 1 + 26, "\0\0\0\0\0\0\x08\xC0", 8), 0);

  const unsigned char* from = buffer + 1;
  const auto read = [&from](auto v) {
    from += zrFromMem(from, v);
    return v;
  };
#define ZR_TEST_READ(T) EXPECT_EQ(read(static_cast<T>(0)), static_cast<T>(-3)) << #T;
  ZR_FOR_EACH_SCALAR(ZR_TEST_READ)
#undef ZR_TEST_READ
  EXPECT_EQ(from - buffer, 1 + 34);
}

TEST(zrIntLog2, IsTheFloorOfTheBinaryLogarithm) {
  const int cases[][2] = {{INT_MIN, -1}, {-5, -1},  {0, -1},    {1, 0},       {2, 1},
                          {3, 1},        {1023, 9}, {1024, 10}, {INT_MAX, 30}};
  for (const auto& c : cases) EXPECT_EQ(zrIntLog2(c[0]), c[1]) << c[0];
}

TEST(Random, DerivedDistributionsUseTheirDrawsInOrder) {
  int x = NextState(StateOf(rnd()));
  EXPECT_EQ(randab(-3.0, 5.0), -3.0 + Value(x) * (5.0 - -3.0));

  double sum = 0.0;
  for (int i = 0; i < 12; ++i) sum += Value(x = NextState(x));
  EXPECT_EQ(Normal(10.0, 2.0), (sum - 6.0) * 2.0 + 10.0);

  x = NextState(x);
  EXPECT_EQ(NegExp(0.5), -std::log(Value(x)) / 0.5);

  // Nothing more was drawn than the formulas use.
  EXPECT_EQ(rnd(), Value(NextState(x)));
}
