// The graph: the walk, the longest shortest path, and who deletes what when. Nodes and
// branches log their destruction, so a test can say when the last holder let go; the
// asan preset catches what the log cannot (a member freed while linked, a leak).
#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "zr/graph/graph.h"

namespace {

std::string log;  // "~a" for node a, "~ab" for branch a-b, in order of destruction

class Node : public zrSimpleGraphNodeHead {
 public:
  explicit Node(char name) : name(name) {}
  ~Node() override { log += std::string("~") + name; }
  char name;
};

char Of(const zrSimpleGraphNodeHead* n) { return static_cast<const Node*>(n)->name; }

class Branch : public zrSimpleGraphBranchHead {
 public:
  Branch(Node* n1, Node* n2, int orient) : zrSimpleGraphBranchHead(n1, n2, orient) {}
  ~Branch() override { log += std::string{'~', Of(GetNode1()), Of(GetNode2())}; }
};

Node* AddNode(zrSimpleGraph& g, char name) {
  auto* n = new Node(name);
  g.Add(n);
  return n;
}

Branch* AddBranch(zrSimpleGraph& g, Node* n1, Node* n2, int orient = 0) {
  auto* b = new Branch(n1, n2, orient);
  g.Add(b);
  return b;
}

// What GetMaxPath returns and the names it lists, first to last.
struct Path {
  int count;
  std::string names;
};

Path MaxPath(zrSimpleGraph& g, zrSimpleGraphNodeHead* start = nullptr) {
  zrList2kHead out;  // deletes the value nodes when it goes
  Path path{start ? g.GetMaxPath(start, &out) : g.GetMaxPath(&out), {}};
  for (const zrList2kHead* p = out.GetNext(); p != &out; p = p->GetNext()) {
    path.names += Of(static_cast<const zrSimpleList2k<zrSimpleGraphNodeHead*>*>(p)->GetValue());
  }
  return path;
}

}  // namespace

TEST(SimpleGraph, DoubleSweepOnAPath) {
  log.clear();
  {
    zrSimpleGraph g;
    Node* a = AddNode(g, 'a');
    Node* b = AddNode(g, 'b');
    Node* c = AddNode(g, 'c');
    Branch* ab = AddBranch(g, a, b);
    Branch* bc = AddBranch(g, b, c);
    EXPECT_EQ(a->Prev(), c);  // appended at the end of the ring

    // From a the far end is c; from c it is a; the path is listed from c.
    const Path p = MaxPath(g);
    EXPECT_EQ(p.count, 3);
    EXPECT_EQ(p.names, "cba");
    // The work fields of the second sweep; the far end's level is cleared.
    EXPECT_EQ(c->GetLevel(), 1);
    EXPECT_EQ(b->GetLevel(), 2);
    EXPECT_EQ(a->GetLevel(), 0);
    EXPECT_EQ(c->GetBack(), nullptr);
    EXPECT_EQ(a->GetBack(), ab);
    EXPECT_EQ(ab->GetBack(), b);
    EXPECT_EQ(bc->GetBack(), c);
    EXPECT_EQ(MaxPath(g, a).names, "abc");
  }
  // The last handle removes the branches, then the nodes.
  EXPECT_EQ(log, "~ab~bc~a~b~c");
}

TEST(SimpleGraph, FirstFarthestInTheRingAndLoneStart) {
  zrSimpleGraph g;
  EXPECT_EQ(g.GetMaxPath(nullptr), 0);
  g.Wave(nullptr, zrSimpleGraph::PathLen, nullptr);  // empty: start is not looked at

  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Node* c = AddNode(g, 'c');
  Node* d = AddNode(g, 'd');
  Node* e = AddNode(g, 'e');
  // The walk from a reaches d, c, b in that order; the ring has b first.
  AddBranch(g, a, d);
  AddBranch(g, a, c);
  AddBranch(g, a, b);
  EXPECT_EQ(MaxPath(g, a).names, "ab");
  EXPECT_EQ(MaxPath(g).names, "bac");  // from b, c and d tie: c comes first
  const Path lone = MaxPath(g, e);
  EXPECT_EQ(lone.count, 1);
  EXPECT_EQ(lone.names, "e");
  EXPECT_EQ(g.GetMaxPath(d, nullptr), 3);  // out is optional
}

TEST(SimpleGraph, WaveFollowsOrientationAndClearsTheLastWalk) {
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Node* c = AddNode(g, 'c');
  Branch* ab = AddBranch(g, a, b, 1);
  AddBranch(g, c, b);
  EXPECT_EQ(MaxPath(g, a).names, "abc");
  EXPECT_EQ(ab->GetBack(), a);
  EXPECT_EQ(MaxPath(g, b).names, "bc");  // no step back against a->b
  EXPECT_EQ(ab->GetBack(), nullptr);
  EXPECT_EQ(a->GetBack(), nullptr);
  EXPECT_TRUE(ab->IsOut(a) && ab->IsIn(b));
  EXPECT_FALSE(ab->IsOut(b) || ab->IsIn(a));
}

TEST(SimpleGraph, WaveQueuesANodeForEveryAcceptedStep) {
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  AddBranch(g, a, b);
  Branch* second = AddBranch(g, a, b);
  // Every step into b is accepted: b is queued, and expanded, twice.
  struct Offers {
    zrSimpleGraphNodeHead* target;
    int count;
  } offers{b, 0};
  g.Wave(
      a,
      [](zrSimpleGraphNodeHead*, zrSimpleGraphNodeHead* to, zrSimpleGraphBranchHead*, void* data) {
        auto* o = static_cast<Offers*>(data);
        ++o->count;
        return to == o->target ? 1 : 0;
      },
      &offers);
  EXPECT_EQ(offers.count, 2 + 2 * 2);
  EXPECT_EQ(b->GetBack(), second);
}

