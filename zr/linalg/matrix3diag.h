/// \file
/// zrMatrix3Diag<T>: a square tridiagonal matrix kept as its three diagonals, with the
/// sweep solvers for tridiagonal, cyclic tridiagonal, five-diagonal and cyclic
/// five-diagonal systems. Only zrMatrix3Diag<double> exists.
///
/// The matrix is three zrVector<T>, nothing more:
///   Up    n - 1 elements, Up[i]   = element (i, i + 1)
///   Diag  n elements,     Diag[i] = element (i, i)
///   Down  n - 1 elements, Down[i] = element (i + 1, i)
/// n, the length of Diag, is both LineLen and ColumnLen. Since the diagonals are vectors,
/// they share as vectors do: the copy constructor, T(), Set(src, start, len), the
/// constructor from three vectors and the one from a dense matrix all share storage
/// (writes through either side reach the other); operator= copies values diagonal by
/// diagonal into the existing storage when the lengths agree (so it writes through a
/// view); Copy() makes every diagonal private. Arithmetic that returns a new matrix
/// gives fresh storage.
///
/// The diagonals' lengths must agree: Up and Down have n - 1 elements for a Diag of n (none
/// for n <= 1). The constructor from three vectors (and so T()) refuses other lengths with
/// "zrMatrix3Diag: diagonals of inconsistent lengths" before it shares anything. The
/// diagonals can still be edited through Up(), Diag() and Down(), and FromMem takes the
/// lengths as they come, so every operation that walks the band by n (the solvers, the
/// products, GetMatrix and the dense + and -) checks them again first and throws the same
/// text, changing nothing; the diagonal-by-diagonal operations need no check, since the
/// vectors compare their own lengths.
///
/// The solvers never change the matrix's values. They keep their work space with the
/// matrix (it grows to the largest system solved and is freed with the matrix; copies do
/// not take it), so one matrix must not solve in two threads at once. They do no
/// pivoting and no test for a zero denominator: they are meant for diagonally dominant
/// systems (splines, smoothing), and a zero divides through as the arithmetic gives it.
/// The solution vector is re-created with length n when its length differs, otherwise
/// written in place (a window writes through). It may be the right-hand side itself:
/// every b[i] is read before x[i] is written. Partly overlapping windows of one block are
/// not supported.
///
/// The template parameter is TT because T() is a member.
#pragma once

#include "zr/core/core.h"
#include "zr/linalg/line_column.h"
#include "zr/linalg/matrix.h"
#include "zr/linalg/vector.h"

/// A square tridiagonal matrix of TT kept as its three diagonals (three zrVector), with
/// the sweep solvers for tridiagonal, cyclic and five-diagonal systems; only
/// zrMatrix3Diag<double> exists.
/// Who shares: the diagonals share as vectors do: the copy constructor, T(), Set(src,
/// start, len) and the constructors from three vectors and from a dense matrix share
/// storage; operator= copies values diagonal by diagonal; Copy() makes every diagonal
/// private (see matrix3diag.h). See the example docs/examples.md#guide_linalg for the
/// linear algebra subsystem.
template <class TT>
class ZR_API zrMatrix3Diag : public zrUsingNew {
  ZR_TYPE_IDENTITY
 public:
  /// Three empty diagonals.
  zrMatrix3Diag() = default;
  /// n uninitialised diagonal elements and n - 1 on each side (none for n <= 1).
  explicit zrMatrix3Diag(int n);
  /// Each diagonal copy-constructed from its argument, so sharing the argument's storage.
  /// up and down must have one element less than diag (none for a diag of one element or
  /// none), else "zrMatrix3Diag: diagonals of inconsistent lengths" and nothing is shared.
  zrMatrix3Diag(const zrVector<TT>& up, const zrVector<TT>& diag, const zrVector<TT>& down);
  /// A view onto the band of a dense matrix: with n = min(rows, cols) and the diagonal
  /// step = step in line + step in column, Diag starts at m(0,0) with n elements, Up at
  /// m(0,1) and Down at m(1,0) with n - 1 each. The diagonals hold m's block (when it has
  /// one), so writes reach m and the storage lives as long as the view. A diagonal step
  /// or extent n * step beyond 32 bits throws "zrMatrix3Diag: out of range".
  explicit zrMatrix3Diag(const zrMatrix<TT>& m);
  /// Shares every diagonal.
  zrMatrix3Diag(const zrMatrix3Diag& other);
  /// Copies values diagonal by diagonal (zrVector<T>::operator=). Of another size, the
  /// three new diagonals are all made before any old one is let go, so a failed
  /// allocation leaves the matrix as it was.
  zrMatrix3Diag& operator=(const zrMatrix3Diag& other);
  ~zrMatrix3Diag() override;

