#include "orlo/exception.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <new>
#include <thread>
#include <vector>

#include "orlo/core_module_test_support.h"
#include "orlo/exception_handling.h"
#include "orlo/internet_response.h"

namespace ORLO {
namespace {

constexpr uint32_t kInternetExtended = 12003;
constexpr uint32_t kInsufficientBuffer = 122;
constexpr uint32_t kUnknownCode = 0xEEEEEEEE;

TEST(Exception, WithoutCodeIsAGenericException) {
  EXPECT_STREQ(Exception().what(), "generic exception");
}

TEST(Exception, WithCodeNamesTheCode) {
  EXPECT_STREQ(Exception(17).what(), "exception code 17");
}

TEST(Exception, UserExceptionCarriesItsText) {
  const UserException exception("column not found");
  EXPECT_STREQ(exception.what(), "column not found");
  EXPECT_EQ(exception.code, 0u);
}

TEST(Exception, CodeIsWrittenAsASignedNumber) {
  EXPECT_STREQ(Exception(0xFFFFFFFF).what(), "exception code -1");
}

TEST(Exception, CodeUnknownToTheSystemIsNamedInUpperCaseHexadecimal) {
  EXPECT_STREQ(SDKException(kUnknownCode).what(), "unknown error 0xEEEEEEEE");
  EXPECT_STREQ(LWE(0xABCDEF).what() + strlen("unknown error "), "0x00ABCDEF");
  EXPECT_STREQ(INetException(kUnknownCode).what(), "unknown error 0xEEEEEEEE");
}

TEST(Exception, BreakIsAGenericException) {
  EXPECT_STREQ(BreakException().what(), "generic exception");
}

TEST(Exception, StructuredExceptionNamesItsCodeAndPointsAtItsRecord) {
  const int record = 0;
  const StructuredException exception(0xC0000005, &record);
  EXPECT_STREQ(exception.what(), "structured exception code 0xC0000005");
  EXPECT_EQ(exception.record(), &record);
}

TEST(Exception, LibraryErrorTakesItsTextFromTheTextModule) {
  TestCoreModule module;
  module.messages[kErrorUnknownConversion] = "no such conversion\r\n";
  EXPECT_STREQ(ORLOException(kErrorUnknownConversion).what(), "no such conversion\r\n");
  EXPECT_EQ(module.open_uses, 0);
}

TEST(Exception, LibraryErrorThatTheTextModuleDoesNotKnowIsUnknown) {
  const TestCoreModule module;
  EXPECT_STREQ(ORLOException(0x42ff00fe).what(), "unknown error 0x42FF00FE");
}

TEST(Exception, TextIsBuiltOnce) {
  TestCoreModule module;
  module.messages[7] = "";
  const ORLOException exception(7);
  const char* const text = exception.what();
  EXPECT_STREQ(text, "");
  EXPECT_EQ(exception.what(), text);
  EXPECT_EQ(module.loads, 1);
}

TEST(Exception, IsCaughtAsItsBases) {
  EXPECT_THROW(throw LIE(), INetException);
  EXPECT_THROW(throw LIE(), SDKException);
  EXPECT_THROW(throw LWE(), SDKException);
  EXPECT_THROW(throw StructuredException(1, nullptr), Exception);
  EXPECT_THROW(throw BreakException(), Exception);
  EXPECT_THROW(throw ORLOException(1), Exception);
  EXPECT_THROW(throw UserException("text"), Exception);
}

/// A server's answer, and what it was asked.
struct FakeResponse {
  std::string words;
  /// What each call answers with.
  std::vector<uint32_t> errors;
  std::vector<uint32_t> sizes;

