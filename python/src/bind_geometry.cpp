// Plane and space points, rectangles, the lines, rays, segments and planes of zrGeom, and
// the coordinate transforms.
//
// Every class here is a plain value, copied whole: nothing is shared with the objects a
// value is made from. Vec2 and Vec3 export their coordinates through the buffer protocol
// (np.asarray(v) is a view of v). Wherever a point is taken, a Vec2/Vec3 or any sequence
// of 2/3 numbers will do. A transform's add_... steps change it in place and return it,
// so that steps chain.
#include <pybind11/numpy.h>
#include <pybind11/operators.h>
#include <pybind11/pybind11.h>

#include <string>

#include "python/src/bindings.h"
#include "python/src/points.h"
#include "zr/zr.h"

namespace zr::python {

namespace {

using V3 = zrTVec3<double>;
using T2 = zrTransformCoord2D;
using T3 = zrTransformCoord3D;

std::string Num(double v) { return py::repr(py::float_(v)).cast<std::string>(); }
std::string Repr(const zrVec2& v) { return "Vec2(" + Num(v.X()) + ", " + Num(v.Y()) + ")"; }
std::string Repr(const V3& v) {
  return "Vec3(" + Num(v.X()) + ", " + Num(v.Y()) + ", " + Num(v.Z()) + ")";
}

// A coordinate by index, negative ones counting from the end as Python's do.
template <class V, int N>
double At(const V& v, int i) {
  if (i < 0) i += N;
  if (i < 0 || i >= N) throw py::index_error("coordinate index out of range");
  return v[i];
}

py::object Opt(bool hit, const zrVec2& p) { return hit ? py::cast(p) : py::none(); }

template <int N, class M>
M ReadMatrix(py::handle h) {
  const auto a = Doubles(h);
  if (a.ndim() != 2 || a.shape(0) != N || a.shape(1) != N)
    throw py::value_error("expected a " + std::to_string(N) + " x " + std::to_string(N) +
                          " matrix");
  M m;
  for (int i = 0; i < N; ++i)
    for (int j = 0; j < N; ++j) m(i, j) = a.at(i, j);
  return m;
}

template <int N, class M>
py::array_t<double> MatrixArray(const M& m) {
  py::array_t<double> out({py::ssize_t{N}, py::ssize_t{N}});
  for (int i = 0; i < N; ++i)
    for (int j = 0; j < N; ++j) out.mutable_at(i, j) = m(i, j);
  return out;
}

// A transform's map of one point (a Vec or a sequence: a Vec back) or of an N x dim array
// (a new N x dim array), point by point through the library.
template <int Dim, class Vec, class Read, class Map>
py::object MapPoints(py::handle p, Read read, Map map) {
  if (!py::isinstance<Vec>(p)) {
    const py::array in = AsArray(p);
    if (in.ndim() == 2) {
      const auto a = PointArray(in, Dim);
      const int n = static_cast<int>(a.shape(0));
      py::array_t<double> out({static_cast<py::ssize_t>(n), py::ssize_t{Dim}});
      const double* in = a.data();
      double* o = out.mutable_data();
      for (int i = 0; i < n; ++i) {
        Vec v;
        for (int k = 0; k < Dim; ++k) v[k] = in[Dim * i + k];
        const Vec w = map(v);
        for (int k = 0; k < Dim; ++k) o[Dim * i + k] = w[k];
      }
      return std::move(out);
    }
  }
  return py::cast(map(read(p)));
}

std::string Repr(const T2& t) {
  const zrMatrix2x2& m = t.GetMatrix();
  return "Transform2D(matrix=[[" + Num(m(0, 0)) + ", " + Num(m(0, 1)) + "], [" + Num(m(1, 0)) +
         ", " + Num(m(1, 1)) + "]], shift=(" + Num(t.GetShift().X()) + ", " +
         Num(t.GetShift().Y()) + "))";
}
std::string Repr(const T3& t) {
  const zrTMatrix3x3<double>& m = t.GetMatrix();
  std::string out = "Transform3D(matrix=[";
  for (int i = 0; i < 3; ++i)
    out += std::string(i ? ", [" : "[") + Num(m(i, 0)) + ", " + Num(m(i, 1)) + ", " + Num(m(i, 2)) +
           "]";
  const V3& s = t.GetShift();
  return out + "], shift=(" + Num(s.X()) + ", " + Num(s.Y()) + ", " + Num(s.Z()) + "))";
}

// What Vec2 and Vec3 share: the buffer over the coordinates, componentwise arithmetic with
// a vector or a float, equality, the sequence protocol and the repr.
template <class V, int N>
void DefVectorCommon(py::class_<V>& cls) {
  cls.def_buffer([](V& v) {
       return py::buffer_info(v.GetVec(), sizeof(double), py::format_descriptor<double>::format(),
                              1, {N}, {sizeof(double)});
     })
      .def(py::self + py::self)
      .def(py::self - py::self)
      .def(py::self * py::self)
      .def(py::self / py::self)
      .def(py::self + double())
      .def(py::self - double())
      .def(py::self * double())
      .def(py::self / double())
      .def(-py::self)
      .def("__eq__", [](const V& a, const V& b) { return a == b; })
      .def("__ne__", [](const V& a, const V& b) { return a != b; })
      .def("__len__", [](const V&) { return N; })
      .def("__getitem__", &At<V, N>)
      .def("__iter__",
           [](const V& v) {
             py::tuple t(N);
             for (int k = 0; k < N; ++k) t[k] = v[k];
             return py::iter(t);
           })
      .def("__repr__", [](const V& v) { return Repr(v); });
}

void BindVectors(py::module_& m) {
  py::class_<zrVec2> v2(m, "Vec2", py::buffer_protocol(), R"doc(
A point or vector of the plane, a plain value of two floats (x, y).

Arithmetic is componentwise (with a Vec2 or a float). np.asarray(v) views the two
coordinates without copying.

>>> v = zr.Vec2(3.0, 4.0)
>>> v.norm(), v + zr.Vec2(1.0, 1.0), v.dot(zr.Vec2(1.0, 0.0))
(5.0, Vec2(4.0, 5.0), 3.0)
)doc");
  v2.def(py::init<double, double>(), py::arg("x") = 0.0, py::arg("y") = 0.0)
      .def(py::init([](py::handle p) { return ToVec2(p); }), py::arg("point"))
      .def_property(
          "x", [](const zrVec2& v) { return v.X(); }, [](zrVec2& v, double x) { v.X() = x; })
      .def_property(
          "y", [](const zrVec2& v) { return v.Y(); }, [](zrVec2& v, double y) { v.Y() = y; })
      .def(
          "dot", [](const zrVec2& a, const zrVec2& b) { return a.ScalarMul(b); }, py::arg("other"),
          "x*other.x + y*other.y.\n\n>>> zr.Vec2(1.0, 2.0).dot(zr.Vec2(3.0, 4.0))\n11.0\n")
      .def("norm", &zrVec2::Norm, "The length.\n\n>>> zr.Vec2(3.0, 4.0).norm()\n5.0\n");
  DefVectorCommon<zrVec2, 2>(v2);
  DefFlatForm<zrVec2>(v2, "zr.Vec2(1.0, 2.0)");

  py::class_<V3> v3(m, "Vec3", py::buffer_protocol(), R"doc(
A point or vector of space, a plain value of three floats (x, y, z).

Arithmetic is componentwise (with a Vec3 or a float); cross is the vector product.
np.asarray(v) views the three coordinates without copying.

>>> zr.Vec3(1.0, 0.0, 0.0).cross(zr.Vec3(0.0, 1.0, 0.0))
Vec3(0.0, 0.0, 1.0)
)doc");
  v3.def(py::init<double, double, double>(), py::arg("x") = 0.0, py::arg("y") = 0.0,
         py::arg("z") = 0.0)
      .def(py::init([](py::handle p) { return ToVec3(p); }), py::arg("point"))
      .def_property(
          "x", [](const V3& v) { return v.X(); }, [](V3& v, double x) { v.X() = x; })
      .def_property(
          "y", [](const V3& v) { return v.Y(); }, [](V3& v, double y) { v.Y() = y; })
      .def_property(
          "z", [](const V3& v) { return v.Z(); }, [](V3& v, double z) { v.Z() = z; })
      .def(
          "dot", [](const V3& a, const V3& b) { return a.ScalarMul(b); }, py::arg("other"),
          "The scalar product.\n\n>>> zr.Vec3(1.0, 2.0, 3.0).dot(zr.Vec3(1.0, 1.0, 1.0))\n6.0\n")
      .def("cross", &V3::VectorMul, py::arg("other"), "The vector product self x other.")
      .def("norm", &V3::Norm, "The length.\n\n>>> zr.Vec3(2.0, 3.0, 6.0).norm()\n7.0\n");
  DefVectorCommon<V3, 3>(v3);
  DefFlatForm<V3>(v3, "zr.Vec3(1.0, 2.0, 3.0)");

  // Sequences of numbers stand for points wherever a Vec2/Vec3 is expected.
  py::implicitly_convertible<py::tuple, zrVec2>();
  py::implicitly_convertible<py::list, zrVec2>();
  py::implicitly_convertible<py::array, zrVec2>();
  py::implicitly_convertible<py::tuple, V3>();
  py::implicitly_convertible<py::list, V3>();
  py::implicitly_convertible<py::array, V3>();

  py::class_<zrRect<zrVec2>>(m, "Rect", R"doc(
An axis-parallel rectangle given by its lower and upper corner, a plain value.

>>> zr.Rect((0.0, 0.0), (2.0, 1.0)).hi
Vec2(2.0, 1.0)
)doc")
      .def(py::init<const zrVec2&, const zrVec2&>(), py::arg("lo"), py::arg("hi"))
      .def_property(
          "lo", [](const zrRect<zrVec2>& r) { return r.Min(); },
          [](zrRect<zrVec2>& r, const zrVec2& v) { r.Min() = v; }, "The lower corner.")
      .def_property(
          "hi", [](const zrRect<zrVec2>& r) { return r.Max(); },
          [](zrRect<zrVec2>& r, const zrVec2& v) { r.Max() = v; }, "The upper corner.")
      .def("__eq__", [](const zrRect<zrVec2>& a, const zrRect<zrVec2>& b) { return a == b; })
      .def("__repr__", [](const zrRect<zrVec2>& r) {
        return "Rect(" + Repr(r.Min()) + ", " + Repr(r.Max()) + ")";
      });
}

void BindPrimitives(py::module_& m) {
  py::class_<zrGeom::StraightLine2D>(m, "Line2D", R"doc(
The directed plane line through p1 toward p2, kept in normal form a*x + b*y = c
(a**2 + b**2 = 1, c >= 0). offset(p) is a*x + b*y - c, positive away from the origin;
side_distance(p) is the distance signed by side: positive right of the direction,
negative left of it.

>>> line = zr.Line2D((0.0, 0.0), (1.0, 0.0))     # the x axis, rightward
>>> line.side_distance((0.5, -2.0)), line.side_distance((0.5, 2.0))
(2.0, -2.0)
)doc")
      .def(py::init<const zrVec2&, const zrVec2&>(), py::arg("p1"), py::arg("p2"))
      .def_property_readonly("a", &zrGeom::StraightLine2D::GetA)
      .def_property_readonly("b", &zrGeom::StraightLine2D::GetB)
      .def_property_readonly("c", &zrGeom::StraightLine2D::GetC)
      .def_property_readonly("p1", &zrGeom::StraightLine2D::GetP1)
      .def_property_readonly(
          "normal", [](const zrGeom::StraightLine2D& l) { return zrVec2(l.GetNA(), l.GetNB()); },
          "The unit normal to the right of the direction.")
      .def("offset", &zrGeom::StraightLine2D::GetD, py::arg("p"))
      .def("side_distance", &zrGeom::StraightLine2D::GetDist, py::arg("p"))
      .def(
          "intersect",
          [](const zrGeom::StraightLine2D& a, const zrGeom::StraightLine2D& b) {
            zrVec2 out;
            return Opt(IntersectLine2DLine2D(a, b, &out), out);
          },
          py::arg("other"),
          "The crossing point, or None for lines parallel within 1e-10.\n\n"
          ">>> zr.Line2D((0.0, 0.0), (1.0, 1.0)).intersect(zr.Line2D((0.0, 2.0), (2.0, 0.0)))\n"
          "Vec2(1.0, 1.0)\n")
      .def("__repr__", [](const zrGeom::StraightLine2D& l) {
        return "<zr.Line2D " + Num(l.GetA()) + "*x + " + Num(l.GetB()) + "*y = " + Num(l.GetC()) +
               ">";
      });

  py::class_<zrGeom::Segment2D>(m, "Segment2D",
                                "A plane segment between two points.\n\n"
                                ">>> zr.Segment2D((0.0, 0.0), (1.0, 0.0)).p2\n"
                                "Vec2(1.0, 0.0)\n")
      .def(py::init<const zrVec2&, const zrVec2&>(), py::arg("p1"), py::arg("p2"))
      .def_property_readonly("p1", &zrGeom::Segment2D::GetPoint1)
      .def_property_readonly("p2", &zrGeom::Segment2D::GetPoint2)
      .def("__repr__", [](const zrGeom::Segment2D& s) {
        return "Segment2D(" + Repr(s.GetPoint1()) + ", " + Repr(s.GetPoint2()) + ")";
      });

  py::class_<zrGeom::Ray2D>(m, "Ray2D", R"doc(
A plane ray: a start point and a unit direction. Ray2D(p, q) runs along q;
Ray2D(p, q, through=True) runs from p through the point q.

>>> ray = zr.Ray2D((0.0, 0.0), (2.0, 0.0))
>>> ray.direction, ray.intersect(zr.Segment2D((1.0, -1.0), (1.0, 1.0)))
(Vec2(1.0, 0.0), Vec2(1.0, 0.0))
)doc")
      .def(py::init([](const zrVec2& p, const zrVec2& q, bool through) {
             return zrGeom::Ray2D(p, q,
                                  through ? zrGeom::Ray2D::BY_POINTS : zrGeom::Ray2D::BY_DIRECTION);
           }),
           py::arg("point"), py::arg("q"), py::arg("through") = false)
      .def_property_readonly("point", &zrGeom::Ray2D::GetPoint)
      .def_property_readonly("direction", &zrGeom::Ray2D::GetDir)
      .def(
          "intersect",
          [](const zrGeom::Ray2D& r, const zrGeom::Segment2D& s) {
            zrVec2 out;
            return Opt(zrGeom::Intersect(r, s, &out), out);
          },
          py::arg("segment"), "Where the ray meets the segment (ends included), or None.")
      .def(
          "intersect_polyline",
          [](const zrGeom::Ray2D& r, py::handle points) {
            const auto curve = ReadPoints2<zrSimpleArray<zrVec2>>(points);
            zrVec2 out;
            return Opt(zrGeom::Intersect(r, curve, &out), out);
          },
          py::arg("points"),
          "The hit nearest to the ray's point on the polyline through an N x 2 array of\n"
          "points (a Contour is one), or None.\n\n"
          ">>> zr.Ray2D((0.0, 0.0), (1.0, 0.0)).intersect_polyline([[2.0, -1.0], [2.0, 1.0], "
          "[1.0, 1.0], [1.0, -1.0]])\nVec2(1.0, 0.0)\n")
      .def("__repr__", [](const zrGeom::Ray2D& r) {
        return "<zr.Ray2D from " + Repr(r.GetPoint()) + " along " + Repr(r.GetDir()) + ">";
      });

  py::class_<zrGeom::StraightLine3D>(m, "Line3D",
                                     "A space line through two points.\n\n"
                                     ">>> zr.Line3D((0, 0, 0), (0, 0, 1)).p2\n"
                                     "Vec3(0.0, 0.0, 1.0)\n")
      .def(py::init<const V3&, const V3&>(), py::arg("p1"), py::arg("p2"))
      .def_property_readonly("p1", &zrGeom::StraightLine3D::GetPoint1)
      .def_property_readonly("p2", &zrGeom::StraightLine3D::GetPoint2);
  py::class_<zrGeom::Segment3D>(m, "Segment3D",
                                "A space segment between two points.\n\n"
                                ">>> zr.Segment3D((0, 0, 0), (1, 2, 3)).p2\n"
                                "Vec3(1.0, 2.0, 3.0)\n")
      .def(py::init<const V3&, const V3&>(), py::arg("p1"), py::arg("p2"))
      .def_property_readonly("p1", &zrGeom::Segment3D::GetPoint1)
      .def_property_readonly("p2", &zrGeom::Segment3D::GetPoint2);
  py::class_<zrGeom::Ray3D>(m, "Ray3D", R"doc(
A space ray: a point and a direction (kept as given, not normalised).

frame() is the rigid transform taking the ray's point to the origin and its direction
onto +z.

>>> ray = zr.Ray3D((1.0, 2.0, 3.0), (0.0, 0.0, 2.0))
>>> ray.frame().apply((1.0, 2.0, 5.0))
Vec3(0.0, 0.0, 2.0)
)doc")
      .def(py::init<const V3&, const V3&>(), py::arg("point"), py::arg("direction"))
      .def_property_readonly("point", &zrGeom::Ray3D::GetPoint)
      .def_property_readonly("direction", &zrGeom::Ray3D::GetDir)
      .def("frame", &zrGeom::Ray3D::GetTransZ);
  py::class_<zrGeom::Plane>(m, "Plane", R"doc(
The plane normal . x + d = 0 through a point (the normal kept as given).

>>> zr.Plane((0.0, 0.0, 2.0), (0.0, 0.0, 1.0)).d
-2.0
)doc")
      .def(py::init<const V3&, const V3&>(), py::arg("point"), py::arg("normal"))
      .def_property_readonly("normal", &zrGeom::Plane::GetNormal)
      .def_property_readonly("d", &zrGeom::Plane::GetD);
}

// The add_... steps below change the transform in place and hand it back, for chaining.

void BindTransforms(py::module_& m) {
  py::class_<T2> t2(m, "Transform2D", R"doc(
An affine map of the plane, p -> M @ p + shift, built step by step.

Each add_... step acts after the steps before it (on points they have already moved),
changes the transform in place and returns it. a @ b applies b first, then a.
apply maps a point (a Vec2 back) or an N x 2 array (a new N x 2 array).

>>> t = zr.Transform2D().add_shift((1.0, 2.0)).add_turn(np.pi / 2)
>>> p = t.apply((0.0, 0.0)); round(p.x, 12), round(p.y, 12)
(-2.0, 1.0)
>>> t.inverse().apply(t.apply(np.array([[3.0, 4.0]]))).round(12)
array([[3., 4.]])
)doc");
  t2.def(py::init<>())
      .def(
          "add_scale",
          [](py::object self, const zrVec2& s, py::object centre) {
            T2& t = self.cast<T2&>();
            centre.is_none() ? t.AddScale(s) : t.AddScale(s, ToVec2(centre));
            return self;
          },
          py::arg("s"), py::arg("centre") = py::none(),
          "Scales x by s[0] and y by s[1], about centre (default the origin).")
      .def(
          "add_turn",
          [](py::object self, double angle, py::object centre) {
            T2& t = self.cast<T2&>();
            centre.is_none() ? t.AddTurn(angle) : t.AddTurn(angle, ToVec2(centre));
            return self;
          },
          py::arg("angle"), py::arg("centre") = py::none(),
          "Turns counter-clockwise by angle radians about centre (default the origin).")
      .def(
          "add_matrix",
          [](py::object self, py::object a) {
            T2& t = self.cast<T2&>();
            t.AddMatrix(ReadMatrix<2, zrMatrix2x2>(a));
            return self;
          },
          py::arg("a"), "M <- a @ M, shift <- a @ shift for a 2 x 2 matrix a.")
      .def(
          "add_shift",
          [](py::object self, const zrVec2& d) {
            T2& t = self.cast<T2&>();
            t.AddShift(d);
            return self;
          },
          py::arg("d"), "shift <- shift + d.")
      .def(
          "apply",
          [](const T2& t, py::handle p) {
            return MapPoints<2, zrVec2>(p, ToVec2, [&](const zrVec2& v) { return t.Transform(v); });
          },
          py::arg("p"))
      .def(
          "apply_vec",
          [](const T2& t, py::handle p) {
            return MapPoints<2, zrVec2>(p, ToVec2,
                                        [&](const zrVec2& v) { return t.TransformVec(v); });
          },
          py::arg("v"), "M @ v, no shift: for displacements.")
      .def_property_readonly("shift", &T2::GetShift)
      .def_property_readonly(
          "matrix", [](const T2& t) { return MatrixArray<2>(t.GetMatrix()); },
          "The linear part, a new 2 x 2 array.")
      .def("inverse", &T2::Inverse, "p -> M^-1 @ (p - shift); singular M raises ValueError.")
      .def("__matmul__", &T2::operator*, py::is_operator())
      .def("old_scale", &T2::GetOldScale, py::arg("s"))
      .def("new_scale", &T2::GetNewScale, py::arg("s"))
      .def("transform_rect", &T2::TransformRect, py::arg("rect"),
           "The axis-parallel rectangle bounding the images of rect's corners.")
      .def_static(
          "fit_rotate_shift",
          [](py::handle source, py::handle target) {
            T2 t;
            t.MakeRotateShiftFromEquations(ReadPoints2<zrSimpleArray<zrVec2>>(source),
                                           ReadPoints2<zrSimpleArray<zrVec2>>(target));
            return t;
          },
          py::arg("source"), py::arg("target"),
          "The turn plus shift that maps the N x 2 points source onto target with the least\n"
          "sum of squared distances.\n\n"
          ">>> t = zr.Transform2D.fit_rotate_shift([[0, 0], [1, 0]], [[5, 5], [5, 6]])\n"
          ">>> t.apply((1.0, 0.0))\nVec2(5.0, 6.0)\n")
      .def("__repr__", [](const T2& t) { return Repr(t); });
  DefFlatForm<T2>(t2, "zr.Transform2D().add_shift((1.0, 2.0))");

  py::class_<T3> t3(m, "Transform3D", R"doc(
An affine map of space, p -> M @ p + shift, built step by step as Transform2D is.

>>> t = zr.Transform3D().add_scale((2.0, 2.0, 2.0)).add_shift((0.0, 0.0, 1.0))
>>> t.apply(np.array([[1.0, 1.0, 1.0], [0.0, 0.0, 0.0]]))
array([[2., 2., 3.],
       [0., 0., 1.]])
)doc");
  t3.def(py::init<>())
      .def(
          "add_scale",
          [](py::object self, const V3& s, py::object centre) {
            T3& t = self.cast<T3&>();
            centre.is_none() ? t.AddScale(s) : t.AddScale(s, ToVec3(centre));
            return self;
          },
          py::arg("s"), py::arg("centre") = py::none())
      .def(
          "add_turn",
          [](py::object self, double a, double b, double c, py::object centre) {
            T3& t = self.cast<T3&>();
            centre.is_none() ? t.AddTurn(a, b, c) : t.AddTurn(a, b, c, ToVec3(centre));
            return self;
          },
          py::arg("a"), py::arg("b"), py::arg("c"), py::arg("centre") = py::none(),
          "Turns about x by a, then about y by b, then about z by c, about centre.")
      .def(
          "add_turn_axis",
          [](py::object self, double angle, const V3& axis) {
            T3& t = self.cast<T3&>();
            t.AddTurn(angle, axis);
            return self;
          },
          py::arg("angle"), py::arg("axis"), "Turns by angle about an axis through the origin.")
      .def(
          "add_turn_onto",
          [](py::object self, const V3& from, const V3& to) {
            T3& t = self.cast<T3&>();
            t.AddTurn(from, to);
            return self;
          },
          py::arg("source"), py::arg("target"),
          "The turn taking the direction of source into that of target.")
      .def(
          "add_matrix",
          [](py::object self, py::object a) {
            T3& t = self.cast<T3&>();
            t.AddMatrix(ReadMatrix<3, zrTMatrix3x3<double>>(a));
            return self;
          },
          py::arg("a"))
      .def(
          "add_shift",
          [](py::object self, const V3& d) {
            T3& t = self.cast<T3&>();
            t.AddShift(d);
            return self;
          },
          py::arg("d"))
      .def(
          "apply",
          [](const T3& t, py::handle p) {
            return MapPoints<3, V3>(p, ToVec3, [&](const V3& v) { return t.Transform(v); });
          },
          py::arg("p"))
      .def(
          "apply_vec",
          [](const T3& t, py::handle p) {
            return MapPoints<3, V3>(p, ToVec3, [&](const V3& v) { return t.TransformVec(v); });
          },
          py::arg("v"))
      .def_property_readonly("shift", &T3::GetShift)
      .def_property_readonly(
          "matrix", [](const T3& t) { return MatrixArray<3>(t.GetMatrix()); },
          "The linear part, a new 3 x 3 array.")
      .def("inverse", &T3::Inverse)
      .def("__matmul__", &T3::operator*, py::is_operator())
      .def("old_scale", &T3::GetOldScale, py::arg("s"))
      .def("new_scale", &T3::GetNewScale, py::arg("s"))
      .def("__repr__", [](const T3& t) { return Repr(t); });
  DefFlatForm<T3>(t3, "zr.Transform3D().add_shift((1.0, 2.0, 3.0))");
}

}  // namespace

void BindGeometry(py::module_& m) {
  BindVectors(m);
  BindPrimitives(m);
  BindTransforms(m);
}

}  // namespace zr::python
