#include "python/src/bindings.h"

namespace zr::python {

void BindGeometry(pybind11::module_&) {}

}  // namespace zr::python
