// A Beta-spline tube through stacked plane contours, written as a Wavefront OBJ mesh
// (beta_tube.obj, or the path given as argument) that any mesh viewer opens.
//
// Four sections, a square, a circle, a wider circle and a rounded triangle, are placed at
// rising heights; the tube interpolates them, closed around each section and open along
// the stack. The mesh samples it on a grid of kAround x kAlong vertices: each ring is
// closed (its last quad joins its first vertex), and the two ends are left open.

#include <cmath>
#include <cstdio>

#include "zr/zr.h"

namespace {

constexpr int kAround = 48;  // vertices on each ring, u = i / kAround
constexpr int kAlong = 30;   // rings along the tube, v = j / (kAlong - 1)
constexpr double kPi = 3.14159265358979323846;

// n points on a superellipse |x/r|^p + |y/r|^p = 1, counter-clockwise: p = 2 is a circle,
// a large p nearly a square.
zrSimpleContour2D Section(int n, double r, double p) {
  zrSimpleContour2D c(n);
  for (int i = 0; i < n; ++i) {
    const double a = 2 * kPi * i / n, ca = std::cos(a), sa = std::sin(a);
    c[i] = zrVec2(r * std::copysign(std::pow(std::fabs(ca), 2 / p), ca),
                  r * std::copysign(std::pow(std::fabs(sa), 2 / p), sa));
  }
  return c;
}

// n points around a triangle with rounded corners.
zrSimpleContour2D Triangle(int n, double r) {
  zrSimpleContour2D c(n);
  for (int i = 0; i < n; ++i) {
    const double a = 2 * kPi * i / n;
    const double rr = r * (1 + 0.25 * std::cos(3 * a));
    c[i] = zrVec2(rr * std::cos(a), rr * std::sin(a));
  }
  return c;
}

}  // namespace

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : "beta_tube.obj";

  zrSimpleArray<zrSimpleContour2D> sections(4);
  zrSimpleArray<double> heights(4);
  sections[0] = Section(16, 1.0, 8);  // each empty element takes a block of its own
  sections[1] = Section(16, 0.8, 2);
  sections[2] = Section(16, 1.3, 2);
  sections[3] = Triangle(16, 0.9);
  for (int i = 0; i < 4; ++i) heights[i] = 1.5 * i;

  BetaTube tube(1.0, 0.0);  // skew 1, tension 0: the uniform cubic B-spline
  tube.MakeInterpolation(sections, heights);
  std::printf("tube through %d sections of %d points; control net %d x %d\n", tube.GetRowNumber(),
              tube.GetColumnNumber(), tube.GetControlNet().ColumnLen(),
              tube.GetControlNet().LineLen());

  // The surface passes through its data: at v = 0 and u = 0 it is (near) a section point
  // at height 0, at v = 1 at the top height.
  const zrTVec3<double> bottom = tube(0.0, 0.0), top = tube(0.0, 1.0);
  std::printf("surface at (u, v) = (0, 0): (%.4f, %.4f, %.4f); at (0, 1): (%.4f, %.4f, %.4f)\n",
              bottom.X(), bottom.Y(), bottom.Z(), top.X(), top.Y(), top.Z());

  std::FILE* f = std::fopen(path, "w");
  if (!f) {
    std::perror(path);
    return 1;
  }
  std::fprintf(f, "# Beta-spline tube through 4 sections, %d x %d vertices\n", kAround, kAlong);
  std::fprintf(f, "o beta_tube\n");
  bool finite = true;
  for (int j = 0; j < kAlong; ++j) {
    for (int i = 0; i < kAround; ++i) {
      const zrTVec3<double> p =
          tube(static_cast<double>(i) / kAround, static_cast<double>(j) / (kAlong - 1));
      finite = finite && std::isfinite(p.X()) && std::isfinite(p.Y()) && std::isfinite(p.Z());
      std::fprintf(f, "v %.6f %.6f %.6f\n", p.X(), p.Y(), p.Z());
    }
  }
  // OBJ vertices count from 1; vertex (i, j) is number j * kAround + i + 1.
  int faces = 0;
  for (int j = 0; j + 1 < kAlong; ++j) {
    for (int i = 0; i < kAround; ++i) {
      const int a = j * kAround + i + 1, b = j * kAround + (i + 1) % kAround + 1;
      std::fprintf(f, "f %d %d %d %d\n", a, b, b + kAround, a + kAround);
      ++faces;
    }
  }
  if (std::fclose(f) != 0) {
    std::perror(path);
    return 1;
  }
  std::printf("wrote %s: %d vertices, %d quads\n", path, kAround * kAlong, faces);
  const bool ok = finite && std::fabs(bottom.Z()) < 1e-9 && std::fabs(top.Z() - 4.5) < 1e-9;
  if (!ok) std::printf("MISMATCH: the surface does not span the sections\n");
  return ok ? 0 : 1;
}
