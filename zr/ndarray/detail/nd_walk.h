// The fast walks of zrArrayND<double>: the library's own header, never installed.
//
// WalkPair runs two operands of equal sizes line by line in an order chosen for memory:
// axes of size 1 dropped, axes that continue one another merged, reversed axes turned
// round and the axes sorted by the first operand's strides; when the second operand's
// shortest step then lies on another axis, the plane of those two axes goes in tiles
// (or through a plane hook: the vector transposes of nd_cross.cpp). The order changes
// no result where the class lets a kernel run (see NDKernels in array_nd.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "zr/core/detail/machine.h"
#include "zr/ndarray/array_nd.h"

namespace zr::detail {

enum class NDOrder {
  kStorage,   // storage order, dimension 0 fastest
  kAny,       // any order that visits each multi-index once
  kAnyIfLead  // any order when the first operand reaches no element twice
};

// An r0 x r1 plane of two double operands whose lines cross: the first operand's run
// along axis 0 (step 1, lines a1 apart), the second's along axis 1 (step 1, lines b0
// apart), with no overlap between them. Runs a = a op b on every pair in 8 x 8 blocks
// transposed in vector registers at the AVX2 and AVX-512 levels and returns true; below
// those it returns false and touches nothing.
bool CrossPlane(Level level, NDOp op, int r0, int r1, double* a, std::ptrdiff_t a1, const double* b,
                std::ptrdiff_t b0);

// run(std::integral_constant<NDOp, op>()) for the operation op, so that each operation
// gets a loop of its own.
template <class Run>
void ByOp(NDOp op, Run run) {
  switch (op) {
    case NDOp::kAssign:
      return run(std::integral_constant<NDOp, NDOp::kAssign>());
    case NDOp::kAdd:
      return run(std::integral_constant<NDOp, NDOp::kAdd>());
    case NDOp::kSub:
      return run(std::integral_constant<NDOp, NDOp::kSub>());
    case NDOp::kMul:
      return run(std::integral_constant<NDOp, NDOp::kMul>());
    case NDOp::kDiv:
      return run(std::integral_constant<NDOp, NDOp::kDiv>());
  }
}

// The plane hook of a walk that has no vector kernel.
struct NDNoPlane {
  template <class A, class B>
  bool operator()(int, int, A*, int, int, B*, int, int) const {
    return false;
  }
};

// Tiles for two double operands whose fastest axes differ: a tile's lines run along the
// first operand's fastest axis for one cache line of it (8 elements), and there are 16
// of them, two cache lines of the second operand along its own fastest axis, so that both
// operands' lines of a tile stay in the first-level cache and are used whole. Longer or
// square tiles measured slower, most of all for strides that are powers of two, whose
// lines share cache sets.
constexpr int kTileLine = 8;
constexpr int kTileLines = 16;
// Reversed lines are read in chunks of this many elements (see RunPrefetched).
constexpr int kPrefetchChunk = 64;

// Lines whose step is -1 while the next line lies above them read memory against the
// walk's direction, which the processor's stream detection does not follow: such lines
// are run in chunks, each after a prefetch of the same chunk a few lines ahead (a
// prefetch never faults, so its address may lie past an operand's end).
template <class A, class B, class F>
bool RunPrefetched(int count, A* pa, int sa, std::intptr_t aheadA, B* pb, int sb,
                   std::intptr_t aheadB, F& line) {
  for (int i = 0; i < count; i += kPrefetchChunk) {
    const int n = count - i < kPrefetchChunk ? count - i : kPrefetchChunk;
    A* const la = pa + static_cast<std::ptrdiff_t>(i) * sa;
    B* const lb = pb + static_cast<std::ptrdiff_t>(i) * sb;
    const int bytes = n * static_cast<int>(sizeof(double));
    if (aheadA != 0)
      for (int off = 0; off < bytes; off += 64)
        Prefetch(reinterpret_cast<const char*>(la) + aheadA - off);
    if (aheadB != 0)
      for (int off = 0; off < bytes; off += 64)
        Prefetch(reinterpret_cast<const char*>(lb) + aheadB - off);
    if (!line(n, la, sa, lb, sb)) return false;
  }
  return true;
}

// Walks an r0 x r1 plane of two operands in tiles, each tile as lines along axis 0
// (steps a0, b0) one step of axis 1 (a1, b1) apart. Pointers move only while another
// line or tile follows, so none is formed outside the operands.
template <class A, class B, class F>
bool WalkTiles(int r0, int r1, A* pa, int a0, int a1, B* pb, int b0, int b1, F& line) {
  const std::ptrdiff_t ta = static_cast<std::ptrdiff_t>(kTileLine) * a0;
  const std::ptrdiff_t tb = static_cast<std::ptrdiff_t>(kTileLine) * b0;
  const std::ptrdiff_t ua = static_cast<std::ptrdiff_t>(kTileLines) * a1;
  const std::ptrdiff_t ub = static_cast<std::ptrdiff_t>(kTileLines) * b1;
  for (int j = 0;;) {
    const int nj = r1 - j < kTileLines ? r1 - j : kTileLines;
    A* qa = pa;
    B* qb = pb;
    for (int i = 0;;) {
      const int ni = r0 - i < kTileLine ? r0 - i : kTileLine;
      A* la = qa;
      B* lb = qb;
      for (int k = 0;;) {
        // A full line with a constant count, which the compiler unrolls.
        if (!(ni == kTileLine ? line(kTileLine, la, a0, lb, b0) : line(ni, la, a0, lb, b0)))
          return false;
        if (++k == nj) break;
        la += a1;
        lb += b1;
      }
      i += kTileLine;
      if (i >= r0) break;
      qa += ta;
      qb += tb;
    }
    j += kTileLines;
    if (j >= r1) return true;
    pa += ua;
    pb += ub;
  }
}

// The axes of a walk after dropping sizes of 1: sizes r, strides a and b.
struct NDAxes {
  int m = 0;
  int* r;
  int* a;
  int* b;
  void Take(int n, const int* range, const int* ta, const int* tb) {
    m = 0;
    for (int k = 0; k < n; ++k) {
      if (range[k] == 1) continue;
      r[m] = range[k];
      a[m] = ta[k];
      b[m] = tb[k];
      ++m;
    }
  }
  void Swap(int i, int j) {
    std::swap(r[i], r[j]);
    std::swap(a[i], a[j]);
    std::swap(b[i], b[j]);
  }
};

// Walks two operands of equal sizes (n dimensions, each of size >= 1, strides ta and tb)
// in step, line by line: line(count, a, sa, b, sb) gets the first element of each operand
// on a line, the number of elements on it and the steps along it, and returns false to
// stop the walk (WalkPair then returns false too). With a free order (see NDOrder) the
// axes are taken as the file comment says; the plane hook plane(r0, r1, a, a0, a1, b, b0,
// b1) may take a tiled plane whole. Lines (or planes) are joined by one addition of a
// carry per operand.
template <class A, class B, class F, class P>
bool WalkPair(int n, const int* range, A* pa, const int* ta, B* pb, const int* tb, NDOrder order,
              F line, P plane) {
  constexpr int kLocal = 8;  // dimensions held on the stack
  int local[6 * kLocal];
  const Scratch<int> heap(n > kLocal ? 6 * static_cast<std::uint64_t>(n) : 0);
  int* const scratch = n > kLocal ? heap.get() : local;
  NDAxes x{0, scratch, scratch + n, scratch + 2 * n};
  int* const ca = scratch + 3 * n;
  int* const cb = scratch + 4 * n;
  int* const count = scratch + 5 * n;
  int* const r = x.r;
  int* const a = x.a;
  int* const b = x.b;
  x.Take(n, range, ta, tb);
  bool free = false;
  if (order != NDOrder::kStorage && x.m > 0) {
    A* qa = pa;
    B* qb = pb;
    for (int i = 0; i < x.m; ++i) {
      if (a[i] >= 0) continue;
      qa += static_cast<std::ptrdiff_t>(r[i] - 1) * a[i];
      qb += static_cast<std::ptrdiff_t>(r[i] - 1) * b[i];
      a[i] = -a[i];
      b[i] = -b[i];
    }
    for (int i = 1; i < x.m; ++i)
      for (int j = i; j > 0 && a[j] < a[j - 1]; --j) x.Swap(j, j - 1);
    // Sorted strides reach each element once when every stride exceeds the span of the
    // axes before it.
    bool once = a[0] > 0;
    std::int64_t span = static_cast<std::int64_t>(r[0] - 1) * a[0];
    for (int i = 1; i < x.m && once; ++i) {
      once = a[i] > span;
      span += static_cast<std::int64_t>(r[i] - 1) * a[i];
    }
    if (once || order == NDOrder::kAny) {
      pa = qa;
      pb = qb;
      free = true;
    } else {
      x.Take(n, range, ta, tb);  // back to storage order
    }
  }
  if (x.m == 0) return line(1, pa, 0, pb, 0);
  int d = 0;
  for (int i = 1; i < x.m; ++i) {
    if (a[i] == static_cast<std::int64_t>(r[d]) * a[d] &&
        b[i] == static_cast<std::int64_t>(r[d]) * b[d]) {
      r[d] *= r[i];
    } else {
      ++d;
      r[d] = r[i];
      a[d] = a[i];
      b[d] = b[i];
    }
  }
  const int m = d + 1;
  // Tiles: the axis of the second operand's shortest step moves to place 1, keeping the
  // order of the others.
  int inner = 1;
  if (free && m > 1) {
    const auto step = [](int s) { return s < 0 ? -static_cast<std::int64_t>(s) : s; };
    int j = 0;
    for (int i = 1; i < m; ++i)
      if (step(b[i]) < step(b[j])) j = i;
    if (j > 0) {
      for (; j > 1; --j) x.Swap(j, j - 1);
      inner = 2;
    }
  }
  // ca[k]: from the start of the last line (plane) with dimension k - 1 ... inner at
  // their last index to the start of the next one. Each is the distance between two
  // elements of the operand, which fits in 32 bits; the product on the way does not
  // always.
  for (int k = inner; k < m; ++k) {
    ca[k] =
        k == inner
            ? a[k]
            : static_cast<int>(ca[k - 1] + a[k] - static_cast<std::int64_t>(r[k - 1]) * a[k - 1]);
    cb[k] =
        k == inner
            ? b[k]
            : static_cast<int>(cb[k - 1] + b[k] - static_cast<std::int64_t>(r[k - 1]) * b[k - 1]);
    count[k] = 0;
  }
  // Reversed lines stepping up to the next: prefetch distance of about 8 KiB (whole lines;
  // on lines of 2 KiB, 8 KiB ran about 1.1 times as fast as 4 KiB, 16 KiB and 2 KiB slower).
  std::intptr_t aheadA = 0;
  std::intptr_t aheadB = 0;
  if (inner == 1 && m > 1) {
    const auto ahead = [&r](int s0, int s1) -> std::intptr_t {
      if (s0 != -1 || s1 <= 0) return 0;
      const std::intptr_t bytes = static_cast<std::intptr_t>(r[0]) * sizeof(double);
      const std::intptr_t lines = (8192 + bytes - 1) / bytes;
      return lines * s1 * static_cast<std::intptr_t>(sizeof(double));
    };
    aheadA = ahead(a[0], a[1]);
    // A one-operand walk passes its operand twice.
    const bool same = static_cast<const void*>(pa) == static_cast<const void*>(pb) &&
                      a[0] == b[0] && a[1] == b[1];
    aheadB = same ? 0 : ahead(b[0], b[1]);
  }
  const bool prefetch = aheadA != 0 || aheadB != 0;
  for (;;) {
    if (inner == 1) {
      if (!(prefetch ? RunPrefetched(r[0], pa, a[0], aheadA, pb, b[0], aheadB, line)
                     : line(r[0], pa, a[0], pb, b[0])))
        return false;
    } else if (!plane(r[0], r[1], pa, a[0], a[1], pb, b[0], b[1]) &&
               !WalkTiles(r[0], r[1], pa, a[0], a[1], pb, b[0], b[1], line)) {
      return false;
    }
    int k = inner;
    for (; k < m; ++k) {
      if (++count[k] < r[k]) break;
      count[k] = 0;
    }
    if (k >= m) return true;
    pa += ca[k];
    pb += cb[k];
  }
}

// Runs g over one line of two operands, with straight loops for the common steps.
template <class A, class B, class G>
bool RunLine(int count, A* a, int sa, B* b, int sb, G g) {
  if (sa == 1 && sb == 1) {
    for (int i = 0; i < count; ++i) g(a[i], b[i]);
  } else if (sa == 1 && sb == -1) {
    for (int i = 0; i < count; ++i) g(a[i], b[-i]);
  } else if (sa == 1) {
    std::ptrdiff_t ib = 0;
    for (int i = 0; i < count; ++i, ib += sb) g(a[i], b[ib]);
  } else if (sa == -1 && sb == -1) {
    for (int i = 0; i < count; ++i) g(a[-i], b[-i]);
  } else {
    // The index one step past a line's end need not fit in 32 bits.
    std::ptrdiff_t ia = 0;
    std::ptrdiff_t ib = 0;
    for (int i = 0; i < count; ++i, ia += sa, ib += sb) g(a[ia], b[ib]);
  }
  return true;
}

}  // namespace zr::detail
