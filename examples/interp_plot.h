// The SVG plot of zr-interp: the data points over the interpolating curve, with axes,
// ticks and labels. Plain SVG 1.1 that a browser shows as it is.
#pragma once

#include <string>
#include <vector>

namespace interp {

struct Point {
  double x;
  double y;
};

// Writes the plot to path; points are the data, curve the densely sampled spline (in
// increasing x). Returns false when the file cannot be written.
bool WriteSvgPlot(const std::string& path, const std::string& title,
                  const std::vector<Point>& points, const std::vector<Point>& curve);

}  // namespace interp
