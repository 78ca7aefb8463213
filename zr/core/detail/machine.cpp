#include "zr/core/detail/machine.h"

#include <atomic>
#include <cstring>

#if ZR_X86_KERNELS
#include <cpuid.h>
#endif

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

#if ZR_X86_KERNELS
// The size in bytes of the data or unified cache of `level` among the subleaves of a
// deterministic cache leaf, or 0.
long CacheBytes(unsigned leaf, int level) {
  for (unsigned sub = 0; sub < 16; ++sub) {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid_count(leaf, sub, &a, &b, &c, &d)) return 0;
    const unsigned type = a & 31u;  // 1 data, 2 instruction, 3 unified; 0 ends the list
    if (type == 0) return 0;
    if (type == 2 || static_cast<int>((a >> 5) & 7u) != level) continue;
    const long ways = ((b >> 22) & 0x3ffu) + 1, parts = ((b >> 12) & 0x3ffu) + 1;
    const long line = (b & 0xfffu) + 1, sets = static_cast<long>(c) + 1;
    return ways * parts * line * sets;
  }
  return 0;
}
#endif

CoreInfo DetectCore() {
  CoreInfo core{};
  core.l1d = 32L << 10;
  core.l2 = 1L << 20;
#if ZR_X86_KERNELS
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (!__get_cpuid(0, &a, &b, &c, &d)) return core;
  std::memcpy(core.vendor, &b, 4);
  std::memcpy(core.vendor + 4, &d, 4);
  std::memcpy(core.vendor + 8, &c, 4);
  const bool amd = std::strcmp(core.vendor, "AuthenticAMD") == 0;
  if (__get_cpuid(1, &a, &b, &c, &d)) {
    const int base = static_cast<int>((a >> 8) & 15u);
    core.family = base == 15 ? base + static_cast<int>((a >> 20) & 255u) : base;
    core.model = static_cast<int>((a >> 4) & 15u);
    if (base == 15 || base == 6) core.model |= static_cast<int>((a >> 16) & 15u) << 4;
  }
  const unsigned leaf = amd ? 0x8000001Du : 4u;
  if (static_cast<unsigned>(__get_cpuid_max(leaf & 0x80000000u, nullptr)) >= leaf) {
    if (const long l1 = CacheBytes(leaf, 1)) core.l1d = l1;
    if (const long l2 = CacheBytes(leaf, 2)) core.l2 = l2;
  }
  core.half_width_512 = amd && core.family == 0x19 && HighestLevel() == Level::kAvx512;
#endif
  return core;
}

// The pinned level, or -1 for the highest.
std::atomic<int> g_pinned{-1};

}  // namespace

Level HighestLevel() {
  static const Level highest = Detect();
  return highest;
}

const CoreInfo& ThisCore() {
  static const CoreInfo core = DetectCore();
  return core;
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
