// The one-dimensional minimum search: zrFindExtremum against GSL's Brent minimiser
// (gsl_min_fminimizer_brent) and Boost.Math's brent_find_minima, on the same functions and
// the same tolerances. What is compared is the number of function evaluations each needs to
// reach the tolerance, and whether it did; the time of a search is measured too.
//
// One stopping rule for all: with tol = absTol + relTol * |x| at the best point x, a search
// has reached the tolerance when its bracket [lo, hi] around x has max(x - lo, hi - x) <=
// 2 * tol. zr applies it itself; Boost's rule is the same with relTol = 2^(1 - bits) and
// absTol = relTol / 4, so the tolerances below are of that form; GSL's iteration is stopped
// by this test on its own bracket after every step. A search counts as having met the
// tolerance when it stopped by the test (not by the limit of 1000 evaluations) and the true
// minimum lies within 2 * tol of the x it returned.
//
// Besides single functions, the families move the minimum of one shape across the interval
// (40 positions), so that no row rests on where the first points happen to fall.
//
// Benchmarks are named "extremum/<implementation>/<case>", with the case's function and
// tolerance in the label and the counters "evaluations" (all members together), "met" (the
// members that met the tolerance), "members" and "error" (the largest |x - x*|).
#include <benchmark/benchmark.h>

#include <cmath>
#include <functional>
#include <string>

#include "zr/zr.h"

#if defined(ZR_BENCH_HAVE_GSL)
#include <gsl/gsl_errno.h>
#include <gsl/gsl_min.h>
#include <gsl/gsl_version.h>
#endif
#if defined(ZR_BENCH_HAVE_BOOST)
#include <boost/math/tools/minima.hpp>
#include <boost/version.hpp>
#endif