TEST(SimpleGraph, LoopIsListedTwice) {
  log.clear();
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Branch* loop = AddBranch(g, a, a);
  Branch* ab = AddBranch(g, a, b);
  EXPECT_EQ(a->GetBranchList()->Len(), 4);  // the head, the loop twice, a-b
  EXPECT_EQ(loop->GetAnotherNode(a), a);
  EXPECT_EQ(a->GetBranch(b), ab);
  EXPECT_EQ(b->GetBranch(b), ab);
  std::string seen;
  for (zrNodeBranchIter it(a); !it.IsEnd(); it.Next()) seen += it.Get() == loop ? 'L' : 'B';
  EXPECT_EQ(seen, "LLB");
  EXPECT_EQ(MaxPath(g, a).names, "ab");

  g.Remove(b);
  g.Remove(a);  // the only node: its branches and both rings are empty after it
  EXPECT_EQ(log, "~ab~b~aa~a");
  EXPECT_EQ(g.GetNodeList(), nullptr);
  EXPECT_EQ(g.GetBranchList(), nullptr);
}

TEST(SimpleGraph, RemovedMembersDieWithTheirLastHolder) {
  log.clear();
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Node* c = AddNode(g, 'c');
  Branch* ab = AddBranch(g, a, b);
  Branch* bc = AddBranch(g, b, c);
  zrAutoDelPointer<zrSimpleGraphBranchHead> keep(bc);

  g.Remove(ab);
  EXPECT_EQ(g.GetBranchList(), bc);
  g.Remove(bc);  // held: out of the graph and its ends' lists, still holding its ends
  g.Remove(b);   // held by bc: out of the ring only
  EXPECT_EQ(log, "~ab");
  EXPECT_EQ(g.GetBranchList(), nullptr);
  EXPECT_TRUE(b->GetBranchList()->IsAlone());
  EXPECT_EQ(b->Next(), nullptr);
  EXPECT_EQ(a->Next(), c);
  keep = nullptr;  // bc goes, and with it the last hold on b
  EXPECT_EQ(log, "~ab~bc~b");

  g.Remove(a);  // the first node: its successor becomes first
  EXPECT_EQ(g.GetNodeList(), c);
  EXPECT_EQ(log, "~ab~bc~b~a");
}

TEST(SimpleGraph, CopiesShareTheMembersUntilTheLastGoes) {
  log.clear();
  auto* last = new zrSimpleGraph;
  zrAutoDelPointer<zrSimpleGraphNodeHead> keep;
  {
    zrSimpleGraph g;
    Node* a = AddNode(g, 'a');
    AddBranch(g, a, AddNode(g, 'b'));
    const zrSimpleGraph h(g);
    *last = h;
    Node* c = AddNode(*last, 'c');
    EXPECT_EQ(g.GetNodeList()->Prev(), c);  // seen through every handle
    keep = a;
  }
  EXPECT_EQ(log, "");
  delete last;  // a is held, the rest goes
  EXPECT_EQ(log, "~ab~b~c");
  EXPECT_EQ(keep->Next(), nullptr);
  keep = nullptr;
  EXPECT_EQ(log, "~ab~b~c~a");
}

TEST(SimpleGraph, IteratorPinsWhatItVisits) {
  log.clear();
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Branch* ab = AddBranch(g, a, b);
  {
    zrNodeBranchIter it(a);
    EXPECT_EQ(it.Get(), ab);
    g.Remove(a);  // ab and a leave the graph; the walk holds them
    EXPECT_EQ(log, "");
    it.Next();  // ab was taken out: the walk ends and lets it go
    EXPECT_EQ(log, "~ab");
    EXPECT_TRUE(it.IsEnd());
    EXPECT_EQ(zr_test::BadParametersText([&] { it.Get(); }),
              "Invalid parameters : zrNodeBranchIter: out of range");
  }
  EXPECT_EQ(log, "~ab~a");
  const zrNodeBranchIter bare(b);
  EXPECT_EQ(zr_test::BadParametersText([&] { bare.Get(); }),
            "Invalid parameters : zrNodeBranchIter: out of range");
}

TEST(SimpleGraph, CopiedNodesAndBranchesStartOutsideEverything) {
  log.clear();
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Branch* ab = AddBranch(g, a, b, 1);
  a->SetLevel(5);
  const int holders = a->GetRefCount();

  auto* a2 = new Node(*a);
  auto* ab2 = new Branch(*ab);
  EXPECT_EQ(a2->GetLevel(), 5);
  EXPECT_EQ(a2->GetRefCount(), 0);
  EXPECT_EQ(a2->Next(), nullptr);
  EXPECT_EQ(ab2->GetNode1(), a);  // the same ends, held, but not listed by them
  EXPECT_EQ(a->GetRefCount(), holders + 1);
  EXPECT_EQ(a->GetBranchList()->Len(), 2);
  EXPECT_EQ(ab2->Next(), nullptr);

  // Assignment copies values and keeps the target's place in the graph.
  static_cast<zrSimpleGraphNodeHead&>(*b) = *a2;
  EXPECT_EQ(b->GetLevel(), 5);
  EXPECT_EQ(b->GetBranch(a), ab);
  EXPECT_EQ(a->Next(), b);

  zrUsingNew::Delete(ab2);
  zrUsingNew::Delete(a2);
  EXPECT_EQ(log, "~ab~a");
  EXPECT_EQ(a->GetRefCount(), holders);
}
