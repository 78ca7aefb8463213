/// \file
/// zrArrayND<T>: the typed N-dimensional array.
///
/// A zrArrayNDAbs geometry over a reference-counted block of T (see array_nd_abs.h).
/// GetPointer() is the element at multi-index (0, ..., 0); it need not be the block's
/// first element (after a flip it is the last one along the flipped axis, in a
/// sub-window it lies inside another array's block).
///
/// Who shares and who copies:
///   - the copy constructor makes a deep, dense copy: a new block, dense strides for the
///     source's sizes, the elements copied in the source's storage order (a flipped array
///     copies to a dense array in the flipped order);
///   - Set, Init with other sizes and FromMem with other sizes make a new private block;
///   - the views (the three-source Set forms, SetSubWindow, Flip, SwapAxis, Rotate90,
///     Rotate180, ReduceDimArrayND, GetReduceDimArrayND) and Move share the block and
///     copy nothing; each view is checked to lie within the block, at both ends, and
///     otherwise throws "CheckPointer : Invalid pointer or range." with the array left as
///     it was (so does a view whose origin or extent lies more than 32 bits of elements
///     away); a view's sizes are checked as the base checks them (array_nd_abs.h);
///   - SetDirectly views memory the array does not own (no block; it is never freed here);
///   - operator=, Init and FromMem with the current sizes, Fill and the compound operators
///     write through the array's own strides, so a view writes into the array it views;
///   - Copy() gives a shared or externally viewed array a private dense copy.
///
/// Every element loop of the class walks the elements in storage order, dimension 0
/// fastest, line by line. For double the library has faster walks (see NDKernels) that
/// take another order where the order cannot change the result (Fill, the scalar
/// operators, comparisons, minimum and maximum, and a copy or a compound operator whose
/// target reaches no element twice): they give the bits of the storage-order walk.
/// Serialisation and Median always keep storage order. Min and Max return the first
/// extreme in storage order (for a floating extreme of zero, where +0 and -0 tie, the
/// sign is the first one's).
///
/// Decisions the interface leaves open:
///   - sizes must be >= 0; a negative one throws "zrNewWithRef : n <= 0 ", a total beyond
///     the 32-bit count throws zrErrNoMemory; a zero size gives an array of those sizes
///     with no elements and no block;
///   - assigning an array without dimensions, and clear(), leave an array without
///     dimensions and without a block;
///   - Flip and SwapAxis with an axis outside the dimensions throw "out of range of
///     dimension";
///   - SetDirectly releases the block the array held before;
///   - MakeCoord gives coordinate 0 along a dimension of stride 0;
///   - a view may have a stride of 0: every walk (iteration, Fill, the operators,
///     comparisons, Median, the flat form) still visits each multi-index once, and a
///     write through it hits the same element once per index;
///   - operator= from a source that shares elements with the target (an overlapping
///     window of the same block, the target's own flip or axis exchange) gives the result
///     of assigning a copy of the source, and so do the compound operators (+=, -=, *=,
///     /= with an array);
///   - Flip of an axis of size 0 leaves the origin where it is;
///   - operator== compares elements at equal multi-indices in any order; arrays of
///     different sizes (or dimension counts) are unequal.
///
/// Errors (BadParameters): "Different dimension" and "Different range" for array
/// operands, "ArrayND range is empty." for Min/Max/MinAndMax of no elements, and for the
/// slices, checked in this order, "out of range of dimension", "Must be dimension > 1",
/// "Out of range".
///
/// Flat form: the sizes (see array_nd_abs.h), then, when there are elements, the Size
/// elements in storage order as raw sizeof(T) bytes. It reads back dense.
///
/// The library instantiates the template for the types of ZR_ARRAY_ND_TYPES; a program
/// may instantiate it for a type of its own by including zr/ndarray/array_nd_impl.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/ndarray/array_nd_abs.h"
#include "zr/ndarray/round_array_nd.h"

