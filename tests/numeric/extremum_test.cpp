#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

constexpr zrExtremumKind kMin = zrExtremumKind::Minimum;
constexpr zrExtremumKind kMax = zrExtremumKind::Maximum;
const double kPi = std::acos(-1.0);

// The promise of a converged search: the extremum within 2 * tol of x.
void ExpectWithinTol(const zrExtremumResult& r, double expected,
                     const zrExtremumOptions& o = zrExtremumOptions()) {
  EXPECT_TRUE(r.converged);
  EXPECT_LE(std::fabs(r.x - expected), 2 * (o.absTol + o.relTol * std::fabs(r.x))) << "x = " << r.x;
  EXPECT_LE(r.lo, r.x);
  EXPECT_LE(r.x, r.hi);
}

void ExpectSame(const zrExtremumResult& a, const zrExtremumResult& b) {
  EXPECT_EQ(zr_test::Bits(a.x), zr_test::Bits(b.x));
  EXPECT_EQ(zr_test::Bits(a.fx), zr_test::Bits(b.fx));
  EXPECT_EQ(a.evaluations, b.evaluations);
  EXPECT_EQ(a.converged, b.converged);
  EXPECT_EQ(zr_test::Bits(a.lo), zr_test::Bits(b.lo));
  EXPECT_EQ(zr_test::Bits(a.hi), zr_test::Bits(b.hi));
}

double CosWithCount(double x, void* user) {
  ++*static_cast<int*>(user);
  return std::cos(x);
}

TEST(ExtremumTest, SmoothPinnedAndBothCallingForms) {
  int calls = 0;
  const zrExtremumResult r = zrFindExtremum(&CosWithCount, &calls, 0.0, 6.0, kMin);
  ExpectWithinTol(r, kPi);
  EXPECT_EQ(calls, r.evaluations);
  EXPECT_EQ(r.fx, std::cos(r.x));
  // The points visited are fixed by the method's formulas and their order, on every build.
  EXPECT_EQ(r.evaluations, 9);
  EXPECT_EQ(zr_test::Bits(r.x), zr_test::Bits(0x1.921fb52419571p+1));  // 3.1415926386131834

  // Any callable gives the same search, bit for bit.
  ExpectSame(zrFindExtremum([](double x) { return std::cos(x); }, 0.0, 6.0, kMin), r);
  double (*plain)(double) = &std::cos;
  ExpectSame(zrFindExtremum(plain, 0.0, 6.0, kMin), r);

  // A maximum of f is the minimum of -f, point for point; fx is f's own value.
  const zrExtremumResult m = zrFindExtremum([](double x) { return -std::cos(x); }, 0.0, 6.0, kMax);
  EXPECT_EQ(zr_test::Bits(m.x), zr_test::Bits(r.x));
  EXPECT_EQ(m.fx, -r.fx);
  EXPECT_EQ(m.evaluations, r.evaluations);

  // a and b swapped: the same interval, the same search.
  ExpectSame(zrFindExtremum(&CosWithCount, &calls, 6.0, 0.0, kMin), r);

  // A tight tolerance where the values tell points apart that closely (a V, not a parabola,
  // whose values are equal within sqrt(DBL_EPSILON) of the vertex).
  zrExtremumOptions tight;
  tight.absTol = 1e-13;
  tight.relTol = 0;
  ExpectWithinTol(
      zrFindExtremum([](double x) { return std::fabs(x - 0.3); }, 0.0, 6.0, kMin, tight), 0.3,
      tight);
}

