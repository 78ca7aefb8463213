// Vector (zrVector<double>), Matrix (zrMatrix<double>) and Tridiagonal
// (zrMatrix3Diag<double>), shared with NumPy without copying (see ndarray_view.h).
//
// A Matrix is (rows, columns) in NumPy, its strides those of its rows and columns, so a
// transpose or a sub-matrix is an ndarray over the same elements. Arguments that stand for
// a vector or a matrix may be the bound objects (shared), ndarrays (viewed in place when
// zr can describe them) or sequences (copied).
#include <memory>
#include <string>

#include "python/src/bindings.h"
#include "python/src/ndarray_view.h"
#include "zr/zr.h"

namespace zr::python {

namespace {

using Vector = Held<zrVector<double>>;
using Matrix = Held<zrMatrix<double>>;
using Tridiagonal = Held<zrMatrix3Diag<double>>;

Layout VectorLayout(const Vector& h) {
  return {h.value.GetPointer(), {h.value.Len()}, {h.value.Tab()}};
}

Layout MatrixLayout(const Matrix& h) {
  const zrMatrix<double>& m = h.value;
  return {m.GetPointer(), {m.ColumnLen(), m.LineLen()}, {m.TabInColumn(), m.TabInLine()}};
}

std::unique_ptr<Vector> MakeVector(py::handle data, bool copy) {
  auto h = std::make_unique<Vector>();
  if (!copy && Viewable(data)) {
    const auto a = py::reinterpret_borrow<py::array>(data);
    if (a.ndim() == 1) {
      const Layout l = LayoutOf(a);
      h->value.SetDirectly(l.first, Count(a.size()), Step(l.steps[0]));
      h->owner = a;
      return h;
    }
  }
  const py::array src = Source(data, 1, "Vector");
  h->value.Set(Count(src.size()));
  CopyInto(VectorLayout(*h), h->value.GetMem(), src);
  return h;
}

std::unique_ptr<Matrix> MakeMatrix(py::handle data, bool copy) {
  auto h = std::make_unique<Matrix>();
  if (!copy && Viewable(data)) {
    const auto a = py::reinterpret_borrow<py::array>(data);
    if (a.ndim() == 2) {
      const Layout l = LayoutOf(a);
      h->value.SetDirectly(l.first, Count(a.shape(0)), Count(a.shape(1)), Step(l.steps[1]),
                           Step(l.steps[0]));
      h->owner = a;
      return h;
    }
  }
  const py::array src = Source(data, 2, "Matrix");
  h->value.Set(Count(src.shape(0)), Count(src.shape(1)));
  if (h->value.GetPointer()) CopyInto(MatrixLayout(*h), h->value.GetMem(), src);
  return h;
}

// An argument standing for a vector: a Vector is shared, anything else made as Vector().
Vector AsVector(py::handle obj) {
  if (py::isinstance<Vector>(obj)) return obj.cast<const Vector&>();
  return *MakeVector(obj, false);
}

Matrix AsMatrix(py::handle obj) {
  if (py::isinstance<Matrix>(obj)) return obj.cast<const Matrix&>();
  return *MakeMatrix(obj, false);
}

// Whether an argument stands for a matrix rather than a vector.
bool IsMatrixLike(py::handle obj) {
  if (py::isinstance<Matrix>(obj)) return true;
  if (py::isinstance<Vector>(obj)) return false;
  return py::module_::import("numpy").attr("ndim")(obj).cast<int>() == 2;
}

// A result handed over without a copy: the vector takes over v's elements.
std::unique_ptr<Vector> Take(zrVector<double>& v, const py::object& owner = py::none()) {
  auto r = std::make_unique<Vector>();
  r->value.Move(v);
  r->owner = owner;
  return r;
}

std::unique_ptr<Matrix> Take(zrMatrix<double>& m, const py::object& owner = py::none()) {
  auto r = std::make_unique<Matrix>();
  r->value.Move(m);
  r->owner = owner;
  return r;
}

void BindVector(py::module_& m) {
  py::class_<Vector> cls(m, "Vector", py::buffer_protocol(), R"doc(
A vector of doubles: a first element, a length and a step (of any sign) over a shared
block.

Vector(data, copy=False) views a writeable one-dimensional float64 ndarray in place
whenever its stride is a whole number of doubles (a slice with a step, a reversed
array); anything else (a sequence, another dtype, a read-only array, or copy=True) is
copied into a block of the Vector's own. numpy.asarray(v) views the same elements with
the same stride.

>>> x = numpy.arange(6.0)
>>> v = zr.Vector(x[::-2])
>>> v
Vector([5.0, 3.0, 1.0])
>>> v[0] = -5.0
>>> x[5], v.step
(-5.0, -2)
)doc");
  EnableBuffer<Vector, VectorLayout>(cls);
  cls.def(py::init(&MakeVector), py::arg("data"), py::arg("copy") = false)
      .def_static(
          "zeros",
          [](int n) {
            auto h = std::make_unique<Vector>();
            h->value.Set(n);
            if (n > 0) h->value.Fill(0.0);
            return h;
          },
          py::arg("n"), R"doc(
n zeros in a new block.

>>> zr.Vector.zeros(2)
Vector([0.0, 0.0])
)doc")
      .def("__len__", [](const Vector& h) { return h.value.Len(); })
      .def(
          "__getitem__",
          [](const Vector& h, py::ssize_t i) { return h.value[Wrap(i, h.value.Len())]; },
          py::arg("index"))
      .def(
          "__setitem__",
          [](Vector& h, py::ssize_t i, double v) { h.value[Wrap(i, h.value.Len())] = v; },
          py::arg("index"), py::arg("value"))
      .def("__repr__",
           [](const Vector& h) { return Repr("Vector", Numpy<Vector, VectorLayout>(h)); })
      .def_property_readonly(
          "step", [](const Vector& h) { return h.value.Tab(); },
          "The distance between neighbouring elements, in elements.")
      .def(
          "window",
          [](const Vector& h, int start, int length) {
            zrVector<double> w;
            h.value.Mid(w, start, length);
            return Take(w, h.owner);
          },
          py::arg("start"), py::arg("length"), R"doc(
length elements from start, sharing this vector's elements and step.

>>> v = zr.Vector([1.0, 2.0, 3.0])
>>> v.window(1, 2)[1] = 30.0
>>> v
Vector([1.0, 2.0, 30.0])
)doc")
      .def(
          "dot",
          [](const Vector& h, py::handle other) {
            return h.value.ScalarMul(AsVector(other).value);
          },
          py::arg("other"), R"doc(
The scalar product, summed in index order.

>>> zr.Vector([1.0, 2.0]).dot([3.0, 4.0])
11.0
)doc")
      .def(
          "norm", [](const Vector& h) { return h.value.Norm(); }, R"doc(
The Euclidean norm.

>>> zr.Vector([3.0, 4.0]).norm()
5.0
)doc")
      .def_property_readonly(
          "holders", [](const Vector& h) { return Holders(h.value); }, R"doc(
The number of holders of the block; 0 for a vector viewing memory it does not own.

>>> v = zr.Vector([1.0, 2.0])
>>> w = v.window(0, 1)
>>> v.holders
2
)doc")
      .def(
          "to_bytes", [](const Vector& h) { return ToBytes(h.value); }, R"doc(
The library's flat form: the length as a 32-bit integer, then the elements packed.

>>> zr.Vector([2.0]).to_bytes().hex()
'010000000000000000000040'
)doc")
      .def_static("from_bytes", &FromBytesOf<Vector>, py::arg("data"), R"doc(
The vector of a flat form; a short or malformed form, or bytes after
it, raise ValueError.

>>> zr.Vector.from_bytes(zr.Vector([1.0, 2.0]).to_bytes())
Vector([1.0, 2.0])
)doc");
}

void BindMatrix(py::module_& m) {
  py::class_<Matrix> cls(m, "Matrix", py::buffer_protocol(), R"doc(
A dense matrix of doubles: a view with a step between rows and a step along a row over a
shared block. In NumPy it is (rows, columns) with those strides.

Matrix(data, copy=False) views a writeable two-dimensional float64 ndarray in place
whenever its strides are whole doubles (C or Fortran order, slices, transposes);
anything else (nested sequences, another dtype, a read-only array, or copy=True) is
copied into a block of the Matrix's own, stored by rows. T, window, row and column are
views: writes through them reach the matrix.

>>> a = zr.Matrix([[1.0, 2.0], [3.0, 4.0]])
>>> a.T
Matrix([[1.0, 3.0], [2.0, 4.0]])
>>> a @ zr.Vector([1.0, 1.0])
Vector([3.0, 7.0])
>>> a.det()  # the library's determinant, see det()
2.0
)doc");
  EnableBuffer<Matrix, MatrixLayout>(cls);
  cls.def(py::init(&MakeMatrix), py::arg("data"), py::arg("copy") = false)
      .def_static(
          "zeros",
          [](int rows, int columns) {
            auto h = std::make_unique<Matrix>();
            h->value.Set(rows, columns);
            h->value.Fill(0.0);
            return h;
          },
          py::arg("rows"), py::arg("columns"), R"doc(
A rows x columns matrix of zeros in a new block, stored by rows.

>>> zr.Matrix.zeros(1, 2)
Matrix([[0.0, 0.0]])
)doc")
      .def_static(
          "identity",
          [](int n) {
            auto h = std::make_unique<Matrix>();
            h->value.Set(n, n);
            h->value.SetE();
            return h;
          },
          py::arg("n"), R"doc(
The n x n identity matrix.

>>> zr.Matrix.identity(2)
Matrix([[1.0, 0.0], [0.0, 1.0]])
)doc")
      .def_property_readonly("rows", [](const Matrix& h) { return h.value.ColumnLen(); })
      .def_property_readonly("columns", [](const Matrix& h) { return h.value.LineLen(); })
      .def_property_readonly(
          "shape",
          [](const Matrix& h) { return py::make_tuple(h.value.ColumnLen(), h.value.LineLen()); })
      .def(
          "__getitem__",
          [](const Matrix& h, std::pair<py::ssize_t, py::ssize_t> ij) {
            return h.value(Wrap(ij.first, h.value.ColumnLen()), Wrap(ij.second, h.value.LineLen()));
          },
          py::arg("index"))
      .def(
          "__setitem__",
          [](Matrix& h, std::pair<py::ssize_t, py::ssize_t> ij, double v) {
            h.value(Wrap(ij.first, h.value.ColumnLen()), Wrap(ij.second, h.value.LineLen())) = v;
          },
          py::arg("index"), py::arg("value"))
      .def("__repr__",
           [](const Matrix& h) { return Repr("Matrix", Numpy<Matrix, MatrixLayout>(h)); })
      .def_property_readonly(
          "T",
          [](const Matrix& h) {
            zrMatrix<double> t = h.value.T();
            return Take(t, h.owner);
          },
          R"doc(
The transpose, a view of the same elements (the steps exchanged).

>>> a = zr.Matrix([[1.0, 2.0]])
>>> a.T[1, 0] = 20.0
>>> a
Matrix([[1.0, 20.0]])
)doc")
      .def(
          "window",
          [](const Matrix& h, int row, int column, int rows, int columns) {
            // A sub-matrix stays inside the matrix (the library would take one reaching
            // further into the block, and cannot check a view of outside memory at all).
            const zrMatrix<double>& a = h.value;
            if (row < 0 || column < 0 || rows < 0 || columns < 0 ||
                static_cast<long long>(row) + rows > a.ColumnLen() ||
                static_cast<long long>(column) + columns > a.LineLen()) {
              throw py::value_error("Matrix.window: the window leaves the matrix");
            }
            zrMatrix<double> w;
            w.Set(a, row, column, rows, columns);
            return Take(w, h.owner);
          },
          py::arg("row"), py::arg("column"), py::arg("rows"), py::arg("columns"), R"doc(
The rows x columns sub-matrix from element (row, column), sharing the elements.

>>> a = zr.Matrix.zeros(3, 3)
>>> a.window(1, 1, 2, 2).T[0, 1] = 5.0
>>> a[2, 1]
5.0
)doc")
      .def(
          "row",
          [](const Matrix& h, py::ssize_t i) {
            zrLineVector<double> line;
            h.value.GetLine(line, Wrap(i, h.value.ColumnLen()));
            return Take(line, h.owner);
          },
          py::arg("i"), R"doc(
Row i as a Vector sharing the elements.

>>> zr.Matrix([[1.0, 2.0], [3.0, 4.0]]).row(1)
Vector([3.0, 4.0])
)doc")
      .def(
          "column",
          [](const Matrix& h, py::ssize_t j) {
            zrColumnVector<double> column;
            h.value.GetColumn(column, Wrap(j, h.value.LineLen()));
            return Take(column, h.owner);
          },
          py::arg("j"), R"doc(
Column j as a Vector sharing the elements (its step is the step between rows).

>>> zr.Matrix([[1.0, 2.0], [3.0, 4.0]]).column(1)
Vector([2.0, 4.0])
)doc")
      .def(
          "solve",
          [](const Matrix& h, py::handle b, bool overwrite) {
            Vector rhs = AsVector(b);
            zrMatrix<double> a(h.value);
            zrColumnVector<double> c(rhs.value);
            if (!overwrite) {
              a.Copy();
              c.Copy();
            }
            zrColumnVector<double> x;
            a.SolveEquationGaussMethod(x, c);
            return Take(x);
          },
          py::arg("b"), py::arg("overwrite") = false, R"doc(
The solution x of self @ x = b by the library's Gaussian elimination (partial pivoting,
no tolerance), as a new Vector.

The elimination works on copies of the matrix and of b, which are left as they were.
With overwrite=True it works in place instead, as the library does: the matrix is left
in its eliminated form and b (when it is a Vector, or an ndarray viewed in place)
holds the transformed right-hand side. A singular system raises ValueError with the
library's text; so does a b whose length is not the number of rows.

>>> a = zr.Matrix([[2.0, 0.0], [0.0, 4.0]])
>>> a.solve([2.0, 2.0])
Vector([1.0, 0.5])
>>> a
Matrix([[2.0, 0.0], [0.0, 4.0]])
)doc")
      .def(
          "inverse",
          [](const Matrix& h) {
            zrMatrix<double> r = h.value.Inverse();
            return Take(r);
          },
          R"doc(
The inverse, a new matrix; this one is left as it is. A singular matrix raises
ValueError.

>>> zr.Matrix([[4.0, 0.0], [0.0, 2.0]]).inverse()
Matrix([[0.25, 0.0], [0.0, 0.5]])
)doc")
      .def(
          "det", [](const Matrix& h) { return h.value.Det(); }, R"doc(
The library's determinant: the product of the diagonal its elimination leaves, with no
sign for row exchanges and no compensation for its row scalings. It is the textbook
determinant only up to those factors.

>>> zr.Matrix([[0.0, 1.0], [1.0, 0.0]]).det()
1.0
)doc")
      .def(
          "__matmul__",
          [](const Matrix& h, py::handle other) -> py::object {
            if (IsMatrixLike(other)) {
              zrMatrix<double> r = h.value * AsMatrix(other).value;
              return py::cast(Take(r));
            }
            zrColumnVector<double> r = h.value * zrColumnVector<double>(AsVector(other).value);
            return py::cast(Take(r));
          },
          py::arg("other"), R"doc(
The product with a matrix (a new Matrix) or with a vector (a new Vector), summed in
index order.

>>> zr.Matrix([[1.0, 2.0]]) @ zr.Matrix([[3.0], [4.0]])
Matrix([[11.0]])
)doc")
      .def_property_readonly(
          "holders", [](const Matrix& h) { return Holders(h.value); }, R"doc(
The number of holders of the block; 0 for a matrix viewing memory it does not own.

>>> a = zr.Matrix.zeros(2, 2)
>>> t = a.T
>>> a.holders
2
)doc")
      .def(
          "to_bytes", [](const Matrix& h) { return ToBytes(h.value); }, R"doc(
The library's flat form: rows and columns as 32-bit integers, then the elements row by
row (a transpose is written as the matrix it shows).

>>> zr.Matrix([[1.0]]).T.to_bytes().hex()
'0100000001000000000000000000f03f'
)doc")
      .def_static("from_bytes", &FromBytesOf<Matrix>, py::arg("data"), R"doc(
The matrix of a flat form, stored by rows; a short or malformed form, or bytes after
it, raise ValueError.

>>> zr.Matrix.from_bytes(zr.Matrix([[1.0, 2.0]]).T.to_bytes())
Matrix([[1.0], [2.0]])
)doc");
}

void BindTridiagonal(py::module_& m) {
  py::class_<Tridiagonal> cls(m, "Tridiagonal", R"doc(
A square tridiagonal matrix kept as its three diagonals, with the library's sweep
solvers (no pivoting: meant for diagonally dominant systems).

Tridiagonal(up, diag, down): up[i] is element (i, i+1), diag[i] element (i, i) and
down[i] element (i+1, i); up and down have one element less than diag. Vectors passed
in are shared, ndarrays viewed in place where possible, sequences copied. The solvers
never change the matrix and return new vectors.

>>> t = zr.Tridiagonal([1.0, 1.0], [4.0, 4.0, 4.0], [1.0, 1.0])
>>> t.to_matrix()
Matrix([[4.0, 1.0, 0.0], [1.0, 4.0, 1.0], [0.0, 1.0, 4.0]])
>>> t.solve([5.0, 6.0, 5.0])
Vector([1.0, 1.0, 1.0])
)doc");
  cls.def(py::init([](py::handle up, py::handle diag, py::handle down) {
            const Vector u = AsVector(up), d = AsVector(diag), w = AsVector(down);
            return std::unique_ptr<Tridiagonal>(
                new Tridiagonal{zrMatrix3Diag<double>(u.value, d.value, w.value),
                                py::make_tuple(u.owner, d.owner, w.owner)});
          }),
          py::arg("up"), py::arg("diag"), py::arg("down"))
      .def_static(
          "from_matrix",
          [](const Matrix& a) {
            return std::unique_ptr<Tridiagonal>(
                new Tridiagonal{zrMatrix3Diag<double>(a.value), a.owner});
          },
          py::arg("matrix"), R"doc(
The band of a dense matrix as a view: writes through either reach the other.

>>> a = zr.Matrix.identity(2)
>>> t = zr.Tridiagonal.from_matrix(a)
>>> t[0, 1] = 3.0
>>> a
Matrix([[1.0, 3.0], [0.0, 1.0]])
)doc")
      .def("__len__", [](const Tridiagonal& h) { return h.value.LineLen(); })
      .def_property_readonly(
          "up",
          [](const Tridiagonal& h) {
            return Vector{h.value.Up(), h.owner};
          },
          "The diagonal above the main one, a Vector sharing its elements.")
      .def_property_readonly(
          "diag",
          [](const Tridiagonal& h) {
            return Vector{h.value.Diag(), h.owner};
          },
          "The main diagonal, a Vector sharing its elements.")
      .def_property_readonly(
          "down",
          [](const Tridiagonal& h) {
            return Vector{h.value.Down(), h.owner};
          },
          "The diagonal below the main one, a Vector sharing its elements.")
      .def_property_readonly(
          "T",
          [](const Tridiagonal& h) {
            return std::unique_ptr<Tridiagonal>(new Tridiagonal{h.value.T(), h.owner});
          },
          R"doc(
The transpose, sharing the diagonals (its up is this down).

>>> zr.Tridiagonal([1.0], [0.0, 0.0], [2.0]).T.up
Vector([2.0])
)doc")
      .def(
          "__getitem__",
          [](const Tridiagonal& h, std::pair<py::ssize_t, py::ssize_t> ij) {
            const int n = h.value.LineLen();
            return h.value(Wrap(ij.first, n), Wrap(ij.second, n));
          },
          py::arg("index"))
      .def(
          "__setitem__",
          [](Tridiagonal& h, std::pair<py::ssize_t, py::ssize_t> ij, double v) {
            const int n = h.value.LineLen();
            h.value(Wrap(ij.first, n), Wrap(ij.second, n)) = v;
          },
          py::arg("index"), py::arg("value"))
      .def("__repr__",
           [](const Tridiagonal& h) {
             const auto list = [](const zrVector<double>& v) {
               return py::repr(py::list(py::cast(Vector{v, py::none()}))).cast<std::string>();
             };
             return "Tridiagonal(up=" + list(h.value.Up()) + ", diag=" + list(h.value.Diag()) +
                    ", down=" + list(h.value.Down()) + ")";
           })
      .def(
          "to_matrix",
          [](const Tridiagonal& h) {
            zrMatrix<double> r = h.value.GetMatrix();
            return Take(r);
          },
          "The dense matrix, zeros outside the band.")
      .def(
          "solve",
          [](const Tridiagonal& h, py::handle b) -> py::object {
            if (IsMatrixLike(b)) {
              zrMatrix<double> x;
              h.value.SolveEquationChaserMethod(x, AsMatrix(b).value);
              return py::cast(Take(x));
            }
            zrColumnVector<double> x;
            h.value.SolveEquationChaserMethod(x, zrColumnVector<double>(AsVector(b).value));
            return py::cast(Take(x));
          },
          py::arg("b"), R"doc(
The sweep: the solution of self @ x = b for a vector b (a new Vector), or for every
column of a matrix b at once (a new Matrix).

>>> t = zr.Tridiagonal([0.0], [2.0, 4.0], [0.0])
>>> t.solve([[2.0, 4.0], [4.0, 8.0]])
Matrix([[1.0, 2.0], [1.0, 2.0]])
)doc")
      .def(
          "solve_cyclic",
          [](const Tridiagonal& h, py::handle b, double top, double bottom) {
            zrColumnVector<double> x;
            h.value.SolveEquationCycleChaserMethod(x, zrColumnVector<double>(AsVector(b).value),
                                                   top, bottom);
            return Take(x);
          },
          py::arg("b"), py::arg("top"), py::arg("bottom"), R"doc(
The cyclic sweep: the system of this matrix with top = element (0, n-1) and
bottom = element (n-1, 0) added (n >= 3).

>>> t = zr.Tridiagonal([1.0, 1.0], [4.0, 4.0, 4.0], [1.0, 1.0])
>>> t.solve_cyclic([6.0, 6.0, 6.0], top=1.0, bottom=1.0)
Vector([1.0, 1.0, 1.0])
)doc")
      .def(
          "solve_pentadiagonal",
          [](const Tridiagonal& h, py::handle b, py::handle up2, py::handle down2) {
            zrColumnVector<double> x;
            h.value.SolveEquationFactorizeMethod(AsVector(up2).value, AsVector(down2).value, x,
                                                 zrColumnVector<double>(AsVector(b).value));
            return Take(x);
          },
          py::arg("b"), py::arg("up2"), py::arg("down2"), R"doc(
The five-diagonal system of this matrix with up2[i] = element (i, i+2) and
down2[i] = element (i+2, i) added, by the library's factorisation without pivoting
(n >= 3; up2 and down2 need n - 2 elements).

>>> t = zr.Tridiagonal([0.0, 0.0], [1.0, 1.0, 1.0], [0.0, 0.0])
>>> t.solve_pentadiagonal([3.0, 1.0, 1.0], up2=[2.0], down2=[0.0])
Vector([1.0, 1.0, 1.0])
)doc")
      .def(
          "solve_pentadiagonal_cyclic",
          [](const Tridiagonal& h, py::handle b, py::handle up2, py::handle down2, double a0n2,
             double a0n1, double a1n1, double an20, double an10, double an11) {
            zrColumnVector<double> x;
            h.value.SolveEquationCycleFactorizeMethod(AsVector(up2).value, AsVector(down2).value,
                                                      a0n2, a0n1, a1n1, an20, an10, an11, x,
                                                      zrColumnVector<double>(AsVector(b).value));
            return Take(x);
          },
          py::arg("b"), py::arg("up2"), py::arg("down2"), py::kw_only(), py::arg("a0n2"),
          py::arg("a0n1"), py::arg("a1n1"), py::arg("an20"), py::arg("an10"), py::arg("an11"),
          R"doc(
The cyclic five-diagonal system (n >= 5): the five bands closed periodically by the six
corner elements a0n2 = (0, n-2), a0n1 = (0, n-1), a1n1 = (1, n-1), an20 = (n-2, 0),
an10 = (n-1, 0) and an11 = (n-1, 1).

>>> t = zr.Tridiagonal([0.0] * 4, [1.0] * 5, [0.0] * 4)
>>> t.solve_pentadiagonal_cyclic([1.0] * 5, [0.0] * 3, [0.0] * 3, a0n2=0.0, a0n1=0.0,
...                              a1n1=0.0, an20=0.0, an10=0.0, an11=0.0)
Vector([1.0, 1.0, 1.0, 1.0, 1.0])
)doc")
      .def(
          "__matmul__",
          [](const Tridiagonal& h, py::handle x) {
            zrColumnVector<double> r = h.value * zrColumnVector<double>(AsVector(x).value);
            return Take(r);
          },
          py::arg("x"), "The product with a vector, a new Vector.")
      .def(
          "to_bytes", [](const Tridiagonal& h) { return ToBytes(h.value); }, R"doc(
The library's flat form: up, diag and down one after another, each as a vector's.

>>> len(zr.Tridiagonal([1.0], [2.0, 3.0], [4.0]).to_bytes())
44
)doc")
      .def_static("from_bytes", &FromBytesOf<Tridiagonal>, py::arg("data"), R"doc(
The matrix of a flat form; a short or malformed form, or bytes after
it, raise ValueError.

>>> zr.Tridiagonal.from_bytes(zr.Tridiagonal([1.0], [2.0, 3.0], [4.0]).to_bytes())
Tridiagonal(up=[1.0], diag=[2.0, 3.0], down=[4.0])
)doc");
}

}  // namespace

void BindLinalg(py::module_& m) {
  BindVector(m);
  BindMatrix(m);
  BindTridiagonal(m);
}

}  // namespace zr::python
