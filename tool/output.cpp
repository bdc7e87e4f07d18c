#include "tool/output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tool/errors.h"
#include "tool/text.h"

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& name, int error) {
  throw CommandError(STATUS_FAILED, name + ": " + std::strerror(error));
}

}  // namespace

void print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
    fail("standard output", errno);
  }
}

void print_json(const nlohmann::ordered_json& document) {
  print(document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n');
}

void flush_output() {
  if (std::fflush(stdout) != 0) {
    fail("standard output", errno);
  }
}

void write_all(int descriptor, std::string_view bytes, const char* name) {
  while (!bytes.empty()) {
    const ssize_t size = write(descriptor, bytes.data(), bytes.size());
    if (size >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(size));
    } else if (errno == EAGAIN) {
      // Somebody else's non-blocking terminal or pipe.
      pollfd event{descriptor, POLLOUT, 0};
      poll(&event, 1, -1);
    } else if (errno != EINTR) {
      fail(name, errno);
    }
  }
}

void complain(const std::string& text) {
  std::fprintf(stderr, "unit: %s\n", printable(text).c_str());
}

}  // namespace tool
