/// \file
/// zrSpline<TT>: a piecewise-polynomial interpolating function y(x) through n points.
/// Only zrSpline<double> exists.
///
/// The spline holds its n points and n - 1 segments, all private to it: point i is
/// (x_i, y_i), and segment i covers [x_i, x_(i+1)] and is the PowerKoef polynomial about
/// x_i of its coefficients (none before a builder has run: the value 0 there). They are
/// kept in one flat block of records, the abscissa, the ordinate and the segment's
/// coefficients side by side (48 bytes a point), next to the search tree; no zrPolynom or
/// zrColumnVector object is made for them. Values and derivatives are computed from the
/// records in zrPolynom's operations and order, so they are exactly the bits the
/// segments' polynomials give (elements of a point beyond the second are not kept).
/// Constructing from points, Set, the copy constructor and operator= copy values into the
/// spline's own block, so nothing the caller holds is shared with the spline, and no two
/// splines share one.
/// The abscissas must not decrease; that is not rejected, but the builders then fail
/// their check and the segment lookup falls back to the plain scan (below).
///
/// Builders (each replaces every segment):
///   MkSpline3(codes, values)  the cubic spline with two end conditions. The moments M_i
///     (second derivatives at the points) solve a tridiagonal system: Diag = 2.0, interior
///     row i: Down[i-1] = 1 - l_i, Up[i] = l_i with l_i = h_i / (h_(i-1) + h_i),
///     h_i = x_(i+1) - x_i, d_i = 6 / (h_(i-1) + h_i) * ((y_(i+1) - y_i)/h_i
///     - (y_i - y_(i-1))/h_(i-1)). The end rows come from bit codes: codes[0] holds
///     first-derivative conditions, codes[1] second-derivative ones; bit 1 is the left
///     end, bit 2 the right end. values(0, 0) / values(0, 1) are the prescribed first
///     derivatives at the left / right end, values(1, 0) / values(1, 1) the second ones.
///     They are applied in the order codes[0] bit 1, codes[0] bit 2, codes[1] bit 1,
///     codes[1] bit 2, and exactly two must be applied. Only the count is checked: (1, 1)
///     puts both conditions on the left end, the later replacing the earlier, and leaves
///     the right end row as it starts, 2*M_(n-1) = 0. codes = (0, 3) with zero values is
///     the natural spline, (3, 0) the clamped one. A missing codes element counts as 0.
///     MkSpline3 solves the system with zrMatrix3Diag::SolveEquationChaserMethod, then
///     writes the segments, then runs Check(). (For double a faster build sweeps the rows
///     as it forms them and tests each segment as it writes it: the same operations in the
///     same order, a quotient that two formulas share computed once, and a moment's sixth
///     taken as half its third where that is the same number, so the same bits and the
///     same verdict.)
///     Segment i = PowerKoef (c0, c1, c2, c3) about x_i:
///       c0 = (M_(i+1) - M_i)/(6*h_i), c1 = 0.5*M_i,
///       c2 = (y_(i+1) - y_i)/h_i - (M_(i+1)/6 + M_i/3)*h_i, c3 = y_i.
///   MkPeriodSpline3()  the periodic cubic spline with period P = x_(n-1) - x_0: point n-1
///     is point 0 one period on, so the spline's value there is y_0 (the stored y_(n-1)
///     must agree within the check's tolerance). Unknowns M_0 ... M_(n-2) with M_(n-1) =
///     M_0; every row i = 0 ... n-2 is an interior row as above, the neighbours wrapping
///     around: row 0 takes h_(n-2) as its step back and y_(n-2) as its previous value,
///     row n-2 takes y_0 as its following value. The two corners, element (0, n-2) =
///     1 - l_0 and element (n-2, 0) = l_(n-2), close the system, which the cyclic sweep
///     solves (for three points, where the system has two rows, the corners fold into the
///     band and the plain sweep solves it). Value, first and second derivative are then
///     continuous across the period: at x_0 from segment 0 and at x_(n-1) from segment
///     n-2 they agree.
///   Make(degree, codes, values)  the interpolating spline of the given odd degree with
///     degree - 1 end conditions, counted as in MkSpline3:
///       1  the broken line: segment i = PowerKoef (slope, y_i) about x_i, with
///          slope = (y_(i+1) - y_i)/h_i; no condition may be given;
///       3  exactly MkSpline3(codes, values).
///     Any other degree throws "zrSpline: wrong degree."; a wrong condition count throws
///     "Invalid number of bound condition.".
/// Every builder then runs Check() and throws "error in spline" when it returns 0.
///
/// Check(): every segment within 0.01 of its two end points, and at every interior node
/// the derivatives of orders 1 ... (coefficients - 2) of the two neighbouring segments
/// within 0.01 of each other. The tolerance is absolute and fixed on purpose; a NaN
/// difference fails.
///
/// Evaluation. GetSegmentNum(x) requires n > 1 and x_0 <= x <= x_(n-1) and returns i - 1
/// for the first i in 1 ... n-1 with x_i > x, n - 2 when there is none (x = x_(n-1)): the
/// scan over the nodes. When the abscissas do not decrease (decided whenever the points
/// are taken) double finds the same index, ties included, by a branch-free descent of a
/// search tree kept with the points (x_1 ... x_(n-2) by levels). GetSegmentNum(x, hint)
/// and Value(x, hint) scan forward from a previous answer, for queries that come in
/// increasing order (double with a tree: the hint's segment, then the three after it, then
/// the tree, so that a hint that has gone stale costs one descent); the many-point Value
/// and Derivative search each point so from the previous point's segment. The
/// explicit-segment forms
/// require 0 <= seg < n - 1 and do not look at x; Derivative(m, i) requires 0 <= i < n and
/// evaluates segment i at x_i (segment n - 2 for the last point).
///
/// Errors (BadParameters): "Spline: number of point must be >= 3" (fewer than 3 points),
/// "Spline: point must have 2 coordinates" (a point with fewer elements),
/// "zrSpline: Out of range." (x outside the nodes, bad segment or point index, a value
/// the applied conditions need lying outside the values matrix), "Invalid number of bound
/// condition.", "zrSpline: wrong degree.", "error in spline". Argument errors are raised
/// before anything changes; "error in spline" leaves the built segments in place.
///
/// The template parameter is TT to match the polynomial's.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/linalg/linalg.h"
#include "zr/numeric/polynom.h"

