#include "messaging/failure_event.h"

#include <cstdint>
#include <ctime>

#include <boost/date_time/posix_time/posix_time.hpp>

namespace messaging {

namespace {

// The unit's logs carry the wall clock: the local calendar time counted as if it were UTC.
std::int64_t local_time_stamp() {
  std::tm local = boost::posix_time::to_tm(boost::posix_time::second_clock::local_time());
  return static_cast<std::int32_t>(timegm(&local));
}

}  // namespace

void send_failure_event(Varnok::EngineEventMessage_i& channel, const char* source, const char* text) {
  Varnok::Event::Message message;
  message.category = 3;
  message.text = text;
  message.severity = 3;
  message.flags = 0x10000;
  message.source = source;
  message.code = 0;
  message.timestamp = local_time_stamp();
  channel.SendEventMessage(message);
}

}  // namespace messaging
