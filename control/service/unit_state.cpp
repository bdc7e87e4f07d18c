#include "control/service/unit_state.h"

#include <unistd.h>

#include <algorithm>

namespace control::service {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr const char* HOST_STATES[] = {"none", "starting", "running", "exited"};

bool is_number_or_null(const json& value) {
  return value.is_null() || value.is_number_integer();
}

}  // namespace

UnitState::UnitState(ordered_json facts) : facts_(std::move(facts)) {
  const ordered_json asked = facts_.value("host", ordered_json());
  const ordered_json program = asked.is_object() ? asked.value("program", ordered_json()) : ordered_json();
  host_ = {{"state", program.is_null() ? "none" : "starting"},
           {"pid", nullptr},
           {"status", nullptr},
           {"signal", nullptr},
           {"program", program}};
  facts_.erase("host");
  if (!facts_.contains("process")) {
    facts_["process"] = ordered_json::object();
  }
  facts_["process"]["service"] = ::getpid();
}

void UnitState::note_ready() {
  ready_ = true;
  advance();
}

bool UnitState::note_host(const json& notice) {
  const json state = notice.value("state", json());
  if (!state.is_string() ||
      std::find(std::begin(HOST_STATES), std::end(HOST_STATES), state.get<std::string>()) == std::end(HOST_STATES)) {
    return false;
  }
  ordered_json host = host_;
  host["state"] = state.get<std::string>();
  for (const char* name : {"pid", "status", "signal"}) {
    const json value = notice.value(name, json());
    if (!is_number_or_null(value)) {
      return false;
    }
    host[name] = value;
  }
  const json program = notice.value("program", json());
  if (program.is_string()) {
    host["program"] = program;
  }
  host_ = std::move(host);
  advance();
  return true;
}

void UnitState::advance() {
  const std::string host = host_["state"];
  if (phase_ == Phase::STARTING && ready_ && host != "starting") {
    phase_ = Phase::RUNNING;
  }
}

const char* UnitState::phase_name() const {
  switch (phase_) {
    case Phase::STARTING:
      return "starting";
    case Phase::RUNNING:
      return "running";
    default:
      return "stopping";
  }
}

ordered_json UnitState::document() const {
  ordered_json document;
  document["name"] = facts_.value("name", "");
  document["state"] = phase_name();
  for (const auto& [name, value] : facts_.items()) {
    document[name] = value;
  }
  document["host"] = host_;
  return document;
}

}  // namespace control::service
