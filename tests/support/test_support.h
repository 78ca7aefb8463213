// Small helpers shared by the test programs.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "zr/core/exceptions.h"

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

}  // namespace zr_test
