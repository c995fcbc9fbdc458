#include "gallery_window.h"

#include "demos.h"
#include "gallery_ids.h"
#include "orlo/com_objects.h"
#include "orlo/exception.h"
#include "orlo/file_dialog.h"
#include "orlo/message_wait.h"
#include "orlo/wait_cursor.h"
#include "orlo/window.h"
// This needs what orlowin.h brings.
#include <commdlg.h>

namespace gallery {
namespace {

constexpr uint32_t kPatience = 20000;

HWND make_child(HWND parent, const char* window_class, const char* text, DWORD style, RECT place,
                int id) {
  return CreateWindowExA(0, window_class, text, WS_CHILD | WS_VISIBLE | style, place.left,
                         place.top, ORLO::width(place), ORLO::height(place), parent,
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                         GetModuleHandleA(nullptr), nullptr);
}

struct NamedCursor {
  LPCSTR id;
  const char* name;
};

}  // namespace

struct GalleryWindow::Demo {
  const char* label;
  void (GalleryWindow::*run)();
};

/// By their ids, from IDC_FIRST_DEMO.
const GalleryWindow::Demo GalleryWindow::kDemos[] = {
    {"Note", &GalleryWindow::show_modal_note},
    {"Links", &GalleryWindow::show_modeless_links},
    {"Rows", &GalleryWindow::show_rows},
    {"Wait", &GalleryWindow::wait},
    {"Go on", &GalleryWindow::go_on},
    {"File", &GalleryWindow::ask_file_name},
    {"Fail", &GalleryWindow::fail},
    {"Bad paint", &GalleryWindow::paint_badly},
    {"Object", &GalleryWindow::toggle_object},
    {"Crowd", &GalleryWindow::show_many},
};

GalleryWindow::GalleryWindow(HWND window)
    : Controller(window),
      log_(make_child(window, "EDIT", "", ES_MULTILINE | ES_READONLY | WS_VSCROLL | WS_BORDER,
                      {330, 10, 630, 400}, IDC_LOG)),
      cursor_name_(make_child(window, "STATIC", "", 0, {150, 10, 320, 30}, IDC_CURSOR)) {
  make_buttons();
  make_pads();
  mouse_hook_ = std::make_unique<ORLO::ScopedMessageHook>([this](MSG& message) {
    if (message.message == WM_MOUSEMOVE) name_cursor();
    return false;
  });
}

GalleryWindow::~GalleryWindow() = default;

void GalleryWindow::make_buttons() {
  LONG top = 10;
  int id = IDC_FIRST_DEMO;
  for (const Demo& demo : kDemos) {
    make_child(_hwnd, "BUTTON", demo.label, WS_TABSTOP, {10, top, 130, top + 28}, id++);
    top += 36;
  }
}

void GalleryWindow::make_pads() {
  using Kind = ORLO::Window::Kind;
  const auto make = [this](Kind kind, LONG top, int id, const ORLO::Window::Factory& factory) {
    ORLO::Window::Setup setup;
    setup.kind = kind;
    setup.style = WS_CHILD | WS_VISIBLE;
    setup.place = {150, top, 320, top + 80};
    setup.parent = _hwnd;
    setup.control_id = id;
    ORLO::Window::create(setup, factory);
  };
  make(Kind::control, 40, IDC_PAD,
       [this](HWND made) { return std::make_unique<Pad>(made, "pad", log_); });
  make(Kind::double_click_control, 130, IDC_DOUBLE_PAD,
       [this](HWND made) { return std::make_unique<Pad>(made, "double pad", log_); });
  // At the lower edge, where no box covers it.
  make(Kind::control, 480, IDC_BAD_PAD, [this](HWND made) {
    auto pad = std::make_unique<BadPad>(made, log_);
    bad_pad_ = pad.get();
    return pad;
  });
}

LRESULT GalleryWindow::WndProc(UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == ORLO::kMsgTranslate) {
    const MSG& key = *reinterpret_cast<const MSG*>(lparam);
    if (key.message != WM_KEYDOWN || key.wParam != VK_F5) return 0;
    log_.add("gallery F5");
    return 1;
  }
  if (message == WM_COPYDATA) {
    // From a second process that was started to open a link.
    const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lparam);
    const auto* const text = static_cast<const char*>(data.lpData);
    log_.add(String::formatted("opened %s", String(text, text + data.cbData).c_str()));
    return 1;
  }
  return Controller::WndProc(message, wparam, lparam);
}

LRESULT GalleryWindow::Command(unsigned id, unsigned code, HWND) {
  if (id == kPadCommand) {
    log_.add(String::formatted("command %d %d", id, code));
    return 31;
  }
  if (id < IDC_FIRST_DEMO || id >= IDC_FIRST_DEMO + std::size(kDemos)) return 0;
  if (code == BN_CLICKED) (this->*kDemos[id - IDC_FIRST_DEMO].run)();
  return 0;
}

LRESULT GalleryWindow::Frame(unsigned id) {
  log_.add(String::formatted("frame %d", id));
  return 32;
}

void GalleryWindow::show_modal_note() {
  show_note(_hwnd, log_);
}

void GalleryWindow::show_modeless_links() {
  show_links(_hwnd, log_);
}

void GalleryWindow::show_rows() {
  show_list(_hwnd, log_);
}

void GalleryWindow::show_many() {
  show_crowd(_hwnd, log_);
}

void GalleryWindow::wait() {
  const ORLO::WaitCursor cursor;
  log_.add("waiting");
  ORLO::Waitable* const items[] = {&go_};
  const bool came = ORLO::wait_with_messages(items, 1, kPatience) == 0;
  log_.add(came ? "waited" : "waited in vain");
}

void GalleryWindow::go_on() {
  go_.set();
}

void GalleryWindow::ask_file_name() {
  ORLO::SaveFileDialog dialog;
  dialog.title = "Save a sample";
  dialog.file_name = "Sample.txt";
  dialog.default_extension = "txt";
  dialog.filter = "Text (*.txt)|*.txt|All files (*.*)|*.*|";
  dialog.flags = OFN_OVERWRITEPROMPT | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_EXPLORER;
  log_.add(String::formatted("file %s", dialog.ask(_hwnd).c_str()));
}

void GalleryWindow::fail() {
  const ORLO::ExceptionContext context("failing on purpose", "the gallery");
  throw ORLO::UserException("so it was wanted");
}

void GalleryWindow::paint_badly() {
  bad_pad_->turn_bad();
}

void GalleryWindow::toggle_object() {
  object_alive_ = !object_alive_;
  if (object_alive_) {
    ORLO::com_objects().object_made();
  } else {
    ORLO::com_objects().object_gone();
  }
  log_.add(object_alive_ ? "object made" : "object gone");
}

void GalleryWindow::name_cursor() const {
  static const NamedCursor kNamed[] = {
      {IDC_ARROW, "arrow"}, {IDC_WAIT, "wait"}, {IDC_HAND, "hand"}, {IDC_IBEAM, "beam"}};
  const HCURSOR shown = GetCursor();
  const char* name = "other";
  for (const NamedCursor& cursor : kNamed) {
    if (LoadCursorA(nullptr, cursor.id) == shown) name = cursor.name;
  }
  SetWindowTextA(cursor_name_, name);
}

}  // namespace gallery
