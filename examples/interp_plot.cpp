#include "interp_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace interp {

// With h = b.x - a.x and t = (x - a.x)/h the piece is
// y = a.y + m0 t + c2 t^2 + c3 t^3, m0 = h da, m1 = h db, d = b.y - a.y,
// c2 = 3d - 2 m0 - m1, c3 = m0 + m1 - 2d.
namespace {
struct Power {
  double h, m0, c2, c3;
};
Power Coefficients(const Cubic& c) {
  const double h = c.b.x - c.a.x, d = c.b.y - c.a.y;
  const double m0 = h * c.da, m1 = h * c.db;
  return {h, m0, 3 * d - 2 * m0 - m1, m0 + m1 - 2 * d};
}
}  // namespace

double Cubic::Value(double x) const {
  if (x == b.x) return b.y;
  const Power p = Coefficients(*this);
  const double t = (x - a.x) / p.h;
  return a.y + t * (p.m0 + t * (p.c2 + t * p.c3));
}

double Cubic::Slope(double x) const {
  const Power p = Coefficients(*this);
  const double t = (x - a.x) / p.h;
  return (p.m0 + t * (2 * p.c2 + t * 3 * p.c3)) / p.h;
}

double Cubic::Curvature(double x) const {
  const Power p = Coefficients(*this);
  const double t = (x - a.x) / p.h;
  return (2 * p.c2 + 6 * p.c3 * t) / p.h / p.h;
}

std::vector<double> Cubic::Extrema() const {
  // y'(t) h = m0 + 2 c2 t + 3 c3 t^2: the roots in (0, 1), the stable quadratic formula.
  const Power p = Coefficients(*this);
  const double qa = 3 * p.c3, qb = 2 * p.c2, qc = p.m0;
  std::vector<double> ts;
  if (qa == 0) {
    if (qb != 0) ts.push_back(-qc / qb);
  } else {
    const double disc = qb * qb - 4 * qa * qc;
    if (disc >= 0) {
      const double q = -0.5 * (qb + std::copysign(std::sqrt(disc), qb));
      ts.push_back(q / qa);
      if (q != 0) ts.push_back(qc / q);
    }
  }
  std::vector<double> xs;
  std::sort(ts.begin(), ts.end());
  for (double t : ts)
    if (t > 0 && t < 1) xs.push_back(a.x + t * p.h);
  return xs;
}

