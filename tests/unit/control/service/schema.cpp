#include "tests/unit/control/service/schema.h"

#include <algorithm>
#include <stdexcept>

namespace {

using nlohmann::json;

bool is_of_type(const json& value, const std::string& type) {
  return (type == "object" && value.is_object()) || (type == "array" && value.is_array()) ||
         (type == "string" && value.is_string()) || (type == "boolean" && value.is_boolean()) ||
         (type == "null" && value.is_null()) || (type == "integer" && value.is_number_integer());
}

bool is_of_types(const json& value, const json& types) {
  if (types.is_string()) {
    return is_of_type(value, types);
  }
  return std::any_of(types.begin(), types.end(), [&](const std::string& type) { return is_of_type(value, type); });
}

std::string in_object(const json& document, const json& schema, const json& value, const std::string& place) {
  const json properties = schema.value("properties", json::object());
  for (const std::string name : schema.value("required", json::array())) {
    if (!value.contains(name)) {
      return place + '/' + name + ": missing";
    }
  }
  for (const auto& [name, member] : value.items()) {
    const json further = schema.value("additionalProperties", json(true));
    if (!properties.contains(name) && further == json(false)) {
      return place + '/' + name + ": not described";
    }
    const json& described = properties.contains(name) ? properties[name] : further;
    if (described.is_object()) {
      if (std::string found = violation(document, described, member, place + '/' + name); !found.empty()) {
        return found;
      }
    }
  }
  return {};
}

std::string in_array(const json& document, const json& schema, const json& value, const std::string& place) {
  if (value.size() < schema.value("minItems", 0u)) {
    return place + ": too few items";
  }
  for (std::size_t i = 0; schema.contains("items") && i < value.size(); ++i) {
    std::string found = violation(document, schema["items"], value[i], place + '/' + std::to_string(i));
    if (!found.empty()) {
      return found;
    }
  }
  return {};
}

std::string in_scalar(const json& schema, const json& value, const std::string& place) {
  if (schema.contains("type") && !is_of_types(value, schema["type"])) {
    return place + ": is " + value.dump() + ", not of type " + schema["type"].dump();
  }
  if (schema.contains("enum") &&
      std::find(schema["enum"].begin(), schema["enum"].end(), value) == schema["enum"].end()) {
    return place + ": is " + value.dump() + ", not one of " + schema["enum"].dump();
  }
  if (schema.contains("const") && value != schema["const"]) {
    return place + ": is " + value.dump() + ", not " + schema["const"].dump();
  }
  const bool below = schema.contains("minimum") && value.is_number() && value < schema["minimum"];
  const bool above = schema.contains("maximum") && value.is_number() && value > schema["maximum"];
  return below || above ? place + ": is " + value.dump() + ", out of range" : "";
}

void require_known(const json& schema) {
  static const json KNOWN = {"$ref",     "allOf",   "oneOf",       "type",    "enum",    "const",
                             "required", "items",   "properties",  "minimum", "maximum", "additionalProperties",
                             "minItems", "default", "description", "format"};
  for (const auto& [keyword, content] : schema.items()) {
    if (std::find(KNOWN.begin(), KNOWN.end(), keyword) == KNOWN.end()) {
      throw std::invalid_argument(keyword);
    }
  }
}

}  // namespace

std::string violation(const json& document, const json& schema, const json& value, const std::string& place) {
  require_known(schema);
  if (schema.contains("$ref")) {
    const std::string target = schema["$ref"];
    return violation(document, document.at(json::json_pointer(target.substr(1))), value, place);
  }
  for (const json& each : schema.value("allOf", json::array())) {
    if (std::string found = violation(document, each, value, place); !found.empty()) {
      return found;
    }
  }
  if (schema.contains("oneOf")) {
    const auto fits = [&](const json& each) { return violation(document, each, value, place).empty(); };
    return std::count_if(schema["oneOf"].begin(), schema["oneOf"].end(), fits) == 1 ? "" : place + ": not one of";
  }
  std::string found = in_scalar(schema, value, place);
  if (found.empty() && value.is_object()) {
    found = in_object(document, schema, value, place);
  } else if (found.empty() && value.is_array()) {
    found = in_array(document, schema, value, place);
  }
  return found;
}
