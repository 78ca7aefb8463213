/// \file
/// zrVector<T>: the mathematical vector, a strided view onto a shared element block.
///
/// A vector is a first element, a length and a step over a reference-counted block
/// (zr/core/memory.h) or over memory it does not own. Element i lives at
/// first + i * step; a vector that owns fresh storage has step 1, a window may have any
/// step, 0 and negative ones included.
///
/// Who shares and who copies (unlike zrSimpleArray<T>, on purpose):
///   - the copy constructor SHARES: the copy views the same elements with the same first
///     element, length and step, and raises the block's holder count;
///   - windows (Set with a range, SetSubWindow, Left, Right, Mid) share the source's block;
///     Move and swap hand handles over and copy no element;
///   - operator= copies VALUES: with equal lengths it writes into the current elements in
///     place, so every sharer of this vector's block sees the new values; with another
///     length it first takes fresh storage (Set) of the source's length;
///   - a source that shares storage with the target (a window of the same block, a
///     reversed or otherwise strided view of it) gives what it would give if it were read
///     whole before the first write, in operator= and in every operation that combines a
///     vector with another element by element (+=, -=, Mul, Div, Min, Max). Only such
///     a source costs anything: overlapping runs with one step are walked in the order
///     that reads each element before it is overwritten, other overlaps are read into a
///     private copy first, and everything else is copied straight in place;
///   - Copy(), ReSet() to another length and every length-changing edit (Remove, Insert,
///     push_back, Concat, ...) leave the vector sole owner of a fresh contiguous block with
///     step 1; the vectors that shared its old block keep it;
///   - Fill, the compound operators, Mul, Div, Min, Max and writes through operator[] work
///     in place and reach every sharer.
///
/// Element arithmetic is the element type's own. The compound operators with a scalar
/// apply the element's compound operator, as zrArray<T> does: for zrComplex, *= ADDS the
/// scalar (zrComplex::operator*= is kept that way), while Mul, ScalarMul and the binary
/// products of the oriented vectors and matrices multiply. Sums of products are taken in
/// index order from the product of elements 0, each step rounded; the bodies are compiled
/// in the library, where contraction into fused multiply-adds is off.
///
/// Per element type (ZR_LINALG_TYPES):
///   T                 scalar   ScalarMul / Norm          Min / Max replace when
///   double            double   sum x*y / sqrt            value is greater
///   zrComplex         complex  sum x*y (no conjugate) /  modulus is greater
///                              zrComplexNormSqrt
///   zrTVec3<double>   vec3     coordinate-wise sums /    all three coordinates are
///                              coordinate-wise sqrt      greater (else nothing changes)
/// The Min/Max rule is each type's own operator>: Min replaces this element by other's
/// when this > other, Max when other > this; ties keep this vector's value.
///
/// The norm of a complex vector is zrComplexNormSqrt of the sum of squares (not of squared
/// moduli): the library's fixed rule, kept so that norms stay the same.
///
/// Errors (BadParameters): "different length." for a vector operand of another length,
/// "Out of range" for Remove/erase/pop_front of a missing element and for Insert outside
/// 0 ... length, "zrVector<T>::Left: Out of Range" (Right, Mid likewise) for a bad
/// window, "zrNewWithRef : n <= 0 " for a negative size. Nothing is changed when they are
/// thrown. An edit that would grow the length past INT_MAX (insert, push_back, Concat)
/// throws zrErrNoMemory with the byte count of that block and changes nothing either.
/// A view's offsets and extents are 32-bit: Set with a range refuses a negative length, and
/// an offset start * src's step, an extent length * step or their sum outside the 32-bit
/// range, with "zrVector<T>::Set : out of range."; SetDirectly refuses a negative length
/// or an extent length * step outside that range with "zrVector<T>::SetDirectly : out of
/// range.". A window never reaches outside the block it holds: Set refuses a window with
/// an element outside src's block (it may lie outside src's own elements, inside the
/// block), and SetDirectly with a holder one outside the holder's block, with the same
/// texts. Storage without a block (SetDirectly with no holder, and windows of such views)
/// is the caller's: nothing can be checked there. Element access and the scalar operators
/// check nothing.
///
/// Flat form: the length as a signed 32-bit little-endian integer, then the elements in
/// index order, packed, each in its raw form (8, 16 or 24 bytes): 4 + n * sizeof(T)
/// bytes. A window is written packed; FromMem always reads into fresh storage. A length
/// below 1 reads as the empty vector, which writes itself back with length 0. The checked
/// reader zrFromMem(buffer, size, vector) (zr/core/serialize.h) refuses a length whose
/// elements do not fit in size; it serves zrColumnVector, zrLineVector and zrPolynom too.
///
/// The library instantiates the vector for ZR_LINALG_TYPES; a program may instantiate it
/// for a type of its own by including zr/linalg/vector_impl.h.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/values/values.h"

