#pragma once

#include <signal.h>

#include "tests/system/command_line.h"

namespace system_test {

/// A unit started by "unit run", and commands on it.
class CommandTest : public testing::Test {
protected:
  CommandTest() {
    if (!eventually([this] { return run_.out().find('\n') != std::string::npos; })) {
      throw std::runtime_error("no unit is running: " + run_.err());
    }
  }
  ~CommandTest() override {
    run_.kill(SIGTERM);
    run_.wait();
  }

  /// A command on that unit.
  static Ending command(const std::string& name, const std::vector<std::string>& arguments = {},
                        const std::string& input = {}) {
    std::vector<std::string> line{name, "--unit", "tested"};
    line.insert(line.end(), arguments.begin(), arguments.end());
    return unit_command(line, input);
  }
  /// The output of a command that succeeds.
  static std::string said(const std::string& name, const std::vector<std::string>& arguments = {},
                          const std::string& input = {}) {
    const Ending ending = command(name, arguments, input);
    EXPECT_THAT(ending, ExitedWith(0)) << name << ": " << ending.err;
    return ending.out;
  }

  RuntimeFolder folder_;
  OutsideProgram run_{{built_program("unit"), "run", "--json", "--name", "tested"}};
};

}  // namespace system_test
