#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "control/client/client.h"
#include "simulator/model/faults.h"
#include "simulator/model/services.h"

namespace system_test {

using nlohmann::json;
using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::Service;
using simulator::model::ServiceBehaviour;

/// Timeout: far longer than any step takes; only a failing test waits so long.
inline constexpr std::chrono::milliseconds PATIENCE{20000};

/// How a program ended.
struct Ending {
  std::optional<int> status;  ///< its exit status, or
  std::optional<int> signal;  ///< the signal that killed it
  std::string out;
  std::string err;
};

void PrintTo(const Ending& ending, std::ostream* stream);

/// Exited by itself with that status.
MATCHER_P(ExitedWith, status, "exited with status " + std::to_string(status)) {
  return arg.status == status;
}
/// Killed by that signal.
MATCHER_P(EndedBySignal, signal, "ended by signal " + std::to_string(signal)) {
  return arg.signal == signal;
}

class SimulatedUnit;

/// A program that runs, or ran, inside a unit. Copies stand for the same program; valid as long as the unit.
class Program {
public:
  /// Waits until it exits. Throws std::runtime_error on timeout.
  Ending wait() const;
  bool running() const;
  /// Sends it a signal.
  void kill(int signal) const;
  /// Its output so far.
  std::string out() const;
  std::string err() const;
  /// Waits until it has written `text` to standard output `times` times. Throws std::runtime_error on timeout.
  void wait_for(const std::string& text, std::size_t times = 1) const;
  /// Its process id inside the unit.
  int pid() const;

protected:
  friend class SimulatedUnit;
  Program(SimulatedUnit& unit, int number) : unit_(&unit), number_(number) {}

  SimulatedUnit* unit_;
  int number_;
};

/// A request that has been sent and may never be answered. The destructor gives it up.
class OpenCall {
public:
  OpenCall(const std::filesystem::path& socket, const std::string& target, const json& body);
  ~OpenCall();
  OpenCall(OpenCall&&) = default;

  bool answered() const;
  /// Waits for the answer. Throws std::runtime_error on timeout.
  json answer();

private:
  int given_up_ = -1;
  std::future<json> answer_;
};

/// A unit-host that serves requests.
class Host : public Program {
public:
  /// Calls an operation without waiting for the answer.
  OpenCall begin(const std::string& operation, const json& arguments = json::array()) const;
  /// Calls an operation and returns the answer; a rejected request gives {"error": reason}.
  json call(const std::string& operation, const json& arguments = json::array()) const;
  /// Asks it to exit cleanly and waits until it has.
  Ending leave() const;

private:
  friend class SimulatedUnit;
  Host(const Program& program) : Program(program) {}
};

/// A simulated unit with the shipped unit file's values, used through its control service as any client does. Set up
/// first, then start(); the destructor removes all of it. One thread.
class SimulatedUnit {
public:
  SimulatedUnit();
  ~SimulatedUnit();
  SimulatedUnit(const SimulatedUnit&) = delete;
  SimulatedUnit& operator=(const SimulatedUnit&) = delete;

  /// Adds parts to the unit besides its programs. Before start().
  SimulatedUnit& with_services();
  SimulatedUnit& with_network();
  SimulatedUnit& with_dhcp_server();
  /// Sets a limit of the unit: "processes", "disk_mib", "open_files", "memory_mib". Before start().
  SimulatedUnit& limited(const std::string& name, int most);

  /// Sets a value of the unit by name. Any time.
  SimulatedUnit& set(const std::string& name, const json& value);
  /// Arms a fault. Any time.
  SimulatedUnit& fault(Point point, const Fault& fault);
  /// Empties the call record and switches it on. Any time.
  SimulatedUnit& recorded();
  /// Sets the service's behaviour, and waits until the naming service shows it. After start().
  SimulatedUnit& behave(Service service, ServiceBehaviour behaviour);

  /// Does nothing if it has started.
  SimulatedUnit& start();
  /// Ends everything inside; returns once it has ended.
  void stop();

  /// Starts a program inside. A name without a slash is looked for in the build's bin/tests/ and bin/, then in PATH.
  Program run(std::vector<std::string> line, const std::map<std::string, std::string>& environment = {});
  /// As run(), and waits until it exits.
  Ending run_to_end(std::vector<std::string> line, const std::map<std::string, std::string>& environment = {});
  /// Runs a shell command inside, which must succeed, and returns its standard output.
  std::string shell(const std::string& command) const;
  /// Starts unit-host and waits until it serves requests. Throws std::runtime_error with its output if it exits.
  Host host(const std::vector<std::string>& arguments = {}, const std::map<std::string, std::string>& environment = {});

  /// The value of a setting.
  json setting(const std::string& name) const;
  /// Number of calls of the point while the unit was watched.
  std::uint64_t calls_of(Point point) const;
  /// The dialogs on the screen.
  std::vector<json> dialogs() const;
  /// Waits until an unanswered dialog of that title waits for its answer; false on timeout.
  bool shows(const std::string& title) const;
  /// Presses a button of the newest unanswered dialog of that title; false if there is none.
  bool answer(const std::string& title, const std::string& label) const;
  /// The events sent so far, without their time stamps.
  std::vector<json> events() const;
  /// The crossings recorded so far.
  std::vector<json> calls() const;
  /// The place of every crossing recorded so far: "radalt.read".
  std::vector<std::string> call_names() const;
  /// Raises a switch interrupt and returns its number.
  std::uint64_t interrupt(int value) const;
  /// Waits until the handler of that interrupt has returned; false on timeout.
  bool handled(std::uint64_t number, std::chrono::milliseconds limit = PATIENCE) const;

  /// The text of a file of the unit; none if there is no such file.
  std::optional<std::string> text(const std::string& path) const;
  void write(const std::string& path, const std::string& text) const;

  const control::client::FoundUnit& found() const { return launched_->unit; }
  /// A client of the unit's control service.
  control::client::Client& client() const { return *client_; }

private:
  friend class Program;
  friend class Host;

  struct Known {
    control::client::Command command;
    int pid = 0;
    Ending ending;
    bool ended = false;
  };

  /// Reads what has arrived of a program.
  void pump(Known& program, std::chrono::milliseconds limit);
  std::string stream_file(int number, const char* stream) const;
  Ending outcome(const std::vector<std::string>& line, const std::string& input = {}) const;

  json launch_;
  json unit_file_;
  std::optional<control::client::Launched> launched_;
  mutable std::optional<control::client::Client> client_;
  std::vector<std::unique_ptr<Known>> programs_;
};

/// Waits until `condition()` is true; false on timeout.
template <typename Condition>
bool eventually(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

/// The event that a failure of the power-supply driver, or of another part of the unit, causes.
json event(const std::string& source, const std::string& text);

}  // namespace system_test
