#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::service::Ended;
using control::service::ServiceOptions;
using nlohmann::json;
using nlohmann::ordered_json;

TEST(LifecycleTest, TheUnitIsDescribed) {
  ServiceOptions options;
  options.unit = {{"name", "bench"},
                  {"version", "0.1.0"},
                  {"started_at", "2026-01-01T00:00:00Z"},
                  {"process", {{"supervisor", 10}, {"root", 12}}},
                  {"host", {{"program", "unit-host"}}},
                  {"library", "/lib/x.so"},
                  {"services", true},
                  {"network", false},
                  {"limits", {{"processes", 512}}}};
  ServiceUnderTest unit(std::move(options));
  unit.agent().notice({{"notice", "host"}, {"state", "running"}, {"pid", 3}});
  unit.client().get("/v1/settings/a");
  EXPECT_EQ(unit.client().get("/v1/unit").dump(),
            R"({"name":"bench","state":"starting","version":"0.1.0","started_at":"2026-01-01T00:00:00Z",)"
            R"("process":{"supervisor":10,"root":12,"service":)" +
                std::to_string(::getpid()) +
                R"(},"library":"/lib/x.so","services":true,"network":false,"limits":{"processes":512},)"
                R"("host":{"state":"running","pid":3,"status":null,"signal":null,"program":"unit-host"}})");
}

TEST(LifecycleTest, AUnitWithHostIsReadyWhenTheHostRunsOrHasExited) {
  for (const char* state : {"running", "exited"}) {
    ServiceOptions options;
    options.unit = {{"name", "a"}, {"host", {{"program", "unit-host"}}}};
    ServiceUnderTest unit(std::move(options));
    unit.agent().notice({{"notice", "ready"}});
    unit.client().get("/v1/settings/a");
    EXPECT_EQ(unit.client().get("/v1/unit")["state"], "starting");
    unit.agent().notice({{"notice", "host"}, {"state", state}});
    unit.await_ready();
    EXPECT_EQ(unit.client().get("/v1/unit")["state"], "running");
  }
}

TEST(LifecycleTest, AUnitWithoutHostIsReadyWhenTheAgentSaysSo) {
  ServiceUnderTest unit;
  EXPECT_EQ(unit.client().get("/v1/unit")["state"], "starting");
  unit.agent().notice({{"notice", "ready"}});
  unit.await_ready();
  unit.agent().notice({{"notice", "ready"}});
  EXPECT_EQ(unit.client().get("/v1/unit")["state"], "running");
}

TEST(LifecycleTest, AStopIsAnsweredFirst) {
  ServiceUnderTest unit;
  auto client = unit.client();
  EXPECT_EQ(client.send("POST", "/v1/unit/stop", nullptr), (ordered_json{{"stopping", true}}));
  unit.agent().take("stop");
  EXPECT_EQ(client.get("/v1/unit")["state"], "stopping");
  try {
    client.get("/v1/settings/a");
    FAIL() << "served";
  } catch (const control::client::ApiError& error) {
    EXPECT_EQ(error.status, 503);
    EXPECT_STREQ(error.what(), "the unit is stopping");
  }
  EXPECT_EQ(client.send("POST", "/v1/unit/stop", json::object()), (ordered_json{{"stopping", true}}));
  unit.agent().leave();
  const Ended ended = unit.ended();
  EXPECT_EQ(ended.why, Ended::STOPPED);
  EXPECT_EQ(unit.agent().count("stop"), 1u);
}

TEST(LifecycleTest, TheOwnerCanStopTheUnit) {
  ServiceUnderTest unit;
  unit.service().stop();
  unit.agent().take("stop");
  unit.agent().leave();
  EXPECT_EQ(unit.ended().why, Ended::STOPPED);
}

TEST(LifecycleTest, AnAgentThatDoesNotEndIsLeft) {
  ServiceOptions options;
  options.limits.ending = std::chrono::milliseconds(50);
  ServiceUnderTest unit(std::move(options));
  unit.client().send("POST", "/v1/unit/stop", nullptr);
  EXPECT_EQ(unit.ended().why, Ended::STOPPED);
  unit.agent().await_end();
}

TEST(LifecycleTest, ClientsThatStayDoNotDelayTheEnd) {
  ServiceOptions options;
  options.limits.farewell = std::chrono::milliseconds(50);
  ServiceUnderTest unit(std::move(options));
  const RawClient idle(unit.socket());
  const RawClient half(unit.socket());
  half.send("PUT /v1/settings/a HTTP/1.1\r\nContent-Length: 5\r\n\r\n{");
  const RawClient stream(unit.socket());
  stream.send(get_text("/v1/stream?events=log"));
  unit.client().get("/v1/unit");
  unit.agent().leave();
  EXPECT_EQ(unit.ended().why, Ended::AGENT_GONE);
}