  /// Drops the old storage and takes fresh uninitialised diagonals for size n; for
  /// n <= 1 the two outer diagonals are empty. The old ones stay when an allocation fails.
  void Set(int n);
  /// Set(n) only when n differs from the size.
  void Init(int n);
  /// The three diagonals become windows of src: the leading block of len rows beginning
  /// at row start (Diag from start, len elements; Up and Down from start, len - 1
  /// elements). A block outside 0 ... src's size throws "zrMatrix3Diag: out of range".
  void Set(const zrMatrix3Diag& src, int start, int len);
  /// Takes src's diagonals, leaving src empty.
  void Move(zrMatrix3Diag& src);
  /// Makes every shared diagonal private.
  void Copy();

  zrVector<TT>& Up() { return up_; }
  const zrVector<TT>& Up() const { return up_; }
  zrVector<TT>& Diag() { return diag_; }
  const zrVector<TT>& Diag() const { return diag_; }
  zrVector<TT>& Down() { return down_; }
  const zrVector<TT>& Down() const { return down_; }
  int LineLen() const { return diag_.Len(); }
  int ColumnLen() const { return diag_.Len(); }

  /// Element (i, j) of the band: Diag[i] for j == i, Up[i] for j == i + 1, Down[j] for
  /// i == j + 1. Any other pair throws "zrMatrix3Diag: out of range"; only the relation of
  /// i and j is checked, not that they lie below n.
  TT& operator()(int i, int j) const;

  /// On all three diagonals; the elements outside the band are not represented and stay
  /// zero.
  void Fill(const TT& v);
  zrMatrix3Diag& operator+=(const TT& s);
  zrMatrix3Diag& operator-=(const TT& s);
  zrMatrix3Diag& operator*=(const TT& s);
  zrMatrix3Diag& operator/=(const TT& s);
  zrMatrix3Diag operator+(const TT& s) const;
  zrMatrix3Diag operator-(const TT& s) const;
  zrMatrix3Diag operator*(const TT& s) const;
  zrMatrix3Diag operator/(const TT& s) const;

  /// Diagonal by diagonal; diagonals of differing lengths throw "different length.".
  zrMatrix3Diag& operator+=(const zrMatrix3Diag& b);
  zrMatrix3Diag& operator-=(const zrMatrix3Diag& b);
  zrMatrix3Diag operator+(const zrMatrix3Diag& b) const;
  zrMatrix3Diag operator-(const zrMatrix3Diag& b) const;
  /// 0 - element on every diagonal, as the vectors negate.
  zrMatrix3Diag operator-() const;

  /// GetMatrix() + m and GetMatrix() - m, dense; sizes must be equal ("different size.").
  zrMatrix<TT> operator+(const zrMatrix<TT>& m) const;
  zrMatrix<TT> operator-(const zrMatrix<TT>& m) const;
  /// Dense products, stored by rows. Element (i, j) sums the products of the band
  /// elements only, in increasing inner index (the structural zeros are skipped, so no
  /// 0 * inf enters); an element with no band product is +0. The dense factor must have
  /// n rows, else "different size.".
  zrMatrix<TT> operator*(const zrMatrix3Diag& b) const;
  zrMatrix<TT> operator*(const zrMatrix<TT>& m) const;
  /// Element i = Down[i-1]*x[i-1] + Diag[i]*x[i] + Up[i]*x[i+1] (the terms that exist, in
  /// this order), fresh storage. x must have n elements, else "different length.".
  zrColumnVector<TT> operator*(const zrColumnVector<TT>& x) const;

  /// The transpose, sharing the storage: its Up is this Down, its Diag this Diag, its
  /// Down this Up.
  zrMatrix3Diag T() const;
  /// The dense n x n matrix, zeros outside the band, stored by rows.
  zrMatrix<TT> GetMatrix() const;

  /// The flat form: Up, Diag, Down one after another, each in the vector's form
  /// (4-byte length, then the elements packed). For a well-formed matrix MemSize is
  /// 2 * Up's size + Diag's size. FromMem gives every diagonal fresh storage, takes the
  /// lengths as they come and changes nothing when it throws. The checked reader
  /// zrFromMem(buffer, size, matrix) (zr/core/serialize.h) also refuses a form whose Up or
  /// Down has another length than a well-formed matrix's (a negative length counts as 0).
  int MemSize() const;
  int ToMem(unsigned char* buffer) const;
  int FromMem(const unsigned char* buffer);

