#include "simulator/services/engines.h"

#include "simulator/model/json_text.h"

namespace simulator::services {

void EverybodyShutdown::ShutdownAll(const Varnok::Locker_Core& core) {
  conduct_.enter(model::Point::EVERYBODY_SHUTDOWN_ALL,
                 "{\"process\":" + std::to_string(core.process) + ",\"serial\":" + std::to_string(core.serial) + "}");
}

Varnok::EverybodyEng::Shutdown_ptr EverybodyEngine::GetShutdown() {
  const model::Fault fault = conduct_.enter(model::Point::EVERYBODY_GET_SHUTDOWN, "{}");
  if (fault.kind == model::FaultKind::GARBAGE) {
    return Varnok::EverybodyEng::Shutdown::_nil();
  }
  return shutdown_->_this();
}

void HwEnumerate::ShutdownEngine(const char* engine) {
  conduct_.enter(model::Point::HW_ENUMERATE_SHUTDOWN_ENGINE, "{\"engine\":" + model::json_text(engine) + "}");
}

}  // namespace simulator::services
