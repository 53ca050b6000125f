// The alignment page "Zavo_reticle_move": single steps and fast moves of the aim point with their
// limits, reset, the zero letter, freeze, the preview mark and its zoom rule, the exit notice;
// observed as frames, widgets and windows. The zoom and the shutter come from the device.
#include "common/reticle_colors.h"
#include "framedec.h"
#include "reticle_fixture.h"

namespace {

using reticle_test::device_frame;
using reticle_test::printed;
using reticle_test::ReticleTest;
using Names = std::vector<std::string>;

class MoveTest : public ReticleTest {
 protected:
  // The page over the observation screen with zero C of group 2 at (x, y).
  void open_at(int x, int y) {
    IR_Cursor.group[1].zero[2].s8IrCursorCurrentX = static_cast<int16_t>(x);
    IR_Cursor.group[1].zero[2].s8IrCursorCurrentY = static_cast<int16_t>(y);
    open_over_home("Zavo_reticle_move");
  }
  // Focuses `row` (from row 1) and presses OK.
  void ok_on_row(int row) {
    for (int i = 1; i < row; ++i)
      key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_S);
  }
  static std::string position(int x, int y) {
    return "RETICLE RETICLE_POSITION x=" + std::to_string(x) + " y=" + std::to_string(y);
  }
  // The preview mark's place and whether it shows.
  std::pair<page_test::Box, bool> preview() {
    return {box("view_temp_reticle"), shown("view_temp_reticle")};
  }
};

