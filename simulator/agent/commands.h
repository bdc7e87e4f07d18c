#pragma once

#include <poll.h>
#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/agent/link.h"

namespace simulator::agent {

/// A command to start inside the unit.
struct CommandLine {
  std::vector<std::string> words;  ///< at least one; the program is found in PATH
  std::vector<std::pair<std::string, std::string>> environment;
  std::string directory = "/";
  bool input = false;                           ///< takes input; otherwise it reads an empty one
  std::optional<std::pair<int, int>> terminal;  ///< rows and columns of a terminal of its own
};

/// How a command ended: one of the two.
struct CommandEnd {
  std::optional<int> status;
  std::optional<int> signal;
};

/// The commands of a unit and the logs of its programs. Their output goes to the control service: standard output as
/// the command's stream, standard error as the next higher one; a terminal uses the former only. A command's output
/// beyond FIRST_CREDIT waits for credit; that of logs does not. The agent's main thread, except for new_log().
class Commands {
public:
  explicit Commands(Link& link);
  ~Commands();
  Commands(const Commands&) = delete;
  Commands& operator=(const Commands&) = delete;

  /// Starts a command and returns its stream and process. `ended` is called when it has exited and its output has been
  /// sent; empty: the service is told. Throws Refusal (CONFLICT: too many commands) and
  /// std::system_error.
  std::pair<std::uint32_t, pid_t> start(const CommandLine& line, std::function<void(const CommandEnd&)> ended = {});
  /// A stream for a command that could not be started.
  std::uint32_t next_stream();
  /// Starts a program whose standard output and error are the logs NAME.out and NAME.err. `ended` is called when it has
  /// exited and its output has been sent.
  pid_t start_logged(const CommandLine& line, const std::string& name, std::function<void(const CommandEnd&)> ended);
  /// Opens a log and returns the descriptor to write to, which the caller closes. Any thread.
  int new_log(const std::string& name);

  /// Controls the command of that stream; do nothing if it has ended.
  void input(std::uint32_t stream, const std::string& bytes);
  void end_input(std::uint32_t stream);
  void resize(std::uint32_t stream, int rows, int columns);
  void signal(std::uint32_t stream, int number);
  void credit(std::uint32_t stream, std::size_t bytes);
  /// Hangs up: the command receives SIGHUP, and SIGKILL after two seconds.
  void abandon(std::uint32_t stream);

  /// Descriptors to poll, and the work to do when some are ready. `limit`: longest wait in milliseconds, lowered if
  /// something is due earlier.
  void watch(std::vector<pollfd>& events, int& limit);
  void serve(const std::vector<pollfd>& events);
  /// The command whose process exited with that wait status, if it is one.
  void note_exit(pid_t process, int wait_status);

private:
  struct Command;
  struct Source;

  Command* find(std::uint32_t stream);
  void open_terminal(Command& command, int& slave) const;
  void write_input(Command& command);
  void read_output(Command& command, Source& source);
  void finish_ended();
  void kill_abandoned();
  void take_new_logs();

  Link& link_;
  std::uint32_t last_stream_ = 0;
  std::map<std::uint32_t, std::unique_ptr<Command>> commands_;
  std::mutex new_logs_mutex_;
  std::vector<std::pair<std::string, int>> new_logs_;
};

}  // namespace simulator::agent
