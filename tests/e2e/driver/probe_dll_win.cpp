#include <windows.h>

#include <commctrl.h>

#include <cstring>
#include <memory>
#include <string>

#include "json.h"
#include "probe.h"

namespace driver {
namespace {

// Longer than any text of a list view.
constexpr size_t kCellLimit = 16 * 1024;

/// Has the program bring a popup's items up to date, as it does when the user opens it.
void announce_popup(HWND window, HMENU popup, int position, bool is_system_menu) {
  SendMessageA(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup),
               MAKELPARAM(position, is_system_menu));
}

/// Where an item stands on the screen; only while its menu is open.
void write_place(Json& answer, HMENU menu, int position) {
  RECT place{};
  if (!GetMenuItemRect(nullptr, menu, static_cast<UINT>(position), &place)) return;
  answer.key("screen").begin_array().number(place.left).number(place.top).number(place.right);
  answer.number(place.bottom).end_array();
}

void write_items(Json& answer, HWND window, HMENU menu, bool is_system_menu) {
  answer.begin_array();
  for (int position = 0; position < GetMenuItemCount(menu); ++position) {
    char text[512] = "";
    MENUITEMINFOA item{};
    item.cbSize = sizeof item;
    item.fMask = MIIM_FTYPE | MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_STRING;
    item.dwTypeData = text;
    item.cch = sizeof text;
    GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &item);
    answer.begin_object().member("id", item.wID).member("text", text);
    answer.flag("separator", (item.fType & MFT_SEPARATOR) != 0);
    answer.flag("gray", (item.fState & MFS_GRAYED) != 0);
    answer.flag("checked", (item.fState & MFS_CHECKED) != 0);
    write_place(answer, menu, position);
    if (item.hSubMenu != nullptr) {
      announce_popup(window, item.hSubMenu, position, is_system_menu);
      answer.key("items");
      write_items(answer, window, item.hSubMenu, is_system_menu);
    }
    answer.end_object();
  }
  answer.end_array();
}

void write_menu(Json& answer, HWND window) {
  write_items(answer, window, GetMenu(window), false);
}

void write_system_menu(Json& answer, HWND window) {
  write_items(answer, window, GetSystemMenu(window, FALSE), true);
}

/// The popup knows its menu.
void write_popup(Json& answer, HWND window) {
  const HWND popup = FindWindowA(kPopupClass, nullptr);
  const auto menu = reinterpret_cast<HMENU>(SendMessageA(popup, MN_GETHMENU, 0, 0));
  write_items(answer, window, menu, false);
}

struct ReleaseDcOf {
  HWND window;
  void operator()(HDC context) const { ReleaseDC(window, context); }
};

/// The part of a control that its text may fill; a text field has margins.
RECT room_of(HWND control) {
  RECT room{};
  GetClientRect(control, &room);
  char window_class[64] = "";
  GetClassNameA(control, window_class, sizeof window_class);
  if (std::strcmp(window_class, "Edit") == 0) {
    SendMessageA(control, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&room));
  }
  return room;
}

/// Each control's text as the program's own font draws it on one line, beside the room it has.
void write_extent(Json& answer, HWND control) {
  const std::unique_ptr<HDC__, ReleaseDcOf> context(GetDC(control), ReleaseDcOf{control});
  const auto font = reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
  if (font != nullptr) SelectObject(context.get(), font);
  char face[LF_FACESIZE] = "";
  GetTextFaceA(context.get(), sizeof face, face);
  char text[512] = "";
  GetWindowTextA(control, text, sizeof text);
  RECT needed{};
  DrawTextA(context.get(), text, -1, &needed, DT_SINGLELINE | DT_CALCRECT);
  const RECT room = room_of(control);
  answer.begin_object().member("id", GetDlgCtrlID(control)).member("text", text);
  answer.member("width", needed.right).member("height", needed.bottom);
  answer.member("room_width", room.right - room.left);
  answer.member("room_height", room.bottom - room.top);
  answer.member("face", face).end_object();
}

void write_extents(Json& answer, HWND window) {
  answer.begin_array();
  HWND child = GetWindow(window, GW_CHILD);
  for (; child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
    write_extent(answer, child);
  answer.end_array();
}

/// Dialog units to pixels, by the dialog's own font.
void write_units(Json& answer, HWND dialog, int x, int y) {
  RECT rect{0, 0, x, y};
  MapDialogRect(dialog, &rect);
  answer.begin_array().number(rect.right).number(rect.bottom).end_array();
}

void write_combo(Json& answer, HWND combo) {
  const LRESULT count = SendMessageA(combo, CB_GETCOUNT, 0, 0);
  answer.begin_object().member("selected", SendMessageA(combo, CB_GETCURSEL, 0, 0));
  answer.key("items").begin_array();
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    std::string text(static_cast<size_t>(SendMessageA(combo, CB_GETLBTEXTLEN, index, 0)) + 1, 0);
    SendMessageA(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()));
    answer.text(text.c_str());
  }
  answer.end_array().end_object();
}

void write_list_box(Json& answer, HWND box) {
  const LRESULT count = SendMessageA(box, LB_GETCOUNT, 0, 0);
  answer.begin_object().member("selected", SendMessageA(box, LB_GETCURSEL, 0, 0));
  answer.key("items").begin_array();
  for (LRESULT i = 0; i < count; ++i) {
    const auto index = static_cast<WPARAM>(i);
    // Of a text that is kept as wide characters this is more than its bytes.
    std::string text(static_cast<size_t>(SendMessageA(box, LB_GETTEXTLEN, index, 0)) + 1, 0);
    SendMessageA(box, LB_GETTEXT, index, reinterpret_cast<LPARAM>(text.data()));
    answer.text(text.c_str());
  }
  answer.end_array().end_object();
}

