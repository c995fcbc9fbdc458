#include "platform/reg_text.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/file_bytes_test_support.h"
#include "platform/registry.h"
#include "platform/utf16.h"

namespace {

using Kind = RegStatement::Kind;

constexpr char kHeader5[] = "Windows Registry Editor Version 5.00\r\n";

/// The statements of a text in version 5, which has to be understood.
std::vector<RegStatement> statements(const std::string& lines) {
  const RegText text = parse_reg_text(kHeader5 + lines);
  EXPECT_EQ(text.error, "");
  return text.statements;
}

/// The one value below a key.
RegStatement value(const std::string& line, const std::string& header = kHeader5) {
  const RegText text = parse_reg_text(header + "[HKEY_CURRENT_USER]\r\n" + line);
  EXPECT_EQ(text.error, "");
  EXPECT_EQ(text.statements.size(), 2u);
  return text.statements.size() == 2 ? text.statements[1] : RegStatement();
}

std::string error(const std::string& lines) {
  return parse_reg_text(kHeader5 + lines).error;
}

std::string text_bytes(std::u16string_view text) {
  return bytes_from_utf16(std::u16string(text) + u'\0');
}

}  // namespace

TEST(RegText, ReadsKeysAndValuesInTheirOrder) {
  const std::vector<RegStatement> expected = {
      {Kind::key, u"HKEY_LOCAL_MACHINE\\SOFTWARE\\One", 0, "", 3},
      {Kind::value, u"Name", kRegSz, text_bytes(u"Text"), 4},
      {Kind::value, u"", kRegSz, text_bytes(u"Default"), 5},
      {Kind::key, u"HKEY_CURRENT_USER\\Two", 0, "", 7},
      {Kind::value, u"Number", kRegDword, std::string("\x59\xF5\x95\x04", 4), 8},
      {Kind::remove_value, u"Gone", 0, "", 9},
      {Kind::remove_key, u"HKEY_CURRENT_USER\\Three", 0, "", 10},
  };
  EXPECT_EQ(statements("\r\n"
                       "[HKEY_LOCAL_MACHINE\\SOFTWARE\\One]\r\n"
                       "\"Name\"=\"Text\"\r\n"
                       "@=\"Default\"\r\n"
                       "\r\n"
                       "[HKEY_CURRENT_USER\\Two]\r\n"
                       "\"Number\"=dword:0495f559\r\n"
                       "\"Gone\"=-\r\n"
                       "[-HKEY_CURRENT_USER\\Three]\r\n"),
            expected);
}

TEST(RegText, TakesEveryKindOfLineEndAndNoneAtTheLast) {
  for (const char* end : {"\r\n", "\n", "\r"}) {
    std::string text;
    for (const char* line :
         {"Windows Registry Editor Version 5.00", "", "[HKEY_CURRENT_USER\\A]"}) {
      text.append(line).append(end);
    }
    const RegText read = parse_reg_text(text + "\"x\"=dword:1");
    EXPECT_EQ(read.error, "");
    ASSERT_EQ(read.statements.size(), 2u);
    EXPECT_EQ(read.statements[1].line, 4u);
  }
}

TEST(RegText, TakesEachEncodingOfVersion5) {
  const std::u16string text =
      u"Windows Registry Editor Version 5.00\r\n[HKEY_CURRENT_USER\\QQ\u6E38]\r\n"
      u"\"\u041F\"=\"\u20AC\U0001F600\"\r\n";
  const std::string utf8 = utf8_from_utf16(text);
  for (const std::string& bytes :
       {"\xFF\xFE" + bytes_from_utf16(text), "\xEF\xBB\xBF" + utf8, utf8}) {
    const RegText read = parse_reg_text(bytes);
    EXPECT_EQ(read.error, "");
    ASSERT_EQ(read.statements.size(), 2u);
    EXPECT_EQ(read.statements[0].name, u"HKEY_CURRENT_USER\\QQ\u6E38");
    EXPECT_EQ(read.statements[1].name, u"\u041F");
    EXPECT_EQ(read.statements[1].data, text_bytes(u"\u20AC\U0001F600"));
  }
}

TEST(RegText, DropsHalfACharacterAtTheEndOfUtf16) {
  const std::string bytes =
      "\xFF\xFE" +
      bytes_from_utf16(u"Windows Registry Editor Version 5.00\r\n[HKEY_CURRENT_USER\\A]") + "x";
  const RegText read = parse_reg_text(bytes);
  EXPECT_EQ(read.error, "");
  EXPECT_EQ(read.statements.size(), 1u);
}

