#include "zr/arrays/parray.h"

#include <cstdint>

namespace {

std::int64_t ByteDistance(const void* from, const void* to) {
  return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(to) -
                                   reinterpret_cast<std::uintptr_t>(from));
}

[[noreturn]] void ThrowHaveNot(const char* text) { throw BadParameters(text); }

}  // namespace

ZR_DEFINE_TYPE_IDENTITY(zrPArray)

zrPArray::~zrPArray() = default;

void zrPArray::SetMem(void* const block) {
  // The new block is counted before it is stored, so a block without the mark is
  // refused with the array unchanged.
  if (block) zrIncMemRef(block);
  void* const old = mem_;
  mem_ = block;
  if (old) zrDecMemRef(old);
}

int zrPArray::GetNumOfRef() const { return mem_ ? zrGetMemRef(mem_) - 1 : 0; }

int zrPArray::IsShared() const { return !mem_ || GetNumOfRef() != 0 ? 1 : 0; }

int zrPArray::IsExternShared() const { return mem_ ? 0 : 1; }

// The checks work in 64 bits from the element extents: the extents in bytes may pass the
// 32-bit range (a view of a few doubles with a long step), and a check made on their
// wrapped values would pass such a view. The extent below the origin counts by its size
// whatever its sign: the arrays report it as zero or negative, and a range that starts
// before the memory is refused either way.
int zrPArray::RangeCheck(const void* base, std::int64_t bytes) const {
  const std::int64_t size = GetSizeOfType();
  const std::int64_t positive = static_cast<std::int64_t>(PositiveLength()) * size;
  const std::int64_t below = NegativeLength();
  const std::int64_t negative = (below < 0 ? -below : below) * size;
  const std::int64_t off = ByteDistance(base, Pointer());
  if (off - bytes + positive > 0) return 0;
  return off - negative < 0 ? 0 : 1;
}

int zrPArray::BlockCheck(bool boundary) const {
  const std::int64_t size = GetSizeOfType();
  const std::int64_t off = ByteDistance(mem_, Pointer());
  if (boundary && (size <= 0 || off % size != 0)) return 0;
  return RangeCheck(mem_, zr::detail::BlockCount(mem_) * size);
}

int zrPArray::CheckPointer() const { return mem_ ? BlockCheck(false) : 1; }

int zrPArray::CheckPointer(const void* p, int n) const {
  if (mem_) return BlockCheck(true);
  return RangeCheck(p, n);
}

void zrPArray::CheckPointerWithThrow() const {
  if (!CheckPointer()) throw BadParameters("CheckPointer : Invalid pointer or range.");
}

void zrPArray::CheckPointerWithThrow(const void* p, int n) const {
  if (!CheckPointer(p, n)) throw BadParameters("CheckPointer : Invalid pointer or range.");
}

int zrPArray::BytePositiveLength() const {
  return static_cast<int>(static_cast<std::int64_t>(PositiveLength()) * GetSizeOfType());
}

int zrPArray::ByteNegativeLength() const {
  return static_cast<int>(static_cast<std::int64_t>(NegativeLength()) * GetSizeOfType());
}

int zrPArray::MemSize() const { ThrowHaveNot("Have not zrPArray::MemSize"); }
int zrPArray::ToMem(unsigned char*) const { ThrowHaveNot("Have not zrPArray::ToMem"); }
int zrPArray::FromMem(const unsigned char*) { ThrowHaveNot("Have not zrPArray::FromMem"); }
