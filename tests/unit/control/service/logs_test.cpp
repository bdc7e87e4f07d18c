#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/unit/control/service/service_under_test.h"

namespace {

using control::client::LogStream;
using control::service::ServiceOptions;
using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::chrono::hours LONG{1};

void open_log(ServiceUnderTest& unit, std::uint32_t stream, const char* name) {
  unit.agent().notice({{"notice", "log_stream"}, {"stream", stream}, {"name", name}});
}

/// Waits until what the agent has sent so far has arrived.
void settle(ServiceUnderTest& unit) {
  unit.client().get("/v1/settings/a");
}

TEST(LogsTest, TheBytesOfALogAreKeptInItsFile) {
  ServiceUnderTest unit;
  open_log(unit, 2, "host.out");
  open_log(unit, 3, "host.err");
  unit.agent().frame(2, "one\n");
  unit.agent().frame(3, std::string("\0\xff\x1b[m", 5));
  unit.agent().frame(2, "two\n");
  settle(unit);
  EXPECT_EQ(unit.client().get("/v1/logs").dump(),
            R"({"logs":[{"name":"host.err","bytes":5,"dropped":0},{"name":"host.out","bytes":8,"dropped":0}]})");
  EXPECT_EQ(unit.client().text("/v1/logs/host.out"), "one\ntwo\n");
  EXPECT_EQ(unit.client().text("/v1/logs/host.out?from=4"), "two\n");
  EXPECT_EQ(unit.client().text("/v1/logs/host.out?from=9"), "");
  EXPECT_EQ(unit.client().text("/v1/logs/names.log"), "");
  EXPECT_EQ(unit.client().text("/v1/logs/host.err"), std::string("\0\xff\x1b[m", 5));
  EXPECT_EQ(doubles::text_of(unit.log("host.out")), "one\ntwo\n");
  struct stat status {};
  ASSERT_EQ(::stat(unit.log("host.out").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST(LogsTest, AFollowedLogArrivesAsItGrowsUntilTheUnitEnds) {
  ServiceUnderTest unit;
  open_log(unit, 2, "services.log");
  unit.agent().frame(2, "before ");
  settle(unit);
  LogStream log(unit.socket(), "/v1/logs/services.log?from=3&follow=true");
  EXPECT_EQ(log.next(LONG), "ore ");
  unit.agent().frame(2, "after");
  EXPECT_EQ(log.next(LONG), "after");
  unit.agent().frame(2, "last");
  unit.agent().leave();
  EXPECT_EQ(log.next(LONG), "last");
  EXPECT_EQ(log.next(LONG), "");
}

TEST(LogsTest, ALogIsKeptUpToALimit) {
  ServiceOptions options;
  options.limits.log = 10;
  ServiceUnderTest unit(std::move(options));
  open_log(unit, 2, "agent.log");
  unit.agent().frame(2, "123456");
  unit.agent().frame(2, "7890abc");
  unit.agent().frame(2, "def");
  settle(unit);
  EXPECT_EQ(unit.client().get("/v1/logs").dump(), R"({"logs":[{"name":"agent.log","bytes":10,"dropped":6}]})");
  EXPECT_EQ(doubles::text_of(unit.log("agent.log")), "1234567890");
  const std::string metrics = unit.client().text("/v1/metrics");
  EXPECT_NE(metrics.find("\nunit_log_bytes_total{log=\"agent.log\"} 10\n"), std::string::npos);
  EXPECT_NE(metrics.find("\nunit_log_dropped_bytes_total{log=\"agent.log\"} 6\n"), std::string::npos);
}

TEST(LogsTest, AnOlderFileOrLinkIsReplacedAndNotFollowed) {
  ServiceUnderTest unit;
  const doubles::TemporaryFolder elsewhere;
  doubles::write_text(elsewhere / "victim", "untouched");
  std::filesystem::create_symlink(elsewhere / "victim", unit.log("host.out"));
  std::filesystem::create_hard_link(elsewhere / "victim", unit.log("host.err"));
  ASSERT_EQ(::mkfifo(unit.log("names.log").c_str(), 0600), 0);
  std::filesystem::create_directory(unit.log("network.log"));
  std::uint32_t stream = 1;
  for (const char* name : {"host.out", "host.err", "names.log", "network.log"}) {
    open_log(unit, ++stream, name);
    unit.agent().frame(stream, "new");
  }
  settle(unit);
  EXPECT_EQ(doubles::text_of(elsewhere / "victim"), "untouched");
  for (const char* name : {"host.out", "host.err", "names.log"}) {
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(unit.log(name)))) << name;
    EXPECT_EQ(doubles::text_of(unit.log(name)), "new") << name;
  }
  EXPECT_EQ(unit.client().get("/v1/logs")["logs"][3].dump(), R"({"name":"network.log","bytes":0,"dropped":3})");
}

TEST(LogsTest, ALargeLogArrivesWhole) {
  ServiceUnderTest unit;
  open_log(unit, 2, "host.out");
  std::string all;
  for (int i = 0; i < 5; ++i) {
    const std::string block(1 << 20, static_cast<char>('a' + i));
    unit.agent().frame(2, block);
    all += block;
  }
  settle(unit);
  EXPECT_TRUE(unit.client().text("/v1/logs/host.out") == all);
}

}  // namespace
