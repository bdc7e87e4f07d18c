#include "control/service/raw_connection.h"

#include <poll.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

namespace control::service {
namespace {

namespace asio = boost::asio;
using Failure = boost::system::error_code;

constexpr std::chrono::seconds LINGERING{2};  // for a client to see the end before unread bytes reset the connection

}  // namespace

RawConnection::RawConnection(Socket socket, Clients& clients, const Limits& limits)
    : Client(clients), socket_(std::move(socket)), limits_(limits), linger_timer_(socket_.get_executor()) {}

void RawConnection::start(std::string received) {
  self_ = shared_from_this();
  if (!received.empty()) {
    on_bytes(received);
  }
  read();
}

void RawConnection::read() {
  if (!open_ || reading_ || (paused_ && !finishing_)) {
    return;
  }
  reading_ = true;
  socket_.async_read_some(asio::buffer(block_), [this, self = shared_from_this()](Failure failure, std::size_t size) {
    reading_ = false;
    if (!open_) {
      return;
    }
    if (failure) {
      cut_off();
      return;
    }
    if (!finishing_) {
      on_bytes({block_.data(), size});
    }
    read();
  });
}

void RawConnection::resume() {
  paused_ = false;
  read();
}

bool RawConnection::client_left() {
  pollfd state{socket_.native_handle(), POLLRDHUP, 0};
  return ::poll(&state, 1, 0) == 1;
}

void RawConnection::send(std::string bytes) {
  if (!open() || bytes.empty()) {
    return;
  }
  waiting_ += bytes.size();
  outgoing_.push_back(std::move(bytes));
  if (outgoing_.size() == 1) {
    write();
  }
}

void RawConnection::write() {
  asio::async_write(socket_, asio::buffer(outgoing_.front()),
                    [this, self = shared_from_this()](Failure failure, std::size_t size) {
                      if (!open_) {
                        return;
                      }
                      if (failure) {
                        cut_off();
                        return;
                      }
                      waiting_ -= size;
                      outgoing_.pop_front();
                      if (!outgoing_.empty()) {
                        write();
                      } else if (finishing_) {
                        shut_down();
                      }
                      on_sent(size);
                    });
}

void RawConnection::finish() {
  if (!open()) {
    return;
  }
  finishing_ = true;
  if (outgoing_.empty()) {
    shut_down();
  }
  read();
}

void RawConnection::shut_down() {
  Failure ignored;
  socket_.shutdown(Socket::shutdown_send, ignored);
  linger_timer_.expires_after(LINGERING);
  linger_timer_.async_wait([this, self = shared_from_this()](Failure failure) {
    if (!failure) {
      cut_off();
    }
  });
}

void RawConnection::cut_off() {
  if (!open_) {
    return;
  }
  open_ = false;
  leave();
  linger_timer_.cancel();
  Failure ignored;
  socket_.close(ignored);
  outgoing_.clear();
  waiting_ = 0;
  on_closed();
  // Not before the caller is done with this object.
  boost::asio::post(socket_.get_executor(), [self = std::move(self_)] {});
}

}  // namespace control::service
