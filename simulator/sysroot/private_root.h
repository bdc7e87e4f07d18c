#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/sysroot/state_folder.h"

namespace simulator::sysroot {

/// What runs in a private root.
struct RootOptions {
  std::filesystem::path build;  ///< the build folder: bin/ and lib/; seen inside as /opt/unit
  bool services = false;        ///< the naming service and the unit's services run, ready before the command starts
  bool network = false;         ///< there is an interface eth0
  bool dhcp_server = false;     ///< a DHCP server answers on eth0's far end; implies `network`
  /// Environment beside what every unit has (PATH, HOME, CYCLONEDDS_URI, …).
  std::vector<std::pair<std::string, std::string>> environment;
  std::vector<std::string> command;  ///< as seen inside
  int output = 1;                    ///< descriptors that become the command's standard streams
  int error = 2;
  int input = 0;
};

/// A running private root: a process tree with its own users, processes, network and file system, on a state folder.
/// Nothing that happens inside changes anything outside but the state folder. Everything inside ends with the object,
/// and with the process that started it, however that ends. One thread at a time.
class PrivateRoot {
public:
  /// Starts it; returns at once. Must be called on the process's main thread: the root ends with its starter's thread.
  /// Throws std::system_error.
  PrivateRoot(const StateFolder& state, const RootOptions& options);
  ~PrivateRoot();
  PrivateRoot(const PrivateRoot&) = delete;
  PrivateRoot& operator=(const PrivateRoot&) = delete;

  /// The command's exit status (128 + number where a signal ended it), none while it runs.
  std::optional<int> poll();
  /// Waits for the command's end. Everything else inside has ended too when this returns.
  int wait();
  /// Ends everything inside; returns when it has ended.
  void stop();

private:
  std::optional<int> reap(bool wait);

  pid_t process_ = -1;
  int lifeline_ = -1;  ///< everything inside ends when this end is closed
  std::optional<int> status_;
};

/// The port of the naming service inside every private root.
constexpr int NAMING_PORT = 2809;

}  // namespace simulator::sysroot
