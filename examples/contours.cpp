// Contours: a closed plane polygon's area and orientation, the point test, and clipping
// to a rectangle, drawn as an SVG file (contours.svg, or the path given as argument).

#include <cmath>
#include <cstdio>

#include "zr/zr.h"

namespace {

// A five-pointed star centred at (cx, cy), clockwise with the y axis up.
zrSimpleContour2D Star(double cx, double cy, double outer, double inner) {
  zrSimpleContour2D star(10);
  for (int i = 0; i < 10; ++i) {
    const double angle = 1.5707963267948966 - i * 0.6283185307179586;
    const double r = i % 2 ? inner : outer;
    star[i] = zrVec2(cx + r * std::cos(angle), cy + r * std::sin(angle));
  }
  return star;
}

void WritePolygon(std::FILE* f, const zrSimpleContour2D& c, const char* style, double height) {
  std::fprintf(f, "<polygon %s points=\"", style);
  for (int i = 0; i < c.Len(); ++i)  // SVG's y axis points down
    std::fprintf(f, "%s%.2f,%.2f", i ? " " : "", c[i].X(), height - c[i].Y());
  std::fprintf(f, "\"/>\n");
}

}  // namespace

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : "contours.svg";
  zrSimpleContour2D star = Star(100, 100, 90, 36);

  std::printf("star: %d points, area %.4f, perimeter %.4f\n", star.Len(), star.GetS(),
              star.GetLengthOfCurve());
  std::printf("orientation %d (0 counter-clockwise, 1 clockwise)\n", star.GetOrient());
  star.SetOrient(0);
  std::printf("after SetOrient(0): orientation %d, first point (%.2f, %.2f)\n", star.GetOrient(),
              star[0].X(), star[0].Y());

  const zrVec2 probes[] = {zrVec2(100, 100), zrVec2(100, 190), zrVec2(10, 10)};
  const char* where[] = {"on the contour", "inside", "outside"};  // by result 0, 1, -1
  // the centre, the top vertex, a corner of the picture
  for (const zrVec2& p : probes) {
    const int in = star.IsInsidePoint(p);
    std::printf("point (%g, %g) is %s\n", p.X(), p.Y(), where[in == -1 ? 2 : in]);
  }

  // Clip to the rectangle [0, 159] x [0, 139]: the star's right and top points are cut off.
  zrArray<int> range(2);
  range[0] = 160;
  range[1] = 140;
  const zrSimpleContour2D clipped = star.zrPolyLineToRange(range);
  std::printf("clipped to %d x %d: %d points, area %.4f\n", range[0], range[1], clipped.Len(),
              clipped.GetS());

  std::FILE* f = std::fopen(path, "w");
  if (!f) {
    std::perror(path);
    return 1;
  }
  const double h = 200;
  std::fprintf(f,
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"200\" height=\"200\" "
               "viewBox=\"0 0 200 200\">\n<rect width=\"100%%\" height=\"100%%\" "
               "fill=\"white\"/>\n");
  std::fprintf(f,
               "<rect x=\"0\" y=\"%g\" width=\"%d\" height=\"%d\" fill=\"none\" "
               "stroke=\"gray\" stroke-dasharray=\"4 3\"/>\n",
               h - (range[1] - 1), range[0] - 1, range[1] - 1);
  WritePolygon(f, star, "fill=\"none\" stroke=\"#999\" stroke-width=\"1\"", h);
  WritePolygon(f, clipped, "fill=\"#8fb3e8\" fill-opacity=\"0.7\" stroke=\"#1f5fbf\"", h);
  std::fprintf(f, "</svg>\n");
  if (std::fclose(f) != 0) {
    std::perror(path);
    return 1;
  }
  std::printf("wrote %s\n", path);
  return clipped.Len() >= 3 && clipped.GetS() < star.GetS() ? 0 : 1;
}
