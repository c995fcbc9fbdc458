#include "start/windowless_export.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "export/csv.h"
#include "export/file_format.h"
#include "orlo/ascii.h"
#include "orlo/com_error.h"
#include "orlo/exception.h"
#include "orlo/overlapped_file.h"
#include "orlo/report.h"
#include "orlo/sync_file.h"

namespace {

using ORLO::UserException;

bool ends_in(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() &&
         ORLO::equal_nocase(text.substr(text.size() - ending.size()), ending);
}

// Failures of the system, in English: what reads them may have another code page than we.

struct CodeText {
  uint32_t code;
  const char* text;
};

constexpr CodeText kCodeTexts[] = {
    {2, "there is no such folder"},   {3, "there is no such folder"},
    {5, "access is denied"},          {14, "out of memory"},
    {15, "there is no such drive"},   {19, "the disk is write-protected"},
    {21, "the drive isn't ready"},    {32, "another program has it open"},
    {39, "the disk is full"},         {53, "the server can't be reached"},
    {64, "the server is gone"},       {67, "the server has no such share"},
    {109, "the reader is gone"},      {112, "the disk is full"},
    {123, "that is no file name"},    {206, "the name is too long"},
    {232, "the reader is gone"},      {233, "the reader is gone"},
    {267, "there is no such folder"},
};

String code_text(uint32_t code) {
  const auto* const found = std::find_if(std::begin(kCodeTexts), std::end(kCodeTexts),
                                         [=](const CodeText& row) { return row.code == code; });
  if (found == std::end(kCodeTexts)) return String::formatted("error %u", code);
  return String::formatted("%s (error %u)", found->text, code);
}

UserException cannot_write(const String& file_name, const String& reason) {
  return UserException(String::formatted("can't write %s: %s", file_name, reason));
}

/// The first report of a failure, while nobody is there to whom it could be shown.
class NotedReports {
 public:
  NotedReports() {
    ORLO::set_report_sink([this](const String&, const String& text) {
      const ORLO::Lock hold(lock_);
      if (text_.empty()) text_ = text;
    });
  }
  ~NotedReports() { ORLO::set_report_sink({}); }
  NotedReports(const NotedReports&) = delete;
  NotedReports& operator=(const NotedReports&) = delete;

  /// Throws if there was one.
  void check() {
    const ORLO::Lock hold(lock_);
    if (!text_.empty()) throw UserException(text_);
  }

 private:
  ORLO::CriticalSection lock_;
  String text_;
};

/// How a pass has ended, for nobody to see.
class SilentFrame : public RefreshFrame {
 public:
  explicit SilentFrame(PackageList& packages) : packages_(packages) {}
  void forget_entries() override { packages_.clear(); }
  void begin_wait() override {}
  void end_wait() noexcept override {}
  void show_counts() override {}
  void show_failure(const String& text) override { failure_ = text; }
  void writeHistory() override {}
  void refreshed() override { whole_ = true; }

  /// Throws unless the pass has brought all there is.
  void check() const {
    if (!failure_.empty()) throw UserException(failure_);
    if (!whole_) throw UserException("told to quit before all sources were read");
  }

 private:
  PackageList& packages_;
  String failure_;
  bool whole_ = false;
};

/// False if the reader got lost on the way. Its report has come when this returns.
bool run_pass(const WindowlessServices& services, PackageList& packages, SilentFrame& frame) {
  UninstallReader reader(services.reader);
  Table current(packageSchema());
  HistoryMerge history;
  ORLO::CriticalSection lock;
  RefreshCycle cycle({reader, current, history, lock, packages, frame, services.reader.clock},
                     services.wait);
  cycle.requestRefresh();
  return !reader.lost();
}

void read_packages(const WindowlessServices& services, NotedReports& reports,
                   PackageList& packages) {
  SilentFrame frame(packages);
  const bool whole = run_pass(services, packages, frame);
  reports.check();
  frame.check();
  if (!whole) throw UserException("reading the packages has failed");
}

ExportSheet sheet_of(const PackageList& packages, const TextOf& text_of) {
  ExportSheetBuilder builder(text_of, ExportFilter());
  for (const auto& [id, entry] : packages.entries())
    builder.add(entry);
  return builder.take();
}

void check_rows(const ExportSheet& sheet, size_t most) {
  if (sheet.rows.size() <= most) return;
  throw UserException(String::formatted(
      "%u packages, of which only %u fit into a workbook; CSV and JSON have no limit",
      static_cast<unsigned>(sheet.rows.size()), static_cast<unsigned>(most)));
}

class PassWriter {
 public:
  PassWriter(const WindowlessServices& services, const PackageList& packages,
             const ORLO::SystemTime& pass_time)
      : services_(services), packages_(packages), pass_time_(pass_time) {}

