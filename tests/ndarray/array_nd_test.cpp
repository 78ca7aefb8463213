// zrArrayND<T>: views that share and write through, storage-order walks, lockstep
// arithmetic, extremes, slices, element access, the error texts and the flat form.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/nd_arrays.h"
#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using zr_test::Counting;
using zr_test::I;
using zr_test::ViewOf;
using zr_test::Walk;
using A = zrArrayND<double>;
using D = std::vector<double>;

const std::string kRange = "CheckPointer : Invalid pointer or range.";

template <class T>
void CheckElementType(const char* name) {
  SCOPED_TRACE(name);
  using V = std::vector<T>;
  const V reversed({3, 2, 1, 6, 5, 4});
  zrArrayND<T> a = Counting<T>(I(3, 2));  // rows (1 2 3) (4 5 6)
  zrArrayND<T> f;
  ViewOf(f, a, "f0");
  EXPECT_EQ(Walk(f), reversed);
  EXPECT_EQ(Walk(zrArrayND<T>(f)), reversed);  // a dense copy in storage order
  EXPECT_TRUE(f.Median() == T(3) && f.Min() == T(1) && f.Max() == T(6));

  zrArrayND<T> r(a);
  r += f;  // (4 4 4) (10 10 10)
  r -= T(4);
  r *= T(2);
  r /= T(3);
  EXPECT_EQ(Walk(r), V({0, 0, 0, 4, 4, 4}));
  r.Fill(T(2));
  r *= f;
  r -= a;
  r /= f;  // (5 2 -1) / (3 2 1), (8 5 2) / (6 5 4) in the type's own arithmetic
  EXPECT_EQ(Walk(r), V({T(T(5) / T(3)), 1, T(-1), T(T(8) / T(6)), 1, T(T(2) / T(4))}));

  // The flat form is the dimension, the sizes, then the elements in storage order; it
  // reads back dense and equal.
  std::vector<unsigned char> buffer(f.MemSize());
  ASSERT_EQ(f.ToMem(buffer.data()), static_cast<int>(12 + 6 * sizeof(T)));
  const std::int32_t head[3] = {2, 3, 2};
  EXPECT_EQ(std::memcmp(buffer.data(), head, sizeof head), 0);
  zrArrayND<T> back;
  EXPECT_EQ(back.FromMem(buffer.data()), static_cast<int>(buffer.size()));
  EXPECT_TRUE(Walk(back) == reversed && back == f);
  back.front() = T(9);
  EXPECT_EQ(back != f, 1);
}

}  // namespace

TEST(ArrayND, EveryElementTypeGoesThroughTheSamePaths) {
#define ZR_TEST_ELEMENT_TYPE(T) CheckElementType<T>(#T);
  ZR_ARRAY_ND_TYPES(ZR_TEST_ELEMENT_TYPE)
#undef ZR_TEST_ELEMENT_TYPE
}

TEST(ArrayND, ViewsShareAndWriteThrough) {
  A big = Counting<double>(I(4, 3));  // rows (1 2 3 4) (5 6 7 8) (9 10 11 12)
  A window;
  window.SetSubWindow(big, I(1, 1), I(2, 2));
  window.Fill(0);
  EXPECT_EQ(Walk(big), D({1, 2, 3, 4, 5, 0, 0, 8, 9, 0, 0, 12}));
  window = Counting<double>(I(2, 2), 20);  // equal sizes: written through the view
  window.Init(I(2, 2));                    // the current sizes: kept, still a view
  EXPECT_EQ(window.GetPointer(), big.GetPointer() + 5);
  window.Copy();  // shared: detaches
  window.Fill(7);
  EXPECT_EQ(big.GetPointer()[5], 20);

  A slice;  // slices: a column, then a row, written through
  std::unique_ptr<A>(big.GetReduceDimArrayND(0, 3))->Fill(-1);
  slice.ReduceDimArrayND(big, 1, 1);
  EXPECT_EQ(Walk(slice), D({5, 20, 21, -1}));
  A moved;
  moved.Move(slice);
  big.clear();
  EXPECT_EQ(moved.GetPointer()[1], 20);  // the view holds the block on

  double outside[6] = {1, 2, 3, 4, 5, 6};
  A external;
  external.SetDirectly(outside, I(3, 2));
  external *= 2.0;
  EXPECT_EQ(outside[5], 12);
}

