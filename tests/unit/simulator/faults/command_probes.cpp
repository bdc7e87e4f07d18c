#include <signal.h>

#include <filesystem>

#include "tests/doubles/temporary_folder.h"
#include "tests/unit/simulator/faults/pairs_unit.h"
#include "tests/unit/simulator/faults/probe.h"

namespace fault_pairs {
namespace {

namespace fs = std::filesystem;
using doubles::ChildProcess;
using simulator::model::FaultKind;
using simulator::model::Point;
using Words = std::vector<std::string>;

class RunningCommand final : public RunningCall {
public:
  RunningCommand(const Words& line, const Words& variables, const std::string& output)
      : process_(line, variables, output) {}

  bool has_ended() override { return !process_.running(); }

private:
  ChildProcess process_;
};

/// Runs a program; its output is what it delivers.
class CommandProbe : public Probe {
public:
  CommandProbe(PairsUnit& unit, Words line) : unit_(unit), line_(std::move(line)), variables_(unit.variables()) {}

  Outcome call(FaultKind) override {
    std::error_code ignored;
    fs::remove(unit_.file("output"), ignored);
    ChildProcess process(line_, variables_, unit_.file("output"));
    const bool failed = process.wait() != 0;
    return {failed, doubles::lines_of(unit_.file("output"))};
  }

  std::unique_ptr<RunningCall> start() override {
    return std::make_unique<RunningCommand>(line_, variables_, unit_.file("output.running"));
  }

protected:
  PairsUnit& unit_;

private:
  Words line_;
  Words variables_;
};

class SensorProbe final : public CommandProbe {
public:
  explicit SensorProbe(PairsUnit& unit) : CommandProbe(unit, {I2C_READ_TOOL, "3", "0x48", "0"}) {}

  void set_value(int value) override { unit_.model().sensors().set_mic284(static_cast<std::uint32_t>(value)); }
  std::string text_of(int value) const override {
    std::ostringstream text;
    text << std::hex << value;
    return text.str();
  }
};

/// A program behind its stand-in, or the script that crosses its own point.
std::unique_ptr<Probe> make_shell_probe(PairsUnit& unit, const std::string& name) {
  const std::string folder = unit.file("programs");
  const std::string program = folder + "/" + name;
  const bool has_stand_in = fs::exists(std::string(COMMANDS_FOLDER) + "/" + name);
  fs::create_directories(folder);
  doubles::write_text(program, std::string("#!/bin/sh\n") +
                                   (has_stand_in ? "" : UNIT_COMMAND " " + name + " || exit\n") + "echo done\n");
  fs::permissions(program, fs::perms::owner_all);
  const std::string path = "PATH=" COMMANDS_FOLDER ":" + folder + ":/usr/bin:/bin";
  return std::make_unique<CommandProbe>(unit, Words{"/usr/bin/env", path, "/bin/sh", "-c", name});
}

}  // namespace

std::unique_ptr<Probe> make_command_probe(PairsUnit& unit, Point point) {
  constexpr std::string_view SHELL = "shell.";
  if (point == Point::I2C_READ) {
    return std::make_unique<SensorProbe>(unit);
  }
  const std::string name(name_of(point));
  return name.compare(0, SHELL.size(), SHELL) == 0 ? make_shell_probe(unit, name.substr(SHELL.size())) : nullptr;
}

}  // namespace fault_pairs
