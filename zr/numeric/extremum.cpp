#include "zr/numeric/extremum.h"

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

constexpr double kGolden = 0.38196601125010515;  // (3 - sqrt(5)) / 2
constexpr double kGrow = 1.6180339887498949;     // (1 + sqrt(5)) / 2

// Calls the user's function, counts the calls, refuses NaN, and turns a maximum into a
// minimum (negation is exact, so the search sees the same points either way).
class Probe {
 public:
  Probe(zrExtremumFunction f, void* user, zrExtremumKind kind, int limit)
      : f_(f), user_(user), sign_(kind == zrExtremumKind::Maximum ? -1.0 : 1.0), limit_(limit) {}

  double operator()(double x) {
    ++count_;
    const double y = f_(x, user_);
    if (std::isnan(y)) {
      char text[96];
      std::snprintf(text, sizeof text, "zrFindExtremum : the function is NaN at x = %.17g", x);
      throw BadParameters(text);
    }
    return sign_ * y;
  }

  bool Spent() const { return count_ >= limit_; }
  int Count() const { return count_; }
  // The function's own value from a searched one.
  double Reported(double v) const { return sign_ * v; }

 private:
  zrExtremumFunction f_;
  void* user_;
  double sign_;
  int limit_;
  int count_ = 0;
};

// The search's state: the bracket [a, b]; x the best point, w the second best, v the
// previous w, with their (searched) values; d the last step and e the one before it;
// the bracket's widths before the last Brent steps (a ring), and their count since the
// last forced golden step.
struct State {
  double a, b;
  double x, fx;
  double w, fw;
  double v, fv;
  double d, e;
  double widths[4];
  int steps = 0;
};

double Tol1(double x, double absTol, double relTol) { return relTol * std::fabs(x) + absTol; }

// The next point of Brent's method from the state (updates d and e).
//
// Brent's rule lets parabolic steps go on while each is less than half the step before
// last; on a minimum flatter than a parabola (x^4) they close in from alternating sides by a
// steady factor, and the bracket shrinks more slowly than golden steps would shrink it. So
// the bracket must halve every three steps: when it has not, the step is a golden one.
double BrentStep(State& s, double m, double tol1, double tol2) {
  const double width = s.b - s.a;
  const bool stalled = s.steps >= 3 && width > 0.5 * s.widths[(s.steps - 3) % 4];
  if (stalled) s.steps = 0;
  s.widths[s.steps % 4] = width;
  ++s.steps;
  bool golden = true;
  if (std::fabs(s.e) > tol1 && !stalled) {
    // The parabola through (x, fx), (w, fw), (v, fv): its vertex is x + p / q. Infinite
    // values make p or q NaN, and every comparison below then falls to a golden step.
    double r = (s.x - s.w) * (s.fx - s.fv);
    double q = (s.x - s.v) * (s.fx - s.fw);
    double p = (s.x - s.v) * q - (s.x - s.w) * r;
    q = 2.0 * (q - r);
    if (q > 0.0)
      p = -p;
    else
      q = -q;
    const double before = s.e;
    s.e = s.d;
    // Accepted when it moves less than half the step before last (so the steps shrink)
    // and stays inside the bracket.
    if (std::fabs(p) < std::fabs(0.5 * q * before) && p > q * (s.a - s.x) && p < q * (s.b - s.x)) {
      s.d = p / q;
      const double u = s.x + s.d;
      if (u - s.a < tol2 || s.b - u < tol2) s.d = s.x < m ? tol1 : -tol1;
      golden = false;
    }
  }
  if (golden) {
    s.e = s.x >= m ? s.a - s.x : s.b - s.x;
    s.d = kGolden * s.e;
  }
  // Never closer to x than tol1: nearer points say nothing the function can tell apart.
  if (std::fabs(s.d) >= tol1) return s.x + s.d;
  return s.d >= 0.0 ? s.x + tol1 : s.x - tol1;
}

// The ends of the interval of a search on [a, b]: Brent's iteration never evaluates them,
// so a minimum at an end is only approached, a golden step at a time. When the evidence
// points at an end (the best point is the nearest to it, and the convex parabola through
// the three best points has its vertex at or not far beyond it), the end is evaluated once; if it
// is the best point, one step of tol1 inside it settles the search.
struct Ends {
  bool active = false;
  double lo = 0, hi = 0;
  bool loDone = false, hiDone = false;
  double probe = 0;  // a step to take next from x, or 0
};

