// The scope's buttons: every row of the key table and the special rules, from a key frame on
// the queue to the key events the pages receive.
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "link_fixture.h"
#include "pages/Zavo_home_page_1.h"

namespace linktest {
namespace {

std::string captured() {
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

class Keys : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    use_windows({"Zavo_home_page_1", "Zavo_SHUT_DOWN", "Zavo_tip_ballistic", "Zavo_updata"});
  }
  // Delivers a key frame, lets the UI thread run, returns the printed output.
  std::string press(uint8_t button) {
    testing::internal::CaptureStdout();
    deliver(key(button));
    pump();
    return captured();
  }
};

struct PlainRow {
  uint8_t button;
  const char* printed;
  std::vector<KeySeen> posted;
};

TEST_F(Keys, EveryPlainButtonPostsItsCodes) {
  open_window("Zavo_menu1");
  const std::vector<PlainRow> rows = {
      {KEY_FOCUS_UP_S, "up short", hit(51)},
      {KEY_FOCUS_UP_L, "up long", {{true, 52}}},
      {KEY_FOCUS_UP_L_POP, "up long pop", {{false, 52}}},
      {KEY_FOCUS_DOWN_S, "down short", hit(53)},
      {KEY_FOCUS_DOWN_L, "down long", {{true, 54}}},
      {KEY_FOCUS_DOWN_L_POP, "down long pop", {{false, 54}}},
      {KEY_POWER_L_POP, "power long pop", hit(79)},
      {KEY_PHOTO_S, "photo short", hit(57)},
      {KEY_PHOTO_L, "photo long", hit(48)},
      {KEY_PHOTO_L_POP, "photo long pop", hit(84)},
      {KEY_FUCTION_S, "fuction short", hit(55)},
      {KEY_FUCTION_L_POP, "fuction long pop", hit(73)},
      {KEY_RANGE_S, "range short", hit(97)},
      {KEY_RANGE_L, "range long", hit(98)},
      {KEY_RANGE_L_POP, "range long POP", hit(85)},
      {KEY_PHOTO_FUCTION_S, "range fuction short", hit(101)},
  };
  for (const PlainRow& row : rows) {
    keys_.clear();
    std::string out = press(row.button);
    EXPECT_NE(out.find(std::string("receive key message!\n") + row.printed + "\n"),
              std::string::npos)
        << "button " << int(row.button) << ": " << out;
    EXPECT_EQ(keys(), row.posted) << "button " << int(row.button);
    EXPECT_TRUE(sent_frames().empty()) << "button " << int(row.button);
  }
}

TEST_F(Keys, CodesAboveTheTableAreIgnored) {
  open_window("Zavo_menu1");
  for (int button : {22, 23, 100, 255}) {
    std::string out = press(static_cast<uint8_t>(button));
    EXPECT_NE(out.find("receive key message!\n"), std::string::npos);
    EXPECT_EQ(out.find("short"), std::string::npos) << out;
  }
  EXPECT_TRUE(keys().empty());
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_TRUE(log_.events().empty());
}

TEST_F(Keys, FunctionLongPostsItsKeyThenSavesAllSettings) {
  open_window("Zavo_menu1");
  std::string out = press(KEY_FUCTION_L);
  EXPECT_NE(out.find("fuction long\n"), std::string::npos);
  EXPECT_EQ(keys(), hit(56));
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"PARAM SAVE_ALLPARAM"});
}

TEST_F(Keys, PowerOnTheDarkHomeScreenOnlyWakesIt) {
  open_window("Zavo_home_page_1");
  for (uint8_t button : {uint8_t(KEY_POWER_S), uint8_t(KEY_POWER_L)}) {
    stUIStatus.s8InterfaceState = INTERFACE_AOD;
    log_.clear();
    std::string out = press(button);
    EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_OBSERVE);
    EXPECT_EQ(sent_decoded(), std::vector<std::string>{"BASIC BASIC_AUTO_SCREEN value=1"});
    EXPECT_EQ(log_.events(), std::vector<int>{8253});
    EXPECT_EQ(out.find("power"), std::string::npos) << "no key row runs: " << out;
  }
  EXPECT_TRUE(keys().empty());
  EXPECT_EQ(top_window(), "Zavo_home_page_1");
}

