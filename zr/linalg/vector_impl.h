/// \file
/// The member definitions of zrVector<T> and the per-type rules of the linear-algebra
/// templates. The library includes this file to instantiate them for ZR_LINALG_TYPES;
/// include it yourself only to instantiate them for a type of your own.
#pragma once

#include <cmath>
#include <cstdint>
#include <utility>

#include "zr/linalg/vector.h"

namespace zr::detail {

// One, for SetE and the 1/p of the elimination.
template <class T>
T LinalgOne() {
  return T(1);
}
template <>
inline zrTVec3<double> LinalgOne<zrTVec3<double>>() {
  return zrTVec3<double>(1, 1, 1);
}

// The square root a norm takes of a scalar product.
inline double NormRoot(double s) { return std::sqrt(s); }
inline zrComplex NormRoot(const zrComplex& s) { return zrComplexNormSqrt(s); }
inline zrTVec3<double> NormRoot(const zrTVec3<double>& s) {
  return zrTVec3<double>(std::sqrt(s.X()), std::sqrt(s.Y()), std::sqrt(s.Z()));
}

// The magnitude the pivot search compares with the type's own >.
inline double PivotMagnitude(double a) { return std::fabs(a); }
inline double PivotMagnitude(const zrComplex& a) { return zrAbs(a); }
inline zrTVec3<double> PivotMagnitude(const zrTVec3<double>& a) {
  return zrTVec3<double>(std::fabs(a.X()), std::fabs(a.Y()), std::fabs(a.Z()));
}

// A pivot that stops the elimination (and a diagonal that stops back substitution).
inline bool IsZeroPivot(double a) { return a == 0; }
inline bool IsZeroPivot(const zrComplex& a) { return a.Re() == 0 && a.Im() == 0; }
inline bool IsZeroPivot(const zrTVec3<double>& a) { return a.X() == 0 || a.Y() == 0 || a.Z() == 0; }

// A multiplier l that leaves its row alone.
inline bool IsZeroElement(double a) { return a == 0; }
inline bool IsZeroElement(const zrComplex& a) { return IsZeroPivot(a); }
inline bool IsZeroElement(const zrTVec3<double>& a) {
  return a.X() == 0 && a.Y() == 0 && a.Z() == 0;
}

// target = (1/l) * target - pivot, with inv = 1/l; for zrTVec3 a coordinate whose l is 0
// is left as it is.
template <class T>
void ScaleSubtract(T& target, const T& inv, const T& /*l*/, const T& pivot) {
  target = inv * target - pivot;
}
inline void ScaleSubtract(zrTVec3<double>& target, const zrTVec3<double>& inv,
                          const zrTVec3<double>& l, const zrTVec3<double>& pivot) {
  for (int c = 0; c < 3; ++c) {
    if (l[c] != 0) target[c] = inv[c] * target[c] - pivot[c];
  }
}

// The address of element `index` of a run from p with the given step, as a number: the
// overlap tests compare runs that need not lie in one object.
template <class T>
std::uintptr_t AddressOf(const T* p, std::int64_t index) {
  const std::int64_t bytes = index * static_cast<std::int64_t>(sizeof(T));
  return reinterpret_cast<std::uintptr_t>(p) + static_cast<std::uintptr_t>(bytes);
}

// The bytes [lo, hi) that a run of n >= 1 elements from p with the given step touches.
template <class T>
void RunSpan(const T* p, int n, int step, std::uintptr_t& lo, std::uintptr_t& hi) {
  const std::int64_t last = static_cast<std::int64_t>(n - 1) * step;
  lo = AddressOf(p, last < 0 ? last : 0);
  hi = AddressOf(p, last > 0 ? last : 0) + sizeof(T);
}

// Whether two runs of n >= 1 elements may share an element (their spans meet; runs that
// interleave without touching count too, which only costs a copy).
template <class T>
bool RunsMeet(const T* a, int sa, const T* b, int sb, int n) {
  std::uintptr_t alo = 0, ahi = 0, blo = 0, bhi = 0;
  RunSpan(a, n, sa, alo, ahi);
  RunSpan(b, n, sb, blo, bhi);
  return alo < bhi && blo < ahi;
}

// f(target[i], source[i]) for i = 0 ... n - 1 over two strided runs, with the result the
// walk would have if the whole source were read first, whatever storage the two share.
// Runs apart from each other, and a run that is its own source element by element, are
// walked forwards as they stand; runs with one step walk in the direction that reads
// each source element before it is written; any other overlap (another step, a reversed
// view, a transposed one) reads the source into a private copy first.
template <class T, class F>
void ElementWise(T* t, int ts, const T* s, int ss, int n, F f) {
  if (n < 1) return;
  bool backward = false;
  if (RunsMeet(t, ts, s, ss, n) && !(t == s && ts == ss)) {
    if (ts != ss || ts == 0) {
      zrVector<T> copy(n);
      for (int i = 0; i < n; ++i) copy[i] = s[static_cast<std::int64_t>(i) * ss];
      ElementWise(t, ts, copy.GetPointer(), 1, n, f);
      return;
    }
    // Target i overwrites source i + (t - s) / step, still to be read walking forwards
    // when that index is later.
    backward = (AddressOf(t, 0) > AddressOf(s, 0)) == (ts > 0);
  }
  if (backward) {
    for (int i = n - 1; i >= 0; --i)
      f(t[static_cast<std::int64_t>(i) * ts], s[static_cast<std::int64_t>(i) * ss]);
  } else {
    for (int i = 0; i < n; ++i)
      f(t[static_cast<std::int64_t>(i) * ts], s[static_cast<std::int64_t>(i) * ss]);
  }
}

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrVector<T>, "zrVector")

