#include "simulator/services/conduct.h"

#include <signal.h>
#include <tao/corba.h>
#include <unistd.h>

namespace simulator::services {
namespace {

constexpr std::chrono::milliseconds LOOK_UP_INTERVAL{100};

[[noreturn]] void refuse(std::int32_t minor) {
  throw CORBA::INTERNAL(static_cast<CORBA::ULong>(minor), CORBA::COMPLETED_NO);
}

}  // namespace

model::Fault Conduct::enter(model::Point point, const std::string& args) {
  const model::Fault fault = model_.watched() ? model_.cross(point, args) : model::Fault{};
  play_behaviour();
  if (model_.services().behaviour(service_) == model::ServiceBehaviour::SLOW) {
    pause(std::chrono::milliseconds(model_.services().slow_ms(service_)));
  }
  switch (fault.kind) {
    case model::FaultKind::FAIL:
      refuse(fault.value);
    case model::FaultKind::NO_REPLY:
      for (;;) {
        keep_waiting(LOOK_UP_INTERVAL);
      }
    case model::FaultKind::GARBAGE:
      return fault;
    default:
      return {};
  }
}

void Conduct::keep_waiting(std::chrono::milliseconds time) {
  pause(time);
  play_behaviour();
}

void Conduct::play_behaviour() {
  switch (model_.services().behaviour(service_)) {
    case model::ServiceBehaviour::DIES_IN_CALL:
      ::kill(::getpid(), SIGKILL);
      return;
    case model::ServiceBehaviour::THROWS:
      refuse(0);
    default:
      return;
  }
}

void Conduct::pause(std::chrono::milliseconds time) {
  if (ending_.wait_for(time)) {
    throw CORBA::TRANSIENT(0, CORBA::COMPLETED_NO);
  }
}

}  // namespace simulator::services
