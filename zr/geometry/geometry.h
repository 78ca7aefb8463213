/// \file
/// Geometry: the zrGeom lines, rays, segments and planes with their intersections, the
/// plane and space coordinate transforms, and the axis-parallel rectangle.
#pragma once

#include "zr/geometry/primitives.h"
#include "zr/geometry/rect.h"
#include "zr/geometry/transform.h"
