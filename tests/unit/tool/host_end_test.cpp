#include "tool/host_end.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool/host_process.h"

namespace {

using namespace tool;
using nlohmann::ordered_json;
using testing::ElementsAre;

TEST(HostEndTest, TheEndIsToldInWords) {
  EXPECT_EQ(end_of_host({{"status", 3}, {"signal", nullptr}}), "exited with status 3");
  EXPECT_EQ(end_of_host({{"status", nullptr}, {"signal", 11}}), "killed by signal 11 (Segmentation fault)");
  EXPECT_EQ(end_of_host({{"status", nullptr}, {"signal", 99}}), "killed by signal 99");
  EXPECT_EQ(end_of_host({{"status", nullptr}, {"signal", nullptr}}), "ended");
  EXPECT_TRUE(host_has_ended({{"state", "exited"}}));
  EXPECT_FALSE(host_has_ended({{"state", "running"}}));
}

TEST(HostEndTest, TheLastLinesAreKeptInOrder) {
  EXPECT_THAT(last_lines("1\n2\n3\nrest", 2), ElementsAre("3", "rest"));
  EXPECT_THAT(last_lines("1\n2\n", 5), ElementsAre("1", "2"));
}

TEST(HostProcessTest, NumbersAreReadFromTheStatus) {
  const ProcessNumbers numbers = numbers_in("Name:\tPPid: 7 NSpid:\nPPid:\t30\nNSpid:\t100\t5\t2\nUid:\t0\n");
  EXPECT_EQ(numbers.parent, 30);
  EXPECT_EQ(numbers.inside, 2);
  EXPECT_EQ(numbers_in("").inside, 0);
}

TEST(HostProcessTest, WithoutARunningHostThereIsNoNumber) {
  EXPECT_EQ(host_pid_outside({{"process", {{"root", 1}}}, {"host", {{"state", "none"}, {"pid", nullptr}}}}),
            std::nullopt);
  EXPECT_EQ(host_pid_outside({{"process", {{"root", 1}}}, {"host", {{"state", "exited"}, {"pid", 2}}}}), std::nullopt);
}

}  // namespace
