#include "control/service/openapi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "control/service/routes.h"
#include "simulator/channel/document.h"
#include "tests/unit/control/service/schema.h"
#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::service::Kind;
using control::service::Member;
using control::service::Route;
using control::service::routes;
using control::service::Server;
using nlohmann::json;

const json& document() {
  static const json all = simulator::channel::parsed_document(control::service::openapi_text());
  return all;
}

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

std::string name_of(const Route& route) {
  return lower(route.method) + ' ' + route.path;
}

const json& operation_of(const Route& route) {
  return document()["paths"][route.path][lower(route.method)];
}

json resolved(const json& schema) {
  if (schema.contains("$ref")) {
    return resolved(document().at(json::json_pointer(schema["$ref"].get<std::string>().substr(1))));
  }
  return schema.contains("allOf") ? resolved(schema["allOf"][0]) : schema;
}

/// Whether a schema describes what the table accepts.
void expect_described(const Member& member, const json& given) {
  SCOPED_TRACE(member.name);
  const json schema = resolved(given);
  const json type = schema.value("type", json());
  switch (member.kind) {
    case Kind::TEXT:
      EXPECT_TRUE(type == "string" || schema.contains("enum"));
      break;
    case Kind::NUMBER:
      EXPECT_EQ(type, "integer");
      EXPECT_EQ(schema.value("minimum", json()), member.minimum);
      EXPECT_TRUE(schema.value("maximum", json()) == member.maximum || !schema.contains("maximum"));
      break;
    case Kind::FLAG:
      EXPECT_EQ(type, "boolean");
      break;
    case Kind::ANY:
      EXPECT_EQ(type, json());
      break;
    case Kind::LIST:
    case Kind::TEXTS:
      EXPECT_EQ(type, "array");
      break;
    case Kind::OBJECT:
    case Kind::VARIABLES:
      EXPECT_EQ(type, "object");
      break;
    case Kind::SIZE:
      EXPECT_EQ(type, (json{"object", "null"}));
      break;
  }
}

/// Compares the parameters in a place, path or query, both ways.
void expect_parameters(const Route& route, const std::vector<Member>& members, const std::string& place) {
  std::set<std::string> described;
  for (const json& parameter : operation_of(route).value("parameters", json::array())) {
    if (parameter["in"] == place) {
      described.insert(parameter["name"].get<std::string>());
    }
  }
  std::set<std::string> served;
  for (const Member& member : members) {
    served.insert(member.name);
    for (const json& parameter : operation_of(route).value("parameters", json::array())) {
      if (parameter["in"] == place && parameter["name"] == member.name) {
        EXPECT_EQ(parameter["required"], member.required);
        expect_described(member, parameter["schema"]);
      }
    }
  }
  EXPECT_EQ(described, served) << place;
}

/// The alternatives of a request's body: one, or one for each member of which exactly one is given.
std::vector<json> bodies_of(const Route& route) {
  const json body = operation_of(route).value("requestBody", json());
  if (body.is_null()) {
    return {};
  }
  const json schema = resolved(body["content"]["application/json"]["schema"]);
  return schema.contains("oneOf") ? schema["oneOf"].get<std::vector<json>>() : std::vector<json>{schema};
}

void expect_body(const Route& route) {
  std::set<std::string> described;
  std::set<std::string> required;
  for (const json& body : bodies_of(route)) {
    EXPECT_EQ(body["additionalProperties"], false);
    for (const auto& [name, schema] : body["properties"].items()) {
      described.insert(name);
      const auto member = std::find_if(route.body.begin(), route.body.end(),
                                       [&key = name](const Member& each) { return each.name == key; });
      if (member != route.body.end()) {
        expect_described(*member, schema);
      }
    }
    for (const std::string name : body["required"]) {
      required.insert(name);
    }
  }
  std::set<std::string> served;
  std::set<std::string> needed(route.exactly_one.begin(), route.exactly_one.end());
  for (const Member& member : route.body) {
    served.insert(member.name);
    if (member.required) {
      needed.insert(member.name);
    }
  }
  EXPECT_EQ(described, served);
  EXPECT_EQ(required, needed);
  EXPECT_EQ(bodies_of(route).size(), route.body.empty() ? 0 : std::max<std::size_t>(1, route.exactly_one.size()));
  EXPECT_EQ(operation_of(route).value("requestBody", json::object()).value("required", false), !needed.empty());
}

