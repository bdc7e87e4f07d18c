#include "tool/operations.h"

#include <gtest/gtest.h>

namespace {

using namespace tool;
using nlohmann::json;
using nlohmann::ordered_json;

TEST(OperationsTest, ArgumentsAreParsedAsJsonIfValid) {
  EXPECT_EQ(typed_argument("3"), json(3));
  EXPECT_EQ(typed_argument("eth0"), json("eth0"));
  EXPECT_EQ(typed_argument(R"([{"name":"x","celsius":1}])"), json::parse(R"([{"name":"x","celsius":1}])"));
  EXPECT_EQ(typed_argument("[a,b]"), json("[a,b]"));
  EXPECT_EQ(typed_argument(""), json(""));
}

TEST(OperationsTest, TemperaturesHaveTwoDecimals) {
  EXPECT_EQ(celsius(31.01001), "31.01 °C");
  EXPECT_EQ(celsius(-1.5), "-1.50 °C");
  EXPECT_EQ(celsius(degrees_of(30416)), "31.01 °C");
}

TEST(OperationsTest, AListIsATable) {
  const ordered_json answer = ordered_json::parse(
      R"({"result":1,"temperatures":[{"name":"RF Temperature","celsius":31.01001},{"name":"CPU","celsius":null}]})");
  EXPECT_EQ(answer_as_text("GetTemperature", answer),
            "result: 1\n"
            "temperatures:\n"
            "  name            celsius\n"
            "  RF Temperature  31.01 °C\n"
            "  CPU             null\n");
}

TEST(OperationsTest, OtherAnswersAreOneLinePerValue) {
  EXPECT_EQ(answer_as_text("read_hw", ordered_json::parse(R"({"result":0,"value":92881})")),
            "result: 0\nvalue: 92881\n");
  EXPECT_EQ(answer_as_text("GetFansList", ordered_json::parse(R"({"fans":[],"result":0})")), "fans: []\nresult: 0\n");
  EXPECT_EQ(answer_as_text("GetName", ordered_json::parse("{\"result\":\"a\\u001bb\"}")), "result: a\\x1bb\n");
  EXPECT_EQ(answer_as_text("rftemp", ordered_json::parse(R"({"result":{"name":"RF","celsius":31.01001}})")),
            "result: name RF celsius 31.01 °C\n");
}

TEST(OperationsTest, NumbersSayTheirUnit) {
  EXPECT_EQ(answer_as_text("PsTemperature", ordered_json{{"result", 29845}}), "result: 29845 (25.30 °C)\n");
  EXPECT_EQ(answer_as_text("PsTemperature", ordered_json{{"result", 0}}), "result: 0 (not known)\n");
  EXPECT_EQ(answer_as_text("GetBatteryChargeStatus", ordered_json{{"charge", 57}}), "charge: 57 %\n");
  EXPECT_EQ(units_of("PsTemperature"), ordered_json::parse(R"({"result":"0.01 K"})"));
  EXPECT_EQ(units_of("read_hw"), ordered_json::object());
}

TEST(OperationsTest, AnExceptionIsTypeAndText) {
  EXPECT_EQ(exception_in(ordered_json::parse(R"({"exception":{"type":"E","what":"no"}})")), "E: no");
  EXPECT_EQ(exception_in(ordered_json::parse(R"({"exception":{"type":"int","what":null}})")), "int");
  EXPECT_EQ(exception_in(ordered_json::object()), "");
}

}  // namespace
