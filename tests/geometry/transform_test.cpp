#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <string>

#include "support/test_support.h"
#include "zr/geometry/geometry.h"

namespace {

const double kPi = std::acos(-1.0);
const std::string kPrefix = "Invalid parameters : ";

void ExpectNear(const zrVec2& a, const zrVec2& b, double eps = 1e-14) {
  EXPECT_NEAR(a.X(), b.X(), eps);
  EXPECT_NEAR(a.Y(), b.Y(), eps);
}
void ExpectNear(const zrTVec3<double>& a, const zrTVec3<double>& b, double eps = 1e-14) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(a[i], b[i], eps) << "component " << i;
}

zrSimpleArray<zrVec2> Points(std::initializer_list<zrVec2> list) {
  zrSimpleArray<zrVec2> a(static_cast<int>(list.size()));
  int i = 0;
  for (const zrVec2& p : list) a[i++] = p;
  return a;
}

// The doubles at p (raw, possibly unaligned bytes) have exactly the bits of want.
void ExpectDoubles(const void* p, std::initializer_list<double> want) {
  const unsigned char* bytes = static_cast<const unsigned char*>(p);
  int i = 0;
  for (double w : want) {
    double got;
    std::memcpy(&got, bytes + 8 * i, sizeof got);
    EXPECT_EQ(zr_test::Bits(got), zr_test::Bits(w)) << "double " << i;
    ++i;
  }
}

double Residual(const zrTransformCoord2D& t, const zrSimpleArray<zrVec2>& from,
                const zrSimpleArray<zrVec2>& to) {
  double sum = 0;
  for (int i = 0; i < from.Len(); ++i) sum += (t.Transform(from[i]) - to[i]).ScalarMul();
  return sum;
}

TEST(TransformCoord2D, StepsComposeAfterThePresentTransform) {
  zrTransformCoord2D t;
  EXPECT_EQ(t.Transform(zrVec2(3, -4)), zrVec2(3, -4));
  t.AddShift(zrVec2(1, 2));
  t.AddTurn(kPi / 2);  // turns the already shifted point
  ExpectNear(t.Transform(zrVec2(0, 0)), zrVec2(-2, 1));

  zrTransformCoord2D scale_then_shift;
  scale_then_shift.AddScale(zrVec2(2, 3));
  scale_then_shift.AddShift(zrVec2(1, 1));
  EXPECT_EQ(scale_then_shift.Transform(zrVec2(1, 1)), zrVec2(3, 4));
  EXPECT_EQ(scale_then_shift.TransformVec(zrVec2(1, 1)), zrVec2(2, 3));
  zrTransformCoord2D shift_then_scale;
  shift_then_scale.AddShift(zrVec2(1, 1));
  shift_then_scale.AddScale(zrVec2(2, 3));
  EXPECT_EQ(shift_then_scale.Transform(zrVec2(1, 1)), zrVec2(4, 6));

  // AddMatrix multiplies from the left, shift included.
  shift_then_scale.AddMatrix(zrMatrix2x2(0, 1, 1, 0));
  EXPECT_EQ(shift_then_scale.Transform(zrVec2(1, 1)), zrVec2(6, 4));
  EXPECT_EQ(shift_then_scale.GetShift(), zrVec2(3, 2));
  ExpectDoubles(shift_then_scale.GetMatrix().GetPointer(), {0, 3, 2, 0});
}

TEST(TransformCoord2D, StepsAboutACentreKeepTheCentre) {
  zrTransformCoord2D t;
  t.AddShift(zrVec2(0.5, 0));
  t.AddTurn(kPi / 2, zrVec2(1, 1));
  ExpectNear(t.Transform(zrVec2(0.5, 1)), zrVec2(1, 1));
  ExpectNear(t.Transform(zrVec2(1.5, 1)), zrVec2(1, 2));

  zrTransformCoord2D s;
  s.AddScale(zrVec2(2, 3), zrVec2(1, 1));
  EXPECT_EQ(s.Transform(zrVec2(1, 1)), zrVec2(1, 1));
  EXPECT_EQ(s.Transform(zrVec2(2, 2)), zrVec2(3, 4));
}

