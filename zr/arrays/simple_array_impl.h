/// \file
/// The member definitions of zrSimpleArray<T>. The library includes this file once to
/// instantiate the array for its element types; include it yourself only to instantiate
/// the array for a type of your own.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <type_traits>
#include <utility>

#include "zr/arrays/simple_array.h"

namespace zr::detail {

// Copies n elements front to back (used where to never lies past from in a block, so
// that the result is that of reading all of from first: memmove's, for plain values).
template <class T>
void CopyForward(T* to, const T* from, int n) {
  if constexpr (std::is_trivially_copyable_v<T>) {
    if (n > 0) std::memmove(static_cast<void*>(to), from, static_cast<std::size_t>(n) * sizeof(T));
  } else {
    for (int i = 0; i < n; ++i) to[i] = from[i];
  }
}

// Whether `to` lies inside (from, from + n): a front-to-back walk over n elements from
// both would then write elements of `from` that it has still to read, and the walk goes
// back to front instead. Compared as addresses, since the two need not lie in one block.
template <class T>
bool OverlapsAhead(const T* to, const T* from, int n) {
  const auto t = reinterpret_cast<std::uintptr_t>(to);
  const auto f = reinterpret_cast<std::uintptr_t>(from);
  return t > f && t - f < static_cast<std::uint64_t>(n) * sizeof(T);
}

// Copies n elements with the result of reading all of `from` first, whatever the two
// share: back to front when `to` lies ahead of `from` in one run, else front to back.
template <class T>
void CopyOverlapping(T* to, const T* from, int n) {
  if (OverlapsAhead(to, from, n)) {
    for (int i = n - 1; i >= 0; --i) to[i] = from[i];
  } else {
    CopyForward(to, from, n);
  }
}

// Copies n elements that cannot overlap.
template <class T>
void CopyDisjoint(T* to, const T* from, int n) {
  if constexpr (std::is_trivially_copyable_v<T>) {
    if (n > 0) std::memcpy(static_cast<void*>(to), from, static_cast<std::size_t>(n) * sizeof(T));
  } else {
    CopyForward(to, from, n);
  }
}

// Whether T has a member `void swap(T&)` of its own (not one inherited from a base,
// which would exchange only the base's part).
template <class T, class = void>
struct HasOwnSwap : std::false_type {};
template <class T>
struct HasOwnSwap<T, std::enable_if_t<std::is_same_v<decltype(&T::swap), void (T::*)(T&)>>>
    : std::true_type {};

// Exchanges two elements. Elements that share storage by handle (strings, arrays) and
// whose assignment copies in place exchange their handles through their own swap, so
// that moving elements around an array never writes one element's contents into
// another's storage (which may be a view of someone else's memory).
template <class T>
void SwapElements(T& a, T& b) {
  if constexpr (HasOwnSwap<T>::value) {
    a.swap(b);
  } else {
    using std::swap;
    swap(a, b);
  }
}

// Rotates [first, last) left so that middle comes first.
template <class T>
void RotateLeft(T* first, T* middle, T* last) {
  if constexpr (std::is_trivially_copyable_v<T>) {
    std::rotate(first, middle, last);
  } else {
    // Three reversals, each by exchanges.
    auto reverse = [](T* lo, T* hi) {
      while (lo < hi) SwapElements(*lo++, *--hi);
    };
    reverse(first, middle);
    reverse(middle, last);
    reverse(first, last);
  }
}

// Moves element `from` to position `to` (to <= from: the ones between move up by one;
// to > from: they move down), relocating rather than assigning for class types.
template <class T>
void MoveElement(T* p, int from, int to) {
  if (to <= from) {
    RotateLeft(p + to, p + from, p + from + 1);
  } else {
    RotateLeft(p + from, p + from + 1, p + to + 1);
  }
}

// Whether an array with origin p and length n over block mem is its block's only holder
// and spans it exactly, so that the block may be resized where it lies.
inline bool SoleWholeBlock(const void* mem, const void* p, int n) {
  return mem && mem == p && BlockHeader(mem)[0] == 1 && BlockCount(mem) == n;
}

// The elements of `size` bytes that the allocation behind a counted block can hold. The C
// library knows (it rounds sizes up, and keeps the room that growth asked for); where it
// cannot tell, the block's own count is all that is known.
inline int BlockRoom(const void* mem, std::size_t size) {
#if defined(__GLIBC__)
  const std::uint64_t usable =
      malloc_usable_size(static_cast<char*>(const_cast<void*>(mem)) - kBlockHeader);
  const std::uint64_t room = (usable - kBlockHeader) / size;
  return room > INT32_MAX ? INT32_MAX : static_cast<int>(room);
#else
  return BlockCount(mem);
#endif
}

// Resizes such a block from n to m elements of `size` bytes and returns its (possibly
// moved) user pointer. room holds the elements its allocation can take (0 when not yet
// known) and is kept up to date. The header's count becomes exactly m; the allocation
// underneath is kept when m fits its room, unless a shrink would leave less than half of
// it used, and growth past the room asks for half as much again as the room (where the
// room can be learnt; elsewhere exactly m), so a run of appends moves the block a
// logarithmic number of times. A failed reallocation leaves the block as it was.
inline void* ResizeSoleBlock(void* mem, int n, int m, std::size_t size, int& room) {
  char* const elements = static_cast<char*>(mem);
  if (room < n) room = BlockRoom(mem, size);
  if (m <= room && (m > n || m >= room / 2)) {
    BlockHeader(mem)[1] = -m;
    // The elements between the two counts join the block or leave it.
    MarkUsable(elements + static_cast<std::size_t>(std::min(n, m)) * size,
               elements + static_cast<std::size_t>(std::max(n, m)) * size, m > n);
    return mem;
  }
  std::int64_t want = m;
#if defined(__GLIBC__)
  if (m > n)
    want =
        std::max<std::int64_t>(m, std::min<std::int64_t>(INT32_MAX, std::int64_t{room} + room / 2));
#endif
  char* const base = static_cast<char*>(
      zrRealloc(elements - kBlockHeader, static_cast<std::uint64_t>(want) * size + kBlockHeader));
  reinterpret_cast<std::int32_t*>(base)[1] = -m;
  char* const moved = base + kBlockHeader;
  room = BlockRoom(moved, size);
  MarkUsable(moved + static_cast<std::size_t>(m) * size,
             moved + static_cast<std::size_t>(room) * size, false);
  return moved;
}

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrSimpleArray<T>, "zrSimpleArray")

