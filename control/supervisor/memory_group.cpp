#include "control/supervisor/memory_group.h"

#include <unistd.h>

#include <fstream>
#include <sstream>

namespace control::supervisor {
namespace fs = std::filesystem;
namespace {

/// Where the memory controller is mounted, and how it is used there.
struct Controller {
  fs::path group;          ///< that of this process
  const char* limit_file;  ///< which takes the limit in bytes
  bool unified = false;    ///< the controller must be passed on to the groups below
};

bool write_text(const fs::path& file, const std::string& text) {
  std::ofstream out(file);
  out << text << std::flush;
  return static_cast<bool>(out);
}

/// This process's group in the hierarchy whose line in /proc/self/cgroup holds `controllers`; empty if there is none.
std::string own_group(const std::string& controllers) {
  std::ifstream groups("/proc/self/cgroup");
  for (std::string line; std::getline(groups, line);) {
    const std::size_t first = line.find(':');
    const std::size_t second = line.find(':', first + 1);
    if (second != std::string::npos && line.substr(first + 1, second - first - 1) == controllers) {
      return line.substr(second + 1);
    }
  }
  return "";
}

std::optional<Controller> memory_controller() {
  if (const std::string group = own_group("memory"); !group.empty()) {
    return Controller{"/sys/fs/cgroup/memory" + group, "memory.limit_in_bytes"};
  }
  std::ifstream controllers("/sys/fs/cgroup" + own_group("") + "/cgroup.controllers");
  for (std::string each; controllers >> each;) {
    if (each == "memory") {
      return Controller{"/sys/fs/cgroup" + own_group(""), "memory.max", true};
    }
  }
  return std::nullopt;
}

}  // namespace

MemoryGroup::MemoryGroup(const std::string& name, int mib) {
  const auto controller = memory_controller();
  if (!controller || (controller->unified && !write_text(controller->group / "cgroup.subtree_control", "+memory"))) {
    return;
  }
  const fs::path group = controller->group / ("unit-" + name + "-" + std::to_string(getpid()));
  std::error_code error;
  if (!fs::create_directory(group, error) || error) {
    return;
  }
  if (!write_text(group / controller->limit_file, std::to_string(static_cast<long long>(mib) << 20))) {
    fs::remove(group, error);
    return;
  }
  parent_ = controller->group;
  group_ = group;
}

MemoryGroup::~MemoryGroup() {
  if (group_) {
    rmdir(group_->c_str());
  }
}

void MemoryGroup::enter() const {
  if (group_) {
    write_text(*group_ / "cgroup.procs", std::to_string(getpid()));
  }
}

void MemoryGroup::leave() const {
  if (group_) {
    write_text(parent_ / "cgroup.procs", std::to_string(getpid()));
  }
}

}  // namespace control::supervisor