/// The mathematical vector of T: a first element, a length and a step (any sign, 0
/// included) over a reference-counted block, with element-wise arithmetic, products,
/// norms and the flat form.
/// Who shares the block (unlike zrSimpleArray, on purpose): the copy constructor and the
/// windows SHARE it; operator= copies VALUES into the current elements (in place for
/// every sharer when the lengths agree); Copy(), ReSet() to another length and the
/// length-changing edits leave this vector a fresh private block (see vector.h). See the
/// example docs/examples.md#guide_linalg and examples/zr_interp.cpp, whose points are
/// zrColumnVector, a zrVector.
template <class T>
class ZR_API zrVector : public zrPArray {
  ZR_TYPE_IDENTITY
 public:
  using value_type = T;
  /// A plain pointer: ++ walks by one element, so iterating with it is only right for a
  /// step of 1. insert and erase turn it back into an index with the step.
  using iterator = T*;
  using const_iterator = T*;
  using size_type = int;

  /// Empty: no block, first element null, length 0, step 0.
  zrVector() = default;
  /// n uninitialised elements in a fresh block, step 1. n == 0 gives an empty vector,
  /// n < 0 throws "zrNewWithRef : n <= 0 ".
  explicit zrVector(int n);
  /// Views the array's elements and holds its block (none when the array has none);
  /// length the array's, step 1.
  explicit zrVector(const zrSimpleArray<T>& array);
  /// SHARES the source's elements: same block (counted), first element, length and step.
  zrVector(const zrVector& other);
  ~zrVector() override;

  /// The five operations this class appends to zrPArray's, in this order:
  /// Copies values. Equal lengths: written into the current elements in place (every
  /// sharer sees them), read through other's step; a source that overlaps this vector
  /// (v = a reversed view of v, say) is taken as it stood before the assignment. Another
  /// length: Set(other length) first.
  virtual zrVector& operator=(const zrVector& other);
  /// Sets every element (value may be an element of this vector).
  virtual void Fill(const T& value);
  /// A new, empty vector of this object's own class (with new; delete it, or hand it to
  /// zrUsingNew::Delete).
  virtual zrVector* NewVector() const;
  /// The orientation: -1 for a plain vector (undetermined), 1 or 0 for the oriented ones.
  virtual int IsColumn() const;
  virtual int IsLine() const;

  /// Size and access; no range checks.
  int Len() const { return n_; }
  int Range() const { return n_; }
  int size() const { return n_; }
  int Tab() const { return step_; }
  bool empty() const { return n_ == 0; }
  T& operator[](int i) const { return p_[static_cast<long long>(i) * step_]; }
  T& Last() const { return (*this)[n_ - 1]; }
  T& back() const { return (*this)[n_ - 1]; }
  T& front() const { return p_[0]; }
  T* GetPointer() const { return p_; }
  T* begin() const { return p_; }
  /// One step past the last element.
  T* end() const { return p_ + static_cast<long long>(n_) * step_; }

