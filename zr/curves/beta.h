/// \file
/// Beta-splines: the blending function, open curves and closed contours through space
/// points, and the tube surface through a stack of plane contours.
///
/// The uniform cubic Beta-spline has two shape parameters, skew s (beta1) and tension tau
/// (beta2); with s = 1 and tau = 0 it is the uniform cubic B-spline. BetaSpline holds them
/// and the blending function B(t) they determine, a piecewise cubic on (-2, 2]. BetaCurve
/// interpolates an open sequence of points, BetaContour a cyclic one, BetaTube a net of
/// points closed around and open along; all three solve their interpolation systems with
/// zrMatrix<zrTVec3<double>>::SolveEquationGaussMethod, every coefficient written into all
/// three coordinates so that x, y and z are solved together. Systems of 16 unknowns or
/// more go through a banded form of that same elimination (zr/curves/detail/), which
/// gives its results bit for bit, NaNs and signed zeros included, in time and memory
/// linear in the point count instead of quadratic; Rebuild gathers its samples in one
/// block as well.
///
/// Who owns what: every object owns its control points outright. The copy constructors and
/// assignments copy them (no block is shared with the source), the destructors release
/// them. Objects are allocated through zrMalloc/zrFree by BetaSpline's class-level
/// operator new and delete.
///
/// Failures: the classes check nothing themselves. A singular system (an open curve of one
/// point, a tube of one row, skew 0) is reported by the Gauss solver with its
/// "not unique" text (zr::text::kSystemNotUnique, zr/linalg/matrix.h); degenerate
/// parameters give infinities or NaNs. The one exception of this file's own is the tube's
/// contour form with a heights array of another length than the contour array
/// ("BetaTube: number of heights must equal number of contours.").
///
/// Parameters: t (and the tube's u and v) run over [0, 1]. Evaluations of an object
/// without points give (NaN, NaN, NaN).
///
/// A tube through stacked contours, written as a mesh of nu x nv vertices:
///
///   zrSimpleArray<zrSimpleContour2D> sections(3);  // fill each contour
///   zrSimpleArray<double> heights(3);              // one height per contour
///   BetaTube tube(1.0, 0.0);
///   tube.MakeInterpolation(sections, heights);
///   for (int j = 0; j < nv; ++j)                   // along: v = j / (nv - 1) in [0, 1]
///     for (int i = 0; i < nu; ++i)                 // around: u = i / nu in [0, 1)
///       vertex(i, j) = tube(double(i) / nu, double(j) / (nv - 1));
///
/// u = 1 is the same point as u = 0, so a closed ring of nu vertices takes u = i / nu.
#pragma once

#include <cstddef>

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/curves/contour.h"
#include "zr/linalg/linalg.h"
#include "zr/values/values.h"

/// The skew, the tension and the ten coefficients of the blending function: twelve doubles,
/// in the order tension, skew, a, l0 ... l3, r0 ... r3, e. No virtual operations; the
/// default is skew 1, tension 0.
///
/// The base of the Beta-spline curves, contours and tube (see beta.h); it holds no points
/// and shares nothing. See the example examples/beta_tube.cpp.
class ZR_API BetaSpline {
 public:
  BetaSpline() { _SetSkewTension(1.0, 0.0); }
  BetaSpline(double skew, double tension) { _SetSkewTension(skew, tension); }
  BetaSpline(const BetaSpline&) = default;
  BetaSpline& operator=(const BetaSpline&) = default;

  /// Stores both parameters and computes the coefficients; with d = 2s^3 + 4s^2 + 4s + tau
  /// + 2: a = 2/d, e = 2s^3/d, l0 = r0 = (4s^2 + 4s + tau)/d, l1 = -6(1 - s^2)/d, l2 =
  /// -3(2s + tau + 2)/d, l3 = -2(tau + 1 + s + s^2)/d, r1 = -6(s - s^3)/d, r2 = -3(2(s^3 +
  /// s^2) + tau)/d, r3 = 2(s + tau + s^2 + s^3)/d. d = 0 is not checked.
  void _SetSkewTension(double skew, double tension);

