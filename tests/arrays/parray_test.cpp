// The shared buffer base: sharing states, the base's counted switch, the range checks and
// the missing flat form. Its copies take the block pointer raw; the derived classes'
// sharing tests cover them.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;

const std::string kRange = "Invalid parameters : CheckPointer : Invalid pointer or range.";

// A minimal array of doubles over the base: an origin, a length and an extent below the
// origin, with the base's own SetMem and block pointer handling. A block given to the
// constructor is taken over uncounted, as an owner takes the block it has just made.
class Doubles : public zrPArray {
 public:
  explicit Doubles(void* origin = nullptr, int length = 0, int negative = 0, void* block = nullptr)
      : origin_(origin), length_(length), negative_(negative) {
    InitMem(block);
  }

  void* Pointer() const override { return origin_; }
  int PositiveLength() const override { return length_; }
  int NegativeLength() const override { return negative_; }
  int GetSizeOfType() const override { return sizeof(double); }
  void Copy() override {}

 private:
  void* origin_ = nullptr;
  int length_ = 0;
  int negative_ = 0;
};

// Other holders, shared, external.
std::tuple<int, int, int> State(const zrPArray& a) {
  return {a.GetNumOfRef(), a.IsShared(), a.IsExternShared()};
}

}  // namespace

TEST(PArray, SharingStatesFollowTheBlockCount) {
  double* block = nullptr;
  zrNewWithRef(block, 4);
  Doubles owner(block, 4, 0, block);
  Doubles sharer(block + 1, 2);
  sharer.SetMem(block);
  EXPECT_EQ(State(owner), std::make_tuple(1, 1, 0));

  // The base switch never frees: letting the block go lowers the count only.
  sharer.SetMem(nullptr);
  EXPECT_EQ(State(sharer), std::make_tuple(0, 1, 1));
  EXPECT_EQ(State(owner), std::make_tuple(0, 0, 0));  // the sole owner again

  // A refused block leaves the old one in place, counted as before.
  auto* raw = static_cast<double*>(zrMalloc(4 * sizeof(double)));
  reinterpret_cast<int*>(raw)[1] = 5;  // the word before raw + 1 is not negative
  EXPECT_THROW(owner.SetMem(raw + 1), BadParameters);
  EXPECT_TRUE(owner.GetMem() == block && zrGetMemRef(block) == 1);
  zrFree(raw);

  // Switching the sole holder away would leave the block without holders.
  EXPECT_EQ(BadParametersText([&] { owner.SetMem(nullptr); }),
            "Invalid parameters : zrDecMemRef : Number of reference <= 0.");
  zrDeleteWithRef(block);  // the count was left at 0
}

TEST(PArray, BlockRangeAndBoundaryChecks) {
  double* block = nullptr;
  zrNewWithRef(block, 12);  // 96 bytes
  // Origin in bytes, length, extent below the origin, then CheckPointer() and
  // CheckPointer(p, n), which also wants the origin on the element grid.
  const int cases[][5] = {
      {40, 10, 0, 0, 0},  // 10 elements from element 5 run 24 bytes past the end
      {40, 7, 0, 1, 1},   // up to the last byte
      {4, 2, 0, 1, 0},    // off the element grid
      {16, 3, 2, 1, 1},   // the extent below the origin stays inside
      {16, 3, 3, 0, 0},   // ... or starts before the block
      {16, 3, -2, 1, 1},  // the same extents as the arrays report them, zero or below
      {16, 3, -3, 0, 0},        {0, 1, -1, 0, 0},  // one element before the block
      {8, 1 << 29, 0, 0, 0},                       // 2^32 bytes: no longer wrapped to a few
      {88, 1, -(1 << 29), 0, 0}                    // ... nor below the origin
  };
  for (const auto& [bytes, length, negative, whole, aligned] : cases) {
    const Doubles a(reinterpret_cast<char*>(block) + bytes, length, negative, block);
    EXPECT_EQ(a.CheckPointer(), whole) << bytes << ' ' << length;
    // p and n are ignored with a block.
    EXPECT_EQ(a.CheckPointer(nullptr, 0), aligned) << bytes << ' ' << length;
    if (!whole) {
      EXPECT_EQ(BadParametersText([&] { a.CheckPointerWithThrow(); }), kRange);
    }
  }
  zrDeleteWithRef(block);
}

TEST(PArray, ExternalArraysAreCheckedAgainstTheGivenBytes) {
  double data[10] = {};
  const Doubles a(data, 10);
  // 80 bytes hold the 10 doubles, 79 do not.
  EXPECT_NO_THROW(a.CheckPointerWithThrow(data, 80));
  EXPECT_EQ(BadParametersText([&] { a.CheckPointerWithThrow(data, 79); }), kRange);

  // Without a block the argument-free check passes without looking at memory.
  const Doubles wild(reinterpret_cast<void*>(0x10), 1000);  // NOLINT
  EXPECT_EQ(wild.CheckPointer(), 1);

  for (int below : {2, -2}) {
    const Doubles reaching_back(data + 2, 8, below);
    EXPECT_EQ(reaching_back.CheckPointer(data, 80), 1);
    EXPECT_EQ(reaching_back.CheckPointer(data + 1, 72), 0);  // starts before the given memory
  }
}

TEST(PArray, BaseHasNoFlatForm) {
  Doubles a;
  unsigned char buffer[8] = {};
  EXPECT_EQ(BadParametersText([&] { a.MemSize(); }),
            "Invalid parameters : Have not zrPArray::MemSize");
  EXPECT_EQ(BadParametersText([&] { zrToMem(buffer, a); }),
            "Invalid parameters : Have not zrPArray::ToMem");
  EXPECT_EQ(BadParametersText([&] { zrFromMem(buffer, a); }),
            "Invalid parameters : Have not zrPArray::FromMem");
}
