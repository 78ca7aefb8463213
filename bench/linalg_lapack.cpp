// The dense and tridiagonal cases with OpenBLAS: cblas_dgemm for the product, the
// reference LAPACK routines (as OpenBLAS ships them) dgesv, dgetrf + dgetri and dgtsv.
// OpenBLAS is held to one thread. Matrices are column-major; the test matrices are
// filled so that they hold the same elements as zr's.
#include <benchmark/benchmark.h>
#include <cblas.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_data.h"

#ifdef ZR_BENCH_HAVE_LAPACK
extern "C" {
void dgesv_(const int* n, const int* nrhs, double* a, const int* lda, int* ipiv, double* b,
            const int* ldb, int* info);
void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* ipiv, int* info);
void dgetri_(const int* n, double* a, const int* lda, const int* ipiv, double* work,
             const int* lwork, int* info);
void dgtsv_(const int* n, const int* nrhs, double* dl, double* d, double* du, double* b,
            const int* ldb, int* info);
}
#endif

namespace {

// The build and the core whose kernels run: OpenBLAS chooses the core when it loads,
// unless OPENBLAS_CORETYPE names one, which the context then records as well.
const bool registered = [] {
  openblas_set_num_threads(1);
  benchmark::AddCustomContext("peer_openblas", openblas_get_config());
  benchmark::AddCustomContext("peer_openblas_core", openblas_get_corename());
  if (const char* forced = std::getenv("OPENBLAS_CORETYPE"))
    benchmark::AddCustomContext("peer_openblas_coretype", forced);
  return true;
}();

std::vector<double> Square(int n, double diagonal) {
  const std::size_t m = static_cast<std::size_t>(n);
  std::vector<double> a(m * m);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) a[j * m + i] = zr_bench::MatrixEntry(i, j, diagonal);
  return a;
}

void Flops(benchmark::State& state, double perIteration) {
  state.counters["FLOP/s"] = benchmark::Counter(
      perIteration * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void Dgemm(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a = Square(n, 1.0);
  const std::vector<double> b = Square(n, 2.0);
  std::vector<double> c(a.size());
  for (auto _ : state) {
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, n, n, n, 1.0, a.data(), n, b.data(), n,
                0.0, c.data(), n);
    benchmark::DoNotOptimize(c.data());
    benchmark::ClobberMemory();
  }
  Flops(state, zr_bench::ProductFlops(n));
  const std::size_t m = static_cast<std::size_t>(n);
  zr_bench::SetCheck(state, zr_bench::CheckMatrix(n, [&](int i, int j) { return c[j * m + i]; }));
}

#ifdef ZR_BENCH_HAVE_LAPACK

// dgesv factors in place: a fresh copy per run, made outside the timing.
void Dgesv(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a0 = Square(n, zr_bench::SolveDiagonal(n));
  std::vector<double> b0(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) b0[i] = zr_bench::Entry(i, n);
  std::vector<double> a(a0.size()), b(b0.size());
  std::vector<int> pivots(b0.size());
  const int one = 1;
  int info = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::copy(a0.begin(), a0.end(), a.begin());
    std::copy(b0.begin(), b0.end(), b.begin());
    state.ResumeTiming();
    dgesv_(&n, &one, a.data(), &n, pivots.data(), b.data(), &n, &info);
    benchmark::DoNotOptimize(b.data());
  }
  if (info != 0) state.SkipWithError("dgesv failed");
  Flops(state, zr_bench::SolveFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckVector(n, [&](int i) { return b[i]; }));
}

// As zr's Inverse, the copy of the input is part of the timing.
void Dgetri(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a0 = Square(n, zr_bench::SolveDiagonal(n));
  std::vector<double> a(a0.size());
  std::vector<int> pivots(static_cast<std::size_t>(n));
  int info = 0;
  int lwork = -1;
  double best = 0;
  dgetri_(&n, a.data(), &n, pivots.data(), &best, &lwork, &info);
  lwork = std::max(n, static_cast<int>(best));
  std::vector<double> work(static_cast<std::size_t>(lwork));
  for (auto _ : state) {
    std::copy(a0.begin(), a0.end(), a.begin());
    dgetrf_(&n, &n, a.data(), &n, pivots.data(), &info);
    dgetri_(&n, a.data(), &n, pivots.data(), work.data(), &lwork, &info);
    benchmark::DoNotOptimize(a.data());
  }
  if (info != 0) state.SkipWithError("dgetrf/dgetri failed");
  Flops(state, zr_bench::InverseFlops(n));
  const std::size_t m = static_cast<std::size_t>(n);
  zr_bench::SetCheck(state, zr_bench::CheckMatrix(n, [&](int i, int j) { return a[j * m + i]; }));
}

// dgtsv overwrites all four inputs: fresh copies between a pause and a resume.
void Dgtsv(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::size_t m = static_cast<std::size_t>(n);
  std::vector<double> up0(m - 1), diag0(m), down0(m - 1), b0(m);
  for (int i = 0; i < n; ++i) {
    diag0[i] = zr_bench::TriDiag(i);
    b0[i] = zr_bench::TriRhs(i);
  }
  for (int i = 0; i + 1 < n; ++i) {
    up0[i] = zr_bench::TriUp(i);
    down0[i] = zr_bench::TriDown(i);
  }
  std::vector<double> up(up0), diag(diag0), down(down0), b(b0);
  const int one = 1;
  int info = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::copy(up0.begin(), up0.end(), up.begin());
    std::copy(diag0.begin(), diag0.end(), diag.begin());
    std::copy(down0.begin(), down0.end(), down.begin());
    std::copy(b0.begin(), b0.end(), b.begin());
    state.ResumeTiming();
    dgtsv_(&n, &one, down.data(), diag.data(), up.data(), b.data(), &n, &info);
    benchmark::DoNotOptimize(b.data());
  }
  if (info != 0) state.SkipWithError("dgtsv failed");
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, zr_bench::CheckVector(n, [&](int i) { return b[i]; }));
}

#endif

}  // namespace

BENCHMARK(Dgemm)
    ->Name("product/openblas")
    ->Arg(128)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond);
#ifdef ZR_BENCH_HAVE_LAPACK
BENCHMARK(Dgesv)
    ->Name("gauss/lapack")
    ->Arg(100)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Dgetri)
    ->Name("inverse/lapack")
    ->Arg(100)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Dgtsv)->Name("sweep/lapack")->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
#endif
