// The library's flat byte form from Python: to_bytes() and from_bytes(data).
#pragma once

#include <pybind11/pybind11.h>

#include <string>

#include "zr/zr.h"

namespace zr::python {

namespace py = pybind11;

// The library's flat form of an object, exactly the bytes it writes.
template <class Z>
py::bytes ToBytes(const Z& z) {
  std::string s(static_cast<std::size_t>(zrMemSize(z)), '\0');
  zrToMem(reinterpret_cast<unsigned char*>(s.data()), z);
  return py::bytes(s);
}

// Reads the flat form with the checked reader: a short or malformed form is refused with
// the library's text (a ValueError) and nothing is read. The bytes must be the form and
// nothing more: bytes left over after it are refused too (z is then read, but callers
// read into a fresh object that they drop).
template <class Z>
void FromBytes(const py::bytes& b, Z& z) {
  char* data = nullptr;
  Py_ssize_t size = 0;
  if (PyBytes_AsStringAndSize(b.ptr(), &data, &size) != 0) throw py::error_already_set();
  const int used =
      zrFromMem(reinterpret_cast<const unsigned char*>(data), static_cast<std::size_t>(size), z);
  if (used != size)
    throw py::value_error(std::to_string(size - used) + " bytes left over after the flat form");
}

// Adds to_bytes() and the static from_bytes(data) to a bound class of values; example is
// an expression of the class, for the docstrings' round trip.
template <class T, class Class>
void DefFlatForm(Class& cls, const std::string& example) {
  const std::string name = py::cast<std::string>(cls.attr("__name__"));
  cls.def(
      "to_bytes", [](const T& self) { return ToBytes(self); },
      ("The library's flat byte form of this object, exactly the bytes the library writes.\n\n"
       ">>> len(" +
       example + ".to_bytes()) > 0\nTrue\n")
          .c_str());
  cls.def_static(
      "from_bytes",
      [](const py::bytes& data) {
        T object;
        FromBytes(data, object);
        return object;
      },
      py::arg("data"),
      ("An object read from the library's flat byte form. A short or malformed buffer, or\n"
       "one with bytes after the form, raises ValueError.\n\n"
       ">>> x = " +
       example + "\n>>> repr(zr." + name + ".from_bytes(x.to_bytes())) == repr(x)\nTrue\n")
          .c_str());
}

}  // namespace zr::python
