// Blind-pixel repair: entering the cursor page switches off what draws over the picture (one
// message each), the cursor steps and ten-steps, the options page, the save page's wait for the
// device, and the reticle brought back on the way out only when the reticle menu's switch is on.
#include "reticle_fixture.h"

namespace {

using reticle_test::decoded;
using reticle_test::device_frame;
using reticle_test::ReticleTest;
using Names = std::vector<std::string>;

class PixelTest : public ReticleTest {
 protected:
  void SetUp() override {
    ReticleTest::SetUp();
    home_ = home_scene_open();  // forces the reticle and its menu switch on
    sent_frames();
  }
  // The device reports the end of the save (type 24, command 3).
  void save_answer(uint8_t status) { from_device(device_frame(24, BLIND_SAVE, 0, {status})); }
  void open_child() {
    open("Zavo_pixel_menu");
    key(GUI_KEY_FUCTION_S);
    follow("Zavo_pixel_child");
    sent();
  }
};

TEST_F(PixelTest, EnteringSwitchesOffWhatIsOnWithOneMessageEachAndTheCursorOn) {
  struct Case {
    bool all_on;
    Names frames;
    Names video_at_100ms;
  } cases[] = {
      {true,
       {"BASIC BASIC_USB_TYPE value=0", "BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=0",
        "BASIC BASIC_LASER_SWITCH value=0", "RANGE MEASURE value=0", "RANGE SWITCH value=0",
        "RETICLE RETICLE_SWITCH value=0", "BASIC BASIC_WIND_SWITCH value=0",
        "BLIND BLIND_CURSOR_SWITCH value=1"},
       {"BASIC BASIC_VIDEO_MODE value=0"}},
      {false, {"BLIND BLIND_CURSOR_SWITCH value=1"}, {}},
  };
  for (const Case& c : cases) {
    const char on = c.all_on ? 1 : 0;
    stUIStatus.s8UsbMode = on;
    info[0].ballistics_sw = static_cast<uint8_t>(on);
    stDevStatus.s8VideoMode = c.all_on ? 3 : 0;
    stUIStatus.s8LaserSwitch = on;
    stDevStatus.s8RangeSwitch = on;
    stUIStatus.s8RangeMode = c.all_on ? 3 : 0;
    stDevStatus.s8ReticleSwitch = on;
    stUIStatus.s8WindSwitch = on;
    open("Zavo_pixel_menu");
    EXPECT_EQ(decoded(init_frames_), c.frames);
    advance(100);
    EXPECT_EQ(sent(), c.video_at_100ms);
    EXPECT_EQ(stUIStatus.s8BlindSwitch, 1);
    EXPECT_EQ(shown("view_arrow_left_right"), true);
    EXPECT_EQ(text("label_X_Y_axis"), "Y");
    EXPECT_EQ(tk_testing_failed_lookups(), 0u);
    restart();
    home_scene_open();
    sent_frames();
  }
}

TEST_F(PixelTest, TheCursorStepsOneOrTenPixelsByDirectionCode) {
  open("Zavo_pixel_menu");
  key(GUI_KEY_PHOTO_S);  // right
  key(GUI_KEY_RANGE_S);  // left
  key(GUI_KEY_FUCTION_L);
  key(GUI_KEY_PHOTO_S);  // down
  key(GUI_KEY_RANGE_S);  // up
  EXPECT_EQ(sent(),
            (Names{"BLIND BLIND_MOVE_POSITION value=3", "BLIND BLIND_MOVE_POSITION value=2",
                   "BLIND BLIND_MOVE_POSITION value=1", "BLIND BLIND_MOVE_POSITION value=0"}));
  EXPECT_EQ(image("image_up"), "arrow_up_sel");
  key(GUI_KEY_PHOTO_L);  // ten down each tick
  advance(1000);
  key(GUI_KEY_PHOTO_L_POP);
  key(GUI_KEY_FUCTION_L);
  key(GUI_KEY_RANGE_L);  // ten left
  advance(500);
  key(GUI_KEY_RANGE_L_POP);
  advance(1000);
  EXPECT_EQ(sent(),
            (Names{"BLIND BLIND_MOVE_TENPOSITION value=1", "BLIND BLIND_MOVE_TENPOSITION value=1",
                   "BLIND BLIND_MOVE_TENPOSITION value=2"}));
  EXPECT_EQ(image("image_left"), "arrow_left_sel");
}

TEST_F(PixelTest, OkOpensTheOptionsWithTheArrowsResetAndTheirRowsActOnTheCursor) {
  struct Case {
    int row;
    Names frames;
    Names windows;
  } cases[] = {
      {1, {"BLIND BLIND_REPAIR value=1"}, {"Zavo_home_page_1", "Zavo_pixel_menu"}},
      {2, {"BLIND BLIND_REPAIR value=0"}, {"Zavo_home_page_1", "Zavo_pixel_menu"}},
      {3,
       {"BLIND BLIND_SAVE value=1"},
       {"Zavo_home_page_1", "Zavo_pixel_menu", "Zavo_pixel_child", "Zavo_pixel_save"}},
      // Exit: the cursor off, both pages closed, the reticle back (its menu switch is on).
      {4,
       {"BLIND BLIND_CURSOR_SWITCH value=0", "RETICLE RETICLE_SWITCH value=1"},
       {"Zavo_home_page_1"}},
  };
  for (const Case& c : cases) {
    stDevStatus.s8ReticleSwitch = 1;
    open("Zavo_pixel_menu");
    key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(image("image_right"), "arrow_right_def") << "reset before the options open";
    follow("Zavo_pixel_child");
    EXPECT_EQ(state("label_repair"), "focused");
    EXPECT_EQ(box("image_pix_sel"), (page_test::Box{0, 0, 208, 60}));
    sent();
    for (int i = 1; i < c.row; ++i)
      key(GUI_KEY_PHOTO_S);
    EXPECT_EQ(box("image_pix_sel").y, (c.row - 1) * 60);
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(sent(), c.frames) << "row " << c.row;
    EXPECT_EQ(windows(), c.windows) << "row " << c.row;
    restart();
    home_scene_open();
    sent_frames();
  }
}

TEST_F(PixelTest, TheOptionsIgnoreBackAndWrapBothWays) {
  open_child();
  key(GUI_KEY_FUCTION_L);
  EXPECT_EQ(windows().back(), "Zavo_pixel_child");
  key(GUI_KEY_RANGE_S);
  EXPECT_EQ(state("label_exit"), "focused");
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(state("label_repair"), "focused");
  EXPECT_TRUE(sent().empty());
}

TEST_F(PixelTest, HomeBringsTheReticleBackOnlyWhenItsMenuSwitchIsOn) {
  struct Case {
    const char* from;
    char menu_switch, reticle;
    Names frames;
  } cases[] = {
      {"Zavo_pixel_menu",
       1,
       0,
       {"BLIND BLIND_CURSOR_SWITCH value=0", "RETICLE RETICLE_SWITCH value=1"}},
      {"Zavo_pixel_menu", 0, 0, {"BLIND BLIND_CURSOR_SWITCH value=0"}},
      {"Zavo_pixel_menu", 1, 1, {"BLIND BLIND_CURSOR_SWITCH value=0"}},
      {"Zavo_pixel_child",
       1,
       0,
       {"BLIND BLIND_CURSOR_SWITCH value=0", "RETICLE RETICLE_SWITCH value=1"}},
      {"Zavo_pixel_child", 0, 0, {"BLIND BLIND_CURSOR_SWITCH value=0"}},
  };
  for (const Case& c : cases) {
    open_child();
    if (std::string(c.from) == "Zavo_pixel_menu") {
      key(GUI_KEY_FUCTION_L);  // the options ignore back: close them by repair
      follow("Zavo_pixel_child");
      key(GUI_KEY_FUCTION_S);
      sent();
    }
    stDevStatus.s8ReticleMenuSwitch = c.menu_switch;
    stDevStatus.s8ReticleSwitch = c.reticle;
    ASSERT_EQ(windows().back(), c.from);
    key(GUI_KEY_POWER_S);
    advance(0);
    EXPECT_EQ(sent(), c.frames) << c.from << " " << int{c.menu_switch} << int{c.reticle};
    EXPECT_EQ(windows(), (Names{"Zavo_home_page_1"}));
    EXPECT_EQ(stUIStatus.s8BlindSwitch, 0);
    restart();
    home_scene_open();
    sent_frames();
  }
}

TEST_F(PixelTest, TheSavePageLeavesAtTheNextLookOnceTheDeviceHasAnswered) {
  open_child();
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), (Names{"BLIND BLIND_SAVE value=1"}));
  EXPECT_EQ(stUIStatus.s8BlindSaveStatus, 2);
  follow("Zavo_pixel_save");
  advance(1500);  // three looks: still pending
  EXPECT_EQ(widget_get_value_int(w("progress_pixel_save")), 4);
  save_answer(1);
  EXPECT_EQ(windows().back(), "Zavo_pixel_save");
  advance(500);
  advance(0);
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1"}));
  EXPECT_EQ(sent(), (Names{"BLIND BLIND_CURSOR_SWITCH value=0", "RETICLE RETICLE_SWITCH value=1"}));
}

TEST_F(PixelTest, WithoutAnAnswerTheSavePageGivesUpAfterTheEighteenthLook) {
  stDevStatus.s8ReticleMenuSwitch = 0;  // the reticle stays off this time
  open_child();
  key(GUI_KEY_RANGE_S);
  key(GUI_KEY_RANGE_S);  // row 3
  key(GUI_KEY_FUCTION_S);
  sent();
  advance(8999);
  EXPECT_EQ(windows().back(), "Zavo_pixel_save") << "17 looks in 8.5 s, still waiting";
  EXPECT_TRUE(sent().empty());
  advance(1);
  advance(0);
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1"}));
  EXPECT_EQ(sent(), (Names{"BLIND BLIND_CURSOR_SWITCH value=0"}));
  advance(5000);
  EXPECT_TRUE(sent().empty());
}

}  // namespace
