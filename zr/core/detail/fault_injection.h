/// \file
/// Allocation-failure injection for testing.
///
/// Present only in a build configured with -DZR_FAULT_INJECTION=ON, which defines
/// ZR_FAULT_INJECTION for the library and for every target that links it. Without the
/// option this header declares nothing, and zrMalloc, zrRealloc and zrFree carry no
/// counter and no test: the option costs nothing when it is off.
///
/// With the option on, every zrMalloc and zrRealloc call is one allocation of the
/// failure schedule. A scheduled failure throws zrErrNoMemory with the size asked for,
/// exactly as an exhausted heap would; a failed zrRealloc leaves the old block valid and
/// the caller's. The library keeps a count of the blocks it holds, so that a test can
/// check that an operation which threw gave back everything it took.
///
/// Like the rest of the library the schedule and the count are plain process-wide data:
/// one thread at a time.
#pragma once

#if defined(ZR_FAULT_INJECTION)

#include "zr/core/export.h"

namespace zr::testing {

/// Makes the n-th allocation from now (n >= 1) fail; with persistent, every allocation
/// from the n-th on fails too, until ClearFailure. Restarts the count of allocations.
/// n < 1 clears the schedule.
ZR_API void FailAllocation(long n, bool persistent);

/// Lets every allocation succeed again.
ZR_API void ClearFailure();

/// Allocations made since the last FailAllocation or ClearFailure, failed ones included.
ZR_API long AllocationsSinceSchedule();

/// Failures injected since the last FailAllocation or ClearFailure.
ZR_API long InjectedFailures();

/// Blocks obtained from zrMalloc or from zrRealloc of a null pointer and not yet given
/// back to zrFree.
ZR_API long LiveAllocations();

}  // namespace zr::testing

#endif
