// A scanner for the patterns of the date reader, with the rules of the target's sscanf on every
// platform.
#pragma once

#include <cstddef>
#include <initializer_list>

namespace ORLO {

/// Where one conversion of a pattern goes: a number for %d, a text for %s. A text takes at most
/// room - 1 characters, whatever width the pattern names.
struct ScanField {
  // NOLINTNEXTLINE(google-explicit-constructor): a list of targets reads like sscanf's.
  ScanField(int& target) noexcept : number(&target) {}
  template <size_t N>
  // NOLINTNEXTLINE(google-explicit-constructor)
  ScanField(char (&target)[N]) noexcept : text(target), room(N) {}

  int* number = nullptr;
  char* text = nullptr;
  size_t room = 0;
};

/// Knows blanks, literals, %d and %s, both with or without width. Numbers wrap modulo 2^32. Returns
/// the count of fields filled, or -1 if the text ends before the first; fields that aren't filled
/// keep their value.
int scan(const char* text, const char* pattern, std::initializer_list<ScanField> fields) noexcept;

}  // namespace ORLO
