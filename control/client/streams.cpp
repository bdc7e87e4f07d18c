#include "control/client/client.h"
#include "control/client/http_connection.h"

namespace control::client {
namespace {

using nlohmann::json;

HttpConnection::Deadline after(std::chrono::milliseconds limit) {
  return std::chrono::steady_clock::now() + limit;
}

/// A connection on which the chunked answer to a GET has begun.
std::unique_ptr<HttpConnection> opened(const std::filesystem::path& socket, const std::string& target) {
  auto connection = std::make_unique<HttpConnection>(socket);
  connection->request("GET", target, {});
  const Head head = connection->head();
  if (head.status >= 400) {
    throw_api_error(head.status, connection->body(head));
  }
  if (!head.chunked) {
    throw ConnectionError(target + ": not a stream");
  }
  return connection;
}

/// The event in a block of lines; none if it is only a comment.
std::optional<Event> event_in(const std::string& block) {
  Event event;
  std::string data;
  for (std::size_t begin = 0; begin < block.size();) {
    const std::size_t end = std::min(block.find('\n', begin), block.size());
    const std::string line = block.substr(begin, end - begin);
    begin = end + 1;
    if (line.compare(0, 7, "event: ") == 0) {
      event.type = line.substr(7);
    } else if (line.compare(0, 6, "data: ") == 0) {
      data += line.substr(6);
    }
  }
  if (event.type.empty()) {
    return std::nullopt;
  }
  event.data = json::parse(data, nullptr, false);
  if (event.data.is_discarded()) {
    throw ConnectionError("the unit's control service sent an event that is not JSON");
  }
  return event;
}

}  // namespace

EventStream::EventStream(const std::filesystem::path& socket, const std::string& target)
    : connection_(opened(socket, target)) {}

EventStream::~EventStream() = default;

int EventStream::descriptor() const {
  return connection_->descriptor();
}

std::optional<Event> EventStream::next(std::chrono::milliseconds limit) {
  const auto deadline = after(limit);
  for (;;) {
    const std::size_t end = received_.find("\n\n");
    if (end != std::string::npos) {
      const std::string block = received_.substr(0, end);
      received_.erase(0, end + 2);
      if (auto event = event_in(block)) {
        return event;
      }
      continue;
    }
    const auto piece = connection_->chunk(deadline);
    if (!piece) {
      return std::nullopt;
    }
    if (piece->empty()) {
      throw ConnectionError("the unit has ended");
    }
    received_ += *piece;
  }
}

LogStream::LogStream(const std::filesystem::path& socket, const std::string& target)
    : connection_(opened(socket, target)) {}

LogStream::~LogStream() = default;

int LogStream::descriptor() const {
  return connection_->descriptor();
}

std::optional<std::string> LogStream::next(std::chrono::milliseconds limit) {
  return connection_->chunk(after(limit));
}

}  // namespace control::client
