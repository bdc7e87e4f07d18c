#include "control/service/connection.h"

#include <sys/socket.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <optional>

namespace control::service {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using Failure = boost::system::error_code;

/// Bytes that the parser may hold besides the body that it has passed on.
constexpr std::size_t BUFFER = 4 * LARGEST_HEADER;
constexpr std::chrono::seconds LINGERS_FOR{
    2};  // for a client to read the answer before unread bytes reset the connection

std::string text_of(boost::beast::string_view text) {
  return {text.data(), text.size()};
}

RequestError error_of(Failure failure) {
  if (failure == http::error::header_limit || failure == http::error::buffer_overflow) {
    return {431, "header is larger than " + std::to_string(LARGEST_HEADER) + " bytes", "header"};
  }
  if (failure == http::error::body_limit) {
    return {413, "body is larger than " + std::to_string(LARGEST_BODY) + " bytes", "body"};
  }
  return {400, "not a valid HTTP request: " + failure.message()};
}

class HttpConnection final : public Connection {
public:
  HttpConnection(Socket socket, Clients& clients, const Limits& limits, RequestHandler& handler)
      : Connection(clients),
        socket_(std::move(socket)),
        timer_(socket_.get_executor()),
        limits_(limits),
        handler_(handler) {}

  void start() override { await_request(); }
  void answer(const Answer& answer) override;
  bool open() const override { return state_ != State::CLOSED; }
  Taken take_over() override;
  void end() override;
  void close() override;

private:
  enum class State { IDLE, ARRIVING, SERVED, ANSWERING, LINGERING, CLOSED };

  std::shared_ptr<HttpConnection> self() { return std::static_pointer_cast<HttpConnection>(shared_from_this()); }
  void limit(std::chrono::milliseconds time);
  void time_out();
  void await_request();
  void read_header();
  void after_header(Failure failure);
  void read_body();
  void serve();
  void watch();
  void give_up(Failure failure);
  void refuse(const RequestError& error);
  void after_answer(Failure failure);
  void linger();
  void discard();

