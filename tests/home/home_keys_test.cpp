// The observation screen's keys, pressed through the main loop, observed as the frames the UI
// sends, the widgets shown and the windows opened.
#include "home_fixture.h"
#include "pages/page_list.h"

using home_test::HomeTest;

namespace {

class HomeKeysTest : public HomeTest {};

// Distance-function frames (type 4, command 7): (byte 4, byte 6) = (measure or switch, value).
std::vector<std::pair<int, int>> distance_commands(
    const std::vector<std::vector<uint8_t>>& frames) {
  std::vector<std::pair<int, int>> out;
  for (const auto& f : frames) {
    if (f.size() > 6 && f[2] == 4 && f[3] == 7) out.emplace_back(f[4], f[6]);
  }
  return out;
}

TEST_F(HomeKeysTest, InitTellsTheDeviceTheScreenAndOpensTheCalculator) {
  ASSERT_EQ(navigator_to("Zavo_home_page_1"), RET_OK);
  tk_testing_advance(0);
  auto frames = sent_frames();
  // Which-screen answer: basic function 39 with s8CurrentMenu 0.
  auto menu = matching(frames, 0, 0, BASIC_MENU_LEVEL);
  ASSERT_EQ(menu.size(), 1u);
  EXPECT_EQ(menu[0][6], 0);
  // The ballistic calculator, item 1: the byte 1.
  auto calc = matching(frames, 27, BALLISTIC_OPEN_CALCU, 1);
  ASSERT_EQ(calc.size(), 1u);
  EXPECT_EQ(calc[0][6], 1);
}

TEST_F(HomeKeysTest, InitRejectsANullWindow) {
  tk_testing_capture_log(true);
  EXPECT_EQ(Zavo_home_page_1_init(nullptr, nullptr), RET_BAD_PARAMS);
  EXPECT_TRUE(tk_testing_log_contains("condition(win != NULL) failed!"));
}

TEST_F(HomeKeysTest, PhotoKeyFlashesAndAsksForAPicture) {
  open_home();
  tk_testing_key_hit(GUI_KEY_PHOTO_L);
  EXPECT_TRUE(shown("Zavo_image_photo"));
  EXPECT_EQ(matching(sent_frames(), 23, TAP_PICTURE_RECORD, TAP_TAKE_PICTURE).size(), 1u);
  tk_testing_advance(1000);
  EXPECT_FALSE(shown("Zavo_image_photo"));
}

TEST_F(HomeKeysTest, PhotoAndRecordingAreRefusedOnAFullCard) {
  open_home();
  home_test::g_free_mib = 100;
  tk_testing_key_hit(GUI_KEY_PHOTO_L);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_TRUE(shown("view_tip_sdfull"));
  EXPECT_FALSE(shown("Zavo_image_photo"));
  EXPECT_FALSE(shown("video_view"));
  EXPECT_EQ(record_status.status, 0);
  tk_testing_advance(3000);
  EXPECT_FALSE(shown("view_tip_sdfull"));
}

TEST_F(HomeKeysTest, RecordKeyStartsAndStops) {
  open_home();
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  EXPECT_EQ(record_status.status, 1);
  EXPECT_EQ(stUIStatus.s8RecordingState, 1);
  EXPECT_NE(record_status.timer_id, 0);
  tk_testing_advance(5000);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  EXPECT_EQ(record_status.status, 0);
  EXPECT_EQ(stUIStatus.s8RecordingState, 0);
  EXPECT_EQ(record_status.time_record, 0);
  EXPECT_FALSE(shown("video_view"));
  auto frames = sent_frames();
  EXPECT_EQ(matching(frames, 23, TAP_PICTURE_RECORD, TAP_RECORD_START).size(), 1u);
  EXPECT_EQ(matching(frames, 23, TAP_PICTURE_RECORD, TAP_RECORD_STOP).size(), 1u);
  std::string clock = text("second");
  tk_testing_advance(5000);
  EXPECT_EQ(text("second"), clock) << "the clock stopped with the recording";
}

TEST_F(HomeKeysTest, ShortRangeKeyWithTheFinderOffShowsOneTipForTwoSeconds) {
  open_home();
  stDevStatus.s8RangeSwitch = 0;
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  EXPECT_TRUE(shown("view_tip_open_range"));
  tk_testing_advance(1500);
  tk_testing_key_hit(GUI_KEY_RANGE_S);  // within the 2 s: no second timer, no extension
  tk_testing_advance(500);
  EXPECT_FALSE(shown("view_tip_open_range"));
  tk_testing_advance(2000);
  EXPECT_FALSE(shown("view_tip_open_range"));
  EXPECT_TRUE(distance_commands(sent_frames()).empty());
}

TEST_F(HomeKeysTest, ShortRangeKeyMeasures) {
  open_home();
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8RangeType = RANGE_SINGLE;
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  EXPECT_EQ(distance_commands(sent_frames()), (std::vector<std::pair<int, int>>{{1, 1}}));
  EXPECT_EQ(text("label_RngeValue"), "---- yd");

  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  stUIStatus.s8RangeMode = 0;
  tk_testing_key_hit(GUI_KEY_RANGE_S);  // starts continuous measuring
  tk_testing_key_hit(GUI_KEY_RANGE_S);  // and stops it
  EXPECT_EQ(distance_commands(sent_frames()), (std::vector<std::pair<int, int>>{{1, 3}, {1, 0}}));

  stDevStatus.s8RangeType = 7;  // unknown type: nothing
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  EXPECT_TRUE(distance_commands(sent_frames()).empty());
}

TEST_F(HomeKeysTest, LongRangeKeySwitchesTheFinderOffStoppingContinuousMeasuring) {
  open_home();
  stDevStatus.s8RangeSwitch = 1;
  stUIStatus.s8RangeMode = 3;
  tk_testing_key_hit(GUI_KEY_RANGE_L);
  EXPECT_EQ(distance_commands(sent_frames()), (std::vector<std::pair<int, int>>{{1, 0}, {0, 0}}));
}

TEST_F(HomeKeysTest, LongRangeKeySwitchesTheFinderOnUnlessTheBatteryIsLow) {
  open_home();
  stDevStatus.s8RangeSwitch = 0;
  stDevStatus.s8DistanceUint = DISTANCE_M;
  widget_set_text_utf8(w("label_RngeValue"), "1234 m");
  stUIStatus.s16BatteryValue = 568;
  stUIStatus.s8BatteryType = 0;
  tk_testing_key_hit(GUI_KEY_RANGE_L);
  EXPECT_TRUE(distance_commands(sent_frames()).empty());
  EXPECT_TRUE(shown("view_tip_forbid_range"));
  EXPECT_EQ(text("label_RngeValue"), "1234 m");
  tk_testing_advance(2000);
  EXPECT_FALSE(shown("view_tip_forbid_range"));

  stUIStatus.s8BatteryType = 1;  // external power
  tk_testing_key_hit(GUI_KEY_RANGE_L);
  EXPECT_EQ(distance_commands(sent_frames()), (std::vector<std::pair<int, int>>{{0, 1}}));
  EXPECT_EQ(text("label_RngeValue"), "---- m");
}

TEST_F(HomeKeysTest, FunctionKeysHideTheCompassAndOpenTheMenus) {
  open_home();
  Zavo_menu1_index = 4;
  tk_testing_key_hit(GUI_KEY_FUCTION_L);
  EXPECT_EQ(stUIStatus.s8CompassTempOcclusion, 1);
  EXPECT_EQ(Zavo_menu1_index, 1);
  EXPECT_FALSE(shown("compass_azimuth"));
  EXPECT_TRUE(shown("compass_pitch"));
}

TEST_F(HomeKeysTest, OtherKeysDoNothing) {
  open_home();
  for (uint32_t key : {GUI_KEY_POWER_S, GUI_KEY_FOCUS_UP_S, GUI_KEY_FOCUS_DOWN_S}) {
    tk_testing_key_hit(key);
  }
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_EQ(tk_testing_window_names().back(), "Zavo_home_page_1");
}

}  // namespace
