#include "zr/graph/simple_graph.h"

#include <initializer_list>

ZR_INSTANTIATE_TEMPLATE(class, zrSimpleList1k<zrSimpleGraphNodeHead*>);
ZR_INSTANTIATE_TEMPLATE(class, zrSimpleList2k<zrSimpleGraphNodeHead*>);
ZR_INSTANTIATE_TEMPLATE(class, zrListQueue<zrSimpleGraphNodeHead*>);

namespace zr::detail {

// What the handles of one graph share: the first node and the first branch. Every member
// carries one reference of the graph's besides the one the pointer takes on the first.
class GraphMembers : public zrRefCount {
  ZR_TYPE_IDENTITY
 public:
  GraphMembers() = default;
  GraphMembers(const GraphMembers&) = delete;
  GraphMembers& operator=(const GraphMembers&) = delete;
  // The last handle has gone: every member leaves, branches first.
  ~GraphMembers() override;

  void Remove(zrSimpleGraphBranchHead* b);
  void Remove(zrSimpleGraphNodeHead* n);

  zrAutoDelPointer<zrSimpleGraphNodeHead> first_node;
  zrAutoDelPointer<zrSimpleGraphBranchHead> first_branch;
  std::int32_t walks = 0;  // Waves under way on the graph (nested ones count too)
};

ZR_DEFINE_TYPE_IDENTITY(GraphMembers)

GraphMembers::~GraphMembers() {
  while (!first_branch.IsNull()) Remove(first_branch.GetPointer());
  while (!first_node.IsNull()) Remove(first_node.GetPointer());
}

void GraphMembers::Remove(zrSimpleGraphBranchHead* b) {
  // The first pointer moves on before b leaves the ring; the graph's own reference keeps
  // b alive through it.
  if (first_branch.GetPointer() == b) first_branch = b->Next();
  b->Remove();
  zrUsingNew::Delete(b);
}

void GraphMembers::Remove(zrSimpleGraphNodeHead* n) {
  const zrList2kHead* const branches = n->GetBranchList();
  while (!branches->IsAlone()) Remove(zrSimpleGraphBranchHead::OfLink(branches->GetNext()));
  if (first_node.GetPointer() == n) first_node = n->Next();
  n->zrList2kHead::Remove();
  zrUsingNew::Delete(n);
}

}  // namespace zr::detail

namespace {

// Calls f on every node of the ring that starts at first, in ring order.
template <class F>
void ForEachNode(zrSimpleGraphNodeHead* first, F f) {
  zrSimpleGraphNodeHead* n = first;
  do {
    zrSimpleGraphNodeHead* const next = n->Next();
    f(n);
    n = next;
  } while (n && n != first);
}

}  // namespace

// ---------------------------------------------------------------------------------------

ZR_DEFINE_TYPE_IDENTITY(zrSimpleGraphNodeHead)

zrSimpleGraphNodeHead::zrSimpleGraphNodeHead(const zrSimpleGraphNodeHead& other)
    : zrUsingNew(other), zrList2kHead(other), zrRefCount(other), level_(other.level_) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copies a value only
zrSimpleGraphNodeHead& zrSimpleGraphNodeHead::operator=(const zrSimpleGraphNodeHead& other) {
  level_ = other.level_;
  return *this;
}

zrSimpleGraphNodeHead::~zrSimpleGraphNodeHead() {
  // The links in the branch list are parts of branches: taken out, never deleted.
  while (!branches_.IsAlone()) branches_.GetNext()->Remove();
  zrList2kHead::Remove();
}

zrSimpleGraphNodeHead* zrSimpleGraphNodeHead::Next() const {
  return IsAlone() ? nullptr : static_cast<zrSimpleGraphNodeHead*>(GetNext());
}

zrSimpleGraphNodeHead* zrSimpleGraphNodeHead::Prev() const {
  return IsAlone() ? nullptr : static_cast<zrSimpleGraphNodeHead*>(GetPrev());
}

zrSimpleGraphBranchHead* zrSimpleGraphNodeHead::GetBranch(
    const zrSimpleGraphNodeHead* other) const {
  for (const zrList2kHead* link = branches_.GetNext(); link != &branches_; link = link->GetNext()) {
    zrSimpleGraphBranchHead* const b = zrSimpleGraphBranchHead::OfLink(link);
    if (b->GetNode1() == other || b->GetNode2() == other) return b;
  }
  return nullptr;
}

// ---------------------------------------------------------------------------------------

ZR_DEFINE_TYPE_IDENTITY(zrSimpleGraphBranchHead)