TEST(LifecycleTest, MetricsAreOpenMetrics) {
  ServiceUnderTest unit;
  auto client = unit.client();
  client.get("/v1/settings/a");
  EXPECT_THROW(client.get("/v1/nothing"), control::client::ApiError);
  const std::string text = client.text("/v1/metrics");
  EXPECT_NE(text.find("# TYPE unit_requests counter\n"), std::string::npos);
  EXPECT_NE(text.find("\nunit_requests_total{status=\"200\"} 1\n"), std::string::npos);
  EXPECT_NE(text.find("\nunit_requests_total{status=\"404\"} 1\n"), std::string::npos);
  EXPECT_NE(text.find("\nunit_agent_requests_total 1\n"), std::string::npos);
  EXPECT_NE(text.find("\nunit_agent_pending 0\n"), std::string::npos);
  EXPECT_NE(text.find("\nunit_connections 1\n"), std::string::npos);
  EXPECT_NE(text.find("\nprocess_resident_memory_bytes "), std::string::npos);
  EXPECT_EQ(text.substr(text.size() - 6), "# EOF\n");
}

/// A bound TCP socket.
int tcp_socket(in_addr_t address) {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(address);
  if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) {
    throw std::runtime_error("bind");
  }
  return descriptor;
}

/// A unit that also listens on loopback TCP, with the token "secret".
class TcpTest : public testing::Test {
protected:
  TcpTest() : listener_(tcp_socket(INADDR_LOOPBACK)) {
    sockaddr_in place{};
    socklen_t size = sizeof place;
    ::getsockname(listener_, reinterpret_cast<sockaddr*>(&place), &size);
    place_ = place;
    ServiceOptions options;
    options.tcp_listener = listener_;
    options.token = "secret";
    unit = std::make_unique<ServiceUnderTest>(std::move(options));
  }

  std::string port() const { return std::to_string(ntohs(place_.sin_port)); }
  /// The answer to a request with these header lines.
  std::string answer(const std::string& method, const std::string& target, const std::string& header) const {
    RawClient client(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(client.descriptor(), reinterpret_cast<const sockaddr*>(&place_), sizeof place_) != 0) {
      throw std::runtime_error("connect");
    }
    client.send(method + ' ' + target + " HTTP/1.1\r\n" + header + "\r\n");
    return client.answer();
  }

  int listener_;
  sockaddr_in place_{};
  std::unique_ptr<ServiceUnderTest> unit;
};

TEST_F(TcpTest, OnlyTheSocketsOwnNamesAreServed) {
  for (const std::string& host : {"127.0.0.1:" + port(), "localhost:" + port()}) {
    EXPECT_EQ(status_of(answer("GET", "/v1/unit", "Host: " + host + "\r\n")), 200) << host;
  }
  for (const std::string& host : {std::string("evil.example"), "evil.example:" + port(), std::string("127.0.0.1"),
                                  std::string("localhost:1"), std::string()}) {
    const std::string text = answer("GET", "/v1/unit", host.empty() ? "" : "Host: " + host + "\r\n");
    EXPECT_EQ(status_of(text), 403) << host;
    EXPECT_EQ(body_of(text)["error"]["where"], "Host");
  }
}

TEST_F(TcpTest, ChangesNeedTheToken) {
  const std::string host = "Host: localhost:" + port() + "\r\n";
  EXPECT_EQ(status_of(answer("DELETE", "/v1/faults", host)), 401);
  EXPECT_EQ(status_of(answer("DELETE", "/v1/faults", host + "Authorization: Bearer secreT\r\n")), 401);
  EXPECT_EQ(status_of(answer("DELETE", "/v1/faults", host + "Authorization: Bearer secret2\r\n")), 401);
  EXPECT_EQ(unit->agent().count("faults.clear"), 0u);
  EXPECT_EQ(status_of(answer("DELETE", "/v1/faults", host + "Authorization: Bearer secret\r\n")), 200);
}

TEST(TcpRefusalTest, AnotherAddressOrAMissingTokenIsRefused) {
  ServiceOptions everywhere;
  everywhere.tcp_listener = tcp_socket(INADDR_ANY);
  everywhere.token = "secret";
  EXPECT_THROW(ServiceUnderTest(std::move(everywhere)), std::invalid_argument);
  ServiceOptions open;
  open.tcp_listener = tcp_socket(INADDR_LOOPBACK);
  EXPECT_THROW(ServiceUnderTest(std::move(open)), std::invalid_argument);
}

}  // namespace
