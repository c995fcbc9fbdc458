#include "platform/memory_wmi.h"

#include <gtest/gtest.h>

#include "orlo/com_error.h"
#include "platform/utf16.h"
#include "platform/wmi_test_support.h"

namespace {

std::string printed(std::u16string_view text) {
  return std::string("\xFF\xFE").append(bytes_from_utf16(text));
}

struct Result {
  bool complete = false;
  WmiInstances instances;
};

Result execute(MemoryWmi& wmi) {
  Result result;
  result.complete = wmi.connect()->Execute(kHotfixQuery, kRootNamespace, result.instances);
  return result;
}

WmiInstances three() {
  return {{{"a", "1"}}, {{"a", "2"}, {"b", "2"}}, {{"a", "3"}}};
}

TEST(MemoryWmi, DiesInMidEnumeration) {
  for (size_t count = 0; count <= 3; ++count) {
    SCOPED_TRACE(count);
    MemoryWmi wmi;
    wmi.answer(kHotfixQuery, kRootNamespace, three());
    wmi.fail_after(count);
    const Result result = execute(wmi);
    EXPECT_FALSE(result.complete);
    EXPECT_EQ(result.instances.size(), count);
  }
}

TEST(MemoryWmi, ThrowsAtAProperty) {
  MemoryWmi wmi;
  wmi.answer(kHotfixQuery, kRootNamespace, three());
  wmi.throw_at("b");
  const auto query = wmi.connect();
  WmiInstances results;
  EXPECT_THROW(query->Execute(kHotfixQuery, kRootNamespace, results), ORLO::ComError);
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(results[1].size(), 1u);
}

TEST(MemoryWmi, RefusesConnectionsFromNowOn) {
  MemoryWmi wmi;
  wmi.answer(kHotfixQuery, kRootNamespace, three());
  const auto before = wmi.connect();
  wmi.refuse();
  WmiInstances results;
  EXPECT_TRUE(before->Execute(kHotfixQuery, kRootNamespace, results));
  EXPECT_FALSE(wmi.connect()->Execute(kHotfixQuery, kRootNamespace, results));
  EXPECT_TRUE(results.empty());
}

TEST(MemoryWmi, LogsQueriesAndCountsConnections) {
  MemoryWmi wmi;
  EXPECT_EQ(wmi.connections(), 0);
  {
    const auto query = wmi.connect();
    EXPECT_EQ(wmi.connections(), 1);
    WmiInstances results;
    query->Execute("q", "n", results);
    EXPECT_TRUE(wmi.queries() == std::vector<std::string>{"n: q"});
  }
  EXPECT_EQ(wmi.connections(), 0);
}

TEST(MemoryWmi, LoadsWhatWmicPrints) {
  for (const char16_t* text :
       {u"\r\n\r\nCaption=x=y\r\nEmpty=\r\nName=\xE4\r\n\r\n\r\nCaption=z\r\n\r\n\r\n\r\n",
        u"\r\r\n\r\r\nCaption=x=y\r\r\nEmpty=\r\r\nName=\xE4\r\r\n\r\r\n\r\r\nCaption=z\r\r\n",
        u"Caption=x=y\nEmpty=\nName=\xE4\n\nCaption=z"}) {
    MemoryWmi wmi;
    ASSERT_TRUE(wmi.load(kHotfixQuery, kRootNamespace, printed(text)));
    const Result result = execute(wmi);
    EXPECT_TRUE(result.complete);
    ASSERT_EQ(result.instances.size(), 2u);
    const WmiInstance& first = result.instances[0];
    EXPECT_EQ(first.size(), 2u);
    EXPECT_STREQ(first.at("Caption").c_str(), "x=y");
    EXPECT_STREQ(first.at("Name").c_str(), "\xE4");
    EXPECT_EQ(result.instances[1].size(), 1u);
    EXPECT_STREQ(result.instances[1].at("Caption").c_str(), "z");
  }
}

TEST(MemoryWmi, LoadsATextWithoutInstances) {
  MemoryWmi wmi;
  ASSERT_TRUE(wmi.load(kHotfixQuery, kRootNamespace, printed(u"\r\n\r\n")));
  const Result result = execute(wmi);
  EXPECT_TRUE(result.complete);
  EXPECT_TRUE(result.instances.empty());
}

TEST(MemoryWmi, LoadsNothingElse) {
  MemoryWmi wmi;
  EXPECT_FALSE(wmi.load(kHotfixQuery, kRootNamespace, ""));
  EXPECT_FALSE(wmi.load(kHotfixQuery, kRootNamespace, "Caption=x\r\n"));
  EXPECT_FALSE(wmi.load(kHotfixQuery, kRootNamespace, printed(u"Caption=x\r\nno property\r\n")));
  EXPECT_FALSE(execute(wmi).complete);
}

}  // namespace
