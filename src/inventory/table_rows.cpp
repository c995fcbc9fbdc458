// Rows of a table as elements of an XML document, and back.
#include "inventory/table.h"
#include "orlo/real_text.h"
#include "orlo/scan.h"
#include "trellis/xml_node.h"
#include "trellis/xml_writer.h"

namespace {

constexpr const char* kRow = "row";

/// The cell that a text of the document stands for.
Cell cell_from(const char* text, ColumnType type) {
  Cell cell;
  if (type == ColumnType::integer) {
    int number = 0;
    ORLO::scan(text, "%d", {number});
    cell.set_number(number);
  } else if (type == ColumnType::real) {
    const double number = ORLO::real_value(text);
    cell.text = String(ORLO::real_text('f', 6, number));
    cell.value = std::bit_cast<uint64_t>(number);
  } else {
    cell.text = text;
  }
  return cell;
}

}  // namespace

void Table::writeRows(Trellis::XMLWriter& writer) const {
  for (const auto& [key, row] : rows) {
    writer.create(kRow);
    for (const auto& [name, column] : columns) {
      const auto index = static_cast<size_t>(column.index);
      if (!column.isTracked || index >= row.cells.size()) continue;
      const String& text = row.cells[index].text;
      if (!text.empty()) writer[name.c_str()].assign(text.c_str(), text.length());
    }
    writer.back();
  }
}

void Table::readRows(const Trellis::XMLNode& node) {
  for (const Trellis::XMLNode& element : Trellis::XMLChildFilter(node, kRow)) {
    Row row;
    row.cells.resize(column_count());
    for (const auto& [name, value] : element.attributes) {
      const Column& found = column(name);
      row.cells[static_cast<size_t>(found.index)] = cell_from(value.c_str(), found.type);
    }
    addRow(row);
  }
}
