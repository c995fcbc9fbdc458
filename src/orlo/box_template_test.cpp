#include "orlo/box_template.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ORLO {
namespace {

/// Units of 8 by 16 pixels, letters of 6 by 13, a text of 100 by 26.
constexpr BoxMeasures kMeasures = {{8, 16}, {6, 13}, {100, 26}, {32, 32}, 30};

std::vector<std::u16string> captions_for(uint32_t flags) {
  return std::vector<std::u16string>(box_buttons(flags).size(), u"Yes");
}

std::vector<uint16_t> made(uint32_t flags, const std::u16string& text = u"Text") {
  return box_template(flags, u"Caption", text, captions_for(flags), kMeasures);
}

struct Item {
  uint32_t style = 0;
  int x = 0, y = 0, width = 0, height = 0;
  int id = 0;
  int window_class = 0;
  std::u16string title;
  int ordinal = 0;
};

/// Reads a template as the system does.
class Reader {
 public:
  explicit Reader(const std::vector<uint16_t>& words) : words_(words) {
    style = double_word();
    extended_style = double_word();
    const int count = word();
    x = word();
    y = word();
    width = word();
    height = word();
    menu = word();
    window_class = word();
    caption = text();
    for (int i = 0; i < count; ++i)
      items.push_back(read_item());
    whole = place_ == words_.size();
  }

  uint32_t style, extended_style;
  int x, y, width, height, menu, window_class;
  std::u16string caption;
  std::vector<Item> items;
  bool whole;

 private:
  uint16_t word() { return words_.at(place_++); }
  uint32_t double_word() {
    const uint32_t low = word();
    return low | static_cast<uint32_t>(word()) << 16;
  }
  std::u16string text() {
    std::u16string read;
    while (const uint16_t unit = word())
      read.push_back(static_cast<char16_t>(unit));
    return read;
  }
  Item read_item() {
    if (place_ % 2 != 0) {
      EXPECT_EQ(word(), 0);
    }
    Item item;
    item.style = double_word();
    EXPECT_EQ(double_word(), 0u);
    item.x = word();
    item.y = word();
    item.width = word();
    item.height = word();
    item.id = word();
    EXPECT_EQ(word(), 0xFFFF);
    item.window_class = word();
    if (words_.at(place_) == 0xFFFF) {
      word();
      item.ordinal = word();
    } else {
      item.title = text();
    }
    EXPECT_EQ(word(), 0) << "no creation data";
    return item;
  }

