#include "window_win.h"

#include <functional>
#include <vector>

#include "command.h"
#include "remote_win.h"

namespace driver {
namespace {

constexpr DWORD kPollMilliseconds = 10;
constexpr int kSettleRounds = 3;
constexpr DWORD kSettlePause = 10;  // milliseconds

BOOL CALLBACK add_window(HWND window, LPARAM list) {
  reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

std::vector<HWND> top_level_windows() {
  std::vector<HWND> windows;
  EnumWindows(add_window, as_lparam(&windows));
  return windows;
}

DWORD process_of(HWND window) {
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  return pid;
}

/// The title as the system keeps it: a window whose thread is busy has one too.
std::string window_title(HWND window) {
  wchar_t wide[256];
  const int length = InternalGetWindowText(window, wide, 256);
  char narrow[512];
  const int bytes =
      WideCharToMultiByte(CP_ACP, 0, wide, length, narrow, sizeof narrow, nullptr, nullptr);
  return std::string(narrow, static_cast<size_t>(std::max(bytes, 0)));
}

void write_window(Json& answer, HWND window) {
  RECT frame{};
  RECT client{};
  GetWindowRect(window, &frame);
  GetClientRect(window, &client);
  answer.begin_object()
      .member("handle", handle_number(window))
      .member("pid", process_of(window))
      .member("class", window_class(window))
      .member("title", window_title(window))
      .flag("visible", IsWindowVisible(window) != FALSE)
      .flag("enabled", IsWindowEnabled(window) != FALSE)
      .flag("iconic", IsIconic(window) != FALSE)
      .flag("zoomed", IsZoomed(window) != FALSE)
      .flag("foreground", GetForegroundWindow() == window)
      .member("owner", handle_number(GetWindow(window, GW_OWNER)))
      .member("style", static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE)));
  write_rect(answer, "frame", frame);
  write_rect(answer, "client", client);
  answer.end_object();
}

/// What a window has to be; 0 and empty texts stand for any.
struct Wanted {
  DWORD pid;
  std::string window_class;
  std::string title;