  // ---- Solvers ----

  /// Sweep (chaser) method for Down[i-1]*x[i-1] + Diag[i]*x[i] + Up[i]*x[i+1] = b[i]:
  ///   alpha[0] = -Up[0] / Diag[0], beta[0] = b[0] / Diag[0];
  ///   for i = 1 ... n-2: d = Down[i-1]*alpha[i-1] + Diag[i], alpha[i] = -Up[i] / d,
  ///                      beta[i] = (b[i] - Down[i-1]*beta[i-1]) / d;
  ///   x[n-1] = (b[n-1] - Down[n-2]*beta[n-2]) / (Down[n-2]*alpha[n-2] + Diag[n-1]);
  ///   for i = n-2 ... 0: x[i] = x[i+1]*alpha[i] + beta[i].
  /// n = 1 gives x[0] = b[0] / Diag[0]; n = 0 an empty x. b must have n elements, else
  /// "different size.".
  void SolveEquationChaserMethod(zrColumnVector<TT>& x, const zrColumnVector<TT>& b) const;
  /// The sweep for every column of B into the same column of X. X is re-created with B's
  /// size when either length differs. B must have n rows, else "different size." (an
  /// empty B gives an empty X); X is untouched when that throws.
  void SolveEquationChaserMethod(zrMatrix<TT>& X, const zrMatrix<TT>& B) const;
  /// The cyclic system: this matrix plus top = element (0, n-1) and bottom = element
  /// (n-1, 0). With m = n - 1 and u the first m elements of x: the leading m x m block
  /// solves T'u = b[0..m-1] and T'z = w, w = (top, 0, ..., 0, Up[n-2]); then
  ///   x[n-1] = (b[n-1] - bottom*u[0] - Down[n-2]*u[n-2])
  ///            / (Diag[n-1] - Down[n-2]*z[n-2] - bottom*z[0]),
  ///   u[i] = u[i] - z[i]*x[n-1].
  /// n < 3 or b of other than n elements throws "different size.".
  void SolveEquationCycleChaserMethod(zrColumnVector<TT>& x, const zrColumnVector<TT>& b,
                                      const TT& top, const TT& bottom) const;
  /// The five-diagonal system of this matrix plus up2[i] = element (i, i+2) and
  /// down2[i] = element (i+2, i), by LU factorisation without pivoting (unit lower L with
  /// sub-diagonals l and mu; U with pivots d, super-diagonal u and up2), the forward
  /// substitution folded in:
  ///   d[0] = Diag[0], u[0] = Up[0], y[0] = b[0];
  ///   l = Down[0]/d[0], d[1] = Diag[1] - l*u[0], u[1] = Up[1] - l*up2[0],
  ///   y[1] = b[1] - l*y[0];
  ///   for i = 2 ... n-1: mu = down2[i-2]/d[i-2], l = (Down[i-1] - mu*u[i-2]) / d[i-1],
  ///     d[i] = Diag[i] - l*u[i-1] - mu*up2[i-2], u[i] = Up[i] - l*up2[i-1] (i <= n-2),
  ///     y[i] = b[i] - l*y[i-1] - mu*y[i-2];
  ///   x[n-1] = y[n-1]/d[n-1], x[n-2] = (y[n-2] - u[n-2]*x[n-1]) / d[n-2],
  ///   x[i] = (y[i] - u[i]*x[i+1] - up2[i]*x[i+2]) / d[i] for i = n-3 ... 0.
  /// Checks, in order: b of other than n elements, "different size."; n < 3,
  /// "invalid size : size < 3."; up2 or down2 shorter than n - 2 elements (the ones the
  /// system uses; longer is fine), "different size.".
  void SolveEquationFactorizeMethod(const zrVector<TT>& up2, const zrVector<TT>& down2,
                                    zrColumnVector<TT>& x, const zrColumnVector<TT>& b) const;
  /// The cyclic five-diagonal system: the five bands closed periodically. The six corner
  /// elements are passed in the order they are met reading the matrix by rows:
  ///   a0n2 = element (0, n-2)   a0n1 = element (0, n-1)   a1n1 = element (1, n-1)
  ///   an20 = element (n-2, 0)   an10 = element (n-1, 0)   an11 = element (n-1, 1)
  /// (a0n2 and a1n1 close down2, a0n1 closes Down; an20 and an11 close up2, an10 closes Up).
  /// up2 and down2 have n - 2 elements: up2[n-4], up2[n-3] and down2[n-4], down2[n-3]
  /// couple the two trailing unknowns.
  ///
  /// With m = n - 2, the matrix is split into the leading m x m five-diagonal block P
  /// (windows of the diagonals, up2 and down2), the columns C = (column n-2, column n-1)
  /// of rows 0 ... m-1, the rows R = (row n-2, row n-1) of columns 0 ... m-1, and the
  /// trailing 2 x 2 block S:
  ///   C[., 0]: a0n2 at row 0, up2[n-4] at row n-4, Up[n-3] at row n-3, else 0;
  ///   C[., 1]: a0n1 at row 0, a1n1 at row 1, up2[n-3] at row n-3, else 0;
  ///   R[0, .]: an20 at column 0, down2[n-4] at column n-4, Down[n-3] at column n-3;
  ///   R[1, .]: an10 at column 0, an11 at column 1, down2[n-3] at column n-3;
  ///   S = (Diag[n-2], Up[n-2]; Down[n-2], Diag[n-1]).
  /// P is solved by SolveEquationFactorizeMethod's algorithm for y (b[0 ... m-1], written
  /// into x) and for the correction columns z0 (C[., 0]) and z1 (C[., 1]). The trailing
  /// unknowns solve, by zrMatrix<T>::SolveEquationGaussMethod, the 2 x 2 system
  ///   M(r, c) = S(r, c) - R(r, .) . z_c,   rhs(r) = b[n-2+r] - R(r, .) . y,
  /// each dot product summing R's three terms in the order listed above. Finally
  /// x[i] = y[i] - z0[i]*x[n-2] - z1[i]*x[n-1] for i < m.
  ///
  /// n < 3 or b of other than n elements throws "different size.", up2 or down2 shorter
  /// than n - 2 likewise. The leading block needs three rows for its factorisation, so
  /// n = 3 and n = 4 throw "invalid size : size < 3." (at those sizes the corners would
  /// fall on the bands). A singular 2 x 2 system throws what the Gaussian solver throws.
  void SolveEquationCycleFactorizeMethod(const zrVector<TT>& up2, const zrVector<TT>& down2,
                                         const TT& a0n2, const TT& a0n1, const TT& a1n1,
                                         const TT& an20, const TT& an10, const TT& an11,
                                         zrColumnVector<TT>& x, const zrColumnVector<TT>& b) const;