// The constructors that fill a new block delegate to the default constructor first: once
// it has run the object counts as made, so an element copy that throws afterwards still
// runs the destructor, which releases the block.
template <class T>
zrSimpleArray<T>::zrSimpleArray(int n) : zrSimpleArray() {
  New(n);
}

template <class T>
zrSimpleArray<T>::zrSimpleArray(int n, const T& value) : zrSimpleArray() {
  New(n);
  Fill(value);
}

template <class T>
zrSimpleArray<T>::zrSimpleArray(const zrSimpleArray& other) : zrSimpleArray() {
  if (!other.p_ || other.n_ == 0) return;
  New(other.n_);
  zr::detail::CopyDisjoint(p_, other.p_, n_);
}

template <class T>
zrSimpleArray<T>::zrSimpleArray(zrSimpleArray&& other) noexcept
    : zrPArray(), p_(other.p_), n_(other.n_), room_(other.room_) {
  InitMem(other.GetMem());
  other.FreeMem();
  other.p_ = nullptr;
  other.n_ = 0;
  other.room_ = 0;
}

template <class T>
zrSimpleArray<T>& zrSimpleArray<T>::operator=(const zrSimpleArray& other) {
  if (&other == this) return *this;
  if (!other.p_ || other.n_ == 0) {
    Clear();
    return *this;
  }
  if (n_ != other.n_) {
    // The new block is made before the old one goes, and the elements are copied from
    // other before that: other may be a window that this array holds the last count of.
    void* const old = GetMem();
    New(other.n_);
    struct Release {
      void* block;
      ~Release() { zrDeleteWithRef(static_cast<T*>(block)); }
    } release{old};
    zr::detail::CopyDisjoint(p_, other.p_, n_);
    return *this;
  }
  zr::detail::CopyOverlapping(p_, other.p_, n_);
  return *this;
}

