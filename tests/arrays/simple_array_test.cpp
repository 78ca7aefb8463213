// zrSimpleArray<T>: who sees a write, exact reallocation, editing, sorted searches, and
// the lifetime of class-type elements.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "zr/arrays/simple_array_impl.h"
#include "zr/zr.h"

namespace simple_array_test {

// An element of class type that counts its constructions and destructions.
struct Counted {
  inline static int made = 0;
  inline static int gone = 0;
  static int Live() { return made - gone; }

  Counted() { ++made; }
  Counted(const Counted& other) : value(other.value) { ++made; }
  Counted& operator=(const Counted& other) = default;
  ~Counted() { ++gone; }
  operator int() const { return value; }  // NOLINT(google-explicit-constructor)

  int value = -1;
};

}  // namespace simple_array_test

using simple_array_test::Counted;
template class zrSimpleArray<Counted>;

namespace {

using zr_test::BadParametersText;
using Ints = zrSimpleArray<int>;
using V = std::vector<int>;

const std::string kBad = "Invalid parameters : ";

Ints Of(std::initializer_list<int> values) {
  Ints a;
  for (int v : values) a.push_back(v);
  return a;
}

template <class T>
V Values(const zrSimpleArray<T>& a) {
  return {a.begin(), a.end()};
}

int BlockCount(const zrPArray& a) { return zr::detail::BlockCount(a.GetMem()); }

int Asc(const int& a, const int& b) { return a < b ? -1 : (a > b ? 1 : 0); }

}  // namespace

TEST(SimpleArray, WindowsAndMoveShareCopiesDoNot) {
  Ints window;
  {
    Ints source = Of({0, 1, 2, 3, 4});
    window.SetSubWindow(source, 2, 3);
    source.Mid(1, 2)[1] = 20;
    source.Right(1)[0] = 40;
    EXPECT_EQ(Values(window), (V{20, 3, 40}));
    Ints copy(window);  // deep: a block of its own, of the viewed length
    copy[0] = 99;
    EXPECT_EQ(source[2], 20);
    EXPECT_EQ(BlockCount(copy), 3);
  }
  Ints moved;  // the window outlives its source and hands the block over
  int* const p = window.GetPointer();
  moved.Move(window);
  EXPECT_EQ(moved.GetPointer(), p);
  EXPECT_EQ(window.GetMem(), nullptr);
  EXPECT_EQ(Values(moved), (V{20, 3, 40}));

  Ints detached = moved.Left(2);
  detached.Copy();
  detached[0] = 0;
  EXPECT_EQ(moved[0], 20);
  int raw[2] = {5, 6};
  Ints view;
  view.SetDirectly(raw, 2);
  view.Copy();
  view[0] = 50;
  EXPECT_EQ(raw[0], 5);
  EXPECT_EQ(Values(view), (V{50, 6}));
}

TEST(SimpleArray, AssignmentWritesInPlaceOnlyWhenTheLengthsMatch) {
  Ints source = Of({0, 1, 2, 3, 4});
  Ints window = source.Mid(1, 2);
  window = Of({7, 8});
  EXPECT_EQ(Values(source), (V{0, 7, 8, 3, 4}));

  // Another length: a new block for the target; the old sharers keep the old values.
  window = Of({1, 2, 3});
  EXPECT_EQ(Values(source), (V{0, 7, 8, 3, 4}));
  EXPECT_EQ(BlockCount(window), 3);

  // The source may live in the very block that is replaced.
  Ints inside;
  inside.SetDirectly(source.GetPointer() + 3, 2);
  source = inside;
  EXPECT_EQ(Values(source), (V{3, 4}));
}

TEST(SimpleArray, ReSetReallocatesExactlyAndLeavesSharersTheOldBlock) {
  Ints a = Of({1, 2, 3});
  Ints b = a.Left(3);
  a.ReSet(4);
  EXPECT_EQ(BlockCount(a), 4);
  EXPECT_EQ(Values(b), (V{1, 2, 3}));
  a.ReSet(2);  // a sole owner shrinks and grows keeping its leading elements
  a.ReSet(3);
  EXPECT_EQ(BlockCount(a), 3);
  EXPECT_EQ(Values(a.Left(2)), (V{1, 2}));

  const Ints c = b.Left(3);
  b.ReSet(3);  // the same length: still shared
  EXPECT_EQ(b.GetPointer(), c.GetPointer());

  Ints window;  // the last holder of a larger block, not at its start
  window.SetSubWindow(Of({1, 2, 3, 4}), 1, 2);
  window.ReSet(3);
  EXPECT_EQ(BlockCount(window), 3);
  EXPECT_EQ(Values(window.Left(2)), (V{2, 3}));

  window.ReSet(0);
  EXPECT_EQ(window.GetMem(), nullptr);
  EXPECT_EQ(BadParametersText([&] { window.ReSet(-1); }), kBad + "zrNewWithRef : n <= 0 ");
}

