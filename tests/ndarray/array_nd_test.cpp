// zrArrayND<T>: views that share and write through, strided walks, lockstep arithmetic,
// extremes, slices and the flat form.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <type_traits>
#include <vector>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using A = zrArrayND<double>;

zrArray<int> I(std::initializer_list<int> values) {
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

template <class T>
zrArrayND<T> Counting(const zrArray<int>& range, int first = 1) {
  zrArrayND<T> a(range);
  for (T& x : a) x = static_cast<T>(first++);
  return a;
}

template <class T>
void CheckElementType(const char* name) {
  SCOPED_TRACE(name);
  using V = std::vector<T>;
  zrArrayND<T> a = Counting<T>(I({3, 2}));  // rows (1 2 3) (4 5 6)
  zrArrayND<T> f;
  f.Set(a);
  f.Flip(0);
  EXPECT_EQ(Walk(f), V({3, 2, 1, 6, 5, 4}));
  const zrArrayND<T> dense(f);
  EXPECT_EQ(dense.Tab()[0], 1);
  EXPECT_EQ(ByOffsets(dense), V({3, 2, 1, 6, 5, 4}));

  zrArrayND<T> sum(a);
  sum += f;
  EXPECT_EQ(Walk(sum), V({4, 4, 4, 10, 10, 10}));
  sum -= T(4);
  sum *= T(2);
  sum /= T(3);
  EXPECT_EQ(Walk(sum), V({0, 0, 0, 4, 4, 4}));
  EXPECT_EQ(a.Min(), T(1));
  EXPECT_EQ(f.Max(), T(6));
  EXPECT_EQ(f.Median(), T(3));
  EXPECT_EQ(a == f, 0);
  EXPECT_EQ(dense == f, 1);

  // The flat form of a flipped array reads back dense and equal.
  std::vector<unsigned char> buffer(f.MemSize());
  ASSERT_EQ(buffer.size(), 12 + 6 * sizeof(T));
  EXPECT_EQ(f.ToMem(buffer.data()), static_cast<int>(buffer.size()));
  zrArrayND<T> back;
  EXPECT_EQ(back.FromMem(buffer.data()), static_cast<int>(buffer.size()));
  EXPECT_TRUE(back.IsCon());
  EXPECT_EQ(back.Tab()[0], 1);
  EXPECT_EQ(ByOffsets(back), V({3, 2, 1, 6, 5, 4}));
}

// Distinct, never zero, small enough that products stay exact in int.
template <class T>
zrArrayND<T> Filled(const zrArray<int>& range, int salt) {
  zrArrayND<T> a(range);
  int k = 0;
  for (T& x : a) {
    if constexpr (std::is_floating_point_v<T>) {
      x = T(1) + T(k % 97 + salt) / T(7);
    } else {
      x = static_cast<T>(k % 89 + salt + 1);
    }
    ++k;
  }
  return a;
}

template <class T>
bool SameBits(const std::vector<T>& x, const std::vector<T>& y) {
  return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(T)) == 0;
}

