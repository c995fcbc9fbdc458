// Shows one of each of the foundation's windows. "--core=FOLDER" says where the foundation's own
// module lies; "--opened TEXT" tells a running gallery that a link was opened.
#include <cstring>
#include <string>

#include "gallery_window.h"
#include "orlo/message_loop.h"
#include "orlo/report.h"
#include "orlo/thread_record.h"
#include "orlo/window.h"

namespace {

using gallery::GalleryWindow;

constexpr RECT kPlace = {60, 40, 720, 640};
constexpr const char* kOpened = "--opened ";
constexpr const char* kCore = "--core=";

int tell_running_gallery(const char* text) {
  const HWND running = FindWindowA("ORLOGenericWindow", GalleryWindow::kTitle);
  if (running == nullptr) return 1;
  COPYDATASTRUCT data = {};
  data.cbData = static_cast<DWORD>(std::strlen(text));
  data.lpData = const_cast<char*>(text);
  return SendMessageA(running, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)) == 1 ? 0 : 1;
}

int show() {
  InitCommonControls();
  ORLO::Window::Setup setup;
  setup.title = GalleryWindow::kTitle;
  setup.style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
  setup.place = kPlace;
  const HWND window =
      ORLO::Window::create(setup, [](HWND made) { return std::make_unique<GalleryWindow>(made); });
  if (window == nullptr) return 1;
  ORLO::current_thread_record()._hmainwnd = window;
  ShowWindow(window, SW_SHOW);
  return ORLO::run_message_loop();
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR command_line, int) {
  if (std::strncmp(command_line, kOpened, std::strlen(kOpened)) == 0) {
    return tell_running_gallery(command_line + std::strlen(kOpened));
  }
  if (std::strncmp(command_line, kCore, std::strlen(kCore)) == 0) {
    SetEnvironmentVariableA("PATH", command_line + std::strlen(kCore));
  }
  try {
    return show();
  } catch (const ORLO::Exception& exception) {
    ORLO::report_exception(exception, nullptr);
  } catch (const std::exception& exception) {
    ORLO::report_std_exception(exception, nullptr);
  }
  return 1;
}
