#include "orlo/exception.h"

#include <gtest/gtest.h>

#include <thread>

namespace ORLO {
namespace {

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

TEST(Exception, CodeUnknownToTheSystemIsNamedInHexadecimal) {
  EXPECT_STREQ(SDKException(0xEEEEEEEE).what(), "unknown error 0xEEEEEEEE");
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

TEST(ExceptionText, BeginsWithTheBuiltInWords) {
  const ExceptionContext context("control update");
  EXPECT_STREQ(exception_text(UserException("no room")).c_str(),
               "Ein Fehler trat auf w\xe4hrend control update:\nno room");
}

}  // namespace
}  // namespace ORLO
