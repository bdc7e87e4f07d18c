#pragma once

#include <functional>
#include <string>

#include "answer.h"

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
  int listening_ = -1;
  int leave_ = -1;  ///< readable once run() is to return
  Answers answers_;
};

}  // namespace host
