#include "control/service/service.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/post.hpp>
#include <optional>
#include <system_error>

#include "control/service/core.h"
#include "control/service/tcp_guard.h"

namespace control::service {
namespace {

namespace asio = boost::asio;
using Failure = boost::system::error_code;

constexpr std::size_t OWN_FILES = 64;  // open besides the connections
constexpr std::chrono::milliseconds FILES_POLL{100};
constexpr std::chrono::milliseconds FAREWELL_POLL{5};

/// Raises the limit of open files as far as it may, up to what is needed; returns how many connections it leaves.
std::size_t connections_within(std::size_t wanted) {
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = std::max(limit.rlim_cur, std::min<rlim_t>(limit.rlim_max, wanted + OWN_FILES));
  ::setrlimit(RLIMIT_NOFILE, &limit);
  ::getrlimit(RLIMIT_NOFILE, &limit);
  return std::min<std::size_t>(wanted, limit.rlim_cur > OWN_FILES ? limit.rlim_cur - OWN_FILES : 1);
}

/// Answers a connection that is beyond the limit, without waiting for it.
void turn_away(Socket& socket) {
  const Answer answer = error_answer({503, "too many connections"});
  const std::string text = header_of(answer, static_cast<long>(answer.body.size()), false) + answer.body;
  static_cast<void>(::send(socket.native_handle(), text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL));
}

}  // namespace

class Service::Implementation {
public:
  explicit Implementation(ServiceOptions options);
  ~Implementation();

  Ended run();
  void stop() {
    asio::post(context_, [this] { core_.stop(); });
  }

private:
  template <typename Acceptor>
  void accept(Acceptor& acceptor, RequestHandler& handler);
  void admit(Socket socket, RequestHandler& handler);
  void end(const Ended& ended);
  void say_farewell(std::chrono::steady_clock::time_point deadline);

  // Destroyed last: connections, which the context may still hold, leave it.
  Clients clients_;
  asio::io_context context_{1};
  Limits limits_;
  int logs_;
  std::size_t most_connections_;
  Core core_;
  std::optional<TcpGuard> guard_;
  asio::local::stream_protocol::acceptor acceptor_{context_};
  asio::ip::tcp::acceptor tcp_acceptor_{context_};
  asio::steady_timer files_timer_{context_};
  asio::steady_timer end_timer_{context_};
  std::optional<Ended> ended_;
};

Service::Implementation::Implementation(ServiceOptions options)
    : limits_(options.limits),
      logs_(options.logs),
      most_connections_(connections_within(limits_.connections)),
      core_(context_, clients_, options, [this](const Ended& ended) { end(ended); }) {
  acceptor_.assign(asio::local::stream_protocol(), options.listener);
  acceptor_.listen();
  if (options.tcp_listener != -1) {
    guard_.emplace(checked_port(options.tcp_listener, options.token), options.token, core_);
    tcp_acceptor_.assign(asio::ip::tcp::v4(), options.tcp_listener);
    tcp_acceptor_.listen();
  }
}

Service::Implementation::~Implementation() {
  ::close(logs_);
}

Ended Service::Implementation::run() {
  core_.start();
  accept(acceptor_, core_);
  if (guard_) {
    accept(tcp_acceptor_, *guard_);
  }
  context_.run();
  clients_.close_all();
  context_.restart();
  context_.poll();
  return *ended_;
}

template <typename Acceptor>
void Service::Implementation::accept(Acceptor& acceptor, RequestHandler& handler) {
  const auto socket = std::make_shared<Socket>(context_);
  acceptor.async_accept(*socket, [this, &acceptor, &handler, socket](Failure failure) {
    if (failure == asio::error::operation_aborted) {
      return;
    }
    if (!failure) {
      admit(std::move(*socket), handler);
    } else if (failure == asio::error::no_descriptors || failure.value() == ENFILE || failure.value() == ENOMEM) {
      files_timer_.expires_after(FILES_POLL);
      files_timer_.async_wait([this, &acceptor, &handler](Failure) { accept(acceptor, handler); });
      return;
    }
    accept(acceptor, handler);
  });
}

void Service::Implementation::admit(Socket socket, RequestHandler& handler) {
  if (clients_.count() >= most_connections_) {
    core_.note_refused();
    turn_away(socket);
    return;
  }
  // Events are small and must not wait for each other; no effect on a UNIX socket.
  const int on = 1;
  ::setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  make_connection(std::move(socket), clients_, limits_, handler)->start();
}

/// Called when the order to stop was given, and when the agent has ended.
void Service::Implementation::end(const Ended& ended) {
  const bool ordered = ended.why == Ended::STOPPED;
  if (!ended_) {
    ended_ = ended;
  }
  if (ordered) {
    end_timer_.expires_after(limits_.ending);
    end_timer_.async_wait([this](Failure failure) {
      if (!failure) {
        core_.close_agent();
      }
    });
    return;
  }
  Failure ignored;
  acceptor_.close(ignored);
  tcp_acceptor_.close(ignored);
  // After the answers to requests that the agent left open.
  asio::post(context_, [this] {
    clients_.end_all();
    say_farewell(std::chrono::steady_clock::now() + limits_.farewell);
  });
}

void Service::Implementation::say_farewell(std::chrono::steady_clock::time_point deadline) {
  if (clients_.count() == 0 || std::chrono::steady_clock::now() >= deadline) {
    context_.stop();
    return;
  }
  end_timer_.expires_after(FAREWELL_POLL);
  end_timer_.async_wait([this, deadline](Failure) { say_farewell(deadline); });
}

Service::Service(ServiceOptions options) : implementation_(std::make_unique<Implementation>(std::move(options))) {}

Service::~Service() = default;

Ended Service::run() {
  return implementation_->run();
}

void Service::stop() {
  implementation_->stop();
}

}  // namespace control::service
