#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <vector>

#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

using zr_test::BadParametersText;
using C = zrComplex;
using V3 = zrTVec3<double>;

// A value of each element type built from one small number, exact in every type.
template <class T>
T Val(double d);
template <>
double Val<double>(double d) {
  return d;
}
template <>
C Val<C>(double d) {
  return C(d, -d);
}
template <>
V3 Val<V3>(double d) {
  return V3(d, 2 * d, -d);
}

template <class Vec = zrVector<double>>
Vec Of(std::initializer_list<typename Vec::value_type> xs) {
  Vec v(static_cast<int>(xs.size()));
  int i = 0;
  for (const auto& x : xs) v[i++] = x;
  return v;
}

template <class T>
std::vector<T> Values(const zrVector<T>& v) {
  std::vector<T> r;
  r.reserve(static_cast<std::size_t>(v.Len()));
  for (int i = 0; i < v.Len(); ++i) r.push_back(v[i]);
  return r;
}

// Who sees a write after each kind of copy, view and assignment, and the flat form of a
// strided window.
template <class T>
void CheckElementType(const char* name) {
  SCOPED_TRACE(name);
  zrVector<T> a(6);
  for (int i = 0; i < 6; ++i) a[i] = Val<T>(i);

  zrVector<T> shared(a);  // the copy constructor shares
  shared[0] = Val<T>(9);
  EXPECT_EQ(a[0], Val<T>(9));
  EXPECT_EQ(a.GetNumOfRef(), 1);

  zrVector<T> w;  // storage 1, 3, 5
  w.Set(a, 1, 3, 2);
  zrVector<T> w2;  // the given step is not scaled by w's: storage 3, 5
  w2.Set(w, 1, 2, 2);
  EXPECT_EQ(Values(w2), (std::vector<T>{Val<T>(3), Val<T>(5)}));

  // Assignment of equal length writes through the window into a and its sharers.
  w = Of<zrVector<T>>({Val<T>(7), Val<T>(8), Val<T>(9)});
  EXPECT_EQ(shared[3], Val<T>(8));
  // Of another length it takes fresh storage and leaves the old sharers alone.
  zrVector<T> other(a);
  other = Of<zrVector<T>>({Val<T>(1)});
  EXPECT_EQ(other.GetNumOfRef(), 0);
  EXPECT_EQ(a.Len(), 6);

  zrVector<T> detached(a);
  detached.Copy();
  detached[0] = Val<T>(4);
  EXPECT_EQ(a[0], Val<T>(9));

  // The flat form of the window is packed; reading it back gives a contiguous vector.
  std::vector<unsigned char> buf(static_cast<std::size_t>(w.MemSize()));
  ASSERT_EQ(w.MemSize(), static_cast<int>(4 + 3 * sizeof(T)));
  EXPECT_EQ(w.ToMem(buf.data()), w.MemSize());
  EXPECT_EQ(std::vector<unsigned char>(buf.begin(), buf.begin() + 4),
            (std::vector<unsigned char>{3, 0, 0, 0}));
  std::vector<unsigned char> raw(sizeof(T));
  std::memcpy(raw.data(), &a[3], sizeof(T));
  EXPECT_EQ(
      std::vector<unsigned char>(buf.begin() + 4 + sizeof(T), buf.begin() + 4 + 2 * sizeof(T)),
      raw);
  zrVector<T> back(a);
  EXPECT_EQ(back.FromMem(buf.data()), w.MemSize());
  EXPECT_EQ(Values(back), Values(w));
  EXPECT_EQ(back.Tab(), 1);
  EXPECT_EQ(a[1], Val<T>(7));  // FromMem took fresh storage

  // ReSet of a strided window keeps its values in front and leaves it contiguous.
  w.ReSet(4);
  EXPECT_EQ(w.Tab(), 1);
  EXPECT_EQ(w[2], Val<T>(9));
  w[0] = Val<T>(0);
  EXPECT_EQ(a[1], Val<T>(7));

  // The oriented vectors: transposes share.
  zrColumnVector<T> c(a);
  zrLineVector<T> l = c.T();
  l[1] = Val<T>(3);
  EXPECT_EQ(a[1], Val<T>(3));
  EXPECT_EQ(l.IsLine() * 10 + c.IsColumn(), 11);
}

}  // namespace

