/// \file
/// The node-and-branch graph.
///
/// Nodes (zrSimpleGraphNodeHead) and branches (zrSimpleGraphBranchHead, an edge between
/// two nodes, oriented from node1 to node2 or not) are counted heap objects; applications
/// derive their own node and branch classes from these heads and make them with `new`.
/// Each is a zrList2kHead (its link in the graph's ring of nodes or of branches) and a
/// zrRefCount, with one zrUsingNew part between them; the count operations are
/// zrRefCount's.
///
/// Who holds whom:
///   - a graph holds one reference on each of its members, plus one more on whichever node
///     and branch are first in their rings (the two owning pointers);
///   - a branch holds a reference on each of its ends, so a node lives at least as long as
///     the branches on it;
///   - zrNodeBranchIter holds the node it walks and the branch it stands on.
/// A member removed from the graph, or left in it when the last graph handle goes, is
/// deleted when nothing else holds it; otherwise it lives on outside the graph.
///
/// A branch appears in its ends' branch lists through two zrInternalList2k links whose
/// payload is the branch; a loop (node1 == node2) is listed twice in its node's list.
/// A node's branch list holds only such links.
///
/// What is not checked: a node or branch joins at most one graph, once; every branch added
/// to a graph has both ends in it; a branch made on nodes of a graph is added to that graph
/// (Remove of a node removes every branch on it as a graph member); node and end pointers
/// are not null.
///
/// Removal during a walk is refused, not made safe: while a Wave runs on a graph (through
/// any of its handles, GetMaxPath's included), Remove throws
/// BadParameters("zrSimpleGraph::Remove : the graph is in a Wave") and changes nothing. The
/// walk queues plain node pointers and stands on a node and a branch; a refusal keeps every
/// one of them a member, whichever the acceptance function tries to take out. Add is allowed
/// (a branch added on the node being walked is met later in the same walk).
#pragma once

#include <cstdint>

#include "zr/core/core.h"
#include "zr/graph/list.h"

class zrSimpleGraphBranchHead;
class zrSimpleGraph;

namespace zr::detail {
class GraphMembers;
}  // namespace zr::detail

/// A node: its link in the graph's node ring, the head of its own branch list and two
/// work fields that Wave and GetMaxPath overwrite.
/// A counted heap object: the graph holds one reference, each branch on it one more (see
/// simple_graph.h). See the example docs/examples.md#guide_graph for the graph
/// subsystem.
class ZR_API zrSimpleGraphNodeHead : public zrList2kHead, public zrRefCount {
  ZR_TYPE_IDENTITY
 public:
  zrSimpleGraphNodeHead() = default;
  /// A copy has the source's level and none of its relations: in no graph, no branches,
  /// no back branch, no holders.
  zrSimpleGraphNodeHead(const zrSimpleGraphNodeHead& other);
  /// Copies the level only. The node keeps its place in a graph, its branches and its
  /// holders, so a derived node can assign its own data without breaking the graph.
  zrSimpleGraphNodeHead& operator=(const zrSimpleGraphNodeHead& other);
  /// A node normally dies alone: its branches and its graph hold it. One that dies while
  /// still linked (made on the stack, or its count mismanaged) unlinks itself and its
  /// branch links and deletes nothing.
  ~zrSimpleGraphNodeHead() override;

  /// The head of the ring of this node's branch links (one per branch end on the node).
  zrList2kHead* GetBranchList() { return &branches_; }
  const zrList2kHead* GetBranchList() const { return &branches_; }
  /// Neighbours in the graph's node ring; null when the node is alone in it.
  zrSimpleGraphNodeHead* Next() const;
  zrSimpleGraphNodeHead* Prev() const;
  /// The first branch in this node's list whose node1 or node2 is other, orientation
  /// ignored; null if none.
  zrSimpleGraphBranchHead* GetBranch(const zrSimpleGraphNodeHead* other) const;

  /// Work field of GetMaxPath (and free for an acceptance function of your own): after
  /// GetMaxPath, 1 + the distance in branches from its start, 0 for unreached nodes and
  /// for the far end of the path found.
  int GetLevel() const { return level_; }
  void SetLevel(int level) { level_ = level; }
  /// The branch by which the last Wave reached this node; null for its start, for the
  /// nodes it did not reach, and once that branch has been deleted.
  zrSimpleGraphBranchHead* GetBack() const { return back_; }

 private:
  friend class zrSimpleGraph;
  friend class zrSimpleGraphBranchHead;
  zrList2kHead branches_;                    // ring of branch links, see GetBranchList
  std::int32_t level_ = 0;                   // wave number
  zrSimpleGraphBranchHead* back_ = nullptr;  // branch of the last Wave's step into here
};

