/// \file
/// zrMatrix<TT>: the dense matrix, a view with two steps onto a shared element block.
///
/// Element (i, j), i the row and j the column, lives at
///   first + i * TabInColumn() + j * TabInLine().
/// Rows are called lines: LineLen() is the number of columns, ColumnLen() the number of
/// rows. A matrix that owns fresh storage is stored by rows (step in line 1, step in
/// column = number of columns). Empty matrices have both lengths 0.
///
/// Who shares and who copies, as for zrVector<TT> (zr/linalg/vector.h):
///   - the copy constructor SHARES; T() (the transpose), sub-matrix views (Set with a
///     position) and GetLine/GetColumn views share the block and move no element;
///   - operator= copies VALUES: with equal sizes into the current elements in place (every
///     sharer sees them), row by row; another size re-creates this matrix first (Set);
///   - a source that shares storage with the target gives what it would give if it were
///     read whole before the first write, in operator= and in += and -= with a matrix:
///     m = m.T() transposes a square m in place (a non-square one gets fresh storage of
///     the transposed size, leaving its old sharers the old values), and a window
///     assigned to an overlapping window of one block moves the values as they were. Only
///     a source whose span meets the target's, and is not the very same view, is read
///     into a private copy first; everything else is copied straight in place;
///   - Copy() leaves a private copy stored by rows; the compound operators, Fill and SetE
///     work in place;
///   - every other result (binary operators, products, Inverse) is a new matrix stored by
///     rows.
///
/// The in-place += and -= with a matrix of another size are lenient, as the library has
/// always been: this matrix is re-created with the other's size and the other is then
/// added to (subtracted from) it, with no error. The fresh storage is zero-filled first,
/// so the result is exactly the other matrix (respectively its negation); the old contents
/// are lost. The non-assigning + and - require equal sizes ("different size.").
///
/// Element arithmetic is the element type's own: the compound operators with a scalar
/// apply the element's compound operator (for zrComplex, *= ADDS, as zrComplex::operator*=
/// does), the binary ones and all products its binary operators. Sums of products run in
/// index order from the first product, each step rounded.
///
/// Gaussian elimination (SolveEquationGaussMethod, Inverse1, Det) works on an order of the
/// rows, so a row exchange swaps two places in it and moves no element, and keeps the
/// library's own rules:
///   - partial pivoting with the exchange made DURING the scan: the running maximum starts
///     at |a(k, k)|, and each row i > k whose |a(i, k)| is strictly greater is exchanged
///     with row k at once (so the earlier holder of place k moves to place i);
///   - the pivot row is normalised by multiplying by 1/p (the pivot itself keeps p);
///   - each lower row j with l = a(j, k) not zero becomes (1/l) * row j - pivot row (it is
///     scaled by 1/l rather than having l times the pivot row subtracted); a(j, k) is left
///     as it is;
///   - the elimination stops at the first pivot that is exactly zero; there are no
///     tolerances;
///   - Det() is the product of the eliminated diagonal, with no sign for the exchanges and
///     no compensation for the 1/l scalings: rows (4, 0), (2, 3) give 6, rows (0, 1),
///     (1, 0) give 1. It is the library's determinant, not the textbook one.
/// 1/p is the element's own quotient: for zrComplex that is the library's division by the
/// modulus (conj(p) / |p|), kept as zrComplex defines it.
///
/// The magnitude of a pivot and the zero tests, per element type:
///   double            |a|; zero is 0
///   zrComplex         the modulus; zero is both parts 0
///   zrTVec3<double>   the coordinate-wise |a|, and a candidate beats the running maximum
///                     only when it is strictly greater in all three coordinates (the
///                     type's own >); a pivot counts as zero (the elimination stops, back
///                     substitution throws) when ANY coordinate is 0, since its coordinate
///                     system cannot go on; a lower row is left alone only when l is 0 in
///                     all three coordinates, and within a row a coordinate whose l is 0
///                     is left as it is. For matrices with the same number in all three
///                     coordinates (the Beta-spline systems) this is exactly the double
///                     elimination done three times.
///
/// Errors (BadParameters): "different size." for matrix operands that do not fit and for a
/// right-hand side of another length than the rows; "different length." for a column
/// vector of another length than the columns; "Matrix must be square." (Inverse1,
/// Inverse); "Det: Matrix must be square."; and the solver's two Windows-1251 texts,
/// zr::text::kSystemInconsistent (more rows than columns: thrown after the forward
/// elimination, even when a zero pivot stopped it, since back substitution would read
/// diagonal elements past the rows' ends) and zr::text::kSystemNotUnique (a zero pivot
/// stopped the elimination, so back substitution would meet a zero diagonal).
///
/// Flat form: rows and columns as signed 32-bit little-endian integers, then the elements
/// row by row, each row from column 0, packed in their raw form: 8 + rows * cols *
/// sizeof(TT) bytes. FromMem re-creates the matrix stored by rows; a form with a size of 0
/// reads as the empty matrix, which writes itself back as 0 x 0. The checked reader
/// zrFromMem(buffer, size, matrix) (zr/core/serialize.h) refuses a negative size and
/// sizes whose elements do not fit in size or in the 32-bit byte count.
///
/// The template parameter is TT because T() is a member.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/linalg/line_column.h"
#include "zr/linalg/vector.h"

