#include "python/src/bindings.h"

namespace zr::python {

void BindArrays(pybind11::module_&) {}

}  // namespace zr::python
