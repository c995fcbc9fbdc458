// The search text as the question whether a package or a cell is meant.
#pragma once

#include <optional>
#include <span>

#include "inventory/entry.h"
#include "orlo/wildcard.h"

/// The fields that a search looks into.
std::span<String UninstallEntry::*const> searched_fields() noexcept;

/// The text may stand anywhere in a field, in either case; * and ? in it are wildcards.
class Search {
 public:
  /// Searches for nothing: not active, and matches nothing.
  Search() = default;
  explicit Search(const String& text);

  bool active() const noexcept { return pattern_.has_value(); }
  bool matches(const String& text) const noexcept;
  /// Whether any of the fields that are searched matches.
  bool matches(const UninstallEntry& entry) const noexcept;

 private:
  std::optional<ORLO::FoldedPattern> pattern_;
};
