/// \file
/// The member definitions of zrMatrix<TT>. The library includes this file to instantiate
/// the matrix for ZR_LINALG_TYPES; include it yourself only to instantiate it for a type
/// of your own.
#pragma once

#include <cstdint>
#include <utility>

#include "zr/linalg/matrix.h"
#include "zr/linalg/vector_impl.h"

namespace zr::detail {

// The places of a row order: 0, 1, ..., n - 1 (empty for n = 0).
inline zrSimpleArray<int> Places(int n) {
  zrSimpleArray<int> perm = n > 0 ? zrSimpleArray<int>(n) : zrSimpleArray<int>();
  for (int i = 0; i < n; ++i) perm[i] = i;
  return perm;
}

// The forward elimination shared by the solver, Inverse1 and Det, on the rows of a in the
// order perm (place -> row), applying every step to b and to the rows of e as well when
// they are given. Returns the step of the first zero pivot, or the number of rows when
// none stopped it.
template <class TT>
int ForwardEliminate(zrMatrix<TT>& a, zrVector<TT>* b, zrMatrix<TT>* e, int* perm) {
  const int n = a.ColumnLen();
  const int cols = a.LineLen();
  const int en = e ? e->LineLen() : 0;
  const int last = n < cols ? n : cols;
  for (int k = 0; k < last; ++k) {
    // The exchange is made during the scan, as the library always has.
    auto best = PivotMagnitude(a(perm[k], k));
    for (int i = k + 1; i < n; ++i) {
      const auto v = PivotMagnitude(a(perm[i], k));
      if (v > best) {
        std::swap(perm[k], perm[i]);
        best = v;
      }
    }
    const int pk = perm[k];
    const TT p = a(pk, k);
    if (IsZeroPivot(p)) return k;
    const TT inv = LinalgOne<TT>() / p;
    for (int m = k + 1; m < cols; ++m) a(pk, m) = a(pk, m) * inv;
    if (b) (*b)[pk] = (*b)[pk] * inv;
    for (int m = 0; m < en; ++m) (*e)(pk, m) = (*e)(pk, m) * inv;
    for (int i = k + 1; i < n; ++i) {
      const int j = perm[i];
      const TT l = a(j, k);
      if (IsZeroElement(l)) continue;
      const TT linv = LinalgOne<TT>() / l;
      for (int m = k + 1; m < cols; ++m) ScaleSubtract(a(j, m), linv, l, a(pk, m));
      if (b) ScaleSubtract((*b)[j], linv, l, (*b)[pk]);
      for (int m = 0; m < en; ++m) ScaleSubtract((*e)(j, m), linv, l, (*e)(pk, m));
    }
  }
  return n;
}

// ForwardEliminate, or the kernel for TT when it takes the work, and then the refusal of a
// system with more rows than columns: back substitution would need diagonal elements the
// rows do not have, whether or not a zero pivot stopped the elimination.
template <class TT>
int Eliminate(zrMatrix<TT>& a, zrVector<TT>* b, zrMatrix<TT>* e, int* perm) {
  int stop = 0;
  if (!MatrixKernels<TT>::Eliminate(a, b, e, perm, stop)) stop = ForwardEliminate(a, b, e, perm);
  if (a.ColumnLen() > a.LineLen()) throw BadParameters(zr::text::kSystemInconsistent);
  return stop;
}

// The element offsets [low, high] around element 0 that a rows x cols view with steps a
// (along a line) and c (down a column) reaches; both 0 for a view of no elements.
inline void MatrixReach(int rows, int cols, int a, int c, std::int64_t& low, std::int64_t& high) {
  low = high = 0;
  if (rows <= 0 || cols <= 0) return;
  const std::int64_t along = static_cast<std::int64_t>(cols - 1) * a;
  const std::int64_t down = static_cast<std::int64_t>(rows - 1) * c;
  low = (along < 0 ? along : 0) + (down < 0 ? down : 0);
  high = (along > 0 ? along : 0) + (down > 0 ? down : 0);
}

// Whether a rows x cols view with steps a (in line) and c (in column) fits the 32-bit
// extents: neither size negative, the row and column runs cols * a and rows * c (the
// lengths of the vectors GetLine and GetColumn hand out) and the view's extents beyond
// its first element, offset by `offset` elements, all within 32 bits.
inline bool MatrixFits(std::int64_t offset, int rows, int cols, int a, int c) {
  if (rows < 0 || cols < 0 || !Fits32(offset)) return false;
  if (!RunFits(cols, a) || !RunFits(rows, c)) return false;
  if (rows == 0 || cols == 0) return true;
  std::int64_t low = 0, high = 0;
  MatrixReach(rows, cols, a, c, low, high);
  return Fits32(offset + low) && Fits32(offset + high + 1);
}

// Whether two views of equal size may share an element: the bytes they span meet.
template <class TT>
bool ViewsMeet(const zrMatrix<TT>& x, const zrMatrix<TT>& y) {
  const auto span = [](const zrMatrix<TT>& m, std::uintptr_t& lo, std::uintptr_t& hi) {
    const std::int64_t along = static_cast<std::int64_t>(m.LineLen() - 1) * m.TabInLine();
    const std::int64_t down = static_cast<std::int64_t>(m.ColumnLen() - 1) * m.TabInColumn();
    lo = AddressOf(m.GetPointer(), (along < 0 ? along : 0) + (down < 0 ? down : 0));
    hi = AddressOf(m.GetPointer(), (along > 0 ? along : 0) + (down > 0 ? down : 0)) + sizeof(TT);
  };
  std::uintptr_t xlo = 0, xhi = 0, ylo = 0, yhi = 0;
  span(x, xlo, xhi);
  span(y, ylo, yhi);
  return xlo < yhi && ylo < xhi;
}

// f(t(i, j), s(i, j)) for every element, row by row, of two views of one size, with the
// result of reading the whole of s first: a source that overlaps the target otherwise
// than element for element (m = m.T(), a shifted window of one block) is read into a
// private copy before the first write. Views apart, and a view that is its own source,
// are walked in place.
template <class TT, class F>
void ElementWise(zrMatrix<TT>& t, const zrMatrix<TT>& s, F f) {
  const int rows = t.ColumnLen();
  const int cols = t.LineLen();
  if (rows < 1 || cols < 1) return;
  const bool same = t.GetPointer() == s.GetPointer() && t.TabInLine() == s.TabInLine() &&
                    t.TabInColumn() == s.TabInColumn();
  if (!same && ViewsMeet(t, s)) {
    zrMatrix<TT> copy(rows, cols);
    for (int i = 0; i < rows; ++i) {
      for (int j = 0; j < cols; ++j) copy(i, j) = s(i, j);
    }
    ElementWise(t, copy, f);
    return;
  }
  for (int i = 0; i < rows; ++i) {
    for (int j = 0; j < cols; ++j) f(t(i, j), s(i, j));
  }
}

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class TT>, zrMatrix<TT>, "zrMatrix")

