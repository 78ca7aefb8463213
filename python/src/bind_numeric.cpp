// Polynomials and splines.
//
// Polynomial is zrPolynom<double>: it copies the coefficients it is built from, and its
// `coefficients` are an ndarray over the polynomial's own block (the array holds the block,
// counted, so it outlives the polynomial; writes through it change the polynomial).
// Spline is zrSpline<double> with its end condition named; an ndarray of points is
// evaluated by one call into the library, without the GIL, into a new ndarray.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <chrono>
#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "examples/interp_plot.h"
#include "python/src/bindings.h"
#include "python/src/ndarray_view.h"
#include "python/src/points.h"
#include "zr/zr.h"

namespace zr::python {

namespace {

using P = zrPolynom<double>;
using S = zrSpline<double>;

P::KoefType FormOf(const std::string& form) {
  if (form == "power") return P::PowerKoef;
  if (form == "taylor") return P::TaylorKoef;
  throw py::value_error("form must be 'power' or 'taylor', not '" + form + "'");
}

const char* FormName(P::KoefType type) {
  return type == P::TaylorKoef ? "taylor" : type == P::PowerKoef ? "power" : "unknown";
}

P MakePolynomial(py::handle coefficients, double x0, const std::string& form) {
  const py::array in = AsArray(coefficients);
  if (in.ndim() != 1) throw py::value_error("coefficients must be one-dimensional");
  if (in.size() > INT_MAX) throw py::value_error("too many coefficients");
  const auto a = Doubles(in);
  const int n = static_cast<int>(a.size());
  zrColumnVector<double> koef(n);
  for (int i = 0; i < n; ++i) koef[i] = a.data()[i];
  return P(koef, x0, FormOf(form));
}

// An ndarray over the polynomial's coefficients; its base is a capsule holding a vector
// that shares the block, so the block's holder count includes the array.
py::array CoefficientView(const P& p) {
  auto* holder = new zrColumnVector<double>(p);
  py::capsule base(holder, [](void* v) { delete static_cast<zrColumnVector<double>*>(v); });
  if (holder->Len() == 0) return py::array_t<double>(0);
  return py::array_t<double>({static_cast<py::ssize_t>(holder->Len())},
                             {static_cast<py::ssize_t>(holder->Tab() * sizeof(double))},
                             holder->GetPointer(), base);
}

void SameKind(const P& a, const P& b) {
  if (a.GetKoefType() != b.GetKoefType() || !(a.GetX0() == b.GetX0()))
    throw py::value_error("polynomials must have the same form and centre");
}

std::string PolynomialRepr(const P& p) {
  std::string out = "Polynomial([";
  for (int i = 0; i < p.Len(); ++i) {
    if (i) out += ", ";
    out += py::repr(py::float_(p[i])).cast<std::string>();
  }
  out += "], x0=" + py::repr(py::float_(p.GetX0())).cast<std::string>() + ", form='" +
         FormName(p.GetKoefType()) + "')";
  return out;
}

// The spline and the name of the end condition it was built with.
struct Spline {
  S s;
  std::string bc;
  std::vector<double> x, y;  // the points, for the repr and the plot
};

// The library's many-point evaluation over n values, in blocks an int can count.
void EvalMany(const S& s, const double* x, py::ssize_t n, int nu, double* out) {
  constexpr py::ssize_t kBlock = py::ssize_t{1} << 30;
  for (py::ssize_t at = 0; at < n; at += kBlock) {
    const int m = static_cast<int>(std::min(kBlock, n - at));
    if (nu == 0)
      s.Value(x + at, m, out + at);
    else
      s.Derivative(x + at, m, nu, out + at);
  }
}

// zr-interp's plot of the spline: each segment as the cubic through its two points with
// the segment's own slopes at both ends (zr-interp draws its splines the same way).
std::string SvgOf(const Spline& sp, const std::string& title, const std::string& xlabel,
                  const std::string& ylabel) {
  interp::Plot plot;
  plot.title = title;
  plot.xlabel = xlabel;
  plot.ylabel = ylabel;
  plot.curve_name = sp.bc + " cubic spline";
  for (std::size_t i = 0; i + 1 < sp.x.size(); ++i) {
    const int seg = static_cast<int>(i);
    plot.pieces.push_back({{sp.x[i], sp.y[i]},
                           {sp.x[i + 1], sp.y[i + 1]},
                           sp.s.Derivative(sp.x[i], 1, seg),
                           sp.s.Derivative(sp.x[i + 1], 1, seg)});
  }
  return interp::SvgPlot(plot);
}

py::object Evaluate(const Spline& sp, py::handle x, int nu) {
  return ScalarOrArray(
      x, [&](double v) { return nu == 0 ? sp.s(v) : sp.s.Derivative(v, nu); },
      [&](const double* in, py::ssize_t n, double* out) {
        py::gil_scoped_release release;
        EvalMany(sp.s, in, n, nu, out);
      });
}

constexpr const char* kBcChoices =
    "bc must be 'natural', 'clamped', 'periodic', 'linear' or two (order, value) pairs";

// The cubic spline with two end conditions (order, value), order 1 (slope) or 2
// (curvature), through the library's bit codes.
void BuildWithConditions(S& s, py::handle bc) {
  std::pair<std::pair<int, double>, std::pair<int, double>> ends;
  try {
    ends = py::cast<decltype(ends)>(bc);
  } catch (const py::cast_error&) {
    throw py::value_error(kBcChoices);
  }
  zrSimpleArray<int> codes(2, 0);
  zrMatrix<double> values(2, 2);
  values(0, 0) = values(0, 1) = values(1, 0) = values(1, 1) = 0.0;
  const std::pair<int, double> side[2] = {ends.first, ends.second};
  for (int k = 0; k < 2; ++k) {
    const int order = side[k].first;
    if (order != 1 && order != 2) throw py::value_error("an end condition's order is 1 or 2");
    codes[order - 1] |= k == 0 ? 1 : 2;
    values(order - 1, k) = side[k].second;
  }
  s.MkSpline3(codes, values);
}

Spline MakeSpline(py::handle xs, py::handle ys, py::handle bc, py::handle slopes) {
  const py::array xin = AsArray(xs), yin = AsArray(ys);
  if (xin.ndim() != 1 || yin.ndim() != 1) throw py::value_error("x and y must be one-dimensional");
  if (xin.size() > INT_MAX || yin.size() > INT_MAX) throw py::value_error("too many points");
  const auto x = Doubles(xin), y = Doubles(yin);
  // Views of the caller's values: the spline copies them into its own records.
  zrSimpleArray<double> xa, ya;
  xa.SetDirectly(const_cast<double*>(x.data()), static_cast<int>(x.size()));
  ya.SetDirectly(const_cast<double*>(y.data()), static_cast<int>(y.size()));
  const bool named = py::isinstance<py::str>(bc);
  Spline out;
  out.bc = named ? bc.cast<std::string>() : py::repr(bc).cast<std::string>();
  if (!slopes.is_none() && out.bc != "clamped")
    throw py::value_error("slopes are given with bc='clamped' only");
  if (out.bc == "natural" || out.bc == "clamped" || out.bc == "periodic") {
    zrSplineEnd end = zrSplineEnd::Natural();
    if (out.bc == "periodic") end = zrSplineEnd::Periodic();
    if (out.bc == "clamped") {
      const auto lr = slopes.is_none() ? std::pair<double, double>(0.0, 0.0)
                                       : slopes.cast<std::pair<double, double>>();
      end = zrSplineEnd::Clamped(lr.first, lr.second);
    }
    out.s = S::Cubic(xa, ya, end);
  } else if (!named || out.bc == "linear") {
    // The refusal the named cubic conditions get from the library, in its words.
    if (xa.Len() != ya.Len()) throw BadParameters("zrSpline: x and y differ in length.");
    zrSimpleArray<zrColumnVector<double>> points;
    if (xa.Len() > 0) points.Set(xa.Len());
    for (int i = 0; i < xa.Len(); ++i) points[i].Set(2), points[i][0] = xa[i], points[i][1] = ya[i];
    out.s.Set(points);
    if (named)
      out.s.Make(1, zrSimpleArray<int>(), zrMatrix<double>());
    else
      BuildWithConditions(out.s, bc);
  } else {
    throw py::value_error(kBcChoices);
  }
  out.x.assign(x.data(), x.data() + x.size());
  out.y.assign(y.data(), y.data() + y.size());
  return out;
}

}  // namespace

void BindNumeric(py::module_& m) {
  py::class_<P> poly(m, "Polynomial", R"doc(
A polynomial in one variable about a centre x0, held as its coefficients.

With t = x - x0 and n coefficients c[0] ... c[n-1]:
  form='power'   c[0]*t**(n-1) + ... + c[n-1]            (c[0] is the highest power)
  form='taylor'  sum c[i] * t**(n-1-i) / (n-1-i)!        (c[-1] is the value at x0)
The constructor copies the coefficients; `coefficients` is an ndarray over the
polynomial's own storage (writes through it change the polynomial, and it keeps the
storage alive after the polynomial is gone). The flat byte form holds the coefficients
only: from_bytes gives form 'power' about 0.

>>> p = zr.Polynomial([1.0, -2.0, 3.0])     # x**2 - 2x + 3
>>> p(2.0), p.derivative(2.0)
(3.0, 2.0)
)doc");
  poly.def(py::init(&MakePolynomial), py::arg("coefficients"), py::arg("x0") = 0.0,
           py::arg("form") = "power")
      .def_property_readonly("coefficients", &CoefficientView,
                             "The coefficients, an ndarray over the polynomial's storage.\n\n"
                             ">>> zr.Polynomial([2.0, 1.0]).coefficients\narray([2., 1.])\n")
      .def_property_readonly("x0", &P::GetX0, "The centre.")
      .def_property_readonly(
          "form", [](const P& p) { return FormName(p.GetKoefType()); }, "'power' or 'taylor'.")
      .def(
          "__call__",
          [](const P& p, py::handle x) {
            return ScalarOrArray(
                x, [&](double v) { return p(v); },
                [&](const double* in, py::ssize_t n, double* out) {
                  for (py::ssize_t i = 0; i < n; ++i) out[i] = p(in[i]);
                });
          },
          py::arg("x"),
          "The value at x, a float or an array of any shape.\n\n"
          ">>> zr.Polynomial([1.0, 0.0, 0.0])(np.array([1.0, 2.0, 3.0]))\narray([1., 4., 9.])\n")
      .def(
          "derivative",
          [](const P& p, py::handle x, int m) {
            return ScalarOrArray(
                x, [&](double v) { return p.Derivative(v, m); },
                [&](const double* in, py::ssize_t n, double* out) {
                  for (py::ssize_t i = 0; i < n; ++i) out[i] = p.Derivative(in[i], m);
                });
          },
          py::arg("x"), py::arg("m") = 1,
          "The m-th derivative at x (m = 0: the value); a float or an array.\n\n"
          ">>> zr.Polynomial([1.0, 0.0, 0.0]).derivative(3.0, m=2)\n2.0\n")
      .def("__len__", &P::Len, "The number of coefficients.")
      .def_property_readonly(
          "holders", [](const P& p) { return Holders(p); },
          "The number of holders of the coefficients' block: the polynomial and each live\n"
          "`coefficients` array.\n\n"
          ">>> p = zr.Polynomial([1.0]); c = p.coefficients; p.holders\n2\n")
      .def(
          "__add__",
          [](const P& a, const P& b) {
            SameKind(a, b);
            return P(a + b, a.GetX0(), a.GetKoefType());
          },
          py::is_operator(),
          "Coefficient by coefficient; same length, form and centre.\n\n"
          ">>> zr.Polynomial([1.0, 2.0]) + zr.Polynomial([3.0, 4.0])\n"
          "Polynomial([4.0, 6.0], x0=0.0, form='power')\n")
      .def(
          "__sub__",
          [](const P& a, const P& b) {
            SameKind(a, b);
            return P(a - b, a.GetX0(), a.GetKoefType());
          },
          py::is_operator())
      .def(
          "__mul__", [](const P& a, double k) { return P(a * k, a.GetX0(), a.GetKoefType()); },
          py::is_operator(),
          "Every coefficient times k.\n\n>>> zr.Polynomial([1.0, 2.0]) * 3\n"
          "Polynomial([3.0, 6.0], x0=0.0, form='power')\n")
      .def(
          "__rmul__", [](const P& a, double k) { return P(a * k, a.GetX0(), a.GetKoefType()); },
          py::is_operator())
      .def(
          "__truediv__", [](const P& a, double k) { return P(a / k, a.GetX0(), a.GetKoefType()); },
          py::is_operator())
      .def(
          "copy",
          [](const P& p) {
            P c(p);
            c.Copy();
            return c;
          },
          "A polynomial with its own copy of the coefficients.")
      .def("__repr__", &PolynomialRepr);
  DefFlatForm<P>(poly, "zr.Polynomial([1.0, 2.0])");

