// A package's database in memory and what is read from it, with each call to it in a log and any of
// them failing on demand.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "inspect/database_content.h"
#include "orlo/exception.h"
#include "orlo/raw_file.h"
#include "platform/memory_installer_database.h"

/// Passes all calls on, but for those that are to fail.
class HookedDatabases : public InstallerDatabases {
 public:
  explicit HookedDatabases(InstallerDatabases& inner) : inner_(inner) {}

  /// The calls so far: "open", then each with the query it belongs to, as in "fetch 3 QUERY",
  /// "names QUERY", "field_count QUERY", "text 2 QUERY", where a text of a row says "text 2 of 3
  /// QUERY".
  std::vector<std::string> calls;
  /// The call with this place in `calls` fails, and with this status.
  size_t failing = SIZE_MAX;
  InstallerStatus status = 1234;

  InstallerStatus open(const char* path, std::unique_ptr<InstallerDatabase>& database) override {
    if (fails("open")) return status;
    std::unique_ptr<InstallerDatabase> opened;
    const InstallerStatus answer = inner_.open(path, opened);
    if (opened) database = std::make_unique<Database>(*this, std::move(opened));
    return answer;
  }

 private:
  class Record : public InstallerRecord {
   public:
    Record(HookedDatabases& all, std::unique_ptr<InstallerRecord> inner, std::string words)
        : all_(all), inner_(std::move(inner)), words_(std::move(words)) {}
    int field_count() override {
      if (!all_.fails("field_count" + words_)) return inner_->field_count();
      ORLO::set_last_error(all_.status);
      return -1;
    }
    InstallerStatus text(unsigned field, char* buffer, size_t room) override {
      if (all_.fails("text " + std::to_string(field) + words_)) return all_.status;
      return inner_->text(field, buffer, room);
    }
    int32_t integer(unsigned field) override { return inner_->integer(field); }

   private:
    HookedDatabases& all_;
    const std::unique_ptr<InstallerRecord> inner_;
    const std::string words_;
  };

  class View : public InstallerView {
   public:
    View(HookedDatabases& all, std::unique_ptr<InstallerView> inner, std::string query)
        : all_(all), inner_(std::move(inner)), query_(std::move(query)) {}
    InstallerStatus column_info(ColumnInfo kind,
                                std::unique_ptr<InstallerRecord>& record) override {
      const char* const words = kind == ColumnInfo::names ? "names " : "types ";
      if (all_.fails(words + query_)) return all_.status;
      return wrap(inner_->column_info(kind, record), record, " " + query_);
    }
    InstallerStatus fetch(std::unique_ptr<InstallerRecord>& record) override {
      const std::string number = std::to_string(++fetched_);
      if (all_.fails("fetch " + number + " " + query_)) return all_.status;
      return wrap(inner_->fetch(record), record, " of " + number + " " + query_);
    }

   private:
    InstallerStatus wrap(InstallerStatus answer, std::unique_ptr<InstallerRecord>& record,
                         const std::string& words) {
      if (answer == kInstallerSuccess)
        record = std::make_unique<Record>(all_, std::move(record), words);
      return answer;
    }

    HookedDatabases& all_;
    const std::unique_ptr<InstallerView> inner_;
    const std::string query_;
    int fetched_ = 0;
  };

  class Database : public InstallerDatabase {
   public:
    Database(HookedDatabases& all, std::unique_ptr<InstallerDatabase> inner)
        : all_(all), inner_(std::move(inner)) {}
    InstallerStatus open_view(const char* query, std::unique_ptr<InstallerView>& view) override {
      if (all_.fails(std::string("open_view ") + query)) return all_.status;
      const InstallerStatus answer = inner_->open_view(query, view);
      if (view) view = std::make_unique<View>(all_, std::move(view), query);
      return answer;
    }

   private:
    HookedDatabases& all_;
    const std::unique_ptr<InstallerDatabase> inner_;
  };

  bool fails(const std::string& call) {
    calls.push_back(call);
    return calls.size() - 1 == failing;
  }

  InstallerDatabases& inner_;
};

using Texts = std::vector<std::string>;
using Lines = std::vector<Texts>;

/// The titles of what is shown of a table.
inline Texts titles(const DatabaseContent& content, const String& table) {
  Texts result;
  for (const ShownColumn& column : shown_columns(content.schemas().at(table)))
    result.emplace_back(column.name.c_str());
  return result;
}

/// The rows as they are shown, each with its number first.
inline Lines lines(const DatabaseContent& content, const String& table) {
  Lines result;
  const std::vector<ShownColumn> columns = shown_columns(content.schemas().at(table));
  for (const auto& [key, row] : content.tables().at(table)->rows) {
    Texts line{key.texts.at(0).c_str()};
    for (const ShownColumn& column : columns)
      line.emplace_back(row.cells.at(static_cast<size_t>(column.cell)).text.c_str());
    result.push_back(line);
  }
  return result;
}

inline Texts table_names(const DatabaseContent& content) {
  Texts result;
  for (const auto& [name, table] : content.tables())
    result.emplace_back(name.c_str());
  return result;
}

/// An empty database at a path, and its content.
class DatabaseBed : public testing::Test {
 protected:
  using Memory = MemoryInstallerDatabases;
  static constexpr char kPath[] = "C:\\a.msi";

  /// Whatever a test does, nothing stays open.
  ~DatabaseBed() override { EXPECT_EQ(memory_.open_objects(), 0); }

  Memory::Table& add(const std::string& name, const std::vector<Memory::Column>& columns,
                     const std::vector<std::vector<Memory::Value>>& rows = {}) {
    database_.tables.push_back({name, columns, rows});
    return database_.tables.back();
  }
  void load() { content_.load(databases_, kPath); }
  /// The status that load() ends with.
  InstallerStatus load_status() {
    try {
      load();
    } catch (const ORLO::SDKException& exception) {
      return exception.code;
    }
    return kInstallerSuccess;
  }
  Lines shown(const char* table) const { return lines(content_, table); }
  Texts shown_titles(const char* table) const { return titles(content_, table); }

  Memory memory_;
  Memory::Database& database_ = memory_.add(kPath);
  HookedDatabases databases_{memory_};
  DatabaseContent content_;
};
