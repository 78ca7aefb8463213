// Dense product, Gaussian solve and tridiagonal sweep, each beside the plain loop that
// computes the same numbers in the same order (the floor the library is measured
// against). Arg: the order of the system.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "zr/zr.h"

namespace {

// Deterministic entries in [-1, 1), with a dominant diagonal for the solvers.
double Entry(int i, int j) {
  const std::uint32_t h =
      static_cast<std::uint32_t>(i) * 2654435761u ^ static_cast<std::uint32_t>(j) * 40503u;
  return static_cast<double>(h % 20001u) / 10000.0 - 1.0;
}

zrMatrix<double> Square(int n, double diagonal) {
  zrMatrix<double> m(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) m(i, j) = i == j ? diagonal : Entry(i, j);
  return m;
}

void Product(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const zrMatrix<double> a = Square(n, 1.0);
  const zrMatrix<double> b = Square(n, 2.0);
  for (auto _ : state) {
    zrMatrix<double> c = a * b;
    benchmark::DoNotOptimize(c(0, 0));
  }
  state.counters["flop"] = benchmark::Counter(
      2.0 * n * n * n * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// The same sums, in the same order, over plain row-major arrays.
void PlainProduct(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> a(static_cast<std::size_t>(n) * n), b(a.size()), c(a.size());
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      a[static_cast<std::size_t>(i) * n + j] = i == j ? 1.0 : Entry(i, j);
      b[static_cast<std::size_t>(i) * n + j] = i == j ? 2.0 : Entry(i, j);
    }
  for (auto _ : state) {
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) {
        double s = a[static_cast<std::size_t>(i) * n] * b[static_cast<std::size_t>(j)];
        for (int k = 1; k < n; ++k)
          s = s + a[static_cast<std::size_t>(i) * n + k] * b[static_cast<std::size_t>(k) * n + j];
        c[static_cast<std::size_t>(i) * n + j] = s;
      }
    benchmark::DoNotOptimize(c.data());
  }
  state.counters["flop"] = benchmark::Counter(
      2.0 * n * n * n * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void GaussSolve(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const zrMatrix<double> a = Square(n, static_cast<double>(n));
  zrColumnVector<double> b0(n);
  for (int i = 0; i < n; ++i) b0[i] = Entry(i, n);
  for (auto _ : state) {
    state.PauseTiming();
    zrMatrix<double> m(a);
    m.Copy();  // the solver eliminates in place
    zrColumnVector<double> b(n);
    b = b0;
    zrColumnVector<double> x(n);
    state.ResumeTiming();
    m.SolveEquationGaussMethod(x, b);
    benchmark::DoNotOptimize(x[0]);
  }
}

void Sweep(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrMatrix3Diag<double> t(n);
  for (int i = 0; i < n; ++i) t.Diag()[i] = 4.0;
  for (int i = 0; i + 1 < n; ++i) {
    t.Up()[i] = Entry(i, 1);
    t.Down()[i] = Entry(i, 2);
  }
  zrColumnVector<double> b(n);
  for (int i = 0; i < n; ++i) b[i] = Entry(i, 3);
  zrColumnVector<double> x(n);
  for (auto _ : state) {
    t.SolveEquationChaserMethod(x, b);
    benchmark::DoNotOptimize(x[0]);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK(Product)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainProduct)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond);
BENCHMARK(GaussSolve)->Arg(100)->Arg(400)->Unit(benchmark::kMillisecond);
BENCHMARK(Sweep)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
