#include "tool/dialog_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace tool;
using nlohmann::ordered_json;
using testing::ElementsAre;
using testing::IsEmpty;

ordered_json question() {
  return ordered_json::parse(R"({"id":3,"title":"System Prompt","text":"Shut down?\r\n\r\nReally?",
      "buttons":[{"label":"Cancel","answer":1},{"label":"Ok, go","answer":0}],
      "size":"","waits":true,"answer":null,"answered":null})");
}

TEST(DialogTextTest, AQuestionIsOpenUntilItIsAnswered) {
  ordered_json dialog = question();
  EXPECT_TRUE(is_open(dialog));
  dialog["answer"] = 1;
  EXPECT_FALSE(is_open(dialog));
  dialog["answer"] = nullptr;
  dialog["waits"] = false;
  EXPECT_FALSE(is_open(dialog));
}

TEST(DialogTextTest, AButtonIsMeantByItsLabelInAnyCaseOrItsNumber) {
  EXPECT_THAT(button_labels(question()), ElementsAre("Cancel", "Ok, go"));
  EXPECT_EQ(button_meant(question(), "oK, GO"), "Ok, go");
  EXPECT_EQ(button_meant(question(), "1"), "Cancel");
  EXPECT_EQ(button_meant(question(), "3"), std::nullopt);
  EXPECT_EQ(button_meant(question(), ""), std::nullopt);
}

TEST(DialogTextTest, AQuestionShowsTitleTextAndButtons) {
  EXPECT_EQ(dialog_as_text(question()), "[System Prompt]\n  Shut down?\n\n  Really?\n  <Cancel>  <Ok, go>\n");
  EXPECT_EQ(dialog_as_line(question()), "Dialog \"System Prompt\": Shut down?  <Cancel>  <Ok, go>");
}

TEST(DialogTextTest, SizeAndAnswerAreShownOnceThereAreSome) {
  ordered_json dialog = question();
  dialog["size"] = "Max";
  dialog["answer"] = 1;
  dialog["answered"] = "Cancel";
  EXPECT_EQ(dialog_as_text(dialog),
            "[System Prompt, Max]\n  Shut down?\n\n  Really?\n  <Cancel>  <Ok, go>   answered: Cancel\n");
}

TEST(DialogTextTest, ADialogWithoutButtonsEndsWithItsText) {
  ordered_json dialog = question();
  dialog["buttons"] = ordered_json::array();
  dialog["text"] = "Shutting\x1b down";
  EXPECT_THAT(button_labels(dialog), IsEmpty());
  EXPECT_EQ(dialog_as_text(dialog), "[System Prompt]\n  Shutting\\x1b down\n");
}

}  // namespace
