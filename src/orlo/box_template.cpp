#include "orlo/box_template.h"

#include <algorithm>
#include <iterator>

#include "orlo/message_box.h"

namespace ORLO {
namespace {

constexpr size_t kBlockWords = 8192 / sizeof(uint16_t);

constexpr uint32_t kBoxStyle = 0x90C80080;  // a visible pop-up with caption and system menu
constexpr uint32_t kSystemModalStyle = 0x2;
constexpr uint32_t kForegroundStyle = 0x200;
constexpr uint32_t kControlStyle = 0x50000000;  // a visible child
constexpr uint32_t kIconStyle = 0x3;
constexpr uint32_t kTextStyle = 0x8C;          // left, as many lines as there are, & is a character
constexpr uint32_t kButtonStyle = 0x00010000;  // reached by Tab
constexpr uint32_t kGroupStyle = 0x00020000;
constexpr uint32_t kDefaultStyle = 0x1;

constexpr uint16_t kNoId = 0xFFFF;
constexpr uint16_t kOrdinal = 0xFFFF;
constexpr uint16_t kButtonClass = 0x0080;
constexpr uint16_t kStaticClass = 0x0082;

// In dialog units.
constexpr int kMargin = 7;
constexpr int kGap = 4;
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;
constexpr int kUnitsPerWidth = 4;
constexpr int kUnitsPerHeight = 8;

constexpr uint32_t kButtonSetMask = 0xF;
constexpr uint32_t kDefaultMask = 0xF;
constexpr uint32_t kDefaultShift = 8;
constexpr uint32_t kIconMask = 0xF0;
constexpr uint16_t kFirstIcon = 0x7F01;
constexpr uint16_t kCancel = 2;

struct ButtonSet {
  uint16_t ids[3];
};

/// By the low four bits of the flags; unused places are 0.
constexpr ButtonSet kButtonSets[] = {{{1}}, {{1, 2}}, {{3, 4, 5}}, {{6, 7, 2}}, {{6, 7}}, {{4, 2}}};

struct ExtraButton {
  uint32_t flag;
  uint16_t id;
};

constexpr ExtraButton kExtraButtons[] = {{kBoxExtra8, 8}, {kBoxExtra9, 9}};

int rounded_up(int value, int divisor) noexcept {
  return divisor > 0 ? (value + divisor - 1) / divisor : value;
}

struct Place {
  int x, y, width, height;
};

/// All places in the units of the dialog.
struct Layout {
  Place icon;
  Place text;
  Place first_button;
  int width;
  int height;
};

/// Lays a box out; sizes in pixels become units here, rounded up so that nothing is cut off.
class Layouter {
 public:
  Layouter(const BoxMeasures& measures, bool has_icon, size_t buttons) noexcept
      : measures_(measures), has_icon_(has_icon), buttons_(static_cast<int>(buttons)) {}

  Layout lay_out() const noexcept {
    Layout layout = {};
    const PixelSize icon = has_icon_ ? units(measures_.icon) : PixelSize{};
    const PixelSize text = units(measures_.text);
    const PixelSize button = units(button_pixels());
    const int text_left = kMargin + (has_icon_ ? icon.width + kMargin : 0);
    const int body = std::max(icon.height, text.height);
    const int row = buttons_ * button.width + (buttons_ - 1) * kGap;
    layout.icon = {kMargin, kMargin, icon.width, icon.height};
    layout.text = {text_left, kMargin + (body - text.height) / 2, text.width, text.height};
    layout.width = std::max(text_left + text.width, kMargin + row) + kMargin;
    layout.first_button = {(layout.width - row) / 2, kMargin + body + kMargin, button.width,
                           button.height};
    layout.height = layout.first_button.y + button.height + kMargin;
    return layout;
  }

 private:
  PixelSize units(PixelSize pixels) const noexcept {
    return {rounded_up(pixels.width * kUnitsPerWidth, measures_.dialog_unit.width),
            rounded_up(pixels.height * kUnitsPerHeight, measures_.dialog_unit.height)};
  }
  PixelSize button_pixels() const noexcept {
    const PixelSize character = measures_.character;
    return {std::max(kButtonWidth * character.width / kUnitsPerWidth,
                     measures_.caption_width + 4 * character.width),
            kButtonHeight * character.height / kUnitsPerHeight};
  }

  const BoxMeasures& measures_;
  const bool has_icon_;
  const int buttons_;
};

class TemplateWriter {
 public:
  TemplateWriter() { words_.reserve(kBlockWords); }

