// The date and time editor inside a device tree of the test's own: the fields read from the
// clock, the focused field's frame and arrows, the wraps of every field (February, the year
// range), and setting the hardware and system clocks (files in the tree).
#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using menus_test::printed;
using page_test::Box;

class DateTimeTest : public menus_test::MenusTest {
 protected:
  // Sets the tree's clock and opens the editor on it.
  void open_at(int year, int month, int day, int hour, int minute) {
    device_tree();
    ASSERT_EQ(sys_set_time(hour, minute, 0, year, month, day), 0);
    open("Zavo_DataTime");
  }
  // The fields as shown: "YY MM DD hh mm".
  std::string fields() const {
    return text("label_year") + " " + text("label_month") + " " + text("label_day") + " " +
           text("label_hour") + " " + text("label_minute");
  }
  void to_field(int field) {
    while (Zavo_TimeDate_index != field)
      key(GUI_KEY_FUCTION_S);
  }
  void press(uint32_t code, int times) {
    for (int i = 0; i < times; ++i)
      key(code);
  }
};

TEST_F(DateTimeTest, ShowsTheClockAndFramesTheFocusedField) {
  open_at(2025, 6, 14, 9, 5);
  EXPECT_EQ(fields(), "25 06 14 09 05");
  EXPECT_EQ(text("label_second").size(), 2u);
  const struct {
    const char* label;
    Box frame, arrows;
  } table[] = {
      {"label_year", {152, 150, 34, 43}, {159, 130, 20, 82}},
      {"label_month", {202, 150, 34, 43}, {209, 130, 18, 68}},
      {"label_day", {256, 150, 34, 43}, {263, 130, 18, 68}},
      {"label_hour", {328, 150, 34, 43}, {335, 130, 18, 68}},
      {"label_minute", {378, 150, 34, 43}, {385, 130, 18, 68}},
  };
  for (int field = 1; field <= 5; ++field) {
    SCOPED_TRACE(field);
    EXPECT_EQ(Zavo_TimeDate_index, field);
    EXPECT_EQ(box("view_sel"), table[field - 1].frame);
    EXPECT_EQ(box("view_arrow"), table[field - 1].arrows);
    EXPECT_EQ(state(table[field - 1].label), WIDGET_STATE_FOCUSED);
    if (field > 1) {
      EXPECT_EQ(state(table[field - 2].label), WIDGET_STATE_NORMAL);
    }
    if (field < 5) key(GUI_KEY_FUCTION_S);
  }
  // The arrows show the direction of the last step.
  key(GUI_KEY_RANGE_S);
  EXPECT_EQ(image("image_arrow_up"), "Zavo_stepper_up_sel");
  EXPECT_EQ(image("image_arrow_down"), "Zavo_stepper_down_def");
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(image("image_arrow_up"), "Zavo_stepper_up_def");
  EXPECT_EQ(image("image_arrow_down"), "Zavo_stepper_down_sel");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(DateTimeTest, EveryFieldWrapsBothWays) {
  struct Case {
    int year, month, day, hour, minute;
    int field;
    uint32_t key;  // range increases, photo decreases
    int times;
    const char* shown;
  };
  const Case cases[] = {
      {2099, 6, 14, 9, 5, 1, GUI_KEY_RANGE_S, 1, "23 06 14 09 05"},  // 2099 + 1: 2023
      {2023, 6, 14, 9, 5, 1, GUI_KEY_PHOTO_S, 1, "99 06 14 09 05"},  // 2023 - 1: 2099
      {2025, 12, 14, 9, 5, 2, GUI_KEY_RANGE_S, 1, "25 01 14 09 05"},
      {2025, 1, 14, 9, 5, 2, GUI_KEY_PHOTO_S, 1, "25 12 14 09 05"},
      {2024, 2, 28, 9, 5, 3, GUI_KEY_RANGE_S, 1, "24 02 29 09 05"},  // leap year
      {2024, 2, 29, 9, 5, 3, GUI_KEY_RANGE_S, 1, "24 02 01 09 05"},
      {2025, 2, 28, 9, 5, 3, GUI_KEY_RANGE_S, 1, "25 02 01 09 05"},
      {2025, 2, 1, 9, 5, 3, GUI_KEY_PHOTO_S, 1, "25 02 28 09 05"},
      {2024, 2, 1, 9, 5, 3, GUI_KEY_PHOTO_S, 1, "24 02 29 09 05"},
      {2025, 4, 30, 9, 5, 3, GUI_KEY_RANGE_S, 1, "25 04 01 09 05"},
      {2025, 5, 1, 9, 5, 3, GUI_KEY_PHOTO_S, 1, "25 05 31 09 05"},
      {2025, 6, 14, 23, 5, 4, GUI_KEY_RANGE_S, 1, "25 06 14 00 05"},
      {2025, 6, 14, 0, 5, 4, GUI_KEY_PHOTO_S, 1, "25 06 14 23 05"},
      {2025, 6, 14, 9, 59, 5, GUI_KEY_RANGE_S, 1, "25 06 14 09 00"},
      {2025, 6, 14, 9, 0, 5, GUI_KEY_PHOTO_S, 2, "25 06 14 09 58"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shown);
    restart_at_home();
    open_at(c.year, c.month, c.day, c.hour, c.minute);
    to_field(c.field);
    press(c.key, c.times);
    EXPECT_EQ(fields(), c.shown);
  }
  EXPECT_EQ(sent(), Lines{});
}

TEST_F(DateTimeTest, ChangingTheMonthKeepsTheDayUntilTheDayIsEdited) {
  open_at(2025, 3, 31, 9, 5);
  to_field(2);
  key(GUI_KEY_PHOTO_S);  // March to February: the day stays 31
  EXPECT_EQ(fields(), "25 02 31 09 05");
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_RANGE_S);  // past February's last day: 1
  EXPECT_EQ(fields(), "25 02 01 09 05");
}

