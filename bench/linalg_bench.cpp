// Dense product, Gaussian solve, inverse and tridiagonal sweep in zr, each beside the
// plain loop that computes the same numbers in the same order (the floor the library is
// measured against). The zr rows run at the highest kernel level this machine has, the
// zr-plain rows pinned to the plain level (the class templates' own loops). The peers'
// versions of the same cases live in linalg_eigen.cpp, linalg_lapack.cpp and
// linalg_gsl.cpp. Arg: the order of the system.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "bench_data.h"
#include "zr/core/detail/machine.h"
#include "zr/zr.h"

namespace {

using zr::detail::Level;
using zr_bench::MatrixEntry;

zrMatrix<double> Square(int n, double diagonal) {
  zrMatrix<double> m(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) m(i, j) = MatrixEntry(i, j, diagonal);
  return m;
}

void Flops(benchmark::State& state, double perIteration) {
  state.counters["FLOP/s"] = benchmark::Counter(
      perIteration * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void Product(benchmark::State& state, Level level) {
  const zr::detail::LevelOverride pin(level);
  const int n = static_cast<int>(state.range(0));
  const zrMatrix<double> a = Square(n, 1.0);
  const zrMatrix<double> b = Square(n, 2.0);
  zrMatrix<double> c;
  for (auto _ : state) {
    c = a * b;
    benchmark::DoNotOptimize(c(0, 0));
  }
  Flops(state, zr_bench::ProductFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckMatrix(n, [&](int i, int j) { return c(i, j); }));
}

// The same sums in the same order (c(i, j) starts from the k = 0 product and adds
// k = 1, 2, ... one rounding at a time), the loops ordered i, k, j so that the inner loop
// runs along rows of b and c.
void PlainProduct(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::size_t m = static_cast<std::size_t>(n);
  std::vector<double> a(m * m), b(m * m), c(m * m);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      a[i * m + j] = MatrixEntry(i, j, 1.0);
      b[i * m + j] = MatrixEntry(i, j, 2.0);
    }
  for (auto _ : state) {
    for (std::size_t i = 0; i < m; ++i) {
      double* ci = &c[i * m];
      const double* ai = &a[i * m];
      for (std::size_t j = 0; j < m; ++j) ci[j] = ai[0] * b[j];
      for (std::size_t k = 1; k < m; ++k) {
        const double aik = ai[k];
        const double* bk = &b[k * m];
        for (std::size_t j = 0; j < m; ++j) ci[j] = ci[j] + aik * bk[j];
      }
    }
    benchmark::DoNotOptimize(c.data());
    benchmark::ClobberMemory();
  }
  Flops(state, zr_bench::ProductFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckMatrix(n, [&](int i, int j) { return c[i * m + j]; }));
}

// The solver eliminates in place: each run gets a fresh copy, made outside the timing.
void GaussSolve(benchmark::State& state, Level level) {
  const zr::detail::LevelOverride pin(level);
  const int n = static_cast<int>(state.range(0));
  const zrMatrix<double> a = Square(n, zr_bench::SolveDiagonal(n));
  zrColumnVector<double> b0(n);
  for (int i = 0; i < n; ++i) b0[i] = zr_bench::Entry(i, n);
  zrColumnVector<double> x(n);
  for (auto _ : state) {
    state.PauseTiming();
    zrMatrix<double> m(a);
    m.Copy();
    zrColumnVector<double> b(n);
    b = b0;
    state.ResumeTiming();
    m.SolveEquationGaussMethod(x, b);
    benchmark::DoNotOptimize(x[0]);
  }
  Flops(state, zr_bench::SolveFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckVector(n, [&](int i) { return x[i]; }));
}

// Inverse() works on a private copy; the copy is part of the call and of the timing.
void Inverse(benchmark::State& state, Level level) {
  const zr::detail::LevelOverride pin(level);
  const int n = static_cast<int>(state.range(0));
  const zrMatrix<double> a = Square(n, zr_bench::SolveDiagonal(n));
  zrMatrix<double> inv;
  for (auto _ : state) {
    inv = a.Inverse();
    benchmark::DoNotOptimize(inv(0, 0));
  }
  Flops(state, zr_bench::InverseFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckMatrix(n, [&](int i, int j) { return inv(i, j); }));
}

// The peers that overwrite their inputs get fresh copies between a pause and a resume;
// every sweep pays for the same (empty) pause so that the timer's cost is alike.
void Sweep(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrMatrix3Diag<double> t(n);
  for (int i = 0; i < n; ++i) t.Diag()[i] = zr_bench::TriDiag(i);
  for (int i = 0; i + 1 < n; ++i) {
    t.Up()[i] = zr_bench::TriUp(i);
    t.Down()[i] = zr_bench::TriDown(i);
  }
  zrColumnVector<double> b(n);
  for (int i = 0; i < n; ++i) b[i] = zr_bench::TriRhs(i);
  zrColumnVector<double> x(n);
  for (auto _ : state) {
    state.PauseTiming();
    state.ResumeTiming();
    t.SolveEquationChaserMethod(x, b);
    benchmark::DoNotOptimize(x[0]);
  }
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, zr_bench::CheckVector(n, [&](int i) { return x[i]; }));
}

// The sweep's recurrences written out over plain arrays.
void PlainSweep(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::size_t m = static_cast<std::size_t>(n);
  std::vector<double> up(m - 1), diag(m), down(m - 1), b(m), x(m), alpha(m), beta(m);
  for (int i = 0; i < n; ++i) {
    diag[i] = zr_bench::TriDiag(i);
    b[i] = zr_bench::TriRhs(i);
  }
  for (int i = 0; i + 1 < n; ++i) {
    up[i] = zr_bench::TriUp(i);
    down[i] = zr_bench::TriDown(i);
  }
  for (auto _ : state) {
    state.PauseTiming();
    state.ResumeTiming();
    alpha[0] = -up[0] / diag[0];
    beta[0] = b[0] / diag[0];
    for (std::size_t i = 1; i + 1 < m; ++i) {
      const double d = down[i - 1] * alpha[i - 1] + diag[i];
      alpha[i] = -up[i] / d;
      beta[i] = (b[i] - down[i - 1] * beta[i - 1]) / d;
    }
    x[m - 1] = (b[m - 1] - down[m - 2] * beta[m - 2]) / (down[m - 2] * alpha[m - 2] + diag[m - 1]);
    for (std::size_t i = m - 1; i-- > 0;) x[i] = x[i + 1] * alpha[i] + beta[i];
    benchmark::DoNotOptimize(x.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, zr_bench::CheckVector(n, [&](int i) { return x[i]; }));
}

}  // namespace

BENCHMARK_CAPTURE(Product, best, Level::kAvx512)
    ->Name("product/zr")
    ->Arg(128)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Product, plain, Level::kPlain)
    ->Name("product/zr-plain")
    ->Arg(128)
    ->Arg(512)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(PlainProduct)
    ->Name("product/loop")
    ->Arg(128)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(GaussSolve, best, Level::kAvx512)
    ->Name("gauss/zr")
    ->Arg(100)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(GaussSolve, plain, Level::kPlain)
    ->Name("gauss/zr-plain")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Inverse, best, Level::kAvx512)
    ->Name("inverse/zr")
    ->Arg(100)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Inverse, plain, Level::kPlain)
    ->Name("inverse/zr-plain")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Sweep)->Name("sweep/zr")->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainSweep)->Name("sweep/loop")->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
