// The examples of the README, compiled and run. Each region between a
// "// [readme:<section>]" line and the next "// [end]" line is copied verbatim into the
// README's code block of that section; zr_readme_snippets_match keeps the two equal.
#include <gtest/gtest.h>

#include <zr/zr.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

// The first example of "Using zr", main's body as the README shows it.
TEST(Readme, UsingZrConveniences) {
  std::vector<double> x = {0, 1, 2.5, 4}, y = {1, 3, 0, 2};  // x strictly increasing
  zrSpline<double> s = zrSpline<double>::Cubic(x.data(), y.data(), static_cast<int>(x.size()),
                                               zrSplineEnd::Natural());
  // also zrSplineEnd::Clamped(left slope, right slope) and zrSplineEnd::Periodic();
  // x and y may be zrArray<double> or zrVector<double> as well
  zrArray<double> at(9), value, slope;
  for (int i = 0; i < at.Len(); ++i) at[i] = 0.5 * i;     // 0, 0.5, ..., 4
  s.Value(at, value);                                     // value[i] == s(at[i]), bit for bit
  s.Derivative(at, 1, slope);                             // slope[i] == s.Derivative(at[i], 1)
  std::printf("%g %g %g\n", s(1.0), value[2], slope[8]);  // 3 3 2.55856

  zrArray<int> range(3);
  range[0] = 4;  // index i along dimension 0
  range[1] = 3;  // j along dimension 1
  range[2] = 2;  // k along dimension 2
  zrArrayND<double> a(range);
  a.Fill(0.0);
  a(3, 2, 1) = 5.0;  // no range check, like operator[]
  zrArrayND<double> f;
  f.Set(a);
  f.Flip(0);            // a view: f(i, j, k) is a(3 - i, j, k)
  f.at(0, 0, 0) = 7.0;  // checked, and written into a's block: a(3, 0, 0) is 7
  std::printf("%g %g\n", f(0, 2, 1), a(3, 0, 0));  // 5 7
  try {
    a.at(4, 0, 0);
  } catch (const BadParameters& e) {
    // Invalid parameters : zrArrayND::at: index 4 on axis 0 is outside [0, 4).
    std::printf("%s\n", e.GetMessageText());
  }
  EXPECT_STREQ(zrExceptionWithMessageGetMessage(),
               "Invalid parameters : zrArrayND::at: index 4 on axis 0 is outside [0, 4).");
  EXPECT_TRUE(value[2] == 3.0 && slope[8] == s.Derivative(4.0, 1) && a(3, 2, 1) == 5.0 &&
              a(3, 0, 0) == 7.0);
}

// The second example of "Using zr": the same spline through the full interface.
TEST(Readme, UsingZrFullInterface) {
  std::vector<double> x = {0, 1, 2.5, 4}, y = {1, 3, 0, 2};
  const zrSpline<double> s = zrSpline<double>::Cubic(x.data(), y.data(), 4, zrSplineEnd::Natural());
  zrSimpleArray<zrColumnVector<double>> points(4);  // (x, y) a point
  for (int i = 0; i < points.Len(); ++i) {
    points[i].Set(2);
    points[i][0] = x[i];
    points[i][1] = y[i];
  }
  zrSpline<double> full(points);
  zrSimpleArray<int> codes(2);
  codes[0] = 0;  // bits of the ends with a first derivative given: none
  codes[1] = 3;  // bits of the ends with a second derivative given: both (1 left, 2 right)
  zrMatrix<double> values(2, 2);
  values.Fill(0.0);  // row 0 first derivatives, row 1 second ones; column 0 the left end
  full.MkSpline3(codes, values);  // full(t) == s(t) for every t, bit for bit
  for (double t = 0; t <= 4; t += 0.125) EXPECT_EQ(full(t), s(t)) << t;
}

TEST(Readme, Core) {
  // [readme:core]
  int log = zrIntLog2(1000);  // 9: 1000 halves nine times before it is 1
  zrArray<double> a(3, 0.0);
  const char* text = "";
  try {
    a.Mid(2, 5);  // past the end
  } catch (const zrExceptionWithMessage& e) {
    text = e.GetMessageText();  // "Invalid parameters : zrSimpleArray<T>::Mid: Out of Range"
  }
  // [end]
  EXPECT_TRUE(log == 9 &&
              std::strcmp(text, "Invalid parameters : zrSimpleArray<T>::Mid: Out of Range") == 0);
}

TEST(Readme, ValuesAndArrays) {
  // [readme:values]
  zrComplex z = zrComplex(1, 2) * zrComplex(3, -1);  // 5 + 5i
  z *= zrComplex(1, 1);                              // *= ADDS: 6 + 6i
  zrVec2 v = zrVec2(1, 2) * zrVec2(3, 4);            // componentwise: (3, 8)
  // [end]
  EXPECT_TRUE(z.Re() == 6.0 && z.Im() == 6.0 && v.X() == 3.0 && v[1] == 8.0);

  // [readme:arrays]
  zrArray<int> a(6, 0);
  zrArray<int> tail = a.Right(2);  // a window on a's block
  tail.Fill(7);                    // a is 0 0 0 0 7 7
  zrArray<int> copy(a);            // a private copy
  copy[0] = 1;                     // a keeps its 0
  // [end]
  EXPECT_TRUE(a.Sum() == 14 && a[0] == 0 && copy.Sum() == 15);
}

