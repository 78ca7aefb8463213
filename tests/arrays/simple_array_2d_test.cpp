// zrSimpleArray2D<T>: row-major storage over the simple array, lines that share it, and
// shapes checked against the storage the base may have edited.
#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using Grid = zrSimpleArray2D<double>;

const std::string kLine = "Invalid parameters : zrSimpleArray2D<T>::GetLine : out of range";

}  // namespace

TEST(SimpleArray2D, RowMajorStorageAndShapes) {
  Grid g(2, 3, 0.0);
  g(1, 2) = 7;
  EXPECT_EQ(g[5], 7);
  EXPECT_EQ(g.GetHeight() * 10 + g.GetWidth(), 23);

  const std::string count = "Invalid parameters : zrNewWithRef : n <= 0 ";
  EXPECT_EQ(BadParametersText([] { Grid(0, 3); }), count);
  EXPECT_EQ(BadParametersText([&] { g.Set(0, 5, 1.0); }), count);
  EXPECT_EQ(BadParametersText([&] { g.Set(-1, 5); }), count);
  EXPECT_THROW(g.Set(1 << 16, 1 << 16), zrErrNoMemory);  // 2^32 elements: no 32-bit length
  EXPECT_EQ(g[5], 7);                                    // a refused Set leaves the array as it was

  g.Set(0, 5);
  EXPECT_EQ(g.Len() * 100 + g.GetHeight() * 10 + g.GetWidth(), 5);
  g.Set(2, 2, 4.0);
  EXPECT_EQ(g(1, 1), 4);
  EXPECT_EQ(g.GetSize(), 4);
}

TEST(SimpleArray2D, LinesShareTheStorage) {
  zrSimpleArray<double> line(4, 9.0);  // its own block goes when the line is taken
  {
    Grid g(2, 3, 0.0);
    g(1, 0) = 5;
    g.GetLine(line, 1);
    EXPECT_TRUE(line.Len() == 3 && line.GetPointer() == &g(1, 0) && g.GetNumOfRef() == 1);
    line[2] = 8;
    EXPECT_EQ(g(1, 2), 8);
    for (int y : {2, -1}) EXPECT_EQ(BadParametersText([&] { g.GetLine(line, y); }), kLine);
  }
  // The storage lives on with the line.
  EXPECT_TRUE(line[0] == 5 && line[2] == 8 && line.GetNumOfRef() == 0);
}

TEST(SimpleArray2D, CopiesAssignmentAndInit) {
  Grid g(2, 3, 1.0);
  zrSimpleArray<double> line;
  g.GetLine(line, 0);
  Grid copy(g);
  copy(0, 0) = 2;
  EXPECT_EQ(line[0], 1);  // the copy has its own storage
  EXPECT_EQ(copy.GetWidth(), 3);

  // Equal totals: written in place (the line sees it), the shape is taken over.
  g = Grid(3, 2, 6.0);
  EXPECT_EQ(line[1], 6);
  EXPECT_EQ(g.GetHeight() * 10 + g.GetWidth(), 32);
  g.Init(3, 2);  // same shape: nothing happens
  EXPECT_EQ(g.GetNumOfRef(), 1);
  g.Init(2, 3);  // a reshape reallocates although the total is the same
  EXPECT_EQ(g.GetNumOfRef(), 0);
}

TEST(SimpleArray2D, LinesAreCheckedAgainstStorageEditedThroughTheBase) {
  // The base's edits change the length alone; a line past the storage is refused.
  Grid g(2, 3, 1.0);
  zrSimpleArray<double>& base = g;
  base.RemoveLast();
  EXPECT_EQ(g.GetHeight() * 10 + g.GetWidth(), 23);
  zrSimpleArray<double> line;
  EXPECT_EQ(BadParametersText([&] { g.GetLine(line, 1); }), kLine);
  EXPECT_EQ(line.Len(), 0);
  g.GetLine(line, 0);  // the first line still lies wholly in the storage
  EXPECT_EQ(line.Len(), 3);
  base.push_back(4.0);  // storage of six again: the second line is whole
  g.GetLine(line, 1);
  EXPECT_EQ(line[2], 4);
}
