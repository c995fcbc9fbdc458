#include "export/yexcel/sheet.h"

namespace YExcel {

void SheetCell::SetText(const String& text) {
  if (text.empty()) {
    value_ = std::monostate();
  } else {
    value_ = text;
  }
}

void SheetCell::SetText(const std::u16string& text) {
  if (text.empty()) {
    value_ = std::monostate();
  } else {
    value_ = std::make_unique<const std::u16string>(text);
  }
}

int32_t SheetCell::intValue() const noexcept {
  const auto* const value = std::get_if<integer>(&value_);
  return value == nullptr ? 0 : *value;
}

double SheetCell::doubleValue() const noexcept {
  const auto* const value = std::get_if<real>(&value_);
  return value == nullptr ? 0 : *value;
}

std::string_view SheetCell::text() const noexcept {
  const auto* const text = std::get_if<narrow>(&value_);
  return text == nullptr ? std::string_view() : std::string_view(text->c_str(), text->length());
}

std::u16string_view SheetCell::wideText() const noexcept {
  const auto* const text = std::get_if<wide>(&value_);
  return text == nullptr ? std::u16string_view() : std::u16string_view(**text);
}

SheetCell* Sheet::grown(size_t row, size_t column) {
  if (row >= kMostRows || column >= kMostColumns) return nullptr;
  if (column >= columns_) {
    for (Row& cells : cells_)
      cells.resize(column + 1);
    columns_ = column + 1;
  }
  while (row >= cells_.size())
    cells_.emplace_back(columns_);
  return &cells_[row][column];
}

bool Sheet::Merge(size_t row, size_t column, Merged size) {
  if (CellAt(row, column) == nullptr) return false;
  merged_[{row, column}] = size;
  return true;
}

}  // namespace YExcel
