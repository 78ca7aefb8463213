/// \file
/// Coordinate transforms of the plane and of space.
///
/// zrTransformCoord2D and zrTransformCoord3D are affine maps p -> M*p + shift, held as the
/// shift (zrVec2, zrTVec3<double>) and the linear part M (zrMatrix2x2, zrTMatrix3x3<double>,
/// stored by rows). They are plain values: no virtual operations, copy and assignment copy
/// both fields, and default construction gives the identity.
///
/// A transform is built step by step. Every Add... composes its step S after the present
/// transform T, so the transform becomes S o T: the new step acts on points that T has
/// already moved. Shift first, then a quarter turn, sends (0, 0) to the shifted point and
/// turns it about the origin:
///   t.AddShift(zrVec2(1, 2)); t.AddTurn(pi / 2);   // (0, 0) -> (-2, 1)
/// The "about centre" forms move centre to the origin, apply the step and move it back,
/// so centre stays fixed.
///
/// Each step updates M and shift in place (AddMatrix(A): M <- A*M, shift <- A*shift;
/// AddScale(s): row i and shift[i] multiplied by s[i]), so a transform built in several
/// steps carries the rounding of each. All formulas are compiled in the library with
/// contraction off and are evaluated as written beside them.
///
/// The flat form (MemSize, ToMem, FromMem and the free zrMemSize, zrToMem, zrFromMem) is
/// the linear part's elements row by row, then the shift, raw binary64: 48 bytes in the
/// plane, 96 in space.
///
/// zrTransformCoord is the frame of a ruler laid in the plane, given by general column
/// vectors; see its own comment below.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/geometry/rect.h"
#include "zr/linalg/linalg.h"
#include "zr/values/values.h"

/// An affine map of the plane, p -> M*p + shift, built step by step (scale, turn, matrix,
/// shift, each composed after the steps before it); a plain value, copied whole (see
/// transform.h). See the example docs/examples.md#guide_geometry for the geometry
/// subsystem.
class ZR_API zrTransformCoord2D {
 public:
  /// The identity: shift (0, 0), unit matrix.
  zrTransformCoord2D();

  /// diag(s.x, s.y): row 0 of M and shift.x times s.x, row 1 and shift.y times s.y.
  void AddScale(const zrVec2& s);
  /// The same scale about centre: shift - centre, AddScale(s), shift + centre.
  void AddScale(const zrVec2& s, const zrVec2& centre);
  /// M <- a*M, shift <- a*shift.
  void AddMatrix(const zrMatrix2x2& a);
  /// AddMatrix of zrMatrix2x2::SetTurn(angle): counter-clockwise by angle radians about
  /// the origin.
  void AddTurn(double angle);
  /// The same turn about centre.
  void AddTurn(double angle, const zrVec2& centre);
  /// shift <- shift + d.
  void AddShift(const zrVec2& d);

  /// M*p + shift.
  zrVec2 Transform(const zrVec2& p) const;
  /// M*v: a displacement, no shift.
  zrVec2 TransformVec(const zrVec2& v) const;

  const zrVec2& GetShift() const { return shift_; }
  const zrMatrix2x2& GetMatrix() const { return m_; }

  /// p -> M^-1 * (p - shift), built from the identity by AddShift(-shift) then
  /// AddMatrix(M.Inverse()). A singular M throws what zrMatrix2x2::Inverse throws
  /// ("zrMatrix2x2::Inverse : det = 0 ").
  zrTransformCoord2D Inverse() const;
  /// The composition that applies other first and this second: a copy of other, then
  /// AddMatrix(this M), then AddShift(this shift).
  zrTransformCoord2D operator*(const zrTransformCoord2D& other) const;

  /// With e1 = M*(1, 0) and e2 = M*(0, 1): (sqrt((s.x*e1.x)^2 + (s.y*e1.y)^2),
  /// sqrt((s.x*e2.x)^2 + (s.y*e2.y)^2)), the lengths of the images of the unit vectors
  /// with the target axes weighted by s.
  zrVec2 GetOldScale(const zrVec2& s) const;
  /// Inverse().GetOldScale(s); a singular M throws as Inverse does.
  zrVec2 GetNewScale(const zrVec2& s) const;

