// The checked flat-form reader zrFromMem(buffer, size, object) for every serialisable
// type: a whole form reads as the unchecked reader reads it, anything short or lying is
// refused with one text and leaves the object alone, before any allocation.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

#include "support/test_support.h"
#include "zr/core/detail/fault_injection.h"
#include "zr/zr.h"

namespace {

using Bytes = std::vector<unsigned char>;

const char kRefused[] =
    "Invalid parameters : zrFromMem: the buffer does not hold a valid flat form";

template <class T>
Bytes Flat(const T& object) {
  Bytes out(static_cast<std::size_t>(zrMemSize(object)));
  EXPECT_EQ(zrToMem(out.data(), object), static_cast<int>(out.size()));
  return out;
}

// A form built from 32-bit counts followed by raw filler bytes.
Bytes Counts(std::initializer_list<std::int32_t> counts, std::size_t filler = 0) {
  Bytes out;
  for (std::int32_t c : counts) {
    unsigned char raw[4];
    std::memcpy(raw, &c, 4);
    out.insert(out.end(), raw, raw + 4);
  }
  out.resize(out.size() + filler, 0x5a);
  return out;
}

// Reads `form` through the checked reader into target; on refusal checks the text and
// that target kept its form, and returns -1.
template <class T>
int ReadChecked(const unsigned char* buffer, std::size_t size, T& target) {
  const Bytes was = Flat(target);
#if defined(ZR_FAULT_INJECTION)
  const long live = zr::testing::LiveAllocations();
#endif
  try {
    return zrFromMem(buffer, size, target);
  } catch (const BadParameters& e) {
    EXPECT_STREQ(e.GetMessageText(), kRefused);
  }
  EXPECT_EQ(Flat(target), was) << "a refused read changed the object";
#if defined(ZR_FAULT_INJECTION)
  EXPECT_EQ(zr::testing::LiveAllocations(), live) << "a refused read allocated";
#endif
  return -1;
}
template <class T>
int ReadChecked(const Bytes& form, T& target) {
  return ReadChecked(form.data(), form.size(), target);
}

// The whole form reads back as the unchecked reader reads it; every shorter prefix, in a
// buffer of exactly that size, is refused and leaves `before` as it was.
template <class T>
void CheckWholeAndCut(const T& sample, const T& before) {
  const Bytes form = Flat(sample);
  T checked;
  T unchecked;
  ASSERT_EQ(ReadChecked(form, checked), static_cast<int>(form.size()));
  ASSERT_EQ(zrFromMem(form.data(), unchecked), static_cast<int>(form.size()));
  EXPECT_EQ(Flat(checked), Flat(unchecked));
  EXPECT_EQ(Flat(checked), form);
  for (std::size_t len = 0; len < form.size(); ++len) {
    std::unique_ptr<unsigned char[]> cut(new unsigned char[len]);
    std::memcpy(cut.get(), form.data(), len);
    T target(before);
    EXPECT_EQ(ReadChecked(cut.get(), len, target), -1) << "prefix of " << len << " bytes";
  }
}

zrArray<int> Sizes(std::initializer_list<int> sizes) {
  zrArray<int> range(static_cast<int>(sizes.size()));
  int k = 0;
  for (int s : sizes) range[k++] = s;
  return range;
}

// Objects of a given shape with every element set, so that their flat forms compare.
template <class T>
T Filled(T object, typename T::value_type value = {}) {
  object.Fill(value);
  return object;
}
zrMatrix3Diag<double> Tridiagonal(int n) {
  zrMatrix3Diag<double> d(n);
  d.Up().Fill(0);
  d.Diag().Fill(0);
  d.Down().Fill(0);
  return d;
}

template <class T>
zrArray<T> Ramp(int n) {
  zrArray<T> a(n);
  for (int i = 0; i < n; ++i) a[i] = static_cast<T>(i * 3 + 1);
  return a;
}

template <class T>
zrVector<T> VectorOf(int n, const T& first) {
  zrVector<T> v(n);
  for (int i = 0; i < n; ++i) v[i] = first;
  return v;
}

}  // namespace

