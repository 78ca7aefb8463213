#include "zr/text/errors.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace zr::detail {
namespace {

// Writes head + the n characters at text + tail into the message buffer as Set writes a
// single text: cut at its first zero byte and at 511 characters, the rest zero-filled.
// Nothing is allocated. text may lie in the buffer itself, so it is moved into place
// before head is written over its old place; head and tail are literals.
template <std::size_t H, std::size_t T>
void Compose(const char (&head)[H], const char* text, int n, const char (&tail)[T]) {
  char* const buf = zrExceptionWithMessage::message;
  constexpr std::size_t kLast = zrExceptionWithMessage::kMessageSize - 1;  // kept zero
  static_assert(H - 1 <= kLast, "the head fits the buffer");
  std::size_t at = H - 1;
  std::size_t len = text && n > 0 ? std::min(static_cast<std::size_t>(n), kLast - at) : 0;
  const void* const zero = len ? std::memchr(text, 0, len) : nullptr;
  if (zero) len = static_cast<std::size_t>(static_cast<const char*>(zero) - text);
  if (len) std::memmove(buf + at, text, len);
  std::memcpy(buf, head, H - 1);
  at += len;
  if (!zero) {
    const std::size_t t = std::min(T - 1, kLast - at);
    std::memcpy(buf + at, tail, t);
    at += t;
  }
  std::memset(buf + at, 0, zrExceptionWithMessage::kMessageSize - at);
}

void SetText(const zrString& text) { Compose("", text.GetPointer(), text.Len(), ""); }

// Makes `to` share from's characters: counted when from holds a block, viewed otherwise.
void Share(zrString& to, const zrString& from) {
  if (&to != &from) to.SetDirectly(from.GetPointer(), from.Len(), from);
}

}  // namespace
}  // namespace zr::detail

// The strings are taken by value, as the interface has always had them.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
zrError::zrError(int code, zrString text) : zrExceptionWithMessage(KeepMessage{}), code_(code) {
  zr::detail::SetText(text);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
zrError::zrError(zrString text) : zrExceptionWithMessage(KeepMessage{}) {
  zr::detail::SetText(text);
}

zrTarnError::zrTarnError(int code, zrString text, zrString message)
    : zrTarnError(-1, code, std::move(text), std::move(message)) {}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
zrTarnError::zrTarnError(int first, int second, zrString text, zrString message)
    : zrExceptionWithMessage(KeepMessage{}), first_(first), second_(second) {
  zr::detail::SetText(message);
  text_.Move(text);
  text_.Copy();  // a view of outside characters becomes a block of its own
}

zrTarnError::zrTarnError(const zrTarnError& other)
    : zrExceptionWithMessage(other), first_(other.first_), second_(other.second_) {
  zr::detail::Share(text_, other.text_);
}

zrTarnError& zrTarnError::operator=(const zrTarnError& other) {
  zrExceptionWithMessage::operator=(other);
  first_ = other.first_;
  second_ = other.second_;
  zr::detail::Share(text_, other.text_);
  return *this;
}

zrTarnError::~zrTarnError() = default;

zrErr_NoImplemented::zrErr_NoImplemented(zrString name) : zrExceptionWithMessage(KeepMessage{}) {
  zr::detail::Compose("Function ", name.GetPointer(), name.Len(), " don't implemented");
  name_.Move(name);
}

zrErr_NoImplemented::zrErr_NoImplemented(const zrErr_NoImplemented& other)
    : zrExceptionWithMessage(other) {
  zr::detail::Share(name_, other.name_);
}

zrErr_NoImplemented& zrErr_NoImplemented::operator=(const zrErr_NoImplemented& other) {
  zrExceptionWithMessage::operator=(other);
  zr::detail::Share(name_, other.name_);
  return *this;
}

zrErr_NoImplemented::~zrErr_NoImplemented() = default;
