#include <memory>

#include "demos.h"
#include "gallery_ids.h"
#include "orlo/core_resources.h"
#include "orlo/dialog_mixins.h"
#include "orlo/subclass_controller.h"
#include "orlo/window_helpers.h"

namespace gallery {
namespace {

using ORLO::ResizeRule;

constexpr ResizeRule kRules[] = {
    {IDC_NOTE, 2},         {IDC_COLOURED, 3}, {IDC_SWATCHES, 10}, {IDC_FRAME_ABOUT, 12},
    {IDC_FRAME_CLOSE, 12}, {IDOK, 15},        {IDCANCEL, 15},
};
constexpr COLORREF kGround = RGB(255, 230, 120);
constexpr COLORREF kSwatches[] = {RGB(200, 30, 60), RGB(30, 60, 200), RGB(20, 140, 80)};
constexpr UINT kSwatchHeight = 30;
constexpr int kExtraWidth = 40;
constexpr int kExtraHeight = 20;

/// A list box whose rows are coloured bars.
class Swatches : public ORLO::SubclassController {
 public:
  explicit Swatches(HWND list) : SubclassController(list) {}
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != ORLO::kMsgOwnerDraw) return SubclassController::WndProc(message, wparam, lparam);
    if (wparam == WM_MEASUREITEM) {
      reinterpret_cast<MEASUREITEMSTRUCT*>(lparam)->itemHeight = kSwatchHeight;
    } else {
      draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
    }
    return 1;
  }

 private:
  static void draw(const DRAWITEMSTRUCT& item) {
    if (item.itemID >= std::size(kSwatches)) return;
    SetDCBrushColor(item.hDC, kSwatches[item.itemID]);
    FillRect(item.hDC, &item.rcItem, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  }
};

/// An edit control that says by itself what it looks like.
class Coloured : public ORLO::SubclassController {
 public:
  explicit Coloured(HWND edit) : SubclassController(edit), brush_(CreateSolidBrush(kGround)) {}
  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != ORLO::kMsgCtlColor) return SubclassController::WndProc(message, wparam, lparam);
    SetBkColor(reinterpret_cast<HDC>(wparam), kGround);
    return reinterpret_cast<LRESULT>(brush_.get());
  }

 private:
  const ORLO::OwnedBrush brush_;
};

/// Loads and stores the note. An empty one can't be stored.
struct NotePara : ORLO::ParaStruct {
  void updateControls() override {
    if (!partial) {
      SetDlgItemTextA(hwnd, IDC_NOTE, note.c_str());
      return;
    }
    note = ORLO::window_text(GetDlgItem(hwnd, IDC_NOTE));
    if (note.empty()) throw ORLO::UserException("a note needs a text");
  }
  String note = "hello";
};

using NoteBase = ORLO::ResizeController<
    ORLO::CtlColorController<ORLO::OwnerDrawController<ORLO::DlgController>>>;

class NoteDlg : public NoteBase {
 public:
  NoteDlg(HWND window, const Log& log)
      : NoteBase(window, std::make_unique<NotePara>()),
        log_(log),
        swatches_(control(IDC_SWATCHES)),
        coloured_(control(IDC_COLOURED)) {
    exit_function = [this](ORLO::ParaStruct& stored) {
      log_.add(String::formatted("note %s", static_cast<NotePara&>(stored).note.c_str()));
    };
    resizer.add(kRules, std::size(kRules));
    resizer.init(window);
    resizer.set_size(kExtraWidth, kExtraHeight);
  }

  LRESULT Init(HWND focus_window) override {
    // Not before: the list asks the dialog for the height of each row that it gets.
    for (size_t i = 0; i < std::size(kSwatches); ++i)
      SendMessageA(control(IDC_SWATCHES), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(""));
    ORLO::center_window(_hwnd);
    return NoteBase::Init(focus_window);
  }

  LRESULT WndProc(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != ORLO::kMsgTranslate) return NoteBase::WndProc(message, wparam, lparam);
    const MSG& key = *reinterpret_cast<const MSG*>(lparam);
    if (key.message != WM_KEYDOWN || key.wParam != VK_F5) return 0;
    log_.add("note F5");
    return set_result(1);
  }

 private:
  const Log& log_;
  Swatches swatches_;
  Coloured coloured_;
};

}  // namespace

void show_note(HWND owner, const Log& log) {
  const HINSTANCE instance = GetModuleHandleA(nullptr);
  const INT_PTR result =
      ORLO::Dialog::DoModal(instance, ORLO::find_dialog(instance, IDD_NOTE), owner,
                            [&](HWND window) { return std::make_unique<NoteDlg>(window, log); });
  log.add(String::formatted("note ended %d", static_cast<int>(result)));
}

}  // namespace gallery
