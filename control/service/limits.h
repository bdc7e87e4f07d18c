#pragma once

#include <chrono>
#include <cstddef>

namespace control::service {

/// What the service grants its clients and the agent. Tests choose smaller ones.
struct Limits {
  std::size_t connections = 2048;        ///< at once; further ones are answered 503
  std::size_t pending = 4096;            ///< requests to the agent without answer
  std::size_t to_agent = 16u << 20;      ///< bytes that wait for the agent to read
  std::size_t log = 64u << 20;           ///< bytes kept of each log
  std::size_t stream = 1u << 20;         ///< bytes that wait for a client of the event stream
  unsigned notices_per_second = 10'000;  ///< from the agent, answers without request included

  std::chrono::milliseconds idle{60'000};          ///< without request, or until an answer is taken
  std::chrono::milliseconds arrival{10'000};       ///< from a request's first byte to its last
  std::chrono::milliseconds agent_answer{10'000};  ///< besides the time limit of the request itself
  std::chrono::milliseconds ending{10'000};        ///< from the order to stop to the agent's end
  std::chrono::milliseconds farewell{1'000};       ///< for last answers once the agent has ended
  std::chrono::milliseconds settings_poll{50};     ///< between two looks at watched settings
  std::chrono::milliseconds eventlog_poll{250};    ///< between two looks at the event log
  std::chrono::milliseconds comment{15'000};       ///< between two comments in an event stream
};

constexpr std::size_t LARGEST_HEADER = 16u << 10;  ///< bytes of a request's header
constexpr std::size_t LARGEST_BODY = 1u << 20;     ///< bytes of a request's body

}  // namespace control::service
