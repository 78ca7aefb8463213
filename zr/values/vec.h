/// \file
/// zrVec2 and zrTVec3<T>: the plane and space point or vector, plain values of doubles.
///
/// The components are contiguous (x, y and for zrTVec3 z), so GetVec() hands out a
/// pointer to the first and operator[] indexes them without a range check (0 is x, 1 is
/// y, 2 is z). No base class, no virtual operations, no heap storage; both are trivially
/// copyable, and their default constructors leave the components uninitialised so that
/// arrays of points cost nothing to create. zrTVec3 is instantiated for double only.
///
/// Arithmetic is componentwise. The orderings <, >, <= and >= hold only when they hold
/// for every component, so they are a partial order: (1, 5) and (2, 3) are neither <, >
/// nor <= each other; a NaN component makes all four false, and != true.
///
/// Formulas that sum products (ScalarMul, Norm, VectorMul) are compiled in the library,
/// where contraction into fused multiply-adds is off, so that a caller's compiler flags
/// cannot change their bits. The rest is inline.
///
/// The outer products (MulCL) return the small matrices of zr/linalg, which sits above
/// this folder: they are declared here with the matrix types declared ahead and defined in
/// zr/linalg/small_matrix.cpp. A program that calls them includes zr/linalg/linalg.h (or
/// zr/zr.h) for the result type; with zr/values/values.h alone the call names an
/// incomplete type and does not compile.
#pragma once

#include <type_traits>

#include "zr/core/export.h"
#include "zr/core/serialize.h"
#include "zr/values/complex.h"

class zrMatrix2x2;
template <class T>
class zrTMatrix3x3;

/// A point or vector of the plane: a plain value of two doubles (x, y), copied whole (no
/// block, nothing shared). Arithmetic is componentwise and the ordering a partial one that
/// holds when it holds for every component (see vec.h). See the example
/// docs/examples.md#guide_values and examples/contours.cpp.
class ZR_API zrVec2 {
 public:
  /// Components uninitialised.
  zrVec2() = default;
  zrVec2(double x, double y) : v_{x, y} {}

  double& X() { return v_[0]; }
  const double& X() const { return v_[0]; }
  double& Y() { return v_[1]; }
  const double& Y() const { return v_[1]; }
  double* GetVec() { return v_; }
  const double* GetVec() const { return v_; }
  /// No range check.
  double& operator[](int i) { return v_[i]; }
  const double& operator[](int i) const { return v_[i]; }
  void Fill(double v) { v_[0] = v_[1] = v; }

  zrVec2 operator+(const zrVec2& b) const { return zrVec2(v_[0] + b.v_[0], v_[1] + b.v_[1]); }
  zrVec2 operator-(const zrVec2& b) const { return zrVec2(v_[0] - b.v_[0], v_[1] - b.v_[1]); }
  zrVec2 operator*(const zrVec2& b) const { return zrVec2(v_[0] * b.v_[0], v_[1] * b.v_[1]); }
  zrVec2 operator/(const zrVec2& b) const { return zrVec2(v_[0] / b.v_[0], v_[1] / b.v_[1]); }
  zrVec2& operator+=(const zrVec2& b) { return *this = *this + b; }
  zrVec2& operator-=(const zrVec2& b) { return *this = *this - b; }
  zrVec2& operator*=(const zrVec2& b) { return *this = *this * b; }
  zrVec2& operator/=(const zrVec2& b) { return *this = *this / b; }

  zrVec2 operator+(double s) const { return zrVec2(v_[0] + s, v_[1] + s); }
  zrVec2 operator-(double s) const { return zrVec2(v_[0] - s, v_[1] - s); }
  zrVec2 operator*(double s) const { return zrVec2(v_[0] * s, v_[1] * s); }
  zrVec2 operator/(double s) const { return zrVec2(v_[0] / s, v_[1] / s); }
  zrVec2& operator*=(double s) { return *this = *this * s; }
  zrVec2& operator/=(double s) { return *this = *this / s; }

  /// Computed as -0.0 - c, so that the sign of a zero component flips too.
  zrVec2 operator-() const { return zrVec2(-0.0 - v_[0], -0.0 - v_[1]); }

  int operator==(const zrVec2& b) const { return v_[0] == b.v_[0] && v_[1] == b.v_[1]; }
  int operator!=(const zrVec2& b) const { return v_[0] != b.v_[0] || v_[1] != b.v_[1]; }
  int operator<(const zrVec2& b) const { return v_[0] < b.v_[0] && v_[1] < b.v_[1]; }
  int operator>(const zrVec2& b) const { return v_[0] > b.v_[0] && v_[1] > b.v_[1]; }
  int operator<=(const zrVec2& b) const { return v_[0] <= b.v_[0] && v_[1] <= b.v_[1]; }
  int operator>=(const zrVec2& b) const { return v_[0] >= b.v_[0] && v_[1] >= b.v_[1]; }