namespace {

constexpr int kLimit = 1000;

// A function of x with a parameter s (the position of its minimum for the shifted ones).
using Shape = double (*)(double x, double s);

double Cos(double x, double) { return std::cos(x); }
double Gamma(double x, double) { return std::tgamma(x); }
double Exp(double x, double) { return std::exp(x); }
double Quartic(double x, double s) { return (x - s) * (x - s) * (x - s) * (x - s); }
double Kink(double x, double s) { return std::sqrt(std::fabs(x - s)); }
double Jump(double x, double s) { return x < s ? 2.0 - x : x - s + 0.1; }
double Well(double x, double s) { return 1.0 - std::exp(-10.0 * (x - s) * (x - s)); }

struct Function {
  const char* name;
  Shape f;
  double a, b;
  double xmin;  // the true minimum (for a family: that of the first member)
  int members;  // 1, or a family of `members` shifts of the minimum over [s0, s1]
  double s0, s1;
};

const Function kFunctions[] = {
    {"cos x on [0, 6]", Cos, 0.0, 6.0, 3.14159265358979323846, 1, 0, 0},
    {"Gamma(x) on [1, 2]", Gamma, 1.0, 2.0, 1.4616321449683623, 1, 0, 0},
    {"x^4 on [-1, 2]", Quartic, -1.0, 2.0, 0.0, 1, 0, 0},
    {"sqrt|x - 0.3| on [-1, 1]", Kink, -1.0, 1.0, 0.3, 1, 0.3, 0.3},
    {"jump at 0.6 on [0, 1]", Jump, 0.0, 1.0, 0.6, 1, 0.6, 0.6},
    {"exp x on [1, 3] (end)", Exp, 1.0, 3.0, 1.0, 1, 0, 0},
    {"1 - exp(-10 (x - 0.123)^2) on [-2, 2]", Well, -2.0, 2.0, 0.123, 1, 0.123, 0.123},
    {"(x - s)^4 on [-1, 2], 40 s in [-0.9, 1.9]", Quartic, -1.0, 2.0, 0, 40, -0.9, 1.9},
    {"sqrt|x - s| on [-1, 1], 40 s in [-0.9, 0.9]", Kink, -1.0, 1.0, 0, 40, -0.9, 0.9},
    {"jump at s on [0, 1], 40 s in [0.05, 0.95]", Jump, 0.0, 1.0, 0, 40, 0.05, 0.95},
    {"1 - exp(-10 (x - s)^2) on [-2, 2], 40 s in [-1.5, 1.5]", Well, -2.0, 2.0, 0, 40, -1.5, 1.5},
};
constexpr int kFunctionCount = sizeof kFunctions / sizeof kFunctions[0];

// Boost's bits for the tolerances: relTol = 2^(1 - bits), absTol = relTol / 4 (26 is the
// most Boost takes for double).
const int kBits[] = {26, 14};
constexpr int kCaseCount = kFunctionCount * 2;

struct Case {
  const Function* fn;
  int bits;
  double relTol, absTol;
  std::string label;
};

Case GetCase(int k) {
  Case c;
  c.fn = &kFunctions[k / 2];
  c.bits = kBits[k % 2];
  c.relTol = std::ldexp(1.0, 1 - c.bits);
  c.absTol = c.relTol / 4;
  c.label = std::string(c.fn->name) + ", relTol 2^" + std::to_string(1 - c.bits);
  return c;
}

// Member i of the case's function: its parameter and its minimum.
double Param(const Function& fn, int i) {
  return fn.members == 1 ? fn.s0 : fn.s0 + (fn.s1 - fn.s0) * i / (fn.members - 1);
}
double Minimum(const Function& fn, int i) { return fn.members == 1 ? fn.xmin : Param(fn, i); }

double Tol(const Case& c, double x) { return c.absTol + c.relTol * std::fabs(x); }

bool WithinTol(const Case& c, double lo, double x, double hi) {
  const double tol2 = 2 * Tol(c, x);
  return x - lo <= tol2 && hi - x <= tol2;
}

// The evaluations, tolerances met and largest error of the searches of one case.
struct Tally {
  int evaluations = 0;
  int met = 0;
  double error = 0;
  void Add(const Case& c, int i, int calls, bool stopped, double x) {
    const double e = std::fabs(x - Minimum(*c.fn, i));
    evaluations += calls;
    if (stopped && e <= 2 * Tol(c, x)) ++met;
    if (e > error) error = e;
  }
};

void Report(benchmark::State& state, const Case& c, const Tally& t) {
  state.SetLabel(c.label);
  state.counters["evaluations"] = t.evaluations;
  state.counters["met"] = t.met;
  state.counters["members"] = c.fn->members;
  state.counters["error"] = t.error;
}

// Counts the calls of a member.
struct Counted {
  Shape f;
  double s;
  int calls;
  double operator()(double x) {
    ++calls;
    return f(x, s);
  }
};

void Zr(benchmark::State& state) {
  const Case c = GetCase(static_cast<int>(state.range(0)));
  zrExtremumOptions o;
  o.absTol = c.absTol;
  o.relTol = c.relTol;
  o.maxEvaluations = kLimit;
  Tally t;
  for (auto _ : state) {
    t = Tally();
    for (int i = 0; i < c.fn->members; ++i) {
      Counted f{c.fn->f, Param(*c.fn, i), 0};
      const zrExtremumResult r = zrFindExtremum(f, c.fn->a, c.fn->b, zrExtremumKind::Minimum, o);
      t.Add(c, i, r.evaluations, r.converged, r.x);
    }
    benchmark::DoNotOptimize(t);
  }
  Report(state, c, t);
}

#if defined(ZR_BENCH_HAVE_GSL)
double GslCall(double x, void* params) { return (*static_cast<Counted*>(params))(x); }

const bool gsl_registered = [] {
  gsl_set_error_handler_off();
  benchmark::AddCustomContext("peer_gsl", GSL_VERSION);
  return true;
}();

// The first guess is zr's first point, a + 0.38...(b - a); GSL needs f there below both
// ends and refuses to start otherwise (an end minimum), which counts as not met.
void Gsl(benchmark::State& state) {
  const Case c = GetCase(static_cast<int>(state.range(0)));
  gsl_min_fminimizer* s = gsl_min_fminimizer_alloc(gsl_min_fminimizer_brent);
  Tally t;
  for (auto _ : state) {
    t = Tally();
    for (int i = 0; i < c.fn->members; ++i) {
      Counted f{c.fn->f, Param(*c.fn, i), 0};
      gsl_function fn{&GslCall, &f};
      const double guess = c.fn->a + 0.38196601125010515 * (c.fn->b - c.fn->a);
      double x = guess;
      bool stopped = false;
      if (gsl_min_fminimizer_set(s, &fn, guess, c.fn->a, c.fn->b) == GSL_SUCCESS) {
        while (f.calls < kLimit) {
          if (gsl_min_fminimizer_iterate(s) != GSL_SUCCESS) break;
          x = gsl_min_fminimizer_x_minimum(s);
          if (WithinTol(c, gsl_min_fminimizer_x_lower(s), x, gsl_min_fminimizer_x_upper(s))) {
            stopped = true;
            break;
          }
        }
      }
      t.Add(c, i, f.calls, stopped, x);
    }
    benchmark::DoNotOptimize(t);
  }
  gsl_min_fminimizer_free(s);
  Report(state, c, t);
}
#endif

#if defined(ZR_BENCH_HAVE_BOOST)
const bool boost_registered = [] {
  benchmark::AddCustomContext("peer_boost", BOOST_LIB_VERSION);
  return true;
}();

void Boost(benchmark::State& state) {
  const Case c = GetCase(static_cast<int>(state.range(0)));
  Tally t;
  for (auto _ : state) {
    t = Tally();
    for (int i = 0; i < c.fn->members; ++i) {
      Counted f{c.fn->f, Param(*c.fn, i), 0};
      // The first evaluation is not an iteration: kLimit - 1 iterations make kLimit calls.
      boost::uintmax_t iterations = kLimit - 1;
      const auto r =
          boost::math::tools::brent_find_minima(std::ref(f), c.fn->a, c.fn->b, c.bits, iterations);
      t.Add(c, i, f.calls, iterations < static_cast<boost::uintmax_t>(kLimit - 1), r.first);
    }
    benchmark::DoNotOptimize(t);
  }
  Report(state, c, t);
}
#endif

void Cases(benchmark::internal::Benchmark* b) {
  for (int k = 0; k < kCaseCount; ++k) b->Arg(k);
}

}  // namespace

BENCHMARK(Zr)->Name("extremum/zr")->Apply(Cases);
#if defined(ZR_BENCH_HAVE_GSL)
BENCHMARK(Gsl)->Name("extremum/gsl")->Apply(Cases);
#endif
#if defined(ZR_BENCH_HAVE_BOOST)
BENCHMARK(Boost)->Name("extremum/boost")->Apply(Cases);
#endif
