#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include <nlohmann/json.hpp>

namespace tool {

/// A connection to a unit's host. One thread at a time.
class HostClient {
public:
  /// Called before each wait; returns after something has come in on the descriptor that it is given. It may throw to
  /// give the call up.
  using Wait = std::function<void(int descriptor)>;
  /// Called when the connection has ended during a call; it may throw what tells more of the end.
  using AtEnd = std::function<void()>;

  /// Connects to the socket. Throws CommandError where there is no host. `wait`: how to wait for answers; empty:
  /// without limit.
  explicit HostClient(const std::filesystem::path& socket, Wait wait = {}, AtEnd at_end = {});
  ~HostClient();
  HostClient(const HostClient&) = delete;
  HostClient& operator=(const HostClient&) = delete;

  /// Calls an operation and returns its answer without the id. Throws CommandError where the host refuses the request,
  /// the operation ends in an exception, or the connection ends.
  nlohmann::json call(const std::string& operation, const nlohmann::json& arguments = nlohmann::json::array());

private:
  std::string read_line();

  Wait wait_;
  AtEnd at_end_;
  int connection_ = -1;
  int last_id_ = 0;
  std::string received_;
};

/// Whether a host accepts connections on that socket.
bool host_listens(const std::filesystem::path& socket);

}  // namespace tool
