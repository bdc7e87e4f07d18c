#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "tests/system/unit_fixture.h"

namespace system_test {

/// A terminal of 24 x 80 characters and the text written to it.
class Terminal {
public:
  Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    if (screen_ == -1 || grantpt(screen_) != 0 || unlockpt(screen_) != 0) {
      throw std::runtime_error("no terminal");
    }
    line_ = open(ptsname(screen_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    resize(24, 80);
  }
  ~Terminal() {
    close(line_);
    close(screen_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// Makes it the standard output of this process.
  void take_over_output() const { dup2(line_, STDOUT_FILENO); }
  /// Makes it the controlling terminal and all standard streams of this process.
  void take_over() const {
    setsid();
    ioctl(line_, TIOCSCTTY, 0);
    dup2(line_, STDIN_FILENO);
    dup2(line_, STDOUT_FILENO);
    dup2(line_, STDERR_FILENO);
  }
  void resize(int rows, int columns) const {
    const winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    ioctl(screen_, TIOCSWINSZ, &size);
  }
  void type(const std::string& keys) const {
    if (write(screen_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
      throw std::runtime_error("the terminal takes no keys");
    }
  }

  /// All text written so far, without carriage returns.
  const std::string& written() {
    char block[4096];
    for (ssize_t size = 0; (size = read(screen_, block, sizeof block)) > 0;) {
      for (ssize_t i = 0; i < size; ++i) {
        if (block[i] != '\r') {
          written_ += block[i];
        }
      }
    }
    return written_;
  }
  /// Waits until `text` appears. False on timeout.
  bool shows(const std::string& text) {
    return eventually([&] { return written().find(text) != std::string::npos; });
  }

private:
  int screen_;
  int line_ = -1;
  std::string written_;
};

}  // namespace system_test
