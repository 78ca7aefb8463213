#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using S = zrSpline<double>;
using Points = zrSimpleArray<zrColumnVector<double>>;

const std::string kOutOfRange = "Invalid parameters : zrSpline: Out of range.";
const std::string kBadCount = "Invalid parameters : Invalid number of bound condition.";
const std::string kError = "Invalid parameters : error in spline";

Points MakePoints(const std::vector<double>& x, const std::vector<double>& y) {
  Points p(static_cast<int>(x.size()));
  for (int i = 0; i < p.Len(); ++i) {
    p[i].Set(2);
    p[i][0] = x[i];
    p[i][1] = y[i];
  }
  return p;
}

zrSimpleArray<int> Codes(int first, int second) {
  zrSimpleArray<int> c(2);
  c[0] = first;
  c[1] = second;
  return c;
}

// values(0, .) first derivatives, values(1, .) second derivatives; (., 0) left end.
zrMatrix<double> Values(double d1l, double d1r, double d2l, double d2r) {
  zrMatrix<double> v(2, 2);
  v(0, 0) = d1l;
  v(0, 1) = d1r;
  v(1, 0) = d2l;
  v(1, 1) = d2r;
  return v;
}

// The segment of x by the plain scan over the nodes.
int ScanSegment(const std::vector<double>& x, double at) {
  const int n = static_cast<int>(x.size());
  for (int i = 1; i < n; ++i)
    if (x[i] > at) return i - 1;
  return n - 2;
}

TEST(SplineTest, NaturalThroughThreePoints) {
  S s(MakePoints({0, 1, 2}, {0, 1, 0}));
  s.MkSpline3(Codes(0, 3), Values(0, 0, 0, 0));
  EXPECT_EQ(3, s.GetNumberOfPoint());
  EXPECT_EQ(0.6875, s(0.5));
  EXPECT_EQ(0.6875, s(1.5));
  EXPECT_EQ(-3.0, s.Derivative(2, 1));
  EXPECT_EQ(0.0, s.Derivative(2, 0));
  EXPECT_EQ(0.0, s.Derivative(2, 2));  // the last point reads the last segment
  EXPECT_EQ(s(0.5), s(0.5, 0));
  EXPECT_EQ(s.Derivative(0.5, 1), s.Derivative(0.5, 1, 0));
  EXPECT_EQ(1, s.Check());
}

TEST(SplineTest, ReproducesACubicWithItsEndConditions) {
  auto f = [](double x) { return ((0.5 * x - 1) * x + 2) * x - 3; };
  auto f1 = [](double x) { return (1.5 * x - 2) * x + 2; };
  auto f2 = [](double x) { return 3 * x - 2; };
  const std::vector<double> x = {-1, -0.4, 0.3, 1.5, 2, 3.25};
  std::vector<double> y;
  for (double v : x) y.push_back(f(v));
  const double a = x.front(), b = x.back();
  // Clamped, second derivatives at both ends, and one of each: all give f itself.
  const int codes[][2] = {{3, 0}, {0, 3}, {1, 2}, {2, 1}};
  for (const auto& c : codes) {
    S s(MakePoints(x, y));
    s.MkSpline3(Codes(c[0], c[1]), Values(f1(a), f1(b), f2(a), f2(b)));
    for (double t = a; t <= b; t += 0.0625) {
      EXPECT_NEAR(f(t), s(t), 1e-12) << c[0] << c[1] << ' ' << t;
      EXPECT_NEAR(f1(t), s.Derivative(t, 1), 1e-11);
      EXPECT_NEAR(f2(t), s.Derivative(t, 2), 1e-10);
      EXPECT_NEAR(3.0, s.Derivative(t, 3), 1e-9);
      EXPECT_EQ(0.0, s.Derivative(t, 4));
    }
  }
}

