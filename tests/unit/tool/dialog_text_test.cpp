#include "tool/dialog_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using simulator::model::Dialog;
using testing::ElementsAre;
using testing::IsEmpty;
using tool::as_json;
using tool::as_text;
using tool::button_labels;

Dialog question() {
  Dialog dialog;
  dialog.id = 3;
  dialog.title = "System Prompt";
  dialog.text = "Shut down?\r\n\r\nReally?";
  dialog.buttons = "Cancel,1|Ok, go,0";
  dialog.waits = true;
  return dialog;
}

TEST(DialogTextTest, LabelsKeepTheirOrderAndTheirCommas) {
  EXPECT_THAT(button_labels(question()), ElementsAre("Cancel", "Ok, go"));
  EXPECT_THAT(button_labels(Dialog()), IsEmpty());
}

TEST(DialogTextTest, AQuestionShowsTitleTextAndButtons) {
  EXPECT_EQ(as_text(question()), "[System Prompt]\n  Shut down?\n\n  Really?\n  <Cancel>  <Ok, go>\n");
}

TEST(DialogTextTest, SizeAndAnswerAreShownOnceThereAreSome) {
  Dialog dialog = question();
  dialog.size = "Max";
  dialog.answer = 1;
  EXPECT_EQ(as_text(dialog), "[System Prompt, Max]\n  Shut down?\n\n  Really?\n  <Cancel>  <Ok, go>   answered 1\n");
}

TEST(DialogTextTest, ADialogWithoutButtonsEndsWithItsText) {
  Dialog dialog;
  dialog.title = "Please wait";
  dialog.text = "Shutting down";
  EXPECT_EQ(as_text(dialog), "[Please wait]\n  Shutting down\n");
}

TEST(DialogTextTest, JsonHoldsEverything) {
  Dialog dialog = question();
  EXPECT_EQ(as_json(dialog).dump(),
            R"({"id":3,"title":"System Prompt","text":"Shut down?\r\n\r\nReally?","buttons":"Cancel,1|Ok, go,0",)"
            R"("size":"","waits":true,"answer":null})");
  dialog.answer = 0;
  EXPECT_EQ(as_json(dialog)["answer"], 0);
}

}  // namespace
