/// \file
/// Linear algebra: strided vectors, row and column vectors, dense matrices with
/// elimination and inversion.
#pragma once

#include "zr/core/core.h"
#include "zr/linalg/line_column.h"
#include "zr/linalg/matrix.h"
#include "zr/linalg/matrix3diag.h"
#include "zr/linalg/small_matrix.h"
#include "zr/linalg/vector.h"
