// Programs that the driver starts, and what a running process leaves to be seen.
#include <map>

#include "command.h"
#include "remote_win.h"

namespace driver {
namespace {

/// Handles of the programs started here, so that their exit codes can be had after their end.
std::map<DWORD, KernelHandle>& started() {
  static std::map<DWORD, KernelHandle> processes;
  return processes;
}

HANDLE started_at(const Words& words, size_t index) {
  const auto found = started().find(static_cast<DWORD>(words.number(index)));
  if (found == started().end()) throw Refusal("not started here: " + words.text(index));
  return found->second.get();
}

/// start COMMAND-LINE: the process id.
void start(const Words& words, Json& answer) {
  std::string command_line = words.text(1);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION made{};
  if (!CreateProcessA(nullptr, command_line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &made)) {
    throw Refusal("can't be started, error " + std::to_string(GetLastError()));
  }
  const KernelHandle thread(made.hThread);
  started()[made.dwProcessId] = KernelHandle(made.hProcess);
  answer.number(made.dwProcessId);
}

/// wait-exit PID LIMIT: the exit code.
void wait_exit(const Words& words, Json& answer) {
  const HANDLE process = started_at(words, 1);
  if (WaitForSingleObject(process, static_cast<DWORD>(words.number(2))) != WAIT_OBJECT_0) {
    throw Refusal("the process still runs");
  }
  DWORD code = 0;
  GetExitCodeProcess(process, &code);
  answer.number(code);
}

/// running PID
void is_running(const Words& words, Json& answer) {
  answer.boolean(WaitForSingleObject(started_at(words, 1), 0) == WAIT_TIMEOUT);
}

/// kill PID: only what was started here.
void kill(const Words& words, Json& answer) {
  const HANDLE process = started_at(words, 1);
  answer.boolean(TerminateProcess(process, 99) != FALSE);
  WaitForSingleObject(process, 5000);
}

/// mutex NAME: whether some process holds one of this name open.
void mutex_exists(const Words& words, Json& answer) {
  const KernelHandle mutex(OpenMutexA(SYNCHRONIZE, FALSE, words.text(1).c_str()));
  answer.boolean(mutex != nullptr);
}

void temp_folder(const Words&, Json& answer) {
  char path[MAX_PATH + 1];
  answer.text(std::string(path, GetTempPathA(sizeof path, path)));
}

/// short-date: the picture by which the system shows dates to this user.
void short_date(const Words&, Json& answer) {
  char picture[80] = "";
  GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SSHORTDATE, picture, sizeof picture);
  answer.text(picture);
}

constexpr Command kCommands[] = {
    {"start", start},           {"wait-exit", wait_exit},
    {"running", is_running},    {"kill", kill},
    {"mutex", mutex_exists},    {"temp-folder", temp_folder},
    {"short-date", short_date},
};

}  // namespace

std::span<const Command> process_commands() {
  return kCommands;
}

}  // namespace driver