template <class T>
zrVector<T>::zrVector(int n) {
  Set(n);
}

template <class T>
zrVector<T>::zrVector(const zrSimpleArray<T>& array)
    : zrPArray(), p_(array.GetPointer()), n_(array.Len()), step_(1) {
  if (array.GetMem()) zrIncMemRef(array.GetMem());
  InitMem(array.GetMem());
}

template <class T>
zrVector<T>::zrVector(const zrVector& other)
    : zrPArray(), p_(other.p_), n_(other.n_), step_(other.step_) {
  if (other.GetMem()) zrIncMemRef(other.GetMem());
  InitMem(other.GetMem());
}

template <class T>
zrVector<T>::~zrVector() {
  zrDeleteWithRef(static_cast<T*>(GetMem()));
}

template <class T>
zrVector<T>& zrVector<T>::operator=(const zrVector& other) {
  if (&other == this) return *this;
  if (n_ != other.n_) {
    // other holds its own count of its block, so releasing ours cannot free its elements.
    Set(other.n_);
  }
  zr::detail::ElementWise(p_, step_, other.p_, other.step_, n_, [](T& a, const T& b) { a = b; });
  return *this;
}

template <class T>
void zrVector<T>::Fill(const T& value) {
  const T v = value;
  for (int i = 0; i < n_; ++i) (*this)[i] = v;
}

template <class T>
zrVector<T>* zrVector<T>::NewVector() const {
  return new zrVector<T>();
}

template <class T>
int zrVector<T>::IsColumn() const {
  return -1;
}

template <class T>
int zrVector<T>::IsLine() const {
  return -1;
}

template <class T>
void zrVector<T>::Fresh(int n, int keep) {
  T* block = nullptr;
  zrNewWithRef(block, n);  // holder count 1: ours
  for (int i = 0; i < keep; ++i) block[i] = (*this)[i];
  void* const old = GetMem();
  InitMem(block);
  zrDeleteWithRef(static_cast<T*>(old));
  p_ = block;
  n_ = n;
  step_ = 1;
}

template <class T>
void zrVector<T>::Set(int n) {
  if (n < 0) zr::detail::ThrowNewWithRefCount();
  if (n == 0) {
    Clear();
    return;
  }
  Fresh(n);
}

template <class T>
void zrVector<T>::Init(int n) {
  if (n != n_) Set(n);
}

template <class T>
void zrVector<T>::ReSet(int n) {
  if (n == n_) return;
  if (n < 0) zr::detail::ThrowNewWithRefCount();
  if (n == 0) {
    SetMem(nullptr);
    p_ = nullptr;
    n_ = 0;
    return;
  }
  Fresh(n, n < n_ ? n : n_);
}

template <class T>
void zrVector<T>::Set(const zrVector& src, int start, int len) {
  Set(src, start, len, src.step_);
}

