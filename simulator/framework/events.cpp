#include <unistd.h>
#include <varnok_events.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>

#include "simulator/model/json_text.h"
#include "simulator/model/unit_model.h"

namespace Varnok {
namespace {

using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::UnitModel;

/// The record as one JSON object, fields in declaration order.
std::string json_of(const Event::Message& message) {
  using simulator::model::json_text;
  return "{\"source\":" + json_text(message.source.in()) + ",\"category\":" + std::to_string(message.category) +
         ",\"text\":" + json_text(message.text.in()) + ",\"severity\":" + std::to_string(message.severity) +
         ",\"flags\":" + std::to_string(message.flags) + ",\"code\":" + std::to_string(message.code) +
         ",\"timestamp\":" + std::to_string(message.timestamp) + "}";
}

/// Crosses the interface with the event; throws if a fault makes the log reject it.
void cross(UnitModel& unit, const std::string& event) {
  if (!unit.watched()) {
    return;
  }
  const Fault fault = unit.cross(Point::EVENTS_SEND, event);
  if (fault.kind == FaultKind::FAIL) {
    throw std::runtime_error(std::string("event log: ") + std::strerror(fault.value == 0 ? EIO : fault.value));
  }
}

}  // namespace

/// Writes to the unit's event log, events.jsonl in its run folder.
class EngineEventMessage_i::Channel {
public:
  Channel() = default;
  ~Channel() {
    if (descriptor_.load() >= 0) {
      ::close(descriptor_.load());
    }
  }
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  void send(const std::string& event) {
    UnitModel& unit = UnitModel::of_this_unit();
    cross(unit, event);
    simulator::model::append_line(unit.run_folder() + "/events.jsonl", event, descriptor_);
  }

private:
  std::atomic<int> descriptor_{-1};
};

EngineEventMessage_i::EngineEventMessage_i() : channel_(new Channel) {}

EngineEventMessage_i::~EngineEventMessage_i() {
  delete channel_;
}

void EngineEventMessage_i::SendEventMessage(const Event::Message& message) {
  channel_->send(json_of(message));
}

}  // namespace Varnok
