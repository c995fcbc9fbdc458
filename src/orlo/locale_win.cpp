#include <windows.h>

#include <bit>

#include "orlo/locale.h"

namespace ORLO {
namespace {

constexpr int kRoom = 512;

static_assert(sizeof(char16_t) == sizeof(wchar_t));

const wchar_t* native(const char16_t* text) noexcept {
  return reinterpret_cast<const wchar_t*>(text);
}

std::optional<std::string> text_or_nothing(const char* text, int length_with_terminator) {
  if (length_with_terminator <= 0) return std::nullopt;
  return std::string(text, static_cast<size_t>(length_with_terminator) - 1);
}

class SystemLocale final : public Locale {
 public:
  std::optional<std::string> date_text(const SystemTime& time, const char* picture) const override {
    const auto native_time = std::bit_cast<SYSTEMTIME>(time);
    char text[kRoom];
    return text_or_nothing(
        text, GetDateFormatA(LOCALE_USER_DEFAULT, 0, &native_time, picture, text, kRoom));
  }

  std::optional<std::string> time_text(const SystemTime& time, const char* picture) const override {
    const auto native_time = std::bit_cast<SYSTEMTIME>(time);
    char text[kRoom];
    return text_or_nothing(
        text, GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &native_time, picture, text, kRoom));
  }

  int collate(const char* a, const char* b, bool ignore_case) const override {
    const DWORD flags = SORT_STRINGSORT | (ignore_case ? NORM_IGNORECASE : 0);
    const int order = CompareStringA(LOCALE_USER_DEFAULT, flags, a, -1, b, -1);
    return order == 0 ? 0 : order - CSTR_EQUAL;
  }

  std::string narrow(const char16_t* wide, size_t length) const override {
    const int units = static_cast<int>(length);
    if (units == 0) return {};
    const int needed =
        WideCharToMultiByte(CP_ACP, 0, native(wide), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(needed), '\0');
    WideCharToMultiByte(CP_ACP, 0, native(wide), units, text.data(), needed, nullptr, nullptr);
    return text;
  }

  std::u16string widen(const char* text, size_t length) const override {
    const int bytes = static_cast<int>(length);
    if (bytes == 0) return {};
    const int needed = MultiByteToWideChar(CP_ACP, 0, text, bytes, nullptr, 0);
    std::u16string wide(static_cast<size_t>(needed), u'\0');
    MultiByteToWideChar(CP_ACP, 0, text, bytes, reinterpret_cast<wchar_t*>(wide.data()), needed);
    return wide;
  }
};

}  // namespace

const Locale& system_locale() {
  static const SystemLocale locale;
  return locale;
}

}  // namespace ORLO
