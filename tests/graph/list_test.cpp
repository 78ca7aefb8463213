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

// Puts x into head's list; the first one goes before the head where the list has a before.
void Insert(zrList1kHead& head, zrList1kHead* x, bool) { head.Add(x); }
template <class H>
void Insert(H& head, H* x, bool first) {
  first ? head.AddBefore(x) : head.AddAfter(x);
}

template <class H>
class ListHead : public ::testing::Test {};
using Heads = ::testing::Types<zrList1kHead, zrList2Head, zrList2kHead>;
TYPED_TEST_SUITE(ListHead, Heads);

// A head that goes takes every other link out, on both sides, and deletes those that allow
// it; a held element is only taken out, its count left alone. Copies start alone.
TYPED_TEST(ListHead, DeletesOnlyWhatAllowsItAndCopiesStartAlone) {
  using H = TypeParam;
  destroyed = 0;
  auto* head = new H;
  auto* held = new Member<H>;
  held->IncreaseRefCount();
  int i = 0;
  for (H* x :
       {static_cast<H*>(new Member<H>), static_cast<H*>(held), static_cast<H*>(new Member<H>)})
    Insert(*head, x, i++ == 0);
  EXPECT_TRUE(!head->IsAlone() && !held->IsAlone() && H(*held).IsAlone());
  delete head;
  EXPECT_TRUE(destroyed == 2 && held->IsAlone() && held->GetRefCount() == 1);
  held->DecreaseRefCount();
  delete held;
}

// In a singly and a doubly linked ring at once, with one count. No identity of its own
// is needed: the links and the count bring none.
struct Both : zrList1kHead, zrList2kHead, zrRefCount {};
struct NamedItem : zrInternalList2k, zrList2Head, zrRefCount {
  ZR_TYPE_IDENTITY
};
ZR_DEFINE_TYPE_IDENTITY(NamedItem)

}  // namespace

TEST(List, ACountedObjectInSeveralRingsHasOneCountAndOneIdentity) {
  Both both;
  const zrList1kHead& ring = both;
  ring.IncreaseRefCount();
  EXPECT_EQ(static_cast<const zrList2kHead&>(both).IncreaseRefCount(), 2);
  EXPECT_EQ(ring.IsAllowDelete(), 0);
  EXPECT_STREQ(ring.GetTypeString(), "zrUsingNew");
  both.DecreaseRefCount();
  both.DecreaseRefCount();
  EXPECT_STREQ(static_cast<const zrList2Head&>(NamedItem()).GetTypeString(), "NamedItem");
}

TEST(List, LinkOperations) {
  zrList1kHead ring;
  EXPECT_EQ(ring.Remove(), &ring);  // alone: the link itself
  auto* first = ring.Add(new zrList1kHead);
  ring.Add(new zrList1kHead);
  EXPECT_TRUE(ring.Len() == 3 && ring.GetNext()->GetNext() == first);

  // AddAfter takes the link out of its line.
  zrList2Head x, z;
  auto* y = x.AddAfter(&z)->AddBefore(new zrList2Head);  // x y z
  z.AddAfter(y);                                         // x z y
  EXPECT_TRUE(x.GetNext() == &z && z.GetPrev() == &x && z.GetNext() == y && !y->GetNext());
  z.Remove();  // x y, and x deletes y

  // A copy starts alone, with the payload; assignment touches no neighbour (a caller
  // Removes before assigning).
  zrList2kHead head;
  zrInternalList2k link(&head);
  head.AddBefore(&link);
  EXPECT_TRUE(zrInternalList2k(link).IsAlone() && zrInternalList2k(link).GetPayload() == &head);
  link = zrInternalList2k(nullptr);
  EXPECT_TRUE(link.IsAlone() && link.GetPayload() == nullptr && head.GetNext() == &link);
  head.Remove();  // it still points at link
}

// The walks of the graph drain a queue and fill it again; here the empty queue's text and
// values left for the destructor.
TEST(ListQueue, FirstInFirstOut) {
  zrListQueue<std::string> queue;  // values owning storage: a lost node would leak
  EXPECT_EQ(zr_test::BadParametersText([&] { queue.Get(); }),
            "Invalid parameters : zrListQueue<T>::Get : Que is empty");
  queue.Put("one");
  queue.Put("two");
  EXPECT_EQ(queue.Get(), "one");
  queue.Put("three");  // left for the destructor, with "two"
}