  /// x*b.x + y*b.y.
  double ScalarMul(const zrVec2& b) const;
  /// The squared length, x*x + y*y.
  double ScalarMul() const;
  /// sqrt(x*x + y*y), computed directly: no scaling against overflow.
  double Norm() const;
  /// The outer product a * b^T, this vector a as a column and b as a row: element (i, j)
  /// = a[i] * b[j]. The result type comes with zr/linalg (see above).
  zrMatrix2x2 MulCL(const zrVec2& b) const;

  /// Componentwise: this value's component where it is strictly greater (Max) or
  /// strictly smaller (Min), else b's; so a tie or a NaN takes b's.
  zrVec2 Max(const zrVec2& b) const {
    return zrVec2(v_[0] > b.v_[0] ? v_[0] : b.v_[0], v_[1] > b.v_[1] ? v_[1] : b.v_[1]);
  }
  zrVec2 Min(const zrVec2& b) const {
    return zrVec2(v_[0] < b.v_[0] ? v_[0] : b.v_[0], v_[1] < b.v_[1] ? v_[1] : b.v_[1]);
  }

 private:
  double v_[2];  // x, y: the flat form's order
};

static_assert(std::is_trivially_default_constructible_v<zrVec2>);
static_assert(std::is_trivially_copyable_v<zrVec2>);
static_assert(std::is_standard_layout_v<zrVec2> && sizeof(zrVec2) == 16);

/// The sign of each component: -1 below 0, 0 for either zero, +1 otherwise (NaN included).
ZR_API zrVec2 zrSgn(const zrVec2& v);

/// The flat form: x then y, 16 bytes, the same as zrComplex's.
inline int zrMemSize(const zrVec2&) { return zr::detail::kPairMemSize; }
inline int zrToMem(unsigned char* buffer, const zrVec2& v) {
  return zr::detail::PairToMem(buffer, v.X(), v.Y());
}
inline int zrFromMem(const unsigned char* buffer, zrVec2& v) {
  return zr::detail::PairFromMem(buffer, v.X(), v.Y());
}
namespace zr::detail {
inline bool FlatWalk(FlatCursor& cursor, const zrVec2& v) { return FixedFlatWalk(cursor, v); }
}  // namespace zr::detail

/// A point or vector of space: a plain value of three components (x, y, z), copied whole
/// (no block, nothing shared); only zrTVec3<double> exists. Arithmetic is componentwise,
/// as for zrVec2 (see vec.h). See the example examples/beta_tube.cpp.
template <class T>
class ZR_API zrTVec3 {
 public:
  /// Components uninitialised.
  zrTVec3() = default;
  zrTVec3(T x, T y, T z) : v_{x, y, z} {}

  T& X() { return v_[0]; }
  const T& X() const { return v_[0]; }
  T& Y() { return v_[1]; }
  const T& Y() const { return v_[1]; }
  T& Z() { return v_[2]; }
  const T& Z() const { return v_[2]; }
  T* GetVec() { return v_; }
  const T* GetVec() const { return v_; }
  /// No range check.
  T& operator[](int i) { return v_[i]; }
  const T& operator[](int i) const { return v_[i]; }
  void Fill(T v) { v_[0] = v_[1] = v_[2] = v; }

  zrTVec3 operator+(const zrTVec3& b) const {
    return zrTVec3(v_[0] + b.v_[0], v_[1] + b.v_[1], v_[2] + b.v_[2]);
  }
  zrTVec3 operator-(const zrTVec3& b) const {
    return zrTVec3(v_[0] - b.v_[0], v_[1] - b.v_[1], v_[2] - b.v_[2]);
  }
  zrTVec3 operator*(const zrTVec3& b) const {
    return zrTVec3(v_[0] * b.v_[0], v_[1] * b.v_[1], v_[2] * b.v_[2]);
  }
  zrTVec3 operator/(const zrTVec3& b) const {
    return zrTVec3(v_[0] / b.v_[0], v_[1] / b.v_[1], v_[2] / b.v_[2]);
  }
  zrTVec3& operator+=(const zrTVec3& b) { return *this = *this + b; }
  zrTVec3& operator-=(const zrTVec3& b) { return *this = *this - b; }
  zrTVec3& operator*=(const zrTVec3& b) { return *this = *this * b; }
  zrTVec3& operator/=(const zrTVec3& b) { return *this = *this / b; }

