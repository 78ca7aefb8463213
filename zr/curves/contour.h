/// \file
/// zrSimpleContour2D: the closed plane polygon.
///
/// A zrCurve2D whose last point joins the first: every index into the points is taken
/// modulo the point count n, so the edge from point n - 1 back to point 0 is always part of
/// the contour. It adds no data (the flat form and the sharing rules are those of
/// zrArray<zrVec2>; the type name is "zrSimpleContour2D") and brings the closed-curve
/// measurements, a parameterisation by t in [0, 1], the self-intersection and point tests,
/// the alignment of one contour against another, and clipping by a straight line and by a
/// rectangle.
///
/// Who shares and who copies: the copy constructor copies the points; assignment from a
/// contour of equal length writes in place (every sharer sees it), hence the contour's own
/// swap, with which arrays of contours move their elements. SetOrient, MakeCoherent and
/// MakeCoherentS reorder the points in place, so sharers see the new order too. The
/// clipping operations return new contours with blocks of their own.
///
/// Orientation code: 0 when the signed area is strictly positive (counter-clockwise with
/// the y axis up), 1 otherwise, a contour of zero area included.
///
/// Errors (BadParameters): "zrSimpleContour2D::MakeCoherent: both length Must be equal."
/// when the aligned contours differ in length, "Contour2D must have larger two of point."
/// for a cut of fewer than 3 points (also inside zrPolyLineToRange, when a cut leaves
/// fewer than 3), "Dimension must equal 2 in GetLine." for a range without 2 elements.
#pragma once

#include <utility>

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/curves/curve.h"
#include "zr/geometry/geometry.h"
#include "zr/values/values.h"

namespace zr::detail {
// Reaches the private helpers; defined by the tests only.
struct ContourProbe;
}  // namespace zr::detail

/// A closed plane polygon: a zrCurve2D whose last point joins the first, with area,
/// orientation, perimeter, the point and self-intersection tests, alignment against
/// another contour and clipping by a line or a rectangle.
/// Who shares the block: as zrArray<zrVec2>: the copy constructor copies the points,
/// assignment of an equal length and the reorderings (SetOrient, MakeCoherent) work in
/// place for every sharer, and the clippings return contours with blocks of their own
/// (see contour.h). See the example examples/contours.cpp and
/// docs/examples.md#guide_curves.
class ZR_API zrSimpleContour2D : public zrCurve2D {
  ZR_TYPE_IDENTITY
 public:
  /// Empty: no block, length 0.
  zrSimpleContour2D() = default;
  /// n uninitialised points in a new block; n < 1 throws "zrNewWithRef : n <= 0 ".
  explicit zrSimpleContour2D(int n) : zrCurve2D(n) {}
  /// A deep copy of the points of an array.
  explicit zrSimpleContour2D(const zrArray<zrVec2>& points) : zrCurve2D(points) {}
  /// A deep copy: a new block with the source's points.
  zrSimpleContour2D(const zrSimpleContour2D& other) : zrCurve2D(other) {}
  /// Takes the source's block over; the source is left empty.
  zrSimpleContour2D(zrSimpleContour2D&& other) noexcept : zrCurve2D(std::move(other)) {}
  /// The array's assignment: equal length writes in place (sharers see it).
  zrSimpleContour2D& operator=(const zrSimpleContour2D& other) {
    zrCurve2D::operator=(other);
    return *this;
  }
  ~zrSimpleContour2D() override;

  /// Exchanges the two contours' blocks, origins and lengths; no point is copied.
  void swap(zrSimpleContour2D& other) { zrSimpleArray<zrVec2>::swap(other); }

  /// The perimeter: the distances from point i to point (i + 1) mod n summed for i = 0 ...
  /// n - 1 in that order. 0 for an empty contour and for one point.
  double GetLengthOfCurve() const;
  /// The area, |signed area|; the signed area is one half of the sum over i of
  /// x_i * y_(i+1) - y_i * x_(i+1), positive counter-clockwise.
  double GetS() const;
  /// 0 when the signed area is > 0, else 1.
  int GetOrient() const;
  /// Reverses the points in place when GetOrient() differs from o.
  void SetOrient(int o);

  /// The point at parameter t: s = t * n, k = floor(s), f = s - k, i = k mod n, and the
  /// result (1 - f) * point i + f * point (i + 1) mod n. Each edge takes an equal share 1/n
  /// of the parameter range whatever its length, and t = 0 and t = 1 both give point 0.
  /// Outside [0, 1] the parameter wraps with period 1 (floor keeps negative t on the edge
  /// it falls in, so t = -0.125 is the point at t = 0.875). An empty contour, or a t for
  /// which t * n is not finite, gives (NaN, NaN).
  zrVec2 operator()(double t) const;

  /// 1 when two edges cross, else 0. Every edge (point i, point i + 1), i = 0 ... n - 2, is
  /// tested against every later edge (point j - 1, point j mod n), j = i + 2 ... n, with the
  /// four cross products c1 = cross(B - A, D - A), c2 = cross(B - A, C - A), c3 =
  /// cross(D - C, B - C), c4 = cross(D - C, A - C): the pair crosses when c1 and c3 are
  /// nonzero and c2 and c4 differ in sign from them. A zero c2 or c4 (C on the line AB, or
  /// A on the line CD) counts as a different sign, so a vertex that merely touches another
  /// edge is reported through the edge that starts at it; neighbouring edges never count,
  /// as one of their products is zero where the test needs it nonzero. Empty: 0.
  int IsIntersect() const;
  /// 1 when p lies inside, -1 outside (and for an empty contour), 0 on the contour, by the
  /// crossings of the horizontal ray from p toward +x, edge by edge:
  ///   - a horizontal edge at p's height with p.x between its ends (ends included) answers
  ///     0; other horizontal edges are skipped;
  ///   - a vertex equal to p answers 0;
  ///   - an edge crosses the ray's level when its lower end is at or below p.y and its
  ///     upper end strictly above; the crossing abscissa is the lower end's x when that end
  ///     lies at p.y, else A.x + (B.x - A.x) * (p.y - A.y) / (B.y - A.y); an abscissa
  ///     equal to p.x answers 0, a greater one counts;
  ///   - an odd count is inside.
  int IsInsidePoint(const zrVec2& p) const;

