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

#include "support/array_builders.h"
#include "support/test_support.h"
#include "zr/core/detail/fault_injection.h"
#include "zr/zr.h"

namespace {

using zr_test::Of;
using Bytes = std::vector<unsigned char>;
using V3 = zrTVec3<double>;
using M3 = zrMatrix3Diag<double>;

template <class T>
Bytes Flat(const T& object) {
  Bytes out(static_cast<std::size_t>(zrMemSize(object)));
  EXPECT_EQ(zrToMem(out.data(), object), static_cast<int>(out.size()));
  return out;
}

// A form built from 32-bit counts followed by raw filler bytes.
Bytes Counts(std::initializer_list<std::int32_t> counts, std::size_t filler = 0) {
  Bytes out(counts.size() * 4 + filler, 0x5a);
  std::memcpy(out.data(), counts.begin(), counts.size() * 4);
  return out;
}

// Reads through the checked reader into target; on refusal checks the text and that
// target kept its form, and returns -1.
template <class T>
int ReadChecked(const unsigned char* buffer, std::size_t size, T& target) {
  const Bytes was = Flat(target);
#if defined(ZR_FAULT_INJECTION)
  const long live = zr::testing::LiveAllocations();
#endif
  try {
    return zrFromMem(buffer, size, target);
  } catch (const BadParameters& e) {
    EXPECT_STREQ(e.GetMessageText(),
                 "Invalid parameters : zrFromMem: the buffer does not hold a valid flat form");
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
  T checked, unchecked;
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

// Objects of a given shape with every element set, so that their flat forms compare.
template <class T>
T Filled(T object, typename T::value_type value = {}) {
  object.Fill(value);
  return object;
}
zrArray<int> Sizes(std::initializer_list<int> sizes) { return Of<zrArray<int>>(sizes); }
M3 Band(int n, double v = 0) {
  M3 d(n);
  for (auto* part : {&d.Up(), &d.Diag(), &d.Down()}) part->Fill(v);
  return d;
}

// Every form is refused into target.
template <class T>
void Refused(T target, std::initializer_list<Bytes> forms) {
  for (const Bytes& form : forms) EXPECT_EQ(ReadChecked(form, target), -1);
}

}  // namespace

TEST(FlatChecked, EveryTypeReadsWholeAndRefusesShortForms) {
  CheckWholeAndCut(1.5, -2.0);
  CheckWholeAndCut<std::int32_t>(-7, 3);
  CheckWholeAndCut<unsigned char>(200, 1);
  CheckWholeAndCut(zrComplex(1, -2), zrComplex(3, 4));
  CheckWholeAndCut(zrVec2(0.25, 8), zrVec2(-1, -1));
  CheckWholeAndCut(V3(1, 2, 3), V3(4, 5, 6));
  CheckWholeAndCut(zrMatrix2x2(1, 2, 3, 4), zrMatrix2x2(5, 6, 7, 8));
  zrTransformCoord2D t2;
  t2.AddShift(zrVec2(1, 2));
  CheckWholeAndCut(t2, zrTransformCoord2D());
  zrTransformCoord3D t3;
  t3.AddShift(V3(1, 2, 3));
  CheckWholeAndCut(t3, zrTransformCoord3D());

  CheckWholeAndCut(Of<zrArray<char>>({1, 4, 7, 10, 13}), Of<zrArray<char>>({1, 4}));
  CheckWholeAndCut(Of<zrArray<short>>({1, 4, 7, 10}),
                   Of<zrArray<short>>({2, 3, 4, 5}));  // in place
  CheckWholeAndCut(Of<zrArray<double>>({1, 4, 7}), zrArray<double>());
  CheckWholeAndCut(zrArray<double>(), Of<zrArray<double>>({1, 4}));
  CheckWholeAndCut(zrArray<zrComplex>(2, zrComplex(1, 2)), zrArray<zrComplex>());
  CheckWholeAndCut(zrString("flat form"), zrString("kept"));
  CheckWholeAndCut(Of<zrCurve2D>({zrVec2(1, 2)}), zrCurve2D());

  CheckWholeAndCut(Of<zrVector<double>>({2.5, 2.5, 2.5}), Of<zrVector<double>>({9.0}));
  CheckWholeAndCut(Filled(zrVector<zrComplex>(2), zrComplex(1, -1)), zrVector<zrComplex>());
  CheckWholeAndCut(Of<zrVector<V3>>({V3(1, 2, 3), V3(1, 2, 3)}), Filled(zrVector<V3>(2)));
  CheckWholeAndCut(Of<zrColumnVector<double>>({1, 2}), zrColumnVector<double>());
  zrPolynom<double> p(3);
  for (int i = 0; i < 3; ++i) p[i] = i;
  CheckWholeAndCut(p, zrPolynom<double>());

  zrMatrix<double> m(2, 3);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 3; ++j) m(i, j) = i * 10 + j;
  CheckWholeAndCut(m, Filled(zrMatrix<double>(1, 1)));
  CheckWholeAndCut(Filled(zrMatrix<zrComplex>(1, 2)), zrMatrix<zrComplex>());
  CheckWholeAndCut(zrMatrix<double>(), m);
  M3 d = Band(3, 1);
  d.Diag().Fill(4);
  CheckWholeAndCut(d, Band(2));
  CheckWholeAndCut(Band(1), M3());

  CheckWholeAndCut(Filled(zrArrayND<float>(Sizes({2, 3})), 1.5f),
                   Filled(zrArrayND<float>(Sizes({1}))));
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
  Refused(Of<zrArray<double>>({1, 4}), {Counts({-1}, 16), Counts({3}, 16), Counts({1 << 28}, 16),
                                        Counts({INT_MAX}, 16), Counts({INT_MIN}, 16)});
  Refused(zrString("x"), {Counts({-5})});
  Refused(zrVector<V3>(), {Counts({INT_MAX}, 48)});
  Refused(Filled(zrMatrix<V3>(1, 1)),
          {Counts({-1, 2}, 48), Counts({2, -1}, 48), Counts({1 << 16, 1 << 16}, 48),
           Counts({INT_MAX, INT_MAX}, 48), Counts({2, 2}, 95)});
  Refused(Band(2), {Counts({1, 3, 1}, 40), Counts({0, 2, 1}, 24), Counts({2, 2, 2}, 48),
                    Counts({INT_MAX, 1, 0})});
  Refused(Filled(zrArrayND<unsigned short>(Sizes({2}))),
          {Counts({-1}), Counts({INT_MAX, 1}), Counts({1, -2}), Counts({2, 1 << 16, 1 << 16}),
           Counts({3, INT_MAX, INT_MAX, INT_MAX}, 8),
           // the product passes INT_MAX before the zero that would end it
           Counts({3, 1 << 16, 1 << 16, 0}), Counts({2, 3, 4}, 23),
           // no sizes cannot empty an array that has dimensions
           Counts({0})});

  // Counts that look odd but make whole forms: a vector length below 1 is the empty
  // vector's form; a zero matrix size needs no elements, whatever the other size; a band
  // with Up of length -1 (read as 0), Diag of one element (two zero words), Down of 0; no
  // sizes for an array without dimensions.
  zrVector<V3> vector;
  EXPECT_EQ(ReadChecked(Counts({-3}), vector), 4);
  zrMatrix<V3> matrix;
  EXPECT_EQ(ReadChecked(Counts({0, INT_MAX}), matrix), 8);
  M3 band;
  EXPECT_EQ(ReadChecked(Counts({-1, 1, 0, 0, 0}), band), 20);
  zrArrayND<unsigned short> nd;
  EXPECT_EQ(ReadChecked(Counts({0}), nd), 4);

  // A form over two gigabytes: only the counts are read, the claimed size is never touched.
  const std::size_t claimed = std::size_t{3} << 30;
  zrArray<double> array;
  zrMatrix<double> rows;
  EXPECT_EQ(ReadChecked(Counts({300 * 1000 * 1000}).data(), claimed, array), -1);
  EXPECT_EQ(ReadChecked(Counts({20000, 20000}).data(), claimed, rows), -1);
}

TEST(FlatChecked, FormsReadBackToBackStopAtTheirOwnEnd) {
  Bytes stream = Flat(zrString("ab"));
  const Bytes second = Flat(zrComplex(1, 2));
  stream.insert(stream.end(), second.begin(), second.end());
  zrString s;
  zrComplex c;
  ASSERT_EQ(ReadChecked(stream, s), 6);
  EXPECT_EQ(ReadChecked(stream.data() + 6, stream.size() - 6, c), 16);
  EXPECT_EQ(c, zrComplex(1, 2));
}
