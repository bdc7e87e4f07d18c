#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/system/unit_fixture.h"

namespace system_test {

/// A runtime folder of one's own: commands find only the units that were started meanwhile by this program and its
/// children.
class RuntimeFolder {
public:
  RuntimeFolder();
  ~RuntimeFolder();
  RuntimeFolder(const RuntimeFolder&) = delete;
  RuntimeFolder& operator=(const RuntimeFolder&) = delete;

  const std::string& path() const { return path_; }

private:
  std::string path_;
};

/// A program on the machine, outside any unit, started by the constructor and ended by the destructor at the latest.
/// One thread.
class OutsideProgram {
public:
  /// `input` is its standard input; `prepare` runs in the new process before the program.
  explicit OutsideProgram(std::vector<std::string> line, const std::string& input = {},
                          const std::function<void()>& prepare = {});
  ~OutsideProgram();
  OutsideProgram(const OutsideProgram&) = delete;
  OutsideProgram& operator=(const OutsideProgram&) = delete;

  /// Waits until it exits. Throws std::runtime_error on timeout.
  Ending wait();
  /// Sends it a signal; does nothing once its exit has been seen.
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

/// Runs the simulated unit's command line with these arguments until it exits.
Ending unit_command(std::vector<std::string> arguments, const std::string& input = {},
                    const std::function<void()>& prepare = {});

/// The program with that name in the build folder.
std::string built_program(const std::string& name);

/// A temporary file for one test, outside any unit, removed by the destructor.
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

/// A temporary folder for one test, outside any unit, readable by everybody, removed by the destructor.
class OutsideFolder {
public:
  OutsideFolder();
  ~OutsideFolder();
  OutsideFolder(const OutsideFolder&) = delete;
  OutsideFolder& operator=(const OutsideFolder&) = delete;

  const std::string& path() const { return path_; }
  void write(const std::string& name, const std::string& text) const;

private:
  std::string path_;
};

}  // namespace system_test