// The vertex of the parabola through the three best points when they are distinct and it is
// convex; false otherwise (infinite values give NaN or false here, never a vertex).
bool ConvexVertex(const State& s, double* at) {
  if (s.x == s.w || s.x == s.v || s.w == s.v) return false;
  const double d1 = (s.fw - s.fx) / (s.w - s.x);
  const double d2 = (s.fv - s.fx) / (s.v - s.x);
  const double c = (d1 - d2) / (s.w - s.v);
  if (!(c > 0.0)) return false;
  *at = 0.5 * (s.x + s.w) - d1 / (2.0 * c);
  return true;
}

// How far beyond an end the vertex may lie, in distances from x to that end, and still point
// at it: a nearly straight fit (a linear piece, a jump) puts the vertex anywhere.
constexpr double kReach = 8.0;

// The end to evaluate next, if any (see Ends).
bool EndStep(const State& s, Ends& ends, double* u) {
  double at;
  if (!ends.active || !ConvexVertex(s, &at)) return false;
  if (!ends.loDone && s.a == ends.lo && at <= ends.lo && at >= ends.lo - kReach * (s.x - ends.lo) &&
      s.x < s.w && s.x < s.v) {
    ends.loDone = true;
    *u = ends.lo;
    return true;
  }
  if (!ends.hiDone && s.b == ends.hi && at >= ends.hi && at <= ends.hi + kReach * (ends.hi - s.x) &&
      s.x > s.w && s.x > s.v) {
    ends.hiDone = true;
    *u = ends.hi;
    return true;
  }
  return false;
}

// Brent's iteration until the bracket is within 2 * tol of x on both sides (true) or the
// calls run out (false). Every step lands strictly inside (a, b): a parabolic step is
// accepted only inside and at least 2 * tol from the ends, a golden step goes into the larger
// part, which is longer than 2 * tol while the test fails. The only points on the bracket's
// ends are the interval's own ends, evaluated as Ends says.
bool RunBrent(Probe& probe, double absTol, double relTol, State& s, Ends& ends) {
  for (;;) {
    const double m = 0.5 * (s.a + s.b);
    const double tol1 = Tol1(s.x, absTol, relTol);
    const double tol2 = 2.0 * tol1;
    if (std::fabs(s.x - m) <= tol2 - 0.5 * (s.b - s.a)) return true;
    if (probe.Spent()) return false;
    double u;
    if (ends.probe != 0.0) {
      u = s.x + ends.probe;
      ends.probe = 0.0;
    } else if (!EndStep(s, ends, &u)) {
      u = BrentStep(s, m, tol1, tol2);
    }
    const double fu = probe(u);
    if (fu <= s.fx) {
      if (u >= s.x)
        s.a = s.x;
      else
        s.b = s.x;
      s.v = s.w;
      s.fv = s.fw;
      s.w = s.x;
      s.fw = s.fx;
      s.x = u;
      s.fx = fu;
      if (ends.active && (u == ends.lo || u == ends.hi))
        ends.probe = u == ends.lo ? Tol1(u, absTol, relTol) : -Tol1(u, absTol, relTol);
    } else {
      if (u < s.x)
        s.a = u;
      else
        s.b = u;
      if (fu <= s.fw || s.w == s.x) {
        s.v = s.w;
        s.fv = s.fw;
        s.w = u;
        s.fw = fu;
      } else if (fu <= s.fv || s.v == s.x || s.v == s.w) {
        s.v = u;
        s.fv = fu;
      }
    }
  }
}

zrExtremumResult Result(const Probe& probe, double x, double fx, bool converged, double lo,
                        double hi) {
  zrExtremumResult r;
  r.x = x;
  r.fx = probe.Reported(fx);
  r.evaluations = probe.Count();
  r.converged = converged;
  r.lo = lo;
  r.hi = hi;
  return r;
}

zrExtremumResult Finish(const Probe& probe, const State& s, bool converged) {
  return Result(probe, s.x, s.fx, converged, s.a, s.b);
}

