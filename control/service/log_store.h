#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace control::service {

struct LogSize {
  std::string name;
  std::uint64_t bytes;    ///< kept
  std::uint64_t dropped;  ///< beyond the limit or not writable
};

/// The logs of a unit, one file each, in a folder that the unit cannot reach. One thread.
class LogStore {
public:
  /// `folder`: descriptor of the folder, owned by the caller. `most`: bytes kept of each log.
  LogStore(int folder, std::size_t most) : folder_(folder), most_(most) {}
  ~LogStore();
  LogStore(const LogStore&) = delete;
  LogStore& operator=(const LogStore&) = delete;

  /// Whether a unit has a log of this name.
  static bool known(const std::string& name);
  /// Creates a log in place of an older file of that name; does nothing if it is open. Returns false if the name is not
  /// known. Bytes of a log whose file cannot be created are dropped.
  bool open(const std::string& name);
  /// Appends to a log that has been opened; returns how many bytes were kept.
  std::size_t append(const std::string& name, std::string_view bytes);
  /// Up to `most` bytes from the offset on; empty at the end and for a log that is not open.
  std::string read(const std::string& name, std::uint64_t from, std::size_t most) const;
  std::uint64_t size(const std::string& name) const;
  /// The logs opened so far, by name.
  std::vector<LogSize> sizes() const;

private:
  struct Log {
    int descriptor;  ///< -1: cannot be written
    std::uint64_t bytes;
    std::uint64_t dropped;
  };

  int create(const std::string& name) const;

  int folder_;
  std::size_t most_;
  std::map<std::string, Log> logs_;
};

}  // namespace control::service
