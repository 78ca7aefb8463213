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
  explicit Logged(char tag) : tag_(tag) {}
  ~Logged() override { log += std::string("~") + tag_; }
  int IncreaseRefCount() const override {
    log += std::string("+") + tag_;
    return zrRefCount::IncreaseRefCount();
  }

 private:
  char tag_;
};
std::string Logged::log;

// The root shared as a virtual base behind another base, as list links hold it, so that
// the root part does not start the object.
struct Front {
  virtual ~Front() = default;
};
class Linked : public Front, public virtual zrUsingNew {};

}  // namespace

TEST(UsingNew, DeleteLetsOneHolderGoAndFreesTheCompleteObject) {
  EXPECT_EQ(zrUsingNew::Delete(nullptr), 0);
  Logged::log.clear();
  auto* obj = new Logged('a');
  obj->IncreaseRefCount();
  obj->IncreaseRefCount();
  EXPECT_EQ(zrUsingNew::Delete(obj), 0);
  EXPECT_EQ(zrUsingNew::Delete(obj), 1);
  // Never held: the release takes the count below 1 and deletes.
  EXPECT_EQ(zrUsingNew::Delete(new Logged('b')), 1);
  EXPECT_EQ(Logged::log, "+a+a~a~b");

  auto* linked = new Linked;
  const zrUsingNew* root = linked;
  ASSERT_NE(static_cast<const void*>(root), static_cast<void*>(linked));
  EXPECT_EQ(root->GetThis(), static_cast<void*>(linked));
  // Uncounted: deleted, and freed at the allocation, not the root.
  EXPECT_EQ(zrUsingNew::Delete(root), 1);
}

TEST(AutoDelPointer, HoldersShareAndTheLastDeletes) {
  Logged::log.clear();
  {
    zrAutoDelPointer<Logged> first(new Logged('a'));
    {
      const zrAutoDelPointer<Logged> second(first);
      zrAutoDelPointer<Logged> third;
      third = first;
    }
    const zrAutoDelPointer<Logged>& alias = first;
    first = alias;  // a sole holder assigned to itself keeps its object
    EXPECT_EQ(Logged::log, "+a+a+a");
  }
  EXPECT_EQ(Logged::log, "+a+a+a~a");

  // SetPointer releases the old object first: a sole holder's dies before b is counted;
  // one with another holder only loses one.
  Logged::log.clear();
  zrAutoDelPointer<Logged> holder(new Logged('a'));
  auto* b = new Logged('b');
  holder.SetPointer(b);
  zrAutoDelPointer<Logged> other(holder);
  auto* c = new Logged('c');
  EXPECT_EQ(holder = c, c);
  EXPECT_TRUE((holder = nullptr) == nullptr && holder.IsNull());
  EXPECT_EQ(Logged::log, "+a~a+b+b+c~c");
}
