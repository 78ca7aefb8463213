// The Python module's parts, one per subsystem; module.cpp registers the exception
// translation, then calls each of them in this order.
#pragma once

#include <pybind11/pybind11.h>

namespace zr::python {

void BindArrays(pybind11::module_& m);    // 1-D arrays and N-D views (bind_arrays.cpp)
void BindLinalg(pybind11::module_& m);    // vectors, matrices, tri- and five-diagonal solvers
void BindNumeric(pybind11::module_& m);   // polynomials and splines
void BindGeometry(pybind11::module_& m);  // primitives and coordinate transforms
void BindCurves(pybind11::module_& m);    // contours, Beta-spline curves and tubes
void BindText(pybind11::module_& m);      // the string tokenizer

}  // namespace zr::python
