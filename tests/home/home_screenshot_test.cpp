// The observation screen drawn in one fixed state, compared with its reference picture
// (tests/home/references/<test name>.png; TK_UPDATE_REFERENCES=1 writes a missing one).
#include "home_fixture.h"

using home_test::HomeTest;

namespace {

class HomeScreenshot : public HomeTest {};

TEST_F(HomeScreenshot, ObservationScreenInAFixedState) {
  stDevStatus.s8IrPolarity = 0;
  stDevStatus.s8IrEnchance = 1;
  stDevStatus.s8MicroSwitch = 1;
  stDevStatus.s8RecoilState = 1;
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8ReticleType = 0;
  stDevStatus.s8ReticleColour = 0;
  stDevStatus.s8ReticleBrightness = 2;
  stDevStatus.s8BallisticGroup = 0;
  info[0].gun.scope.zeroRange_yard = 100;
  IR_Cursor.group[0].u8CurrentZero = 2;
  stUIStatus.s8WifiSwitch = 1;
  stUIStatus.s8WindSwitch = 1;
  stUIStatus.wind_connect_state = 1;
  stUIStatus.s16WindSpeed = 4470;
  stUIStatus.s16CompassAzimuth = 225;
  stUIStatus.s16CompassPitch = -4;
  stUIStatus.s16CompassSlant = 2;
  open_home();

  stUIStatus.s16Distance = 3125;  // 312 m, 341 yd
  screen_event(SCREEN_EVT_DISTANCE);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);  // recording for 1 min 23 s
  tk_testing_advance(83 * 1000);
  battery_report(750);

  const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
  std::string reference = std::string("tests/home/references/") + test->name() + ".png";
  std::string message;
  EXPECT_TRUE(tk_testing_compare_screenshot(reference.c_str(), 8, &message)) << message;
}

}  // namespace
