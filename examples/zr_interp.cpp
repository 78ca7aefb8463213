// zr-interp: interpolates a function through points with the library's cubic spline and
// prints its values and first two derivatives, optionally as CSV and as an SVG plot.
//
// Exit status: 0 done, 1 the library refused the data (its message is printed), 2 a bad
// command line or unreadable input.

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "interp_plot.h"
#include "zr/zr.h"

namespace {

const char kUsage[] =
    "Usage: zr-interp [OPTIONS] [FILE]\n"
    "\n"
    "Interpolates a function through points with a cubic spline and prints, for evenly\n"
    "spaced x between the first and the last point, the value y and the derivatives y'\n"
    "and y''.\n"
    "\n"
    "Input: one point a line, \"x y\" or \"x,y\", abscissae increasing; '#' starts a\n"
    "comment, blank lines are ignored. FILE '-' is standard input. Without FILE the\n"
    "points come from standard input when it is a file or a pipe, and from a built-in\n"
    "sample when it is a terminal (or always with --sample).\n"
    "\n"
    "Options:\n"
    "  --natural              zero second derivative at both ends (the default)\n"
    "  --clamped SLOPE0 SLOPE1\n"
    "                         the first derivative given at the left and right end\n"
    "  --periodic             periodic spline; the last y must equal the first\n"
    "  --samples N            N evenly spaced rows, N >= 2 (default 11)\n"
    "  --at X                 a row at X instead of the evenly spaced ones (repeatable)\n"
    "  --csv                  print the rows as CSV: x,y,dy,d2y\n"
    "  --svg FILE             also write a plot of the points and the curve to FILE\n"
    "  --sample               use the built-in sample points\n"
    "  --help                 print this text and exit\n"
    "\n"
    "Exit status: 0 success, 1 the spline library rejected the data, 2 bad command line\n"
    "or input.\n";

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
  std::string file;  // empty: decided by standard input
};

// A command-line fault: exit status 2.
struct UsageError {
  std::string text;
};

// Input that cannot be read or is not points: exit status 2.
struct InputError {
  std::string text;
};

// Data the library accepts but the program does not: exit status 1.
struct DataError {
  std::string text;
};

bool ParseDouble(const std::string& s, double& v) {
  if (s.empty()) return false;
  char* end = nullptr;
  errno = 0;
  v = std::strtod(s.c_str(), &end);
  return *end == '\0' && errno == 0 && std::isfinite(v);
}

Options ParseArgs(int argc, char** argv) {
  Options o;
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
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--help" || a == "-h") {
      std::fputs(kUsage, stdout);
      std::exit(0);
    } else if (a == "--natural") {
      o.ends = Ends::kNatural;
    } else if (a == "--clamped") {
      o.ends = Ends::kClamped;
      const int opt = i;
      o.slope0 = number(i, opt, "SLOPE0 and SLOPE1");
      o.slope1 = number(i, opt, "SLOPE0 and SLOPE1");
    } else if (a == "--periodic") {
      o.ends = Ends::kPeriodic;
    } else if (a == "--samples") {
      const double n = number(i, i, "a count");
      if (n < 2 || n > 1000000 || n != std::floor(n))
        throw UsageError{"--samples: N must be a whole number from 2 to 1000000"};
      o.samples = static_cast<int>(n);
    } else if (a == "--at") {
      o.at.push_back(number(i, i, "a value"));
    } else if (a == "--csv") {
      o.csv = true;
    } else if (a == "--sample") {
      o.sample = true;
    } else if (a == "--svg") {
      o.svg = value(i, i, "a file name");
    } else if (a.size() > 1 && a[0] == '-') {
      throw UsageError{"unknown option '" + a + "'"};
    } else if (!o.file.empty()) {
      throw UsageError{"more than one input file"};
    } else {
      o.file = a;
    }
  }
  if (o.sample && !o.file.empty()) throw UsageError{"--sample and a FILE exclude each other"};
  return o;
}

struct Input {
  std::string name;  // for messages
  std::vector<interp::Point> points;
  std::vector<int> lines;  // the line each point came from
};

