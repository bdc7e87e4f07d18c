#include <gtest/gtest.h>

#include <string>

#include "control/wire/exec_frames.h"
#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::client::ApiError;
using control::client::Command;
using control::client::ConnectionError;
using control::service::Ended;
using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::chrono::hours LONG{1};
const json TRUE_COMMAND = {{"argv", {"true"}}};

/// A unit whose agent starts commands as stream 4, process 17.
class ExecTest : public testing::Test {
protected:
  ExecTest() { unit.agent().on("exec.start", {{"ok", {{"stream", 4}, {"pid", 17}}}}); }

  static std::string show(const std::optional<Command::Message>& message) {
    switch (message->kind) {
      case Command::Message::OUT:
        return "out " + message->bytes;
      case Command::Message::ERR:
        return "err " + message->bytes;
      default:
        return "control " + message->control.dump();
    }
  }
  /// A connection on which the command has started, without the library.
  RawClient raw_command() {
    RawClient client(unit.socket());
    const std::string body = TRUE_COMMAND.dump();
    client.send("POST /v1/exec HTTP/1.1\r\nHost: u\r\nConnection: Upgrade\r\nUpgrade: unit-exec\r\nContent-Length: " +
                std::to_string(body.size()) + "\r\n\r\n" + body);
    client.until("}}");
    return client;
  }

  ServiceUnderTest unit;
};

TEST_F(ExecTest, ACommandIsStartedWithEverythingThatWasAsked) {
  const json request = {{"argv", {"ls", "-l", "é"}},
                        {"environment", {{"A", "1"}}},
                        {"directory", "/tmp"},
                        {"stdin", true},
                        {"terminal", {{"rows", 24}, {"columns", 80}}}};
  const Command command(unit.socket(), request);
  EXPECT_EQ(json::parse(unit.agent().take("exec.start")["with"].dump()), request);
  const Command plain(unit.socket(), TRUE_COMMAND);
  EXPECT_EQ(json::parse(unit.agent().take("exec.start")["with"].dump()), (json{{"argv", {"true"}},
                                                                               {"environment", json::object()},
                                                                               {"directory", "/"},
                                                                               {"stdin", false},
                                                                               {"terminal", {}}}));
}

TEST_F(ExecTest, OutputAndExitArriveInOrder) {
  Command command(unit.socket(), TRUE_COMMAND);
  unit.agent().frame(4, "one");
  unit.agent().frame(5, std::string("e\0\xff", 3));
  unit.agent().frame(4, "two");
  unit.agent().notice({{"notice", "exit"}, {"stream", 4}, {"status", 7}});
  EXPECT_EQ(show(command.next(LONG)), R"(control {"started":{"pid":17}})");
  EXPECT_EQ(show(command.next(LONG)), "out one");
  EXPECT_EQ(show(command.next(LONG)), "err " + std::string("e\0\xff", 3));
  EXPECT_EQ(show(command.next(LONG)), "out two");
  EXPECT_EQ(show(command.next(LONG)), R"(control {"exit":{"status":7}})");
  EXPECT_THROW(command.next(LONG), ConnectionError);
}

TEST_F(ExecTest, EveryKindOfEndIsTold) {
  const auto told = [this](json notice) {
    Command command(unit.socket(), TRUE_COMMAND);
    command.next(LONG);
    notice.update({{"notice", "exit"}, {"stream", 4}});
    unit.agent().notice(notice);
    return show(command.next(LONG));
  };
  EXPECT_EQ(told({{"signal", 9}}), R"(control {"exit":{"signal":9}})");
  EXPECT_EQ(told({{"error", "no\x1b such program"}, {"status", 127}}),
            R"(control {"exit":{"error":"no\u001b such program","status":127}})");
  EXPECT_EQ(told({{"status", "x"}}),
            R"(control {"exit":{"error":"the unit's agent did not say how the command ended","status":126}})");
}

TEST_F(ExecTest, AProgramThatCannotBeStartedHasNoStart) {
  unit.agent().on("exec.start", {{"ok", {{"stream", 6}, {"pid", nullptr}}}});
  Command command(unit.socket(), TRUE_COMMAND);
  unit.agent().notice({{"notice", "exit"}, {"stream", 6}, {"error", "no such file"}, {"status", 127}});
  EXPECT_EQ(show(command.next(LONG)), R"(control {"exit":{"error":"no such file","status":127}})");
}

TEST_F(ExecTest, InputAndControlReachTheAgent) {
  Command command(unit.socket(), TRUE_COMMAND);
  const std::string input = std::string(300'000, 'i') + std::string("\0end", 4);
  command.input(input);
  EXPECT_TRUE(unit.agent().input(4, input.size()) == input);
  command.resize(50, 132);
  command.signal(15);
  command.end_input();
  EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"resize":{"columns":132,"rows":50},"stream":4})");
  EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"signal":15,"stream":4})");
  EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"eof":true,"stream":4})");
}

