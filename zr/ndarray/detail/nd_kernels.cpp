// NDKernels<double>: the walks of zrArrayND<double> in the order nd_walk.h chooses, at
// the portable level with scalar tiles, at the AVX2 and AVX-512 levels with the vector
// transposes of nd_cross.cpp for planes whose lines cross. The plain level declines.
#include <cstddef>

#include "zr/core/detail/machine.h"
#include "zr/ndarray/array_nd.h"
#include "zr/ndarray/detail/nd_walk.h"

namespace zr::detail {
namespace {

template <NDOp op>
void Apply(double& x, double y) {
  if constexpr (op == NDOp::kAssign) {
    x = y;
  } else if constexpr (op == NDOp::kAdd) {
    x += y;
  } else if constexpr (op == NDOp::kSub) {
    x -= y;
  } else if constexpr (op == NDOp::kMul) {
    x *= y;
  } else {
    x /= y;
  }
}

// The plane hook of a pair walk: the vector transposes where the lines cross with unit
// steps.
template <NDOp op>
struct Cross {
  Level level;
  bool operator()(int r0, int r1, double* a, int a0, int a1, const double* b, int b0,
                  int b1) const {
    return a0 == 1 && b1 == 1 && CrossPlane(level, op, r0, r1, a, a1, b, b0);
  }
};

template <NDOp op>
void PairAt(Level level, int n, const int* range, double* a, const int* ta, const double* b,
            const int* tb) {
  // A target that reaches an element twice sees its operations in storage order.
  WalkPair(
      n, range, a, ta, b, tb, NDOrder::kAnyIfLead,
      [](int count, double* x, int sx, const double* y, int sy) {
        return RunLine(count, x, sx, y, sy, [](double& u, const double& v) { Apply<op>(u, v); });
      },
      Cross<op>{level});
}

template <NDOp op>
void ScalarAt(int n, const int* range, double* a, const int* ta, double value) {
  // Each element gets its own operations, the same ones in any order.
  WalkPair(
      n, range, a, ta, a, ta, NDOrder::kAny,
      [value](int count, double* x, int sx, double*, int) {
        return RunLine(count, x, sx, x, sx, [value](double& u, double&) { Apply<op>(u, value); });
      },
      NDNoPlane());
}

}  // namespace

bool NDKernels<double>::Pair(NDOp op, int n, const int* range, double* a, const int* ta,
                             const double* b, const int* tb) {
  const Level level = CurrentLevel();
  if (level == Level::kPlain) return false;
  ByOp(op, [&](auto k) { PairAt<decltype(k)::value>(level, n, range, a, ta, b, tb); });
  return true;
}

bool NDKernels<double>::Scalar(NDOp op, int n, const int* range, double* a, const int* ta,
                               double value) {
  if (CurrentLevel() == Level::kPlain) return false;
  ByOp(op, [&](auto k) { ScalarAt<decltype(k)::value>(n, range, a, ta, value); });
  return true;
}

bool NDKernels<double>::Equal(int n, const int* range, const double* a, const int* ta,
                              const double* b, const int* tb, bool& equal) {
  if (CurrentLevel() == Level::kPlain) return false;
  equal = WalkPair(
      n, range, a, ta, b, tb, NDOrder::kAny,
      [](int count, const double* x, int sx, const double* y, int sy) {
        std::ptrdiff_t ix = 0;
        std::ptrdiff_t iy = 0;
        for (int i = 0; i < count; ++i, ix += sx, iy += sy)
          if (!(x[ix] == y[iy])) return false;
        return true;
      },
      NDNoPlane());
  return true;
}

bool NDKernels<double>::MinMax(int n, const int* range, const double* a, const int* ta, double& lo,
                               double& hi) {
  if (CurrentLevel() == Level::kPlain) return false;
  // From the origin element, as the storage-order walk starts: a NaN there stays, a NaN
  // elsewhere never enters, and other extremes are one value whatever the order, except
  // the zeros, where +0 and -0 tie and storage order must decide.
  double l = *a;
  double h = *a;
  WalkPair(
      n, range, a, ta, a, ta, NDOrder::kAny,
      [&l, &h](int count, const double* x, int sx, const double*, int) {
        return RunLine(count, x, sx, x, sx, [&l, &h](const double& u, const double&) {
          if (u < l) l = u;
          if (h < u) h = u;
        });
      },
      NDNoPlane());
  if (l == 0.0 || h == 0.0) return false;
  lo = l;
  hi = h;
  return true;
}

}  // namespace zr::detail