void write_list_cells(Json& answer, HWND list) {
  const auto header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
  const auto columns = static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0));
  const LRESULT rows = SendMessageA(list, LVM_GETITEMCOUNT, 0, 0);
  std::string text(kCellLimit, 0);
  answer.begin_array();
  for (LRESULT row = 0; row < rows; ++row) {
    answer.begin_array();
    for (int column = 0; column < columns; ++column) {
      LVITEMA item{};
      item.iSubItem = column;
      item.pszText = text.data();
      item.cchTextMax = static_cast<int>(kCellLimit);
      SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row),
                   reinterpret_cast<LPARAM>(&item));
      answer.text(text.c_str());
    }
    answer.end_array();
  }
  answer.end_array();
}

/// A tree on its way into an answer.
class TreeWriter {
 public:
  TreeWriter(Json& answer, HWND tree) : answer_(answer), tree_(tree) {}

  void write() {
    answer_.begin_array();
    write_children(next(TVGN_ROOT, nullptr), -1, 0);
    answer_.end_array();
  }

 private:
  HTREEITEM next(WPARAM which, HTREEITEM item) const {
    return reinterpret_cast<HTREEITEM>(
        SendMessageA(tree_, TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(item)));
  }

  void write_children(HTREEITEM first, int parent, int depth) {
    for (HTREEITEM item = first; item != nullptr; item = next(TVGN_NEXT, item)) {
      const int place = count_++;
      write_item(item, parent, depth);
      write_children(next(TVGN_CHILD, item), place, depth + 1);
    }
  }

  void write_item(HTREEITEM item, int parent, int depth) {
    char text[kTreeLimit] = "";
    TVITEMA about{};
    about.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
    about.hItem = item;
    about.stateMask = TVIS_EXPANDED | TVIS_SELECTED;
    about.pszText = text;
    about.cchTextMax = sizeof text;
    SendMessageA(tree_, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&about));
    answer_.begin_object().member("text", text).member("depth", depth).member("parent", parent);
    answer_.member("image", about.iImage).member("selected_image", about.iSelectedImage);
    answer_.flag("expanded", (about.state & TVIS_EXPANDED) != 0);
    answer_.flag("selected", (about.state & TVIS_SELECTED) != 0).end_object();
  }

  static constexpr int kTreeLimit = 512;

  Json& answer_;
  HWND tree_;
  int count_ = 0;
};

/// Has another thread of the program, that of a window, run a function: a message from one thread
/// to another costs as much as a thousand of a thread to itself.
class InThreadOf {
 public:
  using Function = void (*)(Json& answer, HWND window);

  InThreadOf(HWND window, Function function, Json& answer)
      : window_(window), function_(function), answer_(answer) {}

  void run() {
    current_ = this;
    hook_ = SetWindowsHookExA(WH_CALLWNDPROC, meet, nullptr,
                              GetWindowThreadProcessId(window_, nullptr));
    SendMessageA(window_, kMessage, 0, 0);
    release();
    current_ = nullptr;
  }

 private:
  static LRESULT CALLBACK meet(int code, WPARAM wparam, LPARAM lparam) {
    const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lparam);
    if (code != HC_ACTION || message.message != kMessage || message.hwnd != current_->window_) {
      return CallNextHookEx(nullptr, code, wparam, lparam);
    }
    // Every message would go by way of the hook, and be slow again.
    current_->release();
    current_->function_(current_->answer_, current_->window_);
    return 0;
  }

  void release() {
    if (hook_ != nullptr) UnhookWindowsHookEx(hook_);
    hook_ = nullptr;
  }

  // One that no control knows.
  static constexpr UINT kMessage = WM_APP + 0x3A7E;
  // The hook has nothing else to know it by. The driver asks one question at a time.
  static inline InThreadOf* current_ = nullptr;

  HWND window_;
  Function function_;
  Json& answer_;
  HHOOK hook_ = nullptr;
};

void write_tree(Json& answer, HWND tree) {
  TreeWriter(answer, tree).write();
}

/// Into memory of its own, which the driver frees.
void hand_over(const std::string& text, ProbeRequest& request) {
  void* const memory =
      VirtualAlloc(nullptr, text.size() + 1, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  if (memory == nullptr) return;
  std::memcpy(memory, text.c_str(), text.size() + 1);
  request.answer = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(memory));
  request.length = static_cast<uint32_t>(text.size());
}

void answer_request(ProbeRequest& request) {
  const auto window = reinterpret_cast<HWND>(static_cast<uintptr_t>(request.window));
  const HWND control = GetDlgItem(window, request.first);
  Json answer;
  switch (request.question) {
    case ProbeQuestion::menu:
      write_menu(answer, window);
      break;
    case ProbeQuestion::system_menu:
      write_system_menu(answer, window);
      break;
    case ProbeQuestion::text_extents:
      write_extents(answer, window);
      break;
    case ProbeQuestion::dialog_units:
      write_units(answer, window, request.first, request.second);
      break;
    case ProbeQuestion::popup:
      write_popup(answer, window);
      break;
    case ProbeQuestion::combo:
      write_combo(answer, control);
      break;
    case ProbeQuestion::list_box:
      InThreadOf(control, write_list_box, answer).run();
      break;
    case ProbeQuestion::list_cells:
      InThreadOf(control, write_list_cells, answer).run();
      break;
    case ProbeQuestion::tree:
      InThreadOf(control, write_tree, answer).run();
      break;
  }
  if (!answer.str().empty()) hand_over(answer.str(), request);
}

}  // namespace
}  // namespace driver

extern "C" __declspec(dllexport) DWORD WINAPI zolvane_probe(void* request) {
  driver::answer_request(*static_cast<driver::ProbeRequest*>(request));
  return 0;
}