template <class T>
zrSimpleArray<T>::~zrSimpleArray() {
  zrDeleteWithRef(static_cast<T*>(GetMem()));
}

template <class T>
void zrSimpleArray<T>::SetMem(void* const block) {
  room_ = 0;
  SwitchMem<T>(block);
}

template <class T>
void zrSimpleArray<T>::New(int n) {
  T* block = nullptr;
  zrNewWithRef(block, n);
  InitMem(block);
  p_ = block;
  n_ = n;
  room_ = 0;
}

template <class T>
void zrSimpleArray<T>::Free() {
  room_ = 0;
  ReleaseMem<T>();
}

template <class T>
void zrSimpleArray<T>::Move(zrSimpleArray& other) {
  if (&other == this) return;
  SetMem(other.GetMem());
  p_ = other.p_;
  n_ = other.n_;
  room_ = other.room_;
  other.Clear();
}

template <class T>
void zrSimpleArray<T>::swap(zrSimpleArray& other) {
  zrSimpleArray tmp;
  tmp.Move(*this);
  Move(other);
  other.Move(tmp);
}

template <class T>
void zrSimpleArray<T>::Set(int n) {
  Clear();
  if (n != 0) New(n);
}

template <class T>
void zrSimpleArray<T>::Set(int n, const T& value) {
  // value may live in the block about to go.
  const T v = value;  // NOLINT(performance-unnecessary-copy-initialization)
  Clear();
  New(n);
  Fill(v);
}

template <class T>
void zrSimpleArray<T>::Init(int n) {
  if (n != n_) Set(n);
}

template <class T>
void zrSimpleArray<T>::Reallocate(int n, int keep) {
  if constexpr (std::is_trivially_copyable_v<T>) {
    // A sole owner whose origin starts a block of exactly its length can have the block
    // resized where it lies: the result is the same exact-size private block.
    void* const mem = GetMem();
    if (zr::detail::SoleWholeBlock(mem, p_, n_)) {
      T* const block = static_cast<T*>(zr::detail::ResizeSoleBlock(mem, n_, n, sizeof(T), room_));
      InitMem(block);
      p_ = block;
      n_ = n;
      return;
    }
  }
  T* const block = static_cast<T*>(zr::detail::NewBlock(n, sizeof(T), 0));
  if constexpr (!std::is_trivially_default_constructible_v<T> || !std::is_trivially_copyable_v<T>) {
    int made = 0;
    try {
      for (; made < n; ++made) ::new (static_cast<void*>(block + made)) T;
      zr::detail::CopyForward(block, p_, keep);
    } catch (...) {
      while (made > 0) block[--made].~T();
      zr::detail::FreeBlock(block);
      throw;
    }
  } else {
    zr::detail::CopyDisjoint(block, p_, keep);
  }
  p_ = block;
  SetMem(block);
  n_ = n;
}

template <class T>
void zrSimpleArray<T>::ReSet(int n) {
  if (n == n_) return;
  if (n < 0) zr::detail::ThrowNewWithRefCount();
  if (n == 0) {
    Clear();
    return;
  }
  Reallocate(n, std::min(n, n_));
}

template <class T>
void zrSimpleArray<T>::Clear() {
  SetMem(nullptr);
  p_ = nullptr;
  n_ = 0;
}

template <class T>
void zrSimpleArray<T>::SetDirectly(T* p, int n) {
  SetMem(nullptr);
  p_ = p;
  n_ = n;
}

template <class T>
void zrSimpleArray<T>::SetDirectly(T* p, int n, const zrPArray& holder) {
  if (n < 0 || !zr::detail::RunInBlock(holder.GetMem(), zr::detail::BlockBytes(holder), p, 0,
                                       sizeof(T), n, 1))
    throw BadParameters("zrSimpleArray<T>::SetDirectly : out of range.");
  SetMem(holder.GetMem());
  p_ = p;
  n_ = n;
}

template <class T>
void zrSimpleArray<T>::Copy() {
  if (!IsShared() || !p_) return;
  zrSimpleArray copy(*this);
  Move(copy);
}

