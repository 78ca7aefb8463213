#include "zr/curves/detail/nearest.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include "zr/core/detail/allocator.h"
#include "zr/core/detail/machine.h"

namespace zr::detail {
namespace {

// Below this many points on either side the plain loop is as quick as building a tree.
constexpr int kMinSize = 32;
// A node of more points than this is split.
constexpr int kLeaf = 8;

struct Point {
  double x, y;
  int i;  // the index in the curve
};

// The bounding box of the points lo ... hi - 1; left < 0 marks a leaf, else the children
// are nodes left and left + 1.
struct Node {
  double x0, y0, x1, y1;
  int lo, hi, left;
};

// The squared distance of (x, y) from the point, as the curve computes (c - p).ScalarMul().
double SquaredDistance(const Point& c, double x, double y) {
  const double dx = c.x - x;
  const double dy = c.y - y;
  return dx * dx + dy * dy;
}

class Tree {
 public:
  explicit Tree(const zrCurve2D& c) : points_(c.Len()) {
    const int n = c.Len();
    for (int i = 0; i < n; ++i) points_[i] = Point{c[i].X(), c[i].Y(), i};
    // Every leaf keeps at least kLeaf / 2 points, so there are fewer than n / 2 nodes.
    nodes_.reserve(static_cast<std::size_t>(n) / 2 + 1);
    nodes_.push_back(Node{});
    Build(0, 0, n);
  }

  // The nearest point to (x, y): (sq, best) come in as a candidate (a squared distance
  // and its index) and leave as the lowest index of the smallest squared distance. The
  // search stops early, leaving a candidate, once std::sqrt(sq) <= stop.
  void Nearest(double x, double y, double& sq, int& best, double stop) const {
    if (std::sqrt(sq) <= stop) return;
    int stack[2 * CHAR_BIT * sizeof(int)];
    int top = 0;
    stack[top++] = 0;
    while (top > 0) {
      const Node& node = nodes_[stack[--top]];
      if (Bound(node, x, y) > sq) continue;
      if (node.left < 0) {
        for (int k = node.lo; k < node.hi; ++k) {
          const double d = SquaredDistance(points_[k], x, y);
          if (d < sq || (d == sq && points_[k].i < best)) {
            sq = d;
            best = points_[k].i;
          }
        }
        if (std::sqrt(sq) <= stop) return;
        continue;
      }
      // The nearer child is searched first: pushed last.
      const double bl = Bound(nodes_[node.left], x, y);
      const double br = Bound(nodes_[node.left + 1], x, y);
      const int nearer = bl <= br ? node.left : node.left + 1;
      stack[top++] = nearer == node.left ? node.left + 1 : node.left;
      stack[top++] = nearer;
    }
  }

 private:
  // The squared distance formula on the gaps between (x, y) and the box: a lower bound of
  // every point's in it, rounding being monotone.
  static double Bound(const Node& b, double x, double y) {
    const double gx = x < b.x0 ? b.x0 - x : (x > b.x1 ? x - b.x1 : 0.0);
    const double gy = y < b.y0 ? b.y0 - y : (y > b.y1 ? y - b.y1 : 0.0);
    return gx * gx + gy * gy;
  }

  void Build(int node, int lo, int hi) {
    Node b{points_[lo].x, points_[lo].y, points_[lo].x, points_[lo].y, lo, hi, -1};
    for (int k = lo + 1; k < hi; ++k) {
      b.x0 = std::min(b.x0, points_[k].x);
      b.y0 = std::min(b.y0, points_[k].y);
      b.x1 = std::max(b.x1, points_[k].x);
      b.y1 = std::max(b.y1, points_[k].y);
    }
    if (hi - lo > kLeaf) {
      const bool byX = b.x1 - b.x0 >= b.y1 - b.y0;
      const int mid = lo + (hi - lo) / 2;
      std::nth_element(
          points_.begin() + lo, points_.begin() + mid, points_.begin() + hi,
          [byX](const Point& u, const Point& v) { return byX ? u.x < v.x : u.y < v.y; });
      b.left = static_cast<int>(nodes_.size());
      nodes_.push_back(Node{});
      nodes_.push_back(Node{});
      nodes_[node] = b;
      Build(b.left, lo, mid);
      Build(b.left + 1, mid, hi);
    } else {
      nodes_[node] = b;
    }
  }

  Vector<Point> points_;
  Vector<Node> nodes_;
};

bool Finite(const zrCurve2D& c) {
  for (int i = 0; i < c.Len(); ++i) {
    if (!std::isfinite(c[i].X()) || !std::isfinite(c[i].Y())) return false;
  }
  return true;
}

}  // namespace

bool FarthestNearest(const zrCurve2D& curve, const zrCurve2D& other, int& j, int& index) {
  if (CurrentLevel() == Level::kPlain || curve.Len() < kMinSize || other.Len() < kMinSize) {
    return false;
  }
  if (!Finite(curve) || !Finite(other)) return false;
  const Tree tree(curve);
  const double inf = std::numeric_limits<double>::infinity();
  double sq = inf;
  int near = INT_MAX;
  tree.Nearest(other[0].X(), other[0].Y(), sq, near, -1.0);
  double best = std::sqrt(sq);
  int bestJ = 0;
  int bestIndex = near;
  for (int k = 1; k < other.Len(); ++k) {
    // The previous point's nearest is a good first candidate for this one.
    const double x = other[k].X();
    const double y = other[k].Y();
    sq = SquaredDistance(Point{curve[near].X(), curve[near].Y(), near}, x, y);
    tree.Nearest(x, y, sq, near, best);
    const double dist = std::sqrt(sq);
    if (dist > best) {
      best = dist;
      bestJ = k;
      bestIndex = near;
    }
  }
  j = bestJ;
  index = bestIndex;
  return true;
}

}  // namespace zr::detail
