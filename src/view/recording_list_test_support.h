// A list control that keeps what it would show and writes down what it is told.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "view/list_control.h"

class RecordingList : public ListControl {
 public:
  struct Line {
    std::string text;
    uint32_t id = 0;
    int image = 0;
    int group = kNoGroup;
    unsigned state = 0;
  };

  void add_column(int index, const String&, int width, Align) override { widths[index] = width; }
  int column_width(int index) const override { return widths.at(index); }
  void set_column_width(int index, int width) override {
    tell("width %d %d", index, width);
    widths[index] = width;
  }
  void set_sort_arrow(int column, SortArrow arrow) override {
    tell("arrow %d %s", column,
         arrow == SortArrow::none   ? "none"
         : arrow == SortArrow::down ? "down"
                                    : "up");
  }
  void insert_item(int index, const Item& item) override {
    if (index == kEnd) {
      tell("insert end %s", item.text);
    } else {
      tell("insert %d %s", index, item.text);
    }
    const auto place = std::min(static_cast<size_t>(index), lines.size());
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place),
                 Line{item.text, item.id, item.image, item.group});
  }
  void delete_item(int index) override {
    tell("delete %d", index);
    lines.erase(lines.begin() + index);
  }
  void delete_all() override {
    tell("delete all");
    lines.clear();
    mark = -1;
  }
  int count() const override { return static_cast<int>(lines.size()); }
  int find(uint32_t id) const {
    const auto found =
        std::find_if(lines.begin(), lines.end(), [&](const Line& line) { return line.id == id; });
    return found == lines.end() ? -1 : static_cast<int>(found - lines.begin());
  }
  uint32_t id_at(int index) const override {
    return index >= 0 && index < count() ? lines[static_cast<size_t>(index)].id : 0;
  }
  void redraw_item(int index) override { tell("redraw %d", index); }
  void sort(const Order& order) override {
    tell("sort");
    answers.clear();
    for (const auto& [a, b] : questions)
      answers.push_back(order(a, b));
    const uint32_t marked = id_at(mark);
    if (reverse_equals) std::reverse(lines.begin(), lines.end());
    std::stable_sort(lines.begin(), lines.end(),
                     [&](const Line& a, const Line& b) { return order(a.id, b.id) < 0; });
    mark = find(marked);
  }
  int selection_mark() const override { return mark; }
  unsigned state(int index) const override { return lines.at(static_cast<size_t>(index)).state; }
  void select(int index, unsigned state) override {
    tell("select %d %u", index, state);
    lines.at(static_cast<size_t>(index)).state = state;
    mark = index;
  }
  void ensure_visible(int index) override { tell("show %d", index); }
  void enable_groups(bool on) override { tell("groups %s", on ? "on" : "off"); }
  void add_group(int id, const char16_t* title, int title_length) override {
    tell("group %d %#s %d", id, String(title), title_length);
  }
  void freeze(bool on) override { tell(on ? "freeze" : "thaw"); }

  /// The user's choice of a line.
  void choose(int index) {
    lines.at(static_cast<size_t>(index)).state = kFocused | kSelected;
    mark = index;
  }
  std::vector<std::string> texts() const {
    std::vector<std::string> all;
    for (const Line& line : lines)
      all.push_back(line.text);
    return all;
  }
  std::vector<uint32_t> ids() const {
    std::vector<uint32_t> all;
    for (const Line& line : lines)
      all.push_back(line.id);
    return all;
  }
  /// What it was told since the last question.
  std::vector<std::string> told() { return std::exchange(log_, {}); }

  std::vector<Line> lines;
  std::map<int, int> widths;
  int mark = -1;
  /// Whether a sort turns the order of equal lines, which is the control's to decide.
  bool reverse_equals = false;
  /// Pairs of ids that the next sort asks about, and what it was answered.
  std::vector<std::pair<uint32_t, uint32_t>> questions;
  std::vector<int> answers;

 private:
  template <typename... Args>
  void tell(const char* format, const Args&... args) {
    log_.emplace_back(String::formatted(format, args...).c_str());
  }

  std::vector<std::string> log_;
};