  /// B(t), on intervals open on the left and closed on the right:
  ///   (-2, -1]  a (t + 2)^3        (-1, 0]  ((l3 t + l2) t + l1) t + l0
  ///   (0, 1]    ((r3 t + r2) t + r1) t + r0      (1, 2]  e (2 - t)^3
  /// and 0 elsewhere (t <= -2, t > 2, NaN). B(0) = l0, B(1) = e, B(-1) = a, B(+-2) = 0.
  double BetaBlend(double t) const;
  /// The derivative on the same intervals: 3a (t + 2)^2, (3 l3 t + 2 l2) t + l1, (3 r3 t +
  /// 2 r2) t + r1, and on (1, 2] +3e (2 - t)^2. The last sign is positive although the
  /// true derivative is negative there: the library has always had it so, and the curves'
  /// tangents use it as it stands. 0 elsewhere.
  double BetaBlendDeriv(double t) const;

  double GetSkew() const { return skew_; }
  double GetTension() const { return tension_; }
  /// The coefficients: A() of (-2, -1], L(i) and R(i) (i = 0 ... 3, constant first) of
  /// (-1, 0] and (0, 1], E() of (1, 2].
  double A() const { return a_; }
  double L(int i) const { return l_[i]; }
  double R(int i) const { return r_[i]; }
  double E() const { return e_; }

  /// Objects of the family are allocated through the library allocator.
  static void* operator new(std::size_t size);
  static void operator delete(void* p) noexcept;
  static void* operator new(std::size_t, void* where) noexcept { return where; }
  static void operator delete(void*, void*) noexcept {}

 private:
  double tension_;
  double skew_;
  double a_;
  double l_[4];
  double r_[4];
  double e_;
};

/// An open space curve through n points Q0 ... Qn-1, passing through Qj at t = j / (n - 1).
/// Its N = n + 2 control points P0 ... PN-1 hold two phantom end points, P0 and PN-1,
/// that keep the curve's ends at P1 = Q0 and PN-2 = Qn-1 (see MakeInterpolation).
///
/// The curve owns its control points: the copy constructor and assignment copy them, and
/// no block is shared with the source. See the example examples/beta_tube.cpp for the
/// Beta-spline surfaces.
class ZR_API BetaCurve : public BetaSpline {
 public:
  /// No points yet.
  BetaCurve(double skew, double tension);
  BetaCurve(const zrVector<zrTVec3<double>>& points, double skew, double tension);
  /// Skew 1, tension 0.
  explicit BetaCurve(const zrVector<zrTVec3<double>>& points);
  /// Copies the control points.
  BetaCurve(const BetaCurve& other);
  BetaCurve& operator=(const BetaCurve& other);

  /// The virtual operations, in this order.
  ///
  /// The point at t: P1 for t <= 0, PN-2 for t >= 1, otherwise with u = (N - 3) t and i =
  /// u truncated the sum over j = i ... i + 3, in that order, of B(u - j + 1) Pj. NaN t
  /// gives NaNs.
  virtual zrTVec3<double> operator()(double t) const;
  /// The tangent at t: for t <= 0 (P2 - P1) * 3 * a * (1 + s) and for t >= 1 (PN-2 -
  /// PN-3) * 3 * (s * s * a + e), neither normalised; inside, the sum of step 4 with B'
  /// in place of B divided by its length (a zero sum gives NaNs).
  virtual zrTVec3<double> GetTangent(double t) const;
  /// Control point i + 1, the one that belongs to data point i. No range check.
  virtual zrTVec3<double> GetControl(int i) const;
  /// The number of data points, N - 2 (0 without points).
  virtual int GetControlNumber() const;
  /// Stores p as control point c = i + 1 (no range check) and keeps the phantom end points
  /// on the end conditions of the interpolation, by which the curve's derivative ends
  /// match its first and last inner points:
  ///   c = 1      P0   = P1 + (P1 - P2) / s^3
  ///   c = N - 3  PN-1 = PN-2 + (PN-2 - PN-3) * s^3
  ///   c = N - 2  PN-1 = PN-2 + (PN-2 - PN-3) * s^3
  /// (each phantom's weight in the end condition is s^3 times, or 1/s^3 times, that of
  /// the inner point on the other side of the end). Storing a control point unchanged
  /// therefore leaves the curve as it is. Other positions, c = 2 included, change only the
  /// one point, as the library has always done.
  virtual void SetControl(int i, const zrTVec3<double>& p);
  virtual ~BetaCurve();

  /// _SetSkewTension(skew, tension), then MakeInterpolation(points).
  void Init(const zrVector<zrTVec3<double>>& points, double skew, double tension);
  /// The control points through the points (read with the vector's step): an N x N system
  /// with row 0: P1 = Q0; row N - 1: Pn = Qn-1; row m = 1 ... n: B(1) Pm-1 + B(0) Pm +
  /// B(-1) Pm+1 (+ B(-2) Pm+2 in row 1, which is 0) = Qm-1. Stencil entries beyond the
  /// last column are dropped. No points leave the curve empty; one point gives a singular
  /// system, which the solver reports.
  void MakeInterpolation(const zrVector<zrTVec3<double>>& points);

