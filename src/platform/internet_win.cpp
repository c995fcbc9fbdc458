#include "platform/internet.h"

#include <windows.h>
// Needs what windows.h brings.
#include <wininet.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "orlo/exception.h"
#include "orlo/kernel_handles.h"
#include "orlo/raw_file.h"
#include "platform/body_sink.h"
#include "platform/system_internet.h"
#include "platform/transfer_handover.h"

namespace {

constexpr char kModule[] = "wininet.dll";
constexpr size_t kBlock = 1024;
// For an address, its host and its path each, the terminator counted.
constexpr DWORD kAddressRoom = 260;
constexpr DWORD kLengthRoom = 32;
// Not every system ends a chain of redirects by itself.
constexpr int kMostRedirects = 20;
// Doubts about a server that a request without a look at names lets pass.
constexpr DWORD kIgnoredDoubts = SECURITY_FLAG_IGNORE_UNKNOWN_CA | SECURITY_FLAG_IGNORE_WRONG_USAGE;

struct InternetFunctions {
  explicit InternetFunctions(ORLO::ModuleFunctions& functions) {
    find(functions, "InternetCanonicalizeUrlA", canonicalize_url);
    find(functions, "InternetCrackUrlA", crack_url);
    find(functions, "InternetOpenA", open);
    find(functions, "InternetConnectA", connect);
    find(functions, "HttpOpenRequestA", open_request);
    find(functions, "InternetQueryOptionA", query_option);
    find(functions, "InternetSetOptionA", set_option);
    find(functions, "InternetSetStatusCallbackA", set_status_callback);
    find(functions, "HttpSendRequestA", send_request);
    find(functions, "HttpQueryInfoA", query_info);
    find(functions, "InternetReadFile", read_file);
    find(functions, "InternetCloseHandle", close_handle);
  }

  bool complete = true;
  decltype(&InternetCanonicalizeUrlA) canonicalize_url;
  decltype(&InternetCrackUrlA) crack_url;
  decltype(&InternetOpenA) open;
  decltype(&InternetConnectA) connect;
  decltype(&HttpOpenRequestA) open_request;
  decltype(&InternetQueryOptionA) query_option;
  decltype(&InternetSetOptionA) set_option;
  decltype(&InternetSetStatusCallbackA) set_status_callback;
  decltype(&HttpSendRequestA) send_request;
  decltype(&HttpQueryInfoA) query_info;
  decltype(&InternetReadFile) read_file;
  decltype(&InternetCloseHandle) close_handle;

 private:
  template <typename Type>
  void find(ORLO::ModuleFunctions& functions, const char* name, Type& function) {
    function = reinterpret_cast<Type>(functions.find(kModule, name));
    complete = complete && function != nullptr;
  }
};

/// Goes with the function that closes it, as that is looked up.
struct InternetTraits {
  struct Handle {
    HINTERNET value = nullptr;
    decltype(&InternetCloseHandle) close_handle = nullptr;

    bool operator==(const Handle& other) const noexcept { return value == other.value; }
  };
  static Handle invalid() noexcept { return {}; }
  static void close(Handle handle) noexcept { handle.close_handle(handle.value); }
};
using OwnedInternet = ORLO::OwnedHandle<InternetTraits>;

struct LibraryTraits {
  using Handle = HMODULE;
  static Handle invalid() noexcept { return nullptr; }
  static void close(Handle handle) noexcept { FreeLibrary(handle); }
};

void demand(BOOL done) {
  if (!done) throw ORLO::LIE();
}

/// For a failure whose code isn't the thread's last error.
[[noreturn]] void fail(uint32_t error) {
  ORLO::set_last_error(error);
  throw ORLO::LIE();
}

bool begins_with(std::string_view text, const char* start) {
  const size_t length = std::strlen(start);
  return text.size() >= length && _strnicmp(text.data(), start, length) == 0;
}

/// An address in its parts, as far as a request needs them. The path has what follows it.
struct Address {
  URL_COMPONENTSA parts{};
  char host[kAddressRoom] = "";
  char path[kAddressRoom] = "";

  Address() {
    parts.dwStructSize = sizeof parts;
    parts.lpszHostName = host;
    parts.dwHostNameLength = kAddressRoom;
    parts.lpszUrlPath = path;
    parts.dwUrlPathLength = kAddressRoom;
  }
  Address(const Address&) = delete;
  Address& operator=(const Address&) = delete;
};

/// One GET. It is used on a thread of its own, which owns all handles: no system promises that a
/// blocked call comes back when another thread closes its handle, and not every one does it.
class Transfer {
 public:
  Transfer(const InternetFunctions& functions, const FetchRequest& request)
      : inet_(functions),
        agent_(request.agent),
        url_(request.url),
        referrer_(request.referrer),
        flags_(request.flags) {}

  TransferHandover& handover() noexcept { return handover_; }

  /// Tells the caller's side of every way out.
  void run() noexcept {
    TransferHandover::End end;
    try {
      fetch();
    } catch (const ORLO::Exception& failure) {
      end.error = failure.code;
    } catch (...) {
      end.error = ERROR_NOT_ENOUGH_MEMORY;
    }
    handover_.finish(end);
  }

