// Menu index stepping with the keys.
#include <gtest/gtest.h>

#include <string>

#include "common/common_function.h"
#include "msg/msghandler.h"

namespace {

template <typename Fn>
std::string printed_by(Fn fn) {
  ::testing::internal::CaptureStdout();
  fn();
  fflush(stdout);
  return ::testing::internal::GetCapturedStdout();
}

TEST(GetIndexVal, DesignedExamples) {
  EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_S, 0, 3, 3, 0), 0);     // down past the last row wraps
  EXPECT_EQ(getIndexVal(GUI_KEY_FOCUS_UP_S, 0, 3, 0, 0), 3);  // any other key steps down
  EXPECT_EQ(getIndexVal(GUI_KEY_RANGE_S, 0, 3, 1, 0), 0);     // range keys step down in mode 0
}

TEST(GetIndexVal, ModeZeroStepsUpWithThePhotoKeys) {
  EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_S, 1, 10, 4, 0), 5);
  EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_L, 1, 10, 10, 0), 1);
  EXPECT_EQ(getIndexVal(GUI_KEY_RANGE_S, 1, 10, 1, 0), 10);
  EXPECT_EQ(getIndexVal(GUI_KEY_RANGE_L, 1, 10, 5, 0), 4);
}

TEST(GetIndexVal, OtherModesStepUpWithTheRangeKeys) {
  EXPECT_EQ(getIndexVal(GUI_KEY_RANGE_S, 0, 9, 9, 1), 0);
  EXPECT_EQ(getIndexVal(GUI_KEY_RANGE_L, 0, 9, 3, 2), 4);
  EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_S, 0, 9, 0, 1), 9);
  EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_L, 0, 9, 7, 1), 6);
}

TEST(GetIndexVal, OutOfRangeIsReportedAndSteppedAnyway) {
  std::string out = printed_by([] { EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_S, 0, 3, 7, 0), 0); });
  EXPECT_NE(out.find("!!!!!!!!!!para null error"), std::string::npos) << out;
  EXPECT_EQ(out.find("minval"), std::string::npos) << out;

  out = printed_by([] { EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_S, 5, 2, 3, 0), 5); });
  EXPECT_NE(out.find("!!!!!!!!!!para minval(5) > maxval(2) error\n"), std::string::npos) << out;

  out = printed_by([] { EXPECT_EQ(getIndexVal(GUI_KEY_PHOTO_S, 0, 3, 2, 0), 3); });
  EXPECT_EQ(out, "");
}

TEST(GetIndexValCycle, AlwaysStepsUpAndWraps) {
  EXPECT_EQ(getIndexVal_cycle(0, 4, 0), 1);
  EXPECT_EQ(getIndexVal_cycle(0, 4, 4), 0);
  EXPECT_EQ(getIndexVal_cycle(1, 3, 2), 3);
  const std::string out = printed_by([] { EXPECT_EQ(getIndexVal_cycle(1, 3, 3), 1); });
  EXPECT_EQ(out, "");
}

TEST(GetIndexValCycle, DesignedExampleAndErrors) {
  std::string out = printed_by([] { EXPECT_EQ(getIndexVal_cycle(0, 2, 5), 0); });
  EXPECT_NE(out.find("!!!!!!!!!!cycle para null error"), std::string::npos) << out;
  out = printed_by([] { EXPECT_EQ(getIndexVal_cycle(4, 1, 0), 1); });
  EXPECT_NE(out.find("!!!!!!!!!!cycle para minval(4) > maxval(1) error\n"), std::string::npos)
      << out;
}

}  // namespace
