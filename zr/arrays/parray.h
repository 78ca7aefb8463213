/// \file
/// zrPArray: the shared buffer base of every array-like class.
///
/// An array holds a pointer to a reference-counted block (zr/core/memory.h) and describes
/// its elements around an origin: Pointer() is the address of element 0,
/// PositiveLength() the number of elements reached from there towards higher addresses,
/// NegativeLength() the extent below it. Strided views report a negative extent for a
/// negative step ((length - 1) * step); the byte forms use the value with the sign it has,
/// the range checks its size.
///
/// Sharing states, as the interface reads them:
///   sole owner  a block, GetNumOfRef() == 0, IsShared() == 0
///   sharing     a block, GetNumOfRef() > 0,  IsShared() == 1
///   external    no block (the array views memory it does not own):
///               IsExternShared() == 1, IsShared() == 1, GetNumOfRef() == 0
/// Writes through any sharer are seen by all the others; Copy() makes the elements
/// private. Which operations share and which copy is each derived class's contract.
///
/// The virtual operations keep this order in every array class, which appends its own
/// after them: SetMem, GetMem, GetNumOfRef, IsShared, IsExternShared, Pointer,
/// PositiveLength, NegativeLength, GetSizeOfType, Copy, CheckPointer(),
/// CheckPointer(p, n), CheckPointerWithThrow(), CheckPointerWithThrow(p, n),
/// BytePositiveLength, ByteNegativeLength, MemSize, ToMem, FromMem.
#pragma once

#include <cstdint>

#include "zr/core/core.h"

/// The base of every class that holds elements: a pointer to a reference-counted block
/// (or none, for memory the array does not own) and the virtual interface of extents,
/// range checks, copying and the flat form. Writes through any holder of a block are
/// seen by all of them; which operations share the block and which copy it is each
/// derived class's contract, and GetNumOfRef() and IsShared() tell the state (see
/// parray.h). See the example examples/ndarray_views.cpp, which prints the holder count
/// of a block as views take it.
class ZR_API zrPArray : public zrRefCount {
  ZR_TYPE_IDENTITY
 public:
  /// Object count 0, no block.
  zrPArray() = default;
  /// Takes the block pointer over as it is, without counting: the derived copy
  /// constructor does the sharing or copying. The copy's own count starts at 0.
  zrPArray(const zrPArray& other) : zrRefCount(other), mem_(other.mem_) {}
  /// Copies the object count and the block pointer raw, without counting; the derived
  /// assignments do the sharing.
  zrPArray& operator=(const zrPArray& other) {  // NOLINT(bugprone-unhandled-self-assignment)
    zrRefCount::operator=(other);
    mem_ = other.mem_;
    return *this;
  }
  /// Releases nothing: the derived class releases the block.
  ~zrPArray() override;

  /// Switches to another block without ever freeing: counts the new block (zrIncMemRef)
  /// and then lets the old one go with zrDecMemRef, which throws
  /// "zrDecMemRef : Number of reference <= 0." when this was its last holder. Arrays
  /// override it with a switch that releases (and may free) the old block.
  virtual void SetMem(void* const block);
  virtual void* GetMem() const { return mem_; }
  /// The number of other holders of the block. Without a block there are none: 0.
  virtual int GetNumOfRef() const;
  /// 1 when the elements are shared with another holder or not owned at all.
  virtual int IsShared() const;
  /// 1 exactly when there is no block.
  virtual int IsExternShared() const;

  virtual void* Pointer() const = 0;
  virtual int PositiveLength() const = 0;
  virtual int NegativeLength() const = 0;
  virtual int GetSizeOfType() const = 0;
  /// Gives the array a private copy of its elements.
  virtual void Copy() = 0;