TEST(TransformCoord2D, InverseAndProduct) {
  zrTransformCoord2D t;
  t.AddScale(zrVec2(2, -0.5));
  t.AddTurn(0.7, zrVec2(3, -1));
  t.AddShift(zrVec2(-4, 9));
  t.AddMatrix(zrMatrix2x2(1, 0.25, 0, 1));
  const zrTransformCoord2D inv = t.Inverse();
  for (const zrVec2& p : {zrVec2(0, 0), zrVec2(5, -7), zrVec2(-100, 3)}) {
    ExpectNear((t * inv).Transform(p), p, 1e-12);
    ExpectNear((inv * t).Transform(p), p, 1e-12);
  }

  // other first, then this.
  zrTransformCoord2D a, b;
  a.AddScale(zrVec2(2, 2));
  b.AddShift(zrVec2(1, 0));
  EXPECT_EQ((a * b).Transform(zrVec2(0, 0)), zrVec2(2, 0));
  EXPECT_EQ((b * a).Transform(zrVec2(0, 0)), zrVec2(1, 0));
  EXPECT_EQ((a * b).Transform(zrVec2(3, 5)), a.Transform(b.Transform(zrVec2(3, 5))));

  zrTransformCoord2D flat;
  flat.AddScale(zrVec2(0, 1));
  const std::string want = kPrefix + "zrMatrix2x2::Inverse : det = 0 ";
  EXPECT_EQ(zr_test::BadParametersText([&] { flat.Inverse(); }), want);
  EXPECT_EQ(zr_test::BadParametersText([&] { flat.GetNewScale(zrVec2(1, 1)); }), want);
}

TEST(TransformCoord2D, ScalesWeighTheImagesOfTheUnitVectors) {
  zrTransformCoord2D t;
  t.AddScale(zrVec2(2, 3));
  t.AddTurn(kPi / 2);  // e1 -> (0, 2), e2 -> (-3, 0)
  ExpectNear(t.GetOldScale(zrVec2(1, 1)), zrVec2(2, 3));
  ExpectNear(t.GetOldScale(zrVec2(10, 1)), zrVec2(2, 30));
  ExpectNear(t.GetNewScale(zrVec2(1, 1)), zrVec2(1.0 / 3, 0.5));
}

TEST(TransformCoord2D, TransformRectBoundsTheFourCorners) {
  const zrRect<zrVec2> unit(zrVec2(0, 0), zrVec2(1, 1));
  zrTransformCoord2D t;
  t.AddTurn(kPi / 4);
  const zrRect<zrVec2> r = t.TransformRect(unit);
  EXPECT_NEAR(r.Max().X() - r.Min().X(), std::sqrt(2.0), 1e-15);
  EXPECT_NEAR(r.Max().Y() - r.Min().Y(), std::sqrt(2.0), 1e-15);
  ExpectNear(r.Min(), zrVec2(-std::sqrt(0.5), 0));

  zrTransformCoord2D mirror;
  mirror.AddScale(zrVec2(-1, 2));
  mirror.AddShift(zrVec2(0, 1));
  EXPECT_TRUE(mirror.TransformRect(unit) == zrRect<zrVec2>(zrVec2(-1, 1), zrVec2(0, 3)));
}

TEST(TransformCoord2D, FlatFormIsMatrixThenShift) {
  zrTransformCoord2D t;
  unsigned char buf[48];
  EXPECT_EQ(zrMemSize(t), 48);
  EXPECT_EQ(zrToMem(buf, t), 48);
  ExpectDoubles(buf, {1, 0, 0, 1, 0, 0});

  t.AddMatrix(zrMatrix2x2(1, 2, 3, 4));
  t.AddShift(zrVec2(7, -8));
  EXPECT_EQ(t.ToMem(buf), 48);
  ExpectDoubles(buf, {1, 2, 3, 4, 7, -8});
  zrTransformCoord2D back;
  EXPECT_EQ(zrFromMem(buf, back), 48);
  EXPECT_EQ(back.GetShift(), zrVec2(7, -8));
  ExpectDoubles(back.GetMatrix().GetPointer(), {1, 2, 3, 4});
}

TEST(TransformCoord2D, FitOfIdenticalAndShiftedPointsIsExact) {
  const zrSimpleArray<zrVec2> from = Points({{0, 0}, {3, 0}, {0, 3}});
  zrTransformCoord2D t;
  t.AddTurn(1);  // replaced, not composed
  t.MakeRotateShiftFromEquations(from, from);
  EXPECT_EQ(t.GetShift(), zrVec2(0, 0));
  EXPECT_EQ(t.GetMatrix()(0, 0), 1);
  EXPECT_EQ(t.GetMatrix()(1, 1), 1);
  EXPECT_EQ(t.GetMatrix()(0, 1), 0);
  EXPECT_EQ(t.GetMatrix()(1, 0), 0);

  t.MakeRotateShiftFromEquations(from, Points({{5, 0}, {8, 0}, {5, 3}}));
  EXPECT_EQ(t.GetShift(), zrVec2(5, 0));
  EXPECT_EQ(t.Transform(zrVec2(1, 1)), zrVec2(6, 1));
}

