#include "persist/own_document.h"

#include <exception>

#include "inventory/text_helpers.h"
#include "orlo/exception.h"
#include "orlo/folders.h"
#include "trellis/xml_reader.h"

namespace {

constexpr const char* kRoot = "zolvane";

Trellis::XMLFormat own_format() {
  Trellis::XMLFormat format;
  format.pretty = 0;
  return format;
}

}  // namespace

std::unique_ptr<Trellis::XMLWriter> create_own_document(const String& path) {
  ORLO::create_folder_of(path.c_str());
  auto writer = std::make_unique<Trellis::XMLWriter>(
      std::make_unique<Trellis::tofstream>(path.c_str()), own_format());
  writer->_format.print_header(writer->out, false);
  writer->create(kRoot);
  (*writer)["version"] = kDocumentVersion;
  return writer;
}

bool read_own_document(const String& path, Trellis::XMLDoc& doc) {
  Trellis::tifstream stream(path.c_str());
  if (!stream) return false;
  Trellis::XMLReader reader(doc, stream);
  try {
    return doc.read(reader, path.c_str());
  } catch (const ORLO::SDKException&) {
    // It is larger than the memory, as the new-handler tells that.
  } catch (const std::exception&) {
    // Likewise without the handler, which isn't there yet when the settings are read.
  }
  return false;
}

const Trellis::XMLNode* own_root(const Trellis::XMLDoc& doc) {
  return doc.find(Trellis::XMLPath(kRoot));
}

int compare_document_version(const Trellis::XMLNode& root) {
  return compareVersions(root.get("version", "").c_str(), kDocumentVersion);
}
