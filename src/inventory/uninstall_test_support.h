// An Uninstall key in memory, what its subkeys hold, and what the source makes of them.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/uninstall_source.h"
#include "orlo/fixed_clock.h"
#include "platform/memory_files.h"
#include "platform/memory_registry.h"

inline constexpr char kUninstallBelowRoot[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
inline constexpr char kUsageCacheKey[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\App "
    "Management\\ARPCache";

/// A usage record as the system writes it.
struct UsageBytes {
  uint32_t size = 552;
  uint32_t has_name = 0;
  int64_t installed = -1;
  uint64_t last_used = 0;
  uint32_t frequency = 0xFFFFFFFF;
  std::u16string name;

  std::string bytes() const {
    std::string data(552, '\0');
    std::memcpy(&data[0], &size, 4);
    std::memcpy(&data[4], &has_name, 4);
    std::memcpy(&data[8], &installed, 8);
    std::memcpy(&data[16], &last_used, 8);
    std::memcpy(&data[24], &frequency, 4);
    std::memcpy(&data[28], name.data(), name.size() * 2);
    return data;
  }
};

/// A current-user Uninstall key (one view only), read in Berlin on a day in winter. Its subkeys
/// have a last write time that is no date, unless a test sets one.
class UninstallBed : public testing::Test {
 protected:
  static constexpr ORLO::FileTime kNoDate = 0xF000000000000000;

  static std::string path(const std::string& name) {
    return std::string("HKEY_CURRENT_USER\\") + kUninstallBelowRoot + "\\" + name;
  }
  void add(const std::string& name) {
    registry_.create(path(name));
    registry_.set_last_write(path(name), kNoDate);
  }
  void text(const std::string& name, const char* value, std::u16string_view data) {
    registry_.set_text(path(name), value, data);
    registry_.set_last_write(path(name), kNoDate);
  }
  void number(const std::string& name, const char* value, uint32_t data) {
    registry_.set_number(path(name), value, data);
    registry_.set_last_write(path(name), kNoDate);
  }
  void raw(const std::string& name, const char* value, uint32_t type, std::string_view data) {
    registry_.set_raw(path(name), value, type, data);
    registry_.set_last_write(path(name), kNoDate);
  }
  void usage(const std::string& name, const UsageBytes& record) {
    registry_.set_raw(std::string(kUsageCacheKey) + "\\" + name, "SlowInfoCache", kRegBinary,
                      record.bytes());
  }

  /// One pass over the key through `registry`.
  const std::vector<Row>& read_through(Registry& registry, bool is64BitView = false) {
    rows_.clear();
    RegistryKey key;
    EXPECT_EQ(registry.open(kCurrentUser, kUninstallBelowRoot, kKeyRead, key), kRegSuccess);
    UninstallSource source(registry, files_, clock_);
    source.readUninstallKey(kCurrentUser, key, unseen_, is64BitView,
                            [this](const Row& row) { rows_.push_back(row); });
    return rows_;
  }
  const std::vector<Row>& read(bool is64BitView = false) {
    return read_through(registry_, is64BitView);
  }
  std::string value(size_t row, PackageColumn column) const {
    return cell(rows_.at(row), column).text.c_str();
  }
  std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const Row& row : rows_)
      result.emplace_back(cell(row, PackageColumn::name).text.c_str());
    return result;
  }

  const ORLO::FixedClock clock_{{2026, 11, 5, 20, 12}};
  MemoryRegistry registry_;
  MemoryFiles files_;
  std::set<RowKey> unseen_;
  std::vector<Row> rows_;
};
