// The main window over a registry, files, icons and a shell in memory, for its tests.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "inventory/hooked_registry_test_support.h"
#include "inventory/reader_test_support.h"
#include "orlo/message_wait.h"
#include "orlo/window_handles.h"
#include "orlo/window_helpers.h"
#include "platform/icons.h"
#include "platform/memory_installer_database.h"
#include "platform/memory_internet.h"
#include "platform/memory_own_key.h"
#include "platform/memory_registry.h"
#include "platform/memory_shell.h"
#include "platform/memory_storage.h"
#include "platform/memory_temporary_files.h"
#include "platform/resource_ids.h"
#include "view/later_script_test_support.h"
#include "view/uninstall_dlg.h"

/// Holds the threads that come by, while it is shut, until it is opened.
class TestGate {
 public:
  void shut() { shut_ = true; }
  void pass() {
    if (!shut_) return;
    reached_ = true;
    EXPECT_TRUE(ORLO::wait_for(opened_, 20000));
  }
  bool reached() const { return reached_; }
  void open() {
    shut_ = false;
    opened_.set();
  }

 private:
  std::atomic<bool> shut_{false};
  std::atomic<bool> reached_{false};
  ORLO::Event opened_;
};

/// The system's icons. The thread that extracts small ones can be held in it.
class GatedIcons final : public IconExtractor {
 public:
  std::unique_ptr<Icon> extract(const char* file, int32_t index, bool large) override {
    if (large) {
      ++larges;
    } else {
      gate.pass();
    }
    return system_->extract(file, index, large);
  }

  TestGate gate;
  std::atomic<int> larges{0};  ///< extractions of large icons

 private:
  const std::unique_ptr<IconExtractor> system_ = make_system_icon_extractor();
};

/// Sees the messages of a window while this lives. One at a time.
class MessageWatch {
 public:
  /// Called before the window gets the message.
  using Look = std::function<void(UINT message, WPARAM wparam)>;

  MessageWatch(HWND window, Look look) : window_(window) {
    look_ = std::move(look);
    deepest = depth_ = 0;
    previous = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&MessageWatch::hear)));
  }
  ~MessageWatch() {
    if (IsWindow(window_) != FALSE) {
      SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
    }
    look_ = {};
  }
  MessageWatch(const MessageWatch&) = delete;
  MessageWatch& operator=(const MessageWatch&) = delete;

  /// How many messages were being handled at one time, each inside the one before.
  static inline int deepest = 0;

 private:
  static LRESULT CALLBACK hear(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    deepest = std::max(deepest, ++depth_);
    if (look_) look_(message, wparam);
    const LRESULT result = CallWindowProcA(previous, window, message, wparam, lparam);
    --depth_;
    return result;
  }

  static inline WNDPROC previous = nullptr;
  static inline Look look_;
  static inline int depth_ = 0;
  const HWND window_;
};

class UninstallDlgTest : public testing::Test {
 protected:
  static constexpr uint16_t kEnglish = 2057;
  static constexpr int kNameColumn = 2;
  static inline const std::string kUninstall =
      "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

  explicit UninstallDlgTest(const char* window_pos = "") {
    UninstallPara para;
    para.noPersist = true;
    para.windowPos = window_pos;
    open(para);
  }
  /// Opens no window yet.
  struct Unopened {};
  explicit UninstallDlgTest(Unopened) {}
  ~UninstallDlgTest() override {
    SendMessageA(window, WM_COMMAND, IDCANCEL, 0);
    EXPECT_FALSE(IsWindow(window));
  }

  void open(const UninstallPara& para) {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_LISTVIEW_CLASSES;
    InitCommonControlsEx(&classes);
    languages = 0;
    add("Birch", u"Birch \u20ac Editor", u"20260108");
    add("Alder", u"Alder", u"20260107");
    window = ORLO::Dialog::DoModeless(
        resources.module(), resources.dialog(IDD_MAIN), nullptr, [&](HWND made) {
          window = made;
          list = GetDlgItem(made, IDC_LIST);
          return std::make_unique<UninstallDlg>(
              made, std::make_unique<UninstallDlgPara>(para), resources,
              DialogServices{reader_services(),
                             shell,
                             icons,
                             storage,
                             {inspected_installer, databases},
                             {background_internet, manual_internet, own_key, temporary_files, "",
                              [this] { end_process(); }},
                             update_settings,
                             checks_for_updates});
        });
  }

  UninstallReader::Services reader_services() {
    UninstallReader::Services services = system.over(read_registry, false);
    services.apply_thread_language = &apply_language;
    return services;
  }

  void add(const std::string& key, const char16_t* name, const char16_t* date) {
    registry.set_text(kUninstall + key, "DisplayName", name);
    registry.set_text(kUninstall + key, "InstallDate", date);
  }

