#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace control::service {

enum class Phase { STARTING, RUNNING, STOPPING };

/// The state of the unit as its agent reports it. The service's thread.
class UnitState {
public:
  /// `facts`: members of the answer of GET /v1/unit, of which `host`, if any, holds the `program` asked for.
  explicit UnitState(nlohmann::ordered_json facts);

  /// The agent said that the unit is ready, or told of the host. False if the notice is malformed; nothing is changed
  /// then.
  void note_ready();
  bool note_host(const nlohmann::json& notice);
  void note_stopping() { phase_ = Phase::STOPPING; }

  Phase phase() const { return phase_; }
  const char* phase_name() const;
  const nlohmann::ordered_json& host() const { return host_; }
  /// The answer of GET /v1/unit.
  nlohmann::ordered_json document() const;

private:
  void advance();

  nlohmann::ordered_json facts_;
  nlohmann::ordered_json host_;
  Phase phase_ = Phase::STARTING;
  bool ready_ = false;
};

}  // namespace control::service
