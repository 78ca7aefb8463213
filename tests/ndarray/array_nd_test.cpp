// zrArrayND<T>: views that share and write through, strided walks, lockstep arithmetic,
// extremes, slices and the flat form.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using A = zrArrayND<double>;
using D = std::vector<double>;

zrArray<int> I(std::initializer_list<int> values) {
  zrArray<int> a;
  for (int v : values) a.push_back(v);
  return a;
}

zrArray<int> I(const std::vector<int>& values) {
  zrArray<int> a;
  for (int v : values) a.push_back(v);
  return a;
}

template <class T>
std::vector<T> Walk(const zrArrayND<T>& a) {
  return std::vector<T>(a.begin(), a.end());
}

// The elements in storage order by the offset rule itself, with multiplications.
template <class T>
std::vector<T> ByOffsets(const zrArrayND<T>& a) {
  std::vector<T> out;
  std::vector<int> idx(a.GetDim(), 0);
  for (int e = 0; e < a.GetSize(); ++e) {
    int off = 0;
    for (int k = 0; k < a.GetDim(); ++k) off += idx[k] * a.Tab()[k];
    out.push_back(a.GetPointer()[off]);
    for (int k = 0; k < a.GetDim() && ++idx[k] == a.Range()[k]; ++k) idx[k] = 0;
  }
  return out;
}

// Counts up from first; with a period, stays small enough that products are exact in int.
template <class T>
zrArrayND<T> Counting(const zrArray<int>& range, int first = 1, int period = 1 << 30) {
  zrArrayND<T> a(range);
  int k = 0;
  for (T& x : a) x = static_cast<T>(first + k++ % period);
  return a;
}

template <class T>
void CheckElementType(const char* name) {
  SCOPED_TRACE(name);
  using V = std::vector<T>;
  const V reversed({3, 2, 1, 6, 5, 4});
  zrArrayND<T> a = Counting<T>(I({3, 2}));  // rows (1 2 3) (4 5 6)
  zrArrayND<T> f;
  f.Set(a);
  f.Flip(0);
  EXPECT_EQ(Walk(f), reversed);
  const zrArrayND<T> dense(f);
  EXPECT_EQ(dense.Tab()[0], 1);
  EXPECT_EQ(ByOffsets(dense), reversed);
  EXPECT_EQ(f.Median(), T(3));

  zrArrayND<T> sum(a);
  sum += f;  // (4 4 4) (10 10 10)
  sum -= T(4);
  sum *= T(2);
  sum /= T(3);
  EXPECT_EQ(Walk(sum), V({0, 0, 0, 4, 4, 4}));

  // The flat form is the dimension, the sizes, then the elements; a flipped array reads
  // back dense and equal.
  std::vector<unsigned char> buffer(f.MemSize());
  ASSERT_EQ(f.ToMem(buffer.data()), static_cast<int>(12 + 6 * sizeof(T)));
  const std::int32_t head[3] = {2, 3, 2};
  EXPECT_EQ(std::memcmp(buffer.data(), head, sizeof head), 0);
  zrArrayND<T> back;
  EXPECT_EQ(back.FromMem(buffer.data()), static_cast<int>(buffer.size()));
  EXPECT_TRUE(back.IsCon());
  EXPECT_EQ(ByOffsets(back), reversed);
}

