#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace control::supervisor {

/// A control group that limits the memory of all processes of a unit together, their file systems in memory included.
/// Not every machine grants one: then there is no limit. One thread.
class MemoryGroup {
public:
  /// Creates a group below that of this process, limited to `mib`, if the machine allows it.
  MemoryGroup(const std::string& name, int mib);
  /// Removes the group, which must be empty by then.
  ~MemoryGroup();
  MemoryGroup(const MemoryGroup&) = delete;
  MemoryGroup& operator=(const MemoryGroup&) = delete;

  bool exists() const noexcept { return group_.has_value(); }
  /// Moves this process into the group, and back; processes that it starts meanwhile stay in the group.
  void enter() const;
  void leave() const;

private:
  std::filesystem::path parent_;
  std::optional<std::filesystem::path> group_;
};

}  // namespace control::supervisor
