#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/system/unit_fixture.h"

namespace system_test {

/// A program of the machine, outside any unit: started by the object, ended with it at the latest. One thread.
class OutsideProgram {
public:
  /// `input` is what it reads; `prepare` runs in the new process before the program does.
  explicit OutsideProgram(std::vector<std::string> line, const std::string& input = {},
                          const std::function<void()>& prepare = {});
  ~OutsideProgram();
  OutsideProgram(const OutsideProgram&) = delete;
  OutsideProgram& operator=(const OutsideProgram&) = delete;

  /// Waits for its end. Throws std::runtime_error when it does not come.
  Ending wait();
  /// Sends it a signal; does nothing once its end has been seen.
  void kill(int signal) const;
  std::string out() const;
  std::string err() const;

private:
  bool ended();

  int process_ = -1;
  int out_ = -1;
  int err_ = -1;
  bool ended_ = false;
  Ending ending_;
};

/// The command line of the simulated unit with these arguments, to its end.
Ending unit_command(std::vector<std::string> arguments, const std::string& input = {},
                    const std::function<void()>& prepare = {});

/// The program of that name in the build folder.
std::string built_program(const std::string& name);

/// A file of this test's own outside any unit, gone with the object.
class OutsideFile {
public:
  explicit OutsideFile(const std::string& text);
  ~OutsideFile();
  OutsideFile(const OutsideFile&) = delete;
  OutsideFile& operator=(const OutsideFile&) = delete;

  const std::string& path() const { return path_; }

private:
  std::string path_;
};

}  // namespace system_test
