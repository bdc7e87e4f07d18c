#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace simulator::sysroot {

/// What a private root shows of the machine, and the sizes of its file systems.
struct RootOptions {
  std::filesystem::path build;               ///< the build folder: bin/ and lib/; seen inside as /opt/unit
  std::vector<std::filesystem::path> binds;  ///< absolute paths, seen read-only at the same place
  /// Files of the machine (first) seen read-only elsewhere (second).
  std::vector<std::pair<std::filesystem::path, std::filesystem::path>> files;
  int disk_mib = 256;  ///< size of each of the unit's writable file systems
};

/// The command that enters a unit's private root, and the descriptors that it needs.
///
/// Two nested roots. The outer one contains the machine's programs, a few files of its /etc, the build folder and the
/// bound paths, all read-only, and the machine's /proc and /dev, both writable; root drops its privileges there. The
/// inner one is the unit: its mounts come from the outer one, and no one inside, not even root, can make the read-only
/// ones writable. Everything that the unit can write is in its memory.
class BwrapCommand {
public:
  /// Throws std::system_error.
  explicit BwrapCommand(RootOptions options);
  ~BwrapCommand();
  BwrapCommand(const BwrapCommand&) = delete;
  BwrapCommand& operator=(const BwrapCommand&) = delete;

  /// The command line of `command` inside, with this environment and no other. Refers to open descriptors of this
  /// object, which the process that runs it inherits.
  std::vector<std::string> line(const std::vector<std::pair<std::string, std::string>>& environment,
                                const std::vector<std::string>& command) const;

private:
  struct OwnFile {
    std::string path;
    std::string permissions;
    int descriptor;
  };

  std::vector<std::string> outer() const;
  std::vector<std::string> inner() const;

  RootOptions options_;
  std::vector<OwnFile> files_;
};

}  // namespace simulator::sysroot
