#include "zr/core/detail/machine.h"

#include <atomic>

namespace zr::detail {
namespace {

Level Detect() {
#if ZR_X86_KERNELS
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return Level::kAvx512;
  if (__builtin_cpu_supports("avx2")) return Level::kAvx2;
#endif
  return Level::kPortable;
}

// The pinned level, or -1 for the highest.
std::atomic<int> g_pinned{-1};

}  // namespace

Level HighestLevel() {
  static const Level highest = Detect();
  return highest;
}

Level CurrentLevel() {
  const int pinned = g_pinned.load(std::memory_order_relaxed);
  const Level highest = HighestLevel();
  if (pinned < 0 || pinned > static_cast<int>(highest)) return highest;
  return static_cast<Level>(pinned);
}

const char* LevelName(Level level) {
  switch (level) {
    case Level::kPlain:
      return "plain";
    case Level::kPortable:
      return "portable";
    case Level::kAvx2:
      return "avx2";
    case Level::kAvx512:
      return "avx512";
  }
  return "?";
}

LevelOverride::LevelOverride(Level level)
    : before_(g_pinned.exchange(static_cast<int>(level), std::memory_order_relaxed)) {}

LevelOverride::~LevelOverride() { g_pinned.store(before_, std::memory_order_relaxed); }

}  // namespace zr::detail
