// The list links, the value nodes and the queue. Elements that a head may delete are
// made with `new`; the asan preset reports a delete at the wrong address (a link whose
// zrUsingNew part does not start the object), a double delete or a leak.
#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "zr/graph/list.h"

namespace {

int destroyed = 0;

// An element of one list, counted, as the graph's members are made.
template <class H>
struct Member : H, zrRefCount {
  ~Member() override { ++destroyed; }
};

void Insert(zrList1kHead& head, zrList1kHead* x) { head.Add(x); }
template <class H>
void Insert(H& head, H* x) {
  head.AddAfter(x);
}

template <class H>
class ListHead : public ::testing::Test {};
using Heads = ::testing::Types<zrList1kHead, zrList2Head, zrList2kHead>;
TYPED_TEST_SUITE(ListHead, Heads);

// A head that goes takes every other link out and deletes those that allow it; a held
// element is only taken out, its count left alone. Copies start alone.
TYPED_TEST(ListHead, DeletesOnlyWhatAllowsItAndCopiesStartAlone) {
  using H = TypeParam;
  destroyed = 0;
  auto* head = new H;
  auto* held = new Member<H>;
  held->IncreaseRefCount();
  for (H* x :
       {static_cast<H*>(new Member<H>), static_cast<H*>(held), static_cast<H*>(new Member<H>)})
    Insert(*head, x);
  EXPECT_TRUE(!head->IsAlone() && !held->IsAlone() && H(*held).IsAlone());
  delete head;
  EXPECT_TRUE(destroyed == 2 && held->IsAlone() && held->GetRefCount() == 1);
  held->DecreaseRefCount();
  delete held;
  EXPECT_EQ(destroyed, 3);
}

// In a singly and a doubly linked ring at once, with one count. No identity of its own
// is needed: the links and the count bring none.
class Both : public zrList1kHead, public zrList2kHead, public zrRefCount {};
struct NamedItem : zrInternalList2k, zrList2Head, zrRefCount {
  ZR_TYPE_IDENTITY
};
ZR_DEFINE_TYPE_IDENTITY(NamedItem)

}  // namespace

TEST(List, ACountedObjectInSeveralRingsHasOneCountAndOneIdentity) {
  Both both;
  const zrList1kHead& as_ring1 = both;
  const zrList2kHead& as_ring2 = both;
  as_ring1.IncreaseRefCount();
  EXPECT_EQ(as_ring2.IncreaseRefCount(), 2);
  EXPECT_TRUE(as_ring1.IsAllowDelete() == 0 && as_ring1.GetThis() == as_ring2.GetThis());
  EXPECT_STREQ(as_ring2.GetTypeString(), "zrUsingNew");
  EXPECT_EQ(as_ring1.GetType(), zrUsingNew().GetType());
  both.DecreaseRefCount();
  both.DecreaseRefCount();

  const NamedItem named;
  EXPECT_STREQ(static_cast<const zrList2kHead&>(named).GetTypeString(), "NamedItem");
  EXPECT_EQ(static_cast<const zrList2Head&>(named).GetType(), named.GetType());
}

TEST(List, LinkOperations) {
  zrList1kHead ring;
  EXPECT_EQ(ring.Remove(), &ring);  // alone: the link itself
  auto* first = ring.Add(new zrList1kHead);
  ring.Add(new zrList1kHead);
  EXPECT_TRUE(ring.Len() == 3 && ring.GetNext()->GetNext() == first);

  // AddAfter takes the link out of its line; deleting a link in the middle takes both sides.
  destroyed = 0;
  Member<zrList2Head> x, z;
  auto* y = new Member<zrList2Head>;
  auto* p = new Member<zrList2Head>;
  x.AddAfter(&z);
  x.AddAfter(y);   // x y z
  p->AddAfter(y);  // x z, and p y
  EXPECT_TRUE(x.GetNext() == &z && z.GetPrev() == &x);
  p->AddBefore(new Member<zrList2Head>);
  p->AddBefore(new Member<zrList2Head>);
  delete p;
  EXPECT_EQ(destroyed, 4);
  z.Remove();

  // A copy starts alone, with the payload; assignment touches no neighbour (a caller
  // Removes before assigning).
  zrList2kHead head;
  zrInternalList2k link(&head);
  head.AddBefore(&link);
  EXPECT_TRUE(zrInternalList2k(link).IsAlone() && zrInternalList2k(link).GetPayload() == &head);
  EXPECT_TRUE(head.Len() == 2 && head.GetPrev() == &link);
  link = zrInternalList2k(nullptr);
  EXPECT_TRUE(link.IsAlone() && link.GetPayload() == nullptr && head.GetNext() == &link);
  head.Remove();  // it still points at link
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
