#include "view/row_filter.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace {

using Entry = UninstallEntry;

enum class How { equals, begins, contains };

struct TextRule {
  String Entry::*field;
  How how;
  std::string_view text;
};

constexpr TextRule kOsUpdateRules[] = {
    {&Entry::parent, How::equals, "OperatingSystem"},
    {&Entry::source, How::equals, "WMI QFE"},
    {&Entry::source, How::equals, "WindowsUpdateAgent"},
    {&Entry::source, How::equals, "DISM Package Manager Provider"},
    {&Entry::source, How::begins, "Windows Update"},
    {&Entry::source, How::begins, "MS Updates"},
    {&Entry::name, How::begins, "KB"},
    {&Entry::name, How::contains, "}.KB"},
    {&Entry::displayName, How::begins, "Package_for_KB"},
};

constexpr TextRule kMicrosoftRules[] = {
    {&Entry::publisher, How::contains, "Microsoft"},
    {&Entry::displayName, How::contains, "Microsoft"},
    {&Entry::name, How::contains, "Microsoft"},
    {&Entry::displayName, How::begins, "Windows "},
};

bool holds(const TextRule& rule, const Entry& entry) noexcept {
  const char* const text = (entry.*rule.field).c_str();
  // Nearly every text differs in its first byte already, which needs no call.
  if (rule.how != How::contains && text[0] != rule.text[0]) return false;
  switch (rule.how) {
    case How::equals:
      return rule.text == text;
    case How::begins:
      return std::strncmp(text, rule.text.data(), rule.text.size()) == 0;
    default:
      return std::strstr(text, rule.text.data()) != nullptr;
  }
}

template <size_t count>
bool any_holds(const TextRule (&rules)[count], const Entry& entry) noexcept {
  return std::any_of(std::begin(rules), std::end(rules),
                     [&](const TextRule& rule) { return holds(rule, entry); });
}

}  // namespace

void ShowFlags::select_type(int index) noexcept {
  showUnnamed = index >= kTypeAll;
  showOsUpdates = index >= kTypeOsUpdates;
  showSystemComponents = index >= kTypeSystemComponents;
  showSubPackages = index >= kTypeSubPackages;
}

bool is_os_update(const UninstallEntry& entry) noexcept {
  return any_holds(kOsUpdateRules, entry);
}

bool is_microsoft(const UninstallEntry& entry) noexcept {
  return any_holds(kMicrosoftRules, entry) || is_os_update(entry);
}

bool acceptRow(const UninstallEntry& entry, const ShowFlags& flags, const Search& search) noexcept {
  if (!flags.showUnnamed && entry.displayName.empty()) return false;
  if (!flags.showSystemComponents && entry.systemComponent != 0) return false;
  if (!flags.showOsUpdates && is_os_update(entry)) return false;
  if (!flags.showSubPackages && !entry.parent.empty()) return false;
  if (!flags.showMicrosoft && is_microsoft(entry)) return false;
  return !search.active() || search.matches(entry);
}