namespace zr::text {
/// "Система не совместна." in Windows-1251: the system has more rows than columns.
inline constexpr char kSystemInconsistent[] =
    "\xD1\xE8\xF1\xF2\xE5\xEC\xE0 \xED\xE5 \xF1\xEE\xE2\xEC\xE5\xF1\xF2\xED\xE0.";
/// "Система имеет не единственное решение." in Windows-1251: a zero pivot.
inline constexpr char kSystemNotUnique[] =
    "\xD1\xE8\xF1\xF2\xE5\xEC\xE0 \xE8\xEC\xE5\xE5\xF2 \xED\xE5 \xE5\xE4\xE8\xED\xF1"
    "\xF2\xE2\xE5\xED\xED\xEE\xE5 \xF0\xE5\xF8\xE5\xED\xE8\xE5.";
}  // namespace zr::text

/// The dense matrix of TT: a view with two steps (between lines and within a line) onto a
/// reference-counted block, with arithmetic, products, Gaussian elimination, the inverse,
/// the library's determinant and the flat form.
/// Who shares the block: the copy constructor, T() (the transpose) and the sub-matrix,
/// line and column views SHARE it; operator= copies VALUES (in place for every sharer
/// when the sizes agree); Copy() and every other result (binary operators, products,
/// Inverse) give fresh storage stored by rows (see matrix.h for the elimination's rules).
/// See the example docs/examples.md#guide_linalg and examples/persistence.cpp.
template <class TT>
class ZR_API zrMatrix : public zrPArray {
  ZR_TYPE_IDENTITY
 public:
  using value_type = TT;

  /// Empty: no block, all fields 0.
  zrMatrix() = default;
  /// rows x cols uninitialised elements in a fresh block, stored by rows. Either size 0
  /// gives an empty matrix; a negative one throws "zrNewWithRef : n <= 0 ".
  zrMatrix(int rows, int cols);
  /// SHARES the source's elements: same block (counted), first element, steps, lengths.
  zrMatrix(const zrMatrix& other);
  /// Copies values (see the top of this file); returns this matrix. A source overlapping
  /// this matrix (m = m.T(), say) is taken as it stood before the assignment.
  zrMatrix& operator=(const zrMatrix& other);
  ~zrMatrix() override;

  int LineLen() const { return cols_; }
  int ColumnLen() const { return rows_; }
  int TabInLine() const { return step_line_; }
  int TabInColumn() const { return step_column_; }
  TT* GetPointer() const { return p_; }
  /// Element (i, j); no range check.
  TT& operator()(int i, int j) const {
    return p_[static_cast<long long>(i) * step_column_ + static_cast<long long>(j) * step_line_];
  }

  /// Storage.
  /// Releases the block, then as the constructor with two sizes.
  void Set(int rows, int cols);
  /// Set(rows, cols) only when a size differs; otherwise contents and sharing stay.
  void Init(int rows, int cols);
  /// A sub-matrix view: first element src(row, col), rows x cols, src's steps; holds src's
  /// block. The view may reach past src's elements but not past its block: an element
  /// outside the block throws "zrMatrix<T>::Set : out of range." (a source without a block
  /// is not checked). The view must also fit 32-bit extents:
  /// a negative size, an offset row * TabInColumn() + col * TabInLine(), a row or column
  /// run (cols * step in line, rows * step in column) or a reach of the view outside the
  /// 32-bit range throws "zrMatrix<T>::Set : out of range." and changes nothing.
  void Set(const zrMatrix& src, int row, int col, int rows, int cols);
  /// Releases the block and views outside storage, owning nothing. The view must fit
  /// 32-bit extents as for Set above, else "zrMatrix<T>::SetDirectly : out of range.".
  void SetDirectly(TT* data, int rows, int cols, int stepInLine, int stepInColumn);
  /// As zrVector<TT>::SetMem: release the current block, count the new one.
  void SetMem(void* const block) override;
  /// Releases the block and forgets it; the view fields stay.
  void Free();
  /// Releases the block; all fields 0.
  void Clear();
  /// Takes over src's block and fields; src is left empty.
  void Move(zrMatrix& src);
  /// Exchanges handles: no element is copied, no count changes.
  void swap(zrMatrix& other);
  /// A shared (or externally viewed) matrix takes a private copy stored by rows.
  void Copy() override;

