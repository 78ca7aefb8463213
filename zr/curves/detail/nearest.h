/// \file
/// The one-sided discrete Hausdorff query of zrCurve2D below quadratic cost. The
/// library's own header, never installed.
///
/// The plain query measures every point of one curve against every point of the other.
/// This kernel puts the points of the measured curve in a k-d tree (median splits on the
/// wider side of each box, leaves of at most 8 points, every node with the bounding box of
/// its points) and finds each nearest point by a search that skips a box only when no
/// point in it can reach the best squared distance found so far. The answers are the
/// plain loop's, bit for bit and index for index:
///   - a point's squared distance is (c - p).x^2 + (c - p).y^2 in that order, and its ties
///     go to the lowest index, as in the plain loop;
///   - a box's bound is the same expression on the gaps between p and the box, and
///     rounding is monotone, so the bound never exceeds the computed squared distance of
///     any point inside; a box is skipped only when its bound is strictly greater than the
///     best, so a point that could tie is always seen;
///   - a point of the other curve whose search has found a distance (its square root, as
///     the plain loop compares it) not above the farthest so far cannot replace it (the
///     plain loop compares with >), so its search stops there; the searches that can win
///     run to the end and give the exact nearest point.
/// The kernel declines (returns false, having written nothing) at the plain level, for
/// small curves, and when any coordinate of either curve is not finite (NaN distances do
/// not order). The expected cost is O((n + m) log n) for curves of n and m points.
#pragma once

#include "zr/curves/curve.h"

namespace zr::detail {

/// curve.GetIndexOfMaxDistance(index, other) when the kernel takes it: returns true with
/// the point j of other in j and its nearest point of curve in index. other must have at
/// least two points.
bool FarthestNearest(const zrCurve2D& curve, const zrCurve2D& other, int& j, int& index);

}  // namespace zr::detail
