#include "orlo/window.h"

#include "orlo/controller_call.h"
#include "orlo/exception.h"

namespace ORLO {
namespace {

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

const ClassPlan& plan_of(Window::Kind kind) {
  return kClasses[static_cast<size_t>(kind)];
}

}  // namespace

struct Window::Start {
  const Factory* factory;
  bool window_made = false;
};

void Window::register_class(Kind kind) {
  const ClassPlan& plan = plan_of(kind);
  const HINSTANCE instance = GetModuleHandleA(nullptr);
  WNDCLASSEXA record = {};
  record.cbSize = sizeof record;
  if (GetClassInfoExA(instance, plan.name, &record)) return;
  record = {};
  record.cbSize = sizeof record;
  record.style = plan.style;
  record.lpfnWndProc = &Window::window_proc;
  record.hInstance = instance;
  record.hIcon = plan.has_icon ? LoadIconA(nullptr, IDI_APPLICATION) : nullptr;
  record.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  record.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  record.lpszClassName = plan.name;
  if (RegisterClassExA(&record) == 0) throw LWE();
}

HWND Window::create(const Setup& setup, const Factory& factory) {
  register_class(setup.kind);
  Start start{&factory};
  const RECT& place = setup.place;
  const bool placed = place.left != CW_USEDEFAULT;
  const HWND window =
      CreateWindowExA(0, plan_of(setup.kind).name, setup.title, setup.style, place.left, place.top,
                      placed ? width(place) : CW_USEDEFAULT, placed ? height(place) : CW_USEDEFAULT,
                      setup.parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(setup.control_id)),
                      GetModuleHandleA(nullptr), &start);
  if (window == nullptr && !start.window_made) throw LWE();
  return window;
}

LRESULT CALLBACK Window::window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  Controller* const controller = attached_controller(window, GWLP_USERDATA);
  if (controller == nullptr) {
    if (message != WM_CREATE) return DefWindowProcA(window, message, wparam, lparam);
    const auto* setup = reinterpret_cast<const CREATESTRUCTA*>(lparam);
    return start(window, *static_cast<Start*>(setup->lpCreateParams));
  }
  ControllerCall call(*controller, message, wparam, lparam);
  if (message == WM_DESTROY) {
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
    controller.release();
    made = true;
    return 0;
  });
  return made ? 0 : -1;
}

}  // namespace ORLO
