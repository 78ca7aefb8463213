// Edits that would grow a length past INT_MAX: the sum is taken in 64 bits and the
// block it asks for is refused as an allocation that cannot be made, before anything is
// read, allocated or changed. The long operands are views of a few real elements (a
// step of 0 for the vector), so nothing large is ever allocated.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

constexpr std::uint64_t kOnePast = std::uint64_t{INT_MAX} + 1;

template <class F>
std::string NoMemory(F&& f) {
  try {
    f();
  } catch (const zrErrNoMemory& e) {
    return e.GetMessageText();
  }
  ADD_FAILURE() << "zrErrNoMemory was not thrown";
  return {};
}

}  // namespace

TEST(LengthLimit, ArrayGrowthPastIntMaxIsRefusedUnchanged) {
  double cell[2] = {1, 2};
  zrSimpleArray<double> huge;
  huge.SetDirectly(cell, INT_MAX);
  const zrSimpleArray<double> one(1, 5.0);
  const std::string text = zr_test::NoMemoryText(kOnePast * sizeof(double) + 8);

  EXPECT_EQ(NoMemory([&] { huge.push_back(3.0); }), text);
  EXPECT_EQ(NoMemory([&] { huge.Insert(3.0, 0); }), text);
  EXPECT_EQ(NoMemory([&] { huge.Concat(one); }), text);
  EXPECT_EQ(NoMemory([&] { huge.Replace(0, 0, one); }), text);
  EXPECT_EQ(huge.Len(), INT_MAX);
  EXPECT_EQ(huge.GetPointer(), cell);

  zrSimpleArray<double> half;
  half.SetDirectly(cell, INT_MAX / 2 + 1);
  zrSimpleArray<double> merged;
  const auto cmp = [](const double& a, const double& b) { return a < b ? -1 : a > b ? 1 : 0; };
  EXPECT_EQ(NoMemory([&] { merged.Fusion(half, half, cmp, true, 0); }), text);
  EXPECT_EQ(merged.Len(), 0);
}

TEST(LengthLimit, VectorGrowthPastIntMaxIsRefusedUnchanged) {
  zrTVec3<double> cell(1, 2, 3);
  zrVector<zrTVec3<double>> huge;
  huge.SetDirectly(&cell, INT_MAX, 0);
  zrVector<zrTVec3<double>> one(1);
  one[0] = cell;
  const std::string text = zr_test::NoMemoryText(kOnePast * sizeof(cell) + 8);

  EXPECT_EQ(NoMemory([&] { huge.push_back(cell); }), text);
  EXPECT_EQ(NoMemory([&] { huge.Concat(one); }), text);
  EXPECT_EQ(NoMemory([&] { huge.Insert(cell, 0); }), text);
  EXPECT_EQ(huge.Len(), INT_MAX);
}

TEST(LengthLimit, StringUnionAndTerminatorPastIntMaxAreRefused) {
  static char text[] = "ab";           // writable: a char* view, not a copy
  const zrString huge(text, INT_MAX);  // a view: nothing is read beyond what is used
  const zrString one(text, 1);
  EXPECT_EQ(NoMemory([&] { (void)huge.GetUnion(one); }), zr_test::NoMemoryText(kOnePast + 8));
  EXPECT_EQ(NoMemory([&] { (void)(huge + huge); }),
            zr_test::NoMemoryText(2 * std::uint64_t{INT_MAX} + 8));
  zrString s(text, INT_MAX);
  EXPECT_EQ(NoMemory([&] { s.GetCString(); }), zr_test::NoMemoryText(kOnePast + 8));
  EXPECT_EQ(s.GetPointer(), text);
}

TEST(LengthLimit, NeighbourTablesPastIntMaxAreRefusedBeforeTheyOverflow) {
  // The product of the apertures once wrapped to a small table that was then overrun.
  zrArray<int> tab(2);
  tab[0] = 1;
  tab[1] = 65536;
  zrArray<int> aperture(2);
  aperture[0] = 65536;
  aperture[1] = 65537;
  zrArray<int> out(3, 7);
  EXPECT_EQ(NoMemory([&] { zrArrayNDAbs::MkTabForAp(tab, aperture, out); }),
            zr_test::NoMemoryText(65536ull * 65537 * sizeof(int) + 8));
  EXPECT_EQ(out.Len(), 3);
  aperture[1] = 0;  // an empty aperture still empties the table, whatever the others
  zrArrayNDAbs::MkTabForAp(tab, aperture, out);
  EXPECT_EQ(out.Len(), 0);

  // 3^21 entries for 21 dimensions: refused at 3^20, the first power past INT_MAX.
  const zrArray<int> ones(21, 1);
  std::uint64_t power = 1;
  for (int k = 0; k < 20; ++k) power *= 3;
  EXPECT_EQ(NoMemory([&] { zrArrayNDAbs::Rcurs2(ones, out); }),
            zr_test::NoMemoryText(power * sizeof(int) + 8));
}

