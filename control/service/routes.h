#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "control/service/http_text.h"

namespace control::service {

/// Type of a member of a request's body, of a query parameter or of a placeholder in a path.
enum class Kind {
  TEXT,       ///< without NUL bytes
  NUMBER,     ///< whole number of the member's range
  FLAG,       ///< true or false
  ANY,        ///< any value
  LIST,       ///< array of any values
  OBJECT,     ///< object of any values
  TEXTS,      ///< array of texts; in a query, separated by commas
  VARIABLES,  ///< object of texts
  SIZE        ///< null or an object of rows and columns, 1 to 1000 each
};

struct Member {
  const char* name;
  Kind kind;
  bool required = false;
  std::int64_t minimum = 0;  ///< for NUMBER
  std::int64_t maximum = 0;  ///< for NUMBER
};

/// Who answers a route.
enum class Server { AGENT, UNIT, STOP, LOGS, LOG, STREAM, METRICS, OPENAPI, EXEC };

/// How long the agent may take.
enum class TimeLimit {
  STANDARD,  ///< Limits::agent_answer
  CALL       ///< none, or with the member timeout_ms that time and Limits::agent_answer
};

/// One method of one path.
struct Route {
  const char* method;
  const char* path;  ///< placeholders in braces are segments
  Server server;
  const char* verb = nullptr;  ///< of the agent
  std::vector<Member> placeholders = {};
  std::vector<Member> query = {};
  std::vector<Member> body = {};
  std::vector<const char*> exactly_one = {};  ///< members of the body
  TimeLimit limit = TimeLimit::STANDARD;
};

/// All routes of the interface.
const std::vector<Route>& routes();

/// A request whose shape is right.
struct CheckedRequest {
  const Route* route;
  nlohmann::json with;  ///< placeholders, query parameters and members of the body that were given
};

/// The path exists, but not with this method.
class MethodError : public RequestError {
public:
  explicit MethodError(const std::string& allowed_methods);
  std::string allowed;  ///< methods, separated by commas
};

/// Finds the route of a request and checks its parameters and its body. Throws RequestError: 404, 405, 411, 415 or 400.
CheckedRequest checked_request(const Request& request);

}  // namespace control::service