/// The value nodes and the queue the graph uses are compiled in the library.
ZR_EXTERN_TEMPLATE(class, zrSimpleList1k<zrSimpleGraphNodeHead*>);
ZR_EXTERN_TEMPLATE(class, zrSimpleList2k<zrSimpleGraphNodeHead*>);
ZR_EXTERN_TEMPLATE(class, zrListQueue<zrSimpleGraphNodeHead*>);

/// A branch: its link in the graph's branch ring, its two ends (held), one link in each
/// end's branch list, and a work field that Wave overwrites.
/// A counted heap object that holds its two ends (see simple_graph.h). See the example
/// docs/examples.md#guide_graph for the graph subsystem.
class ZR_API zrSimpleGraphBranchHead : public zrList2kHead, public zrRefCount {
  ZR_TYPE_IDENTITY
 public:
  /// Takes a reference on both ends and appends link1 to node1's branch list and link2 to
  /// node2's (AddBefore on the list heads). orient != 0 orients the branch from node1 to
  /// node2.
  zrSimpleGraphBranchHead(zrSimpleGraphNodeHead* node1, zrSimpleGraphNodeHead* node2,
                          int orient = 0);
  /// A copy holds the same ends with the same orientation but, as copied links do, starts
  /// alone: it is in no graph and in neither end's branch list.
  zrSimpleGraphBranchHead(const zrSimpleGraphBranchHead& other);
  /// Copies the orientation only; ends, links and holders stay (see the node's operator=).
  zrSimpleGraphBranchHead& operator=(const zrSimpleGraphBranchHead& other);
  /// Takes the branch out of its ends' lists (and out of a ring it is still in), then lets
  /// both ends go: an end nothing else holds is deleted with it.
  ~zrSimpleGraphBranchHead() override;

  zrSimpleGraphNodeHead* GetNode1() const { return node1_.GetPointer(); }
  zrSimpleGraphNodeHead* GetNode2() const { return node2_.GetPointer(); }
  /// node1 when n is not node1, otherwise node2 (so a loop gives its node back).
  zrSimpleGraphNodeHead* GetAnotherNode(const zrSimpleGraphNodeHead* n) const {
    return n != node1_.GetPointer() ? node1_.GetPointer() : node2_.GetPointer();
  }
  /// 1 when the branch may be left from (entered at) n: it is not oriented, or n is node1
  /// (node2).
  int IsOut(const zrSimpleGraphNodeHead* n) const {
    return !orient_ || n == node1_.GetPointer() ? 1 : 0;
  }
  int IsIn(const zrSimpleGraphNodeHead* n) const {
    return !orient_ || n == node2_.GetPointer() ? 1 : 0;
  }
  int IsOrient() const { return orient_ ? 1 : 0; }

  /// Neighbours in the graph's branch ring; null when the branch is alone in it.
  zrSimpleGraphBranchHead* Next() const;
  zrSimpleGraphBranchHead* Prev() const;

  /// Takes the branch out of the graph's ring and out of both ends' branch lists. The
  /// graph's Remove calls it; a derived branch may extend it (and then calls this one).
  /// Counts are not touched.
  virtual void Remove();

  zrInternalList2k* GetNodeLink1() { return &link1_; }
  zrInternalList2k* GetNodeLink2() { return &link2_; }
  /// The node from which the last Wave stepped along this branch; null if it did not.
  zrSimpleGraphNodeHead* GetBack() const { return back_; }

  /// The branch a link of a node's branch list belongs to.
  static zrSimpleGraphBranchHead* OfLink(const zrList2kHead* link) {
    return static_cast<zrSimpleGraphBranchHead*>(
        static_cast<const zrInternalList2k*>(link)->GetPayload());
  }

 private:
  friend class zrSimpleGraph;
  void RemoveFromNode();

  zrAutoDelPointer<zrSimpleGraphNodeHead> node1_;  // first end, held
  zrAutoDelPointer<zrSimpleGraphNodeHead> node2_;  // second end, held
  zrInternalList2k link1_;                         // in node1's branch list, payload this
  zrInternalList2k link2_;                         // in node2's branch list, payload this
  zrSimpleGraphNodeHead* back_ = nullptr;          // node of the last Wave's step along here
  std::int32_t orient_;                            // nonzero: oriented node1 -> node2
};

/// Walks a node's branch list in order. It holds the node for its whole life and the
/// branch it stands on until it moves on, so both outlive their removal from the graph
/// while the walk is on them; releasing them deletes what nothing else holds (walking a
/// node that nobody holds deletes it at the end).
///
/// If the branch it stands on is taken out of the node's list, the walk ends there;
/// branches taken out further on are simply not met.
///
/// See the example docs/examples.md#guide_graph for the graph subsystem.
class ZR_API zrNodeBranchIter {
 public:
  explicit zrNodeBranchIter(zrSimpleGraphNodeHead* node);
  zrNodeBranchIter(const zrNodeBranchIter&) = delete;
  zrNodeBranchIter& operator=(const zrNodeBranchIter&) = delete;
  ~zrNodeBranchIter();

