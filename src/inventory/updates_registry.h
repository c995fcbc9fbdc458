// The tree in which older systems keep their hotfixes.
#pragma once

#include <set>

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
  Registry& registry_;
  const ORLO::Clock& clock_;
  ValueSet values_;
};
