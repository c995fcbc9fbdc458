// Takes a format text apart. Both passes of the format engine read through it.
#pragma once

#include <cstddef>
#include <string>

#include "orlo/format.h"

namespace ORLO {

/// The arguments of one call, taken in order; beyond the last there are arguments of no kind.
class FormatArgs {
 public:
  FormatArgs(const FormatArg* args, size_t count) noexcept : next_(args), left_(count) {}
  FormatArg take() noexcept;

 private:
  const FormatArg* next_;
  size_t left_;
};

/// What stands between a % and the end of its conversion.
struct Conversion {
  char type = '\0';
  bool left = false;
  bool sign = false;
  bool blank = false;
  bool zero = false;
  bool alternate = false;
  bool is_short = false;
  bool is_long = false;
  bool is_wide = false;
  bool is_64bit = false;
  int width = 0;
  /// -1 if none is given.
  int precision = -1;
};

class FormatReader {
 public:
  enum class Token {
    end,
    literal,     // character() stands for itself
    stray,       // character(), '\0' at the end, doesn't fit the conversion that it cuts short
    conversion,  // conversion() is complete
  };
  /// The measuring pass has always read past F, L and N, which the rendering pass doesn't know.
  enum class Dialect { measure, render };

  FormatReader(const char* format, FormatArgs& args, Dialect dialect) noexcept
      : at_(format), args_(args), dialect_(dialect) {}

  Token next() noexcept;
  char character() const noexcept { return character_; }
  const Conversion& conversion() const noexcept { return conversion_; }
  /// Passes over the second byte of a two-byte character.
  void skip_byte() noexcept;
  /// The picture behind a %#D or %#T, with its closing # consumed.
  std::string take_picture();

 private:
  void add_flag() noexcept;
  void add_to(int& number) noexcept;
  void add_width() noexcept;
  void add_precision() noexcept;
  void add_size() noexcept;

  const char* at_;
  FormatArgs& args_;
  const Dialect dialect_;
  char character_ = '\0';
  Conversion conversion_;
};

}  // namespace ORLO
