// What the adapter asks of the system's HTTP client, step by step, and what it makes of answers
// that a sound system doesn't give.
#include <windows.h>
// Needs what windows.h brings.
#include <wininet.h>

#include <array>
#include <cstring>

#include "orlo/thread.h"
#include "platform/fake_functions_test_support.h"
#include "platform/internet_test_support.h"
#include "platform/system_internet.h"

namespace {

constexpr DWORD kError = 4711;
constexpr DWORD kRoom = 260;

/// A client that writes down how it is called. It is called on the transfer's thread.
struct FakeClient {
  std::vector<std::string> calls;
  std::string failing{};  ///< the call that fails, with kError
  std::string final_url = "http://h/p";
  DWORD status = 404;
  std::string length{};  ///< as bytes; no length if empty
  std::vector<std::string> blocks{"body"};
  DWORD claimed = 0;  ///< more than a block has
  DWORD security = 0x10;
  size_t read = 0;
  std::vector<std::string> redirects{};  ///< told of during the sending
  DWORD_PTR context = 0;
  INTERNET_STATUS_CALLBACK callback = nullptr;
  ORLO::Event closed;  ///< all handles

  BOOL enter(const std::string& name, const std::string& rest = std::string()) {
    calls.push_back(rest.empty() ? name : name + ' ' + rest);
    SetLastError(name == failing ? kError : 0);
    return name != failing;
  }
  bool closes(HINTERNET handle) const {
    const std::string call = "close" + std::to_string(reinterpret_cast<uintptr_t>(handle));
    return std::find(calls.begin(), calls.end(), call) != calls.end();
  }
  HINTERNET open(const std::string& name, const std::string& rest, uintptr_t number) {
    return enter(name, rest) ? reinterpret_cast<HINTERNET>(number) : nullptr;
  }
};
FakeClient* client;

std::string text_of(HINTERNET handle) {
  return std::to_string(reinterpret_cast<uintptr_t>(handle));
}

BOOL WINAPI canonicalize(LPCSTR url, LPSTR, LPDWORD size, DWORD flags) {
  return client->enter("canonicalize",
                       url + (' ' + std::to_string(*size)) + ' ' + std::to_string(flags));
}
HINTERNET WINAPI open(LPCSTR agent, DWORD type, LPCSTR proxy, LPCSTR bypass, DWORD flags) {
  EXPECT_EQ(proxy, nullptr);
  EXPECT_EQ(bypass, nullptr);
  return client->open("open", agent + (' ' + std::to_string(type)) + ' ' + std::to_string(flags),
                      1);
}
BOOL WINAPI crack(LPCSTR url, DWORD, DWORD flags, LPURL_COMPONENTSA parts) {
  if (!client->enter("crack", url + (' ' + std::to_string(flags)))) return FALSE;
  EXPECT_EQ(parts->dwStructSize, sizeof *parts);
  EXPECT_EQ(parts->dwHostNameLength, kRoom);
  EXPECT_EQ(parts->dwUrlPathLength, kRoom);
  EXPECT_EQ(parts->lpszExtraInfo, nullptr);
  std::strcpy(parts->lpszHostName, "host");
  std::strcpy(parts->lpszUrlPath, "/path");
  parts->nScheme = url[4] == 's' ? INTERNET_SCHEME_HTTPS : INTERNET_SCHEME_HTTP;
  parts->nPort = 81;
  return TRUE;
}
HINTERNET WINAPI connect(HINTERNET internet, LPCSTR host, INTERNET_PORT port, LPCSTR user,
                         LPCSTR password, DWORD service, DWORD flags, DWORD_PTR context) {
  EXPECT_EQ(user, nullptr);
  EXPECT_EQ(password, nullptr);
  EXPECT_EQ(flags + context, 0u);
  return client->open(
      "connect",
      text_of(internet) + ' ' + host + ' ' + std::to_string(port) + ' ' + std::to_string(service),
      2);
}
HINTERNET WINAPI open_request(HINTERNET connection, LPCSTR verb, LPCSTR path, LPCSTR version,
                              LPCSTR referrer, LPCSTR* types, DWORD flags, DWORD_PTR context) {
  EXPECT_EQ(verb, nullptr);
  EXPECT_EQ(version, nullptr);
  EXPECT_EQ(types, nullptr);
  EXPECT_EQ(context, 0u);
  return client->open(
      "open_request",
      text_of(connection) + ' ' + path + " \"" + referrer + "\" " + std::to_string(flags), 3);
}
BOOL WINAPI query_option(HINTERNET handle, DWORD option, LPVOID value, LPDWORD size) {
  if (!client->enter("query_option", text_of(handle) + ' ' + std::to_string(option))) return FALSE;
  if (option == INTERNET_OPTION_SECURITY_FLAGS) {
    EXPECT_EQ(*size, sizeof client->security);
    std::memcpy(value, &client->security, sizeof client->security);
  } else {
    EXPECT_GT(*size, client->final_url.size());
    std::strcpy(static_cast<char*>(value), client->final_url.c_str());
  }
  return TRUE;
}
BOOL WINAPI set_option(HINTERNET handle, DWORD option, LPVOID value, DWORD size) {
  if (option == INTERNET_OPTION_CONTEXT_VALUE) {
    EXPECT_EQ(size, sizeof client->context);
    std::memcpy(&client->context, value, sizeof client->context);
    return client->enter("set_context", text_of(handle));
  }
  DWORD number = 0;
  EXPECT_EQ(size, sizeof number);
  std::memcpy(&number, value, sizeof number);
  return client->enter(
      "set_option", text_of(handle) + ' ' + std::to_string(option) + ' ' + std::to_string(number));
}
BOOL WINAPI send_request(HINTERNET handle, LPCSTR headers, DWORD header_size, LPVOID body,
                         DWORD body_size) {
  EXPECT_EQ(headers, nullptr);
  EXPECT_EQ(body, nullptr);
  EXPECT_EQ(header_size + body_size, 0u);
  const BOOL sent = client->enter("send", text_of(handle));
  for (std::string& url : client->redirects) {
    if (client->closes(handle)) break;
    client->callback(handle, client->context, INTERNET_STATUS_RECEIVING_RESPONSE, nullptr, 0);
    client->callback(handle, client->context, INTERNET_STATUS_REDIRECT, url.data(),
                     static_cast<DWORD>(url.size()));
  }
  return sent;
}
INTERNET_STATUS_CALLBACK WINAPI set_status_callback(HINTERNET handle,
                                                    INTERNET_STATUS_CALLBACK callback) {
  client->callback = callback;
  return client->enter(callback != nullptr ? "watch" : "unwatch", text_of(handle))
             ? nullptr
             : INTERNET_INVALID_STATUS_CALLBACK;
}
BOOL WINAPI query_info(HINTERNET handle, DWORD what, LPVOID value, LPDWORD size, LPDWORD index) {
  EXPECT_EQ(index, nullptr);
  if (what == (HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER)) {
    EXPECT_EQ(*size, sizeof client->status);
    std::memcpy(value, &client->status, sizeof client->status);
    return client->enter("query_status", text_of(handle));
  }
  if (!client->enter("query_info",
                     text_of(handle) + ' ' + std::to_string(what) + ' ' + std::to_string(*size)) ||
      client->length.empty()) {
    return FALSE;
  }
  std::memcpy(value, client->length.data(), std::min<size_t>(client->length.size(), *size));
  return TRUE;
}
BOOL WINAPI read_file(HINTERNET handle, LPVOID block, DWORD size, LPDWORD count) {
  if (!client->enter("read", text_of(handle) + ' ' + std::to_string(size))) return FALSE;
  if (client->read == client->blocks.size()) {
    *count = 0;
    return TRUE;
  }
  const std::string& bytes = client->blocks[client->read++];
  std::memcpy(block, bytes.data(), bytes.size());
  *count = std::max(client->claimed, static_cast<DWORD>(bytes.size()));
  return TRUE;
}
BOOL WINAPI close_handle(HINTERNET handle) {
  const std::string name = "close" + text_of(handle);
  const BOOL done = client->enter(name);
  if (name == "close1") client->closed.set();
  return done;
}

class OddInternet : public testing::Test {
 protected:
  OddInternet() {
    client = &client_;
    functions_.set("InternetCanonicalizeUrlA", &canonicalize);
    functions_.set("InternetOpenA", &open);
    functions_.set("InternetCrackUrlA", &crack);
    functions_.set("InternetConnectA", &connect);
    functions_.set("HttpOpenRequestA", &open_request);
    functions_.set("InternetQueryOptionA", &query_option);
    functions_.set("InternetSetOptionA", &set_option);
    functions_.set("InternetSetStatusCallbackA", &set_status_callback);
    functions_.set("HttpSendRequestA", &send_request);
    functions_.set("HttpQueryInfoA", &query_info);
    functions_.set("InternetReadFile", &read_file);
    functions_.set("InternetCloseHandle", &close_handle);
  }
  ~OddInternet() override { client = nullptr; }

