#include "python/src/bindings.h"

namespace zr::python {

void BindCurves(pybind11::module_&) {}

}  // namespace zr::python
