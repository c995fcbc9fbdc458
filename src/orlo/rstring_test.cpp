#include "orlo/rstring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "orlo/assertion.h"
#include "orlo/report_test_support.h"

namespace ORLO {
namespace {

std::string_view view(const String& text) {
  return {text.c_str(), text.length()};
}

TEST(String, EveryEmptyStringOwnsABlock) {
  const String by_default;
  const String from_null(static_cast<const char*>(nullptr));
  const String from_empty("");
  for (const String* text : {&by_default, &from_null, &from_empty}) {
    EXPECT_EQ(text->length(), 0U);
    EXPECT_EQ(text->capacity(), 13U);
    EXPECT_STREQ(text->c_str(), "");
    EXPECT_TRUE(text->empty());
  }
  EXPECT_FALSE(by_default.shares_block_with(from_null));
  EXPECT_FALSE(from_null.shares_block_with(from_empty));
}

TEST(String, IsOnePointerWide) {
  EXPECT_EQ(sizeof(String), sizeof(void*));
}

TEST(String, AFreshBlockFitsItsText) {
  const String text("hello");
  EXPECT_EQ(text.length(), 5U);
  EXPECT_EQ(text.capacity(), 18U);
  EXPECT_STREQ(text.c_str(), "hello");
}

TEST(String, TakesARangeOfCharacters) {
  const char source[] = "abcdef";
  EXPECT_EQ(view(String(source + 1, source + 4)), "bcd");
  EXPECT_EQ(view(String(source, source)), "");
}

TEST(String, ARangeThatEndsBeforeItsBeginFailsAnAssertionAndIsEmpty) {
  forget_failed_assertions();
  const TestReports reports;
  const char source[] = "abc";
  EXPECT_EQ(view(String(source + 2, source + 1)), "");
  ASSERT_EQ(reports.shown.size(), 1U);
  EXPECT_EQ(reports.shown[0].text, "Assertion failed: e>=b, file rstring, line 253");
}

TEST(String, JoinsTwoCountedPieces) {
  const String text("ab\0c", 4, "de", 2);
  EXPECT_EQ(view(text), std::string_view("ab\0cde", 6));
  EXPECT_EQ(view(String(nullptr, 0, "x", 1)), "x");
  EXPECT_EQ(view(String("x", 1, nullptr, 0)), "x");
}

TEST(String, TakesTheCountedTextOfAStandardString) {
  EXPECT_EQ(view(String(std::string("a\0b", 3))), std::string_view("a\0b", 3));
  EXPECT_EQ(view(String(std::string())), "");
}

TEST(String, ConvertsWideTextToTheCodePage) {
  EXPECT_EQ(view(String(u"Gr\x00fc\x00df"
                        u"e \x20ac")),
            "Gr\xfc\xdf"
            "e \x80");
  EXPECT_EQ(view(String(u"\x4e2d"
                        u"a")),
            "?a");
  EXPECT_EQ(view(String(static_cast<const char16_t*>(nullptr))), "");
  EXPECT_EQ(String(u"abc").length(), 3U);
}

TEST(String, CopiesShareABlock) {
  const String first("text");
  const String second(first);  // NOLINT(performance-unnecessary-copy-initialization): tested.
  String third;
  third = first;
  EXPECT_TRUE(first.shares_block_with(second));
  EXPECT_TRUE(first.shares_block_with(third));
}

TEST(String, AWriteToOneCopyLeavesTheOtherUnchanged) {
  struct Change {
    const char* name;
    void (*apply)(String&);
    const char* result;
  };
  const Change changes[] = {
      {"append text", [](String& s) { s.append("x"); }, "textx"},
      {"append character", [](String& s) { s.append('x'); }, "textx"},
      {"append itself", [](String& s) { s.append(s); }, "texttext"},
      {"assign", [](String& s) { s = "x"; }, "x"},
      {"assign counted", [](String& s) { s.assign("xyz", 2); }, "xy"},
      {"assign own piece", [](String& s) { s.assign(s.c_str() + 1, 2); }, "ex"},
      {"shrink", [](String& s) { s.resize(2); }, "te"},
      {"write", [](String& s) { s.writable()[0] = 'n'; }, "next"},
      {"replace", [](String& s) { s.replace("t", "d"); }, "dexd"},
      {"printf", [](String& s) { s.printf("%d", 5); }, "5"},
      {"appendf", [](String& s) { s.appendf("%d", 5); }, "text5"},
      {"assign null", [](String& s) { s.assign(static_cast<const char*>(nullptr)); }, ""},
      {"assign wide", [](String& s) { s.assign_wide(u"wide", 3); }, "wid"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.name);
    const String original("text");
    String copy(original);
    change.apply(copy);
    EXPECT_EQ(view(copy), change.result);
    EXPECT_EQ(view(original), "text");
    EXPECT_FALSE(copy.shares_block_with(original));
  }
}

TEST(String, AssignmentOfItsOwnBlockKeepsIt) {
  String text("text");
  const String copy(text);
  text.assign(copy);
  const String& itself = text;
  text = itself;
  EXPECT_TRUE(text.shares_block_with(copy));
  EXPECT_EQ(view(text), "text");
}

TEST(String, AppendingItselfDoublesTheText) {
  String text("ab\0c", 4, nullptr, 0);
  text.append(text);
  EXPECT_EQ(view(text), std::string_view("ab\0cab\0c", 8));
  EXPECT_EQ(text.capacity(), 21U);
}

TEST(String, AppendsAPieceOfItself) {
  String text("abcdef");
  text.append(text.c_str() + 2, 3);
  EXPECT_EQ(view(text), "abcdefcde");
}

TEST(String, AssignsAPieceOfItselfInANewBlock) {
  String text("abcdef");
  const char* const old_block = text.c_str();
  text.assign(text.c_str() + 2, 3);
  EXPECT_EQ(view(text), "cde");
  EXPECT_NE(text.c_str(), old_block);
  EXPECT_EQ(text.capacity(), 16U);
}

TEST(String, AssignsWhatStandsBehindItsOwnPointer) {
  String text("abcdef");
  text.assign(text.c_str() + 4);
  EXPECT_EQ(view(text), "ef");
  text = text.c_str();
  EXPECT_EQ(view(text), "ef");
  text.assign(text.c_str() + text.length());
  EXPECT_EQ(view(text), "");
}

TEST(String, WhatAShrunkenTextLeavesBehindIsStillAPieceOfItself) {
  String text("abcdefgh");
  text.resize(3);
  text.append(text.c_str() + 4, 3);
  EXPECT_EQ(view(text), "abcefg");
  text = "abcdefgh";
  text.resize(3);
  text.assign(text.c_str() + 5, 3);
  EXPECT_EQ(view(text), "fgh");
}

TEST(String, NullAndEmptyTextAppendNothing) {
  String text("a");
  text.append(static_cast<const char*>(nullptr));
  text.append("");
  text.append("xyz", 0);
  EXPECT_EQ(view(text), "a");
  EXPECT_EQ(text.capacity(), 14U);
}

TEST(String, AssignsWideTextUpToItsTerminatorOrTheLength) {
  String text("old text");
  text.assign_wide(
      u"\x00e4"
      u"bc",
      2);
  EXPECT_EQ(view(text),
            "\xe4"
            "b");
  text.assign_wide(u"ab\0cd", 4);
  EXPECT_EQ(view(text), std::string_view("ab\0\0", 4));
  text.assign_wide(nullptr, 0);
  EXPECT_EQ(view(text), "");
}

TEST(String, ABlockOfMinimalSizeGrowsToFit) {
  String text;
  text.resize(20);
  EXPECT_EQ(text.capacity(), 33U);
}

TEST(String, LaterGrowthGoesToAtLeast128AndThenDoublesWhatIsNeeded) {
  String text("a");
  text.append("b");
  EXPECT_EQ(text.capacity(), 128U);
  text.resize(115);
  EXPECT_EQ(text.capacity(), 128U);
  text.resize(116);
  EXPECT_EQ(text.capacity(), 258U);
  text.resize(245);
  EXPECT_EQ(text.capacity(), 258U);
  text.resize(246);
  EXPECT_EQ(text.capacity(), 518U);
}

TEST(String, ShrinkingKeepsTheBlock) {
  String text("abcdefgh");
  const char* const block = text.c_str();
  text.resize(3);
  EXPECT_EQ(text.c_str(), block);
  EXPECT_EQ(text.capacity(), 21U);
  EXPECT_STREQ(text.c_str(), "abc");
}

TEST(String, ResizingASharedBlockCopiesAndFillsWithZeros) {
  const String original("abc");
  String copy(original);
  copy.resize(6);
  EXPECT_EQ(view(copy), std::string_view("abc\0\0\0", 6));
  EXPECT_EQ(copy.capacity(), 19U);
  String same_length(original);
  same_length.resize(3);
  EXPECT_FALSE(same_length.shares_block_with(original));
}

TEST(String, ResizingToTheSameLengthDoesNothing) {
  String text("abc");
  const char* const block = text.c_str();
  text.resize(3);
  EXPECT_EQ(text.c_str(), block);
  EXPECT_EQ(text.capacity(), 16U);
}

TEST(String, CompactGivesBackUnusedRoom) {
  String text("abc");
  text.append("d");
  ASSERT_EQ(text.capacity(), 128U);
  const String copy(text);
  text.compact();
  EXPECT_EQ(text.capacity(), 17U);
  EXPECT_FALSE(text.shares_block_with(copy));
  EXPECT_EQ(copy.capacity(), 128U);
  EXPECT_EQ(view(text), "abcd");
  text.append("e");
  text.compact();
  EXPECT_EQ(text.capacity(), 18U);
  EXPECT_EQ(view(text), "abcde");
}

TEST(String, CompactLeavesASharedBlockThatFitsAlone) {
  String text("abc");
  const String copy(text);
  text.compact();
  EXPECT_TRUE(text.shares_block_with(copy));
}

TEST(String, MakeUniqueCopiesOnlyASharedBlock) {
  String text("abc");
  const char* const block = text.c_str();
  text.make_unique();
  EXPECT_EQ(text.c_str(), block);
  const String copy(text);
  text.make_unique();
  EXPECT_NE(text.c_str(), copy.c_str());
  EXPECT_EQ(view(text), "abc");
}

TEST(String, ReplacesEveryHitFromLeftToRight) {
  struct Row {
    const char* text;
    const char* what;
    const char* by;
    bool changed;
    const char* result;
  };
  const Row rows[] = {
      {"a~b~c", "~", " ", true, "a b c"}, {"aaa", "aa", "b", true, "ba"},
      {"aaaa", "aa", "b", true, "bb"},    {"abc", "abc", "", true, ""},
      {"abc", "c", "cc", true, "abcc"},   {"abc", "x", "y", false, "abc"},
      {"abc", "", "y", false, "abc"},     {"abc", nullptr, "y", false, "abc"},
      {"abc", "b", nullptr, true, "ac"},  {"abc", "b", "b", false, "abc"},
      {"", "b", "c", false, ""},          {"100%s", "100", "%d", true, "%d%s"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    String text(row.text);
    EXPECT_EQ(text.replace(row.what, row.by), row.changed);
    EXPECT_EQ(view(text), row.result);
  }
}

TEST(String, ReplacingATextByItselfLeavesTheBlockAlone) {
  String text("abcabc");
  const char* const block = text.c_str();
  EXPECT_FALSE(text.replace("b", "b"));
  EXPECT_EQ(text.c_str(), block);
}

TEST(String, ReplacesUpToTheFirstNulAndKeepsWhatStandsBehind) {
  String text("b\0b", 3, nullptr, 0);
  EXPECT_TRUE(text.replace("b", "cc"));
  EXPECT_EQ(view(text), std::string_view("cc\0b", 4));
  EXPECT_FALSE(text.replace("b", "x"));
}

TEST(String, ReplacesAPieceOfItselfByAnother) {
  String text("one two one");
  EXPECT_TRUE(text.replace(String("one").c_str(), text.c_str() + 4));
  EXPECT_EQ(view(text), "two one two two one");
  text = "ab";
  EXPECT_TRUE(text.replace(text.c_str() + 1, text.c_str()));
  EXPECT_EQ(view(text), "aab");
}

TEST(String, FormatsItselfIntoItself) {
  String text("abc");
  text.printf("%s-%s", text, text.c_str() + 1);
  EXPECT_EQ(view(text), "abc-bc");
  text.appendf("<%#s>", text);
  EXPECT_EQ(view(text), "abc-bc<abc-bc>");
}

TEST(String, FormatCallsReturnTheBytesWritten) {
  String text("abc");
  EXPECT_EQ(text.appendf("%d%s", 12, "xy"), 4U);
  EXPECT_EQ(text.printf("%c%c", 0, 'a'), 2U);
  EXPECT_EQ(view(text), std::string_view("\0a", 2));
  EXPECT_EQ(text.printf("%s", ""), 0U);
  EXPECT_EQ(view(text), "");
}

TEST(String, FormatsTextsOfAnySize) {
  for (const size_t size : {2000U, 2046U, 2047U, 2048U, 2049U, 100000U}) {
    SCOPED_TRACE(size);
    const std::string long_text(size, 'x');
    EXPECT_EQ(view(String::formatted("<%s>", long_text)), "<" + long_text + ">");
  }
}

TEST(String, SwapsBlocks) {
  String a("a");
  String b("b");
  a.swap(b);
  EXPECT_EQ(view(a), "b");
  EXPECT_EQ(view(b), "a");
}

TEST(String, GrowsLinearlyWithManyAppends) {
  String text;
  for (int i = 0; i < 100000; ++i)
    text.append('x');
  EXPECT_EQ(text.length(), 100000U);
  EXPECT_EQ(std::strlen(text.c_str()), 100000U);
}

TEST(String, CopiesMayLiveOnDifferentThreads) {
  const String original("shared text");
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([copy = original] {
      for (int round = 0; round < 1000; ++round) {
        String mine(copy);
        const String second(mine);
        mine.append("x");
        EXPECT_EQ(view(second), "shared text");
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(view(original), "shared text");
}

}  // namespace
}  // namespace ORLO
