#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/base_hardware.h"
#include "host/arguments.h"

namespace host {

/// An operation callable by request.
struct Operation {
  const char* name;
  const char* arguments;  ///< names and types for display: "interface: text"
  /// Calls it. Returns the answer's keys except "id": "result" unless the operation returns nothing, and its outputs.
  nlohmann::json (*call)(BASE_HARDWARE& hardware, const Arguments& arguments);
};

/// The operations of the hardware interface by group; 49 in all groups.
const std::vector<Operation>& list_operations();
const std::vector<Operation>& power_operations();
const std::vector<Operation>& setting_operations();
const std::vector<Operation>& board_operations();

/// The operation of that name, null if there is none.
const Operation* find_operation(const std::string& name);

}  // namespace host
