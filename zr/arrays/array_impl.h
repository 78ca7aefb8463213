/// \file
/// The member definitions of zrArray<T>. The library includes this file once to
/// instantiate the array for its element types; include it yourself only to instantiate
/// the array for a type of your own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "zr/arrays/array.h"
#include "zr/arrays/simple_array_impl.h"

namespace zr::detail {

[[noreturn]] inline void ThrowDifferentRange() { throw BadParameters("Different range"); }
[[noreturn]] inline void ThrowZeroLength() { throw BadParameters("Array length is zero."); }

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrArray<T>, "zrArray")

template <class T>
zrArray<T>::~zrArray() = default;

template <class T>
zrArray<T> zrArray<T>::FromWindow(zrSimpleArray<T>&& window) {
  zrArray result;
  result.Move(window);
  return result;
}

template <class T>
zrArray<T> zrArray<T>::Left(int n) const {
  return FromWindow(zrSimpleArray<T>::Left(n));
}

template <class T>
zrArray<T> zrArray<T>::Right(int n) const {
  return FromWindow(zrSimpleArray<T>::Right(n));
}

template <class T>
zrArray<T> zrArray<T>::Mid(int start, int count) const {
  return FromWindow(zrSimpleArray<T>::Mid(start, count));
}

// The compound and binary operators, one set per arithmetic operator. The loops run over
// plain pointers, and a scalar operand is read once into a local, so that the compiler
// sees a contiguous loop (and an element of this array may be the operand).
#define ZR_DETAIL_ARRAY_OPERATORS(op, op_assign)                          \
  template <class T>                                                      \
  zrArray<T>& zrArray<T>::operator op_assign(const zrArray& other) {      \
    const int n = this->Len();                                            \
    if (n != other.Len()) zr::detail::ThrowDifferentRange();              \
    T* const a = this->GetPointer();                                      \
    const T* const b = other.GetPointer();                                \
    if (zr::detail::OverlapsAhead(a, b, n)) {                             \
      for (int i = n - 1; i >= 0; --i) a[i] op_assign b[i];               \
    } else {                                                              \
      for (int i = 0; i < n; ++i) a[i] op_assign b[i];                    \
    }                                                                     \
    return *this;                                                         \
  }                                                                       \
  template <class T>                                                      \
  zrArray<T>& zrArray<T>::operator op_assign(const T& value) {            \
    const int n = this->Len();                                            \
    T* const a = this->GetPointer();                                      \
    const T v = value;                                                    \
    for (int i = 0; i < n; ++i) a[i] op_assign v;                         \
    return *this;                                                         \
  }                                                                       \
  template <class T>                                                      \
  zrArray<T> zrArray<T>::operator op(const zrArray& other) const {        \
    return Combine(other, [](const T& a, const T& b) { return a op b; }); \
  }                                                                       \
  template <class T>                                                      \
  zrArray<T> zrArray<T>::operator op(const T& value) const {              \
    const T v = value;                                                    \
    return Map([v](const T& a) { return a op v; });                       \
  }
ZR_DETAIL_ARRAY_OPERATORS(+, +=)
ZR_DETAIL_ARRAY_OPERATORS(-, -=)
ZR_DETAIL_ARRAY_OPERATORS(*, *=)
ZR_DETAIL_ARRAY_OPERATORS(/, /=)
#undef ZR_DETAIL_ARRAY_OPERATORS

template <class T>
template <class F>
zrArray<T> zrArray<T>::Combine(const zrArray& other, F f) const {
  const int n = this->Len();
  if (n != other.Len()) zr::detail::ThrowDifferentRange();
  zrArray result;
  if (n > 0) result.New(n);
  T* const r = result.GetPointer();
  const T* const a = this->GetPointer();
  const T* const b = other.GetPointer();
  for (int i = 0; i < n; ++i) r[i] = f(a[i], b[i]);
  return result;
}

template <class T>
template <class F>
zrArray<T> zrArray<T>::Map(F f) const {
  const int n = this->Len();
  zrArray result;
  if (n > 0) result.New(n);
  T* const r = result.GetPointer();
  const T* const a = this->GetPointer();
  for (int i = 0; i < n; ++i) r[i] = f(a[i]);
  return result;
}

