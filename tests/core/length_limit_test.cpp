// Edits that would grow a length past INT_MAX: the sum is taken in 64 bits and the
// block it asks for is refused as an allocation that cannot be made, before anything is
// read, allocated or changed. The long operands are views of a few real elements (a
// step of 0 for the vector), so nothing large is ever allocated.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;

constexpr std::uint64_t kOnePast = std::uint64_t{INT_MAX} + 1;

// The size of the allocation that f is refused (the text is the same for every size).
std::uint64_t NoMemory(const std::function<void()>& f) {
  try {
    f();
  } catch (const zrErrNoMemory& e) {
    return e.GetSize();
  }
  ADD_FAILURE() << "zrErrNoMemory was not thrown";
  return 0;
}

}  // namespace

TEST(LengthLimit, GrowthPastIntMaxIsRefusedUnchanged) {
  double cell[2] = {1, 2};
  zrSimpleArray<double> huge, half, merged;
  huge.SetDirectly(cell, INT_MAX);
  half.SetDirectly(cell, INT_MAX / 2 + 1);
  const zrSimpleArray<double> one(1, 5.0);
  const auto cmp = [](const double& a, const double& b) { return a < b ? -1 : a > b ? 1 : 0; };
  for (const auto& edit : std::vector<std::function<void()>>{
           [&] { huge.push_back(3.0); }, [&] { huge.Insert(3.0, 0); }, [&] { huge.Concat(one); },
           [&] { huge.Replace(0, 0, one); }, [&] { merged.Fusion(half, half, cmp, true, 0); }})
    EXPECT_EQ(NoMemory(edit), kOnePast * sizeof(double) + 8);

  zrTVec3<double> point(1, 2, 3);
  zrVector<zrTVec3<double>> line, single(1);
  line.SetDirectly(&point, INT_MAX, 0);
  for (const auto& edit : std::vector<std::function<void()>>{[&] { line.push_back(point); },
                                                             [&] { line.Concat(single); },
                                                             [&] { line.Insert(point, 0); }})
    EXPECT_EQ(NoMemory(edit), kOnePast * sizeof(point) + 8);

  static char text[] = "ab";  // writable: a char* view, not a copy
  zrString long_text(text, INT_MAX);
  const zrString a(text, 1);
  EXPECT_EQ(NoMemory([&] { (void)long_text.GetUnion(a); }), kOnePast + 8);
  EXPECT_EQ(NoMemory([&] { long_text.GetCString(); }), kOnePast + 8);

  // Six numbers a point: 357 913 942 points once wrapped the record count to a small one.
  zrColumnVector<double> knot(2);
  zrSimpleArray<zrColumnVector<double>> knots;
  knots.SetDirectly(&knot, INT_MAX / 6 + 1);  // a view: nothing past the first point is read
  zrSpline<double> spline;
  EXPECT_EQ(NoMemory([&] { spline.Set(knots); }),
            std::uint64_t{INT_MAX / 6 + 1} * 6 * sizeof(double));
}

TEST(LengthLimit, NeighbourTablesPastIntMaxAreRefusedBeforeTheyOverflow) {
  // The product of the apertures once wrapped to a small table that was then overrun.
  zrArray<int> tab(2, 1), aperture(2, 65536), out(3, 7);
  tab[1] = 65536;
  aperture[1] = 65537;
  EXPECT_EQ(NoMemory([&] { zrArrayNDAbs::MkTabForAp(tab, aperture, out); }),
            65536ull * 65537 * sizeof(int) + 8);
  aperture[1] = 0;  // an empty aperture still empties the table, whatever the others
  zrArrayNDAbs::MkTabForAp(tab, aperture, out);
  EXPECT_EQ(out.Len(), 0);

  // 3^21 entries for 21 dimensions: refused at 3^20, the first power past INT_MAX.
  EXPECT_EQ(NoMemory([&] { zrArrayNDAbs::Rcurs2(zrArray<int>(21, 1), out); }),
            3486784401ull * sizeof(int) + 8);
}

TEST(LengthLimit, ViewsBeyondThirtyTwoBitExtentsAreRefused) {
  // Offsets and extents are taken in 64 bits: a window whose start times the source's
  // step, length times step or their sum leaves the 32-bit range is refused, unchanged.
  double cell[4] = {1, 2, 3, 4};
  const int big = 1 << 30;
  zrVector<double> v, far, w;
  v.SetDirectly(cell, 4, 1);
  far.SetDirectly(cell, 1, big);  // one element with a step of 2^30
  // Source, offset, length, step; an offset of 2^30 and an extent of 2^30 add up to 2^31.
  const std::vector<std::tuple<const zrVector<double>*, int, int, int>> windows = {
      {&v, 0, 3, big}, {&v, 3, 4, INT_MIN / 2}, {&v, 0, -1, 1}, {&far, 2, 1, 0}, {&far, 1, 1, big}};
  for (const auto& [src, offset, len, step] : windows)
    EXPECT_EQ(BadParametersText([&] { w.Set(*src, offset, len, step); }),
              "Invalid parameters : zrVector<T>::Set : out of range.");
  for (const auto& [len, step] : {std::pair(2, big), std::pair(-1, 1)})
    EXPECT_EQ(BadParametersText([&] { w.SetDirectly(cell, len, step); }),
              "Invalid parameters : zrVector<T>::SetDirectly : out of range.");
  EXPECT_EQ(BadParametersText([&] { w.SetDirectly(cell, 3, INT_MIN / 2, v); }),
            "Invalid parameters : zrVector<T>::SetDirectly : out of range.");
  EXPECT_TRUE(w.GetPointer() == nullptr && w.Len() == 0);
}
