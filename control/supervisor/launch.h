#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace control::supervisor {

/// Exit statuses of commands that start a unit.
enum Status {
  STATUS_FAILED = 1,       ///< run-time failure
  STATUS_BAD_USAGE = 2,    ///< bad options or a bad unit file
  STATUS_NO_UNIT_ROOT = 3  ///< this machine cannot create a private root
};

/// A unit that cannot be started; what() is the message for people.
class LaunchError : public std::runtime_error {
public:
  LaunchError(int exit_status, const std::string& what) : std::runtime_error(what), status(exit_status) {}

  int status;
};

/// Limits of one unit. The defaults are far above what the library needs.
struct UnitLimits {
  int memory_mib = 1024;  ///< of all processes together, where the machine allows such a limit
  int processes = 512;    ///< processes and threads
  int disk_mib = 256;     ///< each of /tmp, /run, /root, /sys and /dev/shm
  int open_files = 1024;  ///< of one process
};

/// The unit to start, as the launch document describes it.
struct Launch {
  std::string name;            ///< empty: the first free of unit-1, unit-2, …
  std::string unit_file_name;  ///< for error messages
  std::string unit_file;       ///< its text
  std::string state;           ///< folder in which logs are kept; empty: none
  std::string library;         ///< path outside or inside; empty: the one in the build folder
  std::string host;            ///< program; empty: no host
  bool host_serves = true;
  std::vector<std::string> host_wrap;  ///< command under which the host runs: "valgrind"; empty: none
  std::vector<std::string> host_arguments;
  bool services = true;
  std::vector<std::string> without;
  bool network = true;
  bool dhcp_server = false;
  std::vector<std::filesystem::path> binds;
  std::vector<std::pair<std::string, std::string>> environment;
  bool record = false;
  UnitLimits limits;
};

/// Reads a launch document; the unit file is read if the document holds only its path, and checked. Throws LaunchError.
Launch read_launch(std::string_view text);

/// The build folder of this program, which contains the unit's programs.
std::filesystem::path build_folder();
/// The path inside the unit of a file below the build folder; other paths are returned unchanged.
std::string seen_inside(const std::string& path);

nlohmann::ordered_json as_json(const UnitLimits& limits);

}  // namespace control::supervisor
