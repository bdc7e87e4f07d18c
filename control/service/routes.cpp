#include "control/service/routes.h"

#include <limits>

namespace control::service {
namespace {

constexpr std::int64_t WORD = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t BIG = std::int64_t{1} << 53;  // every whole number up to here is exact in any JSON parser
constexpr std::int64_t DAY_MS = 86'400'000;
constexpr bool REQUIRED = true;

const Member NAME{"name", Kind::TEXT, REQUIRED};
const Member SPACE{"space", Kind::NUMBER, REQUIRED, 0, WORD};
const Member ADDRESS{"address", Kind::NUMBER, REQUIRED, 0, WORD};
const Member FROM{"from", Kind::NUMBER, false, 0, BIG};
const Member TIMEOUT{"timeout_ms", Kind::NUMBER, false, 1, DAY_MS};

Route agent(const char* method, const char* path, const char* verb) {
  return {method, path, Server::AGENT, verb};
}

std::vector<Route> table() {
  std::vector<Route> all;
  const auto add = [&all](Route route) -> Route& {
    all.push_back(std::move(route));
    return all.back();
  };

  add({"GET", "/v1/unit", Server::UNIT});
  add({"POST", "/v1/unit/stop", Server::STOP});

  add(agent("GET", "/v1/settings", "settings.list")).query = {{"names", Kind::TEXTS}};
  Route& patch = add(agent("PATCH", "/v1/settings", "settings.patch"));
  patch.body = {{"values", Kind::OBJECT, REQUIRED}};
  add(agent("GET", "/v1/settings/{name}", "settings.get")).placeholders = {NAME};
  Route& set = add(agent("PUT", "/v1/settings/{name}", "settings.set"));
  set.placeholders = {NAME};
  set.body = {{"value", Kind::ANY}, {"text", Kind::TEXT}};
  set.exactly_one = {"value", "text"};

  add(agent("GET", "/v1/faults", "faults.list"));
  add(agent("DELETE", "/v1/faults", "faults.clear"));
  add(agent("PUT", "/v1/counting", "counting.set")).body = {{"on", Kind::FLAG, REQUIRED}, {"reset", Kind::FLAG}};

  add(agent("GET", "/v1/operations", "operations.list"));
  Route& call = add(agent("POST", "/v1/operations/{name}", "operations.call"));
  call.placeholders = {NAME};
  call.body = {{"args", Kind::LIST}, TIMEOUT};
  call.limit = TimeLimit::CALL;
  Route& interrupt = add(agent("POST", "/v1/interrupts", "interrupts.raise"));
  interrupt.body = {
      {"value", Kind::NUMBER, REQUIRED, std::numeric_limits<std::int32_t>::min(), WORD}, {"wait", Kind::FLAG}, TIMEOUT};
  interrupt.limit = TimeLimit::CALL;
  Route& handled = add(agent("GET", "/v1/interrupts/{number}", "interrupts.handled"));
  handled.placeholders = {{"number", Kind::NUMBER, REQUIRED, 1, BIG}};
  handled.query = {TIMEOUT};
  handled.limit = TimeLimit::CALL;

  add(agent("GET", "/v1/dialogs", "dialogs.list"));
  Route& answer = add(agent("POST", "/v1/dialogs/{id}/answer", "dialogs.answer"));
  answer.placeholders = {{"id", Kind::NUMBER, REQUIRED, 0, BIG}};
  answer.body = {{"button", Kind::TEXT, REQUIRED}};
  add(agent("POST", "/v1/ui-done", "ui_done"));

  add(agent("GET", "/v1/registers/{space}/{address}", "registers.get")).placeholders = {SPACE, ADDRESS};
  Route& write = add(agent("PUT", "/v1/registers/{space}/{address}", "registers.set"));
  write.placeholders = {SPACE, ADDRESS};
  write.body = {{"value", Kind::NUMBER, REQUIRED, 0, WORD}};

  Route& record = add(agent("GET", "/v1/record", "record.read"));
  record.query = {FROM, {"limit", Kind::NUMBER, false, 1, 10'000}};
  add(agent("PUT", "/v1/record", "record.set")).body = {{"on", Kind::FLAG, REQUIRED}};
  add(agent("GET", "/v1/eventlog", "eventlog.read")).query = {FROM};

  add(agent("GET", "/v1/services", "services.applied"));
  Route& applied = add(agent("POST", "/v1/services/applied", "services.applied"));
  applied.body = {TIMEOUT};
  applied.limit = TimeLimit::CALL;

  add({"GET", "/v1/logs", Server::LOGS});
  Route& log = add({"GET", "/v1/logs/{name}", Server::LOG});
  log.placeholders = {NAME};
  log.query = {FROM, {"follow", Kind::FLAG}};
  add({"GET", "/v1/stream", Server::STREAM}).query = {{"settings", Kind::TEXTS}, {"events", Kind::TEXTS}};
  add({"GET", "/v1/metrics", Server::METRICS});
  add({"GET", "/v1/openapi.json", Server::OPENAPI});
  add({"POST", "/v1/exec", Server::EXEC, "exec.start"}).body = {{"argv", Kind::TEXTS, REQUIRED},
                                                                {"environment", Kind::VARIABLES},
                                                                {"directory", Kind::TEXT},
                                                                {"stdin", Kind::FLAG},
                                                                {"terminal", Kind::SIZE}};
  return all;
}

}  // namespace

const std::vector<Route>& routes() {
  static const std::vector<Route> all = table();
  return all;
}

}  // namespace control::service
