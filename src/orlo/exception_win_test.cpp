#include "orlo/exception.h"

#include <gtest/gtest.h>

#include "orlo/com_error.h"
#include "orlo/last_chance.h"
#include "orlo/orlowin.h"
// Needs what orlowin.h brings.
#include <wininet.h>

namespace ORLO {
namespace {

TEST(SystemText, IsTheSystemsWithItsLineEnd) {
  EXPECT_STREQ(SDKException(ERROR_FILE_NOT_FOUND).what(), "File not found.\r\n");
}

TEST(SystemText, ThatWantsValuesPutInIsDefined) {
  // "%1 is not a valid application": there is nothing to put in.
  const std::string text = SDKException(ERROR_BAD_EXE_FORMAT).what();
  EXPECT_FALSE(text.empty());
}

TEST(SystemText, LastErrorIsTakenWhereItIsThrown) {
  SetLastError(ERROR_ACCESS_DENIED);
  const LWE exception;
  SetLastError(ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(exception.code, static_cast<uint32_t>(ERROR_ACCESS_DENIED));
  SetLastError(ERROR_INTERNET_TIMEOUT);
  EXPECT_EQ(LIE().code, static_cast<uint32_t>(ERROR_INTERNET_TIMEOUT));
}

TEST(SystemText, OfAComErrorHasNoLineEnd) {
  String text;
  ASSERT_TRUE(system_message(0x80070005, text));
  EXPECT_STREQ(com_error_message(static_cast<int32_t>(0x80070005)).c_str(),
               without_line_end(text).c_str());
  EXPECT_EQ(com_error_message(static_cast<int32_t>(0x80070005)).length() + 2, text.length());
}

TEST(SystemText, OfAServersResponseIsReadFromTheLibraryInUse) {
  const HMODULE library = LoadLibraryA("wininet");
  ASSERT_NE(library, nullptr);
  // No server has said anything: an empty text, or the reason why there is none.
  try {
    const INetException exception(ERROR_INTERNET_EXTENDED_ERROR);
    EXPECT_STREQ(exception.what(), "");
  } catch (const LWE& failure) {
    EXPECT_NE(failure.code, 0u);
  }
  FreeLibrary(library);
}

TEST(LastChance, MarksTheRecordAndPassesWarningsOn) {
  EXCEPTION_RECORD record = {};
  record.ExceptionCode = EXCEPTION_BREAKPOINT;
  CONTEXT context = {};
  EXCEPTION_POINTERS pointers = {&record, &context};
  EXPECT_EQ(exception_filter(&pointers, nullptr), EXCEPTION_CONTINUE_SEARCH);
  EXPECT_EQ(record.ExceptionFlags, 0u);
  last_chance_filter(&pointers);
  EXPECT_EQ(record.ExceptionFlags, 0x2000u);
}

TEST(LastChance, GoesOnAfterInformation) {
  EXCEPTION_RECORD record = {};
  record.ExceptionCode = 0x40010006;
  CONTEXT context = {};
  EXCEPTION_POINTERS pointers = {&record, &context};
  EXPECT_EQ(exception_filter(&pointers, nullptr), EXCEPTION_CONTINUE_EXECUTION);
}

}  // namespace
}  // namespace ORLO