TEST_F(ExecTest, InputWaitsForCreditIfTheAgentCountsIt) {
  unit.agent().on("exec.start", {{"ok", {{"stream", 4}, {"pid", 17}, {"input_credit", 10}}}});
  Command command(unit.socket(), TRUE_COMMAND);
  command.input("0123456789abcdefghij");
  command.end_input();
  EXPECT_EQ(unit.agent().input(4, 10), "0123456789");
  unit.client().get("/v1/settings/a");
  EXPECT_EQ(unit.agent().input(4, 10), "0123456789");
  EXPECT_EQ(unit.agent().count("exec.control"), 0u);
  unit.agent().notice({{"notice", "credit"}, {"stream", 4}, {"bytes", 100}});
  EXPECT_EQ(unit.agent().input(4, 20), "0123456789abcdefghij");
  EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"eof":true,"stream":4})");
}

TEST_F(ExecTest, CreditIsGivenAsTheClientTakesOutput) {
  Command command(unit.socket(), TRUE_COMMAND);
  command.next(LONG);
  const std::string block(64 << 10, 'o');
  for (int i = 0; i < 16; ++i) {
    unit.agent().frame(i % 2 == 0 ? 4 : 5, block);
    EXPECT_EQ(command.next(LONG)->bytes.size(), block.size());
    EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"credit":65536,"stream":4})");
  }
}

TEST_F(ExecTest, AClientThatReadsNothingGetsNoMoreThanItsCredit) {
  const RawClient client = raw_command();
  // What the client's socket takes is credited; later nothing is.
  const std::string block(32 << 10, 'o');
  std::size_t credit = 256 << 10;
  for (std::size_t seen = 0; credit >= block.size();) {
    unit.agent().frame(4, block);
    credit -= block.size();
    for (unit.client().get("/v1/settings/a"); seen < unit.agent().count("exec.control"); ++seen) {
      credit += unit.agent().take("exec.control")["with"]["credit"].get<std::size_t>();
    }
  }
  unit.agent().frame(4, std::string(credit + 1, 'o'));
  const Ended ended = unit.ended();
  EXPECT_EQ(ended.why, Ended::AGENT_FAILED);
  EXPECT_EQ(ended.what, "the agent sent more output than it had credit for");
}

TEST_F(ExecTest, AClientThatGoesAwayWhileItsInputWaitsAbandonsItsCommand) {
  unit.agent().on("exec.start", {{"ok", {{"stream", 4}, {"pid", 17}, {"input_credit", 1}}}});
  {
    const RawClient client = raw_command();
    client.send(control::wire::exec_frame(control::wire::ExecKind::INPUT, "ab"));
    EXPECT_EQ(unit.agent().input(4, 1), "a");
  }
  EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"abandon":true,"stream":4})");
}

TEST(ExecIdleTest, AClientMayRestWhileOutputWaits) {
  control::service::ServiceOptions options;
  options.limits.idle = std::chrono::milliseconds(50);
  ServiceUnderTest unit(std::move(options));
  unit.agent().on("exec.start", {{"ok", {{"stream", 4}, {"pid", 17}}}});
  Command command(unit.socket(), TRUE_COMMAND);
  const std::string output(256 << 10, 'o');
  unit.agent().frame(4, output);
  unit.agent().notice({{"notice", "exit"}, {"stream", 4}, {"status", 0}});
  // Until two connections were closed for their idleness.
  RawClient(unit.socket()).rest();
  RawClient(unit.socket()).rest();
  EXPECT_EQ(command.next(LONG)->control, (json{{"started", {{"pid", 17}}}}));
  EXPECT_TRUE(command.next(LONG)->bytes == output);
  EXPECT_EQ(command.next(LONG)->control, (json{{"exit", {{"status", 0}}}}));
}

TEST_F(ExecTest, AClientThatGoesAwayAbandonsItsCommand) {
  { const RawClient client = raw_command(); }
  EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"abandon":true,"stream":4})");
  unit.agent().frame(4, std::string(1 << 20, 'o'));
  unit.agent().notice({{"notice", "exit"}, {"stream", 4}, {"signal", 1}});
  EXPECT_EQ(unit.client().get("/v1/settings/a")["verb"], "settings.get");
}

