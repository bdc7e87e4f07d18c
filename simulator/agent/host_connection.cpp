#include "simulator/agent/host_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "simulator/agent/refusal.h"
#include "simulator/channel/document.h"

namespace simulator::agent {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t LONGEST_ANSWER = channel::LARGEST_FROM_AGENT / 2;
constexpr std::size_t DEEPEST_ANSWER = channel::DEEPEST - 2;

class Connection {
public:
  Connection() : descriptor_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, HOST_SOCKET, std::strlen(HOST_SOCKET));
    connected_ = ::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~Connection() { ::close(descriptor_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool connected() const { return connected_; }
  int descriptor() const { return descriptor_; }

private:
  int descriptor_;
  bool connected_;
};

/// Waits until the connection is readable; throws when the deadline passes.
void wait_readable(const Connection& connection, const std::optional<Clock::time_point>& deadline,
                   const std::string& operation) {
  for (;;) {
    int limit = -1;
    if (deadline) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
      if (left <= 0) {
        throw Refusal(TIMED_OUT, "no answer within the time limit; the call goes on", operation);
      }
      limit = static_cast<int>(std::min<long long>(left, 60'000));
    }
    pollfd event{connection.descriptor(), POLLIN, 0};
    if (::poll(&event, 1, limit) == 1) {
      return;
    }
  }
}

std::string read_line(const Connection& connection, const std::optional<Clock::time_point>& deadline,
                      const std::string& operation) {
  std::string line;
  while (line.empty() || line.back() != '\n') {
    wait_readable(connection, deadline, operation);
    char block[4096];
    const ssize_t size = ::read(connection.descriptor(), block, sizeof block);
    if (size < 0 && errno == EINTR) {
      continue;
    }
    if (size <= 0) {
      throw Refusal(CONFLICT, "the host exited during the call", operation);
    }
    line.append(block, static_cast<std::size_t>(size));
    if (line.size() > LONGEST_ANSWER) {
      throw Refusal(FAILED, "the host's answer is longer than " + std::to_string(LONGEST_ANSWER) + " bytes", operation);
    }
  }
  return line;
}

/// The host's reason, without the name of the operation in front.
std::string reason_in(const Json& error, const std::string& operation) {
  const std::string text = error.is_string() ? error.get<std::string>() : "refused";
  const std::string prefix = operation + ": ";
  return text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text;
}

}  // namespace

bool host_listens() {
  return Connection().connected();
}

Json call_host(const std::string& operation, const Json& arguments, std::optional<std::chrono::milliseconds> limit) {
  const Connection connection;
  if (!connection.connected()) {
    throw Refusal(CONFLICT, "no host serves requests on this unit", operation);
  }
  std::optional<Clock::time_point> deadline;
  if (limit) {
    deadline = Clock::now() + *limit;
  }
  const std::string request =
      Json{{"id", 1}, {"call", operation}, {"args", arguments}}.dump(-1, ' ', false, Json::error_handler_t::replace) +
      '\n';
  if (::send(connection.descriptor(), request.data(), request.size(), MSG_NOSIGNAL) !=
      static_cast<ssize_t>(request.size())) {
    throw Refusal(CONFLICT, "the host closed the connection", operation);
  }
  Json answer;
  try {
    answer = channel::parsed_document(read_line(connection, deadline, operation), DEEPEST_ANSWER);
  } catch (const channel::DocumentError& error) {
    throw Refusal(FAILED, std::string("the host's answer is not valid: ") + error.what(), operation);
  }
  if (!answer.is_object()) {
    throw Refusal(FAILED, "the host's answer is not an object", operation);
  }
  answer.erase("id");
  if (answer.contains("error")) {
    throw Refusal(BAD_REQUEST, reason_in(answer["error"], operation), operation);
  }
  return answer;
}

}  // namespace simulator::agent
