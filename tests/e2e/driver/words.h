// A command line of the driver: words parted by blanks, each bare or a JSON string.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace driver {

/// What goes back to the asker as the reason of a refusal.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Words {
 public:
  /// Throws Refusal on an unfinished string or an escape that isn't known. \u takes a byte: its
  /// first two digits have to be 00.
  explicit Words(std::string_view line);

  size_t count() const { return words_.size(); }
  /// The accessors throw Refusal where the word is missing or no number.
  const std::string& text(size_t index) const;
  /// Decimal, or hexadecimal behind 0x; negative with a minus.
  int64_t number(size_t index) const;
  int64_t number_or(size_t index, int64_t missing) const;

 private:
  std::vector<std::string> words_;
};

}  // namespace driver
