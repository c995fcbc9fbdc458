// A WMI in memory, for tests and for the build machine.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/wmi.h"

/// Knows the queries that it has been given answers for, and no others. Belongs to one thread; its
/// connections must be gone before it is.
class MemoryWmi : public Wmi {
 public:
  /// What answers this query. Texts of queries and namespaces compare by bytes.
  void answer(const std::string& query, const std::string& name_space, WmiInstances instances);
  /// The same with the instances of a text as "wmic ... list full" prints it: UTF-16 with a byte
  /// order mark, lines "Name=Value", blank lines between instances. An empty value is left out, as
  /// wmic doesn't tell it from null. False if that isn't what the text is.
  bool load(const std::string& query, const std::string& name_space, std::string_view text);

  /// From now on there is no WMI to be had; connections from before stay.
  void refuse() noexcept { refuses_ = true; }
  /// Each enumeration dies after this many instances.
  void fail_after(size_t instances) noexcept { fail_after_ = instances; }
  /// Each enumeration meets a value of this property that has no text.
  void throw_at(const std::string& property) { throw_at_ = property; }

  /// "NAMESPACE: QUERY" for all that was executed, whatever became of it.
  const std::vector<std::string>& queries() const noexcept { return queries_; }
  /// Connections that are alive.
  int connections() const noexcept { return connections_; }

  std::unique_ptr<WmiQuery> connect() override;

 private:
  class Query;

  bool execute(const std::string& key, WmiInstances& results);

  std::map<std::string, WmiInstances> answers_;  ///< by "NAMESPACE: QUERY"
  std::vector<std::string> queries_;
  std::optional<size_t> fail_after_;
  std::optional<std::string> throw_at_;
  bool refuses_ = false;
  int connections_ = 0;
};
