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
// Benchmarks are named "extremum/<implementation>/<case>", with the case's function and
// tolerance in the label and the counters "evaluations", "met" and "error" (|x - x*|).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
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

struct Function {
  const char* name;
  double (*f)(double);
  double a, b;
  double xmin;  // the true minimum
};

double Cos(double x) { return std::cos(x); }
double Quartic(double x) { return x * x * x * x; }
double Kink(double x) { return std::sqrt(std::fabs(x - 0.3)); }
double Jump(double x) { return x < 0.6 ? 2.0 - x : x - 0.5; }
double Exp(double x) { return std::exp(x); }
double Gamma(double x) { return std::tgamma(x); }
double Narrow(double x) { return 1.0 - std::exp(-1000.0 * (x - 0.123) * (x - 0.123)); }

const Function kFunctions[] = {
    {"cos x on [0, 6]", Cos, 0.0, 6.0, 3.14159265358979323846},
    {"Gamma(x) on [1, 2]", Gamma, 1.0, 2.0, 1.4616321449683623},
    {"x^4 on [-1, 2]", Quartic, -1.0, 2.0, 0.0},
    {"sqrt|x - 0.3| on [-1, 1]", Kink, -1.0, 1.0, 0.3},
    {"jump at 0.6 on [0, 1]", Jump, 0.0, 1.0, 0.6},
    {"exp x on [1, 3] (end)", Exp, 1.0, 3.0, 1.0},
    {"1 - exp(-1000 (x - 0.123)^2) on [-2, 2]", Narrow, -2.0, 2.0, 0.123},
};
constexpr int kFunctionCount = sizeof kFunctions / sizeof kFunctions[0];

// Boost's bits for the tolerances: relTol = 2^(1 - bits), absTol = relTol / 4.
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

double Tol(const Case& c, double x) { return c.absTol + c.relTol * std::fabs(x); }

bool WithinTol(const Case& c, double lo, double x, double hi) {
  const double tol2 = 2 * Tol(c, x);
  return x - lo <= tol2 && hi - x <= tol2;
}

// The counters of one search.
void Report(benchmark::State& state, const Case& c, int evaluations, bool stopped, double x) {
  const double error = std::fabs(x - c.fn->xmin);
  const bool met = stopped && error <= 2 * Tol(c, x);
  state.SetLabel(c.label);
  state.counters["evaluations"] = evaluations;
  state.counters["met"] = met ? 1 : 0;
  state.counters["error"] = error;
}

void Zr(benchmark::State& state) {
  const Case c = GetCase(static_cast<int>(state.range(0)));
  zrExtremumOptions o;
  o.absTol = c.absTol;
  o.relTol = c.relTol;
  o.maxEvaluations = kLimit;
  zrExtremumResult r;
  for (auto _ : state) {
    r = zrFindExtremum(c.fn->f, c.fn->a, c.fn->b, zrExtremumKind::Minimum, o);
    benchmark::DoNotOptimize(r);
  }
  Report(state, c, r.evaluations, r.converged, r.x);
}

#if defined(ZR_BENCH_HAVE_GSL)
struct Counted {
  double (*f)(double);
  int calls;
};

double GslCall(double x, void* params) {
  Counted* c = static_cast<Counted*>(params);
  ++c->calls;
  return c->f(x);
}

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
  Counted counted{c.fn->f, 0};
  gsl_function fn{&GslCall, &counted};
  double x = 0;
  bool stopped = false;
  for (auto _ : state) {
    counted.calls = 0;
    stopped = false;
    const double guess = c.fn->a + 0.38196601125010515 * (c.fn->b - c.fn->a);
    x = guess;
    if (gsl_min_fminimizer_set(s, &fn, guess, c.fn->a, c.fn->b) == GSL_SUCCESS) {
      while (counted.calls < kLimit) {
        if (gsl_min_fminimizer_iterate(s) != GSL_SUCCESS) break;
        x = gsl_min_fminimizer_x_minimum(s);
        if (WithinTol(c, gsl_min_fminimizer_x_lower(s), x, gsl_min_fminimizer_x_upper(s))) {
          stopped = true;
          break;
        }
      }
    }
    benchmark::DoNotOptimize(x);
  }
  gsl_min_fminimizer_free(s);
  Report(state, c, counted.calls, stopped, x);
}
#endif

#if defined(ZR_BENCH_HAVE_BOOST)
const bool boost_registered = [] {
  benchmark::AddCustomContext("peer_boost", BOOST_LIB_VERSION);
  return true;
}();

void Boost(benchmark::State& state) {
  const Case c = GetCase(static_cast<int>(state.range(0)));
  int calls = 0;
  double x = 0;
  bool stopped = false;
  for (auto _ : state) {
    calls = 0;
    // The first evaluation is not an iteration: kLimit - 1 iterations make kLimit calls.
    boost::uintmax_t iterations = kLimit - 1;
    const auto r = boost::math::tools::brent_find_minima(
        [&](double t) {
          ++calls;
          return c.fn->f(t);
        },
        c.fn->a, c.fn->b, c.bits, iterations);
    x = r.first;
    stopped = iterations < static_cast<boost::uintmax_t>(kLimit - 1);
    benchmark::DoNotOptimize(x);
  }
  Report(state, c, calls, stopped, x);
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