  /// Aligns this contour with other (equal lengths, else the error above): takes other's
  /// orientation, then rotates the points so that the nearest point k of the point j of
  /// other whose nearest distance is largest (GetIndexOfMaxDistance(k, other)) lands on
  /// index j. Two empty contours are left as they are. A zrErrNoMemory from the search
  /// (see zrCurve2D::GetIndexOfMaxDistance) may come after the orientation was taken.
  void MakeCoherent(const zrSimpleContour2D& other);
  /// Aligns this contour with other (equal lengths): takes other's orientation, then of the
  /// n rotations r (r points moved from the front to the back) keeps the one whose band
  /// measure against other (see GetTriS) is smallest, the earliest on ties; a measure
  /// replaces the best also while the best is exactly 0. The rotations are measured on a
  /// private copy, so the points of this contour are rotated once, at the end. Two empty
  /// contours are left as they are.
  /// Cost: n^2 band terms at most; rotations that cannot win stop early (see contour.cpp).
  void MakeCoherentS(const zrSimpleContour2D& other);

  /// The part of the contour on the non-negative side of line (line.GetDist(point) >= 0,
  /// the right of the line's direction), as a new contour; n >= 3 is required. Walking the
  /// points in order, each edge (point i - 1, point i), and last the closing edge (point n -
  /// 1, point 0), is tested for a crossing when its end distances dp, d satisfy dp * d < 0,
  /// or dp > 0 and d == 0, or dp == 0, d > 0 and the point before the edge's start lies
  /// strictly on the negative side. The crossing is the intersection of line with the line
  /// through the edge's ends (none for lines parallel within 1e-10), kept when it lies on
  /// the edge, ends included; a kept crossing is appended, then point i when d >= 0; the
  /// closing edge's crossing comes last. A vertex on the line reached from the positive
  /// side, or left toward it after arriving from the negative side, is therefore emitted
  /// twice, as itself and as the crossing. The result may have fewer than 3 points, or none.
  zrSimpleContour2D CutByStraightLine(const zrGeom::StraightLine2D& line) const;
  /// Clips to the rectangle [0, W - 1] x [0, H - 1], range holding W then H (exactly 2
  /// elements), by four cuts, each of the previous result: y >= 0 (line (W - 1, 0) -> (0,
  /// 0)), y <= H - 1 (line (0, H - 1) -> (W - 1, H - 1)), x >= 0 (line (0, 0) -> (0, H -
  /// 1)) and x <= W - 1 (line (W - 1, H - 1) -> (W - 1, 0)). Every cut needs at least 3
  /// points, so a contour that leaves the rectangle with fewer throws.
  zrSimpleContour2D zrPolyLineToRange(const zrArray<int>& range) const;

 private:
  friend struct zr::detail::ContourProbe;

  // The signed area (see GetS).
  double GetSignS() const;
  // The point at arc distance |d| from point i (i taken modulo n), walking forward for
  // d > 0 and backward for d < 0: whole edges are subtracted while the remaining distance
  // is strictly greater than the current edge, then the result is point cur + (remaining /
  // edge length) * sign(d) * (point next - point cur), next being cur plus the step. For
  // d < 0 the last partial step therefore points away from next, beyond point cur (kept
  // as the library has always done it). d == 0 gives point i. The walk wraps around the
  // contour as often as needed; when a whole lap no longer shortens the remaining distance
  // (a contour of zero perimeter, or |d| so large that the edges vanish against it) the
  // result is point i.
  zrVec2 GetPt(double d, int i) const;
  // The same on the single edge from point i to its neighbour in the direction of d, the
  // distance capped at half the edge length L: point i + (min(|d|, L / 2) / L) * sign(d) *
  // (neighbour - point i). d == 0 or an edge of zero length gives point i.
  zrVec2 GetPtNdiv2(double d, int i) const;
  // The band measure between this contour P and other Q as if they lay in parallel
  // planes: with D(a, b) = sqrt((a.x - b.x)^2 + (a.y - b.y)^2 + 100), one half of the sum,
  // over i in order, of the Heron areas of the triangles (P_i, Q_i, Q_i+1) and then
  // (P_i, P_i+1, Q_i+1). The lift 100 applies to every side, also between two points of
  // the same contour. A triangle (u, v, w) has the sides D(u, v), D(v, w), D(u, w), and
  // its area is sqrt(s * (s - a) * (s - b) * (s - c)) with s = (a + b + c) / 2.
  double GetTriS(const zrSimpleContour2D& other) const;
  // The same measure near index k (modulo n) with x in place of point k of this contour,
  // and the lift 1 instead of 100: one half of the sum of the areas of (P_a, Q_k, x),
  // (x, Q_k, Q_b) and (x, P_b, Q_b), a = k - 1 and b = k + 1 modulo n.
  double GetPartTriS(const zrSimpleContour2D& other, const zrVec2& x, int k) const;
};

/// Arrays of contours move their elements with zrSimpleContour2D::swap, so that a shared
/// contour's points are never overwritten by a rearrangement of the array.
ZR_EXTERN_TEMPLATE(class, zrSimpleArray<zrSimpleContour2D>);