template <class T>
void zrVector<T>::Set(const zrVector& src, int start, int len, int step) {
  const std::int64_t offset = static_cast<std::int64_t>(start) * src.step_;
  if (!zr::detail::Fits32(offset) || !zr::detail::RunFits(len, step) ||
      !zr::detail::Fits32(offset + static_cast<std::int64_t>(len) * step) ||
      !zr::detail::RunInBlock(src.GetMem(), zr::detail::BlockBytes(src), src.p_, offset, sizeof(T),
                              len, step))
    throw BadParameters("zrVector<T>::Set : out of range.");
  T* const first = src.p_ + offset;
  SetMem(src.GetMem());
  p_ = first;
  n_ = len;
  step_ = step;
}

template <class T>
void zrVector<T>::SetDirectly(T* data, int len, int step) {
  if (!zr::detail::RunFits(len, step))
    throw BadParameters("zrVector<T>::SetDirectly : out of range.");
  SetMem(nullptr);
  p_ = data;
  n_ = len;
  step_ = step;
}

template <class T>
void zrVector<T>::SetDirectly(T* data, int len, int step, const zrPArray& holder) {
  if (!zr::detail::RunFits(len, step) ||
      !zr::detail::RunInBlock(holder.GetMem(), zr::detail::BlockBytes(holder), data, 0, sizeof(T),
                              len, step))
    throw BadParameters("zrVector<T>::SetDirectly : out of range.");
  SetMem(holder.GetMem());
  p_ = data;
  n_ = len;
  step_ = step;
}

template <class T>
void zrVector<T>::SetMem(void* const block) {
  SwitchMem<T>(block);
}

template <class T>
void zrVector<T>::Free() {
  ReleaseMem<T>();
}

template <class T>
void zrVector<T>::Clear() {
  SetMem(nullptr);
  p_ = nullptr;
  n_ = 0;
  step_ = 0;
}

template <class T>
void zrVector<T>::Move(zrVector& src) {
  if (&src == this) return;
  SetMem(src.GetMem());
  p_ = src.p_;
  n_ = src.n_;
  step_ = src.step_;
  src.Clear();
}

template <class T>
void zrVector<T>::swap(zrVector& other) {
  void* const mem = GetMem();
  InitMem(other.GetMem());
  other.InitMem(mem);
  std::swap(p_, other.p_);
  std::swap(n_, other.n_);
  std::swap(step_, other.step_);
}

template <class T>
void zrVector<T>::Copy() {
  if (!IsShared()) return;
  zrVector tmp;
  tmp.Move(*this);
  *this = tmp;
}

template <class T>
void zrVector<T>::Left(zrVector& out, int n) const {
  if (n < 1 || n > n_) throw BadParameters("zrVector<T>::Left: Out of Range");
  out.Set(*this, 0, n);
}

template <class T>
void zrVector<T>::Right(zrVector& out, int n) const {
  if (n < 1 || n > n_) throw BadParameters("zrVector<T>::Right: Out of Range");
  out.Set(*this, n_ - n, n);
}

template <class T>
void zrVector<T>::Mid(zrVector& out, int start, int n) const {
  if (start < 0 || n < 1 || start > n_ - n) throw BadParameters("zrVector<T>::Mid: Out of Range");
  out.Set(*this, start, n);
}

template <class T>
int zrVector<T>::Insert(T value, int pos) {
  if (pos < 0 || pos > n_) throw BadParameters("Out of range");
  ReSet(zr::detail::GrownLength(std::int64_t{n_} + 1, sizeof(T)));
  for (int i = n_ - 1; i > pos; --i) p_[i] = p_[i - 1];
  p_[pos] = value;
  return pos;
}

template <class T>
void zrVector<T>::Remove(int i) {
  if (n_ < 1 || i < 0 || i >= n_) throw BadParameters("Out of range");
  Copy();
  if (n_ == 1) {
    Clear();
    return;
  }
  const T removed = (*this)[i];
  for (int k = i; k < n_ - 1; ++k) (*this)[k] = (*this)[k + 1];
  (*this)[n_ - 1] = removed;
  ReSet(n_ - 1);
}

template <class T>
void zrVector<T>::RemoveLast() {
  if (n_ > 0) ReSet(n_ - 1);
}

template <class T>
T* zrVector<T>::insert(T* where, const T& value) {
  const int i = step_ != 0 ? static_cast<int>((where - p_) / step_) : 0;
  Insert(value, i);
  return p_ + i;
}

template <class T>
T* zrVector<T>::erase(T* where) {
  const int i = step_ != 0 ? static_cast<int>((where - p_) / step_) : 0;
  Remove(i);
  return p_ + static_cast<long long>(i) * step_;
}

