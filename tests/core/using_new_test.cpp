// The root classes and the owning pointer. Objects are made with plain `new`, which goes
// through the class-level allocation; under the asan preset a delete that missed, came
// twice or freed the wrong address is reported.
#include <gtest/gtest.h>

#include <string>

#include "zr/core/using_new.h"

namespace {

// A counted object that logs its acquisitions ("+tag") and its destruction ("~tag").
class Logged : public zrRefCount {
 public:
  static std::string log;
  explicit Logged(char tag = 'x') : tag_(tag) {}
  ~Logged() override { log += std::string("~") + tag_; }
  int IncreaseRefCount() const override {
    log += std::string("+") + tag_;
    return zrRefCount::IncreaseRefCount();
  }
  char Tag() const { return tag_; }

 private:
  char tag_;
};
std::string Logged::log;

// An uncounted object that reports its destruction.
class Plain : public zrUsingNew {
 public:
  static int destroyed;
  ~Plain() override { ++destroyed; }
};
int Plain::destroyed;

// The root shared as a virtual base behind another base, as list links hold it, so that
// the root part does not start the object.
struct Front {
  virtual ~Front() = default;
  double payload = 1.0;
};
class Linked : public Front, public virtual zrUsingNew {};

// A class with an identity of its own.
class Named : public zrRefCount {
  ZR_TYPE_IDENTITY
};
ZR_DEFINE_TYPE_IDENTITY(Named)

}  // namespace

TEST(UsingNew, RootAndCounterDefaults) {
  const zrUsingNew u;
  EXPECT_EQ(u.IncreaseRefCount(), 0);
  EXPECT_EQ(u.DecreaseRefCount(), 0);
  EXPECT_EQ(u.GetRefCount(), 0);
  EXPECT_EQ(u.IsAllowDelete(), 1);
  EXPECT_STREQ(u.GetTypeString(), "zrUsingNew");

  const zrRefCount r;  // const objects are counted too
  EXPECT_EQ(r.GetRefCount(), 0);
  EXPECT_EQ(r.IsAllowDelete(), 1);
  EXPECT_EQ(r.IncreaseRefCount(), 1);
  EXPECT_EQ(r.IsAllowDelete(), 0);
  EXPECT_EQ(r.IncreaseRefCount(), 2);
  EXPECT_EQ(r.DecreaseRefCount(), 1);
  EXPECT_EQ(r.GetRefCount(), 1);
  EXPECT_STREQ(r.GetTypeString(), "zrRefCount");
}

TEST(UsingNew, TypeIdentityPerClass) {
  const zrUsingNew u1, u2;
  const zrRefCount r1, r2;
  const Named n;
  EXPECT_EQ(u1.GetType(), u2.GetType());
  EXPECT_EQ(r1.GetType(), r2.GetType());
  EXPECT_NE(u1.GetType(), r1.GetType());
  EXPECT_NE(n.GetType(), r1.GetType());
  EXPECT_STREQ(n.GetTypeString(), "Named");
  // Seen through the root, the identity is still the complete object's.
  const zrUsingNew& as_root = n;
  EXPECT_EQ(as_root.GetType(), n.GetType());
  // A class that declares no identity keeps its base's.
  EXPECT_EQ(Logged().GetType(), r1.GetType());
}

TEST(UsingNew, GetThisGivesTheCompleteObject) {
  auto* obj = new Linked;
  const zrUsingNew* root = obj;
  ASSERT_NE(static_cast<const void*>(root), static_cast<void*>(obj));
  EXPECT_EQ(root->GetThis(), static_cast<void*>(obj));
  EXPECT_EQ(zrUsingNew::Delete(root), 1);  // frees the allocation, not the root's part
}

TEST(UsingNew, DeleteLetsOneHolderGo) {
  EXPECT_EQ(zrUsingNew::Delete(nullptr), 0);

  Logged::log.clear();
  auto* obj = new Logged('a');
  obj->IncreaseRefCount();
  obj->IncreaseRefCount();
  EXPECT_EQ(zrUsingNew::Delete(obj), 0);
  EXPECT_EQ(obj->GetRefCount(), 1);
  EXPECT_EQ(zrUsingNew::Delete(obj), 1);
  EXPECT_EQ(Logged::log, "+a+a~a");

  // Never held: the release takes the count below 1 and deletes.
  EXPECT_EQ(zrUsingNew::Delete(new Logged('b')), 1);
  EXPECT_EQ(Logged::log, "+a+a~a~b");

  Plain::destroyed = 0;
  auto* plain = new Plain;
  plain->IncreaseRefCount();
  EXPECT_EQ(zrUsingNew::Delete(plain), 1);
  EXPECT_EQ(Plain::destroyed, 1);
}

TEST(RefCount, CopyStartsAtZeroAssignmentTakesTheCount) {
  zrRefCount source;
  for (int i = 0; i < 5; ++i) source.IncreaseRefCount();
  const zrRefCount copy(source);
  EXPECT_EQ(copy.GetRefCount(), 0);
  zrRefCount assigned;
  assigned = source;
  EXPECT_EQ(assigned.GetRefCount(), 5);
  EXPECT_EQ(source.GetRefCount(), 5);
}

TEST(AutoDelPointer, HoldersShareAndTheLastDeletes) {
  Logged::log.clear();
  {
    const zrAutoDelPointer<Logged> empty;
    EXPECT_TRUE(empty.IsNull());
    EXPECT_EQ(empty.GetPointer(), nullptr);

    auto* obj = new Logged('a');
    zrAutoDelPointer<Logged> first(obj);
    EXPECT_FALSE(first.IsNull());
    EXPECT_EQ(obj->GetRefCount(), 1);
    {
      const zrAutoDelPointer<Logged> second(first);
      EXPECT_EQ(second.GetPointer(), obj);
      EXPECT_EQ(obj->GetRefCount(), 2);
      zrAutoDelPointer<Logged> third;
      third = first;
      EXPECT_EQ(obj->GetRefCount(), 3);
      EXPECT_EQ(third->Tag(), 'a');
      EXPECT_EQ(&*third, obj);
    }
    EXPECT_EQ(obj->GetRefCount(), 1);
    const zrAutoDelPointer<Logged>& alias = first;
    first = alias;  // a sole holder assigned to itself keeps its object
    EXPECT_EQ(obj->GetRefCount(), 1);
    EXPECT_EQ(Logged::log, "+a+a+a");
  }
  EXPECT_EQ(Logged::log, "+a+a+a~a");
}

TEST(AutoDelPointer, SetPointerReleasesTheOldFirst) {
  Logged::log.clear();
  zrAutoDelPointer<Logged> holder(new Logged('a'));
  auto* b = new Logged('b');
  holder.SetPointer(b);  // sole holder of a: a dies before b is counted
  EXPECT_EQ(Logged::log, "+a~a+b");

  // An old object with another holder only loses one.
  zrAutoDelPointer<Logged> other(holder);
  auto* c = new Logged('c');
  EXPECT_EQ(holder = c, c);
  EXPECT_EQ(b->GetRefCount(), 1);
  EXPECT_EQ(c->GetRefCount(), 1);

  EXPECT_EQ(holder = nullptr, nullptr);
  EXPECT_TRUE(holder.IsNull());
  EXPECT_EQ(Logged::log, "+a~a+b+b+c~c");
}