TEST(SplineTest, OnlyTheConditionCountIsChecked) {
  // (1, 1): a first and then a second derivative at the left end; the right end keeps
  // its starting row, a zero moment.
  S s(MakePoints({0, 1, 3, 4}, {1, -1, 2, 0}));
  s.MkSpline3(Codes(1, 1), Values(5, 0, 0.5, 0));
  EXPECT_NEAR(0.5, s.Derivative(2, 0), 1e-14);
  EXPECT_NEAR(0.0, s.Derivative(2, 3), 1e-14);
  // A missing codes element counts as no condition.
  zrSimpleArray<int> one(1);
  one[0] = 3;
  s.MkSpline3(one, Values(1, 2, 0, 0));
  EXPECT_NEAR(2.0, s.Derivative(1, 3), 1e-12);
}

TEST(SplineTest, ErrorsWithExactTexts) {
  EXPECT_EQ("Invalid parameters : Spline: number of point must be >= 3",
            zr_test::BadParametersText([] {
              S s(MakePoints({0, 1}, {0, 1}));
            }));
  Points thin = MakePoints({0, 1, 2}, {0, 1, 0});
  thin[1].Set(1);
  EXPECT_EQ("Invalid parameters : Spline: point must have 2 coordinates",
            zr_test::BadParametersText([&] { S s(thin); }));

  S s(MakePoints({0, 1, 2}, {0, 1, 0}));
  const auto v = Values(0, 0, 0, 0);
  EXPECT_EQ(kBadCount, zr_test::BadParametersText([&] { s.MkSpline3(Codes(3, 3), v); }));
  EXPECT_EQ(kBadCount, zr_test::BadParametersText([&] { s.MkSpline3(Codes(0, 1), v); }));
  EXPECT_EQ(kBadCount, zr_test::BadParametersText([&] { s.MkSpline3(Codes(1, 0), v); }));
  // The values the conditions read must exist.
  zrMatrix<double> row(1, 2);
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { s.MkSpline3(Codes(0, 3), row); }));
  s.MkSpline3(Codes(3, 0), row);

  s.MkSpline3(Codes(0, 3), v);
  const double after = std::nextafter(2.0, 3.0), before = std::nextafter(0.0, -1.0);
  EXPECT_EQ(1, s.GetSegmentNum(2.0));
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { s(after); }));
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { s.Derivative(before, 1); }));
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { s.GetSegmentNum(NAN); }));
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { s(0.5, 2); }));
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { s.Derivative(0.5, 1, -1); }));
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { s.Derivative(1, 3); }));
  EXPECT_EQ(kOutOfRange, zr_test::BadParametersText([&] { S().GetSegmentNum(0.0); }));
  EXPECT_EQ(-1.0, s(3.0, 1));  // an explicit segment extrapolates

  // Coincident abscissas give no spline; the check catches the non-finite segments.
  S flat(MakePoints({0, 1, 1, 2}, {0, 1, 1, 0}));
  EXPECT_EQ(kError, zr_test::BadParametersText([&] { flat.MkSpline3(Codes(0, 3), v); }));
  EXPECT_EQ(0, flat.Check());
}

TEST(SplineTest, SegmentSearchMatchesTheScan) {
  std::mt19937 gen(12345);
  std::uniform_real_distribution<double> step(0.0, 1.0);
  for (int round = 0; round < 40; ++round) {
    const int n = 3 + round % 17;
    std::vector<double> x(n), y(n, 0.0);
    x[0] = -3;
    // Integer-valued steps, some zero, so that ties and repeated nodes occur.
    for (int i = 1; i < n; ++i) x[i] = x[i - 1] + std::floor(step(gen) * 3);
    if (round % 5 == 0) std::swap(x[1], x[n - 2]);  // out of order: the scan itself
    S s(MakePoints(x, y));
    std::uniform_real_distribution<double> inside(x.front(), x.back());
    std::vector<double> probes(x);
    for (int k = 0; k < 200; ++k) probes.push_back(inside(gen));
    for (double at : probes) {
      if (!(x.front() <= at && at <= x.back())) continue;
      EXPECT_EQ(ScanSegment(x, at), s.GetSegmentNum(at)) << round << ' ' << at;
    }
  }
}

