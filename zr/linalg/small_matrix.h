/// \file
/// zrMatrix2x2 and zrTMatrix3x3<T>: small fixed matrices held by value, for plane and
/// space rotations and the linear part of coordinate transforms.
///
/// The elements are stored by rows (m11, m12, m21, m22; m11, m12, m13, m21, ..., m33) and
/// operator()(i, j) reaches row i, column j, both from 0, without a range check. No base
/// class, no virtual operations, no heap storage; both are trivially copyable and their
/// default constructors leave the elements uninitialised, as the vector types do.
/// zrTMatrix3x3 is instantiated for double only.
///
/// "matrix * vector" takes the vector as a column. The outer products a * b^T are members
/// of the vectors (zrVec2::MulCL, zrTVec3<double>::MulCL), declared in zr/values with these
/// types declared ahead and defined here; the free MulCL(a, b) is the same product, kept
/// for code that reads better with it. The row vector times a matrix is a free operator,
/// since zr/values knows nothing of this folder:
///   zrVec2 * zrMatrix2x2             (x*m11 + y*m21, x*m12 + y*m22)
///   zrTVec3 * zrTMatrix3x3           component j = x*m1j + y*m2j + z*m3j
/// zrToVec2 turns a two-element zrVector<double> into a zrVec2.
///
/// Componentwise arithmetic is inline; products, determinants, inverses and rotations are
/// compiled in the library, where contraction into fused multiply-adds is off, so that a
/// caller's flags cannot change their bits. Each formula is evaluated left to right as
/// written beside it.
#pragma once

#include <type_traits>

#include "zr/core/core.h"
#include "zr/linalg/matrix.h"
#include "zr/linalg/vector.h"
#include "zr/values/values.h"

/// A 2 x 2 matrix held by value (four doubles by rows), for plane rotations and the linear
/// part of plane transforms; copied whole, nothing shared (see small_matrix.h). See the
/// example docs/examples.md#guide_geometry: the transforms of the geometry subsystem are
/// built on it.
class ZR_API zrMatrix2x2 {
 public:
  /// Elements uninitialised.
  zrMatrix2x2() = default;
  zrMatrix2x2(double m11, double m12, double m21, double m22) : m_{m11, m12, m21, m22} {}
  /// The elements of a 2 x 2 matrix, read through its steps; any other size throws
  /// "zrMatrix2x2::zrMatrix2x2( const zrMatrix<double> & m ) : Matrix m != 2x2 ".
  /// Explicit, since it can throw; the conversion the other way is implicit.
  explicit zrMatrix2x2(const zrMatrix<double>& m);
  /// A fresh 2 x 2 zrMatrix<double> stored by rows.
  operator zrMatrix<double>() const;  // NOLINT(google-explicit-constructor): lossless

  /// Row i, column j; no range check.
  double& operator()(int i, int j) { return m_[2 * i + j]; }
  const double& operator()(int i, int j) const { return m_[2 * i + j]; }
  double* GetPointer() { return m_; }
  const double* GetPointer() const { return m_; }

  void MakeE() { *this = zrMatrix2x2(1, 0, 0, 1); }
  void MakeNull() { *this = zrMatrix2x2(0, 0, 0, 0); }

  /// Counter-clockwise rotation by angle radians: m11 = m22 = cos, m21 = sin, m12 = -sin.
  void SetTurn(double angle);
  /// The rotation turning the direction of a into that of b: with r = |a| * |b|,
  /// cos = (a.x*b.x + a.y*b.y) / r and sin = (a.x*b.y - a.y*b.x) / r. A zero vector gives
  /// NaNs.
  void SetTurn(const zrVec2& a, const zrVec2& b);
  /// SetTurn(e, v) with e = (1, 0) for axis 0 and (0, 1) for any other axis.
  void SetTurn(const zrVec2& v, int axis);

  /// m11*m22 - m21*m12.
  double Det() const;
  /// (m22/det, -m12/det, -m21/det, m11/det). |det| < 1e-60 throws
  /// "zrMatrix2x2::Inverse : det = 0 "; the threshold is absolute and kept as it stands,
  /// so a well-conditioned matrix of tiny elements is refused. A NaN det passes and gives
  /// NaNs.
  zrMatrix2x2 Inverse() const;