TEST(Vector, EveryElementType) {
#define ZR_TEST_ELEMENT_TYPE(T) CheckElementType<T>(#T);
  ZR_LINALG_TYPES(ZR_TEST_ELEMENT_TYPE)
#undef ZR_TEST_ELEMENT_TYPE
}

TEST(Vector, WindowsAndErrors) {
  zrVector<double> v = Of({1, 2, 3, 4});
  zrVector<double> out;
  const std::string prefix = "Invalid parameters : ";
  EXPECT_EQ(BadParametersText([&] { v.Left(out, 0); }), prefix + "zrVector<T>::Left: Out of Range");
  EXPECT_EQ(BadParametersText([&] { v.Right(out, 5); }),
            prefix + "zrVector<T>::Right: Out of Range");
  EXPECT_EQ(BadParametersText([&] { v.Mid(out, 0, 0); }),
            prefix + "zrVector<T>::Mid: Out of Range");
  v.Mid(out, 3, 1);
  EXPECT_EQ(out[0], 4);
  v.Right(out, 2);
  out[0] = 30;
  EXPECT_EQ(v[2], 30);

  EXPECT_EQ(BadParametersText([&] { v += Of({1}); }), prefix + "different length.");
  EXPECT_EQ(BadParametersText([&] { v.ScalarMul(Of({1})); }), prefix + "different length.");
  EXPECT_EQ(BadParametersText([&] { v.Insert(5, 5); }), prefix + "Out of range");
  EXPECT_EQ(BadParametersText([] { zrVector<double>().Remove(0); }), prefix + "Out of range");
  EXPECT_EQ(BadParametersText([] { zrVector<double>(-1); }), prefix + "zrNewWithRef : n <= 0 ");
  EXPECT_EQ(v.Len(), 4);
}

TEST(Vector, EditingDetachesAndKeepsValues) {
  zrVector<double> v = Of({1, 2, 3});
  zrVector<double> sharer(v);
  v.Remove(0);  // detaches first: the sharer keeps all three
  EXPECT_EQ(Values(v), (std::vector<double>{2, 3}));
  EXPECT_EQ(Values(sharer), (std::vector<double>{1, 2, 3}));
  v.Insert(v[1], 0);
  v.push_back(v[0]);
  v.Concat(v);
  EXPECT_EQ(Values(v), (std::vector<double>{3, 2, 3, 3, 3, 2, 3, 3}));

  zrVector<double> one = Of({5});
  one.Remove(0);
  EXPECT_EQ(one.Len() + one.Tab(), 0);
  EXPECT_EQ(one.GetPointer(), nullptr);
  one.pop_back();
  EXPECT_TRUE(one.empty());
}

TEST(Vector, StepsReachBackwards) {
  double data[4] = {1, 2, 3, 4};
  zrVector<double> r;
  r.SetDirectly(data + 3, 4, -1);
  EXPECT_EQ(Values(r), (std::vector<double>{4, 3, 2, 1}));
  EXPECT_EQ(r.NegativeLength(), -3);
  EXPECT_EQ(r.PositiveLength(), 0);
  EXPECT_EQ(r.CheckPointer(data, 32), 1);
  EXPECT_EQ(r.ScalarMul(Of({1, 0, 0, 10})), 14);
  EXPECT_EQ(r.IsExternShared(), 1);
}

