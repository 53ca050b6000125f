// The firmware upgrade page: the card and battery check of state 0 (the 730 edge), one step per
// report of the device, the confirmation, the final states and the restart, unknown reports,
// the way out, and the page opened by the device's start notice through the link.
#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using menus_test::printed;
using page_test::device_frame;
using page_test::g_free_mib;

class UpgradeTest : public menus_test::MenusTest {
 protected:
  // A report of the device: a type-26 frame (state, result or notice) through the link.
  void report(uint8_t command, uint8_t value) {
    from_device(device_frame(26, command, 0, {value}));
  }
  void state_report(uint8_t value) { report(UPDATA_STATE, value); }
  std::string picture() const { return image("image_updata"); }

  // Opens the page as the device's first start notice does (the link opens it once per run,
  // then raises the upgrade event) and lets the device's battery decide.
  void start(int battery) {
    stUIStatus.s16BatteryValue = static_cast<int16_t>(battery);
    open("Zavo_updata");
    screen_event(SCREEN_EVT_UPDATA);
  }
  // The same through the link: the first start notice of the run.
  void start_by_notice(int battery) {
    stUIStatus.s16BatteryValue = static_cast<int16_t>(battery);
    report(UPDATA_START_NOTICE, 0);
    ASSERT_EQ(top_name(), "Zavo_updata");
    win_ = top();
  }
  // From the start to the confirmation (state 6).
  void to_confirmation() {
    start(790);
    state_report(0);
    ASSERT_EQ(Zavo_updata_index, 6);
  }
};

TEST_F(UpgradeTest, TheCardAndTheBatteryDecideTheFirstState) {
  struct Case {
    uint64_t free_mib;  // under 200: the card is full
    int battery;
    int state;
    int check;
  };
  const Case cases[] = {
      {4000, 731, 4, 0},
      {4000, 729, 2, 2},
      {150, 731, 1, 1},
      {150, 729, 3, 1},
      {4000, 730, 0, 5},  // exactly 730 decides nothing; the check still goes
                          // out
      {150, 730, 0, 5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.free_mib) + " MiB free, battery " + std::to_string(c.battery));
    restart_at_home();
    g_free_mib = c.free_mib;
    stUIStatus.s16BatteryValue = static_cast<int16_t>(c.battery);
    open("Zavo_updata");
    EXPECT_EQ(picture(), "image_updata_0");
    EXPECT_EQ(stUIStatus.s8Updata_check, 5);
    sent_frames();
    screen_event(SCREEN_EVT_UPDATA);
    EXPECT_EQ(Zavo_updata_index, c.state);
    EXPECT_EQ(picture(), "image_updata_" + std::to_string(c.state));
    EXPECT_EQ(sent(), Lines{"UPDATA UPDATA_CHECK value=" + std::to_string(c.check)});
  }
}

TEST_F(UpgradeTest, TheStartNoticeOpensThePageWhichStepsOncePerReport) {
  start_by_notice(790);
  EXPECT_EQ(Zavo_updata_index, 4);
  EXPECT_EQ(text("label_updata"), "Looking for the new firmware...");
  EXPECT_EQ(text("label_updata_keys"), "Please wait");
  state_report(0);
  EXPECT_EQ(picture(), "image_updata_6");
  EXPECT_EQ(text("label_updata_keys"), "Function: install    Power: cancel");
  sent_frames();
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(Zavo_updata_index, 7);
  EXPECT_EQ(stUIStatus.s8Updata_confirm, 0);
  EXPECT_EQ(sent(), Lines{"UPDATA UPDATA_CONFIRM value=0"});
  // Each report moves one state, even two of the same kind in a row.
  const int expected[][2] = {{2, 8}, {2, 8}, {4, 10}, {6, 12}, {8, 14}};
  for (const auto& [value, state] : expected) {
    state_report(static_cast<uint8_t>(value));
    EXPECT_EQ(Zavo_updata_index, state) << "report " << value;
  }
  EXPECT_EQ(picture(), "image_updata_14");
  EXPECT_EQ(text("label_updata"), "Upgrade complete");
  EXPECT_EQ(sent(), Lines{});
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(UpgradeTest, EveryFailureEndsInItsFinalStateAndOkRestartsOnce) {
  struct Case {
    std::vector<int> reports;  // after the confirmation (or from state 4 when no OK)
    bool confirm;
    int final_state;
  };
  const Case cases[] = {
      {{1}, false, 5},  // no firmware
      {{3}, true, 9},
      {{2, 5}, true, 11},
      {{2, 4, 7}, true, 13},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.final_state);
    restart_at_home();
    start(790);
    if (c.confirm) {
      state_report(0);
      key(GUI_KEY_FUCTION_S);
    }
    for (int r : c.reports)
      state_report(static_cast<uint8_t>(r));
    EXPECT_EQ(Zavo_updata_index, c.final_state);
    EXPECT_EQ(text("label_updata_keys"), "Function: restart the scope");
    sent_frames();
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(picture(), "image_updata_15");
    key(GUI_KEY_FUCTION_S);  // asked once
    key(GUI_KEY_POWER_S);    // the restart is on its way
    advance(2999);
    EXPECT_EQ(sent(), Lines{});
    advance(1);
    EXPECT_EQ(sent(), Lines{"BASIC BASIC_REBOOT value=1"});
    advance(5000);
    EXPECT_EQ(sent(), Lines{});
    state_report(0);  // later reports leave the restart picture
    EXPECT_EQ(picture(), "image_updata_15");
  }
}

