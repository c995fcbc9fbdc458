#include "view/package_commands.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "platform/resource_ids.h"

namespace {

constexpr size_t kCellLimit = 259;
constexpr const char* kUrlStarts[] = {"http://", "ftp://", "mailto:"};

using Context = CommandContext;

// Commands that are not here can always be given.
constexpr struct {
  unsigned command;
  bool (*can_run)(const Context&);
} kRules[] = {
    {IDC_UNINSTALL, [](const Context& at) { return canUninstall(at.current); }},
    {IDC_MODIFY, [](const Context& at) { return canModify(at.current); }},
    {IDC_REPAIR, [](const Context& at) { return canRepair(at.current); }},
    {ID_REMOVE, [](const Context& at) { return canRemoveEntry(at.current); }},
    {ID_PATCHES, [](const Context& at) { return at.current != nullptr && at.current->patches; }},
    {ID_FEATURES, [](const Context& at) { return at.current != nullptr && at.current->features; }},
    {ID_MSI_CONTENT,
     [](const Context& at) {
       return at.current != nullptr && at.current->MSI && !at.current->packagePath.empty();
     }},
    {ID_OPEN_WITH_ORCA,
     [](const Context& at) { return at.current != nullptr && at.current->MSI && at.has_orca; }},
    {ID_OPEN_FOLDER,
     [](const Context& at) {
       return at.current != nullptr && !at.current->installLocation.empty();
     }},
    {ID_LAUNCH_URL, [](const Context& at) { return !at.url.empty(); }},
    {ID_ORCA, [](const Context& at) { return at.has_orca; }},
    {ID_SYSTEM_RESTORE, [](const Context& at) { return !at.under_wow64; }},
    {ID_MSCONFIG, [](const Context& at) { return !at.under_wow64; }},
};

char to_lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool starts_with_nocase(const char* text, const char* start) {
  const size_t length = std::strlen(start);
  return std::strlen(text) >= length &&
         std::equal(start, start + length, text, [](char a, char b) { return a == to_lower(b); });
}

}  // namespace

bool can_run(unsigned command, const CommandContext& context) noexcept {
  const auto* const rule = std::find_if(std::begin(kRules), std::end(kRules),
                                        [&](const auto& row) { return row.command == command; });
  return rule == std::end(kRules) || rule->can_run(context);
}

bool has_actions(const UninstallEntry& entry) noexcept {
  return std::strcmp(entry.displayName.c_str(), " -->") != 0;
}

unsigned default_command(const UninstallEntry& entry) noexcept {
  if (canUninstall(&entry)) return IDC_UNINSTALL;
  return canModify(&entry) ? IDC_MODIFY : 0;
}

String shown_part(const String& text) {
  const char* const start = text.c_str();
  return String(start, start + std::min(std::strlen(start), kCellLimit));
}

String cell_url(const String& text) {
  const String cell = shown_part(text);
  const char* const seen = cell.c_str();
  if (std::any_of(std::begin(kUrlStarts), std::end(kUrlStarts),
                  [&](const char* url) { return starts_with_nocase(seen, url); })) {
    return cell;
  }
  const bool is_mail = std::strchr(seen, '@') != nullptr && std::strchr(seen, '.') != nullptr;
  return is_mail ? String::formatted("mailto:%s", seen) : String();
}
