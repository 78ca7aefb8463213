// The exception family and its one shared message buffer.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "zr/zr.h"

namespace {

const std::string kPrefix = "Invalid parameters : ";
const char* Buffer() { return zrExceptionWithMessage::message; }

}  // namespace

TEST(BadParameters, PrefixesTheTextAndCutsItToFitTheBuffer) {
  EXPECT_STREQ(BadParameters().GetMessageText(), "Invalid parameters.");
  // 21 characters of prefix and 490 of the text fill the 511 characters before the final zero.
  // A text whose every position is recognisable, so that a cut in the wrong place shows.
  std::string long_text;
  for (int i = 0; i < 600; ++i) long_text += static_cast<char>('A' + i % 26);
  BadParameters cut(long_text.c_str());
  EXPECT_EQ(std::string(cut.GetMessageText()), kPrefix + long_text.substr(0, 490));
  // A text read from the buffer can be handed back: the prefix comes twice, nothing garbled.
  BadParameters again(zrExceptionWithMessageGetMessage());
  EXPECT_EQ(std::string(Buffer()), (kPrefix + kPrefix + long_text).substr(0, 511));
  // A short text leaves nothing of the longer one behind it.
  BadParameters("abc  ");
  EXPECT_EQ(std::string(Buffer(), zrExceptionWithMessage::kMessageSize),
            kPrefix + "abc  " + std::string(512 - 26, '\0'));
}

TEST(ExceptionMessage, IsTheLastConstructedExceptionsWhicheverObjectIsAsked) {
  // An empty buffer reads as "There is not message." and keeps that text.
  zrExceptionWithMessage::Set("old text");
  const zrExceptionWithMessage root;
  EXPECT_EQ(Buffer()[0], 0);
  EXPECT_STREQ(root.GetMessageText(), "There is not message.");  // the buffer itself
  zrExceptionWithMessage::Set(nullptr);
  EXPECT_EQ(Buffer()[0], 0);
  try {
    throw BadParameters("first");
  } catch (const zrExceptionWithMessage& first) {
    EXPECT_EQ(first.GetMessageText(), kPrefix + "first");
    const zrError second(7, "second");
    EXPECT_STREQ(first.GetMessageText(), "second");
    // Copies carry their fields and leave the buffer alone.
    const zrErrNoMemory no_memory(4096);
    zrErrNoMemory assigned;
    zrExceptionWithMessage::Set("untouched");
    const zrError copy(second);
    assigned = no_memory;
    EXPECT_STREQ(Buffer(), "untouched");
    EXPECT_TRUE(copy.GetCode() == 7 && assigned.GetSize() == 4096 && zrError("x").GetCode() == -1);
  }
}
