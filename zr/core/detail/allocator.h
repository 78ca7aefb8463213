// Scratch containers for the library's own sources: a standard allocator over zrMalloc and
// zrFree. Library source, not installed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zr/core/memory.h"

namespace zr::detail {

// A standard allocator over zrMalloc/zrFree, for the library's own scratch containers
// (std::vector<T, Allocator<T>>): their memory is the library's like every other, and a
// failure is zrErrNoMemory (and a failure point of the fault schedule).
template <class T>
struct Allocator {
  using value_type = T;
  Allocator() = default;
  template <class U>
  Allocator(const Allocator<U>&) noexcept {}  // NOLINT(google-explicit-constructor)
  T* allocate(std::size_t n) {
    return static_cast<T*>(zrMalloc(static_cast<std::uint64_t>(n) * sizeof(T)));
  }
  void deallocate(T* p, std::size_t) noexcept { zrFree(p); }
  template <class U>
  bool operator==(const Allocator<U>&) const noexcept {
    return true;
  }
  template <class U>
  bool operator!=(const Allocator<U>&) const noexcept {
    return false;
  }
};

// A vector whose memory comes from zrMalloc.
template <class T>
using Vector = std::vector<T, Allocator<T>>;

}  // namespace zr::detail
