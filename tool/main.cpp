// The command line of simulated units.

#include <fcntl.h>
#include <signal.h>

#include "tool/program.h"

namespace {

/// Standard streams that the caller has closed would be taken by the first files that this program opens.
void open_standard_streams() {
  for (int stream = 0; stream <= 2; ++stream) {
    if (fcntl(stream, F_GETFD) == -1) {
      // The wrong way round, so that writing and reading fail as on a closed stream.
      open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  open_standard_streams();
  signal(SIGPIPE, SIG_IGN);
  return tool::run_program({argv + 1, argv + argc});
}