TEST_F(MoveTest, OpensOnTheCurrentZerosOffsetsWithTheEditingOff) {
  stUIStatus.s8Irfreeze = 1;
  const std::string out = printed([&] { open_at(660, 630); });
  EXPECT_NE(out.find("currzero====2\n"), std::string::npos);
  EXPECT_EQ(text("label_profile_value"), "C");
  EXPECT_EQ(text("label_x_value"), "20");
  EXPECT_EQ(text("label_y_value"), "-10");
  EXPECT_EQ(state("label_profile"), "focused");
  EXPECT_EQ(box("image_reticle_move_sel"), (page_test::Box{0, 0, 336, 60}));
  for (const char* hidden :
       {"view_x_value_sel", "view_y_value_sel", "image_freeze", "view_tip_exit"})
    EXPECT_FALSE(shown(hidden)) << hidden;
  EXPECT_EQ(stUIStatus.s8Irfreeze, 0);
  EXPECT_EQ(preview(), std::make_pair(page_test::Box{659, 629, 3, 3}, true));
  EXPECT_TRUE(init_frames_.empty());
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(MoveTest, ThePreviewMarkTakesTheReticleColour) {
  for (int colour : {0, 2, 3, 6}) {
    stDevStatus.s8ReticleColour = static_cast<char>(colour);
    open_at(660, 630);
    EXPECT_EQ(color("view_temp_reticle"), kReticleFirstColor[colour]) << colour;
    restart();
  }
}

TEST_F(MoveTest, WithoutEditingTheKeysMoveTheFocusRoundTheSixRows) {
  open_at(660, 630);
  key(GUI_KEY_RANGE_S);
  EXPECT_EQ(state("label_Exit"), "focused");
  EXPECT_EQ(box("image_reticle_move_sel").y, 300);
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(state("label_x"), "focused");
  EXPECT_EQ(state("label_profile"), "normal");
  EXPECT_TRUE(sent().empty());
}

TEST_F(MoveTest, SingleStepsStopAtTheLimitsOfEachAxis) {
  struct Case {
    int row;  // 2 x, 3 y
    int x, y;
    int key;
    Names frames;
    const char* x_label;
    const char* y_label;
  } cases[] = {
      {2, 840, 640, GUI_KEY_PHOTO_S, {}, "200", "0"},  // x at 200: down does nothing
      {2, 840, 640, GUI_KEY_RANGE_S, {position(839, 640)}, "199", "0"},
      {2, 440, 640, GUI_KEY_RANGE_S, {}, "-200", "0"},
      {2, 441, 640, GUI_KEY_RANGE_S, {position(440, 640)}, "-200", "0"},
      {3, 640, 490, GUI_KEY_RANGE_S, {}, "0", "-150"},  // y at -150: up does nothing
      {3, 640, 491, GUI_KEY_RANGE_S, {position(640, 490)}, "0", "-150"},
      {3, 640, 840, GUI_KEY_PHOTO_S, {}, "0", "200"},
      {3, 640, 839, GUI_KEY_PHOTO_S, {position(640, 840)}, "0", "200"},
  };
  for (const Case& c : cases) {
    open_at(c.x, c.y);
    ok_on_row(c.row);
    EXPECT_TRUE(shown(c.row == 2 ? "view_x_value_sel" : "view_y_value_sel"));
    key(c.key);
    EXPECT_EQ(sent(), c.frames) << c.x << "," << c.y << " key " << c.key;
    EXPECT_EQ(text("label_x_value"), c.x_label);
    EXPECT_EQ(text("label_y_value"), c.y_label);
    EXPECT_EQ(zero(2).s8IrCursorCurrentX, 640 + std::stoi(c.x_label));
    EXPECT_EQ(zero(2).s8IrCursorCurrentY, 640 + std::stoi(c.y_label));
    restart();
  }
}

TEST_F(MoveTest, OkTogglesTheEditedAxisAndUpOnXLogsTheValue) {
  open_at(660, 630);
  ok_on_row(2);  // x on
  EXPECT_TRUE(shown("view_x_value_sel"));
  std::string out = printed([&] { key(GUI_KEY_RANGE_S); });
  EXPECT_NE(out.find("x_value = 19\n"), std::string::npos) << out;
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(sent(), (Names{position(659, 630), position(660, 630)}));
  EXPECT_EQ(state("label_x"), "focused") << "the row focus stays while editing";
  key(GUI_KEY_FUCTION_S);  // x off
  EXPECT_FALSE(shown("view_x_value_sel"));
  key(GUI_KEY_PHOTO_S);    // row 3
  key(GUI_KEY_FUCTION_S);  // y on
  EXPECT_TRUE(shown("view_y_value_sel"));
  EXPECT_FALSE(shown("view_x_value_sel"));
  out = printed([&] { key(GUI_KEY_RANGE_S); });
  EXPECT_EQ(out.find("x_value"), std::string::npos) << out;
  EXPECT_EQ(sent(), (Names{position(660, 629)}));
  EXPECT_EQ(text("label_y_value"), "-11");
}

TEST_F(MoveTest, FastMovesStepByTenUpToTheLimitAndKeepAValueBeyondIt) {
  struct Case {
    int row;
    int x, y;
    int held;
    std::vector<int> x_ticks;  // x after each of three ticks
    std::vector<int> y_ticks;
  } cases[] = {
      {2, 835, 640, GUI_KEY_PHOTO_L, {840, 840, 840}, {640, 640, 640}},  // 195: 200 at once
      {2, 660, 640, GUI_KEY_RANGE_L, {650, 640, 630}, {640, 640, 640}},
      {3, 640, 505, GUI_KEY_RANGE_L, {640, 640, 640}, {495, 490, 490}},  // y floor -150
      {2, 900, 640, GUI_KEY_PHOTO_L, {900, 900, 900}, {640, 640, 640}},  // 260 beyond: kept
      {2, 900, 640, GUI_KEY_RANGE_L, {890, 880, 870}, {640, 640, 640}},
  };
  for (const Case& c : cases) {
    open_at(c.x, c.y);
    ok_on_row(c.row);
    key(c.held);
    advance(499);
    EXPECT_TRUE(sent().empty()) << "the first tick comes after 500 ms";
    Names want;
    for (size_t t = 0; t < 3; ++t)
      want.push_back(position(c.x_ticks[t], c.y_ticks[t]));
    std::string out = printed([&] { advance(1001); });
    EXPECT_EQ(sent(), want) << c.x << "," << c.y;
    if (c.row == 2) {
      EXPECT_NE(out.find("////////////////////////////////////////////////////=" +
                         std::to_string(c.x_ticks[2] - 640) + "\n"),
                std::string::npos)
          << out;
    }
    key(c.held == GUI_KEY_PHOTO_L ? GUI_KEY_PHOTO_L_POP : GUI_KEY_RANGE_L_POP);
    advance(2000);
    EXPECT_TRUE(sent().empty()) << "the release stops it";
    restart();
  }
}

TEST_F(MoveTest, ResetPutsBothCoordinatesOnTheCentre) {
  open_at(700, 600);
  ok_on_row(4);
  EXPECT_EQ(sent(), (Names{position(640, 600), position(640, 640)}));
  EXPECT_EQ(text("label_x_value"), "0");
  EXPECT_EQ(text("label_y_value"), "0");
  EXPECT_EQ(zero(2).s8IrCursorCurrentX, 640);
  EXPECT_EQ(zero(2).s8IrCursorCurrentY, 640);
}

TEST_F(MoveTest, TheZeroRowStepsThroughTheGroupFromEBackToAAndReloadsBothOffsets) {
  IR_Cursor.group[1].u8CurrentZero = 4;
  open_at(700, 600);  // zero C; E (k = 4) stays at 680, 620
  EXPECT_EQ(text("label_profile_value"), "E");
  EXPECT_EQ(text("label_x_value"), "40");
  EXPECT_EQ(text("label_y_value"), "-20");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(IR_Cursor.group[1].u8CurrentZero, 0);
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_ZERO value=0"}));
  EXPECT_EQ(text("label_profile_value"), "A");
  EXPECT_EQ(text("label_x_value"), "0");  // zero A at 640, 640
  EXPECT_EQ(text("label_y_value"), "0");
  EXPECT_EQ(box("view_temp_reticle"), (page_test::Box{639, 639, 3, 3}));
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(text("label_profile_value"), "B");
  EXPECT_EQ(text("label_x_value"), "10");
}

TEST_F(MoveTest, FreezeTogglesTheImageAndLeavesUsbModeFirst) {
  stUIStatus.s8UsbMode = 1;
  open_at(660, 630);
  ok_on_row(5);
  EXPECT_EQ(sent(), (Names{"BASIC BASIC_USB_TYPE value=0", "INFRARED INFRARED_FREEZE value=1"}));
  EXPECT_TRUE(shown("image_freeze"));
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), (Names{"INFRARED INFRARED_FREEZE value=0"}));
  EXPECT_FALSE(shown("image_freeze"));
}

