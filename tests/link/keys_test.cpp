// The scope's buttons: every row of the key table and the special rules, from a key frame on
// the queue to the key events the pages receive.
#include <cstring>
#include <string>

#include "link_fixture.h"

namespace linktest {
namespace {

class Keys : public LinkTest {
 protected:
  void SetUp() override {
    LinkTest::SetUp();
    use_windows({"Zavo_home_page_1", "Zavo_SHUT_DOWN", "Zavo_updata"});
  }
  // Delivers a key frame and lets the UI thread run; returns what was printed.
  std::string press(uint8_t button) {
    return output_of([&] {
      deliver(key(button));
      pump();
    });
  }
  // The home screen while observing.
  void observe() {
    open_window("Zavo_home_page_1");
    stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  }
};

TEST_F(Keys, EveryPlainButtonPrintsItsNameAndPostsItsCodes) {
  open_window("Zavo_menu1");
  struct Row {
    uint8_t button;
    const char* printed;
    std::vector<int> posted;
  };
  // clang-format off
  const Row rows[] = {
      {KEY_FOCUS_UP_S, "up short", hit(51)},      {KEY_FOCUS_UP_L, "up long", {press_of(52)}},
      {KEY_FOCUS_UP_L_POP, "up long pop", {release_of(52)}},
      {KEY_FOCUS_DOWN_S, "down short", hit(53)},  {KEY_FOCUS_DOWN_L, "down long", {press_of(54)}},
      {KEY_FOCUS_DOWN_L_POP, "down long pop", {release_of(54)}},
      {KEY_POWER_L_POP, "power long pop", hit(79)},
      {KEY_PHOTO_S, "photo short", hit(57)},      {KEY_PHOTO_L, "photo long", hit(48)},
      {KEY_PHOTO_L_POP, "photo long pop", hit(84)},
      {KEY_FUCTION_S, "fuction short", hit(55)},  {KEY_FUCTION_L_POP, "fuction long pop", hit(73)},
      {KEY_RANGE_S, "range short", hit(97)},      {KEY_RANGE_L, "range long", hit(98)},
      {KEY_RANGE_L_POP, "range long POP", hit(85)},
      {KEY_PHOTO_FUCTION_S, "range fuction short", hit(101)},
      {22, "", {}}, {255, "", {}}};  // codes above 21 are ignored
  // clang-format on
  for (const Row& row : rows) {
    log_.clear();
    const std::string out = press(row.button);
    EXPECT_EQ(out, std::string("receive key message!\n") + row.printed + (*row.printed ? "\n" : ""))
        << int(row.button);
    EXPECT_EQ(keys(), row.posted) << int(row.button);
  }
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_TRUE(events().empty());

  // Function long posts its key, then saves all settings.
  EXPECT_NE(press(KEY_FUCTION_L).find("fuction long\n"), std::string::npos);
  EXPECT_EQ(keys(), hit(56));
  EXPECT_EQ(sent(), std::vector<std::string>{"PARAM SAVE_ALLPARAM"});
}

TEST_F(Keys, PowerOnTheDarkHomeScreenOnlyWakesIt) {
  open_window("Zavo_home_page_1");
  for (uint8_t button : {uint8_t(KEY_POWER_S), uint8_t(KEY_POWER_L)}) {
    stUIStatus.s8InterfaceState = INTERFACE_AOD;
    EXPECT_EQ(press(button).find("power"), std::string::npos) << "no key row runs";
    EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_OBSERVE);
    EXPECT_EQ(sent(), std::vector<std::string>{"BASIC BASIC_AUTO_SCREEN value=1"});
    EXPECT_EQ(take_events(), std::vector<int>{8253});
  }
  EXPECT_EQ(top_window(), "Zavo_home_page_1");
  // Other buttons on the dark screen go on as usual; power elsewhere is an ordinary press.
  stUIStatus.s8InterfaceState = INTERFACE_AOD;
  press(KEY_PHOTO_S);
  EXPECT_EQ(keys(), hit(57));
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_AOD);
  open_window("Zavo_menu2");
  press(KEY_POWER_S);
  EXPECT_EQ(sent(), std::vector<std::string>{"PARAM SAVE_ALLPARAM"});
  EXPECT_EQ(keys(), (std::vector<int>{press_of(57), release_of(57), press_of(49), release_of(49)}));
}

TEST_F(Keys, PowerShortOnTheHomeScreen) {
  observe();
  stUIStatus.s8LaserSwitch = 1;
  stUIStatus.s8RangeMode = 3;
  press(KEY_POWER_S);  // darkens it, stops the laser and continuous ranging
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_AOD);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 0);
  EXPECT_EQ(stUIStatus.s8RangeMode, 0);
  EXPECT_EQ(sent(), (std::vector<std::string>{"BASIC BASIC_AUTO_SCREEN value=0",
                                              "BASIC BASIC_LASER_SWITCH value=0",
                                              "RANGE MEASURE value=0"}));
  EXPECT_EQ(events(), (std::vector<int>{8253, 8229}));
  EXPECT_EQ(keys(), hit(49));

  // While recording (the record field the observation screen keeps): the recording tip.
  stUIStatus.s8InterfaceState = INTERFACE_OBSERVE;
  stUIStatus.s8RecordingState = 1;
  log_.clear();
  press(KEY_POWER_S);
  stUIStatus.s8RecordingState = 0;
  EXPECT_EQ(stUIStatus.s8InterfaceState, INTERFACE_OBSERVE);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_EQ(log_, (std::vector<int>{8247, press_of(49), release_of(49)}));

  // The home screen, but not observing: save all.
  stUIStatus.s8InterfaceState = INTERFACE_MENU;
  press(KEY_POWER_S);
  EXPECT_EQ(sent(), std::vector<std::string>{"PARAM SAVE_ALLPARAM"});
}

