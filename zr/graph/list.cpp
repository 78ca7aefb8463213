#include "zr/graph/list.h"

namespace {

// Lets a link that has just been taken out of a ring go: deleted through its zrUsingNew
// part when it allows it (the virtual deleting destructor frees the complete object),
// kept otherwise. The count is not changed.
void DropUnlinked(const zrUsingNew* link) {
  if (link->IsAllowDelete()) delete link;
}

}  // namespace

// ---------------------------------------------------------------------------------------

// Assigning a link to itself is no special case: it too leaves the link alone.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
zrList1kHead& zrList1kHead::operator=(const zrList1kHead& /*other*/) {
  next_ = this;
  return *this;
}

zrList1kHead::~zrList1kHead() {
  while (next_ != this) DropUnlinked(Remove());
}

zrList1kHead* zrList1kHead::Add(zrList1kHead* x) {
  x->next_ = next_;
  next_ = x;
  return x;
}

zrList1kHead* zrList1kHead::Remove() {
  zrList1kHead* const r = next_;
  next_ = r->next_;
  r->next_ = r;
  return r;
}

int zrList1kHead::Len() const {
  int n = 1;
  for (const zrList1kHead* p = next_; p != this; p = p->next_) ++n;
  return n;
}

// ---------------------------------------------------------------------------------------

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
zrList2Head& zrList2Head::operator=(const zrList2Head& /*other*/) {
  next_ = nullptr;
  prev_ = nullptr;
  return *this;
}

zrList2Head::~zrList2Head() {
  while (next_) DropUnlinked(next_->Remove());
  while (prev_) DropUnlinked(prev_->Remove());
}

zrList2Head* zrList2Head::Remove() {
  if (prev_) prev_->next_ = next_;
  if (next_) next_->prev_ = prev_;
  next_ = nullptr;
  prev_ = nullptr;
  return this;
}

zrList2Head* zrList2Head::AddAfter(zrList2Head* x) {
  x->Remove();
  x->next_ = next_;
  x->prev_ = this;
  if (next_) next_->prev_ = x;
  next_ = x;
  return x;
}

zrList2Head* zrList2Head::AddBefore(zrList2Head* x) {
  x->Remove();
  x->next_ = this;
  x->prev_ = prev_;
  if (prev_) prev_->next_ = x;
  prev_ = x;
  return x;
}

// ---------------------------------------------------------------------------------------

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
zrList2kHead& zrList2kHead::operator=(const zrList2kHead& /*other*/) {
  next_ = this;
  prev_ = this;
  return *this;
}

zrList2kHead::~zrList2kHead() {
  while (next_ != this) DropUnlinked(next_->Remove());
}

zrList2kHead* zrList2kHead::Remove() {
  prev_->next_ = next_;
  next_->prev_ = prev_;
  next_ = this;
  prev_ = this;
  return this;
}

zrList2kHead* zrList2kHead::AddAfter(zrList2kHead* x) {
  x->Remove();
  x->prev_ = this;
  x->next_ = next_;
  next_->prev_ = x;
  next_ = x;
  return x;
}

zrList2kHead* zrList2kHead::AddBefore(zrList2kHead* x) {
  x->Remove();
  x->next_ = this;
  x->prev_ = prev_;
  prev_->next_ = x;
  prev_ = x;
  return x;
}

int zrList2kHead::Len() const {
  int n = 1;
  for (const zrList2kHead* p = next_; p != this; p = p->next_) ++n;
  return n;
}

// ---------------------------------------------------------------------------------------

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
zrInternalList2k& zrInternalList2k::operator=(const zrInternalList2k& other) {
  zrList2kHead::operator=(other);
  payload_ = other.payload_;
  return *this;
}
