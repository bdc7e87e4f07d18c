#include "control/client/http_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <nlohmann/json.hpp>

namespace control::client {
namespace {

constexpr std::size_t LONGEST_LINE = 64 << 10;
constexpr std::size_t LARGEST_BODY = 128 << 20;

int connect_to(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = path.string();
  if (name.size() >= sizeof address.sun_path) {
    throw ConnectionError(name + ": path is too long for a socket");
  }
  std::memcpy(address.sun_path, name.data(), name.size());
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor == -1 || ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const int failure = errno;
    if (descriptor != -1) {
      ::close(descriptor);
    }
    throw ConnectionError(name + ": cannot connect to the unit's control service: " + std::strerror(failure));
  }
  return descriptor;
}

[[noreturn]] void throw_closed() {
  throw ConnectionError("the unit's control service closed the connection");
}

[[noreturn]] void throw_senseless() {
  throw ConnectionError("the unit's control service gave an answer that is not HTTP");
}

/// Milliseconds that poll() may wait.
int patience(HttpConnection::Deadline deadline) {
  if (!deadline) {
    return -1;
  }
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000));
}

std::size_t number_in(const std::string& text, int base) {
  std::size_t number = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (failure != std::errc() || end != text.data() + text.size() || number > LARGEST_BODY) {
    throw_senseless();
  }
  return number;
}

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

}  // namespace

HttpConnection::HttpConnection(const std::filesystem::path& socket) : descriptor_(connect_to(socket)) {}

HttpConnection::~HttpConnection() {
  ::close(descriptor_);
}

void HttpConnection::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN) {
      // The service may wait until its own bytes are taken.
      pollfd ready{descriptor_, POLLIN | POLLOUT, 0};
      ::poll(&ready, 1, -1);
      bool ended = false;
      if ((ready.revents & POLLIN) != 0) {
        read_more(std::chrono::steady_clock::now(), ended);
      }
      if (ended) {
        throw_closed();
      }
    } else if (errno != EINTR) {
      throw_closed();
    }
  }
}

bool HttpConnection::read_more(Deadline deadline, bool& ended) {
  char block[64 << 10];
  for (;;) {
    if (wait_ && !deadline) {
      wait_(descriptor_);
    } else {
      pollfd ready{descriptor_, POLLIN, 0};
      const int found = ::poll(&ready, 1, patience(deadline));
      if (found == 0) {
        return false;
      }
    }
    const ssize_t size = ::recv(descriptor_, block, sizeof block, MSG_DONTWAIT);
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) {
      continue;
    }
    ended = size <= 0;
    received_.append(block, ended ? 0 : static_cast<std::size_t>(size));
    return true;
  }
}

bool HttpConnection::request(const std::string& method, const std::string& target, const std::string& body,
                             const std::string& fields) {
  char byte = 0;
  if (::recv(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0 || (errno != EAGAIN && errno != EINTR)) {
    return false;
  }
  std::string text = method + ' ' + target + " HTTP/1.1\r\nHost: unit\r\n" + fields;
  if (!body.empty()) {
    text += "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
  }
  text += "\r\n" + body;
  try {
    write(text);
  } catch (const ConnectionError&) {
    // The service may have answered before it closed the connection.
  }
  return true;
}

std::string HttpConnection::line() {
  for (;;) {
    const std::size_t end = received_.find("\r\n");
    if (end != std::string::npos) {
      const std::string line = received_.substr(0, end);
      received_.erase(0, end + 2);
      return line;
    }
    bool ended = received_.size() > LONGEST_LINE;
    if (!ended) {
      read_more({}, ended);
    }
    if (ended) {
      throw_closed();
    }
  }
}

void HttpConnection::need(std::size_t size) {
  while (received_.size() < size) {
    bool ended = false;
    read_more({}, ended);
    if (ended) {
      throw_closed();
    }
  }
}

Head HttpConnection::head() {
  Head head;
  const std::string status = line();
  if (status.size() < 12 || status.compare(0, 9, "HTTP/1.1 ") != 0) {
    throw_senseless();
  }
  head.status = static_cast<int>(number_in(status.substr(9, 3), 10));
  for (std::string field = line(); !field.empty(); field = line()) {
    const std::size_t colon = field.find(':');
    if (colon == std::string::npos) {
      throw_senseless();
    }
    const std::string name = lower(field.substr(0, colon));
    const std::size_t begin = field.find_first_not_of(' ', colon + 1);
    const std::string value = begin == std::string::npos ? "" : field.substr(begin);
    if (name == "content-length") {
      head.length = number_in(value, 10);
    } else if (name == "transfer-encoding") {
      head.chunked = lower(value) == "chunked";
    } else if (name == "connection") {
      head.keep_alive = lower(value) != "close";
    }
  }
  return head;
}

std::string HttpConnection::body(const Head& head) {
  if (head.chunked) {
    std::string body;
    for (auto piece = chunk({}); !piece->empty(); piece = chunk({})) {
      body += *piece;
    }
    return body;
  }
  const std::size_t size = head.length.value_or(0);
  need(size);
  const std::string body = received_.substr(0, size);
  received_.erase(0, size);
  return body;
}

std::optional<std::string> HttpConnection::chunk(Deadline deadline) {
  for (;;) {
    const std::size_t end = received_.find("\r\n");
    if (end != std::string::npos) {
      const std::size_t size = number_in(received_.substr(0, end), 16);
      if (received_.size() >= end + 2 + size + 2) {
        const std::string piece = received_.substr(end + 2, size);
        received_.erase(0, end + 2 + size + 2);
        return piece;
      }
    } else if (received_.size() > LONGEST_LINE) {
      throw_senseless();
    }
    bool ended = false;
    if (!read_more(deadline, ended)) {
      return std::nullopt;
    }
    if (ended) {
      throw_closed();
    }
  }
}

void throw_api_error(int status, const std::string& body) {
  using nlohmann::json;
  const json document = json::parse(body, nullptr, false);
  const json error = document.is_object() ? document.value("error", json()) : json();
  if (!error.is_object() || !error.value("what", json()).is_string()) {
    throw_senseless();
  }
  const auto text = [&error](const char* name) {
    const json value = error.value(name, json());
    return value.is_string() ? value.get<std::string>() : std::string();
  };
  throw ApiError(status, text("what"), text("where"), text("expected"));
}

}  // namespace control::client
