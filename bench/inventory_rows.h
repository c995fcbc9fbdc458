// Rows like those that the sources make, for benches of the tables.
#pragma once

#include <string>
#include <vector>

#include "inventory/package_schema.h"

using Texts = std::vector<std::string>;

/// Row `i` of an inventory; `changed` gives it another version.
inline Texts texts_of(int i, bool changed) {
  Texts texts(kPackageColumns);
  const std::string number = std::to_string(i * 7919 % 1'000'003);
  texts[0] = texts[33] = "{" + number + "-4A1B-11D2-9C00-00C04F79AA}";
  texts[1] = "HKLM Uninstall";
  texts[2] = "Some Program " + number;
  texts[3] = changed ? "9.9" : "1." + number;
  texts[7] = "C:\\Program Files\\Vendor\\Program " + number;
  texts[8] = "12/01/2024 10:1" + std::to_string(i % 10);
  texts[9] = "31.12.2099";
  texts[10] = "MsiExec.exe /X{" + number + "-4A1B-11D2-9C00-00C04F79AA}";
  for (const size_t flag : {12u, 13u, 14u, 25u})
    texts[flag] = "0";
  texts[16] = number;
  texts[21] = "C:\\windows\\system32\\msiexec.exe";
  texts[23] = texts[24] = "1";
  texts[27] = "Some Vendor";
  texts[34] = "-2147483646";
  return texts;
}

/// As a source fills it: one row buffer for all.
inline void fill(Table& table, const std::vector<Texts>& all) {
  Row row = make_package_row();
  for (const Texts& texts : all) {
    for (size_t c = 0; c < texts.size(); ++c)
      row.cells[c].text = String(texts[c]);
    table.addRow(row);
  }
}
