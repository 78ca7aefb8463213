// The arrays: the shared buffer base (its counted switch, range checks and missing flat
// form; its copies take the block pointer raw and the derived classes' sharing tests
// cover them), zrSimpleArray<T> (who sees a write, exact reallocation, editing, sorted
// searches, class-type elements), the rows of zrSimpleArray2D<T>, and zrArray<T>'s
// element-wise arithmetic, reductions, selection and flat form.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/array_builders.h"
#include "support/test_support.h"
#include "zr/arrays/simple_array_impl.h"
#include "zr/zr.h"

namespace arrays_test {

// An element of class type that counts its constructions and destructions.
struct Counted {
  inline static int made = 0, gone = 0;
  Counted() { ++made; }
  Counted(const Counted& other) : value(other.value) { ++made; }
  Counted& operator=(const Counted& other) = default;
  ~Counted() { ++gone; }
  operator int() const { return value; }  // NOLINT(google-explicit-constructor)
  int value = -1;
};

}  // namespace arrays_test

using arrays_test::Counted;
template class zrSimpleArray<Counted>;

namespace {

using zr_test::BadParametersText;
using Ints = zrSimpleArray<int>;
using V = std::vector<int>;
using Grid = zrSimpleArray2D<double>;
using zr_test::Of;
using zr_test::Values;
V Values(const zrSimpleArray<Counted>& a) { return {a.begin(), a.end()}; }
using D = zrArray<double>;
using I = zrArray<int>;

const std::string kBad = "Invalid parameters : ";

Ints Of(std::initializer_list<int> values) { return zr_test::Of<Ints>(values); }
int BlockCount(const zrPArray& a) { return zr::detail::BlockCount(a.GetMem()); }
// The elements and the length of the block behind them.
std::pair<V, int> Held(const Ints& a) { return {Values(a), BlockCount(a)}; }
int Asc(const int& a, const int& b) { return a < b ? -1 : (a > b ? 1 : 0); }

// Who sees a write (what, from, n, edit, at, seen): w starts as a.Mid(from, n) of
// a = {0, 1, 2, 3, 4}, edit(w, a) is
// applied, and after w[0] = 99, a[at] shows it exactly when the two share the element.
// One case per rule (every row's w is a window from Mid): a window, a kept length and a rotation
// share; Copy (a copy moved in) and every length change (growth and removal alike) take a block of
// their own.
using Sharing = std::tuple<const char*, int, int, void (*)(Ints& w, Ints& a), int, bool>;
Ints Two() { return Of({7, 8}); }
const Sharing kSharing[] = {
    {"SetSubWindow", 0, 1, [](Ints& w, Ints& a) { w.SetSubWindow(a, 2, 3); }, 2, true},
    {"SetDirectly", 0, 1, [](Ints& w, Ints& a) { w.SetDirectly(&a[1], 3, a); }, 1, true},
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

const std::string kRange = "Invalid parameters : CheckPointer : Invalid pointer or range.";

// A minimal array of doubles over the base: an origin, a length and an extent below the
// origin, with the base's own SetMem and block pointer handling. A block given to the
// constructor is taken over uncounted, as an owner takes the block it has just made.
struct Doubles : zrPArray {
  Doubles(void* origin, int length, int negative = 0, void* block = nullptr)
      : origin(origin), length(length), negative(negative) {
    InitMem(block);
  }
  void* Pointer() const override { return origin; }
  int PositiveLength() const override { return length; }
  int NegativeLength() const override { return negative; }
  int GetSizeOfType() const override { return sizeof(double); }
  void Copy() override {}
  void* origin;
  int length, negative;
};

}  // namespace

TEST(PArray, TheBaseSwitchCountsAndKeepsTheOldBlockOnRefusal) {
  double* block = nullptr;
  zrNewWithRef(block, 4);
  Doubles owner(block, 4, 0, block), sharer(block + 1, 2);
  sharer.SetMem(block);
  EXPECT_TRUE(owner.GetNumOfRef() == 1 && owner.IsShared() && !owner.IsExternShared());
  sharer.SetMem(nullptr);  // never frees: letting the block go lowers the count only
  EXPECT_TRUE(sharer.IsShared() && sharer.IsExternShared());
  EXPECT_TRUE(owner.GetNumOfRef() == 0 && !owner.IsShared());  // the sole owner again

  // A refused block leaves the old one in place, counted as before.
  auto* raw = static_cast<double*>(zrMalloc(4 * sizeof(double)));
  reinterpret_cast<int*>(raw)[1] = 5;  // the word before raw + 1 is not negative
  EXPECT_THROW(owner.SetMem(raw + 1), BadParameters);
  EXPECT_TRUE(owner.GetMem() == block && zrGetMemRef(block) == 1);
  zrFree(raw);
  zrDeleteWithRef(block);
}

TEST(PArray, RangeAndBoundaryChecksAndNoFlatForm) {
  double* block = nullptr;
  zrNewWithRef(block, 12);  // 96 bytes
  // Origin in bytes, length, extent below the origin, then CheckPointer() and
  // CheckPointer(p, n), which also wants the origin on the element grid.
  const int cases[][5] = {
      {40, 10, 0, 0, 0},         // 10 elements from element 5 run 24 bytes past the end
      {40, 7, 0, 1, 1},          // up to the last byte
      {4, 2, 0, 1, 0},           // off the element grid
      {16, 3, 2, 1, 1},          // the extent below the origin stays inside
      {16, 3, 3, 0, 0},          // ... or starts before the block
      {16, 3, -3, 0, 0},         // the same extent as the arrays report it, zero or below
      {8, 1 << 29, 0, 0, 0},     // 2^32 bytes: no longer wrapped to a few
      {88, 1, -(1 << 29), 0, 0}  // ... nor below the origin
  };
  for (const auto& [bytes, length, negative, whole, aligned] : cases) {
    const Doubles a(reinterpret_cast<char*>(block) + bytes, length, negative, block);
    EXPECT_EQ(a.CheckPointer(), whole) << bytes << ' ' << length;
    // p and n are ignored with a block.
    EXPECT_EQ(a.CheckPointer(nullptr, 0), aligned) << bytes << ' ' << length;
    EXPECT_EQ(whole ? kRange : BadParametersText([&] { a.CheckPointerWithThrow(); }), kRange);
  }
  zrDeleteWithRef(block);
  // Without a block the given bytes bound the array: 80 hold 10 doubles, 79 do not.
  double data[10] = {};
  Doubles a(data, 10);
  EXPECT_NO_THROW(a.CheckPointerWithThrow(data, 80));
  EXPECT_EQ(BadParametersText([&] { a.CheckPointerWithThrow(data, 79); }), kRange);

  // The base has no flat form.
  auto* const buffer = reinterpret_cast<unsigned char*>(data);
  EXPECT_EQ(BadParametersText([&] { a.MemSize(); }), kBad + "Have not zrPArray::MemSize");
  EXPECT_EQ(BadParametersText([&] { zrToMem(buffer, a); }), kBad + "Have not zrPArray::ToMem");
  EXPECT_EQ(BadParametersText([&] { zrFromMem(buffer, a); }), kBad + "Have not zrPArray::FromMem");
}

TEST(SimpleArray, WhoSeesAWrite) {
  for (const auto& [what, from, n, edit, at, seen] : kSharing) {
    Ints a = Of({0, 1, 2, 3, 4}), w = a.Mid(from, n);
    edit(w, a);
    w[0] = 99;
    EXPECT_EQ(a[at] == 99, seen) << what;
  }
  // Memory the array does not own is copied from and left alone.
  int raw[3] = {4, 5, 6};
  Ints view;
  view.SetDirectly(raw, 3);
  view.Copy();
  view[0] = 0;
  EXPECT_EQ(raw[0], 4);
}

TEST(SimpleArray, EditsReallocateExactlyAndKeepTheOldValues) {
  Ints a = Of({1, 2, 3});
  const Ints b = a.Left(3);
  a.ReSet(4);  // a sharer's block is copied from
  EXPECT_EQ(Held(a.Left(3)), std::pair(V{1, 2, 3}, 4));
  a.ReSet(2);  // a sole owner shrinks and grows keeping its leading elements
  a.ReSet(3);
  EXPECT_EQ(Held(a.Left(2)), std::pair(V{1, 2}, 3));
  Ints window;  // the last holder of a larger block, not at its start
  window.SetSubWindow(Of({1, 2, 3, 4}), 1, 2);
  window.ReSet(3);
  EXPECT_EQ(Held(window.Left(2)), std::pair(V{2, 3}, 3));
  window.ReSet(0);
  EXPECT_EQ(window.GetMem(), nullptr);

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
  EXPECT_EQ(Held(c), std::pair(V{3, 4, 3, 3, 4, 3, 3, 4}, 8));
  Ints e = Of({1, 2, 3, 4});
  e.Replace(1, 2, e);
  e.Replace(0, 2, e.Mid(2, 3));
  EXPECT_EQ(Held(e), std::pair(V{2, 3, 4, 2, 3, 4, 4}, 7));
  e.Replace(1, 5, Of({9}));
  EXPECT_EQ(Held(e), std::pair(V{2, 9, 4}, 3));
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

TEST(SimpleArray, AppendsIntoSpareRoomKeepTheCountExactAndSharersTheirElements) {
  Ints a;
  for (int i = 0; i < 100; ++i) a.push_back(i);
  const Ints w = a.Left(100);  // a sharer: the next append takes a private block
  a.push_back(100);
  a[0] = -1;
  EXPECT_EQ(std::pair(BlockCount(w), w[0]), std::pair(100, 0));
  for (int i = 0; i < 3; ++i) a.pop_back();
  a.push_back(7);
  EXPECT_EQ(Held(a.Right(2)), std::pair(V{97, 7}, 99));
  Ints one = Of({1});
  a.Move(one);  // what is known of the old allocation's room goes with it
  for (int i = 0; i < 40; ++i) a.push_back(i);
  EXPECT_EQ(Held(a.Right(1)), std::pair(V{39}, 41));
}

TEST(SimpleArray, OutOfRangeTexts) {
  Ints a = Of({1, 2, 3});
  Ints window = a.Left(2), v;
  const auto text = [](const char* what) { return kBad + "zrSimpleArray<T>::" + what; };
  EXPECT_EQ(BadParametersText([&] { window.SetSubWindow(a, 2, 2); }), text("Set : out of range."));
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
    up.ReSet(n), down.ReSet(n);
    for (int i = 0; i < n; ++i) up[i] = down[n - 1 - i] = 2 * i + 1;
    for (int v = 0; v <= 2 * n; ++v) {
      EXPECT_EQ(up.FindB(v, Asc, 1), v % 2 ? v / 2 : -1) << n << ' ' << v;
      EXPECT_EQ(down.FindB(v, Asc, 0), v % 2 ? n - 1 - v / 2 : -1) << n << ' ' << v;
    }
  }

  // The results have blocks of their exact length.
  EXPECT_TRUE(Ints::IsIntersectB(Of({5, 3, 1}), Of({4, 3}), Asc, 0));
  Ints r = Of({7, 7, 7});
  EXPECT_TRUE(r.IntersectB(Of({9, 5, 1}), Of({5, 1}), Asc, 0));
  EXPECT_EQ(Held(r), std::pair(V{5, 1}, 2));
  // Fewer than the shorter: a block of the matched count, its elements not set.
  EXPECT_TRUE(r.IntersectB(r, Of({5, 0}), Asc, 0) && r.Len() == 1 && BlockCount(r) == 1);
  EXPECT_FALSE(r.IntersectB(Of({1, 3}), Of({2, 4}), Asc, 1));
  EXPECT_TRUE(r.empty());
  EXPECT_TRUE(r.Fusion(Of({1, 3, 5, 7}), Of({3, 4}), Asc, false, 1));
  EXPECT_EQ(Held(r), std::pair(V{1, 3, 4, 5, 7}, 5));
  EXPECT_TRUE(r.Fusion(Of({1, 3, 5, 7}), Of({3, 4}), Asc, true, 1));
  EXPECT_EQ(Held(r), std::pair(V{1, 3, 3, 4, 5, 7}, 6));
  EXPECT_FALSE(r.Fusion(Of({1, 2}), Of({3, 4, 5}), Asc, true, 1));
  EXPECT_FALSE(r.Fusion(r, Of({0}), Asc, false, 1));
  EXPECT_EQ(Held(r), std::pair(V{0, 1, 2, 3, 4, 5}, 6));
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
    EXPECT_EQ((Counted::made - Counted::gone), 3 + 4);
    EXPECT_EQ(Values(a), (V{-1, 1, 2, -1}));

    a = window;
    a.push_back(a[0]);
    a.Insert(a[1], 0);
    a.Concat(a);
    a.Remove(1);
    a.Replace(0, 3, window);
    a.CycleLeftShift(1);
    a.InverseOrder();
    EXPECT_EQ(Values(a), (V{1, 1, 2, 1, 2, 2}));
    EXPECT_EQ((Counted::made - Counted::gone), a.Len() + 3);
  }
  EXPECT_EQ((Counted::made - Counted::gone), 0);
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

TEST(SimpleArray2D, RowMajorStorageAndShapes) {
  Grid g(2, 3, 0.0);
  g(1, 2) = 7;
  EXPECT_EQ(g[5], 7);
  const std::string count = kBad + "zrNewWithRef : n <= 0 ";
  EXPECT_EQ(BadParametersText([&] { g.Set(0, 5, 1.0); }), count);
  EXPECT_EQ(BadParametersText([&] { g.Set(-1, 5); }), count);
  EXPECT_THROW(g.Set(1 << 16, 1 << 16), zrErrNoMemory);  // 2^32 elements: no 32-bit length
  g.Set(0, 5);
  EXPECT_EQ(g.Len() * 100 + g.GetHeight() * 10 + g.GetWidth(), 5);
  g.Set(2, 2, 4.0);
  EXPECT_EQ(g(1, 1) * 10 + g.GetSize(), 44);
  zrSimpleArray<double> row;
  g.GetLine(row, 0);
  g.Init(2, 2);  // same shape: nothing happens
  EXPECT_EQ(g.GetNumOfRef(), 1);
  g.Init(2, 1);  // a reshape makes new storage, one dimension kept or not
  EXPECT_EQ(g.GetNumOfRef(), 0);
}

TEST(SimpleArray2D, LinesShareTheStorageThatTheBaseMayHaveEdited) {
  zrSimpleArray<double> line(4, 9.0);  // its own block goes when the line is taken
  const std::string range = kBad + "zrSimpleArray2D<T>::GetLine : out of range";
  {
    Grid g(2, 3, 0.0);
    g(1, 0) = 5;
    g.GetLine(line, 1);
    EXPECT_TRUE(line.Len() == 3 && line.GetPointer() == &g(1, 0) && g.GetNumOfRef() == 1);
    line[2] = 8;
    EXPECT_EQ(g(1, 2), 8);
    for (int y : {2, -1}) EXPECT_EQ(BadParametersText([&] { g.GetLine(line, y); }), range);
  }
  // The storage lives on with the line.
  EXPECT_TRUE(line[0] == 5 && line[2] == 8 && line.GetNumOfRef() == 0);

  // The base's edits change the length alone; a line past the storage is refused.
  Grid g(2, 3, 1.0);
  zrSimpleArray<double>& base = g;
  base.RemoveLast();
  EXPECT_EQ(BadParametersText([&] { g.GetLine(line, 1); }), range);
  base.push_back(4.0);  // storage of six again: the second line is whole
  g.GetLine(line, 1);
  EXPECT_EQ(line[2], 4);
}

TEST(Array, WindowsShareAndCopiesDoNot) {
  D a = Of<D>({1, 2, 3, 4});
  a.Mid(1, 2) += 10.0;  // in place, through the shared block
  // A scalar operand that is an element of the array is read once, before the loop.
  a[0] = 2;
  a /= a[0];
  EXPECT_EQ(Values(a), std::vector<double>({1, 6, 6.5, 2}));

  // An overlapping operand is read as it was: each element plus the one before it.
  I b = Of<I>({1, 2, 3, 4, 5});
  b.Mid(1, 4) += b.Left(4);
  EXPECT_EQ(Values(b), (std::vector<int>{1, 3, 5, 7, 9}));
  b.Left(4) -= b.Mid(1, 4);
  b *= b;  // the same elements: each read before it is written
  EXPECT_EQ(Values(b), (std::vector<int>{4, 4, 4, 4, 81}));
}

TEST(Array, ElementWiseReductionsAndComparisons) {
  // The element code is one template for every type: one scalar type shows its faults.
  const D a = Of<D>({8, 2, 6});
  EXPECT_EQ(Values(a + Of<D>({1, 1, 1})), std::vector<double>({9, 3, 7}));
  EXPECT_EQ(Values(a / Of<D>({4, 2, 4})), std::vector<double>({2, 1, 1.5}));
  EXPECT_EQ(Values(a.Max(Of<D>({1, 5, 6}))), std::vector<double>({8, 5, 6}));
  EXPECT_EQ(a.Mul(), 96);
  EXPECT_EQ((a > 1.0) + (a > 2.0), 1);

  const D one = Of<D>({1});
  D two = Of<D>({1, 2}), empty;
  const std::string different = kBad + "Different range";
  EXPECT_EQ(BadParametersText([&] { two += one; }), different);
  EXPECT_EQ(BadParametersText([&] { (void)(two < one); }), different);
  EXPECT_EQ((two == one), 0);
  EXPECT_EQ(BadParametersText([&] { empty.Sum(); }), kBad + "Array length is zero.");
  EXPECT_EQ(BadParametersText([&] { empty.Median(); }), kBad + "Lenght of array is equl zero.");
  // Every condition holds vacuously on an empty array; NaN is unequal to itself.
  EXPECT_EQ((empty == 5.0) + (empty < 5.0) + (empty > 5.0) + (empty <= empty), 4);
  EXPECT_EQ((empty != 5.0), 0);
  const D nan(1, std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ((nan == nan), 0);

  // Left to right, 1 + 1e16 rounds to 1e16; any other order keeps the 1.
  EXPECT_EQ(Of<D>({1.0, 1e16, -1e16}).Sum(), 0.0);
  // x * x rounds to 1 + 2^-29; a fused multiply-add would keep the 2^-60.
  const double x = 1 + std::ldexp(1.0, -30);
  EXPECT_EQ(Of<D>({-1.0, x}).ScalarMul(Of<D>({1 + std::ldexp(1.0, -29), x})), 0.0);

  EXPECT_EQ(Of<I>({2, 7, 7}).MaxIndex() + Of<I>({1, 0, 0}).MinIndex(), 2);  // the first
  EXPECT_EQ(Of<I>({2, -3, 4}).GetNoPositive(), Of<I>({0, -3, 0}));
}

TEST(Array, MedianSelectsTheLowerMiddleInPlace) {
  std::mt19937 random(7);
  for (int n = 1; n <= 40; ++n) {
    I b;  // many ties
    for (int i = 0; i < n; ++i) b.push_back(static_cast<int>(random() % 9));
    std::vector<int> sorted = Values(b);
    std::sort(sorted.begin(), sorted.end());
    const int k = (n - 1) / 2;
    ASSERT_EQ(b.Median(), sorted[k]) << n;
    for (int i = 0; i < n; ++i) ASSERT_TRUE(i < k ? b[i] <= b[k] : b[i] >= b[k]) << n;
  }
}

TEST(Array, InsertIfNotExistBKeepsTheOrder) {
  I a = Of<I>({1, 3, 9}), down = Of<I>({9, 3}), empty;
  int added = -1, found = -1, other = -1;
  EXPECT_EQ(std::vector<int>({a.InsertIfNotExistB(5, added, 1), a.InsertIfNotExistB(5, found, 1),
                              down.InsertIfNotExistB(4, other, 0),
                              empty.InsertIfNotExistB(4, other, 1), added, found}),
            std::vector<int>({2, 2, 1, 0, 0, 1}));
  EXPECT_EQ(Values(a), std::vector<int>({1, 3, 5, 9}));
  EXPECT_EQ(Values(empty), std::vector<int>({4}));
}

TEST(Array, FlatForm) {
  const D a = Of<D>({1.5, -2.0});
  unsigned char buffer[20];
  ASSERT_EQ(a.ToMem(buffer), 20);
  const unsigned char expected[20] = {2,    0,    0, 0, 0, 0, 0, 0, 0, 0,
                                      0xF8, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0};
  EXPECT_EQ(std::memcmp(buffer, expected, 20), 0);

  // An equal length is written in place, into every sharer.
  D b = Of<D>({0, 0}), sharer = b.Left(2);
  EXPECT_EQ(zrFromMem(buffer, b), 20);
  EXPECT_EQ(Values(sharer), std::vector<double>({1.5, -2.0}));
  // Another length takes a block of its own; zero empties the array.
  D c = Of<D>({9, 9, 9});
  EXPECT_TRUE(c.FromMem(buffer) == 20 && c == a);
  const unsigned char none[4] = {0, 0, 0, 0};
  EXPECT_TRUE(c.FromMem(none) == 4 && c.Len() == 0);
}
