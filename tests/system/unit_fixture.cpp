#include "tests/system/unit_fixture.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "simulator/settings/settings.h"
#include "simulator/settings/unit_file.h"
#include "tests/system/inside_files.h"

namespace system_test {
namespace {

namespace fs = std::filesystem;
using simulator::model::UnitModel;
using simulator::settings::UnitFile;

std::vector<json> json_lines(const fs::path& path) {
  std::vector<json> lines;
  std::istringstream text(text_of(path).value_or(""));
  for (std::string line; std::getline(text, line);) {
    lines.push_back(json::parse(line));
  }
  return lines;
}

/// The path inside of the program with that name.
std::string place_inside(const std::string& name) {
  for (const char* folder : {"bin/tests/", "bin/"}) {
    if (name.find('/') == std::string::npos && fs::exists(fs::path(BUILD_FOLDER) / folder / name)) {
      return std::string("/opt/unit/") + folder + name;
    }
  }
  return name;
}

/// A pipe whose ends no other program inherits.
struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
  }
  int ends[2];
};

}  // namespace

SimulatedUnit::SimulatedUnit()
    : state_(std::make_unique<simulator::sysroot::StateFolder>(simulator::sysroot::StateFolder::make())) {
  // Ignored, so that requests to a unit that has ended return an error.
  ::signal(SIGPIPE, SIG_IGN);
  state_->fill(UnitFile::load(UNIT_FILE));
  model_.reset(new UnitModel(UnitModel::open((state_->run() / "model").string())));
  options_.build = BUILD_FOLDER;
  options_.command = {"/opt/unit/bin/tests/process_starter"};
}

SimulatedUnit::~SimulatedUnit() {
  stop();
}

SimulatedUnit& SimulatedUnit::with_services() {
  options_.services = true;
  return *this;
}

SimulatedUnit& SimulatedUnit::with_network() {
  options_.network = true;
  return *this;
}

SimulatedUnit& SimulatedUnit::with_dhcp_server() {
  options_.dhcp_server = true;
  return *this;
}

SimulatedUnit& SimulatedUnit::set(const std::string& name, const json& value) {
  simulator::settings::set_setting(*model_, name, value);
  return *this;
}

SimulatedUnit& SimulatedUnit::fault(Point point, const Fault& fault) {
  model_->faults().arm(point, fault);
  return *this;
}

SimulatedUnit& SimulatedUnit::recorded() {
  model_->record().start();
  return *this;
}

SimulatedUnit& SimulatedUnit::behave(Service service, ServiceBehaviour behaviour) {
  model_->services().set_behaviour(service, behaviour);
  if (!model_->services().wait_applied(PATIENCE)) {
    throw std::runtime_error("the unit's services do not take their new behaviour");
  }
  return *this;
}

SimulatedUnit& SimulatedUnit::start() {
  if (root_) {
    return *this;
  }
  Pipe orders;
  Pipe reports;
  options_.input = orders.ends[0];
  options_.output = reports.ends[1];
  root_ = std::make_unique<simulator::sysroot::PrivateRoot>(*state_, options_);
  close(orders.ends[0]);
  close(reports.ends[1]);
  orders_ = orders.ends[1];
  reports_ = reports.ends[0];
  if (run_to_end({"true"}).status != 0) {
    throw std::runtime_error("the unit does not start");
  }
  return *this;
}

void SimulatedUnit::stop() {
  if (!root_) {
    return;
  }
  root_->stop();
  root_.reset();
  close(orders_);
  close(reports_);
}

void SimulatedUnit::send(const json& order) {
  const std::string line = order.dump() + "\n";
  if (write_all(orders_, line)) {
    return;
  }
  throw std::system_error(errno, std::generic_category(), "the unit takes no orders");
}

bool SimulatedUnit::take_report(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  std::size_t end = received_.find('\n');
  while (end == std::string::npos) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd event{reports_, POLLIN, 0};
    if (poll(&event, 1, std::max(0, static_cast<int>(left.count()))) != 1) {
      return false;
    }
    char block[4096];
    const ssize_t size = read(reports_, block, sizeof block);
    if (size <= 0) {
      throw std::runtime_error("the unit has ended");
    }
    received_.append(block, static_cast<std::size_t>(size));
    end = received_.find('\n');
  }
  note(json::parse(received_.substr(0, end)));
  received_.erase(0, end + 1);
  return true;
}

void SimulatedUnit::note(const json& report) {
  Known& program = programs_[report.at("number")];
  if (report.contains("pid")) {
    program.pid = report.at("pid");
    return;
  }
  program.ended = true;
  if (report.contains("status")) {
    program.ending.status = report.at("status").get<int>();
  } else {
    program.ending.signal = report.at("signal").get<int>();
  }
}

std::string SimulatedUnit::stream_file(int number, const char* stream) const {
  return "/run/unit/log/" + std::to_string(number) + "." + stream;
}

Program SimulatedUnit::run(std::vector<std::string> line, const std::map<std::string, std::string>& environment) {
  const int number = ++started_;
  line.front() = place_inside(line.front());
  send({{"number", number},
        {"run", line},
        {"environment", environment},
        {"out", stream_file(number, "out")},
        {"err", stream_file(number, "err")}});
  while (programs_[number].pid == 0) {
    if (!take_report(PATIENCE)) {
      throw std::runtime_error("the unit does not start " + line.front());
    }
  }
  return {*this, number};
}

Ending SimulatedUnit::run_to_end(std::vector<std::string> line, const std::map<std::string, std::string>& environment) {
  return run(std::move(line), environment).wait();
}

Host SimulatedUnit::host(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment) {
  const fs::path socket = outside("/run/unit/host.sock");
  fs::remove(socket);
  std::vector<std::string> line{"unit-host"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  Host host = run(line, environment);
  const bool serves = eventually([&] { return listens(socket) || !host.running(); }) && host.running();
  if (!serves) {
    throw std::runtime_error("unit-host does not serve; out \"" + host.out() + "\", err \"" + host.err() + "\"");
  }
  return host;
}

std::vector<json> SimulatedUnit::events() const {
  std::vector<json> events = json_lines(outside("/run/unit/events.jsonl"));
  for (json& event : events) {
    event.erase("timestamp");
  }
  return events;
}

std::vector<json> SimulatedUnit::calls() const {
  return json_lines(outside("/run/unit/calls.jsonl"));
}

std::vector<std::string> SimulatedUnit::call_names() const {
  std::vector<std::string> names;
  for (const json& call : calls()) {
    names.push_back(call.at("at"));
  }
  return names;
}

std::optional<std::string> SimulatedUnit::text(const std::string& path) const {
  return text_of(outside(path));
}

void SimulatedUnit::write(const std::string& path, const std::string& text) const {
  std::ofstream file(outside(path), std::ios::binary);
  file << text << std::flush;
  if (!file) {
    throw std::runtime_error(path + " cannot be written");
  }
}

json event(const std::string& source, const std::string& text) {
  return {{"source", source}, {"category", 3}, {"text", text}, {"severity", 3}, {"flags", 65536}, {"code", 0}};
}

}  // namespace system_test
