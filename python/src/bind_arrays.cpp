// Array (zrArray<double>) and ArrayND (zrArrayND<double>): the one- and N-dimensional
// arrays of doubles, shared with NumPy without copying (see ndarray_view.h).
//
// Axis k of an ArrayND is axis k of its ndarray, with the same stride: a fresh ArrayND is
// dense with dimension 0 fastest, so NumPy sees it in Fortran order, and a C-ordered
// ndarray is viewed with its strides as they are. Element access is a[i, j, ...] in that
// axis order on both sides.
#include <memory>
#include <string>

#include "python/src/bindings.h"
#include "python/src/ndarray_view.h"
#include "zr/zr.h"

namespace zr::python {

namespace {

using Array = Held<zrArray<double>>;
using ArrayND = Held<zrArrayND<double>>;

Layout ArrayLayout(const Array& h) { return {h.value.GetPointer(), {h.value.Len()}, {1}}; }

Layout NDLayout(const ArrayND& h) {
  Layout l{h.value.GetPointer(), {}, {}};
  for (int k = 0; k < h.value.GetDim(); ++k) {
    l.shape.push_back(h.value.Range()[k]);
    l.steps.push_back(h.value.Tab()[k]);
  }
  return l;
}

std::unique_ptr<Array> MakeArray(py::handle data, bool copy) {
  auto h = std::make_unique<Array>();
  if (!copy && Viewable(data)) {
    const auto a = py::reinterpret_borrow<py::array>(data);
    if (a.ndim() == 1 && (a.size() <= 1 || a.strides(0) == sizeof(double))) {
      if (a.size() > 0) h->value.SetDirectly(LayoutOf(a).first, Count(a.size()));
      h->owner = a;
      return h;
    }
  }
  const py::array src = Source(data, 1, "Array");
  if (src.size() > 0) h->value.Set(Count(src.size()));
  CopyInto(ArrayLayout(*h), h->value.GetMem(), src);
  return h;
}

std::unique_ptr<ArrayND> MakeND(py::handle data, bool copy) {
  auto h = std::make_unique<ArrayND>();
  if (!copy && Viewable(data)) {
    const auto a = py::reinterpret_borrow<py::array>(data);
    if (a.ndim() >= 1) {
      const Layout l = LayoutOf(a);
      try {
        h->value.SetDirectly(l.first, IntArray(l.shape), IntArray(l.steps));
        h->owner = a;
        return h;
      } catch (const BadParameters&) {  // steps the library cannot take: copied below
      }
    }
  }
  const py::array src = Source(data, -1, "ArrayND");
  h->value.Set(IntArray(LayoutOf(src).shape));
  CopyInto(NDLayout(*h), h->value.GetMem(), src);
  return h;
}

// A view of the same elements: same geometry, origin and block (or owner).
std::unique_ptr<ArrayND> SameView(const ArrayND& h) {
  auto r = std::make_unique<ArrayND>();
  r->value.Set(h.value);
  r->owner = h.owner;
  return r;
}

// The checked multi-index of an element; negative indices count from the end.
zrArray<int> Index(const ArrayND& h, py::handle key) {
  const py::tuple t =
      py::isinstance<py::tuple>(key) ? py::reinterpret_borrow<py::tuple>(key) : py::make_tuple(key);
  zrArray<int> index;
  for (std::size_t k = 0; k < t.size(); ++k) {
    py::ssize_t i = t[k].cast<py::ssize_t>();
    if (i < 0 && static_cast<int>(k) < h.value.GetDim()) i += h.value.Range()[k];
    // No element lies beyond 32 bits: such an index is refused, never cut to one that fits.
    if (i < INT32_MIN || i > INT32_MAX) throw py::index_error("index out of range");
    index.push_back(static_cast<int>(i));
  }
  return index;
}

// at() refuses a bad index with the library's text; Python wants an IndexError for it.
double& At(const ArrayND& h, py::handle key) {
  const zrArray<int> index = Index(h, key);
  try {
    return h.value.at(index);
  } catch (const BadParameters& e) {
    throw py::index_error(e.GetMessageText());
  }
}

void BindArray(py::module_& m) {
  py::class_<Array> cls(m, "Array", py::buffer_protocol(), R"doc(
A one-dimensional array of doubles over a shared, reference-counted block.

Array(data, copy=False) views a writeable, contiguous float64 ndarray in place (writes
through either side are seen by the other, and the Array keeps the ndarray alive); any
other data (a sequence, another dtype, a strided or read-only ndarray, or copy=True) is
copied into a block of the Array's own. numpy.asarray(a) is a view of the same
elements, and holds the block until the ndarray is gone.

>>> a = zr.Array([1.0, 2.0, 3.0])
>>> a
Array([1.0, 2.0, 3.0])
>>> n = numpy.asarray(a)
>>> n[0] = 10.0
>>> a[0], a.holders
(10.0, 2)
)doc");
  EnableBuffer<Array, ArrayLayout>(cls);
  cls.def(py::init(&MakeArray), py::arg("data") = py::tuple(), py::arg("copy") = false)
      .def("__len__", [](const Array& h) { return h.value.Len(); })
      .def(
          "__getitem__",
          [](const Array& h, py::ssize_t i) { return h.value[Wrap(i, h.value.Len())]; },
          py::arg("index"))
      .def(
          "__setitem__",
          [](Array& h, py::ssize_t i, double v) { h.value[Wrap(i, h.value.Len())] = v; },
          py::arg("index"), py::arg("value"))
      .def("__repr__", [](const Array& h) { return Repr("Array", Numpy<Array, ArrayLayout>(h)); })
      .def(
          "window",
          [](const Array& h, int start, int count) {
            zrArray<double> w = h.value.Mid(start, count);
            auto r = std::make_unique<Array>();
            r->value.Move(w);
            r->owner = h.owner;
            return r;
          },
          py::arg("start"), py::arg("count"), R"doc(
count elements from start, sharing this array's elements (nothing is copied).

>>> a = zr.Array([1.0, 2.0, 3.0, 4.0])
>>> w = a.window(1, 2)
>>> w[0] = -2.0
>>> a
Array([1.0, -2.0, 3.0, 4.0])
)doc")
      .def_property_readonly(
          "holders", [](const Array& h) { return Holders(h.value); }, R"doc(
The number of holders of the block (zr objects and ndarrays); 0 for an array that views
memory it does not own, such as an ndarray it was made from.

>>> a = zr.Array([1.0, 2.0])
>>> w = a.window(0, 1)
>>> a.holders
2
)doc")
      .def(
          "to_bytes", [](const Array& h) { return ToBytes(h.value); }, R"doc(
The library's flat form: the length as a 32-bit integer, then the elements.

>>> zr.Array([1.0]).to_bytes().hex()
'01000000000000000000f03f'
)doc")
      .def_static("from_bytes", &FromBytesOf<Array>, py::arg("data"), R"doc(
The array of a flat form; a short or malformed form, or bytes after
it, raise ValueError.

>>> zr.Array.from_bytes(zr.Array([1.0, 2.0]).to_bytes())
Array([1.0, 2.0])
)doc");
}

void BindArrayND(py::module_& m) {
  py::class_<ArrayND> cls(m, "ArrayND", py::buffer_protocol(), R"doc(
An N-dimensional array of doubles: a size and a signed step for every axis over a
shared block. Axis k here is axis k in NumPy, with the same stride.

ArrayND(data, copy=False) views a writeable float64 ndarray in place whenever its
strides are whole doubles (C or Fortran order, slices with steps, reversed axes);
anything else (a sequence, another dtype, a read-only array, strides that are not whole
doubles, or copy=True) is copied into a dense block of the ArrayND's own, axis 0 fastest.
flip, swap_axes and window are views: nothing is copied and writes go through.

>>> a = zr.ArrayND.zeros((3, 2))
>>> a.shape, a.steps
((3, 2), (1, 3))
>>> f = a.flip(0)
>>> f[0, 1] = 5.0
>>> a[2, 1]
5.0
>>> numpy.asarray(f).strides
(-8, 24)
)doc");
  EnableBuffer<ArrayND, NDLayout>(cls);
  cls.def(py::init(&MakeND), py::arg("data"), py::arg("copy") = false)
      .def_static(
          "zeros",
          [](const std::vector<py::ssize_t>& shape) {
            auto h = std::make_unique<ArrayND>();
            h->value.Set(IntArray(shape));
            if (h->value.GetSize() > 0) h->value.Fill(0.0);
            return h;
          },
          py::arg("shape"), R"doc(
A dense array of zeros in a new block, axis 0 fastest.

>>> zr.ArrayND.zeros((2, 2))
ArrayND([[0.0, 0.0], [0.0, 0.0]])
)doc")
      .def_property_readonly(
          "shape", [](const ArrayND& h) { return py::tuple(py::cast(NDLayout(h).shape)); })
      .def_property_readonly(
          "steps", [](const ArrayND& h) { return py::tuple(py::cast(NDLayout(h).steps)); },
          "The step of every axis in elements (NumPy's strides are 8 times these).")
      .def_property_readonly("ndim", [](const ArrayND& h) { return h.value.GetDim(); })
      .def_property_readonly("size", [](const ArrayND& h) { return h.value.GetSize(); })
      .def(
          "__getitem__", [](const ArrayND& h, py::handle key) { return At(h, key); },
          py::arg("index"))
      .def(
          "__setitem__", [](ArrayND& h, py::handle key, double v) { At(h, key) = v; },
          py::arg("index"), py::arg("value"))
      .def("__repr__",
           [](const ArrayND& h) { return Repr("ArrayND", Numpy<ArrayND, NDLayout>(h)); })
      .def(
          "flip",
          [](const ArrayND& h, int axis) {
            auto r = SameView(h);
            r->value.Flip(axis);
            return r;
          },
          py::arg("axis"), R"doc(
A view with the given axis reversed: its step is negated and its origin is the last
element along it.

>>> a = zr.ArrayND([1.0, 2.0, 3.0])
>>> a.flip(0)
ArrayND([3.0, 2.0, 1.0])
)doc")
      .def(
          "swap_axes",
          [](const ArrayND& h, int a, int b) {
            auto r = SameView(h);
            r->value.SwapAxis(a, b);
            return r;
          },
          py::arg("a"), py::arg("b"), R"doc(
A view with axes a and b exchanged (sizes and steps).

>>> a = zr.ArrayND([[1.0, 2.0, 3.0], [4.0, 5.0, 6.0]])
>>> a.swap_axes(0, 1).shape
(3, 2)
)doc")
      .def(
          "window",
          [](const ArrayND& h, const std::vector<py::ssize_t>& start,
             const std::vector<py::ssize_t>& shape) {
            const int dim = h.value.GetDim();
            // A window stays inside the array (the library would take one that reaches
            // further into the block, and cannot check a view of outside memory at all).
            bool inside = static_cast<int>(start.size()) == dim && shape.size() == start.size();
            for (std::size_t k = 0; inside && k < start.size(); ++k) {
              const py::ssize_t n = h.value.Range()[static_cast<int>(k)];
              inside = start[k] >= 0 && shape[k] >= 0 && start[k] <= n && shape[k] <= n - start[k];
            }
            if (!inside) throw py::value_error("ArrayND.window: the window leaves the array");
            auto r = std::make_unique<ArrayND>();
            r->value.SetSubWindow(h.value, IntArray(start), IntArray(shape));
            r->owner = h.owner;
            return r;
          },
          py::arg("start"), py::arg("shape"), R"doc(
The sub-array of the given shape from the multi-index start, sharing the elements.

>>> a = zr.ArrayND.zeros((4, 3))
>>> a.window((1, 1), (2, 2)).fill(7.0)
>>> a[1, 1], a[3, 2]
(7.0, 0.0)
)doc")
      .def(
          "fill", [](ArrayND& h, double v) { h.value.Fill(v); }, py::arg("value"),
          "Sets every element, through the steps (a view writes into the array it views).")
      .def_property_readonly(
          "holders", [](const ArrayND& h) { return Holders(h.value); }, R"doc(
The number of holders of the block (arrays, views and ndarrays); 0 for an array that
views memory it does not own.

>>> a = zr.ArrayND.zeros((2, 2))
>>> f = a.flip(1)
>>> a.holders
2
)doc")
      .def(
          "to_bytes", [](const ArrayND& h) { return ToBytes(h.value); }, R"doc(
The library's flat form: the sizes as a count and 32-bit integers, then the elements in
storage order (axis 0 fastest). Steps are not written: it reads back dense.

>>> zr.ArrayND([[1.0]]).to_bytes().hex()
'020000000100000001000000000000000000f03f'
)doc")
      .def_static("from_bytes", &FromBytesOf<ArrayND>, py::arg("data"), R"doc(
The dense array of a flat form; a short or malformed form, or bytes after
it, raise ValueError.

>>> b = zr.ArrayND([[1.0, 2.0], [3.0, 4.0]]).flip(1).to_bytes()
>>> zr.ArrayND.from_bytes(b)
ArrayND([[2.0, 1.0], [4.0, 3.0]])
)doc");
}

}  // namespace

void BindArrays(py::module_& m) {
  BindArray(m);
  BindArrayND(m);
}

}  // namespace zr::python
