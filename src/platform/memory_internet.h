// Servers in memory, for tests and for the build machine.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/internet.h"

/// Answers each address with what it was told; others fail as a name that doesn't resolve.
class MemoryInternet : public Internet {
 public:
  struct Answer {
    std::string body;
    std::optional<int64_t> length;  ///< what the server tells; none if it tells nothing
    uint32_t error = 0;             ///< when the body is through; 0 for none
  };
  /// A request as it came.
  struct Request {
    std::string agent;
    std::string url;
    std::string referrer;
    uint32_t flags = 0;
    uint64_t limit = 0;
  };

  std::map<std::string, Answer> answers;  ///< by address
  std::vector<Request> requests;
  std::optional<bool> offline = false;
  /// Called at the beginning of each transfer, on its thread.
  std::function<void()> on_fetch;

  bool fetchUrl(const FetchRequest& request, std::ostream& stream,
                TransferProgress* progress) override;
  std::optional<bool> is_offline() override;
  std::optional<String> url_path(const char* url) override;
  void cancel() noexcept override { cancelled_ = true; }
  bool cancelled() const noexcept { return cancelled_; }

 private:
  std::atomic<bool> cancelled_{false};
};
