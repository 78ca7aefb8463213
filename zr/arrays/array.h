/// \file
/// zrArray<T>: the arithmetic one-dimensional array.
///
/// A zrSimpleArray<T> with arithmetic and ordering on its elements: element-wise operators
/// with another array or a scalar, whole-array comparisons, reductions, searches, and the
/// flat form. It adds no fields: construction, sharing, windows and editing are those of
/// zrSimpleArray<T> (see simple_array.h), with windows typed as zrArray<T>.
///
/// Who shares and who copies, beyond zrSimpleArray<T>:
///   - the compound operators (+=, -=, *=, /=) and Median work in place, so every sharer
///     of the block sees them;
///   - the binary operators, Max/Min of two arrays and GetNoPositive/GetNoNegative return
///     a new array with a block of its own;
///   - FromMem of the current length writes into the current elements in place, even when
///     they are shared or not owned; another length gives the array a new block.
///
/// Element arithmetic is the element type's own: integer division and overflow as the type
/// gives them, a zero divisor unchecked, and for the value types their own operators (the
/// compound operators apply the element's compound operator, so for zrComplex *= adds, as
/// zrComplex::operator*= does; the binary * multiplies). Sums and products run in index
/// order from element 0, each step rounded: the bodies are compiled in the library, where
/// contraction into fused multiply-adds is off.
///
/// Comparisons return int 1 or 0 and hold when they hold for every element, so an empty
/// array satisfies all of them at once. Arrays of different lengths are unequal (== gives
/// 0) but cannot be ordered (<, >, <=, >= throw "Different range").
///
/// Errors (BadParameters): "Different range" for an array operand of another length,
/// "Array length is zero." for a reduction of an empty array, "Lenght of array is equl
/// zero." for Median of an empty one.
///
/// Flat form: the length as a signed 32-bit little-endian integer, then the elements in
/// index order, each in its native representation: 4 + Len() * sizeof(T) bytes. The byte
/// counts are 32-bit ints, so a form of 2 GiB or more cannot be described. The checked
/// reader zrFromMem(buffer, size, array) (zr/core/serialize.h) refuses a negative length
/// and a length whose elements do not fit in size; it serves the classes that keep this
/// form (zrString, the curves and contours, zrRoundArrayND) as well.
///
/// The library instantiates the template for the types of ZR_ARRAY_TYPES; a program
/// may instantiate it for a type of its own by including zr/arrays/array_impl.h.
#pragma once

#include <utility>

#include "zr/arrays/simple_array.h"
#include "zr/core/core.h"

/// The arithmetic one-dimensional array of T: a zrSimpleArray with element-wise operators,
/// comparisons, reductions, searches and the flat form.
/// Who shares the block: as zrSimpleArray (windows share, the copy constructor copies);
/// the compound operators work in place and reach every sharer, while the binary
/// operators return arrays with blocks of their own (see array.h). See the example
/// docs/examples.md#guide_arrays and examples/persistence.cpp.
template <class T>
class ZR_API zrArray : public zrSimpleArray<T> {
  ZR_TYPE_IDENTITY
 public:
  /// Empty: no block, origin null, length 0.
  zrArray() = default;
  /// n uninitialised elements in a new block; n < 1 throws "zrNewWithRef : n <= 0 ".
  explicit zrArray(int n) : zrSimpleArray<T>(n) {}
  zrArray(int n, const T& value) : zrSimpleArray<T>(n, value) {}
  /// A deep copy: a new block with the source's elements (empty for an empty source).
  zrArray(const zrArray& other) : zrSimpleArray<T>(other) {}
  /// Takes the source's block, origin and length over; the source is left empty. This is
  /// how the windows come back without a copy.
  zrArray(zrArray&& other) noexcept : zrSimpleArray<T>(std::move(other)) {}
  /// The assignment of zrSimpleArray<T>: a source of equal length is copied into the
  /// current elements in place (every sharer sees it); another length makes a new block;
  /// an empty source empties the array. There is no moving assignment.
  zrArray& operator=(const zrArray& other) {
    zrSimpleArray<T>::operator=(other);
    return *this;
  }
  ~zrArray() override;

  /// Windows, sharing the source's block (see zrSimpleArray<T>), with the same range
  /// rules and texts.
  zrArray Left(int n) const;
  zrArray Right(int n) const;
  zrArray Mid(int start, int count) const;

  /// In place, element i op= other's element i; lengths must be equal ("Different range").
  /// other may overlap this array (a.Mid(1, 3) += a.Left(3)): it is read as it stood
  /// before, as in the assignment.
  zrArray& operator+=(const zrArray& other);
  zrArray& operator-=(const zrArray& other);
  zrArray& operator*=(const zrArray& other);
  zrArray& operator/=(const zrArray& other);
  /// In place, element i op= value. value may be an element of this array: it is read once
  /// before the loop.
  zrArray& operator+=(const T& value);
  zrArray& operator-=(const T& value);
  zrArray& operator*=(const T& value);
  zrArray& operator/=(const T& value);

