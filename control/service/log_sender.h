#pragma once

#include <cstdint>
#include <string>

#include "control/service/log_store.h"
#include "control/service/raw_connection.h"

namespace control::service {

/// Sends a log to a client, in pieces and as the client takes them; with `follow`, also what is appended later.
class LogSender final : public RawConnection {
public:
  LogSender(Socket socket, Clients& clients, const Limits& limits, const LogStore& logs, std::string name,
            std::uint64_t from, bool follow);

  void begin();
  /// The log has grown.
  void continue_sending();
  /// Sends what is there, then the end.
  void end() override;
  bool listening() const { return open(); }

protected:
  void on_sent(std::size_t) override { continue_sending(); }

private:
  const LogStore& logs_;
  std::string name_;
  std::uint64_t next_;
  std::uint64_t end_;  ///< without `follow`: the log's size at the start
  bool follow_;
};

}  // namespace control::service
