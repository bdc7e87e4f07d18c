#include "control/wire/exec_frames.h"

namespace control::wire {
namespace {

constexpr std::size_t HEADER = 5;

}  // namespace

std::string exec_frame(ExecKind kind, std::string_view payload) {
  std::string bytes;
  bytes.reserve(HEADER + payload.size());
  for (unsigned i = 0; i < 4; ++i) {
    bytes += static_cast<char>(payload.size() >> (8 * i) & 0xff);
  }
  bytes += static_cast<char>(kind);
  return bytes.append(payload);
}

std::optional<ExecFrame> ExecFrameReader::next() {
  const std::string_view rest = std::string_view(received_).substr(taken_);
  std::size_t size = 0;
  if (rest.size() >= HEADER) {
    for (unsigned i = 4; i-- > 0;) {
      size = size << 8 | static_cast<unsigned char>(rest[i]);
    }
    if (size > largest_ || static_cast<unsigned char>(rest[4]) > static_cast<unsigned char>(ExecKind::CONTROL)) {
      throw ExecFrameError("not a frame of an exec connection");
    }
  }
  if (rest.size() < HEADER || rest.size() - HEADER < size) {
    received_.erase(0, taken_);
    taken_ = 0;
    return std::nullopt;
  }
  taken_ += HEADER + size;
  return ExecFrame{static_cast<ExecKind>(rest[4]), std::string(rest.substr(HEADER, size))};
}

}  // namespace control::wire
