// A product with patches in memory, and the rows that are made of them.
#pragma once

#include <string>
#include <vector>

#include "inspect/patch_rows.h"
#include "inventory/installer_bed_test_support.h"

class PatchBedTest : public InstallerBedTest {
 protected:
  using Texts = std::vector<std::string>;

  void add(const std::string& key, const std::string& installed) {
    registry_.create(product_patch_key(key));
    registry_.set_text(product_patch_key(key), "Installed",
                       std::u16string(installed.begin(), installed.end()));
  }
  /// Patches P1, P2... with these dates are all that the product has.
  void add_all(const Texts& dates) {
    registry_.remove(product_key(kPackedProduct));
    int number = 10000;
    for (const std::string& date : dates)
      add("P" + std::to_string(++number), date);
  }

  PatchServices patch_services() {
    return {installer_, registry_, clock_,
            [](unsigned id) { return String::formatted("text %u", id); }};
  }
  std::vector<PatchRow> read(const char* code = kProduct) {
    return read_patch_rows(patch_services(), code);
  }
  Texts column(int index, const char* code = kProduct) {
    const std::vector<PatchRow> rows = read(code);
    Texts texts;
    texts.reserve(rows.size());
    for (const PatchRow& row : rows)
      texts.emplace_back(row[static_cast<size_t>(index)].c_str());
    return texts;
  }
  /// Numbers of the patches of these dates, in the order of the rows.
  std::vector<int> order_of(const Texts& dates) {
    add_all(dates);
    std::vector<int> order;
    order.reserve(dates.size());
    for (const std::string& key : column(0))
      order.push_back(std::stoi(key.substr(1)) - 10000);
    return order;
  }
  DateTime parsed(const std::string& text) const {
    DateTime date;
    date.parse(text.c_str(), clock_);
    return date;
  }
  std::string shown(const std::string& date) const { return parsed(date).display(clock_).c_str(); }
  /// Numbers of the patches as a list view would come to hold them, of which nothing is known but
  /// its texts.
  std::vector<int> modelled_order(const Texts& dates) const;
};

inline std::vector<int> PatchBedTest::modelled_order(const Texts& dates) const {
  struct Line {
    int number;
    std::string date;
    std::string text;
  };
  std::vector<Line> list;
  for (const std::string& date : dates) {
    const DateTime mine = parsed(date);
    int place = static_cast<int>(list.size());
    for (int above = place - 1; above >= 0; --above) {
      const Line& line = list.at(static_cast<size_t>(above));
      char buffer[16] = "";
      line.text.copy(buffer, 15);
      const bool mine_is_earlier =
          mine.empty() ? !parsed(line.date).empty() : DateTime::compare(mine, parsed(buffer)) < 0;
      if (!mine_is_earlier) break;
      place = above;
    }
    list.insert(list.begin() + place, {static_cast<int>(list.size()) + 1, date, shown(date)});
  }
  std::vector<int> order;
  order.reserve(list.size());
  for (const Line& line : list)
    order.push_back(line.number);
  return order;
}
