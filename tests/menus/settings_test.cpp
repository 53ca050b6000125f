// The settings page: the eight rows with the 60-pixel bar and their wrap, the switches and the
// USB mode with their frames, the date refused while recording, the rows that open pages, and
// the redraw when the device reports (event 8241).
#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using page_test::Box;

class SettingsTest : public menus_test::MenusTest {
 protected:
  const Lines row_labels = {"label_External_video", "label_shutter", "label_Time",
                            "label_Reset",          "label_USB",     "label_Info",
                            "label_SD_card",        "label_Exit"};
  std::string focused_label() const {
    std::string out;
    for (const auto& l : row_labels)
      if (state(l.c_str()) == WIDGET_STATE_FOCUSED) out += l;
    return out;
  }
  void go_to_row(int row) {
    while (Zavo_setting_index != row)
      key(GUI_KEY_PHOTO_S);
  }
};

TEST_F(SettingsTest, RowsWrapBothWaysUnderTheBar) {
  open("Zavo_Settings");
  EXPECT_EQ(Zavo_setting_index, 1);
  EXPECT_EQ(box("image_setting_sel"), (Box{0, 0, 336, 60}));
  EXPECT_EQ(focused_label(), "label_External_video");
  key(GUI_KEY_RANGE_S);  // row 1, previous: row 8 (Exit)
  EXPECT_EQ(Zavo_setting_index, 8);
  EXPECT_EQ(box("image_setting_sel"), (Box{0, 420, 336, 60}));
  EXPECT_EQ(focused_label(), "label_Exit");
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(Zavo_setting_index, 1);
  for (int row = 2; row <= 8; ++row) {
    key(GUI_KEY_PHOTO_S);
    EXPECT_EQ(box("image_setting_sel"), (Box{0, (row - 1) * 60, 336, 60}));
    EXPECT_EQ(focused_label(), row_labels[row - 1]);
    EXPECT_EQ(shown("view_bg_USB"), row == 5) << row;
  }
  EXPECT_EQ(sent(), Lines{});
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(SettingsTest, UsbModeCyclesThroughItsThreeNamesAndIsSent) {
  stUIStatus.s8UsbMode = 2;
  open("Zavo_Settings");
  EXPECT_EQ(text("label_USB_value"), "USB3");
  go_to_row(5);
  sent_frames();
  const char* names[] = {"USB1", "USB2", "USB3", "USB1"};
  Lines frames;
  for (const char* name : names) {
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(text("label_USB_value"), name);
    frames.push_back("BASIC BASIC_USB_TYPE value=" + std::to_string(stUIStatus.s8UsbMode));
  }
  EXPECT_EQ(stUIStatus.s8UsbMode, 0);
  EXPECT_EQ(sent(), frames);
  EXPECT_EQ(frames.front(), "BASIC BASIC_USB_TYPE value=0");  // mode 2, confirm: USB1
}

TEST_F(SettingsTest, SwitchesToggleWriteTheRecordFirstAndTellTheDevice) {
  stDevStatus.s8VideoOut = 0;
  stDevStatus.s8AutoShutter = 1;
  stUIStatus.s8UsbMode = 1;
  open("Zavo_Settings");
  EXPECT_EQ(image("image_ExternVideo_switch"), "switch_small_off");
  EXPECT_EQ(image("image_shutter_switch"), "switch_small_on");
  EXPECT_EQ(text("label_USB_value"), "USB2");
  sent_frames();
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stDevStatus.s8VideoOut, 1);
  EXPECT_EQ(image("image_ExternVideo_switch"), "switch_small_on");
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_CVBS_MODE value=1"});
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_FUCTION_S);  // the shutter row leaves USB mode 1 first
  EXPECT_EQ(stDevStatus.s8AutoShutter, 0);
  EXPECT_EQ(image("image_shutter_switch"), "switch_small_off");
  EXPECT_EQ(text("label_USB_value"), "USB1");
  EXPECT_EQ(sent(),
            (Lines{"BASIC BASIC_USB_TYPE value=0", "INFRARED INFRARED_AUTOSHUTTER value=0"}));
  key(GUI_KEY_FUCTION_S);  // USB mode 0 now: only the shutter
  EXPECT_EQ(sent(), Lines{"INFRARED INFRARED_AUTOSHUTTER value=1"});
}

TEST_F(SettingsTest, TheSwitchesFollowTheDevicesReport) {
  open("Zavo_Settings");
  stDevStatus.s8VideoOut = 1;
  stDevStatus.s8AutoShutter = 1;
  stUIStatus.s8UsbMode = 2;
  screen_event(SCREEN_EVT_SHUTTER);
  EXPECT_EQ(image("image_ExternVideo_switch"), "switch_small_on");
  EXPECT_EQ(image("image_shutter_switch"), "switch_small_on");
  EXPECT_EQ(text("label_USB_value"), "USB3");
  stUIStatus.s8UsbMode = 9;  // no such mode: the label keeps what it shows
  screen_event(SCREEN_EVT_SHUTTER);
  EXPECT_EQ(text("label_USB_value"), "USB3");
  // Closed, the page no longer listens.
  key(GUI_KEY_POWER_S);
  advance(0);
  screen_event(SCREEN_EVT_SHUTTER);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

TEST_F(SettingsTest, DateIsRefusedWhileRecordingWithOneTipTimer) {
  stUIStatus.s8RecordingState = 1;
  open("Zavo_Settings");
  go_to_row(3);
  key(GUI_KEY_FUCTION_S);
  EXPECT_TRUE(shown("view_tip_record"));
  advance(1000);
  key(GUI_KEY_FUCTION_S);
  advance(1000);
  EXPECT_FALSE(shown("view_tip_record"));
  key(GUI_KEY_FUCTION_S);
  advance(1500);  // a second timer would have hidden it 2 s after the second press
  EXPECT_TRUE(shown("view_tip_record"));
  EXPECT_EQ(top_name(), "Zavo_Settings");
  stUIStatus.s8RecordingState = 0;
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(top_name(), "Zavo_DataTime");
}

TEST_F(SettingsTest, RowsOpenTheirPagesAndExitAndTheLongFunctionKeyGoBack) {
  struct Case {
    int row;
    uint32_t key;
    Lines windows;
  };
  const Case cases[] = {
      {4, GUI_KEY_FUCTION_S, {"Zavo_home_page_1", "Zavo_menu2", "Zavo_Settings", "Zavo_Reset"}},
      {6, GUI_KEY_FUCTION_S, {"Zavo_home_page_1", "Zavo_menu2", "Zavo_Settings", "Zavo_Info"}},
      {7, GUI_KEY_FUCTION_S, {"Zavo_home_page_1", "Zavo_menu2", "Zavo_Settings", "Zavo_SDcard"}},
      {8, GUI_KEY_FUCTION_S, {"Zavo_home_page_1", "Zavo_menu2"}},
      {2, GUI_KEY_FUCTION_L, {"Zavo_home_page_1", "Zavo_menu2"}},
      {2, GUI_KEY_POWER_S, {"Zavo_home_page_1"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.row);
    restart_at_home();
    Zavo_menu2_index = 4;
    open("Zavo_menu2");
    key(GUI_KEY_FUCTION_S);  // the settings row
    ASSERT_EQ(top_name(), "Zavo_Settings");
    win_ = top();
    go_to_row(c.row);
    key(c.key);
    advance(0);
    EXPECT_EQ(windows(), c.windows);
  }
}

}  // namespace
