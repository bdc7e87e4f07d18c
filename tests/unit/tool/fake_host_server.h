#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tests/doubles/temporary_folder.h"

namespace tool_test {

/// A fake host for one test: answers each request of one connection with the next of the given lines, then closes it.
class FakeHost {
public:
  explicit FakeHost(std::vector<std::string> answers) : answers_(std::move(answers)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, path_.c_str());
    if (::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket_, 1) != 0) {
      throw std::runtime_error(path_);
    }
    thread_ = std::thread([this] { serve(); });
  }
  ~FakeHost() {
    ::shutdown(socket_, SHUT_RDWR);
    thread_.join();
    ::close(socket_);
  }
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  const std::string& path() const { return path_; }

  /// The requests received; to be read once the connection has ended.
  std::string requests() {
    thread_.join();
    thread_ = std::thread([] {});
    return requests_;
  }

private:
  void serve() {
    const int connection = ::accept(socket_, nullptr, nullptr);
    for (const std::string& answer : answers_) {
      char byte = 0;
      do {
        if (::read(connection, &byte, 1) != 1) {
          break;
        }
        requests_ += byte;
      } while (byte != '\n');
      ::send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
    }
    ::close(connection);
  }

  doubles::TemporaryFolder folder_;
  const std::string path_ = folder_ / "host.sock";
  std::vector<std::string> answers_;
  std::string requests_;
  int socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::thread thread_;
};

}  // namespace tool_test
