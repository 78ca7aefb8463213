// zr-interp: interpolates a function through points with the library's cubic spline and
// prints its values and first two derivatives, optionally as CSV and as an SVG plot.
//
// Exit status: 0 done, 1 input that cannot be read or interpolated (or a plot that cannot
// be written), 2 a bad command line.
//
// The spline is built on the points scaled by powers of two (x by the smallest step, y by
// the largest magnitude) and its results scaled back: the arithmetic is the same bit for
// bit, but the spline's own accuracy check, whose tolerance is absolute, then sees numbers
// near 1 whatever the units of the data.

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "interp_plot.h"
#include "zr/zr.h"

namespace {

constexpr int kMaxSamples = 1000000;

const char kUsage[] =
    "Usage: zr-interp [OPTIONS] [FILE]\n"
    "\n"
    "Interpolates a function through points with a cubic spline and prints, for evenly\n"
    "spaced x between the first and the last point, the value y and the derivatives y'\n"
    "and y''. Two points give the straight line through them (with --clamped, the cubic\n"
    "with the given end slopes). Numbers are printed with as many digits as they need to\n"
    "read back exactly.\n"
    "\n"
    "Input: one point a line, \"x y\", \"x,y\" or \"x;y\" (with ';' a decimal comma is\n"
    "read too: \"1,5;2,25\"), abscissae increasing; '#' starts a comment, blank lines\n"
    "are ignored, and so are a UTF-8 byte-order mark and a first line without numbers (a\n"
    "header such as \"x,y\", whose two names then label the plot's axes). FILE '-' is\n"
    "standard input. Without FILE the points come from standard input when it is a file\n"
    "or a pipe, and from a built-in sample when it is a terminal (or always with\n"
    "--sample).\n"
    "\n"
    "Options:\n"
    "  --natural              zero second derivative at both ends (the default)\n"
    "  --clamped SLOPE0 SLOPE1\n"
    "                         the first derivative given at the left and right end\n"
    "  --periodic             periodic spline; the last y must equal the first\n"
    "                         (at most one of --natural, --clamped, --periodic)\n"
    "  --samples N            N evenly spaced rows, N from 2 to 1000000 (default 11)\n"
    "  --at X                 a row at X, within the data's x range, instead of the\n"
    "                         evenly spaced ones (repeatable; not with --samples)\n"
    "  --csv                  print the rows as CSV: x,y,dy,d2y\n"
    "  --svg FILE             also write a plot of the points and the curve to FILE; with\n"
    "                         FILE '-' the plot goes to standard output instead of the\n"
    "                         rows (not with --csv)\n"
    "  --title TEXT, --xlabel TEXT, --ylabel TEXT\n"
    "                         the plot's title and axis labels\n"
    "  --sample               use the built-in sample points\n"
    "  --help                 print this text and exit\n"
    "\n"
    "Exit status: 0 success, 1 input that cannot be read or interpolated (or a plot that\n"
    "cannot be written; nothing is printed then), 2 a bad command line.\n";

// A few points of sin x over one period, unevenly spaced.
const char kSample[] =
    "# sin x, sampled unevenly over one period\n"
    "0       0\n"
    "0.5     0.479426\n"
    "1.2     0.932039\n"
    "2       0.909297\n"
    "3       0.141120\n"
    "3.6    -0.442520\n"
    "4.5    -0.977530\n"
    "5.5    -0.705540\n"
    "6.2832  0\n";

enum class Ends { kNatural, kClamped, kPeriodic };

struct Options {
  Ends ends = Ends::kNatural;
  double slope0 = 0, slope1 = 0;
  int samples = 11;
  std::vector<double> at;
  bool csv = false;
  bool sample = false;
  std::string svg;
  std::string title, xlabel, ylabel;
  std::string file;  // empty: decided by standard input
};

// A command-line fault: exit status 2.
struct UsageError {
  std::string text;
};

// Input that cannot be read or interpolated, or a plot that cannot be written: exit
// status 1.
struct InputError {
  std::string text;
};

bool ParseDouble(const std::string& s, double& v) {
  if (s.empty()) return false;
  char* end = nullptr;
  errno = 0;
  v = std::strtod(s.c_str(), &end);
  return *end == '\0' && errno == 0 && std::isfinite(v);
}

// The shortest of %.15g, %.16g and %.17g that reads back as v (zero without a sign).
std::string Num(double v) {
  if (v == 0) v = 0;
  char buf[32];
  for (int prec = 15; prec <= 17; ++prec) {
    std::snprintf(buf, sizeof buf, "%.*g", prec, v);
    if (std::strtod(buf, nullptr) == v || !std::isfinite(v)) break;
  }
  return buf;
}

Options ParseArgs(int argc, char** argv) {
  Options o;
  const char* ends_option = nullptr;
  bool samples_given = false;
  // The option at argv[opt] takes the argument at argv[i + 1].
  auto value = [&](int& i, int opt, const char* what) -> std::string {
    if (i + 1 >= argc) throw UsageError{std::string(argv[opt]) + " needs " + what};
    return argv[++i];
  };
  auto number = [&](int& i, int opt, const char* what) {
    const std::string s = value(i, opt, what);
    double v;
    if (!ParseDouble(s, v))
      throw UsageError{std::string(argv[opt]) + ": not a number: '" + s + "'"};
    return v;
  };
  auto ends = [&](const char* opt, Ends e) {
    if (ends_option && std::strcmp(ends_option, opt) != 0)
      throw UsageError{std::string(ends_option) + " and " + opt + " exclude each other"};
    ends_option = opt;
    o.ends = e;
  };
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--help" || a == "-h") {
      std::fputs(kUsage, stdout);
      std::exit(0);
    } else if (a == "--natural") {
      ends("--natural", Ends::kNatural);
    } else if (a == "--clamped") {
      ends("--clamped", Ends::kClamped);
      const int opt = i;
      o.slope0 = number(i, opt, "SLOPE0 and SLOPE1");
      o.slope1 = number(i, opt, "SLOPE0 and SLOPE1");
    } else if (a == "--periodic") {
      ends("--periodic", Ends::kPeriodic);
    } else if (a == "--samples") {
      const double n = number(i, i, "a count");
      if (n < 2 || n > kMaxSamples || n != std::floor(n))
        throw UsageError{"--samples: N must be a whole number from 2 to " +
                         std::to_string(kMaxSamples)};
      o.samples = static_cast<int>(n);
      samples_given = true;
    } else if (a == "--at") {
      o.at.push_back(number(i, i, "a value"));
    } else if (a == "--csv") {
      o.csv = true;
    } else if (a == "--sample") {
      o.sample = true;
    } else if (a == "--svg") {
      o.svg = value(i, i, "a file name");
      if (o.svg.empty()) throw UsageError{"--svg needs a file name"};
    } else if (a == "--title") {
      o.title = value(i, i, "a text");
    } else if (a == "--xlabel") {
      o.xlabel = value(i, i, "a text");
    } else if (a == "--ylabel") {
      o.ylabel = value(i, i, "a text");
    } else if (a.size() > 1 && a[0] == '-') {
      throw UsageError{"unknown option '" + a + "'"};
    } else if (!o.file.empty()) {
      throw UsageError{"more than one input file"};
    } else {
      o.file = a;
    }
  }
  if (o.sample && !o.file.empty()) throw UsageError{"--sample and a FILE exclude each other"};
  if (samples_given && !o.at.empty()) throw UsageError{"--samples and --at exclude each other"};
  if (o.csv && o.svg == "-") throw UsageError{"--csv and --svg - both want standard output"};
  return o;
}