TEST(Vector, PerTypeRules) {
  // double: ties keep this vector's value.
  zrVector<double> d = Of({1.0, 5.0, -0.0});
  d.Min(Of({2.0, 3.0, 0.0}));
  EXPECT_EQ(Values(d), (std::vector<double>{1, 3, 0}));
  EXPECT_TRUE(std::signbit(d[2]));
  EXPECT_EQ(Of({3, 4}).Norm(), 5);

  // zrComplex: by modulus, whole values; no conjugation; the kept norm rule.
  zrVector<C> z = Of<zrVector<C>>({C(3, 4), C(0, 1)});
  z.Max(Of<zrVector<C>>({C(-5, 0), C(2, 0)}));
  EXPECT_EQ(Values(z), (std::vector<C>{C(3, 4), C(2, 0)}));
  EXPECT_EQ(Of<zrVector<C>>({C(1, 2)}).ScalarMul(Of<zrVector<C>>({C(1, 2)})), C(-3, 4));
  // s = i*i = -1, r = 1, q = 0: (sqrt(0.5), sqrt(0.5)), not the modulus 1.
  EXPECT_EQ(Of<zrVector<C>>({C(0, 1)}).Norm(), C(std::sqrt(0.5), std::sqrt(0.5)));
  // *= with a scalar is the element's own (adding) operator; Mul multiplies.
  zrVector<C> m = Of<zrVector<C>>({C(1, 2)});
  m *= C(3, 4);
  EXPECT_EQ(m[0], C(4, 6));
  m.Mul(Of<zrVector<C>>({C(0, 1)}));
  EXPECT_EQ(m[0], C(-6, 4));

  // zrTVec3: all three coordinates or nothing; coordinate-wise products and roots.
  zrVector<V3> p = Of<zrVector<V3>>({V3(1, 5, 1), V3(1, 5, 1)});
  p.Min(Of<zrVector<V3>>({V3(0, 0, 2), V3(0, 0, 0)}));
  EXPECT_EQ(Values(p), (std::vector<V3>{V3(1, 5, 1), V3(0, 0, 0)}));
  zrVector<V3> q = Of<zrVector<V3>>({V3(3, 0, 1), V3(4, 2, 0)});
  EXPECT_EQ(q.Norm(), V3(5, 2, 1));
  EXPECT_EQ(zrVector<V3>().ScalarMul(zrVector<V3>()), V3(0, 0, 0));
}

TEST(OrientedVector, ProductsAndClasses) {
  zrColumnVector<double> c = Of<zrColumnVector<double>>({1, 2, 3});
  zrLineVector<double> l = Of<zrLineVector<double>>({10, 20});
  zrMatrix<double> outer = c * l;
  ASSERT_EQ(outer.ColumnLen() * 10 + outer.LineLen(), 32);
  EXPECT_EQ(outer(2, 1), 60);
  EXPECT_EQ((c * zrLineVector<double>()).ColumnLen(), 0);

  EXPECT_EQ(Of<zrLineVector<double>>({1, 2, 3}) * c, 14);
  EXPECT_EQ(BadParametersText([&] { (void)(l * c); }), "Invalid parameters : different length.");
  EXPECT_EQ(BadParametersText([&] { (void)(c + zrColumnVector<double>(2)); }),
            "Invalid parameters : different length.");
  zrColumnVector<double> sum = c + c * 2.0;
  EXPECT_EQ(Values(sum), (std::vector<double>{3, 6, 9}));
  EXPECT_EQ(sum.Tab(), 1);

  const zrVector<double>& base = c;
  zrVector<double>* made = base.NewVector();
  EXPECT_EQ(made->IsColumn(), 1);
  zrUsingNew::Delete(made);
  EXPECT_EQ(zrVector<double>().IsColumn(), -1);
}

// Elements move inside an array by exchanging handles: a vector that views someone
// else's storage stays a view and that storage is not written.
TEST(OrientedVector, ArraysOfVectors) {
  zrVector<double> big = Of({1, 2, 3, 4});
  zrSimpleArray<zrColumnVector<double>> points(2);
  points[0].Set(big, 2, 2);
  points[1] = Of<zrColumnVector<double>>({7, 8});
  points.InverseOrder();
  EXPECT_EQ(Values(big), (std::vector<double>{1, 2, 3, 4}));
  points[1][0] = 30;
  EXPECT_EQ(big[2], 30);

  zrSimpleArray<zrColumnVector<double>> copy(points);  // copies values into new vectors
  copy[1][1] = 40;
  EXPECT_EQ(big[3], 4);
  zrSimpleArray<zrLineVector<double>> lines(1);
  lines.push_back(Of<zrLineVector<double>>({5}));
  EXPECT_EQ(lines[1][0], 5);
}
