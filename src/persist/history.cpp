#include "persist/history.h"

#include "persist/own_document.h"

namespace {

constexpr const char* kLastEntries = "last-entries";

}  // namespace

void write_history(const Table& lastEntries, const String& path) {
  const auto writer = create_own_document(path);
  writer->create(kLastEntries);
  lastEntries.writeRows(*writer);
  writer->back();
  writer->back();
}

bool read_history(const String& path, Table& lastEntries) {
  Trellis::XMLDoc doc;
  if (!read_own_document(path, doc)) return false;
  const Trellis::XMLNode* const root = own_root(doc);
  if (root == nullptr) return true;
  if (compare_document_version(*root) != 0) return false;
  if (const Trellis::XMLNode* const rows = root->find(Trellis::XMLPath(kLastEntries)))
    lastEntries.readRows(*rows);
  return true;
}
