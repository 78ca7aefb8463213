// Inputs shared by the zr benchmarks and their peers, so that every implementation of a
// case works on the same numbers. Names of the registered benchmarks follow
// "<case>/<implementation>/<size>"; compare.py reads them that way.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace zr_bench {

// Deterministic entries in [-1, 1).
inline double Entry(int i, int j) {
  const std::uint32_t h =
      static_cast<std::uint32_t>(i) * 2654435761u ^ static_cast<std::uint32_t>(j) * 40503u;
  return static_cast<double>(h % 20001u) / 10000.0 - 1.0;
}

// Element (i, j) of the square test matrices: Entry off the diagonal, `diagonal` on it.
inline double MatrixEntry(int i, int j, double diagonal) { return i == j ? diagonal : Entry(i, j); }

// The diagonal of the Gauss and inverse systems: dominant, so every solver keeps its rows.
inline double SolveDiagonal(int n) { return static_cast<double>(n); }

// The tridiagonal system: 4 on the diagonal, entries in [-1, 1) beside it.
inline double TriDiag(int) { return 4.0; }
inline double TriUp(int i) { return Entry(i, 1); }
inline double TriDown(int i) { return Entry(i, 2); }
inline double TriRhs(int i) { return Entry(i, 3); }

// Spline nodes: strictly increasing abscissas with uneven steps (0.4 ... 1.6) and a
// smooth ordinate.
inline double NodeX(int i) { return i + 0.3 * std::sin(static_cast<double>(i)); }
inline double NodeY(double x) { return std::sin(0.05 * x) + 0.1 * std::cos(0.31 * x); }

// Evaluation points in [x_0, x_(n-1)]: uniformly random, or the same points sorted.
inline std::vector<double> EvalPoints(int nodes, int count, bool sorted) {
  std::mt19937_64 gen(12345);
  std::uniform_real_distribution<double> pick(NodeX(0), NodeX(nodes - 1));
  std::vector<double> xs(static_cast<std::size_t>(count));
  for (double& x : xs) x = pick(gen);
  if (sorted) std::sort(xs.begin(), xs.end());
  return xs;
}

// The number of evaluation points per run.
constexpr int kEvalPoints = 1000000;

// The "check" counter: a weighted sum of a few elements of the result, read through
// at(i, j) (matrices) or at(i) (vectors), so that a transposed, misplaced or wrong result
// gives another number. compare.py compares it across the implementations of a row.
template <class At>
double CheckMatrix(int n, At at) {
  return at(1, 2) - 0.5 * at(n - 1, 0) + 0.25 * at(0, n - 1) + 0.125 * at(n / 2, n / 2);
}
template <class At>
double CheckVector(int n, At at) {
  return at(0) + 0.5 * at(n / 2) - 0.25 * at(n - 1);
}
inline void SetCheck(benchmark::State& state, double value) { state.counters["check"] = value; }

// The abscissas a spline build is checked at: between the first nodes and in the middle.
inline double CheckX1() { return 0.5 * (NodeX(1) + NodeX(2)); }
inline double CheckX2(int n) { return 0.5 * (NodeX(n / 2) + NodeX(n / 2 + 1)); }

// Elements of the N-D sources by their dense index (dimension 0 fastest in zr and in
// Eigen's column-major tensors alike).
inline double CubeValue(int index) { return Entry(index, 7); }
template <class At>
double CheckCube(int n, At at) {
  return at(1, 2, 3) - 0.5 * at(n - 1, 0, 2) + 0.25 * at(0, n - 2, n - 1);
}

// Operation counts for the FLOP/s counters (the classic counts, the same for every
// implementation so that rates compare as times do).
inline double ProductFlops(int n) { return 2.0 * n * n * n; }
inline double SolveFlops(int n) { return 2.0 / 3.0 * n * n * n + 2.0 * n * n; }
inline double InverseFlops(int n) { return 2.0 * n * n * n; }

// The lengths of the cosine transform rows, zr's and FFTW's alike: powers of two, 1000 and
// a prime.
inline void FctLengths(benchmark::internal::Benchmark* b) {
  for (int n : {1024, 65536, 1048576, 1000, 999983}) b->Arg(n);
  b->Unit(benchmark::kMicrosecond);
}

}  // namespace zr_bench
