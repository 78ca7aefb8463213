// The cosine transforms with FFTW: REDFT10 (the DCT-II) and REDFT01 (the DCT-III) plans
// made with FFTW_MEASURE for one thread, out of place on the same data as zr's cases.
// FFTW's DCT-II is twice zr's plain one and its DCT-III n times zr's plain inverse; the
// check counter is scaled to zr's (outside the timed loop).
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include "bench_data.h"

namespace {

const bool registered = [] {
  benchmark::AddCustomContext("peer_fftw", fftw_version);
  return true;
}();

template <bool forward>
void Fftw(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  double* x = fftw_alloc_real(static_cast<std::size_t>(n));
  double* y = fftw_alloc_real(static_cast<std::size_t>(n));
  const fftw_r2r_kind kind = forward ? FFTW_REDFT10 : FFTW_REDFT01;
  fftw_plan plan = fftw_plan_r2r_1d(n, x, y, kind, FFTW_MEASURE);
  for (int i = 0; i < n; ++i) x[i] = zr_bench::Entry(i, 7);
  for (auto _ : state) {
    fftw_execute(plan);
    benchmark::DoNotOptimize(y);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
  const double scale = forward ? 0.5 : 1.0 / n;
  zr_bench::SetCheck(state, scale * (y[1] + 0.5 * y[n / 2]));
  fftw_destroy_plan(plan);
  fftw_free(y);
  fftw_free(x);
}

}  // namespace
BENCHMARK(Fftw<true>)->Name("fct_forward/fftw")->Apply(zr_bench::FctLengths);
BENCHMARK(Fftw<false>)->Name("fct_inverse/fftw")->Apply(zr_bench::FctLengths);
