/// \file
/// Intrusive list links, value nodes and a FIFO queue.
///
/// An object goes into a list by having a link class as a base: the list head and every
/// element are links of the same class, and an object is in a list when its link pointers
/// point at other objects. Links never allocate.
///
///   zrList1kHead      next              singly linked ring; alone: next = itself
///   zrList2Head       next, prev        doubly linked line, null at both ends; alone: both null
///   zrList2kHead      next, prev        doubly linked ring; alone: both = itself
///   zrInternalList2k  zrList2kHead plus a payload pointer
///
/// In the "k" rings the head is one of the members; in the zrList2Head line the head is
/// simply one element with neighbours on either side.
///
/// Every link class has zrUsingNew as a virtual base. A class may derive from several of
/// them (and from zrRefCount) and still has one zrUsingNew part: one count, one heap
/// identity. The four link classes, like zrRefCount, have no identity of their own, so
/// such a class compiles as it stands: `struct Item : zrList1kHead, zrList2kHead,
/// zrRefCount {};` reports zrUsingNew's identity ("zrUsingNew") unless it declares one
/// (ZR_TYPE_IDENTITY). The value nodes and the queue below are complete classes and have
/// theirs.
///
/// Ownership: a link that is destroyed while others are linked to it takes them out one
/// by one and deletes each whose IsAllowDelete says yes (an uncounted object always, a
/// counted one only when it has no holders; the count is not touched). An element that must
/// survive is removed first or held. Elements still linked when their head dies must
/// therefore be heap objects made with `new`, or refuse deletion.
///
/// Copying and assignment never link or unlink anything: a copy starts alone, and
/// operator= makes the target alone without telling its former neighbours, so a linked
/// link is Removed before it is assigned. Likewise the link operations trust their
/// arguments: inserting a link that is still in another ring (zrList1kHead::Add) corrupts
/// that ring. None of this is checked.
#pragma once

#include <cstdint>
#include <utility>

#include "zr/core/core.h"

// ---------------------------------------------------------------------------------------
// Singly linked ring.

/// A link of a singly linked ring: an object goes into a ring by having this class as a
/// base; the head is one of the members, and a link alone points at itself. Links never
/// allocate, and a link destroyed while linked takes its neighbours out and deletes the
/// ones that allow it (see list.h).
/// Copies start alone; nothing is shared. See the example docs/examples.md#guide_graph,
/// a queue built on the ring link.
class ZR_API zrList1kHead : public virtual zrUsingNew {
 public:
  /// Alone.
  zrList1kHead() : next_(this) {}
  /// Alone as well: the copy is not in the source's ring.
  zrList1kHead(const zrList1kHead& other) : zrUsingNew(other), next_(this) {}
  /// Makes this link alone without unlinking it from the ring it was in.
  zrList1kHead& operator=(const zrList1kHead& other);
  /// Takes out and deletes (when they allow it) the links that follow this one.
  ~zrList1kHead() override;

  /// Two links are equal when they have the same successor.
  int operator==(const zrList1kHead& other) const { return next_ == other.next_ ? 1 : 0; }
  int operator!=(const zrList1kHead& other) const { return next_ != other.next_ ? 1 : 0; }

  /// Inserts x right after this link and returns it. x must be alone.
  zrList1kHead* Add(zrList1kHead* x);
  /// Takes out the link after this one and returns it, alone. On an alone link it returns
  /// the link itself, unchanged.
  zrList1kHead* Remove();
  /// The number of links in the ring, this one included (1 when alone). Walks the ring.
  int Len() const;

  zrList1kHead* GetNext() const { return next_; }
  bool IsAlone() const { return next_ == this; }

 private:
  zrList1kHead* next_;
};

// ---------------------------------------------------------------------------------------
// Doubly linked line.

/// A link of a doubly linked line, null at both ends: an object goes into a line by
/// having this class as a base. Links never allocate, and a link destroyed while linked
/// takes its neighbours out and deletes the ones that allow it (see list.h).
/// Copies start alone; nothing is shared. See the example docs/examples.md#guide_graph,
/// a queue built on the ring link.
class ZR_API zrList2Head : public virtual zrUsingNew {
 public:
  /// Alone: both links null.
  zrList2Head() = default;
  zrList2Head(const zrList2Head& other) : zrUsingNew(other) {}
  /// Sets both links to null without unlinking.
  zrList2Head& operator=(const zrList2Head& other);
  /// Takes out and deletes (when they allow it) every link after this one, then every
  /// link before it: the whole line goes with the link.
  ~zrList2Head() override;

  /// Equal when both neighbours are the same.
  int operator==(const zrList2Head& other) const {
    return next_ == other.next_ && prev_ == other.prev_ ? 1 : 0;
  }
  int operator!=(const zrList2Head& other) const { return *this == other ? 0 : 1; }

  /// Joins the two neighbours (where they exist) and leaves this link alone; returns this.
  zrList2Head* Remove();
  /// Takes x out of wherever it is and puts it right after (before) this link; returns x.
  zrList2Head* AddAfter(zrList2Head* x);
  zrList2Head* AddBefore(zrList2Head* x);

  zrList2Head* GetNext() const { return next_; }
  zrList2Head* GetPrev() const { return prev_; }
  bool IsAlone() const { return next_ == nullptr && prev_ == nullptr; }

 private:
  zrList2Head* next_ = nullptr;
  zrList2Head* prev_ = nullptr;
};

// ---------------------------------------------------------------------------------------
// Doubly linked ring.

