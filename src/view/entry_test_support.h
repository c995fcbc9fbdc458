// Packages for the tests of the view.
#pragma once

#include "inventory/entry.h"

inline constexpr int32_t kTestLocalMachine = -2147483646;
inline constexpr int32_t kTestCurrentUser = -2147483647;

/// A named program that every type selection shows.
inline UninstallEntry make_entry(const char* name, const char* date = "",
                                 int32_t root = kTestLocalMachine) {
  Row row = make_package_row();
  cell(row, PackageColumn::name).text = name;
  cell(row, PackageColumn::displayName).text = name;
  cell(row, PackageColumn::keyName).text = name;
  cell(row, PackageColumn::installDate).text = date;
  cell(row, PackageColumn::HKEY_ROOT).set_number(root);
  return UninstallEntry::fromRow(row);
}

inline RowKey make_key(const char* name, const char* root = "-2147483646") {
  return RowKey{{root, name}};
}
