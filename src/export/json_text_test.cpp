#include "export/json_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "platform/utf16.h"

namespace {

/// Turns each byte above ASCII, with the one after it, into one character, as some code pages do.
class PairsLocale : public ORLO::Locale {
 public:
  std::optional<std::string> date_text(const ORLO::SystemTime&, const char*) const override {
    return std::nullopt;
  }
  std::optional<std::string> time_text(const ORLO::SystemTime&, const char*) const override {
    return std::nullopt;
  }
  int collate(const char*, const char*, bool) const override { return 0; }
  std::string narrow(const char16_t*, size_t) const override { return {}; }
  std::u16string widen(const char* text, size_t length) const override {
    std::u16string wide;
    for (size_t i = 0; i < length; ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      if (byte == 0xFF) {
        wide += u'\xD800';  // half a character
      } else if (byte >= 0x80 && i + 1 < length) {
        wide += static_cast<char16_t>(byte << 8 | static_cast<unsigned char>(text[++i]));
      } else {
        wide += static_cast<char16_t>(byte);
      }
    }
    return wide;
  }
};

std::string put(std::string_view text, const ORLO::Locale& locale = ORLO::system_locale()) {
  std::string room(kLongestJsonUnit * text.size() + 8, '#');
  char* const end = put_json_text(room.data(), text, locale);
  room.resize(static_cast<size_t>(end - room.data()));
  return room;
}

TEST(JsonText, PlainAsciiStaysAsItIs) {
  const std::string plain =
      "abcdefghijklmnopqrstuvwxyz ABC !#$%&'()*+,-./0123456789:;<=>?@[]^_`{|}~\x7F";
  for (size_t length = 0; length <= plain.size(); ++length)
    EXPECT_EQ(put(plain.substr(0, length)), plain.substr(0, length));
}

TEST(JsonText, QuotesBackslashesAndControlCharactersAreEscaped) {
  EXPECT_EQ(put("a\"b\\c"), "a\\\"b\\\\c");
  EXPECT_EQ(put("\b\f\n\r\t"), "\\b\\f\\n\\r\\t");
  EXPECT_EQ(put(std::string("\0\x01\x1F\x0B", 4)), "\\u0000\\u0001\\u001f\\u000b");
  EXPECT_EQ(put("C:\\Program Files\\A \"B\"\\x.exe"),
            "C:\\\\Program Files\\\\A \\\"B\\\"\\\\x.exe");
}

TEST(JsonText, WhereverASpecialCharacterStandsItIsFound) {
  for (const char special : {'"', '\\', '\n', '\x1F', '\0'}) {
    for (size_t place = 0; place < 20; ++place) {
      std::string text(20, 'x');
      text[place] = special;
      const std::string escaped = put(std::string(1, special));
      EXPECT_EQ(put(text), std::string(place, 'x') + escaped + std::string(19 - place, 'x'));
    }
  }
}

TEST(JsonText, OtherCharactersBecomeUtf8) {
  EXPECT_EQ(put("\xC4pfel 5 \x80"), "\xC3\x84pfel 5 \xE2\x82\xAC");
  EXPECT_EQ(put("1234567\xE4\"\\"), "1234567\xC3\xA4\\\"\\\\");
}

TEST(JsonText, TheSecondByteOfACharacterIsNoBackslash) {
  EXPECT_EQ(put("a\x81\\b\\", PairsLocale()),
            "a\xE8\x85\x9C"
            "b\\\\");
}

TEST(JsonText, HalfACharacterBecomesAReplacement) {
  EXPECT_EQ(put("a\xFFz", PairsLocale()), "a\xEF\xBF\xBDz");
}

TEST(JsonText, Utf8IsEscapedAndOtherwiseKept) {
  const std::string text = "host \"\xC3\xA4\"\n";
  std::string room(kLongestJsonUnit * text.size() + 8, '#');
  EXPECT_EQ(std::string(room.data(), put_json_utf8(room.data(), text)), "host \\\"\xC3\xA4\\\"\\n");
}

/// One character at a time, without any haste.
std::string put_slowly(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const std::u16string wide = ORLO::system_locale().widen(&c, 1);
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      const std::string shorts = "\b\f\n\r\t";
      const size_t found = shorts.find(c);
      char number[8];
      std::snprintf(number, sizeof number, "\\u%04x", static_cast<unsigned>(c));
      result += found == std::string::npos ? number : std::string("\\") + "bfnrt"[found];
    } else {
      result += utf8_from_utf16(wide);
    }
  }
  return result;
}

TEST(JsonText, IsWhatASlowWriterWritesForRandomTexts) {
  std::mt19937 random(20261);
  for (int round = 0; round < 20'000; ++round) {
    const int kind = std::uniform_int_distribution<>(0, 2)(random);
    std::uniform_int_distribution<> byte(kind == 0 ? 0 : 0x18, kind == 2 ? 0x7F : 0xFF);
    std::string text(std::uniform_int_distribution<size_t>(0, 40)(random), '\0');
    for (char& c : text)
      c = static_cast<char>(byte(random));
    ASSERT_EQ(put(text), put_slowly(text));
  }
}

}  // namespace
