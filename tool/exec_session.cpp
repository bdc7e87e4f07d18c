#include "tool/exec_session.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "control/client/client.h"
#include "tool/errors.h"
#include "tool/output.h"
#include "tool/signals.h"
#include "tool/terminal.h"

namespace tool {
namespace {

using RemoteCommand = control::client::Command;
using nlohmann::json;

constexpr std::chrono::milliseconds AT_ONCE{0};

/// The path on the unit of a program in this program's build folder; other paths are returned unchanged.
std::string seen_inside(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path whole = fs::canonical(path, error);
  if (error || path.find('/') == std::string::npos) {
    return path;
  }
  const std::string build = fs::read_symlink("/proc/self/exe").parent_path().parent_path().string() + '/';
  return whole.string().rfind(build, 0) == 0 ? "/opt/unit/" + whole.string().substr(build.size()) : path;
}

json request_of(const UnitCommand& command) {
  std::vector<std::string> words = command.argv;
  words.front() = seen_inside(words.front());
  json request = {{"argv", words},
                  {"environment", command.environment},
                  {"directory", "/"},
                  {"stdin", command.input},
                  {"terminal", nullptr}};
  if (command.terminal) {
    const TerminalSize size = terminal_size(STDIN_FILENO);
    request["terminal"] = {{"rows", size.rows}, {"columns", size.columns}};
  }
  return request;
}

/// The status that stands for the end of a command; none if the message tells something else. Throws CommandError if
/// the command could not be started.
std::optional<int> status_in(const json& control) {
  const auto exit = control.find("exit");
  if (exit == control.end()) {
    return std::nullopt;
  }
  if (exit->contains("error")) {
    throw CommandError(exit->at("status").get<int>(), exit->at("error").get<std::string>());
  }
  return exit->contains("signal") ? STATUS_SIGNAL + exit->at("signal").get<int>() : exit->at("status").get<int>();
}

/// A running command and the terminal, signals and input that belong to it.
class Session {
public:
  Session(const std::filesystem::path& socket, const UnitCommand& command)
      : signals_{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH},
        command_(socket, request_of(command)),
        input_(command.input ? STDIN_FILENO : -1) {
    if (command.terminal) {
      raw_.emplace(STDIN_FILENO);
    }
  }

  int run() {
    for (;;) {
      if (const std::optional<int> status = take_output()) {
        return *status;
      }
      // Input is read only when the unit takes it, so that this loop never blocks.
      const short for_room = full_ ? POLLOUT : 0;
      pollfd events[] = {{command_.descriptor(), static_cast<short>(POLLIN | for_room), 0},
                         {signals_.descriptor(), POLLIN, 0},
                         {full_ ? -1 : input_, POLLIN, 0}};
      if (poll(events, 3, -1) == -1) {
        continue;
      }
      full_ = full_ && (events[0].revents & POLLOUT) == 0;
      if (events[1].revents != 0) {
        pass_signals_on();
      }
      if (events[2].revents != 0) {
        pass_input_on();
      }
    }
  }

private:
  /// Writes the output that has arrived; returns the status once the command has ended.
  std::optional<int> take_output() {
    while (const std::optional<RemoteCommand::Message> message = command_.next(AT_ONCE)) {
      if (message->kind == RemoteCommand::Message::CONTROL) {
        if (const std::optional<int> status = status_in(message->control)) {
          return status;
        }
      } else if (message->kind == RemoteCommand::Message::OUT) {
        write_all(STDOUT_FILENO, message->bytes, "standard output");
      } else {
        write_all(STDERR_FILENO, message->bytes, "standard error");
      }
    }
    return std::nullopt;
  }

  void pass_signals_on() {
    while (const std::optional<int> number = signals_.take()) {
      if (*number == SIGWINCH) {
        const TerminalSize size = terminal_size(STDIN_FILENO);
        if (raw_) {
          command_.resize(size.rows, size.columns);
        }
      } else if (ending_) {
        throw CommandEnd{STATUS_SIGNAL + *number};
      } else {
        ending_ = true;
        command_.signal(*number);
      }
    }
  }

  bool takes_input() const {
    pollfd event{command_.descriptor(), POLLOUT, 0};
    return poll(&event, 1, 0) == 1 && (event.revents & POLLOUT) != 0;
  }

  void pass_input_on() {
    if (!takes_input()) {
      full_ = true;
      return;
    }
    std::array<char, 16384> block;
    const ssize_t size = read(input_, block.data(), block.size());
    if (size > 0) {
      command_.input({block.data(), static_cast<std::size_t>(size)});
    } else if (size == 0 || (errno != EINTR && errno != EAGAIN)) {
      input_ = -1;
      command_.end_input();
    }
  }

  Signals signals_;
  RemoteCommand command_;
  int input_;
  std::optional<RawMode> raw_;
  bool full_ = false;    ///< the connection holds as much input as it can
  bool ending_ = false;  ///< a signal has been passed on
};

}  // namespace

int run_on_unit(const std::filesystem::path& socket, const UnitCommand& command) {
  return Session(socket, command).run();
}

int pipe_through_unit(const std::filesystem::path& socket, const UnitCommand& command, const Source& source,
                      const Sink& sink) {
  RemoteCommand running(socket, request_of(command));
  for (bool more = command.input; more;) {
    const std::string bytes = source();
    more = !bytes.empty();
    more ? running.input(bytes) : running.end_input();
  }
  for (;;) {
    const std::optional<RemoteCommand::Message> message = running.next(std::chrono::hours(24));
    if (!message) {
      continue;
    }
    if (message->kind == RemoteCommand::Message::OUT) {
      sink(message->bytes);
    } else if (message->kind == RemoteCommand::Message::ERR) {
      write_all(STDERR_FILENO, message->bytes, "standard error");
    } else if (const std::optional<int> status = status_in(message->control)) {
      return *status;
    }
  }
}

Option environment_option() {
  return {"env", 'e', "NAME=VALUE", "variable for the environment of the unit's programs", true};
}

std::map<std::string, std::string> given_environment(const Arguments& arguments) {
  std::map<std::string, std::string> environment;
  for (const std::string& each : arguments.all("env")) {
    const std::size_t sign = each.find('=');
    if (sign == 0 || sign == std::string::npos) {
      throw UsageError("--env: must be NAME=VALUE, not \"" + each + "\"");
    }
    environment[each.substr(0, sign)] = each.substr(sign + 1);
  }
  return environment;
}

}  // namespace tool