// Operands whose fastest axes differ are walked in tiles. Against a plain loop: every
// element meets its partner, edges of sizes that are no multiple of a tile included, a
// target window writes nothing outside itself, and a comparison stops at a difference in
// the last tile.
template <class T>
void CheckTiledWalks(const char* name) {
  SCOPED_TRACE(name);
  using V = zrArrayND<T>;
  for (int kind = 0; kind < 3; ++kind) {
    SCOPED_TRACE(::testing::Message() << "view " << kind);
    V source = Counting<T>(kind == 2 ? I({37, 3, 41}) : I({40, 50}), 3, 89);
    V whole(source);
    if (kind == 1) source.SetSubWindow(whole, I({2, 3}), I({35, 41}));
    source.Flip(kind == 2 ? 1 : 0);
    source.SwapAxis(0, source.GetDim() - 1);
    const std::vector<T> b = ByOffsets(source);
    EXPECT_EQ(ByOffsets(V(source)), b);

    const auto check = [&](auto op, auto plain) {
      zrArray<int> outer(source.Range());
      zrArray<int> ones(outer.Len());
      for (int k = 0; k < outer.Len(); ++k) outer[k] += 2, ones[k] = 1;
      V frame = Counting<T>(outer, 5, 89);
      V dense = Counting<T>(source.Range(), 1, 89);
      V window;
      window.SetSubWindow(frame, ones, source.Range());
      window.Flip(0);
      const V untouched(frame);
      for (V* target : {&dense, &window}) {
        std::vector<T> expected = ByOffsets(*target);
        for (std::size_t e = 0; e < expected.size(); ++e) expected[e] = plain(expected[e], b[e]);
        op(*target, source);
        EXPECT_EQ(ByOffsets(*target), expected);
      }
      V border(untouched);  // the frame outside the window must be untouched
      window.Fill(T{});
      window.SetSubWindow(border, ones, source.Range());
      window.Fill(T{});
      EXPECT_EQ(frame == border, 1);
    };
    check([](V& x, const V& y) { x += y; }, [](T x, T y) { return static_cast<T>(x + y); });
    check([](V& x, const V& y) { x /= y; }, [](T x, T y) { return static_cast<T>(x / y); });
    check([](V& x, const V& y) { x = y; }, [](T, T y) { return y; });

    V copy(source);
    EXPECT_EQ(copy == source, 1);
    copy.GetPointer()[copy.GetSize() - 1] += T(1);
    EXPECT_EQ(copy == source, 0);
  }
}

}  // namespace

TEST(ArrayND, EveryElementTypeGoesThroughTheSamePaths) {
#define ZR_TEST_ELEMENT_TYPE(T) CheckElementType<T>(#T);
  ZR_ARRAY_ND_TYPES(ZR_TEST_ELEMENT_TYPE)
#undef ZR_TEST_ELEMENT_TYPE
}

TEST(ArrayND, TiledWalksMatchAPlainLoop) {
  CheckTiledWalks<double>("double");
  CheckTiledWalks<int>("int");
}

TEST(ArrayND, ViewsShareAndWriteThrough) {
  A big = Counting<double>(I({4, 3}));  // rows (1 2 3 4) (5 6 7 8) (9 10 11 12)
  A window;
  window.SetSubWindow(big, I({1, 1}), I({2, 2}));
  window.Fill(0);
  EXPECT_EQ(Walk(big), D({1, 2, 3, 4, 5, 0, 0, 8, 9, 0, 0, 12}));

  window = Counting<double>(I({2, 2}), 20);  // equal sizes: written through the view
  EXPECT_EQ(big.GetPointer()[10], 23);
  window.Init(I({2, 2}));  // the current sizes: kept, still a view
  EXPECT_EQ(window.GetPointer(), big.GetPointer() + 5);
  window.Copy();  // shared: detaches
  EXPECT_EQ(big.GetNumOfRef(), 0);
  window.Fill(7);
  EXPECT_EQ(big.GetPointer()[5], 20);

  // A view reaching outside the block is refused and the array stays as it was.
  A slice;
  slice.Set(big, 4, I({4}), I({1}));
  EXPECT_EQ(BadParametersText([&] { slice.Set(big, 9, I({4}), I({1})); }),
            "Invalid parameters : CheckPointer : Invalid pointer or range.");
  EXPECT_EQ(Walk(slice), D({5, 20, 21, 8}));
  A moved;
  moved.Move(slice);
  EXPECT_EQ(moved.GetPointer(), big.GetPointer() + 4);
  big.clear();
  EXPECT_EQ(moved.GetPointer()[1], 20);  // the view holds the block on

  double outside[6] = {1, 2, 3, 4, 5, 6};
  A external;
  external.SetDirectly(outside, I({3, 2}));
  external *= 2.0;
  EXPECT_EQ(outside[5], 12);
}

