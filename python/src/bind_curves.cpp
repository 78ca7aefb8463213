// Contours, Beta-spline curves and contours, and the Beta-spline tube.
//
// Contour is zrSimpleContour2D. It copies the N x 2 points it is built from; its points are
// then handed out without copying: `points` and the buffer protocol (np.asarray(contour))
// give N x 2 arrays over the contour's block, which hold the block (counted) and see the
// in-place reorderings (set_orientation, align). Cuts and clips return new contours.
// The Beta-spline objects own their control points; their vertex arrays are new arrays.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "python/src/bindings.h"
#include "python/src/ndarray_view.h"
#include "python/src/points.h"
#include "zr/zr.h"

namespace zr::python {

namespace {

using C = zrSimpleContour2D;
using V3 = zrTVec3<double>;

// An N x 2 array over the contour's points that holds their block.
py::array ContourView(const C& c) {
  auto* holder = new zrSimpleArray<zrVec2>();
  if (c.Len() > 0) holder->SetDirectly(c.GetPointer(), c.Len(), c);
  py::capsule base(holder, [](void* p) { delete static_cast<zrSimpleArray<zrVec2>*>(p); });
  return ViewPoints2(holder->GetPointer(), holder->Len(), base);
}

// The contour, refused when it has no points: the library's centre, bounding rectangle and
// distance queries read point 0 without checking that there is one.
const C& NonEmpty(const C& c) {
  if (c.Len() == 0) throw py::value_error("the contour has no points");
  return c;
}

std::string Num(double v) { return py::repr(py::float_(v)).cast<std::string>(); }

std::string ContourRepr(const C& c) {
  std::string out = "Contour([";
  for (int i = 0; i < c.Len(); ++i) {
    if (i == 6 && c.Len() > 8) {
      out += ", ...";
      i = c.Len() - 2;
      continue;
    }
    out += std::string(i ? ", [" : "[") + Num(c[i].X()) + ", " + Num(c[i].Y()) + "]";
  }
  return out + "])";
}

void BindContour(py::module_& m) {
  py::class_<C> contour(m, "Contour", py::buffer_protocol(), R"doc(
A closed plane polygon: its last point joins the first.

Contour(points) copies an N x 2 array of points (any layout; integers and floats, not
complex numbers). `points` (and np.asarray(contour)) is an N x 2 array over the contour's
own storage, without copying, that holds it: writes through it change the contour, and
the contour's in-place reorderings show in it. Orientation 0 is
counter-clockwise (positive signed area), 1 anything else.

>>> square = zr.Contour([[0.0, 0.0], [2.0, 0.0], [2.0, 2.0], [0.0, 2.0]])
>>> square.area(), square.perimeter(), square.orientation()
(4.0, 8.0, 0)
>>> square.inside((1.0, 1.0)), square.inside((2.0, 1.0)), square.inside((3.0, 1.0))
(1, 0, -1)
)doc");
  EnableViewBuffer<C, ContourView>(contour);
  contour.def(py::init([](py::handle points) { return ReadPoints2<C>(points); }), py::arg("points"))
      .def_property_readonly("points", &ContourView,
                             "The points, an N x 2 array over the contour's storage.")
      .def("__len__", &C::Len)
      .def_property_readonly(
          "holders", [](const C& c) { return Holders(c); },
          "The number of holders of the points' block: the contour and each live array over\n"
          "the points.\n\n"
          ">>> c = zr.Contour([[0, 0], [1, 0], [0, 1]]); v = c.points; c.holders\n2\n")
      .def("perimeter", &C::GetLengthOfCurve, "The length of the closed polyline.")
      .def("area", &C::GetS, "The enclosed area, |signed area|.")
      .def("orientation", &C::GetOrient,
           "0 when the signed area is positive (counter-clockwise), else 1.")
      .def("set_orientation", &C::SetOrient, py::arg("orientation"),
           "Reverses the points in place unless the orientation is already this one.\n\n"
           ">>> c = zr.Contour([[0, 0], [0, 1], [1, 0]]); c.set_orientation(0); c.orientation()\n"
           "0\n")
      .def(
          "__call__", [](const C& c, py::handle t) { return CurvePoints<2>(c, t); }, py::arg("t"),
          "The point at parameter t in [0, 1] (each edge takes an equal share; t wraps\n"
          "with period 1): a Vec2, or an N x 2 array for an array of t.\n\n"
          ">>> zr.Contour([[0, 0], [2, 0], [2, 2], [0, 2]])(0.125)\nVec2(1.0, 0.0)\n")
      .def(
          "is_self_intersecting", [](const C& c) { return c.IsIntersect() == 1; },
          "Whether two edges cross.\n\n"
          ">>> zr.Contour([[0, 0], [1, 1], [1, 0], [0, 1]]).is_self_intersecting()\nTrue\n")
      .def(
          "inside",
          [](const C& c, py::handle p) -> py::object {
            if (!py::isinstance<zrVec2>(p)) {
              const py::array in = AsArray(p);
              if (in.ndim() == 2) {
                const auto a = PointArray(in, 2);
                const int n = static_cast<int>(a.shape(0));
                py::array_t<int> out(n);
                for (int i = 0; i < n; ++i)
                  out.mutable_data()[i] =
                      c.IsInsidePoint(zrVec2(a.data()[2 * i], a.data()[2 * i + 1]));
                return std::move(out);
              }
            }
            return py::int_(c.IsInsidePoint(ToVec2(p)));
          },
          py::arg("p"), "1 inside, 0 on the contour, -1 outside; an int array for an N x 2 array.")
      .def(
          "align",
          [](C& c, const C& other, const std::string& method) {
            if (method == "band")
              c.MakeCoherentS(other);
            else if (method == "nearest")
              c.MakeCoherent(other);
            else
              throw py::value_error("method must be 'band' or 'nearest'");
          },
          py::arg("other"), py::arg("method") = "band",
          R"doc(Aligns this contour with other of the same length, in place: takes its
orientation, then rotates the points to the start that matches other best: the
smallest band between the two ('band'), or the farthest-point rule ('nearest').

>>> a = zr.Contour([[0, 0], [1, 0], [1, 1], [0, 1]])
>>> b = zr.Contour([[1, 1], [0, 1], [0, 0], [1, 0]])
>>> b.align(a); b.points.tolist() == a.points.tolist()
True
)doc")
      .def("cut", &C::CutByStraightLine, py::arg("line"),
           R"doc(The part on the right of the directed line (side_distance >= 0), a new
contour; at least 3 points are needed.

>>> c = zr.Contour([[0, 0], [2, 0], [2, 2], [0, 2]])
>>> c.cut(zr.Line2D((1.0, 0.0), (1.0, 2.0))).area()     # keeps x >= 1
2.0
)doc")
      .def(
          "clip",
          [](const C& c, int width, int height) {
            zrArray<int> range(2);
            range[0] = width, range[1] = height;
            return c.zrPolyLineToRange(range);
          },
          py::arg("width"), py::arg("height"),
          "The part inside [0, width - 1] x [0, height - 1], a new contour.\n\n"
          ">>> zr.Contour([[-1, -1], [3, -1], [3, 3], [-1, 3]]).clip(3, 3).area()\n4.0\n")
      .def(
          "center", [](const C& c) { return NonEmpty(c).GetCenter(); },
          "The mean of the points; ValueError for a contour without points.")
      .def(
          "bounding_rect", [](const C& c) { return NonEmpty(c).GetRect(); },
          "The bounding rectangle; ValueError for a contour without points.")
      .def(
          "nearest",
          [](const C& c, const zrVec2& p) {
            double d = 0;
            const int i = NonEmpty(c).GetIndexOfMinDistance(d, p);
            return py::make_tuple(i, d);
          },
          py::arg("p"), "(index, distance) of the point nearest to p; ValueError without points.")
      .def(
          "farthest",
          [](const C& c, const zrVec2& p) {
            double d = 0;
            const int i = NonEmpty(c).GetIndexOfMaxDistance(d, p);
            return py::make_tuple(i, d);
          },
          py::arg("p"),
          "(index, distance) of the point farthest from p; ValueError without points.")
      .def(
          "copy", [](const C& c) { return C(c); }, "A copy with its own points.")
      .def("__repr__", &ContourRepr);
  DefFlatForm<C>(contour, "zr.Contour([[0, 0], [1, 0], [0, 1]])");
}

// Samples of a curve at t = i / d, i = 0 ... n - 1, as an N x 3 array.
template <class Curve>
py::array_t<double> Samples(const Curve& c, int n, double d) {
  return NewPoints<3>(n, [&](py::ssize_t i) { return c(static_cast<double>(i) / d); });
}

void CheckIndex(const BetaCurve& c, int i) {
  if (i < 0 || i >= c.GetControlNumber()) throw py::index_error("control point index out of range");
}

void BindBeta(py::module_& m) {
  py::class_<BetaSpline>(m, "BetaSpline", R"doc(
The uniform cubic Beta-spline's blending function for a skew and a tension (skew 1 and
tension 0 give the uniform cubic B-spline); the base of the Beta-spline curves and tube.

>>> b = zr.BetaSpline(skew=1.0, tension=0.0)
>>> b.blend(0.0), b.blend(-1.0)
(0.6666666666666666, 0.16666666666666666)
)doc")
      .def(py::init<double, double>(), py::arg("skew") = 1.0, py::arg("tension") = 0.0)
      .def_property_readonly("skew", &BetaSpline::GetSkew)
      .def_property_readonly("tension", &BetaSpline::GetTension)
      .def("blend", &BetaSpline::BetaBlend, py::arg("t"), "B(t), zero outside (-2, 2].")
      .def("blend_derivative", &BetaSpline::BetaBlendDeriv, py::arg("t"),
           "The library's derivative of B (positive on (1, 2], as the library has it).");

