// The compass page and the calibration: the switch and its frame, the angles following the
// device's compass frames, the declination shown, and both calibration turns from start to
// done, interrupted by function, by leaving, or by the page closing.
#include <string>
#include <vector>

#include "accessory_fixture.h"

namespace {

using accessory_test::AccessoryTest;
using accessory_test::Frames;
using Lines = std::vector<std::string>;

const std::string H_START = "COMPASS COMPASS_CORRECT COMPASS_HORIZONTAL_START";
const std::string H_STOP = "COMPASS COMPASS_CORRECT COMPASS_HORIZONTAL_STOP";
const std::string V_START = "COMPASS COMPASS_CORRECT COMPASS_VERTICAL_START";
const std::string V_STOP = "COMPASS COMPASS_CORRECT COMPASS_VERTICAL_STOP";

class CompassTest : public AccessoryTest {};

TEST_F(CompassTest, TheAnglesFollowTheDevicesCompassFrames) {
  stUIStatus.s16CompassAzimuth = 251;
  stUIStatus.s16CompassPitch = 3;
  stUIStatus.s16CompassSlant = -1;
  open("Zavo_compass_menu");
  EXPECT_EQ(text("label_compass_azimuth"), "251\xC2\xB0 W");
  EXPECT_EQ(text("label_compass_pitch"), "+3\xC2\xB0");
  EXPECT_EQ(text("label_compass_slant"), "-1\xC2\xB0");
  struct Case {
    int azimuth, pitch, cant;
    const char *az, *pitch_text, *cant_text;
  } cases[] = {{0, 0, 0, "000\xC2\xB0 N", "+0\xC2\xB0", "+0\xC2\xB0"},
               {300, -12, 4, "300\xC2\xB0 NW", "-12\xC2\xB0", "+4\xC2\xB0"},
               {359, 45, -30, "359\xC2\xB0 N", "+45\xC2\xB0", "-30\xC2\xB0"},
               {112, -90, 0, "112\xC2\xB0 E", "-90\xC2\xB0", "+0\xC2\xB0"}};
  for (const Case& c : cases) {
    compass(c.azimuth, c.pitch, c.cant);
    EXPECT_EQ(text("label_compass_azimuth"), c.az);
    EXPECT_EQ(text("label_compass_pitch"), c.pitch_text);
    EXPECT_EQ(text("label_compass_slant"), c.cant_text);
  }
}

TEST_F(CompassTest, TheSwitchSendsItsStateAndTheObservationScreenFollows) {
  stDevStatus.s8CompassSwitch = 0;
  open_over_home("Zavo_compass_menu");
  EXPECT_EQ(image("image_compass_switch"), "switch_large_off");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stDevStatus.s8CompassSwitch, 1);
  EXPECT_EQ(image("image_compass_switch"), "switch_large_on");
  const Frames frames = sent_frames();
  ASSERT_EQ(frames.size(), 1u);
  EXPECT_EQ(framedec::hex(frames[0]), "aa 07 00 00 21 00 01 d3 eb aa");
  advance(0);
  widget_t* home = widget_child(window_manager(), "Zavo_home_page_1");
  EXPECT_TRUE(widget_lookup(home, "compass_pitch", TRUE)->visible);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), Lines{"BASIC 33:compass_switch value=0"});
  advance(0);
  EXPECT_FALSE(widget_lookup(home, "compass_pitch", TRUE)->visible);
}

TEST_F(CompassTest, TheDeclinationIsShownInTenthsAndRedrawnWhenThePageIsBackOnTop) {
  struct Case {
    int16_t tenths;
    const char* shown;
  } cases[] = {{47, "+4.7\xC2\xB0"},
               {-125, "-12.5\xC2\xB0"},
               {0, "0.0\xC2\xB0"},
               {-5, "-0.5\xC2\xB0"},
               {300, "+30.0\xC2\xB0"}};
  for (const Case& c : cases) {
    stDevStatus.s16CompassMagnetic = c.tenths;
    open("Zavo_compass_menu");
    EXPECT_EQ(text("label_compass_declination_value"), c.shown);
  }
  // Row 2 opens the calibration; changed meanwhile, the value is redrawn on the way back.
  act_on_row(2);
  EXPECT_EQ(top_name(), "Zavo_compass_1");
  stDevStatus.s16CompassMagnetic = -31;
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_compass_menu");
  EXPECT_EQ(text("label_compass_declination_value"), "-3.1\xC2\xB0");
}

class CalibrationTest : public AccessoryTest {
 protected:
  Lines progress_after(std::initializer_list<int> azimuths) {
    Lines shown;
    for (int a : azimuths) {
      compass(a, 0, 0);
      shown.push_back(text("label_cal_progress"));
    }
    return shown;
  }
  int bar() {
    return static_cast<int>(widget_get_prop_int(w("progress_calibration"), "value", -1));
  }
};

