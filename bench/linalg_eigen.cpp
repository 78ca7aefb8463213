// The dense cases with Eigen's MatrixXd (column-major, single thread, no OpenMP): the
// product, the solve and the inverse by PartialPivLU, on the same matrices as zr's.
#include <benchmark/benchmark.h>

#include <Eigen/Dense>
#include <string>

#include "bench_data.h"

namespace {

const bool registered = [] {
  benchmark::AddCustomContext("peer_eigen", std::to_string(EIGEN_WORLD_VERSION) + "." +
                                                std::to_string(EIGEN_MAJOR_VERSION) + "." +
                                                std::to_string(EIGEN_MINOR_VERSION) + " " +
                                                Eigen::SimdInstructionSetsInUse());
  return true;
}();

Eigen::MatrixXd Square(int n, double diagonal) {
  Eigen::MatrixXd m(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) m(i, j) = zr_bench::MatrixEntry(i, j, diagonal);
  return m;
}

void Flops(benchmark::State& state, double perIteration) {
  state.counters["FLOP/s"] = benchmark::Counter(
      perIteration * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void EigenProduct(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const Eigen::MatrixXd a = Square(n, 1.0);
  const Eigen::MatrixXd b = Square(n, 2.0);
  Eigen::MatrixXd c(n, n);
  for (auto _ : state) {
    c.noalias() = a * b;
    benchmark::DoNotOptimize(c.data());
    benchmark::ClobberMemory();
  }
  Flops(state, zr_bench::ProductFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckMatrix(n, [&](int i, int j) { return c(i, j); }));
}

// The factorisation copies the matrix itself; that copy is in the timing.
void EigenSolve(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const Eigen::MatrixXd a = Square(n, zr_bench::SolveDiagonal(n));
  Eigen::VectorXd b(n);
  for (int i = 0; i < n; ++i) b[i] = zr_bench::Entry(i, n);
  Eigen::VectorXd x(n);
  for (auto _ : state) {
    Eigen::PartialPivLU<Eigen::MatrixXd> lu(a);
    x = lu.solve(b);
    benchmark::DoNotOptimize(x.data());
  }
  Flops(state, zr_bench::SolveFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckVector(n, [&](int i) { return x[i]; }));
}

void EigenInverse(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const Eigen::MatrixXd a = Square(n, zr_bench::SolveDiagonal(n));
  Eigen::MatrixXd inv;
  for (auto _ : state) {
    inv = a.partialPivLu().inverse();
    benchmark::DoNotOptimize(inv.data());
  }
  Flops(state, zr_bench::InverseFlops(n));
  zr_bench::SetCheck(state, zr_bench::CheckMatrix(n, [&](int i, int j) { return inv(i, j); }));
}

}  // namespace

BENCHMARK(EigenProduct)
    ->Name("product/eigen")
    ->Arg(128)
    ->Arg(512)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(EigenSolve)
    ->Name("gauss/eigen")
    ->Arg(100)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(EigenInverse)
    ->Name("inverse/eigen")
    ->Arg(100)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
