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
struct Ring : zrList2kHead {
  ~Ring() override { ++destroyed; }
};

// In a singly and a doubly linked ring at once, with one count.
class Both : public zrList1kHead, public zrList2kHead, public zrRefCount {
  ZR_TYPE_IDENTITY
 public:
  ~Both() override { ++destroyed; }
};
ZR_DEFINE_TYPE_IDENTITY(Both)

}  // namespace

TEST(List1k, AddRemoveLen) {
  zrList1kHead head, a, b;
  EXPECT_EQ(head.Remove(), &head);  // alone: the link itself
  EXPECT_EQ(head.Len(), 1);
  head.Add(&a);
  head.Add(&b);  // right after the head: head b a
  EXPECT_EQ(a.Len(), 3);
  EXPECT_EQ(head.GetNext(), &b);
  EXPECT_TRUE(head != b);
  EXPECT_EQ(a.Remove(), &head);  // the link after a, made alone
  EXPECT_TRUE(head.IsAlone());
  EXPECT_EQ(b.Remove(), &a);
  EXPECT_TRUE(a.IsAlone() && b.IsAlone());
}

TEST(List2, AddAfterTakesTheLinkOutOfItsLine) {
  Line x, y, z, p;
  x.AddAfter(&z);
  x.AddAfter(&y);  // x y z
  p.AddAfter(&y);  // x z, and p y
  EXPECT_EQ(x.GetNext(), &z);
  EXPECT_EQ(z.GetPrev(), &x);
  EXPECT_EQ(y.GetPrev(), &p);
  EXPECT_EQ(y.GetNext(), nullptr);
  z.AddBefore(&y);  // x y z, and p alone
  EXPECT_TRUE(p.IsAlone());
  EXPECT_EQ(x.GetNext(), &y);
  EXPECT_EQ(z.GetPrev(), &y);
  EXPECT_TRUE(*y.Remove() == p);  // alone: the same (null) neighbours
  EXPECT_EQ(x.GetNext(), &z);
  x.Remove();
}

TEST(List2, DestroyingALinkInTheMiddleDeletesBothSides) {
  destroyed = 0;
  auto* middle = new Line;
  for (int i = 0; i < 3; ++i) middle->AddAfter(new Line);
  for (int i = 0; i < 2; ++i) middle->AddBefore(new Line);
  delete middle;
  EXPECT_EQ(destroyed, 6);
}

TEST(List, HeadsDeleteOnlyWhatAllowsItThroughTheOneRootPart) {
  destroyed = 0;
  auto* both = new Both;
  const zrUsingNew& root = static_cast<zrList1kHead&>(*both);
  EXPECT_EQ(&root, &static_cast<const zrUsingNew&>(static_cast<zrList2kHead&>(*both)));
  both->IncreaseRefCount();
  auto* ring1 = new zrList1kHead;
  ring1->Add(both);
  {
    zrList2kHead ring2;
    ring2.AddAfter(new Ring);
    ring2.AddBefore(both);
    delete ring1;  // both is held: only taken out
    EXPECT_EQ(destroyed, 0);
    EXPECT_TRUE(both->zrList1kHead::IsAlone());
    EXPECT_EQ(root.GetRefCount(), 1);  // the walk leaves the count alone
    EXPECT_EQ(ring2.Len(), 3);
    both->DecreaseRefCount();
  }
  EXPECT_EQ(destroyed, 2);  // the uncounted Ring, and both once nothing held it
}

TEST(List, CopiesStartAloneAndAssignmentTouchesNoNeighbour) {
  zrList2kHead head, other;
  zrInternalList2k link(&head);
  other.AddAfter(&link);
  head.AddAfter(&link);  // moved: out of other's ring
  EXPECT_TRUE(other.IsAlone());
  const zrInternalList2k copy(link);
  EXPECT_TRUE(copy.IsAlone());
  EXPECT_EQ(copy.GetPayload(), &head);
  EXPECT_EQ(head.Len(), 2);

  link = zrInternalList2k(nullptr);
  EXPECT_TRUE(link.IsAlone());
  EXPECT_EQ(link.GetPayload(), nullptr);
  EXPECT_EQ(head.GetNext(), &link);  // kept: a caller Removes before assigning
  head = zrList2kHead();
  EXPECT_TRUE(head.IsAlone());
}

TEST(ListQueue, FirstInFirstOut) {
  zrListQueue<std::string> queue;  // values owning storage: a lost node would leak
  queue.Put("one");
  EXPECT_EQ(queue.Get(), "one");
  EXPECT_TRUE(queue.IsEmpty());
  EXPECT_EQ(zr_test::BadParametersText([&] { queue.Get(); }),
            "Invalid parameters : zrListQueue<T>::Get : Que is empty");
  // The tail is the queue again: new values line up right behind it.
  queue.Put("two");
  queue.Put("three");
  EXPECT_EQ(queue.Get(), "two");
  queue.Put("four");
  EXPECT_EQ(queue.GetCount(), 2);
  EXPECT_EQ(queue.Len(), 3);
  EXPECT_EQ(queue.Get(), "three");
  EXPECT_EQ(queue.Get(), "four");
  queue.Put("left for the destructor");
}
