#include "orlo/window.h"

#include <iterator>

#include "orlo/controller_call.h"
#include "orlo/core_resources.h"
#include "orlo/exception.h"
#include "orlo/thread.h"

namespace ORLO {
namespace {

constexpr UINT kIconOfCoreModule = 1;

struct ClassPlan {
  const char* name;
  UINT style;
  bool has_icon;
};

/// By Window::Kind.
constexpr ClassPlan kClasses[] = {
    {"ORLOGenericControl", 0, false},
    {"ORLODblClkControl", CS_DBLCLKS, false},
    {"ORLOGenericWindow", 0, true},
};

CriticalSection& class_lock() {
  static CriticalSection section;
  return section;
}

/// Stays with the window class to the end of the process.
HICON window_icon() {
  OwnedIcon icon = CoreResources().icon(kIconOfCoreModule);
  return icon ? icon.release() : LoadIconA(nullptr, IDI_APPLICATION);
}

ATOM register_class(const ClassPlan& plan, WNDPROC procedure) {
  WNDCLASSEXA record = {};
  record.cbSize = sizeof record;
  record.style = plan.style;
  record.lpfnWndProc = procedure;
  record.hInstance = GetModuleHandleA(nullptr);
  record.hIcon = plan.has_icon ? window_icon() : nullptr;
  record.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  record.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  record.lpszClassName = plan.name;
  const ATOM atom = RegisterClassExA(&record);
  if (atom == 0) throw LWE();
  return atom;
}

}  // namespace

struct Window::Start {
  const Factory* factory;
  bool window_made = false;
};

ATOM Window::class_of(Kind kind) {
  static ATOM registered[std::size(kClasses)] = {};
  const auto index = static_cast<size_t>(kind);
  const Lock hold(class_lock());
  if (registered[index] == 0) {
    registered[index] = register_class(kClasses[index], &Window::window_proc);
  }
  return registered[index];
}

HWND Window::create(const Setup& setup, const Factory& factory) {
  const ATOM window_class = class_of(setup.kind);
  Start start{&factory};
  const RECT& place = setup.place;
  const bool placed = place.left != CW_USEDEFAULT;
  const HWND window =
      CreateWindowExA(0, MAKEINTATOM(window_class), setup.title, setup.style, place.left, place.top,
                      placed ? width(place) : CW_USEDEFAULT, placed ? height(place) : CW_USEDEFAULT,
                      setup.parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(setup.control_id)),
                      GetModuleHandleA(nullptr), &start);
  if (window == nullptr && !start.window_made) throw LWE();
  return window;
}

LRESULT CALLBACK Window::window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  Controller* const controller = plain_controller_of_own_window(window);
  if (controller == nullptr) {
    if (message != WM_CREATE) return DefWindowProcA(window, message, wparam, lparam);
    const auto* setup = reinterpret_cast<const CREATESTRUCTA*>(lparam);
    auto* const start_data = static_cast<Start*>(setup->lpCreateParams);
    // Whoever makes a window of the class by himself has no controller for it.
    return start_data != nullptr ? start(window, *start_data) : -1;
  }
  ControllerCall call(*controller, message, wparam, lparam);
  if (message == WM_DESTROY || message == WM_NCDESTROY) {
    call.dispose();
    return 0;
  }
  const LRESULT result = guarded(window, message, [&] { return call.route(0); });
  return message == WM_COMMAND ? 0 : result;
}

LRESULT Window::start(HWND window, Start& start) {
  start.window_made = true;
  bool made = false;
  guarded(window, WM_CREATE, [&]() -> LRESULT {
    auto controller = (*start.factory)(window);
    if (controller == nullptr) return 0;
    controller->attach(GWLP_USERDATA);
    // The window owns it from here on.
    static_cast<void>(controller.release());
    made = true;
    return 0;
  });
  return made ? 0 : -1;
}

}  // namespace ORLO