  bool fits(HWND window) const {
    return IsWindowVisible(window) && (pid == 0 || process_of(window) == pid) &&
           (window_class.empty() || driver::window_class(window) == window_class) &&
           (title.empty() || window_title(window) == title);
  }
};

Wanted wanted_in(const Words& words) {
  return {static_cast<DWORD>(words.number(1)), words.text(2), words.text(3)};
}

HWND find_window(const Wanted& wanted) {
  for (const HWND window : top_level_windows()) {
    if (wanted.fits(window)) return window;
  }
  return nullptr;
}

/// Asks until the condition holds; false at the limit or when the process (0: none) has ended.
bool wait_until(const std::function<bool()>& condition, int64_t limit, DWORD pid) {
  const KernelHandle process(pid != 0 ? OpenProcess(SYNCHRONIZE, FALSE, pid) : nullptr);
  const KernelHandle never(process ? nullptr : CreateEventA(nullptr, TRUE, FALSE, nullptr));
  const ULONGLONG start = GetTickCount64();
  while (!condition()) {
    if (GetTickCount64() - start > static_cast<ULONGLONG>(limit)) return false;
    const DWORD waited =
        WaitForSingleObject(process ? process.get() : never.get(), kPollMilliseconds);
    if (waited == WAIT_OBJECT_0) return condition();
  }
  return true;
}

void list_windows(const Words& words, Json& answer) {
  const auto pid = static_cast<DWORD>(words.number_or(1, 0));
  answer.begin_array();
  for (const HWND window : top_level_windows()) {
    if (pid == 0 || process_of(window) == pid) write_window(answer, window);
  }
  answer.end_array();
}

/// wait-window PID CLASS TITLE LIMIT
void wait_window(const Words& words, Json& answer) {
  const Wanted wanted = wanted_in(words);
  HWND found = nullptr;
  const auto appeared = [&] { return (found = find_window(wanted)) != nullptr; };
  if (!wait_until(appeared, words.number(4), wanted.pid)) {
    throw Refusal("no window of class \"" + wanted.window_class + "\" with title \"" +
                  wanted.title + "\"");
  }
  write_window(answer, found);
}

/// wait-gone WINDOW LIMIT
void wait_gone(const Words& words, Json& answer) {
  const HWND window =
      reinterpret_cast<HWND>(static_cast<intptr_t>(words.number(1)));  // may be gone already
  if (!wait_until([&] { return !IsWindow(window); }, words.number(2), 0)) {
    throw Refusal("the window is still there");
  }
  answer.boolean(true);
}

void show_window_state(const Words& words, Json& answer) {
  write_window(answer, window_at(words, 1));
}

/// send WINDOW MESSAGE WPARAM LPARAM
void send_message(const Words& words, Json& answer) {
  answer.number(send_limited(window_at(words, 1), static_cast<UINT>(words.number(2)),
                             static_cast<WPARAM>(words.number(3)),
                             static_cast<LPARAM>(words.number(4))));
}

/// post WINDOW MESSAGE WPARAM LPARAM
void post_message(const Words& words, Json& answer) {
  const BOOL posted =
      PostMessageA(window_at(words, 1), static_cast<UINT>(words.number(2)),
                   static_cast<WPARAM>(words.number(3)), static_cast<LPARAM>(words.number(4)));
  if (!posted) throw Refusal("the message can't be posted");
  answer.boolean(true);
}

/// move WINDOW LEFT TOP WIDTH HEIGHT
void move_window(const Words& words, Json& answer) {
  const HWND window = window_at(words, 1);
  SetWindowPos(window, nullptr, static_cast<int>(words.number(2)),
               static_cast<int>(words.number(3)), static_cast<int>(words.number(4)),
               static_cast<int>(words.number(5)), SWP_NOZORDER | SWP_NOACTIVATE);
  write_window(answer, window);
}

/// show WINDOW COMMAND
void show_window(const Words& words, Json& answer) {
  const HWND window = window_at(words, 1);
  ShowWindow(window, static_cast<int>(words.number(2)));
  write_window(answer, window);
}

/// min-size WINDOW: [width, height] that WM_GETMINMAXINFO gives. The system carries this message's
/// record across processes itself.
void min_size(const Words& words, Json& answer) {
  MINMAXINFO info{};
  send_limited(window_at(words, 1), WM_GETMINMAXINFO, 0, as_lparam(&info));
  answer.begin_array().number(info.ptMinTrackSize.x).number(info.ptMinTrackSize.y).end_array();
}

/// focus WINDOW: dialog id of the control with the keyboard focus in the window's thread.
void focused_control(const Words& words, Json& answer) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  if (!GetGUIThreadInfo(GetWindowThreadProcessId(window_at(words, 1), nullptr), &info)) {
    throw Refusal("the thread's focus can't be read");
  }
  answer.number(info.hwndFocus != nullptr ? GetDlgCtrlID(info.hwndFocus) : 0);
}

/// in-menu WINDOW: whether a menu of the window's thread is open.
void is_in_menu(const Words& words, Json& answer) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  answer.boolean(GetGUIThreadInfo(GetWindowThreadProcessId(window_at(words, 1), nullptr), &info) &&
                 (info.flags & GUI_INMENUMODE) != 0);
}

/// post-thread WINDOW MESSAGE: to the window's thread itself.
void post_to_thread(const Words& words, Json& answer) {
  const DWORD thread = GetWindowThreadProcessId(window_at(words, 1), nullptr);
  if (!PostThreadMessageA(thread, static_cast<UINT>(words.number(2)), 0, 0)) {
    throw Refusal("the message can't be posted");
  }
  answer.boolean(true);
}

/// Microseconds since it was made.
class Stopwatch {
 public:
  Stopwatch() {
    QueryPerformanceFrequency(&frequency_);
    QueryPerformanceCounter(&start_);
  }
  int64_t microseconds() const {
    LARGE_INTEGER now{};
    QueryPerformanceCounter(&now);
    return (now.QuadPart - start_.QuadPart) * 1000000 / frequency_.QuadPart;
  }

 private:
  LARGE_INTEGER frequency_{};
  LARGE_INTEGER start_{};
};

/// ping WINDOW TIMES LIMIT: for each time the microseconds until the window has answered.
void ping(const Words& words, Json& answer) {
  const HWND window = window_at(words, 1);
  answer.begin_array();
  for (int64_t i = 0; i < words.number(2); ++i) {
    const Stopwatch watch;
    if (SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, static_cast<UINT>(words.number(3)),
                            nullptr) == 0) {
      throw Refusal("no answer within the limit");
    }
    answer.number(watch.microseconds());
  }
  answer.end_array();
}

