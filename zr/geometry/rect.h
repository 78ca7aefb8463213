/// \file
/// zrRect<T>: an axis-parallel box given by its two corners, a plain value.
///
/// The fields are, in order, the lower corner (smallest coordinates) and the upper corner
/// (largest coordinates). Nothing keeps lower <= upper: a caller may store any two
/// corners, and the functions that build a rectangle from points (a transform's
/// TransformRect, a curve's bounding rectangle) fill them as componentwise minima and
/// maxima. No virtual operations, trivially copyable; the default constructor leaves the
/// corners uninitialised, as the point types do. Used as zrRect<zrVec2>.
#pragma once

#include <type_traits>

#include "zr/values/values.h"

/// An axis-parallel box given by its lower and upper corner, a plain value copied whole;
/// used as zrRect<zrVec2>, the bounding rectangle of curves and transforms (see rect.h).
/// See the example docs/examples.md#guide_geometry for the geometry subsystem.
template <class T>
class zrRect {
 public:
  /// Corners uninitialised.
  zrRect() = default;
  zrRect(const T& lo, const T& hi) : lo_(lo), hi_(hi) {}

  /// The lower corner.
  T& Min() { return lo_; }
  const T& Min() const { return lo_; }
  /// The upper corner.
  T& Max() { return hi_; }
  const T& Max() const { return hi_; }

  /// Both corners equal, exactly.
  int operator==(const zrRect& b) const { return lo_ == b.lo_ && hi_ == b.hi_; }
  int operator!=(const zrRect& b) const { return !(*this == b); }

 private:
  T lo_;  // lower corner
  T hi_;  // upper corner
};

static_assert(std::is_trivially_copyable_v<zrRect<zrVec2>>);
static_assert(std::is_standard_layout_v<zrRect<zrVec2>> && sizeof(zrRect<zrVec2>) == 32);