TEST(ArrayND, StridedViewsWalkAndRunInStorageOrder) {
  for (const char* steps : {"f0 s01 r02", "f1 s12 r10", "f2 s20 r21"}) {  // about each axis
    SCOPED_TRACE(steps);
    A shared = Counting<double>(I(3, 4, 5));
    A v;
    ViewOf(v, shared, steps);
    const D order = zr_test::ByIndex(v);
    EXPECT_EQ(Walk(v), order);
    EXPECT_EQ(Walk(A(v)), order);
    v.Fill(0);
    EXPECT_EQ(shared.Max(), 0);
  }

  // Extremes keep the first in storage order.
  A zeros = Counting<double>(I(2), 0);
  zeros.back() = -0.0;
  EXPECT_FALSE(std::signbit(zeros.Min()));
  zeros.Flip(0);
  EXPECT_TRUE(std::signbit(zeros.Min()));
}

// A source that shares elements with the target is read as it stood; the array as its
// own operand needs no copy; a view that reaches an element several times writes it as
// often.
TEST(ArrayND, SharedElementsAreReadBeforeTheyAreWritten) {
  A grid = Counting<double>(I(4, 3));  // rows (1 2 3 4) (5 6 7 8) (9 10 11 12)
  A low, high;
  low.SetSubWindow(grid, I(0, 0), I(3, 2));
  high.SetSubWindow(grid, I(1, 1), I(3, 2));
  high = low;
  EXPECT_EQ(Walk(grid), D({1, 2, 3, 4, 5, 1, 2, 3, 9, 5, 6, 7}));
  grid = Counting<double>(I(4, 3));
  low = high;  // still views: written into grid
  EXPECT_EQ(Walk(grid), D({6, 7, 8, 4, 10, 11, 12, 8, 9, 10, 11, 12}));

  A a = Counting<double>(I(4));
  A f;
  ViewOf(f, a, "f0");
  a += f;  // a[2] does not see the new a[1], nor a[3] the new a[0]
  EXPECT_EQ(Walk(a), D({5, 5, 5, 5}));

  // Stride-zero views visit every multi-index.
  A src = Counting<double>(I(4));
  A same;
  same.Set(src, 1, I(4, 12), I(0, 0));  // 48 indices, one element
  same += 1.0;                          // once per index
  EXPECT_EQ(Walk(src), D({1, 50, 3, 4}));

  A rows;  // the same row three times
  rows.Set(src, 0, I(2, 3), I(2, 0));
  rows = Counting<double>(I(2, 3), 5);  // each element written three times, the last stays
  EXPECT_EQ(Walk(src), D({9, 50, 10, 4}));
}

// Every refusal with its exact text; a refused view leaves the array as it was.
TEST(ArrayND, ErrorTexts) {
  A line = Counting<double>(I(3));
  A a(I(3, 2)), b(I(4, 3, 2)), v;
  A step;
  step.Set(line, 0, I(1), I(INT_MIN));
  const std::string at = "zrArrayND::at: ", dim = "out of range of dimension";
  const std::pair<std::string, std::function<void()>> cases[] = {
      {"Different dimension", [&] { b += a; }},
      {"Different range", [&] { b /= A(I(4, 3, 3)); }},
      {"ArrayND range is empty.", [&] { A(I(0, 3)).Min(); }},
      {"zrArrayNDAbs:MkTabFromRange:Array length is zero.", [] { A empty{zrArray<int>()}; }},
      {"Different dimension", [&] { v.SetDirectly(line.GetPointer(), I(3), I(1, 1)); }},
      {"zrNewWithRef : n <= 0 ", [&] { A bad(I(2, -1)); }},
      {dim, [&] { line.GetReduceDimArrayND(-1, 9); }},  // axis, then dimension, then index
      {"Must be dimension > 1", [&] { line.GetReduceDimArrayND(0, 9); }},
      {"Out of range", [&] { a.GetReduceDimArrayND(1, 2); }},
      {dim, [&] { a.GetReduceDimArrayND(2, 0); }},
      {dim, [&] { a.Flip(2); }},
      {dim, [&] { a.SwapAxis(0, -1); }},
      {"zrArrayNDAbs : Negative size.", [&] { v.Set(line, 0, I(-1), I(1)); }},
      {kRange, [&] { v.Set(line, 0, I(2), I(1 << 29)); }},  // 2^32 + 8 bytes
      {kRange, [&] { v.Set(line, 0, I(1, 2), I(INT_MAX, 1)); }},
      {kRange, [&] { v.SetSubWindow(b, I(0, 0, 1 << 28), I(1, 1, 1)); }},
      {kRange, [&] { step.Flip(0); }},
      {kRange, [&] { v.SetDirectly(line.GetPointer(), I(3), I(1 << 30)); }},
      {"zrArrayNDAbs : Sizes beyond 32 bits.",
       [&] { v.SetDirectly(line.GetPointer(), I(65536, 65536, 0)); }},
      {at + "index -1 on axis 1 is outside [0, 3).", [&] { b.at(0, -1, 0); }},
      {at + "index 2 on axis 2 is outside [0, 2).", [&] { b.at(I(0, 0, 2)); }},
      {at + "2 indices for 3 dimensions.", [&] { b.at(0, 0); }},
      {at + "the array has no dimensions.", [] { A().at(zrArray<int>()); }},
  };
  for (const auto& [text, call] : cases)
    EXPECT_EQ(BadParametersText(call), "Invalid parameters : " + text);
  EXPECT_TRUE(v.empty() && step.Tab()[0] == INT_MIN);
  EXPECT_EQ(A(I(0, 3)) == A(I(0, 3)), 1);  // no elements, equal sizes
}

