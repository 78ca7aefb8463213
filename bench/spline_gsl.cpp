// The natural cubic spline with gsl_spline (gsl_interp_cspline): built from plain x and y
// arrays, evaluated with an accelerator that is reset before each pass over the points:
// summed ("random", "sorted_hint"), or written to an array of results as zr's many-point
// call does ("random_many", "sorted").
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_spline.h>
#include <gsl/gsl_version.h>

#include <cstddef>
#include <vector>

#include "bench_data.h"

namespace {

const bool registered = [] {
  gsl_set_error_handler_off();
  benchmark::AddCustomContext("peer_gsl", GSL_VERSION);
  return true;
}();

struct Nodes {
  std::vector<double> x, y;
  explicit Nodes(int n) : x(static_cast<std::size_t>(n)), y(x.size()) {
    for (int i = 0; i < n; ++i) {
      x[i] = zr_bench::NodeX(i);
      y[i] = zr_bench::NodeY(x[i]);
    }
  }
};

// Allocation, gsl_spline_init (which copies the nodes and solves for the moments) and
// release.
void GslBuild(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const Nodes nodes(n);
  const std::size_t m = nodes.x.size();
  double check = 0;
  for (auto _ : state) {
    gsl_spline* s = gsl_spline_alloc(gsl_interp_cspline, m);
    gsl_spline_init(s, nodes.x.data(), nodes.y.data(), m);
    check = gsl_spline_eval(s, zr_bench::CheckX1(), nullptr) +
            0.5 * gsl_spline_eval(s, zr_bench::CheckX2(n), nullptr);
    benchmark::DoNotOptimize(check);
    gsl_spline_free(s);
  }
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, check);
}

template <bool sorted, bool many>
void GslEval(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const Nodes nodes(n);
  const std::size_t m = nodes.x.size();
  gsl_spline* s = gsl_spline_alloc(gsl_interp_cspline, m);
  gsl_spline_init(s, nodes.x.data(), nodes.y.data(), m);
  gsl_interp_accel* acc = gsl_interp_accel_alloc();
  const std::vector<double> xs = zr_bench::EvalPoints(n, zr_bench::kEvalPoints, sorted);
  std::vector<double> out(xs.size());
  double sum = 0;
  for (auto _ : state) {
    gsl_interp_accel_reset(acc);
    sum = 0;
    if (many) {
      for (std::size_t i = 0; i < xs.size(); ++i) out[i] = gsl_spline_eval(s, xs[i], acc);
      benchmark::DoNotOptimize(out.data());
      benchmark::ClobberMemory();
    } else {
      for (double x : xs) sum += gsl_spline_eval(s, x, acc);
    }
    benchmark::DoNotOptimize(sum);
  }
  if (many) {
    // Summed afresh: GCC 12 at -O3 -march=native has been seen to leave another value in
    // sum across benchmark::DoNotOptimize(sum) in this loop.
    sum = 0;
    for (double v : out) sum += v;
  }
  gsl_interp_accel_free(acc);
  gsl_spline_free(s);
  state.SetItemsProcessed(state.iterations() * static_cast<long long>(xs.size()));
  zr_bench::SetCheck(state, sum / static_cast<double>(xs.size()));
}

}  // namespace

BENCHMARK(GslBuild)
    ->Name("spline_build/gsl")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(GslEval<false, false>)
    ->Name("spline_eval_random/gsl")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(GslEval<false, true>)
    ->Name("spline_eval_random_many/gsl")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(GslEval<true, true>)
    ->Name("spline_eval_sorted/gsl")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(GslEval<true, false>)
    ->Name("spline_eval_sorted_hint/gsl")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
