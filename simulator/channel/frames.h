#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace simulator::channel {

/// The stream whose frames are JSON documents: requests, answers, notices. Other streams carry the bytes of commands
/// and logs.
inline constexpr std::uint32_t DOCUMENTS = 0;
/// Largest payload of a frame from the agent and to it, in bytes.
inline constexpr std::size_t LARGEST_FROM_AGENT = 4u << 20;
inline constexpr std::size_t LARGEST_TO_AGENT = (1u << 20) + (64u << 10);
/// Bytes of a command's output that the agent sends before it waits for credit.
inline constexpr std::size_t FIRST_CREDIT = 256u << 10;

/// One frame. On the wire: payload length and stream, 32 bits each, least significant byte first, then the payload.
struct Frame {
  std::uint32_t stream;
  std::string payload;
};

/// Bytes or text that break the protocol; what() is the reason.
class FrameError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Splits a byte stream into frames. One thread at a time.
class FrameReader {
public:
  /// `largest_payload`: in bytes; a frame that announces more is an error.
  explicit FrameReader(std::size_t largest_payload) : largest_(largest_payload) {}

  void feed(std::string_view bytes) { received_.append(bytes); }
  /// The next complete frame; none if more bytes are needed. Throws FrameError if the payload is too large.
  std::optional<Frame> next();

private:
  std::size_t largest_;
  std::string received_;
  std::size_t taken_ = 0;  ///< bytes of `received_` already returned
};

/// The frame as it is sent.
std::string frame_of(std::uint32_t stream, std::string_view payload);

}  // namespace simulator::channel
