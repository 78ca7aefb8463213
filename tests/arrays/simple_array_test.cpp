// zrSimpleArray<T>: who sees a write, exact reallocation, editing, sorted searches, and
// the lifetime of class-type elements.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/array_builders.h"
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

Ints Of(std::initializer_list<int> values) { return zr_test::Of<Ints>(values); }
template <class T>
V Values(const zrSimpleArray<T>& a) {
  return {a.begin(), a.end()};
}
int BlockCount(const zrPArray& a) { return zr::detail::BlockCount(a.GetMem()); }
// The elements and the length of the block behind them.
std::pair<V, int> Held(const Ints& a) { return {Values(a), BlockCount(a)}; }
std::pair<V, int> Held(V values, int block) { return {std::move(values), block}; }
int Asc(const int& a, const int& b) { return a < b ? -1 : (a > b ? 1 : 0); }

// Who sees a write: w starts as a.Mid(from, n) of a = {0, 1, 2, 3, 4}, edit(w, a) is
// applied, and after w[0] = 99, a[at] shows it exactly when the two share the element.
// One case per rule: a window, a kept length and a rotation share; a copy, Copy and
// every length change (growth and removal alike) take a block of their own.
struct Sharing {
  const char* what;
  int from, n;
  void (*edit)(Ints& w, Ints& a);
  int at;
  bool seen;
};
void Keep(Ints&, Ints&) {}
void Copied(Ints& w, Ints&) {
  Ints c(w);
  w.Move(c);
}
Ints Two() { return Of({7, 8}); }
const Sharing kSharing[] = {
    {"Mid", 1, 2, Keep, 1, true},
    {"SetSubWindow", 0, 1, [](Ints& w, Ints& a) { w.SetSubWindow(a, 2, 3); }, 2, true},
    {"SetDirectly", 0, 1, [](Ints& w, Ints& a) { w.SetDirectly(a.GetPointer() + 1, 3, a); }, 1,
     true},
    {"copy", 0, 5, Copied, 0, false},
    {"Copy", 1, 2, [](Ints& w, Ints&) { w.Copy(); }, 1, false},
    {"ReSet, same length", 0, 3, [](Ints& w, Ints&) { w.ReSet(3); }, 0, true},
    {"ReSet", 0, 3, [](Ints& w, Ints&) { w.ReSet(4); }, 0, false},
    {"push_back", 0, 5, [](Ints& w, Ints&) { w.push_back(7); }, 0, false},
    {"Remove", 0, 3, [](Ints& w, Ints&) { w.Remove(2); }, 0, false},
    {"Replace, same length", 0, 3, [](Ints& w, Ints&) { w.Replace(1, 2, Two()); }, 0, true},
    {"Replace", 0, 3, [](Ints& w, Ints&) { w.Replace(1, 1, Two()); }, 0, false},
    {"assignment, same length", 1, 2, [](Ints& w, Ints&) { w = Two(); }, 1, true},
    {"assignment", 1, 2, [](Ints& w, Ints&) { w = Ints(3, 7); }, 1, false},
    {"rotation", 0, 3, [](Ints& w, Ints&) { w.CycleLeftShift(1); }, 0, true},
};

}  // namespace

TEST(SimpleArray, WhoSeesAWrite) {
  for (const Sharing& c : kSharing) {
    Ints a = Of({0, 1, 2, 3, 4}), w = a.Mid(c.from, c.n);
    c.edit(w, a);
    w[0] = 99;
    EXPECT_EQ(a[c.at] == 99, c.seen) << c.what;
  }
  // Memory the array does not own is copied from and left alone.
  int raw[3] = {4, 5, 6};
  Ints view, grown;
  view.SetDirectly(raw, 3);
  grown.SetDirectly(raw, 3);
  view.Copy();
  grown.push_back(7);
  view[0] = grown[0] = 0;
  EXPECT_EQ(raw[0], 4);
}