  /// Storage.
  /// Releases the block; n != 0 takes a fresh block of n uninitialised elements with step
  /// 1, n == 0 leaves the vector empty (step 0); n < 0 throws "zrNewWithRef : n <= 0 ".
  void Set(int n);
  /// Set(n) unless the length is n already; then contents and sharing stay.
  void Init(int n);
  /// Changes the length keeping the first min(length, n) elements (read through the old
  /// step); the new ones are uninitialised. Any other length always gives a fresh block
  /// with step 1, shared or not. Equal n does nothing; n == 0 releases the block, first
  /// element null, length 0, step unchanged; n < 0 throws "zrNewWithRef : n <= 0 ".
  void ReSet(int n);
  void resize(int n) { ReSet(n); }
  /// A window onto src: first element src[start], length len, src's step; holds src's
  /// block. The window may reach past src's elements but not past its block: an element
  /// outside the block, a negative len, or offsets or extents beyond 32 bits throw
  /// "zrVector<T>::Set : out of range." and change nothing. A window of no elements may
  /// stand anywhere from the block's start to its end. A source without a block is not
  /// checked.
  void Set(const zrVector& src, int start, int len);
  void SetSubWindow(const zrVector& src, int start, int len) { Set(src, start, len); }
  /// The same with the given step, taken as it stands in elements of the storage: it is
  /// NOT multiplied by src's step (Set(src, 1, 3, 2) on a source of step 3 views storage
  /// positions 3, 5, 7 from src's first element).
  void Set(const zrVector& src, int start, int len, int step);
  /// Releases the block and views len elements at data with the given step, owning
  /// nothing (IsExternShared() is then 1). A negative len, or len * step beyond 32 bits,
  /// throws "zrVector<T>::SetDirectly : out of range." (both forms) and changes nothing.
  void SetDirectly(T* data, int len, int step);
  /// Views len elements at data with the given step and holds holder's block (counted;
  /// none when holder has none), releasing its own: the view keeps that block alive and
  /// its writes reach every sharer. Every element must lie in holder's block, else
  /// "zrVector<T>::SetDirectly : out of range." and nothing changes (a holder without a
  /// block checks nothing). This is how matrices hand out row, column and diagonal views.
  void SetDirectly(T* data, int len, int step, const zrPArray& holder);
  /// Holds another block: the current one is released (freed when this was its last
  /// holder) and the new one counted. The same block again changes nothing. The window
  /// fields are not touched.
  void SetMem(void* const block) override;
  /// Releases the block and forgets it; the window fields stay as they are.
  void Free();
  /// Releases the block: first element null, length 0, step 0.
  void Clear();
  void RemoveAll() { Clear(); }
  void clear() { Clear(); }
  /// Takes over src's block, first element, length and step; src is left empty (all
  /// zero). No element moves.
  void Move(zrVector& src);
  /// Exchanges the two vectors' handles (block, first element, length, step): no element
  /// is copied and no count changes. Arrays of vectors move their elements with it.
  void swap(zrVector& other);
  /// A shared (or externally viewed) vector takes a private contiguous copy with step 1;
  /// a sole owner is left as it is.
  void Copy() override;

  /// Windows of this vector, made with Set(*this, start, n): out shares the block and the
  /// step.
  /// The first n elements; 1 <= n <= length, else "zrVector<T>::Left: Out of Range".
  void Left(zrVector& out, int n) const;
  /// The last n elements; 1 <= n <= length, else "zrVector<T>::Right: Out of Range".
  void Right(zrVector& out, int n) const;
  /// n elements from start; start >= 0, n >= 1, start + n <= length, else
  /// "zrVector<T>::Mid: Out of Range".
  void Mid(zrVector& out, int start, int n) const;

  /// Editing. Each length change leaves a fresh private block with step 1 (see ReSet).
  /// Inserts value at pos and returns pos. Unlike the library's older vectors, pos is
  /// checked: outside 0 ... length throws "Out of range" and changes nothing.
  int Insert(T value, int pos);
  void push_front(const T& value) { Insert(value, 0); }
  /// Removes element i (0 <= i < length, else "Out of range"). A shared vector detaches
  /// first (Copy), so its sharers keep their elements; one element leaves it empty with
  /// step 0.
  void Remove(int i);
  void pop_front() { Remove(0); }
  /// Drops the last element; an empty vector stays empty.
  void RemoveLast();
  void pop_back() { RemoveLast(); }
  /// The iterator forms: the index is (where - first element) / step (0 for a step of 0);
  /// they return the position of that index in the new storage.
  T* insert(T* where, const T& value);
  T* erase(T* where);
  /// Appends value (which may be an element of this vector).
  void push_back(const T& value);
  void Concat(T value) { push_back(value); }
  /// Appends other's elements, read through other's step (other may be this vector).
  void Concat(const zrVector& other);

