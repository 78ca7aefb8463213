/// \file
/// zrSimpleArray<T>: the contiguous one-dimensional array.
///
/// A length and an origin over a reference-counted block that the array may share with
/// others, or over memory it does not own (then it holds no block). Indices run from 0 to
/// Len() - 1; the extent below the origin is always 0. There is no arithmetic here:
/// zrArray<T> adds it, with the flat form.
///
/// Who shares and who copies:
///   - the copy constructor, Copy(), ReSet() and every editing operation that changes the
///     length leave the array with a private block of its own;
///   - windows (SetSubWindow, Left, Right, Mid), Move and swap share or hand over the block
///     and copy no element;
///   - operator= with an array of equal length, Fill, InverseOrder, the cycle shifts and
///     writes through operator[] work in place, so every sharer of the block sees them.
/// There is no copy-on-write beyond that: Remove detaches a shared array before it edits,
/// the others do not.
///
/// A source that shares storage with the target (a window assigned to an overlapping
/// window of the same block) gives what it would give if it were read whole before the
/// first write: the copy runs back to front when the target starts inside the source,
/// front to back otherwise, so it costs nothing extra and still writes in place.
///
/// Growth is exact: each length change makes a block of exactly the new length, as its
/// header counts it. A sole owner of trivially copyable elements whose origin starts its
/// block and whose length spans it has the block resized where it lies instead; then the
/// allocation underneath may be larger than the block (with the C library that can tell its
/// size, growth past the allocation asks for half as much again, and a shrink that keeps at
/// least half of it keeps it), so a run of push_backs costs amortised constant time and,
/// while there is room, no call into the library at all. A length that grows past INT_MAX
/// (Insert, push_back, Concat, Replace, Fusion) is an allocation that cannot be made: it
/// throws zrErrNoMemory with the byte count of that block, and the array is left as it was.
///
/// Elements of class type are default-constructed with their block and destroyed with it;
/// they are copied with their own assignment. Elements of trivial types are left
/// uninitialised where the operation says so.
///
/// The library instantiates the template for the types of ZR_SIMPLE_ARRAY_TYPES (the
/// arrays of library classes are added by those classes' own subsystems); a
/// program may instantiate it for a type of its own by including
/// zr/arrays/simple_array_impl.h.
#pragma once

#include "zr/arrays/parray.h"
#include "zr/core/core.h"
#include "zr/values/values.h"

/// The contiguous one-dimensional array of T: a length and an origin over a
/// reference-counted block, with editing (insert, remove, concatenate, reverse, cycle)
/// but no arithmetic (zrArray adds it).
/// Who shares the block: windows (Left, Right, Mid, SetSubWindow), Move and swap share or
/// hand it over; the copy constructor, Copy(), ReSet() and every edit that changes the
/// length give this array a private block; assignment of an equal length, Fill and writes
/// through operator[] work in place and reach every sharer (the full rules are in
/// simple_array.h). See the example docs/examples.md#guide_arrays and
/// examples/zr_interp.cpp.
template <class T>
class ZR_API zrSimpleArray : public zrPArray {
  ZR_TYPE_IDENTITY
 public:
  using value_type = T;
  using iterator = T*;
  using const_iterator = const T*;
  using size_type = int;
  /// Orders two elements: -1, 0 or 1.
  using CompareFunction = int (*)(const T&, const T&);

  /// Empty: no block, origin null, length 0.
  zrSimpleArray() = default;
  /// n uninitialised elements in a new block. n < 1 throws "zrNewWithRef : n <= 0 "
  /// (an empty array is made by the default constructor).
  explicit zrSimpleArray(int n);
  zrSimpleArray(int n, const T& value);
  /// A deep copy: a new block with the source's elements (empty for an empty source).
  zrSimpleArray(const zrSimpleArray& other);
  /// Takes the source's block, origin and length over; the source is left empty.
  zrSimpleArray(zrSimpleArray&& other) noexcept;
  /// An empty source empties the array. A source of another length gives the array a new
  /// block of that length; one of equal length is copied into the current elements in
  /// place, even when they are shared or not owned: every sharer sees the new values. A
  /// source overlapping this array is taken as it stood before the assignment.
  /// (A temporary is assigned the same way: there is no moving assignment.)
  zrSimpleArray& operator=(const zrSimpleArray& other);
  ~zrSimpleArray() override;

  /// Takes over other's origin, length and block; other is left empty. No element moves.
  void Move(zrSimpleArray& other);
  void swap(zrSimpleArray& other);