TEST_F(UpgradeTest, PowerAtTheConfirmationDeclines) {
  to_confirmation();
  sent_frames();
  key(GUI_KEY_POWER_S);
  EXPECT_EQ(picture(), "image_updata_15");
  EXPECT_EQ(stUIStatus.s8Updata_confirm, 1);
  EXPECT_EQ(sent(), Lines{"UPDATA UPDATA_CONFIRM value=1"});
  key(GUI_KEY_FUCTION_S);  // nothing more to confirm
  EXPECT_EQ(sent(), Lines{});
  // Should the device not restart, the power key leaves the page.
  key(GUI_KEY_POWER_S);
  advance(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

TEST_F(UpgradeTest, ThePowerKeyWaitsWhileTheDeviceWorksAndLeavesWhenNothingRuns) {
  to_confirmation();
  key(GUI_KEY_FUCTION_S);  // installing
  std::string out = printed([&] { key(GUI_KEY_POWER_S); });
  EXPECT_NE(out.find("the upgrade is running (state 7)"), std::string::npos) << out;
  EXPECT_EQ(top_name(), "Zavo_updata");
  // Through the link the laser, shutter and calculator buttons are ignored here.
  sent_frames();
  button(KEY_RANGE_FUCTION_S);
  button(KEY_RANGE_PHOTO_S);
  button(KEY_UP_POWER_L);
  EXPECT_EQ(sent(), Lines{});

  restart_at_home();
  g_free_mib = 150;
  start(700);  // card full and battery low: a final state
  EXPECT_EQ(Zavo_updata_index, 3);
  key(GUI_KEY_POWER_S);
  advance(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

TEST_F(UpgradeTest, UnknownReportsLeaveTheStateWithALine) {
  to_confirmation();
  std::string out = printed([&] { state_report(9); });
  EXPECT_NE(out.find("Zavo_updata: upgrade report 9 does not move state 6"), std::string::npos)
      << out;
  EXPECT_EQ(Zavo_updata_index, 6);
  key(GUI_KEY_FUCTION_S);
  out = printed([&] { state_report(200); });
  EXPECT_NE(out.find("report 200 does not move state 7"), std::string::npos) << out;
  EXPECT_EQ(Zavo_updata_index, 7);
  EXPECT_EQ(picture(), "image_updata_7");
  // A state outside the table starts over at the check.
  Zavo_updata_index = 40;
  out = printed([&] { screen_event(SCREEN_EVT_UPDATA); });
  EXPECT_NE(out.find("state 40 is outside 0..14"), std::string::npos) << out;
  EXPECT_EQ(Zavo_updata_index, 4);
}

TEST_F(UpgradeTest, ALongPowerPressWhenDoneOpensTheCountdownAndItsCancelReturnsHere) {
  to_confirmation();
  key(GUI_KEY_FUCTION_S);
  for (int r : {2, 4, 6, 8})
    state_report(static_cast<uint8_t>(r));
  ASSERT_EQ(Zavo_updata_index, 14);
  EXPECT_EQ(text("label_updata_keys"), "Hold the power key to shut down");
  button(KEY_POWER_L);  // the link opens nothing over this page; the page does
  EXPECT_EQ(top_name(), "Zavo_SHUT_DOWN");
  EXPECT_STREQ(stUIStatus.temp_window, "Zavo_updata");
  advance(1200);
  button(KEY_POWER_L_POP);
  EXPECT_EQ(top_name(), "Zavo_updata");
  EXPECT_EQ(Zavo_updata_index, 14);
  // In any other state the long press does nothing.
  restart_at_home();
  to_confirmation();
  button(KEY_POWER_L);
  EXPECT_EQ(top_name(), "Zavo_updata");
}

TEST_F(UpgradeTest, ALaterNoticeRechecksWithCheckThree) {
  start_by_notice(730);  // the edge: stays at the check
  EXPECT_EQ(Zavo_updata_index, 0);
  sent_frames();
  stUIStatus.s16BatteryValue = 760;
  report(UPDATA_START_NOTICE, 0);  // not the first: the link sends check 3, the page re-checks
  EXPECT_EQ(sent(), (Lines{"UPDATA UPDATA_CHECK value=3", "UPDATA UPDATA_CHECK value=0"}));
  EXPECT_EQ(Zavo_updata_index, 4);
  EXPECT_EQ(windows(), (Lines{"Zavo_home_page_1", "Zavo_updata"}));
}

}  // namespace
