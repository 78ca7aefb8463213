#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "support/points.h"
#include "support/test_support.h"
#include "zr/geometry/geometry.h"

namespace {

using zr_test::ExpectNear;
using zr_test::Of;
using Points = zrSimpleArray<zrVec2>;
using V3 = zrTVec3<double>;
const double kPi = std::acos(-1.0);
const std::string kPrefix = "Invalid parameters : ";

// What differs between the transforms of the plane and of space. Vec drops z in the plane.
struct Plane {
  using T = zrTransformCoord2D;
  using M = zrMatrix2x2;
  static zrVec2 Vec(double x, double y, double) { return zrVec2(x, y); }
  static void QuarterTurn(T& t, const zrVec2& centre) { t.AddTurn(kPi / 2, centre); }
  static constexpr double kSwapXY[] = {0, 1, 1, 0};
  // Shift (1, 1), scale (2, 3), kSwapXY: the matrix by rows, then the shift.
  static constexpr double kFlat[] = {0, 3, 2, 0, 3, 2};
  static constexpr const char* kSingular = "zrMatrix2x2::Inverse : det = 0 ";
};
struct Space {
  using T = zrTransformCoord3D;
  using M = zrTMatrix3x3<double>;
  static V3 Vec(double x, double y, double z) { return V3(x, y, z); }
  static void QuarterTurn(T& t, const V3& centre) { t.AddTurn(0, 0, kPi / 2, centre); }  // about z
  static constexpr double kSwapXY[] = {0, 1, 0, 1, 0, 0, 0, 0, 1};
  static constexpr double kFlat[] = {0, 3, 0, 2, 0, 0, 0, 0, 4, 3, 2, 4};
  static constexpr const char* kSingular = zr::text::kSystemNotUnique;
};

template <class P>
class Transform : public ::testing::Test {};
using Dimensions = ::testing::Types<Plane, Space>;
TYPED_TEST_SUITE(Transform, Dimensions);

TYPED_TEST(Transform, StepsComposeAfterThePresentTransformAndFlatForm) {
  using P = TypeParam;
  typename P::T s, back;
  s.AddShift(P::Vec(1, 1, 1));
  s.AddScale(P::Vec(2, 3, 4));  // scales the shift too
  EXPECT_EQ(s.Transform(P::Vec(1, 1, 1)), P::Vec(4, 6, 8));
  typename P::M swap;
  std::memcpy(swap.GetPointer(), P::kSwapXY, sizeof P::kSwapXY);
  s.AddMatrix(swap);  // from the left, shift included
  EXPECT_EQ(s.TransformVec(P::Vec(1, 0, 0)), P::Vec(0, 2, 0));

  // The matrix by rows, then the shift, raw.
  unsigned char buf[sizeof P::kFlat + 1];
  const int size = sizeof P::kFlat;
  EXPECT_TRUE(zrMemSize(s) == size && zrToMem(buf + 1, s) == size &&
              zrFromMem(buf + 1, back) == size);
  EXPECT_EQ(std::memcmp(buf + 1, P::kFlat, size), 0);
  EXPECT_EQ(back.Transform(P::Vec(1, -1, 2)), s.Transform(P::Vec(1, -1, 2)));
}

// Scale (2, 3, 4), then a quarter turn about z: e1 goes to (0, 2, 0), e2 to (-3, 0, 0), e3
// to (0, 0, 4). The scales weigh the lengths of these images.
TYPED_TEST(Transform, TurnScalesInverseAndProduct) {
  using P = TypeParam;
  typename P::T t, c, a, b, flat;
  t.AddScale(P::Vec(2, 3, 4));
  P::QuarterTurn(t, P::Vec(0, 0, 0));
  t.AddShift(P::Vec(-4, 9, 1));
  ExpectNear(t.Transform(P::Vec(1, 0, 0)), P::Vec(-4, 11, 1));  // counter-clockwise
  ExpectNear(t.GetOldScale(P::Vec(10, 1, 100)), P::Vec(2, 30, 400), 1e-13);
  ExpectNear((t * t.Inverse()).Transform(P::Vec(5, -7, 2)), P::Vec(5, -7, 2), 1e-12);
  a.AddScale(P::Vec(2, 2, 2));
  b.AddShift(P::Vec(1, 0, 0));
  EXPECT_EQ((a * b).Transform(P::Vec(0, 0, 0)), P::Vec(2, 0, 0));  // b first
  flat.AddScale(P::Vec(1, 0, 1));
  EXPECT_EQ(zr_test::BadParametersText([&] { flat.Inverse(); }), kPrefix + P::kSingular);

  // Scaled and turned about a centre, the centre stays put: (3, 4, 1) turns to (-2, 3, 1).
  c.AddShift(P::Vec(0.5, 0, 0));
  c.AddScale(P::Vec(2, 3, 4), P::Vec(1, 1, 1));
  P::QuarterTurn(c, P::Vec(1, 1, 1));
  ExpectNear(c.Transform(P::Vec(0.5, 1, 1)), P::Vec(1, 1, 1));
  ExpectNear(c.Transform(P::Vec(1.5, 2, 1)), P::Vec(-2, 3, 1));
}

double Residual(const zrTransformCoord2D& t, const Points& from, const Points& to) {
  double sum = 0;
  for (int i = 0; i < from.Len(); ++i) sum += (t.Transform(from[i]) - to[i]).ScalarMul();
  return sum;
}

TEST(TransformCoord2D, RectAndFit) {
  zrTransformCoord2D r;
  // The bounds of the four transformed corners: an eighth turn puts each bound on its own.
  const zrRect<zrVec2> unit(zrVec2(0, 0), zrVec2(1, 1));
  r.AddTurn(kPi / 4);
  ExpectNear(r.TransformRect(unit).Min(), zrVec2(-std::sqrt(0.5), 0), 1e-15);
  ExpectNear(r.TransformRect(unit).Max(), zrVec2(std::sqrt(0.5), std::sqrt(2.0)), 1e-15);

  // Noisy points turned into every quadrant: the fit comes no further from them than the
  // truth does (0.0148). Each fit replaces the one before.
  const Points from = Of<Points>({{0, 0}, {4, 0}, {4, 3}, {0, 3}, {2, 1}});
  const Points noise = Of<Points>({{0.1, 0}, {0, 0.02}, {-0.05, 0}, {0.03, -0.03}, {0, -0.01}});
  Points to(from.Len());
  zrTransformCoord2D fit;
  for (double degrees : {30.0, 90.0, 150.0, 180.0, 210.0, 300.0}) {
    zrTransformCoord2D truth;
    truth.AddTurn(degrees * kPi / 180);
    truth.AddShift(zrVec2(-3, 7));
    for (int i = 0; i < from.Len(); ++i) to[i] = truth.Transform(from[i]) + noise[i];
    fit.MakeRotateShiftFromEquations(from, to);
    EXPECT_LT(Residual(fit, from, to), 0.0148 + 1e-12) << degrees;
  }

  // Different lengths are refused.
  EXPECT_EQ(zr_test::BadParametersText([&] { fit.MakeRotateShiftFromEquations(from, to.Left(4)); }),
            kPrefix + "zrTransformCoord2D::MakeFromEquations: different number");
}

TEST(TransformCoord, ReadsPointsInTheFrameOfARuler) {
  using Col = zrColumnVector<double>;
  const Col origin = Of<Col>({1, 1}), axis = Of<Col>({0, 2});
  const zrTransformCoord along_x(origin, axis, 0), along_y(origin, axis, 1);
  const auto xy = [](const Col& v) { return v.Len() == 2 ? zrVec2(v[0], v[1]) : zrVec2(9, 9); };
  EXPECT_EQ(xy(along_x.GetCoord(Of<Col>({0, 3}))), zrVec2(1, 0.5));  // left of the axis: +y
  EXPECT_EQ(xy(along_y.GetCoord(Of<Col>({3, 2}))), zrVec2(1, 0.5));  // right of the axis: +x
  EXPECT_EQ(xy(along_x.GetScale(Of<Col>({0, 4}))), zrVec2(2, 0));    // a step, no origin

  // Every vector must have two elements.
  EXPECT_EQ(zr_test::BadParametersText([&] { along_x.GetCoord(Col(3)); }),
            kPrefix + "zrTransformCoord : must be dimention equal two.");
}

}  // namespace
