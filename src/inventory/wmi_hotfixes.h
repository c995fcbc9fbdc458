// The hotfixes that WMI knows.
#pragma once

#include <set>

#include "inventory/reader_rows.h"
#include "inventory/source_rows.h"
#include "platform/wmi.h"

/// An instance of Win32_QuickFixEngineering. A property that is missing or null is empty.
struct QfeRecord {
  String Caption;
  String Description;
  String FixComments;
  String HotFixID;
  String InstallDate;
  String InstalledBy;
  String InstalledOn;
  String Name;
  String ServicePackInEffect;
  String Status;
};

/// Delivers a row for each hotfix that isn't among `rows` by its Name. `deliver` puts the row among
/// `rows`. Failures are silent, but for a property that has no text: that throws ORLO::ComError.
void ReadWmiHotfixes(Wmi& wmi, const ORLO::Clock& clock, const ReaderRows& rows,
                     std::set<RowKey>& unseenKeys, const RowSink& deliver);
