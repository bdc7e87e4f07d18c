// Commands against a service that fails, or whose unit is hostile.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/tool/fake_service.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using tool_test::Ended;
using tool_test::FakeService;
using tool_test::run;

std::string error(const std::string& what, const std::string& where = "null") {
  return R"({"error":{"what":")" + what + R"(","where":)" + where + R"(,"expected":null}})";
}

TEST(CommandsTest, AFullInterruptQueueIsAnError) {
  FakeService service;
  service.answer("POST /v1/interrupts", error("the queue is full: 64 interrupts wait"), 409);
  const Ended ended = run({"interrupt", "0x40"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.err, "unit: interrupt: the queue is full: 64 interrupts wait\n");
  EXPECT_THAT(service.requests(), ElementsAre(R"(POST /v1/interrupts {"value":64})"));
}

TEST(CommandsTest, AnExceptionOfAnOperationIsAnError) {
  FakeService service;
  service.answer("POST /v1/operations/Init", R"({"exception":{"type":"std::logic_error","what":"no\nboard"}})");
  const Ended ended = run({"call", "Init", "--json"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "");
  EXPECT_EQ(ended.err, "unit: call: Init: exception std::logic_error: no\\nboard\n");
}

TEST(CommandsTest, ATimeLimitIsNamed) {
  FakeService service;
  service.answer("POST /v1/operations/Init", error("no answer within the time limit"), 504);
  const Ended ended = run({"call", "--timeout", "3", "Init"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.err, "unit: call: Init: no answer for 3 s; the call goes on\n");
  EXPECT_THAT(service.requests(), ElementsAre(R"(POST /v1/operations/Init {"args":[],"timeout_ms":3000})"));
}

TEST(CommandsTest, ListsReachTheServiceAsTheyAre) {
  FakeService service;
  service.answer("POST /v1/operations/Take", "{}");
  EXPECT_EQ(run({"call", "Take", R"([{"name":"x","celsius":1}])", "[a,b]", "-1"}).status, 0);
  EXPECT_THAT(service.requests(),
              ElementsAre(R"(POST /v1/operations/Take {"args":[[{"celsius":1,"name":"x"}],"[a,b]",-1]})"));
}

TEST(CommandsTest, TheHostsOutputCannotControlTheTerminal) {
  FakeService service;
  service.event("log", R"({"name":"host.err","from":0,"text":"\u001b[2Jone\n"})")
      .event("log", R"({"name":"services.log","from":0,"text":"not the host's\n"})")
      .answer("POST /v1/operations/Init", "{}");
  EXPECT_EQ(run({"call", "Init"}).err, "host: \\x1b[2Jone\n");
}

TEST(CommandsTest, ADialogCannotControlTheTerminal) {
  FakeService service;
  service.answer(
      "GET /v1/dialogs",
      R"({"dialogs":[{"id":1,"title":"\u001b]0;x\u0007","text":"a\u009bb","buttons":[{"label":"\u001bOk","answer":0}],
                     "size":"","waits":true,"answer":null,"answered":null}]})");
  EXPECT_EQ(run({"dialogs"}).out, "[\\x1b]0;x\\x07]\n  a\\xc2\\x9bb\n  <\\x1bOk>\n");
}

TEST(CommandsTest, OneOfSeveralDialogsMustBeChosen) {
  FakeService service;
  service
      .answer("GET /v1/dialogs", R"({"dialogs":[
      {"id":1,"title":"One","text":"","buttons":[{"label":"Ok","answer":0}],"size":"","waits":true,"answer":null},
      {"id":2,"title":"Two","text":"","buttons":[{"label":"Ok","answer":0}],"size":"","waits":true,"answer":null}]})")
      .answer("POST /v1/dialogs/2/answer", R"({"id":2,"button":"Ok","answer":0})");
  const Ended ended = run({"answer", "Ok"});
  EXPECT_EQ(ended.status, 2);
  EXPECT_EQ(ended.err, "unit: answer: several dialogs are waiting; choose one by its title: One, Two\n");
  EXPECT_EQ(run({"answer", "two", "ok", "--json"}).out, "{\"id\":2,\"button\":\"Ok\",\"answer\":0}\n");
}

TEST(CommandsTest, AValueThatCannotBeReadIsNullWithItsReason) {
  FakeService service;
  service.answer("GET /v1/settings?names=sysfs.celsius",
                 R"({"settings":[{"name":"sysfs.celsius","type":"text","unit":"",
      "minimum":null,"maximum":null,"choices":[],"doc":"","value":null,"reason":"not a regular file"}]})");
  EXPECT_EQ(run({"get", "--json", "sysfs.celsius"}).out,
            R"({"name":"sysfs.celsius","value":null,"unit":"","reason":"not a regular file"})"
            "\n");
  EXPECT_EQ(run({"get", "sysfs.celsius"}).out, "null (not a regular file)\n");
}

TEST(CommandsTest, AnAnswerThatIsNoneIsAnError) {
  FakeService service;
  service.answer("GET /v1/settings", R"({"colour":1})").answer("GET /v1/faults", "[]");
  Ended ended = run({"get"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, StartsWith("unit: get: unexpected answer of the unit's control service: "));
  ended = run({"faults"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.err, "unit: faults: the unit's control service gave an answer that is not a JSON object\n");
}

TEST(CommandsTest, AUnitThatDoesNotAnswerIsListedAsSuch) {
  FakeService service("silent");
  service.answer("GET /v1/unit", "", 0);
  Ended ended = run({"ps"});
  EXPECT_EQ(ended.status, 0);
  EXPECT_THAT(ended.out, HasSubstr("\nsilent  not answering  -     -        "));
  ended = run({"status"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.err, "unit: status: silent: no answer for 2 s\n");
}

TEST(CommandsTest, ACommandWhoseConnectionBreaksIsAnError) {
  FakeService service;
  service.answer("POST /v1/exec", "", 101);
  const Ended ended = run({"env"});
  EXPECT_EQ(ended.status, 1);
  EXPECT_THAT(ended.err, StartsWith("unit: env: "));
}

}  // namespace
