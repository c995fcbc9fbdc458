// Workbooks made at random, each with what a reader must find in it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "export/yexcel/document.h"
#include "export/yexcel/stream_reader_test_support.h"

namespace YExcel::test {

/// Fills a document with sheets. Its texts span two records at most: the later pieces of longer
/// ones are written without their option bytes, which no reader understands.
class RandomBook {
 public:
  explicit RandomBook(uint32_t seed) : random_(seed) {}

  void fill(Document& document) {
    document.New(below(3) + 1);
    size_t sheet = 0;
    while (document.SheetAt(sheet) != nullptr)
      fill(*document.SheetAt(sheet++));
  }

  void expect_in(const std::string& stream) const {
    const ReadBook book = read_book(stream);
    ASSERT_EQ(book.sheets.size(), sheets_.size());
    EXPECT_EQ(book.stringsTotal, texts_);
    for (size_t i = 0; i < sheets_.size(); ++i) {
      ASSERT_EQ(book.sheets[i].cells.size(), sheets_[i].size());
      for (const auto& [place, cell] : sheets_[i])
        expect_same(book.sheets[i].cells.at(place), cell);
    }
  }

 private:
  using Cells = std::map<std::pair<uint16_t, uint16_t>, ReadCell>;

  uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

  void fill(Sheet& sheet) {
    Cells& cells = sheets_.emplace_back();
    const uint32_t rows = below(70);
    const uint32_t columns = below(2) == 0 ? below(10) : below(256);
    for (uint32_t i = below(300); i > 0 && rows * columns > 0; --i) {
      const uint32_t row = below(rows);
      const uint32_t column = below(columns);
      SheetCell& cell = *sheet.CellAt(row, column);
      cell.xfIndex = below(1000);
      const ReadValue value = set(cell);
      cells[{static_cast<uint16_t>(row), static_cast<uint16_t>(column)}] = {
          value, static_cast<uint16_t>(cell.xfIndex)};
    }
    for (size_t row = 0; row < sheet.rows(); ++row) {
      for (size_t column = 0; column < sheet.columns(); ++column)
        cells[{static_cast<uint16_t>(row), static_cast<uint16_t>(column)}];
    }
    for (const auto& [place, cell] : cells)
      texts_ += std::holds_alternative<ReadText>(cell.value) ? 1U : 0U;
  }

  ReadValue set(SheetCell& cell) {
    switch (below(6)) {
      case 0:
        cell.SetText(String());
        return {};
      case 1: {
        const auto number = static_cast<int32_t>(random_());
        cell.SetInteger(number);
        // Two bits have no room.
        return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(number) << 2) >> 2);
      }
      case 2: {
        const double number = real();
        cell.SetReal(number);
        return number;
      }
      case 3: {
        const std::u16string text = characters(4000, 0xFFFF);
        cell.SetText(text);
        return text.empty() ? ReadValue() : ReadText{text, true};
      }
      default: {
        const std::u16string text = characters(8000, 0xFF);
        cell.SetText(String(std::string(text.begin(), text.end())));
        return text.empty() ? ReadValue() : ReadText{text, false};
      }
    }
  }

  double real() {
    if (below(2) == 0)
      return static_cast<double>(static_cast<int32_t>(below(200000)) - 100000) / 100;
    return std::ldexp(static_cast<double>(static_cast<int32_t>(random_())),
                      static_cast<int>(below(100)) - 80);
  }

  /// Long ones are rarer than short ones, and there are few different short ones.
  std::u16string characters(uint32_t longest, uint32_t highest) {
    if (below(3) == 0) return std::u16string(1, static_cast<char16_t>('a' + below(20)));
    std::u16string text(below(8) == 0 ? below(longest) : below(40), u'\0');
    for (char16_t& c : text)
      c = static_cast<char16_t>(below(highest + 1));
    return text;
  }

  /// Exact doubles are cut to 18 binary digits after the first.
  static void expect_same(const ReadCell& found, const ReadCell& expected) {
    EXPECT_EQ(found.xf, expected.xf);
    const double* const number = std::get_if<double>(&expected.value);
    const double* const read = std::get_if<double>(&found.value);
    if (number == nullptr || read == nullptr) {
      EXPECT_EQ(found.value, expected.value);
      return;
    }
    const bool may_be_cut =
        std::abs(*number) > 1e5 || std::trunc(*number * 100) * 100 == std::trunc(*number * 10000);
    EXPECT_NEAR(*read, *number, may_be_cut ? std::abs(*number) / (1 << 18) : 0);
  }

  std::mt19937 random_;
  std::vector<Cells> sheets_;
  uint32_t texts_ = 0;
};

}  // namespace YExcel::test