TEST_F(CalibrationTest, TheLevelTurnCountsTheCircleAndEndsItselfWhenWhole) {
  stUIStatus.s16CompassAzimuth = 10;  // sector 0: the angle the turn starts from counts
  open("Zavo_level_correction");
  EXPECT_EQ(text("label_cal_action"), "Start");
  EXPECT_EQ(text("label_cal_state"), "Not done");
  key(GUI_KEY_FUCTION_S);
  const Frames start = sent_frames();
  ASSERT_EQ(start.size(), 1u);
  EXPECT_EQ(framedec::hex(start[0]), "aa 07 06 06 00 00 00 bd eb aa");
  EXPECT_EQ(text("label_cal_action"), "Stop");
  EXPECT_EQ(text("label_cal_state"), "Running");
  EXPECT_EQ(text("label_cal_progress"), "8 %");
  // The same sector again, then a pitch-only change: no progress.
  EXPECT_EQ(progress_after({20, 29}), (Lines{"8 %", "8 %"}));
  compass(29, 40, 0);
  EXPECT_EQ(text("label_cal_progress"), "8 %");
  EXPECT_EQ(progress_after({45, 70, 100}), (Lines{"16 %", "25 %", "33 %"}));
  EXPECT_TRUE(sent_frames().empty()) << "nothing until the circle is whole";
  EXPECT_EQ(progress_after({130, 160, 190, 220, 250, 280, 310}),
            (Lines{"41 %", "50 %", "58 %", "66 %", "75 %", "83 %", "91 %"}));
  compass(359, 0, 0);
  EXPECT_EQ(sent(), Lines{H_STOP});
  EXPECT_EQ(text("label_cal_progress"), "100 %");
  EXPECT_EQ(bar(), 100);
  EXPECT_EQ(text("label_cal_state"), "Done");
  EXPECT_EQ(text("label_cal_action"), "Start");
  compass(0, 0, 0);
  EXPECT_TRUE(sent_frames().empty()) << "a finished turn sends no second stop";
  EXPECT_EQ(calibration_outcome(CALIBRATION_LEVEL), CALIBRATION_DONE);
  // Started again, the count starts again.
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), Lines{H_START});
  EXPECT_EQ(text("label_cal_progress"), "8 %");
}

TEST_F(CalibrationTest, TheVerticalTurnCountsTheElevationFromDownToUp) {
  stUIStatus.s16CompassPitch = -90;
  open("Zavo_vertical_correction");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), Lines{V_START});
  Lines shown;
  for (int pitch = -75; pitch <= 90; pitch += 15) {
    compass(200, pitch, 2);
    shown.push_back(text("label_cal_progress"));
  }
  // Twelve sectors of 15 degrees; +90 (straight up) falls in the top one with +75.
  EXPECT_EQ(shown, (Lines{"16 %", "25 %", "33 %", "41 %", "50 %", "58 %", "66 %", "75 %", "83 %",
                          "91 %", "100 %", "100 %"}));
  EXPECT_EQ(sent(), Lines{V_STOP});
  EXPECT_EQ(text("label_cal_state"), "Done");
  EXPECT_EQ(text("label_cal_slant"), "+2\xC2\xB0");
}

TEST_F(CalibrationTest, ATurnEndedEarlyIsInterruptedWhateverEndsIt) {
  struct Case {
    const char* page;
    uint32_t key;  // 0: the window is closed by name
    const std::string stop;
    const char* top_after;
  } cases[] = {
      {"Zavo_level_correction", GUI_KEY_FUCTION_S, H_STOP, "Zavo_level_correction"},
      {"Zavo_level_correction", GUI_KEY_FUCTION_L, H_STOP, "Zavo_compass_1"},
      {"Zavo_vertical_correction", GUI_KEY_POWER_S, V_STOP, "Zavo_home_page_1"},
      {"Zavo_vertical_correction", 0, V_STOP, "Zavo_compass_1"},
  };
  for (const Case& c : cases) {
    calibration_reset();
    open_over_home("Zavo_compass_1");
    open(c.page);
    key(GUI_KEY_FUCTION_S);
    compass(100, 30, 0);
    sent_frames();
    if (c.key != 0) {
      key(c.key);
    } else {
      navigator_close(c.page);
    }
    advance(0);
    EXPECT_EQ(sent(), Lines{c.stop}) << c.page << " key " << c.key;
    EXPECT_EQ(top_name(), c.top_after);
    const calibration_turn_t turn =
        std::string(c.page) == "Zavo_level_correction" ? CALIBRATION_LEVEL : CALIBRATION_VERTICAL;
    EXPECT_EQ(calibration_outcome(turn), CALIBRATION_INTERRUPTED);
    compass(300, -60, 0);
    EXPECT_TRUE(sent_frames().empty()) << "an interrupted turn sends nothing more";
  }
  // Leaving a page whose turn is not running sends nothing.
  open("Zavo_level_correction");
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(CalibrationTest, TheCalibrationPageListsBothTurnsAndOpensThem) {
  open_over_home("Zavo_compass_1");
  EXPECT_EQ(text("label_cal_level_state"), "Not done");
  EXPECT_EQ(text("label_cal_vertical_state"), "Not done");
  // The level turn, done from its step page.
  key(GUI_KEY_FUCTION_S);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_level_correction");
  key(GUI_KEY_FUCTION_S);
  for (int azimuth = 0; azimuth < 360; azimuth += 30)
    compass(azimuth, 0, 0);
  key(GUI_KEY_FUCTION_L);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_compass_1");
  win_ = top();
  EXPECT_EQ(text("label_cal_level_state"), "Done");
  // The vertical turn, left half done.
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_FUCTION_S);
  advance(0);
  ASSERT_EQ(top_name(), "Zavo_vertical_correction");
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_FUCTION_L);
  advance(0);
  win_ = top();
  EXPECT_EQ(text("label_cal_vertical_state"), "Interrupted");
  EXPECT_EQ(sent(), (Lines{H_START, H_STOP, V_START, V_STOP}));
}

}  // namespace
