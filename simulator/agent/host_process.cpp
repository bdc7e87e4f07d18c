#include "simulator/agent/host_process.h"

#include "simulator/agent/host_connection.h"

namespace simulator::agent {
namespace {

constexpr int LOOK_INTERVAL_MS = 2;

template <typename Value>
Json or_null(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

}  // namespace

void HostProcess::start(const std::vector<std::string>& line, bool serves, std::function<void()> settled) {
  settled_ = std::move(settled);
  CommandLine command;
  command.words = line;
  process_ = commands_.start_logged(command, "host", [this](const CommandEnd& end) { note_end(end); });
  change(serves ? "starting" : "running");
  if (!serves) {
    settle();
  }
}

int HostProcess::look() {
  if (state_ != "starting") {
    return -1;
  }
  if (!host_listens()) {
    return LOOK_INTERVAL_MS;
  }
  change("running");
  settle();
  return -1;
}

void HostProcess::note_end(const CommandEnd& end) {
  {
    const std::lock_guard guard(mutex_);
    end_ = end;
  }
  change("exited");
  settle();
}

void HostProcess::change(const char* state) {
  {
    const std::lock_guard guard(mutex_);
    state_ = state;
  }
  Json notice = {{"notice", "host"}};
  notice.update(this->state());
  link_.send(notice);
}

void HostProcess::settle() {
  if (settled_) {
    std::exchange(settled_, nullptr)();
  }
}

Json HostProcess::state() const {
  const std::lock_guard guard(mutex_);
  return {{"state", state_},
          {"pid", process_ == -1 ? Json() : Json(process_)},
          {"status", or_null(end_.status)},
          {"signal", or_null(end_.signal)}};
}

}  // namespace simulator::agent