  /// Views that share the block.
  /// The transpose: the lengths and the steps exchanged; no element moves.
  zrMatrix T() const;
  /// out views row i: first element (i, 0), length cols, step TabInLine().
  void GetLine(zrLineVector<TT>& out, int i) const;
  /// out views column j: first element (0, j), length rows, step TabInColumn().
  void GetColumn(zrColumnVector<TT>& out, int j) const;

  /// Every element set to value (which may be an element of this matrix).
  void Fill(const TT& value);
  /// Zero everywhere, 1 on the diagonal (i, i) for i below min(rows, cols).
  void SetE();

  /// In place, with the element's compound operator; the scalar is read once.
  zrMatrix& operator+=(const TT& value);
  zrMatrix& operator-=(const TT& value);
  zrMatrix& operator*=(const TT& value);
  zrMatrix& operator/=(const TT& value);
  /// New matrices of this size, stored by rows: element op value, and the negation.
  zrMatrix operator+(const TT& value) const;
  zrMatrix operator-(const TT& value) const;
  zrMatrix operator*(const TT& value) const;
  zrMatrix operator/(const TT& value) const;
  zrMatrix operator-() const;

  /// In place, element by element, row by row; lenient about sizes (top of this file).
  /// other may overlap this matrix (m += m.T()): it is read as it stood before.
  zrMatrix& operator+=(const zrMatrix& other);
  zrMatrix& operator-=(const zrMatrix& other);
  /// New matrices; sizes must be equal ("different size.").
  zrMatrix operator+(const zrMatrix& other) const;
  zrMatrix operator-(const zrMatrix& other) const;
  /// The product: this columns must equal other's rows ("different size."); element (i, j)
  /// = a(i, 0)*b(0, j) + a(i, 1)*b(1, j) + ... in index order.
  zrMatrix operator*(const zrMatrix& other) const;
  /// Matrix times column: columns must equal the vector's length ("different length.");
  /// element i = a(i, 0)*v[0] + a(i, 1)*v[1] + ...
  zrColumnVector<TT> operator*(const zrColumnVector<TT>& v) const;
  /// out = T() * this, a cols x cols matrix: out(k, m) = a(0, k)*a(0, m) + a(1, k)*a(1, m)
  /// + ... for k <= m, mirrored into out(m, k). out is re-created when its size differs
  /// and written in place otherwise; it may be this matrix or share its block.
  void SelfTMulSelf(zrMatrix& out) const;

  /// Solves this * x = b by the elimination above. DESTRUCTIVE: afterwards this matrix
  /// holds its eliminated form (rows in their own places, only pointers were exchanged)
  /// and b the transformed right-hand side. b's length must equal the rows ("different
  /// size."); x is re-created with that length when its length differs, else written in
  /// place. Throws the "not unique" text when back substitution meets a zero diagonal and
  /// the "inconsistent" text when there are more rows than columns.
  void SolveEquationGaussMethod(zrColumnVector<TT>& x, zrColumnVector<TT>& b);
  /// The inverse, leaving this matrix as it is (Inverse1 of a private copy). Square only
  /// ("Matrix must be square."); a singular matrix throws the "not unique" text.
  zrMatrix Inverse() const;
  /// The library's determinant (top of this file), taken on a private copy. Square only
  /// ("Det: Matrix must be square."). A 0 x 0 matrix gives 1.
  TT Det() const;

  void* Pointer() const override { return p_; }
  /// With a = step in line and c = step in column:
  ///   (a < 0 ? 1 : (cols - 1) * a + 1) + (c >= 0 ? (rows - 1) * c : 0);
  /// 0 for an empty matrix.
  int PositiveLength() const override;
  /// (a < 0 ? (cols - 1) * a : 0) + (c < 0 ? (rows - 1) * c : 0); 0 for an empty matrix.
  int NegativeLength() const override;
  int GetSizeOfType() const override { return static_cast<int>(sizeof(TT)); }

