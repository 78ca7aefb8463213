/// \file
/// The member definitions of zrArrayND<T>. The library includes this file once to
/// instantiate the array for its element types; include it yourself only to instantiate
/// the array for a type of your own.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "zr/arrays/array_impl.h"
#include "zr/ndarray/array_nd.h"

namespace zr::detail {

// Scratch ints for a walk: on the stack for the usual dimension counts, else a block.
class NDScratch {
 public:
  explicit NDScratch(int n) {
    if (n > kLocal) heap_.Set(n);
    p_ = n > kLocal ? heap_.GetPointer() : local_;
  }
  int* get() { return p_; }

 private:
  static constexpr int kLocal = 48;
  int local_[kLocal] = {};
  zrArray<int> heap_;
  int* p_;
};

enum class NDOrder {
  kStorage,   // storage order, dimension 0 fastest
  kAny,       // any order that visits each multi-index once
  kAnyIfLead  // any order when the first operand reaches no element twice
};

// Tiles for two operands whose fastest axes differ: a tile's lines run along the first
// operand's fastest axis for one cache line of it, and there are as many lines as fill
// two cache lines of the second operand along its own fastest axis (at least 16), so
// that both operands' lines of a tile stay in the first-level cache and are used whole.
// Longer or square tiles measured slower, most of all for strides that are powers of
// two, whose lines share cache sets.
template <class A>
constexpr int NDTileLine() {
  return sizeof(A) >= 64 ? 1 : static_cast<int>(64 / sizeof(A));
}
template <class B>
constexpr int NDTileLines() {
  return sizeof(B) >= 8 ? 16 : static_cast<int>(128 / sizeof(B));
}

// An r0 x r1 plane of two double operands whose lines cross: the first operand's run
// along axis 0 (step 1, lines a1 apart), the second's along axis 1 (step 1, lines b0
// apart), with no overlap between them. Runs a = a op b on every pair through
// transposing vector kernels (8 x 8 blocks) where the processor has them, and returns
// false without touching anything where it has not.
bool NDCrossPlane(NDOp op, int r0, int r1, double* a, int a1, const double* b, int b0);

// The plane hook of a walk that has no vector kernel.
struct NDNoPlane {
  template <class A, class B>
  bool operator()(int, int, A*, int, int, B*, int, int) const {
    return false;
  }
};

// Lines whose step is -1 while the next line lies above them read memory against the
// walk's direction, which the processor's stream detection does not follow: such lines
// are run in chunks, each after a prefetch of the same chunk a few lines ahead.
template <class A, class B, class F>
bool RunPrefetched(int count, A* pa, int sa, std::intptr_t aheadA, B* pb, int sb,
                   std::intptr_t aheadB, F& line) {
  constexpr int kChunk = sizeof(A) >= 8 ? 64 : static_cast<int>(512 / sizeof(A));
  for (int i = 0; i < count; i += kChunk) {
    const int n = count - i < kChunk ? count - i : kChunk;
    A* const la = pa + static_cast<std::ptrdiff_t>(i) * sa;
    B* const lb = pb + static_cast<std::ptrdiff_t>(i) * sb;
#if defined(__GNUC__) || defined(__clang__)
    // Written out here: a helper holding nothing but prefetches counts as free of effects
    // and is dropped with its calls. A prefetch never faults, so its address may lie
    // past an operand's end.
    if (aheadA != 0)
      for (int off = 0; off < n * static_cast<int>(sizeof(A)); off += 64)
        __builtin_prefetch(reinterpret_cast<const char*>(la) + aheadA - off);
    if (aheadB != 0)
      for (int off = 0; off < n * static_cast<int>(sizeof(B)); off += 64)
        __builtin_prefetch(reinterpret_cast<const char*>(lb) + aheadB - off);
#endif
    if (!line(n, la, sa, lb, sb)) return false;
  }
  return true;
}

// Walks an r0 x r1 plane of two operands in tiles, each tile as lines along axis 0
// (steps a0, b0) one step of axis 1 (a1, b1) apart. Pointers move only while another
// line or tile follows, so none is formed outside the operands.
template <class A, class B, class F>
bool WalkTiles(int r0, int r1, A* pa, int a0, int a1, B* pb, int b0, int b1, F& line) {
  constexpr int kLine = NDTileLine<A>();
  constexpr int kLines = NDTileLines<B>();
  const std::ptrdiff_t ta = static_cast<std::ptrdiff_t>(kLine) * a0;
  const std::ptrdiff_t tb = static_cast<std::ptrdiff_t>(kLine) * b0;
  const std::ptrdiff_t ua = static_cast<std::ptrdiff_t>(kLines) * a1;
  const std::ptrdiff_t ub = static_cast<std::ptrdiff_t>(kLines) * b1;
  for (int j = 0;;) {
    const int nj = r1 - j < kLines ? r1 - j : kLines;
    A* qa = pa;
    B* qb = pb;
    for (int i = 0;;) {
      const int ni = r0 - i < kLine ? r0 - i : kLine;
      A* la = qa;
      B* lb = qb;
      for (int k = 0;;) {
        // A full line with a constant count, which the compiler unrolls.
        if (!(ni == kLine ? line(kLine, la, a0, lb, b0) : line(ni, la, a0, lb, b0))) return false;
        if (++k == nj) break;
        la += a1;
        lb += b1;
      }
      i += kLine;
      if (i >= r0) break;
      qa += ta;
      qb += tb;
    }
    j += kLines;
    if (j >= r1) return true;
    pa += ua;
    pb += ub;
  }
}

// Walks two operands of equal sizes (n dimensions, strides ta and tb) in step, line by
// line: line(count, a, sa, b, sb) gets the first element of each operand on a line, the
// number of elements on it and the steps along it, and returns false to stop the walk
// (WalkPair then returns false too). Axes of size 1 are dropped and axes that continue
// one another in both operands are merged, so a contiguous pair is one line. With a
// free order the axes of the first operand are also turned to positive strides and
// sorted by stride; when the second operand's shortest step then lies on another axis
// than the first's, the plane of those two axes is walked in tiles (WalkTiles), so that
// neither operand is read across its lines. Lines (or planes) are joined by one addition
// of a carry per operand.
template <class A, class B, class F, class P>
bool WalkPair(int n, const int* range, A* pa, const int* ta, B* pb, const int* tb, NDOrder order,
              F line, P plane) {
  if (n == 0) return true;  // no dimensions, no elements
  for (int k = 0; k < n; ++k)
    if (range[k] <= 0) return true;
  NDScratch scratch(6 * n);
  int* const r = scratch.get();
  int* const a = r + n;
  int* const b = a + n;
  int* const ca = b + n;
  int* const cb = ca + n;
  int* const count = cb + n;
  int m = 0;
  for (int k = 0; k < n; ++k) {
    if (range[k] == 1) continue;
    r[m] = range[k];
    a[m] = ta[k];
    b[m] = tb[k];
    ++m;
  }
  bool free = false;
  if (order != NDOrder::kStorage && m > 0) {
    A* qa = pa;
    B* qb = pb;
    for (int i = 0; i < m; ++i) {
      if (a[i] >= 0) continue;
      qa += (r[i] - 1) * a[i];
      qb += (r[i] - 1) * b[i];
      a[i] = -a[i];
      b[i] = -b[i];
    }
    for (int i = 1; i < m; ++i)
      for (int j = i; j > 0 && a[j] < a[j - 1]; --j) {
        std::swap(r[j], r[j - 1]);
        std::swap(a[j], a[j - 1]);
        std::swap(b[j], b[j - 1]);
      }
    // Sorted strides reach each element once when every stride exceeds the span of the
    // axes before it.
    bool once = a[0] > 0;
    std::int64_t span = static_cast<std::int64_t>(r[0] - 1) * a[0];
    for (int i = 1; i < m && once; ++i) {
      once = a[i] > span;
      span += static_cast<std::int64_t>(r[i] - 1) * a[i];
    }
    if (once || order == NDOrder::kAny) {
      pa = qa;
      pb = qb;
      free = true;
    } else {
      m = 0;  // back to storage order
      for (int k = 0; k < n; ++k) {
        if (range[k] == 1) continue;
        r[m] = range[k];
        a[m] = ta[k];
        b[m] = tb[k];
        ++m;
      }
    }
  }
  if (m == 0) return line(1, pa, 0, pb, 0);
  int d = 0;
  for (int i = 1; i < m; ++i) {
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
  m = d + 1;
  // Tiles: the axis of the second operand's shortest step moves to place 1, keeping the
  // order of the others.
  int inner = 1;
  if (free && m > 1) {
    const auto step = [](int s) { return s < 0 ? -static_cast<std::int64_t>(s) : s; };
    int j = 0;
    for (int i = 1; i < m; ++i)
      if (step(b[i]) < step(b[j])) j = i;
    if (j > 0) {
      for (; j > 1; --j) {
        std::swap(r[j], r[j - 1]);
        std::swap(a[j], a[j - 1]);
        std::swap(b[j], b[j - 1]);
      }
      inner = 2;
    }
  }
  // ca[k]: from the start of the last line (plane) with dimension k - 1 ... inner at
  // their last index to the start of the next one.
  // Each is the distance between two elements of the operand, which fits in 32 bits;
  // the product on the way does not always.
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
  // Reversed lines stepping up to the next: prefetch distance of about 4 KiB (whole lines).
  std::intptr_t aheadA = 0;
  std::intptr_t aheadB = 0;
  if (inner == 1 && m > 1) {
    const auto ahead = [&r](int s0, int s1, std::size_t size) -> std::intptr_t {
      if (s0 != -1 || s1 <= 0) return 0;
      const std::intptr_t bytes =
          static_cast<std::intptr_t>(r[0]) * static_cast<std::intptr_t>(size);
      const std::intptr_t lines = (4096 + bytes - 1) / bytes;
      return lines * s1 * static_cast<std::intptr_t>(size);
    };
    aheadA = ahead(a[0], a[1], sizeof(A));
    // A one-operand walk passes its operand twice.
    const bool same = static_cast<const void*>(pa) == static_cast<const void*>(pb) &&
                      a[0] == b[0] && a[1] == b[1];
    aheadB = same ? 0 : ahead(b[0], b[1], sizeof(B));
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

template <class A, class B, class F>
bool WalkPair(int n, const int* range, A* pa, const int* ta, B* pb, const int* tb, NDOrder order,
              F line) {
  return WalkPair(n, range, pa, ta, pb, tb, order, line, NDNoPlane());
}

// The plane hook for the operation op on elements of type T.
template <class T, NDOp op>
struct NDPlane {
  bool operator()(int r0, int r1, T* a, int a0, int a1, const T* b, int b0, int b1) const {
    if constexpr (std::is_same_v<T, double> && op != NDOp::kOther) {
      if (a0 == 1 && b1 == 1) return NDCrossPlane(op, r0, r1, a, a1, b, b0);
    }
    (void)r0, (void)r1, (void)a, (void)a0, (void)a1, (void)b, (void)b0, (void)b1;
    return false;
  }
};

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

// Whether the element ranges of two arrays meet (arrays without elements meet nothing).
inline bool NDOverlap(const zrArrayNDAbs& x, const zrArrayNDAbs& y) {
  const auto lo = [](const zrArrayNDAbs& z) {
    return reinterpret_cast<std::intptr_t>(z.Pointer()) +
           static_cast<std::intptr_t>(z.NegativeLength()) * z.GetSizeOfType();
  };
  const auto hi = [](const zrArrayNDAbs& z) {
    return reinterpret_cast<std::intptr_t>(z.Pointer()) +
           static_cast<std::intptr_t>(z.PositiveLength()) * z.GetSizeOfType();
  };
  return x.GetSize() > 0 && y.GetSize() > 0 && lo(x) < hi(y) && lo(y) < hi(x);
}

[[noreturn]] inline void ThrowEmptyND() { throw BadParameters("ArrayND range is empty."); }
[[noreturn]] inline void ThrowAxisND() { throw BadParameters("out of range of dimension"); }
[[noreturn]] inline void ThrowRangeND() {
  throw BadParameters("CheckPointer : Invalid pointer or range.");
}

// The element count for the sizes: a negative size is refused like a negative length,
// a total beyond 32 bits as memory that cannot be had.
inline int NDCount(const zrArray<int>& range, std::uint64_t element) {
  std::int64_t total = 1;
  for (int k = 0; k < range.Len(); ++k) {
    if (range[k] < 0) ThrowNewWithRefCount();
    total *= range[k];
    if (total > std::numeric_limits<std::int32_t>::max())
      throw zrErrNoMemory(static_cast<std::uint64_t>(total) * element);
  }
  return static_cast<int>(total);
}

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrArrayND<T>, "zrArrayND")

template <class T>
zrArrayND<T>::zrArrayND(const zrArray<int>& range) {
  Set(range);
}

template <class T>
zrArrayND<T>::zrArrayND(const zrArrayND& other) : zrArrayNDAbs() {
  if (other.GetDim() == 0) return;
  Set(other.Range());
  zr::detail::WalkPair(
      GetDim(), Range().GetPointer(), p_, Tab().GetPointer(), other.p_, other.Tab().GetPointer(),
      zr::detail::NDOrder::kAny,
      [](int n, T* a, int sa, const T* b, int sb) {
        return zr::detail::RunLine(n, a, sa, b, sb, [](T& x, const T& y) { x = y; });
      },
      zr::detail::NDPlane<T, zr::detail::NDOp::kAssign>());
}

template <class T>
zrArrayND<T>& zrArrayND<T>::operator=(const zrArrayND& other) {
  if (&other == this) return *this;
  if (other.GetDim() == 0) {
    clear();
    return *this;
  }
  Init(other.Range());
  // A source that shares elements with the target is copied first, so that no element
  // is read after it was written.
  if (zr::detail::NDOverlap(*this, other)) {
    const zrArrayND copy(other);
    return *this = copy;
  }
  zr::detail::WalkPair(
      GetDim(), Range().GetPointer(), p_, Tab().GetPointer(), other.p_, other.Tab().GetPointer(),
      zr::detail::NDOrder::kAnyIfLead,
      [](int n, T* a, int sa, const T* b, int sb) {
        return zr::detail::RunLine(n, a, sa, b, sb, [](T& x, const T& y) { x = y; });
      },
      zr::detail::NDPlane<T, zr::detail::NDOp::kAssign>());
  return *this;
}

template <class T>
zrArrayND<T>::~zrArrayND() {
  zrDeleteWithRef(static_cast<T*>(GetMem()));
}

template <class T>
void zrArrayND<T>::SetMem(void* const block) {
  SwitchMem<T>(block);
}

template <class T>
void zrArrayND<T>::New(int n) {
  T* block = nullptr;
  zrNewWithRef(block, n);
  InitMem(block);
  p_ = block;
}

template <class T>
void zrArrayND<T>::Free() {
  ReleaseMem<T>();
}

template <class T>
void zrArrayND<T>::clear() {
  Free();
  p_ = nullptr;
  zrArrayNDAbs::operator=(zrArrayND());
}

template <class T>
void zrArrayND<T>::Set(const zrArray<int>& range) {
  const int n = zr::detail::NDCount(range, sizeof(T));
  // The new geometry and block are made before the old block goes: a refusal leaves the
  // array as it was.
  zrArrayND fresh;
  fresh.zrArrayNDAbs::Set(range);
  if (n > 0) fresh.New(n);
  Move(fresh);
}

template <class T>
void zrArrayND<T>::Init(const zrArray<int>& range) {
  if (range.Len() == GetDim() && range == Range()) return;
  Set(range);
}

template <class T>
zrArrayNDAbs* zrArrayND<T>::New() const {
  return TNew();
}

template <class T>
zrArrayND<T>* zrArrayND<T>::TNew() const {
  return new zrArrayND;
}

template <class T>
void zrArrayND<T>::Move(zrArrayND& other) {
  if (&other == this) return;
  zrArrayNDAbs::operator=(other);
  SetMem(other.GetMem());
  p_ = other.p_;
  other.Free();
  other.p_ = nullptr;
}

template <class T>
void zrArrayND<T>::Copy() {
  if (!IsShared() || GetSize() == 0) return;
  zrArrayND copy(*this);
  Move(copy);
}

template <class T>
void zrArrayND<T>::View(const zrPArray& holder, const T* base, std::int64_t offset,
                        const zrArray<int>& range, const zrArray<int>& tab) {
  // An origin more than 32 bits of elements away cannot lie in any block; the origin
  // is formed as an address, so that one outside the block is never pointer arithmetic.
  if (offset < INT32_MIN || offset > INT32_MAX) zr::detail::ThrowRangeND();
  const auto origin = reinterpret_cast<std::uintptr_t>(base) +
                      static_cast<std::uintptr_t>(offset * static_cast<std::int64_t>(sizeof(T)));
  zrArrayND view;
  view.zrArrayNDAbs::Set(range, tab);
  view.SetMem(holder.GetMem());
  view.p_ = reinterpret_cast<T*>(origin);
  view.CheckPointerWithThrow();
  Move(view);
}

template <class T>
void zrArrayND<T>::Set(const zrArrayND& source, int offset, const zrArray<int>& range,
                       const zrArray<int>& tab) {
  View(source, source.p_, offset, range, tab);
}

template <class T>
void zrArrayND<T>::Set(const zrArrayND& source, int offset, const zrArray<int>& range) {
  View(source, source.p_, offset, range, source.Tab());
}

template <class T>
void zrArrayND<T>::Set(const zrArrayND& source) {
  View(source, source.p_, 0, source.Range(), source.Tab());
}

template <class T>
void zrArrayND<T>::SetDirectly(T* p, const zrArray<int>& range, const zrArray<int>& tab) {
  zrArrayND none;
  View(none, p, 0, range, tab);
}

template <class T>
void zrArrayND<T>::SetDirectly(T* p, const zrArray<int>& range) {
  SetDirectly(p, range, MkTabFromRange(range, 1));
}

template <class T>
void zrArrayND<T>::SetSubWindow(const zrArrayND& source, const zrArray<int>& start,
                                const zrArray<int>& range) {
  const zrArray<int>& tab = source.Tab();
  if (start.Len() != tab.Len()) throw BadParameters("Different dimension");
  std::int64_t offset = 0;
  for (int k = 0; k < tab.Len(); ++k) {
    offset += static_cast<std::int64_t>(start[k]) * tab[k];
    if (offset < INT32_MIN || offset > INT32_MAX) zr::detail::ThrowRangeND();
  }
  Set(source, static_cast<int>(offset), range);
}

template <class T>
void zrArrayND<T>::Flip(int a) {
  if (a < 0 || a >= GetDim()) zr::detail::ThrowAxisND();
  zrArray<int> tab(Tab());
  // An axis without elements keeps the origin where it is.
  const std::int64_t last = Range()[a] > 0 ? Range()[a] - 1 : 0;
  if (tab[a] == INT32_MIN) zr::detail::ThrowRangeND();
  const int offset = static_cast<int>(last * tab[a]);  // within the array's own extent
  tab[a] = -tab[a];
  Set(*this, offset, Range(), tab);
}

template <class T>
void zrArrayND<T>::SwapAxis(int a, int b) {
  if (a < 0 || a >= GetDim() || b < 0 || b >= GetDim()) zr::detail::ThrowAxisND();
  zrArray<int> range(Range());
  zrArray<int> tab(Tab());
  std::swap(range[a], range[b]);
  std::swap(tab[a], tab[b]);
  Set(*this, 0, range, tab);
}

template <class T>
void zrArrayND<T>::ReduceDimArrayND(const zrArrayND& source, int axis, int index) {
  const int n = source.GetDim();
  if (axis < 0 || axis >= n) zr::detail::ThrowAxisND();
  if (n < 2) throw BadParameters("Must be dimension > 1");
  if (index < 0 || index >= source.Range()[axis]) throw BadParameters("Out of range");
  zrArray<int> range(n - 1);
  zrArray<int> tab(n - 1);
  for (int k = 0, j = 0; k < n; ++k) {
    if (k == axis) continue;
    range[j] = source.Range()[k];
    tab[j] = source.Tab()[k];
    ++j;
  }
  View(source, source.p_, static_cast<std::int64_t>(source.Tab()[axis]) * index, range, tab);
}

template <class T>
zrArrayND<T>* zrArrayND<T>::GetReduceDimArrayND(int axis, int index) const {
  zrArrayND* const slice = TNew();
  try {
    slice->ReduceDimArrayND(*this, axis, index);
  } catch (...) {
    delete slice;
    throw;
  }
  return slice;
}

template <class T>
void zrArrayND<T>::CheckIndex(const int* index, int count) const {
  char text[128];
  if (GetDim() == 0) throw BadParameters("zrArrayND::at: the array has no dimensions.");
  if (count != GetDim()) {
    std::snprintf(text, sizeof text, "zrArrayND::at: %d indices for %d dimensions.", count,
                  GetDim());
    throw BadParameters(text);
  }
  for (int k = 0; k < count; ++k) {
    if (index[k] < 0 || index[k] >= Range()[k]) {
      std::snprintf(text, sizeof text, "zrArrayND::at: index %d on axis %d is outside [0, %d).",
                    index[k], k, Range()[k]);
      throw BadParameters(text);
    }
  }
}

template <class T>
T& zrArrayND<T>::at(int i) const {
  const int index[] = {i};
  CheckIndex(index, 1);
  return (*this)(i);
}

template <class T>
T& zrArrayND<T>::at(int i, int j) const {
  const int index[] = {i, j};
  CheckIndex(index, 2);
  return (*this)(i, j);
}

template <class T>
T& zrArrayND<T>::at(int i, int j, int k) const {
  const int index[] = {i, j, k};
  CheckIndex(index, 3);
  return (*this)(i, j, k);
}

template <class T>
T& zrArrayND<T>::at(int i, int j, int k, int l) const {
  const int index[] = {i, j, k, l};
  CheckIndex(index, 4);
  return (*this)(i, j, k, l);
}

template <class T>
T& zrArrayND<T>::at(const zrArray<int>& index) const {
  CheckIndex(index.GetPointer(), index.Len());
  return (*this)(index);
}

template <class T>
void zrArrayND<T>::MakeCoord(zrArray<int>& coord, const T* p) const {
  const int n = GetDim();
  coord.Init(n);
  std::int64_t off = p - p_;
  const zrArray<int>& tab = Tab();
  const auto step = [&off, &tab, &coord](int d) {
    coord[d] = tab[d] != 0 ? static_cast<int>(off / tab[d]) : 0;
    if (tab[d] != 0) off %= tab[d];
  };
  if (n == 2 && tab[0] >= tab[1]) {
    step(0);
    step(1);
  } else {
    for (int d = n - 1; d >= 0; --d) step(d);
  }
}

template <class T>
template <class F>
void zrArrayND<T>::Each(F f) {
  const int* const tab = GetDim() > 0 ? Tab().GetPointer() : nullptr;
  zr::detail::WalkPair(GetDim(), Range().GetPointer(), p_, tab, p_, tab, zr::detail::NDOrder::kAny,
                       [f](int n, T* a, int sa, T*, int) {
                         return zr::detail::RunLine(n, a, sa, a, sa, [f](T& x, T&) { f(x); });
                       });
}

template <class T>
template <zr::detail::NDOp op, class F>
void zrArrayND<T>::EachPair(const zrArrayND& other, F f) {
  if (GetDim() != other.GetDim()) throw BadParameters("Different dimension");
  if (!(Range() == other.Range())) throw BadParameters("Different range");
  // A source that shares elements with the target is read whole first, as operator=
  // does; only the array itself as its own operand needs no copy (each element meets
  // itself alone).
  if (zr::detail::NDOverlap(*this, other) && !(p_ == other.p_ && Tab() == other.Tab())) {
    const zrArrayND copy(other);
    EachPair<op>(copy, f);
    return;
  }
  zr::detail::WalkPair(
      GetDim(), Range().GetPointer(), p_, Tab().GetPointer(), other.p_, other.Tab().GetPointer(),
      zr::detail::NDOrder::kAnyIfLead,
      [f](int n, T* a, int sa, const T* b, int sb) {
        return zr::detail::RunLine(n, a, sa, b, sb, f);
      },
      zr::detail::NDPlane<T, op>());
}

template <class T>
void zrArrayND<T>::Fill(T value) {
  Each([value](T& x) { x = value; });
}

#define ZR_DETAIL_ARRAY_ND_OPERATORS(op_assign, op)                                 \
  template <class T>                                                                \
  zrArrayND<T>& zrArrayND<T>::operator op_assign(const zrArrayND& other) {          \
    EachPair<zr::detail::NDOp::op>(other, [](T& x, const T& y) { x op_assign y; }); \
    return *this;                                                                   \
  }                                                                                 \
  template <class T>                                                                \
  zrArrayND<T>& zrArrayND<T>::operator op_assign(const T& value) {                  \
    const T v = value;                                                              \
    Each([v](T& x) { x op_assign v; });                                             \
    return *this;                                                                   \
  }
ZR_DETAIL_ARRAY_ND_OPERATORS(+=, kAdd)
ZR_DETAIL_ARRAY_ND_OPERATORS(-=, kSub)
ZR_DETAIL_ARRAY_ND_OPERATORS(*=, kMul)
ZR_DETAIL_ARRAY_ND_OPERATORS(/=, kDiv)
#undef ZR_DETAIL_ARRAY_ND_OPERATORS

template <class T>
int zrArrayND<T>::operator==(const zrArrayND& other) const {
  if (GetDim() != other.GetDim() || !(Range() == other.Range())) return 0;
  if (GetDim() == 0) return 1;
  const bool equal = zr::detail::WalkPair(
      GetDim(), Range().GetPointer(), p_, Tab().GetPointer(), other.p_, other.Tab().GetPointer(),
      zr::detail::NDOrder::kAny, [](int n, const T* a, int sa, const T* b, int sb) {
        std::ptrdiff_t ia = 0;
        std::ptrdiff_t ib = 0;
        for (int i = 0; i < n; ++i, ia += sa, ib += sb)
          if (!(a[ia] == b[ib])) return false;
        return true;
      });
  return equal ? 1 : 0;
}

template <class T>
int zrArrayND<T>::operator!=(const zrArrayND& other) const {
  return *this == other ? 0 : 1;
}

template <class T>
void zrArrayND<T>::MinAndMax(T& min, T& max) const {
  if (GetSize() == 0) zr::detail::ThrowEmptyND();
  const int* const tab = Tab().GetPointer();
  const auto walk = [this, tab](zr::detail::NDOrder order, T& lo, T& hi) {
    lo = *p_;
    hi = *p_;
    zr::detail::WalkPair(GetDim(), Range().GetPointer(), p_, tab, p_, tab, order,
                         [&lo, &hi](int n, const T* a, int sa, const T*, int) {
                           return zr::detail::RunLine(n, a, sa, a, sa,
                                                      [&lo, &hi](const T& x, const T&) {
                                                        if (x < lo) lo = x;
                                                        if (hi < x) hi = x;
                                                      });
                         });
  };
  // Both walks start from the origin element, so a NaN there wins either way and a NaN
  // elsewhere never does. The order matters only for extremes that compare equal but
  // differ, which among these types are the signed zeros: then storage order decides.
  T lo;
  T hi;
  walk(zr::detail::NDOrder::kAny, lo, hi);
  if (std::is_floating_point_v<T> && (lo == T{} || hi == T{}))
    walk(zr::detail::NDOrder::kStorage, lo, hi);
  min = lo;
  max = hi;
}

template <class T>
T zrArrayND<T>::Min() const {
  T lo;
  T hi;
  MinAndMax(lo, hi);
  return lo;
}

template <class T>
T zrArrayND<T>::Max() const {
  T lo;
  T hi;
  MinAndMax(lo, hi);
  return hi;
}

template <class T>
T zrArrayND<T>::Median() const {
  zrArray<T> values;
  if (GetSize() > 0) {
    values.Set(GetSize());
    T* out = values.GetPointer();
    const int* const tab = Tab().GetPointer();
    zr::detail::WalkPair(GetDim(), Range().GetPointer(), p_, tab, p_, tab,
                         zr::detail::NDOrder::kStorage,
                         [&out](int n, const T* a, int sa, const T*, int) {
                           std::ptrdiff_t ia = 0;
                           for (int i = 0; i < n; ++i, ia += sa) *out++ = a[ia];
                           return true;
                         });
  }
  return values.Median();
}

template <class T>
int zrArrayND<T>::MemSize() const {
  const std::int64_t elements = GetSize() > 0 ? GetSize() : 0;
  return static_cast<int>(zrArrayNDAbs::MemSize() +
                          elements * static_cast<std::int64_t>(sizeof(T)));
}

template <class T>
int zrArrayND<T>::ToMem(unsigned char* buffer) const {
  static_assert(std::is_trivially_copyable_v<T>, "the flat form holds the raw elements");
  unsigned char* out = buffer + zrArrayNDAbs::ToMem(buffer);
  if (GetSize() > 0) {
    const int* const tab = Tab().GetPointer();
    zr::detail::WalkPair(GetDim(), Range().GetPointer(), p_, tab, p_, tab,
                         zr::detail::NDOrder::kStorage,
                         [&out](int n, const T* a, int sa, const T*, int) {
                           if (sa == 1) {
                             std::memcpy(out, a, static_cast<std::size_t>(n) * sizeof(T));
                             out += static_cast<std::size_t>(n) * sizeof(T);
                             return true;
                           }
                           std::ptrdiff_t ia = 0;
                           for (int i = 0; i < n; ++i, ia += sa, out += sizeof(T))
                             std::memcpy(out, a + ia, sizeof(T));
                           return true;
                         });
  }
  return static_cast<int>(out - buffer);
}

template <class T>
int zrArrayND<T>::FromMem(const unsigned char* buffer) {
  static_assert(std::is_trivially_copyable_v<T>, "the flat form holds the raw elements");
  const unsigned char* in = buffer + zrArrayNDAbs::FromMem(buffer);
  if (GetSize() > 0) {
    const int* const tab = Tab().GetPointer();
    zr::detail::WalkPair(GetDim(), Range().GetPointer(), p_, tab, p_, tab,
                         zr::detail::NDOrder::kStorage, [&in](int n, T* a, int sa, T*, int) {
                           if (sa == 1) {
                             std::memcpy(static_cast<void*>(a), in,
                                         static_cast<std::size_t>(n) * sizeof(T));
                             in += static_cast<std::size_t>(n) * sizeof(T);
                             return true;
                           }
                           std::ptrdiff_t ia = 0;
                           for (int i = 0; i < n; ++i, ia += sa, in += sizeof(T))
                             std::memcpy(static_cast<void*>(a + ia), in, sizeof(T));
                           return true;
                         });
  }
  return static_cast<int>(in - buffer);
}
