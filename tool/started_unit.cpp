#include "tool/started_unit.h"

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "control/client/client.h"
#include "tool/errors.h"

namespace tool {

using control::client::FoundUnit;
using nlohmann::json;

namespace {

constexpr int PATIENCE_AT_END_MS = 10000;

}  // namespace

StartedUnit::StartedUnit(const json& launch) : launched_(control::client::start_unit(launch)) {}

StartedUnit::~StartedUnit() {
  try {
    stop();
  } catch (const std::exception&) {
    // The unit ends with its lifeline.
  }
  if (launched_.lifeline != -1) {
    close(launched_.lifeline);
  }
}

void StartedUnit::detach() {
  running_ = false;
}

void StartedUnit::stop() {
  if (running_) {
    running_ = false;
    stop_unit(launched_.unit);
  }
}

void stop_unit(const FoundUnit& unit) {
  const int supervisor = static_cast<int>(syscall(SYS_pidfd_open, unit.supervisor, 0));
  if (supervisor == -1) {
    return;
  }
  try {
    control::client::Client(unit.socket()).send("POST", "/v1/unit/stop", json::object());
  } catch (const control::client::ApiError&) {
    // It is stopping already.
  } catch (const control::client::ConnectionError&) {
    // No service answers: the supervisor ends the unit. It holds the unit's lock, so the number is still its own.
    syscall(SYS_pidfd_send_signal, supervisor, SIGTERM, nullptr, 0);
  }
  pollfd ended{supervisor, POLLIN, 0};
  int result = 0;
  do {
    result = poll(&ended, 1, PATIENCE_AT_END_MS);
  } while (result == -1 && errno == EINTR);
  close(supervisor);
  if (result == 0) {
    throw CommandError(STATUS_FAILED, unit.name + ": did not stop within 10 s");
  }
}

}  // namespace tool
