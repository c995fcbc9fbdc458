#include "inventory/package_schema.h"

#include <memory>

namespace {

struct ColumnDefinition {
  const char* name;
  ColumnType type;
  bool isKey = false;
  bool isTracked = true;
};

// In the order of PackageColumn. The names are the attribute names of the history file as well.
constexpr ColumnDefinition kDefinitions[kPackageColumns] = {
    {"name", ColumnType::text},
    {"source", ColumnType::text},
    {"displayName", ColumnType::text},
    {"displayVersion", ColumnType::text},
    {"parent", ColumnType::text},
    {"parentName", ColumnType::text},
    {"displayIcon", ColumnType::text},
    {"installLocation", ColumnType::text},
    {"installDate", ColumnType::date},
    {"uninstallDate", ColumnType::date},
    {"uninstallCmd", ColumnType::text},
    {"modifyCmd", ColumnType::text},
    {"noRemove", ColumnType::integer},
    {"noModify", ColumnType::integer},
    {"systemComponent", ColumnType::integer},
    {"comments", ColumnType::text},
    {"size", ColumnType::integer},
    {"lastUseDate", ColumnType::date},
    {"features", ColumnType::integer},
    {"patches", ColumnType::integer},
    {"frequency", ColumnType::integer},
    {"installerPath", ColumnType::text},
    {"packagePath", ColumnType::text},
    {"MSI", ColumnType::integer},
    {"OK", ColumnType::integer},
    {"64bit", ColumnType::text},
    {"user", ColumnType::text},
    {"publisher", ColumnType::text},
    {"contact", ColumnType::text},
    {"helpURL", ColumnType::text},
    {"helpPhone", ColumnType::text},
    {"aboutURL", ColumnType::text},
    {"updateURL", ColumnType::text},
    {"keyName", ColumnType::text, true},
    {"HKEY_ROOT", ColumnType::integer, true},
    {"changed", ColumnType::integer, false, false},
};

std::unique_ptr<Table> build_schema() {
  auto table = std::make_unique<Table>();
  for (const ColumnDefinition& column : kDefinitions) {
    table->addColumn(column.name, column.type, column.isKey, column.isTracked);
  }
  return table;
}

}  // namespace

const Table& packageSchema() {
  static const std::unique_ptr<const Table> schema = build_schema();
  return *schema;
}

Row make_package_row() {
  Row row;
  row.cells.resize(kPackageColumns);
  return row;
}

const Cell& cell(const Row& row, PackageColumn column) noexcept {
  static const Cell none;
  const auto index = static_cast<size_t>(column);
  return index < row.cells.size() ? row.cells[index] : none;
}
