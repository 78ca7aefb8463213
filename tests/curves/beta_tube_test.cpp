#include <gtest/gtest.h>

#include <cmath>

#include "support/test_support.h"
#include "zr/curves/curves.h"

namespace {

using V3 = zrTVec3<double>;

void ExpectNear(const V3& a, const V3& b, double tol) {
  EXPECT_NEAR(a.X(), b.X(), tol);
  EXPECT_NEAR(a.Y(), b.Y(), tol);
  EXPECT_NEAR(a.Z(), b.Z(), tol);
}

// n points of an ellipse with half axes rx, ry, counter-clockwise from (rx, 0).
zrSimpleContour2D Ellipse(int n, double rx, double ry) {
  zrSimpleContour2D c(n);
  for (int i = 0; i < n; ++i) {
    const double a = 2 * M_PI * i / n;
    c[i] = zrVec2(rx * std::cos(a), ry * std::sin(a));
  }
  return c;
}

// A bent, widening tube: row i is a ring of k points around (i, i * i / 4) at height 2i.
zrMatrix<V3> Net(int m, int k) {
  zrMatrix<V3> net(m, k);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j) {
      const double a = 2 * M_PI * j / k;
      const double r = 1 + 0.3 * i;
      net(i, j) = V3(i + r * std::cos(a), i * i / 4.0 + r * std::sin(a), 2.0 * i);
    }
  return net;
}

TEST(BetaTubeTest, PassesThroughItsNetClosedAroundOpenAlong) {
  const zrMatrix<V3> net = Net(4, 6);
  for (double skew : {1.0, 1.6}) {
    const BetaTube tube(net, skew, 0.8);
    ASSERT_EQ(tube.GetRowNumber(), 4);
    ASSERT_EQ(tube.GetColumnNumber(), 6);
    EXPECT_EQ(tube.GetControlNet().ColumnLen(), 6);
    EXPECT_EQ(tube.GetControlNet().LineLen(), 9);
    for (int i = 0; i < 4; ++i)
      for (int j = 0; j < 6; ++j) ExpectNear(tube(j / 6.0, i / 3.0), net(i, j), 1e-11);
    for (double v : {0.0, 0.3, 0.77, 1.0}) {
      EXPECT_EQ(tube(1.0, v), tube(0.0, v));
      ExpectNear(tube(1 - 1e-10, v), tube(0.0, v), 1e-7);
    }
    for (double u : {0.0, 0.45}) {
      EXPECT_EQ(tube(u, -1), tube(u, 0));
      EXPECT_EQ(tube(u, 2), tube(u, 1));
    }
  }
  // Around, a row of the tube is the contour through that row; along, at u = 0 the
  // curve through the column's points.
  const BetaTube tube(net);
  zrLineVector<V3> row;
  net.GetLine(row, 2);
  const BetaContour ring(row);
  for (double u = 0; u < 1; u += 0.09) ExpectNear(tube(u, 2 / 3.0), ring(u), 1e-11);
}

TEST(BetaTubeTest, RepeatedContourStandsAtTheMiddleHeight) {
  zrSimpleArray<zrSimpleContour2D> sections(3);
  for (int i = 0; i < 3; ++i) sections[i] = Ellipse(9, 3, 2);
  zrSimpleArray<double> heights(3);
  heights[0] = 0;
  heights[1] = 1;
  heights[2] = 2;
  BetaTube tube(1.0, 0.0);
  tube.MakeInterpolation(sections, heights);
  ASSERT_EQ(tube.GetRowNumber(), 3);
  ASSERT_EQ(tube.GetColumnNumber(), 9);
  for (double u = 0; u < 1; u += 0.05) {
    EXPECT_NEAR(tube(u, 0.5).Z(), 1.0, 1e-12) << u;
    EXPECT_NEAR(tube(u, 0.25).Z(), 0.5, 1e-12);
  }
  // The middle ring passes through the ellipse's points (the alignment may start it at
  // another of them).
  for (int j = 0; j < 9; ++j) {
    const V3 p = tube(j / 9.0, 0.5);
    EXPECT_NEAR(p.X() * p.X() / 9 + p.Y() * p.Y() / 4, 1.0, 1e-12) << j;
  }
}

