#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/answer.h"

namespace host {

/// Answers lines on a UNIX socket, one thread per connection.
class Server {
public:
  using Answers = std::function<Answer(const std::string& line)>;

  /// Listens on `path`, replacing any existing file. `answers` is called from many threads until the process ends.
  /// Throws std::system_error.
  Server(const std::string& path, Answers answers);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Accepts connections until leave() is called or an answer that requests it has been sent. Calls still in progress
  /// are abandoned.
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
