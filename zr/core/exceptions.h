/// \file
/// The exception family.
///
/// Every failure of the library is an exception thrown by value. All classes derive
/// directly from zrExceptionWithMessage, whose text does not live in the object but in
/// one process-wide buffer of 512 bytes: each constructor that takes a text overwrites
/// it, so a handler reads the text of the most recently constructed exception, whichever
/// object it asks. Constructing an exception never allocates and never throws.
///
/// The library itself throws only BadParameters (every invalid argument, index, range,
/// size or state; the text is prefixed with "Invalid parameters : ") and zrErrNoMemory
/// (from zrMalloc and zrRealloc). zrError is offered for users to throw; the classes that
/// carry strings (zrTarnError, zrErr_NoImplemented) come with the string class.
///
/// The hierarchy has exactly one virtual operation, GetMessageText, and no virtual
/// destructor: the objects are thrown and caught by value and never deleted through a
/// base pointer. Catching by reference to the root is fine, since the runtime destroys
/// the thrown object as the type it was thrown as.
#pragma once

#include <cstdint>

#include "zr/core/export.h"

/// The string class is the text subsystem's; zrError only names it here.
class zrString;

/// The root of every exception of the library: a handler reads the text of the failure
/// with GetMessageText(). The text lives in one process-wide buffer, not in the object, so
/// copies are free and the text read is that of the most recently constructed exception
/// (see exceptions.h). The library throws its subclasses BadParameters and zrErrNoMemory.
/// See the example docs/examples.md#guide_core.
class ZR_API zrExceptionWithMessage {
 public:
  /// The message buffer shared by every exception of the process. Its last byte
  /// (index 511) is always zero, so a text of 512 characters or more reads as its first 511.
  static char message[512];
  static constexpr int kMessageSize = 512;

  /// Empties the buffer.
  zrExceptionWithMessage();
  /// Same as Set(text).
  explicit zrExceptionWithMessage(const char* text);
  /// Copying an exception copies no text and leaves the buffer alone.
  zrExceptionWithMessage(const zrExceptionWithMessage&) {}
  zrExceptionWithMessage& operator=(const zrExceptionWithMessage&) { return *this; }

  /// Copies at most 512 characters of text into the buffer, zero-fills the rest and
  /// forces the byte at index 511 to zero. A null text empties the buffer. The text may
  /// point into the buffer itself.
  static void Set(const char* text);

  /// The buffer, as zrExceptionWithMessageGetMessage returns it.
  virtual char* GetMessageText() const;

 protected:
  // For derived constructors that write the buffer themselves: touches nothing, so a
  // text that was read from the buffer is still there when they copy it.
  /// The tag of the constructor for derived classes that fill the buffer themselves.
  struct KeepMessage {};
  explicit zrExceptionWithMessage(KeepMessage) {}
};

/// Returns the message buffer; when it is empty, "There is not message." is written into
/// it first (and stays there).
ZR_API char* zrExceptionWithMessageGetMessage();

/// Every invalid argument or state. The text read by a handler is "Invalid parameters : "
/// followed by the given text, cut so that the whole fits the buffer with its final zero
/// (at most 490 characters of the text survive).
///
/// See the example examples/zr_interp.cpp, which reports the spline's refusals, and
/// docs/examples.md#guide_core.
class ZR_API BadParameters : public zrExceptionWithMessage {
 public:
  /// Message "Invalid parameters.".
  BadParameters();
  explicit BadParameters(const char* text);
};

/// Thrown when the C library cannot give the memory asked for. The buffer is formatted by
/// sprintf with the library's fixed format "be not sufficient %l byte" and the size as
/// its argument; what the formatter makes of the incomplete "%l" conversion is the C
/// library's own (glibc prints "be not sufficient % byte"). GetSize() keeps the exact
/// figure.
///
/// See the example docs/examples.md#guide_core: it is caught as the root,
/// zrExceptionWithMessage, like every error of the library.
class ZR_API zrErrNoMemory : public zrExceptionWithMessage {
 public:
  /// Size 0; the buffer is emptied, as by the root's default constructor.
  zrErrNoMemory() = default;
  explicit zrErrNoMemory(std::uint64_t size);

  std::uint64_t GetSize() const { return size_; }

 private:
  std::uint64_t size_ = 0;  // the request that failed, in bytes
};

/// A user's error with a code. The text goes to the buffer as Set writes it; a copy
/// carries the code only.
///
/// See the example docs/examples.md#guide_core: it is caught as the root,
/// zrExceptionWithMessage, like every error of the library.
class ZR_API zrError : public zrExceptionWithMessage {
 public:
  zrError(int code, const char* text);
  /// Code -1.
  explicit zrError(const char* text);
  /// The same with the characters of a string, cut at a zero byte as Set cuts a text
  /// (defined with the string class, zr/text/errors.cpp).
  zrError(int code, zrString text);
  explicit zrError(zrString text);

  int GetCode() const { return code_; }

 private:
  int code_ = -1;  // -1 when none was given
};
