#include "tests/doubles/child_process.h"

#include <signal.h>
#include <sys/wait.h>

namespace doubles {
namespace {

using simulator::process::ChildOptions;

ChildOptions logged_to(const std::string& file) {
  ChildOptions options;
  options.log = file;
  return options;
}

std::vector<std::string> with_variables(const std::vector<std::string>& line,
                                        const std::vector<std::string>& variables) {
  std::vector<std::string> words{"env"};
  words.insert(words.end(), variables.begin(), variables.end());
  words.insert(words.end(), line.begin(), line.end());
  return words;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& line, ChildOptions options) {
  options.dies_with_starter = true;
  id_ = simulator::process::start_program(line, options);
}

ChildProcess::ChildProcess(const std::vector<std::string>& line, const std::vector<std::string>& variables,
                           const std::string& output)
    : ChildProcess(with_variables(line, variables), logged_to(output)) {}

ChildProcess::~ChildProcess() {
  if (running()) {
    send(SIGKILL);
    wait();
  }
}

void ChildProcess::send(int signal) const {
  if (id_ > 0) {
    ::kill(id_, signal);
  }
}

int ChildProcess::wait() {
  reap(true);
  return status_;
}

bool ChildProcess::running() {
  reap(false);
  return id_ != 0;
}

void ChildProcess::reap(bool wait) {
  if (id_ == 0) {
    return;
  }
  if (const std::optional<int> status = simulator::process::reap(id_, wait)) {
    status_ = WIFSIGNALED(*status) ? -WTERMSIG(*status) : WEXITSTATUS(*status);
    id_ = 0;
  }
}

}  // namespace doubles
