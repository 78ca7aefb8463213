// Arrays: the shared buffer base and the one- and two-dimensional arrays.
#pragma once

#include "zr/arrays/parray.h"
#include "zr/core/core.h"
