#include "update/download.h"

#include <cstring>
#include <fstream>
#include <string_view>

#include "orlo/exception.h"
#include "orlo/sync_file.h"
#include "update/setup_name.h"

namespace {

constexpr uint64_t kLongestSetup = uint64_t{512} * 1024 * 1024;

/// Takes the dialog away, also when an exception passes.
class Closing {
 public:
  explicit Closing(ShownDownload& shown) noexcept : shown_(shown) {}
  ~Closing() { shown_.close(); }
  Closing(const Closing&) = delete;
  Closing& operator=(const Closing&) = delete;

 private:
  ShownDownload& shown_;
};

/// Where a download goes.
struct Target {
  String path;  ///< empty if its name isn't allowed: then it goes nowhere
  bool can_open = false;
};

Target target_for(const char* name, TemporaryFiles& files) {
  Target target;
  const String folder = files.folder();
  if (folder.empty() || !is_plain_file_name(name)) return target;
  target.path = folder;
  target.path.append(name);
  target.can_open = files.can_replace(target.path.c_str());
  return target;
}

/// Leaves the path for the start that follows the setup. Whether that works changes nothing.
void write_marker(const String& marker, const String& path, TemporaryFiles& files) {
  if (files.can_replace(marker.c_str())) files.remove(marker.c_str());
  ORLO::SyncOutFile file(marker.c_str(), ORLO::kCreateNew, ORLO::kShareRead, 0);
  file.write(path.c_str(), path.length());
  file.put('\n');
}

}  // namespace

String Download::downloadFile(const String& url, const String& agent,
                              TransferProgress* progress) const {
  const ORLO::ExceptionContext context("downloading a new version", url);
  const std::optional<String> path = services_.internet.url_path(url.c_str());
  if (!path) return {};
  const char* const slash = std::strrchr(path->c_str(), '/');
  if (slash == nullptr) return {};
  const Target target = target_for(slash + 1, services_.files);
  std::ofstream stream;
  // What can't be opened is fetched all the same.
  if (target.can_open) stream.open(target.path.c_str(), std::ios::binary);
  const bool opened = stream.is_open();
  const String referrer = String::formatted("%s download", agent);
  const FetchRequest request{.agent = agent.c_str(),
                             .url = url.c_str(),
                             .referrer = referrer.c_str(),
                             .flags = 0,
                             .limit = kLongestSetup};
  const bool complete = services_.internet.fetchUrl(request, stream, progress);
  if (opened) stream.close();
  const bool is_whole = complete && (!opened || stream.good());
  return is_whole ? target.path : String();
}

bool Download::downloadAndRun(const PadInfo& info) const {
  const std::unique_ptr<ShownDownload> shown = frame_.show_download(info.downloadUrl);
  const String path = fetch_shown(info, *shown);
  if (path.empty()) return false;
  String marker = services_.files.folder();
  marker.append(settings_.appName);
  marker.append(".tmp");
  write_marker(marker, path, services_.files);
  if (services_.shell.open({.owner = frame_.window(), .file = path.c_str()})) frame_.end_process();
  return false;
}

String Download::fetch_shown(const PadInfo& info, ShownDownload& shown) const {
  const Closing closing(shown);
  return downloadFile(info.downloadUrl, settings_.agent, &shown);
}
