#include "zr/core/memory.h"

#include <cstdint>
#include <cstdlib>
#include <limits>

#if defined(__linux__)
#include <sys/mman.h>
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
