#include "orlo/com_error.h"

#include <gtest/gtest.h>

#include "orlo/core_module_test_support.h"

namespace ORLO {
namespace {

constexpr int32_t result(uint32_t value) {
  return static_cast<int32_t>(value);
}

TEST(ComError, IsThrownForFailuresOnly) {
  EXPECT_NO_THROW(check_com(0));
  EXPECT_NO_THROW(check_com(1));
  int32_t code = 0;
  try {
    check_com(result(0x80004005));
  } catch (const ComError& error) {
    code = error.hresult;
  }
  EXPECT_EQ(code, result(0x80004005));
}

TEST(ComError, WithoutATextOfTheSystemIsNamedByItsNumber) {
  struct Row {
    uint32_t code;
    const char* text;
  };
  for (const Row& row :
       {Row{0x80040200, "IDispatch error #0"}, Row{0x80040205, "IDispatch error #5"},
        Row{0x8004FFFF, "IDispatch error #65023"}, Row{0x800401FF, "Unknown error 0x800401FF"},
        Row{0x80050000, "Unknown error 0x80050000"}, Row{0xE, "Unknown error 0xE"}}) {
    SCOPED_TRACE(row.text);
    EXPECT_STREQ(com_error_number(result(row.code)).c_str(), row.text);
  }
}

TEST(ComError, MessageLosesOneLineEnd) {
  struct Row {
    const char* text;
    const char* without;
  };
  for (const Row& row : {Row{"Failed.\r\n", "Failed."}, Row{"Failed.\n", "Failed."},
                         Row{"Failed.\r\n\r\n", "Failed.\r\n"}, Row{"Failed.", "Failed."},
                         Row{"\r\n", ""}, Row{"", ""}, Row{"\n", ""}}) {
    SCOPED_TRACE(row.without);
    EXPECT_STREQ(without_line_end(row.text).c_str(), row.without);
  }
}

TEST(ComError, TextHoldsAllThatTheErrorTells) {
  const ComError error(result(0x80040207), "Sheet.Server", "no such cell");
  EXPECT_STREQ(com_error_text(error).c_str(),
               "A COM exception occured:\n Code = 0x80040207\n Source: \"Sheet.Server\"\n"
               " Description: \"no such cell\"\n Error message: IDispatch error #7\n");
}

TEST(ComError, TextTakesItsFormatFromTheTextModule) {
  TestCoreModule module;
  module.strings = {{287, "%08X|%s|%s|%s"}};
  const ComError error(result(0x80040207), "from", "what");
  EXPECT_STREQ(com_error_text(error).c_str(), "80040207|from|what|IDispatch error #7");
}

}  // namespace
}  // namespace ORLO