namespace zr::detail {

// The element operation of a walk that a kernel may run: a = b, a += b, ... (a op= value
// for the scalar forms).
enum class NDOp { kAssign, kAdd, kSub, kMul, kDiv };

// The walks of zrArrayND<T> that a faster kernel may take over. The class asks first and
// runs its own storage-order loop when the kernel declines (returns false), as this
// primary does for every type. The operands have n >= 1 dimensions of sizes range (each
// >= 1) and strides ta, tb; a pair's operands share no element, unless b is a itself
// (same origin and strides). A kernel gives the bits of the storage-order loop.
template <class T>
struct NDKernels {
  // a op= b element by element.
  static bool Pair(NDOp, int, const int*, T*, const int*, const T*, const int*) { return false; }
  // a op= value for every element.
  static bool Scalar(NDOp, int, const int*, T*, const int*, T) { return false; }
  // equal: every element of a equals its partner in b.
  static bool Equal(int, const int*, const T*, const int*, const T*, const int*, bool&) {
    return false;
  }
  // lo, hi: the least and the greatest element, the first in storage order.
  static bool MinMax(int, const int*, const T*, const int*, T&, T&) { return false; }
};

// The library's kernels for double (zr/ndarray/detail/), at the level
// zr::detail::CurrentLevel() gives; the plain level declines.
template <>
struct ZR_API NDKernels<double> {
  static bool Pair(NDOp op, int n, const int* range, double* a, const int* ta, const double* b,
                   const int* tb);
  static bool Scalar(NDOp op, int n, const int* range, double* a, const int* ta, double value);
  static bool Equal(int n, const int* range, const double* a, const int* ta, const double* b,
                    const int* tb, bool& equal);
  static bool MinMax(int n, const int* range, const double* a, const int* ta, double& lo,
                     double& hi);
};

}  // namespace zr::detail

/// The typed N-dimensional array of T: a zrArrayNDAbs geometry over a reference-counted
/// block, with strides of any sign, element-wise operators, comparisons, reductions and
/// the flat form.
/// Who shares the block: the views (Flip, SwapAxis, Rotate90, Rotate180, SetSubWindow,
/// the slices, the three-source Set forms) and Move share it and copy nothing; the copy
/// constructor makes a deep, dense copy; Set and Init with other sizes take a new private
/// block; operator=, Fill and the compound operators write through the array's own
/// strides, so a view writes into the array it views (the full rules are in array_nd.h).
/// See the example examples/ndarray_views.cpp and docs/examples.md#guide_ndarray.
template <class T>
class ZR_API zrArrayND : public zrArrayNDAbs {
  ZR_TYPE_IDENTITY

  // The class template behind iterator and const_iterator (private: name the iterators by
  // those two). It holds counters (the Index base, from dimension 1 up), the current
  // element, the elements left on its line, the sizes, the carry increments, the step
  // along a line and the contiguity flag. Each step adds the step and counts down the
  // line; at a line's end a non-contiguous walk carries (a contiguous one is a single
  // line). end() stands at GetPointer() + GetEndPos(), where the walk leaves the pointer;
  // since that address can be an element's own (a 3 x 2 array flipped along dimension 0
  // has EndPos 0, a step of 0 leaves the pointer where it was), every walk also marks its
  // end, and iterators compare equal when both address and mark agree.
  template <class E>
  class Iter : public zrArrayNDAbs::Index {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using reference = E&;
    using pointer = E*;
    using difference_type = int;

    E& operator*() const { return *cur_; }
    E* operator->() const { return cur_; }
    Iter& operator++() {
      cur_ += step_;
      if (--left_ == 0) NextLine();
      return *this;
    }
    Iter operator++(int) {
      Iter before(*this);
      ++*this;
      return before;
    }
    bool operator==(const Iter& other) const { return cur_ == other.cur_ && done_ == other.done_; }
    bool operator!=(const Iter& other) const { return !(*this == other); }

