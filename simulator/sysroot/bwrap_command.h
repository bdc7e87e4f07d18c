#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace simulator::sysroot {

/// The command that enters a unit's private root, and what it needs open.
///
/// Two nested roots. The outer one holds the machine's programs and the build folder, read-only, its /proc and /dev,
/// and the unit's state folder; root gives up its rights there. The inner one is the unit: its mounts come from the
/// outer one, and nobody inside can make the read-only ones writable, not even root inside.
class BwrapCommand {
public:
  /// `build`: the build folder, /opt/unit inside. `state`: the unit's state folder.
  BwrapCommand(const std::filesystem::path& build, const std::filesystem::path& state);
  ~BwrapCommand();
  BwrapCommand(const BwrapCommand&) = delete;
  BwrapCommand& operator=(const BwrapCommand&) = delete;

  /// The whole command line that runs `command` inside with exactly that environment. Valid once per object: the files
  /// of /etc are handed over by descriptors, which a run reads to their end.
  std::vector<std::string> line(const std::vector<std::pair<std::string, std::string>>& environment,
                                const std::vector<std::string>& command) const;

private:
  /// A file of the private root that holds text of its own.
  struct OwnFile {
    std::string path;
    std::string permissions;
    int descriptor;
  };

  std::vector<std::string> outer() const;
  std::vector<std::string> inner() const;

  std::filesystem::path build_;
  std::filesystem::path state_;
  std::vector<OwnFile> files_;
};

}  // namespace simulator::sysroot
