#include "orlo/virtual_rows.h"

#include <utility>

namespace ORLO {

uint32_t VirtualRows::add(Texts* texts) {
  Row& row = rows_[++last_id_];
  if (texts != nullptr) {
    row.filled = true;
    row.texts = std::move(*texts);
  }
  return last_id_;
}

const String& VirtualRows::text(uint32_t id, int column, const Fill& fill) {
  static const String none;
  auto found = rows_.find(id);
  if (found == rows_.end()) return none;
  if (!found->second.filled) {
    found->second.filled = true;
    Texts texts;
    fill(id, texts);
    // What fills it may have changed the rows.
    found = rows_.find(id);
    if (found == rows_.end()) return none;
    found->second.texts = std::move(texts);
  }
  const Texts& texts = found->second.texts;
  const auto index = static_cast<size_t>(column);
  return column >= 0 && index < texts.size() ? texts[index] : none;
}

}  // namespace ORLO
