#include <gtest/gtest.h>

#include "support/points.h"
#include "zr/curves/curves.h"

namespace {

using V3 = zrTVec3<double>;
using Sections = zrSimpleArray<zrSimpleContour2D>;
using Heights = zrSimpleArray<double>;
using zr_test::ExpectNear;
using zr_test::Of;

constexpr auto Ellipse = &zr_test::Ring<zrSimpleContour2D>;

// A bent, widening tube: row i is a ring of k points of radius 1 + 0.3 i around
// (i, i * i / 4) at height 2i.
zrMatrix<V3> Net(int m, int k) {
  zrMatrix<V3> net(m, k);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j) {
      const double a = 2 * M_PI * j / k, r = 1 + 0.3 * i;
      net(i, j) = V3(i + r * std::cos(a), i * i / 4.0 + r * std::sin(a), 2.0 * i);
    }
  return net;
}

TEST(BetaTubeTest, PassesThroughItsNetClosedAroundOpenAlong) {
  const zrMatrix<V3> net = Net(4, 6);
  for (double skew : {1.0, 1.6}) {
    const BetaTube tube(net, skew, 0.8);
    ASSERT_TRUE(tube.GetRowNumber() == 4 && tube.GetColumnNumber() == 6);
    for (int i = 0; i < 4; ++i)
      for (int j = 0; j < 6; ++j) ExpectNear(tube(j / 6.0, i / 3.0), net(i, j), 1e-11);
    for (double v : {0.0, 0.3, 0.77, 1.0}) {
      EXPECT_EQ(tube(1.0, v), tube(0.0, v));
      ExpectNear(tube(1 - 1e-10, v), tube(0.0, v), 1e-7);
    }
    for (double u : {0.0, 0.45}) EXPECT_TRUE(tube(u, -1) == tube(u, 0) && tube(u, 2) == tube(u, 1));
  }
  // Around, a row of the tube is the contour through that row.
  const BetaTube tube(net);
  zrLineVector<V3> row;
  net.GetLine(row, 2);
  const BetaContour ring(row);
  for (double u = 0; u < 1; u += 0.09) ExpectNear(tube(u, 2 / 3.0), ring(u), 1e-11);
}

TEST(BetaTubeTest, ContoursAreResampledAndAlignedAndCopiesOwnTheirNets) {
  const auto heights = Of<Heights>({0, 5, 10});
  BetaTube tube(1.0, 0.0);
  // 10, 10 and 12 points: all three resampled to 12, at t = j / 12 along the 10-point
  // polygon, not at its points.
  const Sections mixed = Of<Sections>({Ellipse(10, 3, 2), Ellipse(10, 3, 2), Ellipse(12, 3, 2)});
  tube.MakeInterpolation(mixed, heights);
  EXPECT_TRUE(tube.GetRowNumber() == 3 && tube.GetColumnNumber() == 12);
  const zrVec2 p = mixed[0](1.0 / 12);
  ExpectNear(tube(1.0 / 12, 0), V3(p.X(), p.Y(), 0), 1e-12);
  tube.MakeInterpolation(Of<Sections>({Ellipse(250, 3, 2), Ellipse(250, 4, 2)}),
                         Of<Heights>({0, 1}));
  EXPECT_EQ(tube.GetColumnNumber(), 200);

  // The second contour starts three points further round and runs clockwise: the
  // alignment restores its orientation and start, so the tube is straight, its height
  // linear in v.
  Sections same = Of<Sections>({Ellipse(8, 3, 2), Ellipse(8, 3, 2), Ellipse(8, 3, 2)});
  same[1].CycleLeftShift(3);
  same[1].InverseOrder();
  tube.MakeInterpolation(same, heights);
  for (int j = 0; j < 8; ++j) {
    ExpectNear(tube(j / 8.0, 0.5), V3(same[0][j].X(), same[0][j].Y(), 5), 1e-12);
    EXPECT_NEAR(tube(j / 8.0 + 0.03, 0.25).Z(), 2.5, 1e-12);
  }
  EXPECT_EQ(zr_test::BadParametersText([&] { tube.MakeInterpolation(mixed, Of<Heights>({0})); }),
            "Invalid parameters : BetaTube: number of heights must equal number of contours.");

  // Copies own their nets.
  tube.Init(Net(3, 5), 1.0, 0.0);
  const BetaTube copy(tube);
  BetaTube assigned(2.0, 1.0);
  assigned = tube;
  const V3 before = tube(0.3, 0.6);
  tube.Init(Net(4, 7), 1.5, 0.0);
  EXPECT_TRUE(copy(0.3, 0.6) == before && assigned(0.3, 0.6) == before &&
              assigned.GetSkew() == 1.0);
  const BetaTube empty(1.0, 0.0);
  EXPECT_TRUE(empty.GetRowNumber() == 0 && std::isnan(empty(0.5, 0.5).Z()));
  // One row along: the open system is singular.
  EXPECT_EQ(zr_test::BadParametersText([] { BetaTube t(Net(1, 5)); }),
            std::string("Invalid parameters : ") + zr::text::kSystemNotUnique);
}

}  // namespace
