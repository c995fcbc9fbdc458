// An HTTP server on the loopback interface, in the test's own process. Only for the target.
#pragma once

#include <winsock2.h>

#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "orlo/owned_handle.h"
#include "orlo/thread.h"
#include "platform/internet_test_support.h"

struct SocketTraits {
  using Handle = SOCKET;
  static Handle invalid() noexcept { return INVALID_SOCKET; }
  static void close(Handle handle) noexcept { closesocket(handle); }
};
using OwnedSocket = ORLO::OwnedHandle<SocketTraits>;

/// The library of sockets, in use for its scope.
class Sockets {
 public:
  Sockets() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("no sockets");
  }
  ~Sockets() { WSACleanup(); }
  Sockets(const Sockets&) = delete;
  Sockets& operator=(const Sockets&) = delete;
};

/// A port of the loopback interface; 0 before bind() asks for any.
inline sockaddr_in loopback(u_short port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

/// A socket that listens on a port of its own; it needs Sockets.
class Listener {
 public:
  explicit Listener(int backlog) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address = loopback(0);
    int size = sizeof address;
    if (bind(socket_.get(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(socket_.get(), backlog) != 0 ||
        getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      throw std::runtime_error("no port to listen on");
    }
    port_ = ntohs(address.sin_port);
  }

  u_short port() const { return port_; }
  OwnedSocket accept() const { return OwnedSocket(::accept(socket_.get(), nullptr, nullptr)); }
  std::string address() const { return "http://127.0.0.1:" + std::to_string(port_) + '/'; }

  /// A connection to it, made or begun.
  OwnedSocket connect(bool waits) const {
    OwnedSocket client(::socket(AF_INET, SOCK_STREAM, 0));
    u_long at_once = waits ? 0 : 1;
    ioctlsocket(client.get(), static_cast<long>(FIONBIO), &at_once);
    const sockaddr_in address = loopback(port_);
    static_cast<void>(
        ::connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address));
    return client;
  }

 private:
  OwnedSocket socket_;
  u_short port_ = 0;
};

/// Answers one connection after the other on a thread of its own.
class HttpServer {
 public:
  HttpServer() : thread_([this] { run(); }) {}
  ~HttpServer() {
    {
      const ORLO::Lock lock(lock_);
      ends_ = true;
    }
    listener_.connect(true);
    thread_.join();
  }
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  u_short port() const { return listener_.port(); }

  std::string serve(const ServerAnswer& answer) {
    const ORLO::Lock lock(lock_);
    const std::string path = '/' + std::to_string(answers_.size());
    answers_[path] = answer;
    return listener_.address() + path.substr(1);
  }
  /// For a path or a whole address as it stands in the request.
  void serve_at(const std::string& path, const ServerAnswer& answer) {
    const ORLO::Lock lock(lock_);
    answers_[path] = answer;
  }
  std::vector<ServerRequest> requests() {
    const ORLO::Lock lock(lock_);
    return requests_;
  }
  /// Signalled when a connection is left as it is.
  ORLO::Event& held() { return held_event_; }

 private:
  void run() {
    for (;;) {
      OwnedSocket client = listener_.accept();
      {
        const ORLO::Lock lock(lock_);
        if (ends_) return;
      }
      DWORD patience = 10'000;
      setsockopt(client.get(), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<char*>(&patience),
                 sizeof patience);
      const std::string head = read_head(client.get());
      if (!head.empty()) answer(std::move(client), note(head));
    }
  }

  /// Empty if it isn't HTTP that comes.
  static std::string read_head(SOCKET client) {
    std::string head;
    char block[1024];
    while (head.find("\r\n\r\n") == std::string::npos) {
      if (!head.empty() && head[0] != 'G') return std::string();
      const int count = recv(client, block, sizeof block, 0);
      if (count <= 0) return std::string();
      head.append(block, static_cast<size_t>(count));
    }
    return head;
  }

  static std::string header(const std::string& head, const std::string& name) {
    const std::string start = "\r\n" + name + ": ";
    const size_t at = head.find(start);
    if (at == std::string::npos) return std::string();
    const size_t value = at + start.size();
    return head.substr(value, head.find("\r\n", value) - value);
  }

  ServerAnswer note(const std::string& head) {
    const size_t method = head.find(' ');
    const std::string path = head.substr(method + 1, head.find(' ', method + 1) - method - 1);
    const ORLO::Lock lock(lock_);
    requests_.push_back({head.substr(0, method), path, header(head, "User-Agent"),
                         header(head, "Referer"), header(head, "Pragma")});
    const auto found = answers_.find(path);
    if (found != answers_.end()) return found->second;
    ServerAnswer none;
    none.status = 404;
    return none;
  }

  static std::string head_of(const ServerAnswer& answer) {
    std::string head = "HTTP/1.1 " + std::to_string(answer.status) + " Answer\r\n";
    if (answer.length) head += "Content-Length: " + *answer.length + "\r\n";
    return head + answer.headers + "Connection: close\r\n\r\n";
  }

  void answer(OwnedSocket client, const ServerAnswer& answer) {
    const bool silent =
        answer.is_missing || (answer.body.empty() && (answer.resets || answer.holds));
    if (answer.head_bytes) {
      send_all(client.get(), head_of(answer).substr(0, *answer.head_bytes));
    } else if (!silent) {
      send_all(client.get(), head_of(answer));
      send_body(client.get(), answer);
    }
    if (answer.resets || answer.head_bytes) {
      const linger at_once = {1, 0};
      setsockopt(client.get(), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&at_once),
                 sizeof at_once);
    }
    if (!answer.holds) return;
    held_.push_back(std::move(client));
    held_event_.set();
  }

  static void send_body(SOCKET client, const ServerAnswer& answer) {
    if (!answer.in_single_bytes) return send_all(client, answer.body);
    const BOOL on = TRUE;
    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
    for (const char& byte : answer.body) {
      send_all(client, {&byte, 1});
      Sleep(20);
    }
  }

  /// Until the other side has had enough.
  static void send_all(SOCKET client, std::string_view bytes) {
    while (!bytes.empty()) {
      const int count = send(client, bytes.data(), static_cast<int>(bytes.size()), 0);
      if (count <= 0) return;
      bytes.remove_prefix(static_cast<size_t>(count));
    }
  }

  const Sockets sockets_;
  const Listener listener_{SOMAXCONN};
  ORLO::CriticalSection lock_;
  // Under lock_:
  bool ends_ = false;
  std::map<std::string, ServerAnswer> answers_;
  std::vector<ServerRequest> requests_;
  // The server's thread's:
  std::vector<OwnedSocket> held_;
  ORLO::Event held_event_;
  std::thread thread_;
};
