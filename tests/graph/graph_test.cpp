// The graph: the walk, the longest shortest path, and who deletes what when. Nodes and
// branches log their destruction, so a test can say when the last holder let go; the
// asan preset catches what the log cannot (a member freed while linked, a leak).
#include <gtest/gtest.h>

#include <string>
#include <vector>

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

// The names of the nodes GetMaxPath lists, first to last; the count it returns must match.
std::string MaxPath(zrSimpleGraph& g, zrSimpleGraphNodeHead* start = nullptr) {
  zrList2kHead out;  // deletes the value nodes when it goes
  const int count = start ? g.GetMaxPath(start, &out) : g.GetMaxPath(&out);
  std::string names;
  for (const zrList2kHead* p = out.GetNext(); p != &out; p = p->GetNext()) {
    names += Of(static_cast<const zrSimpleList2k<zrSimpleGraphNodeHead*>*>(p)->GetValue());
  }
  EXPECT_EQ(count, static_cast<int>(names.size()));
  return names;
}

}  // namespace

TEST(SimpleGraph, DoubleSweepOnAPath) {
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  AddBranch(g, a, b);
  AddBranch(g, b, AddNode(g, 'c'));
  EXPECT_EQ(MaxPath(g), "cba");  // from a the far end is c; from c it is a
}

TEST(SimpleGraph, TiesGoToTheFirstInTheRingAndALoneStartIsAPath) {
  zrSimpleGraph g;
  EXPECT_EQ(g.GetMaxPath(nullptr), 0);
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Node* c = AddNode(g, 'c');
  Node* d = AddNode(g, 'd');
  // The walk from a reaches d, c, b in that order; the ring has b first.
  AddBranch(g, a, d);
  AddBranch(g, a, c);
  AddBranch(g, a, b);
  EXPECT_EQ(MaxPath(g), "bac");  // from a, b wins; from b, c and d tie: c wins
  EXPECT_EQ(MaxPath(g, AddNode(g, 'e')), "e");
  EXPECT_EQ(g.GetMaxPath(d, nullptr), 3);  // out is optional
}

TEST(SimpleGraph, WaveDoesNotStepAgainstAnOrientedBranch) {
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  AddBranch(g, a, b, 1);
  AddBranch(g, AddNode(g, 'c'), b);
  EXPECT_EQ(MaxPath(g, a), "abc");
  // No step back to a; nor is the path read on into a through the last walk's backs.
  EXPECT_EQ(MaxPath(g, b), "bc");
}

TEST(SimpleGraph, LoopIsListedTwiceAndRemovingANodeTakesItsBranches) {
  log.clear();
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Branch* loop = AddBranch(g, a, a);
  AddBranch(g, a, b);
  EXPECT_EQ(a->GetBranchList()->Len(), 4);  // the head, the loop twice, a-b
  EXPECT_EQ(loop->GetAnotherNode(a), a);
  EXPECT_EQ(MaxPath(g, a), "ab");

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
  zrAutoDelPointer<zrSimpleGraphBranchHead> keep(AddBranch(g, b, c));
  g.Remove(keep.GetPointer());  // held: out of the graph, still holding its ends
  g.Remove(b);                  // held by b-c: out of the ring only
  EXPECT_EQ(log, "");
  EXPECT_EQ(g.GetBranchList(), nullptr);
  EXPECT_EQ(a->Next(), c);
  keep = nullptr;  // b-c goes, and with it the last hold on b
  EXPECT_EQ(log, "~bc~b");
}

TEST(SimpleGraph, CopiesAreHandlesOnOneGraph) {
  log.clear();
  auto* last = new zrSimpleGraph;
  {
    zrSimpleGraph g;
    Node* a = AddNode(g, 'a');
    AddBranch(g, a, AddNode(g, 'b'));
    const zrSimpleGraph h(g);
    *last = h;
    Node* c = AddNode(*last, 'c');
    EXPECT_EQ(g.GetNodeList()->Prev(), c);  // seen through every handle
  }
  EXPECT_EQ(log, "");
  delete last;  // the last handle removes the branches, then the nodes
  EXPECT_EQ(log, "~ab~a~b~c");
}

TEST(SimpleGraph, IteratorHoldsWhatItVisits) {
  log.clear();
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  AddBranch(g, a, AddNode(g, 'b'));
  {
    zrNodeBranchIter it(a);
    g.Remove(a);  // a and a-b leave the graph; the walk holds them
    EXPECT_EQ(log, "");
    it.Next();  // a-b was taken out: the walk ends and lets it go
    EXPECT_EQ(log, "~ab");
    EXPECT_TRUE(it.IsEnd());
    EXPECT_EQ(zr_test::BadParametersText([&] { it.Get(); }),
              "Invalid parameters : zrNodeBranchIter: out of range");
  }
  EXPECT_EQ(log, "~ab~a");
}