 private:
  // A deep copy with fresh storage.
  zrMatrix3Diag Fresh() const;
  // Row i of the band times the column whose element k is at(k): Down[i-1]*at(i-1) +
  // Diag[i]*at(i) + Up[i]*at(i+1), the terms that exist, in this order.
  template <class F>
  TT BandRow(int i, F at) const;
  // Refuses diagonals whose lengths do not make a tridiagonal matrix (see the top of this
  // file).
  void CheckBands() const;
  // The solvers' work space, at least n elements: it grows only and lives as long as the
  // matrix, so repeated solves take no memory.
  TT* Scratch(int n) const;

  zrVector<TT> up_;    // (i, i+1), n - 1 elements
  zrVector<TT> diag_;  // (i, i), n elements
  zrVector<TT> down_;  // (i+1, i), n - 1 elements
  // The solvers' work space; never copied or shared, freed with the matrix.
  mutable TT* work_ = nullptr;
  mutable int work_len_ = 0;
};

ZR_EXTERN_TEMPLATE(class, zrMatrix3Diag<double>);

/// The flat form, forwarding to the members.
inline int zrMemSize(const zrMatrix3Diag<double>& m) { return m.MemSize(); }
inline int zrToMem(unsigned char* buffer, const zrMatrix3Diag<double>& m) {
  return m.ToMem(buffer);
}
inline int zrFromMem(const unsigned char* buffer, zrMatrix3Diag<double>& m) {
  return m.FromMem(buffer);
}

namespace zr::detail {
// The walk of the checked reader: three vector forms whose lengths make a well-formed
// matrix, Up and Down of n - 1 elements for a Diag of n (none for n <= 1).
inline bool FlatWalk(FlatCursor& cursor, const zrMatrix3Diag<double>&) {
  std::int32_t len[3] = {0, 0, 0};
  for (std::int32_t& n : len) {
    if (!cursor.ReadCount(n)) return false;
    if (n < 1) n = 0;
    if (!cursor.SkipItems(static_cast<std::uint64_t>(n), sizeof(double))) return false;
  }
  const std::int32_t side = len[1] > 1 ? len[1] - 1 : 0;
  return len[0] == side && len[2] == side;
}
}  // namespace zr::detail