   private:
    friend class zrArrayND;
    Iter(const zrArrayND& a, bool atEnd)
        : range_(a.Range().GetPointer()),
          for_tab_(a.GetForTab().GetPointer()),
          step_(a.GetDim() > 0 ? a.Tab()[0] : 0),
          con_(a.IsCon()) {
      cur_ = a.GetPointer();
      if (a.GetSize() == 0) return;  // begin == end
      if (atEnd) {
        cur_ += a.GetEndPos();
        done_ = true;
      } else if (!con_) {
        this->Set(&a, false);
        range_ = this->SharedRange();
        left_ = range_[0];
      } else {
        left_ = a.GetSize();
      }
    }

    // The end of a line: the carry to the next one (as Index::Inc), or the mark at the
    // last. A contiguous walk is a single line. Written out here: a call in the element
    // loop would keep the caller's own values out of the registers a call clobbers.
    void NextLine() {
      if (con_) {
        done_ = true;
        return;
      }
      int* const c = this->GetPointer();
      const int n = this->Len();
      for (int k = 1; k < n; ++k) {
        if (++c[k] < range_[k]) {
          cur_ += for_tab_[k];
          left_ = range_[0];
          return;
        }
        c[k] = 0;
      }
      done_ = true;
    }

    E* cur_ = nullptr;
    int left_ = 0;  // elements left on the current line
    const int* range_;
    const int* for_tab_;
    int step_;
    bool con_;
    bool done_ = false;  // the walk has run out
  };

 public:
  using value_type = T;
  /// The forward iterators of begin() and end(): they visit every element once, in
  /// storage order. Changing the array's geometry or storage invalidates them. See the
  /// example docs/examples.md#guide_ndarray, a range-for over an array.
  using iterator = Iter<T>;
  using const_iterator = Iter<const T>;

  /// No dimensions, no block.
  zrArrayND() = default;
  /// Dense strides for the sizes and a new block of GetSize() uninitialised elements.
  explicit zrArrayND(const zrArray<int>& range);
  /// A deep, dense copy in the source's storage order.
  zrArrayND(const zrArrayND& other);
  /// Init with the source's sizes, then the elements copied in step through both walks:
  /// with equal sizes the array keeps its block and strides (a view writes through).
  /// A source whose elements overlap the target's is copied to a temporary first.
  zrArrayND& operator=(const zrArrayND& other);
  ~zrArrayND() override;

  /// The operations zrPArray and zrArrayNDAbs leave open.
  void* Pointer() const override { return p_; }
  int GetSizeOfType() const override { return static_cast<int>(sizeof(T)); }
  /// A shared or externally viewed array takes a private dense copy (copy, then Move).
  void Copy() override;
  int MemSize() const override;
  int ToMem(unsigned char* buffer) const override;
  /// Reads the sizes, Init with them (the current elements stay where the sizes match),
  /// then the elements in storage order.
  int FromMem(const unsigned char* buffer) override;
  /// Releases the block, reshapes dense and makes a new block; contents are lost.
  void Set(const zrArray<int>& range) override;
  /// Nothing when the sizes are the current ones (contents, strides and sharing stay);
  /// otherwise Set(range).
  void Init(const zrArray<int>& range) override;
  zrArrayNDAbs* New() const override;
  /// Views of the array itself: Tab[a] negated and the origin moved to the last element
  /// along a; Range and Tab of a and b exchanged.
  void Flip(int a) override;
  void SwapAxis(int a, int b) override;