TEST(ArrayND, StridedViewsWalkAndRunInStorageOrder) {
  const A base = Counting<double>(I({3, 4, 5}));
  for (int axis = 0; axis < 3; ++axis) {  // flipped, swapped and turned about each axis
    SCOPED_TRACE(::testing::Message() << "axis " << axis);
    A shared(base);
    A v;
    v.Set(shared);
    v.Flip(axis);
    v.SwapAxis(axis, (axis + 1) % 3);
    v.Rotate90(axis, (axis + 2) % 3);
    EXPECT_EQ(Walk(v), ByOffsets(v));
    EXPECT_EQ(Walk(A(v)), ByOffsets(v));
    EXPECT_EQ(v.Min() + v.Max(), 61);
    v.Fill(0);
    EXPECT_EQ(shared.Max(), 0);
  }

  // An overlapping operand of the compound operators is read as it stood: a[2] does not
  // see the new a[1], nor a[3] the new a[0]; the array as its own operand needs no copy.
  A a = Counting<double>(I({4}));
  A f;
  f.Set(a);
  f.Flip(0);
  a += f;
  EXPECT_EQ(Walk(a), D({5, 5, 5, 5}));
  a -= a;
  EXPECT_EQ(Walk(a), D({0, 0, 0, 0}));

  // Extremes keep the first in storage order.
  A zeros(I({2}));
  zeros.GetPointer()[0] = 0.0;
  zeros.GetPointer()[1] = -0.0;
  EXPECT_FALSE(std::signbit(zeros.Min()));
  zeros.Flip(0);
  EXPECT_TRUE(std::signbit(zeros.Min()));
  EXPECT_EQ(A(zeros).Median(), -0.0);
}

TEST(ArrayND, ErrorTexts) {
  A empty(I({0, 3}));
  A line(I({3}));
  A a(I({3, 2}));
  A b(I({3, 4, 5}));
  A bigger(I({3, 4, 4}));
  const zrArray<int> negative = I({2, -1});
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"Different dimension", [&] { b += a; }},
      {"Different range", [&] { b /= bigger; }},
      {"ArrayND range is empty.", [&] { empty.Min(); }},
      {"zrNewWithRef : n <= 0 ", [&] { A bad(negative); }},
      // Slices check the axis, then the dimension, then the index.
      {"out of range of dimension", [&] { line.GetReduceDimArrayND(-1, 9); }},
      {"Must be dimension > 1", [&] { line.GetReduceDimArrayND(0, 9); }},
      {"Out of range", [&] { a.GetReduceDimArrayND(1, 2); }},
      {"out of range of dimension", [&] { a.GetReduceDimArrayND(2, 0); }},
  };
  EXPECT_EQ(Walk(empty).size(), 0u);
  for (const auto& [text, call] : cases)
    EXPECT_EQ(BadParametersText(call), std::string("Invalid parameters : ") + text);
}

TEST(ArrayND, SlicesWriteThroughAndCoordinates) {
  A a = Counting<double>(I({3, 2}));
  A* column = a.GetReduceDimArrayND(0, 2);
  EXPECT_EQ(Walk(*column), D({3, 6}));
  column->Fill(0);
  delete column;
  A row;
  row.ReduceDimArrayND(a, 1, 1);
  EXPECT_EQ(Walk(row), D({4, 5, 0}));

  // MakeCoord inverts dense offsets only.
  const auto coord = [](const A& x, int offset) {
    zrArray<int> c;
    x.MakeCoord(c, x.GetPointer() + offset);
    return std::vector<int>(c.begin(), c.end());
  };
  EXPECT_EQ(coord(A(I({3, 4, 5})), 2 + 3 * 3 + 12 * 4), std::vector<int>({2, 3, 4}));
  A f(I({3, 4}));
  f.Flip(0);  // strides (-1, 3): element (2, 1) lies at offset 1
  EXPECT_EQ(coord(f, 1), std::vector<int>({-1, 0}));
}