  /// The sum of the chords between C(0), C(0.02), C(0.04), ..., the parameter accumulated
  /// by adding 0.02 while it stays <= 1: 49 chords, the last sample at t ~ 0.98, so the
  /// stretch up to t = 1 is not counted (kept as the library has always measured it).
  double GetLength() const;

  /// Resamples the curve into m points about equally spaced along it and interpolates them
  /// (MakeInterpolation); nothing happens unless m > 4. With L = GetLength() / m and
  /// D = 1 / m, the first sample is C(0); each next one is searched from the previous
  /// sample's parameter tp: the parameter t starts at tp + D and moves by a step that
  /// starts at D, going forward while the chord |C(t) - C(tp)| is shorter than L and back
  /// while it is longer; each change of direction halves the step. A forward move is
  /// clamped at 1.0. The search accepts t when |chord - L| / D < 0.1, when t reaches 1.0
  /// with a chord no longer than L (the curve ends before the next sample), or after 200
  /// moves. Samples are taken until there are m - 1 or the search reaches t = 1.0; the end
  /// point C(1) is then appended, so the rebuilt curve keeps both ends and has at most m
  /// points.
  void Rebuild(int m);

  /// The parameter at which the curve meets, in the x-y plane, the line through point with
  /// direction dir, by Newton's method from t0: FindCrosX when dir.x != 0, else FindCrosY;
  /// 0 when both are 0 or when the method fails.
  double FindCrossection(const zrTVec3<double>& dir, const zrTVec3<double>& point, double t0) const;

 protected:
  /// With k = dir.y / dir.x and f(t) = (C(t).y - k C(t).x) - (point.y - k point.x), at
  /// most 100 Newton steps from t0 with the forward difference h = 0.001: f' = (C(t + h).y
  /// - C(t).y) / h - k (C(t + h).x - C(t).x) / h; the next parameter is t - f / f', or t +
  /// 0.001 when f' = 0. It is returned as soon as |f(t)| <= 1e-4 or |next - t| <= 1e-4;
  /// 0 after 100 steps, and 0 when dir.x = 0.
  double FindCrosX(const zrTVec3<double>& dir, const zrTVec3<double>& point, double t0) const;
  /// The same with x and y exchanged and the tighter tolerance 1e-6 for both tests; 0 when
  /// dir.y = 0. The two tolerances differ on purpose.
  double FindCrosY(const zrTVec3<double>& dir, const zrTVec3<double>& point, double t0) const;

  /// The samples of Rebuild; closed drops a sample at t = 1.0 (it repeats C(0)) and takes
  /// m samples instead of ending with C(1).
  void Resample(int m, bool closed, zrVector<zrTVec3<double>>& out) const;

  zrVector<zrTVec3<double>> ctrl_;  // the N control points, owned
};

/// A closed space curve through n points Q0 ... Qn-1, passing through Qm at t = m / n and
/// back to Q0 at t = 1. Its N = n + 3 control points are the solution X0 ... Xn-1 of the
/// cyclic system with three wrap-around copies: Xn-2, Xn-1, X0, X1, ..., Xn-1, X0 (indices
/// modulo n, so a contour of one or two points works too).
///
/// The contour owns its control points: the copy constructor and assignment copy them,
/// and no block is shared with the source. See the example examples/beta_tube.cpp for
/// the Beta-spline surfaces.
class ZR_API BetaContour : public BetaCurve {
 public:
  /// No points yet; the default is skew 1, tension 0.
  explicit BetaContour(double skew = 1.0, double tension = 0.0);
  BetaContour(const zrVector<zrTVec3<double>>& points, double skew, double tension);
  explicit BetaContour(const zrVector<zrTVec3<double>>& points);
  BetaContour(const BetaContour& other);
  BetaContour& operator=(const BetaContour& other);
  ~BetaContour() override;

