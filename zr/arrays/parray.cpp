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

// The checks are written with 64-bit intermediates: for every extent the 32-bit byte
// lengths can express they give the same answers as 32-bit arithmetic, without its
// overflow.
int zrPArray::BlockCheck(bool boundary) const {
  const std::int64_t positive = BytePositiveLength();
  const std::int64_t negative = ByteNegativeLength();
  const std::int64_t size = GetSizeOfType();
  const std::int64_t off = ByteDistance(mem_, Pointer());
  if (boundary && (size <= 0 || off % size != 0)) return 0;
  const std::int64_t block_bytes = zr::detail::BlockCount(mem_) * size;
  if (off - block_bytes + positive > 0) return 0;
  return off - negative < 0 ? 0 : 1;
}

int zrPArray::CheckPointer() const { return mem_ ? BlockCheck(false) : 1; }

int zrPArray::CheckPointer(const void* p, int n) const {
  if (mem_) return BlockCheck(true);
  const std::int64_t off = ByteDistance(p, Pointer());
  if (off - n + BytePositiveLength() > 0) return 0;
  return off - ByteNegativeLength() < 0 ? 0 : 1;
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
