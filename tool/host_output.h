#pragma once

#include <chrono>
#include <filesystem>
#include <optional>

#include "control/client/client.h"
#include "tool/log_lines.h"

namespace tool {

/// Shows what the host and the library write while a command waits: on standard error, each line after "host: ". One
/// thread.
class HostOutput {
public:
  /// From now on.
  explicit HostOutput(const std::filesystem::path& socket);

  /// Shows what was written before.
  void show_kept(control::client::Client& client) { take_kept_host_logs(client, lines_); }
  /// Waits until the descriptor is readable and shows the output that arrives meanwhile. For Client::wait_with().
  void wait_readable(int descriptor);
  /// Shows the output that has arrived.
  void show_arrived();
  /// Shows what belongs to an answer that has come.
  void show_rest();

private:
  void show_until_quiet(std::chrono::milliseconds pause);

  std::optional<control::client::EventStream> stream_;
  LogLines lines_;
};

/// Writes the line to standard error, "host: " before it.
void show_host_line(const std::string& line);

}  // namespace tool
