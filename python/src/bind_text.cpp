#include "python/src/bindings.h"

namespace zr::python {

void BindText(pybind11::module_&) {}

}  // namespace zr::python
