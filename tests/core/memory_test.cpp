// Raw allocation and the reference-counted block. Under the asan preset every test also
// proves that each block is freed once, at the address it was allocated at.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;

// The two header words before element 0: the holder count and the mark (minus the length).
std::int32_t Holders(const void* p) { return static_cast<const std::int32_t*>(p)[-2]; }
std::int32_t Mark(const void* p) { return static_cast<const std::int32_t*>(p)[-1]; }

// Counts its constructions and destructions; construction number throw_at throws.
struct Tracked {
  inline static int made = 0, destroyed = 0, throw_at = 0;
  Tracked() {
    if (++made == throw_at) throw 7;
  }
  ~Tracked() { ++destroyed; }
};

}  // namespace

TEST(CountedBlock, HeaderHoldsTheCountAndTheMark) {
  double* q = nullptr;
  EXPECT_EQ(zrNewWithRef(q, 3), q);
  EXPECT_TRUE(Holders(q) == 1 && Mark(q) == -3);
  zrIncMemRef(q);
  EXPECT_EQ(zrGetMemRef(q), 2);
  zrDecMemRef(q);
  EXPECT_EQ(Holders(q), 1);
  EXPECT_EQ(BadParametersText([&] { zrDecMemRef(q); }),
            "Invalid parameters : zrDecMemRef : Number of reference <= 0.");
  EXPECT_EQ(Holders(q), 0);  // lowered, and the block is still there
  q[2] = 1.5;                // the last element fits the allocation
  zrDeleteWithRef(q);        // a count at or below 0 still frees, from the start of the header

  EXPECT_EQ(BadParametersText([&] { zrNewWithRef(q, 0); }),
            "Invalid parameters : zrNewWithRef : n <= 0 ");
}

TEST(CountedBlock, PlainMemoryIsRefusedAndFreedFourBytesBefore) {
  // Plain memory with a non-negative word where a counted block keeps its mark and no
  // holder word at all: a check that wrote or read the count first would overflow it.
  const std::string inc =
      "Invalid parameters : zrIncMemRef : memory must be allocated with zrNewWithRef.";
  for (std::int32_t mark : {0, 5}) {
    auto* words = static_cast<std::int32_t*>(zrMalloc(3 * sizeof(std::int32_t)));
    words[0] = mark;
    std::int32_t* const p = words + 1;
    EXPECT_EQ(BadParametersText([&] { zrIncMemRef(p); }), inc);
    EXPECT_EQ(BadParametersText([&] { zrGetMemRef(p); }), inc);  // names zrIncMemRef too
    EXPECT_EQ(BadParametersText([&] { zrDecMemRef(p); }),
              "Invalid parameters : zrDecMemRef : memory must be allocated with zrNewWithRef.");
    zrDeleteWithRef(p);  // nothing destroyed, no count read: freed at words
  }
}

TEST(CountedBlock, AThrowingElementConstructorUndoesTheBlock) {
  Tracked::throw_at = 3;
  Tracked* p = nullptr;
  EXPECT_THROW(zrNewWithRef(p, 5), int);
  EXPECT_TRUE(Tracked::made == 3 && Tracked::destroyed == 2 && p == nullptr);
}

TEST(RawMemory, ExhaustionThrowsNoMemoryAndKeepsTheOldBlock) {
  constexpr std::uint64_t kImpossible = std::uint64_t{1} << 62;
  EXPECT_THROW(zrFree(zrMalloc(kImpossible)), zrErrNoMemory);
  EXPECT_EQ(std::string(zrExceptionWithMessageGetMessage()), zr_test::NoMemoryText(kImpossible));
  auto* p = static_cast<unsigned char*>(zrMalloc(16));
  std::memset(p, 7, 16);
  EXPECT_THROW(p = static_cast<unsigned char*>(zrRealloc(p, kImpossible)), zrErrNoMemory);
  p = static_cast<unsigned char*>(zrRealloc(p, 64));  // the old block is intact and ours
  EXPECT_EQ(p[15], 7);
  zrFree(p);
}