template <class T>
void zrVector<T>::push_back(const T& value) {
  const T v = value;  // value may be an element, and the storage is about to move
  ReSet(zr::detail::GrownLength(std::int64_t{n_} + 1, sizeof(T)));
  p_[n_ - 1] = v;
}

template <class T>
void zrVector<T>::Concat(const zrVector& other) {
  const int m = other.n_;
  if (m == 0) return;
  const int old = n_;
  ReSet(zr::detail::GrownLength(std::int64_t{old} + m, sizeof(T)));
  // other still views its elements (for other == this, the front of the new block).
  for (int i = 0; i < m; ++i) p_[old + i] = other[i];
}

template <class T>
void zrVector<T>::CheckLength(const zrVector& other) const {
  if (n_ != other.n_) throw BadParameters("different length.");
}

template <class T>
zrVector<T>& zrVector<T>::operator+=(const T& value) {
  const T v = value;
  for (int i = 0; i < n_; ++i) (*this)[i] += v;
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::operator-=(const T& value) {
  const T v = value;
  for (int i = 0; i < n_; ++i) (*this)[i] -= v;
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::operator*=(const T& value) {
  const T v = value;
  for (int i = 0; i < n_; ++i) (*this)[i] *= v;
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::operator/=(const T& value) {
  const T v = value;
  for (int i = 0; i < n_; ++i) (*this)[i] /= v;
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::operator+=(const zrVector& other) {
  CheckLength(other);
  zr::detail::ElementWise(p_, step_, other.p_, other.step_, n_,
                          [](T& a, const T& b) { a = a + b; });
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::operator-=(const zrVector& other) {
  CheckLength(other);
  zr::detail::ElementWise(p_, step_, other.p_, other.step_, n_,
                          [](T& a, const T& b) { a = a - b; });
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::Mul(const zrVector& other) {
  CheckLength(other);
  zr::detail::ElementWise(p_, step_, other.p_, other.step_, n_,
                          [](T& a, const T& b) { a = a * b; });
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::Div(const zrVector& other) {
  CheckLength(other);
  zr::detail::ElementWise(p_, step_, other.p_, other.step_, n_,
                          [](T& a, const T& b) { a = a / b; });
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::Min(const zrVector& other) {
  CheckLength(other);
  zr::detail::ElementWise(p_, step_, other.p_, other.step_, n_, [](T& a, const T& b) {
    if (a > b) a = b;
  });
  return *this;
}

template <class T>
zrVector<T>& zrVector<T>::Max(const zrVector& other) {
  CheckLength(other);
  zr::detail::ElementWise(p_, step_, other.p_, other.step_, n_, [](T& a, const T& b) {
    if (b > a) a = b;
  });
  return *this;
}

template <class T>
T zrVector<T>::ScalarMul(const zrVector& other) const {
  CheckLength(other);
  if (n_ == 0) return T{};
  T sum = (*this)[0] * other[0];
  for (int i = 1; i < n_; ++i) sum = sum + (*this)[i] * other[i];
  return sum;
}

template <class T>
T zrVector<T>::Norm() const {
  return zr::detail::NormRoot(ScalarMul(*this));
}

// The window set-ups keep both within 32 bits; they are taken in 64 bits all the same.
template <class T>
int zrVector<T>::PositiveLength() const {
  return step_ >= 0 ? static_cast<int>(static_cast<std::int64_t>(n_) * step_) : 0;
}

template <class T>
int zrVector<T>::NegativeLength() const {
  return step_ < 0 ? static_cast<int>(static_cast<std::int64_t>(n_ - 1) * step_) : 0;
}

template <class T>
int zrVector<T>::MemSize() const {
  return static_cast<int>(4 + std::int64_t{n_} * static_cast<std::int64_t>(sizeof(T)));
}

template <class T>
int zrVector<T>::ToMem(unsigned char* buffer) const {
  int at = zr::detail::RawToMem(buffer, n_);
  for (int i = 0; i < n_; ++i) at += zrToMem(buffer + at, (*this)[i]);
  return at;
}

template <class T>
int zrVector<T>::FromMem(const unsigned char* buffer) {
  std::int32_t n = 0;
  int at = zr::detail::RawFromMem(buffer, n);
  if (n < 1) {
    Clear();
    return at;
  }
  Fresh(n);
  for (int i = 0; i < n; ++i) at += zrFromMem(buffer + at, p_[i]);
  return at;
}
