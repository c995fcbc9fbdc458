// Writes databases of packages with the system's own functions, for tests.
#pragma once

#include <windows.h>

#include <msiquery.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "orlo/owned_handle.h"
#include "platform/memory_installer_database.h"

/// A new database file, which is complete once finish() was called. Throws where the system refuses
/// something.
class DatabaseWriter {
 public:
  using Table = MemoryInstallerDatabases::Table;
  using Column = MemoryInstallerDatabases::Column;
  using Value = MemoryInstallerDatabases::Value;

  /// `stream_file` is what goes into each stream.
  DatabaseWriter(const std::string& path, std::string stream_file)
      : stream_file_(std::move(stream_file)) {
    MSIHANDLE opened = 0;
    demand(MsiOpenDatabaseA(path.c_str(), MSIDBOPEN_CREATE, &opened));
    database_.reset(opened);
  }

  /// The first column is the key.
  void add(const Table& table) {
    std::string columns;
    std::string places;
    for (const Column& column : table.columns) {
      columns.append(columns.empty() ? "" : ", ").append(quoted(column.name)).append(sql(column));
      places += places.empty() ? "?" : ",?";
    }
    const std::string name = quoted(table.name);
    std::string create = "CREATE TABLE ";
    create.append(name).append(" (").append(columns).append(" PRIMARY KEY ");
    run(create.append(quoted(table.columns[0].name)).append(")"));
    std::string insert = "INSERT INTO ";
    insert.append(name).append(" (").append(names(table)).append(") VALUES (").append(places);
    insert += ')';
    for (const std::vector<Value>& row : table.rows)
      run(insert, record(row));
  }

  /// Writes a text that no 8-bit code page need hold.
  void set_text(const std::string& update, const std::u16string& text) {
    const MSIHANDLE record = MsiCreateRecord(1);
    demand(MsiRecordSetStringW(record, 1, reinterpret_cast<const WCHAR*>(text.c_str())));
    run(update, OwnedMsi(record));
  }

  /// Takes a table over from a text file as the system exports them.
  void import(const std::string& folder, const std::string& file) {
    demand(MsiDatabaseImportA(database_.get(), folder.c_str(), file.c_str()));
  }

  void finish() {
    demand(MsiDatabaseCommit(database_.get()));
    database_.reset();
  }

 private:
  struct MsiTraits {
    using Handle = MSIHANDLE;
    static Handle invalid() noexcept { return 0; }
    static void close(Handle handle) noexcept { MsiCloseHandle(handle); }
  };
  using OwnedMsi = ORLO::OwnedHandle<MsiTraits>;

  static void demand(UINT status) {
    if (status != ERROR_SUCCESS)
      throw std::runtime_error("no database could be written: " + std::to_string(status));
  }

  static std::string quoted(const std::string& name) { return '`' + name + '`'; }

  static std::string names(const Table& table) {
    std::string all;
    for (const Column& column : table.columns)
      all.append(all.empty() ? "" : ",").append(quoted(column.name));
    return all;
  }

  static std::string sql(const Column& column) {
    const char kind = column.type.at(0);
    const std::string size = column.type.substr(1);
    const bool nullable = kind < 'a';
    std::string text;
    switch (kind | 0x20) {
      case 'i':
        text = size == "2" ? " SHORT" : " LONG";
        break;
      case 'v':
        text = " OBJECT";
        break;
      default:
        text = size == "0" ? " LONGCHAR" : " CHAR(" + size + ")";
    }
    if (!nullable) text += " NOT NULL";
    return (kind | 0x20) == 'l' ? text + " LOCALIZABLE" : text;
  }

  OwnedMsi record(const std::vector<Value>& row) const {
    OwnedMsi record(MsiCreateRecord(static_cast<unsigned>(row.size())));
    unsigned field = 0;
    for (const Value& value : row) {
      ++field;
      if (const auto* const number = std::get_if<int32_t>(&value))
        demand(MsiRecordSetInteger(record.get(), field, *number));
      if (const auto* const text = std::get_if<std::string>(&value))
        demand(MsiRecordSetStringA(record.get(), field, text->c_str()));
      if (std::holds_alternative<MemoryInstallerDatabases::Stream>(value))
        demand(MsiRecordSetStreamA(record.get(), field, stream_file_.c_str()));
    }
    return record;
  }

  void run(const std::string& query, const OwnedMsi& parameters = OwnedMsi()) {
    MSIHANDLE opened = 0;
    demand(MsiDatabaseOpenViewA(database_.get(), query.c_str(), &opened));
    const OwnedMsi view(opened);
    demand(MsiViewExecute(view.get(), parameters.get()));
  }

  OwnedMsi database_;
  const std::string stream_file_;
};
