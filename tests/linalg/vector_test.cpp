#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "support/linalg_values.h"
#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

using zr_test::ExpectRefused, zr_test::Of, zr_test::Values;
using C = zrComplex;
using V3 = zrTVec3<double>;
using D = std::vector<double>;

// A value of the element type of its second argument built from one small number, exact
// in every type.
double Val(double d, double) { return d; }
C Val(double d, C) { return C(d, -d); }
V3 Val(double d, V3) { return V3(d, 2 * d, -d); }

// Who sees a write after each kind of copy, view and assignment, and the flat form of a
// strided window.
template <class T>
void CheckElementType(const char* name) {
  SCOPED_TRACE(name);
  const auto v = [](double d) { return Val(d, T()); };
  zrVector<T> a(6), w, w2;
  for (int i = 0; i < 6; ++i) a[i] = v(i);
  zrVector<T> shared(a), other(a), detached(a), back(a);  // the copy constructor shares
  shared[0] = v(9);
  EXPECT_TRUE(a[0] == v(9) && a.GetNumOfRef() == 4);

  w.Set(a, 1, 3, 2);   // storage 1, 3, 5
  w2.Set(w, 1, 2, 2);  // the given step is not scaled by w's: storage 3, 5
  EXPECT_EQ(Values(w2), (std::vector<T>{v(3), v(5)}));

  // Assignment of equal length writes through the window into a and its sharers; of
  // another length it takes fresh storage and leaves the old sharers alone.
  w = Of<zrVector<T>>({v(7), v(8), v(9)});
  other = Of<zrVector<T>>({v(1)});
  EXPECT_TRUE(shared[3] == v(8) && other.GetNumOfRef() == 0 && a.Len() == 6);
  detached.Copy();
  detached[0] = v(4);

  // The flat form of the window is packed; reading it back gives a contiguous vector.
  std::vector<unsigned char> buf(4 + 3 * sizeof(T));
  ASSERT_EQ(w.MemSize(), static_cast<int>(buf.size()));
  EXPECT_TRUE(w.ToMem(buf.data()) == w.MemSize() && std::memcmp(buf.data(), "\3\0\0\0", 4) == 0);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(std::memcmp(buf.data() + 4 + i * sizeof(T), &a[2 * i + 1], sizeof(T)), 0) << i;
  EXPECT_EQ(back.FromMem(buf.data()), w.MemSize());
  // FromMem took fresh storage; the detached copy wrote its own.
  EXPECT_TRUE(Values(back) == Values(w) && back.Tab() == 1 && a[1] == v(7) && a[0] == v(9));

  // ReSet of a strided window keeps its values in front and leaves it contiguous.
  w.ReSet(4);
  w[0] = v(0);
  EXPECT_TRUE(w.Tab() == 1 && w[2] == v(9) && a[1] == v(7));

  // Assigned a reversed view of itself, a vector is reversed in place: its sharers see it.
  std::vector<T> reversed = Values(a);
  std::reverse(reversed.begin(), reversed.end());
  w.Set(a, 5, 6, -1);
  a = w;
  EXPECT_EQ(Values(shared), reversed);
}

}  // namespace

