// Puts the compiler, the build flags and the machine's measured peak into every benchmark
// program's context (the "context" object of the JSON output), so that a table of results
// can say how the library and the benchmarks were compiled and what fraction of one core
// a GFLOP/s figure is.
//
// The peak: double precision, one thread, separate multiplies and adds (never fused: the
// library's loops round after each multiply, so a fused rate is no ceiling for them), at
// the widest vector level the library itself runs here (AVX-512, AVX2, else SSE2). Eight
// chains of multiplies and eight of adds, each its own register, so that the latency of
// one operation is hidden behind the others and only the issue rate remains. One
// multiply and one add count as 2 operations. The best of a few short trials after a
// warm-up (a few tens of milliseconds in all), so that a trial that lost the core to
// other work does not lower it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>

#include "build_info.h"
#include "zr/core/detail/machine.h"

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
// Its own target attributes: the library's are not there in a build of portable kernels.
#define ZR_BENCH_X86 1
#define ZR_BENCH_AVX512 __attribute__((target("avx512f")))
#define ZR_BENCH_AVX2 __attribute__((target("avx2")))
#include <immintrin.h>
#else
#define ZR_BENCH_X86 0
#endif

namespace {

constexpr int kChains = 8;  // of multiplies, and as many of adds

// 1 and 0 the compiler cannot see through, so that no multiply or add is folded away.
volatile double one = 1.0;
volatile double zero = 0.0;
volatile double sink;

// Each function runs `rounds` rounds of kChains vector multiplies and kChains vector adds
// and leaves the sum of the chains in `sink`.
#if ZR_BENCH_X86
ZR_BENCH_AVX512 void Rounds512(std::int64_t rounds) {
  // Loads and stores rather than set1 and reduce, whose expansion GCC 12 warns about.
  double fill[kChains][8];
  for (int k = 0; k < kChains; ++k) std::fill_n(fill[k], 8, k == 0 ? one : k == 1 ? zero : k);
  const __m512d c = _mm512_loadu_pd(fill[0]), d = _mm512_loadu_pd(fill[1]);
  __m512d p[kChains], s[kChains];
  for (int k = 0; k < kChains; ++k) p[k] = s[k] = _mm512_loadu_pd(fill[k]);
  for (std::int64_t r = 0; r < rounds; ++r) {
#pragma GCC unroll 8
    for (int k = 0; k < kChains; ++k) {
      p[k] = _mm512_mul_pd(p[k], c);
      s[k] = _mm512_add_pd(s[k], d);
    }
  }
  __m512d t = _mm512_add_pd(p[0], s[0]);
  for (int k = 1; k < kChains; ++k) t = _mm512_add_pd(t, _mm512_add_pd(p[k], s[k]));
  double lanes[8];
  _mm512_storeu_pd(lanes, t);
  sink = lanes[0] + lanes[7];
}

ZR_BENCH_AVX2 void Rounds256(std::int64_t rounds) {
  const __m256d c = _mm256_set1_pd(one), d = _mm256_set1_pd(zero);
  __m256d p[kChains], s[kChains];
  for (int k = 0; k < kChains; ++k) p[k] = s[k] = _mm256_set1_pd(1.0 + k);
  for (std::int64_t r = 0; r < rounds; ++r) {
#pragma GCC unroll 8
    for (int k = 0; k < kChains; ++k) {
      p[k] = _mm256_mul_pd(p[k], c);
      s[k] = _mm256_add_pd(s[k], d);
    }
  }
  __m256d t = _mm256_setzero_pd();
  for (int k = 0; k < kChains; ++k) t = _mm256_add_pd(t, _mm256_add_pd(p[k], s[k]));
  double lanes[4];
  _mm256_storeu_pd(lanes, t);
  sink = lanes[0] + lanes[1] + lanes[2] + lanes[3];
}

void Rounds128(std::int64_t rounds) {
  const __m128d c = _mm_set1_pd(one), d = _mm_set1_pd(zero);
  __m128d p[kChains], s[kChains];
  for (int k = 0; k < kChains; ++k) p[k] = s[k] = _mm_set1_pd(1.0 + k);
  for (std::int64_t r = 0; r < rounds; ++r) {
#pragma GCC unroll 8
    for (int k = 0; k < kChains; ++k) {
      p[k] = _mm_mul_pd(p[k], c);
      s[k] = _mm_add_pd(s[k], d);
    }
  }
  __m128d t = _mm_setzero_pd();
  for (int k = 0; k < kChains; ++k) t = _mm_add_pd(t, _mm_add_pd(p[k], s[k]));
  double lanes[2];
  _mm_storeu_pd(lanes, t);
  sink = lanes[0] + lanes[1];
}
#endif

// Scalar chains, where there are no x86 vectors.
void RoundsScalar(std::int64_t rounds) {
  const double c = one, d = zero;
  double p[kChains], s[kChains];
  for (int k = 0; k < kChains; ++k) p[k] = s[k] = 1.0 + k;
  for (std::int64_t r = 0; r < rounds; ++r) {
#pragma GCC unroll 8
    for (int k = 0; k < kChains; ++k) {
      p[k] = p[k] * c;
      s[k] = s[k] + d;
    }
  }
  double t = 0;
  for (int k = 0; k < kChains; ++k) t += p[k] + s[k];
  sink = t;
}

struct Peak {
  double gflops;
  const char* path;
};

Peak MeasurePeak() {
  using zr::detail::Level;
  void (*rounds)(std::int64_t) = RoundsScalar;
  int lanes = 1;
  const char* path = "scalar";
#if ZR_BENCH_X86
  const Level level = zr::detail::HighestLevel();
  if (level >= Level::kAvx512) {
    rounds = Rounds512, lanes = 8, path = zr::detail::LevelName(level);
  } else if (level >= Level::kAvx2) {
    rounds = Rounds256, lanes = 4, path = zr::detail::LevelName(level);
  } else {
    rounds = Rounds128, lanes = 2, path = "sse2";
  }
#endif
  constexpr std::int64_t kRounds = 1 << 16;
  rounds(8 * kRounds);  // warm-up: the core leaves its idle clock and vector power state
  double best = 0;
  for (int trial = 0; trial < 15; ++trial) {
    const auto start = std::chrono::steady_clock::now();
    rounds(kRounds);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    best = std::max(best, 2.0 * kChains * lanes * static_cast<double>(kRounds) / took.count());
  }
  return {best / 1e9, path};
}

const bool registered = [] {
  benchmark::AddCustomContext("zr_compiler", ZR_BENCH_COMPILER);
  benchmark::AddCustomContext("zr_build_type", ZR_BENCH_BUILD_TYPE);
  benchmark::AddCustomContext("zr_cxx_flags", ZR_BENCH_CXX_FLAGS);
  const Peak peak = MeasurePeak();
  char gflops[32];
  std::snprintf(gflops, sizeof gflops, "%.1f", peak.gflops);
  benchmark::AddCustomContext("zr_peak_gflops", gflops);
  benchmark::AddCustomContext("zr_peak_path", peak.path);
  // The core as the kernels' blocking sees it.
  const zr::detail::CoreInfo& core = zr::detail::ThisCore();
  char text[160];
  std::snprintf(text, sizeof text, "%s family %xh model %xh, L1d %ld KiB, L2 %ld KiB, 512-bit %s",
                core.vendor[0] ? core.vendor : "?", core.family, core.model, core.l1d >> 10,
                core.l2 >> 10,
                zr::detail::HighestLevel() < zr::detail::Level::kAvx512 ? "none"
                : core.half_width_512                                   ? "in halves"
                                                                        : "full width");
  benchmark::AddCustomContext("zr_core", text);
  return true;
}();

}  // namespace
