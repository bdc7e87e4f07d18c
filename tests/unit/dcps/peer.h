#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/doubles/child_process.h"

namespace dcps_test {

/// The folder of this test program and of its helpers.
std::string test_folder();

/// The program dcps_peer in a separate process.
class Peer {
public:
  explicit Peer(const std::vector<std::string>& arguments);
  /// Ends it if it is still running.
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /// Sends it a command, waits for its answer and returns it.
  std::string ask(const std::string& command);
  /// Sends it its last command, waits until it exits and returns the exit status, or the negative number of the signal
  /// that killed it.
  int finish(const std::string& command);
  /// The next line that it writes; empty if it has exited, or has written none for twenty seconds.
  std::string line();

private:
  bool tell(const std::string& command);

  std::unique_ptr<doubles::ChildProcess> process_;
  int to_ = -1;
  int from_ = -1;
};

}  // namespace dcps_test
