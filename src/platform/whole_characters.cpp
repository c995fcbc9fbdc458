#include "platform/whole_characters.h"

#include "orlo/format.h"

size_t code_page_length(unsigned char byte) noexcept {
  return ORLO::is_lead_byte(byte) ? 2 : 1;
}

size_t utf8_length(unsigned char byte) noexcept {
  if (byte >= 0xF8) return 1;
  if (byte >= 0xF0) return 4;
  if (byte >= 0xE0) return 3;
  return byte >= 0xC0 ? 2 : 1;
}

// From the beginning: whether a byte is the second half of a character can't be seen from itself.
size_t whole_characters(const char* text, size_t length,
                        CharacterLength character_length) noexcept {
  size_t whole = 0;
  while (whole < length) {
    const size_t next = whole + character_length(static_cast<unsigned char>(text[whole]));
    if (next > length) break;
    whole = next;
  }
  return whole;
}
