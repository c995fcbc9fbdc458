#include "platform/memory_internet.h"

#include <algorithm>
#include <string_view>

#include "orlo/exception.h"
#include "orlo/raw_file.h"

namespace {

constexpr size_t kBlock = 1024;
// With the terminator.
constexpr size_t kAddressRoom = 260;
constexpr uint32_t kInsufficientBuffer = 122;
constexpr uint32_t kInvalidAddress = 12005;
constexpr uint32_t kUnknownScheme = 12006;
constexpr uint32_t kNameNotResolved = 12007;
constexpr uint32_t kOperationCancelled = 12017;

[[noreturn]] void fail(uint32_t error) {
  ORLO::set_last_error(error);
  throw ORLO::LIE();
}

/// The part after the scheme; npos if there is none.
size_t host_start(std::string_view url) {
  const size_t scheme = url.find("://");
  return scheme == std::string_view::npos ? scheme : scheme + 3;
}

void demand_address(std::string_view url) {
  if (url.size() >= kAddressRoom) fail(kInsufficientBuffer);
  const size_t host = host_start(url);
  if (host == std::string_view::npos) fail(kUnknownScheme);
  if (host == url.size() || url[host] == '/') fail(kInvalidAddress);
}

}  // namespace

bool MemoryInternet::fetchUrl(const FetchRequest& request, std::ostream& stream,
                              TransferProgress* progress) {
  requests.push_back({request.agent, request.url, request.referrer, request.flags, request.limit});
  if (on_fetch) on_fetch();
  check_cancelled();
  demand_address(request.url);
  const auto found = answers.find(request.url);
  if (found == answers.end()) fail(kNameNotResolved);
  BodySink sink(request.limit, stream, progress);
  return send(found->second, sink);
}

bool MemoryInternet::send(const Answer& answer, BodySink& sink) {
  if (answer.length) sink.announce(content_length(std::to_string(*answer.length).c_str()));
  for (std::string_view rest = answer.body; !rest.empty();) {
    check_cancelled();
    const std::string_view block = rest.substr(0, kBlock);
    if (!sink.write(block.data(), block.size())) return false;
    rest.remove_prefix(block.size());
  }
  if (answer.endless) ORLO::wait_for(cancel_event_, ORLO::kInfinite);
  check_cancelled();
  if (answer.error != 0) fail(answer.error);
  return sink.complete();
}

void MemoryInternet::check_cancelled() const {
  if (cancelled_) fail(kOperationCancelled);
}

std::optional<bool> MemoryInternet::is_offline() {
  return offline;
}

std::optional<String> MemoryInternet::url_path(const char* url) {
  const std::string_view text = url;
  const size_t host = host_start(text);
  if (host == std::string_view::npos) return std::nullopt;
  const size_t path = std::min(text.find('/', host), text.size());
  const std::string_view rest = text.substr(path);
  if (rest.size() >= kAddressRoom) return std::nullopt;
  return String(std::string(rest));
}

void MemoryInternet::cancel() noexcept {
  cancelled_ = true;
  cancel_event_.set();
}
