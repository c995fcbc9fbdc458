// The icons of the list: a first pass over 2,000 rows that have 300 icons between them, beside the
// bare calls; a pass that finds nothing to do, over 10,000 rows; the start with icons that are
// kept; the choice of a row.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench/bare_list_win.h"
#include "bench/icon_files_win.h"
#include "bench/interleaved.h"
#include "inventory/reader_test_support.h"
#include "orlo/dlg_controller.h"
#include "orlo/message_wait.h"
#include "platform/files.h"
#include "platform/icons.h"
#include "platform/memory_installer_database.h"
#include "platform/memory_registry.h"
#include "platform/memory_shell.h"
#include "platform/memory_storage.h"
#include "platform/resource_ids.h"
#include "update/update_system_test_support.h"
#include "view/list_icons.h"
#include "view/list_model.h"
#include "view/uninstall_dlg.h"
// Needs what orlowin.h brings.
#include <shellapi.h>

namespace {

constexpr int kIcons = 300;
constexpr int kRows = 2'000;
constexpr int kManyRows = 10'000;

ListIcons* answering = nullptr;

LRESULT CALLBACK answer_calls(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == ListIcons::kCall && answering != nullptr) answering->answer_call();
  return DefWindowProcA(window, message, wparam, lparam);
}

HWND make_window() {
  WNDCLASSA type = {};
  type.lpfnWndProc = &answer_calls;
  type.hInstance = GetModuleHandleA(nullptr);
  type.lpszClassName = "icon-bench";
  RegisterClassA(&type);
  return CreateWindowExA(0, type.lpszClassName, "bench", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                         640, 480, nullptr, nullptr, type.hInstance, nullptr);
}

/// A list with rows that take turns with the icons.
struct Filled {
  Filled(HWND parent, int rows, const IconFiles& files, ORLO::CriticalSection& section,
         const UninstallPara& para, IconExtractor& extractor, Files& system)
      : list(make_list(parent)), control(list), model(control, CellTexts()) {
    model.begin_batch();
    for (int i = 0; i < rows; ++i) {
      UninstallEntry entry;
      entry.name = entry.keyName = String::formatted("Bench%05d", i);
      entry.displayName = entry.name;
      entry.displayIcon = files.paths()[static_cast<size_t>(i % kIcons)].c_str();
      model.applyEntry(entry);
    }
    model.end_batch();
    UpdateWindow(list);
    icons = std::make_unique<ListIcons>(
        ListIcons::Parts{parent, list, model, section, extractor, system, para, [] {}},
        GetModuleHandleA(nullptr));
  }
  ~Filled() {
    icons.reset();
    DestroyWindow(list);
  }
  Filled(const Filled&) = delete;
  Filled& operator=(const Filled&) = delete;

  void pass() {
    answering = icons.get();
    icons->start_pass();
    ORLO::Waitable* const items[] = {&icons->done_event()};
    ORLO::wait_with_messages(items, 1, ORLO::kInfinite);
  }

  HWND list;
  SysListControl control;
  ListModel model;
  std::unique_ptr<ListIcons> icons;
};

/// What can't be left out: each icon extracted and appended once, each row told its image.
void bare_pass(HWND list, const IconFiles& files) {
  const HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, 1, 1);
  ListView_SetImageList(list, images, LVSIL_SMALL);
  ORLO::Event done;
  std::thread worker([&] {
    std::vector<int> known(kIcons, -1);
    for (int row = 0; row < kRows; ++row) {
      const auto number = static_cast<size_t>(row % kIcons);
      if (known[number] < 0) {
        HICON icon = nullptr;
        ExtractIconExA(files.paths()[number].c_str(), 0, nullptr, &icon, 1);
        known[number] = ImageList_ReplaceIcon(images, -1, icon);
        DestroyIcon(icon);
      }
      LVITEMA item = {};
      item.mask = LVIF_IMAGE;
      item.iItem = row;
      item.iImage = known[number];
      SendMessageA(list, LVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    }
    done.set();
  });
  ORLO::Waitable* const items[] = {&done};
  ORLO::wait_with_messages(items, 1, ORLO::kInfinite);
  worker.join();
}

/// The longest time that a window takes to answer while something is done.
double longest_answer(HWND window, const std::function<void()>& work) {
  std::atomic<bool> over{false};
  double longest = 0;
  std::thread asking([&] {
    while (!over) {
      const auto start = std::chrono::steady_clock::now();
      DWORD_PTR answer = 0;
      SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, 10000, &answer);
      const std::chrono::duration<double, std::milli> took =
          std::chrono::steady_clock::now() - start;
      longest = std::max(longest, took.count());
      Sleep(1);
    }
  });
  work();
  over = true;
  // The last question waits for its answer.
  while (WaitForSingleObject(reinterpret_cast<HANDLE>(asking.native_handle()), 0) == WAIT_TIMEOUT) {
    ORLO::sleep_with_messages(1);
  }
  asking.join();
  return longest;
}

