#include "tool/host_client.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tool/errors.h"

namespace tool {
namespace {

using nlohmann::json;

/// Connects to the socket; -1 on failure.
int connect_to(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = path.string();
  if (name.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    return -1;
  }
  std::memcpy(address.sun_path, name.data(), name.size());
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connection != -1 && connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const int failure = errno;
    close(connection);
    errno = failure;
    return -1;
  }
  return connection;
}

}  // namespace

bool host_listens(const std::filesystem::path& socket) {
  const int connection = connect_to(socket);
  if (connection != -1) {
    close(connection);
  }
  return connection != -1;
}

HostClient::HostClient(const std::filesystem::path& socket, Wait wait, AtEnd at_end)
    : wait_(std::move(wait)), at_end_(std::move(at_end)), connection_(connect_to(socket)) {
  if (connection_ == -1) {
    throw CommandError(STATUS_FAILED, socket.string() + ": cannot connect to the host: " + std::strerror(errno));
  }
}

HostClient::~HostClient() {
  close(connection_);
}

json HostClient::call(const std::string& operation, const json& arguments) {
  const json request = {{"id", ++last_id_}, {"call", operation}, {"args", arguments}};
  const std::string line = request.dump() + '\n';
  if (send(connection_, line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size())) {
    throw CommandError(STATUS_FAILED, operation + ": host closed the connection");
  }
  json answer = json::parse(read_line());
  answer.erase("id");
  if (answer.contains("error")) {
    throw CommandError(STATUS_BAD_USAGE, answer["error"].get<std::string>());
  }
  if (answer.contains("exception")) {
    const json& what = answer["exception"]["what"];
    throw CommandError(STATUS_FAILED, operation + ": exception " + answer["exception"]["type"].get<std::string>() +
                                          (what.is_string() ? ": " + what.get<std::string>() : ""));
  }
  return answer;
}

std::string HostClient::read_line() {
  for (;;) {
    const std::size_t end = received_.find('\n');
    if (end != std::string::npos) {
      std::string line = received_.substr(0, end);
      received_.erase(0, end + 1);
      return line;
    }
    if (wait_) {
      wait_(connection_);
    }
    char block[4096];
    const ssize_t size = read(connection_, block, sizeof block);
    if (size < 0 && errno == EINTR) {
      continue;
    }
    if (size <= 0) {
      if (at_end_) {
        at_end_();
      }
      throw CommandError(STATUS_FAILED, "the host exited");
    }
    received_.append(block, static_cast<std::size_t>(size));
  }
}

}  // namespace tool