  /// The axis-parallel rectangle bounding the images of the four corners (lo.x, lo.y),
  /// (lo.x, hi.y), (hi.x, lo.y), (hi.x, hi.y): componentwise minima and maxima. The
  /// corners of r are taken as given, even when lo > hi.
  zrRect<zrVec2> TransformRect(const zrRect<zrVec2>& r) const;

  /// Replaces this transform by the rotation plus shift (no scale) that maps from[i] onto
  /// to[i] with the least sum of squared distances. With means fx, fy, tx, ty of the
  /// coordinates, D = mean(from.x*to.x + from.y*to.y), C = mean(from.y*to.x - from.x*to.y),
  /// u = fy*ty + tx*fx - D, w = ty*fx - fy*tx + C, r = sqrt(u*u + w*w), c = u/r, s = w/r,
  /// two candidates are formed:
  ///   A: rows (c, -s), (s, c), shift (fy*s - fx*c + tx, ty - (fy*c + fx*s));
  ///   B: rows (-c, s), (-s, -c), shift (-fy*s + fx*c + tx, ty + fy*c + fx*s),
  /// both mapping the mean of from onto the mean of to. B is the half turn of A; it is
  /// taken when its residual (sum of squared distances, in index order) is strictly
  /// smaller, otherwise A. Arrays of different lengths throw
  /// "zrTransformCoord2D::MakeFromEquations: different number" and leave this transform
  /// as it was. No points, or all points of from (or of to) at one place, give r = 0 and
  /// NaNs; that is not checked.
  void MakeRotateShiftFromEquations(const zrSimpleArray<zrVec2>& from,
                                    const zrSimpleArray<zrVec2>& to);

  /// 48 bytes: M row by row, then shift.x, shift.y.
  int MemSize() const;
  int ToMem(unsigned char* buffer) const;
  int FromMem(const unsigned char* buffer);

 private:
  zrVec2 shift_;
  zrMatrix2x2 m_;  // by rows
};

/// An affine map of space, p -> M*p + shift, built step by step as zrTransformCoord2D is;
/// a plain value, copied whole (see transform.h). See the example
/// docs/examples.md#guide_geometry for the geometry subsystem.
class ZR_API zrTransformCoord3D {
 public:
  /// The identity: shift (0, 0, 0), unit matrix.
  zrTransformCoord3D();

  /// diag(s.x, s.y, s.z): row i of M and shift[i] times s[i].
  void AddScale(const zrTVec3<double>& s);
  /// The same scale about centre.
  void AddScale(const zrTVec3<double>& s, const zrTVec3<double>& centre);
  /// M <- a*M, shift <- a*shift.
  void AddMatrix(const zrTMatrix3x3<double>& a);
  /// AddMatrix of zrTMatrix3x3::SetTurn(a, b, c): about x by a, then y by b, then z by c.
  void AddTurn(double a, double b, double c);
  /// The same turn about centre.
  void AddTurn(double a, double b, double c, const zrTVec3<double>& centre);
  /// The turn by angle about axis through the origin (SetTurn(angle, axis)); note that the
  /// vector here is an axis, not a centre as in the plane's AddTurn(angle, centre).
  void AddTurn(double angle, const zrTVec3<double>& axis);
  /// The turn taking the direction of from into that of to (SetTurn(from, to)).
  void AddTurn(const zrTVec3<double>& from, const zrTVec3<double>& to);
  /// shift <- shift + d.
  void AddShift(const zrTVec3<double>& d);

  /// M*p + shift.
  zrTVec3<double> Transform(const zrTVec3<double>& p) const;
  /// M*v.
  zrTVec3<double> TransformVec(const zrTVec3<double>& v) const;

