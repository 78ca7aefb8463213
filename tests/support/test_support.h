// Small helpers shared by the test programs.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>

#include "zr/core/exceptions.h"
#include "zr/values/values.h"

// EXPECT_EQ compares the value types with their exact operator==; these make its
// failures readable.
inline void PrintTo(const zrComplex& z, std::ostream* os) { *os << z.Re() << ", " << z.Im(); }
inline void PrintTo(const zrVec2& v, std::ostream* os) { *os << v.X() << ", " << v.Y(); }
inline void PrintTo(const zrTVec3<double>& v, std::ostream* os) {
  *os << v.X() << ", " << v.Y() << ", " << v.Z();
}

namespace zr_test {

// The text a handler reads from the BadParameters that f throws (prefix included).
template <class F>
std::string BadParametersText(F&& f) {
  try {
    f();
  } catch (const BadParameters& e) {
    return e.GetMessageText();
  }
  ADD_FAILURE() << "BadParameters was not thrown";
  return {};
}

// The out-of-memory text for `size`: the library's fixed format as this C library
// formats it.
inline std::string NoMemoryText(std::uint64_t size) {
  char text[zrExceptionWithMessage::kMessageSize];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
  std::snprintf(text, sizeof text, "be not sufficient %l byte",
                static_cast<unsigned long long>(size));
#pragma GCC diagnostic pop
  return text;
}

// The bits of a double and back, for NaN payloads and signed zeros.
inline std::uint64_t Bits(double d) {
  std::uint64_t u;
  std::memcpy(&u, &d, sizeof u);
  return u;
}
inline double FromBits(std::uint64_t u) {
  double d;
  std::memcpy(&d, &u, sizeof d);
  return d;
}

}  // namespace zr_test