TEST(SimpleArray, OutOfRangeTexts) {
  Ints a = Of({1, 2, 3});
  const auto text = [](const char* what) { return kBad + "zrSimpleArray<T>::" + what; };
  EXPECT_EQ(BadParametersText([&] { a.Left(0); }), text("Left: Out of Range"));
  EXPECT_EQ(BadParametersText([&] { a.Right(4); }), text("Right: Out of Range"));
  EXPECT_EQ(BadParametersText([&] { a.Mid(2, 2); }), text("Mid: Out of Range"));
  Ints window = a.Left(2);
  EXPECT_EQ(BadParametersText([&] { window.SetSubWindow(a, 2, 2); }), text("Set : out of range."));
  EXPECT_EQ(window.Len(), 2);  // a refused window leaves the array as it was
  EXPECT_EQ(BadParametersText([&] { a.Replace(2, 2, a); }), text("Replace: Out of Range"));
  EXPECT_EQ(BadParametersText([&] { a.Remove(3); }), kBad + "Out of range");
  EXPECT_EQ(BadParametersText([] { Ints().CycleLeftShift(1); }), kBad + "Out of range");
}

TEST(SimpleArray, InsertRemoveAndAppendLeaveSharersAlone) {
  Ints a = Of({2, 4});
  const Ints before = a.Left(2);  // keeps the old block alive and apart from the new one
  int* const at = a.insert(a.begin() + 1, 3);
  EXPECT_EQ(at, a.GetPointer() + 1);  // in the new storage
  EXPECT_EQ(Values(before), (V{2, 4}));
  a.Insert(9, 0);
  EXPECT_EQ(*a.erase(a.begin()), 2);

  const Ints sharer = a.Left(3);
  a.Remove(0);  // detaches before it moves anything
  EXPECT_EQ(Values(a), (V{3, 4}));
  EXPECT_EQ(Values(sharer), (V{2, 3, 4}));

  a.push_back(a[0]);
  a.Concat(a);
  a.Concat(a.Left(2));
  EXPECT_EQ(Values(a), (V{3, 4, 3, 3, 4, 3, 3, 4}));
  EXPECT_EQ(BlockCount(a), 8);
}

TEST(SimpleArray, ReplaceAndRotationsWriteInPlaceWhenTheLengthStays) {
  Ints a = Of({1, 2, 3, 4, 5});
  a.Replace(1, 3, Of({9}));
  EXPECT_EQ(BlockCount(a), 3);
  a.Replace(1, 1, Of({7, 8, 9}));
  EXPECT_EQ(Values(a), (V{1, 7, 8, 9, 5}));
  const Ints sharer = a.Left(5);
  a.Replace(0, 2, Of({6, 0}));
  EXPECT_EQ(sharer[1], 0);
  a.CycleLeftShift(-1);  // no effect
  a.CycleRightShift(6);
  a.Mid(1, 3).CycleLeftShift(1);
  a.Mid(1, 4).InverseOrder();
  EXPECT_EQ(Values(sharer), (V{5, 9, 6, 8, 0}));

  Ints b = Of({1, 2, 3, 4});  // the array itself or a window of it as the source
  b.Replace(1, 2, b);
  EXPECT_EQ(Values(b), (V{1, 1, 2, 3, 4, 4}));
  b.Replace(0, 2, b.Mid(2, 3));
  EXPECT_EQ(Values(b), (V{2, 3, 4, 2, 3, 4, 4}));
}

TEST(SimpleArray, FindBInEitherOrder) {
  // 1, 3, ..., 2n - 1 ascending and descending: each is found at its place, no even value.
  for (int n = 0; n <= 8; ++n) {
    Ints up, down;
    for (int i = 0; i < n; ++i) {
      up.push_back(2 * i + 1);
      down.push_back(2 * (n - i) - 1);
    }
    for (int v = 0; v <= 2 * n; ++v) {
      SCOPED_TRACE(testing::Message() << "n=" << n << " v=" << v);
      EXPECT_EQ(up.FindB(v, Asc, 1), v % 2 ? v / 2 : -1);
      EXPECT_EQ(down.FindB(v, Asc, 0), v % 2 ? n - 1 - v / 2 : -1);
    }
  }
  EXPECT_EQ(Of({1, 3, 5}).FindB(1, Asc, 0), -1);  // the wrong mode walks away
}

