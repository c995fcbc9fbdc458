// A reader of workbooks for tests, which shares nothing with the writer: it follows the records as
// they stand in the stream.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace YExcel::test {

/// One record without its header.
struct ReadRecord {
  size_t at = 0;  ///< of its header in the stream
  uint16_t code = 0;
  std::string body;
};

inline uint32_t number_at(const std::string& bytes, size_t at, size_t size) {
  uint32_t number = 0;
  for (size_t i = 0; i < size; ++i) {
    if (at + i >= bytes.size()) {
      ADD_FAILURE() << "a number ends after its record";
      return 0;
    }
    number |= uint32_t{static_cast<uint8_t>(bytes[at + i])} << (8 * i);
  }
  return number;
}
inline uint16_t number16(const std::string& bytes, size_t at) {
  return static_cast<uint16_t>(number_at(bytes, at, 2));
}
inline uint32_t number32(const std::string& bytes, size_t at) {
  return number_at(bytes, at, 4);
}

inline std::vector<ReadRecord> read_records(const std::string& stream) {
  std::vector<ReadRecord> records;
  for (size_t at = 0; at < stream.size();) {
    const size_t length = number16(stream, at + 2);
    if (at + 4 + length > stream.size()) {
      ADD_FAILURE() << "a record ends after the stream";
      break;
    }
    records.push_back({at, number16(stream, at), stream.substr(at + 4, length)});
    at += 4 + length;
  }
  return records;
}

/// A text with whether it was wide; a number; nothing for a blank cell.
struct ReadText {
  std::u16string characters;
  bool wide = false;
  bool operator==(const ReadText&) const = default;
};
using ReadValue = std::variant<std::monostate, double, ReadText>;
struct ReadCell {
  ReadValue value;
  uint16_t xf = 0;
  bool operator==(const ReadCell&) const = default;
};
struct ReadSheet {
  std::string name;
  std::map<std::pair<uint16_t, uint16_t>, ReadCell> cells;
  std::vector<std::vector<uint16_t>> merged;
};
struct ReadBook {
  std::vector<ReadSheet> sheets;
  uint32_t stringsTotal = 0;
  std::vector<ReadText> strings;
};

/// The strings of a table that lies in several records. The characters of a string go on in the
/// next record after an option byte; a string whose later pieces lack that byte isn't read.
class StringsReader {
 public:
  explicit StringsReader(std::vector<std::string> pieces) : pieces_(std::move(pieces)) {}

  std::vector<ReadText> read(uint32_t& total) {
    total = take(4);
    std::vector<ReadText> strings(take(4));
    for (ReadText& text : strings)
      text = string();
    EXPECT_EQ(piece_ + 1, pieces_.size());
    EXPECT_EQ(at_, pieces_.back().size());
    return strings;
  }

 private:
  bool at_end() const { return at_ == pieces_[piece_].size() && piece_ + 1 < pieces_.size(); }
  void next_piece() {
    ++piece_;
    at_ = 0;
  }
  uint32_t take(size_t size) {
    if (at_end()) next_piece();
    at_ += size;
    return number_at(pieces_[piece_], at_ - size, size);
  }
  ReadText string() {
    const uint32_t count = take(2);
    ReadText text{{}, take(1) == 1};
    for (uint32_t i = 0; i < count && !::testing::Test::HasFailure(); ++i) {
      if (at_end()) {
        next_piece();
        EXPECT_EQ(take(1), text.wide ? 1u : 0u);
      }
      text.characters.push_back(static_cast<char16_t>(take(text.wide ? 2 : 1)));
    }
    return text;
  }

  const std::vector<std::string> pieces_;
  size_t piece_ = 0;
  size_t at_ = 0;
};

inline double rk_number(uint32_t rk) {
  const double value = (rk & 2) != 0 ? static_cast<double>(static_cast<int32_t>(rk) >> 2)
                                     : std::bit_cast<double>(uint64_t{rk & 0xFFFFFFFC} << 32);
  return (rk & 1) != 0 ? value / 100 : value;
}

inline double double_at(const std::string& bytes, size_t at) {
  return std::bit_cast<double>(uint64_t{number32(bytes, at + 4)} << 32 | number32(bytes, at));
}

/// Enters what the record says of cells, if it is about any.
inline void read_cells(const ReadRecord& record, const ReadBook& book, ReadSheet& sheet) {
  const std::string& body = record.body;
  const auto set = [&](size_t column, size_t xf_at, ReadValue value) {
    const std::pair<uint16_t, uint16_t> place(number16(body, 0), static_cast<uint16_t>(column));
    const ReadCell cell{std::move(value), number16(body, xf_at)};
    EXPECT_TRUE(sheet.cells.emplace(place, cell).second) << "a cell stands twice";
  };
  switch (record.code) {
    case 513:
      return set(number16(body, 2), 4, {});
    case 253:
      return set(number16(body, 2), 4, book.strings.at(number32(body, 6)));
    case 515:
      return set(number16(body, 2), 4, double_at(body, 6));
    case 638:
      return set(number16(body, 2), 4, rk_number(number32(body, 6)));
    case 189: {
      const size_t first = number16(body, 2);
      const size_t last = number16(body, body.size() - 2);
      EXPECT_EQ(body.size(), 6 + 6 * (last - first + 1));
      for (size_t i = 0; i <= last - first; ++i)
        set(first + i, 4 + 6 * i, rk_number(number32(body, 6 + 6 * i)));
      return;
    }
    default:
      return;
  }
}

inline void read_merged(const ReadRecord& record, ReadSheet& sheet) {
  const size_t count = number16(record.body, 0);
  EXPECT_EQ(record.body.size(), 2 + 8 * count);
  for (size_t i = 0; i < count; ++i) {
    const size_t at = 2 + 8 * i;
    sheet.merged.push_back({number16(record.body, at), number16(record.body, at + 2),
                            number16(record.body, at + 4), number16(record.body, at + 6)});
  }
}

/// Sheets follow one another in the order of their names.
inline ReadBook read_book(const std::string& stream) {
  ReadBook book;
  const std::vector<ReadRecord> records = read_records(stream);
  std::vector<std::string> names;
  size_t begun = 0;  // BOFs so far, the first of which begins the global part
  for (size_t i = 0; i < records.size(); ++i) {
    const ReadRecord& record = records[i];
    if (record.code == 0x0809) {
      if (begun++ > 0) book.sheets.push_back({names.at(begun - 2), {}, {}});
    } else if (record.code == 133) {
      names.push_back(record.body.substr(8));
    } else if (record.code == 252) {
      std::vector<std::string> pieces = {record.body};
      while (i + 1 < records.size() && records[i + 1].code == 60)
        pieces.push_back(records[++i].body);
      book.strings = StringsReader(std::move(pieces)).read(book.stringsTotal);
    } else if (!book.sheets.empty()) {
      if (record.code == 229) read_merged(record, book.sheets.back());
      read_cells(record, book, book.sheets.back());
    }
  }
  EXPECT_EQ(book.sheets.size(), names.size());
  return book;
}

}  // namespace YExcel::test
