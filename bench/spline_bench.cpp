// The natural cubic spline in zr: building it from the library's own form of the data
// (an array of (x, y) column vectors) and evaluating it at 1e6 points: random points one
// call each ("random") or in one many-point call ("random_many"), sorted points in one
// many-point call ("sorted") or one call each with a hint ("sorted_hint").
// spline_gsl.cpp has the same cases for gsl_spline. Arg: the number of nodes. "zr" runs at
// the best level this machine has, "zr_plain" pinned to the class's own loops (1000 nodes
// only: its search is the linear scan).
#include <benchmark/benchmark.h>

#include <vector>

#include "bench_data.h"
#include "zr/core/detail/machine.h"
#include "zr/zr.h"

namespace {

using zr::detail::Level;

zrSimpleArray<zrColumnVector<double>> Nodes(int n) {
  zrSimpleArray<zrColumnVector<double>> points(n);
  for (int i = 0; i < n; ++i) {
    points[i].Set(2);
    points[i][0] = zr_bench::NodeX(i);
    points[i][1] = zr_bench::NodeY(points[i][0]);
  }
  return points;
}

// Natural end conditions: zero second derivatives at both ends.
struct Natural {
  zrSimpleArray<int> codes;
  zrMatrix<double> values;
  Natural() : codes(2), values(2, 2) {
    codes[0] = 0;
    codes[1] = 3;
    values.Fill(0.0);
  }
};

// Construction from the points, MkSpline3 (with its check) and destruction.
void Build(benchmark::State& state, Level level) {
  const zr::detail::LevelOverride pin(level);
  const int n = static_cast<int>(state.range(0));
  const zrSimpleArray<zrColumnVector<double>> points = Nodes(n);
  const Natural natural;
  double check = 0;
  for (auto _ : state) {
    zrSpline<double> s(points);
    s.MkSpline3(natural.codes, natural.values);
    check = s(zr_bench::CheckX1()) + 0.5 * s(zr_bench::CheckX2(n));
    benchmark::DoNotOptimize(check);
  }
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, check);
}

enum class Call { kSingle, kHint, kMany };

void Eval(benchmark::State& state, Level level, bool sorted, Call call) {
  const zr::detail::LevelOverride pin(level);
  const int n = static_cast<int>(state.range(0));
  zrSpline<double> s(Nodes(n));
  const Natural natural;
  s.MkSpline3(natural.codes, natural.values);
  const std::vector<double> xs = zr_bench::EvalPoints(n, zr_bench::kEvalPoints, sorted);
  const int count = static_cast<int>(xs.size());
  std::vector<double> out(xs.size());
  double sum = 0;
  for (auto _ : state) {
    sum = 0;
    if (call == Call::kMany) {
      s.Value(xs.data(), count, out.data());
      benchmark::DoNotOptimize(out.data());
      benchmark::ClobberMemory();
    } else if (call == Call::kHint) {
      int hint = 0;
      for (double x : xs) sum += s.Value(x, hint);
    } else {
      for (double x : xs) sum += s(x);
    }
    benchmark::DoNotOptimize(sum);
  }
  if (call == Call::kMany) {
    // Summed afresh: GCC 12 at -O3 -march=native has been seen to leave another value in
    // sum across benchmark::DoNotOptimize(sum) in this loop.
    sum = 0;
    for (double v : out) sum += v;
  }
  state.SetItemsProcessed(state.iterations() * static_cast<long long>(count));
  zr_bench::SetCheck(state, sum / static_cast<double>(count));
}

}  // namespace

BENCHMARK_CAPTURE(Build, zr, Level::kAvx512)
    ->Name("spline_build/zr")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Eval, zr, Level::kAvx512, false, Call::kSingle)
    ->Name("spline_eval_random/zr")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Eval, zr, Level::kAvx512, false, Call::kMany)
    ->Name("spline_eval_random_many/zr")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Eval, zr, Level::kAvx512, true, Call::kMany)
    ->Name("spline_eval_sorted/zr")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Eval, zr, Level::kAvx512, true, Call::kHint)
    ->Name("spline_eval_sorted_hint/zr")
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Build, plain, Level::kPlain)
    ->Name("spline_build/zr_plain")
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Eval, plain, Level::kPlain, false, Call::kSingle)
    ->Name("spline_eval_random/zr_plain")
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Eval, plain, Level::kPlain, true, Call::kMany)
    ->Name("spline_eval_sorted/zr_plain")
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
