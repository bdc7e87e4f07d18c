#include "control/supervisor/launch.h"

#include <gmock/gmock.h>

#include "tests/doubles/temporary_folder.h"

namespace {

using namespace control::supervisor;
using nlohmann::json;
using testing::ElementsAre;
using testing::Pair;

/// A launch document with an empty unit file and these members.
std::string document(json members = json::object()) {
  members["unit_file_text"] = "{}";
  return members.dump();
}

/// The message with which the document is refused.
std::string refusal(const std::string& text) {
  try {
    read_launch(text);
  } catch (const LaunchError& error) {
    EXPECT_EQ(error.status, STATUS_BAD_USAGE);
    return error.what();
  }
  return "accepted";
}

TEST(LaunchTest, MembersLeftOutHaveDefaults) {
  const Launch launch = read_launch(document());
  EXPECT_EQ(launch.name, "");
  EXPECT_EQ(launch.host, "");
  EXPECT_TRUE(launch.host_serves);
  EXPECT_TRUE(launch.services);
  EXPECT_TRUE(launch.network);
  EXPECT_FALSE(launch.dhcp_server);
  EXPECT_FALSE(launch.record);
  EXPECT_EQ(launch.limits.memory_mib, 1024);
  EXPECT_EQ(launch.limits.processes, 512);
  EXPECT_EQ(launch.limits.disk_mib, 256);
  EXPECT_EQ(launch.limits.open_files, 1024);
}

TEST(LaunchTest, EveryMemberIsTaken) {
  const Launch launch = read_launch(document({{"name", "bench-1"},
                                              {"state", "/tmp/state"},
                                              {"library", "/a/library.so"},
                                              {"host", "unit-host"},
                                              {"host_serves", false},
                                              {"host_wrap", {"strace", "-f"}},
                                              {"host_arguments", {"--load-only"}},
                                              {"services", false},
                                              {"without", {"gui_manager", "hw_enumerate"}},
                                              {"network", false},
                                              {"dhcp_server", true},
                                              {"binds", {"/usr/share"}},
                                              {"environment", {{"TZ", "UTC"}}},
                                              {"record", true},
                                              {"detach", true},
                                              {"limits", {{"processes", 40}, {"disk_mib", 8}}}}));
  EXPECT_EQ(launch.name, "bench-1");
  EXPECT_EQ(launch.state, "/tmp/state");
  EXPECT_EQ(launch.library, "/a/library.so");
  EXPECT_EQ(launch.host, "unit-host");
  EXPECT_FALSE(launch.host_serves);
  EXPECT_THAT(launch.host_wrap, ElementsAre("strace", "-f"));
  EXPECT_THAT(launch.host_arguments, ElementsAre("--load-only"));
  EXPECT_FALSE(launch.services);
  EXPECT_THAT(launch.without, ElementsAre("gui_manager", "hw_enumerate"));
  EXPECT_FALSE(launch.network);
  EXPECT_TRUE(launch.dhcp_server);
  EXPECT_THAT(launch.binds, ElementsAre("/usr/share"));
  EXPECT_THAT(launch.environment, ElementsAre(Pair("TZ", "UTC")));
  EXPECT_TRUE(launch.record);
  EXPECT_EQ(launch.limits.processes, 40);
  EXPECT_EQ(launch.limits.disk_mib, 8);
  EXPECT_EQ(launch.limits.memory_mib, 1024);
}

TEST(LaunchTest, AUnitFileIsReadFromItsPath) {
  const doubles::TemporaryFolder folder;
  doubles::write_text(folder / "unit.json", R"({"board":{"handle":7}})");
  const Launch launch = read_launch(json{{"unit_file", folder / "unit.json"}}.dump());
  EXPECT_EQ(launch.unit_file, R"({"board":{"handle":7}})");
  EXPECT_EQ(launch.unit_file_name, folder / "unit.json");
}

struct Refused {
  std::string text;
  std::string reason;
};

void PrintTo(const Refused& refused, std::ostream* stream) {
  *stream << refused.text;
}

class RefusedLaunchTest : public testing::TestWithParam<Refused> {};

TEST_P(RefusedLaunchTest, SaysWhatIsWrong) {
  EXPECT_EQ(refusal(GetParam().text), GetParam().reason);
}

const char NAME[] =
    "name: expected lower-case letters, digits and hyphens, beginning with a letter or digit, at most 32 characters";

INSTANTIATE_TEST_SUITE_P(
    Documents, RefusedLaunchTest,
    testing::Values(
        Refused{"", "launch document: byte 1: not valid JSON"}, Refused{"[]", "launch document: expected an object"},
        Refused{"{} {}", "launch document: byte 4: not valid JSON"},
        Refused{document({{"colour", 1}}), "colour: unknown member of the launch document"},
        Refused{document({{"name", 1}}), "name: expected text"}, Refused{document({{"name", "Unit"}}), NAME},
        Refused{document({{"name", "-unit"}}), NAME}, Refused{document({{"name", "../unit"}}), NAME},
        Refused{document({{"name", std::string(33, 'a')}}), NAME},
        Refused{document({{"services", "yes"}}), "services: expected true or false"},
        Refused{document({{"host_arguments", {1}}}), "host_arguments: expected an array of texts"},
        Refused{document({{"host_arguments", "x"}}), "host_arguments: expected an array of texts"},
        Refused{document({{"environment", {{"A", 1}}}}), "environment: expected an object of texts"},
        Refused{document({{"without", {"colour"}}}),
                "without: \"colour\": expected gui_manager, everybody_engine or hw_enumerate"},
        Refused{document({{"binds", {"relative"}}}), "bind: \"relative\": expected an existing absolute path"},
        Refused{document({{"binds", {"/no/such/path"}}}),
                "bind: \"/no/such/path\": expected an existing absolute path"},
        Refused{document({{"binds", {"/usr/../etc"}}}), "bind: \"/usr/../etc\": expected an existing absolute path"},
        Refused{document({{"limits", {{"processes", 0}}}}), "processes: expected a number from 1 to 2147483647"},
        Refused{document({{"limits", {{"processes", 1.5}}}}), "processes: expected a number"},
        Refused{document({{"limits", {{"colours", 3}}}}), "colours: unknown member of the launch document"},
        Refused{json{{"unit_file_text", 1}}.dump(), "unit_file: expected text"},
        Refused{json{{"unit_file", "/no/such.json"}}.dump(),
                "/no/such.json: cannot be read: No such file or directory"},
        Refused{json{{"unit_file", "/dev/zero"}}.dump(), "/dev/zero: not a regular file"}));

}  // namespace
