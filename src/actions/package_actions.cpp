#include "actions/package_actions.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "actions/shell_command.h"
#include "orlo/exception.h"

namespace {

// What a box can show of one name: in all, and of it without a place where the line can be broken.
constexpr size_t kNameInBox = 500;
constexpr size_t kUnbrokenInBox = 100;
constexpr char kEllipsis[] = "...";

bool is_blank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

/// How much of a name fits into a box.
size_t length_in_box(const char* name) {
  const size_t kept = kNameInBox - std::strlen(kEllipsis);
  size_t unbroken = 0;
  for (size_t at = 0; name[at] != '\0'; ++at) {
    unbroken = is_blank(name[at]) ? 0 : unbroken + 1;
    if (unbroken > kUnbrokenInBox) return at;
    if (at >= kNameInBox) return kept;
  }
  return std::strlen(name);
}

/// The name as a box can show it, in one paragraph; many blanks in a row would make a line of it
/// that is never broken.
String shortened(const String& name) {
  const size_t length = length_in_box(name.c_str());
  std::string shown(name.c_str(), length);
  std::replace_if(shown.begin(), shown.end(), &is_blank, ' ');
  const auto both_blank = [](char a, char b) { return a == ' ' && b == ' '; };
  shown.erase(std::unique(shown.begin(), shown.end(), both_blank), shown.end());
  if (name.c_str()[length] != '\0') shown += kEllipsis;
  return shown.c_str();
}

/// Some products register the command that installs them.
bool installs(const String& command) {
  return std::strstr(command.c_str(), " /I{") != nullptr;
}

String uninstall_command(const UninstallEntry& entry) {
  const bool by_installer = entry.MSI && entry.noRemove == 0 &&
                            (entry.uninstallCmd.empty() || installs(entry.uninstallCmd));
  return by_installer ? String::formatted("msiexec.exe /x %#s", entry.name) : entry.uninstallCmd;
}

String modify_command(const UninstallEntry& entry) {
  const bool by_installer = entry.MSI && entry.noModify == 0 && entry.modifyCmd.empty();
  return by_installer ? String::formatted("msiexec.exe /i %#s", entry.name) : entry.modifyCmd;
}

}  // namespace

bool canUninstall(const UninstallEntry* entry) noexcept {
  return entry != nullptr && entry->noRemove == 0 && (!entry->uninstallCmd.empty() || entry->MSI);
}

bool canModify(const UninstallEntry* entry) noexcept {
  return entry != nullptr && entry->noModify == 0 && (!entry->modifyCmd.empty() || entry->MSI);
}

bool canRepair(const UninstallEntry* entry) noexcept {
  return entry != nullptr && entry->MSI && entry->noModify == 0;
}

bool canRemoveEntry(const UninstallEntry* entry) noexcept {
  return entry != nullptr && entry->HKEY_ROOT != 0;
}

PackageActions::PackageActions(const ActionParts& parts, ActionTexts texts, Wait wait)
    : parts_(parts), texts_(std::move(texts)), wait_(wait) {}

void PackageActions::uninstall(const UninstallEntry& entry) {
  if (!agreed(texts_.ask_uninstall, entry, "Uninstallation")) return;
  const unsigned before = parts_.frame.refreshCount();
  if (!run_and_wait(uninstall_command(entry))) return;
  // A change notice may have asked for a refresh while the installer ran.
  if (parts_.frame.refreshCount() == before) parts_.frame.requestRefresh();
}

void PackageActions::modify(const UninstallEntry& entry) {
  if (run_and_wait(modify_command(entry))) parts_.frame.requestRefresh();
}

void PackageActions::repair(const UninstallEntry& entry) {
  if (!canRepair(&entry) || !agreed(texts_.ask_repair, entry, "Repair")) return;
  if (run_and_wait(String::formatted("msiexec.exe /f %#s", entry.name))) {
    parts_.frame.requestRefresh();
  }
}

void PackageActions::remove(const UninstallEntry& entry) {
  // The title is the same in each language.
  if (!agreed(texts_.ask_remove, entry, "Entfernen des Registry-Eintrags")) return;
  if (!canRemoveEntry(&entry)) return;
  const RegStatus status = delete_entry(entry);
  if (status == kRegSuccess) {
    parts_.frame.requestRefresh();
  } else {
    parts_.frame.warn(ORLO::SDKException(status).what(), texts_.exception);
  }
}

/// False too if the window has been closed meanwhile: its end answers boxes as it likes.
bool PackageActions::agreed(const String& format, const UninstallEntry& entry, const char* title) {
  const String text =
      String::formatted(format.c_str(), shortened(entry.displayName), shortened(entry.name));
  return parts_.frame.confirm(text, title) && !parts_.frame.closing();
}

/// Whether a refresh may follow, be it that nothing could be started. A window that closes or a
/// program that is to quit is left alone.
bool PackageActions::run_and_wait(const String& command) {
  const ShellCommand parsed = ShellCommand::parse(command, parts_.files);
  const Shell::Started started = parts_.shell.open_process(parsed.start(parts_.frame.owner()));
  if (started.process != nullptr && !wait_for_end(*started.process)) return false;
  return !parts_.frame.closing();
}

/// False if the program is to quit. What can't be waited for counts as ended.
bool PackageActions::wait_for_end(ORLO::Waitable& process) {
  ORLO::Waitable* const items[] = {&process, &closeEvent};
  int result = ORLO::kWaitOvertaken;
  try {
    while (result == ORLO::kWaitOvertaken)
      result = wait_(items, 2, ORLO::kInfinite);
  } catch (const ORLO::LWE&) {
    return true;
  }
  if (result == 1) closeEvent.set();
  return result != ORLO::kWaitQuit;
}

RegStatus PackageActions::delete_entry(const UninstallEntry& entry) {
  // Without a name the path would lead to the key of all packages.
  if (names_no_key(entry.keyName.c_str())) return kRegFileNotFound;
  const String path = String::formatted(
      "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\%s", entry.keyName);
  return parts_.registry.delete_key(entry.HKEY_ROOT, path.c_str());
}