/// settle WINDOW: waits until the window has got what was posted to it. What is sent overtakes
/// that, so it is asked more than once, with pauses.
void settle(const Words& words, Json& answer) {
  const HWND window = window_at(words, 1);
  for (int i = 0; i < kSettleRounds; ++i) {
    if (i != 0) Sleep(kSettlePause);
    send_limited(window, WM_NULL, 0, 0);
  }
  answer.boolean(true);
}

/// send-timed WINDOW MESSAGE WPARAM LPARAM: the microseconds until the message has been handled,
/// and until all of the dialog around the window has been drawn anew.
void send_timed(const Words& words, Json& answer) {
  const HWND window = window_at(words, 1);
  const HWND dialog = GetAncestor(window, GA_ROOT);
  const Stopwatch watch;
  send_limited(window, static_cast<UINT>(words.number(2)), static_cast<WPARAM>(words.number(3)),
               static_cast<LPARAM>(words.number(4)));
  const int64_t handled = watch.microseconds();
  RedrawWindow(dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  const int64_t drawn = watch.microseconds();
  for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
       child = GetWindow(child, GW_HWNDNEXT)) {
    if (GetUpdateRect(child, nullptr, FALSE)) throw Refusal("a control has not been drawn");
  }
  answer.begin_array().number(handled).number(drawn).end_array();
}

BOOL CALLBACK find_undrawn(HWND window, LPARAM found) {
  auto& undrawn = *reinterpret_cast<bool*>(found);
  undrawn = undrawn || (IsWindowVisible(window) && GetUpdateRect(window, nullptr, FALSE));
  return undrawn ? FALSE : TRUE;
}

/// invalidate HANDLE: has the window drawn anew, once its thread comes to it.
void invalidate(const Words& words, Json& answer) {
  answer.boolean(InvalidateRect(window_at(words, 1), nullptr, TRUE) != FALSE);
}

/// drawn PID: whether no window of the process waits to be drawn.
void is_drawn(const Words& words, Json& answer) {
  bool undrawn = false;
  for (const HWND window : top_level_windows()) {
    if (process_of(window) != static_cast<DWORD>(words.number(1))) continue;
    find_undrawn(window, as_lparam(&undrawn));
    EnumChildWindows(window, find_undrawn, as_lparam(&undrawn));
  }
  answer.boolean(!undrawn);
}

constexpr Command kCommands[] = {
    {"windows", list_windows},
    {"drawn", is_drawn},
    {"invalidate", invalidate},
    {"wait-window", wait_window},
    {"wait-gone", wait_gone},
    {"window", show_window_state},
    {"send", send_message},
    {"post", post_message},
    {"move", move_window},
    {"show", show_window},
    {"min-size", min_size},
    {"focus", focused_control},
    {"post-thread", post_to_thread},
    {"in-menu", is_in_menu},
    {"ping", ping},
    {"settle", settle},
    {"send-timed", send_timed},
};

}  // namespace

HWND window_at(const Words& words, size_t index) {
  const auto window = reinterpret_cast<HWND>(static_cast<intptr_t>(words.number(index)));
  if (!IsWindow(window)) throw Refusal("no such window: " + words.text(index));
  return window;
}

HWND control_of(const Words& words) {
  const HWND control = GetDlgItem(window_at(words, 1), static_cast<int>(words.number(2)));
  if (control == nullptr) throw Refusal("no control " + words.text(2));
  return control;
}

int64_t handle_number(HWND window) {
  return static_cast<int64_t>(reinterpret_cast<intptr_t>(window));
}

std::string window_text(HWND window) {
  const auto length = static_cast<size_t>(send_limited(window, WM_GETTEXTLENGTH, 0, 0));
  std::string text(length + 1, '\0');
  const LRESULT copied = send_limited(window, WM_GETTEXT, text.size(), as_lparam(text.data()));
  text.resize(std::min(static_cast<size_t>(copied), length));
  return text;
}

std::string window_class(HWND window) {
  char name[257];
  return std::string(name, static_cast<size_t>(GetClassNameA(window, name, sizeof name)));
}

void write_rect(Json& answer, const char* name, const RECT& rect) {
  answer.key(name).begin_array().number(rect.left).number(rect.top).number(rect.right);
  answer.number(rect.bottom).end_array();
}

std::span<const Command> window_commands() {
  return kCommands;
}

}  // namespace driver
