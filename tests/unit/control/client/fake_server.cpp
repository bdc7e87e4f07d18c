#include "tests/unit/control/client/fake_server.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

FakeServer::FakeServer(Serve serve) : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  socket().string().copy(address.sun_path, sizeof address.sun_path - 1);
  if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listener_, 10) != 0) {
    throw std::system_error(errno, std::generic_category());
  }
  thread_ = std::thread([this, serve = std::move(serve)] { run(serve); });
}

FakeServer::FakeServer(const std::string& answer)
    : FakeServer([answer](const std::string&, int socket) { send_text(socket, answer); }) {}

FakeServer::~FakeServer() {
  ::shutdown(listener_, SHUT_RDWR);
  thread_.join();
  ::close(listener_);
}

void FakeServer::run(const Serve& serve) const {
  for (;;) {
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket == -1) {
      return;
    }
    std::string header;
    char byte = 0;
    while (header.find("\r\n\r\n") == std::string::npos && ::recv(socket, &byte, 1, 0) == 1) {
      header += byte;
    }
    serve(header, socket);
    ::close(socket);
  }
}

void send_text(int socket, const std::string& text) {
  for (std::size_t sent = 0; sent < text.size();) {
    const ssize_t part = ::send(socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
    if (part <= 0) {
      return;
    }
    sent += static_cast<std::size_t>(part);
  }
}