TEST(TransformCoord2D, FitRecoversATurnInEveryQuadrant) {
  const zrSimpleArray<zrVec2> from = Points({{1, 2}, {4, -1}, {-2, 5}, {0.5, 0.25}});
  for (double degrees : {30.0, 150.0, 180.0, 210.0, 300.0}) {
    zrTransformCoord2D truth;
    truth.AddTurn(degrees * kPi / 180);
    truth.AddShift(zrVec2(-3, 7));
    zrSimpleArray<zrVec2> to(from.Len());
    for (int i = 0; i < from.Len(); ++i) to[i] = truth.Transform(from[i]);
    zrTransformCoord2D fit;
    fit.MakeRotateShiftFromEquations(from, to);
    SCOPED_TRACE(degrees);
    for (int i = 0; i < 4; ++i)
      EXPECT_NEAR(fit.GetMatrix().GetPointer()[i], truth.GetMatrix().GetPointer()[i], 1e-13);
    ExpectNear(fit.GetShift(), truth.GetShift(), 1e-13);
  }
}

TEST(TransformCoord2D, FitMinimisesTheResidualOfNoisyPoints) {
  const zrSimpleArray<zrVec2> from = Points({{0, 0}, {4, 0}, {4, 3}, {0, 3}, {2, 1}});
  const zrSimpleArray<zrVec2> to =
      Points({{10.1, 5}, {10, 9.02}, {6.95, 9}, {7.03, 4.97}, {9, 6.99}});  // about +90 deg
  zrTransformCoord2D fit;
  fit.MakeRotateShiftFromEquations(from, to);
  EXPECT_NEAR(fit.GetMatrix().Det(), 1, 1e-14);
  EXPECT_NEAR(fit.GetMatrix()(1, 0), 1, 1e-3);
  const double best = Residual(fit, from, to);
  for (double da : {-1e-3, 1e-3}) {
    zrTransformCoord2D turned = fit;
    turned.AddTurn(da, to[4]);
    EXPECT_GT(Residual(turned, from, to), best);
  }
  for (const zrVec2& d : {zrVec2(1e-3, 0), zrVec2(0, -1e-3)}) {
    zrTransformCoord2D moved = fit;
    moved.AddShift(d);
    EXPECT_GT(Residual(moved, from, to), best);
  }
}

TEST(TransformCoord2D, FitRefusesDifferentLengths) {
  zrTransformCoord2D t;
  t.AddShift(zrVec2(1, 2));
  EXPECT_EQ(zr_test::BadParametersText([&] {
              t.MakeRotateShiftFromEquations(Points({{0, 0}, {1, 0}}), Points({{0, 0}}));
            }),
            kPrefix + "zrTransformCoord2D::MakeFromEquations: different number");
  EXPECT_EQ(t.GetShift(), zrVec2(1, 2));
}

TEST(TransformCoord3D, TurnsScalesAndCentres) {
  const zrTVec3<double> centre(1, 2, 3);
  zrTransformCoord3D t;
  t.AddTurn(0.3, -1.1, 2.0, centre);
  ExpectNear(t.Transform(centre), centre);

  zrTransformCoord3D z;
  z.AddShift(zrTVec3<double>(1, 0, 0));
  z.AddTurn(kPi / 2, zrTVec3<double>(0, 0, 5));  // about the z axis, after the shift
  ExpectNear(z.Transform(zrTVec3<double>(0, 0, 0)), zrTVec3<double>(0, 1, 0));
  ExpectNear(z.TransformVec(zrTVec3<double>(0, 1, 7)), zrTVec3<double>(-1, 0, 7));

  zrTransformCoord3D euler;
  euler.AddTurn(kPi / 2, 0, 0);  // about x: y -> z
  ExpectNear(euler.Transform(zrTVec3<double>(0, 1, 0)), zrTVec3<double>(0, 0, 1));

  zrTransformCoord3D onto;
  onto.AddTurn(zrTVec3<double>(1, 1, 0), zrTVec3<double>(0, 0, -2));
  ExpectNear(onto.Transform(zrTVec3<double>(3, 3, 0)), zrTVec3<double>(0, 0, -std::sqrt(18.0)));

  zrTransformCoord3D s;
  s.AddScale(zrTVec3<double>(2, 3, 4), centre);
  EXPECT_EQ(s.Transform(centre), centre);
  EXPECT_EQ(s.Transform(zrTVec3<double>(2, 3, 4)), zrTVec3<double>(3, 5, 7));
  ExpectNear(s.GetOldScale(zrTVec3<double>(1, 1, 1)), zrTVec3<double>(2, 3, 4));
  ExpectNear(s.GetNewScale(zrTVec3<double>(1, 1, 2)), zrTVec3<double>(0.5, 1.0 / 3, 0.5));
}

