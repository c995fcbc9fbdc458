#include "export/yexcel/document.h"

#include <algorithm>

#include "export/yexcel/record.h"
#include "export/yexcel/worksheet.h"
#include "orlo/locale.h"

namespace YExcel {
namespace {

constexpr char16_t kStream[] = u"Workbook";
/// STG_E_INVALIDHANDLE: there is no file to save into.
constexpr auto kNoFile = static_cast<StorageStatus>(0x80030006);

std::string sheet_name(size_t number) {
  return "Sheet" + std::to_string(number);
}

}  // namespace

Document::Document(CompoundStorage& storage) : files_(storage) {}

Document::~Document() = default;

void Document::New(size_t sheetCount) {
  workbook_ = Workbook();
  sheets_.clear();
  for (size_t i = 0; i < std::max<size_t>(sheetCount, 1); ++i) {
    size_t number = sheets_.size() + 1;
    while (AddSheet(sheet_name(number)) == nullptr)
      ++number;
  }
}

std::shared_ptr<Sheet> Document::AddSheet(const std::string& name, int index) {
  auto& bound = workbook_.boundSheets;
  const auto has_name = [&name](const auto& other) { return other.name.name == name; };
  if (std::any_of(bound.begin(), bound.end(), has_name)) return nullptr;
  const bool inside = index >= 0 && static_cast<size_t>(index) < sheets_.size();
  const auto at = inside ? index : static_cast<std::ptrdiff_t>(sheets_.size());
  Workbook::BoundSheet entry;
  entry.name.name = name;
  bound.insert(bound.begin() + at, entry);
  return *sheets_.insert(sheets_.begin() + at, std::make_shared<Sheet>());
}

std::shared_ptr<Sheet> Document::SheetAt(size_t index) const {
  return index < sheets_.size() ? sheets_[index] : nullptr;
}

bool Document::SaveAs(const std::string& path) {
  storage_.reset();
  const std::u16string wide = ORLO::system_locale().widen(path.data(), path.size());
  StorageStatus status = 0;
  storage_ = files_.create(wide.c_str(), status);
  return succeeded(status) && succeeded(storage_->create_stream(kStream)) && Save();
}

bool Document::Save() {
  if (storage_ == nullptr) return succeeded(kNoFile);
  const std::string bytes = stream();
  StorageStatus status = 0;
  auto opened = storage_->open_stream(kStream, status);
  if (!succeeded(status) || !succeeded(opened->write(bytes.data(), bytes.size()))) return false;
  opened.reset();
  return succeeded(storage_->commit());
}

bool Document::succeeded(StorageStatus status) noexcept {
  if (status < 0) status_ = status;
  return status >= 0;
}

std::string Document::stream() {
  SharedStringTable& strings = workbook_.sharedStringTable;
  strings.clear();
  std::vector<Worksheet> worksheets;
  worksheets.reserve(sheets_.size());
  for (const auto& sheet : sheets_)
    worksheets.emplace_back(*sheet, worksheets.empty(), strings);
  uint32_t position = workbook_.RecordSize();
  for (size_t i = 0; i < worksheets.size(); ++i) {
    workbook_.boundSheets[i].BOFpos = position;
    worksheets[i].place(position);
    position += worksheets[i].RecordSize();
  }
  std::string buffer;
  // The rules for sizes may miss headers of the table of strings.
  buffer.reserve(position + kRecordHeader * strings.continueIndices().size());
  workbook_.Write(buffer);
  for (const Worksheet& worksheet : worksheets)
    worksheet.Write(buffer);
  return buffer;
}

}  // namespace YExcel
