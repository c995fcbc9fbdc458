// What the memory of a package's tables is judged by.
#pragma once

#include <cstdio>

#include "inspect/database_content.h"

struct TextBytes {
  size_t all = 0;      ///< of all cells, each text as often as it stands there
  size_t numbers = 0;  ///< of these the rows' numbers, which aren't the database's own
  size_t rows = 0;
};

inline TextBytes text_bytes(const DatabaseContent& content) {
  TextBytes bytes;
  for (const auto& [name, table] : content.tables()) {
    bytes.rows += table->rows.size();
    for (const auto& [key, row] : table->rows) {
      for (const Cell& cell : row.cells)
        bytes.all += cell.text.length();
      bytes.numbers += key.texts.at(0).length();
    }
  }
  return bytes;
}

inline constexpr double kMostByTexts = 4;

inline void print_database_memory(const DatabaseContent& content, double taken,
                                  const char* verdict) {
  const TextBytes bytes = text_bytes(content);
  const auto all = static_cast<double>(bytes.all);
  const auto own = static_cast<double>(bytes.all - bytes.numbers);
  std::printf(
      "database of %zu tables, %zu rows: texts %.0f kB, memory %.0f kB, ratio %.2f, without the "
      "rows' numbers %.2f, %s\n",
      content.tables().size(), bytes.rows, all / 1e3, taken / 1e3, taken / all, taken / own,
      verdict);
}

/// For the build of the program.
inline void judge_database_memory(const DatabaseContent& content, double taken) {
  const auto all = static_cast<double>(text_bytes(content).all);
  print_database_memory(content, taken,
                        taken <= kMostByTexts * all ? "bar 4.0 holds" : "bar 4.0 MISSED");
}
