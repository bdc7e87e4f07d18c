#include <gtest/gtest.h>
#include <poll.h>

#include <string>
#include <vector>

#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::service::ServiceOptions;
using nlohmann::ordered_json;

TEST(HostileClientTest, AThousandIdleConnectionsHoldUpNobody) {
  ServiceUnderTest unit;
  std::vector<RawClient> idle;
  for (int i = 0; i < 1000; ++i) {
    idle.emplace_back(unit.socket());
  }
  EXPECT_EQ(unit.client().get("/v1/settings/a")["verb"], "settings.get");
  EXPECT_NE(unit.client().text("/v1/metrics").find("\nunit_connections 1001\n"), std::string::npos);
}

TEST(HostileClientTest, ConnectionsBeyondTheLimitAreTurnedAway) {
  ServiceOptions options;
  options.limits.connections = 3;
  ServiceUnderTest unit(std::move(options));
  std::vector<RawClient> clients;
  for (int i = 0; i < 3; ++i) {
    clients.emplace_back(unit.socket());
    clients.back().send(get_text("/v1/unit"));
    EXPECT_EQ(status_of(clients.back().answer()), 200);
  }
  RawClient further(unit.socket());
  const std::string answer = further.rest();
  EXPECT_EQ(status_of(answer), 503);
  EXPECT_EQ(body_of(answer)["error"]["what"], "too many connections");
  clients[0].send(get_text("/v1/metrics"));
  EXPECT_NE(clients[0].answer().find("\nunit_connections_refused_total 1\n"), std::string::npos);
  clients.pop_back();
  // The service notices the end of the connection before it accepts a later one.
  for (int status = 503; status == 503;) {
    RawClient next(unit.socket());
    next.send(get_text("/v1/unit"));
    status = status_of(next.answer());
  }
}

TEST(HostileClientTest, AClientThatDiesInMidCallLeavesNothing) {
  ServiceUnderTest unit;
  unit.agent().on("operations.call", ordered_json());
  RawClient caller(unit.socket());
  caller.send(request_text("POST", "/v1/operations/X", "{}"));
  const auto request = unit.agent().take("operations.call");
  caller.close();
  auto other = unit.client();
  while (other.text("/v1/metrics").find("\nunit_connections 1\n") == std::string::npos) {
  }
  unit.agent().frame(0, ordered_json{{"id", request["id"]}, {"ok", {{"result", 1}}}}.dump());
  EXPECT_EQ(other.get("/v1/settings/a")["verb"], "settings.get");
}

TEST(HostileClientTest, AClientThatDiesInTheMiddleOfARequestLeavesNothing) {
  ServiceUnderTest unit;
  {
    const RawClient header(unit.socket());
    header.send("PUT /v1/settings/a HTTP/1.1\r\nHo");
    const RawClient body(unit.socket());
    body.send("PUT /v1/settings/a HTTP/1.1\r\nHost: u\r\nContent-Length: 100\r\n\r\n{\"value\"");
  }
  auto client = unit.client();
  while (client.text("/v1/metrics").find("\nunit_connections 1\n") == std::string::npos) {
  }
  EXPECT_EQ(unit.agent().count("settings.set"), 0u);
}

TEST(HostileClientTest, AClientThatReadsNoAnswersIsCutOff) {
  ServiceOptions options;
  options.limits.idle = std::chrono::milliseconds(200);
  ServiceUnderTest unit(std::move(options));
  unit.agent().on("settings.list", {{"ok", {{"settings", std::string(1 << 20, 'x')}}}});
  const RawClient client(unit.socket());
  EXPECT_EQ(unit.client().get("/v1/unit")["name"], "unit-1");
  while (client.send(get_text("/v1/settings"))) {
  }
  EXPECT_EQ(unit.client().get("/v1/unit")["name"], "unit-1");
}

TEST(HostileClientTest, AFollowerThatReadsNothingHoldsUpNoLog) {
  ServiceUnderTest unit;
  unit.agent().notice({{"notice", "log_stream"}, {"stream", 2}, {"name", "host.out"}});
  const RawClient follower(unit.socket());
  follower.send(get_text("/v1/logs/host.out?follow=true"));
  const std::string block(1 << 20, 'x');
  for (int i = 0; i < 20; ++i) {
    unit.agent().frame(2, block);
  }
  auto client = unit.client();
  ordered_json logs;
  do {
    logs = client.get("/v1/logs")["logs"];
  } while (logs.empty() || logs[0]["bytes"] != 20 << 20);
  EXPECT_EQ(logs[0]["dropped"], 0);
}

}  // namespace
