#include "orlo/message_box.h"

#include <gtest/gtest.h>

#include <string>

#include "orlo/report.h"

namespace {

std::string asked;

int say_cancel(const char* text, const char* caption, uint32_t flags) noexcept {
  asked += std::string(caption) + ": " + text + " " + std::to_string(flags) + "\n";
  return ORLO::kAnswerCancel;
}

class AnsweredBoxes : public testing::Test {
 protected:
  AnsweredBoxes() {
    asked.clear();
    ORLO::answer_boxes_with(&say_cancel);
  }
  ~AnsweredBoxes() override { ORLO::answer_boxes_with(nullptr); }
};

TEST_F(AnsweredBoxes, GetTextsAndFlagsAndGiveTheAnswer) {
  EXPECT_EQ(ORLO::message_box(nullptr, "text", "caption", ORLO::kBoxOkCancel), ORLO::kAnswerCancel);
  EXPECT_EQ(asked, "caption: text 1\n");
}

TEST_F(AnsweredBoxes, ReportsEndThere) {
  ORLO::report_exception(ORLO::UserException("broken"), nullptr);
  EXPECT_NE(asked.find("broken"), std::string::npos);
}

}  // namespace