struct Input {
  std::string name;  // for messages
  std::vector<interp::Point> points;
  std::vector<int> lines;           // the line each point came from
  std::vector<std::string> header;  // the names on a header line, if there was one
  bool blank = true;                // nothing but blank lines
};

std::string Trim(const std::string& s) {
  const auto b = s.find_first_not_of(" \t"), e = s.find_last_not_of(" \t");
  return b == std::string::npos ? std::string() : s.substr(b, e - b + 1);
}

// The fields of a line: separated by ';' when it has one, else by commas, tabs and
// spaces; surrounding double quotes dropped, trailing empty fields too.
std::vector<std::string> Fields(const std::string& text, bool semicolons) {
  std::vector<std::string> words;
  if (semicolons) {
    std::size_t from = 0;
    for (;;) {
      const std::size_t to = text.find(';', from);
      words.push_back(Trim(text.substr(from, to - from)));
      if (to == std::string::npos) break;
      from = to + 1;
    }
  } else {
    std::string spaced = text;
    for (char& c : spaced)
      if (c == ',' || c == '\t') c = ' ';
    std::istringstream fields(spaced);
    for (std::string w; fields >> w;) words.push_back(w);
  }
  for (std::string& w : words)
    if (w.size() >= 2 && w.front() == '"' && w.back() == '"') w = w.substr(1, w.size() - 2);
  while (!words.empty() && words.back().empty()) words.pop_back();
  return words;
}

