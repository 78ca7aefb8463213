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
using V3 = zrTVec3<double>;

void ExpectNear(const zrVec2& a, const zrVec2& b, double eps = 1e-14) {
  EXPECT_NEAR(a.X(), b.X(), eps);
  EXPECT_NEAR(a.Y(), b.Y(), eps);
}
void ExpectNear(const V3& a, const V3& b, double eps = 1e-14) {
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
  zrTransformCoord2D t, s, c;
  t.AddShift(zrVec2(1, 2));
  t.AddTurn(kPi / 2);  // turns the already shifted point
  ExpectNear(t.Transform(zrVec2(0, 0)), zrVec2(-2, 1));
  ExpectNear(t.TransformVec(zrVec2(1, 0)), zrVec2(0, 1));  // no shift

  s.AddShift(zrVec2(1, 1));
  s.AddScale(zrVec2(2, 3));
  EXPECT_EQ(s.Transform(zrVec2(1, 1)), zrVec2(4, 6));
  // AddMatrix multiplies from the left, shift included.
  s.AddMatrix(zrMatrix2x2(0, 1, 1, 0));
  EXPECT_EQ(s.GetShift(), zrVec2(3, 2));
  ExpectDoubles(s.GetMatrix().GetPointer(), {0, 3, 2, 0});

  // About a centre, the centre stays put.
  c.AddShift(zrVec2(0.5, 0));
  c.AddTurn(kPi / 2, zrVec2(1, 1));
  ExpectNear(c.Transform(zrVec2(0.5, 1)), zrVec2(1, 1));
  ExpectNear(c.Transform(zrVec2(1.5, 1)), zrVec2(1, 2));
  c.AddScale(zrVec2(2, 3), zrVec2(1, 1));
  ExpectNear(c.Transform(zrVec2(0.5, 1)), zrVec2(1, 1));
  ExpectNear(c.Transform(zrVec2(1.5, 1)), zrVec2(1, 4));
}

TEST(TransformCoord2D, InverseProductAndScales) {
  zrTransformCoord2D t, a, b, flat, w;
  t.AddScale(zrVec2(2, -0.5));
  t.AddTurn(0.7, zrVec2(3, -1));
  t.AddShift(zrVec2(-4, 9));
  ExpectNear((t * t.Inverse()).Transform(zrVec2(5, -7)), zrVec2(5, -7), 1e-12);

  // other first, then this.
  a.AddScale(zrVec2(2, 2));
  b.AddShift(zrVec2(1, 0));
  EXPECT_EQ((a * b).Transform(zrVec2(0, 0)), zrVec2(2, 0));

  flat.AddScale(zrVec2(0, 1));
  EXPECT_EQ(zr_test::BadParametersText([&] { flat.Inverse(); }),
            kPrefix + "zrMatrix2x2::Inverse : det = 0 ");

  // The scales weigh the images of the unit vectors.
  w.AddScale(zrVec2(2, 3));
  w.AddTurn(kPi / 2);  // e1 -> (0, 2), e2 -> (-3, 0)
  ExpectNear(w.GetOldScale(zrVec2(10, 1)), zrVec2(2, 30));
  ExpectNear(w.GetNewScale(zrVec2(1, 1)), zrVec2(1.0 / 3, 0.5));
}

TEST(TransformCoord2D, TransformRectAndFlatForm) {
  // The bounds of the four transformed corners.
  const zrRect<zrVec2> unit(zrVec2(0, 0), zrVec2(1, 1));
  zrTransformCoord2D t, mirror, m, back;
  t.AddTurn(kPi / 4);
  ExpectNear(t.TransformRect(unit).Min(), zrVec2(-std::sqrt(0.5), 0), 1e-15);
  mirror.AddScale(zrVec2(-1, 2));
  mirror.AddShift(zrVec2(0, 1));
  EXPECT_TRUE(mirror.TransformRect(unit) == zrRect<zrVec2>(zrVec2(-1, 1), zrVec2(0, 3)));

  // The matrix by rows, then the shift.
  unsigned char buf[48];
  m.AddMatrix(zrMatrix2x2(1, 2, 3, 4));
  m.AddShift(zrVec2(7, -8));
  EXPECT_EQ(zrToMem(buf, m), 48);
  ExpectDoubles(buf, {1, 2, 3, 4, 7, -8});
  EXPECT_EQ(zrFromMem(buf, back), 48);
  EXPECT_EQ(back.Transform(zrVec2(1, -1)), zrVec2(6, -9));
}