TEST(Readme, NDArrayLinalgAndNumeric) {
  // [readme:ndarray]
  zrArray<int> range(2);
  range[0] = 3;  // three along axis 0
  range[1] = 2;  // two along axis 1
  zrArrayND<double> grid(range);
  grid.Fill(1.0);
  grid.front() = 5.0;
  double sum = 0;
  for (double x : grid) sum += x;  // 10: every element once
  // [end]
  EXPECT_TRUE(grid.GetSize() == 6 && sum == 10.0);

  // [readme:linalg]
  zrMatrix<double> m(2, 2);  // x + 2y = 5, 3x + 4y = 6
  m(0, 0) = 1;
  m(0, 1) = 2;
  m(1, 0) = 3;
  m(1, 1) = 4;
  zrColumnVector<double> b(2), x;
  b[0] = 5;
  b[1] = 6;
  m.SolveEquationGaussMethod(x, b);  // x = (-4, 4.5); m and b are eliminated in place
  // [end]
  EXPECT_TRUE(std::fabs(x[0] + 4.0) < 1e-14 && std::fabs(x[1] - 4.5) < 1e-14);

  // [readme:numeric]
  zrColumnVector<double> k(3);  // 3 (x - 1)^2 + 2 (x - 1) + 1: highest power first
  k[0] = 3;
  k[1] = 2;
  k[2] = 1;
  zrPolynom<double> p(k, 1.0, zrPolynom<double>::PowerKoef);
  double y = p(3.0);                    // 17
  double slope = p.Derivative(3.0, 1);  // 14
  zrFCTT dct(3);       // a cosine transform plan for length 3, reused for every call
  zrVector<double> c;  // takes fresh storage of length 3
  dct.Forward(k, c);   // c = (6, sqrt(3), 0), the DCT-II of (3, 2, 1); dct.Inverse(c) undoes it
  // The minimum of cos on [0, 6], and a maximum found from a start point and a first step:
  zrExtremumResult low =
      zrFindExtremum([](double x) { return std::cos(x); }, 0.0, 6.0, zrExtremumKind::Minimum);
  zrExtremumResult peak = zrFindExtremum([](double x) { return x * std::exp(-x); },
                                         zrExtremumStart{0.0, 0.5}, zrExtremumKind::Maximum);
  // low.x = pi and peak.x = 1, each within 2 * (absTol + relTol * |x|); both converged
  // [end]
  EXPECT_TRUE(y == 17.0 && slope == 14.0 && low.converged && peak.converged);
  EXPECT_TRUE(std::fabs(c[0] - 6) < 1e-14 && std::fabs(c[1] - std::sqrt(3.0)) < 1e-14 &&
              std::fabs(c[2]) < 1e-14);
  dct.Inverse(c);
  EXPECT_NEAR(c[1], 2.0, 1e-14);
  EXPECT_TRUE(std::fabs(low.x - std::acos(-1.0)) < 1e-7 && std::fabs(peak.x - 1) < 1e-7);
}

TEST(Readme, GeometryCurvesTextAndGraph) {
  // [readme:geometry]
  zrGeom::StraightLine2D diagonal(zrVec2(0, 0), zrVec2(2, 2));
  zrGeom::StraightLine2D level(zrVec2(0, 1), zrVec2(5, 1));
  zrVec2 at;
  bool met = IntersectLine2DLine2D(diagonal, level, &at);  // true, at (1, 1)
  // [end]
  EXPECT_TRUE(met && std::fabs(at.X() - 1) < 1e-15 && std::fabs(at[1] - 1) < 1e-15);

  // [readme:curves]
  zrSimpleContour2D square(4);  // counter-clockwise, side 2
  square[0] = zrVec2(0, 0);
  square[1] = zrVec2(2, 0);
  square[2] = zrVec2(2, 2);
  square[3] = zrVec2(0, 2);
  double area = square.GetS();                      // 4
  double perimeter = square.GetLengthOfCurve();     // 8
  int inside = square.IsInsidePoint(zrVec2(1, 1));  // 1; -1 outside, 0 on the edge
  // [end]
  EXPECT_TRUE(area == 4.0 && perimeter == 8.0 && inside == 1);
  EXPECT_TRUE(square.IsInsidePoint(zrVec2(3, 1)) == -1 && square.IsInsidePoint(zrVec2(2, 1)) == 0);

  // [readme:text]
  zrString line("x = 1.5, y");  // const text: line owns a copy
  zrSimpleArray<zrString> words;
  line.Tokenize(words, " =,");            // "x", "1.5", "y": views of line's characters
  zrString joined = words[0] + words[2];  // "xy", a string of its own
  // [end]
  EXPECT_TRUE(words.Len() == 3 && words[1] == "1.5" && joined == "xy");

  // [readme:graph]
  zrListQueue<int> queue;  // first in, first out
  queue.Put(1);
  queue.Put(2);
  int first = queue.Get();  // 1; Get on an empty queue throws
  // [end]
  EXPECT_TRUE(first == 1 && queue.GetCount() == 1 && queue.Get() == 2 && queue.IsEmpty());
}
