// All tables of a package of 100 tables and 5,000 rows, read into memory, beside the bare calls of
// the installer: the same queries, the same fields, and what they say dropped.
#include <windows.h>

#include <msi.h>
#include <msiquery.h>

#include <cstdio>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/interleaved.h"
#include "bench/package_tables.h"
#include "bench/text_bytes.h"
#include "orlo/owned_handle.h"

namespace {

constexpr char kPath[] = "C:\\database_open_bench.msi";

struct MsiTraits {
  using Handle = MSIHANDLE;
  static Handle invalid() noexcept { return 0; }
  static void close(Handle handle) noexcept { MsiCloseHandle(handle); }
};
using Msi = ORLO::OwnedHandle<MsiTraits>;

void demand(UINT status, const std::string& call) {
  if (status != ERROR_SUCCESS) throw std::runtime_error(call + ": " + std::to_string(status));
}

Msi open_view(MSIHANDLE database, const std::string& query) {
  MSIHANDLE view = 0;
  demand(MsiDatabaseOpenViewA(database, query.c_str(), &view), query);
  return Msi(view);
}

bool is_integer(const bench::Memory::Column& column) {
  return column.type[0] == 'i' || column.type[0] == 'I';
}

std::string sql_type(const bench::Memory::Column& column) {
  std::string sql;
  if (is_integer(column))
    sql = column.type[1] == '2' ? "SHORT" : "LONG";
  else
    sql = column.type == "S0" || column.type == "s0" ? "LONGCHAR"
                                                     : "CHAR(" + column.type.substr(1) + ")";
  return column.type[0] >= 'a' ? sql + " NOT NULL" : sql;
}

void create(MSIHANDLE database, const bench::PackageTable& one) {
  std::string columns;
  std::string keys;
  for (size_t i = 0; i < one.table.columns.size(); ++i) {
    const std::string name = "`" + one.table.columns[i].name + "`";
    columns += (i == 0 ? "" : ", ") + name + " " + sql_type(one.table.columns[i]);
    if (i < static_cast<size_t>(one.keys)) keys += (i == 0 ? "" : ", ") + name;
  }
  const std::string query =
      "CREATE TABLE `" + one.table.name + "` (" + columns + " PRIMARY KEY " + keys + ")";
  const Msi view = open_view(database, query);
  demand(MsiViewExecute(view.get(), 0), query);
}

void fill_record(MSIHANDLE record, const std::vector<bench::Memory::Value>& row) {
  MsiRecordClearData(record);
  for (size_t i = 0; i < row.size(); ++i) {
    const auto field = static_cast<UINT>(i + 1);
    if (const auto* const text = std::get_if<std::string>(&row[i]))
      demand(MsiRecordSetStringA(record, field, text->c_str()), *text);
    if (const auto* const number = std::get_if<int32_t>(&row[i]))
      demand(MsiRecordSetInteger(record, field, *number), std::to_string(*number));
  }
}

void insert_rows(MSIHANDLE database, const bench::Memory::Table& table) {
  if (table.rows.empty()) return;
  std::string names;
  std::string marks;
  for (const bench::Memory::Column& column : table.columns) {
    names += (names.empty() ? "`" : ", `") + column.name + "`";
    marks += marks.empty() ? "?" : ", ?";
  }
  const std::string query =
      "INSERT INTO `" + table.name + "` (" + names + ") VALUES (" + marks + ")";
  const Msi view = open_view(database, query);
  const Msi record(MsiCreateRecord(static_cast<UINT>(table.columns.size())));
  for (const std::vector<bench::Memory::Value>& row : table.rows) {
    fill_record(record.get(), row);
    demand(MsiViewExecute(view.get(), record.get()), query);
    MsiViewClose(view.get());
  }
}

void write_package() {
  DeleteFileA(kPath);
  MSIHANDLE opened = 0;
  demand(MsiOpenDatabaseA(kPath, MSIDBOPEN_CREATE, &opened), "create");
  const Msi database(opened);
  for (const bench::PackageTable& one : bench::package_tables()) {
    create(opened, one);
    insert_rows(opened, one.table);
  }
  demand(MsiDatabaseCommit(opened), "commit");
}

std::string text_at(MSIHANDLE record, UINT field) {
  char buffer[1024];
  DWORD length = sizeof buffer;
  demand(MsiRecordGetStringA(record, field, buffer, &length), "text");
  return buffer;
}

/// Each column's name, in order, with whether it is a number.
using BareColumns = std::map<std::string, bool>;

BareColumns bare_columns(MSIHANDLE database, const std::string& table) {
  const Msi view = open_view(database, "select * from `" + table + "`");
  demand(MsiViewExecute(view.get(), 0), table);
  MSIHANDLE names = 0;
  MSIHANDLE types = 0;
  demand(MsiViewGetColumnInfo(view.get(), MSICOLINFO_NAMES, &names), "names");
  const Msi names_record(names);
  demand(MsiViewGetColumnInfo(view.get(), MSICOLINFO_TYPES, &types), "types");
  const Msi types_record(types);
  BareColumns columns;
  const UINT count = MsiRecordGetFieldCount(names);
  for (UINT field = 1; field <= count; ++field) {
    const char type = text_at(types, field)[0];
    columns[text_at(names, field)] = type == 'i' || type == 'I';
  }
  return columns;
}

void bare_rows(MSIHANDLE database, const std::string& table, const BareColumns& columns) {
  std::string list;
  for (const auto& [name, number] : columns)
    list += (list.empty() ? "`" : ",`") + name + "`";
  const Msi view = open_view(database, "select " + list + " from `" + table + "`");
  demand(MsiViewExecute(view.get(), 0), table);
  MSIHANDLE fetched = 0;
  while (MsiViewFetch(view.get(), &fetched) == ERROR_SUCCESS) {
    const Msi record(fetched);
    UINT field = 0;
    for (const auto& [name, number] : columns) {
      char buffer[1024];
      DWORD length = sizeof buffer;
      if (number)
        MsiRecordGetInteger(fetched, ++field);
      else
        MsiRecordGetStringA(fetched, ++field, buffer, &length);
    }
  }
}

void bare_calls() {
  MSIHANDLE opened = 0;
  demand(MsiOpenDatabaseA(kPath, MSIDBOPEN_READONLY, &opened), "open");
  const Msi database(opened);
  std::map<std::string, BareColumns> tables;
  {
    const Msi view = open_view(opened, "select `Name` from `_Tables`");
    demand(MsiViewExecute(view.get(), 0), "_Tables");
    MSIHANDLE fetched = 0;
    while (MsiViewFetch(view.get(), &fetched) == ERROR_SUCCESS) {
      const Msi record(fetched);
      tables.try_emplace(text_at(fetched, 1));
    }
  }
  for (const char* name : {"_Tables", "_Columns", "_Streams", "_Storages"})
    tables.try_emplace(name);
  for (auto& [name, columns] : tables)
    columns = bare_columns(opened, name);
  for (const auto& [name, columns] : tables)
    bare_rows(opened, name, columns);
}

/// Blocks in use in all heaps of the process, with what the heaps themselves need for each.
double heap_bytes() {
  HANDLE heaps[64];
  const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
  double bytes = 0;
  for (DWORD i = 0; i < count; ++i) {
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heaps[i], &entry) != FALSE) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData + entry.cbOverhead;
    }
  }
  return bytes;
}

/// After a first load, so that what the installer keeps for itself is there already.
void print_memory(InstallerDatabases& databases) {
  DatabaseContent().load(databases, kPath);
  const double before = heap_bytes();
  DatabaseContent content;
  content.load(databases, kPath);
  judge_database_memory(content, heap_bytes() - before);
}

}  // namespace

int main() {
  try {
    write_package();
    const auto databases = make_system_installer_databases();
    print_memory(*databases);
    std::optional<DatabaseContent> content;
    const auto open = [&] { content.emplace().load(*databases, kPath); };
    print_ratios("Database of 100 tables and 5,000 rows",
                 {{"zolvane", open, [&] { content.reset(); }},
                  {"floor: bare calls", &bare_calls, [&] { content.reset(); }}});
  } catch (const std::exception& failure) {
    std::printf("%s\n", failure.what());
    return 1;
  }
  DeleteFileA(kPath);
  return 0;
}
