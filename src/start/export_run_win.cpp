#include <windows.h>

#include <cstdlib>
#include <exception>

#include "orlo/exception_handling.h"
#include "orlo/message_box.h"
#include "orlo/raw_file.h"
#include "platform/host_name.h"
#include "platform/language.h"
#include "platform/resources.h"
#include "start/export_run.h"
#include "start/program_version.h"
#include "start/windowless_export.h"

namespace {

/// A failure to tell of a failure can't be told any more.
void tell(const char* text) noexcept {
  try {
    const auto stream = ORLO::open_standard_stream(ORLO::StandardStream::error);
    if (stream == nullptr) return;
    const String line = String::formatted("zolvane: %s\n", in_one_line(text));
    stream->write(0, line.c_str(), line.length());
  } catch (const std::exception&) {
    return;
  }
}

/// Only what can't be gone on from asks for an answer here: reports are noted by the export. What
/// runs when a process ends in an orderly way may be what is broken.
int end_unanswered(const char* text, const char*, uint32_t) noexcept {
  tell(text);
  TerminateProcess(GetCurrentProcess(), kExportFailed);
  return ORLO::kAnswerCancel;
}

/// Neither we nor the system show anything from here on.
void show_nothing() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  _set_error_mode(_OUT_TO_STDERR);
  ORLO::answer_boxes_with(&end_unanswered);
  ORLO::install_exception_handling(true);
}

void use_language(const Switches& switches) {
  UninstallPara para;
  para.langId = thread_language();
  set_ui_locale(choose_language(switches, para));
  applyThreadLanguage();
}

String export_on_this_system(HINSTANCE instance, const String& file_name,
                             const UninstallReader::Services& reader) {
  const Resources resources(instance, static_cast<uint16_t>(ui_locale_id()));
  const auto storage = make_system_storage();
  return export_without_window(
      file_name,
      {.reader = reader,
       .text_of = [&](unsigned id) { return resources.text(id); },
       .host_name = host_name(),
       .program_version = kProgramVersion,
       .write_workbook = [&](const ExportSheet& sheet,
                             const String& name) { return writeWorkbook(sheet, name, *storage); },
       .open_output = [] { return ORLO::open_standard_stream(ORLO::StandardStream::output); }});
}

}  // namespace

int run_export(HINSTANCE instance, const Switches& switches,
               const UninstallReader::Services& reader) {
  show_nothing();
  use_language(switches);
  const String failure =
      switches.exportFile.empty()
          ? String("-export needs the name of a file after it, or - for the standard output")
          : export_on_this_system(instance, switches.exportFile, reader);
  if (failure.empty()) return kExportDone;
  tell(failure.c_str());
  return kExportFailed;
}
