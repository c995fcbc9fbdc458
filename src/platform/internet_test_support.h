// What the contract of the HTTP client is tested on: a client with a server that it can reach.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "orlo/exception.h"
#include "platform/internet.h"

/// What the server does with a request.
struct ServerAnswer {
  std::string body;
  std::optional<std::string> length = std::nullopt;  ///< as its header has it
  int status = 200;
  std::string headers{};  ///< further ones, each with its line end
  bool resets = false;    ///< the line breaks after the body; before any header if that is empty
  bool holds = false;     ///< nothing more comes after the body; not even headers if that is empty
  bool is_missing = false;  ///< the line ends without a word
  bool in_single_bytes = false;
  /// The line breaks after so many bytes of the headers.
  std::optional<size_t> head_bytes = std::nullopt;
};

/// What the server was asked.
struct ServerRequest {
  std::string method;
  std::string target;  ///< as it stands in its first line; by a proxy the whole address
  std::string agent;
  std::string referrer;
  std::string pragma;
};

class InternetBed {
 public:
  virtual ~InternetBed() = default;
  virtual Internet& internet() = 0;
  /// An address that the server answers so.
  virtual std::string serve(const ServerAnswer& answer) = 0;
  /// Requests that have come to the server, in their order.
  virtual std::vector<ServerRequest> requests() = 0;
  /// An address where nobody listens.
  virtual std::string refused_address() = 0;
  /// Called once a transfer is sure to be waiting for the server.
  virtual void wait_until_held() = 0;
};

struct InternetBedMaker {
  const char* name;
  std::function<std::unique_ptr<InternetBed>()> make;
};

inline void PrintTo(const InternetBedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

/// Writes down what it is told: "range 3", "position 1".
class RecordedProgress final : public TransferProgress {
 public:
  void set_range(int kilobytes) override { add("range", kilobytes); }
  void set_position(int kilobytes) override { add("position", kilobytes); }
  const std::vector<std::string>& calls() const { return calls_; }

 private:
  void add(const char* what, int kilobytes) {
    calls_.push_back(what + (' ' + std::to_string(kilobytes)));
  }
  std::vector<std::string> calls_;
};

inline constexpr uint64_t kTestLimit = uint64_t{8} * 1024 * 1024;

/// A transfer with what came of it.
struct Fetched {
  std::optional<bool> complete;  ///< none if it has failed
  uint32_t error = 0;
  std::string body;
  std::vector<std::string> progress;
};

inline Fetched fetch(Internet& internet, const std::string& url, uint64_t limit = kTestLimit,
                     uint32_t flags = 0) {
  FetchRequest request;
  request.agent = "tester 1.0";
  request.url = url.c_str();
  request.referrer = "tester 1.0 looks for ";
  request.flags = flags;
  request.limit = limit;
  Fetched result;
  std::ostringstream body;
  RecordedProgress progress;
  try {
    result.complete = internet.fetchUrl(request, body, &progress);
  } catch (const ORLO::LIE& failure) {
    result.error = failure.code;
  }
  result.body = body.str();
  result.progress = progress.calls();
  return result;
}

/// The promises of Internet that every implementation keeps.
class InternetContract : public ::testing::TestWithParam<InternetBedMaker> {
 protected:
  InternetContract() : bed_(GetParam().make()) {}

  InternetBed& bed() { return *bed_; }
  Internet& internet() { return bed_->internet(); }
  Fetched fetch_answer(const ServerAnswer& answer, uint64_t limit = kTestLimit) {
    return fetch(internet(), bed_->serve(answer), limit);
  }

 private:
  std::unique_ptr<InternetBed> bed_;
};
