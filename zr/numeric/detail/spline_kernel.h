// The spline's fast paths for double: the search tree and its descent, the test of a
// previous answer and the three segments after it, and the cubic built in one sweep over
// the records. Plain
// C++, the same at every level above the plain one, where MakeTree and Cubic decline. The
// searches are asked only for a spline whose tree was made, so a spline whose points were
// taken at the plain level scans, and no evaluation asks for the level. The searches are
// inline: they run once a point. Library source, not installed.
#pragma once

#include <cstdint>

#include "zr/core/detail/machine.h"
#include "zr/numeric/spline.h"

namespace zr::detail {

template <>
struct SplineKernels<double> {
  // The search tree of x_1 ... x_(n-2), the abscissas of n non-decreasing records, into
  // tree; returns its depth.
  static int MakeTree(const double* records, int n, zrSimpleArray<double>& tree);
  // The segment of x (within the nodes) through a tree MakeTree made, its nodes starting
  // at AlignedNodes(tree.GetPointer()), into seg.
  static bool Search(const double* nodes, int depth, int n, const double& x, int& seg);
  // Whether x_seg <= x < x_(seg+4) with seg + 4 <= n - 1 (records with a tree, x not
  // NaN); then x's segment, one of seg ... seg + 3, into seg. Any seg, one out of range
  // included, may be asked.
  static bool Near(const double* records, int n, const double& x, int& seg);
  // MkSpline3 after its argument checks: the moments swept, every segment written into
  // the records and Check()'s tests run on it; ok is their verdict.
  static bool Cubic(double* records, int n, const SplineEnds<double>& ends, bool& ok);
};

// The tree's node 0 (unused) starts a 64-byte line, so nodes 8k ... 8k + 7 share one.
template <class T>
T* AlignedNodes(T* p) {
  const auto at = reinterpret_cast<std::uintptr_t>(p);
  return p + (64 - at % 64) % 64 / sizeof(T);
}

inline bool SplineKernels<double>::Search(const double* nodes, int depth, int n, const double& x,
                                          int& seg) {
  if (depth == 0) return false;
  // The first i >= 1 with x_i > x, less one, is the number of keys x_1 ... x_(n-2) that
  // are <= x (n - 2 at most). Descending the complete tree, right when the key is <= x,
  // ends at leaf 2^depth + that number; the padding keys (+infinity, after every real key)
  // only count for x = +infinity, where the bound takes over.
  const auto base = reinterpret_cast<std::uintptr_t>(nodes);
  std::uint64_t k = 1;
  for (int l = 0; l < depth; ++l) {
    // Three levels ahead: the eight descendants of k there share one line (the address
    // may lie past the tree; a prefetch never faults).
    Prefetch(reinterpret_cast<const void*>(base + 8 * k * sizeof(double)));
    k = 2 * k + (nodes[k] <= x ? 1 : 0);
  }
  const std::int64_t count = static_cast<std::int64_t>(k - (std::uint64_t{1} << depth));
  seg = count < n - 2 ? static_cast<int>(count) : n - 2;
  return true;
}

inline bool SplineKernels<double>::Near(const double* records, int n, const double& x, int& seg) {
  if (seg < 0 || seg > n - 2) return false;
  const double* const r = records + static_cast<std::int64_t>(seg) * kSplineRecord;
  // Within x_seg <= x < x_(seg+1) the answer stays; tested first and by a branch, which
  // points sorted densely take every time, so that nothing waits on the loads.
  if ((r[0] <= x) & (x < r[kSplineRecord])) return true;
  if (seg > n - 5) return false;
  // With x_seg <= x < x_(seg+4), every abscissa up to x_seg is <= x and the first one above
  // x is among x_(seg+1) ... x_(seg+4): seg + 1 + the count of x_(seg+1) ... x_(seg+3)
  // that are <= x.
  const int ahead = (r[kSplineRecord] <= x ? 1 : 0) + (r[2 * kSplineRecord] <= x ? 1 : 0) +
                    (r[3 * kSplineRecord] <= x ? 1 : 0);
  if (!((r[0] <= x) & (x < r[4 * kSplineRecord]))) return false;
  seg += ahead;
  return true;
}

}  // namespace zr::detail
