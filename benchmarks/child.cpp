#include "benchmarks/child.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "simulator/process/child_process.h"

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
  std::vector<std::string> line{path_of(program)};
  line.insert(line.end(), arguments.begin(), arguments.end());
  simulator::process::ChildOptions options;
  options.descriptors = {{to_child[0], STDIN_FILENO}, {from_child[1], STDOUT_FILENO}};
  process_ = simulator::process::start_program(line, options);
  close(to_child[0]);
  close(from_child[1]);
  input_ = to_child[1];
  output_ = from_child[0];
}

Child::~Child() {
  close(input_);
  const int status = simulator::process::shell_status(simulator::process::reap(process_, true).value());
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
