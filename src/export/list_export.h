// The export of the list into a file that the user names.
#pragma once

#include <functional>

#include "actions/action_parts.h"
#include "export/export_sheet.h"
#include "orlo/file_dialog.h"
#include "platform/compound_storage.h"

/// The list as an export sees it.
class ExportedList {
 public:
  using Visitor = std::function<void(const UninstallEntry& entry)>;

  virtual ~ExportedList() = default;
  /// Shows every package, in the order of their arrival. False, with none shown, if the wait for
  /// the list was given up.
  virtual bool visit_packages(const Visitor& visitor) = 0;
  virtual ExportFilter export_filter() const = 0;
};

/// Lives on the main thread.
class ListExport {
 public:
  /// The name that the user gives in a dialog, empty for none.
  using AskFileName = std::function<String(const ORLO::SaveFileDialog& dialog)>;
  /// All must outlive the export.
  struct Parts {
    ActionParts actions;
    CompoundStorage& storage;
    ExportedList& list;
    AskFileName ask_file_name;
    TextOf text_of;
  };

  explicit ListExport(Parts parts) : parts_(std::move(parts)) {}

  /// Asks for a name and writes the file. A workbook is opened with its viewer; its failure is told
  /// in a box. Throws LWE if a text file can't be written.
  void exportList();

 private:
  /// What is to be told in a box; an empty text if there is nothing to tell.
  struct Failure {
    String text;
    unsigned title = 0;  ///< id of the box's title
  };
  Failure write(const String& fileName);
  Failure write_workbook(const ExportSheet& sheet, const String& fileName);

  const Parts parts_;
};
