// The observation screen's init and keys, pressed through the main loop, observed as the frames
// the UI sends, the widgets shown and the windows opened.
#include "home_fixture.h"
#include "pages/Zavo_home_page.h"
#include "pages/page_list.h"

namespace {

using Pairs = std::vector<std::pair<int, int>>;

class HomeKeysTest : public home_test::HomeTest {
 protected:
  // Distance-function frames sent (type 4, command 7) as (byte 4, byte 6) = (measure or switch,
  // value).
  Pairs distance_commands() {
    Pairs out;
    for (const auto& f : sent_frames()) {
      if (f.size() > 6 && f[2] == 4 && f[3] == 7) out.emplace_back(f[4], f[6]);
    }
    return out;
  }
};

TEST_F(HomeKeysTest, InitForcesTheReticleAndYardsAndTellsTheDevice) {
  stDevStatus.s8ReticleMenuSwitch = 0;
  stDevStatus.s8ReticleSwitch = 0;
  stDevStatus.s8DistanceUint = DISTANCE_M;
  stUIStatus.s8CurrentMenu = 5;
  open_home();
  EXPECT_EQ(stDevStatus.s8ReticleMenuSwitch, 1);
  EXPECT_EQ(stDevStatus.s8ReticleSwitch, 1);
  EXPECT_EQ(stDevStatus.s8DistanceUint, DISTANCE_YD);
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_OBSERVE);
  EXPECT_TRUE(shown("label_reticle_value"));
  EXPECT_TRUE(shown("view_reticle_shoot"));
  // The screen it shows (basic function 39, s8CurrentMenu 0), then the ballistic calculator on.
  const auto menu = matching(init_frames_, 0, 0, BASIC_MENU_LEVEL);
  ASSERT_EQ(menu.size(), 1u);
  EXPECT_EQ(menu[0][6], 0);
  const auto calc = matching(init_frames_, 27, BALLISTIC_OPEN_CALCU, 1);
  ASSERT_EQ(calc.size(), 1u);
  EXPECT_EQ(calc[0][6], 1);
}