  zrTVec3 operator+(T s) const { return zrTVec3(v_[0] + s, v_[1] + s, v_[2] + s); }
  zrTVec3 operator-(T s) const { return zrTVec3(v_[0] - s, v_[1] - s, v_[2] - s); }
  zrTVec3 operator*(T s) const { return zrTVec3(v_[0] * s, v_[1] * s, v_[2] * s); }
  zrTVec3 operator/(T s) const { return zrTVec3(v_[0] / s, v_[1] / s, v_[2] / s); }
  zrTVec3& operator+=(T s) { return *this = *this + s; }
  zrTVec3& operator-=(T s) { return *this = *this - s; }
  zrTVec3& operator*=(T s) { return *this = *this * s; }
  zrTVec3& operator/=(T s) { return *this = *this / s; }

  /// Computed as -0.0 - c, so that the sign of a zero component flips too.
  zrTVec3 operator-() const {
    const T nz = static_cast<T>(-0.0);
    return zrTVec3(nz - v_[0], nz - v_[1], nz - v_[2]);
  }

  int operator==(const zrTVec3& b) const {
    return v_[0] == b.v_[0] && v_[1] == b.v_[1] && v_[2] == b.v_[2];
  }
  int operator!=(const zrTVec3& b) const {
    return v_[0] != b.v_[0] || v_[1] != b.v_[1] || v_[2] != b.v_[2];
  }
  int operator<(const zrTVec3& b) const {
    return v_[0] < b.v_[0] && v_[1] < b.v_[1] && v_[2] < b.v_[2];
  }
  int operator>(const zrTVec3& b) const {
    return v_[0] > b.v_[0] && v_[1] > b.v_[1] && v_[2] > b.v_[2];
  }
  int operator<=(const zrTVec3& b) const {
    return v_[0] <= b.v_[0] && v_[1] <= b.v_[1] && v_[2] <= b.v_[2];
  }
  int operator>=(const zrTVec3& b) const {
    return v_[0] >= b.v_[0] && v_[1] >= b.v_[1] && v_[2] >= b.v_[2];
  }

  /// x*b.x + y*b.y + z*b.z.
  T ScalarMul(const zrTVec3& b) const;
  /// The squared length, x*x + y*y + z*z.
  T ScalarMul() const;
  /// sqrt(x*x + y*y + z*z), computed directly: no scaling against overflow.
  T Norm() const;
  /// The cross product this x b, each component in this order:
  ///   (a.y*b.z - a.z*b.y, b.x*a.z - a.x*b.z, a.x*b.y - b.x*a.y).
  zrTVec3 VectorMul(const zrTVec3& b) const;
  /// The outer product a * b^T, this vector a as a column and b as a row: element (i, j)
  /// = a[i] * b[j]. The result type comes with zr/linalg (see above).
  zrTMatrix3x3<T> MulCL(const zrTVec3& b) const;

  T Sum() const { return v_[0] + v_[1] + v_[2]; }
  /// The mean, (x + y + z) / 3.
  T E() const { return (v_[0] + v_[1] + v_[2]) / 3; }

  /// The smallest or largest component, examined in the order x, y, z; a component
  /// replaces the one kept so far unless the kept one is strictly smaller (Min) or
  /// greater (Max), so a tie or a NaN takes the later component.
  T Min() const {
    T m = v_[0];
    if (!(m < v_[1])) m = v_[1];
    if (!(m < v_[2])) m = v_[2];
    return m;
  }
  T Max() const {
    T m = v_[0];
    if (!(m > v_[1])) m = v_[1];
    if (!(m > v_[2])) m = v_[2];
    return m;
  }

 private:
  T v_[3];  // x, y, z: the flat form's order
};

ZR_EXTERN_TEMPLATE(class, zrTVec3<double>);

static_assert(std::is_trivially_default_constructible_v<zrTVec3<double>>);
static_assert(std::is_trivially_copyable_v<zrTVec3<double>>);
static_assert(std::is_standard_layout_v<zrTVec3<double>> && sizeof(zrTVec3<double>) == 24);

/// The flat form: x, y, z, 24 bytes.
inline int zrMemSize(const zrTVec3<double>&) { return 3 * zr::detail::RawMemSize<double>(); }
inline int zrToMem(unsigned char* buffer, const zrTVec3<double>& v) {
  int n = zr::detail::RawToMem(buffer, v.X());
  n += zr::detail::RawToMem(buffer + n, v.Y());
  return n + zr::detail::RawToMem(buffer + n, v.Z());
}
inline int zrFromMem(const unsigned char* buffer, zrTVec3<double>& v) {
  int n = zr::detail::RawFromMem(buffer, v.X());
  n += zr::detail::RawFromMem(buffer + n, v.Y());
  return n + zr::detail::RawFromMem(buffer + n, v.Z());
}
namespace zr::detail {
inline bool FlatWalk(FlatCursor& cursor, const zrTVec3<double>& v) {
  return FixedFlatWalk(cursor, v);
}
}  // namespace zr::detail
