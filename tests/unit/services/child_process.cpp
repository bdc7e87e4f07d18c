#include "child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>

extern char** environ;

namespace services_test {
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
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  const int error = ::posix_spawnp(&id_, argument_texts[0].c_str(), &actions, nullptr, pointers(argument_texts).data(),
                                   pointers(variable_texts).data());
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
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

}  // namespace services_test