  zrMatrix2x2 operator+(const zrMatrix2x2& b) const {
    return zrMatrix2x2(m_[0] + b.m_[0], m_[1] + b.m_[1], m_[2] + b.m_[2], m_[3] + b.m_[3]);
  }
  zrMatrix2x2 operator-(const zrMatrix2x2& b) const {
    return zrMatrix2x2(m_[0] - b.m_[0], m_[1] - b.m_[1], m_[2] - b.m_[2], m_[3] - b.m_[3]);
  }
  /// 0 - element, as the vectors negate (a zero element keeps its sign).
  zrMatrix2x2 operator-() const {
    return zrMatrix2x2(-0.0 - m_[0], -0.0 - m_[1], -0.0 - m_[2], -0.0 - m_[3]);
  }
  zrMatrix2x2& operator+=(const zrMatrix2x2& b) { return *this = *this + b; }
  zrMatrix2x2& operator-=(const zrMatrix2x2& b) { return *this = *this - b; }

  /// Matrix product: element (i, j) = a(i,0)*b(0,j) + a(i,1)*b(1,j).
  zrMatrix2x2 operator*(const zrMatrix2x2& b) const;
  /// This matrix times v as a column: (m11*x + m12*y, m21*x + m22*y).
  zrVec2 operator*(const zrVec2& v) const;

 private:
  double m_[4];  // m11, m12, m21, m22: the flat form's order
};

static_assert(std::is_trivially_default_constructible_v<zrMatrix2x2>);
static_assert(std::is_trivially_copyable_v<zrMatrix2x2>);
static_assert(std::is_standard_layout_v<zrMatrix2x2> && sizeof(zrMatrix2x2) == 32);

/// The flat form: the four doubles in storage order, 32 bytes.
inline int zrMemSize(const zrMatrix2x2&) { return 4 * zr::detail::RawMemSize<double>(); }
inline int zrToMem(unsigned char* buffer, const zrMatrix2x2& m) {
  int n = 0;
  for (int i = 0; i < 4; ++i) n += zr::detail::RawToMem(buffer + n, m.GetPointer()[i]);
  return n;
}
inline int zrFromMem(const unsigned char* buffer, zrMatrix2x2& m) {
  int n = 0;
  for (int i = 0; i < 4; ++i) n += zr::detail::RawFromMem(buffer + n, m.GetPointer()[i]);
  return n;
}
namespace zr::detail {
inline bool FlatWalk(FlatCursor& cursor, const zrMatrix2x2& v) { return FixedFlatWalk(cursor, v); }
}  // namespace zr::detail

/// A 3 x 3 matrix held by value (nine elements by rows), for space rotations and the
/// linear part of space transforms; copied whole, nothing shared; only
/// zrTMatrix3x3<double> exists (see small_matrix.h). See the example
/// docs/examples.md#guide_geometry: the transforms of the geometry subsystem are built on
/// it.
template <class T>
class ZR_API zrTMatrix3x3 {
 public:
  /// Elements uninitialised.
  zrTMatrix3x3() = default;
  /// Every element set to v.
  explicit zrTMatrix3x3(T v) : m_{v, v, v, v, v, v, v, v, v} {}
  /// The elements of a 3 x 3 matrix, read through its steps; any other size throws
  /// "zrTMatrix3x3<TT>::zrTMatrix3x3<TT>( const zrMatrix<TT> & m ) : Matrix m != 3x3 ".
  explicit zrTMatrix3x3(const zrMatrix<T>& m);
  /// A fresh 3 x 3 zrMatrix<T> stored by rows.
  operator zrMatrix<T>() const;  // NOLINT(google-explicit-constructor): lossless

  /// Row i, column j; no range check.
  T& operator()(int i, int j) { return m_[3 * i + j]; }
  const T& operator()(int i, int j) const { return m_[3 * i + j]; }
  T* GetPointer() { return m_; }
  const T* GetPointer() const { return m_; }

  void MakeE();
  void MakeNull();

