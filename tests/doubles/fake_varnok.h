#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "orb_wrapper.h"
#include "tests/doubles/call_log.h"
#include "varnok_dds.h"
#include "varnok_events.h"
#include "varnok_locker.h"

/// A fake of the engine framework behind platform/varnok_*.h and platform/orb_wrapper.h. One framework per process,
/// usable from any thread; reset_framework() restores its initial state.
///
/// Calls in the log: "event <source>", "lookup <name>/<name>/…", "take framework lock", "make locker core",
/// "give framework lock back".
namespace doubles {

/// @name DDS context
/// @{

/// The domain of this process's real participant: from the environment variable TEST_DOMAIN, else one that test
/// processes running side by side do not share.
DDS::DomainId_t real_domain();
/// The process's real participant, on the network that the engine is configured for; made on first use.
DDS::DomainParticipant_ptr real_participant();

/// Makes `participant` the process's participant during its lifetime; nil for a process without one.
class ParticipantInUse {
public:
  explicit ParticipantInUse(DDS::DomainParticipant_ptr participant);
  ~ParticipantInUse();
  ParticipantInUse(const ParticipantInUse&) = delete;
  ParticipantInUse& operator=(const ParticipantInUse&) = delete;
};
/// @}

/// @name Event channel
/// @{

/// One event that was sent.
struct SentEvent {
  std::string source;
  std::int32_t category;
  std::string text;
  std::int32_t severity;
  std::uint32_t flags;
  std::int32_t code;
  std::int64_t timestamp;
  const Varnok::EngineEventMessage_i* channel;

  bool operator==(const SentEvent& other) const;
};
std::ostream& operator<<(std::ostream& stream, const SentEvent& event);

std::vector<SentEvent> sent_events();
/// From now on runs `action` in every send, before the event counts as sent; its exceptions leave the send.
void run_first_in_sends(std::function<void()> action);
/// @}

/// @name Naming service
/// @{

/// Makes `object` what the path "name/name/…" resolves to; the caller keeps its reference. Unbound paths throw
/// CORBA::OBJECT_NOT_EXIST.
void bind_service(const std::string& path, CORBA::Object_ptr object);
void unbind_service(const std::string& path);
/// From now on runs `action` in every lookup of the path, before it is resolved.
void run_first_in_lookups(const std::string& path, std::function<void()> action);
/// Numbers of ORB wrappers made and destroyed since the process started.
unsigned int wrappers_made();
unsigned int wrappers_destroyed();
/// @}

/// Serial number of the last locker core made; 0 before the first.
std::uint64_t last_core_serial();

/// Forgets sent events, bound services and actions.
void reset_framework();

}  // namespace doubles
