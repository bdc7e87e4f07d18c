#include "tests/unit/tool/fake_service.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

#include "tool/program.h"

namespace tool_test {
namespace {

void send_text(int connection, const std::string& text) {
  ::send(connection, text.data(), text.size(), MSG_NOSIGNAL);
}

std::string chunk(const std::string& text) {
  char size[20];
  std::snprintf(size, sizeof size, "%zx\r\n", text.size());
  return size + text + "\r\n";
}

/// The request's first line without its version, and its body; empty at the end of the connection.
std::string read_request(int connection) {
  std::string header;
  for (char byte = 0; header.find("\r\n\r\n") == std::string::npos; header += byte) {
    if (::recv(connection, &byte, 1, 0) != 1) {
      return "";
    }
  }
  std::string request = header.substr(0, header.find(" HTTP/"));
  const std::size_t length = header.find("Content-Length: ");
  if (length != std::string::npos && header.compare(length + 16, 2, "0\r") != 0) {
    std::string body(std::stoul(header.substr(length + 16)), '\0');
    ::recv(connection, body.data(), body.size(), MSG_WAITALL);
    request += " " + body;
  }
  return request;
}

}  // namespace

FakeService::FakeService(const std::string& name) {
  ::setenv("XDG_RUNTIME_DIR", (folder_ / "").c_str(), 1);
  ::mkdir(folder().c_str(), 0700);
  const std::string unit = folder() + "/" + name;
  ::mkdir(unit.c_str(), 0700);
  lock_ = ::open((unit + "/lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  if (::flock(lock_, LOCK_EX | LOCK_NB) != 0) {
    throw std::runtime_error("the lock is taken");
  }
  doubles::write_text(unit + "/unit.json",
                      R"({"name":")" + name + R"(","supervisor":)" + std::to_string(::getpid()) + "}");
  listen(unit + "/control.sock");
  accepting_ = std::thread([this] { accept(); });
}

FakeService::~FakeService() {
  ::shutdown(listener_, SHUT_RDWR);
  accepting_.join();
  for (const int connection : connections_) {
    ::shutdown(connection, SHUT_RDWR);
  }
  for (std::thread& each : threads_) {
    each.join();
  }
  for (const int connection : connections_) {
    ::close(connection);
  }
  ::close(listener_);
  ::close(lock_);
  ::unsetenv("XDG_RUNTIME_DIR");
}

void FakeService::listen(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listener_, 10) != 0) {
    throw std::runtime_error(path);
  }
}

FakeService& FakeService::answer(const std::string& request, const std::string& body, int status) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answers_[request] = {body, status};
  return *this;
}

FakeService& FakeService::event(const std::string& type, const std::string& data) {
  const std::lock_guard<std::mutex> lock(mutex_);
  events_ += chunk("event: " + type + "\ndata: " + data + "\n\n");
  return *this;
}

std::vector<std::string> FakeService::requests() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

void FakeService::accept() {
  for (;;) {
    const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection == -1) {
      return;
    }
    connections_.push_back(connection);
    threads_.emplace_back([this, connection] { serve(connection); });
  }
}

void FakeService::serve(int connection) {
  for (std::string request; !(request = read_request(connection)).empty();) {
    reply(connection, request);
  }
}

void FakeService::reply(int connection, const std::string& request) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (request.rfind("GET /v1/stream", 0) == 0) {
    send_text(connection, "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nTransfer-Encoding: chunked\r\n\r\n" +
                              chunk("event: hello\ndata: {}\n\n") + events_);
    return;
  }
  requests_.push_back(request);
  const std::size_t target = request.find(' ') + 1;
  const auto found = answers_.find(request.substr(0, request.find(' ', target)));
  const Answer answer = found == answers_.end()
                            ? Answer{R"({"error":{"what":"no such thing","where":null,"expected":null}})", 404}
                            : found->second;
  if (answer.status != 0) {
    send_text(connection, "HTTP/1.1 " + std::to_string(answer.status) +
                              " X\r\nContent-Length: " + std::to_string(answer.body.size()) + "\r\n\r\n" + answer.body);
  }
  // A command's connection breaks as soon as it is made.
  if (answer.status == 101) {
    ::shutdown(connection, SHUT_RDWR);
  }
}

Ended run(const std::vector<std::string>& words) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Ended ended{tool::run_program(words), "", ""};
  ended.out = testing::internal::GetCapturedStdout();
  ended.err = testing::internal::GetCapturedStderr();
  return ended;
}

}  // namespace tool_test
