#include "zr/core/exceptions.h"

#include <cstdio>
#include <cstring>

char zrExceptionWithMessage::message[zrExceptionWithMessage::kMessageSize];

namespace zr::detail {
namespace {

constexpr int kSize = zrExceptionWithMessage::kMessageSize;

// Writes at most `room` characters of text at buffer + at, zero-fills up to the end of
// the buffer and seals the last byte. memmove, because the text may come from the buffer.
void CopyInto(int at, const char* text) {
  char* const buf = zrExceptionWithMessage::message;
  const int room = kSize - at;
  const std::size_t n = text ? strnlen(text, static_cast<std::size_t>(room)) : 0;
  if (n) std::memmove(buf + at, text, n);
  std::memset(buf + at + n, 0, static_cast<std::size_t>(room) - n);
  buf[kSize - 1] = 0;
}

}  // namespace
}  // namespace zr::detail

zrExceptionWithMessage::zrExceptionWithMessage() { message[0] = 0; }

zrExceptionWithMessage::zrExceptionWithMessage(const char* text) { Set(text); }

void zrExceptionWithMessage::Set(const char* text) { zr::detail::CopyInto(0, text); }

char* zrExceptionWithMessage::GetMessageText() const { return zrExceptionWithMessageGetMessage(); }

char* zrExceptionWithMessageGetMessage() {
  char* const buf = zrExceptionWithMessage::message;
  static constexpr char kNone[] = "There is not message.";
  if (buf[0] == 0) std::memcpy(buf, kNone, sizeof kNone);
  return buf;
}

BadParameters::BadParameters() { Set("Invalid parameters."); }

BadParameters::BadParameters(const char* text) : zrExceptionWithMessage(KeepMessage{}) {
  static constexpr char kPrefix[] = "Invalid parameters : ";
  constexpr int kPrefixLen = sizeof kPrefix - 1;
  // The text goes in first, so that a text taken from the buffer itself survives.
  zr::detail::CopyInto(kPrefixLen, text);
  std::memcpy(message, kPrefix, kPrefixLen);
}

zrErrNoMemory::zrErrNoMemory(std::uint64_t size)
    : zrExceptionWithMessage(KeepMessage{}), size_(size) {
  // The format is the library's fixed text, incomplete conversion included, so the
  // compiler's format check has to look away.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
#endif
  static constexpr char kFormat[] = "be not sufficient %l byte";
  std::snprintf(message, kMessageSize, kFormat, static_cast<unsigned long long>(size));
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
  message[kMessageSize - 1] = 0;
}

zrError::zrError(int code, const char* text) : zrExceptionWithMessage(text), code_(code) {}

zrError::zrError(const char* text) : zrExceptionWithMessage(text) {}