TEST_F(Keys, OtherButtonsOnTheDarkScreenGoOnAsUsual) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_AOD;
  press(KEY_PHOTO_S);
  EXPECT_EQ(keys(), hit(57));
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_AOD);
}

TEST_F(Keys, PowerAnywhereElseWhileDarkIsAnOrdinaryPress) {
  open_window("Zavo_menu2");
  stUIStatus.s8InterfaceState = INTERFACE_AOD;
  press(KEY_POWER_S);
  EXPECT_EQ(keys(), hit(49));
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"PARAM SAVE_ALLPARAM"});
}

TEST_F(Keys, PowerShortOnTheHomeScreenDarkensItAndStopsLaserAndRanging) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  stUIStatus.s8LaserSwitch = 1;
  stUIStatus.s8RangeMode = 3;
  press(KEY_POWER_S);
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_AOD);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 0);
  EXPECT_EQ(stUIStatus.s8RangeMode, 0);
  EXPECT_EQ(sent_decoded(), (std::vector<std::string>{"BASIC BASIC_AUTO_SCREEN value=0",
                                                      "BASIC BASIC_LASER_SWITCH value=0",
                                                      "RANGE MEASURE value=0"}));
  EXPECT_EQ(log_.events(), (std::vector<int>{8253, 8229}));
  EXPECT_EQ(keys(), hit(49));
}

TEST_F(Keys, PowerShortWhileRecordingShowsTheRecordingTip) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  stUIStatus.s8RecordingState = 1;
  press(KEY_POWER_S);
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_OBSERVE);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_EQ(log_.events(), std::vector<int>{8247});
  EXPECT_EQ(keys(), hit(49));
}

TEST_F(Keys, PowerShortWhileTheRecordingClockTicksShowsTheRecordingTip) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  stUIStatus.s8RecordingState = 0;
  record_status.timer_id = 17;
  press(KEY_POWER_S);
  record_status.timer_id = 0;
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_OBSERVE);
  EXPECT_EQ(log_.events(), std::vector<int>{8247});
  EXPECT_EQ(keys(), hit(49));
}

TEST_F(Keys, PowerShortInAMenuSavesAllSettings) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8InterfaceState = INTERFACE_MENU;  // the home screen, but not observing
  press(KEY_POWER_S);
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"PARAM SAVE_ALLPARAM"});
  EXPECT_EQ(keys(), hit(49));
}

TEST_F(Keys, PowerLongOpensTheShutDownPageThenPostsItsKey) {
  open_window("Zavo_menu1");
  std::string out = press(KEY_POWER_L);
  EXPECT_NE(out.find("power long\n"), std::string::npos);
  EXPECT_STREQ(stUIStatus.temp_window, "Zavo_menu1");
  EXPECT_EQ(top_window(), "Zavo_SHUT_DOWN");
  EXPECT_EQ(keys(), hit(50));
  // The key comes after the navigation, as when the navigator ran on the listener thread.
  EXPECT_EQ(key_windows(), (std::vector<std::string>{"Zavo_SHUT_DOWN", "Zavo_SHUT_DOWN"}));
}

TEST_F(Keys, PowerLongIsRefusedDuringFormatRestoreAndUpdate) {
  for (const char* busy : {"Zavo_format_restart", "Zavo_Restoring", "Zavo_updata"}) {
    open_window(busy);
    std::strcpy(stUIStatus.temp_window, "unchanged");
    keys_.clear();
    press(KEY_POWER_L);
    EXPECT_STREQ(stUIStatus.temp_window, "unchanged") << busy;
    EXPECT_EQ(top_window(), busy);
    EXPECT_EQ(keys(), hit(50)) << busy;
  }
}

TEST_F(Keys, TheShutDownWindowNameIsCutToTheRecordsSize) {
  const std::string long_name(40, 'w');
  open_window(long_name.c_str());
  press(KEY_POWER_L);
  EXPECT_EQ(std::string(stUIStatus.temp_window), long_name.substr(0, 31));
}