TEST(ArrayND, ViewsNeverReachOutsideTheirBlock) {
  const std::string range = "Invalid parameters : CheckPointer : Invalid pointer or range.";
  A base = Counting<double>(I({12}));
  struct Window {
    int offset;
    std::vector<int> sizes;
    std::vector<int> strides;
    bool inside;
  };
  // Windows that touch an end of the 12 elements, and the same one step further.
  const Window windows[] = {
      {0, {12}, {1}, true},
      {1, {12}, {1}, false},
      {11, {12}, {-1}, true},
      {10, {12}, {-1}, false},
      {0, {4}, {-1}, false},
      {0, {1}, {-1}, true},
      {11, {1}, {1}, true},
      {12, {1}, {1}, false},
      {-1, {1}, {1}, false},
      {2, {4}, {3}, true},
      {3, {4}, {3}, false},
      {9, {4}, {-3}, true},
      {8, {4}, {-3}, false},
      {11, {4, 3}, {-1, -4}, true},
      {10, {4, 3}, {-1, -4}, false},
      {3, {4, 3}, {-1, 4}, true},
      {2, {4, 3}, {-1, 4}, false},
      {4, {4, 3}, {-1, 4}, false},
      {8, {2, 2, 3}, {-4, 1, 1}, true},
      {8, {2, 2, 3}, {-4, 1, 2}, false},
      {2, {3, 2, 2}, {-1, 5, 0}, true},
      {1, {3, 2, 2}, {-1, 5, 0}, false},
  };
  for (const Window& w : windows) {
    SCOPED_TRACE(::testing::Message() << "offset " << w.offset << " strides " << w.strides[0]);
    const zrArray<int> sizes = I(w.sizes);
    const zrArray<int> strides = I(w.strides);
    A view;
    view.Set(base, 5, I({1}), I({1}));
    if (w.inside) {
      view.Set(base, w.offset, sizes, strides);
      view.Fill(-1);  // every element of the window lies in the block
      EXPECT_EQ(base.Min(), -1);
      base = Counting<double>(I({12}));
    } else {
      EXPECT_EQ(BadParametersText([&] { view.Set(base, w.offset, sizes, strides); }), range);
      EXPECT_EQ(view.GetPointer(), base.GetPointer() + 5);  // unchanged
      EXPECT_EQ(view.GetSize(), 1);
    }
  }

  // A window of a window may reach back into the first one's block, not beyond it.
  A grid = Counting<double>(I({4, 3}));
  A middle;
  middle.SetSubWindow(grid, I({1, 1}), I({2, 1}));
  A back;
  back.SetSubWindow(middle, I({-1, -1}), I({4, 3}));
  EXPECT_EQ(Walk(back), Walk(grid));
  EXPECT_EQ(BadParametersText([&] { back.SetSubWindow(middle, I({-2, -1}), I({1, 1})); }), range);
  back.Set(middle);
  back.Flip(0);
  EXPECT_EQ(Walk(back), D({7, 6}));

  // Changing the geometry through the base is checked against the block too.
  zrArrayNDAbs& geometry = base;
  EXPECT_EQ(BadParametersText([&] { geometry.Set(I({12}), I({-1})); }), range);
  EXPECT_EQ(BadParametersText([&] { geometry.Set(I({13}), I({1})); }), range);
  EXPECT_EQ(Walk(base), Walk(Counting<double>(I({12}))));
  geometry.Set(I({6}), I({2}));
  EXPECT_EQ(Walk(base), D({1, 3, 5, 7, 9, 11}));

  // Empty windows reach nothing: any origin from the first element to one past the last.
  A empty;
  empty.Set(grid, 12, I({0, 3}), I({1, 4}));
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(BadParametersText([&] { empty.Set(grid, 13, I({0, 3}), I({1, 4})); }), range);
  empty.Set(grid, 0, I({0, 3}), I({-1, 4}));
  empty.Flip(0);
  EXPECT_EQ(empty.GetPointer(), grid.GetPointer());
}

