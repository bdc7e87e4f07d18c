#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/control/service/service_under_test.h"

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

struct Case {
  const char* method;
  const char* target;
  const char* body;
  const char* verb;
  const char* with;
};

const std::vector<Case> CASES{
    {"GET", "/v1/settings", "", "settings.list", "{}"},
    {"GET", "/v1/settings?names=a,b.c", "", "settings.list", R"({"names":["a","b.c"]})"},
    {"GET", "/v1/settings/board.handle", "", "settings.get", R"({"name":"board.handle"})"},
    {"GET", "/v1/settings/a%2Fb%20%C3%A9", "", "settings.get", R"({"name":"a/b é"})"},
    {"PUT", "/v1/settings/a", R"({"value":[1,null]})", "settings.set", R"({"name":"a","value":[1,null]})"},
    {"PUT", "/v1/settings/a", R"({"value":null})", "settings.set", R"({"name":"a","value":null})"},
    {"PUT", "/v1/settings/a", R"({"text":"41"})", "settings.set", R"({"name":"a","text":"41"})"},
    {"PATCH", "/v1/settings", R"({"values":{"a":1}})", "settings.patch", R"({"values":{"a":1}})"},
    {"GET", "/v1/faults", "", "faults.list", "{}"},
    {"DELETE", "/v1/faults", "", "faults.clear", "{}"},
    {"PUT", "/v1/counting", R"({"on":true})", "counting.set", R"({"on":true})"},
    {"PUT", "/v1/counting", R"({"on":false,"reset":true})", "counting.set", R"({"on":false,"reset":true})"},
    {"GET", "/v1/operations", "", "operations.list", "{}"},
    {"POST", "/v1/operations/GetVersionList", "", "operations.call", R"({"name":"GetVersionList"})"},
    {"POST", "/v1/operations/X", R"({"args":[1,"a"],"timeout_ms":5000})", "operations.call",
     R"({"args":[1,"a"],"name":"X","timeout_ms":5000})"},
    {"POST", "/v1/interrupts", R"({"value":4294967295})", "interrupts.raise", R"({"value":4294967295})"},
    {"POST", "/v1/interrupts", R"({"value":-2147483648,"wait":true,"timeout_ms":1})", "interrupts.raise",
     R"({"timeout_ms":1,"value":-2147483648,"wait":true})"},
    {"GET", "/v1/dialogs", "", "dialogs.list", "{}"},
    {"POST", "/v1/dialogs/3/answer", R"({"button":"Ok"})", "dialogs.answer", R"({"button":"Ok","id":3})"},
    {"POST", "/v1/ui-done", "", "ui_done", "{}"},
    {"GET", "/v1/registers/1/128", "", "registers.get", R"({"address":128,"space":1})"},
    {"PUT", "/v1/registers/2/4096", R"({"value":31})", "registers.set", R"({"address":4096,"space":2,"value":31})"},
    {"GET", "/v1/record", "", "record.read", "{}"},
    {"GET", "/v1/record?from=7&limit=10", "", "record.read", R"({"from":7,"limit":10})"},
    {"PUT", "/v1/record", R"({"on":true})", "record.set", R"({"on":true})"},
    {"GET", "/v1/eventlog?from=2", "", "eventlog.read", R"({"from":2})"},
    {"GET", "/v1/services", "", "services.applied", R"({"timeout_ms":1})"},
    {"POST", "/v1/services/applied", R"({"timeout_ms":100})", "services.applied", R"({"timeout_ms":100})"}};

TEST(PassThroughTest, EachRouteIsOneVerbOfTheAgent) {
  ServiceUnderTest unit;
  auto client = unit.client();
  for (const Case& each : CASES) {
    SCOPED_TRACE(std::string(each.method) + ' ' + each.target);
    const json body = *each.body == '\0' ? json() : json::parse(each.body);
    const auto answer = client.send(each.method, each.target, body);
    EXPECT_EQ(answer, (ordered_json{{"verb", each.verb}, {"with", ordered_json::parse(each.with)}}));
  }
}

TEST(PassThroughTest, AnAnswerArrivesAsTheAgentWroteIt) {
  ServiceUnderTest unit;
  unit.agent().on("settings.get",
                  {{"ok", {{"name", "z"}, {"doc", "°C \x1b \"quoted\" \\"}, {"a", nullptr}, {"value", 1.5}}}});
  RawClient client(unit.socket());
  client.send(get_text("/v1/settings/z"));
  const std::string answer = client.answer();
  EXPECT_EQ(status_of(answer), 200);
  EXPECT_NE(answer.find("\r\nContent-Type: application/json\r\n"), std::string::npos);
  EXPECT_EQ(answer.substr(answer.find("\r\n\r\n") + 4),
            "{\"name\":\"z\",\"doc\":\"°C \\u001b \\\"quoted\\\" \\\\\",\"a\":null,\"value\":1.5}");
}

TEST(PassThroughTest, AnErrorOfTheAgentKeepsItsStatusAndItsParts) {
  ServiceUnderTest unit;
  unit.agent().on("settings.set", {{"error",
                                    {{"code", 400},
                                     {"what", "must be a whole number from 0 to 100, not 101"},
                                     {"where", "power_supply.state_of_charge"},
                                     {"expected", "whole number from 0 to 100"}}}});
  RawClient client(unit.socket());
  client.send(request_text("PUT", "/v1/settings/x", R"({"value":101})"));
  const std::string answer = client.answer();
  EXPECT_EQ(status_of(answer), 400);
  EXPECT_EQ(answer.substr(answer.find("\r\n\r\n") + 4),
            R"({"error":{"what":"must be a whole number from 0 to 100, not 101",)"
            R"("where":"power_supply.state_of_charge","expected":"whole number from 0 to 100"}})");
  for (const int code : {404, 409, 500, 504}) {
    unit.agent().on("settings.set", {{"error", {{"code", code}, {"what", "no"}}}});
    try {
      unit.client().send("PUT", "/v1/settings/x", {{"value", 1}});
      ADD_FAILURE() << "accepted";
    } catch (const control::client::ApiError& error) {
      EXPECT_EQ(error.status, code);
      EXPECT_STREQ(error.what(), "no");
    }
  }
}

TEST(PassThroughTest, RequestsInARowAreAnsweredInTurnOnOneConnection) {
  ServiceUnderTest unit;
  RawClient client(unit.socket());
  client.send(get_text("/v1/settings/a") + get_text("/v1/unit/nothing") + get_text("/v1/settings/b"));
  EXPECT_EQ(body_of(client.answer())["with"], (json{{"name", "a"}}));
  EXPECT_EQ(status_of(client.answer()), 404);
  EXPECT_EQ(body_of(client.answer())["with"], (json{{"name", "b"}}));
}

TEST(PassThroughTest, ACallWithoutAnswerHoldsUpNoOther) {
  ServiceUnderTest unit;
  unit.agent().on("operations.call", ordered_json());
  const RawClient caller(unit.socket());
  caller.send(request_text("POST", "/v1/operations/Hangs", "{}"));
  unit.agent().take("operations.call");
  EXPECT_EQ(unit.client().get("/v1/settings/a")["verb"], "settings.get");
}

}  // namespace
