#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/answer.h"

namespace host {

/// Answers lines on a UNIX socket, each connection on a thread of its own.
class Server {
public:
  using Answers = std::function<Answer(const std::string& line)>;

  /// Listens on `path`, in place of what is there. `answers` is called from many threads, as long as the process lives.
  /// Throws std::system_error.
  Server(const std::string& path, Answers answers);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Accepts connections until leave() has been called or an answer that says so is out. Calls that are still under way
  /// then are given up.
  void run();
  /// Any thread, and signal handlers.
  void leave() const noexcept;

private:
  class Leave;

  static void serve(int connection, const Answers& answers, const Leave& leave);

  int listening_ = -1;
  std::shared_ptr<const Leave> leave_;
  Answers answers_;
};

}  // namespace host