TEST(SimpleArray, EditsReallocateExactlyAndKeepTheOldValues) {
  Ints a = Of({1, 2, 3});
  const Ints b = a.Left(3);
  a.ReSet(4);
  EXPECT_EQ(BlockCount(a), 4);
  EXPECT_EQ(Values(b), (V{1, 2, 3}));
  a.ReSet(2);  // a sole owner shrinks and grows keeping its leading elements
  a.ReSet(3);
  EXPECT_EQ(Held(a.Left(2)), Held({1, 2}, 3));
  Ints window;  // the last holder of a larger block, not at its start
  window.SetSubWindow(Of({1, 2, 3, 4}), 1, 2);
  window.ReSet(3);
  EXPECT_EQ(Held(window.Left(2)), Held({2, 3}, 3));
  window.ReSet(0);
  EXPECT_EQ(window.GetMem(), nullptr);
  EXPECT_EQ(BadParametersText([&] { window.ReSet(-1); }), kBad + "zrNewWithRef : n <= 0 ");

  // The array itself, an element or a window of it as the source of an edit.
  Ints c = Of({2, 4});  // a sole owner: its block grows where it lies, exactly
  const int* const at = c.insert(c.begin() + 1, 3);
  EXPECT_EQ(at, c.GetPointer() + 1);  // in the new storage
  c.Insert(9, 0);
  EXPECT_EQ(*c.erase(c.begin()), 2);
  c.Remove(0);
  c.push_back(c[0]);
  c.Concat(c);
  c.Concat(c.Left(2));
  EXPECT_EQ(Held(c), Held({3, 4, 3, 3, 4, 3, 3, 4}, 8));
  Ints e = Of({1, 2, 3, 4});
  e.Replace(1, 2, e);
  e.Replace(0, 2, e.Mid(2, 3));
  EXPECT_EQ(Held(e), Held({2, 3, 4, 2, 3, 4, 4}, 7));
  e.Replace(1, 5, Of({9}));
  EXPECT_EQ(Held(e), Held({2, 9, 4}, 3));
  // The source may live in the very block that an assignment replaces.
  Ints inside;
  inside.SetDirectly(e.GetPointer() + 1, 2);
  e = inside;
  EXPECT_EQ(Values(e), (V{9, 4}));

  Ints d = Of({1, 7, 8, 9, 5});
  d.CycleLeftShift(-1);  // no effect
  d.CycleRightShift(6);
  d.Mid(1, 3).CycleLeftShift(1);
  d.Mid(1, 4).InverseOrder();
  EXPECT_EQ(Values(d), (V{5, 9, 1, 8, 7}));
}

TEST(SimpleArray, OutOfRangeTexts) {
  Ints a = Of({1, 2, 3});
  Ints window = a.Left(2), v;
  const auto text = [](const char* what) { return kBad + "zrSimpleArray<T>::" + what; };
  EXPECT_EQ(BadParametersText([&] { a.Left(0); }), text("Left: Out of Range"));
  EXPECT_EQ(BadParametersText([&] { a.Right(4); }), text("Right: Out of Range"));
  EXPECT_EQ(BadParametersText([&] { a.Mid(2, 2); }), text("Mid: Out of Range"));
  EXPECT_EQ(BadParametersText([&] { window.SetSubWindow(a, 2, 2); }), text("Set : out of range."));
  EXPECT_EQ(window.Len(), 2);  // a refused window leaves the array as it was
  EXPECT_EQ(BadParametersText([&] { a.Replace(2, 2, a); }), text("Replace: Out of Range"));
  EXPECT_EQ(BadParametersText([&] { a.Remove(3); }), kBad + "Out of range");
  EXPECT_EQ(BadParametersText([] { Ints().CycleLeftShift(1); }), kBad + "Out of range");
  // A view that holds another array's block lies inside that block: both ends are fine,
  // one past either is refused.
  Ints b(4, 1);
  v.SetDirectly(b.GetPointer() + 4, 0, b);
  for (const auto& [from, n] :
       {std::pair(2, 3), std::pair(-1, 1), std::pair(5, 0), std::pair(0, -1)})
    EXPECT_EQ(BadParametersText([&] { v.SetDirectly(b.GetPointer() + from, n, b); }),
              text("SetDirectly : out of range."));
  EXPECT_TRUE(v.GetPointer() == b.GetPointer() + 4 && v.Len() == 0 && b.GetNumOfRef() == 1);
}

