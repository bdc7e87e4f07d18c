#include "simulator/process/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace simulator::process {
namespace {

constexpr int NOT_STARTED = 127;

int require(int result, const char* what) {
  if (result == -1) {
    throw std::system_error(errno, std::generic_category(), what);
  }
  return result;
}

int open_log(const std::string& path) {
  return require(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644), path.c_str());
}

/// A descriptor that closes itself.
class Descriptor {
public:
  explicit Descriptor(int number = -1) : number_(number) {}
  ~Descriptor() {
    if (number_ != -1) {
      ::close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  operator int() const { return number_; }

private:
  int number_;
};

/// Everything a start needs, prepared before the fork: the child of a multithreaded process must not allocate memory.
class Start {
public:
  Start(const std::vector<std::string>& line, const ChildOptions& options)
      : options_(options),
        descriptors_(options.descriptors),
        log_(options.log.empty() ? -1 : open_log(options.log)),
        nothing_(options.log.empty() ? -1 : require(::open("/dev/null", O_RDONLY | O_CLOEXEC), "/dev/null")),
        complaint_(std::string(program_invocation_short_name) + ": " + line[0] + " cannot be started: ") {
    if (!options.log.empty()) {
      descriptors_.insert(descriptors_.end(), {{nothing_, STDIN_FILENO}, {log_, STDOUT_FILENO}, {log_, STDERR_FILENO}});
    }
    words_.reserve(line.size() + 1);
    for (const std::string& word : line) {
      words_.push_back(const_cast<char*>(word.c_str()));
    }
    words_.push_back(nullptr);
    fill_environment();
  }

  /// `report`: descriptor that receives the error number if the program cannot be started; -1: prints an error.
  [[noreturn]] void become(int report = -1) {
    if (options_.own_session || options_.terminal != -1) {
      ::setsid();
    }
    if (options_.terminal != -1) {
      ::ioctl(options_.terminal, TIOCSCTTY, 0);
    }
    if (!options_.keeps_signal_mask) {
      sigset_t none;
      ::sigemptyset(&none);
      ::sigprocmask(SIG_SETMASK, &none, nullptr);
      ::signal(SIGPIPE, SIG_DFL);
    }
    place_descriptors(report);
    if (options_.directory.empty() || ::chdir(options_.directory.c_str()) == 0) {
      ::execvpe(words_[0], words_.data(), environment_.data());
    }
    if (report != -1) {
      const int error = errno;
      [[maybe_unused]] const ssize_t told = ::write(report, &error, sizeof error);
      ::_exit(NOT_STARTED);
    }
    const char* const reason = ::strerrordesc_np(errno);
    for (const char* part : {complaint_.c_str(), reason, "\n"}) {
      [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, part, std::strlen(part));
    }
    ::_exit(NOT_STARTED);
  }

private:
  /// The starter's environment with the options' variables.
  void fill_environment() {
    for (const auto& [name, value] : options_.environment) {
      variables_.push_back(std::string(name).append("=").append(value));
    }
    const auto replaced = [this](const char* entry) {
      return std::any_of(variables_.begin(), variables_.end(), [entry](const std::string& each) {
        const std::size_t size = each.find('=') + 1;
        return each.compare(0, size, entry, std::min(size, std::strlen(entry))) == 0;
      });
    };
    for (char** entry = environ; *entry != nullptr; ++entry) {
      if (!replaced(*entry)) {
        environment_.push_back(*entry);
      }
    }
    for (std::string& each : variables_) {
      environment_.push_back(each.data());
    }
    environment_.push_back(nullptr);
  }

  /// Moves the descriptors aside first, then to their targets: the target of one may be the source of another.
  void place_descriptors(int& report) {
    if (report != -1) {
      report = ::fcntl(report, F_DUPFD_CLOEXEC, highest_place() + 1);
    }
    for (auto& [ours, theirs] : descriptors_) {
      ours = ::fcntl(ours, F_DUPFD_CLOEXEC, highest_place() + 1);
    }
    for (const auto& [ours, theirs] : descriptors_) {
      if (::dup2(ours, theirs) == -1) {
        ::_exit(NOT_STARTED);
      }
    }
  }

  int highest_place() const {
    int highest = -1;
    for (const auto& [ours, theirs] : descriptors_) {
      highest = std::max(highest, theirs);
    }
    return highest;
  }

  const ChildOptions& options_;
  std::vector<std::pair<int, int>> descriptors_;
  Descriptor log_;
  Descriptor nothing_;
  std::string complaint_;
  std::vector<char*> words_;
  std::vector<std::string> variables_;
  std::vector<char*> environment_;
};

/// A pipe through which a child reports why its program could not be started; the start of the program closes it.
class StartReport {
public:
  StartReport() { require(::pipe2(ends_, O_CLOEXEC), "pipe"); }
  ~StartReport() {
    ::close(ends_[0]);
    close_child_end();
  }
  StartReport(const StartReport&) = delete;
  StartReport& operator=(const StartReport&) = delete;

  int child_end() const { return ends_[1]; }
  /// The error number; 0 if the program was started. Blocks until either is known.
  int error() {
    close_child_end();
    int number = 0;
    ssize_t size = 0;
    do {
      size = ::read(ends_[0], &number, sizeof number);
    } while (size == -1 && errno == EINTR);
    return size == static_cast<ssize_t>(sizeof number) ? number : 0;
  }

private:
  void close_child_end() {
    if (ends_[1] != -1) {
      ::close(ends_[1]);
      ends_[1] = -1;
    }
  }

  int ends_[2];
};

}  // namespace

pid_t start_program(const std::vector<std::string>& line, const ChildOptions& options) {
  Start program(line, options);
  std::optional<StartReport> report;
  if (options.throws_if_not_started) {
    report.emplace();
  }
  const pid_t starter = ::getpid();
  const pid_t child = require(::fork(), "fork");
  if (child == 0) {
    if (options.dies_with_starter && (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != starter)) {
      ::_exit(NOT_STARTED);
    }
    program.become(report ? report->child_end() : -1);
  }
  if (const int error = report ? report->error() : 0) {
    reap(child, true);
    throw std::system_error(error, std::generic_category(), line[0]);
  }
  return child;
}

void become_program(const std::vector<std::string>& line, const ChildOptions& options) {
  Start(line, options).become();
}

int run_program(const std::vector<std::string>& line, const std::string& input) {
  const Descriptor text(require(::memfd_create("input", MFD_CLOEXEC), "memory file"));
  if (::write(text, input.data(), input.size()) != static_cast<ssize_t>(input.size())) {
    throw std::system_error(errno, std::generic_category(), "memory file");
  }
  require(static_cast<int>(::lseek(text, 0, SEEK_SET)), "memory file");
  ChildOptions options;
  options.descriptors = {{text, STDIN_FILENO}};
  return shell_status(reap(start_program(line, options), true).value());
}

std::optional<int> reap(pid_t child, bool wait) {
  int status = 0;
  pid_t reaped = -1;
  do {
    reaped = ::waitpid(child, &status, wait ? 0 : WNOHANG);
  } while (reaped == -1 && errno == EINTR);
  return reaped == child ? std::optional(status) : std::nullopt;
}

int shell_status(int wait_status) {
  return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : 128 + WTERMSIG(wait_status);
}

}  // namespace simulator::process
