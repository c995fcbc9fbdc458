// Drives programs from outside: reads one command a line from the standard input and answers each
// with one line of JSON, {"ok":true,"value":...} or {"ok":false,"error":"..."}. Ends with its
// input.
#include <windows.h>

#include <cstring>
#include <iostream>
#include <string>

#include "command.h"

namespace {

using driver::Command;
using driver::Json;
using driver::Refusal;
using driver::Words;

const Command* find_command(const std::string& name) {
  const std::span<const Command> groups[] = {
      driver::window_commands(),    driver::control_commands(),  driver::list_commands(),
      driver::process_commands(),   driver::registry_commands(), driver::probe_commands(),
      driver::clipboard_commands(), driver::file_commands()};
  for (const auto& group : groups) {
    for (const Command& command : group) {
      if (name == command.name) return &command;
    }
  }
  return nullptr;
}

std::string answer_to(const std::string& line) {
  try {
    const Words words(line);
    Json answer;
    answer.begin_object().flag("ok", true).key("value");
    if (words.text(0) == "echo") {
      answer.text(words.text(1));
    } else {
      const Command* command = find_command(words.text(0));
      if (command == nullptr) throw Refusal("unknown command " + words.text(0));
      command->run(words, answer);
    }
    return answer.end_object().str();
  } catch (const std::exception& error) {
    Json answer;
    answer.begin_object().flag("ok", false).member("error", error.what());
    return answer.end_object().str();
  }
}

/// Has the desktop made, if it isn't there yet, and waits until windows can stand on it: Wine has a
/// process of its own make it, and a program that starts just then would find half a desktop, get
/// no window and end.
void wait_for_desktop() {
  constexpr int kLooks = 200;
  const HWND desktop = GetDesktopWindow();
  for (int look = 0; look < kLooks; ++look) {
    // Set once the desktop's display is known.
    if (GetPropA(desktop, "__wine_display_device_guid") != nullptr) return;
    Sleep(50);
  }
}

}  // namespace

int main() {
  wait_for_desktop();
  std::string line;
  while (std::getline(std::cin, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::cout << answer_to(line) << std::endl;
  }
  return 0;
}