// Operands whose fastest axes differ are walked in tiles. Against a plain loop: every
// element meets its partner, edges of sizes that are no multiple of a tile included, a
// target window writes nothing outside itself, and a comparison stops at a difference in
// the last tile.
template <class T>
void CheckTiledWalks(const char* name) {
  SCOPED_TRACE(name);
  using V = zrArrayND<T>;
  const auto swap = [](V& v) { v.SwapAxis(0, v.GetDim() - 1); };
  const auto flip_swap = [](V& v) {
    v.Flip(0);
    v.SwapAxis(0, v.GetDim() - 1);
  };
  const auto window_swap = [](V& v) {
    V whole(v);
    v.SetSubWindow(whole, I({2, 3}), I({35, 41}));
    v.SwapAxis(0, 1);
  };
  const auto cube_swap = [](V& v) {
    v.SwapAxis(0, 2);
    v.Flip(1);
  };
  const struct {
    zrArray<int> range;
    void (*make)(V&);
  } views[] = {{I({37, 45}), +swap},
               {I({37, 45}), +flip_swap},
               {I({40, 50}), +window_swap},
               {I({37, 3, 41}), +cube_swap}};
  for (const auto& c : views) {
    V source = Filled<T>(c.range, 3);
    c.make(source);
    SCOPED_TRACE(::testing::Message() << "view " << (&c - views));
    const std::vector<T> b = ByOffsets(source);
    EXPECT_TRUE(SameBits(ByOffsets(V(source)), b));

    const auto check = [&](auto op, auto plain) {
      zrArray<int> outer(source.Range());
      for (int k = 0; k < outer.Len(); ++k) outer[k] += 2;
      V frame = Filled<T>(outer, 5);
      zrArray<int> ones(outer.Len());
      for (int k = 0; k < outer.Len(); ++k) ones[k] = 1;
      V dense = Filled<T>(source.Range(), 1);
      V window;
      window.SetSubWindow(frame, ones, source.Range());
      window.Flip(0);
      const V untouched(frame);
      for (V* target : {&dense, &window}) {
        std::vector<T> expected = ByOffsets(*target);
        for (std::size_t e = 0; e < expected.size(); ++e) expected[e] = plain(expected[e], b[e]);
        op(*target, source);
        EXPECT_TRUE(SameBits(ByOffsets(*target), expected));
      }
      window.Fill(T{});
      V border(untouched);
      window.SetSubWindow(border, ones, source.Range());
      window.Fill(T{});
      EXPECT_EQ(frame == border, 1);
    };
    check([](V& x, const V& y) { x += y; }, [](T x, T y) { return static_cast<T>(x + y); });
    check([](V& x, const V& y) { x -= y; }, [](T x, T y) { return static_cast<T>(x - y); });
    check([](V& x, const V& y) { x *= y; }, [](T x, T y) { return static_cast<T>(x * y); });
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

TEST(ArrayND, ViewsShareAndWriteThrough) {
  A big = Counting<double>(I({4, 3}));  // rows (1 2 3 4) (5 6 7 8) (9 10 11 12)
  A window;
  window.SetSubWindow(big, I({1, 1}), I({2, 2}));
  EXPECT_EQ(Walk(window), std::vector<double>({6, 7, 10, 11}));
  EXPECT_EQ(big.GetNumOfRef(), 1);
  window.Fill(0);
  EXPECT_EQ(Walk(big), std::vector<double>({1, 2, 3, 4, 5, 0, 0, 8, 9, 0, 0, 12}));

  window = Counting<double>(I({2, 2}), 20);  // equal sizes: written through the view
  EXPECT_EQ(big.GetPointer()[5], 20);
  EXPECT_EQ(big.GetPointer()[10], 23);
  window.Init(I({2, 2}));  // the current sizes: kept, still a view
  EXPECT_EQ(window.GetPointer(), big.GetPointer() + 5);

  A copy(window);  // deep: a block of its own
  copy.Fill(-1);
  EXPECT_EQ(big.GetPointer()[5], 20);
  window.Copy();  // shared: detaches
  EXPECT_EQ(big.GetNumOfRef(), 0);
  window.Fill(7);
  EXPECT_EQ(big.GetPointer()[5], 20);

  // A view reaching outside the block is refused and the array stays as it was.
  A slice;
  slice.Set(big, 4, I({4}), I({1}));
  EXPECT_EQ(BadParametersText([&] { slice.Set(big, 9, I({4}), I({1})); }),
            "Invalid parameters : CheckPointer : Invalid pointer or range.");
  EXPECT_EQ(Walk(slice), std::vector<double>({5, 20, 21, 8}));

  A moved;
  moved.Move(slice);
  EXPECT_EQ(moved.GetPointer(), big.GetPointer() + 4);
  EXPECT_EQ(slice.GetPointer(), nullptr);
  EXPECT_EQ(slice.GetMem(), nullptr);
  EXPECT_EQ(slice.GetDim(), 1);  // the geometry stays behind

  double outside[6] = {1, 2, 3, 4, 5, 6};
  A external;
  external.SetDirectly(outside, I({3, 2}));
  external *= 2.0;
  EXPECT_EQ(outside[5], 12);
  EXPECT_EQ(external.IsExternShared(), 1);

  big.clear();
  EXPECT_EQ(big.GetDim(), 0);
  EXPECT_TRUE(big.empty());
  EXPECT_EQ(moved.GetPointer()[1], 20);  // the view holds the block on
}

TEST(ArrayND, StridedViewsWalkInStorageOrder) {
  const A base = Counting<double>(I({3, 4, 5}));
  const auto flip = [](A& v, int a) { v.Flip(a); };
  const auto swap = [](A& v, int a) { v.SwapAxis(a, (a + 1) % 3); };
  const auto rot90 = [](A& v, int a) { v.Rotate90(a, (a + 2) % 3); };
  for (auto view : {+flip, +swap, +rot90}) {
    for (int axis = 0; axis < 3; ++axis) {
      A shared(base);
      A v;
      v.Set(shared);
      view(v, axis);
      v.Flip(1);
      SCOPED_TRACE(::testing::Message() << "axis " << axis);
      const std::vector<double> expected = ByOffsets(v);
      EXPECT_EQ(Walk(v), expected);
      EXPECT_EQ(Walk(A(v)), expected);
      EXPECT_EQ(v == A(v), 1);
      EXPECT_EQ(v.Min(), 1);
      EXPECT_EQ(v.Max(), 60);

      // Lockstep over differently strided operands, either way round.
      A dense(v);
      dense += v;
      std::vector<double> twice = expected;
      for (double& x : twice) x *= 2;
      EXPECT_EQ(Walk(dense), twice);
      v -= dense;
      for (double& x : twice) x /= -2;
      EXPECT_EQ(ByOffsets(v), twice);
      v.Fill(0);
      EXPECT_EQ(shared.Max(), 0);
    }
  }
  A other(I({3, 4}));
  A fewer(I({3, 4, 4}));
  A shared(base);
  EXPECT_EQ(BadParametersText([&] { shared += other; }),
            "Invalid parameters : Different dimension");
  EXPECT_EQ(BadParametersText([&] { shared /= fewer; }), "Invalid parameters : Different range");
  EXPECT_EQ(shared == fewer, 0);
}

TEST(ArrayND, TiledWalksMatchAPlainLoop) {
  CheckTiledWalks<double>("double");
  CheckTiledWalks<int>("int");
}

TEST(ArrayND, OverlappingOperandsRunInStorageOrder) {
  A a = Counting<double>(I({4}));
  A f;
  f.Set(a);
  f.Flip(0);
  a += f;  // a[2] already sees the new a[1], a[3] the new a[0]
  EXPECT_EQ(Walk(a), std::vector<double>({5, 5, 8, 9}));
  A b = Counting<double>(I({4}));
  f.Set(b);
  f.Flip(0);
  b = f;
  EXPECT_EQ(Walk(b), std::vector<double>({4, 3, 3, 4}));
}

TEST(ArrayND, ExtremesKeepTheFirstInStorageOrder) {
  A a(I({4}));
  const double values[] = {3, 1, 1, 2};
  std::memcpy(a.GetPointer(), values, sizeof values);
  double lo = 0;
  double hi = 0;
  a.MinAndMax(lo, hi);
  EXPECT_EQ(lo, 1);
  EXPECT_EQ(hi, 3);
  A zeros(I({2}));
  zeros.GetPointer()[0] = 0.0;
  zeros.GetPointer()[1] = -0.0;
  EXPECT_FALSE(std::signbit(zeros.Min()));
  zeros.Flip(0);
  EXPECT_TRUE(std::signbit(zeros.Min()));
  EXPECT_EQ(A(zeros).Median(), -0.0);

  A empty(I({0, 3}));
  EXPECT_TRUE(empty.empty());
  EXPECT_EQ(empty.GetMem(), nullptr);
  EXPECT_EQ(Walk(empty).size(), 0u);
  EXPECT_EQ(BadParametersText([&] { empty.Min(); }),
            "Invalid parameters : ArrayND range is empty.");
  EXPECT_EQ(BadParametersText([&] { empty.MinAndMax(lo, hi); }),
            "Invalid parameters : ArrayND range is empty.");
  EXPECT_EQ(BadParametersText([] {
              A bad(I({2, -1}));
            }),
            "Invalid parameters : zrNewWithRef : n <= 0 ");
}

TEST(ArrayND, SlicesCheckAxisThenDimensionThenIndex) {
  A line(I({3}));
  EXPECT_EQ(BadParametersText([&] { line.GetReduceDimArrayND(-1, 9); }),
            "Invalid parameters : out of range of dimension");
  EXPECT_EQ(BadParametersText([&] { line.GetReduceDimArrayND(0, 9); }),
            "Invalid parameters : Must be dimension > 1");
  A a = Counting<double>(I({3, 2}));
  EXPECT_EQ(BadParametersText([&] { a.GetReduceDimArrayND(1, 2); }),
            "Invalid parameters : Out of range");
  EXPECT_EQ(BadParametersText([&] { a.GetReduceDimArrayND(2, 0); }),
            "Invalid parameters : out of range of dimension");

  A* column = a.GetReduceDimArrayND(0, 2);
  EXPECT_EQ(column->GetDim(), 1);
  EXPECT_EQ(Walk(*column), std::vector<double>({3, 6}));
  column->Fill(0);
  delete column;
  EXPECT_EQ(Walk(a), std::vector<double>({1, 2, 0, 4, 5, 0}));
  A row;
  row.ReduceDimArrayND(a, 1, 1);
  EXPECT_EQ(Walk(row), std::vector<double>({4, 5, 0}));
}

TEST(ArrayND, MakeCoordInvertsDenseOffsetsOnly) {
  const A a(I({3, 4, 5}));
  zrArray<int> coord;
  a.MakeCoord(coord, a.GetPointer() + 2 + 3 * 3 + 12 * 4);
  EXPECT_EQ(std::vector<int>(coord.begin(), coord.end()), std::vector<int>({2, 3, 4}));
  A f(I({3, 4}));
  f.Flip(0);  // strides (-1, 3): element (2, 1) lies at offset 1
  f.MakeCoord(coord, f.GetPointer() + 1);
  EXPECT_EQ(std::vector<int>(coord.begin(), coord.end()), std::vector<int>({-1, 0}));
}

TEST(ArrayND, FlatFormIsTheSizesThenTheElements) {
  A a = Counting<double>(I({2, 3}));
  std::vector<unsigned char> buffer(a.MemSize());
  ASSERT_EQ(a.ToMem(buffer.data()), 12 + 48);
  const std::int32_t head[3] = {2, 2, 3};
  EXPECT_EQ(std::memcmp(buffer.data(), head, sizeof head), 0);
  double sixth = 0;
  std::memcpy(&sixth, buffer.data() + 12 + 40, 8);
  EXPECT_EQ(sixth, 6);

  // Into a view of the same sizes the elements are written through.
  A big(I({4, 4}));
  big.Fill(0);
  A window;
  window.SetSubWindow(big, I({1, 1}), I({2, 3}));
  EXPECT_EQ(window.FromMem(buffer.data()), 60);
  EXPECT_EQ(big.GetPointer()[5], 1);
  EXPECT_EQ(big.GetPointer()[14], 6);
  EXPECT_EQ(window == a, 1);
}
