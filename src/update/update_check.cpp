#include "update/update_check.h"

#include <cstring>
#include <optional>
#include <sstream>
#include <utility>

#include "inventory/text_helpers.h"
#include "orlo/exception.h"
#include "platform/resource_ids.h"
#include "update/pad_reader.h"

namespace {

constexpr const char* kLastCheck = "last update check";
constexpr uint64_t kLongestDescription = uint64_t{4} * 1024 * 1024;
constexpr int kNotAsked = -1;

/// A date that no calendar has gives an empty text.
String date_text(const ORLO::SystemTime& date) {
  return String::formatted("%D", &date);
}

String release_date(const PadInfo& info) {
  ORLO::SystemTime date;
  date.wYear = info.releaseDate.year;
  date.wMonth = info.releaseDate.month;
  date.wDay = info.releaseDate.day;
  return date_text(date);
}

String today(const ORLO::Clock& clock) {
  const ORLO::SystemTime now = clock.now();
  ORLO::SystemTime local = now;
  if (!clock.to_local(nullptr, now, local)) local = now;
  return date_text(local);
}

}  // namespace

UpdateCheck::UpdateCheck(UpdateSettings settings, UpdateServices services, UpdateFrame& frame)
    : settings_(std::move(settings)),
      services_(std::move(services)),
      frame_(frame),
      download_(settings_, services_, frame_) {}

int UpdateCheck::checkInBackground() {
  try {
    if (settings_.limitToDaily && !note_attempt()) return 0;
    const std::optional<bool> offline = services_.internet.is_offline();
    if (!offline) return kNotAsked;
    if (!*offline) look_for_new_version();
  } catch (const ORLO::Exception&) {
    // Nobody has asked for this check, so nobody is told that it failed.
  }
  return 0;
}

bool UpdateCheck::note_attempt() const {
  if (!services_.key.open(settings_.registryPath.c_str())) return true;
  const String last = services_.key.text(kLastCheck);
  const String date = today(services_.clock);
  // Written before the check: attempts are what is counted.
  const RegStatus status = services_.key.set_text(kLastCheck, date);
  if (status != kRegSuccess) throw ORLO::SDKException(status);
  return std::strcmp(last.c_str(), date.c_str()) != 0;
}

void UpdateCheck::look_for_new_version() {
  PadInfo info;
  if (!readDescription(info, settings_.descriptionUrl, settings_.agent, settings_.systemId)) return;
  show_messages(info);
  if (compareVersions(settings_.currentVersion, info.programVersion) < 0) offer(info);
}

void UpdateCheck::offer(const PadInfo& info) {
  const bool can_download = !info.downloadUrl.empty();
  const String& address = can_download ? info.downloadUrl : info.infoPageUrl;
  const String format =
      joined(IDS_NEW_VERSION, can_download ? IDS_ASK_RUN_SETUP : IDS_ASK_DOWNLOAD_PAGE);
  const String text =
      String::formatted(format.c_str(), info.programVersion, release_date(info), info.programName,
                        info.author.first_name, info.author.last_name, address);
  if (!frame_.ask(text, services_.text(IDS_UPDATE_CHECK))) return;
  if (can_download) {
    frame_.hide();
    download_.downloadAndRun(info);
  } else {
    services_.shell.open({.owner = frame_.window(), .file = address.c_str()});
  }
}

void UpdateCheck::checkNow() {
  const String title = services_.text(IDS_UPDATE_CHECK);
  PadInfo info;
  if (!readDescription(info, settings_.descriptionUrl, settings_.agent, String())) {
    frame_.tell(services_.text(IDS_VERSION_CHECK_FAILED), title);
    return;
  }
  show_messages(info);
  const bool is_newer = compareVersions(settings_.currentVersion, info.programVersion) < 0;
  const String format =
      joined(IDS_NEWEST_VERSION, is_newer ? IDS_ASK_RUN_SETUP : IDS_NO_UPDATE_NEEDED);
  const String text = String::formatted(format.c_str(), settings_.currentVersion, info.programName,
                                        info.programVersion, release_date(info), info.downloadUrl);
  if (!is_newer) {
    frame_.tell(text, title);
  } else if (frame_.ask(text, title)) {
    download_.downloadAndRun(info);
  }
}

bool UpdateCheck::readDescription(PadInfo& info, const String& url, const String& agent,
                                  const String& systemText) {
  const ORLO::ExceptionContext context("looking for a new version", url);
  const String referrer = String::formatted("%s update check %s", agent, systemText);
  const FetchRequest request{.agent = agent.c_str(),
                             .url = url.c_str(),
                             .referrer = referrer.c_str(),
                             .flags = kFetchNoCache,
                             .limit = kLongestDescription};
  std::stringstream body;
  return services_.internet.fetchUrl(request, body, nullptr) && read_pad(body, info);
}

void UpdateCheck::show_messages(const PadInfo& info) {
  const String text = messagesFor(info, settings_.currentVersion, settings_.systemId);
  if (!text.empty()) frame_.tell(text, services_.text(IDS_MESSAGE));
}

String UpdateCheck::joined(unsigned headline, unsigned question) const {
  String format = services_.text(headline);
  format.append("\n\n");
  format.append(services_.text(question));
  return format;
}
