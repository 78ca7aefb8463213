/// \file
/// Root classes of the library's heap objects.
///
/// zrUsingNew is the root of every heap-managed class: it allocates its objects through
/// zrMalloc/zrFree (so `new` on any library object throws zrErrNoMemory on exhaustion)
/// and gives each class a type identity. zrRefCount adds an intrusive holder count, and
/// zrAutoDelPointer<T> holds one counted object, deleting it when the last holder lets go.
/// None of the counts is atomic.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zr/core/export.h"

/// Declares the type identity of a class derived from zrUsingNew: a private static
/// function Type, whose address is the class's identity and whose result is its name,
/// and the public overrides of GetType and GetTypeString. Pair it with
/// ZR_DEFINE_TYPE_IDENTITY in the class's source file. The definitions must stay out of
/// line: the address of an inline function may differ between the library and a program
/// that uses it.
/// Write it first in a class body: it ends private, the access a class body starts with,
/// so that it leaves access as it found it; a struct writes `public:` after it.
#define ZR_TYPE_IDENTITY                      \
 public:                                      \
  std::uint64_t GetType() const override;     \
  const char* GetTypeString() const override; \
                                              \
 private:                                     \
  static const char* Type();

/// Defines what ZR_TYPE_IDENTITY declares. `prefix` is empty for a class and
/// `template <class T>` (or the instantiation's `template <>`) for a class template.
#define ZR_DEFINE_TYPE_IDENTITY_WITH(prefix, Class, name)                              \
  prefix const char* Class::Type() { return name; }                                    \
  prefix std::uint64_t Class::GetType() const {                                        \
    return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&Class::Type)); \
  }                                                                                    \
  prefix const char* Class::GetTypeString() const { return Type(); }
#define ZR_DEFINE_TYPE_IDENTITY(Class) ZR_DEFINE_TYPE_IDENTITY_WITH(, Class, #Class)

/// The root of the library's heap classes: allocation through zrMalloc and zrFree, a type
/// identity (GetType, GetTypeString) and the holder-count interface, which does nothing
/// here (an uncounted object has no holders and may always be deleted). It holds no data
/// and shares nothing; zrRefCount adds the count. See using_new.h.
/// See the example docs/examples.md#guide_graph: a queue is a zrUsingNew object through
/// its list link.
class ZR_API zrUsingNew {
 public:
  zrUsingNew() = default;
  /// There is nothing to copy: the copy of an object starts with its own identity only.
  /// (Defaulted, not empty-bodied: a user-provided one would make GCC ask every copy
  /// constructor below a virtual zrUsingNew to name it.)
  zrUsingNew(const zrUsingNew&) = default;
  zrUsingNew& operator=(const zrUsingNew&) { return *this; }

  /// The virtual operations, in the order every derived class keeps.
  virtual ~zrUsingNew();
  /// The class's identity: the address of its private static Type. Unique per class, never
  /// dereferenced.
  virtual std::uint64_t GetType() const;
  /// The address of the complete object, whatever base it is asked through (with a
  /// virtual base the zrUsingNew part need not start the object).
  virtual void* GetThis() const;
  /// The class name; "zrUsingNew" here.
  virtual const char* GetTypeString() const;
  /// An uncounted object has no holders: the three counters do nothing and give 0, and it
  /// may always be deleted.
  virtual int IncreaseRefCount() const;
  virtual int DecreaseRefCount() const;
  virtual int GetRefCount() const;
  virtual int IsAllowDelete() const;

  /// Lets one holder go: calls obj's DecreaseRefCount, then IsAllowDelete; when that is
  /// non-zero the object is deleted and that value returned, otherwise 0 and the object
  /// lives on. A null obj gives 0. An uncounted object is always deleted.
  static int Delete(const zrUsingNew* obj);

  /// Class-level allocation through the library allocator.
  static void* operator new(std::size_t size);
  static void* operator new[](std::size_t size);
  static void operator delete(void* p) noexcept;
  static void operator delete[](void* p) noexcept;
  /// Placement forms, which the allocation functions above would otherwise hide.
  static void* operator new(std::size_t, void* where) noexcept { return where; }
  static void operator delete(void*, void*) noexcept {}

 private:
  static const char* Type();
};

/// An object with holders. The count is mutable: holding a const object counts too.
/// zrUsingNew is a virtual base, so that a class which is both counted and a list link
/// (a graph node) has one zrUsingNew part and one count.
///
/// zrRefCount overrides the four count operations only. It has no identity of its own:
/// GetType and GetTypeString are zrUsingNew's ("zrUsingNew") until a derived class declares
/// one. So a class may combine it with several list links, which have none either, without
/// declaring an identity (two bases that both override GetType would leave the class
/// without a unique final overrider).
///
/// Holders count themselves with IncreaseRefCount and let go with zrUsingNew::Delete (or
/// through zrAutoDelPointer); the object is deleted when the last one lets go. The graph's
/// nodes and branches are counted objects: see the example docs/examples.md#guide_graph
/// for the graph subsystem.
class ZR_API zrRefCount : public virtual zrUsingNew {
 public:
  zrRefCount() = default;
  /// A copy is a new object with no holders yet (count 0)...
  zrRefCount(const zrRefCount& other) : zrUsingNew(other) {}
  /// ...while assignment takes over the source's count. The asymmetry is deliberate.
  zrRefCount& operator=(const zrRefCount& other) {
    ref_count_ = other.ref_count_;
    return *this;
  }

  /// Add or remove a holder and return the new count.
  int IncreaseRefCount() const override;
  int DecreaseRefCount() const override;
  int GetRefCount() const override;
  /// 1 when no holder is left (count below 1), else 0.
  int IsAllowDelete() const override;

 private:
  mutable std::int32_t ref_count_ = 0;  // number of holders
};

/// An owning pointer to a counted object (a class derived from zrRefCount). Holding
/// raises the object's count; letting go lowers it and deletes the object below 1.
///
/// Taking a new pointer releases the old object before counting the new one. Setting
/// the pointer that a sole holder already holds therefore deletes the object first;
/// callers never do that.
///
/// Copies of the pointer are further holders of the same object; the object is never
/// copied. The graph holds its members this way: see the example
/// docs/examples.md#guide_graph for the graph subsystem.
template <class T>
class zrAutoDelPointer {
 public:
  zrAutoDelPointer() = default;
  zrAutoDelPointer(T* p) : p_(p) {  // NOLINT(google-explicit-constructor): pointer-like
    if (p_) p_->IncreaseRefCount();
  }
  zrAutoDelPointer(const zrAutoDelPointer& other) : zrAutoDelPointer(other.p_) {}
  ~zrAutoDelPointer() { zrUsingNew::Delete(p_); }

  void SetPointer(T* p) {
    if (p_ && p_->DecreaseRefCount() < 1) delete p_;
    p_ = p;
    if (p_) p_->IncreaseRefCount();
  }
  /// SetPointer with the other's pointer. Assigning a holder to itself changes nothing:
  /// through SetPointer it would delete a solely held object and then count freed memory.
  zrAutoDelPointer& operator=(const zrAutoDelPointer& other) {
    if (this != &other) SetPointer(other.p_);
    return *this;
  }
  T* operator=(T* p) {
    SetPointer(p);
    return p_;
  }

  bool IsNull() const { return p_ == nullptr; }
  /// No null checks in the accessors.
  T* GetPointer() const { return p_; }
  T* operator->() const { return p_; }
  T& operator*() const { return *p_; }

 private:
  T* p_ = nullptr;
};