  const std::vector<uint16_t>& words_;
  size_t place_ = 0;
};

TEST(BoxTemplate, OfAPlainBoxIsThisWordForWord) {
  // clang-format off
  const std::vector<uint16_t> expected = {
      0x0080, 0x90C8, 0, 0,  // style, extended style
      2, 0, 0, 64, 45,       // items, place, size
      0, 0, 'C', 0,          // no menu, no class, caption
      0,                     // up to a multiple of four bytes
      0x008C, 0x5000, 0, 0,  // the text
      7, 7, 50, 13, 0xFFFF,  // place, size, id
      0xFFFF, 0x0082, 'T', 0, 0,
      0x0001, 0x5003, 0, 0,  // the button
      13, 27, 38, 11, 1,
      0xFFFF, 0x0080, 'O', 'K', 0, 0};
  // clang-format on
  EXPECT_EQ(box_template(0, u"C", u"T", {u"OK"}, kMeasures), expected);
}

TEST(BoxTemplate, StyleFollowsTheFlags) {
  struct Row {
    uint32_t flags;
    uint32_t style;
  };
  for (const Row& row : {Row{0, 0x90C80080}, Row{0x1000, 0x90C80082}, Row{0x2000, 0x90C80280},
                         Row{0x3000, 0x90C80282}, Row{0x2031, 0x90C80280}}) {
    SCOPED_TRACE(row.flags);
    const Reader box(made(row.flags));
    EXPECT_EQ(box.style, row.style);
    EXPECT_EQ(box.extended_style, 0u);
    EXPECT_EQ(box.caption, u"Caption");
    EXPECT_TRUE(box.whole);
  }
}

TEST(BoxTemplate, IconStandsInTheCornerAndTheTextBesideIt) {
  struct Row {
    uint32_t flag;
    int ordinal;
  };
  for (const Row& row :
       {Row{0x10, 0x7F01}, Row{0x20, 0x7F02}, Row{0x30, 0x7F03}, Row{0x40, 0x7F04}}) {
    SCOPED_TRACE(row.flag);
    const Reader box(made(row.flag));
    ASSERT_EQ(box.items.size(), 3u);
    const Item& icon = box.items[0];
    EXPECT_EQ(icon.ordinal, row.ordinal);
    EXPECT_EQ(icon.style, 0x50000003u);
    EXPECT_EQ(icon.window_class, 0x0082);
    EXPECT_EQ(icon.x, 7);
    EXPECT_EQ(icon.y, 7);
    EXPECT_GE(box.items[1].x, icon.x + icon.width);
    EXPECT_EQ(box.items[1].title, u"Text");
  }
}

TEST(BoxTemplate, OtherIconFlagsGiveNoIcon) {
  for (const uint32_t flags : {0x00u, 0x50u, 0x80u, 0xF0u}) {
    SCOPED_TRACE(flags);
    const Reader box(made(flags));
    ASSERT_EQ(box.items.size(), 2u);
    EXPECT_EQ(box.items[0].ordinal, 0);
    EXPECT_EQ(box.items[0].x, 7);
  }
}

TEST(BoxTemplate, ButtonsFollowTheLowFourBits) {
  struct Row {
    uint32_t flags;
    std::vector<uint16_t> ids;
  };
  const Row rows[] = {{0, {1}},
                      {1, {1, 2}},
                      {2, {3, 4, 5}},
                      {3, {6, 7, 2}},
                      {4, {6, 7}},
                      {5, {4, 2}},
                      {6, {1}},
                      {15, {1}},
                      {0x1000000, {1, 8}},
                      {0x2000001, {1, 2, 9}},
                      {0x3000004, {6, 7, 8, 9}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.flags);
    EXPECT_EQ(box_buttons(row.flags), row.ids);
    const Reader box(made(row.flags));
    ASSERT_EQ(box.items.size(), row.ids.size() + 1);
    for (size_t i = 0; i < row.ids.size(); ++i) {
      EXPECT_EQ(box.items[i + 1].id, row.ids[i]);
      EXPECT_EQ(box.items[i + 1].window_class, 0x0080);
    }
  }
}

TEST(BoxTemplate, ExtraButtonsAnswerWithTheirFlags) {
  EXPECT_EQ(box_answer(8), 0x1000000);
  EXPECT_EQ(box_answer(9), 0x2000000);
  for (uint16_t id = 1; id < 8; ++id)
    EXPECT_EQ(box_answer(id), id);
}

TEST(BoxTemplate, DefaultButtonIsLimitedToTheLast) {
  struct Row {
    uint32_t flags;
    size_t preset;
  };
  for (const Row& row : {Row{0x003, 0}, Row{0x103, 1}, Row{0x203, 2}, Row{0x303, 2}, Row{0xF03, 2},
                         Row{0xF00, 0}, Row{0x101, 1}, Row{0x2000203, 2}, Row{0x2000303, 3}}) {
    SCOPED_TRACE(row.flags);
    const Reader box(made(row.flags));
    for (size_t i = 1; i < box.items.size(); ++i)
      EXPECT_EQ((box.items[i].style & 0xF) == 1, i - 1 == row.preset) << i;
  }
}

TEST(BoxTemplate, CancelIsObeyedWhereThereIsMoreThanOk) {
  struct Row {
    uint32_t flags;
    bool obeys;
    bool has;
  };
  for (const Row& row : {Row{0, false, false}, Row{1, true, true}, Row{2, true, false},
                         Row{3, true, true}, Row{4, true, false}, Row{5, true, true},
                         Row{0x2030, false, false}, Row{0x2031, true, true}}) {
    SCOPED_TRACE(row.flags);
    EXPECT_EQ(obeys_cancel(row.flags), row.obeys);
    EXPECT_EQ(has_cancel(row.flags), row.has);
  }
}

TEST(BoxTemplate, KeepsEverythingInsideAndApart) {
  BoxMeasures measures = kMeasures;
  for (const int text_width : {0, 5, 320, 5000}) {
    for (const int caption_width : {0, 30, 200}) {
      measures.text.width = text_width;
      measures.caption_width = caption_width;
      for (const uint32_t flags : {0x0u, 0x30u, 0x33u, 0x3000032u}) {
        SCOPED_TRACE(text_width);
        SCOPED_TRACE(caption_width);
        SCOPED_TRACE(flags);
        const Reader box(box_template(flags, u"", u"Text", captions_for(flags), measures));
        for (size_t i = 0; i < box.items.size(); ++i) {
          const Item& item = box.items[i];
          EXPECT_LE(item.x + item.width, box.width - 7);
          EXPECT_LE(item.y + item.height, box.height - 7);
          if (item.window_class != 0x0080) continue;
          EXPECT_GE(item.width * 8 / 4, caption_width);
          const Item& before = box.items[i - 1];
          if (before.window_class == 0x0080) {
            EXPECT_GE(item.x, before.x + before.width + 4);
          } else {
            EXPECT_GE(item.y, before.y + before.height + 7);
          }
        }
      }
    }
  }
}

TEST(BoxTemplate, GivesTheTextAtLeastTheRoomItWasMeasuredWith) {
  for (const int size : {1, 99, 100, 101, 321}) {
    SCOPED_TRACE(size);
    BoxMeasures measures = kMeasures;
    measures.text = {size, size};
    const Reader box(box_template(0, u"", u"Text", {u"OK"}, measures));
    EXPECT_GE(box.items[0].width * 8 / 4, size);
    EXPECT_GE(box.items[0].height * 16 / 8, size);
  }
}

TEST(BoxTemplate, ThatOutgrowsItsBlockIsNone) {
  const size_t words_beside_text = made(0, u"").size();
  const size_t room = 4096 - words_beside_text;
  EXPECT_EQ(made(0, std::u16string(room, u'x')).size(), 4096u);
  // The first letter more takes the place of the padding before the button.
  EXPECT_EQ(made(0, std::u16string(room + 1, u'x')).size(), 4096u);
  EXPECT_TRUE(made(0, std::u16string(room + 2, u'x')).empty());
  EXPECT_TRUE(made(0, std::u16string(100000, u'x')).empty());
}

TEST(BoxTemplate, AverageOfAFontIsThatOfAllLettersRounded) {
  EXPECT_EQ(average_width(52 * 6), 6);
  EXPECT_EQ(average_width(52 * 6 + 25), 6);
  EXPECT_EQ(average_width(52 * 6 + 26), 7);
  EXPECT_EQ(average_width(0), 0);
}

TEST(BoxTemplate, WithoutMeasuresStillIsOne) {
  const Reader box(box_template(0, u"", u"", {u""}, {}));
  EXPECT_TRUE(box.whole);
}

}  // namespace
}  // namespace ORLO
