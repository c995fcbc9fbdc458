#include "view/clicked_cell.h"

#include "view/package_commands.h"

void ClickedCell::click(uint32_t id, int column) {
  id_ = id;
  column_ = column;
  url_ = cell_url(text());
}

String ClickedCell::text() const {
  return shown_part(model_.cellText(id_, column_));
}
