/// \file
/// Curves: the plane polyline and spline curve, the closed plane contour, and the
/// Beta-spline curves, contours and tubes.
#pragma once

#include "zr/curves/beta.h"
#include "zr/curves/contour.h"
#include "zr/curves/curve.h"
#include "zr/curves/spline_curve.h"
