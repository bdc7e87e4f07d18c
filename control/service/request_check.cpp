#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "control/service/routes.h"
#include "simulator/channel/document.h"

namespace control::service {
namespace {

using nlohmann::json;

// The agent receives a body one level deeper, inside its request.
constexpr std::size_t DEEPEST_BODY = simulator::channel::DEEPEST - 1;

std::string range_of(const Member& member) {
  return "whole number from " + std::to_string(member.minimum) + " to " + std::to_string(member.maximum);
}

std::string expectation(const Member& member) {
  switch (member.kind) {
    case Kind::TEXT:
      return "text without NUL bytes";
    case Kind::NUMBER:
      return range_of(member);
    case Kind::FLAG:
      return "true or false";
    case Kind::ANY:
      return "a value";
    case Kind::LIST:
      return "array";
    case Kind::OBJECT:
      return "object";
    case Kind::TEXTS:
      return "array of texts without NUL bytes";
    case Kind::VARIABLES:
      return "object of texts without NUL bytes";
    case Kind::SIZE:
      return "null or an object of rows and columns, whole numbers from 1 to 1000";
  }
  return {};
}

bool is_text(const json& value) {
  return value.is_string() && value.get_ref<const std::string&>().find('\0') == std::string::npos;
}

bool is_number(const json& value, std::int64_t minimum, std::int64_t maximum) {
  if (value.is_number_unsigned()) {
    return value.get<std::uint64_t>() <= static_cast<std::uint64_t>(maximum) &&
           static_cast<std::int64_t>(value.get<std::uint64_t>()) >= minimum;
  }
  return value.is_number_integer() && value.get<std::int64_t>() >= minimum && value.get<std::int64_t>() <= maximum;
}

bool is_size(const json& value) {
  return value.is_null() ||
         (value.is_object() && value.size() == 2 && value.contains("rows") && value.contains("columns") &&
          is_number(value["rows"], 1, 1000) && is_number(value["columns"], 1, 1000));
}

bool fits(const json& value, const Member& member) {
  switch (member.kind) {
    case Kind::TEXT:
      return is_text(value);
    case Kind::NUMBER:
      return is_number(value, member.minimum, member.maximum);
    case Kind::FLAG:
      return value.is_boolean();
    case Kind::ANY:
      return true;
    case Kind::LIST:
      return value.is_array();
    case Kind::OBJECT:
      return value.is_object();
    case Kind::TEXTS:
      return value.is_array() && std::all_of(value.begin(), value.end(), is_text);
    case Kind::VARIABLES:
      return value.is_object() && std::all_of(value.begin(), value.end(), is_text);
    case Kind::SIZE:
      return is_size(value);
  }
  return false;
}

[[noreturn]] void refuse(const Member& member, const std::string& given) {
  throw RequestError(400, "must be " + expectation(member) + ", not " + given, member.name, expectation(member));
}

std::string shown(const json& value) {
  constexpr std::size_t LONGEST = 60;
  const std::string text = value.is_structured() ? value.is_array() ? "an array" : "an object" : value.dump();
  return text.size() <= LONGEST ? text : "a longer text";
}

const Member* find(const std::vector<Member>& members, const std::string& name) {
  const auto found =
      std::find_if(members.begin(), members.end(), [&](const Member& each) { return each.name == name; });
  return found == members.end() ? nullptr : &*found;
}

/// The value of a member that arrived as text, in a path or a query.
json value_in(const std::string& text, const Member& member) {
  if (member.kind == Kind::TEXT) {
    return text;
  }
  if (member.kind == Kind::FLAG && (text == "true" || text == "false")) {
    return text == "true";
  }
  if (member.kind == Kind::TEXTS) {
    json names = json::array();
    for (std::size_t begin = 0; begin <= text.size();) {
      const std::size_t end = std::min(text.find(',', begin), text.size());
      names.push_back(text.substr(begin, end - begin));
      begin = end + 1;
    }
    return names;
  }
  std::int64_t number = 0;
  const auto [rest, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (member.kind != Kind::NUMBER || failure != std::errc() || rest != text.data() + text.size() ||
      !is_number(number, member.minimum, member.maximum)) {
    refuse(member, shown(text));
  }
  return number;
}

/// Whether a path has the shape of a pattern; then `values` are the segments at its placeholders, in order.
bool matches(std::string_view pattern, const std::vector<std::string>& path, std::vector<std::string>& values) {
  values.clear();
  for (const std::string& segment : path) {
    if (pattern.empty()) {
      return false;
    }
    const std::size_t end = std::min(pattern.find('/', 1), pattern.size());
    const std::string_view expected = pattern.substr(1, end - 1);
    pattern.remove_prefix(end);
    if (!expected.empty() && expected.front() == '{' && !segment.empty()) {
      values.push_back(segment);
    } else if (expected != segment) {
      return false;
    }
  }
  return pattern.empty();
}

const Route& find_route(const Request& request, const std::vector<std::string>& path,
                        std::vector<std::string>& values) {
  std::string allowed;
  for (const Route& route : routes()) {
    if (!matches(route.path, path, values)) {
      continue;
    }
    if (request.method == route.method) {
      return route;
    }
    allowed += (allowed.empty() ? "" : ", ") + std::string(route.method);
  }
  if (!allowed.empty()) {
    throw MethodError(allowed);
  }
  throw RequestError(404, "no such path", request.target.substr(0, request.target.find('?')));
}

void take_query(const Target& target, const Route& route, json& with) {
  for (const auto& [name, value] : target.query) {
    const Member* member = find(route.query, name);
    if (member == nullptr) {
      throw RequestError(400, "no such query parameter", name);
    }
    if (with.contains(name)) {
      throw RequestError(400, "given twice", name);
    }
    with[name] = value_in(value, *member);
  }
}

json document_of(const Request& request) {
  const std::string type = request.content_type.substr(0, request.content_type.find(';'));
  if (!type.empty() && type != "application/json") {
    throw RequestError(415, "must be application/json", "Content-Type", "application/json");
  }
  json document;
  try {
    document = simulator::channel::parsed_document(request.body, DEEPEST_BODY);
  } catch (const simulator::channel::DocumentError& error) {
    throw RequestError(400, error.what(), "body", "one JSON object");
  }
  if (!document.is_object()) {
    throw RequestError(400, "must be a JSON object", "body", "one JSON object");
  }
  return document;
}

void take_body(const Request& request, const Route& route, json& with) {
  const bool needed = !route.exactly_one.empty() || std::any_of(route.body.begin(), route.body.end(),
                                                                [](const Member& each) { return each.required; });
  if (request.body.empty()) {
    if (needed) {
      throw RequestError(request.has_body ? 400 : 411, "body is missing", "body", "one JSON object");
    }
    return;
  }
  json document = document_of(request);
  for (auto& [name, value] : document.items()) {
    const Member* member = find(route.body, name);
    if (member == nullptr) {
      throw RequestError(400, "no such member", name);
    }
    if (!fits(value, *member)) {
      refuse(*member, shown(value));
    }
    with[name] = std::move(value);
  }
}

void require_members(const Route& route, const json& with) {
  for (const Member& member : route.body) {
    if (member.required && !with.contains(member.name)) {
      throw RequestError(400, "is missing", member.name, expectation(member));
    }
  }
  const auto given = std::count_if(route.exactly_one.begin(), route.exactly_one.end(),
                                   [&](const char* name) { return with.contains(name); });
  if (!route.exactly_one.empty() && given != 1) {
    std::string names;
    for (const char* name : route.exactly_one) {
      names += (names.empty() ? "" : " or ") + std::string(name);
    }
    throw RequestError(400, "must have exactly one of the members " + names, "body", names);
  }
}

}  // namespace

MethodError::MethodError(const std::string& allowed_methods)
    : RequestError(405, "method not allowed", "method", allowed_methods), allowed(allowed_methods) {}

CheckedRequest checked_request(const Request& request) {
  const Target target = split_target(request.target);
  std::vector<std::string> values;
  const Route& route = find_route(request, target.path, values);
  json with = json::object();
  for (std::size_t i = 0; i < values.size(); ++i) {
    with[route.placeholders[i].name] = value_in(values[i], route.placeholders[i]);
  }
  take_query(target, route, with);
  take_body(request, route, with);
  require_members(route, with);
  return {&route, std::move(with)};
}

}  // namespace control::service