TEST(RegText, ReadsTheOldFormInTheCodePage) {
  const char* header = "REGEDIT4\r\n";
  EXPECT_EQ(value("\"\xC4\"=\"\x80\"", header).name, u"\u00C4");
  EXPECT_EQ(value("\"\xC4\"=\"\x80\"", header).data, text_bytes(u"\u20AC"));
  EXPECT_EQ(value("\"x\"=hex(2):25,54,25,e4,00", header).data, text_bytes(u"%T%\u00E4"));
  EXPECT_EQ(value("\"x\"=hex(7):61,00,62,00,00", header).data,
            text_bytes(std::u16string_view(u"a\0b\0", 4)));
  EXPECT_EQ(value("\"x\"=hex(1):61", header).data, std::string("a\0", 2));
  EXPECT_EQ(value("\"x\"=hex:61,e4", header).data, "a\xE4");
}

TEST(RegText, RefusesOtherHeaders) {
  for (const std::string header : {"", "\r\nREGEDIT4\r\n", "REGEDIT5\r\n", "REGEDIT4x\r\n",
                                   "Windows Registry Editor Version 6.00\r\n", "\xFE\xFF\0W"}) {
    SCOPED_TRACE(header);
    const RegText read = parse_reg_text(header + "[HKEY_CURRENT_USER\\A]\r\n");
    EXPECT_EQ(read.error, "line 1: no header of a registry text");
    EXPECT_TRUE(read.statements.empty());
  }
}

TEST(RegText, TakesTheCharacterBehindABackslashInAText) {
  const RegStatement read = value(R"("a\"b\\c"="\"C:\\Program Files\\x.exe\" /u\q")");
  EXPECT_EQ(read.name, u"a\"b\\c");
  EXPECT_EQ(read.data, text_bytes(u"\"C:\\Program Files\\x.exe\" /uq"));
}

TEST(RegText, KeepsLineEndsInsideAText) {
  const auto read =
      statements("[HKEY_CURRENT_USER\\A]\r\n\"x\"=\"one\r\ntwo\nthree\"\r\n\"y\"=dword:1\r\n");
  ASSERT_EQ(read.size(), 3u);
  EXPECT_EQ(read[1].data, text_bytes(u"one\r\ntwo\nthree"));
  EXPECT_EQ(read[2].line, 6u);
}

TEST(RegText, ReadsBytesOverSeveralLines) {
  const RegStatement read = value(
      "\"x\"=hex(2):68,00,\\\r\n"
      "  74,00,\\ ; a comment\r\n"
      "\t70,00,00,00\r\n");
  EXPECT_EQ(read.type, kRegExpandSz);
  EXPECT_EQ(read.data, text_bytes(u"htp"));
}

TEST(RegText, ReadsEachFormOfBytes) {
  const struct {
    const char* data;
    uint32_t type;
    std::string bytes;
  } rows[] = {
      {"hex:", kRegBinary, ""},
      {"hex:0", kRegBinary, std::string(1, '\0')},
      {"hex:00,FF,7f", kRegBinary, std::string("\0\xFF\x7F", 3)},
      {"hex: 01 , 02 ", kRegBinary, "\1\2"},
      {"hex:01,", kRegBinary, "\1"},
      {"hex:01,\\", kRegBinary, "\1"},
      {"hex(0):01", 0, "\1"},
      {"hex(1):", kRegSz, ""},
      {"hex(1):61", kRegSz, "a"},
      {"hex(4):01,00,00,00,00,00,00,00", kRegDword, std::string("\1\0\0\0\0\0\0\0", 8)},
      {"hex(b):01,00,00,00,00,00,00,00", kRegQword, std::string("\1\0\0\0\0\0\0\0", 8)},
      {"hex(ffff0012):aa", 0xFFFF0012, "\xAA"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.data);
    const RegStatement read = value(std::string("\"x\"=") + row.data);
    EXPECT_EQ(read.type, row.type);
    EXPECT_EQ(read.data, row.bytes);
  }
}

TEST(RegText, ReadsNumbersOfOneToEightDigits) {
  EXPECT_EQ(value("\"x\"=dword:1").data, std::string("\1\0\0\0", 4));
  EXPECT_EQ(value("\"x\"=dword:DEADbeef").data, "\xEF\xBE\xAD\xDE");
  EXPECT_EQ(value("\"x\"=dword:00000000 ; none").data, std::string(4, '\0'));
}

TEST(RegText, OverlooksCommentsAndBlanks) {
  EXPECT_EQ(statements("; one\r\n  ;two\r\n\t\r\n  [HKEY_CURRENT_USER\\A]  ; three\r\n"
                       "  \"x\" = dword:1;four\r\n@ = \"y\" ; five\r\n")
                .size(),
            3u);
}

TEST(RegText, EndsAKeyAtTheLastBracketOfItsLine) {
  const auto read = statements("[HKEY_CURRENT_USER\\a[1] b]\r\n[HKEY_CURRENT_USER\\]]\r\n");
  ASSERT_EQ(read.size(), 2u);
  EXPECT_EQ(read[0].name, u"HKEY_CURRENT_USER\\a[1] b");
  EXPECT_EQ(read[1].name, u"HKEY_CURRENT_USER\\]");
}

