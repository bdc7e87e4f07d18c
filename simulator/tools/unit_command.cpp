// unit-command: stands before a program of the unit that the shell runs, so that faults can hit it.
//   PROGRAM ARGUMENT…      under a program's name, as a link in a folder that is first in PATH: crosses the point
//                          shell.PROGRAM, then becomes the program of that name in the folders after it
//   unit-command PROGRAM   crosses the point shell.PROGRAM and exits with 0, for scripts
// A fault fails the command with its exit status, delays it or keeps it waiting until it is killed.

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "simulator/model/json_text.h"
#include "simulator/model/unit_model.h"

namespace {

namespace fs = std::filesystem;
using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::UnitModel;

constexpr int FAILED = 1;
constexpr int MISUSED = 2;
constexpr int NOT_STARTED = 126;
constexpr int NOT_FOUND = 127;
constexpr const char* OWN_NAME = "unit-command";

std::string json_array(const std::vector<std::string>& texts) {
  std::string array;
  for (const std::string& text : texts) {
    array += (array.empty() ? "" : ",") + simulator::model::json_text(text);
  }
  return "[" + array + "]";
}

/// The fault that the command meets; none outside a unit and if the record cannot be written.
Fault cross(Point point, const std::vector<std::string>& arguments) {
  try {
    UnitModel& unit = UnitModel::of_this_unit();
    return unit.watched() ? unit.cross(point, "{\"arguments\":" + json_array(arguments) + "}") : Fault{};
  } catch (const std::exception&) {
    return {};
  }
}

/// Crosses the program's point. Returns the exit status if a fault fails the command; without a fault, none.
std::optional<int> meet_fault(const std::string& program, const std::vector<std::string>& arguments) {
  const std::optional<Point> point = simulator::model::point_named("shell." + program);
  const Fault fault = point ? cross(*point, arguments) : Fault{};
  while (fault.kind == FaultKind::NO_REPLY) {
    ::pause();
  }
  if (fault.kind != FaultKind::FAIL) {
    return std::nullopt;
  }
  const int status = fault.value == 0 ? FAILED : fault.value;
  std::fprintf(stderr, "%s: failed with status %d by a fault\n", program.c_str(), status);
  return status;
}

/// The folders of PATH in which the name does not lead to this program.
std::vector<std::string> further_folders(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::string left = path == nullptr ? "/usr/sbin:/usr/bin:/sbin:/bin" : path;
  std::vector<std::string> folders;
  while (!left.empty()) {
    const std::string folder = left.substr(0, left.find(':'));
    left.erase(0, folder.size() + 1);
    std::error_code error;
    if (!folder.empty() && !fs::equivalent(fs::path(folder) / program, "/proc/self/exe", error)) {
      folders.push_back(folder);
    }
  }
  return folders;
}

/// Becomes the program, which no longer finds the links: what it runs itself meets no fault. Returns the exit status if
/// that fails.
int become(const std::string& program, char** argv) {
  const std::vector<std::string> folders = further_folders(program);
  std::string path;
  for (const std::string& folder : folders) {
    path += (path.empty() ? "" : ":") + folder;
  }
  ::setenv("PATH", path.c_str(), 1);
  int error = ENOENT;
  for (const std::string& folder : folders) {
    ::execv((fs::path(folder) / program).c_str(), argv);
    error = errno == ENOENT || errno == ENOTDIR ? error : errno;
  }
  std::fprintf(stderr, "%s: %s\n", program.c_str(), std::strerror(error));
  return error == ENOENT ? NOT_FOUND : NOT_STARTED;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string program = fs::path(argc > 0 ? argv[0] : "").filename();
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (program != OWN_NAME) {
    const std::optional<int> status = meet_fault(program, arguments);
    return status ? *status : become(program, argv);
  }
  if (arguments.size() != 1) {
    std::fprintf(stderr, "usage: unit-command PROGRAM\n");
    return MISUSED;
  }
  return meet_fault(arguments[0], {}).value_or(0);
}
