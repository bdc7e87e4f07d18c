#include "tool/output_tee.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/doubles/temporary_folder.h"

namespace {

using doubles::text_of;
using doubles::write_text;
using testing::ElementsAre;
using tool::OutputTee;

class OutputTeeTest : public ::testing::Test {
protected:
  OutputTeeTest() { write_text(log_, "earlier\n"); }
  ~OutputTeeTest() override { ::close(target_); }

  /// Copies the whole text through the tee.
  static void copy(OutputTee& tee, const std::string& text) {
    const int writer = ::dup(tee.writing_end());
    tee.start();
    EXPECT_EQ(::write(writer, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    ::close(writer);
    tee.finish();
  }

  doubles::TemporaryFolder folder_;
  const std::string log_ = folder_ / "log";
  const int target_ = ::open((folder_ / "target").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
};

TEST_F(OutputTeeTest, EverythingGoesToTheLogAndTheTarget) {
  OutputTee tee(log_, target_);
  copy(tee, "one\ntwo");
  EXPECT_EQ(text_of(log_), "earlier\none\ntwo");
  EXPECT_EQ(text_of(folder_ / "target"), "one\ntwo");
}

TEST_F(OutputTeeTest, AMutedTeeWritesTheLogOnly) {
  OutputTee tee(log_, target_);
  tee.mute();
  copy(tee, "one\n");
  EXPECT_EQ(text_of(log_), "earlier\none\n");
  EXPECT_EQ(text_of(folder_ / "target"), "");
}

TEST_F(OutputTeeTest, TheLastWholeLinesAreKept) {
  OutputTee tee(log_, -1);
  copy(tee, "1\n2\n3\n4\n5\n6\n7\nunfinished");
  EXPECT_THAT(tee.last_lines(), ElementsAre("2", "3", "4", "5", "6", "7"));
}

TEST_F(OutputTeeTest, ALogThatCannotBeWrittenLeavesTheTarget) {
  OutputTee tee(folder_ / "none/log", target_);
  copy(tee, "one\n");
  EXPECT_EQ(text_of(folder_ / "target"), "one\n");
}

TEST_F(OutputTeeTest, ATeeThatIsNeverStartedEndsQuietly) {
  OutputTee tee(log_, target_);
  EXPECT_THAT(tee.last_lines(), ElementsAre());
}

}  // namespace