TEST_F(DateTimeTest, TheFifthConfirmSetsBothClocksInTheTreeAndCloses) {
  open_at(2025, 6, 14, 9, 5);
  key(GUI_KEY_RANGE_S);  // 2026
  to_field(5);
  key(GUI_KEY_RANGE_S);  // 09:06
  std::string out = printed([&] {
    key(GUI_KEY_FUCTION_S);
    advance(0);
  });
  EXPECT_NE(out.find("rtc time_set_successful!\n"), std::string::npos) << out;
  EXPECT_NE(out.find("sys time_set_successful!\n"), std::string::npos) << out;
  EXPECT_EQ(read(tree_ / "dev" / "rtc0").substr(0, 17), "2026-06-14 09:06:");
  EXPECT_EQ(read(tree_ / "tmp" / "system_time").substr(0, 17), "2026-06-14 09:06:");
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  EXPECT_EQ(Zavo_TimeDate_index, 1);
  // The system clock now reads the new time.
  struct tm* now = nullptr;
  sys_get_time(&now);
  ASSERT_NE(now, nullptr);
  EXPECT_EQ(now->tm_year + 1900, 2026);
  EXPECT_EQ(now->tm_min, 6);
}

TEST_F(DateTimeTest, ADayTheMonthLacksIsSetAsItsLastDay) {
  open_at(2025, 3, 31, 9, 5);
  to_field(2);
  key(GUI_KEY_PHOTO_S);
  to_field(5);
  std::string out = printed([&] { key(GUI_KEY_FUCTION_S); });
  EXPECT_NE(out.find("2025-02 has no day 31, the clock is set to day 28"), std::string::npos)
      << out;
  EXPECT_EQ(read(tree_ / "dev" / "rtc0").substr(0, 10), "2025-02-28");
  EXPECT_EQ(read(tree_ / "tmp" / "system_time").substr(0, 10), "2025-02-28");
}

TEST_F(DateTimeTest, AClockThatCannotBeSetIsReportedAndTheEditorStillCloses) {
  open_at(2025, 6, 14, 9, 5);
  std::filesystem::remove(tree_ / "dev" / "rtc0");
  to_field(5);
  std::string out = printed([&] {
    key(GUI_KEY_FUCTION_S);
    advance(0);
  });
  EXPECT_NE(out.find("open rtc_dev failed!\n"), std::string::npos) << out;
  EXPECT_EQ(out.find("rtc time_set_successful!"), std::string::npos) << out;
  EXPECT_NE(out.find("sys time_set_successful!\n"), std::string::npos) << out;
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

TEST_F(DateTimeTest, TheLongFunctionKeyLeavesWithoutSettingAndPowerGoesHome) {
  open_at(2025, 6, 14, 9, 5);
  const std::string before = read(tree_ / "dev" / "rtc0");
  key(GUI_KEY_RANGE_S);
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  EXPECT_EQ(read(tree_ / "dev" / "rtc0"), before);
  open("Zavo_DataTime");
  key(GUI_KEY_POWER_S);
  advance(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  EXPECT_EQ(read(tree_ / "dev" / "rtc0"), before);
}

}  // namespace
