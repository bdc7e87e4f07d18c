#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "control/client/descriptor.h"
#include "control/client/errors.h"
#include "control/client/units.h"

namespace control::client {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr std::size_t LONGEST_LINE = 64 << 10;
constexpr int ABOVE_ALL = 10;  // the descriptors that the supervisor gets are lower

[[noreturn]] void fail(const std::string& what) {
  throw LaunchError(1, what + ": " + std::strerror(errno));
}

Descriptor required(int descriptor, const char* what) {
  if (descriptor == -1) {
    fail(what);
  }
  return Descriptor(descriptor);
}

struct Pipe {
  Pipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
      fail("pipe");
    }
    // High, so that no end is in the way of another in the child.
    reading = required(::fcntl(ends[0], F_DUPFD_CLOEXEC, ABOVE_ALL), "pipe");
    writing = required(::fcntl(ends[1], F_DUPFD_CLOEXEC, ABOVE_ALL), "pipe");
    ::close(ends[0]);
    ::close(ends[1]);
  }

  Descriptor reading;
  Descriptor writing;
};

/// A file in memory that holds the text.
Descriptor file_of(const std::string& text) {
  const Descriptor file = required(::memfd_create("launch", MFD_CLOEXEC), "memory for the launch document");
  if (::write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
      ::lseek(file.get(), 0, SEEK_SET) != 0) {
    fail("memory for the launch document");
  }
  return required(::fcntl(file.get(), F_DUPFD_CLOEXEC, ABOVE_ALL), "memory for the launch document");
}

/// The descriptors of the supervisor.
struct Handed {
  int document;
  int answer;
  int lifeline;  ///< -1: none
  bool quiet;    ///< nothing on standard error
};

/// Becomes the supervisor. Between fork and exec: calls only what is allowed there.
[[noreturn]] void become_supervisor(const char* program, const Handed& handed) {
  const int nowhere = ::open("/dev/null", O_RDWR);
  ::dup2(handed.document, 0);
  ::dup2(nowhere, 1);
  if (handed.quiet) {
    ::dup2(nowhere, 2);
  }
  ::dup2(handed.answer, 3);
  handed.lifeline == -1 ? ::close(4) : ::dup2(handed.lifeline, 4);
  ::close_range(5, ~0u, 0);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGCHLD}) {
    ::signal(number, SIG_DFL);
  }
  const char* arguments[] = {program, nullptr};
  ::execv(program, const_cast<char* const*>(arguments));
  constexpr std::string_view FAILED = "{\"error\":{\"what\":\"cannot start unit-control\",\"status\":1}}\n";
  static_cast<void>(!::write(3, FAILED.data(), FAILED.size()));
  ::_exit(127);
}

/// Runs the supervisor in a session of its own, as a child of nobody here.
void spawn(const fs::path& program, const Handed& handed) {
  const pid_t child = ::fork();
  if (child == -1) {
    fail("fork");
  }
  if (child == 0) {
    ::setsid();
    const pid_t supervisor = ::fork();
    if (supervisor == 0) {
      become_supervisor(program.c_str(), handed);
    }
    ::_exit(supervisor == -1 ? 1 : 0);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) == -1 && errno == EINTR) {
  }
  if (status != 0) {
    throw LaunchError(1, "unit-control cannot be started: no process can be made");
  }
}

/// The first line that arrives; what there is of it at the end of the pipe.
std::string line_from(int descriptor, const LaunchOptions& options) {
  std::string line;
  char block[4096];
  while (line.size() < LONGEST_LINE && line.find('\n') == std::string::npos) {
    pollfd ready{descriptor, POLLIN, 0};
    if (options.wait) {
      options.wait(descriptor);
    } else {
      ::poll(&ready, 1, -1);
    }
    const ssize_t size = ::read(descriptor, block, sizeof block);
    if (size == 0 || (size < 0 && errno != EINTR && errno != EAGAIN)) {
      break;
    }
    line.append(block, size < 0 ? 0 : static_cast<std::size_t>(size));
  }
  return line.substr(0, line.find('\n'));
}

FoundUnit unit_in(const std::string& line) {
  const json answer = json::parse(line, nullptr, false);
  try {
    if (answer.is_object() && answer.contains("error")) {
      const json& error = answer["error"];
      throw LaunchError(error.at("status").get<int>(), error.at("what").get<std::string>());
    }
    const json& ready = answer.at("ready");
    return {ready.at("name"), ready.at("folder").get<std::string>(), ready.at("supervisor").get<pid_t>()};
  } catch (const json::exception&) {
    throw LaunchError(1, line.empty() ? "unit-control ended before the unit was ready"
                                      : "unit-control gave an answer that is not known");
  }
}

}  // namespace

Launched start_unit(const json& launch, const LaunchOptions& options) {
  const fs::path program =
      options.program.empty() ? fs::read_symlink("/proc/self/exe").parent_path() / "unit-control" : options.program;
  if (::access(program.c_str(), X_OK) != 0) {
    fail(program.string());
  }
  const bool detached = launch.value("detach", false);
  const Descriptor document = file_of(launch.dump(-1, ' ', false, json::error_handler_t::replace));
  Pipe answer;
  Pipe lifeline;
  spawn(program, {document.get(), answer.writing.get(), detached ? -1 : lifeline.reading.get(), detached});
  answer.writing.reset();
  lifeline.reading.reset();
  const FoundUnit unit = unit_in(line_from(answer.reading.get(), options));
  return {unit, detached ? -1 : lifeline.writing.release()};
}

}  // namespace control::client
