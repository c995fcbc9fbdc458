// The columns of the package inventory.
#pragma once

#include "inventory/table.h"

/// Position of each column's cell in a Row of packageSchema().
enum class PackageColumn : int32_t {
  name,
  source,
  displayName,
  displayVersion,
  parent,
  parentName,
  displayIcon,
  installLocation,
  installDate,
  uninstallDate,
  uninstallCmd,
  modifyCmd,
  noRemove,
  noModify,
  systemComponent,
  comments,
  size,
  lastUseDate,
  features,
  patches,
  frequency,
  installerPath,
  packagePath,
  MSI,
  OK,
  is64Bit,
  user,
  publisher,
  contact,
  helpURL,
  helpPhone,
  aboutURL,
  updateURL,
  keyName,
  HKEY_ROOT,
  changed,
};

inline constexpr size_t kPackageColumns = 36;

/// A table without rows that every inventory table takes its columns from.
const Table& packageSchema();

/// A row of empty cells for packageSchema().
Row make_package_row();

inline Cell& cell(Row& row, PackageColumn column) {
  return row.cells[static_cast<size_t>(column)];
}
/// An empty cell where the row has none.
const Cell& cell(const Row& row, PackageColumn column) noexcept;
