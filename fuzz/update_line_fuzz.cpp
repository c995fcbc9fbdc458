// Any bytes as a line of the update service's log, and as the title in such a line.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "inventory/update_log.h"
#include "orlo/fixed_clock.h"

namespace {

constexpr char kShort[] = "2011-01-08\t22:54:25:015\tInstallation Successful: ";
constexpr char kLong[] =
    "2011-01-08\t22:54:25:015\tInstallation Successful: Windows successfully installed the "
    "following update: ";
constexpr size_t kMostConverted = 1023;

void demand(bool holds) {
  if (!holds) std::abort();
}

std::string_view view(const String& text) {
  return {text.c_str(), text.length()};
}

bool is_number(std::string_view name) {
  return name.starts_with("KB") && name.find_first_not_of("0123456789", 2) == name.npos;
}

bool is_ascii(std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

/// `line` is an exact copy on the heap, so that a read beyond the end is seen.
void check(const std::string& line, bool counts) {
  static const ORLO::FixedClock clock({2026, 11, 5, 20, 12});
  const auto update = parse_update_line(line, clock);
  const std::string_view told = std::string_view(line).substr(0, line.find('\0'));
  demand(update.has_value() == (told.find("Installation Successful:") != told.npos));
  demand(update.has_value() || !counts);
  if (!update) return;
  const std::string_view title = view(update->title);
  const std::string_view name = view(update->name);
  const std::string_view version = view(update->version);
  // A title is the end of its line, or has gone through the conversion.
  demand(told.ends_with(title) || (!is_ascii(told) && title.size() <= kMostConverted));
  demand(name == title || is_number(name));
  demand((title.find("KB") == title.npos) == !is_number(name) || name == title);
  demand(title.find(name) != title.npos);
  demand(title.find(version) != title.npos);
  demand(version.empty() || (is_number(name) && name.size() > 2));
  demand(version.find(')') == version.npos);
  demand(update->installed.empty() || update->installed.time.wMonth != 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  check(bytes, false);
  check(kShort + bytes, true);
  check(kLong + bytes, true);
  return 0;
}
