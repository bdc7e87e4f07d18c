#include "host/board_operations.h"

#include <gmock/gmock.h>

#include <string>

#include "host/operation.h"
#include "tests/unit/host/fake_hardware.h"

namespace host {
namespace {

using host_test::FakeHardware;
using nlohmann::json;
using testing::ElementsAre;

/// Calls a board operation of an object that the host knows only by its interface.
json call(FakeHardware& hardware, const std::string& name, const json& values = json::array()) {
  return find_operation(name)->call(hardware, Arguments(name, values));
}

TEST(BoardOperationsTest, ReachEachOperationByItsPlace) {
  FakeHardware hardware;
  EXPECT_EQ(call(hardware, "i2c_command_str").dump(), R"({"result":"/home/radalt/bin/"})");
  EXPECT_EQ(call(hardware, "write_hw", {1, 2, 3, 4294967295U}).dump(), R"({"result":-5})");
  EXPECT_THAT(hardware.calls, ElementsAre("write_hw 1 2 3 4294967295"));
  EXPECT_EQ(call(hardware, "rftemp").dump(), R"({"result":{"celsius":-0.1,"name":"RF Temperature"}})");
  EXPECT_EQ(call(hardware, "get_RFAdc", {5}).dump(), R"({"result":4294967295})");
  EXPECT_EQ(call(hardware, "getDigitalBoardTemp", {0.25}).dump(), R"({"result":0.5})");
}

TEST(BoardOperationsTest, ReadIntoAWordThatIsZeroWhereNoneIsGiven) {
  FakeHardware hardware;
  EXPECT_EQ(call(hardware, "read_hw", {1, 2, 3}).dump(), R"({"result":7,"value":6})");
  EXPECT_EQ(call(hardware, "read_hw", {1, 2, 3, 100}).dump(), R"({"result":7,"value":106})");
}

}  // namespace
}  // namespace host