zrSimpleGraphBranchHead::zrSimpleGraphBranchHead(zrSimpleGraphNodeHead* node1,
                                                 zrSimpleGraphNodeHead* node2, int orient)
    : node1_(node1), node2_(node2), link1_(this), link2_(this), orient_(orient) {
  node1->GetBranchList()->AddBefore(&link1_);
  node2->GetBranchList()->AddBefore(&link2_);
}

zrSimpleGraphBranchHead::zrSimpleGraphBranchHead(const zrSimpleGraphBranchHead& other)
    : zrUsingNew(other),
      zrList2kHead(other),
      zrRefCount(other),
      node1_(other.node1_),
      node2_(other.node2_),
      link1_(this),
      link2_(this),
      orient_(other.orient_) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copies a value only
zrSimpleGraphBranchHead& zrSimpleGraphBranchHead::operator=(const zrSimpleGraphBranchHead& other) {
  orient_ = other.orient_;
  return *this;
}

zrSimpleGraphBranchHead::~zrSimpleGraphBranchHead() {
  // No end keeps a Wave's step along a branch that is gone. The ends are still held.
  for (zrSimpleGraphNodeHead* end : {node1_.GetPointer(), node2_.GetPointer()}) {
    if (end && end->back_ == this) end->back_ = nullptr;
  }
  RemoveFromNode();
  zrList2kHead::Remove();
}

zrSimpleGraphBranchHead* zrSimpleGraphBranchHead::Next() const {
  return IsAlone() ? nullptr : static_cast<zrSimpleGraphBranchHead*>(GetNext());
}

zrSimpleGraphBranchHead* zrSimpleGraphBranchHead::Prev() const {
  return IsAlone() ? nullptr : static_cast<zrSimpleGraphBranchHead*>(GetPrev());
}

void zrSimpleGraphBranchHead::Remove() {
  zrList2kHead::Remove();
  RemoveFromNode();
}

void zrSimpleGraphBranchHead::RemoveFromNode() {
  link1_.Remove();
  link2_.Remove();
}

// ---------------------------------------------------------------------------------------

zrNodeBranchIter::zrNodeBranchIter(zrSimpleGraphNodeHead* node)
    : node_(node), link_(node->GetBranchList()->GetNext()) {
  if (link_ != node->GetBranchList()) branch_ = zrSimpleGraphBranchHead::OfLink(link_);
}

zrNodeBranchIter::~zrNodeBranchIter() = default;

zrSimpleGraphBranchHead* zrNodeBranchIter::Get() const {
  if (branch_.IsNull()) throw BadParameters("zrNodeBranchIter: out of range");
  return branch_.GetPointer();
}

void zrNodeBranchIter::Next() {
  if (branch_.IsNull()) return;
  const zrList2kHead* const head = node_->GetBranchList();
  // A link that was taken out while the walk stood on it is alone: the walk ends.
  link_ = link_->IsAlone() ? node_->GetBranchList() : link_->GetNext();
  zrSimpleGraphBranchHead* const next =
      link_ == head ? nullptr : zrSimpleGraphBranchHead::OfLink(link_);
  // The two ends of a loop follow each other; re-setting the pointer to the branch it
  // holds could delete it on the way.
  if (next != branch_.GetPointer()) branch_ = next;
}

// ---------------------------------------------------------------------------------------

ZR_DEFINE_TYPE_IDENTITY(zrSimpleGraph)

zrSimpleGraph::zrSimpleGraph() : members_(new zr::detail::GraphMembers) {}

zrSimpleGraph::zrSimpleGraph(const zrSimpleGraph& other)
    : zrUsingNew(other), members_(other.members_) {}

zrSimpleGraph& zrSimpleGraph::operator=(const zrSimpleGraph& other) {
  members_ = other.members_;
  return *this;
}

zrSimpleGraph::~zrSimpleGraph() = default;

zrSimpleGraphNodeHead* zrSimpleGraph::GetNodeList() const {
  return members_->first_node.GetPointer();
}

zrSimpleGraphBranchHead* zrSimpleGraph::GetBranchList() const {
  return members_->first_branch.GetPointer();
}

void zrSimpleGraph::Add(zrSimpleGraphNodeHead* node) {
  node->IncreaseRefCount();
  if (members_->first_node.IsNull()) {
    members_->first_node = node;
  } else {
    members_->first_node->AddBefore(node);
  }
}

void zrSimpleGraph::Add(zrSimpleGraphBranchHead* branch) {
  branch->IncreaseRefCount();
  if (members_->first_branch.IsNull()) {
    members_->first_branch = branch;
  } else {
    members_->first_branch->AddBefore(branch);
  }
}

