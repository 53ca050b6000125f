// The observation screen's status side: battery, range and wind read-outs, the zero-group label,
// icons, blinking, tips and their timers, the storage check and the recording clock.
#include "home_fixture.h"

namespace {

using home_test::device_frame;

class HomeStatusTest : public home_test::HomeTest {};

TEST_F(HomeStatusTest, BatteryIconPercentAndShutDownThresholdsThroughTheLink) {
  open_home();
  const struct {
    int16_t value;
    const char* icon;
    int percent;
  } steps[] = {{900, "Zavo_battery4", 100}, {771, "Zavo_battery4", 87}, {770, "Zavo_battery3", 86},
               {731, "Zavo_battery3", 70},  {730, "Zavo_battery2", 69}, {668, "Zavo_battery2", 42},
               {667, "Zavo_battery1", 42},  {601, "Zavo_battery1", 13}, {600, "Zavo_battery0", 13},
               {571, "Zavo_battery0", 0}};
  for (const auto& s : steps) {
    battery_report(s.value);
    EXPECT_EQ(image("image_Zavo_battery"), s.icon) << s.value;
    EXPECT_EQ(percent_battery, s.percent) << s.value;
  }
  EXPECT_EQ(stUIStatus.low_battery_shutdown, 0) << "571 still runs";
  battery_report(570);
  EXPECT_EQ(percent_battery, 0);
  EXPECT_EQ(stUIStatus.low_battery_shutdown, 2);
}

TEST_F(HomeStatusTest, LowBatteryShutDownIsRefusedDuringRestoreFormatOrShutDown) {
  for (const char* blocker : {"Zavo_Restoring", "Zavo_format_restart", "Zavo_SHUT_DOWN"}) {
    tk_testing_reset();
    home_scene_records();  // no level reported yet: the screen starts on its placeholder
    open_home();
    const std::string xml = std::string("<window name=\"") + blocker + "\" x=\"0\" y=\"0\"/>";
    ASSERT_NE(tk_testing_open_xml(blocker, xml.c_str()), nullptr);
    tk_testing_advance(0);
    battery_report(560);
    EXPECT_EQ(stUIStatus.low_battery_shutdown, 0) << "with " << blocker << " on top";
    EXPECT_EQ(tk_testing_window_names().back(), blocker);
  }
}

TEST_F(HomeStatusTest, DistanceAndWindReadOuts) {
  open_home();
  // Distance frame: type 4, command 2, byte 6 = 0 (success), then the value big-endian.
  stDevStatus.s8DistanceUint = DISTANCE_M;
  from_device(device_frame(4, 2, 0, {0, 0x30, 0x39}));  // 12345 dm
  EXPECT_EQ(text("label_RngeValue"), "1234 m");
  stDevStatus.s8DistanceUint = DISTANCE_YD;
  screen_event(SCREEN_EVT_DISTANCE);
  EXPECT_EQ(text("label_RngeValue"), "1348 yd");
  stDevStatus.s8DistanceUint = DISTANCE_M;
  from_device(device_frame(4, 2, 0, {0, 0x9C, 0x40}));  // 40000 dm: read unsigned
  EXPECT_EQ(text("label_RngeValue"), "4000 m");
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;  // continuous measuring: the marker blinks once
  stUIStatus.s8RangeMode = 3;
  screen_event(SCREEN_EVT_DISTANCE);
  tk_testing_advance(499);
  EXPECT_FALSE(shown("image_Rnage"));
  tk_testing_advance(1);
  EXPECT_TRUE(shown("image_Rnage"));

  // Wind frame: type 0, sub-command 38, the speed in mm/s little-endian.
  stUIStatus.s8WindSwitch = 1;
  stUIStatus.wind_connect_state = 1;
  from_device(device_frame(0, 0, 38, {0x76, 0x11}));  // 4470
  EXPECT_TRUE(shown("Zavo_wind"));
  EXPECT_EQ(text("label_WindValue"), "10.0 mph");
}

TEST_F(HomeStatusTest, WindMeterNotConnectedBlinksAndReadsZeroUntilSwitchedOff) {
  stUIStatus.s8WindSwitch = 1;
  stUIStatus.s16WindSpeed = 4470;
  open_home();
  tk_testing_advance(500);
  EXPECT_EQ(text("label_WindValue") + std::to_string(stUIStatus.s16WindSpeed), "0.0 mph0");
  const bool first = shown("image_Wind");
  tk_testing_advance(500);
  EXPECT_NE(shown("image_Wind"), first);
  stUIStatus.wind_connect_state = 1;  // a meter connects: the icon stays on
  tk_testing_advance(1500);
  EXPECT_TRUE(shown("image_Wind"));
  stUIStatus.s8WindSwitch = 0;  // switched off: the group hides and the blink stops
  screen_event(SCREEN_EVT_WIND);
  EXPECT_FALSE(shown("Zavo_wind"));
  EXPECT_EQ(stUIStatus.wind_connect_state, 0);
  tk_testing_advance(500);  // a blink tick would have hidden the icon
  EXPECT_TRUE(shown("image_Wind"));
}

TEST_F(HomeStatusTest, ZeroGroupLabelReadsInYardsInMetricModeToo) {
  IR_Cursor.u8CurrentGroup = 1;
  IR_Cursor.group[1].u8CurrentZero = 3;
  stDevStatus.s8BallisticGroup = 1;
  info[1].gun.scope.zeroRange = 91;
  info[1].gun.scope.zeroRange_yard = 100;
  open_home();
  stDevStatus.s8DistanceUint = DISTANCE_M;
  screen_event(SCREEN_EVT_BALLISTIC_PROFILE);
  EXPECT_EQ(text("label_reticle_value"), "D2 100y");
  IR_Cursor.u8CurrentGroup = 9;  // indices outside the tables
  stDevStatus.s8BallisticGroup = 7;
  screen_event(SCREEN_EVT_BALLISTIC_PROFILE);
  EXPECT_EQ(text("label_reticle_value"), "A8 0y");
}

TEST_F(HomeStatusTest, SimpleIconsFollowTheirFields) {
  stDevStatus.s8IrEnchance = 1;
  open_home();
  EXPECT_TRUE(shown("image_Zavo_enchane"));
  EXPECT_FALSE(shown("view_standby"));
  const struct {
    const char* widget;
    int offset;
    char* field;
    char on, off;
  } cases[] = {
      {"image_Zavo_usb_connect", SCREEN_EVT_BATTERY_TYPE, &stUIStatus.s8BatteryType, 1, 0},
      {"image_Zavo_mic", SCREEN_EVT_MICRO_SWITCH, &stDevStatus.s8MicroSwitch, 1, 2},
      {"image_Zavo_RAV", SCREEN_EVT_RECOIL_SWITCH, &stDevStatus.s8RecoilState, 2, 0},
      {"image_Zavo_wifi", SCREEN_EVT_WIFI_SWITCH, &stUIStatus.s8WifiSwitch, 1, 2},
      {"image_Zavo_shutter", SCREEN_EVT_BRIGHT_LIGHT, &stUIStatus.s8IrBrightLight, 1, 0},
      {"image_Zavo_shutter", SCREEN_EVT_SHUTTER, &stUIStatus.s8ShutterState, 2, 0},
      {"label_reticle_value", SCREEN_EVT_RETICLE_MENU_SWITCH, &stDevStatus.s8ReticleMenuSwitch, 3,
       0},
      {"Range", SCREEN_EVT_RANGE_SWITCH, &stDevStatus.s8RangeSwitch, 2, 0},
      {"image_reticle_range", SCREEN_EVT_RANGE_SWITCH, &stDevStatus.s8RangeSwitch, 1, 0},
      {"view_standby", SCREEN_EVT_STANDBY, &stUIStatus.s8InterfaceState, INTERFACE_AOD,
       INTERFACE_OBSERVE},
  };
  for (const auto& c : cases) {
    *c.field = c.on;
    screen_event(c.offset);
    EXPECT_TRUE(shown(c.widget)) << c.widget << " on";
    *c.field = c.off;
    screen_event(c.offset);
    EXPECT_FALSE(shown(c.widget)) << c.widget << " off";
  }
}

TEST_F(HomeStatusTest, ColourMapIconByPolarityUnknownValuesLeaveIt) {
  open_home();
  const char* names[] = {"Zavo_status_whitehot", "Zavo_status_blackhot", "Zavo_status_redface",
                         "Zavo_status_redhot",   "Zavo_status_greenhot", "Zavo_status_greenhot"};
  for (int p = 0; p < 6; ++p) {
    stDevStatus.s8IrPolarity = static_cast<char>(p);
    screen_event(SCREEN_EVT_POLARITY);
    EXPECT_EQ(image("image_Zavo_colormap"), names[p]) << p;
  }
}

TEST_F(HomeStatusTest, CompassAnglesAndPitchStayingWhileAMenuOccludesTheOthers) {
  use_menus(true);
  open_home();
  // Compass frames: type 6, command 0, sub-command = the angle, sign byte, magnitude LE.
  from_device(device_frame(6, 0, 0, {0, 225, 0}));
  from_device(device_frame(6, 0, 1, {1, 4, 0}));
  from_device(device_frame(6, 0, 2, {0, 2, 0}));
  EXPECT_NE(text("compass_azimuth").find("225\xC2\xB0 SW"), std::string::npos);
  EXPECT_NE(text("compass_pitch").find("-4\xC2\xB0"), std::string::npos);
  EXPECT_NE(text("compass_slant").find("+2\xC2\xB0"), std::string::npos);
  EXPECT_TRUE(shown("compass_azimuth") && shown("compass_pitch") && shown("compass_slant"));
  tk_testing_key_hit(GUI_KEY_FUCTION_S);  // a menu opens above the screen
  EXPECT_FALSE(shown("compass_azimuth"));
  EXPECT_TRUE(shown("compass_pitch"));
  EXPECT_FALSE(shown("compass_slant"));
  stDevStatus.s8CompassSwitch = 0;
  screen_event(SCREEN_EVT_COMPASS_SWITCH);
  EXPECT_FALSE(shown("compass_azimuth") || shown("compass_pitch") || shown("compass_slant"));
}

// The blink also holds back a low-battery shut-down, which then happens at the next report.
TEST_F(HomeStatusTest, RecoilVideoBlinkRunsForItsTimeThenShowsTheSwitch) {
  stDevStatus.s8RecoilAfter = 1;  // (1 + 2) x 10 + 1 ticks of 500 ms
  stDevStatus.s8RecoilState = 1;
  open_home();
  screen_event(SCREEN_EVT_RECOIL_TRIGGERED);
  battery_report(565);
  EXPECT_EQ(stUIStatus.low_battery_shutdown, 0) << "refused while the RAV icon blinks";
  int toggles = 0;
  for (int i = 0; i < 31; ++i) {
    const bool before = shown("image_Zavo_RAV");
    tk_testing_advance(500);
    toggles += shown("image_Zavo_RAV") != before;
  }
  EXPECT_EQ(toggles, 30) << "the 31st tick ends the blink on the switch state, which is on";
  tk_testing_advance(2000);
  EXPECT_TRUE(shown("image_Zavo_RAV")) << "the blink has ended";
  battery_report(565);
  EXPECT_EQ(stUIStatus.low_battery_shutdown, 2) << "asked again at the next report";
}

TEST_F(HomeStatusTest, OverTemperatureBlinksForeverFromOneTimer) {
  open_home();
  screen_event(SCREEN_EVT_TEMPERATURE_REMIND);
  screen_event(SCREEN_EVT_TEMPERATURE_REMIND);  // a second report starts no second timer
  const bool a = shown("image_Zavo_temp");
  tk_testing_advance(500);
  EXPECT_NE(shown("image_Zavo_temp"), a);
  tk_testing_advance(500);
  EXPECT_EQ(shown("image_Zavo_temp"), a) << "one toggle per 500 ms, not two";
  tk_testing_advance(60000);
  EXPECT_EQ(shown("image_Zavo_temp"), a);
  tk_testing_advance(500);
  EXPECT_NE(shown("image_Zavo_temp"), a);
}

TEST_F(HomeStatusTest, TipTimersStartOnceAndAreClearedWhenTheyEnd) {
  open_home();
  screen_event(SCREEN_EVT_RECORD_TIP);
  EXPECT_TRUE(shown("view_tip_record"));
  tk_testing_advance(1500);
  screen_event(SCREEN_EVT_RECORD_TIP);  // does not extend the tip
  tk_testing_advance(500);
  EXPECT_FALSE(shown("view_tip_record"));
  screen_event(SCREEN_EVT_RECORD_TIP);  // the timer was cleared: a new tip starts
  EXPECT_TRUE(shown("view_tip_record"));

  // The laser refresh on battery power below 569 shows the range finder's low-battery tip.
  stUIStatus.s16BatteryValue = 560;
  stUIStatus.s8LaserSwitch = 1;
  screen_event(SCREEN_EVT_LASER_SWITCH);
  EXPECT_TRUE(shown("view_tip_forbid_range"));
  EXPECT_TRUE(shown("image_reticle_laser"));
  tk_testing_advance(2000);
  EXPECT_FALSE(shown("view_tip_forbid_range"));
  stUIStatus.s8BatteryType = 1;  // external power: no tip from the laser refresh
  screen_event(SCREEN_EVT_LASER_SWITCH);
  EXPECT_FALSE(shown("view_tip_forbid_range"));
}

TEST_F(HomeStatusTest, FullCardDuringRecordingStopsItOnce) {
  stDevStatus.s8RecoilState = 1;
  open_home();
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  ASSERT_EQ(record_status.status, 1);
  EXPECT_EQ(matching(sent_frames(), 23, TAP_PICTURE_RECORD, TAP_RECORD_START).size(), 1u);

  home_test::g_free_mib = 150;  // the card fills up
  tk_testing_advance(60000);
  const auto frames = sent_frames();
  EXPECT_EQ(matching(frames, 23, TAP_PICTURE_RECORD, TAP_RECORD_STOP).size(), 1u);
  EXPECT_EQ(matching(frames, 28, RECOIL_SWITCH, 0xFF).size(), 1u) << "recoil video switched off";
  EXPECT_EQ(stDevStatus.s8RecoilState, 0);
  EXPECT_EQ(record_status.status, 0);
  EXPECT_EQ(stUIStatus.s8RecordingState, 0);
  EXPECT_FALSE(shown("video_view"));
  EXPECT_TRUE(shown("image_Zavo_sd_full"));
  EXPECT_TRUE(shown("view_tip_sdfull"));
  tk_testing_advance(3000);
  EXPECT_FALSE(shown("view_tip_sdfull"));
  home_test::g_free_mib = 300;  // low, not full: the icon only, nothing to stop
  tk_testing_advance(60000);
  EXPECT_TRUE(shown("image_Zavo_sd_full"));
  EXPECT_TRUE(matching(sent_frames(), 23, TAP_PICTURE_RECORD, TAP_RECORD_STOP).empty());
  home_test::g_free_mib = 4000;
  tk_testing_advance(60000);
  EXPECT_FALSE(shown("image_Zavo_sd_full"));
}

}  // namespace
