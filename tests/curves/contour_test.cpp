#include <gtest/gtest.h>

#include <initializer_list>
#include <random>
#include <vector>

#include "support/levels.h"
#include "support/points.h"
#include "zr/zr.h"

namespace zr::detail {
// The contour's private helpers, for the tests.
struct ContourProbe {
  using C = zrSimpleContour2D;
  static zrVec2 Pt(const C& c, double d, int i) { return c.GetPt(d, i); }
  static zrVec2 PtNdiv2(const C& c, double d, int i) { return c.GetPtNdiv2(d, i); }
  static double TriS(const C& c, const C& o) { return c.GetTriS(o); }
  static double PartTriS(const C& c, const C& o, const zrVec2& x, int k) {
    return c.GetPartTriS(o, x, k);
  }
};
}  // namespace zr::detail

namespace {

using Probe = zr::detail::ContourProbe;
using zr_test::BadParametersText;
using Line = zrGeom::StraightLine2D;

zrSimpleContour2D Make(std::initializer_list<zrVec2> points) {
  return zr_test::Of<zrSimpleContour2D>(points);
}

zrSimpleContour2D Square() { return Make({{0, 0}, {1, 0}, {1, 1}, {0, 1}}); }

void ExpectPoints(const zrSimpleContour2D& c, std::initializer_list<zrVec2> points) {
  ASSERT_EQ(c.Len(), static_cast<int>(points.size()));
  int i = 0;
  for (const zrVec2& p : points) EXPECT_LT((c[i++] - p).Norm(), 1e-12) << "point " << i - 1;
}

TEST(SimpleContour2D, MeasuresOrientationParameterAndArcDistance) {
  zrSimpleContour2D sq = Square(), rev = Square();
  rev.InverseOrder();
  EXPECT_TRUE(sq.GetOrient() == 0 && rev.GetOrient() == 1);
  // Zero area counts as clockwise; the closing edge is part of the perimeter.
  const zrSimpleContour2D line = Make({{0, 0}, {1, 0}, {2, 0}});
  EXPECT_TRUE(line.GetOrient() == 1 && line.GetLengthOfCurve() == 4.0);

  // The same share of the parameter per edge, whatever its length; outside [0, 1] it wraps.
  EXPECT_TRUE(sq(0.625) == zrVec2(0.5, 1) && sq(-0.125) == sq(0.875) && sq(1.375) == sq(0.375));
  EXPECT_TRUE(std::isnan(zrSimpleContour2D()(0.5).X()) && std::isnan(sq(INFINITY).Y()));

  // Points at an arc distance along the outline.
  EXPECT_EQ(Probe::Pt(sq, 1.0, 0), zrVec2(1, 0));    // an exact vertex ends the walk on its edge
  EXPECT_EQ(Probe::Pt(sq, 4.5, 0), zrVec2(0.5, 0));  // wraps around
  EXPECT_EQ(Probe::Pt(sq, 0.5, 5), zrVec2(1, 0.5));  // the start index is taken modulo n
  // Backward, the final partial step points away from the next point: beyond the
  // current one.
  EXPECT_EQ(Probe::Pt(sq, -0.5, 0), zrVec2(0, -0.5));
  EXPECT_EQ(Probe::Pt(sq, -1.5, 0), zrVec2(-0.5, 1));
  // A contour of zero perimeter cannot be walked: point i.
  const zrSimpleContour2D dot = Make({{2, 3}, {2, 3}, {2, 3}});
  EXPECT_TRUE(Probe::Pt(dot, 1.0, 1) == zrVec2(2, 3) &&
              Probe::PtNdiv2(dot, 1.0, 0) == zrVec2(2, 3));
  // Capped at half the edge.
  EXPECT_EQ(Probe::PtNdiv2(sq, 7.0, 1), zrVec2(1, 0.5));
  EXPECT_EQ(Probe::PtNdiv2(sq, -0.25, 0), zrVec2(0, -0.25));
}

TEST(SimpleContour2D, IsIntersectAndIsInsidePoint) {
  EXPECT_EQ(Square().IsIntersect(), 0);
  // The edges (0, 0)-(4, 0) and (4, 4)-(2, -2) cross.
  EXPECT_EQ(Make({{0, 0}, {4, 0}, {4, 4}, {2, -2}}).IsIntersect(), 1);
  // The vertex (2, 0) touches the edge (0, 0)-(4, 0): the edge starting there has its C
  // on the line AB (c2 = 0), which counts.
  EXPECT_EQ(Make({{0, 0}, {4, 0}, {4, 4}, {2, 0}, {0, 4}}).IsIntersect(), 1);
  EXPECT_EQ(Make({{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}}).IsIntersect(), 0);  // concave

  // On a horizontal edge, level with one and beside it; the ray through the vertex (2, 1)
  // of the triangle counts only the edge whose lower end lies there.
  const zrSimpleContour2D sq = Square(), tri = Make({{0, 0}, {2, 1}, {0, 2}}),
                          high = Make({{0, 1}, {4, 1}, {0, 5}});  // slant crossed off its ends
  const struct {
    const zrSimpleContour2D& c;
    zrVec2 p;
    int inside;
  } cases[] = {{sq, {0.5, 0.5}, 1}, {sq, {1, 0.5}, 0},   {sq, {0.5, 1}, 0}, {sq, {2, 1}, -1},
               {tri, {1, 1}, 1},    {tri, {3, 1}, -1},   {tri, {2, 1}, 0},  {tri, {1, 0.5}, 0},
               {high, {1.9, 3}, 1}, {high, {2.1, 3}, -1}};
  for (const auto& c : cases)
    EXPECT_EQ(c.c.IsInsidePoint(c.p), c.inside) << c.p.X() << " " << c.p.Y();
}

TEST(SimpleContour2D, MakeCoherentRotatesReorientsAndMeasuresTheBand) {
  // The same points, clockwise and starting elsewhere.
  zrSimpleContour2D c = Make({{2, 0}, {0, 0}, {0, 1}, {2, 1}});
  zrArray<zrVec2> view = c.Left(4);  // shares c's block
  c.MakeCoherent(Make({{0, 0}, {2, 0}, {2, 1}, {0, 1}}));
  ExpectPoints(c, {{0, 0}, {2, 0}, {2, 1}, {0, 1}});
  EXPECT_EQ(view[1], zrVec2(2, 0));
  // The target's point 2 lies farthest from this contour, nearest to its point 0: a
  // right rotation by 2 carries point 0 to index 2.
  zrSimpleContour2D sq = Make({{0, 1}, {0, 0}, {1, 0}, {1, 1}});
  sq.MakeCoherent(Make({{1, 0}, {1, 1}, {0, 5}, {0, 0}}));
  ExpectPoints(sq, {{1, 0}, {1, 1}, {0, 1}, {0, 0}});

  const std::string text =
      "Invalid parameters : zrSimpleContour2D::MakeCoherent: both length Must be equal.";
  EXPECT_EQ(BadParametersText([&] { c.MakeCoherent(zrSimpleContour2D(Square().Left(3))); }), text);
  EXPECT_EQ(BadParametersText([&] { c.MakeCoherentS(zrSimpleContour2D()); }), text);
  zrSimpleContour2D empty;  // nothing to align, nothing read
  empty.MakeCoherent(empty);
  empty.MakeCoherentS(empty);

  // MakeCoherentS restores the starting point of any rotated copy.
  zrSimpleContour2D target = Make({{0, 0}, {3, 0}, {4, 2}, {3, 4}, {0, 4}, {-1, 2}});
  for (int r = 0; r < 6; ++r) {
    zrSimpleContour2D copy = target;
    copy.CycleLeftShift(r);
    if (r % 2 == 1) copy.InverseOrder();  // and clockwise
    copy.MakeCoherentS(target);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(copy[i], target[i]) << r;
  }
  // The band measure. Identical squares: every triangle has the sides 10, sqrt(101),
  // sqrt(101) (the lift 100 applies to the contour's own edges too), area 5 * sqrt(76).
  sq = Square();
  EXPECT_NEAR(Probe::TriS(sq, sq), 20.0 * std::sqrt(76.0), 1e-11);
  // Around a point with the lift 1: three triangles with sides 1, sqrt(2), sqrt(2).
  EXPECT_NEAR(Probe::PartTriS(sq, sq, sq[2], 2), 0.75 * std::sqrt(1.75), 1e-14);
  EXPECT_EQ(Probe::PartTriS(sq, sq, sq[2], 6), Probe::PartTriS(sq, sq, sq[2], 2));
}

// Larger contours take the k-d tree and the pruned rotations, which must find the plain
// loops' points and rotations: random points, turned and reflected copies, duplicated
// points, equal distances (the same points reflected), equal band measures of rotations
// that differ (a periodic contour), a NaN point, and a large turned copy.
TEST(SimpleContour2D, FastAlignmentsAgreeWithThePlainLoops) {
  std::mt19937 gen(3);
  std::uniform_real_distribution<double> u(-300, 300);
  for (int n : {40, 97, 500})
    for (int kind = n == 500 ? 2 : 0; kind < (n == 500 ? 3 : 6); ++kind) {
      zrSimpleContour2D a(n), b(n);
      for (int i = 0; i < n; ++i) {
        const double t = 2 * M_PI * i / n, r = 200 + 40 * std::sin(5 * t), e = M_PI * i / 4;
        // An octagon run round n / 8 times; one copy of a vertex has x = -0.0: equal terms.
        const zrVec2 octagon = zrVec2(std::round(3 * std::cos(e)), std::round(3 * std::sin(e)));
        a[i] = kind == 3 && i % 2       ? a[i - 1]
               : kind == 1              ? zrVec2(std::cos(t), std::sin(t))
               : kind == 4 && i >= 8    ? zrVec2(i == 10 ? -0.0 : a[i - 8].X(), a[i - 8].Y())
               : kind == 4              ? octagon * 33.0
               : kind == 2 || kind == 5 ? zrVec2(r * std::cos(t), r * std::sin(t))
                                        : zrVec2(u(gen), u(gen));
      }
      for (int i = 0; i < n; ++i) {
        const zrVec2 p = a[(i + n / 3) % n];
        b[i] = kind == 1   ? a[(2 * n - i + 5) % n]
               : kind == 4 ? a[i ? (i + 2) % n : 7]
                           : zrVec2(p.X() - 0.03 * p.Y(), 0.03 * p.X() + p.Y()) * 1.05;
      }
      if (kind == 5) a[5] = b[0] = zrVec2(NAN, 0);
      zr_test::ExpectLevelsAgree([&] {
        zrSimpleContour2D s = a, c = a;
        int k = -1;
        std::vector<double> out{static_cast<double>(a.GetIndexOfMaxDistance(k, b)), 1.0 * k};
        s.MakeCoherentS(b);
        c.MakeCoherent(b);
        for (int i = 0; i < n; ++i) out.insert(out.end(), {s[i].X(), s[i].Y(), c[i].X(), c[i].Y()});
        return out;
      });
    }
}

TEST(SimpleContour2D, CutClipAndArraysOfContours) {
  zrSimpleContour2D sq = Square();
  // Vertices (1, 0) and (0, 1) lie on the cutting diagonal: the first is left toward the
  // kept side after arriving from the other, the second reached from the kept side, so
  // each comes out twice.
  ExpectPoints(sq.CutByStraightLine(Line({1, 0}, {0, 1})),
               {{1, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 1}});
  // The right of the direction +x is -y: the half with y <= 0.5 stays, the closing edge's
  // crossing last.
  ExpectPoints(sq.CutByStraightLine(Line({0, 0.5}, {1, 0.5})),
               {{0, 0}, {1, 0}, {1, 0.5}, {0, 0.5}});

  zrSimpleContour2D big = Make({{-1, -1}, {5, -1}, {5, 5}, {-1, 5}});
  zrArray<int> range(2, 3);
  ExpectPoints(big.zrPolyLineToRange(range), {{2, 2}, {0, 2}, {0, 0}, {2, 0}});  // [0, 2]^2

  const std::string few = "Invalid parameters : Contour2D must have larger two of point.";
  zrSimpleContour2D two(Square().Left(2));
  EXPECT_EQ(BadParametersText([&] { two.CutByStraightLine(Line({0, 0}, {1, 0})); }), few);
  EXPECT_EQ(BadParametersText([&] { big.zrPolyLineToRange(zrArray<int>(3, 1)); }),
            "Invalid parameters : Dimension must equal 2 in GetLine.");
  // Entirely outside: the first cut leaves nothing for the second.
  zrSimpleContour2D away = Make({{10, -5}, {11, -5}, {11, -4}});
  EXPECT_EQ(BadParametersText([&] { away.zrPolyLineToRange(range); }), few);

  // Arrays of contours move them without writing shared points.
  auto contours = zr_test::Of<zrSimpleArray<zrSimpleContour2D>>(
      {Square(), Make({{5, 5}, {6, 5}, {6, 6}, {5, 6}})});
  const zrArray<zrVec2> view = contours[0].Left(4);  // shares contour 0's block
  contours.InverseOrder();
  EXPECT_TRUE(view[2] == zrVec2(1, 1) && view.GetPointer() == contours[1].GetPointer());
}

}  // namespace
