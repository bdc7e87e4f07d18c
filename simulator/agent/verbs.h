#pragma once

#include <functional>
#include <map>
#include <string>

#include "simulator/agent/arguments.h"
#include "simulator/agent/link.h"
#include "simulator/model/unit_model.h"

namespace simulator::agent {

/// Answers one kind of request; throws Refusal. Any thread, several at a time: a request may block.
using Verb = std::function<Json(const Arguments& with)>;
using Verbs = std::map<std::string, Verb>;

/// Each adds the verbs of one topic. The unit outlives them.
void add_setting_verbs(Verbs& verbs, model::UnitModel& unit, Link& link);
void add_fault_verbs(Verbs& verbs, model::UnitModel& unit);
void add_host_verbs(Verbs& verbs);
void add_power_verbs(Verbs& verbs, model::UnitModel& unit);
void add_screen_verbs(Verbs& verbs, model::UnitModel& unit, Link& link);
void add_record_verbs(Verbs& verbs, model::UnitModel& unit);

/// Answers a request: {"id":…,"ok":…} or {"id":…,"error":…}. Does not throw.
Json answer_of(const Verbs& verbs, const Json& request);
/// The same for the work of one verb whose answer is computed by `work`.
Json answer_from(const Json& id, const std::function<Json()>& work);

}  // namespace simulator::agent