  /// Range checks, 1 when the array's extent lies within its memory, else 0.
  /// With a block, the origin must sit on an element boundary of the block and the range
  /// from |NegativeLength| elements below the origin to PositiveLength above it must lie
  /// inside the block (computed in 64 bits, so extents whose byte counts pass the 32-bit
  /// range are refused rather than wrapped). CheckPointer() passes an array without a block
  /// unchecked and skips the boundary test; CheckPointer(p, n) checks an array without a block
  /// against the n bytes at p (and ignores p and n when there is a block).
  virtual int CheckPointer() const;
  virtual int CheckPointer(const void* p, int n) const;
  /// The same, throwing BadParameters("CheckPointer : Invalid pointer or range.") for 0.
  virtual void CheckPointerWithThrow() const;
  virtual void CheckPointerWithThrow(const void* p, int n) const;

  /// The extents in bytes: length times GetSizeOfType().
  virtual int BytePositiveLength() const;
  virtual int ByteNegativeLength() const;

  /// The flat form. Here they throw "Have not zrPArray::MemSize" (ToMem, FromMem
  /// likewise); the classes that serialise override all three.
  virtual int MemSize() const;
  virtual int ToMem(unsigned char* buffer) const;
  virtual int FromMem(const unsigned char* buffer);

 protected:
  // Sets the block pointer without counting.
  void InitMem(void* const block) { mem_ = block; }
  // Forgets the block without releasing it.
  void FreeMem() { mem_ = nullptr; }
  /// The block switch of arrays whose blocks hold elements of type T: the same block
  /// again changes nothing; otherwise the new block is counted (one without the mark is
  /// refused before anything changes) and the old one released, freed with its elements
  /// when this was its last holder.
  template <class T>
  void SwitchMem(void* const block) {
    void* const old = mem_;
    if (block == old) return;
    if (block) zrIncMemRef(block);
    mem_ = block;
    zrDeleteWithRef(static_cast<T*>(old));
  }
  /// Releases the block of T elements (freed when this was its last holder) and forgets it.
  template <class T>
  void ReleaseMem() {
    zrDeleteWithRef(static_cast<T*>(mem_));
    mem_ = nullptr;
  }

 private:
  int BlockCheck(bool boundary) const;
  int RangeCheck(const void* base, std::int64_t bytes) const;

  void* mem_ = nullptr;  // user pointer of the block held (counted), or null when not owned
};

/// The free entry points of the flat form, forwarding to the object.
inline int zrMemSize(const zrPArray& a) { return a.MemSize(); }
inline int zrToMem(unsigned char* buffer, const zrPArray& a) { return a.ToMem(buffer); }
inline int zrFromMem(const unsigned char* buffer, zrPArray& a) { return a.FromMem(buffer); }

namespace zr::detail {

// Whether a view lies in the block that will hold it: its element 0 is `offset` elements
// of `size` bytes from `origin`, and its elements reach from `low` to `high` elements
// around element 0 (low <= 0 <= high). A view of no elements may stand anywhere from the
// block's start to its end. Worked out on addresses as numbers, before the view is
// formed; without a block (outside storage) there is nothing to check against.
inline bool ViewInBlock(const void* block, std::int64_t block_bytes, const void* origin,
                        std::int64_t offset, std::int64_t size, bool empty, std::int64_t low,
                        std::int64_t high) {
  if (!block) return true;
  const auto from = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(origin) -
                                              reinterpret_cast<std::uintptr_t>(block));
  const std::int64_t at = from + offset * size;
  if (empty) return at >= 0 && at <= block_bytes;
  return at + low * size >= 0 && at + (high + 1) * size <= block_bytes;
}

// The same for a run of n elements with the given step.
inline bool RunInBlock(const void* block, std::int64_t block_bytes, const void* origin,
                       std::int64_t offset, std::int64_t size, int n, int step) {
  const std::int64_t last = static_cast<std::int64_t>(n > 0 ? n - 1 : 0) * step;
  return ViewInBlock(block, block_bytes, origin, offset, size, n == 0, last < 0 ? last : 0,
                     last > 0 ? last : 0);
}

// The bytes of the block that holder holds (0 without one).
inline std::int64_t BlockBytes(const zrPArray& holder) {
  const void* const block = holder.GetMem();
  return block ? std::int64_t{BlockCount(block)} * holder.GetSizeOfType() : 0;
}

}  // namespace zr::detail
