#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;

// A minimal array of doubles over the base: an origin, a length and an extent below the
// origin, with the base's own SetMem and block pointer handling.
class Doubles : public zrPArray {
 public:
  Doubles() = default;
  Doubles(double* origin, int length, int negative = 0)
      : origin_(origin), length_(length), negative_(negative) {}

  using zrPArray::InitMem;

  void* Pointer() const override { return origin_; }
  int PositiveLength() const override { return length_; }
  int NegativeLength() const override { return negative_; }
  int GetSizeOfType() const override { return sizeof(double); }
  void Copy() override {}

  void SetOrigin(void* origin) { origin_ = static_cast<double*>(origin); }

 private:
  double* origin_ = nullptr;
  int length_ = 0;
  int negative_ = 0;
};

}  // namespace

TEST(PArray, SharingStatesFollowTheBlockCount) {
  double* block = nullptr;
  zrNewWithRef(block, 4);

  Doubles owner(block, 4);
  owner.InitMem(block);  // takes over the block's first holder
  EXPECT_EQ(owner.GetMem(), block);
  EXPECT_EQ(owner.GetNumOfRef(), 0);
  EXPECT_EQ(owner.IsShared(), 0);
  EXPECT_EQ(owner.IsExternShared(), 0);

  Doubles sharer(block + 1, 2);
  sharer.SetMem(block);
  EXPECT_EQ(zrGetMemRef(block), 2);
  EXPECT_EQ(owner.GetNumOfRef(), 1);
  EXPECT_EQ(sharer.GetNumOfRef(), 1);
  EXPECT_EQ(owner.IsShared(), 1);

  // The base switch never frees: letting the block go lowers the count only.
  sharer.SetMem(nullptr);
  EXPECT_EQ(sharer.IsExternShared(), 1);
  EXPECT_EQ(sharer.IsShared(), 1);
  EXPECT_EQ(sharer.GetNumOfRef(), 0);
  EXPECT_EQ(owner.GetNumOfRef(), 0);
  EXPECT_EQ(owner.IsShared(), 0);

  // Switching the sole holder away would leave the block without holders.
  EXPECT_EQ(BadParametersText([&] { owner.SetMem(nullptr); }),
            "Invalid parameters : zrDecMemRef : Number of reference <= 0.");
  EXPECT_EQ(zrGetMemRef(block), 0);
  zrGetMemRef(block) = 1;
  zrDeleteWithRef(block);
}

TEST(PArray, SetMemRefusesMemoryWithoutTheMarkAndKeepsItsBlock) {
  double* block = nullptr;
  zrNewWithRef(block, 2);
  Doubles a(block, 2);
  a.SetMem(block);

  auto* raw = static_cast<double*>(zrMalloc(4 * sizeof(double)));
  reinterpret_cast<int*>(raw)[1] = 5;  // the word before raw + 1 is not negative
  EXPECT_EQ(BadParametersText([&] { a.SetMem(raw + 1); }),
            "Invalid parameters : zrIncMemRef : memory must be allocated with zrNewWithRef.");
  EXPECT_EQ(a.GetMem(), block);
  EXPECT_EQ(zrGetMemRef(block), 2);
  zrFree(raw);
  zrDeleteWithRef(block);
  zrDeleteWithRef(block);
}

TEST(PArray, CopyAndAssignmentTakeTheBlockPointerUncounted) {
  double* block = nullptr;
  zrNewWithRef(block, 3);
  Doubles a(block, 3);
  a.InitMem(block);
  a.IncreaseRefCount();
  a.IncreaseRefCount();

  Doubles copy(a);
  EXPECT_EQ(copy.GetMem(), block);
  EXPECT_EQ(copy.GetRefCount(), 0);
  Doubles assigned;
  assigned = a;
  EXPECT_EQ(assigned.GetMem(), block);
  EXPECT_EQ(assigned.GetRefCount(), 2);
  EXPECT_EQ(zrGetMemRef(block), 1);
  zrDeleteWithRef(block);
}

TEST(PArray, BlockRangeAndBoundaryChecks) {
  double* block = nullptr;
  zrNewWithRef(block, 12);
  Doubles a(block + 5, 10);
  a.InitMem(block);
  // 10 elements from element 5 run 24 bytes past the 96-byte block.
  EXPECT_EQ(a.CheckPointer(), 0);
  EXPECT_EQ(a.CheckPointer(nullptr, 0), 0);
  EXPECT_EQ(BadParametersText([&] { a.CheckPointerWithThrow(); }),
            "Invalid parameters : CheckPointer : Invalid pointer or range.");
  EXPECT_EQ(BadParametersText([&] { a.CheckPointerWithThrow(block, 1000); }),
            "Invalid parameters : CheckPointer : Invalid pointer or range.");

  Doubles fits(block + 5, 7);
  fits.InitMem(block);
  EXPECT_EQ(fits.CheckPointer(), 1);
  EXPECT_EQ(fits.CheckPointer(nullptr, 0), 1);  // p and n are ignored with a block
  EXPECT_NO_THROW(fits.CheckPointerWithThrow());

  // An origin 4 bytes into the block is off the element grid: only the (p, n) form looks.
  Doubles skewed(nullptr, 2);
  skewed.SetOrigin(reinterpret_cast<char*>(block) + 4);
  skewed.InitMem(block);
  EXPECT_EQ(skewed.CheckPointer(), 1);
  EXPECT_EQ(skewed.CheckPointer(block, 96), 0);

  // The extent below the origin must stay inside the block too.
  Doubles below(block + 2, 3, 2);
  below.InitMem(block);
  EXPECT_EQ(below.CheckPointer(), 1);
  Doubles too_far(block + 2, 3, 3);
  too_far.InitMem(block);
  EXPECT_EQ(too_far.CheckPointer(), 0);
  EXPECT_EQ(too_far.ByteNegativeLength(), 24);
  EXPECT_EQ(too_far.BytePositiveLength(), 24);

  zrDeleteWithRef(block);
}

TEST(PArray, ExternalArraysAreCheckedAgainstTheGivenBytes) {
  double data[10] = {};
  Doubles a(data, 10);
  EXPECT_EQ(a.IsExternShared(), 1);
  EXPECT_EQ(a.CheckPointer(data, 80), 1);
  EXPECT_EQ(a.CheckPointer(data, 79), 0);
  EXPECT_EQ(a.CheckPointer(data + 1, 80), 0);  // starts before the given memory

  // Without a block the argument-free check passes without looking at memory.
  Doubles wild(reinterpret_cast<double*>(std::uintptr_t{0x10}), 1000);  // NOLINT
  EXPECT_EQ(wild.CheckPointer(), 1);

  Doubles reaching_back(data + 2, 8, 2);
  EXPECT_EQ(reaching_back.CheckPointer(data, 80), 1);
  EXPECT_EQ(reaching_back.CheckPointer(data + 1, 72), 0);
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
  EXPECT_EQ(BadParametersText([&] { zrMemSize(a); }),
            "Invalid parameters : Have not zrPArray::MemSize");
}

TEST(PArray, IdentityIsThatOfTheBase) {
  Doubles a;
  zrRefCount counted;
  EXPECT_STREQ(a.GetTypeString(), "zrPArray");
  EXPECT_NE(a.GetType(), counted.GetType());
  EXPECT_EQ(a.GetThis(), static_cast<void*>(&a));
}
