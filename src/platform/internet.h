// The seam to the system's HTTP client, and to what the system knows of its line. Texts are 8-bit,
// in the code page.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>

#include "orlo/rstring.h"

/// Where a transfer stands, in units of 1,024 bytes, rounded down.
class TransferProgress {
 public:
  virtual ~TransferProgress() = default;
  /// Comes first, and only if the server has told the length.
  virtual void set_range(int kilobytes) = 0;
  virtual void set_position(int kilobytes) = 0;
};

/// Flags of a request, with the system's values.
inline constexpr uint32_t kFetchNoCache = 0x100;  ///< INTERNET_FLAG_PRAGMA_NOCACHE
/// INTERNET_FLAG_IGNORE_CERT_CN_INVALID; also lets other doubts about the server's name pass.
inline constexpr uint32_t kFetchIgnoreCertName = 0x1000;

/// Read during the call only.
struct FetchRequest {
  const char* agent = "";
  const char* url = "";
  const char* referrer = "";
  uint32_t flags = 0;
  uint64_t limit = 0;  ///< in bytes; a longer body ends there, and counts as incomplete
};

/// Operations but cancel() belong to one thread at a time.
class Internet {
 public:
  virtual ~Internet() = default;
  /// GET, by the system's proxy setting; blocks for the whole transfer. The body goes to `stream`
  /// block by block, whatever the server's status is and whether the stream takes it. True if the
  /// server told no length, or sent as much as it told; else false. Throws LIE on any failure;
  /// a redirect from https to http is one, and so is the 21st redirect. `progress` may be null.
  virtual bool fetchUrl(const FetchRequest& request, std::ostream& stream,
                        TransferProgress* progress) = 0;
  /// What InetIsOffline says; none if it can't be asked.
  virtual std::optional<bool> is_offline() = 0;
  /// The path of an address with what follows it (InternetCrackUrlA); none if it isn't understood,
  /// or the path doesn't fit into 260 characters.
  virtual std::optional<String> url_path(const char* url) = 0;
  /// Safe on any thread, and more than once: the transfer under way fails at once, with
  /// ERROR_INTERNET_OPERATION_CANCELLED (12017), whatever the server does; so does each later one.
  /// What the system is still at goes on unseen until its own limits of time, on a thread that a
  /// process need not wait for.
  virtual void cancel() noexcept = 0;
};

/// The HTTP client of this system. What it needs is loaded when it is first asked.
std::unique_ptr<Internet> make_system_internet();
