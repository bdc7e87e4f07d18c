#pragma once

#include "eventsC.h"

namespace Varnok {

/// One sender to the unit's event log. Any thread may send; the sender serialises. Construction never fails: if the log
/// cannot be reached, the first event throws.
class __attribute__((visibility("default"))) EngineEventMessage_i {
public:
  EngineEventMessage_i();
  ~EngineEventMessage_i();
  EngineEventMessage_i(const EngineEventMessage_i&) = delete;
  EngineEventMessage_i& operator=(const EngineEventMessage_i&) = delete;

  /// Hands the record to the event log; the caller keeps it. Throws std::runtime_error if the log rejects it.
  void SendEventMessage(const Event::Message& message);

private:
  class Channel;
  Channel* channel_;
};

}  // namespace Varnok