// A number; after ';' separators one decimal comma is read as a point.
bool ParseField(const std::string& f, bool semicolons, double& v) {
  if (ParseDouble(f, v)) return true;
  if (!semicolons || std::count(f.begin(), f.end(), ',') != 1 || f.find('.') != std::string::npos)
    return false;
  std::string g = f;
  g[g.find(',')] = '.';
  return ParseDouble(g, v);
}

// One point a line (see the usage text); '#' to the end of the line is a comment.
Input ReadPoints(std::istream& in, const std::string& name) {
  Input r{name, {}, {}, {}, true};
  std::string line;
  for (int no = 1; std::getline(in, line); ++no) {
    if (no == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.find_first_not_of(" \t") != std::string::npos) r.blank = false;
    const std::string text = line.substr(0, line.find('#'));
    const bool semicolons = text.find(';') != std::string::npos;
    const std::vector<std::string> words = Fields(text, semicolons);
    if (words.empty()) continue;
    interp::Point p{};
    const bool x_ok = words.size() >= 1 && ParseField(words[0], semicolons, p.x);
    const bool y_ok = words.size() >= 2 && ParseField(words[1], semicolons, p.y);
    if (words.size() != 2 || !x_ok || !y_ok) {
      if (r.points.empty() && r.header.empty()) {  // a header: the first line, no numbers
        bool number = false;
        double v;
        for (const std::string& w : words) number = number || ParseField(w, semicolons, v);
        if (!number) {
          r.header = words;
          continue;
        }
      }
      throw InputError{
          name + ":" + std::to_string(no) +
          ": expected two numbers separated by spaces, a comma or a semicolon, got \"" + line +
          "\""};
    }
    if (!r.points.empty() && !(p.x > r.points.back().x)) {
      throw InputError{name + ":" + std::to_string(no) + ": abscissae must increase: x = " +
                       Num(p.x) + " follows x = " + Num(r.points.back().x) + " (line " +
                       std::to_string(r.lines.back()) + ")"};
    }
    r.points.push_back(p);
    r.lines.push_back(no);
  }
  if (in.bad()) throw InputError{name + ": read error"};
  if (r.points.empty()) {
    if (r.blank) throw InputError{name + ": the input is empty"};
    if (!r.header.empty()) throw InputError{name + ": no points after the header line"};
    throw InputError{name + ": no points, only comments and blank lines"};
  }
  if (r.points.size() == 1)
    throw InputError{name + ":" + std::to_string(r.lines[0]) +
                     ": only one point: interpolation needs two at least"};
  return r;
}

Input LoadInput(const Options& o) {
  if (o.sample || (o.file.empty() && isatty(0))) {
    std::istringstream in(kSample);
    return ReadPoints(in, "<sample>");
  }
  if (o.file.empty() || o.file == "-") return ReadPoints(std::cin, "<stdin>");
  std::ifstream in(o.file);
  if (!in) throw InputError{o.file + ": cannot open: " + std::strerror(errno)};
  return ReadPoints(in, o.file);
}