TEST(FlatChecked, ValuesAndTransformsReadWholeAndRefuseShortForms) {
  CheckWholeAndCut(1.5, -2.0);
  CheckWholeAndCut<std::int32_t>(-7, 3);
  CheckWholeAndCut<unsigned char>(200, 1);
  CheckWholeAndCut(zrComplex(1, -2), zrComplex(3, 4));
  CheckWholeAndCut(zrVec2(0.25, 8), zrVec2(-1, -1));
  CheckWholeAndCut(zrTVec3<double>(1, 2, 3), zrTVec3<double>(4, 5, 6));
  CheckWholeAndCut(zrMatrix2x2(1, 2, 3, 4), zrMatrix2x2(5, 6, 7, 8));
  zrTransformCoord2D t2;
  t2.AddShift(zrVec2(1, 2));
  CheckWholeAndCut(t2, zrTransformCoord2D());
  zrTransformCoord3D t3;
  t3.AddShift(zrTVec3<double>(1, 2, 3));
  CheckWholeAndCut(t3, zrTransformCoord3D());
}

TEST(FlatChecked, ArraysAndStringsReadWholeAndRefuseShortForms) {
  CheckWholeAndCut(Ramp<char>(5), Ramp<char>(2));
  CheckWholeAndCut(Ramp<short>(4), Ramp<short>(4));  // equal length: read in place
  CheckWholeAndCut(Ramp<double>(3), zrArray<double>());
  CheckWholeAndCut(zrArray<double>(), Ramp<double>(2));
  zrArray<zrComplex> c(2, zrComplex(1, 2));
  CheckWholeAndCut(c, zrArray<zrComplex>());
  CheckWholeAndCut(zrString("flat form"), zrString("kept"));
  zrCurve2D curve;
  curve.push_back(zrVec2(1, 2));
  CheckWholeAndCut(curve, zrCurve2D());
}

TEST(FlatChecked, VectorsAndMatricesReadWholeAndRefuseShortForms) {
  CheckWholeAndCut(VectorOf(3, 2.5), VectorOf(1, 9.0));
  CheckWholeAndCut(VectorOf(2, zrComplex(1, -1)), zrVector<zrComplex>());
  CheckWholeAndCut(VectorOf(2, zrTVec3<double>(1, 2, 3)), VectorOf(2, zrTVec3<double>(0, 0, 0)));
  zrColumnVector<double> column(2);
  column[0] = 1;
  column[1] = 2;
  CheckWholeAndCut(column, zrColumnVector<double>());
  zrPolynom<double> p(3);
  for (int i = 0; i < 3; ++i) p[i] = i;
  CheckWholeAndCut(p, zrPolynom<double>());

  zrMatrix<double> m(2, 3);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 3; ++j) m(i, j) = i * 10 + j;
  CheckWholeAndCut(m, Filled(zrMatrix<double>(1, 1)));
  CheckWholeAndCut(Filled(zrMatrix<zrComplex>(1, 2)), zrMatrix<zrComplex>());
  CheckWholeAndCut(zrMatrix<double>(), m);

  zrMatrix3Diag<double> d(3);
  for (int i = 0; i < 3; ++i) d.Diag()[i] = 4;
  for (int i = 0; i < 2; ++i) d.Up()[i] = d.Down()[i] = 1;
  CheckWholeAndCut(d, Tridiagonal(2));
  CheckWholeAndCut(Tridiagonal(1), zrMatrix3Diag<double>());
}

TEST(FlatChecked, NDArraysReadWholeAndRefuseShortForms) {
  zrArrayND<float> a(Sizes({2, 3}));
  a.Fill(1.5f);
  CheckWholeAndCut(a, Filled(zrArrayND<float>(Sizes({1}))));
  CheckWholeAndCut(zrArrayND<int>(Sizes({3, 0, 2})), Filled(zrArrayND<int>(Sizes({2}))));
  // Read through the base class: the typed array behind it gives the element size.
  zrArrayND<double> target = Filled(zrArrayND<double>(Sizes({4})));
  zrArrayNDAbs& base = target;
  const Bytes form = Flat(Filled(zrArrayND<double>(Sizes({2, 2}))));
  EXPECT_EQ(ReadChecked(form, base), static_cast<int>(form.size()));
  EXPECT_EQ(target.Range(), Sizes({2, 2}));
  EXPECT_EQ(ReadChecked(form.data(), form.size() - 1, base), -1);
}

