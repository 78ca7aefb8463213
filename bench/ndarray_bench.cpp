// zrArrayND<double> element loops on a dense array, on views of it (flipped along
// dimension 0, axes 0 and 1 exchanged) and, as the floor, a plain loop over the same
// number of contiguous doubles. Arg: the edge of the square array. The Cube cases and
// the nd_add ones run the two-operand loops on a 3-D array whose view exchanges axes 0
// and 2; ndarray_eigen.cpp has the nd_add cases for Eigen's Tensor. The Plain rows pin
// the kernels' plain level (the class's own storage-order loops); the others run at the
// highest level the processor has.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench_data.h"
#include "zr/core/detail/machine.h"
#include "zr/zr.h"

namespace {

enum Kind { kDense, kFlipped, kSwapped };

zrArray<int> Edges(int n, int dim) {
  zrArray<int> range(dim);
  for (int k = 0; k < dim; ++k) range[k] = n;
  return range;
}

// The view the benchmark works on; `base` holds the block. A swap exchanges the first
// and the last axis.
void MakeView(zrArrayND<double>& base, zrArrayND<double>& view, int n, Kind kind, int dim = 2) {
  base.Set(Edges(n, dim));
  base.Fill(1.0);
  view.Set(base);
  if (kind == kFlipped) view.Flip(0);
  if (kind == kSwapped) view.SwapAxis(0, dim - 1);
}

void Items(benchmark::State& state, int n, int dim = 2) {
  std::int64_t items = 1;
  for (int k = 0; k < dim; ++k) items *= n;
  state.SetItemsProcessed(state.iterations() * items);
  state.SetBytesProcessed(state.iterations() * items * 8);
}

void PlainScale(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> v(static_cast<std::size_t>(n) * n, 1.0);
  for (auto _ : state) {
    double* p = v.data();
    for (std::size_t i = 0, m = v.size(); i < m; ++i) p[i] *= 1.0000001;
    benchmark::DoNotOptimize(p);
    benchmark::ClobberMemory();
  }
  Items(state, n);
}

template <Kind kind>
void Scale(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrArrayND<double> base;
  zrArrayND<double> view;
  MakeView(base, view, n, kind);
  for (auto _ : state) {
    view *= 1.0000001;
    benchmark::ClobberMemory();
  }
  Items(state, n);
}

template <int dim = 2>
void PlainAdd(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::size_t size = 1;
  for (int k = 0; k < dim; ++k) size *= static_cast<std::size_t>(n);
  std::vector<double> a(size, 1.0);
  std::vector<double> b(a.size(), 2.0);
  for (auto _ : state) {
    double* p = a.data();
    const double* q = b.data();
    for (std::size_t i = 0, m = a.size(); i < m; ++i) p[i] += q[i];
    benchmark::DoNotOptimize(p);
    benchmark::ClobberMemory();
  }
  Items(state, n, dim);
}

// dense += view: the operands in step, each with its own strides.
template <Kind kind, int dim = 2>
void AddView(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrArrayND<double> base;
  zrArrayND<double> view;
  MakeView(base, view, n, kind, dim);
  if (dim == 3) {
    // Distinct elements, so that the check tells the views apart.
    for (int i = 0; i < base.GetSize(); ++i) base.GetPointer()[i] = zr_bench::CubeValue(i);
  }
  zrArrayND<double> target(Edges(n, dim));
  target.Fill(0.0);
  for (auto _ : state) {
    target += view;
    benchmark::ClobberMemory();
  }
  Items(state, n, dim);
  if (dim == 3) {
    const double runs = static_cast<double>(state.iterations());
    zr_bench::SetCheck(state, zr_bench::CheckCube(n, [&](int i, int j, int k) {
                         return target.GetPointer()[i + n * (j + n * k)] / runs;
                       }));
  }
}

// The deep dense copy of a view.
template <Kind kind, int dim = 2>
void CopyView(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrArrayND<double> base;
  zrArrayND<double> view;
  MakeView(base, view, n, kind, dim);
  for (auto _ : state) {
    zrArrayND<double> copy(view);
    benchmark::DoNotOptimize(copy.GetPointer());
  }
  Items(state, n, dim);
}

// dense = view into an existing array of the same sizes: no allocation in the loop.
template <Kind kind, int dim = 2>
void AssignView(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrArrayND<double> base;
  zrArrayND<double> view;
  MakeView(base, view, n, kind, dim);
  zrArrayND<double> target(Edges(n, dim));
  for (auto _ : state) {
    target = view;
    benchmark::ClobberMemory();
  }
  Items(state, n, dim);
}

void PlainMin(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> v(static_cast<std::size_t>(n) * n, 1.0);
  for (auto _ : state) {
    double lo = v[0];
    for (double x : v)
      if (x < lo) lo = x;
    benchmark::DoNotOptimize(lo);
  }
  Items(state, n);
}

template <Kind kind>
void MinView(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrArrayND<double> base;
  zrArrayND<double> view;
  MakeView(base, view, n, kind);
  for (auto _ : state) benchmark::DoNotOptimize(view.Min());
  Items(state, n);
}

void PlainSum(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> v(static_cast<std::size_t>(n) * n, 1.0);
  for (auto _ : state) {
    double sum = 0;
    for (double x : v) sum += x;
    benchmark::DoNotOptimize(sum);
  }
  Items(state, n);
}

// Range-for through the iterators, summing.
template <Kind kind>
void IterateView(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrArrayND<double> base;
  zrArrayND<double> view;
  MakeView(base, view, n, kind);
  for (auto _ : state) {
    double sum = 0;
    for (double x : view) sum += x;
    benchmark::DoNotOptimize(sum);
  }
  Items(state, n);
}

// A case with the kernels pinned at the plain level.
template <void (*run)(benchmark::State&)>
void AtPlain(benchmark::State& state) {
  const zr::detail::LevelOverride pin(zr::detail::Level::kPlain);
  run(state);
}

}  // namespace

