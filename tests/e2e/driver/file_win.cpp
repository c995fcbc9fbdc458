// Files that another program has open.
#include <windows.h>

#include <map>
#include <string>

#include "command.h"

namespace driver {
namespace {

std::map<std::string, HANDLE>& held_files() {
  static std::map<std::string, HANDLE> files;
  return files;
}

/// hold-file PATH: opens it for reading, so that nobody may write, rename or delete it.
void hold_file(const Words& words, Json& answer) {
  const HANDLE file = CreateFileA(words.text(1).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) throw Refusal("no such file");
  answer.boolean(held_files().emplace(words.text(1), file).second);
}

/// let-file-go PATH
void let_file_go(const Words& words, Json& answer) {
  const auto held = held_files().extract(words.text(1));
  answer.boolean(!held.empty() && CloseHandle(held.mapped()) != FALSE);
}

constexpr Command kCommands[] = {{"hold-file", hold_file}, {"let-file-go", let_file_go}};

}  // namespace

std::span<const Command> file_commands() {
  return kCommands;
}

}  // namespace driver
