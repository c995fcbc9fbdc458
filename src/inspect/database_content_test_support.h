// A package's database whose answers a test decides, to the last one.
#pragma once

#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "inspect/database_content.h"

/// What one field answers.
struct ScriptedField {
  std::string text = {};
  InstallerStatus status = kInstallerSuccess;
  int32_t number = kInstallerNull;

  static ScriptedField integer(int32_t number) { return {std::to_string(number), 0, number}; }
};
using ScriptedFields = std::vector<ScriptedField>;

/// What one query answers.
struct ScriptedView {
  InstallerStatus open = kInstallerSuccess;
  InstallerStatus names_status = kInstallerSuccess;
  InstallerStatus types_status = kInstallerSuccess;
  ScriptedFields names = {};
  ScriptedFields types = {};
  std::vector<ScriptedFields> records = {};
  InstallerStatus end = kInstallerNoMoreItems;
  bool count_fails = false;
};

/// Queries answer what was scripted for them; one that wasn't is a bad query. `log` tells of every
/// query, `open_objects` how many databases, views and records there are.
class ScriptedDatabases : public InstallerDatabases {
 public:
  std::map<std::string, ScriptedView> views;
  std::vector<std::string> log;
  InstallerStatus open_status = kInstallerSuccess;
  int open_objects = 0;

  /// Each column with its name and its type.
  using ColumnList = std::vector<std::pair<std::string, std::string>>;

  void add(const std::string& table, const ColumnList& columns, const std::string& row_query,
           const std::vector<ScriptedFields>& rows) {
    views["select `Name` from `_Tables`"].records.push_back({{table}});
    describe(table, columns, row_query, rows);
  }
  void describe(const std::string& table, const ColumnList& columns, const std::string& row_query,
                const std::vector<ScriptedFields>& rows) {
    ScriptedView& all = views["select * from `" + table + "`"];
    for (const auto& [name, type] : columns) {
      all.names.push_back({name});
      all.types.push_back({type});
    }
    views[row_query].records = rows;
  }

  InstallerStatus open(const char* path, std::unique_ptr<InstallerDatabase>& database) override {
    log.emplace_back(std::string("open ") + path);
    if (open_status == kInstallerSuccess) database = std::make_unique<Database>(*this);
    return open_status;
  }

 private:
  class Counted {
   public:
    explicit Counted(ScriptedDatabases& owner) : owner_(owner) { ++owner.open_objects; }
    ~Counted() { --owner_.open_objects; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

   protected:
    ScriptedDatabases& owner_;
  };

  class Record : public InstallerRecord, private Counted {
   public:
    Record(ScriptedDatabases& owner, const ScriptedFields& fields, bool count_fails)
        : Counted(owner), fields_(fields), count_fails_(count_fails) {}
    int field_count() override { return count_fails_ ? -1 : static_cast<int>(fields_.size()); }
    InstallerStatus text(unsigned field, char* buffer, size_t room) override {
      const ScriptedField answer = at(field);
      const size_t length = std::min(answer.text.size(), room - 1);
      std::memcpy(buffer, answer.text.data(), length);
      buffer[length] = '\0';
      const bool cut = length < answer.text.size() && answer.status == kInstallerSuccess;
      return cut ? kInstallerMoreData : answer.status;
    }
    int32_t integer(unsigned field) override { return at(field).number; }

   private:
    /// There is nothing in a field beyond the last one.
    ScriptedField at(unsigned field) const {
      return field <= fields_.size() ? fields_[field - 1] : ScriptedField();
    }

    const ScriptedFields fields_;
    const bool count_fails_;
  };

  class View : public InstallerView, private Counted {
   public:
    View(ScriptedDatabases& owner, const ScriptedView& script) : Counted(owner), script_(script) {}
    InstallerStatus column_info(ColumnInfo kind,
                                std::unique_ptr<InstallerRecord>& record) override {
      const bool names = kind == ColumnInfo::names;
      const InstallerStatus status = names ? script_.names_status : script_.types_status;
      if (status != kInstallerSuccess) return status;
      record = std::make_unique<Record>(owner_, names ? script_.names : script_.types,
                                        script_.count_fails);
      return status;
    }
    InstallerStatus fetch(std::unique_ptr<InstallerRecord>& record) override {
      if (fetched_ == script_.records.size()) return script_.end;
      record = std::make_unique<Record>(owner_, script_.records[fetched_++], false);
      return kInstallerSuccess;
    }

   private:
    const ScriptedView script_;
    size_t fetched_ = 0;
  };

  class Database : public InstallerDatabase, private Counted {
   public:
    explicit Database(ScriptedDatabases& owner) : Counted(owner) {}
    InstallerStatus open_view(const char* query, std::unique_ptr<InstallerView>& view) override {
      owner_.log.emplace_back(query);
      const auto found = owner_.views.find(query);
      if (found == owner_.views.end()) return kInstallerBadQuery;
      if (found->second.open == kInstallerSuccess)
        view = std::make_unique<View>(owner_, found->second);
      return found->second.open;
    }
  };
};