  py::class_<Spline> spline(m, "Spline", R"doc(
A cubic (or broken-line) interpolating function y(x) through n >= 3 points.

Spline(x, y, bc='natural') is the cubic spline with the named end condition:
  'natural'    no curvature at either end;
  'clamped'    the slopes at the ends, slopes=(left, right) (default (0, 0));
  'periodic'   period x[-1] - x[0]; y[-1] must equal y[0] within 0.01;
  'linear'     the broken line through the points (degree 1);
  ((order, value), (order, value))   a condition at the left and at the right end,
               order 1 for a slope and 2 for a second derivative.
The named cubic conditions require strictly increasing x. The spline copies the points:
nothing is shared with the arrays given, and nothing changes the spline once built.
Evaluating an ndarray is one call into the library over the whole array (without the
GIL) into a new array of its shape; an x that is not a C-contiguous float64 array (a
strided view, ints, a list) is first copied into one, and complex, object or text values
are refused (TypeError). Other threads run meanwhile: they may evaluate the same spline,
but one that writes into x at the same time makes the values read unspecified. x outside
[x[0], x[-1]] raises ValueError.

>>> s = zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0])
>>> s(0.5), s(np.array([0.5, 1.5]))
(0.6875, array([0.6875, 0.6875]))
)doc");
  spline
      .def(py::init(&MakeSpline), py::arg("x"), py::arg("y"), py::arg("bc") = "natural",
           py::arg("slopes") = py::none())
      .def(
          "__call__", [](const Spline& s, py::handle x, int nu) { return Evaluate(s, x, nu); },
          py::arg("x"), py::arg("nu") = 0,
          "The value (nu = 0) or the nu-th derivative at x, a float or an array.\n\n"
          ">>> zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0])(1.0, nu=2)\n-3.0\n")
      .def(
          "derivative", [](const Spline& s, py::handle x, int nu) { return Evaluate(s, x, nu); },
          py::arg("x"), py::arg("nu") = 1,
          "The nu-th derivative at x (first by default), a float or an array.\n\n"
          ">>> zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0], bc='clamped').derivative(0.0)\n0.0\n")
      .def(
          "node_derivative", [](const Spline& s, int i, int nu) { return s.s.Derivative(nu, i); },
          py::arg("i"), py::arg("nu") = 1,
          "The nu-th derivative at point i (the last point reads the last segment).\n\n"
          ">>> zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0]).node_derivative(1, nu=2)\n-3.0\n")
      .def("svg", &SvgOf, py::arg("title") = "", py::arg("xlabel") = "x", py::arg("ylabel") = "y",
           "The plot zr-interp draws of this spline, as SVG text: the points over the curve,\n"
           "with axes, ticks, labels and a legend. Each segment is drawn as the cubic through its\n"
           "two points with the spline's slopes there; the file stays small however many points\n"
           "there are. Empty when the ranges cannot be drawn in doubles.\n\n"
           ">>> zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, "
           "0.0]).svg(title='hat').startswith('<svg')\nTrue\n")
      .def(
          "segment", [](const Spline& s, double x) { return s.s.GetSegmentNum(x); }, py::arg("x"),
          "The index of the segment that holds x.\n\n"
          ">>> zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0]).segment(1.5)\n1\n")
      .def(
          "check", [](const Spline& s) { return s.s.Check() == 1; },
          "Whether the segments meet at every node within 0.01 (the library's check).")
      .def_readonly("bc", &Spline::bc, "The end condition it was built with.")
      .def(
          "__len__", [](const Spline& s) { return s.s.GetNumberOfPoint(); },
          "The number of points.")
      .def(
          "copy", [](const Spline& s) { return Spline(s); }, "A copy with its own points.")
      .def("__copy__", [](const Spline& s) { return Spline(s); })
      .def("__deepcopy__", [](const Spline& s, py::handle) { return Spline(s); })
      .def(
          "_timed",
          [](const Spline& s, const DoubleArray& x, int nu) {
            py::array_t<double> out(x.size());
            const double* in = x.data();
            double* o = out.mutable_data();
            std::chrono::steady_clock::duration spent{};
            {
              py::gil_scoped_release release;
              const auto start = std::chrono::steady_clock::now();
              EvalMany(s.s, in, x.size(), nu, o);
              spent = std::chrono::steady_clock::now() - start;
            }
            return py::make_tuple(out, std::chrono::duration<double>(spent).count());
          },
          py::arg("x"), py::arg("nu") = 0,
          "For timing: (values at x flattened, seconds spent in the library call alone).")
      .def("__repr__", [](const Spline& s) {
        return "<zr.Spline " + s.bc + ", " + std::to_string(s.s.GetNumberOfPoint()) +
               " points on [" + py::repr(py::float_(s.x.front())).cast<std::string>() + ", " +
               py::repr(py::float_(s.x.back())).cast<std::string>() + "]>";
      });
}

}  // namespace zr::python
