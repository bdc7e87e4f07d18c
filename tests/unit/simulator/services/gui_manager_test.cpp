// The GUI manager's dialogs: the callers' results and the state in the unit's model.

#include <future>

#include "tests/unit/simulator/services/unit_with_services.h"

namespace services_test {
namespace {

using simulator::model::Dialog;

constexpr char SHUTDOWN_SCREEN[] =
    "\r\n\r\n\r\n\r\n\r\n                                 Shutting Down\r\n\r\n"
    "                                  Please Wait";

class GuiManagerService : public UnitWithServices {
protected:
  GuiManagerService() { start_services(); }

  /// Asks the question from a separate thread and returns once it is on the screen.
  std::future<CORBA::Long> ask(const std::string& title, const std::string& buttons) {
    auto answer = std::async(std::launch::async, [gui = gui_manager(), title, buttons]() mutable {
      return gui->ShowDialog(title.c_str(), "Do you want to shutdown?", buttons.c_str(), 1);
    });
    EXPECT_TRUE(model().gui().wait_shown(title, PATIENCE));
    return answer;
  }
};

TEST_F(GuiManagerService, AQuestionReturnsTheAnswerOfTheButtonThatIsPressed) {
  std::future<CORBA::Long> first = ask("System Prompt", "Cancel,1|Ok,0");
  ASSERT_TRUE(model().gui().answer("System Prompt", "Cancel"));
  EXPECT_EQ(first.get(), 1);
  std::future<CORBA::Long> second = ask("System Prompt", "Cancel,1|Ok,0");
  ASSERT_TRUE(model().gui().answer("System Prompt", "Ok"));
  EXPECT_EQ(second.get(), 0);
}

TEST_F(GuiManagerService, AnAnswerIsTheNumberInTheButtonsText) {
  std::future<CORBA::Long> answer = ask("Choice", "Abort, now,-7|Retry,2147483647|Fail,3");
  EXPECT_FALSE(model().gui().answer("Choice", "Abort"));
  ASSERT_TRUE(model().gui().answer("Choice", "Abort, now"));
  EXPECT_EQ(answer.get(), -7);
}

TEST_F(GuiManagerService, AQuestionStaysOpenWithoutAnAnswer) {
  std::future<CORBA::Long> answer = ask("System Prompt", "Cancel,1|Ok,0");
  EXPECT_EQ(answer.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
  const std::vector<Dialog> dialogs = model().gui().dialogs();
  ASSERT_EQ(dialogs.size(), 1U);
  EXPECT_EQ(dialogs[0].title, "System Prompt");
  EXPECT_EQ(dialogs[0].text, "Do you want to shutdown?");
  EXPECT_EQ(dialogs[0].buttons, "Cancel,1|Ok,0");
  EXPECT_TRUE(dialogs[0].waits);
  EXPECT_EQ(dialogs[0].answer, std::nullopt);
  model().gui().answer("System Prompt", "Ok");
  EXPECT_EQ(answer.get(), 0);
}

TEST_F(GuiManagerService, ADialogThatDoesNotWaitReturnsZeroAndIsShownWhole) {
  EXPECT_EQ(gui_manager()->ShowDialog("Shutdown", SHUTDOWN_SCREEN, "", 0), 0);
  const std::vector<Dialog> dialogs = model().gui().dialogs();
  ASSERT_EQ(dialogs.size(), 1U);
  EXPECT_EQ(dialogs[0].title, "Shutdown");
  EXPECT_EQ(dialogs[0].text, SHUTDOWN_SCREEN);
  EXPECT_EQ(dialogs[0].buttons, "");
  EXPECT_EQ(dialogs[0].size, "");
  EXPECT_FALSE(dialogs[0].waits);
}

TEST_F(GuiManagerService, ASizeIsThatOfTheNewestDialogOfTheTitle) {
  const Halcyra::gui::GUIManager_var gui = gui_manager();
  gui->ShowDialog("Shutdown", "first", "", 0);
  gui->ShowDialog("Shutdown", "second", "", 0);
  gui->ShowDialog("Other", "third", "", 0);
  gui->SetDialogSize("Shutdown", "Max");
  const std::vector<Dialog> dialogs = model().gui().dialogs();
  ASSERT_EQ(dialogs.size(), 3U);
  EXPECT_EQ(dialogs[0].size, "");
  EXPECT_EQ(dialogs[1].size, "Max");
  EXPECT_EQ(dialogs[2].size, "");
}

TEST_F(GuiManagerService, ASizeForADialogThatIsNotShownIsPassedOver) {
  gui_manager()->SetDialogSize("Shutdown", "Max");
  EXPECT_TRUE(model().gui().dialogs().empty());
}

TEST_F(GuiManagerService, AnOpenQuestionDoesNotHoldOtherCallsUp) {
  std::future<CORBA::Long> first = ask("First", "Yes,4");
  std::future<CORBA::Long> second = ask("Second", "Yes,5");
  const Halcyra::gui::GUIManager_var gui = gui_manager();
  EXPECT_EQ(gui->ShowDialog("Shutdown", "", "", 0), 0);
  gui->SetDialogSize("Shutdown", "Max");
  model().gui().answer("Second", "Yes");
  EXPECT_EQ(second.get(), 5);
  model().gui().answer("First", "Yes");
  EXPECT_EQ(first.get(), 4);
}

TEST_F(GuiManagerService, AQuestionIsAnsweredFromAnotherProcess) {
  std::future<CORBA::Long> answer = ask("System Prompt", "Cancel,1|Ok,0");
  ChildProcess presser({ANSWER_DIALOG, "System Prompt", "Cancel"}, variables(), file("presser.log"));
  EXPECT_EQ(presser.wait(), 0);
  EXPECT_EQ(answer.get(), 1);
}

TEST_F(GuiManagerService, TheRecordHoldsTheTextsExactly) {
  model().record().start();
  const Halcyra::gui::GUIManager_var gui = gui_manager();
  gui->ShowDialog("Shutdown", SHUTDOWN_SCREEN, "", 0);
  gui->SetDialogSize("Shutdown", "Max");
  std::future<CORBA::Long> answer = ask("System \"Prompt\"", "Cancel,1|Ok,0");
  model().gui().answer("System \"Prompt\"", "Ok");
  answer.get();

  const std::vector<nlohmann::json> record = calls();
  ASSERT_EQ(record.size(), 3U);
  EXPECT_EQ(record[0].at("at"), "gui.ShowDialog");
  EXPECT_EQ(record[0].at("args"),
            (nlohmann::json{{"title", "Shutdown"}, {"text", SHUTDOWN_SCREEN}, {"buttons", ""}, {"wait", 0}}));
  EXPECT_EQ(record[1].at("at"), "gui.SetDialogSize");
  EXPECT_EQ(record[1].at("args"), (nlohmann::json{{"title", "Shutdown"}, {"size", "Max"}}));
  EXPECT_EQ(record[2].at("at"), "gui.ShowDialog");
  EXPECT_EQ(record[2].at("args"), (nlohmann::json{{"title", "System \"Prompt\""},
                                                  {"text", "Do you want to shutdown?"},
                                                  {"buttons", "Cancel,1|Ok,0"},
                                                  {"wait", 1}}));
}

}  // namespace
}  // namespace services_test
