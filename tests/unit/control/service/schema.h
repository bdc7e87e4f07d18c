#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// Checks a value against a schema of an OpenAPI document, as far as ours go: $ref, allOf, oneOf, type, enum, const,
/// properties, required, additionalProperties, items, minItems, minimum and maximum. Returns the first violation, with
/// its place; empty if there is none. Throws std::invalid_argument for a keyword that it does not know.
std::string violation(const nlohmann::json& document, const nlohmann::json& schema, const nlohmann::json& value,
                      const std::string& place = "");
