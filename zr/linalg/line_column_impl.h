/// \file
/// The member definitions of zrColumnVector<TT> and zrLineVector<TT>. The library includes
/// this file to instantiate them for ZR_LINALG_TYPES; include it yourself only to
/// instantiate them for a type of your own.
#pragma once

#include "zr/linalg/line_column.h"
#include "zr/linalg/matrix.h"
#include "zr/linalg/vector_impl.h"

namespace zr::detail {

// A new vector of v's class and length with element i = f(v[i]).
template <class V, class F>
V MapVector(const V& v, F f) {
  V r(v.Len());
  for (int i = 0; i < v.Len(); ++i) r[i] = f(v[i]);
  return r;
}

// The same with element i = f(a[i], b[i]); the lengths must be equal.
template <class V, class F>
V CombineVectors(const V& a, const V& b, F f) {
  if (a.Len() != b.Len()) throw BadParameters("different length.");
  V r(a.Len());
  for (int i = 0; i < a.Len(); ++i) r[i] = f(a[i], b[i]);
  return r;
}

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class TT>, zrColumnVector<TT>, "zrColumnVector")
ZR_DEFINE_TYPE_IDENTITY_WITH(template <class TT>, zrLineVector<TT>, "zrLineVector")

template <class TT>
zrColumnVector<TT>::~zrColumnVector() = default;

template <class TT>
zrColumnVector<TT>* zrColumnVector<TT>::NewVector() const {
  return new zrColumnVector<TT>();
}

template <class TT>
int zrColumnVector<TT>::IsColumn() const {
  return 1;
}

template <class TT>
int zrColumnVector<TT>::IsLine() const {
  return 0;
}

template <class TT>
zrLineVector<TT> zrColumnVector<TT>::T() const {
  return zrLineVector<TT>(static_cast<const zrVector<TT>&>(*this));
}

template <class TT>
zrColumnVector<TT> zrColumnVector<TT>::operator+(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a + value; });
}

template <class TT>
zrColumnVector<TT> zrColumnVector<TT>::operator-(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a - value; });
}

template <class TT>
zrColumnVector<TT> zrColumnVector<TT>::operator*(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a * value; });
}

template <class TT>
zrColumnVector<TT> zrColumnVector<TT>::operator/(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a / value; });
}

template <class TT>
zrColumnVector<TT> zrColumnVector<TT>::operator+(const zrColumnVector& other) const {
  return zr::detail::CombineVectors(*this, other, [](const TT& a, const TT& b) { return a + b; });
}

template <class TT>
zrColumnVector<TT> zrColumnVector<TT>::operator-(const zrColumnVector& other) const {
  return zr::detail::CombineVectors(*this, other, [](const TT& a, const TT& b) { return a - b; });
}

template <class TT>
zrMatrix<TT> zrColumnVector<TT>::operator*(const zrLineVector<TT>& line) const {
  const int rows = this->Len();
  const int cols = line.Len();
  zrMatrix<TT> r(rows, cols);
  if (r.ColumnLen() == 0) return r;
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) r(i, j) = line[j] * (*this)[i];
  }
  return r;
}

template <class TT>
zrLineVector<TT>::~zrLineVector() = default;

template <class TT>
zrLineVector<TT>* zrLineVector<TT>::NewVector() const {
  return new zrLineVector<TT>();
}

template <class TT>
int zrLineVector<TT>::IsColumn() const {
  return 0;
}

template <class TT>
int zrLineVector<TT>::IsLine() const {
  return 1;
}

template <class TT>
zrColumnVector<TT> zrLineVector<TT>::T() const {
  return zrColumnVector<TT>(static_cast<const zrVector<TT>&>(*this));
}

template <class TT>
zrLineVector<TT> zrLineVector<TT>::operator+(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a + value; });
}

template <class TT>
zrLineVector<TT> zrLineVector<TT>::operator-(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a - value; });
}

template <class TT>
zrLineVector<TT> zrLineVector<TT>::operator*(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a * value; });
}

template <class TT>
zrLineVector<TT> zrLineVector<TT>::operator/(const TT& value) const {
  return zr::detail::MapVector(*this, [&value](const TT& a) { return a / value; });
}

template <class TT>
zrLineVector<TT> zrLineVector<TT>::operator+(const zrLineVector& other) const {
  return zr::detail::CombineVectors(*this, other, [](const TT& a, const TT& b) { return a + b; });
}

template <class TT>
zrLineVector<TT> zrLineVector<TT>::operator-(const zrLineVector& other) const {
  return zr::detail::CombineVectors(*this, other, [](const TT& a, const TT& b) { return a - b; });
}

template <class TT>
TT zrLineVector<TT>::operator*(const zrColumnVector<TT>& column) const {
  return this->ScalarMul(column);
}

template <class TT>
zrLineVector<TT> zrLineVector<TT>::operator*(const zrMatrix<TT>& m) const {
  const int n = this->Len();
  if (m.ColumnLen() != n) throw BadParameters("different length.");
  const int cols = m.LineLen();
  zrLineVector r(cols);
  for (int j = 0; j < cols; ++j) {
    TT sum = n > 0 ? (*this)[0] * m(0, j) : TT{};
    for (int i = 1; i < n; ++i) sum = sum + (*this)[i] * m(i, j);
    r[j] = sum;
  }
  return r;
}