  int Len() const { return n_; }
  int Range() const { return n_; }
  int size() const { return n_; }
  bool empty() const { return n_ == 0; }

  /// Releases the block; n != 0 makes a new one of n uninitialised elements (n < 0
  /// throws), n == 0 leaves the array empty.
  void Set(int n);
  /// Releases the block and makes a new one of n elements set to value (n < 1 throws).
  void Set(int n, const T& value);
  /// Set(n) unless the length is n already; then contents and sharing stay.
  void Init(int n);
  /// Changes the length keeping the leading elements; the new ones are uninitialised
  /// (default-constructed for class types). The array ends as sole owner of a block of
  /// exactly n elements; arrays that shared its old block keep it. Equal n does nothing,
  /// even for a shared array; n == 0 empties; n < 0 throws "zrNewWithRef : n <= 0 ".
  void ReSet(int n);
  void resize(int n) { ReSet(n); }
  /// Release the block: origin null, length 0.
  void Clear();
  void RemoveAll() { Clear(); }
  void clear() { Clear(); }
  /// Releases the block and views n elements at p without owning them.
  void SetDirectly(T* p, int n);
  /// Views n elements at p and holds holder's block (counted; none when holder has none),
  /// releasing its own: the view keeps that block alive and shares its elements. The n
  /// elements must lie in holder's block, else (or for n < 0)
  /// "zrSimpleArray<T>::SetDirectly : out of range." and nothing changes; a holder without
  /// a block checks nothing.
  void SetDirectly(T* p, int n, const zrPArray& holder);
  /// Moves the origin only.
  void SetPointer(T* p) {
    p_ = p;
    room_ = 0;
  }
  /// A shared or externally viewed array takes a private copy of its elements.
  void Copy() override;

  /// Element access; no range checks.
  T& operator[](int i) { return p_[i]; }
  const T& operator[](int i) const { return p_[i]; }
  T* GetPointer() const { return p_; }
  T* begin() const { return p_; }
  T* end() const { return p_ + n_; }
  T& front() const { return p_[0]; }
  T& back() const { return p_[n_ - 1]; }
  T& X() const { return p_[0]; }
  T& Y() const { return p_[1]; }
  T& Last() const { return p_[n_ - 1]; }
  void Fill(const T& value);

  /// Windows: the result views part of the source and holds the source's block (none when
  /// the source has none); nothing is copied.
  /// SetSubWindow needs 0 <= start, 0 <= count, start + count <= source length, else
  /// "zrSimpleArray<T>::Set : out of range.".
  void SetSubWindow(const zrSimpleArray& source, int start, int count);
  /// The first n elements, 1 <= n <= length, else "zrSimpleArray<T>::Left: Out of Range".
  zrSimpleArray Left(int n) const;
  /// The last n elements, 1 <= n <= length, else "zrSimpleArray<T>::Right: Out of Range".
  zrSimpleArray Right(int n) const;
  /// count elements from start: start >= 0, count >= 1, start + count <= length, else
  /// "zrSimpleArray<T>::Mid: Out of Range".
  zrSimpleArray Mid(int start, int count) const;

  /// Editing. Each length change reallocates exactly (see ReSet).
  /// Inserts value at pos (unchecked: 0 <= pos <= length) and returns pos.
  int Insert(T value, int pos);
  void push_front(const T& value) { Insert(value, 0); }
  void pop_front() { Remove(0); }
  /// The iterator forms of Insert and Remove; they return the position of the inserted
  /// element, respectively of the one after the removed one, in the new storage.
  T* insert(T* where, const T& value);
  T* erase(T* where);
  /// Removes element i (0 <= i < length, else "Out of range"). A shared array detaches
  /// first, so its sharers keep their elements.
  void Remove(int i);
  /// Drops the last element; an empty array stays empty.
  void RemoveLast();
  void pop_back() { RemoveLast(); }
  /// Appends value (which may be an element of this array).
  void push_back(const T& value) {
    if constexpr (std::is_trivially_copyable_v<T>) {
      // A known room means the origin starts this array's block; it grows where it lies
      // while the array is its only holder and spans it.
      if (n_ < room_ && zr::detail::BlockHeader(p_)[0] == 1 && zr::detail::BlockMark(p_) == -n_) {
        zr::detail::BlockHeader(p_)[1] = -(n_ + 1);
        zr::detail::MarkUsable(p_ + n_, p_ + n_ + 1, true);
        p_[n_] = value;
        ++n_;
        return;
      }
    }
    Append(value);
  }
  void Concat(T value) { push_back(value); }
  /// Appends other's elements (other may be this array).
  void Concat(const zrSimpleArray& other);
  /// Replaces count elements from start by other's elements; the length becomes
  /// length - count + other's length. Needs 0 <= start, 0 <= count and start + count <=
  /// length, else "zrSimpleArray<T>::Replace: Out of Range". With an unchanged length the
  /// elements are written in place (sharers see them).
  void Replace(int start, int count, const zrSimpleArray& other);
  /// Rotations in place: r = k % length (the sign of k); r > 0 moves the first r elements
  /// to the end (left) or the last r to the front (right); r <= 0 does nothing. An empty
  /// array throws "Out of range".
  void CycleLeftShift(int k);
  void CycleRightShift(int k);
  /// Reverses the elements in place.
  void InverseOrder();

