// The exceptions that carry strings: their texts in the shared buffer, their codes, and
// who owns the stored string.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "zr/zr.h"

TEST(TextErrors, ZrErrorTakesTheStringsCharacters) {
  const zrError plain(zrString("abc"));
  EXPECT_EQ(plain.GetCode(), -1);
  EXPECT_STREQ(plain.GetMessageText(), "abc");

  // Not zero-terminated: only the string's characters, cut at a zero byte, are taken.
  const char chars[] = {'x', 'y', 'z'};
  const zrError coded(5, zrString(chars, 2));
  EXPECT_EQ(coded.GetCode(), 5);
  EXPECT_STREQ(coded.GetMessageText(), "xy");
  const zrError zero(zrString("a\0b", 3));
  EXPECT_STREQ(zero.GetMessageText(), "a");
  EXPECT_EQ(zrExceptionWithMessage::message[2], 0);  // nothing after the zero either

  const std::vector<char> long_text(600, 'q');
  const zrError cut(zrString(long_text.data(), 600));
  EXPECT_EQ(cut.GetMessageText(), std::string(511, 'q'));
}

TEST(TextErrors, TarnErrorKeepsAPrivateTextAndCopiesShareIt) {
  char text[] = "owned by the caller";
  const zrTarnError e(7, zrString(text), zrString("the message"));
  EXPECT_EQ(e.GetFirstCode(), -1);
  EXPECT_EQ(e.GetSecondCode(), 7);
  EXPECT_STREQ(e.GetMessageText(), "the message");
  EXPECT_NE(e.GetText().GetPointer(), text);
  text[0] = 'O';
  EXPECT_EQ(e.GetText(), "owned by the caller");

  const zrTarnError both(1, 2, zrString("t"), zrString("m"));
  EXPECT_EQ(both.GetFirstCode(), 1);
  EXPECT_EQ(both.GetSecondCode(), 2);

  zrTarnError copy(e);
  EXPECT_EQ(copy.GetText().GetPointer(), e.GetText().GetPointer());
  EXPECT_EQ(copy.GetSecondCode(), 7);
  EXPECT_EQ(e.GetText().GetNumOfRef(), 1);
  copy = both;
  EXPECT_EQ(copy.GetText().GetMem(), both.GetText().GetMem());
  EXPECT_EQ(copy.GetFirstCode(), 1);
  EXPECT_EQ(e.GetText().GetNumOfRef(), 0);

  // Thrown, the text outlives the characters it was made from.
  try {
    char local[] = "local";
    throw zrTarnError(3, zrString(local), zrString("thrown"));
  } catch (const zrTarnError& caught) {
    const zrTarnError kept(caught);
    EXPECT_EQ(kept.GetText(), "local");
    EXPECT_STREQ(kept.GetMessageText(), "thrown");
  }
}

TEST(TextErrors, NoImplementedNamesTheFunction) {
  const zrErr_NoImplemented e(zrString("Solve"));
  EXPECT_STREQ(e.GetMessageText(), "Function Solve don't implemented");
  EXPECT_EQ(e.GetName(), "Solve");
  const zrErr_NoImplemented copy(e);
  EXPECT_EQ(copy.GetName().GetPointer(), e.GetName().GetPointer());

  // One text, cut as the buffer cuts: at a zero byte, and at 511 characters.
  const zrErr_NoImplemented zero(zrString("a\0b", 3));
  EXPECT_STREQ(zero.GetMessageText(), "Function a");
  const std::vector<char> long_name(520, 'n');
  const zrErr_NoImplemented cut(zrString(long_name.data(), 520));
  EXPECT_EQ(cut.GetMessageText(), "Function " + std::string(502, 'n'));
  const std::vector<char> fits(495, 'n');
  const zrErr_NoImplemented tail_cut(zrString(fits.data(), 495));
  EXPECT_EQ(tail_cut.GetMessageText(),
            ("Function " + std::string(495, 'n') + " don't implemented").substr(0, 511));

  // A name read from the buffer itself.
  const BadParameters first("x");
  const zrErr_NoImplemented from_buffer(zrString(first.GetMessageText()));
  EXPECT_STREQ(from_buffer.GetMessageText(), "Function Invalid parameters : x don't implemented");
}
