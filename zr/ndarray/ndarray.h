/// \file
/// N-dimensional arrays: the geometry base zrArrayNDAbs, the typed arrays zrArrayND<T> and
/// the periodic cursor zrRoundArrayND.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/ndarray/array_nd.h"
#include "zr/ndarray/array_nd_abs.h"
#include "zr/ndarray/round_array_nd.h"