TEST(ExtremumTest, HardFunctions) {
  // Flat at the minimum: parabolic steps crawl, the golden fallback keeps the pace.
  const zrExtremumResult flat =
      zrFindExtremum([](double x) { return x * x * x * x; }, -1.0, 2.0, kMin);
  ExpectWithinTol(flat, 0.0);
  EXPECT_LT(flat.evaluations, 120);

  // A kink: no parabola fits, golden steps do.
  const zrExtremumResult kink =
      zrFindExtremum([](double x) { return std::sqrt(std::fabs(x - 0.3)); }, -1.0, 1.0, kMin);
  ExpectWithinTol(kink, 0.3);
  EXPECT_LT(kink.evaluations, 120);

  // A jump down at 0.6, rising after it: the minimum is 0.6 itself.
  const zrExtremumResult jump =
      zrFindExtremum([](double x) { return x < 0.6 ? 2.0 - x : x - 0.5; }, 0.0, 1.0, kMin);
  ExpectWithinTol(jump, 0.6);
  EXPECT_GE(jump.x, 0.6);

  // Infinite values are compared like others: a barrier that is +inf left of 0.
  const zrExtremumResult barrier = zrFindExtremum(
      [](double x) { return x <= 0 ? std::numeric_limits<double>::infinity() : x - std::log(x); },
      -1.0, 3.0, kMin);
  ExpectWithinTol(barrier, 1.0);
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

TEST(ExtremumTest, ExtremumAtAnEndIsTheEnd) {
  int calls = 0;
  auto f = [&calls](double x) {
    ++calls;
    return std::exp(x);
  };
  const zrExtremumResult lo = zrFindExtremum(f, 1.0, 3.0, kMin);
  EXPECT_TRUE(lo.converged);
  EXPECT_EQ(lo.x, 1.0);
  EXPECT_EQ(lo.fx, std::exp(1.0));
  EXPECT_EQ(lo.lo, 1.0);
  EXPECT_EQ(calls, lo.evaluations);
  // Three interior points falling toward 1 on a convex curve: the end is tried, then one
  // step inside it, instead of a creep of some 30 golden steps.
  EXPECT_EQ(lo.evaluations, 5);
  const zrExtremumResult hi = zrFindExtremum(f, 3.0, 1.0, kMax);
  EXPECT_TRUE(hi.converged);
  EXPECT_EQ(hi.x, 3.0);
  EXPECT_EQ(hi.fx, std::exp(3.0));
  EXPECT_EQ(hi.hi, 3.0);
}

TEST(ExtremumTest, DegenerateIntervalAndLimit) {
  // a == b: that point, evaluated once, converged.
  const zrExtremumResult one = zrFindExtremum([](double x) { return x * x; }, 2.0, 2.0, kMax);
  EXPECT_EQ(one.x, 2.0);
  EXPECT_EQ(one.fx, 4.0);
  EXPECT_EQ(one.evaluations, 1);
  EXPECT_TRUE(one.converged);
  EXPECT_EQ(one.lo, 2.0);
  EXPECT_EQ(one.hi, 2.0);

  // The limit stops the search, says so, and gives the best point seen.
  zrExtremumOptions o;
  o.maxEvaluations = 5;
  int calls = 0;
  const zrExtremumResult cut = zrFindExtremum(&CosWithCount, &calls, 0.0, 6.0, kMin, o);
  EXPECT_FALSE(cut.converged);
  EXPECT_EQ(cut.evaluations, 5);
  EXPECT_EQ(calls, 5);
  EXPECT_EQ(cut.fx, std::cos(cut.x));
  EXPECT_LT(std::fabs(cut.x - kPi), 0.1);
}

TEST(ExtremumTest, NaNAndThrowingFunctions) {
  // NaN right of 1: the first point, 0 + 0.38... * 4, is NaN, and the search stops there.
  double seen = 0;
  int calls = 0;
  auto partial = [&](double x) {
    ++calls;
    seen = x;
    return x < 1 ? (x - 0.5) * (x - 0.5) : std::nan("");
  };
  const std::string text =
      zr_test::BadParametersText([&] { zrFindExtremum(partial, 0.0, 4.0, kMin); });
  EXPECT_EQ(seen, 1.5278640450004206);
  EXPECT_EQ(text,
            "Invalid parameters : zrFindExtremum : the function is NaN at x = 1.5278640450004206");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(zr_test::BadParametersText([&] { zrFindExtremum(partial, 5.0, 5.0, kMax); }),
            "Invalid parameters : zrFindExtremum : the function is NaN at x = 5");
  EXPECT_EQ(zr_test::BadParametersText([&] {
              zrFindExtremum(partial, zrExtremumStart{0.0, 2.0}, kMin);
            }),
            "Invalid parameters : zrFindExtremum : the function is NaN at x = 2");

  // The function's own exception reaches the caller as it was thrown.
  struct Stop {
    double at;
  };
  int count = 0;
  try {
    zrFindExtremum(
        [&](double x) {
          if (++count == 4) throw Stop{x};
          return x * x;
        },
        -1.0, 1.0, kMin);
    ADD_FAILURE() << "nothing thrown";
  } catch (const Stop& s) {
    EXPECT_EQ(count, 4);
    EXPECT_GE(s.at, -1.0);
  }
  try {
    zrFindExtremum([](double) -> double { throw zrError(7, "own"); }, zrExtremumStart{0, 1}, kMax);
    ADD_FAILURE() << "nothing thrown";
  } catch (const zrError& e) {
    EXPECT_EQ(e.GetCode(), 7);
    EXPECT_STREQ(e.GetMessageText(), "own");
  }
}

TEST(ExtremumTest, BadParameters) {
  auto sq = [](double x) { return x * x; };
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::nan("");
  auto expect = [&](const zrExtremumOptions& o, const char* what) {
    EXPECT_EQ(zr_test::BadParametersText([&] { zrFindExtremum(sq, 0.0, 1.0, kMin, o); }),
              std::string("Invalid parameters : zrFindExtremum : ") + what);
  };
  zrExtremumOptions o;
  const char* tolText = "absTol must be finite and > 0, relTol finite and >= 0";
  for (double bad : {0.0, nan}) {
    o = zrExtremumOptions();
    o.absTol = bad;
    expect(o, tolText);
  }
  for (double bad : {-1e-9, inf}) {
    o = zrExtremumOptions();
    o.relTol = bad;
    expect(o, tolText);
  }
  o = zrExtremumOptions();
  o.maxEvaluations = 0;
  expect(o, "maxEvaluations must be >= 1");
  EXPECT_EQ(zr_test::BadParametersText(
                [&] { zrFindExtremum(sq, 0.0, 1.0, static_cast<zrExtremumKind>(2)); }),
            "Invalid parameters : zrFindExtremum : the kind must be Minimum or Maximum");
  for (double end : {inf, nan})
    EXPECT_EQ(zr_test::BadParametersText([&] { zrFindExtremum(sq, 0.0, end, kMin); }),
              "Invalid parameters : zrFindExtremum : the interval ends must be finite");
  for (zrExtremumStart start : {zrExtremumStart{0, 0}, zrExtremumStart{nan, 1}})
    EXPECT_EQ(zr_test::BadParametersText([&] { zrFindExtremum(sq, start, kMin); }),
              "Invalid parameters : zrFindExtremum : the start point and the step must be "
              "finite, the step not zero");
}

TEST(ExtremumTest, BracketingFromAStartPoint) {
  auto parabola = [](double x) { return (x - 3) * (x - 3) + 1; };
  // Downhill to the right, and to the left when the first step goes uphill.
  const zrExtremumResult right = zrFindExtremum(parabola, zrExtremumStart{-10.0, 0.5}, kMin);
  ExpectWithinTol(right, 3.0);
  EXPECT_EQ(right.fx, parabola(right.x));
  const zrExtremumResult left = zrFindExtremum(parabola, zrExtremumStart{20.0, 1.0}, kMin);
  ExpectWithinTol(left, 3.0);
  const zrExtremumResult peak = zrFindExtremum(
      [](double x) { return std::exp(-(x + 7) * (x + 7)); }, zrExtremumStart{-6.5, -0.25}, kMax);
  ExpectWithinTol(peak, -7.0);
  // The bracket's points start the search: a parabola is found at once, and the
  // three bracketing points are not evaluated again.
  EXPECT_LE(right.evaluations, 20);

  // Always falling: the limit, or the end of the doubles, stops it; not converged.
  zrExtremumOptions o;
  o.maxEvaluations = 30;
  const zrExtremumResult fall =
      zrFindExtremum([](double x) { return -x; }, zrExtremumStart{0.0, 1.0}, kMin, o);
  EXPECT_FALSE(fall.converged);
  EXPECT_EQ(fall.evaluations, 30);
  EXPECT_EQ(fall.fx, -fall.x);
  EXPECT_EQ(fall.lo, fall.x);
  EXPECT_EQ(fall.hi, fall.x);
  o.maxEvaluations = 100000;
  const zrExtremumResult far =
      zrFindExtremum([](double x) { return x; }, zrExtremumStart{0.0, 1.0}, kMin, o);
  EXPECT_FALSE(far.converged);
  EXPECT_TRUE(std::isfinite(far.x));
  EXPECT_LT(far.evaluations, 2000);
}

}  // namespace
