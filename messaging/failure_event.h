#pragma once

#include "varnok_events.h"

namespace messaging {

/// Sends one failure event over `channel`: category 3, severity 3, flags 0x10000, code 0, stamped with the local time.
/// `source` is the reporting function's full name, `text` says what failed. Any thread. Throws what the channel throws.
void send_failure_event(Varnok::EngineEventMessage_i& channel, const char* source, const char* text);

}  // namespace messaging
