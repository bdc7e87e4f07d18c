#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace dcps_test {

/// The folder of this test program, where its helpers lie too.
std::string test_folder();

/// The program dcps_peer in a process of its own.
class Peer {
public:
  explicit Peer(const std::vector<std::string>& arguments);
  /// Ends it, if it still runs.
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /// Gives it a command and waits until it has answered: its answer.
  std::string ask(const std::string& command);
  /// Gives it its last command and waits for its end, if it has not ended already: the status as waitpid gives it.
  int finish(const std::string& command);
  /// The next line that it writes; empty: it has ended, or written none for twenty seconds.
  std::string line();

private:
  bool tell(const std::string& command);

  pid_t process_ = -1;
  int to_ = -1;
  int from_ = -1;
};

}  // namespace dcps_test
