#include "tool/host_output.h"

#include <poll.h>

#include <cerrno>
#include <cstdio>

#include "tool/text.h"

namespace tool {

using control::client::Event;

namespace {

/// The answer and the output that belongs to it come on two connections: the latter may be a little later.
constexpr std::chrono::milliseconds GRACE{5};

}  // namespace

HostOutput::HostOutput(const std::filesystem::path& socket)
    : stream_(std::in_place, socket, "/v1/stream?events=log"),
      lines_([](const std::string&, const std::string& line) { show_host_line(line); }) {}

void HostOutput::wait_readable(int descriptor) {
  show_arrived();
  for (;;) {
    pollfd events[] = {{descriptor, POLLIN, 0}, {stream_ ? stream_->descriptor() : -1, POLLIN, 0}};
    if (poll(events, 2, -1) == -1 && errno != EINTR) {
      return;
    }
    if (events[1].revents != 0) {
      show_arrived();
    }
    if (events[0].revents != 0) {
      return;
    }
  }
}

void HostOutput::show_arrived() {
  show_until_quiet(std::chrono::milliseconds(0));
}

void HostOutput::show_rest() {
  show_until_quiet(GRACE);
}

void HostOutput::show_until_quiet(std::chrono::milliseconds pause) {
  try {
    while (stream_) {
      const std::optional<Event> event = stream_->next(pause);
      if (!event) {
        return;
      }
      if (event->type == "log" && is_hosts(event->data.value("name", ""))) {
        lines_.take(*event);
      }
    }
  } catch (const control::client::ConnectionError&) {
    // The unit is ending; the command's own connection reports it.
    stream_.reset();
  }
}

void show_host_line(const std::string& line) {
  std::fprintf(stderr, "host: %s\n", printable(line).c_str());
}

}  // namespace tool
