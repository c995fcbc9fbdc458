// The seam to WMI, the system's store of facts about itself.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "orlo/byte_order.h"

/// The properties of one instance by their names; those that are null are left out.
using WmiInstance = std::map<String, String, ORLO::ByteOrder>;
using WmiInstances = std::vector<WmiInstance>;

/// A connection, of the thread that made it and for that thread alone.
class WmiQuery {
 public:
  virtual ~WmiQuery() = default;
  /// Runs a query in WQL. True if the enumeration ran to its end; if not, `results` holds the
  /// instances before the failure, the last of them perhaps in part. Throws ORLO::ComError where a
  /// property's value can't be converted to text, as an array can't.
  virtual bool Execute(const char* query, const char* name_space, WmiInstances& results) = 0;
};

class Wmi {
 public:
  virtual ~Wmi() = default;
  /// Initialises COM on the calling thread for as long as the query lives. Never null: where there
  /// is no WMI, Execute() fails.
  virtual std::unique_ptr<WmiQuery> connect() = 0;
};

/// The WMI of this system.
std::unique_ptr<Wmi> make_system_wmi();