template <class TT>
zrMatrix<TT>::zrMatrix(int rows, int cols) {
  Set(rows, cols);
}

template <class TT>
zrMatrix<TT>::zrMatrix(const zrMatrix& other)
    : zrPArray(),
      p_(other.p_),
      step_line_(other.step_line_),
      step_column_(other.step_column_),
      cols_(other.cols_),
      rows_(other.rows_) {
  if (other.GetMem()) zrIncMemRef(other.GetMem());
  InitMem(other.GetMem());
}

template <class TT>
zrMatrix<TT>& zrMatrix<TT>::operator=(const zrMatrix& other) {
  if (&other == this) return *this;
  // other holds its own count of its block, so releasing ours cannot free its elements.
  if (rows_ != other.rows_ || cols_ != other.cols_) Set(other.rows_, other.cols_);
  zr::detail::ElementWise(*this, other, [](TT& a, const TT& b) { a = b; });
  return *this;
}

template <class TT>
zrMatrix<TT>::~zrMatrix() {
  zrDeleteWithRef(static_cast<TT*>(GetMem()));
}

template <class TT>
void zrMatrix<TT>::Fresh(int rows, int cols) {
  const std::int64_t n = static_cast<std::int64_t>(rows) * cols;
  if (n > INT32_MAX) throw zrErrNoMemory(static_cast<std::uint64_t>(n) * sizeof(TT));
  TT* block = nullptr;
  zrNewWithRef(block, static_cast<int>(n));
  void* const old = GetMem();
  InitMem(block);
  zrDeleteWithRef(static_cast<TT*>(old));
  View(block, 1, cols, rows, cols);
}

