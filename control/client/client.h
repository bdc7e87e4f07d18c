#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "control/client/errors.h"
#include "control/client/units.h"

namespace control::client {

class HttpConnection;

/// Called before blocking until the descriptor is readable. May throw: the request is then given up.
using Wait = std::function<void(int descriptor)>;

/// A client of one unit's control service. It keeps one connection and makes a new one if that was closed. One thread
/// at a time.
class Client {
public:
  /// `socket`: path of the service's socket. Connects on the first request.
  explicit Client(const std::filesystem::path& socket);
  ~Client();
  Client(Client&&) noexcept;
  Client& operator=(Client&&) noexcept;

  void wait_with(Wait wait);

  /// The answer to a request. `target`: path and query, percent-encoded. All throw ApiError if the service rejects the
  /// request and ConnectionError if there is no answer.
  nlohmann::ordered_json get(const std::string& target);
  nlohmann::ordered_json send(const std::string& method, const std::string& target, const nlohmann::json& body);
  /// The answer as text.
  std::string text(const std::string& target);

private:
  std::string exchange(const std::string& method, const std::string& target, const std::string& body);

  std::filesystem::path socket_;
  Wait wait_;
  std::unique_ptr<HttpConnection> connection_;
};

/// A segment of a path or part of a query, percent-encoded.
std::string escaped(const std::string& path_or_query_part);

struct Event {
  std::string type;
  nlohmann::json data;
};

/// Server-sent events of a unit. One thread at a time.
class EventStream {
public:
  /// Throws ApiError and ConnectionError.
  EventStream(const std::filesystem::path& socket, const std::string& target);
  ~EventStream();

  /// The next event; none if the limit passes first. Throws ConnectionError once the stream has ended.
  std::optional<Event> next(std::chrono::milliseconds limit);
  /// Readable when there may be an event.
  int descriptor() const;

private:
  std::unique_ptr<HttpConnection> connection_;
  std::string received_;  ///< text of the stream that is not a whole event yet
};

/// A log that is followed: its bytes as they arrive. One thread at a time.
class LogStream {
public:
  LogStream(const std::filesystem::path& socket, const std::string& target);
  ~LogStream();

  /// More bytes; empty once the log has ended, none if the limit passes first. Throws ConnectionError.
  std::optional<std::string> next(std::chrono::milliseconds limit);
  int descriptor() const;

private:
  std::unique_ptr<HttpConnection> connection_;
};

/// A command that runs in a unit. One thread at a time.
class Command {
public:
  struct Message {
    enum Kind { OUT, ERR, CONTROL } kind;
    std::string bytes;       ///< of OUT and ERR
    nlohmann::json control;  ///< of CONTROL: {"started":{…}} or {"exit":{…}}
  };

  /// Starts the command. `request`: body of POST /v1/exec. Throws ApiError and ConnectionError.
  Command(const std::filesystem::path& socket, const nlohmann::json& request);
  ~Command();
  Command(Command&&) noexcept;

  /// Readable when there may be a message.
  int descriptor() const;
  /// The next message; none if the limit passes first. Throws ConnectionError if the connection ends without an exit.
  std::optional<Message> next(std::chrono::milliseconds limit);

  /// All throw ConnectionError. input() blocks while the command does not take the bytes; messages that arrive then are
  /// kept for next().
  void input(std::string_view bytes);
  void end_input();
  void resize(int rows, int columns);
  void signal(int number);

private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace control::client
