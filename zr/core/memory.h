/// \file
/// Allocation and reference-counted element blocks.
///
/// zrMalloc, zrRealloc and zrFree are the only way the library allocates. They never
/// return null: exhaustion throws zrErrNoMemory with the size that was asked for.
///
/// A reference-counted block is one zrMalloc allocation holding an 8-byte header in
/// front of its elements. Users hold the address of element 0 (the "user pointer"):
///
///   user - 8   int32   holder count, 1 when the block is made
///   user - 4   int32   minus the element count n (n >= 1); the negative sign marks a
///                      block that zrNewWithRef made
///   user + 0   n * sizeof(T) bytes of elements
///
/// The header's count is always the exact element count, and zrNewWithRef allocates
/// exactly n * sizeof(T) + 8 bytes. What lies beyond the last element is the allocator's
/// business: a sole owner that grows its block (zrSimpleArray) may have the allocation
/// underneath resized to more than its elements need, so that later growth finds room
/// where the block lies. Under AddressSanitizer that room is kept poisoned until the count
/// reaches it.
///
/// Sharing a block costs one increment of the holder count and no separate control
/// block. The counts are plain integers: no block may be used from two threads at once.
///
/// Element 0 sits 8 bytes into a malloc'ed region, so it is 8-byte aligned; element types
/// that need more alignment are refused at compile time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

#include "zr/core/exceptions.h"
#include "zr/core/export.h"

#if defined(__SANITIZE_ADDRESS__)
#define ZR_DETAIL_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZR_DETAIL_ASAN 1
#endif
#endif
#if defined(ZR_DETAIL_ASAN)
#include <sanitizer/asan_interface.h>
#endif

/// malloc(size); throws zrErrNoMemory(size) when it gives null. A size of 0 is passed on
/// unchecked (the C library decides what it returns).
ZR_API void* zrMalloc(std::uint64_t size);
/// realloc(p, size); throws zrErrNoMemory(size) when it gives null, and the old block
/// then stays valid and the caller's.
ZR_API void* zrRealloc(void* p, std::uint64_t size);
/// free(p); a null pointer is ignored.
ZR_API void zrFree(void* p);

namespace zr::detail {

constexpr std::uint64_t kBlockHeader = 8;

inline std::int32_t* BlockHeader(const void* user) {
  return static_cast<std::int32_t*>(const_cast<void*>(user)) - 2;
}

// The word at user - 4: negative (minus the element count) for a counted block.
inline std::int32_t BlockMark(const void* user) { return BlockHeader(user)[1]; }

// The element count of a counted block: the magnitude of its mark.
inline std::int32_t BlockCount(const void* user) {
  const std::int32_t mark = BlockMark(user);
  return mark < 0 ? -mark : mark;
}

// Marks the bytes [begin, end) of an allocation as readable (usable) or not for
// AddressSanitizer; without it, does nothing. The room past a block's last element is
// kept unusable, so that a read past the count is still reported.
inline void MarkUsable(const void* begin, const void* end, bool usable) {
#if defined(ZR_DETAIL_ASAN)
  const auto bytes =
      static_cast<std::size_t>(static_cast<const char*>(end) - static_cast<const char*>(begin));
  if (usable) {
    __asan_unpoison_memory_region(begin, bytes);
  } else {
    __asan_poison_memory_region(begin, bytes);
  }
#else
  static_cast<void>(begin), static_cast<void>(end), static_cast<void>(usable);
#endif
}

// Allocates a block of n elements of `size` bytes with the given holder count and
// returns its user pointer; n >= 1 is the caller's business. The elements are raw.
ZR_API void* NewBlock(std::int32_t n, std::uint64_t size, std::int32_t holders);

// Frees the whole allocation behind a user pointer: at user - 8 for a counted block,
// at user - 4 for memory without the mark.
ZR_API void FreeBlock(const void* user) noexcept;

[[noreturn]] ZR_API void ThrowNewWithRefCount();

// A block length grown by a sum the caller computes in 64 bits: past the 32-bit length
// it is a block that cannot be made, refused with the byte count it would take.
inline std::int32_t GrownLength(std::int64_t length, std::uint64_t size) {
  if (length > INT32_MAX)
    throw zrErrNoMemory(static_cast<std::uint64_t>(length) * size + kBlockHeader);
  return static_cast<std::int32_t>(length);
}

}  // namespace zr::detail

/// Makes a block of n elements, stores its user pointer in p and returns it. Elements of
/// trivial types are left uninitialised; others are default-constructed, and if one of
/// those constructors throws, the ones already made are destroyed and the block is freed
/// before the exception goes on. n < 1 throws BadParameters("zrNewWithRef : n <= 0 ")
/// and allocates nothing.
template <class T>
T* zrNewWithRef(T*& p, int n) {
  static_assert(alignof(T) <= zr::detail::kBlockHeader, "block elements are 8-byte aligned");
  if (n < 1) zr::detail::ThrowNewWithRefCount();
  T* const first = static_cast<T*>(zr::detail::NewBlock(n, sizeof(T), 1));
  if constexpr (!std::is_trivially_default_constructible_v<T>) {
    int made = 0;
    try {
      for (; made < n; ++made) ::new (static_cast<void*>(first + made)) T;
    } catch (...) {
      while (made > 0) first[--made].~T();
      zr::detail::FreeBlock(first);
      throw;
    }
  }
  p = first;
  return first;
}

/// Adds a holder. Memory without the negative mark throws
/// BadParameters("zrIncMemRef : memory must be allocated with zrNewWithRef.").
ZR_API void zrIncMemRef(const void* p);

/// Removes a holder that is known not to be the last one; never frees. Memory without the
/// mark throws "zrDecMemRef : memory must be allocated with zrNewWithRef."; a count that
/// falls below 1 throws "zrDecMemRef : Number of reference <= 0." and stays lowered.
ZR_API void zrDecMemRef(const void* p);

/// The holder count, writable. Memory without the mark throws the same text as
/// zrIncMemRef, which it names (the text is shared on purpose).
ZR_API std::int32_t& zrGetMemRef(const void* p);

/// Gives up one holder of a block and frees it when none is left; elements of class type
/// are destroyed first (all |mark| of them). A null pointer is ignored. Memory without the
/// negative mark is treated as a plain block with a 4-byte prefix and freed at once.
/// Never throws.
template <class T>
void zrDeleteWithRef(T* p) noexcept {
  if (!p) return;
  const std::int32_t mark = zr::detail::BlockMark(p);
  if (mark < 0) {
    std::int32_t& holders = zr::detail::BlockHeader(p)[0];
    if (--holders > 0) return;
    if constexpr (!std::is_void_v<T> && !std::is_trivially_destructible_v<T>) {
      for (std::int32_t i = -mark; i > 0; --i) p[i - 1].~T();
    }
  }
  zr::detail::FreeBlock(p);
}
