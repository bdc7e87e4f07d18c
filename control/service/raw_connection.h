#pragma once

#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/steady_timer.hpp>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "control/service/clients.h"
#include "control/service/limits.h"

namespace control::service {

using Socket = boost::asio::generic::stream_protocol::socket;

/// A connection that has left HTTP's turn of request and answer: bytes go out and come in at any time. A client that
/// takes nothing may stay; users bound what waits for it. The service's thread.
class RawConnection : public Client {
public:
  RawConnection(Socket socket, Clients& clients, const Limits& limits);

  /// Starts to read. `received`: bytes that have arrived already.
  void start(std::string received);
  void end() override { finish(); }
  void close() override { cut_off(); }

protected:
  /// Queues bytes.
  void send(std::string bytes);
  /// Bytes queued and not taken yet.
  std::size_t waiting() const { return waiting_; }
  /// Closes the connection once everything queued is sent.
  void finish();
  /// Closes the connection now.
  void cut_off();
  bool open() const { return open_ && !finishing_; }
  /// Reading stops after the present block, until it is resumed.
  void pause() { paused_ = true; }
  void resume();
  /// Whether the client has closed its end; for while reading is paused.
  bool client_left();
  const Limits& limits() const { return limits_; }
  boost::asio::steady_timer::executor_type executor() { return socket_.get_executor(); }

  virtual void on_bytes(std::string_view) {}
  /// That many bytes were taken by the client's socket.
  virtual void on_sent(std::size_t) {}
  /// The connection is closed. Called once.
  virtual void on_closed() {}

private:
  void read();
  void write();
  void shut_down();

  std::shared_ptr<Client> self_;  ///< while the connection is open
  Socket socket_;
  const Limits& limits_;
  boost::asio::steady_timer linger_timer_;
  std::vector<char> block_ = std::vector<char>(16 << 10);
  std::deque<std::string> outgoing_;
  std::size_t waiting_ = 0;
  bool open_ = true;
  bool finishing_ = false;
  bool paused_ = false;
  bool reading_ = false;
};

}  // namespace control::service
