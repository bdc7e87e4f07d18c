#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace simulator::sysroot {

/// The command that enters a unit's private root, and the descriptors that it needs.
///
/// Two nested roots. The outer one contains the machine's programs, a few files of its /etc and the build folder, all
/// read-only, the machine's /proc and /dev, both writable, and the unit's state folder; root drops its privileges
/// there. The inner one is the unit: its mounts come from the outer one, and no one inside, not even root, can make the
/// read-only ones writable.
class BwrapCommand {
public:
  /// `build`: the build folder, /opt/unit inside. `state`: the unit's state folder.
  BwrapCommand(const std::filesystem::path& build, const std::filesystem::path& state);
  ~BwrapCommand();
  BwrapCommand(const BwrapCommand&) = delete;
  BwrapCommand& operator=(const BwrapCommand&) = delete;

  /// The command line that runs `command` inside with exactly that environment. Valid once per object: the files of
  /// /etc are passed as descriptors, which a run reads to the end.
  std::vector<std::string> line(const std::vector<std::pair<std::string, std::string>>& environment,
                                const std::vector<std::string>& command) const;

private:
  /// A file of the private root with its own text.
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
