// A table that is shared by count.
#pragma once

#include "inventory/table.h"
#include "orlo/smart_ptr.h"

/// Has the columns of another table, and rows of its own.
class RefTable : public Table, public ORLO::RefCounter {
 public:
  explicit RefTable(const Table& schema) {
    columns = schema.columns;
    keyColumnCount = schema.keyColumnCount;
  }
};
