#include "benchmarks/child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>

namespace benchmarks {
namespace {

[[noreturn]] void fail(const std::string& what) {
  std::cerr << what << std::endl;
  std::_Exit(1);
}

std::string path_of(const std::string& program) {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "benchmarks" / program;
}

}  // namespace

Child::Child(const std::string& program, const std::vector<std::string>& arguments) {
  int to_child[2];
  int from_child[2];
  if (pipe2(to_child, O_CLOEXEC) != 0 || pipe2(from_child, O_CLOEXEC) != 0) {
    fail("pipe");
  }
  const std::string path = path_of(program);
  std::vector<char*> argv{const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, to_child[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, from_child[1], STDOUT_FILENO);
  const int error = posix_spawn(&process_, path.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    fail(path + ": " + std::strerror(error));
  }
  close(to_child[0]);
  close(from_child[1]);
  input_ = to_child[1];
  output_ = from_child[0];
}

Child::~Child() {
  close(input_);
  int status = 0;
  while (waitpid(process_, &status, 0) == -1 && errno == EINTR) {
  }
  close(output_);
  if (status != 0) {
    fail("a child ended with status " + std::to_string(status));
  }
}

double Child::number() const {
  std::string line;
  for (char next = 0; next != '\n'; line += next) {
    if (read(output_, &next, 1) != 1) {
      fail("a child ended early");
    }
  }
  return std::strtod(line.c_str(), nullptr);
}

void Child::say(const std::string& line) const {
  const std::string text = line + "\n";
  if (write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    fail("a child does not listen");
  }
}

}  // namespace benchmarks
