/// \file
/// Arrays: the shared buffer base and the one- and two-dimensional arrays.
#pragma once

#include "zr/arrays/array.h"
#include "zr/arrays/parray.h"
#include "zr/arrays/simple_array.h"
#include "zr/arrays/simple_array_2d.h"
#include "zr/core/core.h"