TEST_F(MoveTest, AShutterCorrectionOnTheFrozenImageUnfreezesItThroughEvent8254) {
  open_at(660, 630);
  ok_on_row(5);
  sent();
  // The device's shutter buttons: the link runs the shutter sequence and, the image being frozen,
  // raises 8254.
  from_device(device_frame(7, 0, 0, {KEY_RANGE_PHOTO_S}));
  EXPECT_FALSE(shown("image_freeze"));
  EXPECT_EQ(stUIStatus.s8Irfreeze, 0);
  EXPECT_EQ(sent(), (Names{"INFRARED INFRARED_CORRECT value=0"}));
  // Unfrozen, the page's freeze row freezes again.
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), (Names{"INFRARED INFRARED_FREEZE value=1"}));
}

TEST_F(MoveTest, ThePreviewMarkFollowsTheZoomAndHidesOutsideThePicturesCircle) {
  struct Case {
    int zoom;    // hundredths, from the device
    char video;  // s8VideoMode (3: picture in picture, shown at 1.00)
    int x, y;    // the zero's aim point when the page opens; then reset to the centre
    page_test::Box at;
    bool shown;
  } cases[] = {
      {100, 0, 1000, 640, {999, 639, 3, 3}, true},
      {150, 0, 1000, 640, {1179, 639, 3, 3}, true},   // 640 + 360 x 1.5
      {200, 0, 1000, 640, {1359, 639, 3, 3}, false},  // 720 from the centre: outside
      {200, 3, 1000, 640, {999, 639, 3, 3}, true},    // picture in picture: 1.00
      {100, 0, 640, 100, {639, 99, 3, 3}, false},     // in the circle, above row 128
      {100, 0, 640, 130, {639, 129, 3, 3}, true},
      {50, 0, 640, 0, {639, 319, 3, 3}, true},  // 640 - 640 x 0.5
  };
  for (const Case& c : cases) {
    open_at(c.x, c.y);
    ok_on_row(4);  // the aim point back on the centre; the mark stays on where it was
    stDevStatus.s8VideoMode = c.video;
    const uint16_t z = static_cast<uint16_t>(c.zoom);
    from_device(device_frame(1, 0, INFRARED_ZOOM,
                             {static_cast<uint8_t>(z & 0xFF), static_cast<uint8_t>(z >> 8)}));
    EXPECT_EQ(preview(), std::make_pair(c.at, c.shown)) << c.zoom << " " << c.x << "," << c.y;
    restart();
  }
}