// The interpolating function: the library's spline for three points or more, computed on
// the points scaled by 2^-ex in x and 2^-ey in y; for two, the straight line (or, clamped,
// the cubic with the given end slopes).
class Interpolant {
 public:
  Interpolant(const Options& o, const Input& in) : pts_(in.points) {
    const std::size_t n = pts_.size();
    if (o.ends == Ends::kPeriodic && pts_.back().y != pts_.front().y) {
      throw InputError{
          in.name + ":" + std::to_string(in.lines.back()) +
          ": --periodic needs the last y equal to the first: y = " + Num(pts_.back().y) +
          " here, y = " + Num(pts_.front().y) + " on line " + std::to_string(in.lines.front())};
    }
    if (n == 2) {
      line_ = o.ends != Ends::kClamped;
      const double secant = (pts_[1].y - pts_[0].y) / (pts_[1].x - pts_[0].x);
      two_ = line_ ? interp::Cubic{pts_[0], pts_[1], secant, secant}
                   : interp::Cubic{pts_[0], pts_[1], o.slope0, o.slope1};
      return;
    }
    double hmin = pts_[1].x - pts_[0].x, hmax = hmin, xmax = 0, ymax = 0;
    for (std::size_t i = 0; i < n; ++i) {
      if (i > 0) {
        hmin = std::min(hmin, pts_[i].x - pts_[i - 1].x);
        hmax = std::max(hmax, pts_[i].x - pts_[i - 1].x);
      }
      xmax = std::max(xmax, std::fabs(pts_[i].x));
      ymax = std::max(ymax, std::fabs(pts_[i].y));
    }
    const std::string steps =
        hmin == hmax ? "x steps of " + Num(hmin) : "x steps from " + Num(hmin) + " to " + Num(hmax);
    ex_ = std::ilogb(hmin);
    ey_ = ymax > 0 ? std::ilogb(ymax) + 1 : 0;
    if (!std::isfinite(std::ldexp(xmax, -ex_)) || !std::isfinite(hmax))
      throw InputError{in.name + ": x spans too wide a range for its smallest step (" + steps +
                       ")"};

    zrSimpleArray<zrColumnVector<double>> points(static_cast<int>(n));
    for (std::size_t i = 0; i < n; ++i) {
      zrColumnVector<double>& p = points[static_cast<int>(i)];
      p.Set(2);
      p[0] = std::ldexp(pts_[i].x, -ex_);
      p[1] = std::ldexp(pts_[i].y, -ey_);
    }
    try {
      spline_.Set(points);
      if (o.ends == Ends::kPeriodic) {
        spline_.MkPeriodSpline3();
      } else {
        // codes[0]: first-derivative conditions, codes[1]: second-derivative ones; bit 1
        // the left end, bit 2 the right end. values row 0 holds the slopes, row 1 the
        // curvatures.
        zrSimpleArray<int> codes(2);
        zrMatrix<double> values(2, 2);
        values(0, 0) = std::ldexp(o.slope0, ex_ - ey_);
        values(0, 1) = std::ldexp(o.slope1, ex_ - ey_);
        values(1, 0) = values(1, 1) = 0;
        codes[0] = o.ends == Ends::kClamped ? 3 : 0;
        codes[1] = o.ends == Ends::kClamped ? 0 : 3;
        spline_.MkSpline3(codes, values);
      }
    } catch (const BadParameters&) {
      // The builders' accuracy check failed: more than rounding separates the pieces.
      throw InputError{in.name + ": the spline through these points fails its accuracy check (" +
                       steps + (o.ends == Ends::kClamped ? ", the end slopes given" : "") + ")"};
    }
  }

  double Value(double x) const {
    if (Two()) return line_ ? Line(x) : two_.Value(x);
    return std::ldexp(spline_(std::ldexp(x, -ex_)), ey_);
  }
  double Slope(double x) const {
    if (Two()) return line_ ? two_.da : two_.Slope(x);
    return std::ldexp(spline_.Derivative(std::ldexp(x, -ex_), 1), ey_ - ex_);
  }
  double Curvature(double x) const {
    if (Two()) return line_ ? 0 : two_.Curvature(x);
    return std::ldexp(spline_.Derivative(std::ldexp(x, -ex_), 2), ey_ - 2 * ex_);
  }

  // The pieces between the points, for the plot.
  std::vector<interp::Cubic> Pieces() const {
    if (Two()) return {two_};
    std::vector<interp::Cubic> pieces;
    pieces.reserve(pts_.size() - 1);
    for (int i = 0; i + 1 < static_cast<int>(pts_.size()); ++i) {
      const double d0 = spline_.Derivative(std::ldexp(pts_[i].x, -ex_), 1, i);
      const double d1 = spline_.Derivative(std::ldexp(pts_[i + 1].x, -ex_), 1, i);
      pieces.push_back(
          {pts_[i], pts_[i + 1], std::ldexp(d0, ey_ - ex_), std::ldexp(d1, ey_ - ex_)});
    }
    return pieces;
  }

 private:
  bool Two() const { return pts_.size() == 2; }
  double Line(double x) const {
    if (x == pts_[1].x) return pts_[1].y;
    return pts_[0].y + (pts_[1].y - pts_[0].y) * ((x - pts_[0].x) / (pts_[1].x - pts_[0].x));
  }

  const std::vector<interp::Point>& pts_;
  zrSpline<double> spline_;
  int ex_ = 0, ey_ = 0;
  bool line_ = false;
  interp::Cubic two_{};
};

std::string Describe(const Options& o, std::size_t n) {
  if (n == 2 && o.ends != Ends::kClamped) return "straight line";
  return std::string(o.ends == Ends::kNatural   ? "natural"
                     : o.ends == Ends::kClamped ? "clamped"
                                                : "periodic") +
         (n == 2 ? " cubic" : " cubic spline");
}