  /// A t < 0 or t >= 1 (or NaN) is replaced by 0; u = n t, i = u truncated, and the point
  /// is the sum over j = i ... i + 3 of B(u - j + 1) Pj.
  zrTVec3<double> operator()(double t) const override;
  /// The same sum with B', always normalised.
  zrTVec3<double> GetTangent(double t) const override;
  /// Control point i + 2, the one that belongs to data point i. No range check.
  zrTVec3<double> GetControl(int i) const override;
  /// The number of data points, N - 3 (0 without points).
  int GetControlNumber() const override;
  /// Stores p as the control point of data point i (0 <= i < n) and as every wrap-around
  /// copy of it, so the copies always equal the points they repeat.
  void SetControl(int i, const zrTVec3<double>& p) override;

  void Init(const zrVector<zrTVec3<double>>& points, double skew, double tension);
  /// The n x n cyclic system: row r has B(1) in column r - 2, B(0) in column r - 1 and
  /// B(-1) in column r (modulo n; entries that fall on one column are added, which
  /// matters for n < 3 only), right-hand side Qr. No points leave the contour empty.
  void MakeInterpolation(const zrVector<zrTVec3<double>>& points);
  /// As BetaCurve::Rebuild with the contour's closure: m samples from C(0) on (fewer when
  /// the search reaches t = 1.0 first; that sample would repeat C(0) and is not taken),
  /// then MakeInterpolation on them. Nothing happens unless m > 4.
  void Rebuild(int m);
};

/// A tensor-product Beta-spline surface, closed around (u) and open along (v): a tube
/// through a net of m rows (along) by k columns (around). Its control net has m + 2 rows
/// and k + 3 columns. The surface passes through data point (i, j) at u = j / k, v = i /
/// (m - 1); u = 1 is u = 0 again.
///
/// The tube owns its control net: the copy constructor and assignment copy it, and no
/// block is shared with the source. See the example examples/beta_tube.cpp.
class ZR_API BetaTube : public BetaSpline {
 public:
  BetaTube(double skew, double tension);
  BetaTube(const zrMatrix<zrTVec3<double>>& points, double skew, double tension);
  /// Skew 1, tension 0.
  explicit BetaTube(const zrMatrix<zrTVec3<double>>& points);
  /// Copies the control net.
  BetaTube(const BetaTube& other);
  BetaTube& operator=(const BetaTube& other);
  ~BetaTube();

  void Init(const zrMatrix<zrTVec3<double>>& points, double skew, double tension);
  /// Every row of points is interpolated as a contour (k + 3 control points), then every
  /// one of those k + 3 columns as an open curve (m + 2 control points). An empty matrix
  /// leaves the tube empty; one row gives a singular system, which the solver reports.
  void MakeInterpolation(const zrMatrix<zrTVec3<double>>& points);
  /// The tube through plane contours, contour i placed at height heights[i] (the lengths
  /// must be equal, else BadParameters "BetaTube: number of heights must equal number of
  /// contours."). With k the largest point count: when the counts differ or k > 200,
  /// k becomes min(k, 200) and every contour is replaced by its k points at t = j / k,
  /// j = 0 ... k - 1 (zrSimpleContour2D::operator()). Each contour after the first is
  /// then aligned with the one before by MakeCoherentS (its orientation, then the start
  /// that minimises the band between them). Row i, column j of the data net is (x, y,
  /// heights[i]) of point j of contour i. The contours are taken by value: the caller's
  /// are never changed. An empty contour among others gives NaN points.
  void MakeInterpolation(zrSimpleArray<zrSimpleContour2D> contours,
                         const zrSimpleArray<double>& heights);
  /// Does nothing.
  void vInterpolation() {}

  /// The surface point: u < 0 or u >= 1 (or NaN) is replaced by 0; with K = k + 3, w =
  /// (K - 3) u and i = w truncated, the sum over c = i ... i + 3 of B(w - c + 1)
  /// vSum(v, c).
  zrTVec3<double> operator()(double u, double v) const;

  /// The data net's rows (m) and columns (k); 0 for an empty tube.
  int GetRowNumber() const;
  int GetColumnNumber() const;
  /// The control net, (m + 2) x (k + 3). Its copy constructor would share the elements;
  /// take a Copy() before changing them.
  const zrMatrix<zrTVec3<double>>& GetControlNet() const { return net_; }

 protected:
  /// Control column c as an open curve at v: row 1 for v <= 0, row M - 2 for v >= 1 (M =
  /// m + 2), otherwise with z = (M - 3) v and r = z truncated the sum over q = r ... r + 3
  /// of B(z - q + 1) net(q, c). NaN v gives NaNs.
  zrTVec3<double> vSum(double v, int c) const;

 private:
  zrMatrix<zrTVec3<double>> net_;  // the control net, owned
};