/// A link of a doubly linked ring: an object goes into a ring by having this class as a
/// base; the head is one of the members, and a link alone points at itself both ways.
/// Links never allocate, and a link destroyed while linked takes its neighbours out and
/// deletes the ones that allow it (see list.h).
/// Copies start alone; nothing is shared. See the example docs/examples.md#guide_graph,
/// a queue built on the ring link.
class ZR_API zrList2kHead : public virtual zrUsingNew {
 public:
  /// Alone: both links to itself.
  zrList2kHead() : next_(this), prev_(this) {}
  zrList2kHead(const zrList2kHead& other) : zrUsingNew(other), next_(this), prev_(this) {}
  /// Both links to itself, without unlinking.
  zrList2kHead& operator=(const zrList2kHead& other);
  /// Takes out and deletes (when they allow it) the other links of the ring.
  ~zrList2kHead() override;

  /// Joins the neighbours and leaves this link alone; returns this.
  zrList2kHead* Remove();
  /// Takes x out of its ring and puts it right after (before) this link; returns x.
  zrList2kHead* AddAfter(zrList2kHead* x);
  zrList2kHead* AddBefore(zrList2kHead* x);
  /// The number of links in the ring, this one included (1 when alone). Walks the ring.
  int Len() const;

  zrList2kHead* GetNext() const { return next_; }
  zrList2kHead* GetPrev() const { return prev_; }
  bool IsAlone() const { return next_ == this; }

 private:
  zrList2kHead* next_;
  zrList2kHead* prev_;
};

/// A ring link that carries an untyped pointer, for an object that needs more than one
/// link of the same kind (a graph branch has one in each end's branch list; the payload
/// leads back to the branch).
/// See the example docs/examples.md#guide_graph for the list classes.
class ZR_API zrInternalList2k : public zrList2kHead {
 public:
  zrInternalList2k() = default;
  explicit zrInternalList2k(void* payload) : payload_(payload) {}
  /// Alone, with the source's payload.
  zrInternalList2k(const zrInternalList2k& other)
      : zrUsingNew(other), zrList2kHead(other), payload_(other.payload_) {}
  /// Alone (without unlinking), with the source's payload.
  zrInternalList2k& operator=(const zrInternalList2k& other);

  void* GetPayload() const { return payload_; }
  void SetPayload(void* payload) { payload_ = payload; }

 private:
  void* payload_ = nullptr;
};

// ---------------------------------------------------------------------------------------
// Value nodes and the queue. These are defined here, so a program may use them with a
// value type of its own; the library instantiates them for zrSimpleGraphNodeHead*
// (zr/graph/simple_graph.h). Copies follow their link: alone, with the value copied.

namespace zr::detail {

// The value a list node carries, value-initialised by default.
template <class T>
class NodeValue {
 public:
  NodeValue() : value_() {}
  explicit NodeValue(const T& value) : value_(value) {}

  T& GetValue() { return value_; }
  const T& GetValue() const { return value_; }
  void SetValue(const T& value) { value_ = value; }

 private:
  T value_;
};

}  // namespace zr::detail

/// A heap node carrying a value into a singly linked ring.
/// Its copies start alone, with the value copied. See the example
/// docs/examples.md#guide_graph: zrListQueue is a ring of these nodes.
template <class T>
class ZR_API zrSimpleList1k : public zrList1kHead, public zr::detail::NodeValue<T> {
  ZR_TYPE_IDENTITY
 public:
  zrSimpleList1k() = default;
  explicit zrSimpleList1k(const T& value) : zr::detail::NodeValue<T>(value) {}
};

/// A heap node carrying a value into a doubly linked ring.
/// Its copies start alone, with the value copied. See the example
/// docs/examples.md#guide_graph for the list classes.
template <class T>
class ZR_API zrSimpleList2k : public zrList2kHead, public zr::detail::NodeValue<T> {
  ZR_TYPE_IDENTITY
 public:
  zrSimpleList2k() = default;
  explicit zrSimpleList2k(const T& value) : zr::detail::NodeValue<T>(value) {}
};

/// A first-in first-out queue of values. The queue is the head of a singly linked ring of
/// zrSimpleList1k<T> nodes, oldest first after the head; it keeps the last node (itself
/// when empty) and the number of values. Each Put allocates one node through the library
/// allocator (zrErrNoMemory on exhaustion, the queue unchanged); Get frees it. The nodes
/// left at destruction are freed by the ring's destructor.
///
/// A queue owns its nodes, so it is neither copied nor assigned.
///
/// See the example docs/examples.md#guide_graph.
template <class T>
class ZR_API zrListQueue : public zrList1kHead {
  ZR_TYPE_IDENTITY
 public:
  zrListQueue() : tail_(this) {}
  zrListQueue(const zrListQueue&) = delete;
  zrListQueue& operator=(const zrListQueue&) = delete;

  /// Enqueues a copy of value after the last one.
  void Put(const T& value) {
    tail_ = tail_->Add(new zrSimpleList1k<T>(value));
    ++count_;
  }
  /// Dequeues the oldest value. An empty queue throws
  /// BadParameters("zrListQueue<T>::Get : Que is empty").
  T Get();

  int GetCount() const { return count_; }
  bool IsEmpty() const { return count_ == 0; }

 private:
  zrList1kHead* tail_;      // the last node; the queue itself when empty
  std::int32_t count_ = 0;  // number of values
};

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrSimpleList1k<T>, "zrSimpleList1k")
ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrSimpleList2k<T>, "zrSimpleList2k")
ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrListQueue<T>, "zrListQueue")

template <class T>
T zrListQueue<T>::Get() {
  if (count_ == 0) throw BadParameters("zrListQueue<T>::Get : Que is empty");
  auto* node = static_cast<zrSimpleList1k<T>*>(Remove());
  --count_;
  if (node == tail_) tail_ = this;
  // The node goes even when moving its value out throws.
  struct Release {
    zrSimpleList1k<T>* node;
    ~Release() { delete node; }
  } release{node};
  return std::move(node->GetValue());
}
