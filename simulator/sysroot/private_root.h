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

/// Options of a private root.
struct RootOptions {
  std::filesystem::path build;  ///< the build folder: bin/ and lib/; seen inside as /opt/unit
  bool services = false;        ///< run the naming service and the unit's services, ready before the command starts
  bool network = false;         ///< create the interface eth0
  bool dhcp_server = false;     ///< run a DHCP server at eth0's far end; implies `network`
  /// Additional environment, besides that of every unit (PATH, HOME, CYCLONEDDS_URI, …).
  std::vector<std::pair<std::string, std::string>> environment;
  std::vector<std::string> command;  ///< as seen inside
  int output = 1;                    ///< descriptors that become the command's standard streams
  int error = 2;
  int input = 0;
};

/// A running private root: a process tree with its own users, processes, network and file system, on a state folder.
/// Outside, only the state folder can be changed from inside. Everything inside ends with the object, and with the
/// process that started it, however that dies. One thread at a time.
class PrivateRoot {
public:
  /// Starts it and returns at once. Call on the process's main thread: the root ends with the starting thread. Throws
  /// std::system_error.
  PrivateRoot(const StateFolder& state, const RootOptions& options);
  ~PrivateRoot();
  PrivateRoot(const PrivateRoot&) = delete;
  PrivateRoot& operator=(const PrivateRoot&) = delete;

  /// The command's exit status (128 + number if killed by a signal), none while it runs.
  std::optional<int> poll();
  /// Waits until the command exits. Everything else inside has also ended when this returns.
  int wait();
  /// Stops everything inside and waits for it.
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
