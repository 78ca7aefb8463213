#include "python/src/bindings.h"

namespace zr::python {

void BindLinalg(pybind11::module_&) {}

}  // namespace zr::python