void CheckCommon(zrExtremumKind kind, const zrExtremumOptions& options) {
  if (kind != zrExtremumKind::Minimum && kind != zrExtremumKind::Maximum)
    throw BadParameters("zrFindExtremum : the kind must be Minimum or Maximum");
  if (!(options.absTol > 0.0) || !std::isfinite(options.absTol) || !(options.relTol >= 0.0) ||
      !std::isfinite(options.relTol))
    throw BadParameters("zrFindExtremum : absTol must be finite and > 0, relTol finite and >= 0");
  if (options.maxEvaluations < 1)
    throw BadParameters("zrFindExtremum : maxEvaluations must be >= 1");
}

double RelTol(const zrExtremumOptions& options) {
  return options.relTol < DBL_EPSILON ? DBL_EPSILON : options.relTol;
}

}  // namespace

zrExtremumResult zrFindExtremum(zrExtremumFunction f, void* user, double a, double b,
                                zrExtremumKind kind, const zrExtremumOptions& options) {
  CheckCommon(kind, options);
  if (!std::isfinite(a) || !std::isfinite(b))
    throw BadParameters("zrFindExtremum : the interval ends must be finite");
  if (a > b) std::swap(a, b);
  Probe probe(f, user, kind, options.maxEvaluations);
  if (a == b) {
    const double fa = probe(a);
    return Result(probe, a, fa, true, a, b);
  }
  const double absTol = options.absTol;
  const double relTol = RelTol(options);
  State s;
  s.a = a;
  s.b = b;
  s.x = a + kGolden * (b - a);
  s.fx = probe(s.x);
  s.w = s.v = s.x;
  s.fw = s.fv = s.fx;
  s.d = s.e = 0.0;
  Ends ends;
  ends.active = true;
  ends.lo = a;
  ends.hi = b;
  if (!RunBrent(probe, absTol, relTol, s, ends)) return Finish(probe, s, false);

  // When the search stops next to an end not yet evaluated that still bounds the bracket (no
  // point between them was worse), the extremum may be the end itself: one call settles it.
  const double tol2 = 2.0 * Tol1(s.x, absTol, relTol);
  const bool nearA = !ends.loDone && s.a == a && s.x - a <= tol2;
  const bool nearB = !ends.hiDone && s.b == b && b - s.x <= tol2;
  if ((nearA || nearB) && !probe.Spent()) {
    const double end = nearA && (!nearB || s.x - a <= b - s.x) ? a : b;
    const double fend = probe(end);
    if (fend <= s.fx) {
      if (end == a)
        s.b = s.x;
      else
        s.a = s.x;
      s.x = end;
      s.fx = fend;
    }
  }
  return Finish(probe, s, true);
}

zrExtremumResult zrFindExtremum(zrExtremumFunction f, void* user, zrExtremumStart start,
                                zrExtremumKind kind, const zrExtremumOptions& options) {
  CheckCommon(kind, options);
  if (!std::isfinite(start.x0) || !std::isfinite(start.step) || start.step == 0.0)
    throw BadParameters(
        "zrFindExtremum : the start point and the step must be finite, the step not zero");
  Probe probe(f, user, kind, options.maxEvaluations);

  // Downhill from a to b, each step kGrow times the one before, until c is higher than b.
  double a = start.x0;
  double fa = probe(a);
  double b = start.x0 + start.step;
  if (probe.Spent() || !std::isfinite(b)) return Result(probe, a, fa, false, a, a);
  double fb = probe(b);
  if (fb > fa) {
    std::swap(a, b);
    std::swap(fa, fb);
  }
  double c, fc;
  for (;;) {
    c = b + kGrow * (b - a);
    if (probe.Spent() || !std::isfinite(c)) return Result(probe, b, fb, false, b, b);
    fc = probe(c);
    if (fc >= fb) break;
    a = b;
    fa = fb;
    b = c;
    fb = fc;
  }

  // b is no higher than a and lower than c: Brent's search on the bracket starts from b,
  // with the two ends as its other points, so its first step may already be parabolic.
  State s;
  s.a = a < c ? a : c;
  s.b = a < c ? c : a;
  s.x = b;
  s.fx = fb;
  if (fa <= fc) {
    s.w = a;
    s.fw = fa;
    s.v = c;
    s.fv = fc;
  } else {
    s.w = c;
    s.fw = fc;
    s.v = a;
    s.fv = fa;
  }
  s.d = c - b;
  s.e = b - a;
  Ends none;
  const bool converged = RunBrent(probe, options.absTol, RelTol(options), s, none);
  return Finish(probe, s, converged);
}