TEST(TransformCoord2D, FitRotateShift) {
  // A turn in every quadrant is recovered; each fit replaces the one before.
  const zrSimpleArray<zrVec2> from = Points({{1, 2}, {4, -1}, {-2, 5}, {0.5, 0.25}});
  zrTransformCoord2D t;
  for (double degrees : {30.0, 150.0, 180.0, 210.0, 300.0}) {
    SCOPED_TRACE(degrees);
    zrTransformCoord2D truth;
    truth.AddTurn(degrees * kPi / 180);
    truth.AddShift(zrVec2(-3, 7));
    zrSimpleArray<zrVec2> to(from.Len());
    for (int i = 0; i < from.Len(); ++i) to[i] = truth.Transform(from[i]);
    t.MakeRotateShiftFromEquations(from, to);
    for (int i = 0; i < from.Len(); ++i) ExpectNear(t.Transform(from[i]), to[i], 1e-13);
  }

  // Noisy points: a rotation whose residual grows under any small turn or shift.
  const zrSimpleArray<zrVec2> src = Points({{0, 0}, {4, 0}, {4, 3}, {0, 3}, {2, 1}});
  const zrSimpleArray<zrVec2> dst =
      Points({{10.1, 5}, {10, 9.02}, {6.95, 9}, {7.03, 4.97}, {9, 6.99}});  // about +90 deg
  zrTransformCoord2D fit;
  fit.MakeRotateShiftFromEquations(src, dst);
  EXPECT_NEAR(fit.GetMatrix().Det(), 1, 1e-14);
  const double best = Residual(fit, src, dst);
  for (double d : {-1e-3, 1e-3}) {
    zrTransformCoord2D turned = fit, moved = fit;
    turned.AddTurn(d, dst[4]);
    moved.AddShift(zrVec2(d, -d));
    EXPECT_GT(Residual(turned, src, dst), best);
    EXPECT_GT(Residual(moved, src, dst), best);
  }

  // Different lengths are refused, leaving the transform alone.
  EXPECT_EQ(zr_test::BadParametersText([&] { fit.MakeRotateShiftFromEquations(from, src); }),
            kPrefix + "zrTransformCoord2D::MakeFromEquations: different number");
  EXPECT_EQ(Residual(fit, src, dst), best);
}

TEST(TransformCoord3D, StepsInverseAndFlatForm) {
  const V3 centre(1, 2, 3);
  zrTransformCoord3D z, onto, t, a, b, flat, back;
  z.AddShift(V3(1, 0, 0));
  z.AddTurn(kPi / 2, V3(0, 0, 5));  // about the z axis, after the shift
  ExpectNear(z.Transform(V3(0, 0, 0)), V3(0, 1, 0));
  onto.AddTurn(V3(1, 1, 0), V3(0, 0, -2));
  ExpectNear(onto.Transform(V3(3, 3, 0)), V3(0, 0, -std::sqrt(18.0)));

  t.AddScale(V3(2, 1, 0.5), centre);
  EXPECT_EQ(t.Transform(V3(2, 3, 4)), V3(3, 3, 3.5));
  t.AddTurn(0.3, -1.1, 2.0, centre);
  ExpectNear(t.Transform(centre), centre);
  t.AddShift(V3(5, 6, -7));
  ExpectNear((t * t.Inverse()).Transform(V3(1, -3, 8)), V3(1, -3, 8), 1e-12);
  a.AddScale(V3(2, 2, 2));
  b.AddShift(V3(1, 0, 0));
  EXPECT_EQ((a * b).Transform(V3(0, 0, 0)), V3(2, 0, 0));  // b first

  flat.AddScale(V3(1, 0, 1));
  const std::string want = zr_test::BadParametersText([&] { flat.GetMatrix().Inverse(); });
  EXPECT_FALSE(want.empty());
  EXPECT_EQ(zr_test::BadParametersText([&] { flat.Inverse(); }), want);

  // The matrix by rows, then the shift.
  unsigned char buf[96];
  EXPECT_EQ(zrToMem(buf, t), 96);
  const double* m = t.GetMatrix().GetPointer();
  const V3& s = t.GetShift();
  ExpectDoubles(buf, {m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], s.X(), s.Y(), s.Z()});
  EXPECT_EQ(zrFromMem(buf, back), 96);
  EXPECT_EQ(back.Transform(V3(1, -3, 8)), t.Transform(V3(1, -3, 8)));
}

zrColumnVector<double> Column(double x, double y) {
  zrColumnVector<double> v(2);
  v[0] = x;
  v[1] = y;
  return v;
}

void ExpectColumn(const zrColumnVector<double>& got, double x, double y) {
  ASSERT_EQ(got.Len(), 2);
  EXPECT_EQ(got[0], x);
  EXPECT_EQ(got[1], y);
}

TEST(TransformCoord, ReadsPointsInTheFrameOfARuler) {
  zrColumnVector<double> origin = Column(1, 1), axis = Column(0, 2);
  const zrTransformCoord along_x(origin, axis, 0), along_y(origin, axis, 1);
  origin[0] = 100;  // read once: the frames keep what they were given
  axis[1] = 100;
  ExpectColumn(along_x.GetCoord(Column(1, 3)), 1, 0);
  ExpectColumn(along_x.GetCoord(Column(0, 1)), 0, 0.5);  // left of the axis: +y of the frame
  ExpectColumn(along_y.GetCoord(Column(3, 1)), 1, 0);    // right of the axis: +x of the frame
  ExpectColumn(along_x.GetScale(Column(0, 4)), 2, 0);    // a step, no origin

  // Every vector must have two elements.
  const std::string want = kPrefix + "zrTransformCoord : must be dimention equal two.";
  const zrColumnVector<double> two = Column(0, 1), three(3);
  EXPECT_EQ(zr_test::BadParametersText([&] { zrTransformCoord(three, two, 0); }), want);
  EXPECT_EQ(zr_test::BadParametersText([&] { along_x.GetCoord(three); }), want);
}

}  // namespace
