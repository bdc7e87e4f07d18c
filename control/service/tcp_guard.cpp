#include "control/service/tcp_guard.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <stdexcept>

namespace control::service {
namespace {

/// Compares in a time that does not depend on the contents.
bool same(const std::string& one, const std::string& other) {
  unsigned difference = one.size() == other.size() ? 0 : 1;
  for (std::size_t i = 0; i < one.size() && i < other.size(); ++i) {
    difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
  }
  return difference == 0;
}

}  // namespace

TcpGuard::TcpGuard(std::uint16_t port, std::string token, RequestHandler& behind)
    : port_(std::to_string(port)), token_(std::move(token)), behind_(behind) {}

void TcpGuard::handle(const std::shared_ptr<Connection>& connection, const Request& request) {
  if (request.host != "127.0.0.1:" + port_ && request.host != "localhost:" + port_) {
    connection->answer(error_answer({403, "must name this socket", "Host", "127.0.0.1:" + port_}));
  } else if (request.method != "GET" && !same(request.authorization, "Bearer " + token_)) {
    Answer answer = error_answer({401, "must hold the token", "Authorization", "Bearer TOKEN"});
    answer.fields.emplace_back("WWW-Authenticate", "Bearer");
    connection->answer(answer);
  } else {
    behind_.handle(connection, request);
  }
}

std::uint16_t checked_port(int tcp_socket, const std::string& token) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (::getsockname(tcp_socket, reinterpret_cast<sockaddr*>(&address), &size) != 0 || address.sin_family != AF_INET ||
      ntohl(address.sin_addr.s_addr) >> 24 != IN_LOOPBACKNET) {
    throw std::invalid_argument("the TCP socket is not bound to a loopback address");
  }
  if (token.empty()) {
    throw std::invalid_argument("a TCP socket needs a token");
  }
  return ntohs(address.sin_port);
}

}  // namespace control::service
