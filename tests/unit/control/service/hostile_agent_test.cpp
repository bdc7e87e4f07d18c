#include <gtest/gtest.h>

#include <string>

#include "control/service/limits.h"
#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::client::ApiError;
using control::service::Ended;
using control::service::ServiceOptions;
using nlohmann::ordered_json;

int status_of_get(ServiceUnderTest& unit, const std::string& target) {
  try {
    unit.client().get(target);
    return 200;
  } catch (const ApiError& error) {
    return error.status;
  }
}

/// The reason for which the service ends after those bytes of the agent.
std::string failure_after(const std::string& bytes) {
  ServiceUnderTest unit;
  unit.agent().raw(bytes);
  const Ended ended = unit.ended();
  EXPECT_EQ(ended.why, Ended::AGENT_FAILED);
  return ended.what;
}

std::string document(const std::string& text) {
  return simulator::channel::frame_of(0, text);
}

TEST(HostileAgentTest, NonsenseEndsTheUnit) {
  EXPECT_EQ(failure_after(std::string("\xff\xff\xff\xff\0\0\0\0", 8)),
            "frame of 4294967295 bytes; at most 4194304 are allowed");
  EXPECT_EQ(failure_after(document("{")), "byte 2: not valid JSON");
  EXPECT_EQ(failure_after(document("[]")), "a document of the agent is not an object");
  EXPECT_EQ(failure_after(document("{}")), "a document of the agent is neither an answer nor a notice");
  EXPECT_EQ(failure_after(document(R"({"id":"1","ok":{}})")),
            "a document of the agent is neither an answer nor a notice");
  EXPECT_EQ(failure_after(document(R"({"id":1,"ok":{},"error":{}})")),
            "a document of the agent is neither an answer nor a notice");
  EXPECT_EQ(failure_after(document(R"({"notice":1})")), "a notice of the agent has no name");
  EXPECT_EQ(failure_after(document(R"({"id":1,"id":2})")), "key \"id\": given twice");
  EXPECT_EQ(failure_after(document(std::string(100'000, '['))), "nested deeper than 64 levels");
  EXPECT_EQ(failure_after(document(std::string("{}\0", 3))), "byte 3: NUL byte");
  EXPECT_EQ(failure_after(document("{\"notice\":\"\xff\"}")), "byte 12: not valid JSON");
  EXPECT_EQ(failure_after(document(R"({"notice":"host","state":"on fire"})")),
            "the agent told of the host in a form that is not known");
  EXPECT_EQ(failure_after(document(R"({"notice":"host","state":"running","pid":"x"})")),
            "the agent told of the host in a form that is not known");
  EXPECT_EQ(failure_after(document(R"({"notice":"log_stream","stream":0,"name":"host.out"})")),
            "the agent opened a log in a form that is not known, or too many");
}

TEST(HostileAgentTest, AFailedSetUpIsTold) {
  EXPECT_EQ(failure_after(document(R"({"notice":"failed","what":"no naming service"})")), "no naming service");
}

TEST(HostileAgentTest, TooManyNoticesEndTheUnit) {
  ServiceOptions options;
  options.limits.notices_per_second = 100;
  ServiceUnderTest unit(std::move(options));
  while (unit.agent().raw(document(R"({"notice":"anything"})"))) {
  }
  const Ended ended = unit.ended();
  EXPECT_EQ(ended.why, Ended::AGENT_FAILED);
  EXPECT_EQ(ended.what, "the agent sends too many notices");
}

TEST(HostileAgentTest, TooManyLogsEndTheUnit) {
  std::string bytes;
  for (int i = 1; i <= 65; ++i) {
    bytes += document(R"({"notice":"log_stream","stream":)" + std::to_string(i) + R"(,"name":"x.log"})");
  }
  EXPECT_EQ(failure_after(bytes), "the agent opened a log in a form that is not known, or too many");
}

TEST(HostileAgentTest, AnswersToNoRequestAreIgnoredAndCounted) {
  ServiceUnderTest unit;
  unit.agent().raw(document(R"({"id":77,"ok":{}})") + document(R"({"id":1,"error":{}})"));
  EXPECT_EQ(status_of_get(unit, "/v1/settings/a"), 200);
  EXPECT_NE(unit.client().text("/v1/metrics").find("\nunit_agent_unknown_answers_total 2\n"), std::string::npos);
}

TEST(HostileAgentTest, StreamsThatNobodyOpenedAreDropped) {
  ServiceUnderTest unit;
  unit.agent().frame(9, std::string(1000, 'x'));
  unit.agent().notice({{"notice", "log_stream"}, {"stream", 11}, {"name", "../../etc/passwd"}});
  unit.agent().frame(11, std::string(500, 'x'));
  EXPECT_EQ(status_of_get(unit, "/v1/settings/a"), 200);
  EXPECT_NE(unit.client().text("/v1/metrics").find("\nunit_agent_dropped_bytes_total 1500\n"), std::string::npos);
  EXPECT_EQ(unit.client().get("/v1/logs"), (ordered_json{{"logs", ordered_json::array()}}));
}

TEST(HostileAgentTest, ASenselessAnswerIs502) {
  ServiceUnderTest unit;
  for (const char* answer :
       {R"({"ok":1})", R"({"ok":null})", R"({"error":5})", R"({"error":{}})", R"({"error":{"code":200,"what":"x"}})",
        R"({"error":{"code":400,"what":5}})", R"({"error":{"code":400,"what":"x","where":7}})", R"({"o\u006b":{}})"}) {
    SCOPED_TRACE(answer);
    const std::string members = std::string(answer).substr(1);
    unit.agent().on("settings.get", ordered_json());
    RawClient client(unit.socket());
    client.send(get_text("/v1/settings/a"));
    const auto request = unit.agent().take("settings.get");
    unit.agent().raw(document("{\"id\":" + request["id"].dump() + "," + members));
    EXPECT_EQ(status_of(client.answer()), 502);
  }
}

TEST(HostileAgentTest, AnAgentThatAnswersNothingIs504) {
  ServiceOptions options;
  options.limits.agent_answer = std::chrono::milliseconds(50);
  ServiceUnderTest unit(std::move(options));
  for (const char* verb : {"settings.get", "operations.call", "exec.start"}) {
    unit.agent().on(verb, ordered_json());
  }
  EXPECT_EQ(status_of_get(unit, "/v1/settings/a"), 504);
  RawClient call(unit.socket());
  call.send(request_text("POST", "/v1/operations/X", R"({"timeout_ms":1})"));
  EXPECT_EQ(status_of(call.answer()), 504);
  RawClient client(unit.socket());
  const std::string body = R"({"argv":["true"]})";
  client.send("POST /v1/exec HTTP/1.1\r\nHost: u\r\nConnection: Upgrade\r\nUpgrade: unit-exec\r\nContent-Length: " +
              std::to_string(body.size()) + "\r\n\r\n" + body);
  EXPECT_EQ(status_of(client.answer()), 504);
  // The command that starts too late is abandoned.
  const auto request = unit.agent().take("exec.start");
  unit.agent().frame(0, ordered_json{{"id", request["id"]}, {"ok", {{"stream", 5}, {"pid", 9}}}}.dump());
  EXPECT_EQ(unit.agent().take("exec.control")["with"], (ordered_json{{"abandon", true}, {"stream", 5}}));
}

TEST(HostileAgentTest, AnAnswerThatIsTooLateIsNotTakenForAnother) {
  ServiceOptions options;
  options.limits.agent_answer = std::chrono::milliseconds(50);
  ServiceUnderTest unit(std::move(options));
  unit.agent().on("settings.get", ordered_json());
  EXPECT_EQ(status_of_get(unit, "/v1/settings/a"), 504);
  const auto request = unit.agent().take("settings.get");
  unit.agent().frame(0, ordered_json{{"id", request["id"]}, {"ok", {{"late", true}}}}.dump());
  EXPECT_EQ(unit.client().get("/v1/settings")["verb"], "settings.list");
}

TEST(HostileAgentTest, RequestsWithoutAnswerAreBounded) {
  ServiceOptions options;
  options.limits.pending = 2;
  ServiceUnderTest unit(std::move(options));
  unit.agent().on("operations.call", ordered_json());
  const RawClient one(unit.socket());
  const RawClient two(unit.socket());
  one.send(request_text("POST", "/v1/operations/X", "{}"));
  two.send(request_text("POST", "/v1/operations/X", "{}"));
  unit.agent().take("operations.call");
  unit.agent().take("operations.call");
  EXPECT_EQ(status_of_get(unit, "/v1/settings/a"), 503);
  EXPECT_EQ(status_of_get(unit, "/v1/unit"), 200);
}

TEST(HostileAgentTest, RequestsThatWaitAreAnsweredWhenTheAgentIsGone) {
  ServiceUnderTest unit;
  unit.agent().on("operations.call", ordered_json());
  RawClient client(unit.socket());
  client.send(request_text("POST", "/v1/operations/X", "{}"));
  unit.agent().take("operations.call");
  unit.agent().leave();
  const std::string answer = client.rest();
  EXPECT_EQ(status_of(answer), 503);
  EXPECT_EQ(body_of(answer)["error"]["what"], "the unit has ended");
  const Ended ended = unit.ended();
  EXPECT_EQ(ended.why, Ended::AGENT_GONE);
  EXPECT_EQ(ended.what, "the unit has ended");
}

}  // namespace