template <class TT>
void zrMatrix<TT>::View(TT* first, int step_line, int step_column, int rows, int cols) {
  p_ = first;
  step_line_ = step_line;
  step_column_ = step_column;
  cols_ = cols;
  rows_ = rows;
}

template <class TT>
void zrMatrix<TT>::Set(int rows, int cols) {
  if (rows < 0 || cols < 0) zr::detail::ThrowNewWithRefCount();
  if (rows == 0 || cols == 0) {
    Clear();
    return;
  }
  Fresh(rows, cols);
}

template <class TT>
void zrMatrix<TT>::Init(int rows, int cols) {
  if (rows != rows_ || cols != cols_) Set(rows, cols);
}

template <class TT>
void zrMatrix<TT>::Set(const zrMatrix& src, int row, int col, int rows, int cols) {
  const int a = src.step_line_;
  const int c = src.step_column_;
  const std::int64_t offset =
      static_cast<std::int64_t>(row) * c + static_cast<std::int64_t>(col) * a;
  std::int64_t low = 0, high = 0;
  zr::detail::MatrixReach(rows, cols, a, c, low, high);
  if (!zr::detail::MatrixFits(offset, rows, cols, a, c) ||
      !zr::detail::ViewInBlock(src.GetMem(), zr::detail::BlockBytes(src), src.p_, offset,
                               sizeof(TT), rows == 0 || cols == 0, low, high))
    throw BadParameters("zrMatrix<T>::Set : out of range.");
  TT* const first = src.p_ + offset;
  SetMem(src.GetMem());
  View(first, a, c, rows, cols);
}

template <class TT>
void zrMatrix<TT>::SetDirectly(TT* data, int rows, int cols, int stepInLine, int stepInColumn) {
  if (!zr::detail::MatrixFits(0, rows, cols, stepInLine, stepInColumn))
    throw BadParameters("zrMatrix<T>::SetDirectly : out of range.");
  SetMem(nullptr);
  View(data, stepInLine, stepInColumn, rows, cols);
}

template <class TT>
void zrMatrix<TT>::SetMem(void* const block) {
  SwitchMem<TT>(block);
}

template <class TT>
void zrMatrix<TT>::Free() {
  ReleaseMem<TT>();
}

template <class TT>
void zrMatrix<TT>::Clear() {
  SetMem(nullptr);
  View(nullptr, 0, 0, 0, 0);
}

template <class TT>
void zrMatrix<TT>::Move(zrMatrix& src) {
  if (&src == this) return;
  SetMem(src.GetMem());
  View(src.p_, src.step_line_, src.step_column_, src.rows_, src.cols_);
  src.Clear();
}

template <class TT>
void zrMatrix<TT>::swap(zrMatrix& other) {
  void* const mem = GetMem();
  InitMem(other.GetMem());
  other.InitMem(mem);
  std::swap(p_, other.p_);
  std::swap(step_line_, other.step_line_);
  std::swap(step_column_, other.step_column_);
  std::swap(cols_, other.cols_);
  std::swap(rows_, other.rows_);
}