class zrCurve2D;

namespace zr::detail {

// A point of the spline and its segment side by side: x, y, then the segment's
// coefficients c0 ... c3.
inline constexpr int kSplineRecord = 6;

// The end rows of the cubic spline's system for the moments: diag0*M_0 + up0*M_1 = d0 and
// downN*M_(n-2) + diagN*M_(n-1) = dN.
template <class TT>
struct SplineEnds {
  TT diag0, up0, d0;
  TT diagN, downN, dN;
};

// The spline's fast paths, asked first by the class; a member that declines (false, or a
// depth of 0) leaves the work to the class's own loops. This template declines
// everything; double has the library's own (zr/numeric/detail/spline_kernel.h).
template <class TT>
struct SplineKernels {
  static int MakeTree(const TT*, int, zrSimpleArray<TT>&) { return 0; }
  static bool Search(const TT*, int, int, const TT&, int&) { return false; }
  static bool Near(const TT*, int, const TT&, int&) { return false; }
  static bool Cubic(TT*, int, const SplineEnds<TT>&, bool&) { return false; }
};
template <>
struct SplineKernels<double>;

}  // namespace zr::detail

/// An end condition of the cubic spline by name, for zrSpline<TT>::Cubic: a convenience
/// over the bit codes and the values matrix of MkSpline3, and over MkPeriodSpline3. Each
/// name stands for exactly one full call:
///   Natural()              MkSpline3 with codes (0, 3) and a 2 x 2 values matrix of zeros
///                          (no curvature at either end);
///   Clamped(left, right)   MkSpline3 with codes (3, 0), values(0, 0) = left and
///                          values(0, 1) = right, the rest zero (the slopes at the ends);
///   Periodic()             MkPeriodSpline3().
/// A plain value. See the example docs/examples.md#guide_numeric.
class zrSplineEnd {
 public:
  enum Kind { kNatural, kClamped, kPeriodic };

  static zrSplineEnd Natural() { return zrSplineEnd(kNatural, 0.0, 0.0); }
  static zrSplineEnd Clamped(double left, double right) {
    return zrSplineEnd(kClamped, left, right);
  }
  static zrSplineEnd Periodic() { return zrSplineEnd(kPeriodic, 0.0, 0.0); }