template <class T>
void zrSimpleArray<T>::Fill(const T& value) {
  for (int i = 0; i < n_; ++i) p_[i] = value;
}

template <class T>
void zrSimpleArray<T>::SetSubWindow(const zrSimpleArray& source, int start, int count) {
  if (start < 0 || count < 0 || start > source.n_ - count)
    throw BadParameters("zrSimpleArray<T>::Set : out of range.");
  T* const origin = source.p_ + start;
  SetMem(source.GetMem());
  p_ = origin;
  n_ = count;
}

template <class T>
zrSimpleArray<T> zrSimpleArray<T>::Left(int n) const {
  if (n < 1 || n > n_) throw BadParameters("zrSimpleArray<T>::Left: Out of Range");
  zrSimpleArray window;
  window.SetSubWindow(*this, 0, n);
  return window;
}

template <class T>
zrSimpleArray<T> zrSimpleArray<T>::Right(int n) const {
  if (n < 1 || n > n_) throw BadParameters("zrSimpleArray<T>::Right: Out of Range");
  zrSimpleArray window;
  window.SetSubWindow(*this, n_ - n, n);
  return window;
}

template <class T>
zrSimpleArray<T> zrSimpleArray<T>::Mid(int start, int count) const {
  if (start < 0 || count < 1 || start > n_ - count)
    throw BadParameters("zrSimpleArray<T>::Mid: Out of Range");
  zrSimpleArray window;
  window.SetSubWindow(*this, start, count);
  return window;
}

template <class T>
int zrSimpleArray<T>::Insert(T value, int pos) {
  ReSet(zr::detail::GrownLength(std::int64_t{n_} + 1, sizeof(T)));
  zr::detail::MoveElement(p_, n_ - 1, pos);  // the new last element goes to pos
  p_[pos] = value;
  return pos;
}

template <class T>
T* zrSimpleArray<T>::insert(T* where, const T& value) {
  const int i = Insert(value, static_cast<int>(where - p_));
  return p_ + i;  // the storage is new after the insertion
}

template <class T>
T* zrSimpleArray<T>::erase(T* where) {
  const int i = static_cast<int>(where - p_);
  Remove(i);
  return p_ + i;
}

template <class T>
void zrSimpleArray<T>::Remove(int i) {
  if (n_ < 1 || i < 0 || i >= n_) throw BadParameters("Out of range");
  Copy();
  if (n_ == 1) {
    Clear();
    return;
  }
  zr::detail::MoveElement(p_, i, n_ - 1);  // the removed element ends last
  ReSet(n_ - 1);
}

template <class T>
void zrSimpleArray<T>::RemoveLast() {
  if (n_ > 0) ReSet(n_ - 1);
}

template <class T>
void zrSimpleArray<T>::Append(const T& value) {
  // value may be an element, and the storage is about to move.
  const T v = value;  // NOLINT(performance-unnecessary-copy-initialization)
  ReSet(zr::detail::GrownLength(std::int64_t{n_} + 1, sizeof(T)));
  p_[n_ - 1] = v;
}

template <class T>
void zrSimpleArray<T>::Concat(const zrSimpleArray& other) {
  const int old = n_;
  const int m = other.n_;
  if (m == 0) return;
  ReSet(zr::detail::GrownLength(std::int64_t{old} + m, sizeof(T)));
  // other's elements are still where other points (for other == this, at the front of
  // the new block).
  zr::detail::CopyForward(p_ + old, other.p_, m);
}

template <class T>
void zrSimpleArray<T>::Replace(int start, int count, const zrSimpleArray& other) {
  if (start < 0 || count < 0 || start > n_ - count)
    throw BadParameters("zrSimpleArray<T>::Replace: Out of Range");
  if (&other == this || (other.GetMem() && other.GetMem() == GetMem())) {
    // The tail moves below, so other's values are taken first.
    const zrSimpleArray own(other);  // NOLINT(performance-unnecessary-copy-initialization)
    Replace(start, count, own);
    return;
  }
  const int m = other.n_;
  const int length = zr::detail::GrownLength(std::int64_t{n_} - count + m, sizeof(T));
  if (m < count) {
    zr::detail::RotateLeft(p_ + start + m, p_ + start + count, p_ + n_);
    ReSet(length);
  } else if (m > count) {
    ReSet(length);
    zr::detail::RotateLeft(p_ + start + count, p_ + n_ - (m - count), p_ + n_);
  }
  zr::detail::CopyForward(p_ + start, other.p_, m);
}