TEST(ArrayND, ViewGeometryIsCheckedIn64Bits) {
  const std::string range = "Invalid parameters : CheckPointer : Invalid pointer or range.";
  A src = Counting<double>(I({4}));
  A view;
  // Negative sizes are refused by every form, as Set(range) refuses them.
  EXPECT_EQ(BadParametersText([&] { view.Set(src, 0, I({-1}), I({1})); }),
            "Invalid parameters : zrArrayNDAbs : Negative size.");
  EXPECT_EQ(BadParametersText([&] { view.SetSubWindow(src, I({0}), I({-1})); }),
            "Invalid parameters : zrArrayNDAbs : Negative size.");
  EXPECT_TRUE(view.empty());

  const std::pair<zrArray<int>, zrArray<int>> far[] = {
      {I({2}), I({1 << 29})},              // 2^32 + 8 bytes: once wrapped to 8
      {I({3}), I({1 << 30})},              // an extent past INT_MAX elements
      {I({2, 2}), I({1 << 30, 1 << 30})},  // carries that overflowed before the check
      {I({1, 2}), I({INT_MAX, 1})},        // EndPos past INT_MAX
  };
  for (const auto& [sizes, strides] : far)
    EXPECT_EQ(BadParametersText([&] { view.Set(src, 0, sizes, strides); }), range);

  // Offsets that leave the 32-bit range: a sub-window start, a flip of a long stride.
  A every2;
  every2.Set(src, 0, I({2}), I({2}));
  EXPECT_EQ(BadParametersText([&] { view.SetSubWindow(every2, I({1 << 30}), I({1})); }), range);
  A step;
  step.Set(src, 0, I({1}), I({INT_MIN}));
  EXPECT_EQ(BadParametersText([&] { step.Flip(0); }), range);
  EXPECT_EQ(step.Tab()[0], INT_MIN);

  // An outside array is not checked against memory, but its offsets still are.
  EXPECT_EQ(BadParametersText([&] { view.SetDirectly(src.GetPointer(), I({3}), I({1 << 30})); }),
            range);
  EXPECT_EQ(BadParametersText([&] {
              view.SetDirectly(src.GetPointer(), I({65536, 65536, 0}));
            }),
            "Invalid parameters : zrArrayNDAbs : Sizes beyond 32 bits.");
}

TEST(ArrayND, StrideZeroViewsVisitEveryMultiIndex) {
  A src = Counting<double>(I({4}));
  A same;
  same.Set(src, 1, I({4, 12}), I({0, 0}));  // 48 indices, one element
  EXPECT_EQ(same.GetSize(), 48);
  EXPECT_EQ(Walk(same), D(48, 2.0));
  same += 1.0;  // once per index
  EXPECT_EQ(Walk(src), D({1, 50, 3, 4}));
  EXPECT_EQ(same.Median(), 50);
  A ones(I({4, 12}));
  ones.Fill(1);
  ones += same;
  EXPECT_EQ(Walk(ones), D(48, 51.0));
  EXPECT_EQ(A(same) == same, 1);
  std::vector<unsigned char> flat(same.MemSize());
  EXPECT_EQ(same.ToMem(flat.data()), static_cast<int>(flat.size()));
  A back;
  back.FromMem(flat.data());
  EXPECT_EQ(Walk(back), D(48, 50.0));

  A rows;  // the same row three times
  rows.Set(src, 0, I({1, 3}), I({0, 0}));
  EXPECT_EQ(Walk(rows), D({1, 1, 1}));
  rows.Set(src, 0, I({2, 3}), I({2, 0}));
  EXPECT_EQ(Walk(rows), D({1, 3, 1, 3, 1, 3}));
  rows.Fill(0);
  EXPECT_EQ(Walk(src), D({0, 50, 0, 4}));
}

TEST(ArrayND, AssignmentFromAnOverlappingViewCopiesTheSourceFirst) {
  // Rows (1 2 3 4) (5 6 7 8) (9 10 11 12); windows of 3 x 2 one step apart diagonally.
  A grid = Counting<double>(I({4, 3}));
  A low;
  A high;
  low.SetSubWindow(grid, I({0, 0}), I({3, 2}));
  high.SetSubWindow(grid, I({1, 1}), I({3, 2}));
  high = low;
  EXPECT_EQ(Walk(grid), D({1, 2, 3, 4, 5, 1, 2, 3, 9, 5, 6, 7}));
  grid = Counting<double>(I({4, 3}));
  low = high;
  EXPECT_EQ(Walk(grid), D({6, 7, 8, 4, 10, 11, 12, 8, 9, 10, 11, 12}));
  EXPECT_EQ(low.GetPointer(), grid.GetPointer());  // still views

  // A view assigned from its own flip and from its own transpose.
  A line = Counting<double>(I({5}));
  A flipped;
  flipped.Set(line);
  flipped.Flip(0);
  line = flipped;
  EXPECT_EQ(Walk(line), D({5, 4, 3, 2, 1}));
  A square = Counting<double>(I({3, 3}));
  A turned;
  turned.Set(square);
  turned.SwapAxis(0, 1);
  square = turned;
  EXPECT_EQ(Walk(square), D({1, 4, 7, 2, 5, 8, 3, 6, 9}));
  EXPECT_EQ(turned.GetNumOfRef(), 1);  // the block is still shared
}

