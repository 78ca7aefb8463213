/// \file
/// zrArrayNDAbs: the geometry of an N-dimensional block, without an element type.
///
/// Range[k] is the number of elements along dimension k (dimension 0 varies fastest) and
/// Tab[k] the signed stride of dimension k in elements: the element with multi-index
/// (i0, ..., i(n-1)) lies sum(ik * Tab[k]) elements from the element at (0, ..., 0).
/// Indices always start at 0; a stride may be negative (a flipped axis), and the block
/// then reaches below the origin element.
///
/// Derived quantities, recomputed by MakeAux whenever Range or Tab changes:
///   ForTab   the carry increments: ForTab[0] = Tab[0]; for k >= 1, the offset that takes
///            a walk from one step past the end of a line along dimension 0 (dimensions
///            1 ... k-1 at their last index) to the start of the next line, with one
///            more in dimension k. Dense strides give zeros from ForTab[1] on.
///   EndPos   one step along dimension 0 past the last element in storage order.
///   Size     the number of elements (the product of Range).
///   Con      true when every ForTab[k], k >= 1, is zero: the elements then lie at equal
///            steps of Tab[0] and a single flat loop reaches them all.
/// Typed loops walk a line with a constant step and join lines by one addition of a
/// carry: no element address is ever computed by multiplication.
///
/// The block's extents around the origin: PositiveLength() = 1 + sum of the positive
/// (Range[k] - 1) * Tab[k], NegativeLength() = sum of the negative ones (zero or below,
/// without the +1: the origin element counts on the positive side). A geometry without
/// elements (a size of 0) reaches nothing: both are 0.
///
/// Every geometry is checked before it is taken, in 64 bits, and refused with
/// BadParameters, the object left as it was:
///   - a negative size: "zrArrayNDAbs : Negative size.";
///   - sizes whose product passes INT32_MAX: "zrArrayNDAbs : Sizes beyond 32 bits."
///     (dense strides, MkTabFromRange, refuse a running product past it the same way);
///   - elements more than INT32_MAX elements apart, or an EndPos or carry increment
///     outside the 32-bit range: "CheckPointer : Invalid pointer or range." (no block
///     holds such an array);
///   - an array with a block whose new extents leave the block: the same text.
/// A stride of 0 is allowed: the elements along that axis are one and the same, and the
/// walks still visit every multi-index once (GetSize() of them).
///
/// Flat form: the sizes only, as a zrArray<int> (a 4-byte count, then the sizes); strides
/// are never written. FromMem reads the sizes and calls Init, so a strided or flipped
/// array reads back dense. The checked reader zrFromMem(buffer, size, array)
/// (zr/core/serialize.h) walks the form of the typed array behind it, the sizes and
/// then Size elements of GetSizeOfType() bytes, and refuses what Init would refuse: a
/// negative size, a running product of the sizes above INT_MAX, and an empty list of
/// sizes read into an array that has dimensions.
///
/// Strides passed explicitly must have as many entries as the sizes ("Different
/// dimension" otherwise). The mask hooks (GetCurMask and the two after it) select every
/// element here.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"

/// The geometry of an N-dimensional array without an element type: the size and the
/// signed stride of every dimension (dimension 0 varies fastest), the derived carries and
/// extents, and the checks every geometry passes before it is taken (see array_nd_abs.h).
/// It holds the element block as a zrPArray; zrArrayND<T> says which of its operations
/// share the block. See the example examples/ndarray_views.cpp, which reads Range() and
/// Tab() of flipped and swapped views.
class ZR_API zrArrayNDAbs : public zrPArray {
  ZR_TYPE_IDENTITY
 public:
  /// A multi-index: one counter per dimension, stepped a line at a time.
  ///
  /// Besides the counters an Index holds a counted share of the sizes array of the array
  /// it was set from (the sizes its walk reads), so those sizes stay allocated as long
  /// as the index lives. Changing the array's geometry still invalidates the walk.
  /// The iterators of zrArrayND are built on it: see the example
  /// docs/examples.md#guide_ndarray, a range-for over an array.
  class ZR_API Index : public zrArray<int> {
    ZR_TYPE_IDENTITY
   public:
    Index() = default;
    /// Copies the counters and shares the same sizes.
    Index(const Index& other);
    Index& operator=(const Index& other);
    ~Index() override;

