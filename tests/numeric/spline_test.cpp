#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
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

// The full interface's spline through (x, y): the points, then the builder.
S Full(const std::vector<double>& x, const std::vector<double>& y, const zrSplineEnd& end) {
  S s(MakePoints(x, y));
  if (end.GetKind() == zrSplineEnd::kPeriodic) {
    s.MkPeriodSpline3();
  } else if (end.GetKind() == zrSplineEnd::kClamped) {
    s.MkSpline3(Codes(3, 0), Values(end.Left(), end.Right(), 0, 0));
  } else {
    s.MkSpline3(Codes(0, 3), Values(0, 0, 0, 0));
  }
  return s;
}

zrArray<double> Array(const std::vector<double>& v) {
  zrArray<double> a;
  for (double e : v) a.push_back(e);
  return a;
}

// Cubic from x and y is the full call, bit for bit, from arrays, strided vectors and
// pointers, and the many-point evaluations are the single-point ones.
TEST(SplineTest, CubicFromXAndYIsTheFullCall) {
  std::mt19937 gen(2024);
  std::uniform_real_distribution<double> step(0.05, 2.0), value(-3.0, 3.0);
  for (int n : {3, 4, 7, 40}) {
    std::vector<double> x(n, -2.5), y(n);
    for (int i = 1; i < n; ++i) x[i] = x[i - 1] + step(gen);
    for (int i = 0; i < n; ++i) y[i] = value(gen);
    y[n - 1] = y[0];  // so that the periodic end applies too
    const zrArray<double> xa = Array(x), ya = Array(y);
    // The same values through steps of -1 and 2: y reversed, x every other of a buffer.
    zrVector<double> xBuf(2 * n), yv;
    for (int i = 0; i < n; ++i) xBuf[2 * i] = x[i], xBuf[2 * i + 1] = NAN;
    zrVector<double> xv;
    xv.Set(xBuf, 0, n, 2);
    zrVector<double> yRev(n);
    for (int i = 0; i < n; ++i) yRev[n - 1 - i] = y[i];
    yv.Set(yRev, n - 1, n, -1);

    for (const zrSplineEnd& end :
         {zrSplineEnd::Natural(), zrSplineEnd::Clamped(0.75, -1.25), zrSplineEnd::Periodic()}) {
      SCOPED_TRACE(testing::Message() << n << ' ' << end.GetKind());
      const S full = Full(x, y, end);
      const S fromArrays = S::Cubic(xa, ya, end);
      const S fromVectors = S::Cubic(xv, yv, end);
      const S fromPointers = S::Cubic(x.data(), y.data(), n, end);
      std::vector<double> at;
      for (int k = 0; k < 8 * n; ++k) at.push_back(x[0] + (x[n - 1] - x[0]) * k / (8 * n));
      at.insert(at.end(), x.begin(), x.end());
      std::shuffle(at.begin(), at.end(), gen);  // the hint must not need order
      const zrArray<double> xs = Array(at);
      zrArray<double> values, slopes;
      fromArrays.Value(xs, values);
      fromArrays.Derivative(xs, 1, slopes);
      std::vector<double> curvature(at.size());
      fromPointers.Derivative(at.data(), xs.Len(), 2, curvature.data());
      for (int k = 0; k < xs.Len(); ++k) {
        const double t = at[k];
        const double v = full(t);
        ASSERT_TRUE(zr_test::Bits(fromArrays(t)) == zr_test::Bits(v) &&
                    zr_test::Bits(fromVectors(t)) == zr_test::Bits(v) &&
                    zr_test::Bits(fromPointers(t)) == zr_test::Bits(v))
            << n << ' ' << end.GetKind() << ' ' << t;
        ASSERT_EQ(zr_test::Bits(values[k]), zr_test::Bits(v));
        ASSERT_EQ(zr_test::Bits(slopes[k]), zr_test::Bits(full.Derivative(t, 1)));
        ASSERT_EQ(zr_test::Bits(curvature[k]), zr_test::Bits(full.Derivative(t, 2)));
      }
    }
  }
  // The named conditions are the right ones: a natural end is straight, a clamped one
  // has the given slope.
  const std::vector<double> x = {0, 1, 2.5, 4}, y = {1, 3, 0, 2};
  const S nat = S::Cubic(Array(x), Array(y), zrSplineEnd::Natural());
  EXPECT_TRUE(nat.Derivative(2, 0) == 0 && nat.Derivative(2, 3) == 0);
  const S clamped = S::Cubic(Array(x), Array(y), zrSplineEnd::Clamped(-1, 2));
  EXPECT_NEAR(-1.0, clamped.Derivative(1, 0), 1e-12);
  EXPECT_NEAR(2.0, clamped.Derivative(1, 3), 1e-12);
}

