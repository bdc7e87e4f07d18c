#include "host/server.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <thread>

namespace host {
namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

bool send_all(int connection, const std::string& text) {
  std::size_t sent = 0;
  while (sent < text.size()) {
    const ssize_t part = send(connection, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (part <= 0) {
      return false;
    }
    sent += static_cast<std::size_t>(part);
  }
  return true;
}

}  // namespace

/// Asks the server to exit. Shared with the connections' threads, which may outlive the server.
class Server::Leave {
public:
  Leave() : descriptor_(eventfd(0, EFD_CLOEXEC)) {}
  ~Leave() { close(descriptor_); }
  Leave(const Leave&) = delete;
  Leave& operator=(const Leave&) = delete;

  /// Readable once ask() has been called; -1 if it could not be created.
  int descriptor() const noexcept { return descriptor_; }
  void ask() const noexcept {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(descriptor_, &one, sizeof one);
  }

private:
  int descriptor_;
};

/// Answers the lines of one connection until the client closes it. Asks the server to exit after an answer that
/// requests it.
void Server::serve(int connection, const Answers& answers, const Leave& leave) {
  std::string received;
  char block[4096];
  for (ssize_t size = read(connection, block, sizeof block); size > 0; size = read(connection, block, sizeof block)) {
    received.append(block, static_cast<std::size_t>(size));
    for (std::size_t end = received.find('\n'); end != std::string::npos; end = received.find('\n')) {
      const std::string line = received.substr(0, end);
      received.erase(0, end + 1);
      const Answer answer = answers(line);
      const bool sent = send_all(connection, answer.line + '\n');
      if (answer.leave) {
        leave.ask();
      }
      if (!sent) {
        close(connection);
        return;
      }
    }
  }
  close(connection);
}

Server::Server(const std::string& path, Answers answers)
    : leave_(std::make_shared<Leave>()), answers_(std::move(answers)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    fail(path);
  }
  std::memcpy(address.sun_path, path.data(), path.size());
  unlink(path.c_str());
  listening_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (leave_->descriptor() == -1 || listening_ == -1 ||
      bind(listening_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listening_, SOMAXCONN) != 0) {
    fail(path);
  }
}

Server::~Server() {
  close(listening_);
}

void Server::run() {
  pollfd events[] = {{listening_, POLLIN, 0}, {leave_->descriptor(), POLLIN, 0}};
  while (events[1].revents == 0) {
    if (poll(events, 2, -1) == -1) {
      if (errno == EINTR) {
        continue;
      }
      fail("poll");
    }
    if ((events[0].revents & POLLIN) != 0) {
      const int connection = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
      if (connection != -1) {
        // Copies what it needs: it outlives this object if a call never returns.
        std::thread([connection, answers = answers_, leave = leave_] { serve(connection, answers, *leave); }).detach();
      }
    }
  }
}

void Server::leave() const noexcept {
  leave_->ask();
}

}  // namespace host
