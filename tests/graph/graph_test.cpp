// The graph: the walk, the longest shortest path, and who deletes what when. Nodes and
// branches log their destruction, so a test can say when the last holder let go; the
// asan preset catches what the log cannot (a member freed while linked, a leak).
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "support/test_support.h"
#include "zr/graph/graph.h"

namespace {

std::string log;  // "~a" for node a, "~ab" for branch a-b, in order of destruction

struct Node : zrSimpleGraphNodeHead {
  explicit Node(char name) : name(name) {}
  ~Node() override { log += std::string("~") + name; }
  char name;
};

char Of(const zrSimpleGraphNodeHead* n) { return static_cast<const Node*>(n)->name; }

struct Branch : zrSimpleGraphBranchHead {
  Branch(Node* n1, Node* n2, int orient) : zrSimpleGraphBranchHead(n1, n2, orient) {}
  ~Branch() override { log += std::string{'~', Of(GetNode1()), Of(GetNode2())}; }
};

// A graph from a description such as "ab a>c": nodes in the order their names first appear, each
// followed by its branches; "ab" is a plain branch a-b, "a>c" one oriented from a to c.
struct Graph {
  explicit Graph(const std::string& edges) {
    std::istringstream in(edges);
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
  for (const zrList2kHead* p = out.GetNext(); p != &out; p = p->GetNext())
    names += Of(static_cast<const zrSimpleList2k<zrSimpleGraphNodeHead*>*>(p)->GetValue());
  EXPECT_EQ(count, static_cast<int>(names.size()));
  return names;
}

}  // namespace

TEST(SimpleGraph, GetBranchFindsTheBranchBetweenTwoNodes) {
  Graph gr("ab ac");
  Node *a = gr.node['a'], *b = gr.node['b'], *c = gr.node['c'];
  EXPECT_TRUE(a->GetBranch(b) == gr.branch["ab"] && c->GetBranch(a) == gr.branch["ac"]);
  EXPECT_EQ(b->GetBranch(c), nullptr);
}

TEST(SimpleGraph, LongestShortestPath) {
  EXPECT_EQ(zrSimpleGraph().GetMaxPath(nullptr), 0);
  // From a the far end of a path is c; from c it is a. The walk of the star from a reaches
  // d, c, b in that order; the ring has b first. From a, b wins; from b, c and d tie: c
  // wins. A lone start is a path of its own. No step is taken against an oriented branch,
  // nor is the path read on through the last walk's backs.
  const struct {
    const char *edges, start, *path;
  } cases[] = {
      {"ab bc", 0, "cba"},    {"a b c d ad ac ab", 0, "bac"}, {"a b c d ad ac ab e", 'e', "e"},
      {"a>b cb", 'a', "abc"}, {"a>b cb", 'b', "bc"},          {"aa ab", 'a', "ab"}};
  for (const auto& c : cases) {
    Graph graph(c.edges);
    EXPECT_EQ(MaxPath(graph.g, c.start ? graph.node[c.start] : nullptr), c.path) << c.edges;
  }
  Graph star("a b c d ad ac ab");
  EXPECT_EQ(star.g.GetMaxPath(star.node['d'], nullptr), 3);  // out is optional
}

TEST(SimpleGraph, ALoopIsListedTwiceAndRemovedMembersDieWithTheirLastHolder) {
  log.clear();
  {
    Graph loop("aa ab");
    Node* a = loop.node['a'];
    // The head, the loop twice, a-b; the loop's other end is its node.
    EXPECT_TRUE(a->GetBranchList()->Len() == 4 && loop.branch["aa"]->GetAnotherNode(a) == a);
    loop.g.Remove(loop.node['b']);
    loop.g.Remove(a);  // the only node: its branches and both rings are empty after it
    EXPECT_TRUE(log == "~ab~b~aa~a" && !loop.g.GetNodeList() && !loop.g.GetBranchList());
  }
  // A walk over a node's branches holds the node and the branch it stands on.
  log.clear();
  Graph path("a bc");
  {
    zrNodeBranchIter it(path.node['b']);
    path.g.Remove(path.node['b']);  // b-c and b leave the graph and the ring, held
    EXPECT_TRUE(log.empty() && !path.g.GetBranchList() && path.node['a']->Next() == path.node['c']);
    it.Next();  // b-c was taken out: the walk ends and lets it go
    EXPECT_TRUE(log == "~bc" && it.IsEnd());
    EXPECT_EQ(zr_test::BadParametersText([&] { it.Get(); }),
              "Invalid parameters : zrNodeBranchIter: out of range");
  }
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

namespace {

// An acceptance that steps as PathLen does and first tries to take members out of the
// graph it walks, through it and through another handle: every attempt must be refused,
// since the walk queues plain nodes and stands on a node and a branch. It may also run a
// walk of its own first, throw on reaching d, or drop the last handle on the graph.
enum Mode { kPlain, kNested, kThrow, kDrop };
struct Meddler {
  zrSimpleGraph* g;
  Mode mode;
  int attempts = 0, refused = 0;
};

int Meddle(zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to, zrSimpleGraphBranchHead* via,
           void* data) {
  Meddler& m = *static_cast<Meddler*>(data);
  if (m.mode == kDrop) *m.g = zrSimpleGraph();
  if (m.mode == kDrop) return zrSimpleGraph::PathLen(from, to, via, nullptr);
  if (m.mode == kNested) {
    m.mode = kPlain;
    m.g->Wave(
        from, [](auto...) { return 0; }, nullptr);
  }
  const auto attempt = [&m](auto f) {
    m.refused += zr_test::BadParametersText(f) ==
                 "Invalid parameters : zrSimpleGraph::Remove : the graph is in a Wave";
    ++m.attempts;
  };
  attempt([&] { m.g->Remove(to); });
  attempt([&] { m.g->Remove(via); });
  attempt([&] { zrSimpleGraph(*m.g).Remove(from); });
  if (m.mode == kThrow && Of(to) == 'd') throw 7;
  return zrSimpleGraph::PathLen(from, to, via, nullptr);
}

}  // namespace

// Removal works again once the walk is over, however it ended. A walk whose acceptance
// drops the graph finishes on the members it holds, and they go with it.
TEST(SimpleGraph, RemovalIsRefusedUntilAWaveEndsHoweverItEnds) {
  for (const Mode mode : {kPlain, kNested, kThrow, kDrop}) {
    log.clear();
    {
      Graph dia("ab ac bd cd");  // walked from a
      dia.node['a']->SetLevel(1);
      Meddler m{&dia.g, mode};
      if (mode == kThrow) {
        EXPECT_THROW(dia.g.Wave(dia.node['a'], Meddle, &m), int);
      } else {
        dia.g.Wave(dia.node['a'], Meddle, &m);
      }
      if (mode == kDrop) {
        EXPECT_TRUE(log == "~ab~ac~bd~cd~a~b~c~d" && dia.g.GetNodeList() == nullptr);
        continue;
      }
      EXPECT_TRUE(m.attempts > 5 && m.refused == m.attempts && log.empty()) << mode;
      // The walk ran to its end on the whole graph; the back of d goes with its branch.
      EXPECT_TRUE(mode == kThrow ||
                  (dia.node['d']->GetBack() == dia.branch["bd"] && dia.node['d']->GetLevel() == 3));
      dia.g.Remove(dia.node['b']);
      EXPECT_TRUE(log == "~ab~bd~b" && dia.node['d']->GetBack() == nullptr) << mode;
    }
    EXPECT_EQ(log, "~ab~bd~b~ac~cd~a~c~d");
  }
}
