#include "orlo/message_box.h"

#include <algorithm>
#include <utility>

#include "orlo/box_template.h"
#include "orlo/core_module.h"
#include "orlo/locale.h"
#include "orlo/report_state.h"
#include "orlo/window_helpers.h"

namespace ORLO {
namespace {

constexpr int kFailed = -1;
constexpr uint16_t kAnyLanguage = 0x400;
constexpr uint16_t kEnglish = 0x809;
/// The text is measured in a rectangle of this width, which it may well exceed.
constexpr int kTextWidth = 320;
constexpr char16_t kAllLetters[] = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

const wchar_t* native(const char16_t* text) noexcept {
  return reinterpret_cast<const wchar_t*>(text);
}

std::u16string widened(const char* text) {
  return system_locale().widen(text, text != nullptr ? strlen(text) : 0);
}

/// An open box. The list of them is under report_lock().
struct OpenBox {
  uint32_t flags;
  HFONT font;
  HWND window = nullptr;
  OpenBox* next = nullptr;
};

OpenBox* first_open_box = nullptr;

void enlist(OpenBox& box) noexcept {
  const Lock hold(report_lock());
  box.next = std::exchange(first_open_box, &box);
}

void delist(const OpenBox& box) noexcept {
  const Lock hold(report_lock());
  OpenBox** place = &first_open_box;
  while (*place != nullptr && *place != &box)
    place = &(*place)->next;
  if (*place != nullptr) *place = box.next;
}

/// Empty if the module is missing or has no caption for one of the buttons.
std::vector<std::u16string> captions_of(const std::vector<uint16_t>& ids) {
  const auto module = core_module();
  if (module == nullptr) return {};
  std::vector<std::u16string> captions;
  for (const uint16_t id : ids) {
    auto caption = module->wide_string(id, kAnyLanguage);
    if (caption.empty()) caption = module->wide_string(id, kEnglish);
    if (caption.empty()) return {};
    captions.push_back(std::move(caption));
  }
  return captions;
}

/// The screen with the boxes' font in it.
class MeasuringScreen {
 public:
  explicit MeasuringScreen(HFONT font) noexcept
      : screen_(GetDC(nullptr)), old_font_(SelectObject(screen_, font)) {}
  ~MeasuringScreen() {
    SelectObject(screen_, old_font_);
    ReleaseDC(nullptr, screen_);
  }
  MeasuringScreen(const MeasuringScreen&) = delete;
  MeasuringScreen& operator=(const MeasuringScreen&) = delete;

  PixelSize text(const std::u16string& text) const noexcept {
    RECT rect = {0, 0, kTextWidth, 0};
    DrawTextW(screen_, native(text.c_str()), static_cast<int>(text.size()), &rect,
              DT_CALCRECT | DT_NOPREFIX);
    return {width(rect), height(rect)};
  }
  int extent(const std::u16string& text) const noexcept {
    SIZE size = {};
    GetTextExtentPoint32W(screen_, native(text.c_str()), static_cast<int>(text.size()), &size);
    return size.cx;
  }
  PixelSize character(PixelSize otherwise) const noexcept {
    TEXTMETRICW metrics = {};
    if (old_font_ == nullptr || !GetTextMetricsW(screen_, &metrics)) return otherwise;
    return {average_width(extent(kAllLetters)), metrics.tmHeight};
  }

 private:
  const HDC screen_;
  const HGDIOBJ old_font_;
};

BoxMeasures measure(HFONT font, const std::u16string& text,
                    const std::vector<std::u16string>& captions) {
  const MeasuringScreen screen(font);
  const LONG units = GetDialogBaseUnits();
  BoxMeasures measures = {};
  measures.dialog_unit = {LOWORD(units), HIWORD(units)};
  measures.character = screen.character(measures.dialog_unit);
  measures.text = screen.text(text);
  measures.icon = {GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON)};
  for (const auto& caption : captions)
    measures.caption_width = std::max(measures.caption_width, screen.extent(caption));
  return measures;
}

/// Centres a box on its owner, or else on the screen.
void place_box(HWND window) {
  RECT box = {};
  RECT area = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  GetWindowRect(window, &box);
  const HWND owner = GetWindow(window, GW_OWNER);
  if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &area);
  SetWindowPos(window, nullptr, area.left + (width(area) - width(box)) / 2,
               area.top + (height(area) - height(box)) / 2, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  move_to_screen(window);
}

BOOL CALLBACK give_font(HWND control, LPARAM font) {
  SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(font), FALSE);
  return TRUE;
}

void start_box(HWND window, OpenBox& box) {
  box.window = window;
  SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(&box));
  if (box.font != nullptr) {
    EnumChildWindows(window, &give_font, reinterpret_cast<LPARAM>(box.font));
  }
  if (!has_cancel(box.flags)) {
    EnableMenuItem(GetSystemMenu(window, FALSE), SC_CLOSE, MF_BYCOMMAND | MF_GRAYED);
  }
  place_box(window);
  const auto ids = box_buttons(box.flags);
  SetFocus(GetDlgItem(window, ids[default_button(box.flags, ids.size())]));
  enlist(box);
}

void end_box(HWND window, const OpenBox& box, WORD id) {
  const bool is_control = GetDlgItem(window, id) != nullptr;
  if (is_control || (id == IDCANCEL && obeys_cancel(box.flags))) {
    EndDialog(window, box_answer(id));
  }
}

INT_PTR CALLBACK box_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_INITDIALOG) {
    start_box(window, *reinterpret_cast<OpenBox*>(lparam));
    // The focus is set.
    return FALSE;
  }
  auto* const box = reinterpret_cast<OpenBox*>(GetWindowLongPtrW(window, DWLP_USER));
  if (box == nullptr) return FALSE;
  switch (message) {
    case WM_COMMAND:
      end_box(window, *box, LOWORD(wparam));
      return TRUE;
    case WM_DESTROY:
      delist(*box);
      return FALSE;
    default:
      return FALSE;
  }
}

/// kFailed if there can be no box of our own.
INT_PTR own_box(HWND owner, const char* text, const char* caption, uint32_t flags) {
  const auto captions = captions_of(box_buttons(flags));
  if (captions.empty()) return kFailed;
  const auto font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
  const std::u16string wide_text = widened(text);
  const auto plan = box_template(flags, widened(caption), wide_text, captions,
                                 measure(font, wide_text, captions));
  if (plan.empty()) return kFailed;
  OpenBox box{flags, font};
  return DialogBoxIndirectParamW(GetModuleHandleW(nullptr),
                                 reinterpret_cast<const DLGTEMPLATE*>(plan.data()), owner,
                                 &box_proc, reinterpret_cast<LPARAM>(&box));
}

}  // namespace

int show_message_box(void* window, const char* text, const char* caption, uint32_t flags) noexcept {
  // An owner that has gone meanwhile would keep the box from appearing.
  const HWND owner = IsWindow(static_cast<HWND>(window)) ? static_cast<HWND>(window) : nullptr;
  try {
    const INT_PTR answer = own_box(owner, text, caption, flags);
    if (answer != kFailed) return static_cast<int>(answer);
  } catch (...) {
    // The system's box needs less memory than ours.
  }
  return MessageBoxA(owner, text, caption, flags);
}

}  // namespace ORLO
