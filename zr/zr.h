/// \file
/// zr: the whole library. #include <zr/zr.h> with the repository root as include root.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/curves/curves.h"
#include "zr/geometry/geometry.h"
#include "zr/graph/graph.h"
#include "zr/linalg/linalg.h"
#include "zr/ndarray/ndarray.h"
#include "zr/numeric/numeric.h"
#include "zr/text/text.h"
#include "zr/values/values.h"