  Kind GetKind() const { return kind_; }
  /// The slopes of Clamped at the first and the last point; 0 for the others.
  double Left() const { return left_; }
  double Right() const { return right_; }

 private:
  zrSplineEnd(Kind kind, double left, double right) : kind_(kind), left_(left), right_(right) {}

  Kind kind_;
  double left_;
  double right_;
};

/// A cubic (or broken-line) interpolating function y(x) through n points, with natural,
/// clamped and periodic end conditions, values and derivatives; only zrSpline<double>
/// exists.
/// Who shares: nobody. The points and segments are the spline's own: the constructor
/// from points, Set, the copy constructor and operator= copy values into its private
/// block (see spline.h for the builders, the check and the errors). See the example
/// examples/zr_interp.cpp.
template <class TT>
class ZR_API zrSpline : public zrUsingNew {
  ZR_TYPE_IDENTITY
 public:
  /// No points, no segments.
  zrSpline() = default;
  /// Copies the points; n - 1 empty segments wait for a builder.
  explicit zrSpline(const zrSimpleArray<zrColumnVector<TT>>& points);
  zrSpline(const zrSpline& other);
  zrSpline& operator=(const zrSpline& other);
  ~zrSpline() override;

  /// As the constructor from points, replacing everything (nothing changes when it
  /// throws).
  void Set(const zrSimpleArray<zrColumnVector<TT>>& points);
  /// As Set(points) with the curve's vertices as the points (x, y). Defined with the
  /// curves (zr/curves/curve.cpp), which sit above this subsystem.
  void Set(const zrCurve2D& curve);

  void MkSpline3(const zrSimpleArray<int>& codes, const zrMatrix<TT>& values);
  void MkPeriodSpline3();
  void Make(int degree, const zrSimpleArray<int>& codes, const zrMatrix<TT>& values);

  /// The cubic spline through the points (x[i], y[i]) with a named end condition: a
  /// convenience over constructing from points and calling the builder the condition
  /// stands for (see zrSplineEnd), whose segments it has, bit for bit. Nothing the caller
  /// holds is shared. Refused before anything is built, in this order:
  ///   "zrSpline: x and y differ in length."
  ///   "Spline: number of point must be >= 3"
  ///   "zrSpline: x must be strictly increasing." (x[i] > x[i-1] for every i; a NaN fails)
  ///   "zrSpline: periodic y must end at its first value." (Periodic() only: y[n-1] more
  ///     than the check's 0.01 away from y[0]; the periodic spline takes y[0] there)
  /// and then, as from the builder, "error in spline" when the built spline fails Check().
  /// More points than one block of records holds (INT32_MAX / 6) throw zrErrNoMemory.
  static zrSpline Cubic(const zrSimpleArray<TT>& x, const zrSimpleArray<TT>& y,
                        const zrSplineEnd& end);
  /// The same from vectors, read through their steps.
  static zrSpline Cubic(const zrVector<TT>& x, const zrVector<TT>& y, const zrSplineEnd& end);
  /// The same from n values at x and at y (a std::vector's data(), say).
  static zrSpline Cubic(const TT* x, const TT* y, int n, const zrSplineEnd& end);

  int GetNumberOfPoint() const { return n_; }
  int GetSegmentNum(const TT& x) const;
  /// GetSegmentNum(x) that starts from segment hint and searches forward from it when
  /// x_hint <= x (any other hint, one out of range included, is ignored), leaving the
  /// result in hint. The index is the same as without a hint; queries in increasing order
  /// find theirs in a few comparisons.
  int GetSegmentNum(const TT& x, int& hint) const;
  /// operator()(x) through GetSegmentNum(x, hint).
  TT Value(const TT& x, int& hint) const;

  TT operator()(const TT& x) const;
  TT operator()(const TT& x, int seg) const;
  TT Derivative(const TT& x, int m) const;
  TT Derivative(const TT& x, int m, int seg) const;
  TT Derivative(int m, int i) const;