  void to_output() const {
    auto output = services_.open_output();
    if (output == nullptr) throw cannot_write("standard output", "there is none");
    ORLO::SyncOutFile file(std::move(output));
    if (!write_json(file)) throw cannot_write("standard output", code_text(file.error()));
  }

  /// Into a file that exists already and is nobody else's.
  void to_file(const String& name, ExportFormat format) const {
    if (format == ExportFormat::json_lines) {
      auto opened = ORLO::open_overlapped_raw_file(name.c_str(), ORLO::FileAccess::write,
                                                   ORLO::kCreateAlways, ORLO::kShareRead, 0);
      if (opened == nullptr) throw ORLO::LWE();
      ORLO::OverlappedOutFile file(std::move(opened));
      if (!write_json(file)) throw ORLO::LWE(file.error());
      return;
    }
    const ExportSheet sheet = sheet_of(packages_, services_.text_of);
    if (format == ExportFormat::csv) {
      writeCsv(sheet, name);
      return;
    }
    check_rows(sheet, services_.most_workbook_rows);
    const int32_t status = services_.write_workbook(sheet, name);
    if (status != 0) {
      throw UserException(String::formatted("error 0x%08X", static_cast<uint32_t>(status)));
    }
  }

 private:
  bool write_json(ORLO::OutFile& file) const {
    JsonLines lines({services_.host_name, pass_time_, services_.program_version},
                    ORLO::system_locale(), file);
    for (const auto& [id, entry] : packages_.entries())
      lines.write(entry);
    return lines.finish();
  }

  const WindowlessServices& services_;
  const PackageList& packages_;
  const ORLO::SystemTime pass_time_;
};

/// A file of its own beside the target, which goes unless it takes the target's place.
class TemporaryFile {
 public:
  explicit TemporaryFile(const String& target)
      : target_(target), name_(ORLO::create_temporary_file(target)) {}
  ~TemporaryFile() {
    if (!kept_) ORLO::delete_file(name_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const String& name() const noexcept { return name_; }
  void take_targets_place() {
    const uint32_t error = rename_patiently();
    if (error != 0) throw ORLO::LWE(error);
    kept_ = true;
  }

 private:
  /// Another export into the same file, or whatever looks at new files, may be at it just now.
  uint32_t rename_patiently() const {
    constexpr int kAttempts = 5;
    constexpr uint32_t kPause = 50;
    uint32_t error = ORLO::rename_file(name_.c_str(), target_.c_str());
    for (int i = 1; error != 0 && i < kAttempts; ++i) {
      ORLO::Event never;
      ORLO::wait_for(never, kPause);
      error = ORLO::rename_file(name_.c_str(), target_.c_str());
    }
    return error;
  }

  const String target_;
  const String name_;
  bool kept_ = false;
};

void write_file(const String& file_name, const PassWriter& writer, NotedReports& reports) {
  try {
    TemporaryFile file(file_name);
    writer.to_file(file.name(), export_format(file_name));
    reports.check();
    file.take_targets_place();
  } catch (const ORLO::SDKException& failure) {
    throw cannot_write(file_name, code_text(failure.code));
  } catch (const UserException& failure) {
    throw cannot_write(file_name, failure.what());
  }
}

void export_pass(const String& file_name, const WindowlessServices& services) {
  NotedReports reports;
  const ORLO::SystemTime pass_time = services.reader.clock.now();
  PackageList packages;
  read_packages(services, reports, packages);
  const PassWriter writer(services, packages, pass_time);
  if (export_format(file_name) == ExportFormat::standard_output) {
    writer.to_output();
    reports.check();
  } else {
    write_file(file_name, writer, reports);
  }
}

/// One line, and never an empty one, which would tell that nothing has failed.
String failure_line(const String& text) {
  const String line = in_one_line(text);
  return line.empty() ? String("failed for an unknown reason") : line;
}

/// What has failed; empty if nothing has.
String failure_of(const std::function<void()>& work) {
  try {
    work();
    return String();
  } catch (const ORLO::Exception& exception) {
    return failure_line(exception.what());
  } catch (const ORLO::ComError& error) {
    return failure_line(ORLO::com_error_text(error));
  } catch (const std::bad_alloc&) {
    return "out of memory";
  } catch (const std::exception& exception) {
    return failure_line(exception.what());
  }
}

}  // namespace

ExportFormat export_format(const String& file_name) {
  if (std::strcmp(file_name.c_str(), "-") == 0) return ExportFormat::standard_output;
  const std::string_view name = file_name.c_str();
  if (ends_in(name, ".json") || ends_in(name, ".ndjson")) return ExportFormat::json_lines;
  return is_workbook_name(file_name) ? ExportFormat::workbook : ExportFormat::csv;
}

String export_without_window(const String& file_name, const WindowlessServices& services) {
  return failure_of([&] { export_pass(file_name, services); });
}

String in_one_line(const String& text) {
  std::string line(text.c_str(), text.length());
  std::replace_if(
      line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}
