// The checked flat-form reader zrFromMem(buffer, size, object): a whole form reads as the
// unchecked reader reads it, anything short or lying is refused with one text and leaves
// the object alone, before any allocation. One sample per walk with counts: the scalars
// and fixed-size values only skip their size, and strings, curves and polynomials walk as
// their base does.
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
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

// Reads through the checked reader into target; on refusal checks the text, that target
// kept its form and that nothing was allocated, and returns -1.
// size, if given, is claimed in place of the form's own.
template <class T>
int ReadChecked(const Bytes& form, T&& target, std::size_t size = 0) {
  const Bytes was = Flat(target);
#if defined(ZR_FAULT_INJECTION)
  const long live = zr::testing::LiveAllocations();
#endif
  try {
    return zrFromMem(form.data(), size ? size : form.size(), target);
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

// The whole form reads back; every shorter prefix, in a buffer of exactly that size (a
// read past it shows under the asan preset), is refused and leaves `before` as it was.
template <class T>
void CheckWholeAndCut(const T& sample, const T& before) {
  const Bytes form = Flat(sample);
  T checked;
  ASSERT_EQ(ReadChecked(form, checked), static_cast<int>(form.size()));
  EXPECT_EQ(Flat(checked), form);
  for (std::size_t len = 0; len < form.size(); ++len) {
    const Bytes cut(form.begin(), form.begin() + static_cast<std::ptrdiff_t>(len));
    T target(before);
    EXPECT_EQ(ReadChecked(cut, target), -1) << "prefix of " << len << " bytes";
  }
}

template <class T, class... V>
T Filled(T object, V... value) {
  object.Fill({value...});
  return object;
}
zrArray<int> Sizes(std::initializer_list<int> sizes) { return Of<zrArray<int>>(sizes); }

// Every form is refused into target.
template <class T>
void Refused(T target, std::initializer_list<Bytes> forms) {
  for (const Bytes& form : forms) EXPECT_EQ(ReadChecked(form, target), -1);
}

}  // namespace

TEST(FlatChecked, EveryWalkReadsWholeFormsAndRefusesShortOnes) {
  CheckWholeAndCut(Of<zrArray<double>>({1, 4, 7}), Of<zrArray<double>>({2, 3}));
  CheckWholeAndCut(zrArray<double>(), Of<zrArray<double>>({1, 4}));
  CheckWholeAndCut(Of<zrVector<V3>>({V3(1, 2, 3)}), Filled(zrVector<V3>(2)));

  const zrMatrix<double> m = Filled(zrMatrix<double>(2, 3), 2.5);
  CheckWholeAndCut(m, Filled(zrMatrix<double>(1, 1)));
  CheckWholeAndCut(zrMatrix<double>(), m);
  M3 d = Filled(M3(3), 1.0);
  d.Diag().Fill(4);
  CheckWholeAndCut(d, Filled(M3(2)));
  CheckWholeAndCut(Filled(M3(1)), M3());

  CheckWholeAndCut(Filled(zrArrayND<float>(Sizes({2, 3})), 1.5f),
                   Filled(zrArrayND<float>(Sizes({1}))));
  CheckWholeAndCut(zrArrayND<int>(Sizes({3, 0, 2})), Filled(zrArrayND<int>(Sizes({2}))));
}

TEST(FlatChecked, LyingCountsAreRefused) {
  Refused(Of<zrArray<double>>({1, 4}), {Counts({-1}, 16), Counts({3}, 16), Counts({1 << 28}, 16)});
  Refused(Filled(zrMatrix<V3>(1, 1)), {Counts({-1, 2}, 48), Counts({2, -1}, 48),
                                       Counts({1 << 16, 1 << 16}, 48), Counts({2, 2}, 95)});
  Refused(Filled(M3(2)), {Counts({1, 3, 1}, 40), Counts({0, 2, 1}, 24), Counts({2, 2, 2}, 48),
                          Counts({INT_MAX, 1, 0})});
  Refused(Filled(zrArrayND<unsigned short>(Sizes({2}))),
          {Counts({-1}), Counts({INT_MAX, 1}), Counts({1, -2}), Counts({2, 1 << 16, 1 << 16}),
           // the product passes INT_MAX before the zero that would end it
           Counts({3, 1 << 16, 1 << 16, 0}), Counts({2, 3, 4}, 23),
           // no sizes cannot empty an array that has dimensions
           Counts({0})});

  // Counts that look odd but make whole forms, read up to their own end of a longer
  // buffer: a vector length below 1 is the empty vector's form; a zero matrix size needs
  // no elements, whatever the other size; a band with Up of length -1 (read as 0), Diag
  // of one element (two zero words), Down of 0; no sizes for an array without dimensions.
  EXPECT_EQ(std::vector<int>({ReadChecked(Counts({-3}, 8), zrVector<V3>()),
                              ReadChecked(Counts({0, INT_MAX}, 8), zrMatrix<V3>()),
                              ReadChecked(Counts({-1, 1, 0, 0, 0}, 8), M3()),
                              ReadChecked(Counts({0}, 8), zrArrayND<unsigned short>())}),
            std::vector<int>({4, 8, 20, 4}));

  // A form over two gigabytes: only the counts are read, the claimed size is never touched.
  EXPECT_EQ(ReadChecked(Counts({300 * 1000 * 1000}), zrArray<double>(), std::size_t{3} << 30), -1);
}
