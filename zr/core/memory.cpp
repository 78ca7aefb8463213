#include "zr/core/memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

#if defined(__linux__)
#include <sys/mman.h>
#endif
#if defined(ZR_DETAIL_ASAN)
#include <sanitizer/asan_interface.h>
#endif

#include "zr/core/detail/fault_injection.h"

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

// Large blocks (4 MiB and more) ask for 2 MiB pages over the whole 2 MiB spans they cover, where
// the system hands them out on request: strided walks over big arrays (axes exchanged, say) then
// miss the address translation caches far less often. The block itself and its release stay the
// allocator's; this is advice only, and its failure is ignored.
void AdviseLargePages(void* p, std::size_t size) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  constexpr std::uintptr_t kHuge = std::uintptr_t{1} << 21;
  if (size < 2 * kHuge) return;
  const auto begin = (reinterpret_cast<std::uintptr_t>(p) + kHuge - 1) & ~(kHuge - 1);
  const auto end = (reinterpret_cast<std::uintptr_t>(p) + size) & ~(kHuge - 1);
  if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
  (void)p, (void)size;
#endif
}

#if defined(ZR_FAULT_INJECTION)

// The failure schedule and the count of live blocks (see fault_injection.h).
struct FaultState {
  long fail_at = 0;  // the allocation that fails first, 0 for none
  bool persistent = false;
  long calls = 0;     // allocations since the schedule was set
  long injected = 0;  // failures injected since then
  long live = 0;
};

FaultState& Faults() {
  static FaultState state;
  return state;
}

// Counts one allocation and throws when the schedule says it fails.
void CountAllocation(std::uint64_t size) {
  FaultState& f = Faults();
  ++f.calls;
  if (f.fail_at > 0 && (f.calls == f.fail_at || (f.persistent && f.calls > f.fail_at))) {
    ++f.injected;
    throw zrErrNoMemory(size);
  }
}

#endif

}  // namespace

void* zrMalloc(std::uint64_t size) {
#if defined(ZR_FAULT_INJECTION)
  CountAllocation(size);
#endif
  void* const p = std::malloc(CheckedSize(size));
  if (!p) throw zrErrNoMemory(size);
  AdviseLargePages(p, static_cast<std::size_t>(size));
#if defined(ZR_FAULT_INJECTION)
  ++Faults().live;
#endif
  return p;
}

void* zrRealloc(void* p, std::uint64_t size) {
#if defined(ZR_FAULT_INJECTION)
  CountAllocation(size);
#endif
  void* const q = std::realloc(p, CheckedSize(size));
  if (!q) throw zrErrNoMemory(size);
  AdviseLargePages(q, static_cast<std::size_t>(size));
#if defined(ZR_FAULT_INJECTION)
  if (!p) ++Faults().live;
#endif
  return q;
}

void zrFree(void* p) {
#if defined(ZR_FAULT_INJECTION)
  if (p) --Faults().live;
#endif
  if (p) std::free(p);
}

#if defined(ZR_FAULT_INJECTION)

namespace zr::testing {

void FailAllocation(long n, bool persistent) {
  FaultState& f = Faults();
  f.fail_at = n > 0 ? n : 0;
  f.persistent = persistent;
  f.calls = 0;
  f.injected = 0;
}

void ClearFailure() { FailAllocation(0, false); }

long AllocationsSinceSchedule() { return Faults().calls; }

long InjectedFailures() { return Faults().injected; }

long LiveAllocations() { return Faults().live; }

}  // namespace zr::testing

#endif

namespace zr::detail {

void* NewBlock(std::int32_t n, std::uint64_t size, std::int32_t holders) {
  const std::uint64_t bytes = static_cast<std::uint64_t>(n) * size;
  char* const user = static_cast<char*>(zrMalloc(bytes + kBlockPrefix)) + kBlockPrefix;
  BlockRoom(user) = bytes;
  BlockHeader(user)[0] = holders;
  BlockHeader(user)[1] = -n;
  return user;
}

void FreeBlock(const void* user) noexcept {
  auto* const base = static_cast<char*>(const_cast<void*>(user));
  zrFree(BlockMark(user) < 0 ? base - kBlockPrefix : base - 4);
}

void ThrowNewWithRefCount() { throw BadParameters("zrNewWithRef : n <= 0 "); }

namespace {

// The room past the visible elements is out of bounds for a sanitised build: poisoned
// when it is left behind, unpoisoned as the length grows into it.
void Hide(char* from, std::uint64_t bytes) {
#if defined(ZR_DETAIL_ASAN)
  if (bytes > 0) __asan_poison_memory_region(from, static_cast<std::size_t>(bytes));
#else
  static_cast<void>(from), static_cast<void>(bytes);
#endif
}

void Show(char* from, std::uint64_t bytes) {
#if defined(ZR_DETAIL_ASAN)
  __asan_unpoison_memory_region(from, static_cast<std::size_t>(bytes));
#else
  static_cast<void>(from), static_cast<void>(bytes);
#endif
}

}  // namespace

void* ResizeSoleBlock(void* user, std::int32_t n, std::int32_t m, std::uint64_t size) {
  char* const at = static_cast<char*>(user);
  const std::uint64_t had = static_cast<std::uint64_t>(n) * size;
  const std::uint64_t bytes = static_cast<std::uint64_t>(m) * size;
  const std::uint64_t room = BlockRoom(user);
  if (m > n ? bytes <= room : bytes >= room - room / 2) {
    if (m > n) {
      Show(at + had, bytes - had);
    } else {
      Hide(at + bytes, had - bytes);
    }
    BlockHeader(user)[1] = -m;
    return user;
  }
  const std::uint64_t most = std::uint64_t{INT32_MAX} * size;
  const std::uint64_t want = m > n ? std::max(bytes, std::min(had + had / 2, most)) : bytes;
  char* base = nullptr;
  try {
    base = static_cast<char*>(zrRealloc(at - kBlockPrefix, want + kBlockPrefix));
  } catch (const zrErrNoMemory&) {
    if (want == bytes) throw;
    throw zrErrNoMemory(bytes + kBlockPrefix);
  }
  char* const moved = base + kBlockPrefix;
  BlockRoom(moved) = want;
  BlockHeader(moved)[1] = -m;
  Hide(moved + bytes, want - bytes);
  return moved;
}

}  // namespace zr::detail

void zrIncMemRef(const void* p) { ++CountedHeader(p)[0]; }

void zrDecMemRef(const void* p) {
  std::int32_t* const header = HeaderIfCounted(p);
  if (!header) throw BadParameters("zrDecMemRef : memory must be allocated with zrNewWithRef.");
  if (--header[0] < 1) throw BadParameters("zrDecMemRef : Number of reference <= 0.");
}

std::int32_t& zrGetMemRef(const void* p) { return CountedHeader(p)[0]; }