TEST(SplineTest, PeriodicIsSmoothAcrossThePeriod) {
  std::mt19937 gen(777);
  std::uniform_real_distribution<double> step(0.2, 1.5), value(-2.0, 2.0);
  for (int n = 3; n <= 12; ++n) {
    std::vector<double> x(n), y(n);
    x[0] = -1;
    for (int i = 1; i < n; ++i) x[i] = x[i - 1] + step(gen);
    for (int i = 0; i < n - 1; ++i) y[i] = value(gen);
    y[n - 1] = y[0];
    S s(MakePoints(x, y));
    s.MkPeriodSpline3();
    for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i], s(x[i]), 1e-12);
    // At the wrap: segment 0 at x_0 against segment n-2 at x_(n-1).
    for (int m = 0; m <= 2; ++m)
      EXPECT_NEAR(s.Derivative(x[0], m, 0), s.Derivative(x[n - 1], m, n - 2), 1e-9)
          << "n " << n << " m " << m;
    // And at every interior node, tighter than Check's tolerance.
    for (int i = 1; i < n - 1; ++i)
      for (int m = 0; m <= 2; ++m)
        EXPECT_NEAR(s.Derivative(x[i], m, i - 1), s.Derivative(x[i], m, i), 1e-9);
    // A last point that does not close the period is refused.
    y[n - 1] = y[0] + 0.5;
    S open(MakePoints(x, y));
    EXPECT_EQ(kError, zr_test::BadParametersText([&] { open.MkPeriodSpline3(); }));
  }
}

TEST(SplineTest, MakeByDegree) {
  const Points p = MakePoints({0, 1, 2.5, 4}, {1, 3, 0, 2});
  S cubic(p), made(p), line(p);
  const auto v = Values(1, -1, 0, 0);
  cubic.MkSpline3(Codes(3, 0), v);
  made.Make(3, Codes(3, 0), v);
  for (double t = 0; t <= 4; t += 0.125) EXPECT_EQ(cubic(t), made(t));

  const zrSimpleArray<int> none;
  const zrMatrix<double> empty;
  line.Make(1, none, empty);
  EXPECT_EQ(2.0, line(0.5));
  EXPECT_EQ(1.5, line(1.75));
  EXPECT_EQ(-2.0, line.Derivative(1.75, 1));
  EXPECT_EQ(0.0, line.Derivative(1.75, 2));
  line.Make(1, Codes(0, 0), empty);
  EXPECT_EQ(kBadCount, zr_test::BadParametersText([&] { line.Make(1, Codes(1, 0), v); }));
  EXPECT_EQ(kBadCount, zr_test::BadParametersText([&] { line.Make(3, Codes(1, 0), v); }));
  EXPECT_EQ("Invalid parameters : zrSpline: wrong degree.",
            zr_test::BadParametersText([&] { line.Make(2, none, empty); }));
}

TEST(SplineTest, CopiesOwnTheirPoints) {
  Points p = MakePoints({0, 1, 2}, {0, 1, 0});
  S s(p);
  p[1][1] = 10;  // the caller's points are not the spline's
  s.MkSpline3(Codes(0, 3), Values(0, 0, 0, 0));
  EXPECT_EQ(0.6875, s(0.5));

  S copy(s);
  S assigned(MakePoints({0, 1, 2, 3}, {0, 0, 0, 0}));
  assigned = s;
  s.Make(1, zrSimpleArray<int>(), zrMatrix<double>());  // rebuilding s leaves both alone
  EXPECT_EQ(0.5, s(0.5));
  EXPECT_EQ(0.6875, copy(0.5));
  EXPECT_EQ(0.6875, assigned(0.5));
  EXPECT_EQ(3, assigned.GetNumberOfPoint());
}

}  // namespace
