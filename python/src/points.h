// Plane and space points between Python and the library: one point from a Vec2/Vec3 or
// any sequence of numbers, point arrays from N x 2 / N x 3 ndarrays, ndarrays that view
// a library object's points, and the flat byte form of any object with one.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <climits>
#include <string>
#include <vector>

#include "python/src/flat_form.h"
#include "zr/zr.h"

namespace zr::python {

namespace py = pybind11;

// A float64 ndarray in C order.
using DoubleArray = py::array_t<double, py::array::c_style>;

// numpy.asarray(h): an ndarray is taken as it is, anything else made into one.
inline py::array AsArray(py::handle h) { return py::module_::import("numpy").attr("asarray")(h); }

// The values of h as a float64 ndarray in C order: a C-contiguous float64 ndarray is taken
// as it is, anything else (another dtype, a strided view, a list) is copied once into a
// new array. The copy casts as numpy.copyto does with "same_kind", like the arrays'
// constructors: integers, booleans and float32 go in; complex numbers, objects and text
// are refused with NumPy's TypeError rather than cut to their real part or read as NaN.
inline DoubleArray Doubles(py::handle h) {
  if (DoubleArray::check_(h)) return py::reinterpret_borrow<DoubleArray>(h);
  const py::array a = AsArray(h);
  DoubleArray out(std::vector<py::ssize_t>(a.shape(), a.shape() + a.ndim()));
  py::module_::import("numpy").attr("copyto")(out, a, py::arg("casting") = "same_kind");
  return out;
}

// A point from a Vec2 (Vec3) or from any sequence of exactly 2 (3) numbers.
inline zrVec2 ToVec2(py::handle h) {
  if (py::isinstance<zrVec2>(h)) return h.cast<zrVec2>();
  const auto a = Doubles(h);
  if (a.ndim() != 1 || a.shape(0) != 2) throw py::value_error("a plane point has 2 coordinates");
  return zrVec2(a.at(0), a.at(1));
}
inline zrTVec3<double> ToVec3(py::handle h) {
  if (py::isinstance<zrTVec3<double>>(h)) return h.cast<zrTVec3<double>>();
  const auto a = Doubles(h);
  if (a.ndim() != 1 || a.shape(0) != 3) throw py::value_error("a space point has 3 coordinates");
  return zrTVec3<double>(a.at(0), a.at(1), a.at(2));
}

// The points of an N x dim array as doubles in C order. The shape is checked first, so a
// row count that does not fit an int is refused before anything is copied.
inline DoubleArray PointArray(const py::array& a, int dim) {
  if (a.ndim() != 2 || a.shape(1) != dim)
    throw py::value_error("expected an N x " + std::to_string(dim) + " array of points");
  if (a.shape(0) > INT_MAX) throw py::value_error("too many points");
  return Doubles(a);
}

// The rows of an N x 2 array copied into an array of plane points (contours, curves).
template <class Points>
Points ReadPoints2(py::handle h) {
  const auto a = PointArray(AsArray(h), 2);
  const int n = static_cast<int>(a.shape(0));
  Points out;
  if (n > 0) out.Set(n);
  const double* p = a.data();
  for (int i = 0; i < n; ++i) out[i] = zrVec2(p[2 * i], p[2 * i + 1]);
  return out;
}

// The rows of an N x 3 array (or N x 2, at z = 0) copied into a vector of space points.
inline zrVector<zrTVec3<double>> ReadPoints3(py::handle h) {
  const py::array in = AsArray(h);
  const int dim = in.ndim() == 2 && in.shape(1) == 2 ? 2 : 3;
  const auto a = PointArray(in, dim);
  const int n = static_cast<int>(a.shape(0));
  zrVector<zrTVec3<double>> out(n);
  const double* p = a.data();
  for (int i = 0; i < n; ++i)
    out[i] = zrTVec3<double>(p[dim * i], p[dim * i + 1], dim == 3 ? p[dim * i + 2] : 0.0);
  return out;
}

// An N x 2 ndarray over n contiguous plane points, owning nothing: base keeps the
// memory alive (the Python object that holds it). Writes through it reach the points.
inline py::array ViewPoints2(zrVec2* points, int n, py::handle base) {
  static_assert(sizeof(zrVec2) == 2 * sizeof(double));
  if (n == 0) return py::array_t<double>(std::vector<py::ssize_t>{0, 2});
  return py::array_t<double>(
      {static_cast<py::ssize_t>(n), py::ssize_t{2}},
      {static_cast<py::ssize_t>(sizeof(zrVec2)), static_cast<py::ssize_t>(sizeof(double))},
      points->GetVec(), base);
}

// A new N x Dim array of points, point i from get(i) (a Vec2 or a Vec3).
template <int Dim, class Get>
py::array_t<double> NewPoints(py::ssize_t n, Get get) {
  py::array_t<double> out({n, py::ssize_t{Dim}});
  double* p = out.mutable_data();
  for (py::ssize_t i = 0; i < n; ++i) {
    const auto v = get(i);
    for (int k = 0; k < Dim; ++k) p[Dim * i + k] = v[k];
  }
  return out;
}

// Whether x stands for one number rather than an array of them: a Python int or float, or
// an object with __float__ that is not a sequence. NumPy's scalars are left to Doubles as
// 0-d arrays, so that they are cast by the arrays' rule (a complex one is refused rather
// than cut to its real part).
inline bool IsNumber(py::handle x) {
  if (PyFloat_Check(x.ptr()) || PyLong_Check(x.ptr())) return true;
  if (py::isinstance<py::array>(x) || PySequence_Check(x.ptr())) return false;
  return py::hasattr(x, "__float__") &&
         !py::isinstance(x, py::module_::import("numpy").attr("generic"));
}

// A curve's point at one parameter (a point back) or at every element of an array-like,
// flattened, into a new N x Dim array.
template <int Dim, class Curve>
py::object CurvePoints(const Curve& c, py::handle t) {
  if (IsNumber(t)) return py::cast(c(py::cast<double>(t)));
  const auto ts = Doubles(t);
  if (ts.ndim() == 0) return py::cast(c(*ts.data()));
  return NewPoints<Dim>(ts.size(), [&](py::ssize_t i) { return c(ts.data()[i]); });
}

// f(x) of a float, or of every element of an array-like into a new float64 array of its
// shape. many(in, n, out) evaluates n contiguous values; one(x) a single one.
template <class One, class Many>
py::object ScalarOrArray(py::handle x, One one, Many many) {
  if (IsNumber(x)) return py::float_(one(py::cast<double>(x)));
  const auto in = Doubles(x);
  if (in.ndim() == 0) return py::float_(one(*in.data()));
  py::array_t<double> out(std::vector<py::ssize_t>(in.shape(), in.shape() + in.ndim()));
  many(in.data(), in.size(), out.mutable_data());
  return std::move(out);
}

}  // namespace zr::python
