#include "tests/unit/simulator/agent/agent_fixture.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "simulator/channel/document.h"
#include "simulator/process/child_process.h"
#include "simulator/sysroot/unit_environment.h"

namespace agent_test {
namespace {

constexpr int CHANNEL_INSIDE = 3;

void write_all(int descriptor, const std::string& bytes) {
  if (::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("the agent takes no frames");
  }
}

}  // namespace

simulator::sysroot::RootOptions RealAgent::default_options() {
  simulator::sysroot::RootOptions options;
  options.build = BUILD_FOLDER;
  return options;
}

Json RealAgent::plain_orders() {
  return {{"unit_file_name", "test"}, {"unit_file", "{}"},    {"services", false},  {"without", Json::array()},
          {"network", false},         {"dhcp_server", false}, {"record", false},    {"host", Json::array()},
          {"host_serves", true},      {"processes", 512},     {"open_files", 1024}, {"root_mib", 64}};
}

RealAgent::RealAgent(const simulator::sysroot::RootOptions& options) {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    throw std::runtime_error("no socket pair");
  }
  channel_ = ends[0];
  const simulator::sysroot::BwrapCommand bwrap(options);
  simulator::process::ChildOptions child;
  child.descriptors = {{ends[1], CHANNEL_INSIDE}};
  child.dies_with_starter = true;
  process_ = simulator::process::start_program(
      bwrap.line(simulator::sysroot::unit_environment(), {"/opt/unit/bin/unit-agent", std::to_string(CHANNEL_INSIDE)}),
      child);
  ::close(ends[1]);
}

RealAgent::~RealAgent() {
  hang_up();
  if (process_ != -1) {
    ::kill(process_, SIGKILL);
    simulator::process::reap(process_, true);
  }
}

void RealAgent::hang_up() {
  if (channel_ != -1) {
    ::close(channel_);
    channel_ = -1;
  }
}

int RealAgent::wait() {
  const int status = simulator::process::shell_status(simulator::process::reap(process_, true).value());
  process_ = -1;
  return status;
}

void RealAgent::send_raw(const std::string& bytes) {
  write_all(channel_, bytes);
}

bool RealAgent::take(std::chrono::milliseconds limit) {
  for (;;) {
    if (const auto frame = reader_.next()) {
      if (frame->stream != 0) {
        bytes_[frame->stream] += frame->payload;
        return true;
      }
      const Json document = simulator::channel::parsed_document(frame->payload);
      if (document.contains("notice")) {
        notices_.push_back(document);
      } else {
        answers_[document.at("id").get<int>()] = document;
      }
      return true;
    }
    pollfd event{channel_, POLLIN, 0};
    char block[65536];
    if (::poll(&event, 1, static_cast<int>(limit.count())) != 1) {
      return false;
    }
    const ssize_t size = ::read(channel_, block, sizeof block);
    if (size <= 0) {
      throw std::runtime_error("the agent has ended");
    }
    reader_.feed({block, static_cast<std::size_t>(size)});
  }
}

Json RealAgent::set_up(const Json& orders) {
  write_all(channel_, simulator::channel::frame_of(0, Json{{"do", "set_up"}, {"with", orders}}.dump()));
  for (;;) {
    for (const Json& each : notices_) {
      if (each["notice"] == "ready" || each["notice"] == "failed") {
        return each;
      }
    }
    if (!take(PATIENCE)) {
      throw std::runtime_error("the unit is not set up in time");
    }
  }
}

int RealAgent::begin(const std::string& verb, const Json& with) {
  const Json request = {{"id", ++last_id_}, {"do", verb}, {"with", with}};
  write_all(channel_, simulator::channel::frame_of(0, request.dump()));
  return last_id_;
}

Json RealAgent::answer(int id) {
  while (answers_.count(id) == 0) {
    if (!take(PATIENCE)) {
      throw std::runtime_error("no answer in time");
    }
  }
  const Json answer = answers_[id];
  answers_.erase(id);
  return answer.contains("ok") ? answer["ok"] : Json{{"error", answer["error"]}};
}

Json RealAgent::request(const std::string& verb, const Json& with) {
  return answer(begin(verb, with));
}

Json RealAgent::notice(const std::string& kind) {
  for (;;) {
    for (auto at = notices_.begin(); at != notices_.end(); ++at) {
      if ((*at)["notice"] == kind) {
        const Json found = *at;
        notices_.erase(at);
        return found;
      }
    }
    if (!take(PATIENCE)) {
      throw std::runtime_error("no notice \"" + kind + "\" in time");
    }
  }
}

Json RealAgent::run(const std::vector<std::string>& words, const Json& more) {
  Json with = {{"argv", words}};
  with.update(more);
  const Json started = request("exec.start", with);
  if (started.contains("error")) {
    return started;
  }
  const std::uint32_t stream = started["stream"];
  Json end = notice("exit");
  end.erase("notice");
  end.erase("stream");
  end["out"] = bytes_[stream];
  end["err"] = bytes_[stream + 1];
  return end;
}

void RealAgent::input(std::uint32_t stream, const std::string& bytes) {
  write_all(channel_, simulator::channel::frame_of(stream, bytes));
}

bool RealAgent::shows(std::uint32_t stream, const std::string& text) {
  while (bytes_[stream].find(text) == std::string::npos) {
    if (!take(PATIENCE)) {
      return false;
    }
  }
  return true;
}

}  // namespace agent_test
