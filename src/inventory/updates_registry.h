// The tree in which older systems keep their hotfixes.
#pragma once

#include <optional>
#include <set>
#include <vector>

#include "inventory/source_rows.h"
#include "inventory/value_set.h"

inline constexpr char kUpdatesPath[] = "SOFTWARE\\Microsoft\\Updates";

/// Runs on the reader thread. Failures are silent.
class UpdatesRegistrySource {
 public:
  UpdatesRegistrySource(Registry& registry, const ORLO::Clock& clock);

  /// Delivers a row for each installed update below `key`, at any depth. `parentPath` is the path
  /// of `key`, empty for the tree's root. Returns the number of rows.
  int ReadUpdatesRegistry(const RegistryKey& key, const String& parentPath,
                          std::set<RowKey>& unseenKeys, const RowSink& deliver);

 private:
  struct Receiver;
  struct Level;

  int read_below(const Level& level, const Receiver& receiver);
  int read_subkey(const Level& level, const String& name, const Receiver& receiver);
  /// Delivers the row, if `values_` tell of an update that is installed. Whether they do.
  bool deliver_update(const Level& level, const String& name, const Receiver& receiver);
  /// The empty date if it isn't known.
  DateTime write_time(const std::optional<Registry::KeyInfo>& info) const;

  Registry& registry_;
  const ORLO::Clock& clock_;
  ValueSet values_;
  std::vector<char> name_;  ///< of the subkey in hand; one buffer for all levels
  int opened_ = 0;          ///< keys opened so far by this walk
};
