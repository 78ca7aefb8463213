// The list links, the value nodes and the queue. Elements that a head may delete are
// made with `new`; the asan preset reports a delete at the wrong address (a link whose
// zrUsingNew part does not start the object), a double delete or a leak.
#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "zr/graph/list.h"

namespace {

int destroyed = 0;

struct Line : zrList2Head {
  ~Line() override { ++destroyed; }
};

// In a singly and a doubly linked ring at once, with one count. No identity of its own
// is needed: the links and the count bring none.
class Both : public zrList1kHead, public zrList2kHead, public zrRefCount {
 public:
  ~Both() override { ++destroyed; }
};

// A counted element of one ring, as the graph's members are made; and one that names itself.
struct Item : zrList1kHead, zrRefCount {};
struct NamedItem : zrInternalList2k, zrList2Head, zrRefCount {
  ZR_TYPE_IDENTITY
};
ZR_DEFINE_TYPE_IDENTITY(NamedItem)

}  // namespace

TEST(List1k, RemoveOnAnAloneLinkAndLen) {
  zrList1kHead head;
  EXPECT_EQ(head.Remove(), &head);  // alone: the link itself
  head.Add(new zrList1kHead);
  head.Add(new zrList1kHead);
  EXPECT_EQ(head.Len(), 3);  // the head deletes the two when it goes
}

TEST(List2, AddAfterTakesTheLinkOutOfItsLineAndDeleteTakesTheWholeLine) {
  destroyed = 0;
  Line x, z;
  auto* y = new Line;
  auto* p = new Line;
  x.AddAfter(&z);
  x.AddAfter(y);   // x y z
  p->AddAfter(y);  // x z, and p y
  EXPECT_EQ(x.GetNext(), &z);
  EXPECT_EQ(z.GetPrev(), &x);
  for (int i = 0; i < 2; ++i) p->AddBefore(new Line);
  delete p;  // in the middle: both sides go
  EXPECT_EQ(destroyed, 4);
  z.Remove();
}

TEST(List, HeadsDeleteOnlyWhatAllowsIt) {
  destroyed = 0;
  auto* both = new Both;
  both->IncreaseRefCount();
  auto* ring1 = new zrList1kHead;
  ring1->Add(both);
  auto* ring2 = new zrList2kHead;
  ring2->AddAfter(both);
  delete ring1;  // both is held: only taken out
  EXPECT_EQ(destroyed, 0);
  EXPECT_EQ(both->GetRefCount(), 1);  // the walk leaves the count alone
  both->DecreaseRefCount();
  delete ring2;  // nothing holds it now
  EXPECT_EQ(destroyed, 1);
}

TEST(List, ACountedObjectInSeveralRingsHasOneCountAndOneIdentity) {
  Both both;
  const zrList1kHead& as_ring1 = both;
  const zrList2kHead& as_ring2 = both;
  as_ring1.IncreaseRefCount();
  EXPECT_EQ(as_ring2.IncreaseRefCount(), 2);
  EXPECT_EQ(static_cast<const zrRefCount&>(both).GetRefCount(), 2);
  EXPECT_EQ(as_ring1.IsAllowDelete(), 0);
  EXPECT_EQ(as_ring1.GetThis(), as_ring2.GetThis());
  const zrUsingNew root;
  EXPECT_EQ(as_ring1.GetType(), root.GetType());
  EXPECT_STREQ(as_ring2.GetTypeString(), "zrUsingNew");
  EXPECT_STREQ(Item().GetTypeString(), "zrUsingNew");
  both.DecreaseRefCount();
  both.DecreaseRefCount();

  const NamedItem named;
  EXPECT_STREQ(static_cast<const zrList2kHead&>(named).GetTypeString(), "NamedItem");
  EXPECT_EQ(static_cast<const zrList2Head&>(named).GetType(), named.GetType());
  EXPECT_NE(named.GetType(), root.GetType());
}

TEST(List, CopiesStartAloneAndAssignmentTouchesNoNeighbour) {
  zrList2kHead head;
  zrInternalList2k link(&head);
  head.AddAfter(&link);
  const zrInternalList2k copy(link);
  EXPECT_TRUE(copy.IsAlone());
  link = zrInternalList2k(nullptr);
  EXPECT_TRUE(link.IsAlone());
  EXPECT_EQ(link.GetPayload(), nullptr);
  EXPECT_EQ(head.GetNext(), &link);  // kept: a caller Removes before assigning
  head.Remove();                     // it still points at link
}

TEST(ListQueue, FirstInFirstOut) {
  zrListQueue<std::string> queue;  // values owning storage: a lost node would leak
  queue.Put("one");
  EXPECT_EQ(queue.Get(), "one");
  EXPECT_EQ(zr_test::BadParametersText([&] { queue.Get(); }),
            "Invalid parameters : zrListQueue<T>::Get : Que is empty");
  // The tail is the queue again: new values line up right behind it.
  queue.Put("two");
  queue.Put("three");
  EXPECT_EQ(queue.Get(), "two");
  queue.Put("four");
  EXPECT_EQ(queue.Get(), "three");
  EXPECT_EQ(queue.Get(), "four");
  queue.Put("left for the destructor");
}
