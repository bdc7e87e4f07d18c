#include "host/requests.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <string>

#include "tests/unit/host/fake_hardware.h"

namespace host {
namespace {

using host_test::FakeHardware;

class RequestsTest : public testing::Test {
protected:
  RequestsTest() { Hardware = &hardware_; }
  ~RequestsTest() override { Hardware = nullptr; }

  std::string serve(const std::string& line) { return requests_.serve(line).line; }

  FakeHardware hardware_;
  Requests requests_{false};
};

TEST_F(RequestsTest, AnswersUnderTheRequestsId) {
  EXPECT_EQ(serve(R"({"id":1,"call":"GetMaxInterfaces","args":[]})"), R"({"id":1,"result":1})");
  EXPECT_EQ(serve(R"({"id":"x","call":"GetMaxInterfaces"})"), R"({"id":"x","result":1})");
  EXPECT_EQ(serve(R"({"call":"GetMaxInterfaces"})"), R"({"id":null,"result":1})");
}

TEST_F(RequestsTest, TellsWhatAnOperationHasThrown) {
  EXPECT_EQ(serve(R"({"id":1,"call":"shutdown"})"),
            R"({"exception":{"type":"std::runtime_error","what":"no shutdown today"},"id":1})");
  EXPECT_EQ(serve(R"({"id":2,"call":"GetChargerStatus"})"), R"({"exception":{"type":"int","what":null},"id":2})");
}

TEST_F(RequestsTest, RefusesWhatIsNoRequest) {
  constexpr const char* NO_OBJECT =
      R"({"error":"request: expected one JSON object on one line, such as {\"id\":1,\"call\":\"GetBW\",\"args\":[]}","id":null})";
  EXPECT_EQ(serve(""), NO_OBJECT);
  EXPECT_EQ(serve("{\"call\":"), NO_OBJECT);
  EXPECT_EQ(serve("[1]"), NO_OBJECT);
  EXPECT_EQ(serve(R"({"call":"GetBW","what":1})"),
            R"_({"error":"request: key \"what\": expected \"id\", \"call\" (text) or \"args\" (array)","id":null})_");
  EXPECT_EQ(serve(R"({"call":"GetBW","args":1})"),
            R"_({"error":"request: key \"args\": expected \"id\", \"call\" (text) or \"args\" (array)","id":null})_");
  EXPECT_EQ(serve(R"({"id":1})"),
            R"({"error":"request: expected the key \"call\" with the name of an operation","id":null})");
}

TEST_F(RequestsTest, RefusesUnknownOperationsAndBadArguments) {
  EXPECT_EQ(serve(R"({"id":1,"call":"Nope"})"),
            R"({"error":"request: unknown operation \"Nope\"; \"operations\" lists them","id":1})");
  EXPECT_EQ(serve(R"({"id":2,"call":"StartDHCP"})"),
            R"({"error":"StartDHCP: argument 1 (interface): expected text; missing","id":2})");
  EXPECT_THAT(hardware_.calls, testing::IsEmpty());
}

TEST_F(RequestsTest, CallsNothingWithoutAHardwareObject) {
  Hardware = nullptr;
  EXPECT_EQ(serve(R"({"id":1,"call":"GetBW"})"), R"({"error":"GetBW: no hardware object","id":1})");
  EXPECT_EQ(serve(R"({"id":2,"call":"hardware"})"), R"({"id":2,"result":"none"})");
}

TEST_F(RequestsTest, CallsNothingOnTheHostsStandIn) {
  Requests preset(true);
  EXPECT_EQ(preset.serve(R"({"id":1,"call":"GetBW"})").line,
            R"({"error":"GetBW: the hardware object is the host's dummy","id":1})");
  EXPECT_EQ(preset.serve(R"({"id":2,"call":"hardware"})").line, R"({"id":2,"result":"preset"})");
}

TEST_F(RequestsTest, LeavesOnceAsked) {
  const Answer other = requests_.serve(R"({"id":1,"call":"hardware"})");
  EXPECT_EQ(other.line, R"({"id":1,"result":"set"})");
  EXPECT_FALSE(other.leave);
  const Answer last = requests_.serve(R"({"id":2,"call":"leave"})");
  EXPECT_EQ(last.line, R"({"id":2})");
  EXPECT_TRUE(last.leave);
}

TEST_F(RequestsTest, ListsAllOperations) {
  const nlohmann::json answer = nlohmann::json::parse(serve(R"({"id":1,"call":"operations"})"));
  ASSERT_EQ(answer["operations"].size(), 49U);
  EXPECT_EQ(answer["operations"][0].dump(), R"({"args":"[list before the call: array]","call":"GetVersionList"})");
}

}  // namespace
}  // namespace host