TEST_F(Keys, LaserToggle) {
  open_window("Zavo_home_page_1");
  std::string out = press(KEY_RANGE_FUCTION_S);
  EXPECT_NE(out.find("range fuction short\n"), std::string::npos);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 1);
  press(KEY_RANGE_FUCTION_S);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 0);
  EXPECT_EQ(sent_decoded(), (std::vector<std::string>{"BASIC BASIC_LASER_SWITCH value=1",
                                                      "BASIC BASIC_LASER_SWITCH value=0"}));
  EXPECT_EQ(log_.events(), (std::vector<int>{8229, 8229}));
  EXPECT_TRUE(keys().empty());
}

TEST_F(Keys, ShutterClosesAndReopensOnTheTimer) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8UsbMode = 1;
  stDevStatus.s8CorrectType = 2;
  std::string out = press(KEY_RANGE_PHOTO_S);
  EXPECT_NE(out.find("range photo short\n"), std::string::npos);
  EXPECT_EQ(stUIStatus.s8UsbMode, 0);
  EXPECT_EQ(stUIStatus.s8ShutterState, 1);
  std::vector<Frame> sent = sent_frames();
  ASSERT_EQ(sent.size(), 2u);
  EXPECT_EQ(framedec::hex(sent[0]), "aa 07 00 00 12 00 00 c3 eb aa");  // USB mode 0
  EXPECT_EQ(framedec::hex(sent[1]), "aa 08 01 0f 00 00 02 00 c4 eb aa");
  EXPECT_EQ(log_.events(), std::vector<int>{8241});

  tk_testing_advance(499);
  EXPECT_EQ(stUIStatus.s8ShutterState, 1);
  tk_testing_advance(1);
  pump();
  EXPECT_EQ(stUIStatus.s8ShutterState, 0);
  EXPECT_EQ(log_.events(), (std::vector<int>{8241, 8241}));
  EXPECT_TRUE(keys().empty());
}

TEST_F(Keys, ShutterOnAFrozenImageUnfreezesTheAlignmentPage) {
  open_window("Zavo_home_page_1");
  stUIStatus.s8Irfreeze = 1;
  press(KEY_RANGE_PHOTO_S);
  EXPECT_EQ(log_.events(), (std::vector<int>{8241, 8254}));
  EXPECT_EQ(sent_decoded(), std::vector<std::string>{"INFRARED INFRARED_CORRECT value=0"});
}

TEST_F(Keys, CalculatorToggleUsesTheFirstProfile) {
  open_window("Zavo_home_page_1");
  stDevStatus.s8BallisticGroup = 2;
  std::string out = press(KEY_UP_POWER_L);
  EXPECT_NE(out.find("up down long pop\n"), std::string::npos);
  EXPECT_EQ(info[0].ballistics_sw, 1);
  EXPECT_EQ(info[2].ballistics_sw, 0);
  // Switched on while not ranging continuously: sent twice.
  EXPECT_EQ(sent_decoded(),
            (std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1",
                                      "BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1"}));
  stUIStatus.s8RangeMode = 3;
  press(KEY_UP_POWER_L);
  EXPECT_EQ(info[0].ballistics_sw, 0);
  EXPECT_EQ(sent_decoded(),
            std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=0"});
  press(KEY_UP_POWER_L);  // on again, while ranging continuously: sent once
  EXPECT_EQ(sent_decoded(),
            std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1"});
  EXPECT_TRUE(keys().empty());
}

TEST_F(Keys, CombinedButtonsAreIgnoredOnTheUpdatePage) {
  open_window("Zavo_updata");
  stUIStatus.s8UsbMode = 1;
  for (uint8_t b :
       {uint8_t(KEY_RANGE_FUCTION_S), uint8_t(KEY_RANGE_PHOTO_S), uint8_t(KEY_UP_POWER_L)}) {
    press(b);
  }
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 0);
  EXPECT_EQ(stUIStatus.s8UsbMode, 1);
  EXPECT_EQ(stUIStatus.s8ShutterState, 0);
  EXPECT_EQ(info[0].ballistics_sw, 0);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_TRUE(keys().empty());
}

}  // namespace
}  // namespace linktest
