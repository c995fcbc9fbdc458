// The memory that the tables of a package take, by the bytes of their texts. Pointers are twice as
// wide here as in the program, which database_open_bench judges.
#include <malloc.h>

#include <cstdio>

#include "bench/package_tables.h"
#include "bench/text_bytes.h"

int main() {
  MemoryInstallerDatabases databases;
  auto& database = databases.add("a.msi");
  for (bench::PackageTable& one : bench::package_tables())
    database.tables.push_back(std::move(one.table));
  // Blocks in use with what the heap itself needs for each.
  const size_t before = mallinfo2().uordblks;
  DatabaseContent content;
  content.load(databases, "a.msi");
  print_database_memory(content, static_cast<double>(mallinfo2().uordblks - before), "64 bits");
  return 0;
}
