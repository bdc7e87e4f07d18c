#include "control/client/client.h"

#include <cctype>

#include "control/client/http_connection.h"

namespace control::client {

using nlohmann::json;
using nlohmann::ordered_json;

Client::Client(const std::filesystem::path& socket) : socket_(socket) {}

Client::~Client() = default;
Client::Client(Client&&) noexcept = default;
Client& Client::operator=(Client&&) noexcept = default;

void Client::wait_with(Wait wait) {
  wait_ = std::move(wait);
}

std::string Client::exchange(const std::string& method, const std::string& target, const std::string& body) {
  // Kept only after a complete answer.
  std::unique_ptr<HttpConnection> connection = std::move(connection_);
  if (connection == nullptr || !connection->request(method, target, body)) {
    connection = std::make_unique<HttpConnection>(socket_);
    connection->request(method, target, body);
  }
  connection->wait_with(wait_);
  const Head head = connection->head();
  std::string answer = connection->body(head);
  if (head.keep_alive) {
    connection_ = std::move(connection);
  }
  if (head.status >= 400) {
    throw_api_error(head.status, answer);
  }
  return answer;
}

ordered_json Client::get(const std::string& target) {
  return send("GET", target, nullptr);
}

ordered_json Client::send(const std::string& method, const std::string& target, const json& body) {
  const std::string text = body.is_null() ? "" : body.dump(-1, ' ', false, json::error_handler_t::replace);
  ordered_json answer = ordered_json::parse(exchange(method, target, text), nullptr, false);
  if (!answer.is_object()) {
    throw ConnectionError("the unit's control service gave an answer that is not a JSON object");
  }
  return answer;
}

std::string Client::text(const std::string& target) {
  return exchange("GET", target, {});
}

std::string escaped(const std::string& path_or_query_part) {
  constexpr char DIGITS[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : path_or_query_part) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || c == '-' || c == '.' || c == '_' || c == '~') {
      text += c;
    } else {
      text += {'%', DIGITS[byte >> 4], DIGITS[byte & 15]};
    }
  }
  return text;
}

}  // namespace control::client
