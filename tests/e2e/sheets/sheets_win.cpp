// Writes the workbooks that a file of lines tells:
//   book PATH             a new workbook; it is saved when the next one begins
//   sheet                 the workbook's next sheet
//   KIND ROW COLUMN DATA  a cell: "narrow" or "wide" with the text's bytes in hexadecimal digits,
//                         "integer" or "real" with a number
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "export/yexcel/document.h"

namespace {

using YExcel::Document;
using YExcel::SheetCell;

std::string bytes_of(const std::string& digits) {
  std::string bytes;
  bytes.reserve(digits.size() / 2);
  for (size_t at = 0; at + 1 < digits.size(); at += 2)
    bytes.push_back(static_cast<char>(std::strtoul(digits.substr(at, 2).c_str(), nullptr, 16)));
  return bytes;
}

std::u16string wide_of(const std::string& bytes) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  const auto byte = [&bytes](size_t at) { return static_cast<unsigned char>(bytes[at]); };
  for (size_t at = 0; at + 1 < bytes.size(); at += 2)
    text.push_back(static_cast<char16_t>(byte(at) | (byte(at + 1) << 8)));
  return text;
}

bool set(SheetCell& cell, const std::string& kind, const std::string& data) {
  if (kind == "narrow")
    cell.SetText(String(bytes_of(data)));
  else if (kind == "wide")
    cell.SetText(wide_of(bytes_of(data)));
  else if (kind == "integer")
    cell.SetInteger(static_cast<int32_t>(std::strtol(data.c_str(), nullptr, 10)));
  else if (kind == "real")
    cell.SetReal(std::strtod(data.c_str(), nullptr));
  else
    return false;
  return true;
}

/// The workbook in hand.
class Book {
 public:
  explicit Book(CompoundStorage& storage) : storage_(storage) {}

  /// False for a line that tells nothing, and for a workbook that can't be saved.
  bool take(const std::string& line) {
    std::istringstream words(line);
    std::string kind;
    words >> kind;
    if (kind == "book") return save() && begin(words);
    if (document_ == nullptr) return false;
    if (kind != "sheet") return set_cell(kind, words);
    ++sheet_;
    return document_->AddSheet("Sheet" + std::to_string(sheet_ + 1)) != nullptr;
  }

  bool save() {
    const bool saved = document_ == nullptr || document_->SaveAs(path_);
    document_.reset();
    return saved;
  }

 private:
  bool begin(std::istream& words) {
    words >> path_;
    sheet_ = 0;
    document_ = std::make_unique<Document>(storage_);
    document_->New(1);
    return !path_.empty();
  }

  bool set_cell(const std::string& kind, std::istream& words) {
    size_t row = 0;
    size_t column = 0;
    std::string data;
    words >> row >> column >> data;
    SheetCell* const cell = document_->SheetAt(sheet_)->CellAt(row, column);
    return cell != nullptr && set(*cell, kind, data);
  }

  CompoundStorage& storage_;
  std::unique_ptr<Document> document_;
  std::string path_;
  size_t sheet_ = 0;
};

int write_books(const char* path) {
  std::ifstream lines(path);
  const std::unique_ptr<CompoundStorage> storage = make_system_storage();
  Book book(*storage);
  std::string line;
  while (std::getline(lines, line)) {
    if (book.take(line)) continue;
    std::fprintf(stderr, "failed at: %s\n", line.substr(0, 80).c_str());
    return 1;
  }
  return lines.eof() && book.save() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return argc == 2 ? write_books(argv[1]) : 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
