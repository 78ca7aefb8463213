// zrArrayND<double>: every kernel level gives the plain walk's bits over layouts that reach
// the edges of the tiles (8 x 16), the transposed blocks (8 x 8, rows of 32 in big planes,
// 32 rows prefetched ahead) and the prefetched chunks of reversed lines (64): flips, axis
// exchanges, windows, zero steps, and sources that share the target's block.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/levels.h"
#include "support/nd_arrays.h"
#include "zr/zr.h"

namespace {

using A = zrArrayND<double>;
using zr_test::I;

// A block of the given sizes holding Mixed values.
A Block(const zrArray<int>& shape, int seed) {
  A a(shape);
  const std::vector<double> v = zr_test::Mixed(a.GetSize(), seed);
  std::copy(v.begin(), v.end(), a.GetPointer());
  return a;
}

// The source's steps apply to a block of its own, or after "@" to the target's block;
// "@=" makes the target its own source.
struct Layout {
  zrArray<int> shape;  // symmetric in the axes the steps exchange
  std::string dest;
  std::string source;
};

// Everything the walks give on one layout: the target's whole block after each array
// operator and each scalar one (nothing outside the view may change), then a copy of the
// source, comparisons (equal, and differing only at the end or the start of a line) and
// the extremes, ties of signed zeros included.
std::vector<double> RunAll(const Layout& c) {
  std::vector<double> out;
  const std::function<void(A&, const A&)> ops[] = {
      [](A& x, const A& y) { x = y; },
      [](A& x, const A& y) { x += y; },
      [](A& x, const A& y) { x -= y; },
      [](A& x, const A& y) { x *= y; },
      [](A& x, const A& y) { x /= y; },
      [](A& x, const A&) { x.Fill(0.25); },
      [](A& x, const A&) { x -= 0.75; },
      [](A& x, const A&) { x /= 3.0; },
      [&out](A&, const A& y) {
        A copy(y), start(y);
        out.insert(out.end(), copy.GetPointer(), copy.GetPointer() + copy.GetSize());
        out.insert(out.end(), {double(copy == y), y.Min(), y.Max()});
        copy.back() = start.front() = 1e300;
        out.insert(out.end(), {double(copy == y), double(start == y)});
      },
      [&out](A& x, const A&) {  // ties of +0 and -0 after a nonzero origin, then a NaN
        x *= 0.0;
        x.front() = 1.0;
        out.push_back(x.Min());
        x.front() = -1.0;
        out.push_back(x.Max());
        x.back() = std::nan("");
        out.insert(out.end(), {x.Min(), x.Max()});
      }};
  for (const auto& op : ops) {
    A block = Block(c.shape, 2);
    A own = Block(c.shape, 3);
    A dest, src;
    zr_test::ViewOf(dest, block, c.dest);
    zr_test::ViewOf(src, c.source[0] == '@' ? block : own, c.source == "@=" ? c.dest : c.source);
    op(dest, src);
    out.insert(out.end(), block.GetPointer(), block.GetPointer() + block.GetSize());
  }
  return out;
}

std::vector<Layout> Layouts() {
  std::vector<Layout> out;
  for (int n : {1, 7, 8, 9, 15, 16, 17}) {  // each side of the tile and block edges
    out.push_back({I(n), "", "f0"});
    out.push_back({I(n, n), "f1", "s01 f0"});
    out.push_back({I(n, 3, n), "s02", ""});
    out.push_back({I(n, 3, n), "f2", "s02 f1"});
  }
  // Planes longer than the prefetch distance; 184 x 184 goes in block rows of 32 lines from
  // the 64-byte boundaries its steps share; a window moves the boundaries.
  for (int n : {41, 57, 184}) {
    out.push_back({I(n, 2, n), "", "s02"});
    out.push_back({I(n + 2, n + 2, 2), "w0 w1", "s01 w0 w1"});
  }
  out.insert(out.end(), {
                            {I(130, 3), "", "f0"},  // reversed lines in chunks of 64
                            {I(130, 3), "f0", ""},
                            {I(200, 2, 2), "f0 f2", "f0"},
                            {I(33, 5, 33), "s02 w2", "w2"},
                            {I(9, 2, 3, 9), "f3", "s03 f1"},
                            {I(9, 5, 3, 9), "w1", "s03 w1 f0"},
                            {I(10, 10, 10), "s12", "s01"},
                            {I(12, 12), "", "s01 t10"},  // a source that repeats elements
                            {I(12, 12), "t10", "s01"},   // targets that reach elements twice
                            {I(12, 12), "t11 t02", "s01"},
                            {I(9, 9), "t18", "s01"},  // the last of line 0 is the first of line 1
                            {I(9, 4, 9), "f1 t10", "s02"},
                            {I(24, 24), "", "@ s01"},  // read whole before any write
                            {I(24, 24), "w0", "@ f0 s01 w0"},
                            {I(24, 24), "f0 s01", "@="},
                            {I(9, 9), "t00 f1", "@="},
                        });
  return out;
}

TEST(ArrayNDKernels, EveryLevelGivesThePlainBitsOnEveryLayout) {
  for (const Layout& c : Layouts()) {
    SCOPED_TRACE(::testing::Message() << c.shape[0] << " x " << c.shape.Len() << " dest \""
                                      << c.dest << "\" source \"" << c.source << '"');
    EXPECT_NO_THROW(RunAll(c));
    zr_test::ExpectLevelsAgree([&c] { return RunAll(c); });
  }
}

}  // namespace
