// The SVG plot of zr-interp: the data points over the interpolating curve, with axes,
// ticks, labels and a legend. Plain SVG 1.1 that a browser shows as it is.
#pragma once

#include <string>
#include <vector>

namespace interp {

struct Point {
  double x;
  double y;
};

// The cubic on [a.x, b.x] through a and b with slopes da at a and db at b (the Hermite
// form). Every piece of a cubic spline is one; so is a straight line (both slopes the
// secant's).
struct Cubic {
  Point a, b;
  double da, db;

  // y, y' and y'' at x in [a.x, b.x].
  double Value(double x) const;
  double Slope(double x) const;
  double Curvature(double x) const;
  // The abscissae strictly inside the piece where y' = 0 (none, one or two, increasing).
  std::vector<double> Extrema() const;
};

struct Plot {
  std::string title;
  std::string xlabel = "x";
  std::string ylabel = "y";
  std::string curve_name;  // the legend's name for the curve
  // The curve, pieces in increasing x, each starting where the one before ends; their end
  // points are the data points.
  std::vector<Cubic> pieces;
  std::vector<Point> marks;  // extra points to mark (zr-interp's --at rows)
};

// The plot as SVG text. The curve is one path through every piece: a piece at least a
// pixel wide is drawn exactly, as a cubic Bezier; narrower ones are merged per pixel
// column into the column's extreme values, so the size is bounded whatever the number of
// points. The markers shrink as points get dense and keep one per small cell of the plot.
// A comment near the top gives the mapping from data to SVG coordinates. Empty when the
// ranges cannot be drawn in doubles (beyond their range, or narrower than their rounding).
std::string SvgPlot(const Plot& plot);

}  // namespace interp
