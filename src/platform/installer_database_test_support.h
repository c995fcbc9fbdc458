// What the contract of installer databases is tested on: databases with a way to write new ones.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/memory_installer_database.h"

using MemoryDatabase = MemoryInstallerDatabases::Database;
using MemoryTable = MemoryInstallerDatabases::Table;

class DatabaseBed {
 public:
  virtual ~DatabaseBed() = default;
  virtual InstallerDatabases& databases() = 0;
  /// The path of a new database with these tables, each of which has its first column as key. A
  /// stream's content doesn't matter.
  virtual std::string write(const std::vector<MemoryTable>& tables) = 0;
  virtual std::string missing() = 0;
};

struct DatabaseBedMaker {
  const char* name;
  std::function<std::unique_ptr<DatabaseBed>()> make;
};

inline void PrintTo(const DatabaseBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// All fields of a record in `room` bytes each; "<N>" for a field that answers status N, with what
/// it leaves in the buffer after it.
inline std::vector<std::string> texts_of(InstallerRecord& record, size_t room = 100) {
  std::vector<std::string> texts;
  for (int field = 1; field <= record.field_count(); ++field) {
    std::vector<char> buffer(room, '#');
    const InstallerStatus status = record.text(static_cast<unsigned>(field), buffer.data(), room);
    std::string text = status != kInstallerSuccess ? "<" + std::to_string(status) + ">" : "";
    texts.push_back(text.append(buffer.data()));
  }
  return texts;
}

using Grid = std::vector<std::vector<std::string>>;

/// The rows that a view still has, and the status that ends them.
inline Grid rows_of(InstallerView& view, InstallerStatus& end, size_t room = 100) {
  Grid rows;
  std::unique_ptr<InstallerRecord> record;
  while ((end = view.fetch(record)) == kInstallerSuccess)
    rows.push_back(texts_of(*record, room));
  return rows;
}

inline std::vector<std::string> column_texts(InstallerView& view, ColumnInfo kind) {
  std::unique_ptr<InstallerRecord> record;
  if (view.column_info(kind, record) != kInstallerSuccess) return {"no record"};
  return texts_of(*record);
}

/// The promises of InstallerDatabases that every implementation keeps.
class DatabaseContract : public ::testing::TestWithParam<DatabaseBedMaker> {
 protected:
  DatabaseContract() : bed_(GetParam().make()) {}

  DatabaseBed& bed() { return *bed_; }

  void open(const std::vector<MemoryTable>& tables) {
    ASSERT_EQ(bed().databases().open(bed().write(tables).c_str(), database_), kInstallerSuccess);
    ASSERT_NE(database_, nullptr);
  }
  InstallerStatus ask(const std::string& query) {
    return database_->open_view(query.c_str(), view_);
  }
  /// All rows that a query gives; it must succeed and end as queries do.
  Grid rows(const std::string& query, size_t room = 100) {
    EXPECT_EQ(ask(query), kInstallerSuccess) << query;
    if (view_ == nullptr) return {};
    InstallerStatus end = 0;
    Grid found = rows_of(*view_, end, room);
    EXPECT_EQ(end, kInstallerNoMoreItems) << query;
    return found;
  }

  std::unique_ptr<DatabaseBed> bed_;
  std::unique_ptr<InstallerDatabase> database_;
  std::unique_ptr<InstallerView> view_;
};