TEST(BetaTubeTest, ContoursAreResampledAndAligned) {
  zrSimpleArray<double> heights(3);
  for (int i = 0; i < 3; ++i) heights[i] = 5.0 * i;
  {
    // 10, 10 and 12 points: all three resampled to 12, the caller's left alone.
    zrSimpleArray<zrSimpleContour2D> sections(3);
    sections[0] = Ellipse(10, 3, 2);
    sections[1] = Ellipse(10, 3, 2);
    sections[2] = Ellipse(12, 3, 2);
    BetaTube tube(1.0, 0.0);
    tube.MakeInterpolation(sections, heights);
    EXPECT_EQ(tube.GetRowNumber(), 3);
    EXPECT_EQ(tube.GetColumnNumber(), 12);
    EXPECT_EQ(sections[0].Len(), 10);
    // Resampled at t = j / 12 along the 10-point polygon, not at its points.
    const zrVec2 p = sections[0](1.0 / 12);
    ExpectNear(tube(1.0 / 12, 0), V3(p.X(), p.Y(), 0), 1e-12);
  }
  {
    zrSimpleArray<zrSimpleContour2D> sections(2);
    sections[0] = Ellipse(250, 3, 2);
    sections[1] = Ellipse(250, 4, 2);
    zrSimpleArray<double> two(2);
    two[0] = 0;
    two[1] = 1;
    BetaTube tube(1.0, 0.0);
    tube.MakeInterpolation(sections, two);
    EXPECT_EQ(tube.GetColumnNumber(), 200);
  }
  {
    // The second contour starts three points further round and runs clockwise: the
    // alignment restores its orientation and start, so the tube is straight.
    zrSimpleArray<zrSimpleContour2D> sections(3);
    sections[0] = Ellipse(8, 3, 2);
    sections[1] = Ellipse(8, 3, 2);
    sections[1].CycleLeftShift(3);
    sections[1].InverseOrder();
    sections[2] = Ellipse(8, 3, 2);
    BetaTube tube(1.0, 0.0);
    tube.MakeInterpolation(sections, heights);
    for (int j = 0; j < 8; ++j) {
      const zrVec2 q = sections[0][j];
      ExpectNear(tube(j / 8.0, 0.5), V3(q.X(), q.Y(), 5), 1e-12);
    }
  }
  zrSimpleArray<zrSimpleContour2D> sections(2);
  sections[0] = Ellipse(8, 3, 2);
  sections[1] = Ellipse(8, 3, 2);
  BetaTube tube(1.0, 0.0);
  EXPECT_EQ(zr_test::BadParametersText([&] { tube.MakeInterpolation(sections, heights); }),
            "Invalid parameters : BetaTube: number of heights must equal number of contours.");
}

TEST(BetaTubeTest, CopiesAndDegenerateNets) {
  BetaTube tube(Net(3, 5));
  const BetaTube copy(tube);
  BetaTube assigned(2.0, 1.0);
  assigned = tube;
  const V3 before = tube(0.3, 0.6);
  tube.Init(Net(4, 7), 1.5, 0.0);
  EXPECT_EQ(copy(0.3, 0.6), before);
  EXPECT_EQ(assigned(0.3, 0.6), before);
  EXPECT_EQ(assigned.GetSkew(), 1.0);

  const BetaTube empty(1.0, 0.0);
  EXPECT_EQ(empty.GetRowNumber(), 0);
  EXPECT_TRUE(std::isnan(empty(0.5, 0.5).Z()));
  // One row along: the open system is singular.
  EXPECT_EQ(zr_test::BadParametersText([] { BetaTube t(Net(1, 5)); }),
            std::string("Invalid parameters : ") + zr::text::kSystemNotUnique);
}

}  // namespace
