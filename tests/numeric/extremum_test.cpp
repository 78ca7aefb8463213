#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

constexpr zrExtremumKind kMin = zrExtremumKind::Minimum;
constexpr zrExtremumKind kMax = zrExtremumKind::Maximum;
const double kPi = std::acos(-1.0);
const double kInf = std::numeric_limits<double>::infinity();
using zr_test::BadParametersText;
using zr_test::Bits;

// The promise of a converged search: the extremum within 2 * tol of x, inside the bracket.
void ExpectWithinTol(const zrExtremumResult& r, double expected,
                     const zrExtremumOptions& o = zrExtremumOptions()) {
  EXPECT_TRUE(r.converged);
  EXPECT_LE(std::fabs(r.x - expected), 2 * (o.absTol + o.relTol * std::fabs(r.x))) << "x = " << r.x;
  EXPECT_TRUE(r.lo <= r.x && r.x <= r.hi) << r.lo << ' ' << r.x << ' ' << r.hi;
}

void ExpectSame(const zrExtremumResult& a, const zrExtremumResult& b) {
  EXPECT_TRUE(Bits(a.x) == Bits(b.x) && Bits(a.fx) == Bits(b.fx) && Bits(a.lo) == Bits(b.lo) &&
              Bits(a.hi) == Bits(b.hi) && a.evaluations == b.evaluations &&
              a.converged == b.converged);
}

double CosWithCount(double x, void* user) {
  ++*static_cast<int*>(user);
  return std::cos(x);
}

// The points a search visits are fixed by the method's formulas and their order, on every
// build: the counts are pinned. Smooth, flat (parabolic steps crawl, golden ones keep the
// pace), a kink, a jump down (the minimum is the jump itself), an infinite barrier, a V
// under a tight tolerance, and minima at an end (found exactly, in a few calls).
TEST(ExtremumTest, FunctionsTable) {
  zrExtremumOptions tight;
  tight.absTol = 1e-13;
  tight.relTol = 0;
  const zrExtremumOptions normal;
  const struct {
    std::function<double(double)> f;
    double a, b;
    zrExtremumKind kind;
    double at;
    int evaluations;
    const zrExtremumOptions& o;
  } cases[] = {
      {[](double x) { return std::cos(x); }, 0, 6, kMin, kPi, 9, normal},
      {[](double x) { return x * x * x * x; }, -1, 2, kMin, 0, 27, normal},
      {[](double x) { return std::sqrt(std::fabs(x - 0.3)); }, -1, 1, kMin, 0.3, 30, normal},
      {[](double x) { return x < 0.6 ? 2.0 - x : x - 0.5; }, 0, 1, kMin, 0.6, 37, normal},
      {[](double x) { return x <= 0 ? kInf : x - std::log(x); }, -1, 3, kMin, 1, 14, normal},
      {[](double x) { return std::fabs(x - 0.3); }, 0, 6, kMin, 0.3, 47, tight},
      {[](double x) { return std::exp(x); }, 1, 3, kMin, 1, 5, normal},
      {[](double x) { return std::exp(x); }, 3, 1, kMax, 3, 37, normal},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    int calls = 0;
    const auto counted = [&](double x) {
      ++calls;
      return c.f(x);
    };
    const zrExtremumResult r = zrFindExtremum(counted, c.a, c.b, c.kind, c.o);
    ExpectWithinTol(r, c.at, c.o);
    if (c.at == c.a || c.at == c.b) {
      EXPECT_EQ(c.at, r.x);  // an end is found exactly
    }
    EXPECT_EQ(c.evaluations, r.evaluations);
    EXPECT_EQ(calls, r.evaluations);
    EXPECT_EQ(Bits(r.fx), Bits(c.f(r.x)));  // f's own value, for a maximum too
    // The same search through a function pointer and user data, the ends swapped; and a
    // maximum of f is the minimum of -f, point for point.
    const auto through = [](double x, void* f) { return (*static_cast<decltype(&c.f)>(f))(x); };
    ExpectSame(zrFindExtremum(through, const_cast<void*>(static_cast<const void*>(&c.f)), c.b, c.a,
                              c.kind, c.o),
               r);
    const zrExtremumKind other = c.kind == kMin ? kMax : kMin;
    const zrExtremumResult m =
        zrFindExtremum([&](double x) { return -c.f(x); }, c.a, c.b, other, c.o);
    EXPECT_TRUE(Bits(m.x) == Bits(r.x) && m.fx == -r.fx && m.evaluations == r.evaluations);
  }
  int calls = 0;  // the cosine's minimum, to the bit
  EXPECT_EQ(Bits(zrFindExtremum(&CosWithCount, &calls, 0.0, 6.0, kMin).x),
            Bits(0x1.921fb52419571p+1));
}

TEST(ExtremumTest, FlatMinimaKeepTheBracketShrinking) {
  // (x - s)^4 with the minimum at 40 places: parabolic steps alone close in by a steady
  // factor from alternating sides (894 calls in all); a golden step whenever the bracket has
  // not halved in three steps brings it to 845.
  zrExtremumOptions o;
  o.relTol = std::ldexp(1.0, -25);
  o.absTol = o.relTol / 4;
  int total = 0;
  for (int i = 0; i < 40; ++i) {
    const double s = -0.9 + 2.8 * i / 39;
    const zrExtremumResult r = zrFindExtremum(
        [s](double x) { return (x - s) * (x - s) * (x - s) * (x - s); }, -1.0, 2.0, kMin, o);
    ExpectWithinTol(r, s, o);
    total += r.evaluations;
  }
  EXPECT_EQ(total, 845);
}

