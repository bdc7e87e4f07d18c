// Runs one simulated unit: supervises its private root and serves its control interface.
//
// Started by "unit run": the launch document on standard input, the report on descriptor 3; the unit ends with the end
// of file of descriptor 4, if it is open.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>

#include "control/supervisor/supervisor.h"
#include "simulator/sysroot/user_namespaces.h"

namespace {

using namespace control::supervisor;

constexpr int REPORT = 3;
constexpr int LIFELINE = 4;
constexpr std::size_t LARGEST_DOCUMENT = 4u << 20;

/// Moves an inherited descriptor out of the way, to one that no child inherits; -1 if it is not open.
int taken(int descriptor) {
  constexpr int FIRST_OF_OURS = 10;
  const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, FIRST_OF_OURS);
  if (moved != -1) {
    close(descriptor);
  }
  return moved;
}

std::string standard_input() {
  std::string text;
  char block[65536];
  for (ssize_t size = 0; (size = read(STDIN_FILENO, block, sizeof block)) != 0;) {
    if (size < 0 && errno == EINTR) {
      continue;
    }
    if (size < 0 || text.size() > LARGEST_DOCUMENT) {
      throw LaunchError(STATUS_BAD_USAGE, "launch document: cannot be read");
    }
    text.append(block, static_cast<std::size_t>(size));
  }
  return text;
}

/// Lets go of the starter's standard streams, which the unit may outlive.
void detach_streams() {
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    dup2(nothing, stream);
  }
  close(nothing);
}

void supervise(Report& report, int lifeline) {
  const Launch launch = read_launch(standard_input());
  detach_streams();
  if (const auto missing = simulator::sysroot::missing_for_private_root()) {
    throw LaunchError(STATUS_NO_UNIT_ROOT, *missing);
  }
  Supervisor(launch, report, lifeline).run();
}

}  // namespace

int main(int argc, char**) {
  // The unit gets no descriptor that it was not meant to have.
  close_range(LIFELINE + 1, ~0U, 0);
  const int report_end = taken(REPORT);
  const int lifeline = taken(LIFELINE);
  if (argc != 1 || report_end == -1) {
    std::fputs("usage: unit-control < LAUNCH-DOCUMENT 3> REPORT\nRuns one simulated unit; started by \"unit run\".\n",
               stderr);
    return STATUS_BAD_USAGE;
  }
  // The unit's programs may run as another user and must be able to read its files.
  umask(022);
  Report report(report_end);
  try {
    supervise(report, lifeline);
    return 0;
  } catch (const LaunchError& error) {
    report.error(error.what(), error.status);
    return error.status;
  } catch (const std::exception& error) {
    report.error(error.what(), STATUS_FAILED);
    return STATUS_FAILED;
  }
}