  /// Many points at once, a convenience over operator()(x) and Derivative(x, m): out[i] is
  /// exactly what the single-point call gives for xs[i]. Every xs[i] is checked before
  /// anything is written ("zrSpline: Out of range."; a negative m throws "zrPolynom :
  /// wrong derivative order" even for no points), so a refusal leaves out as it was.
  /// out is sized as the arrays size a result, by out.Init(xs.Len()): an out of that
  /// length is written in place (every sharer of its block sees the values), any other
  /// gets a new block of its own. out may be xs itself or overlap it: the values are
  /// those of xs as it stood before the call.
  void Value(const zrSimpleArray<TT>& xs, zrSimpleArray<TT>& out) const;
  void Derivative(const zrSimpleArray<TT>& xs, int m, zrSimpleArray<TT>& out) const;
  /// The same for n values at xs into out[0] ... out[n - 1] (out may overlap xs).
  void Value(const TT* xs, int n, TT* out) const;
  void Derivative(const TT* xs, int n, int m, TT* out) const;

  /// 1 when the built spline passes the continuity test, else 0.
  int Check() const;

 private:
  TT X(int i) const { return records_.GetPointer()[static_cast<std::int64_t>(i) * kRecord]; }
  TT Y(int i) const { return records_.GetPointer()[static_cast<std::int64_t>(i) * kRecord + 1]; }
  // Everything of the two splines exchanged.
  void Exchange(zrSpline& other);
  // "zrSpline: Out of range." unless 0 <= seg < n - 1.
  void CheckSegment(int seg) const;
  // The m-th derivative of segment seg at x, as its polynomial gives it.
  TT DeriveSegment(int seg, const TT& x, int m) const;
  // The end-condition count of codes and the values they use, checked; throws before
  // anything is built.
  int CountConditions(const zrSimpleArray<int>& codes, const zrMatrix<TT>& values) const;
  // MkSpline3's end rows, as the conditions rewrite them.
  zr::detail::SplineEnds<TT> EndRows(const zrSimpleArray<int>& codes,
                                     const zrMatrix<TT>& values) const;
  void BuildSegments3(const TT* moments, int periodic);
  // Cubic's body: the checks, the points read through the steps, then the builder.
  void MakeCubic(const TT* x, int xStep, const TT* y, int yStep, int n, const zrSplineEnd& end);
  // "zrSpline: Out of range." unless every xs[i] lies within the nodes.
  void CheckInside(const TT* xs, int n) const;
  // The many-point evaluations, xs checked: out[i] = f(segment of xs[i], xs[i]), through
  // a private buffer when out overlaps xs other than exactly.
  template <class F>
  void EachPoint(const TT* xs, int n, TT* out, F f) const;
  // Segment i's coefficients into its record.
  void SetSegment(int i, const zrColumnVector<TT>& k);
  // More points than one block of records holds throw zrErrNoMemory with its byte count.
  static void CheckRecordCount(int n);
  // Checked (two elements a point at least); returns whether the abscissas do not
  // decrease.
  static int MakeRecords(const zrSimpleArray<zrColumnVector<TT>>& points,
                         zrSimpleArray<TT>& records);
  // The search tree of non-decreasing records into tree_ and depth_ (none: depth 0).
  void MakeTree();
  // The segment of x within the nodes.
  int Search(const TT& x) const;
  // Segment seg at x as its polynomial evaluates it.
  TT EvalSegment(int seg, const TT& x) const;

  int n_ = 0;  // the number of points

  // The points and the segments: record i = (x_i, y_i, c0, c1, c2, c3) of segment i (the
  // coefficients of the last record unused); koef_ is the coefficient count of every
  // segment once a builder has run (2 or 4), 0 while the segments are unbuilt (they have
  // no coefficients then).
  static constexpr int kRecord = zr::detail::kSplineRecord;
  zrSimpleArray<TT> records_;
  int koef_ = 0;
  // For non-decreasing abscissas, the fast search's tree (SplineKernels::MakeTree), of
  // depth depth_, its nodes from element treeStart_ (the first 64-byte line of its block);
  // none when depth_ is 0.
  zrSimpleArray<TT> tree_;
  int depth_ = 0;
  int treeStart_ = 0;
  int increasing_ = 1;  // abscissas do not decrease
};

template <>
ZR_API void zrSpline<double>::Set(const zrCurve2D& curve);
ZR_EXTERN_TEMPLATE(class, zrSpline<double>);
