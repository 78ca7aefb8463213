#include "zr/curves/spline_curve.h"

#include <cmath>

namespace {

// The nodes (i / (n - 1), coordinate `axis` of point i).
zrSimpleArray<zrColumnVector<double>> Nodes(const zrCurve2D& c, int axis) {
  const int n = c.Len();
  zrSimpleArray<zrColumnVector<double>> nodes(n);
  zrColumnVector<double> node(2);
  for (int i = 0; i < n; ++i) {
    node[0] = static_cast<double>(i) / static_cast<double>(n - 1);
    node[1] = c[i][axis];
    nodes[i] = node;
  }
  return nodes;
}

// The slope of the chord between points i and j, coordinate `axis`, over the nodes' t.
double Slope(const zrCurve2D& c, int axis, int i, int j) {
  const int n = c.Len();
  const double ti = static_cast<double>(i) / static_cast<double>(n - 1);
  const double tj = static_cast<double>(j) / static_cast<double>(n - 1);
  return (c[j][axis] - c[i][axis]) / (tj - ti);
}

// The spline of coordinate `axis` with the end type's conditions.
void BuildOpen(zrSpline<double>& s, const zrCurve2D& c, int axis, int type) {
  zrSimpleArray<int> codes(2);
  zrMatrix<double> values(2, 2);
  values(0, 0) = values(0, 1) = values(1, 0) = values(1, 1) = 0.0;
  if (type == 1) {
    codes[0] = 3;
    codes[1] = 0;
    const int n = c.Len();
    values(0, 0) = Slope(c, axis, 0, 1);
    values(0, 1) = Slope(c, axis, n - 2, n - 1);
  } else {
    codes[0] = 0;
    codes[1] = 3;
  }
  s.Set(Nodes(c, axis));
  s.MkSpline3(codes, values);
}

const int kMaxHalvings = 20;

}  // namespace

ZR_DEFINE_TYPE_IDENTITY(zrSplineCurve2D)

zrSplineCurve2D::zrSplineCurve2D(const zrCurve2D& c) {
  if (c.Len() < 4) throw BadParameters("Spline must have 4 points at least");
  x_.Set(Nodes(c, 0));
  y_.Set(Nodes(c, 1));
  x_.MkPeriodSpline3();
  y_.MkPeriodSpline3();
}

zrSplineCurve2D::zrSplineCurve2D(const zrCurve2D& c, int type) {
  if (c.Len() < 3) throw BadParameters("Spline must have 3 points at least");
  if (type != 1 && type != 2) throw BadParameters("zrSplineCurve2D: Wrong type");
  BuildOpen(x_, c, 0, type);
  BuildOpen(y_, c, 1, type);
}

zrSplineCurve2D::zrSplineCurve2D(const zrSplineCurve2D& other)
    : zrUsingNew(other), x_(other.x_), y_(other.y_) {}

zrSplineCurve2D& zrSplineCurve2D::operator=(const zrSplineCurve2D& other) {
  x_ = other.x_;
  y_ = other.y_;
  return *this;
}

zrSplineCurve2D::~zrSplineCurve2D() = default;

double zrSplineCurve2D::GetLengthOfCurve() const {
  if (x_.GetNumberOfPoint() <= 1) return 0.0;
  auto speed = [this](double t) {
    const double dx = x_.Derivative(t, 1);
    const double dy = y_.Derivative(t, 1);
    return std::sqrt(dx * dx + dy * dy);
  };
  const double ends = speed(0.0) + speed(1.0);
  double even = 0.0;        // samples kept from the coarser steps
  double odd = speed(0.5);  // the newest midpoints
  double h = 0.5;
  double last = h / 3.0 * (ends + 4.0 * odd + 2.0 * even);
  int intervals = 2;
  for (int k = 0; k < kMaxHalvings; ++k) {
    h /= 2.0;
    intervals *= 2;
    even += odd;
    odd = 0.0;
    for (int m = 1; m < intervals; m += 2) odd += speed(m * h);
    const double next = h / 3.0 * (ends + 4.0 * odd + 2.0 * even);
    const bool done = std::fabs(next - last) < 0.001;
    last = next;
    if (done) break;
  }
  return last;
}
