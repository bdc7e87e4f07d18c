#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "control/client/errors.h"

namespace control::client {

/// The header of an answer.
struct Head {
  int status = 0;
  std::optional<std::size_t> length;
  bool chunked = false;
  bool keep_alive = true;
};

/// A connection to a control service: writes requests and reads answers. Everything throws ConnectionError. One thread
/// at a time.
class HttpConnection {
public:
  using Wait = std::function<void(int descriptor)>;
  using Deadline = std::optional<std::chrono::steady_clock::time_point>;

  explicit HttpConnection(const std::filesystem::path& socket);
  ~HttpConnection();
  HttpConnection(const HttpConnection&) = delete;
  HttpConnection& operator=(const HttpConnection&) = delete;

  int descriptor() const { return descriptor_; }
  void wait_with(Wait wait) { wait_ = std::move(wait); }

  /// Sends a request. `fields`: further header lines. Returns false if the service closed the connection before.
  bool request(const std::string& method, const std::string& target, const std::string& body,
               const std::string& fields = {});
  Head head();
  /// The whole body of that answer.
  std::string body(const Head& head);
  /// The next piece of a chunked body; empty at its end, none if the deadline passes first.
  std::optional<std::string> chunk(Deadline deadline);

  /// Writes bytes; waits until they are taken.
  void write(std::string_view bytes);
  /// Reads what has arrived, at least one byte, and returns everything unread. Returns none if the deadline passes
  /// first; `ended` is set at the end of the connection.
  bool read_more(Deadline deadline, bool& ended);
  /// Bytes read and not consumed yet.
  std::string& received() { return received_; }

private:
  std::string line();
  void need(std::size_t size);

  int descriptor_;
  Wait wait_;
  std::string received_;
};

/// Throws the ApiError in the body of an answer with an error status.
[[noreturn]] void throw_api_error(int status, const std::string& body);

}  // namespace control::client
