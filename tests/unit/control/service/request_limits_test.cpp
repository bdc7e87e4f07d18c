#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::service::ServiceOptions;
using nlohmann::json;

struct Case {
  const char* method;
  const char* target;
  std::string body;
  int status;
  const char* what;
  json where;
};

json error_of(const std::string& answer) {
  return body_of(answer).value("error", json::object());
}

/// Sends each request on a connection of its own and compares status, reason and place.
void expect_refused(ServiceUnderTest& unit, const std::vector<Case>& cases) {
  for (const Case& each : cases) {
    SCOPED_TRACE(std::string(each.method) + ' ' + each.target + ' ' + each.body.substr(0, 100));
    RawClient client(unit.socket());
    client.send(each.body.empty() ? std::string(each.method) + ' ' + each.target + " HTTP/1.1\r\nHost: u\r\n\r\n"
                                  : request_text(each.method, each.target, each.body));
    const std::string answer = client.answer();
    EXPECT_EQ(status_of(answer), each.status);
    EXPECT_EQ(error_of(answer).value("what", ""), each.what);
    EXPECT_EQ(error_of(answer)["where"], each.where);
  }
}

TEST(RequestLimitsTest, UnknownPathsAndMethodsAreRefused) {
  ServiceUnderTest unit;
  expect_refused(unit, {{"GET", "/", "", 404, "no such path", "/"},
                        {"GET", "/v1/settings/", "", 404, "no such path", "/v1/settings/"},
                        {"GET", "/v1/unit/x", "", 404, "no such path", "/v1/unit/x"},
                        {"GET", "/v2/unit?a=b", "", 404, "no such path", "/v2/unit"},
                        {"POST", "/v1/unit", "", 405, "method not allowed", "method"},
                        {"BREW", "/v1/settings", "", 405, "method not allowed", "method"},
                        {"GET", "v1/unit", "", 400, "must be a path that starts with /", "request target"}});
  RawClient client(unit.socket());
  client.send("DELETE /v1/settings HTTP/1.1\r\nHost: u\r\n\r\n");
  EXPECT_NE(client.answer().find("\r\nAllow: GET, PATCH\r\n"), std::string::npos);
}

TEST(RequestLimitsTest, WrongMembersAndParametersAreRefused) {
  ServiceUnderTest unit;
  const char* const one = "must have exactly one of the members value or text";
  expect_refused(
      unit, {{"PUT", "/v1/settings/a", R"({"value":1,"colour":2})", 400, "no such member", "colour"},
             {"PUT", "/v1/settings/a", R"({"value":1,"text":"1"})", 400, one, "body"},
             {"PUT", "/v1/settings/a", "{}", 400, one, "body"},
             {"PUT", "/v1/settings/a", R"({"text":5})", 400, "must be text without NUL bytes, not 5", "text"},
             {"PUT", "/v1/settings/a", R"({"text":"a\u0000b"})", 400,
              "must be text without NUL bytes, not \"a\\u0000b\"", "text"},
             {"PUT", "/v1/settings/a", "[1]", 400, "must be a JSON object", "body"},
             {"PUT", "/v1/settings/a", "", 411, "body is missing", "body"},
             {"PATCH", "/v1/settings", R"({"values":[1]})", 400, "must be object, not an array", "values"},
             {"PUT", "/v1/counting", R"({"on":1})", 400, "must be true or false, not 1", "on"},
             {"PUT", "/v1/counting", R"({"reset":true})", 400, "is missing", "on"},
             {"POST", "/v1/operations/X", R"({"args":{}})", 400, "must be array, not an object", "args"},
             {"POST", "/v1/operations/X", R"({"timeout_ms":0})", 400, "must be whole number from 1 to 86400000, not 0",
              "timeout_ms"},
             {"POST", "/v1/operations/X", R"({"timeout_ms":1.5})", 400,
              "must be whole number from 1 to 86400000, not 1.5", "timeout_ms"},
             {"POST", "/v1/operations/X", R"({"timeout_ms":18446744073709551615})", 400,
              "must be whole number from 1 to 86400000, not 18446744073709551615", "timeout_ms"},
             {"POST", "/v1/interrupts", R"({"value":4294967296})", 400,
              "must be whole number from -2147483648 to 4294967295, not 4294967296", "value"},
             {"POST", "/v1/interrupts", R"({"value":-2147483649})", 400,
              "must be whole number from -2147483648 to 4294967295, not -2147483649", "value"},
             {"GET", "/v1/registers/1/x", "", 400, "must be whole number from 0 to 4294967295, not \"x\"", "address"},
             {"GET", "/v1/registers/-1/0", "", 400, "must be whole number from 0 to 4294967295, not \"-1\"", "space"},
             {"GET", "/v1/record?limit=0", "", 400, "must be whole number from 1 to 10000, not \"0\"", "limit"},
             {"GET", "/v1/record?from=0x10", "", 400, "must be whole number from 0 to 9007199254740992, not \"0x10\"",
              "from"},
             {"GET", "/v1/record?from=1&from=2", "", 400, "given twice", "from"},
             {"GET", "/v1/record?until=1", "", 400, "no such query parameter", "until"},
             {"GET", "/v1/logs/host.out?follow=yes", "", 400, "must be true or false, not \"yes\"", "follow"},
             {"GET", "/v1/stream?events=weather", "", 400, "no such event type: weather", "events"},
             {"GET", "/v1/settings/%zz", "", 400, "bad percent-encoding", "path"},
             {"GET", "/v1/settings/%00", "", 400, "must be UTF-8 text without NUL bytes", "path"},
             {"GET", "/v1/settings/%ff", "", 400, "must be UTF-8 text without NUL bytes", "path"},
             {"GET", "/v1/logs/passwd", "", 404, "no such log", "passwd"}});
  EXPECT_EQ(unit.agent().count("settings.set"), 0u);
}

