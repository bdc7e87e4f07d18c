#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace control::wire {

/// What a frame of an exec connection carries.
enum class ExecKind : std::uint8_t {
  INPUT = 0,    ///< to the command: bytes of standard input
  OUT = 1,      ///< from the command: bytes of standard output
  ERR = 2,      ///< from the command: bytes of standard error
  CONTROL = 3,  ///< either way: a JSON object
};

constexpr std::size_t LARGEST_EXEC_FRAME = 4u << 20;  ///< bytes of a payload, to the client
constexpr std::size_t LARGEST_EXEC_INPUT = 1u << 20;  ///< bytes of a payload, to the service

struct ExecFrame {
  ExecKind kind;
  std::string payload;
};

class ExecFrameError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// The frame as it is sent: payload length, 32 bits, least significant byte first; kind, 8 bits; payload.
std::string exec_frame(ExecKind kind, std::string_view payload);

/// Splits a byte stream into frames. One thread at a time.
class ExecFrameReader {
public:
  /// `largest`: bytes of a payload; a frame that announces more is an error.
  explicit ExecFrameReader(std::size_t largest) : largest_(largest) {}

  void feed(std::string_view bytes) { received_.append(bytes); }
  /// The next complete frame; none if more bytes are needed. Throws ExecFrameError.
  std::optional<ExecFrame> next();

private:
  std::size_t largest_;
  std::string received_;
  std::size_t taken_ = 0;  ///< bytes of `received_` already returned
};

}  // namespace control::wire