   protected:
    // atEnd: the counters become Range - 1 (the last element); otherwise one zero
    // counter per dimension.
    void Set(const zrArrayNDAbs* array, bool atEnd);
    // Advance by one whole line along dimension 0: counter[0] = 0 and the carry runs up
    // from dimension 1. Returns the dimension the carry stopped in (the ForTab index of
    // the matching pointer step), or 0 when every counter wrapped (the walk is over and
    // the counters are all zero again) or there is only one dimension.
    int Inc(const int* range);
    // The mirror: counter[0] = range[0] - 1 and a borrow runs up from dimension 1; 0 when
    // every counter wrapped round to its last index.
    int Dec(const int* range);
    // The sizes shared at Set, or null before it.
    const int* SharedRange() const { return sizes_.GetPointer(); }

   private:
    zrArray<int> sizes_;  // a window on the array's sizes block (counted)
  };

  /// No dimensions.
  zrArrayNDAbs() = default;
  /// Dense strides for the sizes; an empty list throws
  /// "zrArrayNDAbs:MkTabFromRange:Array length is zero.".
  explicit zrArrayNDAbs(const zrArray<int>& range);
  zrArrayNDAbs(const zrArray<int>& range, const zrArray<int>& tab);
  /// Copy the geometry only (each array gets arrays of its own); the block and the
  /// object count are the derived class's and the copy's own.
  zrArrayNDAbs(const zrArrayNDAbs& other);
  zrArrayNDAbs& operator=(const zrArrayNDAbs& other);
  ~zrArrayNDAbs() override;

  int PositiveLength() const override;
  int NegativeLength() const override;
  /// The flat form of the sizes (see the top of this file).
  int MemSize() const override;
  int ToMem(unsigned char* buffer) const override;
  int FromMem(const unsigned char* buffer) override;

  /// The operations this class adds, in this order.
  /// Dense strides for the sizes.
  virtual void Set(const zrArray<int>& range);
  /// The typed array makes storage for the sizes.
  virtual void Init(const zrArray<int>& range) = 0;
  /// A new empty object of the same class, owned by the caller; null here.
  virtual zrArrayNDAbs* New() const;
  virtual int IsArrayND() const;
  virtual bool IsInheritFromPictureND() const;
  virtual int IsSegm() const;
  virtual void* GetSegm() const;
  /// Mask hooks: every element is selected (mask -1, every test true).
  virtual int GetCurMask() const;
  virtual void SetCurMask(int mask);
  virtual bool IsEqualCurMask(const void* element, int mask) const;
  /// Reverse axis a; exchange axes a and b (the typed array makes them views).
  virtual void Flip(int a) = 0;
  virtual void SwapAxis(int a, int b) = 0;

  /// Both arrays as passed (any signed strides), checked as above; on an array with a
  /// block the new extents must lie inside it.
  void Set(const zrArray<int>& range, const zrArray<int>& tab);

  const zrArray<int>& Range() const { return range_; }
  const zrArray<int>& Tab() const { return tab_; }
  const zrArray<int>& GetForTab() const { return for_tab_; }
  int GetDim() const { return range_.Len(); }
  int GetSize() const { return size_; }
  int GetEndPos() const { return end_pos_; }
  bool IsCon() const { return con_; }

  /// Bracket a direct change of the geometry by a derived class. ModifyRange does
  /// nothing; AfterModifyRange recomputes the derived quantities.
  void ModifyRange() {}
  void AfterModifyRange() { MakeAux(); }

  /// Dense strides: first, then each the previous times the previous size; a stride
  /// past the 32-bit range throws "zrArrayNDAbs : Sizes beyond 32 bits.".
  static zrArray<int> MkTabFromRange(const zrArray<int>& range, int first);
  /// The carry increments for the sizes and strides, formed in 64 bits; one outside the
  /// 32-bit range throws "zrArrayNDAbs : Offsets beyond 32 bits.".
  static zrArray<int> MakeForTab(const zrArray<int>& range, const zrArray<int>& tab);

