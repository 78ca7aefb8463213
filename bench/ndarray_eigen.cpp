// The nd_add cases with Eigen's Tensor<double, 3> (column-major, so dimension 0 varies
// fastest as in zrArrayND, default single-threaded device): target += source, += the
// source reversed along dimension 0, and += the source with dimensions 0 and 2 exchanged.
#include <benchmark/benchmark.h>

#include <array>
#include <unsupported/Eigen/CXX11/Tensor>

#include "bench_data.h"

namespace {

enum Kind { kDense, kFlipped, kSwapped };

template <Kind kind>
void EigenAdd(benchmark::State& state) {
  const Eigen::Index n = state.range(0);
  Eigen::Tensor<double, 3> source(n, n, n);
  Eigen::Tensor<double, 3> target(n, n, n);
  for (Eigen::Index i = 0; i < source.size(); ++i)
    source.data()[i] = zr_bench::CubeValue(static_cast<int>(i));
  target.setZero();
  const std::array<bool, 3> reverse{{true, false, false}};
  const std::array<int, 3> shuffle{{2, 1, 0}};
  for (auto _ : state) {
    if (kind == kDense) target += source;
    if (kind == kFlipped) target += source.reverse(reverse);
    if (kind == kSwapped) target += source.shuffle(shuffle);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  const std::int64_t items = static_cast<std::int64_t>(n) * n * n;
  state.SetItemsProcessed(state.iterations() * items);
  state.SetBytesProcessed(state.iterations() * items * 8);
  const double runs = static_cast<double>(state.iterations());
  zr_bench::SetCheck(state, zr_bench::CheckCube(static_cast<int>(n), [&](int i, int j, int k) {
                       return target(i, j, k) / runs;
                     }));
}

}  // namespace

#define ZR_BENCH_CUBE_SIZES ->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond)
BENCHMARK(EigenAdd<kDense>)->Name("nd_add_contig/eigen") ZR_BENCH_CUBE_SIZES;
BENCHMARK(EigenAdd<kFlipped>)->Name("nd_add_flip/eigen") ZR_BENCH_CUBE_SIZES;
BENCHMARK(EigenAdd<kSwapped>)->Name("nd_add_swap/eigen") ZR_BENCH_CUBE_SIZES;
