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

// The storage-order walk over two operands of equal sizes: line(count, a, sa, b, sb) for
// every line along dimension 0 (its first elements, its length and the steps along it),
// the lines of dimensions 1 ... k in storage order, until line returns false (then so does
// the walk). Sizes are >= 1; a pointer moves only while another line follows, so none is
// formed outside the operands.
template <class A, class B, class F>
bool NDLines(int k, const int* range, A* a, const int* ta, B* b, const int* tb, F& line) {
  if (k == 0) return line(range[0], a, ta[0], b, tb[0]);
  for (int i = 1;; ++i) {
    if (!NDLines(k - 1, range, a, ta, b, tb, line)) return false;
    if (i == range[k]) return true;
    a += ta[k];
    b += tb[k];
  }
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
  Lockstep(zr::detail::NDOp::kAssign, other, [](T& x, const T& y) { x = y; });
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
  Lockstep(zr::detail::NDOp::kAssign, other, [](T& x, const T& y) { x = y; });
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
void zrArrayND<T>::Each(zr::detail::NDOp op, const T& value, F f) {
  if (GetSize() == 0) return;
  const int* const tab = Tab().GetPointer();
  if (zr::detail::NDKernels<T>::Scalar(op, GetDim(), Range().GetPointer(), p_, tab, value)) return;
  auto line = [f](int n, T* a, int sa, T*, int) {
    std::ptrdiff_t ia = 0;
    for (int i = 0; i < n; ++i, ia += sa) f(a[ia]);
    return true;
  };
  zr::detail::NDLines(GetDim() - 1, Range().GetPointer(), p_, tab, p_, tab, line);
}

template <class T>
template <class F>
void zrArrayND<T>::EachPair(zr::detail::NDOp op, const zrArrayND& other, F f) {
  if (GetDim() != other.GetDim()) throw BadParameters("Different dimension");
  if (!(Range() == other.Range())) throw BadParameters("Different range");
  // A source that shares elements with the target is read whole first, as operator=
  // does; only the array itself as its own operand needs no copy (each element meets
  // itself alone).
  if (zr::detail::NDOverlap(*this, other) && !(p_ == other.p_ && Tab() == other.Tab())) {
    const zrArrayND copy(other);
    Lockstep(op, copy, f);
    return;
  }
  Lockstep(op, other, f);
}

template <class T>
template <class F>
void zrArrayND<T>::Lockstep(zr::detail::NDOp op, const zrArrayND& other, F f) {
  if (GetSize() == 0) return;
  const int* const ta = Tab().GetPointer();
  const int* const tb = other.Tab().GetPointer();
  if (zr::detail::NDKernels<T>::Pair(op, GetDim(), Range().GetPointer(), p_, ta, other.p_, tb))
    return;
  auto line = [f](int n, T* a, int sa, const T* b, int sb) {
    std::ptrdiff_t ia = 0;
    std::ptrdiff_t ib = 0;
    for (int i = 0; i < n; ++i, ia += sa, ib += sb) f(a[ia], b[ib]);
    return true;
  };
  zr::detail::NDLines(GetDim() - 1, Range().GetPointer(), p_, ta, other.p_, tb, line);
}

template <class T>
void zrArrayND<T>::Fill(T value) {
  Each(zr::detail::NDOp::kAssign, value, [value](T& x) { x = value; });
}

#define ZR_DETAIL_ARRAY_ND_OPERATORS(op_assign, op)                                 \
  template <class T>                                                                \
  zrArrayND<T>& zrArrayND<T>::operator op_assign(const zrArrayND& other) {          \
    EachPair(zr::detail::NDOp::op, other, [](T& x, const T& y) { x op_assign y; }); \
    return *this;                                                                   \
  }                                                                                 \
  template <class T>                                                                \
  zrArrayND<T>& zrArrayND<T>::operator op_assign(const T& value) {                  \
    const T v = value;                                                              \
    Each(zr::detail::NDOp::op, v, [v](T& x) { x op_assign v; });                    \
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
  if (GetSize() == 0) return 1;
  const int* const ta = Tab().GetPointer();
  const int* const tb = other.Tab().GetPointer();
  bool equal = true;
  if (zr::detail::NDKernels<T>::Equal(GetDim(), Range().GetPointer(), p_, ta, other.p_, tb, equal))
    return equal ? 1 : 0;
  auto line = [](int n, const T* a, int sa, const T* b, int sb) {
    std::ptrdiff_t ia = 0;
    std::ptrdiff_t ib = 0;
    for (int i = 0; i < n; ++i, ia += sa, ib += sb)
      if (!(a[ia] == b[ib])) return false;
    return true;
  };
  return zr::detail::NDLines(GetDim() - 1, Range().GetPointer(), p_, ta, other.p_, tb, line) ? 1
                                                                                             : 0;
}

template <class T>
int zrArrayND<T>::operator!=(const zrArrayND& other) const {
  return *this == other ? 0 : 1;
}

template <class T>
void zrArrayND<T>::MinAndMax(T& min, T& max) const {
  if (GetSize() == 0) zr::detail::ThrowEmptyND();
  const int* const tab = Tab().GetPointer();
  if (zr::detail::NDKernels<T>::MinMax(GetDim(), Range().GetPointer(), p_, tab, min, max)) return;
  // From the origin element on: a NaN there stays, a NaN elsewhere never enters.
  T lo = *p_;
  T hi = *p_;
  auto line = [&lo, &hi](int n, const T* a, int sa, const T*, int) {
    std::ptrdiff_t ia = 0;
    for (int i = 0; i < n; ++i, ia += sa) {
      if (a[ia] < lo) lo = a[ia];
      if (hi < a[ia]) hi = a[ia];
    }
    return true;
  };
  zr::detail::NDLines(GetDim() - 1, Range().GetPointer(), p_, tab, p_, tab, line);
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
    auto line = [&out](int n, const T* a, int sa, const T*, int) {
      std::ptrdiff_t ia = 0;
      for (int i = 0; i < n; ++i, ia += sa) *out++ = a[ia];
      return true;
    };
    zr::detail::NDLines(GetDim() - 1, Range().GetPointer(), p_, tab, p_, tab, line);
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
    auto line = [&out](int n, const T* a, int sa, const T*, int) {
      std::ptrdiff_t ia = 0;
      for (int i = 0; i < n; ++i, ia += sa, out += sizeof(T)) std::memcpy(out, a + ia, sizeof(T));
      return true;
    };
    zr::detail::NDLines(GetDim() - 1, Range().GetPointer(), p_, tab, p_, tab, line);
  }
  return static_cast<int>(out - buffer);
}

template <class T>
int zrArrayND<T>::FromMem(const unsigned char* buffer) {
  static_assert(std::is_trivially_copyable_v<T>, "the flat form holds the raw elements");
  const unsigned char* in = buffer + zrArrayNDAbs::FromMem(buffer);
  if (GetSize() > 0) {
    const int* const tab = Tab().GetPointer();
    auto line = [&in](int n, T* a, int sa, T*, int) {
      std::ptrdiff_t ia = 0;
      for (int i = 0; i < n; ++i, ia += sa, in += sizeof(T))
        std::memcpy(static_cast<void*>(a + ia), in, sizeof(T));
      return true;
    };
    zr::detail::NDLines(GetDim() - 1, Range().GetPointer(), p_, tab, p_, tab, line);
  }
  return static_cast<int>(in - buffer);
}
