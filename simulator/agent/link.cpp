#include "simulator/agent/link.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace simulator::agent {

void Link::send(const Json& document) {
  send_bytes(channel::DOCUMENTS, document.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void Link::send_bytes(std::uint32_t stream, std::string_view bytes) {
  const std::string frame = channel::frame_of(stream, bytes);
  const std::lock_guard guard(sending_);
  for (std::size_t sent = 0; sent < frame.size();) {
    const ssize_t part = ::send(descriptor_, frame.data() + sent, frame.size() - sent, MSG_NOSIGNAL);
    if (part < 0 && errno == EINTR) {
      continue;
    }
    if (part <= 0) {
      ::_exit(0);
    }
    sent += static_cast<std::size_t>(part);
  }
}

bool Link::receive() {
  char block[65536];
  const ssize_t size = ::recv(descriptor_, block, sizeof block, MSG_DONTWAIT);
  if (size > 0) {
    reader_.feed({block, static_cast<std::size_t>(size)});
    return true;
  }
  return size < 0 && (errno == EAGAIN || errno == EINTR);
}

}  // namespace simulator::agent
