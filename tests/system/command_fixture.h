#pragma once

#include <signal.h>

#include "tests/system/command_line.h"

namespace system_test {

/// A unit started by "unit run", and commands on it.
class CommandTest : public testing::Test {
protected:
  CommandTest() : run_({built_program("unit"), "run", "--json", "--state", state_}) {
    if (!eventually([this] { return run_.out().find('\n') != std::string::npos; })) {
      throw std::runtime_error("no unit runs: " + run_.err());
    }
  }
  ~CommandTest() override {
    run_.kill(SIGTERM);
    run_.wait();
    std::filesystem::remove_all(state_);
  }

  /// A command on that unit.
  Ending command(const std::string& name, const std::vector<std::string>& arguments, const std::string& input = {}) {
    std::vector<std::string> line{name, "--unit-state", state_};
    line.insert(line.end(), arguments.begin(), arguments.end());
    return unit_command(line, input);
  }

  const std::string state_ = "/tmp/unit-test-command-" + std::to_string(getpid());
  OutsideProgram run_;
};

}  // namespace system_test
