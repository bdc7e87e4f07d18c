#include "simulator/model/call_record.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <system_error>

#include "simulator/model/json_text.h"

namespace simulator::model {
namespace {

int open_for_append(const std::string& file, int extra_flags) {
  const int opened = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | extra_flags, 0644);
  if (opened < 0) {
    throw std::system_error(errno, std::generic_category(), file);
  }
  return opened;
}

/// The kept descriptor, opened if necessary.
int kept_descriptor(const std::string& file, std::atomic<int>& descriptor) {
  int kept = descriptor.load();
  if (kept >= 0) {
    return kept;
  }
  const int opened = open_for_append(file, 0);
  if (descriptor.compare_exchange_strong(kept, opened)) {
    return opened;
  }
  ::close(opened);
  return kept;
}

long long monotonic_ns() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<long long>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

}  // namespace

void append_line(const std::string& file, const std::string& line, std::atomic<int>& descriptor) {
  const std::string bytes = line + '\n';
  const ssize_t written = ::write(kept_descriptor(file, descriptor), bytes.data(), bytes.size());
  if (written != static_cast<ssize_t>(bytes.size())) {
    throw std::system_error(written < 0 ? errno : ENOSPC, std::generic_category(), file);
  }
}

CallRecord::~CallRecord() {
  if (descriptor_.load() >= 0) {
    ::close(descriptor_.load());
  }
}

void CallRecord::start() {
  ::close(open_for_append(file_, O_TRUNC));
  watch_.set(Watch::RECORDED, true);
}

void CallRecord::append(std::string_view at, const std::string& args) {
  if (!on()) {
    return;
  }
  const std::string line = "{\"t_ns\":" + std::to_string(monotonic_ns()) + ",\"pid\":" + std::to_string(::getpid()) +
                           ",\"at\":" + json_text(at) + ",\"args\":" + args + "}";
  append_line(file_, line, descriptor_);
}

}  // namespace simulator::model
