// The Python module zr. The library's exceptions arrive as Python's own: BadParameters as
// ValueError, zrErrNoMemory as MemoryError, any other library error as RuntimeError, each
// with the library's text. The texts are decoded as Windows-1251, the code page of the few
// messages that are not ASCII.
#include <pybind11/pybind11.h>

#include <cstring>

#include "python/src/bindings.h"
#include "zr/zr.h"

namespace py = pybind11;

namespace {

void Raise(PyObject* type, const zrExceptionWithMessage& e) {
  const char* text = e.GetMessageText();
  PyObject* message =
      PyUnicode_Decode(text, static_cast<Py_ssize_t>(std::strlen(text)), "cp1251", "replace");
  PyErr_SetObject(type, message);
  Py_XDECREF(message);
}

}  // namespace

PYBIND11_MODULE(zr, m) {
  m.doc() = "zr: typed arrays over shared blocks, linear algebra, splines, geometry and curves.";
  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (const BadParameters& e) {
      Raise(PyExc_ValueError, e);
    } catch (const zrErrNoMemory& e) {
      Raise(PyExc_MemoryError, e);
    } catch (const zrExceptionWithMessage& e) {
      Raise(PyExc_RuntimeError, e);
    }
  });
  zr::python::BindArrays(m);
  zr::python::BindLinalg(m);
  zr::python::BindNumeric(m);
  zr::python::BindGeometry(m);
  zr::python::BindCurves(m);
  zr::python::BindText(m);
}
