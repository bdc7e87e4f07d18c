#pragma once

#include <atomic>
#include <cstdint>

class Handheld_Hardware;

/// Whether the cover was closed at the last interrupt.
extern __attribute__((visibility("default"))) bool cover_closed;
/// The last power-switch interrupt's value.
extern std::int32_t CommunicationStatusInterruptValue;

namespace handheld {

/// The object that registered the power-switch handler last; null before, and once it has been destroyed.
extern std::atomic<Handheld_Hardware*> switch_owner;

}  // namespace handheld
