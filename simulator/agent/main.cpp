// First process of a unit: sets the unit up and answers its control service.
//   unit-agent CHANNEL     CHANNEL: descriptor of the socket to the control service

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>

#include "simulator/agent/agent.h"

namespace {

constexpr int STATUS_FAILED = 1;
constexpr int STATUS_BAD_USAGE = 2;

/// The descriptor in the text; -1 if it is none.
int descriptor_in(const char* text) {
  int number = -1;
  const char* const end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, number);
  return error == std::errc{} && stop == end && fcntl(number, F_GETFD) != -1 ? number : -1;
}

/// Closes every descriptor but the standard streams and the channel.
void keep_only(int channel) {
  if (channel > STDERR_FILENO + 1) {
    close_range(STDERR_FILENO + 1, static_cast<unsigned>(channel) - 1, 0);
  }
  close_range(static_cast<unsigned>(channel) + 1, ~0U, 0);
}

}  // namespace

int main(int argc, char** argv) {
  const int channel = argc == 2 ? descriptor_in(argv[1]) : -1;
  if (channel == -1) {
    std::fputs("usage: unit-agent CHANNEL\nFirst process of a unit; started by unit-control.\n", stderr);
    return STATUS_BAD_USAGE;
  }
  fcntl(channel, F_SETFD, FD_CLOEXEC);
  keep_only(channel);
  int status = 0;
  try {
    // Not destroyed: threads that answer requests use it until the process ends.
    (new simulator::agent::Agent(channel))->run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "unit-agent: %s\n", error.what());
    status = STATUS_FAILED;
  }
  // When the first process of a unit exits, all others in it are killed.
  _exit(status);
}
