#pragma once

#include <functional>
#include <string>

namespace host {

/// Answers lines on a UNIX socket, each connection on a thread of its own.
class Server {
public:
  using Answer = std::function<std::string(const std::string& line)>;

  /// Listens on `path`, in place of what is there. `answer` is called from many threads, as long as the process lives.
  /// Throws std::system_error.
  Server(const std::string& path, Answer answer);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Accepts connections until leave() has been called. Calls that are still under way then are given up.
  void run();
  /// Any thread, and signal handlers.
  void leave() const noexcept;

private:
  int listening_ = -1;
  int leave_ = -1;  ///< readable once run() is to return
  Answer answer_;
};

}  // namespace host
