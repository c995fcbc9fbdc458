#include "view/update_commands.h"

#include "update/download_dlg.h"

namespace {

// How long a check is waited for that may be anywhere in the system's own code, and how often its
// boxes are looked for meanwhile; in milliseconds.
constexpr uint32_t kLongestWait = 1500;
constexpr uint32_t kWait = 25;

}  // namespace

void UpdateCommands::ManualFrame::hide() {
  ShowWindow(static_cast<HWND>(window()), SW_HIDE);
}

std::unique_ptr<ShownDownload> UpdateCommands::ManualFrame::show_download(const String& url) {
  return std::make_unique<DownloadDlg>(static_cast<HWND>(window()), resources_, url);
}

UpdateCommands::UpdateCommands(const Parts& parts)
    : window_(parts.window),
      resources_(parts.resources),
      shell_(parts.services.shell),
      description_url_(parts.services.update_settings.descriptionUrl),
      end_process_(parts.services.update.end_process),
      background_frame_(parts.window, parts.resources, end_process_),
      manual_frame_(parts),
      checker_(checker_parts(parts.services)) {}

UpdateChecker::Parts UpdateCommands::checker_parts(const DialogServices& services) {
  // A copy, as the thread asks for texts, too.
  const auto text = [resources = resources_](unsigned id) { return resources.text(id); };
  const UpdateSystem& system = services.update;
  const ORLO::Clock& clock = services.reader.clock;
  return {
      services.update_settings,
      {system.background_internet, system.key, system.files, services.shell, clock, text},
      background_frame_,
      {system.manual_internet, system.key, system.files, services.shell, clock, text},
      manual_frame_,
      services.reader.apply_thread_language,
  };
}

void UpdateCommands::show_description() {
  ShellStart start;
  start.owner = window_;
  start.file = description_url_.c_str();
  shell_.open(start);
}

void UpdateCommands::begin_end() {
  checker_.cancel();
  background_frame_.close_boxes();
}

void UpdateCommands::end() {
  begin_end();
  if (!checker_.running()) return;
  const DWORD start = GetTickCount();
  while (!checker_.stop(ORLO::ActiveObject::WaitMode::pump, kWait)) {
    background_frame_.close_boxes();
    if (GetTickCount() - start < kLongestWait) continue;
    end_process_();
    return;
  }
}