TEST(ArrayND, ViewsNeverReachOutsideTheirBlock) {
  A base = Counting<double>(I(12));
  // Windows that touch an end of the 12 elements are taken, the same one step further
  // refused, the array left as it was.
  const auto fits = [&base](int offset, const zrArray<int>& sizes, const zrArray<int>& strides) {
    A view;
    view.Set(base, 5, I(1), I(1));
    try {
      view.Set(base, offset, sizes, strides);
    } catch (const BadParameters&) {
      return view.GetPointer() == base.GetPointer() + 5 ? 0 : -1;
    }
    view.Fill(-1);  // every element lies within the block (ASan sees a stray write)
    return 1;
  };
  EXPECT_EQ(std::vector<int>({fits(0, I(12), I(1)), fits(1, I(12), I(1)), fits(11, I(12), I(-1)),
                              fits(10, I(12), I(-1)), fits(3, I(4, 3), I(-1, 4)),
                              fits(2, I(4, 3), I(-1, 4)), fits(4, I(4, 3), I(-1, 4))}),
            std::vector<int>({1, 0, 1, 0, 1, 0, 0}));

  base = Counting<double>(I(12));

  // A geometry set through the base class may reach the whole block, not beyond it.
  zrArrayNDAbs& geometry = base;
  EXPECT_THROW(geometry.Set(I(13), I(1)), BadParameters);
  geometry.Set(I(6), I(2));
  EXPECT_EQ(Walk(base), D({1, 3, 5, 7, 9, 11}));

  // Empty windows reach nothing: any origin from the first element to one past the last.
  A empty;
  empty.Set(base, 12, I(0, 3), I(1, 4));
  EXPECT_THROW(empty.Set(base, 13, I(0, 3), I(1, 4)), BadParameters);
  empty.Set(base, 0, I(0, 3), I(-1, 4));
  empty.Flip(0);
  EXPECT_EQ(empty.GetPointer(), base.GetPointer());
}

// a(i, j, k) addresses the element the array's strides address, on every kind of view;
// at() is the same element after its checks, and a write through either reaches the base.
TEST(ArrayND, ElementAccessByIndicesFollowsTheView) {
  A a = Counting<double>(I(4, 3, 2));  // a(i, j, k) = 1 + i + 4j + 12k
  A flipped, swapped;
  ViewOf(flipped, a, "f0");
  ViewOf(swapped, a, "s02");  // sizes 2, 3, 4
  for (int k = 0; k < 2; ++k)
    for (int j = 0; j < 3; ++j)
      for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(a(i, j, k) == 1 + i + 4 * j + 12 * k &&
                    &flipped.at(i, j, k) == &a(3 - i, j, k) && &swapped.at(k, j, i) == &a(i, j, k))
            << i << j << k;
  A b = Counting<double>(I(3, 2));  // rows (1 2 3) (4 5 6)
  A turned;
  ViewOf(turned, b, "f1 s01");  // sizes 2, 3: turned(i, j) = b(j, 1 - i)
  turned(0, 2) = -5;
  turned.at(1, 0) = -6;
  EXPECT_EQ(Walk(b), D({-6, 2, 3, 4, 5, -5}));
  A row;
  row.ReduceDimArrayND(b, 1, 1);
  EXPECT_EQ(&row.at(1), &b(1, 1));
  A four = Counting<double>(I(2, 3, 1, 2));
  EXPECT_TRUE(four(1, 2, 0, 1) == 1 + 1 + 2 * 2 + 6 &&
              &four.at(1, 2, 0, 1) == &four(I(1, 2, 0, 1)));

  // MakeCoord inverts dense offsets only.
  zrArray<int> c;
  a.MakeCoord(c, &a(3, 2, 1));
  EXPECT_EQ(std::vector<int>(c.begin(), c.end()), std::vector<int>({3, 2, 1}));
  flipped.MakeCoord(c, flipped.GetPointer() + 1);  // strides (-1, 4, 12): element (3, 1, 0)
  EXPECT_EQ(std::vector<int>(c.begin(), c.end()), std::vector<int>({-1, 0, 0}));
}
