#include "actions/system_tools.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "actions/shell_command.h"
#include "actions/shown_wait_cursor.h"
#include "orlo/exception.h"

namespace {

constexpr char kMsiCleanup[] = "launching msicuu.exe";
constexpr char kCleanupKey[] = "SOFTWARE\\Microsoft\\Shared Tools\\MSInfo\\Tools\\MsiCU";
constexpr uint32_t kClassValueRoom = 260;

/// The default value of a key of the types of files, of up to 259 characters.
std::optional<String> class_value(Registry& registry, const char* path) {
  RegistryKey key;
  if (registry.open(kClassesRoot, path, kKeyRead, key) != kRegSuccess) return std::nullopt;
  char buffer[kClassValueRoom];
  uint32_t type = 0;
  uint32_t size = kClassValueRoom;
  if (registry.value(key, "", type, buffer, size) != kRegSuccess) return std::nullopt;
  if (type != kRegSz && type != kRegExpandSz) return std::nullopt;
  const char* const begin = buffer;
  const char* const end = std::find(begin, begin + std::min(size, kClassValueRoom), '\0');
  if (end == begin + kClassValueRoom) return std::nullopt;
  return String(begin, end);
}

/// How files of a type, or of a class of types, are edited.
std::optional<String> edit_command(Registry& registry, const char* type) {
  return class_value(registry, String::formatted("%s\\shell\\%s\\command", type, "edit").c_str());
}

/// The editor of MSI files edits those of patches, too; empty if there is none.
String find_orca(Registry& registry) {
  if (const auto command = edit_command(registry, ".pcp")) return *command;
  const auto class_name = class_value(registry, ".pcp");
  if (!class_name || class_name->empty()) return String();
  return edit_command(registry, class_name->c_str()).value_or(String());
}

}  // namespace

SystemTools::SystemTools(const ActionParts& parts, ToolTexts texts, String cleanup_page)
    : parts_(parts),
      texts_(std::move(texts)),
      cleanup_page_(cleanup_page),
      orcaCommand(find_orca(parts.registry)) {}

void SystemTools::msi_cleanup() {
  const String command = cleanup_command();
  if (command.empty()) {
    const bool page_wanted = parts_.frame.ask(texts_.ask_cleanup_page, kMsiCleanup);
    if (!page_wanted || parts_.frame.closing()) return;
  }
  // After the question: what fails beneath it isn't this.
  const ORLO::ExceptionContext context(kMsiCleanup);
  if (command.empty()) {
    open(cleanup_page_);
  } else {
    open_busy(command);
  }
}

void SystemTools::msinfo() {
  const ORLO::ExceptionContext context("launching msinfo32.exe");
  open_busy("msinfo32.exe");
}

void SystemTools::msconfig() {
  const ORLO::ExceptionContext context("launching msconfig.exe");
  open_busy("msconfig.exe");
}

void SystemTools::system_restore() {
  String path = parts_.files.system_folder().value_or(String());
  path.append("\\restore\\Rstrui.exe");
  if (parts_.files.can_open(path.c_str())) {
    open(path);
  } else {
    parts_.frame.warn(texts_.no_restore_points, texts_.product);
  }
}

void SystemTools::software_control_panel() {
  const ORLO::ExceptionContext context("launching software cpl");
  open_busy("rundll32.exe shell32.dll,Control_RunDLL appwiz.cpl");
}

void SystemTools::orca() {
  if (!has_orca()) return;
  const ORLO::ExceptionContext context("launching ORCA");
  String command = orcaCommand;
  command.replace(" \"%1\"", "");
  command.replace(" %1", "");
  open_busy(command);
}

void SystemTools::open_with_orca(const UninstallEntry& entry) {
  if (!entry.MSI || !has_orca()) return;
  String command = orcaCommand;
  command.replace("%1", entry.packagePath.c_str());
  open(command);
}

void SystemTools::open(const String& text) {
  const ShellCommand command = ShellCommand::parse(text, parts_.files);
  parts_.shell.open(command.start(parts_.frame.owner()));
}

void SystemTools::open_busy(const String& text) {
  const ShownWaitCursor shown(parts_.frame);
  open(text);
}

String SystemTools::cleanup_command() {
  RegistryKey key;
  parts_.registry.open(kLocalMachine, kCleanupKey, kKeyRead, key);
  return get_registry_text(key, "command");
}
