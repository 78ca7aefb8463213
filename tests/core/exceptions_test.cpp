// The exception family and its one shared message buffer.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

const std::string kPrefix = "Invalid parameters : ";
const char* Buffer() { return zrExceptionWithMessage::message; }

// A text whose every position is recognisable, so that a cut in the wrong place shows.
std::string Numbered(int n) {
  std::string s;
  for (int i = 0; i < n; ++i) s += static_cast<char>('A' + i % 26);
  return s;
}

}  // namespace

TEST(BadParameters, PrefixesTheTextAndCutsItToFitTheBuffer) {
  EXPECT_STREQ(BadParameters().GetMessageText(), "Invalid parameters.");
  EXPECT_EQ(BadParameters("Index out of range.  ").GetMessageText(),
            kPrefix + "Index out of range.  ");

  // 21 characters of prefix and 490 of the text fill the 511 characters before the final zero.
  const std::string long_text = Numbered(600);
  BadParameters cut(long_text.c_str());
  EXPECT_EQ(std::strlen(Buffer()), 511u);
  EXPECT_EQ(std::string(cut.GetMessageText()), kPrefix + long_text.substr(0, 490));

  // A text read from the buffer can be handed back: the prefix comes twice, nothing garbled.
  BadParameters again(zrExceptionWithMessageGetMessage());
  EXPECT_EQ(std::string(Buffer()), (kPrefix + kPrefix + long_text).substr(0, 511));
}

TEST(ExceptionMessage, SetKeepsAtMost511CharactersAndZeroFillsTheRest) {
  for (int n : {511, 512, 700}) {
    const std::string text = Numbered(n);
    zrExceptionWithMessage by_constructor(text.c_str());
    EXPECT_EQ(std::string(by_constructor.GetMessageText()), text.substr(0, 511)) << n;
  }
  // A shorter text leaves nothing of the longer one behind it.
  zrExceptionWithMessage::Set("short");
  for (int i = 5; i < zrExceptionWithMessage::kMessageSize; ++i) ASSERT_EQ(Buffer()[i], 0) << i;

  // Texts that overlap the buffer.
  zrExceptionWithMessage::Set("0123456789");
  zrExceptionWithMessage::Set(zrExceptionWithMessage::message + 4);
  EXPECT_STREQ(Buffer(), "456789");
  zrError same(zrExceptionWithMessageGetMessage());
  EXPECT_STREQ(same.GetMessageText(), "456789");

  zrExceptionWithMessage::Set(nullptr);
  EXPECT_EQ(Buffer()[0], 0);
}

TEST(ExceptionMessage, IsTheLastConstructedExceptionsWhicheverObjectIsAsked) {
  // An empty buffer reads as "There is not message." and keeps that text.
  zrExceptionWithMessage::Set("old text");
  const zrExceptionWithMessage root;
  EXPECT_EQ(Buffer()[0], 0);
  EXPECT_STREQ(root.GetMessageText(), "There is not message.");
  EXPECT_STREQ(Buffer(), "There is not message.");

  try {
    throw BadParameters("first");
  } catch (const zrExceptionWithMessage& first) {
    EXPECT_EQ(first.GetMessageText(), kPrefix + "first");
    const zrError second("second");
    EXPECT_STREQ(first.GetMessageText(), "second");
  }
}

TEST(ExceptionMessage, CopiesCarryTheirFieldsButLeaveTheBufferAlone) {
  BadParameters bad("bad");
  zrError error(7, "error"), error_assigned(1, "assigned");
  zrErrNoMemory no_memory(4096), no_memory_assigned;
  zrExceptionWithMessage::Set("untouched");

  BadParameters bad_copy(bad);
  bad_copy = bad;
  zrError error_copy(error);
  error_assigned = error;
  zrErrNoMemory no_memory_copy(no_memory);
  no_memory_assigned = no_memory;
  EXPECT_STREQ(Buffer(), "untouched");

  EXPECT_EQ(error_copy.GetCode(), 7);
  EXPECT_EQ(error_assigned.GetCode(), 7);
  EXPECT_EQ(no_memory_copy.GetSize(), 4096u);
  EXPECT_EQ(no_memory_assigned.GetSize(), 4096u);
  EXPECT_EQ(zrError("abc").GetCode(), -1);
  EXPECT_STREQ(Buffer(), "abc");
}

TEST(zrErrNoMemory, KeepsTheSizeAndFormatsTheFixedText) {
  for (std::uint64_t size : {std::uint64_t{0}, ~std::uint64_t{0}}) {
    zrErrNoMemory e(size);
    EXPECT_EQ(e.GetSize(), size);
    EXPECT_EQ(e.GetMessageText(), zr_test::NoMemoryText(size)) << size;
    EXPECT_EQ(std::string(Buffer()).rfind("be not sufficient ", 0), 0u);
  }
}