TEST(SimpleArray, SortedSearchesIntersectionAndFusion) {
  // 1, 3, ..., 2n - 1 ascending and descending: each is found at its place, no even value.
  for (int n = 0; n <= 8; ++n) {
    Ints up, down;
    for (int i = 0; i < n; ++i) {
      up.push_back(2 * i + 1);
      down.push_back(2 * (n - i) - 1);
    }
    for (int v = 0; v <= 2 * n; ++v) {
      EXPECT_EQ(up.FindB(v, Asc, 1), v % 2 ? v / 2 : -1) << n << ' ' << v;
      EXPECT_EQ(down.FindB(v, Asc, 0), v % 2 ? n - 1 - v / 2 : -1) << n << ' ' << v;
    }
  }
  EXPECT_EQ(Of({1, 3, 5}).FindB(1, Asc, 0), -1);  // the wrong mode walks away

  // Each answer with the result; the results have blocks of their exact length.
  EXPECT_TRUE(Ints::IsIntersectB(Of({5, 3, 1}), Of({4, 3}), Asc, 0));
  Ints r = Of({7, 7, 7});
  const auto got = [&r](bool answer) { return std::make_pair(answer, Held(r)); };
  const auto want = [](bool answer, V values) {
    const int n = static_cast<int>(values.size());
    return std::make_pair(answer, Held(std::move(values), n));
  };
  EXPECT_EQ(got(r.IntersectB(Of({9, 5, 1}), Of({5, 1}), Asc, 0)), want(true, {5, 1}));
  // Fewer than the shorter: a block of the matched count, its elements not set.
  EXPECT_TRUE(r.IntersectB(r, Of({5, 0}), Asc, 0) && r.Len() == 1 && BlockCount(r) == 1);
  EXPECT_FALSE(r.IntersectB(Of({1, 3}), Of({2, 4}), Asc, 1));
  EXPECT_TRUE(r.empty());
  EXPECT_EQ(got(r.Fusion(Of({1, 3, 5, 7}), Of({3, 4}), Asc, false, 1)),
            want(true, {1, 3, 4, 5, 7}));
  EXPECT_EQ(got(r.Fusion(Of({1, 3, 5, 7}), Of({3, 4}), Asc, true, 1)),
            want(true, {1, 3, 3, 4, 5, 7}));
  EXPECT_FALSE(r.Fusion(Of({1, 2}), Of({3, 4, 5}), Asc, true, 1));
  EXPECT_EQ(got(r.Fusion(r, Of({0}), Asc, false, 1)), want(false, {0, 1, 2, 3, 4, 5}));
  EXPECT_FALSE(r.Fusion(Ints(), Ints(), Asc, true, 1));
  EXPECT_EQ(r.GetMem(), nullptr);
}

TEST(SimpleArrayOfClass, ElementsLiveExactlyAsLongAsTheirBlockAndMoveAsValues) {
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
    // An overlapping window is read before it is written, as for plain elements.
    zrSimpleArray<Counted> tail = a.Right(5);
    tail = a.Left(5);
    EXPECT_EQ(Values(a), (V{1, 1, 1, 2, 1, 2}));
  }
  EXPECT_EQ(Counted::Live(), 0);
}

TEST(SimpleArray, AssignmentFromAnOverlappingWindowReadsTheSourceFirst) {
  // Each window takes the other's values as they were, in place: the array and every
  // sharer of its block see the move.
  Ints a = Of({0, 1, 2, 3, 4, 5, 6, 7});
  Ints sharer = a.Left(8), ahead = a.Mid(2, 5), behind = a.Left(5);
  ahead = a.Left(5);  // the target starts inside the source
  EXPECT_EQ(Values(sharer), (V{0, 1, 0, 1, 2, 3, 4, 7}));
  behind = a.Mid(2, 5);
  EXPECT_EQ(Values(sharer), (V{0, 1, 2, 3, 4, 3, 4, 7}));
}