#define ZR_BENCH_SIZES ->Arg(64)->Arg(512)
BENCHMARK(PlainScale) ZR_BENCH_SIZES;
BENCHMARK(Scale<kDense>) ZR_BENCH_SIZES;
BENCHMARK(Scale<kFlipped>) ZR_BENCH_SIZES;
BENCHMARK(Scale<kSwapped>) ZR_BENCH_SIZES;
BENCHMARK(PlainAdd<>) ZR_BENCH_SIZES;
#define ZR_BENCH_PAIR_SIZES ->Arg(256)->Arg(512)
BENCHMARK(AddView<kDense>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(AddView<kFlipped>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(AddView<kSwapped>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(CopyView<kDense>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(CopyView<kFlipped>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(CopyView<kSwapped>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(AssignView<kDense>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(AssignView<kFlipped>) ZR_BENCH_PAIR_SIZES;
BENCHMARK(AssignView<kSwapped>) ZR_BENCH_PAIR_SIZES;
#define ZR_BENCH_CUBE_SIZES ->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond)
// The raw loop beside each view, so that every row of the table has its floor.
BENCHMARK(PlainAdd<3>)->Name("nd_add_contig/loop") ZR_BENCH_CUBE_SIZES;
BENCHMARK(AddView<kDense, 3>)->Name("nd_add_contig/zr") ZR_BENCH_CUBE_SIZES;
BENCHMARK(PlainAdd<3>)->Name("nd_add_flip/loop") ZR_BENCH_CUBE_SIZES;
BENCHMARK(AddView<kFlipped, 3>)->Name("nd_add_flip/zr") ZR_BENCH_CUBE_SIZES;
BENCHMARK(PlainAdd<3>)->Name("nd_add_swap/loop") ZR_BENCH_CUBE_SIZES;
BENCHMARK(AddView<kSwapped, 3>)->Name("nd_add_swap/zr") ZR_BENCH_CUBE_SIZES;
BENCHMARK(AtPlain<AddView<kDense, 3>>)->Name("PlainAddCube<kDense>") ZR_BENCH_CUBE_SIZES;
BENCHMARK(AtPlain<AddView<kFlipped, 3>>)->Name("PlainAddCube<kFlipped>") ZR_BENCH_CUBE_SIZES;
BENCHMARK(AtPlain<AddView<kSwapped, 3>>)->Name("PlainAddCube<kSwapped>") ZR_BENCH_CUBE_SIZES;
BENCHMARK(CopyView<kDense, 3>)->Name("CopyCube<kDense>")->Arg(128);
BENCHMARK(CopyView<kFlipped, 3>)->Name("CopyCube<kFlipped>")->Arg(128);
BENCHMARK(CopyView<kSwapped, 3>)->Name("CopyCube<kSwapped>")->Arg(128);
BENCHMARK(AssignView<kDense, 3>)->Name("AssignCube<kDense>")->Arg(128);
BENCHMARK(AssignView<kFlipped, 3>)->Name("AssignCube<kFlipped>")->Arg(128);
BENCHMARK(AssignView<kSwapped, 3>)->Name("AssignCube<kSwapped>")->Arg(128);
BENCHMARK(PlainMin) ZR_BENCH_SIZES;
BENCHMARK(MinView<kDense>) ZR_BENCH_SIZES;
BENCHMARK(MinView<kFlipped>) ZR_BENCH_SIZES;
BENCHMARK(MinView<kSwapped>) ZR_BENCH_SIZES;
BENCHMARK(PlainSum) ZR_BENCH_SIZES;
BENCHMARK(IterateView<kDense>) ZR_BENCH_SIZES;
BENCHMARK(IterateView<kFlipped>) ZR_BENCH_SIZES;
BENCHMARK(IterateView<kSwapped>) ZR_BENCH_SIZES;
