#include "platform/whole_characters.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// Lead bytes of code page 932.
size_t length_932(unsigned char byte) noexcept {
  return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC) ? 2 : 1;
}

size_t whole(const std::string& text, CharacterLength length) {
  return whole_characters(text.data(), text.size(), length);
}

}  // namespace

TEST(WholeCharacters, AreAllOfAPlainText) {
  EXPECT_EQ(whole("abc", code_page_length), 3u);
  EXPECT_EQ(whole("\xE4\xF6\xFC", code_page_length), 3u);
  EXPECT_EQ(whole("abc", length_932), 3u);
  EXPECT_EQ(whole("abc", utf8_length), 3u);
}

TEST(WholeCharacters, AreNoneOfNothing) {
  EXPECT_EQ(whole("", length_932), 0u);
  EXPECT_EQ(whole_characters(nullptr, 0), 0u);
}

TEST(WholeCharacters, LeaveOutALeadByteAtTheEnd) {
  EXPECT_EQ(whole("ab\x83", length_932), 2u);
  EXPECT_EQ(whole("\x83", length_932), 0u);
}

TEST(WholeCharacters, KeepADoubleByteCharacterThatFits) {
  EXPECT_EQ(whole("ab\x83\x41", length_932), 4u);
}

TEST(WholeCharacters, TellALeadByteFromASecondByteOfItsValue) {
  EXPECT_EQ(whole("\x83\x83", length_932), 2u);
  EXPECT_EQ(whole("\x83\x83\x83", length_932), 2u);
  EXPECT_EQ(whole("a\x83\x83\x83\x83", length_932), 5u);
}

TEST(WholeCharacters, LeaveOutEveryPartOfACharacterOfUtf8) {
  const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  const size_t expected[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10};
  for (size_t length = 0; length <= text.size(); ++length)
    EXPECT_EQ(whole(text.substr(0, length), utf8_length), expected[length]) << length;
}

TEST(WholeCharacters, TakeBytesThatBeginNoCharacterOneByOne) {
  EXPECT_EQ(whole("\x80\xBF\xF8\xFF", utf8_length), 4u);
}

TEST(WholeCharacters, NeverLookAfterTheLength) {
  EXPECT_EQ(whole_characters("\x83\x41", 1, length_932), 0u);
}
