// Programs that the driver starts, and what a running process leaves to be seen.
#include <map>
#include <string>
#include <utility>

#include "command.h"
#include "remote_win.h"
// These need what windows.h brings.
#include <psapi.h>
#include <tlhelp32.h>

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

/// Keeps a handle of a process that somebody else has started, as of one started here.
void adopt(DWORD id) {
  if (started().count(id) != 0) return;
  const DWORD rights =
      SYNCHRONIZE | PROCESS_TERMINATE | PROCESS_QUERY_INFORMATION | PROCESS_VM_READ;
  if (KernelHandle process{OpenProcess(rights, FALSE, id)}) started()[id] = std::move(process);
}

/// processes NAME: the ids of the running programs of this file name, in letters of any
/// case, which then count as started here.
void list_processes(const Words& words, Json& answer) {
  const HANDLE taken = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (taken == INVALID_HANDLE_VALUE) throw Refusal("no list of processes");
  const KernelHandle snapshot(taken);
  PROCESSENTRY32 entry{};
  entry.dwSize = sizeof entry;
  answer.begin_array();
  for (BOOL more = Process32First(taken, &entry); more; more = Process32Next(taken, &entry)) {
    if (lstrcmpiA(words.text(1).c_str(), entry.szExeFile) != 0) continue;
    adopt(entry.th32ProcessID);
    answer.number(entry.th32ProcessID);
  }
  answer.end_array();
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

/// set-env NAME VALUE: for the programs that are started from here on; without a value, unset.
void set_environment(const Words& words, Json& answer) {
  const char* const value = words.count() > 2 ? words.text(2).c_str() : nullptr;
  answer.boolean(SetEnvironmentVariableA(words.text(1).c_str(), value) != FALSE);
}

/// Events by their names, made here if nobody has yet, and kept.
HANDLE event_at(const Words& words) {
  static std::map<std::string, KernelHandle> events;
  KernelHandle& event = events[words.text(1)];
  if (event == nullptr) {
    event = KernelHandle(CreateEventA(nullptr, FALSE, FALSE, words.text(1).c_str()));
  }
  return event.get();
}

/// event-wait NAME LIMIT: takes the signal.
void wait_for_event(const Words& words, Json& answer) {
  const auto limit = static_cast<DWORD>(words.number(2));
  if (WaitForSingleObject(event_at(words), limit) != WAIT_OBJECT_0) {
    throw Refusal("no signal within the limit");
  }
  answer.boolean(true);
}

/// event-set NAME
void set_event(const Words& words, Json& answer) {
  answer.boolean(SetEvent(event_at(words)) != FALSE);
}

/// memory PID: the bytes that are the process's own.
void private_bytes(const Words& words, Json& answer) {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof counters;
  if (!GetProcessMemoryInfo(started_at(words, 1), &counters, sizeof counters)) {
    throw Refusal("no figures, error " + std::to_string(GetLastError()));
  }
  answer.number(static_cast<int64_t>(counters.PagefileUsage));
}

/// next-handle PID: the number that a new handle of the process would have. It grows with those
/// that are left open.
void next_handle(const Words& words, Json& answer) {
  const HANDLE process = started_at(words, 1);
  HANDLE there = nullptr;
  if (!DuplicateHandle(GetCurrentProcess(), process, process, &there, 0, FALSE,
                       DUPLICATE_SAME_ACCESS)) {
    throw Refusal("no handle can be made there, error " + std::to_string(GetLastError()));
  }
  HANDLE here = nullptr;
  DuplicateHandle(process, there, GetCurrentProcess(), &here, 0, FALSE,
                  DUPLICATE_CLOSE_SOURCE | DUPLICATE_SAME_ACCESS);
  const KernelHandle owned(here);
  answer.number(static_cast<int64_t>(reinterpret_cast<intptr_t>(there)));
}

/// threads PID: how many the process has.
void count_threads(const Words& words, Json& answer) {
  const HANDLE taken = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  if (taken == INVALID_HANDLE_VALUE) throw Refusal("no list of threads");
  const KernelHandle snapshot(taken);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  int64_t count = 0;
  for (BOOL more = Thread32First(taken, &entry); more; more = Thread32Next(taken, &entry)) {
    if (entry.th32OwnerProcessID == static_cast<DWORD>(words.number(1))) ++count;
  }
  answer.number(count);
}

constexpr Command kCommands[] = {
    {"start", start},
    {"wait-exit", wait_exit},
    {"running", is_running},
    {"kill", kill},
    {"processes", list_processes},
    {"mutex", mutex_exists},
    {"temp-folder", temp_folder},
    {"short-date", short_date},
    {"set-env", set_environment},
    {"event-wait", wait_for_event},
    {"event-set", set_event},
    {"memory", private_bytes},
    {"next-handle", next_handle},
    {"threads", count_threads},
};

}  // namespace

std::span<const Command> process_commands() {
  return kCommands;
}

}  // namespace driver