TEST(Vector, EveryElementTypeAndItsRules) {
#define ZR_TEST_ELEMENT_TYPE(T) CheckElementType<T>(#T);
  ZR_LINALG_TYPES(ZR_TEST_ELEMENT_TYPE)
#undef ZR_TEST_ELEMENT_TYPE

  // The rules of each element type.
  // double: ties keep this vector's value.
  zrVector<double> d = Of({1.0, 5.0, -0.0});
  d.Min(Of({2.0, 3.0, 0.0}));
  EXPECT_TRUE(Values(d) == (D{1, 3, 0}) && std::signbit(d[2]));

  // zrComplex: by modulus, whole values; no conjugation; the kept norm rule.
  using VC = zrVector<C>;
  VC z = Of<VC>({C(3, 4), C(0, 1)});
  z.Max(Of<VC>({C(-5, 0), C(2, 0)}));
  EXPECT_EQ(Values(z), (std::vector<C>{C(3, 4), C(2, 0)}));
  EXPECT_EQ(Of<VC>({C(1, 2)}).ScalarMul(Of<VC>({C(1, 2)})), C(-3, 4));
  // s = i*i = -1, r = 1, q = 0: (sqrt(0.5), sqrt(0.5)), not the modulus 1.
  EXPECT_EQ(Of<VC>({C(0, 1)}).Norm(), C(std::sqrt(0.5), std::sqrt(0.5)));
  VC m = Of<VC>({C(1, 2)});
  m *= C(3, 4);              // the element's own (adding) operator: (4, 6)
  m.Mul(Of<VC>({C(0, 1)}));  // multiplies
  EXPECT_EQ(m[0], C(-6, 4));

  // zrTVec3: all three coordinates or nothing; coordinate-wise products and roots.
  using VP = zrVector<V3>;
  VP p = Of<VP>({V3(1, 5, 1), V3(1, 5, 1)});
  p.Min(Of<VP>({V3(0, 0, 2), V3(0, 0, 0)}));
  EXPECT_EQ(Values(p), (std::vector<V3>{V3(1, 5, 1), V3(0, 0, 0)}));
  EXPECT_EQ(Of<VP>({V3(3, 0, 1), V3(4, 2, 0)}).Norm(), V3(5, 2, 1));
}

TEST(Vector, WindowsStepsEditingAndErrors) {
  zrVector<double> v = Of({1, 2, 3, 4}), out;
  v.Right(out, 2);
  out[0] = 30;
  EXPECT_EQ(v[2], 30);

  ExpectRefused("zrVector<T>::Left: Out of Range", [&] { v.Left(out, 0); });
  ExpectRefused("zrVector<T>::Right: Out of Range", [&] { v.Right(out, 5); });
  ExpectRefused("zrVector<T>::Mid: Out of Range", [&] { v.Mid(out, 0, 0); });
  ExpectRefused("different length.", [&] { v += Of({1}); });
  ExpectRefused("Out of range", [&] { v.Insert(5, 5); });
  ExpectRefused("zrNewWithRef : n <= 0 ", [] { zrVector<double>(-1); });

  zrVector<double> e = Of({1, 2, 3}), sharer(e);
  e.Remove(0);  // detaches first: the sharer keeps all three
  EXPECT_EQ(Values(sharer), (D{1, 2, 3}));
  e.Insert(e[1], 0);  // elements of e itself as arguments
  e.push_back(e[0]);
  e.Concat(e);
  EXPECT_EQ(Values(e), (D{3, 2, 3, 3, 3, 2, 3, 3}));

  // Steps reach backwards.
  double data[4] = {1, 2, 3, 4};
  zrVector<double> r;
  r.SetDirectly(data + 3, 4, -1);
  EXPECT_TRUE(Values(r) == (D{4, 3, 2, 1}) && r.ScalarMul(Of({1, 0, 0, 10})) == 14);
  EXPECT_TRUE(r.NegativeLength() == -3 && r.PositiveLength() == 0 && r.CheckPointer(data, 32));
}

// What the two orientations share: T() viewing the same elements as the other one, fresh
// results of their class, the length check, and arrays that move them by handles and copy
// them by value.
template <class V>
class Oriented : public ::testing::Test {};
using OrientedTypes = ::testing::Types<zrColumnVector<double>, zrLineVector<double>>;
TYPED_TEST_SUITE(Oriented, OrientedTypes);

TYPED_TEST(Oriented, ClassViewsResultsAndArrays) {
  using V = TypeParam;
  V v = Of<V>({1, 2, 3});
  auto t = v.T();
  t[1] = 20;
  EXPECT_EQ(v[1], 20);

  const V results[] = {v + 1.0, v - 1.0, v * 2.0, v / 2.0, v + v, v - V(v * 3.0)};
  const D want[] = {{2, 21, 4}, {0, 19, 2}, {2, 40, 6}, {0.5, 10, 1.5}, {2, 40, 6}, {-2, -40, -6}};
  for (int k = 0; k < 6; ++k)
    EXPECT_TRUE(Values(results[k]) == want[k] && results[k].GetPointer() != v.GetPointer()) << k;
  ExpectRefused("different length.", [&] { (void)(v - Of<V>({1})); });

  // Moving elements inside an array exchanges handles: a vector that views someone
  // else's storage stays a view and that storage is not written.
  zrVector<double> big = Of({1, 2, 3, 4});
  zrSimpleArray<V> points(2);
  points[0].Set(big, 2, 2);
  points[1] = Of<V>({7, 8});
  points.InverseOrder();
  points[1][0] = 30;
  zrSimpleArray<V> copy(points);  // copies values into new vectors
  copy[1][1] = 40;
  EXPECT_EQ(Values(big), (D{1, 2, 30, 4}));
}

