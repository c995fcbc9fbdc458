// A workbook as it is built and saved.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "export/yexcel/sheet.h"
#include "export/yexcel/workbook.h"
#include "platform/compound_storage.h"

namespace YExcel {

/// Lives for one export. The file is whole only when the document has been destroyed.
class Document {
 public:
  /// The storage must outlive the document.
  explicit Document(CompoundStorage& storage);
  ~Document();

  /// Begins a new workbook with this many sheets, at least one.
  void New(size_t sheetCount);
  /// A new empty sheet before the one at `index`, at the end for -1. Null if the name is in use.
  std::shared_ptr<Sheet> AddSheet(const std::string& name, int index = -1);
  /// Null for an index beyond the last sheet.
  std::shared_ptr<Sheet> SheetAt(size_t index) const;
  Workbook& workbook() noexcept { return workbook_; }

  /// Creates the file, or replaces it, and saves into it. The path is in the code page.
  bool SaveAs(const std::string& path);
  /// Writes all sheets into the file of SaveAs. False without one.
  bool Save();
  /// Of the last operation that failed; 0 if none has.
  StorageStatus status() const noexcept { return status_; }

  /// The bytes of the stream "Workbook".
  std::string stream();

 private:
  bool succeeded(StorageStatus status) noexcept;

  CompoundStorage& files_;
  std::unique_ptr<CompoundFile> storage_;
  StorageStatus status_ = 0;
  Workbook workbook_;
  std::vector<std::shared_ptr<Sheet>> sheets_;
};

}  // namespace YExcel
