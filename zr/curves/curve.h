/// \file
/// zrCurve2D: the plane polyline.
///
/// An ordered array of zrVec2 points with a few measurements: centre, bounding rectangle,
/// nearest and farthest points, and the one-sided discrete Hausdorff query against another
/// curve. It is a zrArray<zrVec2> and adds no data, so construction, sharing, windows,
/// editing and the flat form (a signed 32-bit count, then x and y of every point) are the
/// array's; only the type name differs ("zrCurve2D").
///
/// Who shares and who copies: as zrArray<zrVec2>. The copy constructor copies the points
/// into a block of its own; assignment from a curve of equal length writes the points in
/// place, so every sharer of the block sees them. For that reason the curve has a swap of
/// its own, which the arrays use to move curves around without writing one curve's points
/// into another's storage.
///
/// The measurements assume at least one point: on an empty curve GetCenter divides by a
/// zero count and the distance queries read a point that is not there (not checked).
#pragma once

#include <utility>

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/geometry/rect.h"
#include "zr/values/values.h"

/// A plane polyline: an ordered zrArray of zrVec2 points with its centre, bounding
/// rectangle, nearest and farthest points and the one-sided Hausdorff query.
/// Who shares the block: as zrArray<zrVec2>: the copy constructor copies the points,
/// assignment of an equal length writes them in place for every sharer, windows share
/// (see curve.h). See the example examples/contours.cpp, whose contours are curves.
class ZR_API zrCurve2D : public zrArray<zrVec2> {
  ZR_TYPE_IDENTITY
 public:
  /// Empty: no block, length 0.
  zrCurve2D() = default;
  /// n uninitialised points in a new block; n < 1 throws "zrNewWithRef : n <= 0 ".
  explicit zrCurve2D(int n) : zrArray<zrVec2>(n) {}
  /// A deep copy of the points of an array.
  explicit zrCurve2D(const zrArray<zrVec2>& points) : zrArray<zrVec2>(points) {}
  /// A deep copy: a new block with the source's points.
  zrCurve2D(const zrCurve2D& other) : zrArray<zrVec2>(other) {}
  /// Takes the source's block over; the source is left empty.
  zrCurve2D(zrCurve2D&& other) noexcept : zrArray<zrVec2>(std::move(other)) {}
  /// The array's assignment: equal length writes in place (sharers see it).
  zrCurve2D& operator=(const zrCurve2D& other) {
    zrArray<zrVec2>::operator=(other);
    return *this;
  }
  ~zrCurve2D() override;

  /// Exchanges the two curves' blocks, origins and lengths; no point is copied.
  void swap(zrCurve2D& other) { zrSimpleArray<zrVec2>::swap(other); }

  /// The mean of the points: the x sum and the y sum, each in index order, divided by the
  /// point count.
  zrVec2 GetCenter() const;
  /// The bounding rectangle: lower corner (smallest x, smallest y), then upper corner.
  /// A NaN coordinate is skipped unless it comes from point 0.
  zrRect<zrVec2> GetRect() const;
  /// The index of the point nearest to p (squared distances compared with <, so the lowest
  /// index wins a tie); dist receives the Euclidean distance.
  int GetIndexOfMinDistance(double& dist, const zrVec2& p) const;
  /// The same for the farthest point (compared with >, lowest index on ties).
  int GetIndexOfMaxDistance(double& dist, const zrVec2& p) const;
  /// The discrete one-sided Hausdorff query: for each point j of other the nearest point of
  /// this curve is found; the j whose nearest distance (the Euclidean distance, compared
  /// with >) is largest is returned, the first on ties, and index receives the index of
  /// its nearest point here. When other has fewer than two points the result is 0 and index
  /// is the nearest point to other's point 0 (other must not be empty).
  /// Cost: expected O((n + m) log n) for n, m >= 32 finite points, else n * m.
  /// The faster search takes scratch memory: zrErrNoMemory when there is none.
  int GetIndexOfMaxDistance(int& index, const zrCurve2D& other) const;
};
