#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "control/service/utf8.h"
#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::client::ApiError;
using control::client::Event;
using control::client::EventStream;
using control::service::ServiceOptions;
using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::chrono::hours LONG{1};

/// The next event as "type data".
std::string next(EventStream& stream) {
  const auto event = stream.next(LONG);
  return event->type + ' ' + event->data.dump();
}

/// An agent's answer to settings.list with that value of one setting.
FakeAgent::Verb setting(const std::atomic<int>& value) {
  return [&value](const FakeAgent::Json& with) -> FakeAgent::Json {
    return {{"ok", {{"settings", {{{"name", with["names"][0]}, {"value", value.load()}}}}}}};
  };
}

TEST(EventStreamTest, BeginsWithTheStateOfTheUnit) {
  ServiceUnderTest unit;
  unit.agent().on("dialogs.list", {{"ok", {{"dialogs", json::array()}}}});
  unit.agent().on("eventlog.read", {{"ok", {{"next", 0}, {"events", json::array()}}}});
  EventStream stream(unit.socket(), "/v1/stream");
  EXPECT_EQ(next(stream), R"(hello {"name":"unit-1","state":"starting"})");
  EXPECT_EQ(next(stream), R"(state {"state":"starting"})");
  EXPECT_EQ(next(stream), R"(host {"pid":null,"program":null,"signal":null,"state":"none","status":null})");
  EXPECT_EQ(next(stream), R"(dialogs {"dialogs":[]})");
}

TEST(EventStreamTest, TellsOfTheUnitAndItsHost) {
  ServiceUnderTest unit;
  EventStream stream(unit.socket(), "/v1/stream?events=state,host");
  for (int i = 0; i < 3; ++i) {
    stream.next(LONG);
  }
  unit.agent().notice({{"notice", "ready"}});
  EXPECT_EQ(next(stream), R"(state {"state":"running"})");
  unit.agent().notice({{"notice", "host"}, {"state", "exited"}, {"pid", 4}, {"signal", 11}});
  EXPECT_EQ(next(stream), R"(host {"pid":4,"program":null,"signal":11,"state":"exited","status":null})");
  unit.agent().leave();
  EXPECT_EQ(next(stream), R"(state {"state":"stopping"})");
  EXPECT_THROW(stream.next(LONG), control::client::ConnectionError);
}

TEST(EventStreamTest, TellsChangesOfWatchedSettingsOnly) {
  ServiceUnderTest unit;
  std::atomic<int> value = 1;
  unit.agent().on("settings.list", setting(value));
  EventStream stream(unit.socket(), "/v1/stream?events=settings&settings=a.b");
  EXPECT_EQ(stream.next(LONG)->type, "hello");
  EXPECT_EQ(next(stream), R"(settings {"values":{"a.b":1}})");
  const std::size_t looks = unit.agent().count("settings.list");
  while (unit.agent().count("settings.list") < looks + 3) {
  }
  value = 2;
  EXPECT_EQ(next(stream), R"(settings {"values":{"a.b":2}})");
}

TEST(EventStreamTest, AnUnknownSettingIsAnErrorAtOnce) {
  ServiceUnderTest unit;
  unit.agent().on("settings.list", {{"error", {{"code", 404}, {"what", "no such setting"}, {"where", "x"}}}});
  try {
    EventStream(unit.socket(), "/v1/stream?settings=x");
    FAIL() << "accepted";
  } catch (const ApiError& error) {
    EXPECT_EQ(error.status, 404);
    EXPECT_STREQ(error.what(), "x: no such setting");
  }
}

TEST(EventStreamTest, SettingsAreAskedForOnlyWhileSomebodyWatches) {
  ServiceUnderTest unit;
  std::atomic<int> value = 1;
  unit.agent().on("settings.list", setting(value));
  {
    EventStream stream(unit.socket(), "/v1/stream?events=settings&settings=a");
    while (unit.agent().count("settings.list") < 3) {
    }
  }
  auto client = unit.client();
  while (client.text("/v1/metrics").find("\nunit_connections 1\n") == std::string::npos) {
  }
  // Asked for at most once more: a look may have been under way.
  const std::size_t looks = unit.agent().count("settings.list");
  EventStream other(unit.socket(), "/v1/stream?events=log");
  EXPECT_EQ(other.next(std::chrono::milliseconds(200))->type, "hello");
  EXPECT_EQ(other.next(std::chrono::milliseconds(200)), std::nullopt);
  EXPECT_LE(unit.agent().count("settings.list"), looks + 1);
}

TEST(EventStreamTest, TellsOfDialogsWhenTheAgentSaysSo) {
  ServiceUnderTest unit;
  unit.agent().on("dialogs.list", {{"ok", {{"dialogs", {{{"id", 1}}}}}}});
  EventStream stream(unit.socket(), "/v1/stream?events=dialogs");
  EXPECT_EQ(stream.next(LONG)->type, "hello");
  EXPECT_EQ(next(stream), R"(dialogs {"dialogs":[{"id":1}]})");
  unit.agent().on("dialogs.list", {{"ok", {{"dialogs", {{{"id", 1}}, {{"id", 2}}}}}}});
  unit.agent().notice({{"notice", "dialogs"}});
  EXPECT_EQ(next(stream), R"(dialogs {"dialogs":[{"id":1},{"id":2}]})");
}

