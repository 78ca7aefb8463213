/// \file
/// zrSplineCurve2D: a smooth parametric curve through the points of a polyline.
///
/// Two cubic splines over a common parameter t in [0, 1], one for x and one for y: point i
/// of the source curve becomes the node (i / (n - 1), x_i) of the x spline and
/// (i / (n - 1), y_i) of the y spline, so the nodes are spread evenly in t whatever the
/// distances between the points. The splines are the curve's own (copied from nothing the
/// caller holds); the copy constructor and assignment copy both splines (see
/// zr/numeric/spline.h).
///
/// The closed curve is built from periodic splines: the polyline's last point is the first
/// one again (its t is 1), and the spline checks that it matches point 0 within its fixed
/// tolerance ("error in spline" otherwise). The open curve takes an end type:
///   1  first-derivative ends: the slope of each coordinate at t = 0 is that of the first
///      chord, (v_1 - v_0) / (t_1 - t_0), and at t = 1 that of the last chord;
///   2  natural ends: zero second derivatives.
///
/// Errors (BadParameters): "Spline must have 4 points at least" (closed, fewer than 4),
/// "Spline must have 3 points at least" (open, fewer than 3), "zrSplineCurve2D: Wrong
/// type" (an end type other than 1 or 2), and the splines' own errors. Nothing is built
/// when the constructor throws.
#pragma once

#include "zr/core/core.h"
#include "zr/curves/curve.h"
#include "zr/numeric/numeric.h"

/// A smooth parametric plane curve through the points of a polyline: two cubic zrSpline,
/// x(t) and y(t) over t in [0, 1], open (with first-derivative or natural ends) or closed
/// (periodic).
/// Who shares: nobody. The splines are the curve's own and are copied by the copy
/// constructor and assignment (see spline_curve.h). See the example
/// examples/zr_interp.cpp for the spline it is made of.
class ZR_API zrSplineCurve2D : public zrUsingNew {
  ZR_TYPE_IDENTITY
 public:
  /// Closed: periodic splines through the n >= 4 points of c.
  explicit zrSplineCurve2D(const zrCurve2D& c);
  /// Open: splines through the n >= 3 points of c with the end type (1 or 2) above.
  zrSplineCurve2D(const zrCurve2D& c, int type);
  zrSplineCurve2D(const zrSplineCurve2D& other);
  zrSplineCurve2D& operator=(const zrSplineCurve2D& other);
  ~zrSplineCurve2D() override;

  /// The splines of x(t) and y(t).
  zrSpline<double>& X() { return x_; }
  const zrSpline<double>& X() const { return x_; }
  zrSpline<double>& Y() { return y_; }
  const zrSpline<double>& Y() const { return y_; }

  /// The arc length: the integral over [0, 1] of sqrt(x'(t)^2 + y'(t)^2) by Simpson's rule,
  /// starting with the step 1/2 (t = 0, 0.5, 1) and halving it, the new midpoints added to
  /// the sums kept from before, until two successive estimates differ by less than 0.001;
  /// the last estimate is returned. At least two estimates are made, and at most 20
  /// halvings (the last estimate is returned then, as it is when the derivatives are NaN).
  /// 0 when the x spline has at most one node.
  double GetLengthOfCurve() const;

 private:
  zrSpline<double> x_;  // nodes (t_i, x_i)
  zrSpline<double> y_;  // nodes (t_i, y_i)
};
