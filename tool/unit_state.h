#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace tool {

/// An operation did not give a value; what() is the reason.
class NoValue : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Calls an operation and returns its answer. Throws NoValue if it throws or does not answer in time.
using CallOperation = std::function<nlohmann::ordered_json(const std::string& operation, const nlohmann::json& args)>;

/// Reads the unit's state from its hardware object as one JSON document: "versions", "temperatures", "power". A value
/// that cannot be had is null, and "reasons" says why, by the value's path. `patience_ms`: limit for the first
/// published external voltage.
nlohmann::ordered_json read_unit_state(const CallOperation& call, int patience_ms);

/// A heading and the rows below it: name and value.
struct Section {
  std::string title;
  std::vector<std::pair<std::string, std::string>> rows;
};

/// The state for people.
std::vector<Section> sections_of(const nlohmann::ordered_json& state);
/// The sections as text, one row per line.
std::string as_text(const std::vector<Section>& sections);

}  // namespace tool