  /// SwapAxis(a, b) then Flip(b): a quarter turn in the plane of a and b.
  void Rotate90(int a, int b);
  /// Flip(a) then Flip(b).
  void Rotate180(int a, int b);

  /// Clips the segment p1-p2 to the index box [0, Range[0] - 1] x [0, Range[1] - 1] of a
  /// two-dimensional array, in place; 1 when some part of it lies inside, 0 when it
  /// misses. Points and array must have two dimensions, else "Dimension must equal 2 in
  /// GetLine.". The clipping stops after its fifth edge move and then returns 1 with the
  /// points as they stand (possibly exchanged, possibly not yet inside): a segment that
  /// needs more moves is not finished. That cap is kept on purpose. The clipping is
  /// exact for any 32-bit end points; a moved coordinate that would leave the 32-bit
  /// range throws "Point out of range in GetLine.".
  int GetLineWithin(zrArray<int>& p1, zrArray<int>& p2) const;

  /// Neighbour offset tables for the strides tab (n dimensions), in elements. A table
  /// longer than INT_MAX entries cannot be made: zrErrNoMemory with its byte count. An
  /// offset outside the 32-bit range throws "zrArrayNDAbs : Offsets beyond 32 bits.".
  /// Face neighbours: out[2k] = tab[k], out[2k + 1] = -tab[k].
  static void MkTabFor4Link(const zrArray<int>& tab, zrArray<int>& out);
  /// All 3^n - 1 neighbours of the cube around an element: the offsets of Rcurs2 without
  /// the element itself. Offset i and offset 3^n - 2 - i are opposite neighbours.
  static void MkTabFor8Link(const zrArray<int>& tab, zrArray<int>& out);
  /// The box of aperture[k] positions along each dimension k, with the element at its low
  /// corner: every offset sum(dk * tab[k]) with 0 <= dk < aperture[k], dimension 0
  /// running fastest, so out[0] = 0 is the element itself. An aperture below 1 gives an
  /// empty table; aperture and tab of different lengths throw "Different dimension".
  static void MkTabForAp(const zrArray<int>& tab, const zrArray<int>& aperture, zrArray<int>& out);
  /// The corners of the cell whose low corner is the element: MkTabForAp with aperture 2.
  static void MkTabForVertexLink(const zrArray<int>& tab, zrArray<int>& out);
  /// The full cube: all 3^n offsets sum(dk * tab[k]) with dk in -1, 0, 1, dimension 0
  /// running fastest and each dk in that order, built a dimension at a time. The element
  /// itself (offset 0) is entry (3^n - 1) / 2. No dimensions give the single offset 0.
  static void Rcurs2(const zrArray<int>& tab, zrArray<int>& out);

 protected:
  // Recomputes ForTab, Con, EndPos and Size from Range and Tab.
  void MakeAux();
  // The typed array keeps the element-size query, the block switch and Copy abstract.
  void SetMem(void* const block) override = 0;

 private:
  zrArray<int> range_;    // elements along each dimension
  zrArray<int> tab_;      // signed stride of each dimension, in elements
  zrArray<int> for_tab_;  // carry increments
  int end_pos_ = 0;       // offset one step past the last element in storage order
  int size_ = 0;          // number of elements
  bool con_ = true;       // a single flat loop reaches every element
};

namespace zr::detail {
// The walk of the checked reader (zr/core/serialize.h) for every N-dimensional array:
// the sizes, checked as Init checks them, then the elements of the typed array.
inline bool FlatWalk(FlatCursor& cursor, const zrArrayNDAbs& array) {
  std::int32_t dims = 0;
  if (!cursor.ReadCount(dims) || dims < 0) return false;
  // No sizes: Init keeps an array without dimensions and refuses to empty one with them.
  if (dims == 0) return array.GetDim() == 0;
  std::uint64_t size = 1;
  for (std::int32_t k = 0; k < dims; ++k) {
    std::int32_t n = 0;
    if (!cursor.ReadCount(n) || n < 0) return false;
    size *= static_cast<std::uint64_t>(n);  // both below 2^31: no overflow
    if (size > static_cast<std::uint64_t>(INT32_MAX)) return false;
  }
  return cursor.SkipItems(size, static_cast<std::uint64_t>(array.GetSizeOfType()));
}
}  // namespace zr::detail