TEST(RequestLimitsTest, BadJsonIsRefused) {
  ServiceUnderTest unit;
  const std::string deep = R"({"value":)" + std::string(63, '[') + std::string(63, ']') + '}';
  expect_refused(unit,
                 {{"PUT", "/v1/settings/a", R"({"value":1)", 400, "byte 11: not valid JSON", "body"},
                  {"PUT", "/v1/settings/a", R"({"value":1} x)", 400, "byte 13: not valid JSON", "body"},
                  {"PUT", "/v1/settings/a", std::string("{\"value\":1}\0", 12), 400, "byte 12: NUL byte", "body"},
                  {"PUT", "/v1/settings/a", "{\"value\":\"\xff\"}", 400, "byte 11: not valid JSON", "body"},
                  {"PUT", "/v1/settings/a", R"({"value":1,"value":2})", 400, "key \"value\": given twice", "body"},
                  {"PATCH", "/v1/settings", R"({"values":{"a":1,"\u0061":2}})", 400, "key \"a\": given twice", "body"},
                  {"PUT", "/v1/settings/a", deep, 400, "nested deeper than 63 levels", "body"},
                  {"PUT", "/v1/settings/a", std::string(100'000, '['), 400, "nested deeper than 63 levels", "body"}});
  const std::string shallow = R"({"value":)" + std::string(62, '[') + std::string(62, ']') + '}';
  unit.agent().on("settings.set", {{"ok", json::object()}});
  RawClient client(unit.socket());
  client.send(request_text("PUT", "/v1/settings/a", shallow));
  EXPECT_EQ(status_of(client.answer()), 200);
}

TEST(RequestLimitsTest, AnotherContentTypeIsRefused) {
  ServiceUnderTest unit;
  RawClient client(unit.socket());
  const auto with_type = [](const std::string& type) {
    return "PUT /v1/settings/a HTTP/1.1\r\nHost: u\r\nContent-Type: " + type +
           "\r\nContent-Length: 11\r\n\r\n{\"value\":1}";
  };
  client.send(with_type("text/plain"));
  EXPECT_EQ(status_of(client.answer()), 415);
  client.send(with_type("application/json; charset=utf-8"));
  EXPECT_EQ(status_of(client.answer()), 200);
}

TEST(RequestLimitsTest, ABodyMayHaveOneMebibyte) {
  ServiceUnderTest unit;
  const std::string fits = R"({"text":")" + std::string((1 << 20) - 11, 'x') + "\"}";
  ASSERT_EQ(fits.size(), std::size_t{1} << 20);
  {
    RawClient client(unit.socket());
    client.send(request_text("PUT", "/v1/settings/a", fits));
    EXPECT_EQ(status_of(client.answer()), 200);
  }
  RawClient client(unit.socket());
  client.send(request_text("PUT", "/v1/settings/a", fits + ' '));
  const std::string answer = client.rest();
  EXPECT_EQ(status_of(answer), 413);
  EXPECT_EQ(error_of(answer)["what"], "body is larger than 1048576 bytes");
}

TEST(RequestLimitsTest, AnEndlessChunkedBodyIsRefused) {
  ServiceUnderTest unit;
  RawClient client(unit.socket());
  client.send("PUT /v1/settings/a HTTP/1.1\r\nHost: u\r\nTransfer-Encoding: chunked\r\n\r\n");
  const std::string chunk = "10000\r\n" + std::string(0x10000, 'x') + "\r\n";
  while (client.send(chunk)) {
  }
  EXPECT_EQ(status_of(client.rest()), 413);
}

TEST(RequestLimitsTest, ANumberThatGrowsInTheAgentsRequestIsBounded) {
  ServiceUnderTest unit;
  std::string body = R"({"value":[9e9)";
  while (body.size() < (1 << 20) - 16) {
    body += ",9e9";
  }
  RawClient client(unit.socket());
  client.send(request_text("PUT", "/v1/settings/a", body + "]}"));
  EXPECT_EQ(status_of(client.answer()), 413);
  EXPECT_EQ(unit.client().get("/v1/settings/a")["verb"], "settings.get");
}

TEST(RequestLimitsTest, AHeaderMayHaveSixteenKibibytes) {
  ServiceUnderTest unit;
  RawClient fits(unit.socket());
  fits.send("GET /v1/unit HTTP/1.1\r\nHost: u\r\nX: " + std::string(16'000, 'x') + "\r\n\r\n");
  EXPECT_EQ(status_of(fits.answer()), 200);
  RawClient client(unit.socket());
  client.send("GET /v1/unit HTTP/1.1\r\nHost: u\r\nX: " + std::string(17'000, 'x') + "\r\n\r\n");
  EXPECT_EQ(status_of(client.rest()), 431);
}

TEST(RequestLimitsTest, WhatIsNotHttpIsRefused) {
  ServiceUnderTest unit;
  for (const char* text :
       {"hello\r\n\r\n", "GET /v1/unit HTTP/1.0\r\n\r\n", "GET /v1/unit HTTP/1.1\r\nbad line\r\n\r\n",
        "POST /v1/unit/stop HTTP/1.1\r\nContent-Length: x\r\n\r\n"}) {
    SCOPED_TRACE(text);
    RawClient client(unit.socket());
    client.send(text);
    EXPECT_EQ(status_of(client.rest()), 400);
  }
}

TEST(RequestLimitsTest, ALongReasonIsShortened) {
  ServiceUnderTest unit;
  RawClient client(unit.socket());
  client.send(request_text("PUT", "/v1/settings/a", "{\"" + std::string(100'000, 'k') + "\":1}"));
  const std::string answer = client.answer();
  EXPECT_EQ(status_of(answer), 400);
  EXPECT_LT(answer.size(), 2000u);
}

TEST(RequestLimitsTest, ARequestThatDoesNotArriveInTimeIsAnswered408) {
  ServiceOptions options;
  options.limits.arrival = std::chrono::milliseconds(50);
  ServiceUnderTest unit(std::move(options));
  RawClient header(unit.socket());
  header.send("GET /v1/unit HT");
  EXPECT_EQ(status_of(header.rest()), 408);
  RawClient body(unit.socket());
  body.send("PUT /v1/settings/a HTTP/1.1\r\nHost: u\r\nContent-Length: 100\r\n\r\n{");
  EXPECT_EQ(status_of(body.rest()), 408);
}

TEST(RequestLimitsTest, AConnectionWithoutRequestIsClosed) {
  ServiceOptions options;
  options.limits.idle = std::chrono::milliseconds(50);
  ServiceUnderTest unit(std::move(options));
  RawClient client(unit.socket());
  EXPECT_EQ(client.rest(), "");
  auto other = unit.client();
  other.get("/v1/unit");
  RawClient(unit.socket()).rest();
  EXPECT_EQ(other.get("/v1/unit")["name"], "unit-1") << "a closed connection is replaced";
}

TEST(RequestLimitsTest, AClientThatWantsToContinueIsTold) {
  ServiceUnderTest unit;
  RawClient client(unit.socket());
  client.send("PUT /v1/settings/a HTTP/1.1\r\nHost: u\r\nExpect: 100-continue\r\nContent-Length: 11\r\n\r\n");
  EXPECT_EQ(client.until("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
  client.send(R"({"value":1})");
  EXPECT_EQ(status_of(client.answer()), 200);
}

}  // namespace
