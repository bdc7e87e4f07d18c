// The agent in a real private root: set-up, requests, the end.

#include <sys/socket.h>

#include "tests/unit/simulator/agent/agent_fixture.h"

namespace {

using namespace agent_test;
using testing::HasSubstr;

TEST(AgentTest, AUnitThatIsSetUpAnswers) {
  RealAgent agent;
  EXPECT_EQ(agent.set_up()["notice"], "ready");
  EXPECT_EQ(agent.request("settings.get", {{"name", "sensors.mic284"}})["value"], 0);
}

TEST(AgentTest, TheUnitFileSetsTheValues) {
  RealAgent agent;
  Json orders = RealAgent::plain_orders();
  orders["unit_file"] = R"({"board":{"handle":7}})";
  orders["without"] = {"gui_manager"};
  agent.set_up(orders);
  EXPECT_EQ(agent.request("settings.get", {{"name", "board.handle"}})["value"], 7);
  EXPECT_EQ(agent.request("settings.get", {{"name", "services.gui_manager.behaviour"}})["value"], "absent");
}

TEST(AgentTest, ABadUnitFileIsReported) {
  RealAgent agent;
  Json orders = RealAgent::plain_orders();
  orders["unit_file"] = R"({"board":{"handle":"x"}})";
  const Json notice = agent.set_up(orders);
  EXPECT_EQ(notice["notice"], "failed");
  EXPECT_THAT(notice["what"], HasSubstr("test: board.handle: "));
}

TEST(AgentTest, BadOrdersAreReported) {
  RealAgent agent;
  Json orders = RealAgent::plain_orders();
  orders["services"] = 1;
  EXPECT_EQ(agent.set_up(orders)["what"], "must be true or false, not 1");
}

TEST(AgentTest, BeforeTheSetUpRequestsAreRefused) {
  RealAgent agent;
  EXPECT_EQ(agent.request("settings.list")["error"]["code"], 409);
  EXPECT_EQ(agent.request("exec.start", {{"argv", {"true"}}})["error"]["what"], "the unit is starting");
}

TEST(AgentTest, SettingsAreSetAndRead) {
  RealAgent agent;
  agent.set_up();
  EXPECT_EQ(agent.request("settings.set", {{"name", "board.handle"}, {"value", 3}}),
            (Json{{"name", "board.handle"}, {"value", 3}}));
  EXPECT_EQ(agent.request("settings.set", {{"name", "sysfs.FPGA_ver"}, {"text", "rev9\n"}})["value"], "rev9\n");
  const Json error = agent.request("settings.set", {{"name", "board.handle"}, {"value", -1}})["error"];
  EXPECT_EQ(error["code"], 400);
  EXPECT_EQ(error["where"], "board.handle");
  EXPECT_EQ(agent.request("settings.get", {{"name", "board.handle"}})["value"], 3);
  EXPECT_EQ(agent.request("settings.get", {{"name", "board.hand"}})["error"]["code"], 404);
}

TEST(AgentTest, SeveralSettingsAreSetAllOrNone) {
  RealAgent agent;
  agent.set_up();
  const Json refused =
      agent.request("settings.patch", {{"values", {{"sensors.mic284", 3}, {"power_supply.reply_delay", -1}}}});
  EXPECT_EQ(refused["error"]["where"], "power_supply.reply_delay");
  EXPECT_EQ(agent.request("settings.get", {{"name", "sensors.mic284"}})["value"], 0);
  const Json done = agent.request("settings.patch", {{"values", {{"board.handle", 3}, {"sensors.mic284", 26}}}});
  EXPECT_EQ(done["values"], (Json{{"board.handle", 3}, {"sensors.mic284", 26}}));
}

TEST(AgentTest, AnUnknownRequestIsRefused) {
  RealAgent agent;
  agent.set_up();
  const Json error = agent.request("colour.set")["error"];
  EXPECT_EQ(error["code"], 404);
  EXPECT_EQ(error["where"], "colour.set");
}

TEST(AgentTest, WithServicesTheyAreThereWhenTheUnitIsReady) {
  RealAgent agent;
  Json orders = RealAgent::plain_orders();
  orders["services"] = true;
  ASSERT_EQ(agent.set_up(orders)["notice"], "ready");
  EXPECT_EQ(agent.request("services.applied", {{"timeout_ms", 1}})["applied"], true);
}

TEST(AgentTest, AHostServesWhenTheUnitIsReady) {
  RealAgent agent;
  Json orders = RealAgent::plain_orders();
  orders["host"] = {"/opt/unit/bin/unit-host"};
  ASSERT_EQ(agent.set_up(orders)["notice"], "ready");
  EXPECT_EQ(agent.request("host.status")["state"], "running");
  EXPECT_EQ(agent.request("operations.call", {{"name", "GetMaxInterfaces"}}), (Json{{"result", 1}}));
  EXPECT_EQ(agent.request("operations.list")["operations"].size(), 49U);
  const Json error = agent.request("operations.call", {{"name", "GetColour"}})["error"];
  EXPECT_EQ(error["code"], 400);
  EXPECT_THAT(error["what"], HasSubstr("unknown operation \"GetColour\""));
}

TEST(AgentTest, AHostThatExitsAtOnceIsReported) {
  RealAgent agent;
  Json orders = RealAgent::plain_orders();
  orders["host"] = {"sh", "-c", "echo gone >&2; exit 7"};
  ASSERT_EQ(agent.set_up(orders)["notice"], "ready");
  const Json state = agent.request("host.status");
  EXPECT_EQ(state["state"], "exited");
  EXPECT_EQ(state["status"], 7);
  EXPECT_EQ(agent.request("operations.list")["error"]["code"], 409);
}

TEST(AgentTest, ACallThatNeverReturnsHoldsUpNoOther) {
  RealAgent agent;
  Json orders = RealAgent::plain_orders();
  orders["host"] = {"/opt/unit/bin/unit-host"};
  orders["unit_file"] = R"({"faults":{"psdriver":{"GetBatteryRelativeStateOfCharge":"no_reply"}}})";
  ASSERT_EQ(agent.set_up(orders)["notice"], "ready");
  agent.begin("operations.call", {{"name", "GetBatteryChargeStatus"}});
  const Json error =
      agent.request("operations.call", {{"name", "GetBatteryChargeStatus"}, {"timeout_ms", 50}})["error"];
  EXPECT_EQ(error["code"], 504);
  EXPECT_EQ(agent.request("operations.call", {{"name", "GetMaxInterfaces"}})["result"], 1);
}

TEST(AgentTest, TheUnitEndsWithTheChannel) {
  RealAgent agent;
  agent.set_up();
  agent.request("exec.start", {{"argv", {"sleep", "1000"}}});
  agent.hang_up();
  EXPECT_EQ(agent.wait(), 0);
}

TEST(AgentTest, TheOrderToStopEndsTheUnit) {
  RealAgent agent;
  agent.set_up();
  agent.begin("stop");
  EXPECT_EQ(agent.wait(), 0);
}

TEST(AgentTest, AServiceThatBreaksTheProtocolEndsTheUnit) {
  RealAgent agent;
  agent.set_up();
  agent.send_raw(simulator::channel::frame_of(0, "no document"));
  EXPECT_EQ(agent.wait(), 1);
}

}  // namespace