TEST(FlatChecked, LyingCountsAreRefused) {
  zrArray<double> array = Ramp<double>(2);
  for (std::int32_t n : {-1, 3, 1 << 28, INT_MAX, INT_MIN}) {
    EXPECT_EQ(ReadChecked(Counts({n}, 16), array), -1) << n;
  }
  zrString text("x");
  EXPECT_EQ(ReadChecked(Counts({-5}), text), -1);

  zrVector<zrTVec3<double>> vector;
  EXPECT_EQ(ReadChecked(Counts({INT_MAX}, 48), vector), -1);
  // A length below 1 is the empty vector's form and stands alone.
  EXPECT_EQ(ReadChecked(Counts({-3}), vector), 4);

  zrMatrix<zrTVec3<double>> matrix = Filled(zrMatrix<zrTVec3<double>>(1, 1));
  for (auto sizes : {Counts({-1, 2}, 48), Counts({2, -1}, 48), Counts({1 << 16, 1 << 16}, 48),
                     Counts({INT_MAX, INT_MAX}, 48), Counts({2, 2}, 95)}) {
    EXPECT_EQ(ReadChecked(sizes, matrix), -1);
  }
  // A zero size needs no elements, whatever the other size.
  EXPECT_EQ(ReadChecked(Counts({0, INT_MAX}), matrix), 8);

  zrMatrix3Diag<double> tri = Tridiagonal(2);
  for (auto lengths : {Counts({1, 3, 1}, 40), Counts({0, 2, 1}, 24), Counts({2, 2, 2}, 48),
                       Counts({INT_MAX, 1, 0})}) {
    EXPECT_EQ(ReadChecked(lengths, tri), -1);
  }
  // Up of length -1 (read as 0), Diag of one element (two zero words), Down of 0.
  EXPECT_EQ(ReadChecked(Counts({-1, 1, 0, 0, 0}), tri), 20);

  zrArrayND<unsigned short> nd = Filled(zrArrayND<unsigned short>(Sizes({2})));
  for (auto sizes : {Counts({-1}), Counts({INT_MAX, 1}), Counts({1, -2}),
                     Counts({2, 1 << 16, 1 << 16}), Counts({3, INT_MAX, INT_MAX, INT_MAX}, 8),
                     // the product passes INT_MAX before the zero that would end it
                     Counts({3, 1 << 16, 1 << 16, 0}), Counts({2, 3, 4}, 23),
                     // no sizes cannot empty an array that has dimensions
                     Counts({0})}) {
    EXPECT_EQ(ReadChecked(sizes, nd), -1);
  }
  zrArrayND<unsigned short> empty;
  EXPECT_EQ(ReadChecked(Counts({0}), empty), 4);
}

TEST(FlatChecked, AFormOverTwoGigabytesIsRefusedWithoutReadingIt) {
  // Only the counts are read; the claimed size is never touched.
  const Bytes head = Counts({300 * 1000 * 1000});
  const std::size_t claimed = std::size_t{3} << 30;
  zrArray<double> array;
  EXPECT_EQ(ReadChecked(head.data(), claimed, array), -1);
  const Bytes rows = Counts({20000, 20000});
  zrMatrix<double> matrix;
  EXPECT_EQ(ReadChecked(rows.data(), claimed, matrix), -1);
}

TEST(FlatChecked, FormsReadBackToBackStopAtTheirOwnEnd) {
  Bytes stream = Flat(zrString("ab"));
  const Bytes second = Flat(zrComplex(1, 2));
  stream.insert(stream.end(), second.begin(), second.end());
  zrString s;
  zrComplex c;
  const int first = ReadChecked(stream, s);
  ASSERT_EQ(first, 6);
  EXPECT_EQ(ReadChecked(stream.data() + first, stream.size() - first, c), 16);
  EXPECT_EQ(c, zrComplex(1, 2));
}
