#include "trellis/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "orlo/locale.h"
#include "trellis/xml_chars.h"

namespace Trellis {
namespace {

struct Entity {
  char character;
  std::string_view name;  ///< without the "&"
};

constexpr Entity kEntities[] = {
    {'&', "amp;"}, {'<', "lt;"}, {'>', "gt;"}, {'"', "quot;"}, {'\'', "apos;"}};

constexpr std::string_view kCdataBegin = "<![CDATA[";
constexpr std::string_view kCdataEnd = "]]>";

uint8_t byte(char c) noexcept {
  return static_cast<uint8_t>(c);
}

bool is_number_escaped(char c) noexcept {
  return byte(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

const Entity* entity_of(char c) noexcept {
  for (const Entity& entity : kEntities) {
    if (entity.character == c) return &entity;
  }
  return nullptr;
}

TL_String escaped(char c) {
  if (const Entity* const entity = entity_of(c)) return TL_String("&") += entity->name;
  if (is_number_escaped(c)) return "&#" + std::to_string(byte(c)) + ';';
  return TL_String(1, c);
}

/// Walks 8-bit text and drops its XML dress.
class Decoder {
 public:
  explicit Decoder(std::string_view text) : text_(text) { result_.reserve(text.size()); }

  TL_String decode() {
    while (at_ < text_.size()) {
      const size_t plain_end = std::min(text_.find_first_of("&<", at_), text_.size());
      result_.append(text_, at_, plain_end - at_);
      at_ = plain_end;
      if (at_ < text_.size() && !entity() && !cdata()) result_ += text_[at_++];
    }
    return std::move(result_);
  }

 private:
  bool entity() {
    if (text_[at_] != '&') return false;
    const std::string_view rest = text_.substr(at_ + 1);
    for (const Entity& entity : kEntities) {
      if (!starts_with_nocase(rest, entity.name)) continue;
      result_ += entity.character;
      at_ += 1 + entity.name.size();
      return true;
    }
    return false;
  }

  bool cdata() {
    // One search that finds no end stands for all behind it.
    if (no_more_ends_ || !starts_with_nocase(text_.substr(at_), "<![cdata[")) return false;
    const size_t begin = at_ + kCdataBegin.size();
    const size_t end = text_.find(kCdataEnd, begin);
    no_more_ends_ = end == std::string_view::npos;
    if (no_more_ends_) return false;
    result_.append(text_, begin, end - begin);
    at_ = end + kCdataEnd.size();
    return true;
  }

  const std::string_view text_;
  size_t at_ = 0;
  bool no_more_ends_ = false;
  TL_String result_;
};

void append_code_point(std::string& out, uint32_t code) {
  const auto unit = [&out](uint32_t bits) { out += static_cast<char>(bits); };
  if (code < 0x80) {
    unit(code);
  } else if (code < 0x800) {
    unit(0xC0 | code >> 6);
    unit(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    unit(0xE0 | code >> 12);
    unit(0x80 | (code >> 6 & 0x3F));
    unit(0x80 | (code & 0x3F));
  } else {
    unit(0xF0 | code >> 18);
    unit(0x80 | (code >> 12 & 0x3F));
    unit(0x80 | (code >> 6 & 0x3F));
    unit(0x80 | (code & 0x3F));
  }
}

constexpr uint32_t kReplacement = 0xFFFD;

bool is_high_surrogate(uint32_t unit) noexcept {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool is_low_surrogate(uint32_t unit) noexcept {
  return unit >= 0xDC00 && unit < 0xE000;
}

TL_String encode_utf8(const std::u16string& wide) {
  TL_String text;
  text.reserve(wide.size() * 2);
  for (size_t i = 0; i < wide.size(); ++i) {
    uint32_t code = wide[i];
    if (is_high_surrogate(code) && i + 1 < wide.size() && is_low_surrogate(wide[i + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (wide[++i] - 0xDC00U);
    } else if (is_high_surrogate(code) || is_low_surrogate(code)) {
      code = kReplacement;
    }
    append_code_point(text, code);
  }
  return text;
}

/// What a lead byte asks of the bytes behind it.
struct Lead {
  uint8_t first, last;                ///< the lead bytes that this is about
  uint8_t second_first, second_last;  ///< what the second byte may be; later ones are 0x80 to 0xBF
  uint8_t length;
};

constexpr Lead kLeads[] = {{0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
                           {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3},
                           {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
                           {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};

/// Takes one character off the front. What isn't valid becomes one replacement for a lead byte with
/// those behind it that continue it, where a second byte that the lead can't have is the last one.
uint32_t take_code_point(std::string_view& text) {
  const uint8_t first = byte(text[0]);
  const auto* const lead = std::find_if(std::begin(kLeads), std::end(kLeads), [first](auto& each) {
    return first >= each.first && first <= each.last;
  });
  uint32_t code = first < 0x80 ? first : kReplacement;
  size_t taken = 1;
  if (lead != std::end(kLeads)) {
    uint32_t bits = first & (0x7FU >> lead->length);
    bool sound = true;
    while (sound && taken < std::min<size_t>(lead->length, text.size())) {
      const uint8_t next = byte(text[taken]);
      if (next < 0x80 || next > 0xBF) break;
      sound = taken > 1 || (next >= lead->second_first && next <= lead->second_last);
      bits = bits << 6 | (next & 0x3F);
      ++taken;
    }
    if (sound && taken == lead->length) code = bits;
  }
  text.remove_prefix(taken);
  return code;
}

std::u16string decode_utf8(std::string_view text) {
  std::u16string wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const uint32_t code = take_code_point(text);
    if (code >= 0x10000) {
      wide += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      wide += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    } else {
      wide += static_cast<char16_t>(code);
    }
  }
  return wide;
}

/// What each byte becomes in a document, where that doesn't depend on the bytes beside it.
class Forms {
 public:
  Forms() {
    std::string all(256, '\0');
    for (size_t c = 0; c < all.size(); ++c)
      all[c] = static_cast<char>(c);
    const ORLO::Locale& locale = ORLO::system_locale();
    const std::u16string wide = locale.widen(all.data(), all.size());
    single_bytes_ = wide.size() == all.size() && locale.narrow(wide.data(), wide.size()) == all;
    for (size_t c = 0; c < all.size(); ++c) {
      utf8_[c] = single_bytes_ ? encode_utf8(wide.substr(c, 1)) : TL_String(1, all[c]);
      escaped_[c] = c < 0x80 ? escaped(all[c]) : utf8_[c];
      plain_[c] = c < 0x80 && escaped_[c].size() == 1;
    }
  }

  /// Whether each byte of the code page is a character.
  bool single_bytes() const noexcept { return single_bytes_; }
  bool plain(char c) const noexcept { return plain_[byte(c)]; }
  const TL_String& utf8(char c) const noexcept { return utf8_[byte(c)]; }
  const TL_String& escaped_utf8(char c) const noexcept { return escaped_[byte(c)]; }

 private:
  bool single_bytes_ = false;
  bool plain_[256] = {};
  TL_String utf8_[256];
  TL_String escaped_[256];
};

const Forms& forms() {
  static const Forms of_the_code_page;
  return of_the_code_page;
}

}  // namespace

bool is_ascii(std::string_view text) noexcept {
  constexpr uint64_t kHighBits = 0x8080808080808080;
  while (text.size() >= sizeof(uint64_t)) {
    uint64_t eight = 0;
    std::memcpy(&eight, text.data(), sizeof eight);
    if ((eight & kHighBits) != 0) return false;
    text.remove_prefix(sizeof eight);
  }
  return std::none_of(text.begin(), text.end(), [](char c) { return byte(c) >= 0x80; });
}

TL_String to_utf8(const char* text, size_t length) {
  if (is_ascii({text, length})) return TL_String(text, length);
  const Forms& form = forms();
  if (!form.single_bytes()) {
    return encode_utf8(ORLO::system_locale().widen(text, length));
  }
  TL_String result;
  result.reserve(2 * length);
  for (const char c : std::string_view(text, length))
    result += form.utf8(c);
  return result;
}

TL_String from_utf8(std::string_view text) {
  if (is_ascii(text)) return TL_String(text);
  const std::u16string wide = decode_utf8(text);
  return ORLO::system_locale().narrow(wide.data(), wide.size());
}

void append_encoded(std::string& out, std::string_view text) {
  const Forms& form = forms();
  if (!form.single_bytes()) {
    std::string ready;
    for (const char c : text)
      ready += byte(c) < 0x80 ? form.escaped_utf8(c) : TL_String(1, c);
    out += to_utf8(ready.data(), ready.size());
    return;
  }
  for (size_t at = 0; at < text.size();) {
    const size_t begin = at;
    while (at < text.size() && form.plain(text[at]))
      ++at;
    out.append(text, begin, at - begin);
    for (; at < text.size() && !form.plain(text[at]); ++at)
      out += form.escaped_utf8(text[at]);
  }
}

TL_String encode_xml_text(std::string_view text, bool cdata) {
  TL_String result;
  if (cdata) {
    result += kCdataBegin;
    result += to_utf8(text.data(), text.size());
    result += kCdataEnd;
  } else {
    append_encoded(result, text);
  }
  return result;
}

TL_String decode_xml_text(std::string_view text) {
  // Marks are looked for behind the conversion, which turns their wide forms into them.
  TL_String narrow = from_utf8(text);
  if (narrow.find('&') == TL_String::npos && narrow.find('<') == TL_String::npos) return narrow;
  return Decoder(narrow).decode();
}

}  // namespace Trellis
