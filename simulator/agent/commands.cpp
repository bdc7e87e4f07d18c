#include "simulator/agent/commands.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>

#include "simulator/agent/refusal.h"
#include "simulator/process/child_process.h"

namespace simulator::agent {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t MOST_COMMANDS = 256;
constexpr std::chrono::seconds PATIENCE_AFTER_HANG_UP{2};
constexpr std::size_t UNLIMITED = SIZE_MAX;

int require(int result, const char* what) {
  if (result == -1) {
    throw std::system_error(errno, std::generic_category(), what);
  }
  return result;
}

void close_if_open(int& descriptor) {
  if (descriptor != -1) {
    ::close(descriptor);
    descriptor = -1;
  }
}

void set_nonblocking(int descriptor) {
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

struct Pipe {
  Pipe() { require(::pipe2(ends, O_CLOEXEC), "pipe"); }
  ~Pipe() {
    close_if_open(ends[0]);
    close_if_open(ends[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int take(int end) { return std::exchange(ends[end], -1); }

  int ends[2];
};

}  // namespace

/// One end of a pipe or terminal from which output is read.
struct Commands::Source {
  std::uint32_t stream = 0;
  int descriptor = -1;
};

struct Commands::Command {
  ~Command() {
    if (input != output.descriptor) {
      close_if_open(input);
    }
    close_if_open(output.descriptor);
    close_if_open(error.descriptor);
  }

  std::uint32_t stream = 0;
  pid_t process = -1;  ///< -1: a log
  int input = -1;      ///< of a terminal: the same descriptor as `output`
  std::string pending_input;
  bool input_ends = false;
  Source output;
  Source error;
  std::size_t credit = UNLIMITED;
  std::optional<CommandEnd> end;
  std::optional<Clock::time_point> killed_at;
  std::function<void(const CommandEnd&)> ended;  ///< empty: the service is told

  bool drained() const { return output.descriptor == -1 && error.descriptor == -1; }
};

Commands::Commands(Link& link) : link_(link) {}

Commands::~Commands() = default;

std::uint32_t Commands::next_stream() {
  return last_stream_ += 2;
}

Commands::Command* Commands::find(std::uint32_t stream) {
  const auto found = commands_.find(stream);
  return found == commands_.end() ? nullptr : found->second.get();
}

void Commands::open_terminal(Command& command, int& slave) const {
  const int master = require(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "terminal");
  command.output = {command.stream, master};
  command.input = master;
  char name[64];
  if (::grantpt(master) != 0 || ::unlockpt(master) != 0 || ::ptsname_r(master, name, sizeof name) != 0) {
    throw std::system_error(errno, std::generic_category(), "terminal");
  }
  slave = require(::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC), "terminal");
  set_nonblocking(master);
}

std::pair<std::uint32_t, pid_t> Commands::start(const CommandLine& line, std::function<void(const CommandEnd&)> ended) {
  if (commands_.size() >= MOST_COMMANDS) {
    throw Refusal(CONFLICT, "too many commands are running; at most " + std::to_string(MOST_COMMANDS) + " are allowed");
  }
  auto command = std::make_unique<Command>();
  command->stream = next_stream();
  command->credit = channel::FIRST_CREDIT;
  command->ended = std::move(ended);
  process::ChildOptions options;
  options.own_session = true;
  options.environment = line.environment;
  options.directory = line.directory;
  options.throws_if_not_started = true;
  Pipe in;
  Pipe out;
  Pipe err;
  int slave = -1;
  if (line.terminal) {
    open_terminal(*command, slave);
    const winsize size{static_cast<unsigned short>(line.terminal->first),
                       static_cast<unsigned short>(line.terminal->second), 0, 0};
    ::ioctl(slave, TIOCSWINSZ, &size);
    options.terminal = slave;
    options.descriptors = {{slave, 0}, {slave, 1}, {slave, 2}};
  } else {
    options.descriptors = {{in.ends[0], 0}, {out.ends[1], 1}, {err.ends[1], 2}};
  }
  try {
    command->process = process::start_program(line.words, options);
  } catch (const std::system_error&) {
    close_if_open(slave);
    throw;
  }
  close_if_open(slave);
  if (!line.terminal) {
    command->output = {command->stream, out.take(0)};
    command->error = {command->stream + 1, err.take(0)};
    set_nonblocking(command->output.descriptor);
    set_nonblocking(command->error.descriptor);
    if (line.input) {
      command->input = in.take(1);
      set_nonblocking(command->input);
    }
  }
  const std::pair started{command->stream, command->process};
  commands_.emplace(command->stream, std::move(command));
  return started;
}

pid_t Commands::start_logged(const CommandLine& line, const std::string& name,
                             std::function<void(const CommandEnd&)> ended) {
  auto command = std::make_unique<Command>();
  command->stream = next_stream();
  command->ended = std::move(ended);
  process::ChildOptions options;
  options.own_session = true;
  options.environment = line.environment;
  options.directory = line.directory;
  Pipe in;
  Pipe out;
  Pipe err;
  options.descriptors = {{in.ends[0], 0}, {out.ends[1], 1}, {err.ends[1], 2}};
  command->process = process::start_program(line.words, options);
  command->output = {command->stream, out.take(0)};
  command->error = {command->stream + 1, err.take(0)};
  for (const Source* source : {&command->output, &command->error}) {
    set_nonblocking(source->descriptor);
    link_.send({{"notice", "log_stream"},
                {"stream", source->stream},
                {"name", name + (source == &command->output ? ".out" : ".err")}});
  }
  const pid_t process = command->process;
  commands_.emplace(command->stream, std::move(command));
  return process;
}

int Commands::new_log(const std::string& name) {
  Pipe pipe;
  set_nonblocking(pipe.ends[0]);
  const std::lock_guard guard(new_logs_mutex_);
  new_logs_.emplace_back(name, pipe.take(0));
  return pipe.take(1);
}

void Commands::take_new_logs() {
  std::vector<std::pair<std::string, int>> logs;
  {
    const std::lock_guard guard(new_logs_mutex_);
    logs.swap(new_logs_);
  }
  for (const auto& [name, descriptor] : logs) {
    auto log = std::make_unique<Command>();
    log->stream = next_stream();
    log->output = {log->stream, descriptor};
    link_.send({{"notice", "log_stream"}, {"stream", log->stream}, {"name", name}});
    commands_.emplace(log->stream, std::move(log));
  }
}

void Commands::input(std::uint32_t stream, const std::string& bytes) {
  if (Command* command = find(stream); command != nullptr && command->input != -1) {
    command->pending_input += bytes;
    write_input(*command);
  }
}

void Commands::end_input(std::uint32_t stream) {
  if (Command* command = find(stream); command != nullptr && command->input != -1) {
    command->input_ends = true;
    if (command->input == command->output.descriptor) {
      constexpr char END_OF_TRANSMISSION = 4;
      command->pending_input += END_OF_TRANSMISSION;
    }
    write_input(*command);
  }
}

void Commands::resize(std::uint32_t stream, int rows, int columns) {
  if (Command* command = find(stream); command != nullptr && command->input == command->output.descriptor) {
    const winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    ::ioctl(command->input, TIOCSWINSZ, &size);
  }
}

void Commands::signal(std::uint32_t stream, int number) {
  if (Command* command = find(stream); command != nullptr && command->process > 0 && !command->end) {
    // The command leads a session and thus a process group of its own.
    ::kill(-command->process, number);
  }
}

void Commands::credit(std::uint32_t stream, std::size_t bytes) {
  if (Command* command = find(stream); command != nullptr && command->credit != UNLIMITED) {
    command->credit += bytes;
  }
}

void Commands::abandon(std::uint32_t stream) {
  if (Command* command = find(stream)) {
    signal(stream, SIGHUP);
    command->killed_at = Clock::now() + PATIENCE_AFTER_HANG_UP;
    command->credit = UNLIMITED;
  }
}

void Commands::write_input(Command& command) {
  while (!command.pending_input.empty()) {
    const ssize_t written = ::write(command.input, command.pending_input.data(), command.pending_input.size());
    if (written < 0 && errno == EAGAIN) {
      return;
    }
    if (written <= 0) {
      command.pending_input.clear();
      break;
    }
    command.pending_input.erase(0, static_cast<std::size_t>(written));
  }
  if (command.input_ends && command.input != command.output.descriptor) {
    close_if_open(command.input);
  }
}

void Commands::read_output(Command& command, Source& source) {
  char block[32768];
  const ssize_t size = ::read(source.descriptor, block, std::min(sizeof block, command.credit));
  if (size > 0) {
    link_.send_bytes(source.stream, {block, static_cast<std::size_t>(size)});
    if (command.credit != UNLIMITED) {
      command.credit -= static_cast<std::size_t>(size);
    }
    return;
  }
  // After the command's end, output of processes that it left behind is no longer read.
  const bool later = size < 0 && (errno == EAGAIN || errno == EINTR);
  if (!later || command.end) {
    if (source.descriptor == command.input) {
      command.input = -1;
    }
    close_if_open(source.descriptor);
  }
}

void Commands::watch(std::vector<pollfd>& events, int& limit) {
  take_new_logs();
  finish_ended();
  for (const auto& [stream, command] : commands_) {
    for (const Source* source : {&command->output, &command->error}) {
      if (source->descriptor != -1 && command->credit > 0) {
        events.push_back({source->descriptor, POLLIN, 0});
        limit = command->end ? 0 : limit;
      }
    }
    if (command->input != -1 && !command->pending_input.empty()) {
      events.push_back({command->input, POLLOUT, 0});
    }
    if (command->killed_at) {
      limit = std::min(limit, 50);
    }
  }
}

void Commands::serve(const std::vector<pollfd>& events) {
  const auto ready = [&events](int descriptor, short what) {
    return std::any_of(events.begin(), events.end(), [&](const pollfd& event) {
      return event.fd == descriptor && (event.revents & (what | POLLHUP | POLLERR)) != 0;
    });
  };
  for (const auto& [stream, command] : commands_) {
    if (command->input != -1 && !command->pending_input.empty() && ready(command->input, POLLOUT)) {
      write_input(*command);
    }
    for (Source* source : {&command->output, &command->error}) {
      if (source->descriptor != -1 && command->credit > 0 && (command->end || ready(source->descriptor, POLLIN))) {
        read_output(*command, *source);
      }
    }
  }
  kill_abandoned();
}

void Commands::kill_abandoned() {
  for (const auto& [stream, command] : commands_) {
    if (command->killed_at && Clock::now() >= *command->killed_at) {
      signal(stream, SIGKILL);
      command->killed_at.reset();
    }
  }
}

void Commands::note_exit(pid_t process, int wait_status) {
  for (const auto& [stream, command] : commands_) {
    if (command->process == process) {
      command->end =
          WIFEXITED(wait_status) ? CommandEnd{WEXITSTATUS(wait_status), {}} : CommandEnd{{}, WTERMSIG(wait_status)};
    }
  }
}

void Commands::finish_ended() {
  for (auto at = commands_.begin(); at != commands_.end();) {
    Command& command = *at->second;
    const bool log_has_ended = command.process == -1 && command.drained();
    if (!(command.end && command.drained()) && !log_has_ended) {
      ++at;
      continue;
    }
    if (command.ended) {
      command.ended(*command.end);
    } else if (command.end) {
      Json notice = {{"notice", "exit"}, {"stream", command.stream}};
      notice[command.end->status ? "status" : "signal"] =
          command.end->status ? *command.end->status : *command.end->signal;
      link_.send(notice);
    }
    at = commands_.erase(at);
  }
}

}  // namespace simulator::agent
