#include "python/src/bindings.h"

namespace zr::python {

void BindNumeric(pybind11::module_&) {}

}  // namespace zr::python
