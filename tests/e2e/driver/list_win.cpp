// A report-mode list view of another process. Its messages carry pointers that the system doesn't
// carry across, so each goes through a block in the other process.
#include <windows.h>

#include <commctrl.h>

#include <vector>

#include "command.h"
#include "remote_win.h"
#include "window_win.h"

namespace driver {
namespace {

constexpr size_t kTextLimit = 8192;

/// One list view with a block for a record and a text behind it.
class ForeignList {
 public:
  explicit ForeignList(HWND list)
      : list_(list),
        process_(open_process_of(list)),
        block_(process_.get(), kRecord + kTextLimit) {}

  int64_t count() const { return send_limited(list_, LVM_GETITEMCOUNT, 0, 0); }
  HWND header() const { return reinterpret_cast<HWND>(send_limited(list_, LVM_GETHEADER, 0, 0)); }

  std::string cell(int64_t row, int column) const {
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text_address();
    item.cchTextMax = kTextLimit;
    block_.write(&item, sizeof item);
    send(list_, LVM_GETITEMTEXTA, static_cast<WPARAM>(row));
    return block_.read_text(kRecord, kTextLimit);
  }

  /// Pixels that a text takes in the list's font.
  LRESULT text_width(const std::string& text) const {
    block_.write(text.c_str(), text.size() + 1);
    return send(list_, LVM_GETSTRINGWIDTHA, 0);
  }

  LVITEMA item(int64_t row) const {
    LVITEMA item{};
    item.mask = LVIF_PARAM | LVIF_IMAGE | LVIF_STATE;
    item.iItem = static_cast<int>(row);
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    block_.write(&item, sizeof item);
    if (send(list_, LVM_GETITEMA, 0) == 0) throw Refusal("the list has no such row");
    block_.read(&item, sizeof item);
    return item;
  }

  void set_state(int64_t row, UINT state) const {
    LVITEMA item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = state;
    block_.write(&item, sizeof item);
    if (send(list_, LVM_SETITEMSTATE, static_cast<WPARAM>(row)) == 0) {
      throw Refusal("the list has no such row");
    }
  }

  /// Title and, in the item, width and format of a column.
  std::string column(HWND header, WPARAM index, HDITEMA& item) const {
    item = HDITEMA{};
    item.mask = HDI_TEXT | HDI_WIDTH | HDI_FORMAT | HDI_ORDER;
    item.pszText = text_address();
    item.cchTextMax = kTextLimit;
    block_.write(&item, sizeof item);
    if (send(header, HDM_GETITEMA, index) == 0) throw Refusal("the header has no such item");
    block_.read(&item, sizeof item);
    return block_.read_text(kRecord, kTextLimit);
  }

  /// Of a cell, or of a header item with the header and HDM_GETITEMRECT, in screen coordinates.
  RECT rect(HWND window, UINT message, WPARAM index, const RECT& request) const {
    RECT result = request;
    block_.write(&result, sizeof result);
    if (send(window, message, index) == 0) throw Refusal("there is no such cell");
    block_.read(&result, sizeof result);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&result), 2);
    return result;
  }

 private:
  static constexpr size_t kRecord = 256;

  char* text_address() const { return block_.address() + kRecord; }
  LRESULT send(HWND window, UINT message, WPARAM wparam) const {
    return send_limited(window, message, wparam, as_lparam(block_.address()));
  }

  HWND list_;
  KernelHandle process_;
  RemoteBlock block_;
};

const char* alignment(int format) {
  switch (format & HDF_JUSTIFYMASK) {
    case HDF_RIGHT:
      return "right";
    case HDF_CENTER:
      return "center";
    default:
      return "left";
  }
}

const char* arrow(int format) {
  if ((format & HDF_SORTUP) != 0) return "up";
  return (format & HDF_SORTDOWN) != 0 ? "down" : "";
}

/// list-columns DIALOG ID
void read_columns(const Words& words, Json& answer) {
  const ForeignList list(control_of(words));
  const HWND header = list.header();
  const LRESULT count = send_limited(header, HDM_GETITEMCOUNT, 0, 0);
  answer.begin_array();
  for (LRESULT i = 0; i < count; ++i) {
    HDITEMA item;
    const std::string title = list.column(header, static_cast<WPARAM>(i), item);
    answer.begin_object().member("title", title).member("width", item.cxy);
    answer.member("align", alignment(item.fmt)).member("arrow", arrow(item.fmt));
    answer.member("order", item.iOrder).end_object();
  }
  answer.end_array();
}