  Socket socket_;
  asio::steady_timer timer_;
  const Limits& limits_;
  RequestHandler& handler_;
  boost::beast::flat_buffer buffer_{BUFFER};
  std::optional<http::request_parser<http::string_body>> parser_;
  std::string outgoing_;
  State state_ = State::IDLE;
  bool keep_alive_ = true;
  bool ending_ = false;
  bool late_ = false;    ///< the request did not arrive in time
  unsigned served_ = 0;  ///< number of the request, so that an old watch is recognised
};

void HttpConnection::limit(std::chrono::milliseconds time) {
  timer_.expires_after(time);
  timer_.async_wait([weak = std::weak_ptr<HttpConnection>(self())](Failure failure) {
    const auto connection = weak.lock();
    // A limit that has been replaced may pass all the same.
    if (!failure && connection != nullptr && connection->timer_.expiry() <= asio::steady_timer::clock_type::now()) {
      connection->time_out();
    }
  });
}

void HttpConnection::time_out() {
  if (state_ == State::ARRIVING) {
    late_ = true;
    Failure ignored;
    socket_.cancel(ignored);
  } else if (state_ != State::SERVED) {
    close();
  }
}

void HttpConnection::await_request() {
  if (ending_) {
    close();
    return;
  }
  state_ = State::IDLE;
  limit(limits_.idle);
  if (buffer_.size() != 0) {
    read_header();
    return;
  }
  socket_.async_wait(Socket::wait_read, [self = self()](Failure failure) {
    if (self->state_ != State::IDLE) {
      return;
    }
    failure ? self->close() : self->read_header();
  });
}

void HttpConnection::read_header() {
  state_ = State::ARRIVING;
  late_ = false;
  limit(limits_.arrival);
  parser_.emplace();
  parser_->header_limit(LARGEST_HEADER);
  parser_->body_limit(LARGEST_BODY);
  http::async_read_header(socket_, buffer_, *parser_,
                          [self = self()](Failure failure, std::size_t) { self->after_header(failure); });
}

void HttpConnection::after_header(Failure failure) {
  if (state_ != State::ARRIVING) {
    return;
  }
  if (late_) {
    refuse({408, "request did not arrive in time"});
  } else if (failure) {
    give_up(failure);
  } else if (parser_->get().version() != 11) {
    refuse({400, "must be HTTP/1.1"});
  } else if (boost::beast::iequals(parser_->get()[http::field::expect], "100-continue")) {
    outgoing_ = "HTTP/1.1 100 Continue\r\n\r\n";
    asio::async_write(socket_, asio::buffer(outgoing_), [self = self()](Failure problem, std::size_t) {
      if (self->state_ == State::ARRIVING) {
        problem ? self->close() : self->read_body();
      }
    });
  } else {
    read_body();
  }
}

void HttpConnection::read_body() {
  http::async_read(socket_, buffer_, *parser_, [self = self()](Failure failure, std::size_t) {
    if (self->state_ != State::ARRIVING) {
      return;
    }
    if (self->late_) {
      self->refuse({408, "request did not arrive in time"});
    } else if (failure) {
      self->give_up(failure);
    } else {
      self->serve();
    }
  });
}

/// Answers a request that is not acceptable; closes the connection if it has broken or the client has ended it.
void HttpConnection::give_up(Failure failure) {
  const bool by_client = failure == http::error::end_of_stream || failure == http::error::partial_message;
  if (by_client || failure.category() != http::make_error_code(http::error::body_limit).category()) {
    close();
  } else {
    refuse(error_of(failure));
  }
}

void HttpConnection::serve() {
  state_ = State::SERVED;
  ++served_;
  timer_.cancel();
  keep_alive_ = parser_->keep_alive();
  const bool has_body = parser_->content_length() || parser_->chunked();
  http::request<http::string_body> message = parser_->release();
  Request request;
  request.method = text_of(message.method_string());
  request.target = text_of(message.target());
  request.body = std::move(message.body());
  request.has_body = has_body;
  request.content_type = text_of(message[http::field::content_type]);
  request.host = text_of(message[http::field::host]);
  request.authorization = text_of(message[http::field::authorization]);
  request.upgrade = text_of(message[http::field::upgrade]);
  watch();
  handler_.handle(self(), request);
}

/// Closes the connection if the client closes it while its request is served.
void HttpConnection::watch() {
  if (buffer_.size() != 0) {
    return;
  }
  socket_.async_wait(Socket::wait_read, [self = self(), request = served_](Failure failure) {
    if (failure || self->state_ != State::SERVED || self->served_ != request) {
      return;
    }
    char byte = 0;
    if (::recv(self->socket_.native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) <= 0) {
      self->close();
    }
  });
}

void HttpConnection::answer(const Answer& answer) {
  if (state_ != State::SERVED) {
    return;
  }
  state_ = State::ANSWERING;
  handler_.on_answer(answer.status);
  Failure ignored;
  socket_.cancel(ignored);
  outgoing_ = header_of(answer, static_cast<long>(answer.body.size()), keep_alive_ && !ending_) + answer.body;
  limit(limits_.idle);
  asio::async_write(socket_, asio::buffer(outgoing_),
                    [self = self()](Failure failure, std::size_t) { self->after_answer(failure); });
}

void HttpConnection::refuse(const RequestError& error) {
  state_ = State::SERVED;
  keep_alive_ = false;
  answer(error_answer(error));
}

void HttpConnection::after_answer(Failure failure) {
  if (state_ != State::ANSWERING) {
    return;
  }
  outgoing_ = {};
  if (failure) {
    close();
  } else if (keep_alive_ && !ending_) {
    await_request();
  } else {
    linger();
  }
}

void HttpConnection::linger() {
  state_ = State::LINGERING;
  Failure ignored;
  socket_.shutdown(Socket::shutdown_send, ignored);
  limit(LINGERS_FOR);
  discard();
}

void HttpConnection::discard() {
  buffer_.clear();
  socket_.async_read_some(buffer_.prepare(LARGEST_HEADER), [self = self()](Failure failure, std::size_t) {
    if (self->state_ == State::LINGERING) {
      failure ? self->close() : self->discard();
    }
  });
}

Connection::Taken HttpConnection::take_over() {
  state_ = State::CLOSED;
  leave();
  timer_.cancel();
  Failure ignored;
  socket_.cancel(ignored);
  const auto rest = buffer_.data();
  return {std::move(socket_), std::string(static_cast<const char*>(rest.data()), rest.size())};
}

void HttpConnection::end() {
  ending_ = true;
  if (state_ == State::IDLE) {
    close();
  }
}

void HttpConnection::close() {
  state_ = State::CLOSED;
  leave();
  timer_.cancel();
  Failure ignored;
  socket_.close(ignored);
}

}  // namespace

std::shared_ptr<Connection> make_connection(Socket socket, Clients& clients, const Limits& limits,
                                            RequestHandler& handler) {
  return std::make_shared<HttpConnection>(std::move(socket), clients, limits, handler);
}

}  // namespace control::service
