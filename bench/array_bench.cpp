// Growing a zrSimpleArray<double> (exact growth, no spare capacity) beside std::vector
// (geometric growth): 1e5 single push_backs, and 1e5 elements appended by Concat in
// blocks of 1000. Arg: the final length.
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
BENCHMARK(Concat)->Name("concat/zr")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(VectorConcat)->Name("concat/std")->Arg(100000)->Unit(benchmark::kMicrosecond);