  int MemSize() const override;
  int ToMem(unsigned char* buffer) const override;
  /// Reads rows and cols and re-creates the matrix stored by rows; returns 8 + the
  /// element bytes read (8 when either size is 0). A negative size throws
  /// "zrNewWithRef : n <= 0 ".
  int FromMem(const unsigned char* buffer) override;

 protected:
  // The inverse by elimination on this matrix itself, which is left in its eliminated
  // state (the library's users call Inverse; derived classes may reach this one).
  zrMatrix Inverse1();

 private:
  // Fresh storage stored by rows for rows x cols >= 1 elements; the old block is released
  // after.
  void Fresh(int rows, int cols);
  // The view's fields, the block aside.
  void View(TT* first, int step_line, int step_column, int rows, int cols);

  TT* p_ = nullptr;      // element (0, 0); null for an empty matrix
  int step_line_ = 0;    // distance in elements from (i, j) to (i, j + 1)
  int step_column_ = 0;  // distance in elements from (i, j) to (i + 1, j)
  int cols_ = 0;         // line length: the number of columns
  int rows_ = 0;         // column length: the number of rows
};

namespace zr::detail {

// The fast paths zrMatrix<TT> asks before running its own loops. Each returns false when
// it declines, having changed nothing, and the class's loops run; a kernel that runs gives
// their results bit for bit. This primary template declines everything. The one for double
// is the library's (zr/linalg/detail/), which declines at the plain level of
// zr/core/detail/machine.h and where its blocking would not pay.
template <class TT>
struct MatrixKernels {
  // r = a * b into r, fresh and stored by rows.
  static bool Product(const zrMatrix<TT>&, const zrMatrix<TT>&, zrMatrix<TT>&) { return false; }
  // r = a.T() * a into r, fresh and stored by rows.
  static bool SelfTMulSelf(const zrMatrix<TT>&, zrMatrix<TT>&) { return false; }
  // The forward elimination of a's rows in the order perm (place -> row, the identity on
  // entry), with b (a right-hand side) and e (rows of equal length) when given, as
  // matrix_impl.h's ForwardEliminate; stop is set to what that returns.
  static bool Eliminate(zrMatrix<TT>&, zrVector<TT>*, zrMatrix<TT>*, int*, int&) { return false; }
  // Inverse1's back substitution into r (n x n, fresh) after an elimination that met no
  // zero pivot.
  static bool BackInverse(const zrMatrix<TT>&, const int*, const zrMatrix<TT>&, zrMatrix<TT>&) {
    return false;
  }
};

template <>
struct ZR_API MatrixKernels<double> {
  static bool Product(const zrMatrix<double>& a, const zrMatrix<double>& b, zrMatrix<double>& r);
  static bool SelfTMulSelf(const zrMatrix<double>& a, zrMatrix<double>& r);
  static bool Eliminate(zrMatrix<double>& a, zrVector<double>* b, zrMatrix<double>* e, int* perm,
                        int& stop);
  static bool BackInverse(const zrMatrix<double>& a, const int* perm, const zrMatrix<double>& e,
                          zrMatrix<double>& r);
};

}  // namespace zr::detail

#define ZR_DETAIL_EXTERN_MATRIX(T) ZR_EXTERN_TEMPLATE(class, zrMatrix<T>);
ZR_LINALG_TYPES(ZR_DETAIL_EXTERN_MATRIX)

namespace zr::detail {
// The walk of the checked reader (zr/core/serialize.h): two sizes of 0 or more, then
// rows * cols elements of the element's fixed form (none when either size is 0).
template <class TT>
bool FlatWalk(FlatCursor& cursor, const zrMatrix<TT>&) {
  std::int32_t rows = 0;
  std::int32_t cols = 0;
  if (!cursor.ReadCount(rows) || !cursor.ReadCount(cols) || rows < 0 || cols < 0) return false;
  const std::uint64_t n = static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(cols);
  return cursor.SkipItems(n, static_cast<std::uint64_t>(zrMemSize(TT{})));
}
}  // namespace zr::detail

/// Arrays of matrices. Copying such an array copies the elements' values into new
/// matrices; moving elements inside it exchanges handles.
ZR_EXTERN_TEMPLATE(class, zrSimpleArray<zrMatrix<double>>);
