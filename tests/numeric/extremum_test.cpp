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
  EXPECT_LE(std::fabs(r.x - expected), 2 * (o.absTol + o.relTol * std::fabs(r.x))) << "x = " << r.x;
  EXPECT_TRUE(r.converged && r.lo <= r.x && r.x <= r.hi) << r.lo << ' ' << r.x << ' ' << r.hi;
}

// The points a search visits are fixed by the method's formulas and their order, on every
// build: the counts are pinned. Smooth, flat (parabolic steps crawl, golden ones keep the
// pace), a kink, a jump down (the minimum is the jump itself), an infinite barrier, a V
// under a tight tolerance, and minima at an end (found exactly, in a few calls).
TEST(ExtremumTest, FunctionsTable) {
  const zrExtremumOptions tight{1e-13, 0};
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
      {[](double x) { return x * x; }, 2, 2, kMax, 2, 1, normal},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const zrExtremumResult r = zrFindExtremum(c.f, c.a, c.b, c.kind, c.o);
    ExpectWithinTol(r, c.at, c.o);
    // An end is found exactly; f's own value, for a maximum too.
    EXPECT_TRUE((r.x == c.at || (c.at != c.a && c.at != c.b)) && c.evaluations == r.evaluations &&
                Bits(r.fx) == Bits(c.f(r.x)))
        << r.evaluations;
  }
  EXPECT_EQ(Bits(zrFindExtremum(cases[0].f, 0, 6, kMin).x), Bits(0x1.921fb52419571p+1));  // cos
}

TEST(ExtremumTest, FlatMinimaKeepTheBracketShrinking) {
  // (x - s)^4 with the minimum at 40 places: parabolic steps alone close in by a steady
  // factor from alternating sides (894 calls in all); a golden step whenever the bracket has
  // not halved in three steps brings it to 845.
  const zrExtremumOptions o{std::ldexp(1.0, -27), std::ldexp(1.0, -25)};  // absTol, relTol
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

TEST(ExtremumTest, BracketingFromAStartPointAndLimits) {
  // Downhill to the right, and to the left when the first step goes uphill; the bracket's
  // points start the search and are not evaluated again.
  const auto check = [](auto f, zrExtremumStart start, zrExtremumKind kind, double at, int n) {
    const zrExtremumResult r = zrFindExtremum(f, start, kind);
    ExpectWithinTol(r, at);
    EXPECT_TRUE(r.fx == f(r.x) && r.evaluations == n) << at;
  };
  const auto parabola = [](double x) { return (x - 3) * (x - 3) + 1; };
  check(parabola, {-10.0, 0.5}, kMin, 3, 11);
  check(parabola, {20.0, 1.0}, kMin, 3, 10);
  check([](double x) { return std::exp(-(x + 7) * (x + 7)); }, {-6.5, -0.25}, kMax, -7, 10);

  // The limit stops the search, says so, and gives the best point seen.
  zrExtremumOptions o;
  o.maxEvaluations = 5;
  const zrExtremumResult cut = zrFindExtremum(parabola, 0.0, 6.0, kMin, o);
  EXPECT_TRUE(!cut.converged && cut.evaluations == 5 && cut.fx == parabola(cut.x) &&
              std::fabs(cut.x - 3) < 0.1);
  // Always falling: the limit, or the end of the doubles, stops it; not converged.
  o.maxEvaluations = 30;
  const zrExtremumResult fall =
      zrFindExtremum([](double x) { return -x; }, zrExtremumStart{0.0, 1.0}, kMin, o);
  EXPECT_TRUE(!fall.converged && fall.evaluations == 30 && fall.fx == -fall.x &&
              fall.lo == fall.x && fall.hi == fall.x);
  o.maxEvaluations = 100000;
  const zrExtremumResult far =
      zrFindExtremum([](double x) { return x; }, zrExtremumStart{0.0, 1.0}, kMin, o);
  EXPECT_TRUE(!far.converged && std::isfinite(far.x) && far.evaluations < 2000);
}

TEST(ExtremumTest, BadParametersAndNaN) {
  const auto sq = [](double x) { return x * x; };
  const double nan = std::nan("");
  const std::string prefix = "Invalid parameters : zrFindExtremum : ";
  // NaN right of 1: the first point, 0 + 0.38... * 4, is NaN, and the search stops there.
  EXPECT_EQ(prefix + "the function is NaN at x = 1.5278640450004206", BadParametersText([&] {
              zrFindExtremum([](double x) { return x < 1 ? x : std::nan(""); }, 0.0, 4.0, kMin);
            }));
  const auto options = [&](double absTol, double relTol, int maxEvaluations) {
    const zrExtremumOptions o{absTol, relTol, maxEvaluations};
    return BadParametersText([&] { zrFindExtremum(sq, 0.0, 1.0, kMin, o); });
  };
  const std::string tol = prefix + "absTol must be finite and > 0, relTol finite and >= 0";
  EXPECT_TRUE(options(0, 0, 1) == tol && options(nan, 0, 1) == tol &&
              options(1e-9, -1e-9, 1) == tol && options(1e-9, kInf, 1) == tol);
  EXPECT_EQ(prefix + "maxEvaluations must be >= 1", options(1e-9, 0, 0));
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