TEST(RegText, SaysWhereAndWhyItStops) {
  const struct {
    const char* lines;
    const char* error;
  } rows[] = {
      {"\r\nnonsense\r\n", "line 3: neither a key, a value nor a comment"},
      {"[HKEY_CURRENT_USER", "line 2: a key without its closing bracket"},
      {"[HKEY_CURRENT_USER\r\n]", "line 2: a key without its closing bracket"},
      {"[]", "line 2: a key without a name"},
      {"[-]", "line 2: a key without a name"},
      {"[HKEY_CURRENT_USER\\]", "line 2: a key without a name"},
      {"[HKEY_CURRENT_USER\\\\A]", "line 2: a key without a name"},
      {"[HKEY_CURRENT_USER] x", "line 2: text behind a key"},
      {"\"x\"=\"y\"", "line 2: a value before any key"},
      {"[A]\n\"x", "line 3: the name of a value without its closing quote"},
      {"[A]\n\"x\\", "line 3: the name of a value without its closing quote"},
      {"[A]\n\"x\"", "line 3: a value without its equals sign"},
      {"[A]\n\"x\"=", "line 3: data of an unknown form"},
      {"[A]\n\"x\"=y", "line 3: data of an unknown form"},
      {"[A]\n\"x\"=\"y", "line 3: a text without its closing quote"},
      {"[A]\n\"x\"=\"y\\", "line 3: a text without its closing quote"},
      {"[A]\n\"x\"=\"y\" z", "line 3: text behind a value"},
      {"[A]\n\"x\"=dword:", "line 3: a number that is none or too long"},
      {"[A]\n\"x\"=dword:123456789", "line 3: a number that is none or too long"},
      {"[A]\n\"x\"=dword:12g", "line 3: text behind a value"},
      {"[A]\n\"x\"=hex(:00", "line 3: a type that is none"},
      {"[A]\n\"x\"=hex(2:00", "line 3: a type that is none"},
      {"[A]\n\"x\"=hex(123456789):00", "line 3: a type that is none"},
      {"[A]\n\"x\"=hex(2)00", "line 3: bytes without their colon"},
      {"[A]\n\"x\"=hex00", "line 3: bytes without their colon"},
      {"[A]\n\"x\"=hex:100", "line 3: a byte that is none"},
      {"[A]\n\"x\"=hex:,", "line 3: a byte that is none"},
      {"[A]\n\"x\"=hex:00,\\ x\n", "line 3: text behind a backslash"},
      {"[A]\n\"x\"=hex:00,\\\nxx", "line 4: a byte that is none"},
      {"[A]\n\"x\"=hex:00 01", "line 3: text behind a value"},
      {"[A]\n\"x\"=- y", "line 3: text behind a value"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.lines);
    EXPECT_EQ(error(row.lines), row.error);
  }
}

TEST(RegText, KeepsWhatStoodBeforeAnError) {
  const RegText read = parse_reg_text(
      std::string(kHeader5) + "[HKEY_CURRENT_USER\\A]\n\"x\"=\"1\"\n\"y\"=oops\n\"z\"=\"3\"");
  EXPECT_EQ(read.error, "line 4: data of an unknown form");
  ASSERT_EQ(read.statements.size(), 2u);
  EXPECT_EQ(read.statements[1].name, u"x");
}

TEST(RegText, RefusesNamesBeyondTheLimitsOfARegistry) {
  const std::string longest(kMaxKeyName, 'k');
  EXPECT_EQ(error("[A\\" + longest + "]"), "");
  EXPECT_EQ(error("[A\\" + longest + "k]"), "line 2: the name of a key is too long");
  std::string deepest = "A";
  for (size_t depth = 1; depth < kMaxKeyDepth; ++depth)
    deepest += "\\a";
  EXPECT_EQ(error("[" + deepest + "]"), "");
  EXPECT_EQ(error("[" + deepest + "\\a]"), "line 2: keys are nested too deeply");
  const std::string name(kMaxValueName, 'v');
  EXPECT_EQ(error("[A]\n\"" + name + "\"=-"), "");
  EXPECT_EQ(error("[A]\n\"" + name + "v\"=-"), "line 3: the name of a value is too long");
}

TEST(RegText, RefusesNulInNamesButKeepsItInTexts) {
  EXPECT_EQ(error(std::string("[A\\\0]", 5)), "line 2: a NUL in the name of a key");
  EXPECT_EQ(error(std::string("[A]\n\"\0\"=-", 9)), "line 3: a NUL in the name of a value");
  EXPECT_EQ(value(std::string("@=\"a\0b\"", 7)).data, text_bytes(std::u16string_view(u"a\0b", 3)));
}

TEST(RegText, TakesEveryFileOfTheFuzzingCorpus) {
  size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(test_data("fuzz/corpus/reg_text"))) {
    SCOPED_TRACE(entry.path().string());
    const std::string bytes = file_bytes(entry.path());
    const RegText read = parse_reg_text(bytes);
    EXPECT_LE(read.statements.size(), bytes.size());
    ++files;
  }
  EXPECT_GT(files, 0u);
}
