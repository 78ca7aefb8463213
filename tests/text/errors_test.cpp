// The exceptions that carry strings: their texts in the shared buffer, their codes, and
// who owns the stored string.
#include <gtest/gtest.h>

#include <string>

#include "zr/zr.h"

TEST(TextErrors, TextsAreCutAtAZeroByteAndAtTheBuffersEndAndCopiesShareTheirs) {
  const std::string q(600, 'q'), n(495, 'n');
  const char chars[] = {'x', 'y', 'z'};  // not zero-terminated
  const struct {
    zrString text;
    std::string error, no_implemented;
  } cases[] = {
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
    EXPECT_TRUE(zrError(5, c.text).GetCode() == 5 && buffer(c.error)) << c.error;
    EXPECT_TRUE(zrErr_NoImplemented(c.text).GetName() == c.text && buffer(c.no_implemented))
        << c.no_implemented;
  }
  EXPECT_EQ(zrError(zrString("t")).GetCode(), -1);
  // A name read from the buffer itself.
  const zrErr_NoImplemented from_buffer(zrString(BadParameters("x").GetMessageText()));
  EXPECT_STREQ(from_buffer.GetMessageText(), "Function Invalid parameters : x don't implemented");

  // zrTarnError keeps a private text. Copies share the stored string; a count gone wrong
  // shows as a leak or a double free.
  char text[] = "owned by the caller";
  const zrTarnError e(7, zrString(text), zrString("the message"));
  EXPECT_TRUE(e.GetFirstCode() == -1 && e.GetSecondCode() == 7);
  EXPECT_STREQ(e.GetMessageText(), "the message");
  text[0] = 'O';
  EXPECT_EQ(e.GetText(), "owned by the caller");

  const zrTarnError both(1, 2, zrString("t"), zrString("m"));
  zrTarnError copy(e);
  EXPECT_EQ(copy.GetText().GetPointer(), e.GetText().GetPointer());
  copy = both;
  EXPECT_TRUE(copy.GetText().GetMem() == both.GetText().GetMem() && copy.GetFirstCode() == 1 &&
              copy.GetSecondCode() == 2);

  // The names of zrErr_NoImplemented are shared the same way.
  const zrErr_NoImplemented solve(zrString("Solve"));
  zrErr_NoImplemented other(zrString("x"));
  other = solve;
  EXPECT_EQ(other.GetName().GetMem(), solve.GetName().GetMem());
  EXPECT_EQ(zrErr_NoImplemented(other).GetName().GetMem(), solve.GetName().GetMem());
}
