#include "control/service/http_text.h"

#include <nlohmann/json.hpp>

namespace control::service {
namespace {

using nlohmann::json;

const char* phrase_of(int status) {
  switch (status) {
    case 101:
      return "Switching Protocols";
    case 200:
      return "OK";
    case 400:
      return "Bad Request";
    case 401:
      return "Unauthorized";
    case 403:
      return "Forbidden";
    case 404:
      return "Not Found";
    case 405:
      return "Method Not Allowed";
    case 408:
      return "Request Timeout";
    case 409:
      return "Conflict";
    case 411:
      return "Length Required";
    case 413:
      return "Content Too Large";
    case 415:
      return "Unsupported Media Type";
    case 431:
      return "Request Header Fields Too Large";
    case 500:
      return "Internal Server Error";
    case 502:
      return "Bad Gateway";
    case 503:
      return "Service Unavailable";
    case 504:
      return "Gateway Timeout";
    default:
      return "Other";
  }
}

/// At most 400 bytes, cut between characters.
std::string shortened(const std::string& text) {
  constexpr std::size_t LONGEST = 400;
  if (text.size() <= LONGEST) {
    return text;
  }
  std::size_t end = LONGEST;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) {
    --end;
  }
  return text.substr(0, end) + "…";
}

json text_or_null(const std::optional<std::string>& text) {
  return text ? json(shortened(*text)) : json(nullptr);
}

int digit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool is_utf8(const std::string& text) {
  try {
    static_cast<void>(json(text).dump());
    return true;
  } catch (const json::type_error&) {
    return false;
  }
}

std::vector<std::string_view> parts_of(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t begin = 0;;) {
    const std::size_t end = text.find(separator, begin);
    parts.push_back(text.substr(begin, end - begin));
    if (end == std::string_view::npos) {
      return parts;
    }
    begin = end + 1;
  }
}

}  // namespace

Answer error_answer(const RequestError& error) {
  // Members in the order of the interface's description.
  nlohmann::ordered_json content;
  content["what"] = shortened(error.what());
  content["where"] = text_or_null(error.where);
  content["expected"] = text_or_null(error.expected);
  nlohmann::ordered_json document;
  document["error"] = std::move(content);
  Answer answer;
  answer.status = error.status;
  answer.body = document.dump(-1, ' ', false, json::error_handler_t::replace);
  return answer;
}

std::string header_of(const Answer& answer, long length, bool keep_alive) {
  std::string text = "HTTP/1.1 " + std::to_string(answer.status) + ' ' + phrase_of(answer.status) + "\r\n";
  const auto field = [&text](const std::string& name, const std::string& value) {
    text += name + ": " + value + "\r\n";
  };
  if (length != NO_BODY) {
    field("Content-Type", answer.type);
    field("Cache-Control", "no-store");
    field("X-Content-Type-Options", "nosniff");
    length == CHUNKED ? field("Transfer-Encoding", "chunked") : field("Content-Length", std::to_string(length));
    field("Connection", keep_alive ? "keep-alive" : "close");
  }
  for (const auto& [name, value] : answer.fields) {
    field(name, value);
  }
  return text += "\r\n";
}

std::string percent_decoded(std::string_view text, const std::string& where) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    const int high = i + 2 < text.size() ? digit(text[i + 1]) : -1;
    const int low = i + 2 < text.size() ? digit(text[i + 2]) : -1;
    if (high < 0 || low < 0) {
      throw RequestError(400, "bad percent-encoding", where, "% and two hexadecimal digits");
    }
    decoded += static_cast<char>(high << 4 | low);
    i += 2;
  }
  if (decoded.find('\0') != std::string::npos || !is_utf8(decoded)) {
    throw RequestError(400, "must be UTF-8 text without NUL bytes", where);
  }
  return decoded;
}

Target split_target(std::string_view target) {
  Target result;
  const std::size_t mark = target.find('?');
  const std::string_view path = target.substr(0, mark);
  if (path.empty() || path[0] != '/') {
    throw RequestError(400, "must be a path that starts with /", "request target");
  }
  for (const std::string_view segment : parts_of(path.substr(1), '/')) {
    result.path.push_back(percent_decoded(segment, "path"));
  }
  if (mark == std::string_view::npos || mark + 1 == target.size()) {
    return result;
  }
  for (const std::string_view part : parts_of(target.substr(mark + 1), '&')) {
    const std::size_t equals = part.find('=');
    const std::string name = percent_decoded(part.substr(0, equals), "query");
    result.query.emplace_back(name,
                              equals == std::string_view::npos ? "" : percent_decoded(part.substr(equals + 1), name));
  }
  return result;
}

}  // namespace control::service
