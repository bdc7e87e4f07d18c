#include "tests/system/unit_fixture.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "simulator/settings/fault_text.h"

namespace system_test {
namespace {

namespace fs = std::filesystem;
using control::client::ApiError;
using control::client::Client;
using control::client::Command;
using control::client::escaped;

/// The path inside of the program with that name.
std::string place_inside(const std::string& name) {
  for (const char* folder : {"bin/tests/", "bin/"}) {
    if (name.find('/') == std::string::npos && fs::exists(fs::path(BUILD_FOLDER) / folder / name)) {
      return std::string("/opt/unit/") + folder + name;
    }
  }
  return name;
}

/// The place of a setting in a unit file.
json::json_pointer pointer_to(const std::string& name) {
  std::string pointer = "/" + name;
  std::replace(pointer.begin(), pointer.end(), '.', '/');
  return json::json_pointer(pointer);
}

}  // namespace

SimulatedUnit::SimulatedUnit()
    : launch_({{"services", false}, {"network", false}, {"unit_file", UNIT_FILE}}),
      unit_file_(json::parse(std::ifstream(UNIT_FILE))) {}

SimulatedUnit::~SimulatedUnit() {
  stop();
}

SimulatedUnit& SimulatedUnit::with_services() {
  launch_["services"] = true;
  return *this;
}

SimulatedUnit& SimulatedUnit::with_network() {
  launch_["network"] = true;
  return *this;
}

SimulatedUnit& SimulatedUnit::with_dhcp_server() {
  launch_["dhcp_server"] = true;
  return *this;
}

SimulatedUnit& SimulatedUnit::limited(const std::string& name, int most) {
  launch_["limits"][name] = most;
  return *this;
}

SimulatedUnit& SimulatedUnit::set(const std::string& name, const json& value) {
  if (client_) {
    client_->send("PUT", "/v1/settings/" + escaped(name), {{"value", value}});
  } else {
    unit_file_[pointer_to(name)] = value;
  }
  return *this;
}

SimulatedUnit& SimulatedUnit::fault(Point point, const Fault& fault) {
  return set("faults." + std::string(name_of(point)), simulator::settings::text_of(fault));
}

SimulatedUnit& SimulatedUnit::recorded() {
  if (client_) {
    client_->send("PUT", "/v1/record", {{"on", true}});
  } else {
    launch_["record"] = true;
  }
  return *this;
}

SimulatedUnit& SimulatedUnit::behave(Service service, ServiceBehaviour behaviour) {
  set("services." + std::string(name_of(service)) + ".behaviour", name_of(behaviour));
  const json applied = client_->send("POST", "/v1/services/applied", {{"timeout_ms", PATIENCE.count()}});
  if (applied["applied"] != true) {
    throw std::runtime_error("the unit's services do not take their new behaviour");
  }
  return *this;
}

SimulatedUnit& SimulatedUnit::start() {
  if (!launched_) {
    launch_["unit_file_text"] = unit_file_.dump();
    launched_ = control::client::start_unit(launch_, {fs::path(BUILD_FOLDER) / "bin/unit-control"});
    client_.emplace(launched_->unit.socket());
  }
  return *this;
}

void SimulatedUnit::stop() {
  if (!launched_) {
    return;
  }
  programs_.clear();
  client_.reset();
  close(launched_->lifeline);
  // The unit's folder goes last.
  eventually([this] { return !fs::exists(launched_->unit.folder); });
  launched_.reset();
}

std::string SimulatedUnit::stream_file(int number, const char* stream) const {
  return "/run/unit/" + std::to_string(number) + "." + stream;
}

// The output goes to files, where it is seen as soon as it is written.
Program SimulatedUnit::run(std::vector<std::string> line, const std::map<std::string, std::string>& environment) {
  const int number = static_cast<int>(programs_.size());
  line.front() = place_inside(line.front());
  std::vector<std::string> words{"/bin/sh",
                                 "-c",
                                 "out=$1 err=$2; shift 2; exec \"$@\" >>\"$out\" 2>>\"$err\"",
                                 "sh",
                                 stream_file(number, "out"),
                                 stream_file(number, "err")};
  words.insert(words.end(), line.begin(), line.end());
  programs_.push_back(std::make_unique<Known>(
      Known{Command(launched_->unit.socket(), {{"argv", words}, {"environment", environment}}), 0, {}, false}));
  while (programs_.back()->pid == 0) {
    pump(*programs_.back(), PATIENCE);
  }
  return {*this, number};
}

void SimulatedUnit::pump(Known& program, std::chrono::milliseconds limit) {
  const auto message = program.ended ? std::nullopt : program.command.next(limit);
  if (!message || message->kind != Command::Message::CONTROL) {
    return;
  }
  if (message->control.contains("started")) {
    program.pid = message->control["started"]["pid"].get<int>();
  } else if (message->control.contains("exit")) {
    const json& exit = message->control["exit"];
    program.ended = true;
    if (exit.contains("status") && !exit["status"].is_null()) {
      program.ending.status = exit["status"].get<int>();
    } else {
      program.ending.signal = exit["signal"].get<int>();
    }
  }
}

Ending SimulatedUnit::run_to_end(std::vector<std::string> line, const std::map<std::string, std::string>& environment) {
  return run(std::move(line), environment).wait();
}

Ending SimulatedUnit::outcome(const std::vector<std::string>& line, const std::string& input) const {
  Command command(launched_->unit.socket(), {{"argv", line}, {"stdin", true}});
  command.input(input);
  command.end_input();
  Ending ending;
  for (;;) {
    const auto message = command.next(PATIENCE);
    if (!message) {
      throw std::runtime_error("a command of the unit does not end: " + line.back());
    }
    if (message->kind != Command::Message::CONTROL) {
      (message->kind == Command::Message::OUT ? ending.out : ending.err) += message->bytes;
    } else if (message->control.contains("exit")) {
      ending.status = message->control["exit"].value("status", -1);
      return ending;
    }
  }
}

std::string SimulatedUnit::shell(const std::string& command) const {
  const Ending ending = outcome({"/bin/sh", "-c", command});
  if (ending.status != 0) {
    throw std::runtime_error(command + " failed: " + ending.err);
  }
  return ending.out;
}

Host SimulatedUnit::host(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment) {
  shell("rm -f /run/unit/host.sock");
  std::vector<std::string> line{"unit-host"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  Host host = run(line, environment);
  const auto serves = [this] {
    try {
      client_->get("/v1/operations");
      return true;
    } catch (const ApiError&) {
      return false;
    }
  };
  if (!eventually([&] { return serves() || !host.running(); }) || !host.running()) {
    throw std::runtime_error("unit-host does not serve; out \"" + host.out() + "\", err \"" + host.err() + "\"");
  }
  return host;
}

json SimulatedUnit::setting(const std::string& name) const {
  return client_->get("/v1/settings/" + escaped(name)).at("value");
}

std::uint64_t SimulatedUnit::calls_of(Point point) const {
  const json all = client_->get("/v1/faults");
  for (const json& row : all["faults"]) {
    if (row["point"] == name_of(point)) {
      return row["calls"];
    }
  }
  throw std::runtime_error("unknown point " + std::string(name_of(point)));
}

std::vector<json> SimulatedUnit::dialogs() const {
  return json(client_->get("/v1/dialogs"))["dialogs"];
}

bool SimulatedUnit::shows(const std::string& title) const {
  return eventually([&] {
    const std::vector<json> all = dialogs();
    return std::any_of(all.begin(), all.end(), [&title](const json& each) {
      return each["title"] == title && each["waits"] == true && each["answer"].is_null();
    });
  });
}

bool SimulatedUnit::answer(const std::string& title, const std::string& label) const {
  const std::vector<json> all = dialogs();
  const auto open = std::find_if(all.rbegin(), all.rend(), [&title](const json& each) {
    return each["title"] == title && each["answer"].is_null();
  });
  if (open == all.rend()) {
    return false;
  }
  const std::string target = "/v1/dialogs/" + (*open)["id"].dump() + "/answer";
  client_->send("POST", target, {{"button", label}});
  return true;
}

std::vector<json> SimulatedUnit::events() const {
  std::vector<json> events = json(client_->get("/v1/eventlog"))["events"];
  for (json& event : events) {
    event.erase("timestamp");
  }
  return events;
}

std::vector<json> SimulatedUnit::calls() const {
  return json(client_->get("/v1/record"))["calls"];
}

std::vector<std::string> SimulatedUnit::call_names() const {
  std::vector<std::string> names;
  for (const json& call : calls()) {
    names.push_back(call.at("at"));
  }
  return names;
}

std::uint64_t SimulatedUnit::interrupt(int value) const {
  return client_->send("POST", "/v1/interrupts", {{"value", value}}).at("number");
}

bool SimulatedUnit::handled(std::uint64_t number, std::chrono::milliseconds limit) const {
  const std::string target =
      "/v1/interrupts/" + std::to_string(number) + "?timeout_ms=" + std::to_string(std::max<long>(limit.count(), 1));
  return client_->get(target).at("handled");
}

std::optional<std::string> SimulatedUnit::text(const std::string& path) const {
  const Ending ending = outcome({"cat", path});
  return ending.status == 0 ? std::optional(ending.out) : std::nullopt;
}

void SimulatedUnit::write(const std::string& path, const std::string& text) const {
  const Ending ending = outcome({"/bin/sh", "-c", "cat > \"$1\"", "sh", path}, text);
  if (ending.status != 0) {
    throw std::runtime_error(path + " cannot be written: " + ending.err);
  }
}

json event(const std::string& source, const std::string& text) {
  return {{"source", source}, {"category", 3}, {"text", text}, {"severity", 3}, {"flags", 65536}, {"code", 0}};
}

}  // namespace system_test