  /// What has been closed, in that order.
  std::string closed() const {
    std::string closed;
    for (const std::string& call : client_.calls)
      if (call.rfind("close", 0) == 0) closed += call.back();
    return closed;
  }
  bool called(const std::string& call) const {
    return std::find(client_.calls.begin(), client_.calls.end(), call) != client_.calls.end();
  }

  FakeFunctions functions_;
  FakeClient client_;
  const std::unique_ptr<Internet> internet_ = make_internet(functions_);
};

using Calls = std::vector<std::string>;

TEST_F(OddInternet, IsAskedStepByStep) {
  client_.length = "4";
  const Fetched fetched = fetch(*internet_, "http://h/p", kTestLimit, kFetchNoCache);
  EXPECT_EQ(fetched.complete, true);
  EXPECT_EQ(fetched.body, "body");
  EXPECT_EQ(
      client_.calls,
      (Calls{"canonicalize http://h/p 260 0", "open tester 1.0 0 0", "crack http://h/p 0",
             "connect 1 host 81 3", "open_request 2 /path \"tester 1.0 looks for \" 256",
             "set_context 3", "watch 3", "send 3", "unwatch 3", "query_status 3",
             "query_info 3 5 32", "read 3 1024", "read 3 1024", "close3", "close2", "close1"}));
}

TEST_F(OddInternet, AsksSecurelyForASecureAddress) {
  client_.final_url = "HTTPS://h/elsewhere";
  EXPECT_EQ(fetch(*internet_, "https://h/p").complete, true);
  EXPECT_TRUE(called("open_request 2 /path \"tester 1.0 looks for \" 8388608"));
}

TEST_F(OddInternet, LetsDoubtsPassOnDemand) {
  EXPECT_EQ(fetch(*internet_, "http://h/p", kTestLimit, kFetchIgnoreCertName).complete, true);
  EXPECT_TRUE(called("query_option 3 31"));
  EXPECT_TRUE(called("set_option 3 31 784"));  // 0x310
}

TEST_F(OddInternet, LetsNoDoubtsPassOtherwise) {
  fetch(*internet_, "http://h/p");
  EXPECT_FALSE(called("query_option 3 31"));
}

TEST_F(OddInternet, RefusesARedirectThatIsNoLongerSecure) {
  client_.final_url = "http://h/p";
  const Fetched fetched = fetch(*internet_, "https://h/p");
  EXPECT_EQ(fetched.error, static_cast<uint32_t>(ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR));
  EXPECT_EQ(fetched.body, "");
  EXPECT_FALSE(called("read 3 1024"));
  EXPECT_EQ(closed(), "321");
}

TEST_F(OddInternet, LeavesARedirectThatIsNoLongerSecureBeforeItIsFollowed) {
  // The end of the chain would be secure again.
  client_.final_url = "https://h/p";
  client_.redirects = {"https://h/a", "http://h/b", "https://h/p"};
  const Fetched fetched = fetch(*internet_, "https://h/p");
  EXPECT_EQ(fetched.error, static_cast<uint32_t>(ERROR_INTERNET_HTTPS_TO_HTTP_ON_REDIR));
  ASSERT_TRUE(ORLO::wait_for(client_.closed, 20'000));
  EXPECT_EQ(closed(), "321");
}

TEST_F(OddInternet, FollowsTwentyRedirectsAndNoMore) {
  client_.redirects.assign(20, "http://h/p");
  EXPECT_EQ(fetch(*internet_, "http://h/p").complete, true);
  client_.closed.reset();
  client_.calls.clear();
  client_.redirects.assign(22, "http://h/p");
  const Fetched fetched = fetch(*internet_, "http://h/p");
  EXPECT_EQ(fetched.error, static_cast<uint32_t>(ERROR_HTTP_REDIRECT_FAILED));
  ASSERT_TRUE(ORLO::wait_for(client_.closed, 20'000));
  EXPECT_EQ(closed(), "321");
}

TEST_F(OddInternet, ClosesWhatIsOpenInReverseOrderWhenACallFails) {
  const std::pair<const char*, const char*> rows[] = {
      {"canonicalize", ""},    {"open", ""},
      {"crack", "1"},          {"connect", "1"},
      {"open_request", "21"},  {"query_option", "321"},
      {"set_option", "321"},   {"set_context", "321"},
      {"watch", "321"},        {"send", "321"},
      {"query_status", "321"}, {"read", "321"},
      {"close3", "321"},       {"close2", "321"},
      {"close1", "321"},
  };
  for (const auto& [failing, expected] : rows) {
    SCOPED_TRACE(failing);
    client_.calls.clear();
    client_.read = 0;
    client_.failing = failing;
    const Fetched fetched = fetch(*internet_, "http://h/p", kTestLimit, kFetchIgnoreCertName);
    EXPECT_EQ(fetched.complete, std::nullopt);
    EXPECT_EQ(fetched.error, kError);
    EXPECT_EQ(closed(), expected);
  }
}

TEST_F(OddInternet, TakesAnAnswerWithoutAStatusForAFailure) {
  client_.status = 0;
  const Fetched fetched = fetch(*internet_, "http://h/p");
  EXPECT_EQ(fetched.error, static_cast<uint32_t>(ERROR_HTTP_INVALID_SERVER_RESPONSE));
  EXPECT_FALSE(called("read 3 1024"));
  EXPECT_EQ(closed(), "321");
}

TEST_F(OddInternet, TakesALengthThatFillsItsRoom) {
  client_.length = std::string(31, '0') + '4';
  EXPECT_EQ(fetch(*internet_, "http://h/p").progress, (Calls{"range 0", "position 0"}));
  client_.read = 0;
  client_.length = std::string(40, '9');
  EXPECT_EQ(fetch(*internet_, "http://h/p").progress, Calls{"position 0"});
}

TEST_F(OddInternet, BelievesNoBlockThatIsLongerThanItsRoom) {
  client_.claimed = 5000;
  EXPECT_EQ(fetch(*internet_, "http://h/p").body.size(), 1024u);
}

TEST_F(OddInternet, StopsReadingOnceTheLimitIsReached) {
  client_.blocks.assign(5000, std::string(1024, 'x'));
  const Fetched fetched = fetch(*internet_, "http://h/p", 3000);
  EXPECT_EQ(fetched.complete, false);
  EXPECT_EQ(fetched.body.size(), 3000u);
  ASSERT_TRUE(ORLO::wait_for(client_.closed, 20'000));
  EXPECT_LT(client_.read, 5000u);
  EXPECT_EQ(closed(), "321");
}

TEST_F(OddInternet, IsLookedUpWithTheFirstCallAndOnlyOnce) {
  EXPECT_TRUE(functions_.asked().empty());
  fetch(*internet_, "http://h/p");
  EXPECT_EQ(functions_.asked().size(), 12u);
  fetch(*internet_, "http://h/p");
  internet_->url_path("http://h/p");
  EXPECT_EQ(functions_.asked().size(), 12u);
}

TEST_F(OddInternet, FailsWithoutAnyOfItsFunctions) {
  for (const std::string& name : functions_.names()) {
    SCOPED_TRACE(name);
    FakeFunctions lacking = functions_;
    lacking.remove(name);
    const auto internet = make_internet(lacking);
    EXPECT_EQ(fetch(*internet, "http://h/p").error, static_cast<uint32_t>(ERROR_PROC_NOT_FOUND));
    EXPECT_FALSE(internet->url_path("http://h/p").has_value());
  }
  EXPECT_TRUE(client_.calls.empty());
}

}  // namespace
