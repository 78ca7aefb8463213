// Element-type traits, zrIntLog2 and the version macros.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "zr/zr.h"

// Usable by the preprocessor, as code that supports several releases needs them.
#if !defined(ZR_VERSION) || \
    ZR_VERSION != ZR_VERSION_MAJOR * 10000 + ZR_VERSION_MINOR * 100 + ZR_VERSION_PATCH
#error "ZR_VERSION is not one number made of MAJOR, MINOR and PATCH"
#endif

TEST(zrType, NamesCodesAndHighBits) {
  std::vector<std::string> traits;
#define ZR_TEST_TRAITS(T)                          \
  traits.push_back(zrType<T>::GetValueTypeName() + \
                   (":" + std::to_string(zrType<T>::GetTypeCode())));
  ZR_FOR_EACH_SCALAR(ZR_TEST_TRAITS)
#undef ZR_TEST_TRAITS
  EXPECT_EQ(traits,
            std::vector<std::string>({"UInt8:1", "Int8:2", "UInt16:3", "Int16:4", "UInt32:5",
                                      "Int32:6", "Int64:7", "Real32:11", "Real64:12"}));
  // The highest magnitude bit: the top bit unsigned, the one below the sign signed.
  EXPECT_TRUE(zrType<unsigned short>::GetUHightBit() == 0x8000 &&
              zrType<char>::GetUHightBit() == 0x40);
}

TEST(zrIntLog2, IsTheFloorOfTheBinaryLogarithm) {
  const int cases[][2] = {{0, -1}, {1, 0}, {3, 1}, {1024, 10}, {INT_MAX, 30}};
  for (const auto& c : cases) EXPECT_EQ(zrIntLog2(c[0]), c[1]) << c[0];
}

TEST(Version, MacrosAreTheProjectVersion) {
  EXPECT_EQ(std::string(ZR_VERSION_STRING), ZR_TEST_PROJECT_VERSION);
}
