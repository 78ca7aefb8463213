// The version macros, reached through the library's one header, against the version the
// build was configured with.
#include <gtest/gtest.h>

#include <string>

#include "zr/zr.h"

namespace {

// Usable by the preprocessor, as code that supports several releases needs them.
#if !defined(ZR_VERSION) || \
    ZR_VERSION != ZR_VERSION_MAJOR * 10000 + ZR_VERSION_MINOR * 100 + ZR_VERSION_PATCH
#error "ZR_VERSION is not one number made of MAJOR, MINOR and PATCH"
#endif

TEST(Version, MacrosAreTheProjectVersion) {
  EXPECT_EQ(ZR_VERSION_MAJOR, ZR_TEST_PROJECT_VERSION_MAJOR);
  EXPECT_EQ(ZR_VERSION_MINOR, ZR_TEST_PROJECT_VERSION_MINOR);
  EXPECT_EQ(ZR_VERSION_PATCH, ZR_TEST_PROJECT_VERSION_PATCH);
  EXPECT_EQ(ZR_VERSION, ZR_TEST_PROJECT_VERSION_MAJOR * 10000 +
                            ZR_TEST_PROJECT_VERSION_MINOR * 100 + ZR_TEST_PROJECT_VERSION_PATCH);
  EXPECT_EQ(std::string(ZR_VERSION_STRING), ZR_TEST_PROJECT_VERSION);
}

}  // namespace
