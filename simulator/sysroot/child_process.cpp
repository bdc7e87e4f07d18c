#include "simulator/sysroot/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace simulator::sysroot {
namespace {

pid_t fork_or_throw() {
  const pid_t child = fork();
  if (child == -1) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  return child;
}

}  // namespace

int shell_status(int wait_status) {
  return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : 128 + WTERMSIG(wait_status);
}

void become_program(const std::vector<std::string>& line, const ChildStreams& streams) {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  if (!streams.log.empty()) {
    const int log = open(streams.log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    close(log);
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    close(nothing);
  }
  std::vector<char*> words;
  for (const std::string& word : line) {
    words.push_back(const_cast<char*>(word.c_str()));
  }
  words.push_back(nullptr);
  execvp(words[0], words.data());
  std::fprintf(stderr, "unit-init: %s cannot be started: %s\n", words[0], std::strerror(errno));
  _exit(127);
}

pid_t start_program(const std::vector<std::string>& line, const ChildStreams& streams) {
  const pid_t child = fork_or_throw();
  if (child == 0) {
    become_program(line, streams);
  }
  return child;
}

int run_program(const std::vector<std::string>& line, const std::string& input) {
  const int text = memfd_create("input", MFD_CLOEXEC);
  if (text == -1 || write(text, input.data(), input.size()) != static_cast<ssize_t>(input.size()) ||
      lseek(text, 0, SEEK_SET) != 0) {
    throw std::system_error(errno, std::generic_category(), "a file in memory");
  }
  const pid_t child = fork_or_throw();
  if (child == 0) {
    dup2(text, STDIN_FILENO);
    become_program(line);
  }
  close(text);
  int status = 0;
  waitpid(child, &status, 0);
  return shell_status(status);
}

}  // namespace simulator::sysroot