  /// What the sender gets as an answer.
  template <typename Notice>
  LRESULT notify(Notice& notice, NMHDR& header, HWND from, UINT code) const {
    header = {from, static_cast<UINT_PTR>(GetDlgCtrlID(from)), code};
    return SendMessageA(window, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&notice));
  }
  LPARAM id_at(int row) const {
    LVITEMA item = {};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    SendMessageA(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    return item.lParam;
  }
  int header_format(int column) const {
    HDITEMA item = {};
    item.mask = HDI_FORMAT;
    SendMessageA(ListView_GetHeader(list), HDM_GETITEMA, static_cast<WPARAM>(column),
                 reinterpret_cast<LPARAM>(&item));
    return item.fmt & (HDF_SORTDOWN | HDF_SORTUP);
  }
  void click_header(UINT code, int column) const {
    NMHEADERA notice = {};
    notice.iItem = column;
    notify(notice, notice.hdr, ListView_GetHeader(list), code);
  }
  RECT place() const {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return rect;
  }
  String text_of(int control) const { return ORLO::window_text(GetDlgItem(window, control)); }
  void command(unsigned id) const { SendMessageA(window, WM_COMMAND, id, 0); }

  static std::string system_temporary_folder() {
    char path[MAX_PATH] = "";
    return std::string(path, GetTempPathA(MAX_PATH, path));
  }
  static void apply_language() {
    ++languages;
    language_applied = true;
  }
  /// How many threads have set theirs.
  static inline std::atomic<int> languages{0};
  static inline thread_local bool language_applied = false;

  const Resources resources{GetModuleHandleA(nullptr), kEnglish};
  MemoryRegistry registry{MemoryRegistry::View::native};
  /// Holds the reader in its pass.
  TestGate reading;
  HookedRegistry read_registry{registry, [this](const std::string& operation, uint32_t) {
                                 if (operation == "subkey_at") reading.pass();
                               }};
  MemorySystem system;
  MemoryFiles& files = system.files;
  MemoryShell shell;
  MemoryStorage storage;
  MemoryInstaller inspected_installer;
  MemoryInstallerDatabases databases;
  MemoryInternet background_internet;
  MemoryInternet manual_internet;
  MemoryOwnKey own_key;
  FolderTemporaryFiles temporary_files{system_temporary_folder()};
  UpdateSettings update_settings;
  bool checks_for_updates = false;
  /// What comes in the place of the process's end, on the thread that asks for it.
  std::function<void()> end_process = [] { ADD_FAILURE() << "the process would have ended"; };
  GatedIcons icons;
  HWND window = nullptr;
  HWND list = nullptr;
};

/// With a package that can be modified and uninstalled, on line 0.
class ChoosingUninstallDlgTest : public UninstallDlgTest {
 protected:
  ChoosingUninstallDlgTest() {
    add_commands();
    refresh_by_change();
  }
  explicit ChoosingUninstallDlgTest(Unopened unopened) : UninstallDlgTest(unopened) {
    add_commands();
  }
  void add_commands() {
    set("Birch", "UninstallString", u"C:\\un.exe /x");
    set("Birch", "ModifyPath", u"C:\\mod.exe");
    set("Birch", "InstallLocation", u"C:\\birch");
    files.add_file("C:\\un.exe");
    files.add_file("C:\\mod.exe");
  }
  void set(const std::string& key, const char* value, const char16_t* text) {
    registry.set_text(kUninstall + key, value, text);
  }
  void refresh_by_change() const { SendMessageA(window, WM_APP, 0, 0); }
  void choose(int row) const {
    LVITEMA item = {};
    item.stateMask = LVIS_FOCUSED | LVIS_SELECTED;
    SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
    item.state = item.stateMask;
    SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    mark(row);
  }
  /// Moves the selection mark, which nobody is told of.
  void mark(int row) const { SendMessageA(list, LVM_SETSELECTIONMARK, 0, row); }
  bool enabled(int control) const { return IsWindowEnabled(GetDlgItem(window, control)) != FALSE; }
  bool count_is(const char* text) const { return std::string(text_of(IDC_STATUS).c_str()) == text; }
  /// Lets messages flow until something holds; false if it never did.
  static bool pump_until(const std::function<bool()>& holds) {
    for (int i = 0; i < 1000 && !holds(); ++i)
      ORLO::sleep_with_messages(10);
    return holds();
  }
  /// Handles what has been posted.
  static void pump_posted() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;)
      DispatchMessageA(&message);
  }
  int image_of(int row) const {
    LVITEMA item = {};
    item.mask = LVIF_IMAGE;
    item.iItem = row;
    SendMessageA(list, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    return item.iImage;
  }
  HICON pane_icon() const {
    return reinterpret_cast<HICON>(SendDlgItemMessageA(window, IDC_PANE_ICON, STM_GETICON, 0, 0));
  }
  /// The test program itself has an icon.
  static std::u16string own_icon() {
    char path[MAX_PATH] = "";
    const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
    return std::u16string(path, path + length) + u",0";
  }
  /// Returns with the icon thread in an extraction, and the list's lock in its hand.
  void hold_icon_thread() {
    icons.gate.shut();
    set("Birch", "DisplayIcon", own_icon().c_str());
    refresh_by_change();
    // Without messages: one of them may tell of the change above, and its refresh would wait here
    // for the lock.
    for (int i = 0; i < 4000 && !icons.gate.reached(); ++i)
      Sleep(5);
    ASSERT_TRUE(icons.gate.reached());
  }
};
