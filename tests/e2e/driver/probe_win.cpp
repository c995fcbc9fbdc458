// The driver's side of the probe: brings the DLL into the window's process and runs it there.
#include "probe.h"

#include <windows.h>

#include <cstring>
#include <memory>
#include <string>

#include "command.h"
#include "remote_win.h"
#include "window_win.h"

namespace driver {
namespace {

constexpr DWORD kThreadLimit = 20000;

struct FreeLibraryOf {
  void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};
using Module = std::unique_ptr<HINSTANCE__, FreeLibraryOf>;

DWORD run_thread(HANDLE process, const void* start, void* argument) {
  // A routine's address travels as data: nothing here ever calls it.
  LPTHREAD_START_ROUTINE routine = nullptr;
  static_assert(sizeof routine == sizeof start);
  std::memcpy(&routine, &start, sizeof routine);
  const KernelHandle thread(CreateRemoteThread(process, nullptr, 0, routine, argument, 0, nullptr));
  if (!thread) throw Refusal("no thread in the other process");
  if (WaitForSingleObject(thread.get(), kThreadLimit) != WAIT_OBJECT_0) {
    throw Refusal("the probe doesn't come back");
  }
  DWORD code = 0;
  GetExitCodeThread(thread.get(), &code);
  return code;
}

const char* address_of(HMODULE module, const char* name) {
  const FARPROC routine = GetProcAddress(module, name);
  const char* address = nullptr;
  std::memcpy(&address, &routine, sizeof address);
  if (address == nullptr) throw Refusal(std::string("no routine ") + name);
  return address;
}

std::string probe_path() {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
  const std::string program(path, length);
  return program.substr(0, program.rfind('\\') + 1) + kProbeFile;
}

/// Where the probe's entry lies in the other process. Loading it again there gives the same place.
/// Kernel32 lies at one address in all processes; a thread's exit code is a whole module handle in
/// the 32-bit processes that this driver is for.
const char* load_probe(HANDLE process) {
  const std::string path = probe_path();
  const RemoteBlock name(process, path.size() + 1);
  name.write(path.c_str(), path.size() + 1);
  const char* loader = address_of(GetModuleHandleA("kernel32"), "LoadLibraryA");
  const DWORD remote_base = run_thread(process, loader, name.address());
  const Module local(LoadLibraryExA(path.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
  if (remote_base == 0 || !local) throw Refusal("the probe can't be loaded: " + path);
  const ptrdiff_t offset =
      address_of(local.get(), kProbeEntry) - reinterpret_cast<const char*>(local.get());
  return reinterpret_cast<const char*>(static_cast<uintptr_t>(remote_base)) + offset;
}

void ask(const Words& words, ProbeQuestion question, Json& answer) {
  const HWND window = window_at(words, 1);
  const KernelHandle process = open_process_of(window);
  const RemoteBlock block(process.get(), sizeof(ProbeRequest));
  ProbeRequest request{};
  request.question = question;
  request.window = static_cast<uint32_t>(handle_number(window));
  request.first = static_cast<int32_t>(words.number_or(2, 0));
  request.second = static_cast<int32_t>(words.number_or(3, 0));
  block.write(&request, sizeof request);
  run_thread(process.get(), load_probe(process.get()), block.address());
  block.read(&request, sizeof request);
  if (request.answer == 0) throw Refusal("the probe has no answer");
  const RemoteBlock written(process.get(),
                            reinterpret_cast<char*>(static_cast<uintptr_t>(request.answer)));
  std::string text(request.length, '\0');
  written.read(text.data(), text.size());
  answer.raw(text);
}

/// About a control, word 2, that has to be there.
void ask_of_control(const Words& words, ProbeQuestion question, Json& answer) {
  control_of(words);
  ask(words, question, answer);
}

/// menu WINDOW: the items of its menu bar, each popup brought up to date by the program.
void read_menu(const Words& words, Json& answer) {
  ask(words, ProbeQuestion::menu, answer);
}

/// system-menu WINDOW
void read_system_menu(const Words& words, Json& answer) {
  ask(words, ProbeQuestion::system_menu, answer);
}

/// text-extents DIALOG: for each child the size of its text and of the room for it.
void read_extents(const Words& words, Json& answer) {
  ask(words, ProbeQuestion::text_extents, answer);
}

/// dialog-units DIALOG X Y: [width, height] in pixels.
void map_units(const Words& words, Json& answer) {
  ask(words, ProbeQuestion::dialog_units, answer);
}

/// combo DIALOG ID: its items and the selected index.
void read_combo(const Words& words, Json& answer) {
  ask_of_control(words, ProbeQuestion::combo, answer);
}

/// list-box DIALOG ID: its items and the selected index.
void read_list_box(const Words& words, Json& answer) {
  ask_of_control(words, ProbeQuestion::list_box, answer);
}

/// list-cells DIALOG ID: the texts of every row from the top, whole and quickly.
void read_list_cells(const Words& words, Json& answer) {
  ask_of_control(words, ProbeQuestion::list_cells, answer);
}

/// tree DIALOG ID: its items from the top, whether they can be seen or not, each with its depth,
/// the place of its parent (-1 for none), its images and whether it is expanded.
void read_tree(const Words& words, Json& answer) {
  ask_of_control(words, ProbeQuestion::tree, answer);
}

/// popup WINDOW: the items of the popup menu that its program has open; refused if there is none.
void read_popup(const Words& words, Json& answer) {
  if (FindWindowA(kPopupClass, nullptr) == nullptr) throw Refusal("no popup menu is open");
  ask(words, ProbeQuestion::popup, answer);
}

constexpr Command kCommands[] = {{"menu", read_menu},
                                 {"system-menu", read_system_menu},
                                 {"text-extents", read_extents},
                                 {"dialog-units", map_units},
                                 {"combo", read_combo},
                                 {"popup", read_popup},
                                 {"list-box", read_list_box},
                                 {"list-cells", read_list_cells},
                                 {"tree", read_tree}};

}  // namespace

std::span<const Command> probe_commands() {
  return kCommands;
}

}  // namespace driver
