#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using S = zrSpline<double>;
using Points = zrSimpleArray<zrColumnVector<double>>;
using zr_test::BadParametersText;

const std::string kOutOfRange = "Invalid parameters : zrSpline: Out of range.";
const std::string kBadCount = "Invalid parameters : Invalid number of bound condition.";
const std::string kError = "Invalid parameters : error in spline";

Points MakePoints(const std::vector<double>& x, const std::vector<double>& y) {
  Points p(static_cast<int>(x.size()));
  for (int i = 0; i < p.Len(); ++i) p[i].Set(2), p[i][0] = x[i], p[i][1] = y[i];
  return p;
}

template <class... I>
zrSimpleArray<int> Codes(I... codes) {
  zrSimpleArray<int> c(static_cast<int>(sizeof...(codes)));
  int i = 0;
  ((c[i++] = codes), ...);
  return c;
}

// values(0, .) first derivatives, values(1, .) second derivatives; (., 0) left end.
zrMatrix<double> Values(double d1l, double d1r, double d2l, double d2r) {
  zrMatrix<double> v(2, 2);
  v(0, 0) = d1l, v(0, 1) = d1r, v(1, 0) = d2l, v(1, 1) = d2r;
  return v;
}

// The segment of x by the plain scan over the nodes.
int ScanSegment(const std::vector<double>& x, double at) {
  const auto above = std::find_if(x.begin() + 1, x.end(), [&](double v) { return v > at; });
  return std::min(static_cast<int>(above - x.begin()) - 1, static_cast<int>(x.size()) - 2);
}

TEST(SplineTest, NaturalClampedAndPeriodic) {
  Points p = MakePoints({0, 1, 2}, {0, 1, 0});
  S nat(p);
  p[1][1] = 10;  // the caller's points are not the spline's
  nat.MkSpline3(Codes(0, 3), Values(0, 0, 0, 0));
  EXPECT_TRUE(nat(0.5) == 0.6875 && nat(1.5) == 0.6875 && nat.Check() == 1);
  // Derivative(m, i) at the points: the last one reads the last segment.
  EXPECT_TRUE(nat.Derivative(2, 1) == -3 && nat.Derivative(2, 0) == 0 && nat.Derivative(2, 2) == 0);

  // A cubic with its end conditions is reproduced.
  auto f = [](double x) { return ((0.5 * x - 1) * x + 2) * x - 3; };
  auto f1 = [](double x) { return (1.5 * x - 2) * x + 2; };
  auto f2 = [](double x) { return 3 * x - 2; };
  const std::vector<double> xs = {-1, -0.4, 0.3, 1.5, 2, 3.25};
  std::vector<double> ys;
  for (double v : xs) ys.push_back(f(v));
  // Clamped, second derivatives at both ends, and one of each: all give f itself.
  for (const auto& c : {Codes(3, 0), Codes(0, 3), Codes(1, 2), Codes(2, 1)}) {
    S s(MakePoints(xs, ys));
    s.MkSpline3(c, Values(f1(xs[0]), f1(xs[5]), f2(xs[0]), f2(xs[5])));
    for (double t = xs[0]; t <= xs[5]; t += 0.0625) {
      EXPECT_NEAR(f(t), s(t), 1e-12) << c[0] << c[1] << ' ' << t;
      EXPECT_NEAR(f1(t), s.Derivative(t, 1), 1e-11);
      EXPECT_NEAR(f2(t), s.Derivative(t, 2), 1e-10);
      EXPECT_NEAR(3.0, s.Derivative(t, 3), 1e-9);
    }
  }

  // Periodic: smooth across the period.
  std::mt19937 gen(777);
  std::uniform_real_distribution<double> step(0.2, 1.5), value(-2.0, 2.0);
  for (int n = 3; n <= 12; ++n) {
    std::vector<double> x(n, -1), y(n);
    for (int i = 1; i < n; ++i) x[i] = x[i - 1] + step(gen);
    for (int i = 0; i < n; ++i) y[i] = i < n - 1 ? value(gen) : y[0];
    S s(MakePoints(x, y));
    s.MkPeriodSpline3();
    for (int i = 0; i < n; ++i) EXPECT_NEAR(y[i], s(x[i]), 1e-12);
    // At the wrap: segment 0 at x_0 against segment n-2 at x_(n-1).
    for (int m = 0; m <= 2; ++m)
      EXPECT_NEAR(s.Derivative(x[0], m, 0), s.Derivative(x[n - 1], m, n - 2), 1e-9) << n << m;
    // A last point that does not close the period is refused.
    y[n - 1] = y[0] + 0.5;
    EXPECT_EQ(kError, BadParametersText([&] { S(MakePoints(x, y)).MkPeriodSpline3(); }));
  }
}