TEST_F(ExecTest, AClientThatGoesAwayBeforeTheStartAbandonsItsCommand) {
  unit.agent().on("exec.start", ordered_json());
  RawClient client(unit.socket());
  const std::string body = TRUE_COMMAND.dump();
  client.send("POST /v1/exec HTTP/1.1\r\nHost: u\r\nConnection: Upgrade\r\nUpgrade: unit-exec\r\nContent-Length: " +
              std::to_string(body.size()) + "\r\n\r\n" + body);
  const auto request = unit.agent().take("exec.start");
  client.close();
  auto other = unit.client();
  while (other.text("/v1/metrics").find("\nunit_connections 1\n") == std::string::npos) {
  }
  unit.agent().frame(0, ordered_json{{"id", request["id"]}, {"ok", {{"stream", 8}, {"pid", 9}}}}.dump());
  EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"abandon":true,"stream":8})");
}

TEST_F(ExecTest, FramesThatAreNotKnownEndTheConnectionAndTheCommand) {
  using control::wire::exec_frame;
  using control::wire::ExecKind;
  for (const std::string& bytes :
       {std::string("\xff\xff\xff\xff\0", 5), std::string("\0\0\0\0\7", 5), exec_frame(ExecKind::OUT, "x"),
        exec_frame(ExecKind::CONTROL, "{"), exec_frame(ExecKind::CONTROL, "{}"), exec_frame(ExecKind::CONTROL, "[]"),
        exec_frame(ExecKind::CONTROL, R"({"signal":0})"), exec_frame(ExecKind::CONTROL, R"({"signal":65})"),
        exec_frame(ExecKind::CONTROL, R"({"eof":false})"), exec_frame(ExecKind::CONTROL, R"({"abandon":true})"),
        exec_frame(ExecKind::CONTROL, R"({"resize":{"rows":0,"columns":1}})"),
        exec_frame(ExecKind::CONTROL, std::string(100'000, '['))}) {
    RawClient client = raw_command();
    client.send(bytes);
    EXPECT_EQ(client.rest(), "");
    EXPECT_EQ(unit.agent().take("exec.control")["with"].dump(), R"({"abandon":true,"stream":4})");
  }
}

TEST_F(ExecTest, ARequestWithoutUpgradeOrProgramIsRefused) {
  const auto refusal = [this](const json& body) {
    try {
      Command(unit.socket(), body);
      return std::string("started");
    } catch (const ApiError& error) {
      return std::to_string(error.status) + ' ' + error.what();
    }
  };
  EXPECT_EQ(refusal({{"argv", json::array()}}), "400 argv: must name a program");
  EXPECT_EQ(refusal({{"argv", {""}}}), "400 argv: must name a program");
  EXPECT_EQ(refusal({{"argv", {1}}}), "400 argv: must be array of texts without NUL bytes, not an array");
  EXPECT_EQ(refusal({{"argv", {"x"}}, {"environment", {{"A", 1}}}}),
            "400 environment: must be object of texts without NUL bytes, not an object");
  EXPECT_EQ(refusal({{"argv", {"x"}}, {"terminal", {{"rows", 1}, {"columns", 100'000}}}}).substr(0, 14),
            "400 terminal: ");
  RawClient client(unit.socket());
  client.send(request_text("POST", "/v1/exec", R"({"argv":["true"]})"));
  EXPECT_EQ(body_of(client.answer())["error"]["where"], "Upgrade");
  unit.agent().on("exec.start", {{"error", {{"code", 409}, {"what", "the unit is starting"}}}});
  EXPECT_EQ(refusal(TRUE_COMMAND), "409 the unit is starting");
  unit.agent().on("exec.start", {{"ok", {{"stream", 0}}}});
  EXPECT_EQ(refusal(TRUE_COMMAND), "502 the unit's agent gave a senseless answer");
}

TEST_F(ExecTest, AnEndOfTheUnitEndsTheCommand) {
  Command command(unit.socket(), TRUE_COMMAND);
  unit.agent().frame(4, "last");
  unit.agent().leave();
  EXPECT_EQ(show(command.next(LONG)), R"(control {"started":{"pid":17}})");
  EXPECT_EQ(show(command.next(LONG)), "out last");
  EXPECT_EQ(show(command.next(LONG)), R"(control {"exit":{"error":"the unit has ended","status":126}})");
  EXPECT_EQ(unit.ended().why, Ended::AGENT_GONE);
}

}  // namespace
