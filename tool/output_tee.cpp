#include "tool/output_tee.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tool {
namespace {

void write_all(int descriptor, const char* bytes, std::size_t size) {
  while (descriptor != -1 && size > 0) {
    const ssize_t written = write(descriptor, bytes, size);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      return;
    }
    bytes += written;
    size -= static_cast<std::size_t>(written);
  }
}

}  // namespace

OutputTee::OutputTee(std::filesystem::path log, int target) : log_(std::move(log)), target_(target) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  read_ = ends[0];
  write_ = ends[1];
}

OutputTee::~OutputTee() {
  finish();
  close(read_);
  if (write_ != -1) {
    close(write_);
  }
}

void OutputTee::start() {
  close(write_);
  write_ = -1;
  copying_ = std::thread(&OutputTee::copy, this);
}

void OutputTee::finish() {
  if (copying_.joinable()) {
    copying_.join();
  }
}

void OutputTee::copy() {
  const int log = open(log_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  char block[4096];
  for (;;) {
    const ssize_t size = read(read_, block, sizeof block);
    if (size < 0 && errno == EINTR) {
      continue;
    }
    if (size <= 0) {
      break;
    }
    write_all(log, block, static_cast<std::size_t>(size));
    write_all(target_, block, static_cast<std::size_t>(size));
    keep(block, static_cast<std::size_t>(size));
  }
  if (log != -1) {
    close(log);
  }
}

void OutputTee::keep(const char* bytes, std::size_t size) {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (std::size_t i = 0; i < size; ++i) {
    if (bytes[i] != '\n') {
      unfinished_ += bytes[i];
      continue;
    }
    lines_.push_back(std::move(unfinished_));
    unfinished_.clear();
    if (lines_.size() > LINES_KEPT) {
      lines_.pop_front();
    }
  }
}

std::vector<std::string> OutputTee::last_lines() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return {lines_.begin(), lines_.end()};
}

}  // namespace tool
