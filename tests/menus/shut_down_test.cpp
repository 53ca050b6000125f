// The shut-down countdown: its three ticks and frames, the cancel by releasing the power key
// (before the third tick only) back to the page that was showing, what must stop first, the
// return when temp_window names no page, and the two paths that open it: a long power press on
// any page but three, and the observation screen's empty battery.
#include <cstring>

#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using menus_test::printed;

class ShutDownTest : public menus_test::MenusTest {
 protected:
  void opened_from(const char* page) {
    std::memset(stUIStatus.temp_window, 0, sizeof(stUIStatus.temp_window));
    std::strncpy(stUIStatus.temp_window, page, sizeof(stUIStatus.temp_window) - 1);
    open("Zavo_SHUT_DOWN");
  }
};

TEST_F(ShutDownTest, ThreeTicksSaveShowThreeAndTwoThenShutDown) {
  opened_from("Zavo_home_page_1");
  EXPECT_EQ(image("image_shutdown"), "Zavo_countdown_power");
  EXPECT_FALSE(shown("label_shutdown_battery"));
  advance(999);
  EXPECT_EQ(sent(), Lines{});
  advance(1);
  EXPECT_EQ(image("image_shutdown"), "Zavo_countdown3");
  EXPECT_EQ(sent(), Lines{"PARAM SAVE_ALLPARAM"});
  advance(1000);
  EXPECT_EQ(image("image_shutdown"), "Zavo_countdown2");
  EXPECT_EQ(sent(), Lines{});
  advance(1000);
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_SHUT_DOWN value=1"});
  advance(5000);  // the countdown has ended
  EXPECT_EQ(sent(), Lines{});
  key(GUI_KEY_POWER_L_POP);  // after the third tick nothing cancels
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_SHUT_DOWN");
  EXPECT_EQ(back_count, 0);
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(ShutDownTest, ReleasingThePowerKeyBeforeTheThirdTickReturnsToThePageThatWasShowing) {
  for (uint32_t at : {500u, 1500u, 2500u}) {  // before 3, after "3", after "2"
    SCOPED_TRACE(at);
    restart_at_home();
    open("Zavo_Settings");
    key(GUI_KEY_PHOTO_S);  // row 2
    opened_from("Zavo_Settings");
    advance(at);
    sent_frames();
    key(GUI_KEY_POWER_L_POP);
    advance(0);
    EXPECT_EQ(windows(), (Lines{"Zavo_home_page_1", "Zavo_Settings"}));
    EXPECT_EQ(Zavo_setting_index, 2);  // the same page, not a new one
    EXPECT_EQ(back_count, 0);
    advance(5000);
    EXPECT_EQ(sent(), Lines{});  // the countdown is gone
  }
}

TEST_F(ShutDownTest, ARunningRecordingAndRecoilVideoStopBeforeTheShutDown) {
  stUIStatus.s8RecordingState = 1;
  record_status.status = 1;
  screen_event(SCREEN_EVT_RECOIL_TRIGGERED);  // the observation screen's RAV blink runs
  ASSERT_NE(timer_id_RAV, 0u);
  opened_from("Zavo_home_page_1");
  advance(2000);
  sent_frames();
  advance(1000);
  EXPECT_EQ(sent(), (Lines{"TAP TAP_PICTURE_RECORD TAP_RECORD_STOP",
                           "RECOIL RECOIL_BREAKOUT value=1", "BASIC BASIC_SHUT_DOWN value=1"}));
  EXPECT_EQ(stUIStatus.s8RecordingState, 0);
}

TEST_F(ShutDownTest, ACancelWhoseReturnPageIsNotOpenGoesToTheObservationScreen) {
  for (const char* name : {"", "Zavo_no_such_page", "Zavo_SHUT_DOWN", "Zavo_Info"}) {
    SCOPED_TRACE(name);
    restart_at_home();
    open("Zavo_menu1");
    opened_from(name);
    advance(1200);
    std::string out = printed([&] {
      key(GUI_KEY_POWER_L_POP);
      advance(0);
    });
    EXPECT_NE(out.find("Zavo_SHUT_DOWN: cancelled; \"" + std::string(name) +
                       "\" is not an open page, back to Zavo_home_page_1"),
              std::string::npos)
        << out;
    EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  }
}

TEST_F(ShutDownTest, FunctionPrintsTheTopAndReturnPageOnly) {
  opened_from("Zavo_menu2");
  std::string out = printed([&] { key(GUI_KEY_FUCTION_S); });
  EXPECT_EQ(out, "top->name======Zavo_SHUT_DOWN\nstUIStatus.temp_window======Zavo_menu2\n");
  advance(3000);
  EXPECT_EQ(with_prefix(sent(), "BASIC BASIC_SHUT_DOWN"), Lines{"BASIC BASIC_SHUT_DOWN value=1"});
}

TEST_F(ShutDownTest, ACountdownLeftMidwayDoesNotShortenTheNextOne) {
  opened_from("Zavo_home_page_1");
  advance(2000);         // "2" shows
  key(GUI_KEY_POWER_S);  // back to the observation screen
  advance(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  opened_from("Zavo_home_page_1");
  sent_frames();
  advance(1000);
  EXPECT_EQ(image("image_shutdown"), "Zavo_countdown3");
  advance(1000);
  EXPECT_EQ(image("image_shutdown"), "Zavo_countdown2");
  EXPECT_EQ(with_prefix(sent(), "BASIC BASIC_SHUT_DOWN"), Lines{});
  advance(1000);
  EXPECT_EQ(with_prefix(sent(), "BASIC BASIC_SHUT_DOWN"), Lines{"BASIC BASIC_SHUT_DOWN value=1"});
}

TEST_F(ShutDownTest, TheLinksLongPowerPressOpensItOverAnyPageButThree) {
  struct Case {
    const char* page;
    bool opens;
  };
  const Case cases[] = {
      {"Zavo_home_page_1", true},   {"Zavo_menu1", true},           {"Zavo_Settings", true},
      {"Zavo_shortcut_menu", true}, {"Zavo_format_restart", false}, {"Zavo_Restoring", false},
      {"Zavo_updata", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page);
    restart_at_home();
    if (std::string(c.page) != "Zavo_home_page_1") open(c.page);
    button(KEY_POWER_L);
    EXPECT_EQ(top_name(), c.opens ? "Zavo_SHUT_DOWN" : c.page);
    if (!c.opens) continue;
    EXPECT_STREQ(stUIStatus.temp_window, c.page);
    advance(1500);
    button(KEY_POWER_L_POP);
    EXPECT_EQ(top_name(), c.page);
  }
}

TEST_F(ShutDownTest, AnEmptyBatteryOpensItOnceWithItsNotice) {
  open("Zavo_menu2");
  stUIStatus.s16BatteryValue = 560;
  screen_event(SCREEN_EVT_BATTERY);  // the observation screen's rule
  EXPECT_EQ(top_name(), "Zavo_SHUT_DOWN");
  win_ = top();
  EXPECT_TRUE(shown("label_shutdown_battery"));
  screen_event(SCREEN_EVT_BATTERY);  // the next report finds the countdown on top
  advance(1500);
  screen_event(SCREEN_EVT_BATTERY);
  EXPECT_EQ(windows(), (Lines{"Zavo_home_page_1", "Zavo_menu2", "Zavo_SHUT_DOWN"}));
  sent_frames();
  advance(1500);
  EXPECT_EQ(with_prefix(sent(), "BASIC BASIC_SHUT_DOWN"), Lines{"BASIC BASIC_SHUT_DOWN value=1"});
}

}  // namespace