TEST(SplineTest, CubicFromXAndYRefusesBadData) {
  const auto cubic = [](std::vector<double> x, std::vector<double> y,
                        zrSplineEnd end = zrSplineEnd::Natural()) {
    return BadParametersText([&] { (void)S::Cubic(Array(x), Array(y), end); });
  };
  EXPECT_EQ("Invalid parameters : zrSpline: x and y differ in length.",
            cubic({0, 1, 2, 3}, {0, 1, 2}));
  const std::string few = "Invalid parameters : Spline: number of point must be >= 3";
  EXPECT_EQ(few, cubic({0, 1}, {0, 1}));
  // More points than the spline's one block holds: refused before any is read.
  const double three[3] = {0, 1, 2};
  EXPECT_THROW((void)S::Cubic(three, three, INT32_MAX / 6 + 1, zrSplineEnd::Natural()),
               zrErrNoMemory);
  const std::string order = "Invalid parameters : zrSpline: x must be strictly increasing.";
  EXPECT_EQ(order, cubic({0, 1, 1, 2}, {0, 1, 1, 0}));  // the full interface's "error in spline"
  EXPECT_EQ(order, cubic({0, NAN, 2}, {0, 1, 0}));
  const std::string ends = "Invalid parameters : zrSpline: periodic y must end at its first value.";
  EXPECT_EQ(ends, cubic({0, 1, 2}, {0, 1, 0.5}, zrSplineEnd::Periodic()));
  // Within the check's tolerance the periodic spline is built, and takes y[0] at the end.
  const S periodic = S::Cubic(Array({0, 1, 2}), Array({0, 1, 0.005}), zrSplineEnd::Periodic());
  EXPECT_EQ(0.0, periodic(2.0));
  // Data the builder's check refuses still gives its text.
  EXPECT_EQ(kError, cubic({0, 1, 2}, {0, 1, INFINITY}));
}

// The outputs follow the arrays' rule: in place at the same length, a new block
// otherwise; a refusal writes nothing; xs may be its own output.
TEST(SplineTest, ManyPointsWriteInPlaceOrAFreshBlock) {
  const S s = S::Cubic(Array({0, 1, 2, 3}), Array({0, 1, 0, 1}), zrSplineEnd::Natural());
  const zrArray<double> xs = Array({0.5, 3, 0, 1.25});
  std::vector<double> want;
  for (int i = 0; i < xs.Len(); ++i) want.push_back(s(xs[i]));

  zrArray<double> base(6, -7.0);
  zrArray<double> window = base.Mid(1, 4);  // the same length as xs: written in place
  s.Value(xs, window);
  EXPECT_EQ(base[0], -7.0);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(base[1 + i], want[i]);
  EXPECT_EQ(base[5], -7.0);

  zrArray<double> shorter = base.Left(2);  // another length: a block of its own
  s.Value(xs, shorter);
  ASSERT_EQ(shorter.Len(), 4);
  EXPECT_EQ(base[1], want[0]);
  EXPECT_EQ(base.GetNumOfRef(), 1);  // held by base and window
  for (int i = 0; i < 4; ++i) EXPECT_EQ(shorter[i], want[i]);

  // Out of range anywhere: nothing written, the window keeps its values.
  zrArray<double> bad = Array({0.5, 3.5, 1});
  window.Fill(9.0);
  EXPECT_EQ(kOutOfRange, BadParametersText([&] { s.Value(bad, window); }));
  EXPECT_EQ("Invalid parameters : zrPolynom : wrong derivative order",
            BadParametersText([&] { s.Derivative(zrArray<double>(), -1, window); }));
  EXPECT_EQ(base[2], 9.0);
  // Empty input: an empty output.
  s.Value(zrArray<double>(), window);
  EXPECT_EQ(window.Len(), 0);

  // xs as its own output, and outputs overlapping xs one element on either side.
  for (int shift : {0, 1, -1}) {
    zrArray<double> buf(6, 0.0);
    for (int i = 0; i < 4; ++i) buf[1 + i] = xs[i];
    zrArray<double> in = buf.Mid(1, 4), out = buf.Mid(1 + shift, 4);
    s.Value(in, out);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(buf[1 + shift + i], want[i]) << shift << i;
    for (int i = 0; i < 4; ++i) buf[1 + i] = xs[i];
    s.Value(buf.GetPointer() + 1, 4, buf.GetPointer() + 1 + shift);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(buf[1 + shift + i], want[i]) << shift << i;
  }
}

}  // namespace