  /// Arithmetic, in place through the window, in index order. The scalar is read once
  /// before the loop (it may be an element). The element's compound operator is applied.
  zrVector& operator+=(const T& value);
  zrVector& operator-=(const T& value);
  zrVector& operator*=(const T& value);
  zrVector& operator/=(const T& value);
  /// Element by element with a vector of the same length ("different length."); other may
  /// overlap this vector (read as it stood before, see the top of this file).
  zrVector& operator+=(const zrVector& other);
  zrVector& operator-=(const zrVector& other);
  /// element i = element i * other's i (the element's binary product).
  zrVector& Mul(const zrVector& other);
  /// element i = element i / other's i.
  zrVector& Div(const zrVector& other);
  /// See the rule at the top of this file.
  zrVector& Min(const zrVector& other);
  zrVector& Max(const zrVector& other);
  /// x[0]*y[0] + x[1]*y[1] + ... in index order, each vector read through its own step;
  /// lengths must be equal ("different length."). Two empty vectors give T{} (zero).
  T ScalarMul(const zrVector& other) const;
  /// The square root of ScalarMul(*this) by the type's rule (table above); 0 when empty.
  T Norm() const;

  void* Pointer() const override { return p_; }
  /// length * step for a step >= 0, else 0.
  int PositiveLength() const override;
  /// (length - 1) * step for a negative step (a negative number), else 0.
  int NegativeLength() const override;
  int GetSizeOfType() const override { return static_cast<int>(sizeof(T)); }

  /// The flat form (see the top of this file).
  int MemSize() const override;
  int ToMem(unsigned char* buffer) const override;
  /// Reads n and n elements into fresh storage with step 1 (the old block is released);
  /// n < 1 leaves the vector empty and consumes 4 bytes.
  int FromMem(const unsigned char* buffer) override;

 private:
  // A fresh block of n >= 1 elements with step 1, the first keep copied from the
  // current ones; the old block is released after.
  void Fresh(int n, int keep = 0);
  void CheckLength(const zrVector& other) const;

  T* p_ = nullptr;  // element 0 of the window; null for an empty vector
  int n_ = 0;       // number of elements
  int step_ = 0;    // distance in elements between element i and i + 1
};

/// The element types of the linear-algebra templates, written once: zrVector,
/// zrColumnVector, zrLineVector and zrMatrix are instantiated for each, and the tests are
/// driven by it.
#define ZR_LINALG_TYPES(X) \
  X(double)                \
  X(zrComplex)             \
  X(zrTVec3<double>)

#define ZR_DETAIL_EXTERN_VECTOR(T) ZR_EXTERN_TEMPLATE(class, zrVector<T>);
ZR_LINALG_TYPES(ZR_DETAIL_EXTERN_VECTOR)

namespace zr::detail {
// Whether an offset or extent in elements, computed in 64 bits, fits the 32-bit lengths
// and steps of the views.
inline bool Fits32(std::int64_t v) { return v >= INT32_MIN && v <= INT32_MAX; }

// Whether n elements with the given step make a view: n is not negative and the extent
// n * step (a vector's positive or negative length) stays in 32 bits.
inline bool RunFits(int n, int step) {
  return n >= 0 && Fits32(static_cast<std::int64_t>(n) * step);
}

// The walk of the checked reader (zr/core/serialize.h): a length below 1 is the empty
// vector's and stands alone; otherwise that many elements of the element's fixed form.
// It serves the row and column vectors and the polynomial too.
template <class T>
bool FlatWalk(FlatCursor& cursor, const zrVector<T>&) {
  std::int32_t n = 0;
  if (!cursor.ReadCount(n)) return false;
  return n < 1 || cursor.SkipItems(static_cast<std::uint64_t>(n),
                                   static_cast<std::uint64_t>(zrMemSize(T{})));
}
}  // namespace zr::detail
