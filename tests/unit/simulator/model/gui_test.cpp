#include "simulator/model/gui.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

using simulator::model::Dialog;
using simulator::model::Gui;

constexpr std::chrono::milliseconds LONG{60'000};
constexpr std::chrono::milliseconds AT_ONCE{0};

class GuiTest : public ::testing::Test {
protected:
  std::uint64_t ask() { return gui_.show("System Prompt", "Do you want to shutdown?", "Cancel,1|Ok,0", true); }

  std::unique_ptr<Gui> owner_ = std::make_unique<Gui>();
  Gui& gui_ = *owner_;
};

TEST_F(GuiTest, ShowsWhatItWasAskedToShow) {
  ask();
  gui_.show("Shutdown", "Please Wait", "", false);
  ASSERT_TRUE(gui_.set_size("Shutdown", "Max"));
  const std::vector<Dialog> dialogs = gui_.dialogs();
  ASSERT_EQ(dialogs.size(), 2U);
  EXPECT_EQ(dialogs[0].id, 1U);
  EXPECT_EQ(dialogs[0].title, "System Prompt");
  EXPECT_EQ(dialogs[0].text, "Do you want to shutdown?");
  EXPECT_EQ(dialogs[0].buttons, "Cancel,1|Ok,0");
  EXPECT_EQ(dialogs[0].size, "");
  EXPECT_TRUE(dialogs[0].waits);
  EXPECT_EQ(dialogs[0].answer, std::nullopt);
  EXPECT_EQ(dialogs[1].id, 2U);
  EXPECT_EQ(dialogs[1].size, "Max");
  EXPECT_FALSE(dialogs[1].waits);
}

TEST_F(GuiTest, AnAnswerWakesWhoWaitsForIt) {
  const std::uint64_t id = ask();
  std::thread user([this] {
    EXPECT_TRUE(gui_.wait_shown("System Prompt", LONG));
    EXPECT_TRUE(gui_.answer("System Prompt", "Cancel"));
  });
  EXPECT_EQ(gui_.wait_answer(id, LONG), 1);
  user.join();
  EXPECT_EQ(gui_.dialogs()[0].answer, 1);
}

TEST_F(GuiTest, EachButtonGivesItsOwnAnswer) {
  const std::uint64_t first = ask();
  EXPECT_TRUE(gui_.answer("System Prompt", "Ok"));
  EXPECT_EQ(gui_.wait_answer(first, AT_ONCE), 0);
  const std::uint64_t second = gui_.show("Choice", "", "a,b,-3|c,x", true);
  EXPECT_TRUE(gui_.answer("Choice", "a,b"));
  EXPECT_EQ(gui_.wait_answer(second, AT_ONCE), -3);
}

TEST_F(GuiTest, AnAnswerGoesToTheNewestUnansweredDialogOfItsTitle) {
  const std::uint64_t older = ask();
  const std::uint64_t newer = ask();
  EXPECT_TRUE(gui_.answer("System Prompt", "Cancel"));
  EXPECT_EQ(gui_.wait_answer(newer, AT_ONCE), 1);
  EXPECT_EQ(gui_.wait_answer(older, AT_ONCE), std::nullopt);
  EXPECT_TRUE(gui_.answer("System Prompt", "Ok"));
  EXPECT_EQ(gui_.wait_answer(older, AT_ONCE), 0);
  EXPECT_FALSE(gui_.answer("System Prompt", "Ok"));
}

TEST_F(GuiTest, ThereIsNoAnswerWithoutItsDialogOrButton) {
  EXPECT_FALSE(gui_.answer("System Prompt", "Ok"));
  EXPECT_FALSE(gui_.set_size("System Prompt", "Max"));
  ask();
  EXPECT_FALSE(gui_.answer("System Prompt", "Maybe"));
  EXPECT_FALSE(gui_.answer("Other", "Ok"));
}

TEST_F(GuiTest, OnlyAWaitingDialogCountsAsShown) {
  gui_.show("Shutdown", "", "", false);
  EXPECT_FALSE(gui_.wait_shown("Shutdown", AT_ONCE));
  ask();
  EXPECT_TRUE(gui_.wait_shown("System Prompt", AT_ONCE));
  gui_.answer("System Prompt", "Ok");
  EXPECT_FALSE(gui_.wait_shown("System Prompt", AT_ONCE));
}

TEST_F(GuiTest, KeepsTheLastSixteenDialogs) {
  const std::uint64_t first = ask();
  for (int more = 0; more < 16; ++more) {
    gui_.show("Note " + std::to_string(more), "", "", false);
  }
  const std::vector<Dialog> dialogs = gui_.dialogs();
  ASSERT_EQ(dialogs.size(), 16U);
  EXPECT_EQ(dialogs.front().title, "Note 0");
  EXPECT_EQ(dialogs.back().title, "Note 15");
  EXPECT_EQ(gui_.wait_answer(first, LONG), std::nullopt);
}

TEST_F(GuiTest, CutsTextsThatAreTooLong) {
  gui_.show(std::string(200, 't'), std::string(2000, 'x'), "", false);
  EXPECT_EQ(gui_.dialogs()[0].title, std::string(127, 't'));
  EXPECT_EQ(gui_.dialogs()[0].text, std::string(1023, 'x'));
}

}  // namespace