 private:
  void fetch() {
    demand_canonical();
    OwnedInternet internet =
        own(inet_.open(agent_.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    Address address;
    demand(inet_.crack_url(url_.c_str(), 0, 0, &address.parts));
    secure_ = address.parts.nScheme == INTERNET_SCHEME_HTTPS;
    OwnedInternet connection =
        own(inet_.connect(internet.get().value, address.host, address.parts.nPort, nullptr, nullptr,
                          INTERNET_SERVICE_HTTP, 0, 0));
    OwnedInternet request = open_request(connection, address);
    send(request);
    demand_status(request.get().value);
    demand_still_secure(request.get().value);
    announce_length(request.get().value);
    read_body(request.get().value);
    close(request);
    close(connection);
    close(internet);
  }

  /// Only a test of the address.
  void demand_canonical() const {
    char canonical[kAddressRoom] = "";
    DWORD length = sizeof canonical;
    demand(inet_.canonicalize_url(url_.c_str(), canonical, &length, 0));
  }

  OwnedInternet open_request(const OwnedInternet& connection, const Address& address) const {
    const DWORD flags = flags_ | (secure_ ? INTERNET_FLAG_SECURE : 0);
    OwnedInternet request = own(inet_.open_request(connection.get().value, nullptr, address.path,
                                                   nullptr, referrer_.c_str(), nullptr, flags, 0));
    if ((flags & INTERNET_FLAG_IGNORE_CERT_CN_INVALID) != 0) ignore_doubts(request.get().value);
    return request;
  }

  void ignore_doubts(HINTERNET request) const {
    DWORD doubts = 0;
    DWORD size = sizeof doubts;
    demand(inet_.query_option(request, INTERNET_OPTION_SECURITY_FLAGS, &doubts, &size));
    doubts |= kIgnoredDoubts;
    demand(inet_.set_option(request, INTERNET_OPTION_SECURITY_FLAGS, &doubts, sizeof doubts));
  }

  void send(OwnedInternet& request) {
    watch(request.get().value);
    const BOOL sent = inet_.send_request(request.get().value, nullptr, 0, nullptr, 0);
    if (refusal_ != 0) {
      static_cast<void>(request.release());  // closed already
      fail(refusal_);
    }
    demand(sent);
    inet_.set_status_callback(request.get().value, nullptr);
  }

  /// Has on_status() called during the sending.
  void watch(HINTERNET request) {
    DWORD_PTR context = reinterpret_cast<DWORD_PTR>(this);
    demand(inet_.set_option(request, INTERNET_OPTION_CONTEXT_VALUE, &context, sizeof context));
    if (inet_.set_status_callback(request, &on_status) == INTERNET_INVALID_STATUS_CALLBACK) {
      throw ORLO::LIE();
    }
  }

  static void CALLBACK on_status(HINTERNET request, DWORD_PTR context, DWORD status, LPVOID data,
                                 DWORD) {
    if (status != INTERNET_STATUS_REDIRECT || data == nullptr) return;
    reinterpret_cast<Transfer*>(context)->redirected(request, static_cast<const char*>(data));
  }

  /// To close the request is the way out of its sending that a callback has. Where the system goes
  /// on all the same, this thread ends here: its caller has been told.
  void redirected(HINTERNET request, const char* url) noexcept {
    while (refusal_ != 0)
      Sleep(INFINITE);
    if (secure_ && !begins_with(url, "https:")) refusal_ = ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR;
    if (++redirects_ > kMostRedirects) refusal_ = ERROR_HTTP_REDIRECT_FAILED;
    if (refusal_ == 0) return;
    handover_.finish({refusal_});
    inet_.close_handle(request);
  }

  /// Any status will do. Not every system fails where the line breaks before there is one, and what
  /// it has then is no empty body.
  void demand_status(HINTERNET request) const {
    DWORD status = 0;
    DWORD size = sizeof status;
    demand(inet_.query_info(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status,
                            &size, nullptr));
    if (status == 0) fail(ERROR_HTTP_INVALID_SERVER_RESPONSE);
  }

  /// Where no redirect was told of, the place that it has come to in the end can be asked for.
  void demand_still_secure(HINTERNET request) const {
    if (!secure_) return;
    std::string url(INTERNET_MAX_URL_LENGTH, '\0');
    auto size = static_cast<DWORD>(url.size());
    demand(inet_.query_option(request, INTERNET_OPTION_URL, url.data(), &size));
    if (!begins_with(url, "https:")) fail(ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR);
  }

  void announce_length(HINTERNET request) {
    char text[kLengthRoom + 1] = "";  // ends by itself whatever comes
    DWORD size = kLengthRoom;
    if (!inet_.query_info(request, HTTP_QUERY_CONTENT_LENGTH, text, &size, nullptr)) return;
    if (const auto length = content_length(text)) handover_.announce(*length);
  }

  void read_body(HINTERNET request) {
    char block[kBlock];
    DWORD size = 0;
    do {
      size = 0;
      demand(inet_.read_file(request, block, sizeof block, &size));
    } while (size != 0 && handover_.give(block, std::min<size_t>(size, sizeof block)));
  }

  OwnedInternet own(HINTERNET handle) const {
    if (handle == nullptr) throw ORLO::LIE();
    return OwnedInternet({handle, inet_.close_handle});
  }

  void close(OwnedInternet& handle) const { demand(inet_.close_handle(handle.release().value)); }

  const InternetFunctions inet_;
  const std::string agent_;
  const std::string url_;
  const std::string referrer_;
  const DWORD flags_;
  bool secure_ = false;
  int redirects_ = 0;
  DWORD refusal_ = 0;  ///< why a redirect isn't followed
  TransferHandover handover_;
};

using SharedTransfer = std::shared_ptr<Transfer>;

DWORD WINAPI run_transfer(void* parameter) noexcept {
  const std::unique_ptr<SharedTransfer> transfer(static_cast<SharedTransfer*>(parameter));
  (*transfer)->run();
  return 0;
}

/// Starts a thread that nobody waits for: it may be stuck in a call long after its caller has left.
void start(const SharedTransfer& transfer) {
  auto parameter = std::make_unique<SharedTransfer>(transfer);
  const ORLO::OwnedKernelHandle thread(
      CreateThread(nullptr, 0, &run_transfer, parameter.get(), 0, nullptr));
  if (!thread) throw ORLO::LIE();
  static_cast<void>(parameter.release());  // the thread's now
}

class SystemInternet final : public Internet {
 public:
  explicit SystemInternet(ORLO::ModuleFunctions& functions) : functions_(functions) {}

  bool fetchUrl(const FetchRequest& request, std::ostream& stream,
                TransferProgress* progress) override {
    if (!inet().complete) fail(ERROR_PROC_NOT_FOUND);
    const auto transfer = std::make_shared<Transfer>(inet(), request);
    const Visit visit(*this, transfer->handover());
    start(transfer);
    BodySink sink(request.limit, stream, progress);
    return receive(transfer->handover(), sink);
  }

  std::optional<bool> is_offline() override { return ask_if_offline("url.dll"); }

  std::optional<String> url_path(const char* url) override {
    Address address;
    if (!inet().complete || !inet().crack_url(url, 0, 0, &address.parts)) return std::nullopt;
    return String(address.path);
  }

  void cancel() noexcept override {
    const ORLO::Lock lock(lock_);
    cancelled_ = true;
    if (handover_ != nullptr) handover_->leave();
  }

 private:
  /// The time in which cancel() ends a transfer. After it, whatever the reason, nothing more of the
  /// transfer is wanted.
  class Visit {
   public:
    Visit(SystemInternet& internet, TransferHandover& handover) : internet_(internet) {
      const ORLO::Lock lock(internet_.lock_);
      if (internet_.cancelled_) fail(ERROR_INTERNET_OPERATION_CANCELLED);
      internet_.handover_ = &handover;
    }
    ~Visit() {
      const ORLO::Lock lock(internet_.lock_);
      internet_.handover_->leave();
      internet_.handover_ = nullptr;
    }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;

   private:
    SystemInternet& internet_;
  };

  /// False if the body is longer or shorter than it should be.
  static bool receive(TransferHandover& handover, BodySink& sink) {
    for (;;) {
      const auto arrival = handover.take();
      if (!arrival) fail(ERROR_INTERNET_OPERATION_CANCELLED);
      if (arrival->length) sink.announce(arrival->length);
      for (size_t at = 0; at < arrival->bytes.size(); at += kBlock) {
        const size_t size = std::min(kBlock, arrival->bytes.size() - at);
        if (!sink.write(arrival->bytes.data() + at, size)) return false;
      }
      if (!arrival->end) continue;
      if (arrival->end->error) fail(*arrival->end->error);
      return sink.complete();
    }
  }

  const InternetFunctions& inet() {
    if (!inet_) inet_.emplace(functions_);
    return *inet_;
  }

  ORLO::ModuleFunctions& functions_;
  std::optional<InternetFunctions> inet_;
  ORLO::CriticalSection lock_;
  // Under lock_:
  TransferHandover* handover_ = nullptr;  ///< of the transfer under way
  bool cancelled_ = false;
};

}  // namespace

std::unique_ptr<Internet> make_internet(ORLO::ModuleFunctions& functions) {
  return std::make_unique<SystemInternet>(functions);
}

std::unique_ptr<Internet> make_system_internet() {
  return make_internet(ORLO::system_functions());
}

std::optional<bool> ask_if_offline(const char* library) {
  using InetIsOffline = BOOL(WINAPI*)(DWORD flags);
  const ORLO::OwnedHandle<LibraryTraits> loaded(LoadLibraryA(library));
  if (!loaded) return std::nullopt;
  const auto ask = reinterpret_cast<InetIsOffline>(
      reinterpret_cast<void*>(GetProcAddress(loaded.get(), "InetIsOffline")));
  if (ask == nullptr) return std::nullopt;
  return ask(0) != FALSE;
}
