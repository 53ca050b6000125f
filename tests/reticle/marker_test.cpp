// The range-finder and laser marker pages: the picture set up on entry, the axis toggle and the
// arrows, single steps, fast moves, the unlimited 16-bit offsets and the way back to the
// observation screen, which shows the moved marker. The two pages differ only in their data, so
// most cases run on both.
#include "reticle_fixture.h"

namespace {

using reticle_test::decoded;
using reticle_test::ReticleTest;
using Names = std::vector<std::string>;

struct Marker {
  const char* page;
  const char* message;  // the position frame's command
  int16_t* x;
  int16_t* y;
  const char* home_marker;  // the observation screen's marker
};
const Marker MARKERS[] = {
    {"Zavo_range_move", "RETICLE_RANGE_POSITION", &stDevStatus.s16RangeOffsetX,
     &stDevStatus.s16RangeOffsetY, "image_reticle_range"},
    {"Zavo_laser_move", "RETICLE_LASER_POSITION", &stDevStatus.s16LaserIndicatX,
     &stDevStatus.s16LaserIndicatY, "image_reticle_laser"},
};

class MarkerTest : public ReticleTest {
 protected:
  // The page over the observation screen with the picture already set up for it (the range finder
  // measuring continuously, the laser on), so that entering sends nothing.
  void open_marker(const Marker& m, int x, int y) {
    home_ = home_scene_open();
    stDevStatus.s8RangeSwitch = 1;
    stDevStatus.s8RangeType = RANGE_CONTINUOUS;
    stUIStatus.s8RangeMode = 3;
    stUIStatus.s8LaserSwitch = 1;
    *m.x = static_cast<int16_t>(x);
    *m.y = static_cast<int16_t>(y);
    sent_frames();
    open(m.page);
  }
  static std::string position(const Marker& m, int x, int y) {
    return std::string("RETICLE ") + m.message + " x=" + std::to_string(x) +
           " y=" + std::to_string(y);
  }
  // (left/right arrows shown, up/down arrows shown, the axis letter)
  std::tuple<bool, bool, std::string> axis() {
    return {shown("view_arrow_left_right"), shown("view_arrow_up_down"), text("label_X_Y_axis")};
  }
  Names arrows() {
    return {image("image_up"), image("image_down"), image("image_left"), image("image_right")};
  }
};

const Names ARROWS_DEF = {"arrow_up_def", "arrow_down_def", "arrow_left_def", "arrow_right_def"};

TEST_F(MarkerTest, TheRangePageSetsThePictureUpAndStartsMeasuringHalfASecondLater) {
  struct Case {
    char video, range_switch, range_type, mode;
    uint8_t ballistics;
    Names at_once;
    Names at_100ms;  // the video mode goes 100 ms after its sender
    Names at_500ms;
  } cases[] = {
      {3,
       0,
       RANGE_SINGLE,
       0,
       1,
       {"RANGE SWITCH value=1", "BASIC BASIC_RANGE_TYPE value=1",
        "BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=0"},
       {"BASIC BASIC_VIDEO_MODE value=0"},
       {"RANGE MEASURE value=3"}},
      {0, 1, RANGE_CONTINUOUS, 0, 0, {}, {}, {"RANGE MEASURE value=3"}},
      {0, 1, RANGE_CONTINUOUS, 3, 0, {}, {}, {}},  // already measuring
  };
  for (const Case& c : cases) {
    home_scene_open();
    stDevStatus.s8VideoMode = c.video;
    stDevStatus.s8RangeSwitch = c.range_switch;
    stDevStatus.s8RangeType = c.range_type;
    stUIStatus.s8RangeMode = c.mode;
    info[0].ballistics_sw = c.ballistics;
    sent_frames();
    open("Zavo_range_move");
    EXPECT_EQ(decoded(init_frames_), c.at_once);
    advance(100);
    EXPECT_EQ(sent(), c.at_100ms);
    advance(399);
    EXPECT_TRUE(sent().empty());
    advance(1);
    EXPECT_EQ(sent(), c.at_500ms);
    EXPECT_EQ(stDevStatus.s8VideoMode, 0);
    EXPECT_EQ(stDevStatus.s8RangeType, RANGE_CONTINUOUS);
    EXPECT_EQ(info[0].ballistics_sw, 0);
    restart();
  }
}

TEST_F(MarkerTest, TheLaserPageLeavesPictureInPictureAndSwitchesTheLaserOn) {
  home_scene_open();
  stDevStatus.s8VideoMode = 3;
  stUIStatus.s8LaserSwitch = 0;
  sent_frames();
  open("Zavo_laser_move");
  EXPECT_EQ(decoded(init_frames_), (Names{"BASIC BASIC_LASER_SWITCH value=1"}));
  advance(100);
  EXPECT_EQ(sent(), (Names{"BASIC BASIC_VIDEO_MODE value=0"}));
  restart();
  open_over_home("Zavo_laser_move");  // laser on, no picture in picture: nothing to set up
  advance(1000);
  EXPECT_TRUE(init_frames_.empty());
  EXPECT_TRUE(sent().empty());
}

TEST_F(MarkerTest, BackTogglesTheAxisAndItsArrows) {
  for (const Marker& m : MARKERS) {
    open_marker(m, 640, 512);
    EXPECT_EQ(axis(), std::make_tuple(true, false, std::string("Y"))) << m.page;
    EXPECT_EQ(arrows(), ARROWS_DEF);
    key(GUI_KEY_PHOTO_S);  // a step selects an arrow and hides the arrows
    key(GUI_KEY_FUCTION_L);
    EXPECT_EQ(axis(), std::make_tuple(false, true, std::string("X"))) << m.page;
    EXPECT_EQ(arrows(), ARROWS_DEF);
    key(GUI_KEY_FUCTION_L);
    EXPECT_EQ(axis(), std::make_tuple(true, false, std::string("Y"))) << m.page;
    EXPECT_EQ(tk_testing_failed_lookups(), 0u);
    restart();
  }
}

TEST_F(MarkerTest, EachPressMovesOnePixelWithItsArrowAndHidesTheArrows) {
  struct Case {
    bool toggle_axis;  // up/down instead of left/right
    int key;
    int dx, dy;
    Names arrows;
  } cases[] = {
      {false,
       GUI_KEY_PHOTO_S,
       1,
       0,
       {"arrow_up_def", "arrow_down_def", "arrow_left_def", "arrow_right_sel"}},
      {false,
       GUI_KEY_RANGE_S,
       -1,
       0,
       {"arrow_up_def", "arrow_down_def", "arrow_left_sel", "arrow_right_def"}},
      {true,
       GUI_KEY_PHOTO_S,
       0,
       1,
       {"arrow_up_def", "arrow_down_sel", "arrow_left_def", "arrow_right_def"}},
      {true,
       GUI_KEY_RANGE_S,
       0,
       -1,
       {"arrow_up_sel", "arrow_down_def", "arrow_left_def", "arrow_right_def"}},
  };
  for (const Marker& m : MARKERS) {
    for (const Case& c : cases) {
      open_marker(m, 640, 512);
      if (c.toggle_axis) key(GUI_KEY_FUCTION_L);
      key(c.key);
      EXPECT_EQ(sent(), (Names{position(m, 640 + c.dx, 512 + c.dy)})) << m.page << " " << c.key;
      EXPECT_EQ(*m.x, 640 + c.dx);
      EXPECT_EQ(*m.y, 512 + c.dy);
      EXPECT_EQ(arrows(), c.arrows);
      EXPECT_FALSE(shown("view_arrow_left_right"));
      EXPECT_FALSE(shown("view_arrow_up_down"));
      restart();
    }
  }
}

TEST_F(MarkerTest, HeldKeysMoveTenPixelsEvery500MillisecondsUntilTheRelease) {
  for (const Marker& m : MARKERS) {
    open_marker(m, 640, 512);
    key(GUI_KEY_PHOTO_L);
    advance(1000);
    EXPECT_EQ(sent(), (Names{position(m, 650, 512), position(m, 660, 512)})) << m.page;
    EXPECT_EQ(image("image_right"), "arrow_right_sel");
    key(GUI_KEY_PHOTO_L_POP);
    advance(1500);
    EXPECT_TRUE(sent().empty());
    key(GUI_KEY_FUCTION_L);  // up and down
    key(GUI_KEY_RANGE_L);
    advance(500);
    EXPECT_EQ(sent(), (Names{position(m, 660, 502)}));
    EXPECT_EQ(image("image_up"), "arrow_up_sel");
    key(GUI_KEY_RANGE_L_POP);
    advance(1500);
    EXPECT_TRUE(sent().empty());
    restart();
  }
}

TEST_F(MarkerTest, TheOffsetsHaveNoLimitOnThisSideAndWrapAt16Bits) {
  for (const Marker& m : MARKERS) {
    open_marker(m, 32767, -32768);
    key(GUI_KEY_PHOTO_S);
    key(GUI_KEY_FUCTION_L);
    key(GUI_KEY_RANGE_S);
    EXPECT_EQ(sent(), (Names{position(m, -32768, -32768), position(m, -32768, 32767)})) << m.page;
    restart();
  }
}

TEST_F(MarkerTest, OkOrHomeTellTheDeviceAndReturnToTheObservationScreenShowingTheMarker) {
  for (const Marker& m : MARKERS) {
    for (int leave : {GUI_KEY_FUCTION_S, GUI_KEY_POWER_S}) {
      open_marker(m, 640, 512);
      key(GUI_KEY_PHOTO_S);
      key(GUI_KEY_PHOTO_L);
      advance(500);
      sent();
      key(leave);
      advance(0);
      EXPECT_EQ(sent(), (Names{"BASIC 30:marker_move_done value=0"})) << m.page << " " << leave;
      EXPECT_EQ(windows(), (Names{"Zavo_home_page_1"}));
      advance(2000);
      EXPECT_TRUE(sent().empty()) << "the fast move ended with the page";
      // The observation screen's marker is centred on the new offsets (651, 512).
      widget_t* marker = widget_lookup(home_, m.home_marker, TRUE);
      EXPECT_EQ(marker->x, 651 - 22) << m.home_marker;
      EXPECT_EQ(marker->y, 512 - 22);
      restart();
    }
  }
}

}  // namespace
