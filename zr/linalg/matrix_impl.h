/// \file
/// The member definitions of zrMatrix<TT>. The library includes this file to instantiate
/// the matrix for ZR_LINALG_TYPES; include it yourself only to instantiate it for a type
/// of your own.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "zr/linalg/gauss_kernel.h"
#include "zr/linalg/matrix.h"
#include "zr/linalg/product_kernel.h"
#include "zr/linalg/vector_impl.h"

namespace zr::detail {

// n pointers from zrMalloc, released with the buffer.
template <class P>
class PointerBuffer {
 public:
  explicit PointerBuffer(int n) : p_(static_cast<P*>(zrMalloc(Bytes(n)))) {}
  PointerBuffer(const PointerBuffer&) = delete;
  PointerBuffer& operator=(const PointerBuffer&) = delete;
  ~PointerBuffer() { zrFree(p_); }
  P& operator[](int i) { return p_[i]; }
  P* get() { return p_; }

 private:
  static std::uint64_t Bytes(int n) {
    const std::uint64_t size = sizeof(P);  // NOLINT(bugprone-sizeof-expression): P is a pointer
    return static_cast<std::uint64_t>(n > 0 ? n : 1) * size;
  }

  P* p_;
};

// Element m of a row reached through a row pointer, with the matrix's step in line.
template <class TT>
TT& RowAt(TT* row, int m, int step) {
  return row[static_cast<long long>(m) * step];
}

// The forward elimination shared by the solver, Inverse1 and Det, on n row pointers of a
// matrix with `cols` columns and step in line `step`. b (n element pointers) and e (n
// pointers to contiguous rows of en elements) may be null; every exchange is applied to
// all the arrays given. Returns the number of completed columns: the index of the first
// zero pivot, or n when none stopped it (more than cols when there are more rows than
// columns, which throws the "inconsistent" text).
template <class TT>
int ForwardEliminate(TT** rows, int n, int cols, int step, TT** b, TT** e, int en) {
  const int last = n < cols ? n : cols;
  int completed = n;
  for (int k = 0; k < last; ++k) {
    // The exchange is made during the scan, as the library always has.
    auto best = PivotMagnitude(RowAt(rows[k], k, step));
    for (int i = k + 1; i < n; ++i) {
      const auto v = PivotMagnitude(RowAt(rows[i], k, step));
      if (v > best) {
        std::swap(rows[k], rows[i]);
        if (b) std::swap(b[k], b[i]);
        if (e) std::swap(e[k], e[i]);
        best = v;
      }
    }
    const TT p = RowAt(rows[k], k, step);
    if (IsZeroPivot(p)) {
      completed = k;
      break;
    }
    const TT inv = LinalgOne<TT>() / p;
    for (int m = k + 1; m < cols; ++m) {
      TT& a = RowAt(rows[k], m, step);
      a = a * inv;
    }
    if (b) *b[k] = *b[k] * inv;
    if (e) {
      for (int m = 0; m < en; ++m) e[k][m] = e[k][m] * inv;
    }
    for (int j = k + 1; j < n; ++j) {
      const TT l = RowAt(rows[j], k, step);
      if (IsZeroElement(l)) continue;
      const TT linv = LinalgOne<TT>() / l;
      for (int m = k + 1; m < cols; ++m) {
        ScaleSubtract(RowAt(rows[j], m, step), linv, l, RowAt(rows[k], m, step));
      }
      if (b) ScaleSubtract(*b[j], linv, l, *b[k]);
      if (e) {
        for (int m = 0; m < en; ++m) ScaleSubtract(e[j][m], linv, l, e[k][m]);
      }
    }
  }
  // More rows than columns: the back substitution would need diagonal elements the
  // rows do not have, whether or not a zero pivot stopped the elimination.
  if (n > cols) throw BadParameters(ZR_TEXT_SYSTEM_INCONSISTENT);
  return completed;
}

// ForwardEliminate, by the blocked kernels for double when no two of the elements share
// storage (`separate`); they give the same bits.
template <class TT>
int Eliminate(bool separate, TT** rows, int n, int cols, int step, TT** b, TT** e, int en) {
  if constexpr (std::is_same_v<TT, double>) {
    if (separate) return GaussEliminate(rows, n, cols, step, b, e, en);
  }
  return ForwardEliminate(rows, n, cols, step, b, e, en);
}

// Whether a diagonal element of the eliminated rows is a zero pivot.
template <class TT>
bool AnyZeroDiagonal(TT** rows, int n, int step) {
  for (int i = 0; i < n; ++i) {
    if (IsZeroPivot(RowAt(rows[i], i, step))) return true;
  }
  return false;
}

// Whether a rows x cols view with steps a (in line) and c (in column) fits the 32-bit
// extents: neither size negative, the row and column runs cols * a and rows * c (the
// lengths of the vectors GetLine and GetColumn hand out) and the view's extents beyond
// its first element, offset by `offset` elements, all within 32 bits.
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
  p_ = block;
  step_line_ = 1;
  step_column_ = cols;
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
  p_ = first;
  step_line_ = a;
  step_column_ = c;
  cols_ = cols;
  rows_ = rows;
}

