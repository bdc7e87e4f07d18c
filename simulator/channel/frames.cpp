#include "simulator/channel/frames.h"

namespace simulator::channel {
namespace {

constexpr std::size_t HEADER = 8;

std::uint32_t number_at(const std::string& bytes, std::size_t at) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) {
    number = (number << 8) | static_cast<unsigned char>(bytes[at + i]);
  }
  return number;
}

void append_number(std::string& bytes, std::uint32_t number) {
  for (int i = 0; i < 4; ++i) {
    bytes += static_cast<char>(number >> (8 * i));
  }
}

}  // namespace

std::optional<Frame> FrameReader::next() {
  const std::size_t held = received_.size() - taken_;
  const std::size_t size = held < HEADER ? 0 : number_at(received_, taken_);
  if (size > largest_) {
    throw FrameError("frame of " + std::to_string(size) + " bytes; at most " + std::to_string(largest_) +
                     " are allowed");
  }
  if (held < HEADER || held < HEADER + size) {
    received_.erase(0, taken_);
    taken_ = 0;
    return std::nullopt;
  }
  Frame frame{number_at(received_, taken_ + 4), received_.substr(taken_ + HEADER, size)};
  taken_ += HEADER + size;
  return frame;
}

std::string frame_of(std::uint32_t stream, std::string_view payload) {
  std::string bytes;
  bytes.reserve(HEADER + payload.size());
  append_number(bytes, static_cast<std::uint32_t>(payload.size()));
  append_number(bytes, stream);
  bytes.append(payload);
  return bytes;
}

}  // namespace simulator::channel