TEST(OpenApiTest, DescribesEveryRouteAndNoOther) {
  EXPECT_EQ(document()["openapi"], "3.1.0");
  std::set<std::string> described;
  for (const auto& [path, methods] : document()["paths"].items()) {
    for (const auto& [method, operation] : methods.items()) {
      described.insert(method + ' ' + path);
    }
  }
  std::set<std::string> served;
  for (const Route& route : routes()) {
    EXPECT_TRUE(served.insert(name_of(route)).second) << name_of(route) << " is there twice";
  }
  EXPECT_EQ(described, served);
}

TEST(OpenApiTest, DescribesEveryParameterAndMember) {
  std::set<std::string> identifiers;
  for (const Route& route : routes()) {
    SCOPED_TRACE(name_of(route));
    expect_parameters(route, route.placeholders, "path");
    expect_parameters(route, route.query, "query");
    expect_body(route);
    EXPECT_TRUE(identifiers.insert(operation_of(route)["operationId"].get<std::string>()).second);
  }
}

/// The violation in an answer of the running service; empty if it is as described.
std::string violation_in(const std::string& target, const std::string& path, const std::string& answer) {
  const json& operation = document()["paths"][path]["get"];
  const std::string status = std::to_string(status_of(answer));
  const json& responses = operation["responses"];
  const json response = resolved(responses.contains(status) ? responses[status] : responses["default"]);
  const std::string type = response["content"].begin().key();
  if (answer.find("\r\nContent-Type: " + type) == std::string::npos) {
    return target + ": not " + type;
  }
  return type == "application/json" ? violation(document(), response["content"][type]["schema"], body_of(answer)) : "";
}

TEST(OpenApiTest, DescribesTheAnswersOfTheRunningService) {
  ServiceUnderTest unit;
  unit.agent().notice({{"notice", "log_stream"}, {"stream", 2}, {"name", "host.out"}});
  RawClient client(unit.socket());
  for (const auto& [target, path] :
       std::initializer_list<std::pair<const char*, const char*>>{{"/v1/unit", "/v1/unit"},
                                                                  {"/v1/logs", "/v1/logs"},
                                                                  {"/v1/metrics", "/v1/metrics"},
                                                                  {"/v1/openapi.json", "/v1/openapi.json"},
                                                                  {"/v1/record?limit=x", "/v1/record"},
                                                                  {"/v1/logs/passwd", "/v1/logs/{name}"},
                                                                  {"/v1/stream?events=x", "/v1/stream"}}) {
    client.send(get_text(target));
    EXPECT_EQ(violation_in(target, path, client.answer()), "") << target;
  }
  client.send(get_text("/v1/logs/host.out"));
  EXPECT_EQ(violation_in("log", "/v1/logs/{name}", client.rest()), "");
  RawClient stream(unit.socket());
  stream.send(get_text("/v1/stream"));
  EXPECT_EQ(violation_in("stream", "/v1/stream", stream.until("\r\n\r\n")), "");
}

TEST(OpenApiTest, ThePageShowsEveryRoute) {
  const std::string page = doubles::text_of(CONTROL_API_PAGE);
  for (const Route& route : routes()) {
    const std::string shown = std::string("`") + route.method + ' ' + route.path;
    EXPECT_NE(page.find(shown), std::string::npos) << shown;
  }
}

TEST(OpenApiTest, ViolationsAreFound) {
  const json setting = {{"name", "a"},        {"type", "number"},   {"unit", ""}, {"minimum", 0},
                        {"maximum", nullptr}, {"choices", {"one"}}, {"doc", ""},  {"value", 5}};
  const json schema = {{"$ref", "#/components/schemas/Setting"}};
  EXPECT_EQ(violation(document(), schema, setting), "");
  const auto after = [&](const json& patch) {
    json changed = setting;
    changed.merge_patch(patch);
    return violation(document(), schema, changed);
  };
  EXPECT_EQ(after({{"name", nullptr}}), "/name: missing");
  EXPECT_EQ(after({{"colour", 1}}), "/colour: not described");
  EXPECT_EQ(after({{"choices", {1}}}), "/choices/0: is 1, not of type \"string\"");
  EXPECT_EQ(after({{"minimum", "x"}}), "/minimum: is \"x\", not of type [\"integer\",\"null\"]");
  EXPECT_EQ(after({{"type", "colour"}}).substr(0, 23), "/type: is \"colour\", not");
}

}  // namespace