  const zrTVec3<double>& GetShift() const { return shift_; }
  const zrTMatrix3x3<double>& GetMatrix() const { return m_; }

  /// p -> M^-1 * (p - shift); a singular M throws what zrTMatrix3x3::Inverse throws.
  zrTransformCoord3D Inverse() const;
  /// other first, then this.
  zrTransformCoord3D operator*(const zrTransformCoord3D& other) const;

  /// Component j: sqrt((s.x*e.x)^2 + (s.y*e.y)^2 + (s.z*e.z)^2) with e = M * (unit vector j).
  zrTVec3<double> GetOldScale(const zrTVec3<double>& s) const;
  /// Inverse().GetOldScale(s).
  zrTVec3<double> GetNewScale(const zrTVec3<double>& s) const;

  /// 96 bytes: M row by row, then shift x, y, z.
  int MemSize() const;
  int ToMem(unsigned char* buffer) const;
  int FromMem(const unsigned char* buffer);

 private:
  zrTVec3<double> shift_;
  zrTMatrix3x3<double> m_;  // by rows
};

inline int zrMemSize(const zrTransformCoord2D& t) { return t.MemSize(); }
inline int zrToMem(unsigned char* buffer, const zrTransformCoord2D& t) { return t.ToMem(buffer); }
inline int zrFromMem(const unsigned char* buffer, zrTransformCoord2D& t) {
  return t.FromMem(buffer);
}
inline int zrMemSize(const zrTransformCoord3D& t) { return t.MemSize(); }
inline int zrToMem(unsigned char* buffer, const zrTransformCoord3D& t) { return t.ToMem(buffer); }
inline int zrFromMem(const unsigned char* buffer, zrTransformCoord3D& t) {
  return t.FromMem(buffer);
}
namespace zr::detail {
inline bool FlatWalk(FlatCursor& cursor, const zrTransformCoord2D& t) {
  return FixedFlatWalk(cursor, t);
}
inline bool FlatWalk(FlatCursor& cursor, const zrTransformCoord3D& t) {
  return FixedFlatWalk(cursor, t);
}
}  // namespace zr::detail

/// zrTransformCoord: the coordinates of plane points in the frame of a ruler.
///
/// The frame has its origin at `origin` and one of its axes along `axis`: the x axis when
/// `which` is 0, the y axis for any other value; the other axis is `axis` turned by a
/// quarter turn so that the frame stays right-handed (for the x axis along v, the y axis
/// is (-v.y, v.x); for the y axis along v, the x axis is (v.y, -v.x)). The unit of length
/// of the frame is |axis|, so a point at origin + axis reads (1, 0) or (0, 1).
///
/// GetCoord(p) gives the frame coordinates of the point p; GetScale(d) gives the frame
/// components of a displacement d (no origin), that is how a step of d reads in the
/// frame's turned and scaled units. Both return a fresh two-element column vector.
///
/// The map is held as a zrTransformCoord2D (GetTransform), built from the identity by
/// AddShift(-origin) then AddMatrix(rows ex / q, ey / q), ex and ey the frame's axis
/// vectors and q = axis.x*axis.x + axis.y*axis.y. The vectors are read once, at
/// construction, and not kept: later writes to them do not change the frame.
///
/// Every vector argument must have exactly two elements, otherwise BadParameters with
/// "zrTransformCoord : must be dimention equal two.". A zero axis gives NaNs; it is not
/// checked.
///
/// A plain value: it keeps its zrTransformCoord2D and shares nothing with the vectors it
/// was built from. See the example docs/examples.md#guide_geometry for the geometry
/// subsystem.
class ZR_API zrTransformCoord {
 public:
  zrTransformCoord(const zrColumnVector<double>& origin, const zrColumnVector<double>& axis,
                   int which);

  zrColumnVector<double> GetCoord(const zrColumnVector<double>& p) const;
  zrColumnVector<double> GetScale(const zrVector<double>& d) const;

  const zrTransformCoord2D& GetTransform() const { return t_; }

 private:
  zrTransformCoord2D t_;
};
