// The tables of a package of middle size: 100 of them with 5,000 rows, whose texts repeat as they
// do in packages.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/memory_installer_database.h"

namespace bench {

using Memory = MemoryInstallerDatabases;
inline const Memory::Value kNull;

struct PackageTable {
  Memory::Table table;
  int keys;  ///< that many columns from the first one on are its key
};

inline constexpr int kPackageTables = 100;
inline constexpr int kPackageRows = 5000;

inline std::string word(int i) {
  static const char* const kWords[] = {"Service", "Client",  "Resource", "Setup",   "Report",
                                       "Storage", "Printer", "Template", "Network", "Viewer",
                                       "Archive", "Mail",    "Help"};
  return kWords[i % 13];
}
inline std::string numbered(const std::string& name, int i) {
  return name + std::to_string(i);
}
inline std::string component(int i) {
  return numbered("C_" + word(i) + word(i / 13) + "_", i);
}
inline std::string file(int i) {
  return numbered("F_" + word(i) + word(i / 13) + "Library_", i);
}
inline std::string directory(int i) {
  return numbered("D_" + word(i) + "Files", i);
}
inline std::string guid(int i) {
  const std::string tail = std::to_string(100000000000 + 7919LL * i);
  return "{5A0CE5ED-" + tail.substr(8) + "-4A1B-9C00-" + tail + "}";
}
/// Spread over all 32 bits.
inline int32_t hash_part(int i) {
  return static_cast<int32_t>(static_cast<uint32_t>(i) * 2654435761U + 1);
}

using MakeRow = std::function<std::vector<Memory::Value>(int)>;

inline PackageTable table(const std::string& name, int keys, std::vector<Memory::Column> columns,
                          int rows, const MakeRow& make_row) {
  PackageTable result{{name, std::move(columns), {}}, keys};
  result.table.rows.reserve(static_cast<size_t>(rows));
  for (int i = 0; i < rows; ++i)
    result.table.rows.push_back(make_row(i));
  return result;
}

inline void add_files(std::vector<PackageTable>& tables) {
  tables.push_back(table("File", 1,
                         {{"File", "s72"},
                          {"Component_", "s72"},
                          {"FileName", "s255"},
                          {"FileSize", "i4"},
                          {"Version", "S72"},
                          {"Language", "S20"},
                          {"Attributes", "I2"},
                          {"Sequence", "i4"}},
                         900, [](int i) -> std::vector<Memory::Value> {
                           const bool versioned = i % 3 != 0;
                           return {file(i),
                                   component(i % 800),
                                   numbered(word(i) + "~", i) + "|" +
                                       numbered(word(i) + word(i / 13), i) + ".dll",
                                   37 * i * i % 900001,
                                   versioned ? Memory::Value("5.2.3790.0") : kNull,
                                   versioned ? Memory::Value("1033") : kNull,
                                   512,
                                   i + 1};
                         }));
  tables.push_back(table("MsiFileHash", 1,
                         {{"File_", "s72"},
                          {"Options", "i2"},
                          {"HashPart1", "i4"},
                          {"HashPart2", "i4"},
                          {"HashPart3", "i4"},
                          {"HashPart4", "i4"}},
                         300, [](int i) -> std::vector<Memory::Value> {
                           return {file(3 * i),          0,
                                   hash_part(4 * i),     hash_part(4 * i + 1),
                                   hash_part(4 * i + 2), hash_part(4 * i + 3)};
                         }));
  tables.push_back(table(
      "Directory", 1, {{"Directory", "s72"}, {"Directory_Parent", "S72"}, {"DefaultDir", "s255"}},
      120, [](int i) -> std::vector<Memory::Value> {
        return {directory(i), i == 0 ? kNull : Memory::Value(directory(i / 4)),
                word(i) + "|" + numbered(word(i) + " files ", i)};
      }));
}

inline void add_components(std::vector<PackageTable>& tables) {
  tables.push_back(table("Component", 1,
                         {{"Component", "s72"},
                          {"ComponentId", "S38"},
                          {"Directory_", "s72"},
                          {"Attributes", "i2"},
                          {"Condition", "S255"},
                          {"KeyPath", "S72"}},
                         800, [](int i) -> std::vector<Memory::Value> {
                           return {component(i),
                                   guid(i),
                                   directory(i % 120),
                                   i % 5 == 0 ? 4 : 0,
                                   i % 10 == 0 ? Memory::Value("VersionNT >= 501") : kNull,
                                   file(i)};
                         }));
  tables.push_back(table("FeatureComponents", 2, {{"Feature_", "s38"}, {"Component_", "s72"}}, 800,
                         [](int i) -> std::vector<Memory::Value> {
                           return {"Feature_" + word(i / 60), component(i)};
                         }));
  tables.push_back(table("Registry", 1,
                         {{"Registry", "s72"},
                          {"Root", "i2"},
                          {"Key", "s255"},
                          {"Name", "S255"},
                          {"Value", "S0"},
                          {"Component_", "s72"}},
                         900, [](int i) -> std::vector<Memory::Value> {
                           return {numbered("R_" + word(i) + "Setting_", i),
                                   2,
                                   "SOFTWARE\\Classes\\" + numbered(word(i) + ".Document.", i / 4),
                                   i % 4 == 0 ? kNull : Memory::Value(word(i) + "Name"),
                                   i % 3 == 0 ? Memory::Value("[#" + file(i) + "]")
                                              : Memory::Value("#1"),
                                   component(i % 800)};
                         }));
}

inline void add_sequences(std::vector<PackageTable>& tables) {
  for (const auto& [name, rows] :
       {std::pair{"InstallExecuteSequence", 60}, std::pair{"InstallUISequence", 40},
        std::pair{"AdminExecuteSequence", 20}}) {
    tables.push_back(table(name, 1, {{"Action", "s72"}, {"Condition", "S255"}, {"Sequence", "I2"}},
                           rows, [](int i) -> std::vector<Memory::Value> {
                             return {numbered("Action" + word(i) + word(i + 5), i),
                                     i % 3 == 0 ? Memory::Value("NOT Installed") : kNull, 50 * i};
                           }));
  }
}

inline void add_dialogs(std::vector<PackageTable>& tables) {
  tables.push_back(table("Control", 2,
                         {{"Dialog_", "s72"},
                          {"Control", "s50"},
                          {"Type", "s20"},
                          {"X", "i2"},
                          {"Y", "i2"},
                          {"Width", "i2"},
                          {"Height", "i2"},
                          {"Attributes", "I4"},
                          {"Property", "S50"},
                          {"Text", "S0"},
                          {"Control_Next", "S50"},
                          {"Help", "S50"}},
                         120, [](int i) -> std::vector<Memory::Value> {
                           return {word(i / 12) + "Dlg",
                                   numbered(word(i), i),
                                   i % 2 == 0 ? "PushButton" : "Text",
                                   10 * (i % 12),
                                   243,
                                   56,
                                   17,
                                   3,
                                   kNull,
                                   "{\\Default}&" + word(i) + " the program",
                                   numbered(word(i + 1), i + 1),
                                   kNull};
                         }));
  tables.push_back(table("ControlEvent", 4,
                         {{"Dialog_", "s72"},
                          {"Control_", "s50"},
                          {"Event", "s50"},
                          {"Argument", "s255"},
                          {"Condition", "S255"},
                          {"Ordering", "I2"}},
                         80, [](int i) -> std::vector<Memory::Value> {
                           return {word(i / 12) + "Dlg",
                                   numbered(word(i), i),
                                   "NewDialog",
                                   word(i / 12 + 1) + "Dlg",
                                   "1",
                                   i % 4};
                         }));
}

inline void add_settings(std::vector<PackageTable>& tables) {
  tables.push_back(table("_Validation", 2,
                         {{"Table", "s32"},
                          {"Column", "s32"},
                          {"Nullable", "s4"},
                          {"MinValue", "I4"},
                          {"MaxValue", "I4"},
                          {"KeyTable", "S255"},
                          {"KeyColumn", "I2"},
                          {"Category", "S32"},
                          {"Set", "S255"},
                          {"Description", "S255"}},
                         500, [](int i) -> std::vector<Memory::Value> {
                           const bool number = i % 4 == 0;
                           return {numbered(word(i / 6) + "Table", i / 6),
                                   numbered("Column", i % 6),
                                   "N",
                                   number ? Memory::Value(0) : kNull,
                                   number ? Memory::Value(32767) : kNull,
                                   i % 5 == 0 ? Memory::Value("Component") : kNull,
                                   i % 5 == 0 ? Memory::Value(1) : kNull,
                                   number ? kNull : Memory::Value("Identifier"),
                                   kNull,
                                   "The " + word(i) + " that belongs to the " + word(i / 6) +
                                       " of this row."};
                         }));
  tables.push_back(table("CustomAction", 1,
                         {{"Action", "s72"}, {"Type", "i2"}, {"Source", "S72"}, {"Target", "S255"}},
                         40, [](int i) -> std::vector<Memory::Value> {
                           return {numbered("Action" + word(i) + word(i + 5), i), 51,
                                   word(i) + "Binary", "[INSTALLDIR]" + word(i) + ".exe /register"};
                         }));
  tables.push_back(
      table("Property", 1, {{"Property", "s72"}, {"Value", "s0"}}, 60,
            [](int i) -> std::vector<Memory::Value> {
              return {numbered(word(i) + "Property", i), word(i) + " and " + word(i + 3)};
            }));
}

/// The others have few rows or none.
inline void add_small_tables(std::vector<PackageTable>& tables) {
  int rows = kPackageRows;
  for (const PackageTable& one : tables)
    rows -= static_cast<int>(one.table.rows.size());
  for (int left = kPackageTables - static_cast<int>(tables.size()); left > 0; --left) {
    const int own = left == 1 ? rows : std::min(rows, left % 7);
    rows -= own;
    tables.push_back(table(numbered(word(left) + "Table", left), 1,
                           {{"Name", "s72"},
                            {"Component_", "s72"},
                            {"Directory_", "S72"},
                            {"Attributes", "I2"},
                            {"Value", "S255"}},
                           own, [left](int i) -> std::vector<Memory::Value> {
                             return {numbered(word(i) + "Entry", i), component(left + i),
                                     directory(i), left, "[" + directory(i) + "]" + word(left)};
                           }));
  }
}

inline std::vector<PackageTable> package_tables() {
  std::vector<PackageTable> tables;
  tables.reserve(kPackageTables);
  add_files(tables);
  add_components(tables);
  add_sequences(tables);
  add_dialogs(tables);
  add_settings(tables);
  add_small_tables(tables);
  return tables;
}

}  // namespace bench
