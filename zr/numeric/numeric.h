/// \file
/// Numerical methods: polynomials and cubic splines.
#pragma once

#include "zr/core/core.h"
#include "zr/numeric/polynom.h"
#include "zr/numeric/spline.h"
#include "zr/numeric/extremum.h"