// The k-th of n evenly spaced abscissae over [a, b], the last exactly b.
double Spaced(double a, double b, int k, int n) {
  return k == n - 1 ? b : a + (b - a) * k / (n - 1);
}

int Run(const Options& o) {
  const Input in = LoadInput(o);
  const double a = in.points.front().x, b = in.points.back().x;
  for (double x : o.at) {
    if (x < a || x > b)
      throw InputError{"--at " + Num(x) + " is outside the data: x runs from " + Num(a) + " to " +
                       Num(b) + " in " + in.name};
  }
  const Interpolant f(o, in);
  const std::string what = Describe(o, in.points.size());

  std::vector<double> xs = o.at;
  if (xs.empty())
    for (int k = 0; k < o.samples; ++k) xs.push_back(Spaced(a, b, k, o.samples));
  std::vector<std::vector<std::string>> rows;
  rows.reserve(xs.size());
  for (double x : xs)
    rows.push_back({Num(x), Num(f.Value(x)), Num(f.Slope(x)), Num(f.Curvature(x))});

  // The plot first: when it cannot be written, nothing has been printed.
  if (!o.svg.empty()) {
    interp::Plot plot;
    plot.pieces = f.Pieces();
    plot.curve_name = what;
    plot.title = !o.title.empty()
                     ? o.title
                     : what + " through " + std::to_string(in.points.size()) + " points";
    if (in.header.size() == 2) {
      plot.xlabel = in.header[0];
      plot.ylabel = in.header[1];
    }
    if (!o.xlabel.empty()) plot.xlabel = o.xlabel;
    if (!o.ylabel.empty()) plot.ylabel = o.ylabel;
    for (double x : o.at) plot.marks.push_back({x, f.Value(x)});
    const std::string svg = interp::SvgPlot(plot);
    if (svg.empty())
      throw InputError{in.name +
                       ": cannot plot these points: the span of x or y is too wide or "
                       "too narrow for double precision"};
    if (o.svg == "-") {
      std::fwrite(svg.data(), 1, svg.size(), stdout);
    } else {
      std::FILE* file = std::fopen(o.svg.c_str(), "wb");
      if (!file) throw InputError{o.svg + ": cannot write the plot: " + std::strerror(errno)};
      const bool written = std::fwrite(svg.data(), 1, svg.size(), file) == svg.size();
      const int saved = errno;
      if (std::fclose(file) != 0 || !written) {
        std::remove(o.svg.c_str());
        throw InputError{o.svg +
                         ": cannot write the plot: " + std::strerror(written ? errno : saved)};
      }
    }
  }

  if (o.svg != "-") {
    if (o.csv) {
      std::printf("x,y,dy,d2y\n");
      for (const auto& r : rows)
        std::printf("%s,%s,%s,%s\n", r[0].c_str(), r[1].c_str(), r[2].c_str(), r[3].c_str());
    } else {
      std::printf("# %s through %zu points from %s, x in [%s, %s]\n", what.c_str(),
                  in.points.size(), in.name.c_str(), Num(a).c_str(), Num(b).c_str());
      int width[4] = {14, 14, 14, 14};
      for (const auto& r : rows)
        for (int c = 0; c < 4; ++c) width[c] = std::max(width[c], static_cast<int>(r[c].size()));
      std::printf("%*s %*s %*s %*s\n", width[0], "x", width[1], "y", width[2], "y'", width[3],
                  "y''");
      for (const auto& r : rows)
        std::printf("%*s %*s %*s %*s\n", width[0], r[0].c_str(), width[1], r[1].c_str(), width[2],
                    r[2].c_str(), width[3], r[3].c_str());
      if (!o.svg.empty()) std::printf("# plot written to %s\n", o.svg.c_str());
    }
  }
  if (std::fflush(stdout) != 0) throw InputError{"cannot write to standard output"};
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(ParseArgs(argc, argv));
  } catch (const UsageError& e) {
    std::fprintf(stderr, "zr-interp: %s\n", e.text.c_str());
    std::fprintf(stderr, "Try 'zr-interp --help' for more information.\n");
    return 2;
  } catch (const InputError& e) {
    std::fprintf(stderr, "zr-interp: %s\n", e.text.c_str());
    return 1;
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "zr-interp: out of memory\n");
    return 1;
  } catch (const zrExceptionWithMessage&) {  // not expected: the input is checked first
    std::fprintf(stderr, "zr-interp: cannot interpolate the input\n");
    return 1;
  }
}