  bool IsEnd() const { return branch_.IsNull(); }
  /// The current branch. Past the end it throws
  /// BadParameters("zrNodeBranchIter: out of range").
  zrSimpleGraphBranchHead* Get() const;
  /// Moves to the next link of the list; past the end it stays there.
  void Next();

 private:
  zrAutoDelPointer<zrSimpleGraphNodeHead> node_;
  zrAutoDelPointer<zrSimpleGraphBranchHead> branch_;  // null past the end
  zrList2kHead* link_;                                // the current link, or the list head
};

/// The graph: a ring of nodes and a ring of branches, reached through the first of each.
///
/// The two owning pointers live in a small counted record that copies of the graph share,
/// as zrAutoDelPointer shares its object: a copy, or the target of operator=, is another
/// handle on the same graph, and a change through one is seen through all. (A member has
/// one ring link, so it cannot be in two graphs, and there is nothing else a copy could
/// hold.) When the last handle goes, every branch and then every node is removed as by
/// Remove.
///
/// See the example docs/examples.md#guide_graph for the graph subsystem.
class ZR_API zrSimpleGraph : public zrUsingNew {
  ZR_TYPE_IDENTITY
 public:
  /// Called by Wave with the node stepped from, the node stepped to, the branch used and
  /// the caller's data pointer; nonzero accepts the step.
  using AcceptFunction = int (*)(zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to,
                                 zrSimpleGraphBranchHead* via, void* data);

  /// An empty graph (allocates its shared record).
  zrSimpleGraph();
  zrSimpleGraph(const zrSimpleGraph& other);
  zrSimpleGraph& operator=(const zrSimpleGraph& other);
  ~zrSimpleGraph() override;

  /// The first node and branch of the rings; null when there are none.
  zrSimpleGraphNodeHead* GetNodeList() const;
  zrSimpleGraphBranchHead* GetBranchList() const;

  /// Appends the member at the end of its ring (before the first one), or makes it the
  /// first; the graph takes a reference on it.
  void Add(zrSimpleGraphNodeHead* node);
  void Add(zrSimpleGraphBranchHead* branch);
  /// Takes b out of the graph (its Remove) and lets the graph's reference go; b is deleted
  /// when nothing else holds it. Its successor becomes first when b was. During a Wave on
  /// the graph it throws BadParameters("zrSimpleGraph::Remove : the graph is in a Wave").
  void Remove(zrSimpleGraphBranchHead* b);
  /// Removes every branch on n as above, then n itself the same way; refused during a Wave
  /// as above.
  void Remove(zrSimpleGraphNodeHead* n);

  /// Breadth-first walk from start in which accept decides every step. Resets every
  /// node's and branch's back, then takes nodes from a FIFO queue, starting with start;
  /// for each branch b on a node n, in list order, that may be left from n, it offers the
  /// step to the other end m; an accepted step sets b's back to n and m's back to b and
  /// queues m. There is no visited set: m is queued each time a step into it is accepted,
  /// so accept must refuse steps into nodes already reached or the walk does not end.
  /// Oriented branches are followed from node1 to node2 only. Does nothing on an empty
  /// graph. start must be a node of the graph.
  ///
  /// accept may do anything but remove members: Remove on this graph throws until the walk
  /// is over, and the refusal ends with the walk however it ends (an exception from accept
  /// leaves Wave after freeing its queue). An inner Wave started from accept keeps the
  /// outer one refusing when it returns. The walk holds the graph, so accept may even drop
  /// its last handle: the walk runs to its end and the members go after it.
  void Wave(zrSimpleGraphNodeHead* start, AcceptFunction accept, void* data);

  /// The acceptance of GetMaxPath: refuses a step into a node whose level is set and not
  /// above from's level + 1, otherwise sets it to from's level + 1 and accepts. A Wave
  /// with it from a start at level 1 (all others 0) leaves 1 + the distance from start in
  /// each reached node, and in back the branch of a shortest path.
  static int PathLen(zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to,
                     zrSimpleGraphBranchHead* via, void* data);

  /// The number of nodes on a shortest path from start to the node farthest from it
  /// (the first of the farthest in ring order), both ends counted; 1 for a start with no
  /// way out, 0 for an empty graph. When out is not null, a zrSimpleList2k of each node
  /// on the path is linked after it, so that out reads from start to the far node; the
  /// caller frees them (out's destructor does). The far node's level is left at 0.
  int GetMaxPath(zrSimpleGraphNodeHead* start, zrList2kHead* out);
  /// The double sweep: GetMaxPath from the node farthest from the first node. For a tree
  /// the path is a diameter.
  int GetMaxPath(zrList2kHead* out);

 private:
  zrAutoDelPointer<zr::detail::GraphMembers> members_;
};
