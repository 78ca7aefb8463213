// The fast cosine transforms in zr: the DCT-II (Forward) and the DCT-III (Inverse) of one
// vector of n doubles with a plan made beforehand, and beside them the direct O(n^2) sum
// ("loop") at the small sizes. fct_fftw.cpp has the same cases for FFTW's REDFT10 and
// REDFT01 plans. Arg: n.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench_data.h"
#include "zr/zr.h"

namespace {

zrVector<double> Data(int n) {
  zrVector<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = zr_bench::Entry(i, 7);
  return x;
}

// Out of place with the plain scale: x stays as it is, y (of length n) is written in place.
template <bool forward>
void Zr(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrFCTT plan(n);
  const zrVector<double> x = Data(n);
  zrVector<double> y(n);
  for (auto _ : state) {
    if (forward) {
      plan.Forward(x, y);
    } else {
      plan.Inverse(x, y);
    }
    benchmark::DoNotOptimize(y.GetPointer());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, y[1] + 0.5 * y[n / 2]);
}

// The direct sum of the plain DCT-II with a table of the n cosines.
void Loop(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> c(static_cast<std::size_t>(4 * n));
  const double pi = 3.14159265358979323846;
  for (int i = 0; i < 4 * n; ++i) c[i] = std::cos(pi * i / (2.0 * n));
  const zrVector<double> x = Data(n);
  std::vector<double> y(static_cast<std::size_t>(n));
  for (auto _ : state) {
    for (int k = 0; k < n; ++k) {
      double sum = 0;
      int a = k;  // k (2j + 1) modulo 4n
      for (int j = 0; j < n; ++j) {
        sum += x[j] * c[a];
        a += 2 * k;
        if (a >= 4 * n) a -= 4 * n;
      }
      y[k] = sum;
    }
    benchmark::DoNotOptimize(y.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, y[1] + 0.5 * y[n / 2]);
}

}  // namespace

BENCHMARK(Zr<true>)->Name("fct_forward/zr")->Apply(zr_bench::FctLengths);
BENCHMARK(Zr<false>)->Name("fct_inverse/zr")->Apply(zr_bench::FctLengths);
BENCHMARK(Loop)->Name("fct_forward/loop")->Arg(1024)->Arg(1000)->Unit(benchmark::kMicrosecond);