template <class TT>
void zrMatrix<TT>::SetDirectly(TT* data, int rows, int cols, int stepInLine, int stepInColumn) {
  if (!zr::detail::MatrixFits(0, rows, cols, stepInLine, stepInColumn))
    throw BadParameters("zrMatrix<T>::SetDirectly : out of range.");
  SetMem(nullptr);
  p_ = data;
  step_line_ = stepInLine;
  step_column_ = stepInColumn;
  cols_ = cols;
  rows_ = rows;
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
  p_ = nullptr;
  step_line_ = step_column_ = cols_ = rows_ = 0;
}

template <class TT>
void zrMatrix<TT>::Move(zrMatrix& src) {
  if (&src == this) return;
  SetMem(src.GetMem());
  p_ = src.p_;
  step_line_ = src.step_line_;
  step_column_ = src.step_column_;
  cols_ = src.cols_;
  rows_ = src.rows_;
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
  if constexpr (std::is_same_v<TT, double>) {
    // The blocked kernel, bit for bit the loop below.
    zr::detail::Product(zr::detail::ProductVariant::kAuto, rows_, other.cols_, cols_,
                        {p_, step_column_, step_line_},
                        {other.p_, other.step_column_, other.step_line_}, r.p_, r.step_column_);
    return r;
  }
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
  if constexpr (std::is_same_v<TT, double>) {
    // T() * this on the blocked kernel: the same products in the same order for k <= m,
    // mirrored.
    zr::detail::Product(zr::detail::ProductVariant::kAuto, cols_, cols_, rows_,
                        {p_, step_line_, step_column_}, {p_, step_column_, step_line_}, r.p_,
                        r.step_column_, true);
    // An out of another size would be re-created stored by rows: take r's block instead.
    if (cols_ > 0 && (out.rows_ != cols_ || out.cols_ != cols_)) {
      out.swap(r);
    } else {
      out = r;
    }
    return;
  }
  for (int k = 0; k < cols_; ++k) {
    for (int m = k; m < cols_; ++m) {
      TT sum = rows_ > 0 ? (*this)(0, k) * (*this)(0, m) : TT{};
      for (int i = 1; i < rows_; ++i) sum = sum + (*this)(i, k) * (*this)(i, m);
      r(k, m) = sum;
      if (k != m) r(m, k) = sum;
    }
  }
  out = r;
}