TEST(LengthLimit, VectorViewsBeyondThirtyTwoBitExtentsAreRefused) {
  // Offsets and extents are taken in 64 bits: a window whose start times the source's
  // step, length times step or their sum leaves the 32-bit range is refused, unchanged.
  double cell[4] = {1, 2, 3, 4};
  const int big = 1 << 30;
  const std::string set = "Invalid parameters : zrVector<T>::Set : out of range.";
  const std::string direct = "Invalid parameters : zrVector<T>::SetDirectly : out of range.";
  zrVector<double> v, w;
  v.SetDirectly(cell, 4, 1);
  EXPECT_EQ(zr_test::BadParametersText([&] { w.Set(v, 0, 3, big); }), set);
  EXPECT_EQ(zr_test::BadParametersText([&] { w.Set(v, 3, 4, INT_MIN / 2); }), set);
  EXPECT_EQ(zr_test::BadParametersText([&] { w.Set(v, 0, -1, 1); }), set);
  EXPECT_EQ(zr_test::BadParametersText([&] { w.SetDirectly(cell, 2, big); }), direct);
  EXPECT_EQ(zr_test::BadParametersText([&] { w.SetDirectly(cell, -1, 1); }), direct);
  EXPECT_EQ(zr_test::BadParametersText([&] { w.SetDirectly(cell, 3, INT_MIN / 2, v); }), direct);

  zrVector<double> far;
  far.SetDirectly(cell, 1, big);  // one element with a step of 2^30
  EXPECT_EQ(zr_test::BadParametersText([&] { w.Set(far, 2, 1, 0); }), set);  // offset 2^31
  // An offset of 2^30 and an extent of 2^30 add up to 2^31.
  EXPECT_EQ(zr_test::BadParametersText([&] { w.Set(far, 1, 1, big); }), set);
  EXPECT_EQ(w.GetPointer(), nullptr);
  EXPECT_EQ(w.Len(), 0);

  // Windows within 32 bits, however far their steps reach, are made; Left, Right and Mid
  // of such a window cannot leave the range.
  zrVector<double> wide, out;
  wide.SetDirectly(cell, 2, big / 2);
  EXPECT_EQ(wide.PositiveLength(), big);
  wide.Right(out, 1);
  EXPECT_EQ(out.PositiveLength(), big / 2);
  wide.Mid(out, 0, 2);
  EXPECT_EQ(out[0], 1);
  w.Set(v, 3, 4, -(big / 2));
  EXPECT_EQ(w.NegativeLength(), -3 * (big / 2));
}

TEST(LengthLimit, NDViewsOfMoreThanIntMaxElementsAreRefused) {
  // 65536 x 65537 indices over 65537 elements: the count once wrapped to 65536 and the
  // walks then ran 2^32 elements through buffers of that size.
  zrArrayND<unsigned char> block(zrArray<int>(1, 65537));
  zrArray<int> sizes(2);
  sizes[0] = 65536;
  sizes[1] = 65537;
  zrArray<int> strides(2);
  strides[0] = 0;
  strides[1] = 1;
  zrArrayND<unsigned char> view;
  EXPECT_EQ(zr_test::BadParametersText([&] { view.Set(block, 0, sizes, strides); }),
            "Invalid parameters : zrArrayNDAbs : Sizes beyond 32 bits.");
  EXPECT_TRUE(view.empty());
  sizes[0] = 32768;  // 2^31 - 32768 indices: still a count
  sizes[1] = 65535;
  view.Set(block, 0, sizes, strides);
  EXPECT_EQ(view.GetSize(), 32768 * 65535);
}

TEST(LengthLimit, SplineRecordsPastIntMaxAreRefusedBeforeTheyAreRead) {
  // Six numbers a point: 357 913 942 points once wrapped the record count to a small one.
  zrColumnVector<double> point(2);
  zrSimpleArray<zrColumnVector<double>> points;
  const int n = INT_MAX / 6 + 1;
  points.SetDirectly(&point, n);  // a view: nothing past the first point is read
  zrSpline<double> spline;
  EXPECT_EQ(NoMemory([&] { spline.Set(points); }),
            zr_test::NoMemoryText(std::uint64_t{n} * 6 * sizeof(double)));
}
