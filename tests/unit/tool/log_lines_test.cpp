#include "tool/log_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using control::client::Event;
using testing::ElementsAre;
using tool::LogLines;

Event event(const std::string& name, std::uint64_t from, const std::string& text) {
  return {"log", {{"name", name}, {"from", from}, {"text", text}}};
}

TEST(LogLinesTest, BytesThatWereKeptAndComeAsAnEventAreShownOnce) {
  std::vector<std::string> shown;
  LogLines lines([&shown](const std::string& log, const std::string& line) { shown.push_back(log + " " + line); });
  lines.take_kept("host.out", "one\ntw");
  lines.take(event("host.out", 0, "one\n"));
  lines.take(event("host.out", 4, "two\nth"));
  lines.take(event("host.err", 0, "other\n"));
  lines.take(event("host.out", 10, "ree\nend"));
  lines.finish();
  EXPECT_THAT(shown, ElementsAre("host.out one", "host.out two", "host.err other", "host.out three", "host.out end"));
}

TEST(LogLinesTest, TheHostsLogsAreItsStreams) {
  EXPECT_TRUE(tool::is_hosts("host.out"));
  EXPECT_FALSE(tool::is_hosts("services.log"));
}

}  // namespace