TEST_F(MoveTest, LeavingThePictureInPictureModeMovesThePreviewMarkToo) {
  stUIStatus.s8IRZoom = 150;
  stDevStatus.s8VideoMode = 3;
  open_at(1000, 640);
  ok_on_row(4);
  EXPECT_EQ(box("view_temp_reticle").x, 999);  // shown at 1.00 while in picture in picture
  stDevStatus.s8VideoMode = 0;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_VIDEO_MODE);  // as a menu leaving it does: event 8248
  home_scene_settle();
  EXPECT_EQ(box("view_temp_reticle").x, 1179);
}

TEST_F(MoveTest, BackUnfreezesShowsTheNoticeIgnoresKeysAndReturnsToTheReticleMenu) {
  open_at(660, 630);
  ok_on_row(5);  // frozen
  sent();
  key(GUI_KEY_FUCTION_L);
  EXPECT_EQ(sent(), (Names{"INFRARED INFRARED_FREEZE value=0"}));
  EXPECT_FALSE(shown("image_freeze"));
  EXPECT_TRUE(shown("view_tip_exit"));
  // Inside the notice every key is ignored: a second back, the rows, OK.
  for (int k : {GUI_KEY_FUCTION_L, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S, GUI_KEY_POWER_S})
    key(k);
  EXPECT_TRUE(sent().empty());
  EXPECT_EQ(state("label_Freeze"), "focused");
  advance(999);
  EXPECT_EQ(windows().back(), "Zavo_reticle_move");
  advance(1);
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1", "Zavo_reticle_menu"}));
  EXPECT_EQ(sent(), (Names{"PARAM SAVE_ALLPARAM"}));
  advance(3000);
  EXPECT_EQ(windows().size(), 2u);
}

TEST_F(MoveTest, HomeAndTheExitRowLeaveThroughTheNoticeToTheirPlaces) {
  struct Case {
    std::vector<int> keys;
    Names windows;
    Names frames;
  } cases[] = {
      {{GUI_KEY_POWER_S}, {"Zavo_home_page_1"}, {}},
      {{GUI_KEY_RANGE_S, GUI_KEY_FUCTION_S},
       {"Zavo_home_page_1", "Zavo_reticle_menu"},
       {"PARAM SAVE_ALLPARAM"}},
  };
  for (const Case& c : cases) {
    open_at(660, 630);
    for (int k : c.keys)
      key(k);
    EXPECT_TRUE(shown("view_tip_exit"));
    advance(1000);
    EXPECT_EQ(windows(), c.windows);
    EXPECT_EQ(sent(), c.frames);
    restart();
  }
}

TEST_F(MoveTest, TheObservationScreenShowsTheMovedReticleAfterThePageCloses) {
  open_at(660, 630);
  ok_on_row(2);
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_POWER_S);
  advance(1000);
  ASSERT_EQ(windows(), (Names{"Zavo_home_page_1"}));
  // The observation screen's reticle area is centred on the aim point (662, 630).
  widget_t* shoot = widget_lookup(home_, "view_reticle_shoot", TRUE);
  EXPECT_EQ(shoot->x, 662 - 840);
  EXPECT_EQ(shoot->y, 630 - 840);
}

}  // namespace