TEST(ExtremumTest, LimitsAndDegenerateIntervals) {
  // a == b: that point, evaluated once, converged.
  const zrExtremumResult one = zrFindExtremum([](double x) { return x * x; }, 2.0, 2.0, kMax);
  EXPECT_TRUE(one.x == 2 && one.fx == 4 && one.evaluations == 1 && one.converged);
  EXPECT_TRUE(one.lo == 2 && one.hi == 2);
  // The limit stops the search, says so, and gives the best point seen.
  zrExtremumOptions o;
  o.maxEvaluations = 5;
  int calls = 0;
  const zrExtremumResult cut = zrFindExtremum(&CosWithCount, &calls, 0.0, 6.0, kMin, o);
  EXPECT_TRUE(!cut.converged && cut.evaluations == 5 && calls == 5 && cut.fx == std::cos(cut.x));
  EXPECT_LT(std::fabs(cut.x - kPi), 0.1);
}

TEST(ExtremumTest, BracketingFromAStartPoint) {
  auto parabola = [](double x) { return (x - 3) * (x - 3) + 1; };
  // Downhill to the right, and to the left when the first step goes uphill; the bracket's
  // points start the search and are not evaluated again.
  const zrExtremumResult right = zrFindExtremum(parabola, zrExtremumStart{-10.0, 0.5}, kMin);
  ExpectWithinTol(right, 3.0);
  EXPECT_EQ(right.fx, parabola(right.x));
  EXPECT_EQ(right.evaluations, 11);
  const zrExtremumResult left = zrFindExtremum(parabola, zrExtremumStart{20.0, 1.0}, kMin);
  ExpectWithinTol(left, 3.0);
  EXPECT_EQ(left.evaluations, 10);
  const zrExtremumResult peak = zrFindExtremum(
      [](double x) { return std::exp(-(x + 7) * (x + 7)); }, zrExtremumStart{-6.5, -0.25}, kMax);
  ExpectWithinTol(peak, -7.0);
  EXPECT_EQ(peak.evaluations, 10);

  // Always falling: the limit, or the end of the doubles, stops it; not converged.
  zrExtremumOptions o;
  o.maxEvaluations = 30;
  const zrExtremumResult fall =
      zrFindExtremum([](double x) { return -x; }, zrExtremumStart{0.0, 1.0}, kMin, o);
  EXPECT_TRUE(!fall.converged && fall.evaluations == 30 && fall.fx == -fall.x);
  EXPECT_TRUE(fall.lo == fall.x && fall.hi == fall.x);
  o.maxEvaluations = 100000;
  const zrExtremumResult far =
      zrFindExtremum([](double x) { return x; }, zrExtremumStart{0.0, 1.0}, kMin, o);
  EXPECT_TRUE(!far.converged && std::isfinite(far.x) && far.evaluations < 2000);
}

TEST(ExtremumTest, NaNAndThrowingFunctions) {
  // NaN right of 1: the first point, 0 + 0.38... * 4, is NaN, and the search stops there.
  int calls = 0;
  auto partial = [&](double x) {
    ++calls;
    return x < 1 ? (x - 0.5) * (x - 0.5) : std::nan("");
  };
  const std::string nan = "Invalid parameters : zrFindExtremum : the function is NaN at x = ";
  EXPECT_EQ(nan + "1.5278640450004206",
            BadParametersText([&] { zrFindExtremum(partial, 0.0, 4.0, kMin); }));
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(nan + "5", BadParametersText([&] { zrFindExtremum(partial, 5.0, 5.0, kMax); }));
  EXPECT_EQ(nan + "2", BadParametersText([&] {
              zrFindExtremum(partial, zrExtremumStart{0.0, 2.0}, kMin);
            }));

  // The function's own exception reaches the caller as it was thrown.
  int count = 0;
  EXPECT_THROW(zrFindExtremum(
                   [&](double x) {
                     if (++count == 4) throw 4.5;
                     return x * x;
                   },
                   -1.0, 1.0, kMin),
               double);
  EXPECT_EQ(count, 4);
}

TEST(ExtremumTest, BadParameters) {
  auto sq = [](double x) { return x * x; };
  const double nan = std::nan("");
  const std::string tol = "absTol must be finite and > 0, relTol finite and >= 0";
  const struct {
    double absTol, relTol;
    int maxEvaluations;
    std::string text;
  } options[] = {{0, 0, 1, tol},
                 {nan, 0, 1, tol},
                 {1e-9, -1e-9, 1, tol},
                 {1e-9, kInf, 1, tol},
                 {1e-9, 0, 0, "maxEvaluations must be >= 1"}};
  const std::string prefix = "Invalid parameters : zrFindExtremum : ";
  for (const auto& c : options) {
    zrExtremumOptions o;
    o.absTol = c.absTol, o.relTol = c.relTol, o.maxEvaluations = c.maxEvaluations;
    EXPECT_EQ(prefix + c.text, BadParametersText([&] { zrFindExtremum(sq, 0.0, 1.0, kMin, o); }));
  }
  EXPECT_EQ(prefix + "the kind must be Minimum or Maximum", BadParametersText([&] {
              zrFindExtremum(sq, 0.0, 1.0, static_cast<zrExtremumKind>(2));
            }));
  for (double end : {kInf, nan})
    EXPECT_EQ(prefix + "the interval ends must be finite",
              BadParametersText([&] { zrFindExtremum(sq, 0.0, end, kMin); }));
  for (zrExtremumStart start : {zrExtremumStart{0, 0}, zrExtremumStart{nan, 1}})
    EXPECT_EQ(prefix + "the start point and the step must be finite, the step not zero",
              BadParametersText([&] { zrFindExtremum(sq, start, kMin); }));
}

}  // namespace