TEST(EventStreamTest, AnAnswerOfSeveralLinesIsOneEvent) {
  ServiceUnderTest unit;
  unit.agent().on("dialogs.list", ordered_json());
  EventStream stream(unit.socket(), "/v1/stream?events=dialogs");
  EXPECT_EQ(stream.next(LONG)->type, "hello");
  const auto request = unit.agent().take("dialogs.list");
  unit.agent().frame(0, "{\"id\":" + request["id"].dump() + ",\"ok\":{\"dialogs\":\r\n\n[]}}");
  EXPECT_EQ(next(stream), R"(dialogs {"dialogs":[]})");
}

TEST(EventStreamTest, TellsOfEventsSinceItsBegin) {
  ServiceUnderTest unit;
  std::atomic<int> written = 2;
  unit.agent().on("eventlog.read", [&written](const FakeAgent::Json& with) -> FakeAgent::Json {
    FakeAgent::Json events = FakeAgent::Json::array();
    for (int i = with["from"]; i < written; ++i) {
      events.push_back(i);
    }
    return {{"ok", {{"next", written.load()}, {"events", events}}}};
  });
  EventStream stream(unit.socket(), "/v1/stream?events=eventlog");
  EXPECT_EQ(stream.next(LONG)->type, "hello");
  written = 4;
  EXPECT_EQ(next(stream), R"(eventlog {"events":[2,3],"next":4})");
}

TEST(EventStreamTest, TellsTheTextOfLogsInWholeCharacters) {
  ServiceUnderTest unit;
  unit.agent().notice({{"notice", "log_stream"}, {"stream", 2}, {"name", "host.out"}});
  EventStream stream(unit.socket(), "/v1/stream?events=log");
  EXPECT_EQ(stream.next(LONG)->type, "hello");
  unit.agent().frame(2, "a\xc2");
  unit.agent().frame(2, "\xb0\x1b\xff\n");
  EXPECT_EQ(next(stream), R"(log {"from":0,"name":"host.out","text":"a"})");
  EXPECT_EQ(next(stream), "log {\"from\":1,\"name\":\"host.out\",\"text\":\"°\\u001b\xef\xbf\xbd\\n\"}");
}

TEST(EventStreamTest, ACommentShowsThatTheConnectionLives) {
  ServiceOptions options;
  options.limits.comment = std::chrono::milliseconds(20);
  ServiceUnderTest unit(std::move(options));
  RawClient client(unit.socket());
  client.send(get_text("/v1/stream?events=log"));
  EXPECT_EQ(client.until("\r\n\r\n").substr(0, 17), "HTTP/1.1 200 OK\r\n");
  client.until("\n\n\r\n");
  EXPECT_EQ(client.until("\n\n\r\n"), "4\r\n: \n\n\r\n");
}

TEST(EventStreamTest, AClientThatReadsNothingIsCutOff) {
  ServiceUnderTest unit;
  unit.agent().notice({{"notice", "log_stream"}, {"stream", 2}, {"name", "host.out"}});
  RawClient client(unit.socket());
  client.send(get_text("/v1/stream?events=log"));
  client.until("hello");
  EventStream other(unit.socket(), "/v1/stream?events=log");
  EXPECT_EQ(other.next(LONG)->type, "hello");
  const std::string block(100 << 10, 'x');
  auto metrics = unit.client();
  while (metrics.text("/v1/metrics").find("\nunit_event_streams 1\n") == std::string::npos) {
    unit.agent().frame(2, block);
    EXPECT_EQ(other.next(LONG)->data["text"].get<std::string>().size(), block.size());
  }
  const std::string rest = client.rest();
  EXPECT_LT(rest.size(), std::size_t{2} << 20);
  EXPECT_EQ(rest.find("\r\n0\r\n"), std::string::npos) << "ended as if it were complete";
}

TEST(Utf8Test, AnIncompleteCharacterAtTheEndIsFound) {
  using control::service::complete_characters;
  EXPECT_EQ(complete_characters(""), 0u);
  EXPECT_EQ(complete_characters("ab"), 2u);
  EXPECT_EQ(complete_characters("a\xc2"), 1u);
  EXPECT_EQ(complete_characters("a\xc2\xb0"), 3u);
  EXPECT_EQ(complete_characters("\xe2\x82"), 0u);
  EXPECT_EQ(complete_characters("\xe2\x82\xac"), 3u);
  EXPECT_EQ(complete_characters("\xf0\x9f\x98"), 0u);
  EXPECT_EQ(complete_characters("\xf0\x9f\x98\x80"), 4u);
  EXPECT_EQ(complete_characters("\x80\x80\x80\x80"), 4u);
  EXPECT_EQ(complete_characters("\xff"), 0u) << "may begin a character";
}

}  // namespace
