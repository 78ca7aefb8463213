#include "zr/core/using_new.h"

#include "zr/core/memory.h"

zrUsingNew::~zrUsingNew() = default;

const char* zrUsingNew::Type() { return "zrUsingNew"; }

std::uint64_t zrUsingNew::GetType() const {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&zrUsingNew::Type));
}

void* zrUsingNew::GetThis() const { return const_cast<void*>(dynamic_cast<const void*>(this)); }

const char* zrUsingNew::GetTypeString() const { return Type(); }

int zrUsingNew::IncreaseRefCount() const { return 0; }
int zrUsingNew::DecreaseRefCount() const { return 0; }
int zrUsingNew::GetRefCount() const { return 0; }
int zrUsingNew::IsAllowDelete() const { return 1; }

int zrUsingNew::Delete(const zrUsingNew* obj) {
  if (!obj) return 0;
  obj->DecreaseRefCount();
  const int allow = obj->IsAllowDelete();
  if (allow) delete obj;
  return allow;
}

void* zrUsingNew::operator new(std::size_t size) { return zrMalloc(size); }
void* zrUsingNew::operator new[](std::size_t size) { return zrMalloc(size); }
void zrUsingNew::operator delete(void* p) noexcept { zrFree(p); }
void zrUsingNew::operator delete[](void* p) noexcept { zrFree(p); }

int zrRefCount::IncreaseRefCount() const { return ++ref_count_; }
int zrRefCount::DecreaseRefCount() const { return --ref_count_; }
int zrRefCount::GetRefCount() const { return ref_count_; }
int zrRefCount::IsAllowDelete() const { return ref_count_ < 1 ? 1 : 0; }
