// The kernel levels side by side: every level this machine runs must give the plain
// level's results bit for bit, or throw the same text.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "zr/core/detail/machine.h"
#include "zr/core/exceptions.h"

namespace zr_test {

// The levels this machine runs, plain first.
inline std::vector<zr::detail::Level> Levels() {
  std::vector<zr::detail::Level> out;
  for (int l = 0; l <= static_cast<int>(zr::detail::HighestLevel()); ++l)
    out.push_back(static_cast<zr::detail::Level>(l));
  return out;
}

// What one run gave: the doubles it produced, or the text it threw.
struct Outcome {
  std::vector<double> values;
  std::string thrown;
};

// Runs run() once at each level, pinned, and expects every outcome to equal the plain
// level's: the same doubles bit for bit (NaN payloads and signed zeros included), or
// BadParameters with the same text. run returns std::vector<double>.
template <class F>
void ExpectLevelsAgree(F&& run) {
  Outcome plain;
  for (zr::detail::Level level : Levels()) {
    SCOPED_TRACE(zr::detail::LevelName(level));
    Outcome got;
    {
      zr::detail::LevelOverride pin(level);
      try {
        got.values = run();
      } catch (const BadParameters& e) {
        got.thrown = e.GetMessageText();
      }
    }
    if (level == zr::detail::Level::kPlain) {
      plain = got;
      continue;
    }
    EXPECT_EQ(got.thrown, plain.thrown);
    ASSERT_EQ(got.values.size(), plain.values.size());
    for (std::size_t i = 0; i < got.values.size(); ++i) {
      std::uint64_t a, b;
      std::memcpy(&a, &got.values[i], sizeof a);
      std::memcpy(&b, &plain.values[i], sizeof b);
      if (a != b) {
        ADD_FAILURE() << "element " << i << ": " << got.values[i] << " at this level, "
                      << plain.values[i] << " plain";
        return;
      }
    }
  }
}

// Doubles of mixed signs and magnitudes from a fixed recurrence, so that rounding
// differences between two orders of evaluation show.
inline std::vector<double> Mixed(std::size_t n, std::uint64_t seed) {
  std::vector<double> out(n);
  std::uint64_t s = seed * 6364136223846793005ull + 1442695040888963407ull;
  for (double& x : out) {
    s = s * 6364136223846793005ull + 1442695040888963407ull;
    const double unit = static_cast<double>(s >> 11) / 9007199254740992.0;  // [0, 1)
    x = (unit - 0.5) * (1.0 + static_cast<double>((s >> 3) & 7));
  }
  return out;
}

}  // namespace zr_test