template <class T>
void zrSimpleArray<T>::CycleLeftShift(int k) {
  if (n_ < 1) throw BadParameters("Out of range");
  const int r = k % n_;
  if (r > 0) zr::detail::RotateLeft(p_, p_ + r, p_ + n_);
}

template <class T>
void zrSimpleArray<T>::CycleRightShift(int k) {
  if (n_ < 1) throw BadParameters("Out of range");
  const int r = k % n_;
  if (r > 0) CycleLeftShift(n_ - r);
}

template <class T>
void zrSimpleArray<T>::InverseOrder() {
  for (int i = 0; i < n_ / 2; ++i) zr::detail::SwapElements(p_[i], p_[n_ - 1 - i]);
}

template <class T>
int zrSimpleArray<T>::FindB(const T& value, CompareFunction cmp, int mode) const {
  const int after = mode != 0 ? 1 : -1;
  int low = 0;
  int high = n_ - 1;
  while (low <= high) {
    const int mid = (low + high) / 2;
    const int r = cmp(p_[mid], value);
    if (r == 0) return mid;
    if (r == after) {
      high = mid - 1;
    } else {
      low = mid + 1;
    }
  }
  return -1;
}

template <class T>
bool zrSimpleArray<T>::IsIntersectB(const zrSimpleArray& a, const zrSimpleArray& b,
                                    CompareFunction cmp, int mode) {
  // With mode 0, a runs while its element compares 1 or more, b while it compares -1
  // or less; mode != 0 turns the directions round.
  const int sign = mode != 0 ? -1 : 1;
  int i = 0;
  int j = 0;
  while (i < a.n_ && j < b.n_) {
    const int r = sign * cmp(a.p_[i], b.p_[j]);
    if (r == 0) return true;
    if (r >= 1) {
      ++i;
    } else {
      ++j;
    }
  }
  return false;
}

template <class T>
bool zrSimpleArray<T>::IntersectB(const zrSimpleArray& a, const zrSimpleArray& b,
                                  CompareFunction cmp, int mode) {
  // Built aside and moved in, since a or b may be this array.
  zrSimpleArray result;
  const int m = std::min(a.n_, b.n_);
  if (m > 0) result.New(m);
  int count = 0;
  for (int i = 0, j = 0; i < a.n_ && j < b.n_;) {
    const int r = cmp(a.p_[i], b.p_[j]);
    if (r == 0) {
      result.p_[count++] = a.p_[i];
      ++i;
      ++j;
    } else if ((mode != 0) == (r > 0)) {
      ++j;
    } else {
      ++i;
    }
  }
  if (count < m) {
    result.Clear();
    if (count > 0) result.New(count);
  }
  Move(result);
  return count > 0;
}

template <class T>
bool zrSimpleArray<T>::Fusion(const zrSimpleArray& a, const zrSimpleArray& b, CompareFunction cmp,
                              bool keepEqual, int mode) {
  zrSimpleArray result;
  const int total = zr::detail::GrownLength(std::int64_t{a.n_} + b.n_, sizeof(T));
  if (total == 0) {
    Clear();
    return false;
  }
  result.New(total);
  int count = 0;
  bool common = false;
  int i = 0;
  int j = 0;
  while (i < a.n_ && j < b.n_) {
    const int r = cmp(a.p_[i], b.p_[j]);
    if (r == 0) {
      common = true;
      result.p_[count++] = a.p_[i++];
      if (keepEqual) result.p_[count++] = b.p_[j];
      ++j;
    } else if ((mode != 0) == (r > 0)) {
      result.p_[count++] = b.p_[j++];
    } else {
      result.p_[count++] = a.p_[i++];
    }
  }
  while (i < a.n_) result.p_[count++] = a.p_[i++];
  while (j < b.n_) result.p_[count++] = b.p_[j++];
  result.ReSet(count);
  Move(result);
  return common;
}
