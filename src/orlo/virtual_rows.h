// Rows of texts behind a list that asks for each cell when it is drawn.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "orlo/rstring.h"

namespace ORLO {

class VirtualRows {
 public:
  using Texts = std::vector<String>;
  using Fill = std::function<void(uint32_t id, Texts& texts)>;

  /// A row without data. Ids start at 1, grow, and are never used twice.
  uint32_t add() { return add(nullptr); }
  uint32_t add(Texts texts) { return add(&texts); }
  void remove(uint32_t id) { rows_.erase(id); }
  void clear() noexcept { rows_.clear(); }
  size_t count() const noexcept { return rows_.size(); }

  /// The text of a cell, empty where the row or the column isn't there. Lives until the row goes.
  /// A row without data is filled first: once, even if that fails, or each drawing would fail anew.
  const String& text(uint32_t id, int column, const Fill& fill);

 private:
  struct Row {
    bool filled = false;
    Texts texts;
  };
  uint32_t add(Texts* texts);

  std::map<uint32_t, Row> rows_;
  uint32_t last_id_ = 0;
};

}  // namespace ORLO
