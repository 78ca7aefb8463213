// Appending to a sole owner grows its block where it lies; every other array gets a new
// block. Who sees a write afterwards is the same either way.
#include <gtest/gtest.h>

#include <vector>

#include "zr/arrays/arrays.h"

namespace {

using D = zrSimpleArray<double>;

int Count(const D& a) { return zr::detail::BlockCount(a.GetMem()); }

std::vector<double> Values(const D& a) { return std::vector<double>(a.begin(), a.end()); }

TEST(SimpleArrayGrowth, SoleOwnerAppendsKeepTheBlockExact) {
  D a;
  std::vector<double> want;
  for (int i = 0; i < 5000; ++i) {
    a.push_back(i * 0.5);
    want.push_back(i * 0.5);
    ASSERT_EQ(Count(a), a.Len());
    ASSERT_EQ(a.GetPointer(), a.GetMem());
    ASSERT_EQ(a.GetNumOfRef(), 0);
  }
  EXPECT_EQ(Values(a), want);
  a.push_back(a[3]);  // an element of the array itself
  a.Concat(a);        // the array itself
  want.push_back(1.5);
  want.insert(want.end(), want.begin(), want.end());
  EXPECT_EQ(Values(a), want);
  EXPECT_EQ(Count(a), a.Len());
  a.RemoveLast();
  a.ReSet(3);
  EXPECT_EQ(Values(a), (std::vector<double>{0, 0.5, 1}));
  EXPECT_EQ(Count(a), 3);
}

TEST(SimpleArrayGrowth, SharersKeepTheOldBlockAndStopSeeingWrites) {
  D a(4, 1.0);
  D whole;
  whole.SetSubWindow(a, 0, 4);  // the whole block, from its start
  const D left = a.Left(2);
  a.push_back(2.0);
  a[0] = 9;
  EXPECT_EQ(Values(whole), (std::vector<double>{1, 1, 1, 1}));
  EXPECT_EQ(left[0], 1.0);
  whole[1] = 7;
  EXPECT_EQ(a[1], 1.0);
  EXPECT_EQ(left[1], 7.0);  // the window still shares the old block
  EXPECT_EQ(a.GetNumOfRef(), 0);
  EXPECT_EQ(whole.GetNumOfRef(), 1);

  // A window that starts at the block's start but is shorter than the block, and one
  // that starts inside it: both leave with a block of their own.
  D head = a.Left(2);
  head.push_back(5.0);
  D tail = a.Right(2);
  tail.Concat(a.Left(1));
  a[0] = 3;
  EXPECT_EQ(Values(head), (std::vector<double>{9, 1, 5}));
  EXPECT_EQ(Values(tail), (std::vector<double>{1, 2, 9}));
  EXPECT_EQ(Values(a), (std::vector<double>{3, 1, 1, 1, 2}));
  EXPECT_EQ(a.GetNumOfRef(), 0);

  // Memory the array does not own is copied from and left alone.
  double outside[3] = {4, 5, 6};
  D view;
  view.SetDirectly(outside, 3);
  view.push_back(7);
  view[0] = 0;
  EXPECT_EQ(outside[0], 4.0);
  EXPECT_EQ(Values(view), (std::vector<double>{0, 5, 6, 7}));
  EXPECT_EQ(Count(view), 4);
}

}  // namespace
