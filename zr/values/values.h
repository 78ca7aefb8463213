/// \file
/// Value types: the complex number and the 2-D and 3-D vectors.
#pragma once

#include "zr/core/core.h"
#include "zr/values/complex.h"
#include "zr/values/vec.h"
