#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "control/client/client.h"
#include "tool/line_buffer.h"

namespace tool {

/// Whether the log is one of the host's: its standard output or error.
bool is_hosts(const std::string& log);

/// The lines of a unit's logs as they are written, each once. One thread.
class LogLines {
public:
  using Show = std::function<void(const std::string& log, const std::string& line)>;

  explicit LogLines(Show show) : show_(std::move(show)) {}

  /// Takes the text that the service keeps of a log. Events must have been listened to before it was asked for.
  void take_kept(const std::string& log, const std::string& text);
  /// Takes a "log" event; bytes that have been taken already are skipped.
  void take(const control::client::Event& event);
  /// Shows the last lines, which have no newline.
  void finish();

private:
  struct Log {
    LineBuffer lines;
    std::uint64_t position = 0;  ///< bytes taken
  };

  void add(const std::string& name, std::string_view text);

  Show show_;
  std::map<std::string, Log> logs_;
};

/// Takes what the service keeps of both logs of the host.
void take_kept_host_logs(control::client::Client& client, LogLines& lines);

}  // namespace tool