  /// R = Rz(c) * Ry(b) * Rx(a): about x by a, then about y by b, then about z by c.
  void SetTurn(T a, T b, T c);
  /// SetTurn(cos angle, sin angle, axis).
  void SetTurn(T angle, zrTVec3<T> axis);
  /// Rotation about axis (divided by its length: u = axis / |axis|) by the angle of the
  /// given cosine c and sine s: R = c*I + (1 - c)*u*u^T + s*K, K the cross-product matrix
  /// of u; element by element m11 = ux*ux + c*(1 - ux*ux), m12 = ux*uy*(1 - c) - s*uz, ...
  /// (products of u as u.MulCL(u) forms them). A zero axis gives NaNs.
  void SetTurn(T cosine, T sine, zrTVec3<T> axis);
  /// The rotation that turns the direction of `from` into that of `to` by the smallest
  /// angle, about their common normal: with r = |from| * |to|, c = (from . to) / r,
  /// n = from x to and s = |n| / r, it is SetTurn(c, s, n). When the two are parallel
  /// (n exactly zero) it is the identity for c > 0 and, for c < 0, the half turn
  /// SetTurn(-1, 0, from x e), e the coordinate axis of from's smallest component in
  /// magnitude (the first of equals). A zero or NaN vector gives NaNs.
  void SetTurn(zrTVec3<T> from, zrTVec3<T> to);

  /// Writes m into this matrix leaving out row n and column n (0, 1 or 2); the elements
  /// of row n and column n are not touched. Another n throws
  /// "zrTMatrix3x3<TT>::Copy: n != {0,1,2}.".
  void Copy(const zrMatrix2x2& m, int n);

  /// Expansion along the first row:
  /// m11*(m22*m33 - m23*m32) - m12*(m21*m33 - m23*m31) + m13*(m21*m32 - m22*m31).
  T Det() const;
  /// Through a 3 x 3 zrMatrix<T> and its Inverse (Gaussian elimination with partial
  /// pivoting); a singular matrix throws what that throws.
  zrTMatrix3x3 Inverse() const;

  zrTMatrix3x3 operator+(const zrTMatrix3x3& b) const {
    zrTMatrix3x3 r;
    for (int i = 0; i < 9; ++i) r.m_[i] = m_[i] + b.m_[i];
    return r;
  }
  zrTMatrix3x3 operator-(const zrTMatrix3x3& b) const {
    zrTMatrix3x3 r;
    for (int i = 0; i < 9; ++i) r.m_[i] = m_[i] - b.m_[i];
    return r;
  }
  /// 0 - element, as the vectors negate (a zero element keeps its sign).
  zrTMatrix3x3 operator-() const {
    zrTMatrix3x3 r;
    for (int i = 0; i < 9; ++i) r.m_[i] = static_cast<T>(-0.0) - m_[i];
    return r;
  }
  zrTMatrix3x3& operator+=(const zrTMatrix3x3& b) { return *this = *this + b; }
  zrTMatrix3x3& operator-=(const zrTMatrix3x3& b) { return *this = *this - b; }

  /// Matrix product: element (i, j) = a(i,0)*b(0,j) + a(i,1)*b(1,j) + a(i,2)*b(2,j).
  zrTMatrix3x3 operator*(const zrTMatrix3x3& b) const;
  /// This matrix times v as a column: component i = m(i,0)*x + m(i,1)*y + m(i,2)*z.
  zrTVec3<T> operator*(const zrTVec3<T>& v) const;

 private:
  T m_[9];  // by rows: m11, m12, m13, m21, ..., m33
};

ZR_EXTERN_TEMPLATE(class, zrTMatrix3x3<double>);

static_assert(std::is_trivially_default_constructible_v<zrTMatrix3x3<double>>);
static_assert(std::is_trivially_copyable_v<zrTMatrix3x3<double>>);
static_assert(std::is_standard_layout_v<zrTMatrix3x3<double>> &&
              sizeof(zrTMatrix3x3<double>) == 72);

/// v as a row times m: (x*m11 + y*m21, x*m12 + y*m22).
ZR_API zrVec2 operator*(const zrVec2& v, const zrMatrix2x2& m);
/// v as a row times m: component j = x*m1j + y*m2j + z*m3j.
ZR_API zrTVec3<double> operator*(const zrTVec3<double>& v, const zrTMatrix3x3<double>& m);
/// The outer product a * b^T (a a column, b a row): element (i, j) = a[i] * b[j]; the
/// same as a.MulCL(b).
ZR_API zrMatrix2x2 MulCL(const zrVec2& a, const zrVec2& b);
ZR_API zrTMatrix3x3<double> MulCL(const zrTVec3<double>& a, const zrTVec3<double>& b);

/// Elements 0 and 1 of v, read through its step. A length other than 2 throws
/// "zrVec2: Dim must be equal 2 ".
ZR_API zrVec2 zrToVec2(const zrVector<double>& v);