  String text() {
    return internet_response_text([this](char* buffer, uint32_t& size) {
      const uint32_t error = errors.at(sizes.size());
      sizes.push_back(size);
      if (error == 0) std::memcpy(buffer, words.c_str(), size);
      if (error == kInsufficientBuffer) size = static_cast<uint32_t>(words.size() + 1);
      return error;
    });
  }
};

TEST(InternetResponse, IsAskedForItsSizeWithAByteAndThenForItsWords) {
  FakeResponse response{"530 no such user", {kInsufficientBuffer, 0}, {}};
  EXPECT_STREQ(response.text().c_str(), "530 no such user");
  EXPECT_EQ(response.sizes, (std::vector<uint32_t>{1, 17}));
}

TEST(InternetResponse, ThatFitsAByteIsEmpty) {
  FakeResponse response{"", {0}, {}};
  EXPECT_STREQ(response.text().c_str(), "");
  EXPECT_EQ(response.sizes, (std::vector<uint32_t>{1}));
}

TEST(InternetResponse, ThatFillsItsBufferWithoutAnEndIsStillText) {
  const auto unterminated = [](char* buffer, uint32_t& size) {
    if (size == 1) {
      size = 4;
      return kInsufficientBuffer;
    }
    std::memset(buffer, 'x', size);
    return uint32_t{0};
  };
  EXPECT_STREQ(internet_response_text(unterminated).c_str(), "xxxx");
}

uint32_t thrown_code(FakeResponse& response) {
  try {
    response.text();
  } catch (const LWE& exception) {
    return exception.code;
  }
  return 0;
}

TEST(InternetResponse, ThatCannotBeReadThrowsTheReason) {
  FakeResponse refused{"", {87}, {}};
  EXPECT_EQ(thrown_code(refused), 87u);
  EXPECT_EQ(refused.sizes.size(), 1u);
  FakeResponse refused_later{"words", {kInsufficientBuffer, 12018}, {}};
  EXPECT_EQ(thrown_code(refused_later), 12018u);
  FakeResponse ever_growing{"words", {kInsufficientBuffer, kInsufficientBuffer}, {}};
  EXPECT_EQ(thrown_code(ever_growing), kInsufficientBuffer);
}

TEST(Exception, InternetErrorOfAServerWithoutAResponseThrowsInstead) {
  // No call has been made that could have had one.
  EXPECT_THROW(INetException(kInternetExtended).what(), LWE);
}

/// Puts the new-handler and the exception mode back.
struct HandlingScope {
  HandlingScope() = default;
  ~HandlingScope() {
    std::set_new_handler(handler);
    set_exception_mode(false);
  }
  const std::new_handler handler = std::get_new_handler();
};

TEST(ExceptionHandling, MakesAFailedAllocationThrowTheSystemsError) {
  const HandlingScope scope;
  install_exception_handling(true);
  ASSERT_NE(std::get_new_handler(), nullptr);
  uint32_t code = 0;
  try {
    std::get_new_handler()();
  } catch (const SDKException& exception) {
    code = exception.code;
  }
  EXPECT_EQ(code, 14u);
  // It throws anew each time.
  EXPECT_THROW(std::get_new_handler()(), SDKException);
  EXPECT_THROW(throw_out_of_memory(), SDKException);
}

TEST(ExceptionHandling, LeavesFailedAllocationsAloneWhenNotAsked) {
  const HandlingScope scope;
  install_exception_handling(false);
  EXPECT_EQ(std::get_new_handler(), scope.handler);
  EXPECT_TRUE(exception_mode());
  EXPECT_THROW(throw_out_of_memory(), std::bad_alloc);
}

TEST(Exception, LibraryErrorWithoutTextModuleShowsItsCode) {
  EXPECT_STREQ(ORLOException(kErrorUnknownConversion).what(), "error 0x42FF0001");
}

TEST(Exception, CopyOwnsItsText) {
  const auto* original = new UserException("first");
  const UserException copy = *original;
  delete original;
  EXPECT_STREQ(copy.what(), "first");
}

TEST(ExceptionContext, BottomOfTheChainHasItsOwnText) {
  EXPECT_STREQ(ExceptionContext::current().text(), "-NO-CONTEXT-");
}

TEST(ExceptionContext, InnermostIsSnapshotByAnException) {
  const ExceptionContext outer("outer work");
  {
    const ExceptionContext inner("inner work", "thing");
    const Exception exception;
    EXPECT_STREQ(exception.context.text(), "inner work");
    EXPECT_STREQ(exception.context.object().c_str(), "thing");
  }
  EXPECT_STREQ(Exception().context.text(), "outer work");
}

TEST(ExceptionContext, CopiesAreNotLinked) {
  const ExceptionContext context("work");
  {
    const ExceptionContext copy = context;
    EXPECT_EQ(&ExceptionContext::current(), &context);
  }
  EXPECT_EQ(&ExceptionContext::current(), &context);
}

TEST(ExceptionContext, EachThreadHasAChainOfItsOwn) {
  const ExceptionContext context("main work");
  std::thread([] { EXPECT_STREQ(ExceptionContext::current().text(), "-NO-CONTEXT-"); }).join();
}

TEST(ExceptionContext, ObjectStandsOnASecondLine) {
  EXPECT_STREQ(context_text(ExceptionContext("opening")).c_str(), "opening");
  EXPECT_STREQ(context_text(ExceptionContext("opening", "a.txt")).c_str(),
               "opening\nObject: a.txt");
}

TEST(Exception, CopyTakesItsContextAlong) {
  std::unique_ptr<Exception> copy;
  {
    const ExceptionContext context("reading", "a.txt");
    const Exception original(5);
    copy = std::make_unique<Exception>(original);
  }
  EXPECT_STREQ(copy->context.text(), "reading");
  EXPECT_STREQ(copy->context.object().c_str(), "a.txt");
  EXPECT_STREQ(copy->what(), "exception code 5");
}

TEST(ExceptionText, ComesFromTheTextModuleWhereItIsThere) {
  TestCoreModule module;
  module.strings = {{284, "Something went wrong"}, {285, " in the course of \"%hs\""}};
  const ExceptionContext context("control update");
  EXPECT_STREQ(exception_text(UserException("no room")).c_str(),
               "Something went wrong in the course of \"control update\":\nno room");
}

TEST(ExceptionText, TakesTheBuiltInWordsForAStringThatTheModuleLacks) {
  TestCoreModule module;
  module.strings = {{284, "Something went wrong"}};
  const ExceptionContext context("control update");
  EXPECT_STREQ(exception_text(UserException("no room")).c_str(),
               "Something went wrong w\xe4hrend control update:\nno room");
}

TEST(ExceptionText, TakesTheBuiltInWordsForAFormatThatIsNoGood) {
  const HandlingScope scope;
  set_exception_mode(true);
  TestCoreModule module;
  module.strings = {{285, " %y"}};
  const ExceptionContext context("control update");
  EXPECT_STREQ(exception_text(UserException("no room")).c_str(),
               "Ein Fehler trat auf w\xe4hrend control update:\nno room");
}

TEST(ExceptionText, TellsTheObjectOnALineOfItsOwn) {
  const ExceptionContext context("opening", "a.txt");
  EXPECT_STREQ(exception_text(Exception()).c_str(),
               "Ein Fehler trat auf w\xe4hrend opening\nObject: a.txt:\ngeneric exception");
}

TEST(ExceptionText, BeginsWithTheBuiltInWords) {
  const ExceptionContext context("control update");
  EXPECT_STREQ(exception_text(UserException("no room")).c_str(),
               "Ein Fehler trat auf w\xe4hrend control update:\nno room");
}

}  // namespace
}  // namespace ORLO
