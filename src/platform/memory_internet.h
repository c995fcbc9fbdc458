// Servers in memory, for tests and for the build machine.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "orlo/thread.h"
#include "platform/body_sink.h"
#include "platform/internet.h"

/// Answers each address with what it was told; others fail as a name that doesn't resolve. cancel()
/// and what tells of it may be called on any thread.
class MemoryInternet : public Internet {
 public:
  struct Answer {
    std::string body;
    std::optional<int64_t> length;  ///< what the server tells; none if it tells nothing
    uint32_t error = 0;             ///< when the body is through; 0 for none
    bool endless = false;           ///< nothing comes after the body until cancel()
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
  void cancel() noexcept override;
  bool cancelled() const noexcept { return cancelled_; }

 private:
  bool send(const Answer& answer, BodySink& sink);
  void check_cancelled() const;

  std::atomic<bool> cancelled_{false};
  ORLO::Event cancel_event_;
};
