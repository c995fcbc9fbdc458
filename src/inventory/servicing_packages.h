// The packages of component based servicing, in which the system keeps its updates.
#pragma once

#include <set>

#include "inventory/sid_names.h"
#include "inventory/source_rows.h"
#include "inventory/value_set.h"

/// Runs on the reader thread. Failures are silent.
class ServicingPackagesSource {
 public:
  ServicingPackagesSource(Registry& registry, Accounts& accounts, const ORLO::Clock& clock);

  /// Delivers a row for each package. False if their key can't be opened.
  bool ReadServicingPackages(std::set<RowKey>& unseenKeys, const RowSink& deliver);

 private:
  void read_package(const RegistryKey& package, const char* name, Row& row);

  Registry& registry_;
  const ORLO::Clock& clock_;
  SidNameCache sid_names_;
  ValueSet values_;
};
