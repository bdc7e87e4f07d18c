#include "control/service/log_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace control::service {
namespace {

constexpr const char* NAMES[] = {"agent.log", "host.err", "host.out", "names.log", "network.log", "services.log"};

}  // namespace

LogStore::~LogStore() {
  for (const auto& [name, log] : logs_) {
    if (log.descriptor != -1) {
      ::close(log.descriptor);
    }
  }
}

bool LogStore::known(const std::string& name) {
  return std::find(std::begin(NAMES), std::end(NAMES), name) != std::end(NAMES);
}

int LogStore::create(const std::string& name) const {
  // Always a new file: an older one may be a link.
  if (::unlinkat(folder_, name.c_str(), 0) != 0 && errno != ENOENT) {
    return -1;
  }
  return ::openat(folder_, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
}

bool LogStore::open(const std::string& name) {
  if (!known(name)) {
    return false;
  }
  if (logs_.find(name) == logs_.end()) {
    logs_[name] = {create(name), 0, 0};
  }
  return true;
}

std::size_t LogStore::append(const std::string& name, std::string_view bytes) {
  Log& log = logs_.at(name);
  std::size_t kept = std::min<std::uint64_t>(bytes.size(), most_ - log.bytes);
  if (kept != 0) {
    const ssize_t written = ::pwrite(log.descriptor, bytes.data(), kept, static_cast<off_t>(log.bytes));
    kept = written < 0 ? 0 : static_cast<std::size_t>(written);
  }
  log.bytes += kept;
  log.dropped += bytes.size() - kept;
  return kept;
}

std::string LogStore::read(const std::string& name, std::uint64_t from, std::size_t most) const {
  const auto log = logs_.find(name);
  if (log == logs_.end() || from >= log->second.bytes) {
    return {};
  }
  std::string bytes(std::min<std::uint64_t>(most, log->second.bytes - from), '\0');
  const ssize_t size = ::pread(log->second.descriptor, bytes.data(), bytes.size(), static_cast<off_t>(from));
  bytes.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return bytes;
}

std::uint64_t LogStore::size(const std::string& name) const {
  const auto log = logs_.find(name);
  return log == logs_.end() ? 0 : log->second.bytes;
}

std::vector<LogSize> LogStore::sizes() const {
  std::vector<LogSize> sizes;
  for (const auto& [name, log] : logs_) {
    sizes.push_back({name, log.bytes, log.dropped});
  }
  return sizes;
}

}  // namespace control::service
