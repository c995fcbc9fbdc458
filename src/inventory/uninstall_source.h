// The richest source of the inventory: each subkey of an Uninstall key becomes a row.
#pragma once

#include <cstdint>
#include <optional>
#include <set>

#include "inventory/source_rows.h"
#include "inventory/value_set.h"
#include "orlo/clock.h"
#include "orlo/rstring_fwd.h"

/// Runs on the reader thread. Failures are silent: a missing key gives no row, a missing value an
/// empty text, 0 or -1.
class UninstallSource {
 public:
  UninstallSource(Registry& registry, Files& files, const ORLO::Clock& clock);

  /// Delivers one row for each subkey of `key`, the opened Uninstall key of `root`
  /// (kLocalMachine or kCurrentUser), and erases its row key from `unseenKeys`.
  void readUninstallKey(int32_t root, const RegistryKey& key, std::set<RowKey>& unseenKeys,
                        bool is64BitView, const RowSink& deliver);

 private:
  struct Facts;

  void read_subkey(const RegistryKey& subkey, const String& name, Facts& facts, Row& row);
  /// `info` is the subkey's.
  String install_date(const std::optional<Registry::KeyInfo>& info) const;
  void read_usage_cache(const String& name, Facts& facts, Row& row);
  String installer_path(const Facts& facts, const String& modify);

  Registry& registry_;
  Files& files_;
  const ORLO::Clock& clock_;
  ValueSet values_;
};
