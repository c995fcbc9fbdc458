#include "orlo/window_reports.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "orlo/core_module_win_test_support.h"
#include "orlo/report_test_support.h"
#include "orlo/thread_record.h"

namespace ORLO {
namespace {

/// A window that has something to paint.
class UnpaintedWindow {
 public:
  UnpaintedWindow()
      : window_(CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                nullptr, nullptr, nullptr)) {
    invalidate();
  }
  ~UnpaintedWindow() { DestroyWindow(window_); }
  UnpaintedWindow(const UnpaintedWindow&) = delete;
  UnpaintedWindow& operator=(const UnpaintedWindow&) = delete;

  void invalidate() const { InvalidateRect(window_, nullptr, FALSE); }
  bool is_valid() const { return GetUpdateRect(window_, nullptr, FALSE) == FALSE; }
  HWND window() const { return window_; }

 private:
  const HWND window_;
};

using Reporter = void (*)(HWND window, UINT message);

constexpr Reporter kReporters[] = {
    [](HWND window, UINT message) { report_in_window(Exception(), window, message); },
    [](HWND window, UINT message) { report_in_window(ComError(-1), window, message); },
    [](HWND window, UINT message) { report_in_window(std::runtime_error(""), window, message); },
    [](HWND window, UINT message) {
      report_in_message(Exception(), MSG{window, message, 0, 0, 0, {}});
    },
    [](HWND window, UINT message) {
      report_in_message(ComError(-1), MSG{window, message, 0, 0, 0, {}});
    },
    [](HWND window, UINT message) {
      report_in_message(std::runtime_error(""), MSG{window, message, 0, 0, 0, {}});
    },
};

TEST(WindowReports, ValidateAWindowThatCouldNotBePaintedBeforeAndAfter) {
  for (size_t i = 0; i < std::size(kReporters); ++i) {
    SCOPED_TRACE(i);
    const UnpaintedWindow window;
    ASSERT_FALSE(window.is_valid());
    TestReports reports;
    bool valid_behind_box = false;
    reports.while_open = [&] {
      valid_behind_box = window.is_valid();
      window.invalidate();
    };
    kReporters[i](window.window(), WM_PAINT);
    EXPECT_EQ(reports.shown.size(), 1u);
    EXPECT_TRUE(valid_behind_box);
    EXPECT_TRUE(window.is_valid());
  }
}

TEST(WindowReports, LeaveAWindowAloneThatFailedInSomethingElse) {
  for (size_t i = 0; i < std::size(kReporters); ++i) {
    SCOPED_TRACE(i);
    const UnpaintedWindow window;
    const TestReports reports;
    kReporters[i](window.window(), WM_SIZE);
    EXPECT_EQ(reports.shown.size(), 1u);
    EXPECT_FALSE(window.is_valid());
  }
}

TEST(WindowReports, LeaveOtherWindowsAloneWhereThereIsNone) {
  const UnpaintedWindow window;
  const TestReports reports;
  report_in_window(Exception(), nullptr, WM_PAINT);
  EXPECT_FALSE(window.is_valid());
}

/// Notes who owns a box, and ends it.
struct OwnerSeen {
  inline static HWND owner;
  static void CALLBACK look(HWND, UINT, UINT_PTR, DWORD) {
    const HWND box = GetActiveWindow();
    char name[10] = {};
    GetClassNameA(box, name, sizeof name);
    if (std::string(name) != "#32770") return;
    owner = GetWindow(box, GW_OWNER);
    PostMessageA(box, WM_COMMAND, IDOK, 0);
  }
};

TEST(WindowReports, BelongToTheWindowGivenOrElseToTheThreadsMainWindow) {
  const RealCoreModule present;
  const UnpaintedWindow main_window;
  const UnpaintedWindow other;
  current_thread_record()._hmainwnd = main_window.window();
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, &OwnerSeen::look);
  const auto owner_of = [](const std::function<void()>& report) {
    OwnerSeen::owner = nullptr;
    report();
    return OwnerSeen::owner;
  };
  EXPECT_EQ(owner_of([&] { report_exception(Exception(), other.window()); }), other.window());
  EXPECT_EQ(owner_of([&] { report_exception(Exception(), nullptr); }), main_window.window());
  EXPECT_EQ(owner_of([&] { report_std_exception(std::exception(), nullptr); }),
            main_window.window());
  // This kind has only one owner.
  EXPECT_EQ(owner_of([&] { report_com_error(ComError(-1), other.window()); }),
            main_window.window());
  KillTimer(nullptr, timer);
  current_thread_record()._hmainwnd = nullptr;
}

}  // namespace
}  // namespace ORLO
