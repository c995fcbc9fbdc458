// The form that the program's own XML documents have in common.
#pragma once

#include <memory>

#include "orlo/rstring.h"
#include "trellis/xml_doc.h"
#include "trellis/xml_writer.h"

/// Of the settings and the history, as their root element says.
inline constexpr char kDocumentVersion[] = "5.3";

/// A file at `path` with the root element open, and the folders that are missing. The caller closes
/// that element; destroying the writer completes the file. A file that can't be written takes
/// nothing and says nothing.
std::unique_ptr<Trellis::XMLWriter> create_own_document(const String& path);

/// Reads a file; false if there is none, or it is malformed or larger than the memory.
bool read_own_document(const String& path, Trellis::XMLDoc& doc);

/// The root element; null without one.
const Trellis::XMLNode* own_root(const Trellis::XMLDoc& doc);

/// Order of a root element's version and the present one: negative, 0, positive. One without a
/// version is older.
int compare_document_version(const Trellis::XMLNode& root);