template <class TT>
void zrMatrix<TT>::Copy() {
  if (!IsShared()) return;
  zrMatrix tmp;
  tmp.Move(*this);
  *this = tmp;
}

template <class TT>
zrMatrix<TT> zrMatrix<TT>::T() const {
  zrMatrix t(*this);
  std::swap(t.step_line_, t.step_column_);
  std::swap(t.cols_, t.rows_);
  return t;
}

template <class TT>
void zrMatrix<TT>::GetLine(zrLineVector<TT>& out, int i) const {
  out.SetDirectly(&(*this)(i, 0), cols_, step_line_, *this);
}

template <class TT>
void zrMatrix<TT>::GetColumn(zrColumnVector<TT>& out, int j) const {
  out.SetDirectly(&(*this)(0, j), rows_, step_column_, *this);
}

template <class TT>
void zrMatrix<TT>::Fill(const TT& value) {
  const TT v = value;
  for (int i = 0; i < rows_; ++i) {
    for (int j = 0; j < cols_; ++j) (*this)(i, j) = v;
  }
}

template <class TT>
void zrMatrix<TT>::SetE() {
  Fill(TT{});
  const int n = rows_ < cols_ ? rows_ : cols_;
  for (int i = 0; i < n; ++i) (*this)(i, i) = zr::detail::LinalgOne<TT>();
}

#define ZR_DETAIL_MATRIX_COMPOUND(op)                        \
  template <class TT>                                        \
  zrMatrix<TT>& zrMatrix<TT>::operator op(const TT& value) { \
    const TT v = value;                                      \
    for (int i = 0; i < rows_; ++i) {                        \
      for (int j = 0; j < cols_; ++j) (*this)(i, j) op v;    \
    }                                                        \
    return *this;                                            \
  }
ZR_DETAIL_MATRIX_COMPOUND(+=)
ZR_DETAIL_MATRIX_COMPOUND(-=)
ZR_DETAIL_MATRIX_COMPOUND(*=)
ZR_DETAIL_MATRIX_COMPOUND(/=)
#undef ZR_DETAIL_MATRIX_COMPOUND

#define ZR_DETAIL_MATRIX_SCALAR(op)                                      \
  template <class TT>                                                    \
  zrMatrix<TT> zrMatrix<TT>::operator op(const TT& value) const {        \
    zrMatrix r(rows_, cols_);                                            \
    for (int i = 0; i < r.rows_; ++i) {                                  \
      for (int j = 0; j < r.cols_; ++j) r(i, j) = (*this)(i, j)op value; \
    }                                                                    \
    return r;                                                            \
  }
ZR_DETAIL_MATRIX_SCALAR(+)
ZR_DETAIL_MATRIX_SCALAR(-)
ZR_DETAIL_MATRIX_SCALAR(*)
ZR_DETAIL_MATRIX_SCALAR(/)
#undef ZR_DETAIL_MATRIX_SCALAR

template <class TT>
zrMatrix<TT> zrMatrix<TT>::operator-() const {
  zrMatrix r(rows_, cols_);
  for (int i = 0; i < r.rows_; ++i) {
    for (int j = 0; j < r.cols_; ++j) r(i, j) = -(*this)(i, j);
  }
  return r;
}

template <class TT>
zrMatrix<TT>& zrMatrix<TT>::operator+=(const zrMatrix& other) {
  if (rows_ != other.rows_ || cols_ != other.cols_) {
    Set(other.rows_, other.cols_);
    Fill(TT{});
  }
  zr::detail::ElementWise(*this, other, [](TT& a, const TT& b) { a = a + b; });
  return *this;
}

template <class TT>
zrMatrix<TT>& zrMatrix<TT>::operator-=(const zrMatrix& other) {
  if (rows_ != other.rows_ || cols_ != other.cols_) {
    Set(other.rows_, other.cols_);
    Fill(TT{});
  }
  zr::detail::ElementWise(*this, other, [](TT& a, const TT& b) { a = a - b; });
  return *this;
}

