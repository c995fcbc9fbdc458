#include "export/list_export.h"

#include "actions/shell_command.h"
#include "actions/shown_wait_cursor.h"
#include "export/csv.h"
#include "export/file_format.h"
#include "export/workbook.h"
#include "orlo/exception.h"
#include "platform/resource_ids.h"

namespace {

// Flags of the system's file dialogs.
constexpr uint32_t kOverwritePrompt = 0x2;
constexpr uint32_t kNoChangeDir = 0x8;
constexpr uint32_t kPathMustExist = 0x800;
constexpr uint32_t kExplorer = 0x80000;

ORLO::SaveFileDialog save_dialog(const String& title) {
  ORLO::SaveFileDialog dialog;
  dialog.title = title;
  dialog.file_name = "Software.xls";
  dialog.default_extension = ".xls";
  dialog.filter = "Excel Sheet (*.xls)|*.xls|CSV File (*.csv)|*.csv|";
  dialog.flags = kOverwritePrompt | kNoChangeDir | kPathMustExist | kExplorer;
  return dialog;
}

}  // namespace

void ListExport::exportList() {
  const String name = parts_.ask_file_name(save_dialog(parts_.text_of(IDS_EXPORT_TITLE)));
  if (name.empty()) return;
  const Failure failure = write(name);
  if (failure.text.empty()) return;
  parts_.actions.frame.warn(failure.text, parts_.text_of(failure.title));
}

ListExport::Failure ListExport::write(const String& fileName) {
  const ShownWaitCursor shown(parts_.actions.frame);
  ExportSheetBuilder builder(parts_.text_of, parts_.list.export_filter());
  if (!parts_.list.visit_packages([&](const UninstallEntry& entry) { builder.add(entry); })) {
    return {};
  }
  const ExportSheet sheet = builder.take();
  if (is_workbook_name(fileName)) return write_workbook(sheet, fileName);
  writeCsv(sheet, fileName);
  return {};
}

ListExport::Failure ListExport::write_workbook(const ExportSheet& sheet, const String& fileName) {
  if (sheet.rows.size() > kMostWorkbookRows) {
    const String text = parts_.text_of(IDS_TOO_MANY_ROWS);
    return {String::formatted(text.c_str(), static_cast<int>(kMostWorkbookRows)), IDS_PRODUCT};
  }
  const StorageStatus status = writeWorkbook(sheet, fileName, parts_.storage);
  if (status != 0) return {ORLO::system_error_text(static_cast<uint32_t>(status)), IDS_EXCEPTION};
  const ShellCommand command = ShellCommand::parse(fileName, parts_.actions.files);
  parts_.actions.shell.open(command.start(parts_.actions.frame.owner()));
  return {};
}
