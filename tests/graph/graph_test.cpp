// The graph: the walk, the longest shortest path, and who deletes what when. Nodes and
// branches log their destruction, so a test can say when the last holder let go; the
// asan preset catches what the log cannot (a member freed while linked, a leak).
#include <gtest/gtest.h>

#include <map>
#include <sstream>
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

// A graph from a spec such as "ab a>c": nodes in the order their names first appear, each
// followed by its branches; "ab" is a plain branch a-b, "a>c" one oriented from a to c.
struct Graph {
  explicit Graph(const std::string& spec) {
    std::istringstream in(spec);
    for (std::string t; in >> t;) {
      for (char c : t)
        if (c != '>' && !node.count(c)) g.Add(node[c] = new Node(c));
      if (t.size() > 1)
        g.Add(branch[t] = new Branch(node[t.front()], node[t.back()], t.size() == 3));
    }
  }
  zrSimpleGraph g;
  std::map<char, Node*> node;
  std::map<std::string, Branch*> branch;
};

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

TEST(SimpleGraph, LongestShortestPath) {
  EXPECT_EQ(zrSimpleGraph().GetMaxPath(nullptr), 0);
  const struct {
    const char *spec, start, *path;
  } cases[] = {
      {"ab bc", 0,
       "cba"},  // from a the far end is c; from c it is a
                // The walk from a reaches d, c, b in that order; the ring has b first. From a, b
                // wins; from b, c and d tie: c wins. A lone start is a path of its own.
      {"a b c d ad ac ab", 0, "bac"},
      {"a b c d ad ac ab e", 'e', "e"},
      // No step against an oriented branch; nor is the path read on through the last
      // walk's backs.
      {"a>b cb", 'a', "abc"},
      {"a>b cb", 'b', "bc"},
      {"aa ab", 'a', "ab"}};  // a loop
  for (const auto& c : cases) {
    Graph graph(c.spec);
    EXPECT_EQ(MaxPath(graph.g, c.start ? graph.node[c.start] : nullptr), c.path) << c.spec;
  }
  Graph star("a b c d ad ac ab");
  EXPECT_EQ(star.g.GetMaxPath(star.node['d'], nullptr), 3);  // out is optional
}

TEST(SimpleGraph, ALoopIsListedTwiceAndRemovedMembersDieWithTheirLastHolder) {
  log.clear();
  {
    Graph loop("aa ab");
    Node* a = loop.node['a'];
    EXPECT_EQ(a->GetBranchList()->Len(), 4);  // the head, the loop twice, a-b
    EXPECT_EQ(loop.branch["aa"]->GetAnotherNode(a), a);
    loop.g.Remove(loop.node['b']);
    loop.g.Remove(a);  // the only node: its branches and both rings are empty after it
    EXPECT_EQ(log, "~ab~b~aa~a");
    EXPECT_TRUE(loop.g.GetNodeList() == nullptr && loop.g.GetBranchList() == nullptr);
  }
  log.clear();
  Graph path("a bc");
  zrAutoDelPointer<zrSimpleGraphBranchHead> keep(path.branch["bc"]);
  path.g.Remove(keep.GetPointer());  // held: out of the graph, still holding its ends
  path.g.Remove(path.node['b']);     // held by b-c: out of the ring only
  EXPECT_TRUE(log.empty() && path.g.GetBranchList() == nullptr);
  EXPECT_EQ(path.node['a']->Next(), path.node['c']);
  keep = nullptr;  // b-c goes, and with it the last hold on b
  EXPECT_EQ(log, "~bc~b");
}

TEST(SimpleGraph, CopiesAreHandlesOnOneGraph) {
  log.clear();
  auto* last = new zrSimpleGraph;
  {
    Graph graph("ab");
    const zrSimpleGraph h(graph.g);
    *last = h;
    auto* c = new Node('c');
    last->Add(c);
    EXPECT_EQ(graph.g.GetNodeList()->Prev(), c);  // seen through every handle
  }
  EXPECT_EQ(log, "");
  delete last;  // the last handle removes the branches, then the nodes
  EXPECT_EQ(log, "~ab~a~b~c");
}

