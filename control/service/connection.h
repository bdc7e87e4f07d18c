#pragma once

#include <memory>
#include <string>

#include "control/service/http_text.h"
#include "control/service/raw_connection.h"

namespace control::service {

class Connection;

/// Serves requests.
class RequestHandler {
public:
  virtual ~RequestHandler() = default;
  /// Calls answer() or take_over() of the connection, now or later; later only while the connection is open.
  virtual void handle(const std::shared_ptr<Connection>& connection, const Request& request) = 0;
  /// Told of the status of each answer.
  virtual void on_answer(int status) = 0;
};

/// A connection on which requests and answers take turns. It watches for the client's end while a request is served.
/// The service's thread.
class Connection : public Client {
public:
  using Client::Client;
  virtual void start() = 0;
  /// Answers the request; then the next one is read.
  virtual void answer(const Answer& answer) = 0;
  /// Whether the client is still there.
  virtual bool open() const = 0;

  struct Taken {
    Socket socket;
    std::string received;  ///< bytes behind the request
  };
  /// Hands the socket over, instead of an answer.
  virtual Taken take_over() = 0;
};

/// A connection on that socket.
std::shared_ptr<Connection> make_connection(Socket socket, Clients& clients, const Limits& limits,
                                            RequestHandler& handler);

}  // namespace control::service
