#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include <nlohmann/json.hpp>

namespace tool {

/// A connection to a unit's host. One thread at a time.
class HostClient {
public:
  /// Called to wait until the given descriptor is readable. It may throw to abandon the call.
  using Wait = std::function<void(int descriptor)>;
  /// Called when the host closes the connection during a call; it may throw a more specific error.
  using AtEnd = std::function<void()>;

  /// Connects to the socket. Throws CommandError if there is no host. Without `wait`, waits for answers without limit.
  explicit HostClient(const std::filesystem::path& socket, Wait wait = {}, AtEnd at_end = {});
  ~HostClient();
  HostClient(const HostClient&) = delete;
  HostClient& operator=(const HostClient&) = delete;

  /// Calls an operation and returns its answer without the id. Throws CommandError if the host rejects the request, the
  /// operation throws or the connection closes.
  nlohmann::json call(const std::string& operation, const nlohmann::json& arguments = nlohmann::json::array());

private:
  std::string read_line();

  Wait wait_;
  AtEnd at_end_;
  int connection_ = -1;
  int last_id_ = 0;
  std::string received_;
};

/// Whether a host accepts connections on the socket.
bool host_listens(const std::filesystem::path& socket);

}  // namespace tool
