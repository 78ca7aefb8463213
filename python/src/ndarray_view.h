// Zero-copy passage of double elements between zr's arrays and NumPy, both ways.
//
// zr to NumPy: an ndarray over the object's own elements with the object's strides (in
// bytes, so a flip gives a negative one). Its base holds one counted share of the block,
// so the block outlives the zr object for as long as NumPy holds it, and the holder count
// says so. An object that views memory it does not own (an ndarray it was made from) has
// no block; the ndarray then takes that owner as its base.
//
// NumPy to zr: a writeable ndarray of native float64 whose data and strides are whole
// doubles is viewed in place (the zr object then holds no block, and keeps the ndarray
// alive through Held::owner). Anything else (another dtype, a read-only array, a byte
// stride such as a field of a packed record, a misaligned buffer, a Python sequence) is
// copied into a fresh block of the library's own.
//
// The buffer protocol of the bound classes hands out such an ndarray's buffer, so
// numpy.asarray(x) and memoryview(x) see the elements in place.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "python/src/flat_form.h"
#include "zr/zr.h"

namespace zr::python {

namespace py = pybind11;

// A bound zr object and what keeps its elements alive when it does not own them: the
// ndarray it views (or the Python objects whose memory it shares), None otherwise.
template <class Z>
struct Held {
  Z value;
  py::object owner = py::none();
};

// The holders of the block an object shares, 0 when it holds none.
inline int Holders(const zrPArray& a) {
  void* const block = a.GetMem();
  return block ? zrGetMemRef(block) : 0;
}

// Elements as NumPy sees them: the first one, and the size and step (in elements) of
// every axis.
struct Layout {
  double* first = nullptr;
  std::vector<py::ssize_t> shape;
  std::vector<py::ssize_t> steps;
};

// An ndarray over the elements of a layout, copying nothing. With a block, its base is a
// capsule holding one counted share of it; without one, its base is owner.
inline py::array ToNumpy(const Layout& l, void* block, const py::object& owner) {
  std::vector<py::ssize_t> strides;
  for (py::ssize_t s : l.steps) strides.push_back(s * static_cast<py::ssize_t>(sizeof(double)));
  py::object base = owner;
  if (block) {
    zrIncMemRef(block);
    base = py::capsule(block, [](void* b) { zrDeleteWithRef(static_cast<double*>(b)); });
  }
  return py::array(py::dtype::of<double>(), l.shape, strides, l.first, base);
}

// Whether zr may view obj in place: a writeable ndarray of native doubles whose data and
// strides are whole, aligned doubles.
inline bool Viewable(py::handle obj) {
  if (!py::array_t<double>::check_(obj)) return false;
  const auto a = py::reinterpret_borrow<py::array>(obj);
  if (!a.writeable()) return false;
  if (reinterpret_cast<std::uintptr_t>(a.data()) % alignof(double) != 0) return false;
  for (py::ssize_t k = 0; k < a.ndim(); ++k) {
    if (a.strides(k) % static_cast<py::ssize_t>(sizeof(double)) != 0) return false;
  }
  return true;
}

// The layout of a viewable ndarray: its strides in doubles.
inline Layout LayoutOf(const py::array& a) {
  Layout l;
  l.first = static_cast<double*>(const_cast<void*>(a.data()));
  for (py::ssize_t k = 0; k < a.ndim(); ++k) {
    l.shape.push_back(a.shape(k));
    l.steps.push_back(a.strides(k) / static_cast<py::ssize_t>(sizeof(double)));
  }
  return l;
}

// numpy.asarray(obj), refused unless it has ndim dimensions (at least one for ndim < 0).
inline py::array Source(py::handle obj, int ndim, const char* cls) {
  py::array a = py::module_::import("numpy").attr("asarray")(obj);
  if (ndim >= 0 ? a.ndim() != ndim : a.ndim() < 1) {
    throw py::value_error(std::string(cls) + " takes " +
                          (ndim >= 0 ? std::to_string(ndim) : std::string("at least 1")) +
                          " dimension(s), not " + std::to_string(a.ndim()));
  }
  return a;
}

// Copies src into the elements of dst (same shape), as numpy.copyto does with
// "same_kind" casting: integers and floats go in, complex numbers are refused.
inline void CopyInto(const Layout& dst, void* block, const py::array& src) {
  if (!dst.first) return;
  py::module_::import("numpy").attr("copyto")(ToNumpy(dst, block, py::none()), src,
                                              py::arg("casting") = "same_kind");
}

// The sizes as the library takes them.
inline zrArray<int> IntArray(const std::vector<py::ssize_t>& v) {
  zrArray<int> r;
  for (py::ssize_t x : v) {
    if (x < INT32_MIN || x > INT32_MAX) throw py::value_error("a size or step beyond 32 bits");
    r.push_back(static_cast<int>(x));
  }
  return r;
}

// A count of elements as the library takes it, refused beyond 32 bits.
inline int Count(py::ssize_t n) {
  if (n > INT32_MAX) throw py::value_error("more elements than 32 bits count");
  return static_cast<int>(n);
}

// A step in elements as the library takes it, refused beyond 32 bits.
inline int Step(py::ssize_t s) {
  if (s < INT32_MIN || s > INT32_MAX) throw py::value_error("a step beyond 32 bits");
  return static_cast<int>(s);
}

// A Python index (negative ones from the end) checked against n.
inline int Wrap(py::ssize_t i, int n) {
  if (i < 0) i += n;
  if (i < 0 || i >= n) throw py::index_error("index out of range");
  return static_cast<int>(i);
}

// A bound object read from the library's flat form (see FromBytes).
template <class H>
std::unique_ptr<H> FromBytesOf(const py::bytes& b) {
  auto h = std::make_unique<H>();
  FromBytes(b, h->value);
  return h;
}

// The buffer of a bound class: that of the ndarray View gives, which is then the buffer's
// owner (it holds the block share, and the shape and strides), so a memoryview counts
// among the block's holders as any ndarray over it does.
template <class T, py::array (*View)(const T&)>
int GetBuffer(PyObject* self, Py_buffer* view, int flags) {
  try {
    const py::array a = View(py::cast<const T&>(py::handle(self)));
    return PyObject_GetBuffer(a.ptr(), view, flags);
  } catch (py::error_already_set& e) {
    e.restore();
  } catch (const std::exception& e) {
    PyErr_SetString(PyExc_BufferError, e.what());
  }
  view->obj = nullptr;
  return -1;
}

// Installs that buffer on a class declared with py::buffer_protocol().
template <class T, py::array (*View)(const T&)>
void EnableViewBuffer(const py::handle& cls) {
  PyBufferProcs* procs = reinterpret_cast<PyTypeObject*>(cls.ptr())->tp_as_buffer;
  procs->bf_getbuffer = &GetBuffer<T, View>;
  procs->bf_releasebuffer = nullptr;
}

// The ndarray of a bound object's elements, through its layout.
template <class H, Layout (*Of)(const H&)>
py::array Numpy(const H& h) {
  return ToNumpy(Of(h), h.value.GetMem(), h.owner);
}

// The buffer of a bound object's elements, through its layout.
template <class H, Layout (*Of)(const H&)>
void EnableBuffer(const py::handle& cls) {
  EnableViewBuffer<H, &Numpy<H, Of>>(cls);
}

// "Name([...])" with the elements as nested lists, or "Name(shape=(...))" past 100 of them.
inline std::string Repr(const char* name, const py::array& a) {
  if (a.size() > 100) {
    py::tuple shape(a.ndim());
    for (py::ssize_t k = 0; k < a.ndim(); ++k) shape[k] = a.shape(k);
    return std::string(name) + "(shape=" + py::repr(shape).cast<std::string>() + ")";
  }
  return std::string(name) + "(" + py::repr(a.attr("tolist")()).cast<std::string>() + ")";
}

}  // namespace zr::python