TEST(SimpleArray, IntersectionAndFusionOfSortedArrays) {
  EXPECT_TRUE(Ints::IsIntersectB(Of({5, 3, 1}), Of({4, 3}), Asc, 0));

  Ints r = Of({7, 7, 7});
  EXPECT_TRUE(r.IntersectB(Of({9, 5, 1}), Of({5, 1}), Asc, 0));
  EXPECT_EQ(Values(r), (V{5, 1}));
  EXPECT_TRUE(r.IntersectB(r, Of({5, 0}), Asc, 0));  // fewer than the shorter: length only
  EXPECT_EQ(r.Len(), 1);
  EXPECT_FALSE(r.IntersectB(Of({1, 3}), Of({2, 4}), Asc, 1));
  EXPECT_TRUE(r.empty());

  EXPECT_TRUE(r.Fusion(Of({1, 3, 5, 7}), Of({3, 4}), Asc, false, 1));
  EXPECT_EQ(Values(r), (V{1, 3, 4, 5, 7}));
  EXPECT_EQ(BlockCount(r), 5);
  EXPECT_TRUE(r.Fusion(Of({1, 3, 5, 7}), Of({3, 4}), Asc, true, 1));
  EXPECT_EQ(Values(r), (V{1, 3, 3, 4, 5, 7}));
  EXPECT_FALSE(r.Fusion(Of({1, 2}), Of({3, 4, 5}), Asc, true, 1));
  EXPECT_FALSE(r.Fusion(r, Of({0}), Asc, false, 1));
  EXPECT_EQ(Values(r), (V{0, 1, 2, 3, 4, 5}));
  EXPECT_FALSE(r.Fusion(Ints(), Ints(), Asc, true, 1));
  EXPECT_EQ(r.GetMem(), nullptr);
}

TEST(SimpleArrayOfClass, ElementsLiveExactlyAsLongAsTheirBlock) {
  Counted::made = Counted::gone = 0;
  {
    zrSimpleArray<Counted> a(3);
    a[1].value = 1;
    a[2].value = 2;
    const zrSimpleArray<Counted> window = a.Right(2);  // holds the whole block
    a.ReSet(4);
    EXPECT_EQ(Counted::Live(), 3 + 4);
    EXPECT_EQ(Values(a), (V{-1, 1, 2, -1}));
    a.ReSet(0);
    EXPECT_EQ(Counted::Live(), 3);

    a = window;
    a.push_back(a[0]);
    a.Insert(a[1], 0);
    a.Concat(a);
    a.Remove(1);
    a.Replace(0, 3, window);
    a.CycleLeftShift(1);
    a.InverseOrder();
    EXPECT_EQ(Values(a), (V{1, 1, 2, 1, 2, 2}));
    EXPECT_EQ(Counted::Live(), a.Len() + 3);
  }
  EXPECT_EQ(Counted::Live(), 0);
}

TEST(SimpleArray, AssignmentFromAnOverlappingWindowReadsTheSourceFirst) {
  // Each window takes the other's values as they were, in place: the array and every
  // sharer of its block see the move.
  Ints a = Of({0, 1, 2, 3, 4, 5, 6, 7});
  Ints sharer = a.Left(8);
  Ints ahead = a.Mid(2, 5);
  ahead = a.Left(5);  // the target starts inside the source
  EXPECT_EQ(Values(sharer), (V{0, 1, 0, 1, 2, 3, 4, 7}));

  Ints b = Of({0, 1, 2, 3, 4, 5, 6, 7});
  Ints behind = b.Left(5);
  behind = b.Mid(2, 5);
  EXPECT_EQ(Values(b), (V{2, 3, 4, 5, 6, 5, 6, 7}));

  // Class elements move the same way.
  zrSimpleArray<Counted> c(4);
  for (int i = 0; i < 4; ++i) c[i].value = i;
  zrSimpleArray<Counted> tail = c.Right(3);
  tail = c.Left(3);
  EXPECT_EQ(Values(c), (V{0, 0, 1, 2}));
}

// A view that holds another array's block lies inside that block.
TEST(SimpleArray, ViewsHoldingABlockStayInsideIt) {
  zrSimpleArray<int> a(4, 1), v;
  v.SetDirectly(a.GetPointer() + 1, 3, a);
  v.SetDirectly(a.GetPointer() + 4, 0, a);  // no elements, at the end
  EXPECT_TRUE(v.GetMem() == a.GetMem() && a.GetNumOfRef() == 1);
  const std::string text = "Invalid parameters : zrSimpleArray<T>::SetDirectly : out of range.";
  for (const auto& c : {std::pair(2, 3), std::pair(-1, 1), std::pair(5, 0), std::pair(0, -1)})
    EXPECT_EQ(
        zr_test::BadParametersText([&] { v.SetDirectly(a.GetPointer() + c.first, c.second, a); }),
        text);
  EXPECT_TRUE(v.GetPointer() == a.GetPointer() + 4 && v.Len() == 0);
}
