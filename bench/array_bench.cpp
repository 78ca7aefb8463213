// Growing a zrSimpleArray<double> (exact visible length; a sole owner's block keeps hidden room
// in its allocation and grows into it) beside std::vector (geometric growth): 1e5 single
// push_backs, and 1e5 elements appended by Concat in blocks of 1000. Arg: the final length.
//
// The zr side builds a fresh array in every iteration, after an untimed warm-up round. Its peer
// is a warm vector: push_back/std clears and refills one vector, which keeps its capacity (the
// bound no growing container beats: a compare and a store). push_back/std_fresh and concat/std
// build a fresh vector every iteration, after the same warm-up; a fresh vector of 1e5 doubles
// may still pay page faults each time, since glibc gives the top of its heap back once the old
// and new buffers of the last doubling are freed together.
#include <benchmark/benchmark.h>

#include <vector>

#include "zr/zr.h"

namespace {

constexpr int kBlock = 1000;

template <class Fill>
void Warm(Fill fill) {
  for (int i = 0; i < 3; ++i) fill();
}

void PushBack(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  auto fill = [n] {
    zrSimpleArray<double> a;
    for (int i = 0; i < n; ++i) a.push_back(static_cast<double>(i));
    benchmark::DoNotOptimize(a.GetPointer());
  };
  Warm(fill);
  for (auto _ : state) fill();
  state.SetItemsProcessed(state.iterations() * n);
}

void VectorPushBack(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  auto fill = [n] {
    std::vector<double> v;
    for (int i = 0; i < n; ++i) v.push_back(static_cast<double>(i));
    benchmark::DoNotOptimize(v.data());
  };
  Warm(fill);
  for (auto _ : state) fill();
  state.SetItemsProcessed(state.iterations() * n);
}

void ReusedVectorPushBack(benchmark::State& state) {
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
  auto fill = [n, &block] {
    zrSimpleArray<double> a;
    for (int i = 0; i < n; i += kBlock) a.Concat(block);
    benchmark::DoNotOptimize(a.GetPointer());
  };
  Warm(fill);
  for (auto _ : state) fill();
  state.SetItemsProcessed(state.iterations() * n);
}

void VectorConcat(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> block(kBlock, 1.0);
  auto fill = [n, &block] {
    std::vector<double> v;
    for (int i = 0; i < n; i += kBlock) v.insert(v.end(), block.begin(), block.end());
    benchmark::DoNotOptimize(v.data());
  };
  Warm(fill);
  for (auto _ : state) fill();
  state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK(PushBack)->Name("push_back/zr")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReusedVectorPushBack)->Name("push_back/std")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(VectorPushBack)->Name("push_back/std_fresh")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Concat)->Name("concat/zr")->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(VectorConcat)->Name("concat/std")->Arg(100000)->Unit(benchmark::kMicrosecond);