template <class TT>
zrMatrix<TT> zrMatrix<TT>::operator+(const zrMatrix& other) const {
  if (rows_ != other.rows_ || cols_ != other.cols_) throw BadParameters("different size.");
  zrMatrix r(rows_, cols_);
  for (int i = 0; i < r.rows_; ++i) {
    for (int j = 0; j < r.cols_; ++j) r(i, j) = (*this)(i, j) + other(i, j);
  }
  return r;
}

template <class TT>
zrMatrix<TT> zrMatrix<TT>::operator-(const zrMatrix& other) const {
  if (rows_ != other.rows_ || cols_ != other.cols_) throw BadParameters("different size.");
  zrMatrix r(rows_, cols_);
  for (int i = 0; i < r.rows_; ++i) {
    for (int j = 0; j < r.cols_; ++j) r(i, j) = (*this)(i, j) - other(i, j);
  }
  return r;
}

template <class TT>
zrMatrix<TT> zrMatrix<TT>::operator*(const zrMatrix& other) const {
  if (cols_ != other.rows_) throw BadParameters("different size.");
  zrMatrix r(rows_, other.cols_);
  if (zr::detail::MatrixKernels<TT>::Product(*this, other, r)) return r;
  for (int i = 0; i < r.rows_; ++i) {
    for (int j = 0; j < r.cols_; ++j) {
      TT sum = cols_ > 0 ? (*this)(i, 0) * other(0, j) : TT{};
      for (int k = 1; k < cols_; ++k) sum = sum + (*this)(i, k) * other(k, j);
      r(i, j) = sum;
    }
  }
  return r;
}

template <class TT>
zrColumnVector<TT> zrMatrix<TT>::operator*(const zrColumnVector<TT>& v) const {
  if (cols_ != v.Len()) throw BadParameters("different length.");
  zrColumnVector<TT> r(rows_);
  for (int i = 0; i < rows_; ++i) {
    TT sum = cols_ > 0 ? (*this)(i, 0) * v[0] : TT{};
    for (int k = 1; k < cols_; ++k) sum = sum + (*this)(i, k) * v[k];
    r[i] = sum;
  }
  return r;
}

template <class TT>
void zrMatrix<TT>::SelfTMulSelf(zrMatrix& out) const {
  // Built aside: out may be this matrix or view its elements.
  zrMatrix r(cols_, cols_);
  if (!zr::detail::MatrixKernels<TT>::SelfTMulSelf(*this, r)) {
    for (int k = 0; k < cols_; ++k) {
      for (int m = k; m < cols_; ++m) {
        TT sum = rows_ > 0 ? (*this)(0, k) * (*this)(0, m) : TT{};
        for (int i = 1; i < rows_; ++i) sum = sum + (*this)(i, k) * (*this)(i, m);
        r(k, m) = sum;
        if (k != m) r(m, k) = sum;
      }
    }
  }
  // An out of another size would be re-created stored by rows: it takes r's block.
  if (out.rows_ != cols_ || out.cols_ != cols_) {
    out.swap(r);
  } else {
    out = r;
  }
}

template <class TT>
void zrMatrix<TT>::SolveEquationGaussMethod(zrColumnVector<TT>& x, zrColumnVector<TT>& b) {
  const int n = rows_;
  if (b.Len() != n) throw BadParameters("different size.");
  zrSimpleArray<int> perm = zr::detail::Places(n);
  // Solved aside, so that x may share elements with b or this matrix, and x is left as it
  // was when the system has no unique solution.
  if (zr::detail::Eliminate(*this, &b, static_cast<zrMatrix*>(nullptr), perm.begin()) < n)
    throw BadParameters(zr::text::kSystemNotUnique);
  zrColumnVector<TT> r(n);
  for (int i = n - 1; i >= 0; --i) {
    const int row = perm[i];
    TT xi = b[row];
    for (int m = n - 1; m > i; --m) xi = xi - r[m] * (*this)(row, m);
    r[i] = xi;
  }
  x = r;
}

