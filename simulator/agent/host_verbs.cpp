// Operations of the hardware object, and messages of the user interface.

#include <sys/wait.h>

#include "simulator/agent/host_connection.h"
#include "simulator/agent/refusal.h"
#include "simulator/agent/verbs.h"

namespace simulator::agent {
namespace {

Json call(const Arguments& with) {
  const std::string name = with.text("name");
  const Json arguments = with.has("args") ? with.any("args") : Json::array();
  if (!arguments.is_array()) {
    throw Refusal(BAD_REQUEST, "must be an array", "args", "array of arguments");
  }
  return call_host(name, arguments, with.timeout());
}

}  // namespace

void add_host_verbs(Verbs& verbs) {
  verbs["operations.list"] = [](const Arguments&) {
    return call_host("operations", Json::array(), std::chrono::seconds(10));
  };
  verbs["operations.call"] = call;
}

}  // namespace simulator::agent
