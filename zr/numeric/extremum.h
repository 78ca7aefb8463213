/// \file
/// zrFindExtremum: the minimum or the maximum of a function of one variable, on an interval
/// [a, b] or from a start point and a step.
///
/// The search is Brent's: golden-section steps, parabolic steps through the three best points
/// where they are safe, and a step of at least the tolerance so that the last points are
/// never closer than the function can tell apart. A maximum is searched as the minimum of -f
/// (negation is exact, so both searches visit the same points); the result reports f(x) as
/// f returned it.
///
/// Two ways to pass the function:
///   - any callable with double(double) (a lambda, a function object, a function): the header
///     template wraps it and calls the library's search through a function pointer, so the
///     algorithm lives in the library and the template adds no code of its own;
///   - a plain double (*)(double x, void* user) with a user pointer handed back on every call,
///     for callers on the other side of a library boundary.
/// An exception thrown by the function leaves the search and reaches the caller unchanged.
///
/// Tolerances: with tol = absTol + relTol * |x| at the current best point x, the search stops
/// when the bracket [lo, hi] around x is so small that max(x - lo, hi - x) <= 2 * tol. For a
/// function with one extremum on the bracket (unimodal) the true extremum then lies within
/// 2 * tol of x. The result's converged says whether this test was met; when the limit on
/// evaluations is reached first it is false and x is the best point seen.
///
/// Choices where the method leaves room:
///   - a > b is the interval [b, a]: the search is the same, point for point;
///   - a == b: f is evaluated once at that point and the result is that point, converged
///     (an interval of one point has its extremum there);
///   - Brent's steps never evaluate the ends of the interval, so on their own they only creep
///     up to an extremum at an end, a golden step at a time. The search evaluates an end once
///     when the best point is the nearest to it and the convex parabola through the three
///     best points has its vertex at or beyond it (within 8 times the distance from x to that
///     end); if the end is the best point, one step of tol inside settles the search. When the
///     search stops within 2 * tol of an end not yet evaluated, that end is evaluated once and
///     is the result if its value is at least as good. So an extremum at an end is found
///     exactly, in a few calls where the evidence is clear;
///   - the bracket must halve every three steps: when it has not, the next step is a golden
///     one (parabolic steps alone close in on a minimum flatter than a parabola, x^4, more
///     slowly than golden ones);
///   - relTol below DBL_EPSILON is raised to DBL_EPSILON (a smaller step would not move x);
///   - f may return infinities: they are compared like other values (a maximum of +inf is
///     found); a NaN stops the search with BadParameters naming the x, never a loop;
///   - the bracketing form steps downhill from x0 by step, growing each step by the golden
///     ratio, until the function rises again; the three points found then start Brent's
///     search with the middle one as its first point (no evaluation is repeated). A function
///     that keeps falling until the limit on evaluations (or until the next point would not
///     be finite) gives the lowest point seen, not converged, and lo == hi == x.
///
/// Errors (BadParameters, exact texts after the "Invalid parameters : " prefix):
///   "zrFindExtremum : the interval ends must be finite"
///   "zrFindExtremum : the start point and the step must be finite, the step not zero"
///   "zrFindExtremum : absTol must be finite and > 0, relTol finite and >= 0"
///   "zrFindExtremum : maxEvaluations must be >= 1"
///   "zrFindExtremum : the kind must be Minimum or Maximum"
///   "zrFindExtremum : the function is NaN at x = <x>" (x printed with %.17g)
///
/// Exactness: every formula is computed in one fixed order in the library (compiled without
/// contraction), so a search visits the same points, bit for bit, on every build.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "zr/core/core.h"

/// Which extremum zrFindExtremum looks for. See the example docs/examples.md#guide_numeric.
enum class zrExtremumKind : std::int32_t { Minimum = 0, Maximum = 1 };

/// The stopping rule and the limit of a search by zrFindExtremum: the search stops when the
/// bracket around the best point x is within 2 * (absTol + relTol * |x|) of x on both sides,
/// or after maxEvaluations calls of the function. The defaults, 2^-28 and 2^-26 (about the
/// square root of DBL_EPSILON), are as close as function values near a smooth extremum can
/// place it. See the example docs/examples.md#guide_numeric.
struct ZR_API zrExtremumOptions {
  /// Absolute tolerance, > 0: the smallest step taken near x = 0.
  double absTol = 3.7252902984619141e-09;
  /// Relative tolerance, >= 0; raised to DBL_EPSILON when it is smaller.
  double relTol = 1.4901161193847656e-08;
  /// The most calls of the function, >= 1 (the bracketing steps included).
  int maxEvaluations = 1000;
};

/// What a search by zrFindExtremum found: the best point, its value, the number of calls of
/// the function, whether the tolerance was met, and the bracket [lo, hi] that holds x (and,
/// for a unimodal function, the extremum). See the example docs/examples.md#guide_numeric.
struct ZR_API zrExtremumResult {
  double x = 0;            ///< the best point seen
  double fx = 0;           ///< f(x), as f returned it
  int evaluations = 0;     ///< calls of the function
  bool converged = false;  ///< whether the tolerance test was met
  double lo = 0;           ///< the final bracket's lower end
  double hi = 0;           ///< the final bracket's upper end
};

/// The start of a bracketing search: a point and the first step (either sign) from it.
/// See the example docs/examples.md#guide_numeric.
struct ZR_API zrExtremumStart {
  double x0 = 0;
  double step = 0;
};

/// The form of a function that crosses the library boundary: the value at x, with the user
/// pointer given to zrFindExtremum.
using zrExtremumFunction = double (*)(double x, void* user);

/// The extremum of f on [a, b] (either order). See extremum.h for the stopping rule, the
/// choices at the ends and the errors.
ZR_API zrExtremumResult zrFindExtremum(zrExtremumFunction f, void* user, double a, double b,
                                       zrExtremumKind kind,
                                       const zrExtremumOptions& options = zrExtremumOptions());

/// An extremum of f found by bracketing from start.x0 with the first step start.step, then
/// Brent's search inside the bracket; the evaluations of both count against
/// options.maxEvaluations.
ZR_API zrExtremumResult zrFindExtremum(zrExtremumFunction f, void* user, zrExtremumStart start,
                                       zrExtremumKind kind,
                                       const zrExtremumOptions& options = zrExtremumOptions());

namespace zr::detail {
template <class Call>
double CallExtremumFunction(double x, void* user) {
  return (*static_cast<Call*>(user))(x);
}
template <class F>
using ExtremumCallable = std::enable_if_t<std::is_invocable_r_v<double, F&, double>>;
}  // namespace zr::detail

/// The extremum of any callable f (double(double)) on [a, b]; the search is the library's,
/// reached through zrExtremumFunction.
template <class F, class = zr::detail::ExtremumCallable<F>>
zrExtremumResult zrFindExtremum(F&& f, double a, double b, zrExtremumKind kind,
                                const zrExtremumOptions& options = zrExtremumOptions()) {
  auto call = [&f](double x) -> double { return f(x); };
  return zrFindExtremum(&zr::detail::CallExtremumFunction<decltype(call)>, &call, a, b, kind,
                        options);
}

/// An extremum of any callable f (double(double)), bracketed from start first.
template <class F, class = zr::detail::ExtremumCallable<F>>
zrExtremumResult zrFindExtremum(F&& f, zrExtremumStart start, zrExtremumKind kind,
                                const zrExtremumOptions& options = zrExtremumOptions()) {
  auto call = [&f](double x) -> double { return f(x); };
  return zrFindExtremum(&zr::detail::CallExtremumFunction<decltype(call)>, &call, start, kind,
                        options);
}
