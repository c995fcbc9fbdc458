// Where a text may be cut without leaving a part of a character.
#pragma once

#include <cstddef>

/// How many bytes the character has that begins with `byte`.
using CharacterLength = size_t (*)(unsigned char byte) noexcept;

/// In the code page that ORLO::is_lead_byte() knows.
size_t code_page_length(unsigned char byte) noexcept;
/// In UTF-8; a byte that begins no character counts as one.
size_t utf8_length(unsigned char byte) noexcept;

/// The length of the whole characters in the first `length` bytes of a text that goes on after
/// them.
size_t whole_characters(const char* text, size_t length,
                        CharacterLength character_length = code_page_length) noexcept;
