// Growing a zrSimpleArray<double> (exact length, the allocation underneath grown by half
// again when it runs out) beside std::vector (geometric growth): 1e5 single push_backs,
// and 1e5 elements appended by Concat in blocks of 1000. Arg: the final length.
// Every case is warm: the first iteration has run the allocator through the sizes. Beside
// a fresh vector per iteration there is one vector cleared and refilled, which keeps its
// capacity and so never allocates: the floor of what appending can cost.
#include <benchmark/benchmark.h>

#include <vector>

#include "zr/zr.h"

namespace {

constexpr int kBlock = 1000;

void PushBack(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    zrSimpleArray<double> a;
    for (int i = 0; i < n; ++i) a.push_back(static_cast<double>(i));
    benchmark::DoNotOptimize(a.GetPointer());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void VectorPushBack(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    std::vector<double> v;
    for (int i = 0; i < n; ++i) v.push_back(static_cast<double>(i));
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void WarmVectorPushBack(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> v;
  for (auto _ : state) {
    v.clear();
    for (int i = 0; i < n; ++i) v.push_back(static_cast<double>(i));
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void Concat(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const zrSimpleArray<double> block(kBlock, 1.0);
  for (auto _ : state) {
    zrSimpleArray<double> a;
    for (int i = 0; i < n; i += kBlock) a.Concat(block);
    benchmark::DoNotOptimize(a.GetPointer());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void VectorConcat(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> block(kBlock, 1.0);
  for (auto _ : state) {
    std::vector<double> v;
    for (int i = 0; i < n; i += kBlock) v.insert(v.end(), block.begin(), block.end());
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK(PushBack)->Name("push_back/zr")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(VectorPushBack)->Name("push_back/std")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(WarmVectorPushBack)
    ->Name("push_back/std_warm")
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(Concat)->Name("concat/zr")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(VectorConcat)->Name("concat/std")->Arg(100000)->Unit(benchmark::kMicrosecond);
