#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "control/client/client.h"

namespace tool {

/// How a host ended, in words: "exited with status 3", "killed by signal 11 (Segmentation fault)". `host`: the member
/// of that name of the unit's description.
std::string end_of_host(const nlohmann::ordered_json& host);

/// Whether the host has ended.
bool host_has_ended(const nlohmann::ordered_json& host);

/// Reports on standard error that the host has ended: how, and where the unit's logs are. `state`: the folder that
/// keeps them; empty: they are copied to a new folder. `with_output`: the last lines of its output come first.
void report_host_end(control::client::Client& client, const nlohmann::ordered_json& host, const std::string& state,
                     bool with_output);

/// The last `count` lines of a text, oldest first.
std::vector<std::string> last_lines(const std::string& text, std::size_t count);

}  // namespace tool
