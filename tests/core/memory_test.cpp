// Raw allocation and the reference-counted block. Under the asan preset every test also
// proves that each block is freed once, at the address it was allocated at.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "support/test_support.h"
#include "zr/core/exceptions.h"
#include "zr/core/memory.h"

namespace {

using zr_test::BadParametersText;
using zr_test::NoMemoryText;

std::int32_t Holders(const void* p) { return static_cast<const std::int32_t*>(p)[-2]; }
std::int32_t Mark(const void* p) { return static_cast<const std::int32_t*>(p)[-1]; }

constexpr std::uint64_t kImpossible = std::uint64_t{1} << 62;

// Counts its constructions and destructions; construction number throw_at throws.
struct Tracked {
  static int made, destroyed, throw_at;
  int value;
  Tracked() : value(42) {
    if (++made == throw_at) throw 7;
  }
  ~Tracked() { ++destroyed; }
  static void Reset(int at = 0) {
    made = destroyed = 0;
    throw_at = at;
  }
};
int Tracked::made, Tracked::destroyed, Tracked::throw_at;

}  // namespace

TEST(CountedBlock, FreshBlockHeaderAndLayout) {
  double* p = nullptr;
  double* const r = zrNewWithRef(p, 3);
  EXPECT_EQ(r, p);
  EXPECT_EQ(Holders(p), 1);
  EXPECT_EQ(Mark(p), -3);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 8, 0u);
  p[0] = p[1] = p[2] = 1.5;  // all three elements fit the allocation
  // The allocation starts 8 bytes before element 0: freeing it there must be exact.
  zrFree(reinterpret_cast<char*>(p) - 8);
}

TEST(CountedBlock, NonPositiveCountThrowsAndAllocatesNothing) {
  for (int n : {0, -1, INT_MIN}) {
    int* p = &n;
    EXPECT_EQ(BadParametersText([&] { zrNewWithRef(p, n); }),
              "Invalid parameters : zrNewWithRef : n <= 0 ");
    EXPECT_EQ(p, &n);
  }
}

TEST(CountedBlock, PlainMemoryIsRefused) {
  // A plain allocation seen through an interior pointer: holder word 7, then a
  // non-negative word where a counted block keeps its mark.
  auto* words = static_cast<std::int32_t*>(zrMalloc(4 * sizeof(std::int32_t)));
  for (std::int32_t mark : {0, 5}) {
    words[0] = 7;
    words[1] = mark;
    const void* p = words + 2;
    const std::string inc =
        "Invalid parameters : zrIncMemRef : memory must be allocated with zrNewWithRef.";
    EXPECT_EQ(BadParametersText([&] { zrIncMemRef(p); }), inc);
    EXPECT_EQ(BadParametersText([&] { zrGetMemRef(p); }), inc);  // names zrIncMemRef too
    EXPECT_EQ(BadParametersText([&] { zrDecMemRef(p); }),
              "Invalid parameters : zrDecMemRef : memory must be allocated with zrNewWithRef.");
    EXPECT_EQ(words[0], 7);
  }
  zrFree(words);
}

TEST(CountedBlock, HoldersComeAndGo) {
  int* p = nullptr;
  zrNewWithRef(p, 2);
  zrIncMemRef(p);
  EXPECT_EQ(zrGetMemRef(p), 2);
  zrGetMemRef(p) = 3;
  EXPECT_EQ(Holders(p), 3);
  zrDecMemRef(p);
  zrDecMemRef(p);
  EXPECT_EQ(Holders(p), 1);
  EXPECT_EQ(Mark(p), -2);

  EXPECT_EQ(BadParametersText([&] { zrDecMemRef(p); }),
            "Invalid parameters : zrDecMemRef : Number of reference <= 0.");
  EXPECT_EQ(Holders(p), 0);  // lowered, and the block is still there
  p[1] = 9;
  zrDeleteWithRef(p);  // a count at or below 0 still frees

  zrDeleteWithRef(static_cast<int*>(nullptr));
  zrNewWithRef(p, 4);
  zrIncMemRef(p);
  zrDeleteWithRef(p);
  EXPECT_EQ(Holders(p), 1);
  p[3] = 11;           // still the remaining holder's memory
  zrDeleteWithRef(p);  // freed now; a leak or double free shows under the sanitizer
}

TEST(CountedBlock, DeleteWithRefFreesUnmarkedMemoryFourBytesBefore) {
  // The word in front is 0 or positive, so the allocation is taken to start 4 bytes
  // before the pointer; nothing is destroyed and no count is read.
  for (std::int32_t prefix : {0, 3}) {
    auto* base = static_cast<std::int32_t*>(zrMalloc(3 * sizeof(std::int32_t)));
    base[0] = prefix;
    zrDeleteWithRef(base + 1);
  }
}

TEST(CountedBlock, ClassElementsLiveAsLongAsTheBlock) {
  Tracked::Reset();
  Tracked* p = nullptr;
  zrNewWithRef(p, 4);
  EXPECT_EQ(Tracked::made, 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(p[i].value, 42);
  zrIncMemRef(p);
  zrDeleteWithRef(p);
  EXPECT_EQ(Tracked::destroyed, 0);
  zrDeleteWithRef(p);
  EXPECT_EQ(Tracked::destroyed, 4);
}

TEST(CountedBlock, ThrowingConstructorUndoesTheBlock) {
  Tracked::Reset(3);
  Tracked* p = nullptr;
  EXPECT_THROW(zrNewWithRef(p, 5), int);
  EXPECT_EQ(Tracked::made, 3);
  EXPECT_EQ(Tracked::destroyed, 2);  // the two that were made; the leak check sees the rest
  EXPECT_EQ(p, nullptr);
}

TEST(RawMemory, ExhaustionThrowsNoMemoryWithTheSize) {
  zrExceptionWithMessage::Set("stale");
  try {
    zrFree(zrMalloc(kImpossible));
    ADD_FAILURE() << "zrMalloc did not throw";
  } catch (const zrErrNoMemory& e) {
    EXPECT_EQ(e.GetSize(), kImpossible);
    EXPECT_EQ(std::string(e.GetMessageText()), NoMemoryText(kImpossible));
  }

  auto* p = static_cast<unsigned char*>(zrMalloc(16));
  for (int i = 0; i < 16; ++i) p[i] = static_cast<unsigned char>(i);
  try {
    p = static_cast<unsigned char*>(zrRealloc(p, kImpossible));
    ADD_FAILURE() << "zrRealloc did not throw";
  } catch (const zrErrNoMemory& e) {
    EXPECT_EQ(e.GetSize(), kImpossible);
  }
  for (int i = 0; i < 16; ++i) EXPECT_EQ(p[i], i);  // the old block is intact and ours
  p = static_cast<unsigned char*>(zrRealloc(p, 64));
  EXPECT_EQ(p[15], 15);
  zrFree(p);
  zrFree(nullptr);
}
