#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "control/client/client.h"
#include "tool/line_buffer.h"

namespace tool {

/// Shows what the host and the library write while a command waits: on standard error, each line after "host: ". One
/// thread.
class HostOutput {
public:
  explicit HostOutput(const std::filesystem::path& socket);

  /// Waits until the descriptor is readable and shows the output that arrives meanwhile. For Client::wait_with().
  void wait_readable(int descriptor);
  /// Shows the output that has arrived.
  void show_arrived();

private:
  void show(const control::client::Event& event);

  std::optional<control::client::EventStream> stream_;
  std::map<std::string, LineBuffer> lines_;
};

/// Whether the log is one of the host's.
bool is_hosts(const std::string& log);

}  // namespace tool