template <class T>
zrArray<T> zrArray<T>::Max(const zrArray& other) const {
  return Combine(other, [](const T& a, const T& b) { return a > b ? a : b; });
}

template <class T>
zrArray<T> zrArray<T>::Min(const zrArray& other) const {
  return Combine(other, [](const T& a, const T& b) { return a < b ? a : b; });
}

template <class T>
zrArray<T> zrArray<T>::GetNoPositive() const {
  return Map([](const T& a) {
    const T zero{};
    return a > zero ? zero : a;
  });
}

template <class T>
zrArray<T> zrArray<T>::GetNoNegative() const {
  return Map([](const T& a) {
    const T zero{};
    return a < zero ? zero : a;
  });
}

template <class T>
int zrArray<T>::operator==(const zrArray& other) const {
  const int n = this->Len();
  if (n != other.Len()) return 0;
  const T* const a = this->GetPointer();
  const T* const b = other.GetPointer();
  for (int i = 0; i < n; ++i)
    if (!(a[i] == b[i])) return 0;
  return 1;
}

template <class T>
int zrArray<T>::operator!=(const zrArray& other) const {
  return *this == other ? 0 : 1;
}

template <class T>
int zrArray<T>::operator==(const T& value) const {
  const T* const a = this->GetPointer();
  for (int i = 0, n = this->Len(); i < n; ++i)
    if (!(a[i] == value)) return 0;
  return 1;
}

template <class T>
int zrArray<T>::operator!=(const T& value) const {
  return *this == value ? 0 : 1;
}

// The orderings: every element against other's element, or against the value.
#define ZR_DETAIL_ARRAY_ORDERING(op)                         \
  template <class T>                                         \
  int zrArray<T>::operator op(const zrArray& other) const {  \
    const int n = this->Len();                               \
    if (n != other.Len()) zr::detail::ThrowDifferentRange(); \
    const T* const a = this->GetPointer();                   \
    const T* const b = other.GetPointer();                   \
    for (int i = 0; i < n; ++i)                              \
      if (!(a[i] op b[i])) return 0;                         \
    return 1;                                                \
  }                                                          \
  template <class T>                                         \
  int zrArray<T>::operator op(const T& value) const {        \
    const T* const a = this->GetPointer();                   \
    for (int i = 0, n = this->Len(); i < n; ++i)             \
      if (!(a[i] op value)) return 0;                        \
    return 1;                                                \
  }
ZR_DETAIL_ARRAY_ORDERING(<)
ZR_DETAIL_ARRAY_ORDERING(>)
ZR_DETAIL_ARRAY_ORDERING(<=)
ZR_DETAIL_ARRAY_ORDERING(>=)
#undef ZR_DETAIL_ARRAY_ORDERING

template <class T>
T zrArray<T>::Sum() const {
  const int n = this->Len();
  if (n < 1) zr::detail::ThrowZeroLength();
  const T* const a = this->GetPointer();
  T sum = a[0];
  for (int i = 1; i < n; ++i) sum = sum + a[i];
  return sum;
}

template <class T>
T zrArray<T>::Mul() const {
  const int n = this->Len();
  if (n < 1) zr::detail::ThrowZeroLength();
  const T* const a = this->GetPointer();
  T product = a[0];
  for (int i = 1; i < n; ++i) product = product * a[i];
  return product;
}

template <class T>
T zrArray<T>::ScalarMul(const zrArray& other) const {
  const int n = this->Len();
  if (n != other.Len()) zr::detail::ThrowDifferentRange();
  if (n < 1) zr::detail::ThrowZeroLength();
  const T* const a = this->GetPointer();
  const T* const b = other.GetPointer();
  T sum = a[0] * b[0];
  for (int i = 1; i < n; ++i) sum = sum + a[i] * b[i];
  return sum;
}

template <class T>
template <class F>
int zrArray<T>::BestIndex(F better) const {
  const int n = this->Len();
  if (n < 1) zr::detail::ThrowZeroLength();
  const T* const a = this->GetPointer();
  int best = 0;
  for (int i = 1; i < n; ++i)
    if (better(a[i], a[best])) best = i;
  return best;
}

template <class T>
int zrArray<T>::MaxIndex() const {
  return BestIndex([](const T& a, const T& b) { return a > b; });
}

