#include "control/service/log_sender.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "control/service/http_text.h"

namespace control::service {
namespace {

constexpr std::size_t PIECE = 64 << 10;

}  // namespace

LogSender::LogSender(Socket socket, Clients& clients, const Limits& limits, const LogStore& logs, std::string name,
                     std::uint64_t from, bool follow)
    : RawConnection(std::move(socket), clients, limits),
      logs_(logs),
      name_(std::move(name)),
      next_(from),
      end_(follow ? std::numeric_limits<std::uint64_t>::max() : std::max(from, logs.size(name_))),
      follow_(follow) {}

void LogSender::begin() {
  Answer answer;
  answer.type = "text/plain; charset=utf-8";
  send(header_of(answer, follow_ ? CHUNKED : static_cast<long>(end_ - next_), false));
}

void LogSender::continue_sending() {
  if (!open() || waiting() != 0) {
    return;
  }
  const std::string piece = logs_.read(name_, next_, std::min<std::uint64_t>(PIECE, end_ - next_));
  next_ += piece.size();
  if (!piece.empty()) {
    char size[20];
    std::snprintf(size, sizeof size, "%zx\r\n", piece.size());
    send(follow_ ? size + piece + "\r\n" : piece);
  } else if (!follow_) {
    finish();
  } else if (end_ != std::numeric_limits<std::uint64_t>::max()) {
    send("0\r\n\r\n");
    finish();
  }
}

void LogSender::end() {
  end_ = std::min(end_, std::max(next_, logs_.size(name_)));
  continue_sending();
}

}  // namespace control::service
