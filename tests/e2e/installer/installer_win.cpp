// Plays an installer. Its whole command line becomes a line of the file beside it that has ".log"
// after the program's name. Then it does what the words of the command line say, and after them
// those of the file that has ".steps" after the program's name; it knows these, in any order:
//   /delete:KEY    deletes the user's Uninstall key of that name
//   /write:COUNT   writes so many Uninstall keys of the user: "Written 1" and so on
//   /again         starts a second instance with all that follows, and leaves that to it
//   /close         asks Zolvane's window to close
//   /window:TITLE  opens a window, which lasts as long as the program
//   /wait:EVENT    until the event is set
//   /forever       for ever
//   /exit:CODE     ends with this code
// No other word means anything.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr char kUninstall[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

std::string own_path() {
  char path[MAX_PATH];
  return std::string(path, GetModuleFileNameA(nullptr, path, sizeof path));
}

void note(const char* line) {
  if (std::FILE* const log = std::fopen((own_path() + ".log").c_str(), "a")) {
    std::fprintf(log, "%s\n", line);
    std::fclose(log);
  }
}

/// Messages flow while it waits; for ever without an event.
void wait_for(HANDLE event) {
  const DWORD count = event != nullptr ? 1 : 0;
  while (MsgWaitForMultipleObjects(count, &event, FALSE, INFINITE, QS_ALLINPUT) ==
         WAIT_OBJECT_0 + count) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
      DispatchMessageA(&message);
  }
}

void delete_key(const char* name) {
  RegDeleteKeyA(HKEY_CURRENT_USER, (std::string(kUninstall) + name).c_str());
}

void write_keys(const char* count) {
  for (int i = 1; i <= std::atoi(count); ++i) {
    const std::string name = "Written " + std::to_string(i);
    RegSetKeyValueA(HKEY_CURRENT_USER, (kUninstall + name).c_str(), "DisplayName", REG_SZ,
                    name.c_str(), static_cast<DWORD>(name.size()) + 1);
  }
}

void close_zolvane(const char*) {
  PostMessageA(FindWindowA("#32770", "Zolvane"), WM_CLOSE, 0, 0);
}

void open_window(const char* title) {
  CreateWindowExA(0, "Static", title, WS_OVERLAPPEDWINDOW | WS_VISIBLE, 200, 200, 300, 100, nullptr,
                  nullptr, nullptr, nullptr);
}

void wait_for_event(const char* name) {
  wait_for(CreateEventA(nullptr, FALSE, FALSE, name));
}

void wait_for_ever(const char*) {
  wait_for(nullptr);
}

void end(const char* code) {
  ExitProcess(static_cast<UINT>(std::atoi(code)));
}

constexpr struct {
  const char* name;
  void (*run)(const char* rest);
} kSteps[] = {{"/delete:", delete_key},
              {"/write:", write_keys},
              {"/close", close_zolvane},
              {"/window:", open_window},
              {"/wait:", wait_for_event},
              {"/forever", wait_for_ever},
              {"/exit:", end}};

void run_step(const char* word) {
  for (const auto& step : kSteps) {
    const size_t length = std::strlen(step.name);
    if (std::strncmp(word, step.name, length) == 0) step.run(word + length);
  }
}

/// With the part of the command line that follows the word.
void start_second(const char* word) {
  std::string command =
      '"' + own_path() + '"' + (std::strstr(GetCommandLineA(), word) + std::strlen(word));
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION made{};
  CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                 &made);
}

void run_steps_of_file() {
  std::FILE* const steps = std::fopen((own_path() + ".steps").c_str(), "r");
  if (steps == nullptr) return;
  char word[256];
  while (std::fscanf(steps, "%255s", word) == 1)
    run_step(word);
  std::fclose(steps);
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  note(GetCommandLineA());
  for (int i = 1; i < __argc; ++i) {
    if (std::strcmp(__argv[i], "/again") == 0) {
      start_second(__argv[i]);
      return 0;
    }
    run_step(__argv[i]);
  }
  run_steps_of_file();
  return 0;
}