  /// The operations this class adds, in this order.
  virtual void Fill(T value);
  /// A new empty array on the heap, owned by the caller.
  virtual zrArrayND* TNew() const;
  /// Takes over other's sizes, strides, origin and block; other keeps its geometry but is
  /// left with no block and a null origin.
  virtual void Move(zrArrayND& other);
  /// View: the given sizes and strides, origin = source origin + offset (in elements),
  /// sharing the source's block (none for an external source).
  virtual void Set(const zrArrayND& source, int offset, const zrArray<int>& range,
                   const zrArray<int>& tab);
  /// The same with the source's strides.
  virtual void Set(const zrArrayND& source, int offset, const zrArray<int>& range);
  /// The same geometry, origin and block as the source.
  virtual void Set(const zrArrayND& source);
  /// View of outside memory at p, with the given (or dense) strides.
  virtual void SetDirectly(T* p, const zrArray<int>& range, const zrArray<int>& tab);
  virtual void SetDirectly(T* p, const zrArray<int>& range);
  /// View of the sizes from start on, with the source's strides.
  virtual void SetSubWindow(const zrArrayND& source, const zrArray<int>& start,
                            const zrArray<int>& range);
  /// The slice of this array at index along axis, as a new heap object owned by the
  /// caller (see ReduceDimArrayND).
  virtual zrArrayND* GetReduceDimArrayND(int axis, int index) const;
  /// The minimum and maximum in one walk; no elements throw "ArrayND range is empty.".
  virtual void MinAndMax(T& min, T& max) const;

  /// This array becomes the (n-1)-dimensional slice of source at index along axis,
  /// sharing source's block. Checks: axis, then dimension count, then index.
  void ReduceDimArrayND(const zrArrayND& source, int axis, int index);

  /// Releases this array's hold on its block; the origin and the geometry stay.
  void Free();
  /// Releases the block and leaves no dimensions (as default-constructed).
  void clear();
  bool empty() const { return GetSize() == 0; }
  int size() const { return GetSize(); }
  /// The first and last element in storage order.
  T& front() const { return *p_; }
  T& back() const { return p_[GetEndPos() - Tab()[0]]; }
  T* GetPointer() const { return p_; }
  void SetPointer(T* p) { p_ = p; }

  /// The element at the cursor's offset from the origin.
  T& operator[](const zrRoundArrayND& r) const { return p_[r.GetPos()]; }

  /// Element access by indices, a convenience over GetPointer() and Tab(): a(i, j, k) is
  /// the element (i, j, k), index i along dimension 0, at sum(index_k * Tab[k]) from the
  /// origin, so on a view (flipped, axes swapped, a window, a slice) it is the element of
  /// the viewed block that the view's strides address, and a write through it is seen by
  /// every array sharing that block. Nothing is checked, as with operator[]: give one
  /// index per dimension, each within 0 ... Range[k] - 1 (at() checks both).
  T& operator()(int i) const { return p_[Offset(i, 0)]; }
  T& operator()(int i, int j) const { return p_[Offset(i, 0) + Offset(j, 1)]; }
  T& operator()(int i, int j, int k) const {
    return p_[Offset(i, 0) + Offset(j, 1) + Offset(k, 2)];
  }
  T& operator()(int i, int j, int k, int l) const {
    return p_[Offset(i, 0) + Offset(j, 1) + Offset(k, 2) + Offset(l, 3)];
  }
  /// Any number of dimensions: index[k] along dimension k.
  T& operator()(const zrArray<int>& index) const {
    std::ptrdiff_t off = 0;
    for (int k = 0; k < index.Len(); ++k) off += Offset(index[k], k);
    return p_[off];
  }
  /// The same element with the indices checked first, throwing BadParameters with the
  /// numbers written out. An array without dimensions:
  ///   "zrArrayND::at: the array has no dimensions."
  /// an index count other than GetDim(), say 2 indices on 3 dimensions:
  ///   "zrArrayND::at: 2 indices for 3 dimensions."
  /// the first index, in dimension order, outside its range, say 4 on an axis 0 of 4:
  ///   "zrArrayND::at: index 4 on axis 0 is outside [0, 4)."
  T& at(int i) const;
  T& at(int i, int j) const;
  T& at(int i, int j, int k) const;
  T& at(int i, int j, int k, int l) const;
  T& at(const zrArray<int>& index) const;