// One point a line: "x y", "x,y" or "x, y"; '#' to the end of the line is a comment.
Input ReadPoints(std::istream& in, const std::string& name) {
  Input r{name, {}, {}};
  std::string line;
  for (int no = 1; std::getline(in, line); ++no) {
    std::string text = line.substr(0, line.find('#'));
    if (!text.empty() && text.back() == '\r') text.pop_back();
    for (char& c : text)
      if (c == ',' || c == '\t') c = ' ';
    std::istringstream fields(text);
    std::vector<std::string> words;
    for (std::string w; fields >> w;) words.push_back(w);
    if (words.empty()) continue;
    interp::Point p{};
    if (words.size() != 2 || !ParseDouble(words[0], p.x) || !ParseDouble(words[1], p.y)) {
      throw InputError{name + ":" + std::to_string(no) +
                       ": expected two numbers \"x y\" or \"x,y\", got \"" + line + "\""};
    }
    if (!r.points.empty() && !(p.x > r.points.back().x)) {
      std::ostringstream m;
      m << name << ":" << no << ": abscissae must increase: x = " << words[0]
        << " follows x = " << r.points.back().x << " (line " << r.lines.back() << ")";
      throw DataError{m.str()};
    }
    r.points.push_back(p);
    r.lines.push_back(no);
  }
  if (in.bad()) throw InputError{name + ": read error"};
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

zrSpline<double> BuildSpline(const Options& o, const std::vector<interp::Point>& pts) {
  zrSimpleArray<zrColumnVector<double>> points;
  if (!pts.empty()) points = zrSimpleArray<zrColumnVector<double>>(static_cast<int>(pts.size()));
  for (int i = 0; i < points.Len(); ++i) {
    points[i].Set(2);
    points[i][0] = pts[i].x;
    points[i][1] = pts[i].y;
  }
  zrSpline<double> s(points);  // fewer than 3 points are refused here
  if (o.ends == Ends::kPeriodic) {
    try {
      s.MkPeriodSpline3();
    } catch (const BadParameters& e) {
      // The builder's check fails when the curve cannot close on itself.
      if (pts.back().y != pts.front().y)
        throw DataError{std::string(e.GetMessageText()) +
                        "\nzr-interp: a periodic spline needs the last y equal to the first"};
      throw;
    }
    return s;
  }
  // codes[0]: first-derivative conditions, codes[1]: second-derivative ones; bit 1 the
  // left end, bit 2 the right end. values row 0 holds the slopes, row 1 the curvatures.
  zrSimpleArray<int> codes(2);
  zrMatrix<double> values(2, 2);
  values(0, 0) = o.slope0;
  values(0, 1) = o.slope1;
  values(1, 0) = values(1, 1) = 0;
  codes[0] = o.ends == Ends::kClamped ? 3 : 0;
  codes[1] = o.ends == Ends::kClamped ? 0 : 3;
  s.MkSpline3(codes, values);
  return s;
}

const char* EndsName(Ends e) {
  return e == Ends::kNatural ? "natural" : e == Ends::kClamped ? "clamped" : "periodic";
}

// The k-th of n evenly spaced abscissae over [a, b], the last exactly b.
double Spaced(double a, double b, int k, int n) {
  return k == n - 1 ? b : a + (b - a) * k / (n - 1);
}

int Run(const Options& o) {
  const Input in = LoadInput(o);
  const zrSpline<double> s = BuildSpline(o, in.points);
  const double a = in.points.front().x, b = in.points.back().x;

  std::vector<double> xs = o.at;
  if (xs.empty())
    for (int k = 0; k < o.samples; ++k) xs.push_back(Spaced(a, b, k, o.samples));
  struct Row {
    double x, y, d1, d2;
  };
  std::vector<Row> rows;
  for (double x : xs) rows.push_back({x, s(x), s.Derivative(x, 1), s.Derivative(x, 2)});

  if (o.csv) {
    std::printf("x,y,dy,d2y\n");
    for (const Row& r : rows) std::printf("%.10g,%.10g,%.10g,%.10g\n", r.x, r.y, r.d1, r.d2);
  } else {
    std::printf("# %s cubic spline through %zu points from %s, x in [%g, %g]\n", EndsName(o.ends),
                in.points.size(), in.name.c_str(), a, b);
    std::printf("%14s %14s %14s %14s\n", "x", "y", "y'", "y''");
    for (const Row& r : rows) std::printf("%14.6g %14.6g %14.6g %14.6g\n", r.x, r.y, r.d1, r.d2);
  }

  if (!o.svg.empty()) {
    std::vector<interp::Point> curve;
    const int n = 400;
    for (int k = 0; k < n; ++k) {
      const double x = Spaced(a, b, k, n);
      curve.push_back({x, s(x)});
    }
    const std::string title = std::string(EndsName(o.ends)) + " cubic spline through " +
                              std::to_string(in.points.size()) + " points";
    if (!interp::WriteSvgPlot(o.svg, title, in.points, curve))
      throw InputError{o.svg + ": cannot write: " + std::strerror(errno)};
    if (!o.csv) std::printf("# plot written to %s\n", o.svg.c_str());
  }
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
    return 2;
  } catch (const DataError& e) {
    std::fprintf(stderr, "zr-interp: %s\n", e.text.c_str());
    return 1;
  } catch (const zrExceptionWithMessage& e) {
    std::fprintf(stderr, "zr-interp: %s\n", e.GetMessageText());
    return 1;
  }
}