namespace {

void RefuseDuringWave(const zr::detail::GraphMembers& members) {
  if (members.walks > 0) throw BadParameters("zrSimpleGraph::Remove : the graph is in a Wave");
}

}  // namespace

void zrSimpleGraph::Remove(zrSimpleGraphBranchHead* b) {
  RefuseDuringWave(*members_);
  members_->Remove(b);
}

void zrSimpleGraph::Remove(zrSimpleGraphNodeHead* n) {
  RefuseDuringWave(*members_);
  members_->Remove(n);
}

void zrSimpleGraph::Wave(zrSimpleGraphNodeHead* start, AcceptFunction accept, void* data) {
  // The walk holds the graph's record to its end: an acceptance that lets go of the last
  // handle (this one included) cannot have the members deleted under the walk; they go
  // when the walk is over. Nothing below reaches this handle again.
  const zrAutoDelPointer<zr::detail::GraphMembers> members(members_);
  zrSimpleGraphNodeHead* const first = members->first_node.GetPointer();
  if (!first) return;
  ForEachNode(first, [](zrSimpleGraphNodeHead* n) {
    n->back_ = nullptr;
    const zrList2kHead* const head = n->GetBranchList();
    for (const zrList2kHead* link = head->GetNext(); link != head; link = link->GetNext()) {
      zrSimpleGraphBranchHead::OfLink(link)->back_ = nullptr;
    }
  });

  // While the walk is counted, Remove refuses: the queue holds plain node pointers and
  // the walk stands on a node and a branch. The count is given back however the walk
  // ends, before the record is let go.
  struct Walking {
    explicit Walking(zr::detail::GraphMembers* m) : members(m) { ++members->walks; }
    Walking(const Walking&) = delete;
    Walking& operator=(const Walking&) = delete;
    ~Walking() { --members->walks; }
    zr::detail::GraphMembers* members;
  } walking(members.GetPointer());

  zrListQueue<zrSimpleGraphNodeHead*> queue;
  queue.Put(start);
  while (!queue.IsEmpty()) {
    zrSimpleGraphNodeHead* const from = queue.Get();
    for (zrNodeBranchIter it(from); !it.IsEnd(); it.Next()) {
      zrSimpleGraphBranchHead* const b = it.Get();
      if (!b->IsOut(from)) continue;
      zrSimpleGraphNodeHead* const to = b->GetAnotherNode(from);
      if (accept(from, to, b, data)) {
        b->back_ = from;
        to->back_ = b;
        queue.Put(to);
      }
    }
  }
}

int zrSimpleGraph::PathLen(zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to,
                           zrSimpleGraphBranchHead* /*via*/, void* /*data*/) {
  if (to->level_ != 0 && to->level_ <= from->level_ + 1) return 0;
  to->level_ = from->level_ + 1;
  return 1;
}

namespace {

// The first node of the ring with the largest level.
zrSimpleGraphNodeHead* Farthest(zrSimpleGraphNodeHead* first) {
  zrSimpleGraphNodeHead* far = first;
  ForEachNode(first, [&far](zrSimpleGraphNodeHead* n) {
    if (n->GetLevel() > far->GetLevel()) far = n;
  });
  return far;
}

}  // namespace

int zrSimpleGraph::GetMaxPath(zrSimpleGraphNodeHead* start, zrList2kHead* out) {
  zrSimpleGraphNodeHead* const first = members_->first_node.GetPointer();
  if (!first) return 0;
  ForEachNode(first, [](zrSimpleGraphNodeHead* n) { n->level_ = 0; });
  start->level_ = 1;
  Wave(start, PathLen, nullptr);
  zrSimpleGraphNodeHead* n = Farthest(first);
  n->level_ = 0;

  // Back from the far end; each node goes right after out, so out reads from start.
  int count = 0;
  for (;;) {
    if (out) out->AddAfter(new zrSimpleList2k<zrSimpleGraphNodeHead*>(n));
    ++count;
    const zrSimpleGraphBranchHead* const b = n->back_;
    if (!b) break;
    n = b->back_;
  }
  return count;
}

int zrSimpleGraph::GetMaxPath(zrList2kHead* out) {
  zrSimpleGraphNodeHead* const first = members_->first_node.GetPointer();
  if (!first) return 0;
  ForEachNode(first, [](zrSimpleGraphNodeHead* n) { n->level_ = 0; });
  first->level_ = 1;
  Wave(first, PathLen, nullptr);
  return GetMaxPath(Farthest(first), out);
}