TEST_F(HomeKeysTest, NullWindowsAreRefusedWithTheArgumentLineAndTheInertPageOpens) {
  const std::string out = home_test::printed([] {
    EXPECT_EQ(on_Zavo_All_Reticle_zoom(nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(on_Zavo_ReticleShoot6_zoom(1.0f, nullptr), RET_BAD_PARAMS);
  });
  for (const char* f : {"on_Zavo_All_Reticle_zoom:", "on_Zavo_ReticleShoot6_zoom:"})
    EXPECT_NE(out.find(std::string(f)), std::string::npos) << out;
  EXPECT_NE(out.find(" condition(win != NULL) failed!\n"), std::string::npos) << out;
  ASSERT_EQ(navigator_to("Zavo_home_page"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names().back(), "Zavo_home_page");
}

TEST_F(HomeKeysTest, PhotoKeyFlashesAndAsksForAPictureUnlessTheCardIsFull) {
  open_home();
  tk_testing_key_hit(GUI_KEY_PHOTO_L);
  EXPECT_TRUE(shown("Zavo_image_photo"));
  EXPECT_EQ(matching(sent_frames(), 23, TAP_PICTURE_RECORD, TAP_TAKE_PICTURE).size(), 1u);
  tk_testing_advance(1000);
  EXPECT_FALSE(shown("Zavo_image_photo"));
  home_test::g_free_mib = 100;  // photo and recording are refused with the tip
  tk_testing_key_hit(GUI_KEY_PHOTO_L);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_TRUE(shown("view_tip_sdfull"));
  EXPECT_FALSE(shown("Zavo_image_photo") || shown("video_view"));
  EXPECT_EQ(record_status.status, 0);
  tk_testing_advance(3000);
  EXPECT_FALSE(shown("view_tip_sdfull"));
}

TEST_F(HomeKeysTest, RecordKeyStartsAndStopsTheClock) {
  open_home();
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  EXPECT_EQ(stUIStatus.s8RecordingState, 1);
  EXPECT_TRUE(shown("video_view"));
  EXPECT_EQ(text("hour") + ":" + text("minute") + ":" + text("second"), "00:00:00");
  tk_testing_advance(3725 * 1000);
  EXPECT_EQ(text("hour") + ":" + text("minute") + ":" + text("second"), "01:02:05");
  EXPECT_EQ(record_status.time_record, 3725);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  EXPECT_EQ(record_status.status, 0);
  EXPECT_EQ(stUIStatus.s8RecordingState, 0);
  EXPECT_EQ(record_status.time_record, 0);
  EXPECT_FALSE(shown("video_view"));
  const auto frames = sent_frames();
  EXPECT_EQ(matching(frames, 23, TAP_PICTURE_RECORD, TAP_RECORD_START).size(), 1u);
  EXPECT_EQ(matching(frames, 23, TAP_PICTURE_RECORD, TAP_RECORD_STOP).size(), 1u);
  tk_testing_advance(5000);
  EXPECT_EQ(text("second"), "05") << "the clock stopped with the recording";
}

TEST_F(HomeKeysTest, ShortRangeKeyWithTheFinderOffShowsOneTipForTwoSeconds) {
  open_home();
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  EXPECT_TRUE(shown("view_tip_open_range"));
  tk_testing_advance(1500);
  tk_testing_key_hit(GUI_KEY_RANGE_S);  // within the 2 s: no second timer, no extension
  tk_testing_advance(500);
  EXPECT_FALSE(shown("view_tip_open_range"));
  tk_testing_advance(2000);
  EXPECT_FALSE(shown("view_tip_open_range"));
  EXPECT_TRUE(distance_commands().empty());
}

TEST_F(HomeKeysTest, RangeKeysWithTheFinderOnMeasureAndSwitchItOff) {
  open_home();
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8RangeType = RANGE_SINGLE;
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  EXPECT_EQ(distance_commands(), (Pairs{{1, 1}}));
  EXPECT_EQ(text("label_RngeValue"), "---- yd");
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  tk_testing_key_hit(GUI_KEY_RANGE_S);  // starts continuous measuring
  stUIStatus.s8RangeMode = 3;
  tk_testing_key_hit(GUI_KEY_RANGE_S);  // and stops it
  EXPECT_EQ(distance_commands(), (Pairs{{1, 3}, {1, 0}}));
  stDevStatus.s8RangeType = 7;  // unknown type: nothing
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  EXPECT_TRUE(distance_commands().empty());
  stUIStatus.s8RangeMode = 3;
  tk_testing_key_hit(GUI_KEY_RANGE_L);  // off, stopping continuous measuring first
  EXPECT_EQ(distance_commands(), (Pairs{{1, 0}, {0, 0}}));
}

TEST_F(HomeKeysTest, LongRangeKeySwitchesTheFinderOnUnlessTheBatteryIsLow) {
  open_home();
  stDevStatus.s8DistanceUint = DISTANCE_M;
  widget_set_text_utf8(w("label_RngeValue"), "1234 m");
  stUIStatus.s16BatteryValue = 568;
  stUIStatus.s8BatteryType = 2;  // anything but external power refuses
  tk_testing_key_hit(GUI_KEY_RANGE_L);
  EXPECT_TRUE(distance_commands().empty());
  EXPECT_TRUE(shown("view_tip_forbid_range"));
  EXPECT_EQ(text("label_RngeValue"), "1234 m");
  tk_testing_advance(2000);
  EXPECT_FALSE(shown("view_tip_forbid_range"));
  stUIStatus.s8BatteryType = 1;  // external power
  tk_testing_key_hit(GUI_KEY_RANGE_L);
  EXPECT_EQ(distance_commands(), (Pairs{{0, 1}}));
  EXPECT_EQ(text("label_RngeValue"), "---- m");
}

TEST_F(HomeKeysTest, FunctionKeysHideTheCompassAndOpenTheMenusOtherKeysDoNothing) {
  use_menus(true);
  open_home();
  for (uint32_t key : {GUI_KEY_POWER_S, GUI_KEY_FOCUS_UP_S, GUI_KEY_FOCUS_DOWN_S})
    tk_testing_key_hit(key);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_EQ(tk_testing_window_names().back(), "Zavo_home_page_1");
  Zavo_menu1_index = 4;
  tk_testing_key_hit(GUI_KEY_FUCTION_L);
  EXPECT_EQ(stUIStatus.s8CompassTempOcclusion, 1);
  EXPECT_EQ(Zavo_menu1_index, 1);
  EXPECT_FALSE(shown("compass_azimuth"));
  EXPECT_TRUE(shown("compass_pitch"));
  EXPECT_EQ(top_name(), "Zavo_menu1");
  // Back on top, the screen shows the compass again.
  navigator_back();
  tk_testing_advance(0);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
  EXPECT_EQ(stUIStatus.s8CompassTempOcclusion, 0);
  EXPECT_TRUE(shown("compass_azimuth") && shown("compass_pitch") && shown("compass_slant"));
}

TEST_F(HomeKeysTest, AMenuTheNavigatorRefusesLeavesTheScreenAsItWas) {
  use_menus(false);
  open_home();
  Zavo_menu1_index = 4;
  for (uint32_t key : {GUI_KEY_FUCTION_S, GUI_KEY_FUCTION_L}) {
    tk_testing_key_hit(key);
    EXPECT_EQ(tk_testing_window_names().back(), "Zavo_home_page_1") << key;
    EXPECT_EQ(stUIStatus.s8CompassTempOcclusion, 0) << key;
    EXPECT_TRUE(shown("compass_azimuth") && shown("compass_pitch") && shown("compass_slant"))
        << key;
    EXPECT_EQ(Zavo_menu1_index, 4) << key;
  }
  // A device frame that asks for the compass again still shows all three read-outs.
  from_device(home_test::device_frame(6, 0, 0, {0, 90, 0}));
  EXPECT_TRUE(shown("compass_azimuth") && shown("compass_slant"));
}

TEST_F(HomeKeysTest, ThePowerKeyOfTheDeviceWhileRecordingShowsTheTipInsteadOfTheStandby) {
  // The link decides from the record field the screen keeps while its recording clock runs.
  open_home();
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  ASSERT_EQ(stUIStatus.s8RecordingState, 1);
  sent_frames();
  from_device(home_test::device_frame(7, 0, 0, {KEY_POWER_S}));
  EXPECT_TRUE(shown("view_tip_record"));
  EXPECT_FALSE(shown("view_standby"));
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_OBSERVE);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);  // stopped: the same key darkens the screen
  ASSERT_EQ(stUIStatus.s8RecordingState, 0);
  from_device(home_test::device_frame(7, 0, 0, {KEY_POWER_S}));
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_AOD);
  EXPECT_TRUE(shown("view_standby"));
}

}  // namespace
