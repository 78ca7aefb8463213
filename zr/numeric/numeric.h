/// \file
/// Numerical methods: polynomials, cubic splines and fast cosine transforms.
#pragma once

#include "zr/core/core.h"
#include "zr/numeric/fct.h"
#include "zr/numeric/polynom.h"
#include "zr/numeric/spline.h"
#include "zr/numeric/extremum.h"