  void word(uint32_t value) { words_.push_back(static_cast<uint16_t>(value)); }
  void double_word(uint32_t value) {
    word(value & 0xFFFF);
    word(value >> 16);
  }
  void text(const std::u16string& value) {
    words_.insert(words_.end(), value.begin(), value.end());
    word(0);
  }
  void place(const Place& place) {
    for (const int value : {place.x, place.y, place.width, place.height})
      word(static_cast<uint32_t>(std::min(value, 0x7FFF)));
  }
  /// Up to and with the class; title and creation data follow.
  void begin_item(uint32_t style, const Place& where, uint16_t id, uint16_t window_class) {
    if (words_.size() % 2 != 0) word(0);
    double_word(style | kControlStyle);
    double_word(0);
    place(where);
    word(id);
    word(kOrdinal);
    word(window_class);
  }
  void item(uint32_t style, const Place& where, uint16_t id, uint16_t window_class,
            const std::u16string& title) {
    begin_item(style, where, id, window_class);
    text(title);
    word(0);
  }
  void icon(const Place& where, uint16_t system_icon) {
    begin_item(kIconStyle, where, kNoId, kStaticClass);
    word(kOrdinal);
    word(system_icon);
    word(0);
  }
  std::vector<uint16_t> finish() && {
    if (words_.size() > kBlockWords) words_.clear();
    return std::move(words_);
  }

 private:
  std::vector<uint16_t> words_;
};

uint32_t box_style(uint32_t flags) noexcept {
  uint32_t style = kBoxStyle;
  if ((flags & kBoxSystemModal) != 0) style |= kSystemModalStyle;
  if ((flags & kBoxTaskModal) != 0) style |= kForegroundStyle;
  return style;
}

void write_head(TemplateWriter& out, uint32_t style, size_t items, const Layout& layout,
                const std::u16string& caption) {
  out.double_word(style);
  out.double_word(0);
  out.word(static_cast<uint32_t>(items));
  out.place({0, 0, layout.width, layout.height});
  // Neither menu nor class of its own.
  out.word(0);
  out.word(0);
  out.text(caption);
}

void write_buttons(TemplateWriter& out, uint32_t flags, Place place,
                   const std::vector<uint16_t>& ids, const std::vector<std::u16string>& captions) {
  const size_t preset = default_button(flags, ids.size());
  for (size_t i = 0; i < ids.size(); ++i) {
    const uint32_t style =
        kButtonStyle | (i == 0 ? kGroupStyle : 0) | (i == preset ? kDefaultStyle : 0);
    out.item(style, place, ids[i], kButtonClass, captions[i]);
    place.x += place.width + kGap;
  }
}

}  // namespace

int box_answer(uint16_t button) noexcept {
  for (const ExtraButton& extra : kExtraButtons) {
    if (extra.id == button) return static_cast<int>(extra.flag);
  }
  return button;
}

std::vector<uint16_t> box_buttons(uint32_t flags) {
  const uint32_t set = flags & kButtonSetMask;
  const ButtonSet& chosen = kButtonSets[set < std::size(kButtonSets) ? set : 0];
  std::vector<uint16_t> ids;
  std::copy_if(std::begin(chosen.ids), std::end(chosen.ids), std::back_inserter(ids),
               [](uint16_t id) { return id != 0; });
  for (const ExtraButton& extra : kExtraButtons) {
    if ((flags & extra.flag) != 0) ids.push_back(extra.id);
  }
  return ids;
}

size_t default_button(uint32_t flags, size_t buttons) noexcept {
  const size_t wanted = (flags >> kDefaultShift) & kDefaultMask;
  return buttons == 0 ? 0 : std::min(wanted, buttons - 1);
}

uint16_t box_icon(uint32_t flags) noexcept {
  const uint32_t kind = (flags & kIconMask) >> 4;
  return kind >= 1 && kind <= 4 ? static_cast<uint16_t>(kFirstIcon + kind - 1) : uint16_t{0};
}

bool has_cancel(uint32_t flags) {
  const auto ids = box_buttons(flags);
  return std::find(ids.begin(), ids.end(), kCancel) != ids.end();
}

bool obeys_cancel(uint32_t flags) noexcept {
  return (flags & kButtonSetMask) != kBoxOk;
}

int average_width(int width_of_all_letters) noexcept {
  constexpr int kLetters = 52;
  return (width_of_all_letters + kLetters / 2) / kLetters;
}

std::vector<uint16_t> box_template(uint32_t flags, const std::u16string& caption,
                                   const std::u16string& text,
                                   const std::vector<std::u16string>& captions,
                                   const BoxMeasures& measures) {
  const auto ids = box_buttons(flags);
  const uint16_t icon = box_icon(flags);
  const Layout layout = Layouter(measures, icon != 0, ids.size()).lay_out();
  const size_t items = ids.size() + 1 + (icon != 0 ? 1 : 0);
  TemplateWriter out;
  write_head(out, box_style(flags), items, layout, caption);
  if (icon != 0) out.icon(layout.icon, icon);
  out.item(kTextStyle, layout.text, kNoId, kStaticClass, text);
  write_buttons(out, flags, layout.first_button, ids, captions);
  return std::move(out).finish();
}

}  // namespace ORLO
