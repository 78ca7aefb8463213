/// \file
/// The machine under the kernels: which instruction-set level runs, a scoped override
/// that pins one, aligned scratch space, and portable prefetch and bit-scan helpers.
/// The library's own header, never installed; every kernel family of zr/<sub>/detail/
/// takes its level and its scratch from here.
///
/// Levels, lowest first:
///   kPlain     the class templates' own loops, in the documented order: the reference
///              every other level is compared with, bit for bit;
///   kPortable  the blocked kernels written in plain C++ (no intrinsics);
///   kAvx2      256-bit kernels (AVX2; the vector code needs nothing beyond it);
///   kAvx512    512-bit kernels (AVX-512F).
/// A build without x86-64 intrinsics (another compiler or processor, or ZR_PORTABLE)
/// stops at kPortable. Every level gives the bits of kPlain.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zr/core/export.h"
#include "zr/core/memory.h"

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#endif

// ZR_X86_KERNELS is 1 where the intrinsic kernels are compiled: GCC or Clang on x86-64,
// unless ZR_PORTABLE asks for the portable code alone. Such a kernel is a function marked
// ZR_TARGET_AVX2 or ZR_TARGET_AVX512 and is called only at that level or above.
#if !defined(ZR_PORTABLE) && (defined(__GNUC__) || defined(__clang__)) && defined(__x86_64__)
#define ZR_X86_KERNELS 1
#define ZR_TARGET_AVX2 __attribute__((target("avx2")))
#define ZR_TARGET_AVX512 __attribute__((target("avx512f")))
#else
#define ZR_X86_KERNELS 0
#endif

namespace zr::detail {

enum class Level : int { kPlain = 0, kPortable = 1, kAvx2 = 2, kAvx512 = 3 };

/// The highest level this processor and build run (found once).
ZR_API Level HighestLevel();

/// The level the kernels run at now: the highest, or what the innermost LevelOverride
/// pinned, never above the highest.
ZR_API Level CurrentLevel();

/// "plain", "portable", "avx2", "avx512".
ZR_API const char* LevelName(Level level);

/// The core the kernels run on, as far as their blocking cares: its data caches and how
/// it issues 512-bit operations. Found once, from CPUID on x86-64 (the deterministic cache
/// leaves: 4 on Intel, 0x8000001D on AMD; sizes per core, shared caches not divided);
/// elsewhere, or where a leaf is missing, 32 KiB and 1 MiB. The blocks sized from them
/// only move where partial sums pass through memory, never a result's bits.
struct CoreInfo {
  char vendor[13];  // CPUID's vendor text ("" off x86-64)
  int family;       // display family and model (base plus extended)
  int model;
  long l1d;             // bytes of first-level data cache
  long l2;              // bytes of second-level cache
  bool half_width_512;  // 512-bit operations run as two 256-bit halves (AMD family 19h)
};

/// This machine's core (found once).
ZR_API const CoreInfo& ThisCore();

/// Pins the kernels' level for its lifetime (clamped to HighestLevel()) and restores the
/// one before when it ends; overrides nest. Process-wide: for tests and benchmarks, which
/// pin levels from one thread while no other thread runs a kernel.
class ZR_API LevelOverride {
 public:
  explicit LevelOverride(Level level);
  ~LevelOverride();
  LevelOverride(const LevelOverride&) = delete;
  LevelOverride& operator=(const LevelOverride&) = delete;

 private:
  int before_;
};

/// Uninitialised scratch of `count` T from zrMalloc (so a failure throws zrErrNoMemory),
/// aligned to 64 bytes, freed with the object. T must be trivial.
template <class T>
class Scratch {
 public:
  explicit Scratch(std::uint64_t count)
      : raw_(count == 0 ? nullptr : zrMalloc(count * sizeof(T) + 64)) {}
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { zrFree(raw_); }

  T* get() const {
    const auto at = (reinterpret_cast<std::uintptr_t>(raw_) + 63) & ~std::uintptr_t{63};
    return raw_ ? reinterpret_cast<T*>(at) : nullptr;
  }
  T& operator[](std::ptrdiff_t i) const { return get()[i]; }

 private:
  void* raw_;
};

/// A hint that p will be read (or, with write, written) soon; nothing where the compiler
/// offers no hint.
inline void Prefetch(const void* p, bool write = false) {
#if defined(__GNUC__) || defined(__clang__)
  if (write) {
    __builtin_prefetch(p, 1);
  } else {
    __builtin_prefetch(p, 0);
  }
#else
  (void)p;
  (void)write;
#endif
}

/// The index of the lowest set bit of x, which must not be 0.
inline int LowestBit(std::uint32_t x) {
#if defined(__GNUC__) || defined(__clang__)
  return __builtin_ctz(x);
#elif defined(_MSC_VER)
  unsigned long i;
  _BitScanForward(&i, x);
  return static_cast<int>(i);
#else
  int i = 0;
  while (!(x & 1u)) {
    x >>= 1;
    ++i;
  }
  return i;
#endif
}

}  // namespace zr::detail