template <class TT>
zrMatrix<TT> zrMatrix<TT>::Inverse1() {
  if (rows_ != cols_) throw BadParameters("Matrix must be square.");
  const int n = rows_;
  zrMatrix e(n, n);
  e.SetE();
  zrSimpleArray<int> perm = zr::detail::Places(n);
  if (zr::detail::Eliminate(*this, static_cast<zrVector<TT>*>(nullptr), &e, perm.begin()) < n)
    throw BadParameters(zr::text::kSystemNotUnique);
  zrMatrix r(n, n);
  if (zr::detail::MatrixKernels<TT>::BackInverse(*this, perm.begin(), e, r)) return r;
  for (int i = n - 1; i >= 0; --i) {
    const int row = perm[i];
    for (int c = 0; c < n; ++c) r(i, c) = e(row, c);
    for (int m = n - 1; m > i; --m) {
      const TT a = (*this)(row, m);
      for (int c = 0; c < n; ++c) r(i, c) = r(i, c) - r(m, c) * a;
    }
  }
  return r;
}

template <class TT>
zrMatrix<TT> zrMatrix<TT>::Inverse() const {
  zrMatrix copy(*this);
  copy.Copy();
  return copy.Inverse1();
}

template <class TT>
TT zrMatrix<TT>::Det() const {
  if (rows_ != cols_) throw BadParameters("Det: Matrix must be square.");
  const int n = rows_;
  if (n == 0) return zr::detail::LinalgOne<TT>();
  zrMatrix copy(*this);
  copy.Copy();
  zrSimpleArray<int> perm = zr::detail::Places(n);
  zr::detail::Eliminate(copy, static_cast<zrVector<TT>*>(nullptr), static_cast<zrMatrix*>(nullptr),
                        perm.begin());
  TT det = copy(perm[0], 0);
  for (int i = 1; i < n; ++i) det = det * copy(perm[i], i);
  return det;
}

template <class TT>
int zrMatrix<TT>::PositiveLength() const {
  if (rows_ == 0 || cols_ == 0) return 0;
  const std::int64_t a = step_line_;
  const std::int64_t c = step_column_;
  const std::int64_t n = (a < 0 ? 1 : (cols_ - 1) * a + 1) + (c >= 0 ? (rows_ - 1) * c : 0);
  return static_cast<int>(n);
}

template <class TT>
int zrMatrix<TT>::NegativeLength() const {
  if (rows_ == 0 || cols_ == 0) return 0;
  const std::int64_t a = step_line_;
  const std::int64_t c = step_column_;
  return static_cast<int>((a < 0 ? (cols_ - 1) * a : 0) + (c < 0 ? (rows_ - 1) * c : 0));
}

template <class TT>
int zrMatrix<TT>::MemSize() const {
  return static_cast<int>(std::int64_t{rows_} * cols_ * static_cast<std::int64_t>(sizeof(TT)) + 8);
}

template <class TT>
int zrMatrix<TT>::ToMem(unsigned char* buffer) const {
  int at = zr::detail::RawToMem(buffer, rows_);
  at += zr::detail::RawToMem(buffer + at, cols_);
  for (int i = 0; i < rows_; ++i) {
    for (int j = 0; j < cols_; ++j) at += zrToMem(buffer + at, (*this)(i, j));
  }
  return at;
}

template <class TT>
int zrMatrix<TT>::FromMem(const unsigned char* buffer) {
  std::int32_t rows = 0;
  std::int32_t cols = 0;
  int at = zr::detail::RawFromMem(buffer, rows);
  at += zr::detail::RawFromMem(buffer + at, cols);
  Set(rows, cols);
  for (int i = 0; i < rows_; ++i) {
    for (int j = 0; j < cols_; ++j) at += zrFromMem(buffer + at, (*this)(i, j));
  }
  return at;
}
