// Vectors and matrices built from lists and read back as std::vector, for the tests of
// the linear-algebra classes: a vector's elements in index order (through its step), a
// matrix's row by row.
#pragma once

#include <initializer_list>
#include <type_traits>
#include <vector>

#include "zr/linalg/linalg.h"

namespace zr_test {

// A vector of the class V with these elements: Of({1, 2}), Of<zrColumnVector<zrComplex>>(...).
template <class V = zrVector<double>>
V Of(std::initializer_list<typename V::value_type> xs) {
  V v(static_cast<int>(xs.size()));
  int i = 0;
  for (const auto& x : xs) v[i++] = x;
  return v;
}

// A matrix with these rows; common_type_t keeps TT out of deduction, so that
// Rows({{1, 2}}) is a double matrix.
template <class TT = double>
zrMatrix<TT> Rows(std::initializer_list<std::initializer_list<std::common_type_t<TT>>> rows) {
  zrMatrix<TT> m(static_cast<int>(rows.size()), static_cast<int>(rows.begin()->size()));
  int i = 0;
  for (const auto& row : rows) {
    int j = 0;
    for (const TT& x : row) m(i, j++) = x;
    ++i;
  }
  return m;
}

template <class T>
std::vector<T> Values(const zrVector<T>& v) {
  std::vector<T> r;
  for (int i = 0; i < v.Len(); ++i) r.push_back(v[i]);
  return r;
}

template <class TT>
std::vector<TT> Values(const zrMatrix<TT>& m) {
  std::vector<TT> r;
  for (int i = 0; i < m.ColumnLen(); ++i)
    for (int j = 0; j < m.LineLen(); ++j) r.push_back(m(i, j));
  return r;
}

}  // namespace zr_test
