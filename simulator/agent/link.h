#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string_view>

#include <nlohmann/json.hpp>

#include "simulator/channel/frames.h"

namespace simulator::agent {

using Json = nlohmann::ordered_json;

/// The agent's end of the channel to its control service. A service that is gone ends the process: the unit ends with
/// its agent. Sending: any thread. Receiving: one thread.
class Link {
public:
  /// `descriptor`: a connected stream socket, owned by the caller.
  explicit Link(int descriptor) : descriptor_(descriptor), reader_(channel::LARGEST_TO_AGENT) {}
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  /// Readable when receive() has something to do.
  int descriptor() const noexcept { return descriptor_; }

  /// Sends a document. Text that is not UTF-8 is sent with replacement characters. Blocks while the service is busy.
  void send(const Json& document);
  /// Sends bytes of a command or log.
  void send_bytes(std::uint32_t stream, std::string_view bytes);

  /// Reads what has arrived without blocking. Returns false if the service is gone.
  bool receive();
  /// The next frame that has arrived completely. Throws channel::FrameError.
  std::optional<channel::Frame> next() { return reader_.next(); }

private:
  int descriptor_;
  channel::FrameReader reader_;
  std::mutex sending_;
};

}  // namespace simulator::agent
