// Curves: the plane polyline and spline curve, and the closed plane contour.
#pragma once

#include "zr/curves/contour.h"
#include "zr/curves/curve.h"
#include "zr/curves/spline_curve.h"