// a(i, j, k) addresses the element the array's strides address, on every kind of view;
// at() is the same element after its checks.
TEST(ArrayND, ElementAccessByIndicesFollowsTheView) {
  A a = Counting<double>(I({4, 3, 2}));  // a(i, j, k) = 1 + i + 4j + 12k
  A flipped, swapped, window;
  flipped.Set(a);
  flipped.Flip(0);
  swapped.Set(a);
  swapped.SwapAxis(0, 2);  // sizes 2, 3, 4
  window.SetSubWindow(a, I({1, 1, 0}), I({2, 2, 2}));
  for (int k = 0; k < 2; ++k) {
    for (int j = 0; j < 3; ++j) {
      for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(a(i, j, k), 1 + i + 4 * j + 12 * k) << i << j << k;
        EXPECT_EQ(&a.at(i, j, k), &a(i, j, k));
        EXPECT_EQ(&a(I({i, j, k})), &a(i, j, k));
        EXPECT_EQ(&a.at(I({i, j, k})), &a(i, j, k));
        EXPECT_EQ(&flipped.at(i, j, k), &a(3 - i, j, k));
        EXPECT_EQ(&swapped.at(k, j, i), &a(i, j, k));
        if (i < 2 && j < 2) {
          EXPECT_EQ(&window.at(i, j, k), &a(1 + i, 1 + j, k));
        }
      }
    }
  }
  // The indices in storage order give the walk of the view.
  std::vector<double> walked;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 3; ++j)
      for (int k = 0; k < 2; ++k) walked.push_back(swapped(k, j, i));
  EXPECT_EQ(Walk(swapped), walked);

  // A write through a view reaches the base; one and four dimensions.
  A b = Counting<double>(I({3, 2}));  // rows (1 2 3) (4 5 6)
  A turned;
  turned.Set(b);
  turned.Flip(1);
  turned.SwapAxis(0, 1);  // sizes 2, 3: turned(i, j) = b(j, 1 - i)
  turned(0, 2) = -5;
  turned.at(1, 0) = -6;
  EXPECT_EQ(Walk(b), D({-6, 2, 3, 4, 5, -5}));
  A line;
  line.SetSubWindow(b, I({1, 0}), I({2, 2}));
  A row;
  row.ReduceDimArrayND(line, 1, 1);  // b's second row from index 1
  row(1) = 60;
  EXPECT_EQ(row.at(0), 5);
  EXPECT_EQ(b(2, 1), 60);
  A four = Counting<double>(I({2, 3, 1, 2}));
  EXPECT_EQ(four(1, 2, 0, 1), 1 + 1 + 2 * 2 + 6);
  EXPECT_EQ(&four.at(1, 2, 0, 1), &four(I({1, 2, 0, 1})));

  const std::string at = "Invalid parameters : zrArrayND::at: ";
  EXPECT_EQ(at + "index 4 on axis 0 is outside [0, 4).", BadParametersText([&] { a.at(4, 0, 0); }));
  EXPECT_EQ(at + "index -1 on axis 1 is outside [0, 3).",
            BadParametersText([&] { a.at(0, -1, 0); }));
  EXPECT_EQ(at + "index 2 on axis 2 is outside [0, 2).", BadParametersText([&] {
              a.at(I({0, 0, 2}));
            }));
  EXPECT_EQ(at + "index 9 on axis 0 is outside [0, 4).", BadParametersText([&] { a.at(9, 9, 9); }));
  // The view's own sizes: the swapped view is 2 long along axis 0.
  EXPECT_EQ(at + "index 2 on axis 0 is outside [0, 2).",
            BadParametersText([&] { swapped.at(2, 0, 0); }));
  EXPECT_EQ(at + "2 indices for 3 dimensions.", BadParametersText([&] { a.at(0, 0); }));
  EXPECT_EQ(at + "4 indices for 2 dimensions.", BadParametersText([&] { b.at(0, 0, 0, 0); }));
  EXPECT_EQ(at + "1 indices for 2 dimensions.", BadParametersText([&] { b.at(I({0})); }));
  EXPECT_EQ(at + "the array has no dimensions.", BadParametersText([] { A().at(zrArray<int>()); }));
  const A none(I({3, 0}));
  EXPECT_EQ(at + "index 0 on axis 1 is outside [0, 0).", BadParametersText([&] { none.at(0, 0); }));
}