  /// A new array of this array's length, element i = element i op the operand's element i
  /// (lengths must be equal, "Different range") or op the scalar.
  zrArray operator+(const zrArray& other) const;
  zrArray operator-(const zrArray& other) const;
  zrArray operator*(const zrArray& other) const;
  zrArray operator/(const zrArray& other) const;
  zrArray operator+(const T& value) const;
  zrArray operator-(const T& value) const;
  zrArray operator*(const T& value) const;
  zrArray operator/(const T& value) const;

  /// A new array of the element-wise larger (smaller) elements; lengths must be equal
  /// ("Different range"). This array's element is taken only when it is strictly larger
  /// (smaller), otherwise other's.
  zrArray Max(const zrArray& other) const;
  zrArray Min(const zrArray& other) const;
  /// A copy with every element above T{} (zero) replaced by zero, respectively every
  /// element below zero.
  zrArray GetNoPositive() const;
  zrArray GetNoNegative() const;

  /// 1 when the lengths are equal and every pair of elements is equal, else 0 (a NaN
  /// element makes two arrays unequal). Different lengths give 0 without an exception.
  int operator==(const zrArray& other) const;
  int operator!=(const zrArray& other) const;
  /// 1 when the relation holds for every pair of elements; lengths must be equal
  /// ("Different range").
  int operator<(const zrArray& other) const;
  int operator>(const zrArray& other) const;
  int operator<=(const zrArray& other) const;
  int operator>=(const zrArray& other) const;
  /// 1 when the relation holds between every element and value.
  int operator==(const T& value) const;
  int operator!=(const T& value) const;
  int operator<(const T& value) const;
  int operator>(const T& value) const;
  int operator<=(const T& value) const;
  int operator>=(const T& value) const;

  /// Reductions; an empty array throws "Array length is zero.".
  /// Element 0, then + element 1, + element 2, ... in index order.
  T Sum() const;
  /// Element 0, then * element 1, * element 2, ... in index order.
  T Mul() const;
  /// element 0 * other's 0, then + element i * other's i in index order. Lengths must be
  /// equal ("Different range", checked first).
  T ScalarMul(const zrArray& other) const;
  /// The index of the first largest (smallest) element: a later element replaces the
  /// candidate only when it is strictly larger (smaller).
  int MaxIndex() const;
  int MinIndex() const;
  /// The element at MaxIndex(), respectively MinIndex().
  T Max() const;
  T Min() const;
  /// Reorders the array in place by a quickselect so that element (n - 1) / 2 has no
  /// larger element before it and no smaller one after it, and returns that element: the
  /// lower median for an even length. Other sharers of the block see the new order. An
  /// empty array throws "Lenght of array is equl zero.".
  T Median();

  /// The first index whose element equals value; -1 when there is none.
  int Find(const T& value) const;
  /// Binary search by equality over sorted contents; -1 when not found. mode != 0: the
  /// array ascends (an element greater than value lies after it); mode == 0: it descends.
  using zrSimpleArray<T>::FindB;
  int FindB(const T& value, int mode) const;
  /// Binary search as FindB. Found: found = 1 and the index is returned. Not found (and for
  /// an empty array): found = 0, value is inserted where it keeps the order, and its index
  /// is returned; the array then has a new private block (see zrSimpleArray<T>::Insert).
  int InsertIfNotExistB(const T& value, int& found, int mode);

  /// The flat form (see the top of this file).
  /// 4 + Len() * sizeof(T).
  int MemSize() const override;
  /// Writes the form and returns its size.
  int ToMem(unsigned char* buffer) const override;
  /// Reads n, then n elements, and returns 4 + n * sizeof(T). An equal length is written
  /// in place. Another length takes a new block (n > 0) or empties the array (n == 0)
  /// and releases the old block; a negative n throws "zrNewWithRef : n <= 0 " and
  /// leaves the array as it was.
  int FromMem(const unsigned char* buffer) override;

 private:
  // A window of zrSimpleArray<T> handed over into a zrArray<T> without a copy.
  static zrArray FromWindow(zrSimpleArray<T>&& window);
  // A new array of this array's length with element i = f(element i, other's element i);
  // lengths must be equal ("Different range").
  template <class F>
  zrArray Combine(const zrArray& other, F f) const;
  // The same with element i = f(element i).
  template <class F>
  zrArray Map(F f) const;
  // The first index that no later element beats: better(candidate, best).
  template <class F>
  int BestIndex(F better) const;
};

/// The library instantiates the arithmetic array for the element types of the simple
/// array (the scalars, zrComplex and zrVec2).
#define ZR_ARRAY_TYPES(X) ZR_SIMPLE_ARRAY_TYPES(X)

#define ZR_DETAIL_EXTERN_ARRAY(T) ZR_EXTERN_TEMPLATE(class, zrArray<T>);
ZR_ARRAY_TYPES(ZR_DETAIL_EXTERN_ARRAY)

namespace zr::detail {
// The walk of the checked reader (zr/core/serialize.h): a length of 0 or more and that
// many elements. It serves every class whose form is the array's (strings, curves).
template <class T>
bool FlatWalk(FlatCursor& cursor, const zrArray<T>&) {
  std::int32_t n = 0;
  return cursor.ReadCount(n) && n >= 0 &&
         cursor.SkipItems(static_cast<std::uint64_t>(n), sizeof(T));
}
}  // namespace zr::detail
