// Shared by the fuzz targets: a failed check names itself and aborts, which libFuzzer
// reports as a crash and saves the input that caused it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#define ZR_FUZZ_CHECK(cond)                                                         \
  do {                                                                              \
    if (!(cond)) {                                                                  \
      std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond); \
      std::abort();                                                                 \
    }                                                                               \
  } while (0)

namespace zr_fuzz {

// Where p lies relative to base, computed on addresses so that a pointer outside the
// buffer is reported by a check instead of being undefined arithmetic.
inline std::int64_t Offset(const char* p, const char* base) {
  return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(p) -
                                   reinterpret_cast<std::uintptr_t>(base));
}

}  // namespace zr_fuzz