// Only the number of conditions is checked, and every error has its exact text.
TEST(SplineTest, ConditionsMakeCopiesAndErrors) {
  // (1, 1): a first and then a second derivative at the left end; the right end keeps
  // its starting row, a zero moment.
  S four(MakePoints({0, 1, 3, 4}, {1, -1, 2, 0}));
  four.MkSpline3(Codes(1, 1), Values(5, 0, 0.5, 0));
  EXPECT_NEAR(0.5, four.Derivative(2, 0), 1e-14);
  EXPECT_NEAR(0.0, four.Derivative(2, 3), 1e-14);
  // A missing codes element counts as no condition.
  four.MkSpline3(Codes(3), Values(1, 2, 0, 0));
  EXPECT_NEAR(2.0, four.Derivative(1, 3), 1e-12);

  const std::string few = "Invalid parameters : Spline: number of point must be >= 3";
  EXPECT_EQ(few, BadParametersText([] { (void)S(MakePoints({0, 1}, {0, 1})); }));
  Points thin = MakePoints({0, 1, 2}, {0, 1, 0});
  thin[1].Set(1);
  EXPECT_EQ("Invalid parameters : Spline: point must have 2 coordinates",
            BadParametersText([&] { S s(thin); }));

  S s(MakePoints({0, 1, 2}, {0, 1, 0}));
  const auto v = Values(0, 0, 0, 0);
  for (const auto& c : {Codes(3, 3), Codes(0, 1), Codes(1, 0)})
    EXPECT_EQ(kBadCount, BadParametersText([&] { s.MkSpline3(c, v); })) << c[0] << c[1];
  // The values the conditions read must exist.
  zrMatrix<double> row(1, 2);
  row.Fill(0.0);
  EXPECT_EQ(kOutOfRange, BadParametersText([&] { s.MkSpline3(Codes(0, 3), row); }));
  s.MkSpline3(Codes(3, 0), row);

  s.MkSpline3(Codes(0, 3), v);
  const double after = std::nextafter(2.0, 3.0), before = std::nextafter(0.0, -1.0);
  const auto refused = [](auto call) { return BadParametersText(call) == kOutOfRange; };
  EXPECT_TRUE(refused([&] { s(after); }) && refused([&] { s.Derivative(before, 1); }));
  EXPECT_TRUE(refused([&] { s.GetSegmentNum(NAN); }) && refused([&] { s(0.5, 2); }));
  // Derivative(m, i) needs a point i; an empty spline has no segment.
  EXPECT_TRUE(refused([&] { s.Derivative(0.5, 1, -1); }) && refused([&] { s.Derivative(1, 3); }));
  EXPECT_TRUE(refused([] { S().GetSegmentNum(0); }));
  EXPECT_EQ(-1.0, s(3.0, 1));  // an explicit segment extrapolates

  // Coincident abscissas give no spline; the check catches the non-finite segments.
  S flat(MakePoints({0, 1, 1, 2}, {0, 1, 1, 0}));
  EXPECT_EQ(kError, BadParametersText([&] { flat.MkSpline3(Codes(0, 3), v); }));
  EXPECT_EQ(0, flat.Check());

  // Make by degree; copies keep their own spline.
  const Points p = MakePoints({0, 1, 2.5, 4}, {1, 3, 0, 2});
  const zrSimpleArray<int> none;
  const zrMatrix<double> empty;
  const auto ends = Values(1, -1, 0, 0);
  S cubic(p), made(p), line(p), assigned(MakePoints({0, 1, 2}, {0, 0, 0}));
  cubic.MkSpline3(Codes(3, 0), ends);
  made.Make(3, Codes(3, 0), ends);
  S copy(cubic);
  assigned = cubic;
  cubic.Make(1, none, empty);  // rebuilding leaves the copies alone
  line.Make(1, none, empty);
  for (double t = 0; t <= 4; t += 0.125)
    EXPECT_TRUE(copy(t) == made(t) && assigned(t) == made(t) && cubic(t) == line(t)) << t;

  EXPECT_TRUE(line(0.5) == 2 && line(1.75) == 1.5 && line.Derivative(1.75, 1) == -2);
  line.Make(1, Codes(0, 0), empty);
  EXPECT_EQ(kBadCount, BadParametersText([&] { line.Make(1, Codes(1, 0), ends); }));
  EXPECT_EQ("Invalid parameters : zrSpline: wrong degree.",
            BadParametersText([&] { line.Make(2, none, empty); }));
}

TEST(SplineTest, SegmentSearchMatchesTheScan) {
  std::mt19937 gen(12345);
  std::uniform_real_distribution<double> step(0.0, 1.0);
  for (int round = 0; round < 40; ++round) {
    const int n = 3 + round % 17;
    std::vector<double> x(n, -3), y(n, 0.0);
    // Integer-valued steps, some zero, so that ties and repeated nodes occur.
    for (int i = 1; i < n; ++i) x[i] = x[i - 1] + std::floor(step(gen) * 3);
    if (round % 5 == 0) std::swap(x[1], x[n - 2]);  // out of order: the scan itself
    S s(MakePoints(x, y));
    for (int k = 0; k < n + 200; ++k) {  // the nodes, then points inside
      const double at = k < n ? x[k] : std::uniform_real_distribution<double>(x[0], x[n - 1])(gen);
      EXPECT_EQ(ScanSegment(x, at), s.GetSegmentNum(at)) << round << ' ' << at;
    }
  }
}

}  // namespace
