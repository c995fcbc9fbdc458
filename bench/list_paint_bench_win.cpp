// A full repaint of the main window's list with 50 rows in view: coloured with a search active,
// which looks at every cell's text, and coloured without one, beside the list without colours.
#include <cstdio>
#include <memory>
#include <string>

#include "bench/interleaved.h"
#include "inventory/reader_test_support.h"
#include "orlo/dlg_controller.h"
#include "platform/memory_icons.h"
#include "platform/memory_installer_database.h"
#include "platform/memory_registry.h"
#include "platform/memory_shell.h"
#include "platform/memory_storage.h"
#include "platform/resource_ids.h"
#include "update/update_system_test_support.h"
#include "view/uninstall_dlg.h"

namespace {

constexpr uint16_t kEnglish = 2057;
constexpr int kRows = 50;
constexpr int kRepaints = 10;
constexpr int kWidth = 1280;
constexpr int kHeight = 1024;

void seed(MemoryRegistry& registry) {
  for (int i = 0; i < kRows; ++i) {
    const std::u16string digits = {static_cast<char16_t>(u'0' + i / 10),
                                   static_cast<char16_t>(u'0' + i % 10)};
    const std::string key =
        "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Bench" +
        std::to_string(i);
    registry.set_text(key, "DisplayName", u"Some Program " + digits);
    registry.set_text(key, "DisplayVersion", u"1.0." + digits);
    registry.set_text(key, "Publisher", u"Vendor " + digits);
    registry.set_text(key, "InstallDate", u"202401" + digits);
    registry.set_text(key, "UninstallString",
                      u"\"C:\\Program Files\\Program\\un.exe\" /x " + digits);
  }
}

HWND open_window(const Resources& resources, MemoryRegistry& registry, MemorySystem& system,
                 MemoryShell& shell, MemoryIcons& icons, MemoryStorage& storage,
                 InstallerDatabases& databases, MemoryUpdateSystem& updates) {
  UninstallPara para;
  para.noPersist = true;
  const HWND window = ORLO::Dialog::DoModeless(
      resources.module(), resources.dialog(IDD_MAIN), nullptr, [&](HWND made) {
        return std::make_unique<UninstallDlg>(made, std::make_unique<UninstallDlgPara>(para),
                                              resources,
                                              DialogServices{system.over(registry, false),
                                                             shell,
                                                             icons,
                                                             storage,
                                                             {system.installer, databases},
                                                             updates.system(),
                                                             {},
                                                             false});
      });
  SetWindowPos(window, nullptr, 0, 0, kWidth, kHeight, SWP_NOZORDER);
  return window;
}

class Window {
 public:
  explicit Window(HWND window) : window_(window), list_(GetDlgItem(window, IDC_LIST)) {}

  bool shows_all() const {
    return SendMessageA(list_, LVM_GETITEMCOUNT, 0, 0) == kRows &&
           SendMessageA(list_, LVM_GETCOUNTPERPAGE, 0, 0) >= kRows;
  }
  void bring_about(bool colored, const char* search) {
    if (colored != colored_) SendMessageA(window_, WM_COMMAND, ID_COLOR_BACKGROUND, 0);
    colored_ = colored;
    SetDlgItemTextA(window_, IDC_SEARCH, search);
    UpdateWindow(list_);
  }
  void repaint() const {
    for (int i = 0; i < kRepaints; ++i)
      RedrawWindow(list_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    GdiFlush();
  }
  void close() const { SendMessageA(window_, WM_COMMAND, IDCANCEL, 0); }

 private:
  const HWND window_;
  const HWND list_;
  bool colored_ = true;
};

}  // namespace

int main() {
  InitCommonControls();
  MemoryRegistry registry(MemoryRegistry::View::native);
  MemorySystem system;
  MemoryShell shell;
  MemoryIcons icons;
  MemoryStorage storage;
  MemoryInstallerDatabases databases;
  MemoryUpdateSystem updates;
  seed(registry);
  const Resources resources(GetModuleHandleA(nullptr), kEnglish);
  Window window(
      open_window(resources, registry, system, shell, icons, storage, databases, updates));
  if (!window.shows_all()) {
    std::printf("the window doesn't show %d rows\n", kRows);
    return 1;
  }
  const auto candidate = [&](const char* name, bool colored, const char* search) {
    return Candidate{name, [&] { window.repaint(); },
                     [&window, colored, search] { window.bring_about(colored, search); }};
  };
  print_ratios("10 full repaints of 50 rows",
               {candidate("coloured, search active", true, "program"),
                candidate("coloured", true, ""), candidate("floor: without colours", false, "")});
  window.close();
  return 0;
}