  // BetaCurve has virtual operations and its base has none, so the base part does not start
  // at the object's address: pybind11 must apply the cast, which it skips for what it
  // takes as simple single inheritance unless told otherwise.
  py::class_<BetaCurve, BetaSpline>(m, "BetaCurve", py::multiple_inheritance(), R"doc(
An open space curve through n points: it passes through point j at t = j / (n - 1).
Built from an N x 3 array (N x 2 lies at z = 0), with a skew and a tension. Calling it
at t gives a Vec3, at an array of t an N x 3 array; vertices(n) samples it evenly.

>>> c = zr.BetaCurve([[0, 0, 0], [1, 1, 0], [2, 0, 0]])
>>> c(0.5), c.vertices(3).shape
(Vec3(1.0, 1.0, 0.0), (3, 3))
)doc")
      .def(py::init([](py::handle points, double skew, double tension) {
             return BetaCurve(ReadPoints3(points), skew, tension);
           }),
           py::arg("points"), py::arg("skew") = 1.0, py::arg("tension") = 0.0)
      .def(
          "__call__", [](const BetaCurve& c, py::handle t) { return CurvePoints<3>(c, t); },
          py::arg("t"))
      .def("tangent", &BetaCurve::GetTangent, py::arg("t"))
      .def(
          "vertices",
          [](const BetaCurve& c, int n) {
            if (n < 2) throw py::value_error("n must be at least 2");
            return Samples(c, n, n - 1);
          },
          py::arg("n"), "n points at t = i / (n - 1), an n x 3 array.")
      .def("__len__", &BetaCurve::GetControlNumber, "The number of data points.")
      .def_property_readonly(
          "controls",
          [](const BetaCurve& c) {
            return NewPoints<3>(c.GetControlNumber(),
                                [&](py::ssize_t i) { return c.GetControl(static_cast<int>(i)); });
          },
          "The control point of every data point, a new N x 3 array.")
      .def(
          "set_control",
          [](BetaCurve& c, int i, const V3& p) {
            CheckIndex(c, i);
            c.SetControl(i, p);
          },
          py::arg("i"), py::arg("p"))
      .def("length", &BetaCurve::GetLength, "The sum of 49 chords (the library's measure).")
      .def(
          "rebuild", [](BetaCurve& c, int n) { c.Rebuild(n); }, py::arg("n"),
          "Resamples the curve into at most n points about evenly spaced along it and\n"
          "interpolates them (nothing happens unless n > 4).")
      .def("crossing", &BetaCurve::FindCrossection, py::arg("direction"), py::arg("point"),
           py::arg("t0") = 0.0,
           "The parameter where the curve meets, in the x-y plane, the line through point\n"
           "along direction (Newton's method from t0); 0 when it fails.")
      .def("__repr__", [](const BetaCurve& c) {
        return "<zr.BetaCurve of " + std::to_string(c.GetControlNumber()) + " points>";
      });