/// list-rows DIALOG ID: every row from the top, with its number, image and texts.
void read_rows(const Words& words, Json& answer) {
  const ForeignList list(control_of(words));
  const auto columns = static_cast<int>(send_limited(list.header(), HDM_GETITEMCOUNT, 0, 0));
  const int64_t count = list.count();
  answer.begin_array();
  for (int64_t row = 0; row < count; ++row) {
    const LVITEMA item = list.item(row);
    answer.begin_object().member("id", static_cast<int64_t>(item.lParam));
    answer.member("image", item.iImage).flag("selected", (item.state & LVIS_SELECTED) != 0);
    answer.flag("focused", (item.state & LVIS_FOCUSED) != 0).key("cells").begin_array();
    for (int column = 0; column < columns; ++column)
      answer.text(list.cell(row, column));
    answer.end_array().end_object();
  }
  answer.end_array();
}

/// list-column DIALOG ID COLUMN: one text for each row, from the top.
void read_column(const Words& words, Json& answer) {
  const ForeignList list(control_of(words));
  const auto column = static_cast<int>(words.number(3));
  const int64_t count = list.count();
  answer.begin_array();
  for (int64_t row = 0; row < count; ++row)
    answer.text(list.cell(row, column));
  answer.end_array();
}

/// list-images DIALOG ID: the image index of each row, from the top.
void read_images(const Words& words, Json& answer) {
  const ForeignList list(control_of(words));
  const int64_t count = list.count();
  answer.begin_array();
  for (int64_t row = 0; row < count; ++row)
    answer.number(list.item(row).iImage);
  answer.end_array();
}

/// list-state DIALOG ID
void read_state(const Words& words, Json& answer) {
  const HWND list = control_of(words);
  const auto next = [list](WPARAM flags) {
    return send_limited(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), static_cast<LPARAM>(flags));
  };
  answer.begin_object().member("count", send_limited(list, LVM_GETITEMCOUNT, 0, 0));
  answer.member("selected", next(LVNI_SELECTED)).member("focused", next(LVNI_FOCUSED));
  answer.member("mark", send_limited(list, LVM_GETSELECTIONMARK, 0, 0));
  answer.member("top", send_limited(list, LVM_GETTOPINDEX, 0, 0));
  answer.member("extended", send_limited(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
  answer.end_object();
}

/// list-select DIALOG ID ROW: gives the row selection and focus.
void select_row(const Words& words, Json& answer) {
  const ForeignList list(control_of(words));
  list.set_state(words.number(3), LVIS_SELECTED | LVIS_FOCUSED);
  answer.boolean(true);
}

/// list-cell-rect DIALOG ID ROW COLUMN: on the screen.
void cell_rect(const Words& words, Json& answer) {
  const HWND window = control_of(words);
  const ForeignList list(window);
  const RECT request{LVIR_LABEL, static_cast<LONG>(words.number(4)), 0, 0};
  const RECT rect = list.rect(window, words.number(4) == 0 ? LVM_GETITEMRECT : LVM_GETSUBITEMRECT,
                              static_cast<WPARAM>(words.number(3)), request);
  answer.begin_object();
  write_rect(answer, "screen", rect);
  answer.end_object();
}

/// list-icon-rect DIALOG ID ROW: on the screen.
void icon_rect(const Words& words, Json& answer) {
  const HWND window = control_of(words);
  const ForeignList list(window);
  const RECT rect = list.rect(window, LVM_GETITEMRECT, static_cast<WPARAM>(words.number(3)),
                              RECT{LVIR_ICON, 0, 0, 0});
  answer.begin_object();
  write_rect(answer, "screen", rect);
  answer.end_object();
}

/// list-text-width DIALOG ID TEXT
void text_width(const Words& words, Json& answer) {
  answer.number(ForeignList(control_of(words)).text_width(words.text(3)));
}

/// header-rect DIALOG ID COLUMN: on the screen.
void header_rect(const Words& words, Json& answer) {
  const ForeignList list(control_of(words));
  const RECT rect =
      list.rect(list.header(), HDM_GETITEMRECT, static_cast<WPARAM>(words.number(3)), RECT{});
  answer.begin_object();
  write_rect(answer, "screen", rect);
  answer.end_object();
}

constexpr Command kCommands[] = {
    {"list-columns", read_columns},  {"list-column", read_column}, {"list-rows", read_rows},
    {"list-state", read_state},      {"list-select", select_row},  {"list-cell-rect", cell_rect},
    {"list-icon-rect", icon_rect},   {"list-images", read_images}, {"header-rect", header_rect},
    {"list-text-width", text_width},
};

}  // namespace

std::span<const Command> list_commands() {
  return kCommands;
}

}  // namespace driver
