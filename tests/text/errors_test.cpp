// The exceptions that carry strings: their texts in the shared buffer, their codes, and
// who owns the stored string.
#include <gtest/gtest.h>

#include <string>

#include "zr/zr.h"

TEST(TextErrors, TextsAreCutAtAZeroByteAndAtTheBuffersEnd) {
  const std::string q(600, 'q'), n(495, 'n');
  const char chars[] = {'x', 'y', 'z'};  // not zero-terminated
  const struct {
    zrString text;
    std::string error, no_implemented;
  } cases[] = {
      {zrString("abc"), "abc", "Function abc don't implemented"},
      {zrString(chars, 2), "xy", "Function xy don't implemented"},
      {zrString("a\0b", 3), "a", "Function a"},  // nothing after the zero, not even the tail
      {zrString(q.data(), 600), std::string(511, 'q'), "Function " + std::string(502, 'q')},
      {zrString(n.data(), 495), n, ("Function " + n + " don't implemented").substr(0, 511)}};
  // The whole buffer: the text, then zeros.
  const auto buffer = [](const std::string& text) {
    return std::string(zrExceptionWithMessage::message, zrExceptionWithMessage::kMessageSize) ==
           text + std::string(zrExceptionWithMessage::kMessageSize - text.size(), '\0');
  };
  for (const auto& c : cases) {
    EXPECT_EQ(zrError(5, c.text).GetCode(), 5);
    EXPECT_TRUE(buffer(c.error)) << c.error;
    EXPECT_TRUE(zrErr_NoImplemented(c.text).GetName() == c.text && buffer(c.no_implemented))
        << c.no_implemented;
  }
  EXPECT_EQ(zrError(zrString("t")).GetCode(), -1);
  // A name read from the buffer itself.
  const BadParameters first("x");
  const zrErr_NoImplemented from_buffer(zrString(first.GetMessageText()));
  EXPECT_STREQ(from_buffer.GetMessageText(), "Function Invalid parameters : x don't implemented");
}

TEST(TextErrors, TarnErrorKeepsAPrivateTextAndCopiesShareTheirs) {
  char text[] = "owned by the caller";
  const zrTarnError e(7, zrString(text), zrString("the message"));
  EXPECT_TRUE(e.GetFirstCode() == -1 && e.GetSecondCode() == 7);
  EXPECT_STREQ(e.GetMessageText(), "the message");
  text[0] = 'O';
  EXPECT_TRUE(e.GetText() == "owned by the caller" && e.GetText().GetPointer() != text);

  const zrTarnError both(1, 2, zrString("t"), zrString("m"));
  zrTarnError copy(e);
  EXPECT_TRUE(copy.GetText().GetPointer() == e.GetText().GetPointer() && copy.GetSecondCode() == 7);
  EXPECT_EQ(e.GetText().GetNumOfRef(), 1);
  copy = both;
  EXPECT_TRUE(copy.GetText().GetMem() == both.GetText().GetMem() && copy.GetFirstCode() == 1);
  EXPECT_TRUE(copy.GetSecondCode() == 2 && e.GetText().GetNumOfRef() == 0);

  // The names of zrErr_NoImplemented are shared the same way.
  const zrErr_NoImplemented solve(zrString("Solve") + zrString());
  zrErr_NoImplemented other(zrString("x"));
  other = solve;
  EXPECT_EQ(other.GetName().GetMem(), solve.GetName().GetMem());
  EXPECT_EQ(zrErr_NoImplemented(other).GetName().GetMem(), solve.GetName().GetMem());
  EXPECT_EQ(solve.GetName().GetNumOfRef(), 1);
}
