// zrArrayNDAbs: its Index, the neighbour tables, the segment clipping and the
// zrRoundArrayND cursor.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/nd_arrays.h"
#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using zr_test::I;
using L = std::vector<int>;

L V(const zrArray<int>& a) { return L(a.begin(), a.end()); }

// Opens the protected stepping of Index.
struct Counters : zrArrayNDAbs::Index {
  using Index::Dec;
  using Index::Inc;
  using Index::Set;
  using Index::SharedRange;
};

}  // namespace

TEST(ArrayNDAbs, IndexStepsALineAtATime) {
  zrArrayND<int> a(I(2, 2, 3));
  Counters c;
  c.Set(&a, false);
  const int* r = a.Range().GetPointer();
  L carries;
  for (int k = c.Inc(r); k != 0; k = c.Inc(r)) carries.push_back(k);
  EXPECT_EQ(carries, L({1, 2, 1, 2, 1}));
  // Back at the start; Dec wraps to the last line at once.
  EXPECT_EQ(L({c[0], c[1], c[2], c.Dec(r), c[0], c[1], c[2], c.Dec(r), c[0], c[1], c[2]}),
            L({0, 0, 0, 0, 1, 1, 2, 1, 1, 0, 2}));

  zrArrayND<int> one(I(4));
  Counters single;
  single.Set(&one, true);
  EXPECT_EQ(V(single), L({3}));

  Counters kept;  // the index keeps the sizes it walks alive past the array
  {
    zrArrayND<int> gone(I(3, 2));
    kept.Set(&gone, false);
  }
  Counters copy(kept);
  EXPECT_EQ(copy.Inc(copy.SharedRange()), 1);
}

TEST(ArrayNDAbs, GetLineWithinClipsByOutcodes) {
  const zrArrayND<int> box(I(4, 4));
  // The end points, then whether some of the segment lies inside and the points after it.
  const int clips[][9] = {
      {-2, -2, 5, 6, 1, 0, 0, 3, 3},
      {-3, -1, -1, 5, 0, -3, -1, -1, 5},
      {2, 9, 2, -7, 1, 2, 3, 2, 0},    // vertical: only y moves
      {-5, 2, 9, 2, 1, 0, 2, 3, 2},    // horizontal: only x moves
      {-6, -1, 4, 7, 1, -1, 3, 0, 3},  // five moves: exchanged, one still outside
      // End points far apart: the slope and the moves are exact, nothing overflows.
      {INT_MIN, INT_MIN, INT_MAX, INT_MAX, 1, 0, 0, 3, 3},
      {INT_MIN, 1, INT_MAX, 2, 1, 0, 1, 3, 2},
  };
  for (const auto& c : clips) {
    zrArray<int> p1 = I(c[0], c[1]), p2 = I(c[2], c[3]);
    EXPECT_EQ(L({box.GetLineWithin(p1, p2), p1[0], p1[1], p2[0], p2[1]}), L(c + 4, c + 9))
        << c[0] << ' ' << c[1];
  }
  zrArray<int> p2 = I(1, 1), p3 = I(1, 1, 1);
  const std::string two = "Invalid parameters : Dimension must equal 2 in GetLine.";
  EXPECT_EQ(BadParametersText([&] { box.GetLineWithin(p2, p3); }), two);
  EXPECT_EQ(BadParametersText([&] { zrArrayND<int>(I(2, 2, 2)).GetLineWithin(p2, p2); }), two);
}

TEST(ArrayNDAbs, NeighbourTables) {
  const zrArray<int> tab = I(1, 10);
  zrArray<int> out;
  zrArrayNDAbs::MkTabFor4Link(tab, out);
  EXPECT_EQ(V(out), L({1, -1, 10, -10}));
  zrArrayNDAbs::MkTabFor8Link(tab, out);
  EXPECT_EQ(V(out), L({-11, -10, -9, -1, 1, 9, 10, 11}));
  zrArrayNDAbs::MkTabForVertexLink(tab, out);
  EXPECT_EQ(V(out), L({0, 1, 10, 11}));
  zrArrayNDAbs::MkTabForAp(tab, I(3, 1), out);
  EXPECT_EQ(V(out), L({0, 1, 2}));

  EXPECT_EQ(BadParametersText([&] { zrArrayNDAbs::MkTabForAp(tab, I(2), out); }),
            "Invalid parameters : Different dimension");

  // Offsets past the 32-bit range are refused, the output left as it was.
  const std::string offsets = "Invalid parameters : zrArrayNDAbs : Offsets beyond 32 bits.";
  EXPECT_EQ(BadParametersText([&] { zrArrayNDAbs::Rcurs2(I(1 << 30, 1 << 30), out); }), offsets);
  EXPECT_EQ(BadParametersText([&] { zrArrayNDAbs::MkTabFor4Link(I(INT_MIN), out); }), offsets);
  EXPECT_EQ(V(out), L({0, 1, 2}));
  zrArrayNDAbs::MkTabForAp(I(1 << 30, (1 << 30) - 1), I(2, 2), out);  // up to INT_MAX
  EXPECT_EQ(V(out), L({0, 1 << 30, (1 << 30) - 1, INT_MAX}));
  zrArrayNDAbs::Rcurs2(I(INT_MAX), out);
  EXPECT_EQ(V(out), L({-INT_MAX, 0, INT_MAX}));
}

TEST(RoundArrayND, StepsRoundAndBack) {
  const std::string out = "Invalid parameters : zrRoundArrayND : Out of range.";
  const zrArray<int> range = I(2, 2), tab = I(1, 2);  // the cursor keeps references to both
  zrRoundArrayND r(range, tab);
  for (int pos = 1; pos <= 3; ++pos) EXPECT_EQ(L({++r, r.GetPos()}), L({1, pos}));
  // Round to the start, then back from it to the ToEnd state.
  EXPECT_EQ(L({++r, r.GetPos(), r[0], r[1], --r, r.GetPos(), r[0], r[1]}),
            L({0, 0, 0, 0, 0, 6, 2, 2}));

  zrArray<int> at = I(0, 1);
  r.ToBegin();
  r.SetPos(at);
  EXPECT_EQ(L({--r, r[0], r[1], r.GetPos()}), L({1, 2, 0, 2}));  // the borrow leaves 0 at its size

  zrArray<int> one = I(1, 1);
  zrRoundArrayND fresh(range, tab);
  fresh.SetPos(one);
  fresh.SetPos(one);  // adds, does not assign; a refusal leaves the position
  for (zrArray<int> bad : {I(-1, 0), I(0, 2)})
    EXPECT_EQ(BadParametersText([&] { fresh.SetPos(bad); }), out);
  EXPECT_EQ(fresh.GetPos(), 6);

  // Every position, past the end included, must fit Pos: 3 x (2^30 - 1) does not.
  const zrArray<int> far = I((1 << 30) - 1);
  EXPECT_EQ(BadParametersText([&] { zrRoundArrayND over(I(3), far); }), out);
  const zrArray<int> two = I(2);
  zrRoundArrayND edge(two, far);
  edge.ToEnd();
  EXPECT_EQ(edge.GetPos(), 2 * ((1 << 30) - 1));
  zrArray<int> last = I(1);
  EXPECT_EQ(BadParametersText([&] { edge.SetPos(last); }), out);
}
