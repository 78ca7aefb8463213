#include "interp_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace interp {
namespace {

constexpr double kWidth = 720, kHeight = 450;
constexpr double kLeft = 70, kRight = 20, kTop = 40, kBottom = 50;

// An axis over [lo, hi] with ticks at the multiples of step inside it: a step of 1, 2 or 5
// times a power of ten giving about five intervals. first is the lowest tick, count the
// number of ticks.
struct Axis {
  double lo, hi, step, first;
  int count;
};

Axis NiceAxis(double lo, double hi) {
  if (!(hi > lo)) {  // a constant: open one unit around it
    lo -= 1;
    hi += 1;
  }
  const double raw = (hi - lo) / 5;
  const double mag = std::pow(10.0, std::floor(std::log10(raw)));
  const double f = raw / mag;
  const double step = (f <= 1 ? 1 : f <= 2 ? 2 : f <= 5 ? 5 : 10) * mag;
  const double first = std::ceil(lo / step - 1e-9) * step;
  const int count = static_cast<int>(std::floor((hi - first) / step + 1e-9)) + 1;
  return {lo, hi, step, first, count};
}

std::string Escape(const std::string& s) {
  std::string out;
  for (char c : s) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

// A tick label: the value rounded to the step, so that 0.30000000000000004 reads 0.3
// and a value within rounding of zero reads 0.
std::string Label(double v, double step) {
  if (std::fabs(v) < step * 1e-9) v = 0;
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6g", v);
  return buf;
}

}  // namespace

bool WriteSvgPlot(const std::string& path, const std::string& title,
                  const std::vector<Point>& points, const std::vector<Point>& curve) {
  double xlo = points.front().x, xhi = points.back().x;
  double ylo = points.front().y, yhi = ylo;
  for (const auto* set : {&points, &curve}) {
    for (const Point& p : *set) {
      ylo = std::min(ylo, p.y);
      yhi = std::max(yhi, p.y);
    }
  }
  const double pad = (yhi - ylo) * 0.05;  // the curve clear of the frame
  const Axis ax = NiceAxis(xlo, xhi), ay = NiceAxis(ylo - pad, yhi + pad);
  const double pw = kWidth - kLeft - kRight, ph = kHeight - kTop - kBottom;
  auto sx = [&](double x) { return kLeft + (x - ax.lo) / (ax.hi - ax.lo) * pw; };
  auto sy = [&](double y) { return kTop + (ay.hi - y) / (ay.hi - ay.lo) * ph; };

  std::FILE* f = std::fopen(path.c_str(), "w");
  if (!f) return false;
  std::fprintf(f,
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%g\" height=\"%g\" "
               "viewBox=\"0 0 %g %g\" font-family=\"sans-serif\" font-size=\"12\">\n",
               kWidth, kHeight, kWidth, kHeight);
  std::fprintf(f, "<title>%s</title>\n", Escape(title).c_str());
  std::fprintf(f, "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n");
  std::fprintf(f, "<text x=\"%g\" y=\"24\" text-anchor=\"middle\" font-size=\"15\">%s</text>\n",
               kWidth / 2, Escape(title).c_str());

  // Grid lines, tick marks and tick labels, the frame's left and bottom sides as axes.
  std::fprintf(f, "<g stroke=\"#e0e0e0\" stroke-width=\"1\">\n");
  const int nx = ax.count - 1, ny = ay.count - 1;
  for (int i = 0; i <= nx; ++i) {
    const double x = sx(ax.first + i * ax.step);
    std::fprintf(f, "<line x1=\"%.2f\" y1=\"%g\" x2=\"%.2f\" y2=\"%g\"/>\n", x, kTop, x, kTop + ph);
  }
  for (int i = 0; i <= ny; ++i) {
    const double y = sy(ay.first + i * ay.step);
    std::fprintf(f, "<line x1=\"%g\" y1=\"%.2f\" x2=\"%g\" y2=\"%.2f\"/>\n", kLeft, y, kLeft + pw,
                 y);
  }
  std::fprintf(f, "</g>\n<g stroke=\"black\" stroke-width=\"1\">\n");
  std::fprintf(f, "<line x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\"/>\n", kLeft, kTop + ph, kLeft + pw,
               kTop + ph);
  std::fprintf(f, "<line x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\"/>\n", kLeft, kTop, kLeft,
               kTop + ph);
  for (int i = 0; i <= nx; ++i) {
    const double x = sx(ax.first + i * ax.step);
    std::fprintf(f, "<line x1=\"%.2f\" y1=\"%g\" x2=\"%.2f\" y2=\"%g\"/>\n", x, kTop + ph, x,
                 kTop + ph + 5);
  }
  for (int i = 0; i <= ny; ++i) {
    const double y = sy(ay.first + i * ay.step);
    std::fprintf(f, "<line x1=\"%g\" y1=\"%.2f\" x2=\"%g\" y2=\"%.2f\"/>\n", kLeft - 5, y, kLeft,
                 y);
  }
  std::fprintf(f, "</g>\n<g fill=\"black\">\n");
  for (int i = 0; i <= nx; ++i) {
    const double v = ax.first + i * ax.step;
    std::fprintf(f, "<text x=\"%.2f\" y=\"%g\" text-anchor=\"middle\">%s</text>\n", sx(v),
                 kTop + ph + 19, Label(v, ax.step).c_str());
  }
  for (int i = 0; i <= ny; ++i) {
    const double v = ay.first + i * ay.step;
    std::fprintf(f, "<text x=\"%g\" y=\"%.2f\" text-anchor=\"end\">%s</text>\n", kLeft - 8,
                 sy(v) + 4, Label(v, ay.step).c_str());
  }
  std::fprintf(f, "<text x=\"%g\" y=\"%g\" text-anchor=\"middle\">x</text>\n", kLeft + pw / 2,
               kHeight - 10);
  std::fprintf(f,
               "<text x=\"18\" y=\"%g\" text-anchor=\"middle\" "
               "transform=\"rotate(-90 18 %g)\">y</text>\n</g>\n",
               kTop + ph / 2, kTop + ph / 2);

  std::fprintf(f, "<polyline fill=\"none\" stroke=\"#1f5fbf\" stroke-width=\"2\" points=\"");
  for (std::size_t i = 0; i < curve.size(); ++i)
    std::fprintf(f, "%s%.2f,%.2f", i ? " " : "", sx(curve[i].x), sy(curve[i].y));
  std::fprintf(f, "\"/>\n<g fill=\"#d62728\" stroke=\"white\" stroke-width=\"1\">\n");
  for (const Point& p : points)
    std::fprintf(f, "<circle cx=\"%.2f\" cy=\"%.2f\" r=\"4\"/>\n", sx(p.x), sy(p.y));
  std::fprintf(f, "</g>\n</svg>\n");
  return std::fclose(f) == 0;
}

}  // namespace interp
