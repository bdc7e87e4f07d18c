#include "tests/doubles/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace doubles {
namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) {
    result.push_back(text.data());
  }
  result.push_back(nullptr);
  return result;
}

int status_of(int wait_status) {
  return WIFSIGNALED(wait_status) ? -WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const std::vector<std::string>& variables,
                           const std::string& output) {
  std::vector<std::string> argument_texts = arguments;
  std::vector<std::string> variable_texts = variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    variable_texts.emplace_back(*variable);
  }
  const std::vector<char*> argv = pointers(argument_texts);
  const std::vector<char*> envp = pointers(variable_texts);
  const int log = ::open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  id_ = log < 0 ? -1 : ::fork();
  if (id_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(log, STDOUT_FILENO);
    ::dup2(log, STDERR_FILENO);
    ::execvpe(argv[0], argv.data(), envp.data());
    ::_exit(127);
  }
  const int error = errno;
  ::close(log);
  if (id_ < 0) {
    throw std::system_error(error, std::generic_category(), arguments[0]);
  }
}

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
  if (id_ != 0) {
    int wait_status = 0;
    ::waitpid(id_, &wait_status, 0);
    status_ = status_of(wait_status);
    id_ = 0;
  }
  return status_;
}

bool ChildProcess::running() {
  int wait_status = 0;
  if (id_ != 0 && ::waitpid(id_, &wait_status, WNOHANG) == id_) {
    status_ = status_of(wait_status);
    id_ = 0;
  }
  return id_ != 0;
}

}  // namespace doubles