/// The whole dialog over packages with an icon each, one of which is chosen after the other.
void choose_rows(const IconFiles& files, IconExtractor& extractor, Files& system) {
  MemoryRegistry registry(MemoryRegistry::View::native);
  for (size_t i = 0; i < files.paths().size(); ++i) {
    const std::string key =
        "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Bench" +
        std::to_string(i);
    const std::string& path = files.paths()[i];
    registry.set_text(key, "DisplayName", u"Program");
    registry.set_text(key, "DisplayIcon", std::u16string(path.begin(), path.end()));
  }
  MemoryShell shell;
  MemoryStorage storage;
  MemoryInstallerDatabases databases;
  MemoryUpdateSystem updates;
  MemorySystem nothing;
  const Resources resources(GetModuleHandleA(nullptr), 2057);
  UninstallPara para;
  para.noPersist = true;
  const HWND dialog = ORLO::Dialog::DoModeless(
      resources.module(), resources.dialog(IDD_MAIN), nullptr, [&](HWND made) {
        return std::make_unique<UninstallDlg>(
            made, std::make_unique<UninstallDlgPara>(para), resources,
            DialogServices{{registry, system, ORLO::system_clock(), nothing.installer, nothing.wmi,
                            nothing.accounts, nothing.version, false, [] {}},
                           shell,
                           extractor,
                           storage,
                           {nothing.installer, databases},
                           updates.system(),
                           {},
                           false});
      });
  const HWND list = GetDlgItem(dialog, IDC_LIST);
  int row = 0;
  const auto choose = [&] {
    LVITEMA item = {};
    item.state = item.stateMask = LVIS_FOCUSED | LVIS_SELECTED;
    SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(++row),
                 reinterpret_cast<LPARAM>(&item));
    UpdateWindow(dialog);
  };
  // Let the first icon pass go by.
  ORLO::sleep_with_messages(3000);
  print_ratios("A row is chosen", {{"choice of a row", choose}});
  SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
}

}  // namespace

int main() {
  InitCommonControls();
  const HWND parent = make_window();
  const IconFiles files(kIcons);
  const auto extractor = make_system_icon_extractor();
  const auto system = make_system_files();
  ORLO::CriticalSection section;
  UninstallPara quiet;
  quiet.noPersist = true;

  std::unique_ptr<Filled> filled;
  const HWND bare_list = make_list(parent);
  print_ratios("First icon pass, 2,000 rows, 300 icons",
               {{"first icon pass", [&] { filled->pass(); },
                 [&] {
                   answering = nullptr;
                   filled.reset();
                   filled = std::make_unique<Filled>(parent, kRows, files, section, quiet,
                                                     *extractor, *system);
                 }},
                {"floor: bare calls", [&] { bare_pass(bare_list, files); },
                 [&] { fill_bare(bare_list, kRows); }}});

  UninstallPara kept;
  kept.imagePathsPath = (files.folder() + "\\paths.txt").c_str();
  kept.imageListPath = (files.folder() + "\\images.dat").c_str();
  filled.reset();
  {
    Filled many(parent, kManyRows, files, section, kept, *extractor, *system);
    many.pass();
    print_ratios("Icon pass with nothing new, 10,000 rows",
                 {{"calm icon pass", [&] { many.pass(); }}});
    std::printf("  calm icon pass, longest answer        %10.3f ms\n", longest_answer(parent, [&] {
                  for (int i = 0; i < 20; ++i)
                    many.pass();
                }));
    answering = nullptr;
  }

  const HWND list = make_list(parent);
  SysListControl control(list);
  ListModel model(control, CellTexts());
  const auto start_with = [&](const UninstallPara& para) {
    const ListIcons icons(
        ListIcons::Parts{parent, list, model, section, *extractor, *system, para, [] {}},
        GetModuleHandleA(nullptr));
  };
  print_ratios("Start with 300 icons that are kept",
               {{"images at the start, 300 kept", [&] { start_with(kept); }},
                {"images at the start, none kept", [&] { start_with(quiet); }}});
  DeleteFileA(kept.imagePathsPath.c_str());
  DeleteFileA(kept.imageListPath.c_str());

  choose_rows(files, *extractor, *system);
  return 0;
}
