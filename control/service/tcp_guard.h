#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "control/service/connection.h"

namespace control::service {

/// Admits requests on loopback TCP: the Host header names that socket, so that no page of another site gets through,
/// and all but GET carry the token.
class TcpGuard final : public RequestHandler {
public:
  TcpGuard(std::uint16_t port, std::string token, RequestHandler& behind);

  void handle(const std::shared_ptr<Connection>& connection, const Request& request) override;
  void on_answer(int status) override { behind_.on_answer(status); }

private:
  std::string port_;
  std::string token_;
  RequestHandler& behind_;
};

/// The port of a TCP socket bound to a loopback address with that token. Throws std::invalid_argument if the address is
/// another one or the token is empty.
std::uint16_t checked_port(int tcp_socket, const std::string& token);

}  // namespace control::service
