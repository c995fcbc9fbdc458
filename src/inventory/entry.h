// The record behind one line of the main list, merged from the rows of all sources.
#pragma once

#include <cstdint>

#include "inventory/package_schema.h"
#include "orlo/datetime.h"
#include "orlo/rstring.h"

/// Belongs to the main thread. Texts named ...Text are display texts; dates that can't be read are
/// empty while their text stays.
struct UninstallEntry {
  String name;
  String keyName;  ///< the row's `name` where its `keyName` is empty
  String source;   ///< of a merged entry a list, joined with ", "
  String displayName;
  String displayVersion;
  String displayIcon;
  String installLocation;
  DateTime installDateValue;
  String installDate;
  DateTime uninstallDateValue;
  String uninstallDate;
  String uninstallCmd;
  String modifyCmd;
  int32_t noRemove = 0;
  int32_t noModify = 0;
  int32_t systemComponent = 0;
  String systemComponentText;
  String comments;
  int32_t size = 0;  ///< KB, -1 unknown
  String sizeText;
  DateTime lastUseDateValue;
  String lastUseDate;
  int32_t features = 0;
  int32_t patches = 0;
  int32_t frequency = 0;
  String frequencyText;
  String installerPath;
  String packagePath;
  String okText;
  String parent;
  String parentName;
  String user;
  String publisher;
  String contact;
  String helpURL;
  String helpPhone;
  String aboutURL;
  String updateURL;
  int32_t changed = 0;  ///< 0 nothing to report, -1 new, else the mask of changed columns
  int32_t is64Bit = 0;
  String is64BitText;
  bool MSI = false;
  int32_t OK = 0;
  int32_t HKEY_ROOT = 0;

  static UninstallEntry fromRow(const Row& row, const ORLO::Clock& clock = ORLO::system_clock());
  /// Takes over the other's data: later data wins, field by field, where it has a value. The shown
  /// installation date stays with the first source that has one, and `changed` is never taken.
  void merge(const UninstallEntry& other);
  /// Equal key names, and equal roots or one without a root.
  bool same_package(const UninstallEntry& other) const noexcept;
};
