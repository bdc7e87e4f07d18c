#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "control/service/request_error.h"

namespace control::service {

/// A request as it arrived.
struct Request {
  std::string method;
  std::string target;  ///< path and query, percent-encoded
  std::string body;
  bool has_body = false;     ///< a length or a chunked body was announced
  std::string content_type;  ///< header fields; empty if absent
  std::string host;
  std::string authorization;
  std::string upgrade;
};

/// A complete answer.
struct Answer {
  int status = 200;
  std::string body;
  std::string type = "application/json";
  std::vector<std::pair<std::string, std::string>> fields = {};  ///< further header fields
};

/// The answer to a request that failed, with the document {"error":{"what","where","expected"}}. Texts are shortened
/// and made valid UTF-8.
Answer error_answer(const RequestError& error);

/// Status line and header of an answer, up to and including the empty line. A `length` of -1 announces a chunked body,
/// -2 none.
std::string header_of(const Answer& answer, long length, bool keep_alive);
constexpr long CHUNKED = -1;
constexpr long NO_BODY = -2;

/// Decodes %XX. Throws RequestError (400) on a bad escape, a NUL byte or invalid UTF-8; `where` names the text.
std::string percent_decoded(std::string_view text, const std::string& where);

struct Target {
  std::vector<std::string> path;                           ///< decoded segments
  std::vector<std::pair<std::string, std::string>> query;  ///< decoded names and values, in order
};

/// Splits and decodes a target such as /v1/settings/a%2Eb?x=1. Throws RequestError (400).
Target split_target(std::string_view target);

}  // namespace control::service