template <class TT>
void zrMatrix<TT>::SolveEquationGaussMethod(zrColumnVector<TT>& x, zrColumnVector<TT>& b) {
  const int n = rows_;
  if (b.Len() != n) throw BadParameters("different size.");
  zr::detail::PointerBuffer<TT*> rows(n);
  zr::detail::PointerBuffer<TT*> bp(n);
  for (int i = 0; i < n; ++i) {
    rows[i] = &(*this)(i, 0);
    bp[i] = &b[i];
  }
  bool separate = false;
  if constexpr (std::is_same_v<TT, double>) {
    separate = zr::detail::GaussSeparate(p_, rows_, cols_, step_line_, step_column_, b.GetPointer(),
                                         n, b.Tab());
  }
  zr::detail::Eliminate(separate, rows.get(), n, cols_, step_line_, bp.get(),
                        static_cast<TT**>(nullptr), 0);
  // Solved aside, so that x may share elements with b or this matrix, and x is left as it
  // was when the system has no unique solution.
  zrColumnVector<TT> r(n);
  if constexpr (std::is_same_v<TT, double>) {
    if (n <= cols_) {
      if (zr::detail::AnyZeroDiagonal(rows.get(), n, step_line_))
        throw BadParameters(ZR_TEXT_SYSTEM_NOT_UNIQUE);
      zr::detail::GaussBackSolve(rows.get(), n, step_line_, bp.get(), r.GetPointer(), r.Tab());
      x = r;
      return;
    }
  }
  for (int i = n - 1; i >= 0; --i) {
    TT xi = *bp[i];
    for (int m = n - 1; m > i; --m) xi = xi - r[m] * zr::detail::RowAt(rows[i], m, step_line_);
    r[i] = xi;
    if (zr::detail::IsZeroPivot(zr::detail::RowAt(rows[i], i, step_line_)))
      throw BadParameters(ZR_TEXT_SYSTEM_NOT_UNIQUE);
  }
  x = r;
}

template <class TT>
zrMatrix<TT> zrMatrix<TT>::Inverse1() {
  if (rows_ != cols_) throw BadParameters("Matrix must be square.");
  const int n = rows_;
  zrMatrix e(n, n);
  e.SetE();
  zr::detail::PointerBuffer<TT*> rows(n);
  zr::detail::PointerBuffer<TT*> er(n);
  for (int i = 0; i < n; ++i) {
    rows[i] = &(*this)(i, 0);
    er[i] = &e(i, 0);
  }
  bool separate = false;
  if constexpr (std::is_same_v<TT, double>) {
    separate = zr::detail::GaussSeparate(p_, n, n, step_line_, step_column_, nullptr, 0, 0);
  }
  zr::detail::Eliminate(separate, rows.get(), n, cols_, step_line_, static_cast<TT**>(nullptr),
                        er.get(), n);
  zrMatrix r(n, n);
  if constexpr (std::is_same_v<TT, double>) {
    if (zr::detail::AnyZeroDiagonal(rows.get(), n, step_line_))
      throw BadParameters(ZR_TEXT_SYSTEM_NOT_UNIQUE);
    zr::detail::GaussBackInverse(rows.get(), n, step_line_, er.get(), r.p_);
    return r;
  }
  for (int i = n - 1; i >= 0; --i) {
    for (int c = 0; c < n; ++c) r(i, c) = er[i][c];
    for (int m = n - 1; m > i; --m) {
      const TT a = zr::detail::RowAt(rows[i], m, step_line_);
      for (int c = 0; c < n; ++c) r(i, c) = r(i, c) - r(m, c) * a;
    }
    if (zr::detail::IsZeroPivot(zr::detail::RowAt(rows[i], i, step_line_)))
      throw BadParameters(ZR_TEXT_SYSTEM_NOT_UNIQUE);
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
  zr::detail::PointerBuffer<TT*> rows(n);
  for (int i = 0; i < n; ++i) rows[i] = &copy(i, 0);
  bool separate = false;
  if constexpr (std::is_same_v<TT, double>) {
    separate =
        zr::detail::GaussSeparate(copy.p_, n, n, copy.step_line_, copy.step_column_, nullptr, 0, 0);
  }
  zr::detail::Eliminate(separate, rows.get(), n, n, copy.step_line_, static_cast<TT**>(nullptr),
                        static_cast<TT**>(nullptr), 0);
  TT det = zr::detail::RowAt(rows[0], 0, copy.step_line_);
  for (int i = 1; i < n; ++i) det = det * zr::detail::RowAt(rows[i], i, copy.step_line_);
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
