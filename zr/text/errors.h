/// \file
/// The exceptions that carry strings.
///
/// zrTarnError and zrErr_NoImplemented belong to the family of zr/core/exceptions.h: they
/// derive directly from zrExceptionWithMessage and put their text into its one process-wide
/// buffer, cut at the first zero byte and at 511 characters as Set cuts a text. Writing the
/// buffer never allocates; only the zrString members do (so their construction may throw
/// zrErrNoMemory). The library never throws these itself: they are offered to its users,
/// as zrError is, whose overloads taking a zrString are defined with them.
///
/// Copies of either class share the stored string (its block is counted, or its viewed
/// characters viewed again): copying an exception never allocates.
#pragma once

#include "zr/core/core.h"
#include "zr/text/string.h"

/// An error with two codes and a text of the user's. The message goes to the buffer; the
/// text is kept in a private copy, which owns its characters whatever the argument did.
/// Copies share the stored string. See the example docs/examples.md#guide_core: it is
/// caught as the root, zrExceptionWithMessage, like every error.
class ZR_API zrTarnError : public zrExceptionWithMessage {
 public:
  /// First code -1, second code `code`.
  zrTarnError(int code, zrString text, zrString message);
  zrTarnError(int first, int second, zrString text, zrString message);
  zrTarnError(const zrTarnError& other);
  zrTarnError& operator=(const zrTarnError& other);
  ~zrTarnError();

  int GetFirstCode() const { return first_; }
  int GetSecondCode() const { return second_; }
  const zrString& GetText() const { return text_; }

 private:
  int first_ = -1;
  int second_ = -1;
  zrString text_;  // private when constructed; shared by copies
};

/// A function that is not implemented. The buffer receives "Function " + name + " don't
/// implemented" (the wording is the library's own), cut as one text; the name is kept as
/// it was passed (a view of outside characters stays one).
/// Copies share the stored name. See the example docs/examples.md#guide_core: it is
/// caught as the root, zrExceptionWithMessage, like every error.
class ZR_API zrErr_NoImplemented : public zrExceptionWithMessage {
 public:
  explicit zrErr_NoImplemented(zrString name);
  zrErr_NoImplemented(const zrErr_NoImplemented& other);
  zrErr_NoImplemented& operator=(const zrErr_NoImplemented& other);
  ~zrErr_NoImplemented();

  const zrString& GetName() const { return name_; }

 private:
  zrString name_;  // shared by copies
};
