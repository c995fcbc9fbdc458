#include "platform/memory_internet.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "orlo/exception.h"

namespace {

constexpr size_t kBlock = 1024;
constexpr size_t kPathBuffer = 260;
constexpr uint32_t kNameNotResolved = 12007;
constexpr uint32_t kOperationCancelled = 12017;

int kilobytes(uint64_t bytes) {
  return static_cast<int>(bytes / 1024);
}

}  // namespace

bool MemoryInternet::fetchUrl(const FetchRequest& request, std::ostream& stream,
                              TransferProgress* progress) {
  requests.push_back({request.agent, request.url, request.referrer, request.flags, request.limit});
  if (on_fetch) on_fetch();
  const auto found = answers.find(request.url);
  if (found == answers.end()) throw ORLO::INetException(kNameNotResolved);
  const Answer& answer = found->second;
  if (answer.length && progress != nullptr) {
    progress->set_range(static_cast<int>(*answer.length / 1024));
  }
  uint64_t total = 0;
  for (std::string_view rest = answer.body; !rest.empty();) {
    if (cancelled_) throw ORLO::INetException(kOperationCancelled);
    const std::string_view block = rest.substr(0, kBlock);
    total += block.size();
    if (total > request.limit) return false;
    stream.write(block.data(), static_cast<std::streamsize>(block.size()));
    if (progress != nullptr) progress->set_position(kilobytes(total));
    rest.remove_prefix(block.size());
  }
  if (cancelled_) throw ORLO::INetException(kOperationCancelled);
  if (answer.error != 0) throw ORLO::INetException(answer.error);
  return !answer.length || *answer.length == static_cast<int64_t>(total);
}

std::optional<bool> MemoryInternet::is_offline() {
  return offline;
}

std::optional<String> MemoryInternet::url_path(const char* url) {
  const std::string_view text = url;
  const size_t scheme = text.find("://");
  if (scheme == std::string_view::npos) return std::nullopt;
  const size_t path = std::min(text.find('/', scheme + 3), text.size());
  const std::string_view rest = text.substr(path);
  if (rest.size() >= kPathBuffer) return std::nullopt;
  return String(std::string(rest));
}
