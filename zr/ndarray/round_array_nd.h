/// \file
/// zrRoundArrayND: a multi-index cursor over the geometry of an N-dimensional array.
///
/// Its elements are the coordinates, one per dimension; beside them it keeps Pos, the
/// element offset of those coordinates under the strides (sum of coordinate[k] *
/// stride[k] while the cursor is kept in step). It refers to the sizes and strides it runs
/// over without owning them: the geometry must outlive the cursor, and a change of it
/// invalidates the cursor.
///
/// Stepping forward runs through every position in storage order (dimension 0 fastest)
/// and wraps round to the first one after the last. Stepping back is deliberately not the
/// mirror image: a borrow leaves the lower dimensions at their size, one past their last
/// index, and only a further step back in such a dimension brings it into range. Reading
/// an array through a cursor in such a state reads outside the array.
///
/// SetPos adds the offset of the given coordinates to Pos instead of assigning it: it
/// gives the matching offset only on a cursor whose Pos is 0 (fresh or after ToBegin).
/// That rule is kept on purpose.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/ndarray/array_nd_abs.h"

/// A multi-index cursor over the geometry of an N-dimensional array: its elements are the
/// coordinates, one per dimension, and Pos is their element offset under the strides;
/// stepping forward runs through every position in storage order and wraps round.
/// Who shares: the coordinates are a zrArray<int> of its own (the copy constructor copies
/// them); the sizes and strides it runs over are referred to, not owned or counted, so the
/// geometry must outlive the cursor (see round_array_nd.h). See the example
/// examples/ndarray_views.cpp for the geometry a cursor walks.
class ZR_API zrRoundArrayND : public zrArray<int> {
  ZR_TYPE_IDENTITY
 public:
  /// All coordinates 0, Pos 0, over the array's Range() and Tab().
  explicit zrRoundArrayND(const zrArrayNDAbs& array);
  /// The same over explicit sizes and strides (one coordinate per size). Sizes and
  /// strides whose sum of |size * stride| passes INT32_MAX (a position the cursor could
  /// reach, past the end included, would not fit Pos), or fewer strides than sizes,
  /// throw "zrRoundArrayND : Out of range.".
  zrRoundArrayND(const zrArray<int>& range, const zrArray<int>& tab);
  /// Copies the coordinates, the references and Pos.
  zrRoundArrayND(const zrRoundArrayND& other);
  zrRoundArrayND& operator=(const zrRoundArrayND& other);
  ~zrRoundArrayND() override;

  /// Pos 0, every coordinate 0.
  void ToBegin();
  /// Coordinates = the sizes, Pos = sum of size[k] * stride[k]: past the end in every
  /// dimension.
  void ToEnd();
  /// Copies the coordinates (each must lie in 0 ... size - 1, else "zrRoundArrayND : Out
  /// of range.", and the cursor is left as it was) and adds their offset to Pos (a sum
  /// outside the 32-bit range is refused the same way).
  void SetPos(zrArray<int>& coords);
  int GetPos() const { return pos_; }

  /// One position on in storage order: 1 while the cursor stays on a position, 0 when it
  /// wrapped back to the first position (all coordinates 0, Pos 0).
  int operator++();
  /// One position back: the first coordinate above 0 is lowered (result 1); each one at 0
  /// before it is set to its size, Pos following. From the first position the result is
  /// 0 and the cursor is in the ToEnd state.
  int operator--();

 private:
  const zrArray<int>* range_;  // sizes of the geometry, not owned
  const zrArray<int>* tab_;    // strides of the geometry, not owned
  int pos_ = 0;                // element offset of the coordinates
};