  /// The multi-index of the element at p: dimensions taken from the last to the first,
  /// coord[d] = off / Tab[d], off = off % Tab[d] (truncating). That inverts the offset
  /// rule for dense strides, which grow with the dimension number, and is kept for
  /// others although it need not invert them (a flipped array gives wrong coordinates).
  void MakeCoord(zrArray<int>& coord, const T* p) const;

  iterator begin() { return iterator(*this, false); }
  iterator end() { return iterator(*this, true); }
  const_iterator begin() const { return const_iterator(*this, false); }
  const_iterator end() const { return const_iterator(*this, true); }

  /// Element by element in step through both walks; dimension counts must be equal
  /// ("Different dimension"), then sizes ("Different range"); strides may differ.
  zrArrayND& operator+=(const zrArrayND& other);
  zrArrayND& operator-=(const zrArrayND& other);
  zrArrayND& operator*=(const zrArrayND& other);
  zrArrayND& operator/=(const zrArrayND& other);
  /// Every element op value (integer division by zero is not guarded).
  zrArrayND& operator+=(const T& value);
  zrArrayND& operator-=(const T& value);
  zrArrayND& operator*=(const T& value);
  zrArrayND& operator/=(const T& value);

  int operator==(const zrArrayND& other) const;
  int operator!=(const zrArrayND& other) const;
  /// The first extreme in storage order; no elements throw "ArrayND range is empty.".
  T Min() const;
  T Max() const;
  /// The lower median of the elements (a zrArray<T> copy's Median); no elements throw
  /// "Lenght of array is equl zero.".
  T Median() const;

 protected:
  // Holds another block: the new one is counted first, then the old one released.
  void SetMem(void* const block) override;
  // A block of n elements becomes the array's block and origin (the old one is not
  // released here).
  void New(int n);

 private:
  // Commits a view: geometry, origin and a share of holder's block, checked before
  // anything of this array changes.
  // The origin lies offset elements from base.
  void View(const zrPArray& holder, const T* base, std::int64_t offset, const zrArray<int>& range,
            const zrArray<int>& tab);
  // x op= value for every element x: the kernel's walk or f(x) in storage order.
  template <class F>
  void Each(zr::detail::NDOp op, const T& value, F f);
  // The offset of index i along dimension k, in elements.
  std::ptrdiff_t Offset(int i, int k) const {
    return static_cast<std::ptrdiff_t>(i) * Tab().GetPointer()[k];
  }
  // at()'s checks: count indices for the dimensions, each inside its range.
  void CheckIndex(const int* index, int count) const;
  // The compound operators: sizes checked, an overlapping source copied first, then
  // Lockstep.
  template <class F>
  void EachPair(zr::detail::NDOp op, const zrArrayND& other, F f);
  // f(x, y) for the elements at equal multi-indices of this array and other (equal sizes,
  // elements, no overlap but with itself): the kernel's walk or storage order.
  template <class F>
  void Lockstep(zr::detail::NDOp op, const zrArrayND& other, F f);

  T* p_ = nullptr;  // element at multi-index (0, ..., 0)
};

/// The element types the library instantiates the N-dimensional array for.
#define ZR_ARRAY_ND_TYPES(X) \
  X(unsigned char)           \
  X(short)                   \
  X(unsigned short)          \
  X(int)                     \
  X(unsigned int)            \
  X(float)                   \
  X(double)

/// The one-dimensional arrays of unsigned int (for Median) are instantiated here.
ZR_EXTERN_TEMPLATE(class, zrSimpleArray<unsigned int>);
ZR_EXTERN_TEMPLATE(class, zrArray<unsigned int>);

#define ZR_DETAIL_EXTERN_ARRAY_ND(T) ZR_EXTERN_TEMPLATE(class, zrArrayND<T>);
ZR_ARRAY_ND_TYPES(ZR_DETAIL_EXTERN_ARRAY_ND)