// A source that overlaps the target (windows of one block with one step, either way
// round and either sign, with other steps, reversed) is taken as it stood, and written into the
// block in place: a sharer sees the result. The element-wise operations follow the same rule.
TEST(Vector, OverlappingSourcesAreReadBeforeTheyAreWritten) {
  struct Case {
    int to[3], from[3], op;
    D want;
  };
  for (const Case& c : {Case{{2, 3, 1}, {0, 3, 1}, 0, {0, 1, 0, 1, 2, 5}},
                        Case{{0, 4, 1}, {1, 4, 1}, 0, {1, 2, 3, 4, 4, 5}},
                        Case{{2, 3, 1}, {0, 3, 2}, 0, {0, 1, 0, 2, 4, 5}},
                        Case{{3, 3, -1}, {5, 3, -1}, 0, {0, 3, 4, 5, 4, 5}},
                        Case{{1, 3, 1}, {0, 3, 1}, 1, {0, 1, 3, 5, 4, 5}},
                        Case{{0, 6, 1}, {5, 6, -1}, 2, {-5, -3, -1, 1, 3, 5}}}) {
    zrVector<double> v = Of({0, 1, 2, 3, 4, 5}), sharer(v), to, from;
    to.Set(v, c.to[0], c.to[1], c.to[2]);
    from.Set(v, c.from[0], c.from[1], c.from[2]);
    (void)(c.op == 0 ? to = from : c.op == 1 ? to += from : to -= from);
    EXPECT_EQ(Values(sharer), c.want) << c.to[0] << " " << c.from[0] << " " << c.op;
  }
}

// A window of a vector with a block lies inside that block: windows that touch either end
// are made, one element past either end (or a reversed run reaching before the start) is
// refused and leaves the target as it was. Outside storage has no block to check against.
TEST(Vector, WindowsStayInsideTheirBlock) {
  zrVector<double> v = Of({0, 1, 2, 3, 4, 5}), mid, w;
  v.Mid(mid, 1, 4);  // elements 1 ... 4; the block reaches one further each way
  struct Window {
    int start, len, step;
    bool inside;
  };
  for (const Window& c : {Window{-1, 6, 1, true}, Window{-2, 1, 1, false}, Window{0, 5, 1, true},
                          Window{0, 6, 1, false}, Window{4, 3, -2, true}, Window{4, 4, -2, false},
                          Window{-1, 2, 5, true}, Window{-1, 2, 6, false}, Window{5, 0, 1, true},
                          Window{6, 0, 1, false}, Window{4, 9, 0, true}, Window{5, 9, 0, false}}) {
    w = Of({7});
    SCOPED_TRACE(testing::Message() << c.start << " " << c.len << " " << c.step);
    const auto set = [&] { w.Set(mid, c.start, c.len, c.step); };
    c.inside ? set() : ExpectRefused("zrVector<T>::Set : out of range.", set);
    EXPECT_TRUE(c.inside ? w.GetMem() == v.GetMem() && w.Len() == c.len &&
                               (c.len == 0 || w[0] == 1 + c.start)
                         : w.Len() == 1 && w[0] == 7);
  }

  // The held block bounds a view of raw elements as well, whatever its element type.
  zrArray<char> bytes(16, 0);
  EXPECT_NO_THROW(w.SetDirectly(reinterpret_cast<double*>(bytes.GetPointer()), 2, 1, bytes));
  ExpectRefused("zrVector<T>::SetDirectly : out of range.", [&] {
    w.SetDirectly(reinterpret_cast<double*>(bytes.GetPointer() + 8), 2, 1, bytes);
  });
  double outside[2] = {5, 6};
  zrVector<double> raw;
  raw.SetDirectly(outside, 2, 1);
  w.Set(raw, 1, 5, 1);  // no block: not checked, as for SetDirectly itself
  EXPECT_EQ(w.GetPointer(), outside + 1);
}
