/// \file
/// zrColumnVector<TT> and zrLineVector<TT>: vectors with an orientation.
///
/// A column vector is an n x 1 matrix, a line (row) vector a 1 x n matrix; that fixes the
/// shape of their products with each other and with zrMatrix<TT>. Both are a zrVector<TT>
/// with no fields of their own: the same strided view with the same sharing rules (the
/// copy constructor shares, operator= copies values; see zr/linalg/vector.h). They answer
/// IsColumn() / IsLine() with 1 / 0 and 0 / 1, and NewVector() makes one of their own
/// class.
///
/// T() is the transpose: a vector of the other orientation viewing the same elements
/// (same block, first element, length and step), so writes through either are seen by
/// both.
///
/// Every result that is not a view is built in fresh storage with step 1, in index order;
/// operands are read through their own steps, and sums of products run in index order
/// from the first product. Products are the element's binary product: complex products
/// without conjugation, coordinate-wise products for zrTVec3<double>.
///
/// Errors (BadParameters): "different length." when the lengths of two vectors, or the
/// line length and the matrix's rows, do not fit.
///
/// The template parameter is TT because T() is a member.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/linalg/vector.h"

template <class TT>
class ZR_API zrMatrix;  // the export must be on the first declaration
template <class TT>
class ZR_API zrLineVector;

/// A column vector (an n x 1 matrix) of TT: a zrVector with that orientation, which fixes
/// the shape of its products with line vectors and matrices.
/// Who shares the block: as zrVector: the copy constructor shares, operator= copies
/// values; T() is a line vector viewing the same elements (see line_column.h). See the
/// example docs/examples.md#guide_linalg and examples/zr_interp.cpp.
template <class TT>
class ZR_API zrColumnVector : public zrVector<TT> {
  ZR_TYPE_IDENTITY
 public:
  /// As the zrVector<TT> constructors: empty; n uninitialised elements (0: empty).
  zrColumnVector() = default;
  explicit zrColumnVector(int n) : zrVector<TT>(n) {}
  /// These SHARE the source's elements.
  zrColumnVector(const zrColumnVector& other) : zrVector<TT>(other) {}
  explicit zrColumnVector(const zrSimpleArray<TT>& array) : zrVector<TT>(array) {}
  /// Views a plain (or line) vector's elements as a column.
  explicit zrColumnVector(const zrVector<TT>& other) : zrVector<TT>(other) {}
  ~zrColumnVector() override;

  /// The value-copying assignment of zrVector<TT>.
  zrColumnVector& operator=(const zrColumnVector& other) {
    zrVector<TT>::operator=(other);
    return *this;
  }
  using zrVector<TT>::operator=;
  /// Exchanges handles (see zrVector<TT>::swap).
  void swap(zrColumnVector& other) { zrVector<TT>::swap(other); }

  zrColumnVector* NewVector() const override;
  int IsColumn() const override;
  int IsLine() const override;

  /// The line vector viewing the same elements.
  zrLineVector<TT> T() const;

  /// New column vectors, element i = element i op value.
  zrColumnVector operator+(const TT& value) const;
  zrColumnVector operator-(const TT& value) const;
  zrColumnVector operator*(const TT& value) const;
  zrColumnVector operator/(const TT& value) const;
  /// Element by element; lengths must be equal ("different length.").
  zrColumnVector operator+(const zrColumnVector& other) const;
  zrColumnVector operator-(const zrColumnVector& other) const;
  /// The outer product: a (this length) x (line length) matrix stored by rows with
  /// element (i, j) = line[j] * this[i]. Either factor may be empty: the result is then
  /// an empty matrix.
  zrMatrix<TT> operator*(const zrLineVector<TT>& line) const;
};

/// A line (row) vector (a 1 x n matrix) of TT: a zrVector with that orientation, which
/// fixes the shape of its products with column vectors and matrices.
/// Who shares the block: as zrVector: the copy constructor shares, operator= copies
/// values; T() is a column vector viewing the same elements (see line_column.h). See the
/// example docs/examples.md#guide_linalg, which uses the column vector.
template <class TT>
class ZR_API zrLineVector : public zrVector<TT> {
  ZR_TYPE_IDENTITY
 public:
  zrLineVector() = default;
  explicit zrLineVector(int n) : zrVector<TT>(n) {}
  /// These SHARE the source's elements.
  zrLineVector(const zrLineVector& other) : zrVector<TT>(other) {}
  explicit zrLineVector(const zrSimpleArray<TT>& array) : zrVector<TT>(array) {}
  explicit zrLineVector(const zrVector<TT>& other) : zrVector<TT>(other) {}
  ~zrLineVector() override;

  zrLineVector& operator=(const zrLineVector& other) {
    zrVector<TT>::operator=(other);
    return *this;
  }
  using zrVector<TT>::operator=;
  void swap(zrLineVector& other) { zrVector<TT>::swap(other); }

  zrLineVector* NewVector() const override;
  int IsColumn() const override;
  int IsLine() const override;

  /// The column vector viewing the same elements.
  zrColumnVector<TT> T() const;

  zrLineVector operator+(const TT& value) const;
  zrLineVector operator-(const TT& value) const;
  zrLineVector operator*(const TT& value) const;
  zrLineVector operator/(const TT& value) const;
  zrLineVector operator+(const zrLineVector& other) const;
  zrLineVector operator-(const zrLineVector& other) const;
  /// Line times column: the scalar product ScalarMul (lengths must be equal, "different
  /// length.").
  TT operator*(const zrColumnVector<TT>& column) const;
  /// Line times matrix: a line of m's column count, element j = this[0]*m(0, j) +
  /// this[1]*m(1, j) + ... in row order. m's row count must equal this length
  /// ("different length.").
  zrLineVector operator*(const zrMatrix<TT>& m) const;
};

#define ZR_DETAIL_EXTERN_LINE_COLUMN(T)         \
  ZR_EXTERN_TEMPLATE(class, zrColumnVector<T>); \
  ZR_EXTERN_TEMPLATE(class, zrLineVector<T>);
ZR_LINALG_TYPES(ZR_DETAIL_EXTERN_LINE_COLUMN)

/// Arrays of oriented vectors (points of a spline, for one). Copying such an array copies
/// the elements' values into new vectors; moving elements inside it exchanges handles.
ZR_EXTERN_TEMPLATE(class, zrSimpleArray<zrColumnVector<double>>);
ZR_EXTERN_TEMPLATE(class, zrSimpleArray<zrLineVector<double>>);
