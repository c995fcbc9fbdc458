// The text of the line benches: lines such as a log has, of 20 to 200 characters.
#pragma once

#include <cstddef>
#include <string>

inline constexpr size_t kLineBenchBytes = 50'000'000;

/// Whole lines of at least `size` bytes together; `lines` becomes their count.
inline std::string text_of_lines(size_t size, size_t& lines) {
  const std::string words(
      "1084\te1c\tAgent\tInstallation Successful: Windows successfully installed the following "
      "update: Update for some product, and what else a log has to tell about it in many words.");
  std::string text;
  text.reserve(size + words.size());
  for (lines = 0; text.size() < size; ++lines) {
    text += std::to_string(lines);
    text += '\t';
    text.append(words, 0, 20 + lines * 7919 % 140);
    text += '\n';
  }
  return text;
}
