#include "tool/unit_state.h"

#include <gtest/gtest.h>

#include "tests/unit/tool/fake_host_server.h"
#include "tool/host_client.h"

namespace {

using nlohmann::ordered_json;
using tool_test::FakeHost;

TEST(UnitStateTest, IsReadByCallsInTheirOrder) {
  FakeHost host({R"({"id":1,"versions":[{"name":"FPGA","version":"1.2"}]})"
                 "\n",
                 R"({"id":2,"result":false})"
                 "\n",
                 R"({"id":3,"result":1})"
                 "\n",
                 R"({"id":4,"result":true,"charge":57})"
                 "\n",
                 R"({"id":5,"temperatures":[{"name":"CPU","celsius":38.5}]})"
                 "\n",
                 R"({"id":6,"result":1})"
                 "\n",
                 R"({"id":7,"result":true})"
                 "\n",
                 R"({"id":8,"result":29845})"
                 "\n",
                 R"({"id":9,"result":30015})"
                 "\n",
                 R"({"id":10,"result":0})"
                 "\n"});
  ordered_json state;
  {
    tool::HostClient client(host.path());
    state = tool::read_unit_state(client, std::chrono::milliseconds(200));
  }
  EXPECT_EQ(state.dump(),
            R"({"versions":[{"name":"FPGA","version":"1.2"}],"temperatures":[{"name":"CPU","celsius":38.5}],)"
            R"("power":{"charge_percent":57,"battery_present":true,"external_voltage":true,"ps_temperature":29845,)"
            R"("battery_temperature":30015,"mic284_temperature":0}})");
  EXPECT_NE(host.requests().find("{\"args\":[200],\"call\":\"external_voltage\",\"id\":7}"), std::string::npos);
}

TEST(UnitStateTest, IsShownOneLineAnItem) {
  const ordered_json state = {{"versions", {{{"name", "FPGA"}, {"version", "1.2"}}}},
                              {"temperatures", {{{"name", "CPU"}, {"celsius", 38.5}}}},
                              {"power",
                               {{"charge_percent", nullptr},
                                {"battery_present", false},
                                {"external_voltage", true},
                                {"ps_temperature", 29845},
                                {"battery_temperature", 27215},
                                {"mic284_temperature", 0}}}};
  EXPECT_EQ(tool::as_text(state),
            "Versions\n"
            "  FPGA                                1.2\n"
            "Temperatures\n"
            "  CPU                                 38.5 °C\n"
            "Power\n"
            "  Battery charge                      not known\n"
            "  Battery present                     no\n"
            "  External voltage                    yes\n"
            "  Power supply temperature            25.30 °C\n"
            "  Battery temperature                 -1.00 °C\n"
            "  MIC284 temperature                  not known\n");
}

}  // namespace
