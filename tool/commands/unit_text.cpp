#include "tool/commands/unit_text.h"

#include <poll.h>

#include <chrono>

#include "tool/host_end.h"

namespace tool {

using control::client::Client;
using control::client::ConnectionError;
using control::client::FoundUnit;
using nlohmann::ordered_json;

namespace {

constexpr int PATIENCE_MS = 2000;

/// A service does not answer in time.
struct Silence {};

void wait_briefly(int descriptor) {
  pollfd event{descriptor, POLLIN, 0};
  if (poll(&event, 1, PATIENCE_MS) == 0) {
    throw Silence{};
  }
}

}  // namespace

ordered_json described(const FoundUnit& unit) {
  ordered_json document = {{"name", unit.name}, {"state", "not answering"}};
  document["process"]["supervisor"] = unit.supervisor;
  try {
    Client client(unit.socket());
    client.wait_with(wait_briefly);
    document = client.get("/v1/unit");
  } catch (const Silence&) {
    document["reason"] = "no answer for 2 s";
  } catch (const ConnectionError& error) {
    document["reason"] = error.what();
  }
  return document;
}

std::string host_in_words(const ordered_json& unit) {
  const ordered_json host = unit.value("host", ordered_json());
  if (!host.is_object()) {
    return "-";
  }
  return host_has_ended(host) ? end_of_host(host) : host.value("state", "-");
}

}  // namespace tool