TEST(SimpleGraph, IteratorHoldsWhatItVisits) {
  log.clear();
  {
    Graph graph("ab");
    zrNodeBranchIter it(graph.node['a']);
    graph.g.Remove(graph.node['a']);  // a and a-b leave the graph; the walk holds them
    EXPECT_EQ(log, "");
    it.Next();  // a-b was taken out: the walk ends and lets it go
    EXPECT_TRUE(log == "~ab" && it.IsEnd());
    EXPECT_EQ(zr_test::BadParametersText([&] { it.Get(); }),
              "Invalid parameters : zrNodeBranchIter: out of range");
  }
  EXPECT_EQ(log, "~ab~a~b");
}

TEST(SimpleGraph, WaveHasNoVisitedSetOfItsOwn) {
  // A triangle a-b-c whose acceptance takes every node at most twice: the walk keeps no
  // visited set of its own, so a node is queued again each time a step into it is taken.
  Graph triangle("ab bc ca");
  std::string steps;
  auto twice = [](zrSimpleGraphNodeHead*, zrSimpleGraphNodeHead* to, zrSimpleGraphBranchHead*,
                  void* data) {
    std::string& s = *static_cast<std::string*>(data);
    if (to->GetLevel() >= 2) return 0;
    to->SetLevel(to->GetLevel() + 1);
    s += Of(to);
    return 1;
  };
  triangle.g.Wave(triangle.node['a'], twice, &steps);
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

}  // namespace

TEST(SimpleGraph, RemovalInsideAWaveIsRefused) {
  for (const bool nested : {false, true}) {
    log.clear();
    {
      Graph dia("ab ac bd cd");  // walked from a
      dia.node['a']->SetLevel(1);
      Meddler m;
      m.g = &dia.g;
      m.nested = nested;  // an inner walk that ends must leave the outer one walking
      dia.g.Wave(dia.node['a'], Meddle, &m);
      EXPECT_TRUE(m.attempts > 10 && m.refused == m.attempts && log.empty());
      // The walk ran to its end on the whole graph.
      EXPECT_TRUE(dia.node['d']->GetBack() == dia.branch["bd"] && dia.node['d']->GetLevel() == 3);
      dia.g.Remove(dia.node['b']);  // after the walk removal works again
      EXPECT_TRUE(log == "~ab~bd~b" && dia.node['d']->GetBack() == nullptr);  // its branch went
    }
    EXPECT_EQ(log, "~ab~bd~b~ac~cd~a~c~d");
  }
}

TEST(SimpleGraph, AWaveEndsCleanlyWhenTheAcceptanceThrowsOrDropsTheGraph) {
  log.clear();
  {
    Graph dia("ab ac bd cd");
    dia.node['a']->SetLevel(1);
    const auto thrower = [](zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to,
                            zrSimpleGraphBranchHead* via, void*) {
      if (Of(to) == 'd') throw 7;
      return zrSimpleGraph::PathLen(from, to, via, nullptr);
    };
    EXPECT_THROW(dia.g.Wave(dia.node['a'], thrower, nullptr), int);
    dia.g.Remove(dia.branch["bd"]);  // the walk's state went with the exception
    EXPECT_EQ(log, "~bd");
  }
  log.clear();
  {
    // The acceptance drops the last handle on the graph it walks: the walk finishes on the
    // members it holds, and they go with it.
    Graph dia("ab ac bd cd");
    dia.node['a']->SetLevel(1);
    const auto dropper = [](zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to,
                            zrSimpleGraphBranchHead* via, void* data) {
      *static_cast<zrSimpleGraph*>(data) = zrSimpleGraph();
      return zrSimpleGraph::PathLen(from, to, via, nullptr);
    };
    dia.g.Wave(dia.node['a'], dropper, &dia.g);
    EXPECT_TRUE(log == "~ab~ac~bd~cd~a~b~c~d" && dia.g.GetNodeList() == nullptr);
  }
}