  /// Sorted contents. mode selects which result of cmp(element, value) means that the
  /// element lies after the value: 1 with mode != 0 (ascending order), -1 with mode == 0.
  ///
  /// Binary search for an element that compares 0 with value; -1 when there is none.
  int FindB(const T& value, CompareFunction cmp, int mode) const;
  /// Whether two sorted arrays have an element in common.
  static bool IsIntersectB(const zrSimpleArray& a, const zrSimpleArray& b, CompareFunction cmp,
                           int mode);
  /// The array becomes the common elements of a and b; true when there is at least one.
  /// Kept as the library has always done it: when fewer elements match than the shorter
  /// input has, the array is made anew with the matched count, so only its length is
  /// meaningful (its elements are uninitialised); a full match keeps the elements.
  bool IntersectB(const zrSimpleArray& a, const zrSimpleArray& b, CompareFunction cmp, int mode);
  /// The array becomes the sorted merge of a and b. Elements comparing 0 are taken once
  /// from a, and once more from b when keepEqual is true. When one input runs out the
  /// rest of a, then the rest of b, is appended, and the array is trimmed to the merged
  /// count. Returns true when a and b had an element in common (as IsIntersectB).
  /// Two empty inputs give an empty array.
  bool Fusion(const zrSimpleArray& a, const zrSimpleArray& b, CompareFunction cmp, bool keepEqual,
              int mode);

  void* Pointer() const override { return p_; }
  int PositiveLength() const override { return n_; }
  int NegativeLength() const override { return 0; }
  int GetSizeOfType() const override { return static_cast<int>(sizeof(T)); }

 protected:
  // Holds another block: the current one is released (freed when this was its last
  // holder) and the new one counted. The same block again changes nothing.
  void SetMem(void* const block) override;
  // length <- n and a new block of n elements (n < 1 throws) as origin and block. The
  // old block is not released here.
  virtual void New(int n);
  // Releases the block and forgets it; origin and length stay.
  void Free();

 private:
  // Makes a new block of n elements, copies the first `keep` elements from the current
  // origin and switches to it; the current block is released.
  void Reallocate(int n, int keep);
  // push_back without room in the allocation.
  void Append(const T& value);

  T* p_ = nullptr;  // element 0; null for an empty array
  int n_ = 0;       // number of elements
  // The elements the allocation behind the block can hold, once learnt by a resize where
  // the block lies; 0 when not known. Not 0 only while p_ starts the block this array
  // holds: every switch of the block or of the origin forgets it.
  int room_ = 0;
};

/// The element types the library instantiates the array for.
#define ZR_SIMPLE_ARRAY_SCALAR_TYPES(X) \
  X(char)                               \
  X(unsigned char)                      \
  X(short)                              \
  X(unsigned short)                     \
  X(int)                                \
  X(float)                              \
  X(double)

#define ZR_SIMPLE_ARRAY_VALUE_TYPES(X) \
  X(zrComplex)                         \
  X(zrVec2)
#define ZR_SIMPLE_ARRAY_TYPES(X) ZR_SIMPLE_ARRAY_SCALAR_TYPES(X) ZR_SIMPLE_ARRAY_VALUE_TYPES(X)

#define ZR_DETAIL_EXTERN_SIMPLE_ARRAY(T) ZR_EXTERN_TEMPLATE(class, zrSimpleArray<T>);
ZR_SIMPLE_ARRAY_TYPES(ZR_DETAIL_EXTERN_SIMPLE_ARRAY)