  py::class_<BetaContour, BetaCurve>(m, "BetaContour", py::multiple_inheritance(), R"doc(
A closed space curve through n points: point j at t = j / n, back to point 0 at t = 1.
vertices(n) gives n points at t = i / n (the ring, without repeating the first).

>>> c = zr.BetaContour([[1, 0], [0, 1], [-1, 0], [0, -1]])
>>> c(0.25), c.vertices(8).shape
(Vec3(0.0, 1.0, 0.0), (8, 3))
)doc")
      .def(py::init([](py::handle points, double skew, double tension) {
             return BetaContour(ReadPoints3(points), skew, tension);
           }),
           py::arg("points"), py::arg("skew") = 1.0, py::arg("tension") = 0.0)
      .def(
          "vertices",
          [](const BetaContour& c, int n) {
            if (n < 1) throw py::value_error("n must be at least 1");
            return Samples(c, n, n);
          },
          py::arg("n"))
      .def(
          "rebuild", [](BetaContour& c, int n) { c.Rebuild(n); }, py::arg("n"))
      .def("__repr__", [](const BetaContour& c) {
        return "<zr.BetaContour of " + std::to_string(c.GetControlNumber()) + " points>";
      });

  py::class_<BetaTube, BetaSpline>(m, "BetaTube", R"doc(
A Beta-spline surface closed around (u) and open along (v), through a net of m rows by
k points: BetaTube(net) from an m x k x 3 array, or BetaTube.from_contours(contours,
heights) through plane contours stacked at the heights. tube(u, v) is a point;
mesh(nu, nv) gives the vertex array (nv * nu x 3, vertex j * nu + i at u = i / nu,
v = j / (nv - 1)) and the triangle array (2 * nu * (nv - 1) x 3 vertex indices).

>>> ring = [[np.cos(a), np.sin(a)] for a in np.linspace(0, 2 * np.pi, 8, endpoint=False)]
>>> tube = zr.BetaTube.from_contours([ring, ring, ring], [0.0, 1.0, 2.0])
>>> vertices, faces = tube.mesh(16, 5)
>>> vertices.shape, faces.shape, tube.rows, tube.columns
((80, 3), (128, 3), 3, 8)
)doc")
      .def(py::init([](py::handle net, double skew, double tension) {
             const py::array in = AsArray(net);
             if (in.ndim() != 3 || in.shape(2) != 3 || in.shape(0) > INT_MAX ||
                 in.shape(1) > INT_MAX)
               throw py::value_error("expected an m x k x 3 array of points");
             const auto a = Doubles(in);
             const int rows = static_cast<int>(a.shape(0)), cols = static_cast<int>(a.shape(1));
             zrMatrix<V3> points(rows, cols);
             for (int i = 0; i < rows; ++i)
               for (int j = 0; j < cols; ++j)
                 points(i, j) = V3(a.at(i, j, 0), a.at(i, j, 1), a.at(i, j, 2));
             return BetaTube(points, skew, tension);
           }),
           py::arg("net"), py::arg("skew") = 1.0, py::arg("tension") = 0.0)
      .def_static(
          "from_contours",
          [](py::sequence contours, py::handle heights, double skew, double tension) {
            const auto h = Doubles(heights);
            if (h.ndim() != 1 || h.size() > INT_MAX)
              throw py::value_error("heights must be one-dimensional");
            zrSimpleArray<zrSimpleContour2D> sections;
            if (py::len(contours) > 0) sections.Set(static_cast<int>(py::len(contours)));
            for (int i = 0; i < sections.Len(); ++i) {
              py::handle item = contours[static_cast<size_t>(i)];
              C section = py::isinstance<C>(item) ? item.cast<C>() : ReadPoints2<C>(item);
              sections[i].swap(section);
            }
            zrSimpleArray<double> hs;
            if (h.size() > 0) hs.Set(static_cast<int>(h.size()));
            for (int i = 0; i < hs.Len(); ++i) hs[i] = h.data()[i];
            BetaTube tube(skew, tension);
            tube.MakeInterpolation(sections, hs);
            return tube;
          },
          py::arg("contours"), py::arg("heights"), py::arg("skew") = 1.0, py::arg("tension") = 0.0,
          "The tube through plane contours (Contour or N x 2 arrays), contour i at height\n"
          "heights[i]. Contours of different sizes (or over 200 points) are resampled to\n"
          "a common count, and each is aligned with the one before; the caller's contours\n"
          "are not changed.")
      .def("__call__", &BetaTube::operator(), py::arg("u"), py::arg("v"))
      .def_property_readonly("rows", &BetaTube::GetRowNumber)
      .def_property_readonly("columns", &BetaTube::GetColumnNumber)
      .def_property_readonly(
          "control_net",
          [](const BetaTube& t) {
            const zrMatrix<V3>& net = t.GetControlNet();
            const int rows = t.GetRowNumber() ? t.GetRowNumber() + 2 : 0;
            const int cols = t.GetColumnNumber() ? t.GetColumnNumber() + 3 : 0;
            py::array_t<double> out({py::ssize_t{rows}, py::ssize_t{cols}, py::ssize_t{3}});
            for (int i = 0; i < rows; ++i)
              for (int j = 0; j < cols; ++j)
                for (int k = 0; k < 3; ++k) out.mutable_at(i, j, k) = net(i, j)[k];
            return out;
          },
          "The control net, a new (rows + 2) x (columns + 3) x 3 array.")
      .def(
          "mesh",
          [](const BetaTube& t, int nu, int nv) {
            if (nu < 3 || nv < 2) throw py::value_error("mesh needs nu >= 3 and nv >= 2");
            const py::ssize_t n = py::ssize_t{nu} * nv;
            auto vertices = NewPoints<3>(n, [&](py::ssize_t k) {
              const auto i = static_cast<int>(k % nu), j = static_cast<int>(k / nu);
              return t(static_cast<double>(i) / nu, static_cast<double>(j) / (nv - 1));
            });
            py::array_t<std::int64_t> faces({py::ssize_t{2} * nu * (nv - 1), py::ssize_t{3}});
            std::int64_t* f = faces.mutable_data();
            for (std::int64_t j = 0; j + 1 < nv; ++j)
              for (std::int64_t i = 0; i < nu; ++i) {
                const std::int64_t a = j * nu + i, b = j * nu + (i + 1) % nu, c = a + nu,
                                   d = b + nu;
                *f++ = a, *f++ = b, *f++ = d;
                *f++ = a, *f++ = d, *f++ = c;
              }
            return py::make_tuple(vertices, faces);
          },
          py::arg("nu"), py::arg("nv"))
      .def("__repr__", [](const BetaTube& t) {
        return "<zr.BetaTube of " + std::to_string(t.GetRowNumber()) + " x " +
               std::to_string(t.GetColumnNumber()) + " points>";
      });
}

}  // namespace

void BindCurves(py::module_& m) {
  BindContour(m);
  BindBeta(m);
}

}  // namespace zr::python