namespace {

constexpr double kWidth = 720, kHeight = 460;
constexpr double kLeft = 78, kRight = 24, kTop = 58, kBottom = 56;
constexpr double kPlotW = kWidth - kLeft - kRight, kPlotH = kHeight - kTop - kBottom;
const char kCurveColour[] = "#1f5fbf";
const char kPointColour[] = "#d62728";
const char kMarkColour[] = "#ff7f0e";

// printf to the end of out.
#if defined(__GNUC__)
void Add(std::string& out, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
#endif
void Add(std::string& out, const char* fmt, ...) {
  char buf[512];
  va_list ap;
  va_start(ap, fmt);
  const int n = std::vsnprintf(buf, sizeof buf, fmt, ap);
  va_end(ap);
  if (n < static_cast<int>(sizeof buf)) {
    out.append(buf, n > 0 ? n : 0);
    return;
  }
  std::vector<char> big(n + 1);
  va_start(ap, fmt);
  std::vsnprintf(big.data(), big.size(), fmt, ap);
  va_end(ap);
  out.append(big.data(), n);
}

// The shortest %g form that reads back as v.
std::string Shortest(double v) {
  char buf[32];
  for (int prec = 1; prec <= 17; ++prec) {
    std::snprintf(buf, sizeof buf, "%.*g", prec, v);
    if (std::strtod(buf, nullptr) == v) break;
  }
  return buf;
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

// An axis over a data range, padded by 4 % on each side, with ticks at the multiples of a
// step of 1, 2 or 5 times a power of ten (about five intervals). A tick's label is
// (value - offset) / 10^exp with a fixed number of decimals: the offset keeps labels short
// when the values are large beside their spread (1e14 + 200 ...), the exponent when the
// step itself is very large or very small.
struct Axis {
  double lo, hi;
  double first, step;
  int count;
  int p;  // step = {1, 2, 5} * 10^p
  double offset = 0;
  int exp = 0;
  int decimals = 0;

  double Tick(int i) const { return first + i * step; }
  std::string Label(int i) const {
    double u = ((first - offset) + i * step) / std::pow(10.0, exp);
    if (std::fabs(u) < std::fabs(step / std::pow(10.0, exp)) * 1e-9) u = 0;
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, u);
    std::string s = buf;
    if (s[0] == '-' && s.find_first_not_of("-0.") == std::string::npos) s.erase(0, 1);  // no -0.0
    return s;
  }
  // What the labels leave out: "×1e9", "+1e+14", both, or nothing.
  std::string Note() const {
    std::string s;
    if (exp != 0)
      s = "\xc3\x97"
          "1e" +
          std::to_string(exp);  // the multiplication sign
    if (offset != 0) {
      if (!s.empty()) s += " ";
      s += (offset > 0 ? "+" : "-") + Shortest(std::fabs(offset));
    }
    return s;
  }
};

// False when the range cannot be drawn in doubles: infinite, or too narrow for its values.
bool MakeAxis(double lo, double hi, Axis& a) {
  if (!std::isfinite(hi - lo)) return false;
  if (!(hi > lo)) {  // a constant: open half its size (or one unit) around it
    const double half = lo != 0 ? std::fabs(lo) * 0.5 : 1;
    lo -= half;
    hi += half;
  } else {
    const double pad = (hi - lo) * 0.04;
    lo -= pad;
    hi += pad;
  }
  a = Axis{};
  a.lo = lo;
  a.hi = hi;
  const double raw = (hi - lo) / 5;
  if (!(raw > 0) || !std::isfinite(raw)) return false;
  a.p = static_cast<int>(std::floor(std::log10(raw)));
  const double f = raw / std::pow(10.0, a.p);
  int mult = f <= 1 ? 1 : f <= 2 ? 2 : f <= 5 ? 5 : 10;
  if (mult == 10) {
    mult = 1;
    ++a.p;
  }
  a.step = mult * std::pow(10.0, a.p);
  a.first = std::ceil(lo / a.step) * a.step;
  const double count = std::floor((hi - a.first) / a.step + 1e-9) + 1;
  if (!(count >= 2 && count <= 12)) return false;
  a.count = static_cast<int>(count);
  const double last = a.Tick(a.count - 1);
  if (std::max(std::fabs(a.first), std::fabs(last)) / a.step >= 1e5) {
    const double q = std::pow(10.0, a.p + 1);
    a.offset = std::floor(a.first / q) * q;
  }
  if (a.p >= 6 || a.p <= -5) a.exp = a.p;
  a.decimals = std::max(0, a.exp - a.p);
  return true;
}

// The curve as one path: pieces a pixel wide or more as exact Bezier curves (a cubic over
// [x0, x1] with x linear in the parameter has its control points at the thirds), narrower
// ones merged per pixel column into its first, lowest, highest and last points, in the
// order they come, so the path covers the curve's whole extent in every column.
class PathWriter {
 public:
  explicit PathWriter(std::string& out) : out_(out) {}
  void MoveTo(Point p) { Add(out_, "M%.2f %.2f", p.x, p.y); }
  void CurveTo(Point c1, Point c2, Point p) {
    Flush();
    Add(out_, "C%.2f %.2f %.2f %.2f %.2f %.2f", c1.x, c1.y, c2.x, c2.y, p.x, p.y);
  }
  void LineTo(Point p) {
    Flush();
    Line(p);
  }
  // A point of the curve inside a narrow piece, in path order.
  void Through(Point p) {
    const double col = std::floor(p.x);
    if (n_ > 0 && col != col_) Flush();
    if (n_ == 0) {
      col_ = col;
      first_ = low_ = high_ = last_ = p;
      low_at_ = high_at_ = 0;
    } else {
      if (p.y > low_.y) {  // SVG y grows downwards: the lowest value is the largest y
        low_ = p;
        low_at_ = n_;
      }
      if (p.y < high_.y) {
        high_ = p;
        high_at_ = n_;
      }
      last_ = p;
    }
    ++n_;
  }
  void Flush() {
    if (n_ == 0) return;
    Line(first_);
    if (low_at_ < high_at_) {
      Line(low_);
      Line(high_);
    } else {
      Line(high_);
      Line(low_);
    }
    Line(last_);
    n_ = 0;
  }

 private:
  void Line(Point p) {
    char buf[48];
    std::snprintf(buf, sizeof buf, "L%.2f %.2f", p.x, p.y);
    if (buf == last_line_) return;
    last_line_ = buf;
    out_ += buf;
  }
  std::string& out_;
  std::string last_line_;
  int n_ = 0, low_at_ = 0, high_at_ = 0;
  double col_ = 0;
  Point first_{}, low_{}, high_{}, last_{};
};

}  // namespace

std::string SvgPlot(const Plot& plot) {
  const std::vector<Cubic>& pieces = plot.pieces;
  double ylo = pieces.front().a.y, yhi = ylo;
  auto widen = [&](double y) {
    ylo = std::min(ylo, y);
    yhi = std::max(yhi, y);
  };
  for (const Cubic& c : pieces) {
    widen(c.b.y);
    for (double x : c.Extrema()) widen(c.Value(x));
  }
  for (const Point& m : plot.marks) widen(m.y);
  Axis ax, ay;
  if (!MakeAxis(pieces.front().a.x, pieces.back().b.x, ax) || !MakeAxis(ylo, yhi, ay)) return "";
  auto sx = [&](double x) { return kLeft + (x - ax.lo) / (ax.hi - ax.lo) * kPlotW; };
  auto sy = [&](double y) { return kTop + (ay.hi - y) / (ay.hi - ay.lo) * kPlotH; };
  auto at = [&](Point p) { return Point{sx(p.x), sy(p.y)}; };

  std::string out;
  Add(out,
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%g\" height=\"%g\" "
      "viewBox=\"0 0 %g %g\" font-family=\"sans-serif\" font-size=\"12\">\n",
      kWidth, kHeight, kWidth, kHeight);
  Add(out, "<!-- zr-interp plot: x %.17g %.17g -> %.17g %.17g, y %.17g %.17g -> %.17g %.17g -->\n",
      ax.lo, ax.hi, kLeft, kLeft + kPlotW, ay.lo, ay.hi, kTop + kPlotH, kTop);
  Add(out, "<title>%s</title>\n", Escape(plot.title).c_str());
  Add(out, "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n");
  Add(out, "<text x=\"%g\" y=\"24\" text-anchor=\"middle\" font-size=\"15\">%s</text>\n",
      kWidth / 2, Escape(plot.title).c_str());

  // Grid lines, the frame's left and bottom sides as axes, tick marks and labels.
  Add(out, "<g stroke=\"#e0e0e0\" stroke-width=\"1\">\n");
  for (int i = 0; i < ax.count; ++i)
    Add(out, "<line x1=\"%.2f\" y1=\"%g\" x2=\"%.2f\" y2=\"%g\"/>\n", sx(ax.Tick(i)), kTop,
        sx(ax.Tick(i)), kTop + kPlotH);
  for (int i = 0; i < ay.count; ++i)
    Add(out, "<line x1=\"%g\" y1=\"%.2f\" x2=\"%g\" y2=\"%.2f\"/>\n", kLeft, sy(ay.Tick(i)),
        kLeft + kPlotW, sy(ay.Tick(i)));
  Add(out, "</g>\n<g stroke=\"black\" stroke-width=\"1\">\n");
  Add(out, "<line x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\"/>\n", kLeft, kTop + kPlotH,
      kLeft + kPlotW, kTop + kPlotH);
  Add(out, "<line x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\"/>\n", kLeft, kTop, kLeft, kTop + kPlotH);
  for (int i = 0; i < ax.count; ++i)
    Add(out, "<line x1=\"%.2f\" y1=\"%g\" x2=\"%.2f\" y2=\"%g\"/>\n", sx(ax.Tick(i)), kTop + kPlotH,
        sx(ax.Tick(i)), kTop + kPlotH + 5);
  for (int i = 0; i < ay.count; ++i)
    Add(out, "<line x1=\"%g\" y1=\"%.2f\" x2=\"%g\" y2=\"%.2f\"/>\n", kLeft - 5, sy(ay.Tick(i)),
        kLeft, sy(ay.Tick(i)));
  Add(out, "</g>\n<g fill=\"black\">\n");
  for (int i = 0; i < ax.count; ++i)
    Add(out, "<text x=\"%.2f\" y=\"%g\" text-anchor=\"middle\">%s</text>\n", sx(ax.Tick(i)),
        kTop + kPlotH + 18, ax.Label(i).c_str());
  for (int i = 0; i < ay.count; ++i)
    Add(out, "<text x=\"%g\" y=\"%.2f\" text-anchor=\"end\">%s</text>\n", kLeft - 8,
        sy(ay.Tick(i)) + 4, ay.Label(i).c_str());
  if (!ax.Note().empty())
    Add(out, "<text class=\"x-note\" x=\"%g\" y=\"%g\" text-anchor=\"end\">%s</text>\n",
        kLeft + kPlotW, kTop + kPlotH + 34, ax.Note().c_str());
  if (!ay.Note().empty())
    Add(out, "<text class=\"y-note\" x=\"%g\" y=\"%g\">%s</text>\n", kLeft - 8, kTop - 10,
        ay.Note().c_str());
  Add(out, "<text x=\"%g\" y=\"%g\" text-anchor=\"middle\">%s</text>\n", kLeft + kPlotW / 2,
      kHeight - 8, Escape(plot.xlabel).c_str());
  Add(out,
      "<text x=\"16\" y=\"%g\" text-anchor=\"middle\" transform=\"rotate(-90 16 %g)\">%s</text>\n"
      "</g>\n",
      kTop + kPlotH / 2, kTop + kPlotH / 2, Escape(plot.ylabel).c_str());

  // The data points as rings under the curve (which stays whole where points crowd), smaller as
  // they get dense, at most one in a cell of 2r + 1 pixels.
  const std::size_t n = pieces.size() + 1;
  const double r = n <= 50 ? 4 : n <= 200 ? 3 : 2.5;
  const double cell = 2 * r + 1;
  const int cols = static_cast<int>(kWidth / cell) + 1, rows = static_cast<int>(kHeight / cell) + 1;
  std::vector<char> taken(static_cast<std::size_t>(cols) * rows, 0);
  std::size_t shown = 0;
  Add(out, "<g class=\"points\" fill=\"none\" stroke=\"%s\" stroke-width=\"%g\">\n", kPointColour,
      r >= 3 ? 1.5 : 1.0);
  for (std::size_t i = 0; i < n; ++i) {
    const Point p = at(i == 0 ? pieces[0].a : pieces[i - 1].b);
    const int cx = static_cast<int>(p.x / cell), cy = static_cast<int>(p.y / cell);
    if (cx < 0 || cy < 0 || cx >= cols || cy >= rows) continue;
    char& t = taken[static_cast<std::size_t>(cy) * cols + cx];
    if (t) continue;
    t = 1;
    ++shown;
    Add(out, "<circle cx=\"%.2f\" cy=\"%.2f\" r=\"%g\"/>\n", p.x, p.y, r);
  }
  Add(out, "</g>\n");

  // The curve.
  Add(out,
      "<path class=\"curve\" fill=\"none\" stroke=\"%s\" stroke-width=\"2\" "
      "stroke-linejoin=\"round\" stroke-linecap=\"round\" d=\"",
      kCurveColour);
  PathWriter path(out);
  path.MoveTo(at(pieces.front().a));
  for (const Cubic& c : pieces) {
    const Point p0 = at(c.a), p3 = at(c.b);
    if (p3.x - p0.x >= 1) {
      const double h = c.b.x - c.a.x;
      const Point p1{p0.x + (p3.x - p0.x) / 3, sy(c.a.y + h * c.da / 3)};
      const Point p2{p3.x - (p3.x - p0.x) / 3, sy(c.b.y - h * c.db / 3)};
      if (std::isfinite(p1.y) && std::isfinite(p2.y))
        path.CurveTo(p1, p2, p3);
      else
        path.LineTo(p3);
    } else {
      for (double x : c.Extrema()) path.Through(at({x, c.Value(x)}));
      path.Through(p3);
    }
  }
  path.Flush();
  out += "\"/>\n";

  if (!plot.marks.empty()) {
    Add(out, "<g class=\"marks\" fill=\"%s\" stroke=\"black\" stroke-width=\"0.8\">\n",
        kMarkColour);
    for (const Point& m : plot.marks) {
      const Point p = at(m);
      Add(out, "<path d=\"M%.2f %.2fl5 5-5 5-5-5z\"/>\n", p.x, p.y - 5);
    }
    Add(out, "</g>\n");
  }

  // The legend, right-aligned in the band between the title and the plot; text widths
  // are estimated at 6.5 pixels a character.
  std::string points_name = "points";
  if (shown < n) {
    char buf[96];
    std::snprintf(buf, sizeof buf, "points (%zu of %zu shown)", shown, n);
    points_name = buf;
  }
  struct Entry {
    int kind;  // 0 point, 1 curve, 2 mark
    std::string text;
  };
  std::vector<Entry> entries{{0, points_name}, {1, plot.curve_name}};
  if (!plot.marks.empty()) entries.push_back({2, "--at rows"});
  double width = 0;
  for (const Entry& e : entries) width += 26 + 6.5 * e.text.size() + 14;
  double x = kWidth - kRight - width;
  const double y = kTop - 14;
  Add(out, "<g class=\"legend\">\n");
  for (const Entry& e : entries) {
    if (e.kind == 0)
      Add(out,
          "<circle cx=\"%g\" cy=\"%g\" r=\"4\" fill=\"none\" stroke=\"%s\" "
          "stroke-width=\"1.5\"/>\n",
          x + 11, y, kPointColour);
    else if (e.kind == 1)
      Add(out, "<line x1=\"%g\" y1=\"%g\" x2=\"%g\" y2=\"%g\" stroke=\"%s\" stroke-width=\"2\"/>\n",
          x, y, x + 22, y, kCurveColour);
    else
      Add(out,
          "<path d=\"M%g %gl5 5-5 5-5-5z\" fill=\"%s\" stroke=\"black\" stroke-width=\"0.8\"/>\n",
          x + 11, y - 5, kMarkColour);
    Add(out, "<text x=\"%g\" y=\"%g\">%s</text>\n", x + 26, y + 4, Escape(e.text).c_str());
    x += 26 + 6.5 * e.text.size() + 14;
  }
  Add(out, "</g>\n</svg>\n");
  return out;
}

}  // namespace interp