TEST_F(Keys, PowerLongOpensTheShutDownPageThenPostsItsKey) {
  const std::string long_name(40, 'w');
  open_window(long_name.c_str());
  EXPECT_NE(press(KEY_POWER_L).find("power long\n"), std::string::npos);
  EXPECT_EQ(std::string(stUIStatus.temp_window), long_name.substr(0, 31));
  EXPECT_EQ(top_window(), "Zavo_SHUT_DOWN");
  EXPECT_EQ(keys(), hit(50));
  // The key comes after the navigation, as when the navigator ran on the listener thread.
  EXPECT_EQ(key_windows_, (std::vector<std::string>{"Zavo_SHUT_DOWN", "Zavo_SHUT_DOWN"}));

  for (const char* busy : {"Zavo_format_restart", "Zavo_Restoring", "Zavo_updata"}) {
    open_window(busy);
    std::strcpy(stUIStatus.temp_window, "unchanged");
    log_.clear();
    press(KEY_POWER_L);
    EXPECT_STREQ(stUIStatus.temp_window, "unchanged") << busy;
    EXPECT_EQ(top_window(), busy);
    EXPECT_EQ(keys(), hit(50)) << busy;
  }
}

TEST_F(Keys, ShutterClosesAndReopensOnTheTimer) {
  observe();
  stUIStatus.s8UsbMode = 1;
  stUIStatus.s8Irfreeze = 1;
  stDevStatus.s8CorrectType = 2;
  EXPECT_NE(press(KEY_RANGE_PHOTO_S).find("range photo short\n"), std::string::npos);
  EXPECT_EQ(stUIStatus.s8UsbMode, 0);
  EXPECT_EQ(stUIStatus.s8ShutterState, 1);
  EXPECT_EQ(sent(true), (std::vector<std::string>{"aa 07 00 00 12 00 00 c3 eb aa",  // USB mode 0
                                                  "aa 08 01 0f 00 00 02 00 c4 eb aa"}));
  EXPECT_EQ(events(), (std::vector<int>{8241, 8254}));  // the frozen image is told too
  stUIStatus.s8Irfreeze = 0;
  tk_testing_advance(300);
  press(KEY_RANGE_PHOTO_S);  // a second press while the timer runs starts no second timer
  tk_testing_advance(199);
  EXPECT_EQ(stUIStatus.s8ShutterState, 1);
  tk_testing_advance(1);
  pump();
  EXPECT_EQ(stUIStatus.s8ShutterState, 0);
  tk_testing_advance(1000);
  pump();
  EXPECT_EQ(log_, (std::vector<int>{8241, 8254, 8241, 8241}));
  EXPECT_EQ(sent().size(), 1u);
}

TEST_F(Keys, LaserAndCalculatorTogglesAreIgnoredOnTheUpdatePage) {
  observe();
  stDevStatus.s8BallisticGroup = 2;
  EXPECT_NE(press(KEY_RANGE_FUCTION_S).find("range fuction short\n"), std::string::npos);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 1);
  press(KEY_RANGE_FUCTION_S);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 0);
  EXPECT_EQ(sent(), (std::vector<std::string>{"BASIC BASIC_LASER_SWITCH value=1",
                                              "BASIC BASIC_LASER_SWITCH value=0"}));
  EXPECT_EQ(log_, (std::vector<int>{8229, 8229}));

  // The calculator switch of the first profile, not of the current one.
  EXPECT_NE(press(KEY_UP_POWER_L).find("up down long pop\n"), std::string::npos);
  EXPECT_EQ(info[0].ballistics_sw, 1);
  EXPECT_EQ(info[2].ballistics_sw, 0);
  const std::string on = "BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1";
  EXPECT_EQ(sent(), (std::vector<std::string>{on, on})) << "switched on: sent twice";
  stUIStatus.s8RangeMode = 3;
  press(KEY_UP_POWER_L);
  EXPECT_EQ(sent(), std::vector<std::string>{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=0"});
  press(KEY_UP_POWER_L);
  EXPECT_EQ(sent(), std::vector<std::string>{on}) << "on while ranging continuously: once";
  EXPECT_TRUE(keys().empty());

  open_window("Zavo_updata");
  stUIStatus.s8UsbMode = 1;
  log_.clear();
  for (uint8_t b :
       {uint8_t(KEY_RANGE_FUCTION_S), uint8_t(KEY_RANGE_PHOTO_S), uint8_t(KEY_UP_POWER_L)})
    press(b);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 0);
  EXPECT_EQ(stUIStatus.s8UsbMode, 1);
  EXPECT_EQ(stUIStatus.s8ShutterState, 0);
  EXPECT_EQ(info[0].ballistics_sw, 1);
  EXPECT_TRUE(sent_frames().empty());
  EXPECT_TRUE(log_.empty());
}

}  // namespace
}  // namespace linktest