TEST(SimpleGraph, WaveHasNoVisitedSetOfItsOwn) {
  // A triangle a-b-c whose acceptance takes every node at most twice: the walk keeps no
  // visited set of its own, so a node is queued again each time a step into it is taken.
  zrSimpleGraph g;
  Node* a = AddNode(g, 'a');
  Node* b = AddNode(g, 'b');
  Node* c = AddNode(g, 'c');
  AddBranch(g, a, b);
  AddBranch(g, b, c);
  AddBranch(g, c, a);
  std::string steps;
  auto twice = [](zrSimpleGraphNodeHead*, zrSimpleGraphNodeHead* to, zrSimpleGraphBranchHead*,
                  void* data) {
    std::string& s = *static_cast<std::string*>(data);
    if (to->GetLevel() >= 2) return 0;
    to->SetLevel(to->GetLevel() + 1);
    s += Of(to);
    return 1;
  };
  g.Wave(a, twice, &steps);
  EXPECT_EQ(steps, "bcacba");  // from a: b, c; from b: a, c; from c: b, a; then all refused
}

namespace {

// An acceptance that tries to take members out of the graph it walks, then steps as
// PathLen does. Every attempt must be refused: the walk queues plain nodes and stands
// on a node and a branch.
struct Meddler {
  zrSimpleGraph* g = nullptr;
  std::vector<zrSimpleGraphNodeHead*> queued;  // every node whose step was accepted
  int attempts = 0;
  int refused = 0;
  bool nested = false;  // run a Wave of its own first, on the same graph
};

int Meddle(zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to, zrSimpleGraphBranchHead* via,
           void* data) {
  Meddler& m = *static_cast<Meddler*>(data);
  if (m.nested) {
    m.nested = false;
    m.g->Wave(
        from,
        [](zrSimpleGraphNodeHead*, zrSimpleGraphNodeHead*, zrSimpleGraphBranchHead*, void*) {
          return 0;
        },
        nullptr);
  }
  const zrSimpleGraph other_handle(*m.g);
  const auto attempt = [&m](auto f) {
    ++m.attempts;
    if (zr_test::BadParametersText(f) ==
        "Invalid parameters : zrSimpleGraph::Remove : the graph is in a Wave")
      ++m.refused;
  };
  attempt([&] { m.g->Remove(to); });
  attempt([&] { m.g->Remove(from); });
  attempt([&] { m.g->Remove(via); });
  for (zrSimpleGraphNodeHead* n : m.queued) attempt([&] { m.g->Remove(n); });
  attempt([&] { zrSimpleGraph(other_handle).Remove(m.g->GetBranchList()); });
  const int accepted = zrSimpleGraph::PathLen(from, to, via, nullptr);
  if (accepted) m.queued.push_back(to);
  return accepted;
}

// a-b, a-c, b-d, c-d, walked from a.
struct Diamond {
  Diamond() {
    a = AddNode(g, 'a');
    b = AddNode(g, 'b');
    c = AddNode(g, 'c');
    d = AddNode(g, 'd');
    AddBranch(g, a, b);
    AddBranch(g, a, c);
    bd = AddBranch(g, b, d);
    AddBranch(g, c, d);
    a->SetLevel(1);
  }
  zrSimpleGraph g;
  Node *a, *b, *c, *d;
  Branch* bd;
};

}  // namespace

TEST(SimpleGraph, RemovalInsideAWaveIsRefused) {
  for (const bool nested : {false, true}) {
    log.clear();
    {
      Diamond dia;
      Meddler m;
      m.g = &dia.g;
      m.nested = nested;  // an inner walk that ends must leave the outer one walking
      dia.g.Wave(dia.a, Meddle, &m);
      EXPECT_GT(m.attempts, 10);
      EXPECT_EQ(m.refused, m.attempts);
      EXPECT_EQ(log, "");
      EXPECT_EQ(dia.d->GetBack(), dia.bd);  // the walk ran to its end on the whole graph
      EXPECT_EQ(dia.d->GetLevel(), 3);
      dia.g.Remove(dia.b);  // after the walk removal works again
      EXPECT_EQ(log, "~ab~bd~b");
      EXPECT_EQ(dia.d->GetBack(), nullptr);  // its branch has gone
    }
    EXPECT_EQ(log, "~ab~bd~b~ac~cd~a~c~d");
  }
}

TEST(SimpleGraph, AWaveEndsCleanlyWhenTheAcceptanceThrowsOrDropsTheGraph) {
  log.clear();
  {
    Diamond dia;
    const auto thrower = [](zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to,
                            zrSimpleGraphBranchHead* via, void*) {
      if (Of(to) == 'd') throw 7;
      return zrSimpleGraph::PathLen(from, to, via, nullptr);
    };
    EXPECT_THROW(dia.g.Wave(dia.a, thrower, nullptr), int);
    dia.g.Remove(dia.bd);  // the walk's state went with the exception
    EXPECT_EQ(log, "~bd");
  }
  log.clear();
  {
    // The acceptance drops the last handle on the graph it walks: the walk finishes on the
    // members it holds, and they go with it.
    Diamond dia;
    const auto dropper = [](zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to,
                            zrSimpleGraphBranchHead* via, void* data) {
      *static_cast<zrSimpleGraph*>(data) = zrSimpleGraph();
      return zrSimpleGraph::PathLen(from, to, via, nullptr);
    };
    dia.g.Wave(dia.a, dropper, &dia.g);
    EXPECT_EQ(log, "~ab~ac~bd~cd~a~b~c~d");
    EXPECT_EQ(dia.g.GetNodeList(), nullptr);
  }
}
