#include "zr/core/memory.h"

#include <cstdlib>
#include <limits>

namespace {

// A request the platform's size_t cannot express fails like any other.
std::size_t CheckedSize(std::uint64_t size) {
  if (size > std::numeric_limits<std::size_t>::max()) throw zrErrNoMemory(size);
  return static_cast<std::size_t>(size);
}

// The header of a counted block, or null for memory without the mark (a null pointer
// has no header and counts as such memory).
std::int32_t* HeaderIfCounted(const void* p) {
  if (!p) return nullptr;
  std::int32_t* const header = zr::detail::BlockHeader(p);
  return header[1] < 0 ? header : nullptr;
}

// The header test shared by zrIncMemRef and zrGetMemRef, which report it with one text.
std::int32_t* CountedHeader(const void* p) {
  std::int32_t* const header = HeaderIfCounted(p);
  if (!header) throw BadParameters("zrIncMemRef : memory must be allocated with zrNewWithRef.");
  return header;
}

}  // namespace

void* zrMalloc(std::uint64_t size) {
  void* const p = std::malloc(CheckedSize(size));
  if (!p) throw zrErrNoMemory(size);
  return p;
}

void* zrRealloc(void* p, std::uint64_t size) {
  void* const q = std::realloc(p, CheckedSize(size));
  if (!q) throw zrErrNoMemory(size);
  return q;
}

void zrFree(void* p) {
  if (p) std::free(p);
}

namespace zr::detail {

void* NewBlock(std::int32_t n, std::uint64_t size, std::int32_t holders) {
  const std::uint64_t bytes = static_cast<std::uint64_t>(n) * size + kBlockHeader;
  auto* const header = static_cast<std::int32_t*>(zrMalloc(bytes));
  header[0] = holders;
  header[1] = -n;
  return header + 2;
}

void FreeBlock(const void* user) noexcept {
  auto* const base = static_cast<char*>(const_cast<void*>(user));
  zrFree(BlockMark(user) < 0 ? base - kBlockHeader : base - 4);
}

void ThrowNewWithRefCount() { throw BadParameters("zrNewWithRef : n <= 0 "); }

}  // namespace zr::detail

void zrIncMemRef(const void* p) { ++CountedHeader(p)[0]; }

void zrDecMemRef(const void* p) {
  std::int32_t* const header = HeaderIfCounted(p);
  if (!header) throw BadParameters("zrDecMemRef : memory must be allocated with zrNewWithRef.");
  if (--header[0] < 1) throw BadParameters("zrDecMemRef : Number of reference <= 0.");
}

std::int32_t& zrGetMemRef(const void* p) { return CountedHeader(p)[0]; }