template <class T>
int zrArray<T>::MinIndex() const {
  return BestIndex([](const T& a, const T& b) { return a < b; });
}

template <class T>
T zrArray<T>::Max() const {
  return (*this)[MaxIndex()];
}

template <class T>
T zrArray<T>::Min() const {
  return (*this)[MinIndex()];
}

template <class T>
T zrArray<T>::Median() {
  T* const a = this->GetPointer();
  const int n = this->Len();
  if (!a || n < 1) throw BadParameters("Lenght of array is equl zero.");
  // Hoare's selection: partition [low, high] around the value at k until k is fenced in.
  // Only < is used. The scans never leave the range for any element values, NaN and
  // partial orders included: the first stops at the pivot itself (x < x is false), the
  // later ones at the elements swapped behind them.
  const int k = (n - 1) / 2;
  int low = 0;
  int high = n - 1;
  while (low < high) {
    const T pivot = a[k];
    int i = low;
    int j = high;
    do {
      while (a[i] < pivot) ++i;
      while (pivot < a[j]) --j;
      if (i <= j) {
        std::swap(a[i], a[j]);
        ++i;
        --j;
      }
    } while (i <= j);
    if (j < k) low = i;
    if (k < i) high = j;
  }
  return a[k];
}

template <class T>
int zrArray<T>::Find(const T& value) const {
  const T* const a = this->GetPointer();
  for (int i = 0, n = this->Len(); i < n; ++i)
    if (a[i] == value) return i;
  return -1;
}

namespace zr::detail {

// The binary search of FindB and InsertIfNotExistB: the index of an element equal to
// value, or -1 with `low` left where value would go.
template <class T>
int SearchB(const T* a, int n, const T& value, int mode, int& low) {
  low = 0;
  int high = n - 1;
  while (low <= high) {
    const int mid = (low + high) / 2;
    if (a[mid] == value) return mid;
    if (mode != 0 ? a[mid] > value : value > a[mid]) {
      high = mid - 1;
    } else {
      low = mid + 1;
    }
  }
  return -1;
}

}  // namespace zr::detail

template <class T>
int zrArray<T>::FindB(const T& value, int mode) const {
  int low = 0;
  return zr::detail::SearchB(this->GetPointer(), this->Len(), value, mode, low);
}

template <class T>
int zrArray<T>::InsertIfNotExistB(const T& value, int& found, int mode) {
  int low = 0;
  const int at = zr::detail::SearchB(this->GetPointer(), this->Len(), value, mode, low);
  if (at >= 0) {
    found = 1;
    return at;
  }
  found = 0;
  return this->Insert(value, low);
}

template <class T>
int zrArray<T>::MemSize() const {
  const std::int64_t n = this->Len() > 0 ? this->Len() : 0;
  return static_cast<int>(zr::detail::RawMemSize<std::int32_t>() +
                          n * static_cast<std::int64_t>(sizeof(T)));
}

template <class T>
int zrArray<T>::ToMem(unsigned char* buffer) const {
  static_assert(std::is_trivially_copyable_v<T>, "the flat form holds the raw elements");
  const std::int32_t n = this->Len() > 0 ? this->Len() : 0;
  const int head = zr::detail::RawToMem(buffer, n);
  const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(T);
  if (bytes > 0) std::memcpy(buffer + head, this->GetPointer(), bytes);
  return static_cast<int>(head + bytes);
}

template <class T>
int zrArray<T>::FromMem(const unsigned char* buffer) {
  static_assert(std::is_trivially_copyable_v<T>, "the flat form holds the raw elements");
  std::int32_t n = 0;
  const int head = zr::detail::RawFromMem(buffer, n);
  if (n != this->Len()) {
    if (n == 0) {
      this->Clear();
    } else {
      // The new block is taken before the old one goes: a refused length or a failed
      // allocation leaves the array as it was.
      void* const old = this->GetMem();
      this->New(n);
      zrDeleteWithRef(static_cast<T*>(old));
    }
  }
  const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(T);
  if (bytes > 0) std::memcpy(static_cast<void*>(this->GetPointer()), buffer + head, bytes);
  return static_cast<int>(head + bytes);
}