TEST(TransformCoord3D, InverseProductAndFlatForm) {
  zrTransformCoord3D t;
  t.AddScale(zrTVec3<double>(2, 1, 0.5));
  t.AddTurn(0.4, zrTVec3<double>(1, -2, 3));
  t.AddShift(zrTVec3<double>(5, 6, -7));
  const zrTVec3<double> p(1, -3, 8);
  ExpectNear((t * t.Inverse()).Transform(p), p, 1e-12);
  ExpectNear((t.Inverse() * t).Transform(p), p, 1e-12);

  zrTransformCoord3D a, b;
  a.AddScale(zrTVec3<double>(2, 2, 2));
  b.AddShift(zrTVec3<double>(1, 0, 0));
  EXPECT_EQ((a * b).Transform(zrTVec3<double>(0, 0, 0)), zrTVec3<double>(2, 0, 0));

  zrTransformCoord3D flat;
  flat.AddScale(zrTVec3<double>(1, 0, 1));
  const zrTMatrix3x3<double> singular = flat.GetMatrix();
  const std::string want = zr_test::BadParametersText([&] { singular.Inverse(); });
  EXPECT_FALSE(want.empty());
  EXPECT_EQ(zr_test::BadParametersText([&] { flat.Inverse(); }), want);

  unsigned char buf[96];
  zrTransformCoord3D id;
  EXPECT_EQ(zrMemSize(id), 96);
  EXPECT_EQ(zrToMem(buf, id), 96);
  ExpectDoubles(buf, {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
  EXPECT_EQ(t.ToMem(buf), 96);
  zrTransformCoord3D back;
  EXPECT_EQ(zrFromMem(buf, back), 96);
  const double* m = t.GetMatrix().GetPointer();
  const zrTVec3<double>& s = t.GetShift();
  ExpectDoubles(buf, {m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], s.X(), s.Y(), s.Z()});
  for (int i = 0; i < 9; ++i) EXPECT_EQ(back.GetMatrix().GetPointer()[i], m[i]);
  EXPECT_EQ(back.GetShift(), s);
}

zrColumnVector<double> Column(double x, double y) {
  zrColumnVector<double> v(2);
  v[0] = x;
  v[1] = y;
  return v;
}

TEST(TransformCoord, ReadsPointsInTheFrameOfARuler) {
  zrColumnVector<double> origin = Column(1, 1);
  zrColumnVector<double> axis = Column(0, 2);
  const zrTransformCoord along_x(origin, axis, 0);
  const zrTransformCoord along_y(origin, axis, 1);
  origin[0] = 100;  // read once: the frames keep what they were given
  axis[1] = 100;

  zrColumnVector<double> c = along_x.GetCoord(Column(1, 3));
  EXPECT_EQ(c.Len(), 2);
  EXPECT_EQ(c[0], 1);
  EXPECT_EQ(c[1], 0);
  c = along_x.GetCoord(Column(0, 1));  // to the left of the axis: +y of the frame
  EXPECT_EQ(c[0], 0);
  EXPECT_EQ(c[1], 0.5);
  c = along_y.GetCoord(Column(1, 3));
  EXPECT_EQ(c[0], 0);
  EXPECT_EQ(c[1], 1);
  c = along_y.GetCoord(Column(3, 1));  // to the right of the axis: +x of the frame
  EXPECT_EQ(c[0], 1);
  EXPECT_EQ(c[1], 0);

  const zrColumnVector<double> d = along_x.GetScale(Column(0, 4));  // a step, no origin
  EXPECT_EQ(d[0], 2);
  EXPECT_EQ(d[1], 0);
  EXPECT_EQ(along_x.GetTransform().Transform(zrVec2(1, 3)), zrVec2(1, 0));
}

TEST(TransformCoord, EveryVectorMustHaveTwoElements) {
  const std::string want = kPrefix + "zrTransformCoord : must be dimention equal two.";
  const zrColumnVector<double> two = Column(0, 1);
  const zrColumnVector<double> three(3);
  EXPECT_EQ(zr_test::BadParametersText([&] { zrTransformCoord(three, two, 0); }), want);
  EXPECT_EQ(zr_test::BadParametersText([&] { zrTransformCoord(two, three, 0); }), want);
  const zrTransformCoord t(two, two, 0);
  EXPECT_EQ(zr_test::BadParametersText([&] { t.GetCoord(three); }), want);
  EXPECT_EQ(zr_test::BadParametersText([&] { t.GetScale(zrVector<double>(1)); }), want);
}

}  // namespace
