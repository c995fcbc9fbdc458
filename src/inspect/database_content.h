// All tables of a package's database, with all their rows as texts.
#pragma once

#include <map>
#include <vector>

#include "inspect/ref_table.h"
#include "orlo/format.h"
#include "platform/installer_database.h"

/// The key of each row: its number, from 1.
inline constexpr char kRowId[] = "row-id";

/// A column as it is shown.
struct ShownColumn {
  String name;
  bool is_number = false;
  int32_t cell = 0;  ///< index in Row::cells
};

class DatabaseContent {
 public:
  using Schemas = std::map<String, Table, ORLO::ByteOrder>;
  using Tables = std::map<String, ORLO::RefPtr<RefTable>, ORLO::ByteOrder>;

  /// Reads everything, once. Throws SDKException or LWE; what was read until then stays, the rows
  /// of the table in hand too.
  void load(InstallerDatabases& databases, const String& path);

  /// The columns of each table; without rows. A table that can't be asked for has none.
  const Schemas& schemas() const noexcept { return schemas_; }
  /// Rows stand in the order of their numbers as texts: 1, 10, 11, 2. Fewer than schemas() if
  /// load() has failed.
  const Tables& tables() const noexcept { return tables_; }

 private:
  Schemas schemas_;
  Tables tables_;
};

/// Whether a query can speak of a table or a column of this name: back ticks stand around it there.
bool can_be_asked_for(const String& name, ORLO::LeadByteTest lead_byte = ORLO::is_lead_byte);

/// The columns that have a name and are no key, in the order of the database.
std::vector<ShownColumn> shown_columns(const Table& schema);
