/// \file
/// zrSimpleArray2D<T>: a rectangular array stored row by row in one zrSimpleArray<T>.
///
/// The element at line y, column x is storage element width * y + x, and the storage
/// length is width * height. The storage is the inherited one-dimensional array, with its
/// sharing rules (see simple_array.h): the copy constructor copies the elements,
/// operator= of equal totals writes in place, and a line from GetLine shares the block.
///
/// Only Set, Init and operator= keep the dimensions in step with the storage; the
/// inherited editing operations (ReSet, Insert, Remove, ...) are not virtual and cannot
/// be told about the dimensions, so they change the length alone and leave width and
/// height as they were. The dimensions then describe more (or less) than the storage
/// holds: GetLine checks every line against the storage as well as against the height
/// and refuses one that does not lie wholly in it; operator() is unchecked, as always,
/// and GetSize() is width * height, not Len().
///
/// A negative dimension is refused like a negative length ("zrNewWithRef : n <= 0 "), and
/// a total beyond the 32-bit length throws zrErrNoMemory with the byte count asked for;
/// either leaves the array as it was.
///
/// The library instantiates the template for the types of ZR_SIMPLE_ARRAY_2D_TYPES.
#pragma once

#include "zr/arrays/simple_array.h"
#include "zr/core/core.h"

/// A rectangular array of T, height lines of width elements stored line by line in one
/// zrSimpleArray (element (y, x) is storage element width * y + x).
/// Who shares the block: the storage's rules (simple_array.h): the copy constructor
/// copies, assignment of an equal total writes in place for every sharer, and a line from
/// GetLine is a window that shares the block (see simple_array_2d.h for the dimensions
/// after inherited edits). See the example docs/examples.md#guide_arrays for the sharing
/// rules of the arrays.
template <class T>
class ZR_API zrSimpleArray2D : public zrSimpleArray<T> {
  ZR_TYPE_IDENTITY
 public:
  /// Empty, width and height 0.
  zrSimpleArray2D() = default;
  /// height * width uninitialised elements; a total below 1 throws "zrNewWithRef : n <= 0 ".
  zrSimpleArray2D(int height, int width);
  /// The same, every element set to value.
  zrSimpleArray2D(int height, int width, const T& value);
  /// A deep copy of the storage and both dimensions.
  zrSimpleArray2D(const zrSimpleArray2D& other);
  /// The storage assignment of zrSimpleArray<T> (in place, reaching every sharer, when the
  /// totals are equal, even for another shape), then both dimensions.
  zrSimpleArray2D& operator=(const zrSimpleArray2D& other);
  ~zrSimpleArray2D() override;

  /// Takes the dimensions and releases the block; a total other than 0 gets a new block of
  /// uninitialised elements, 0 leaves the storage empty (Set(0, 5) keeps width 5).
  void Set(int height, int width);
  /// Takes the dimensions and a new block with every element set to value; a total below
  /// 1 throws "zrNewWithRef : n <= 0 ".
  void Set(int height, int width, const T& value);
  /// Nothing when both dimensions are the current ones (contents and sharing stay);
  /// otherwise Set(height, width), even for a reshape of the same total.
  void Init(int height, int width);

  /// The element at line y, column x; no range check.
  T& operator()(int y, int x) { return this->GetPointer()[width_ * y + x]; }
  const T& operator()(int y, int x) const { return this->GetPointer()[width_ * y + x]; }

  int GetWidth() const { return width_; }
  int GetLenX() const { return width_; }
  int GetHeight() const { return height_; }
  int GetLenY() const { return height_; }
  int GetSize() const { return width_ * height_; }

  /// Makes line view the width elements of line y and hold this array's block: writes
  /// through either reach the other, and the storage lives while the line does. y outside
  /// 0 ... height - 1, or a line that runs past the storage (after an edit through the
  /// base), throws "zrSimpleArray2D<T>::GetLine : out of range".
  void GetLine(zrSimpleArray<T>& line, int y) const;

 private:
  int width_ = 0;   // elements per line (X extent)
  int height_ = 0;  // number of lines (Y extent)
};

/// The element types the library instantiates the 2-D array for.
#define ZR_SIMPLE_ARRAY_2D_TYPES(X) X(double)

#define ZR_DETAIL_EXTERN_SIMPLE_ARRAY_2D(T) ZR_EXTERN_TEMPLATE(class, zrSimpleArray2D<T>);
ZR_SIMPLE_ARRAY_2D_TYPES(ZR_DETAIL_EXTERN_SIMPLE_ARRAY_2D)
