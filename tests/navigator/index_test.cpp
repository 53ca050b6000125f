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

TEST(GetIndexVal, StepsByKeyAndMode) {
  struct {
    int32_t key, min, max, current, mode, expected;
  } cases[] = {
      {GUI_KEY_PHOTO_S, 0, 3, 3, 0, 0},     // down past the last row wraps to the first
      {GUI_KEY_FOCUS_UP_S, 0, 3, 0, 0, 3},  // any other key steps down, wrapping to the last
      {GUI_KEY_RANGE_S, 0, 3, 1, 0, 0},     // in mode 0 the range keys step down
      {GUI_KEY_PHOTO_L, 1, 10, 4, 0, 5},    //
      {GUI_KEY_RANGE_L, 1, 10, 1, 0, 10},   //
      {GUI_KEY_RANGE_S, 0, 9, 9, 1, 0},     // in other modes the range keys step up
      {GUI_KEY_RANGE_L, 0, 9, 3, 2, 4},     //
      {GUI_KEY_PHOTO_S, 0, 9, 0, 1, 9},     // and the photo keys down
  };
  for (const auto& c : cases) {
    EXPECT_EQ(getIndexVal(c.key, c.min, c.max, c.current, c.mode), c.expected)
        << "key " << c.key << " " << c.min << ".." << c.max << " from " << c.current << " mode "
        << c.mode;
  }
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
  const std::string out = printed_by([] { EXPECT_EQ(getIndexVal_cycle(1, 3, 3), 1); });
  EXPECT_EQ(out, "");
}

TEST(GetIndexValCycle, OutOfRangeIsReportedAndSteppedAnyway) {
  std::string out = printed_by([] { EXPECT_EQ(getIndexVal_cycle(0, 2, 5), 0); });
  EXPECT_NE(out.find("!!!!!!!!!!cycle para null error"), std::string::npos) << out;
  out = printed_by([] { EXPECT_EQ(getIndexVal_cycle(4, 1, 0), 1); });
  EXPECT_NE(out.find("!!!!!!!!!!cycle para minval(4) > maxval(1) error\n"), std::string::npos)
      << out;
}

}  // namespace
