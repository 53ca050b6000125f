// The three marker option pages (range finder, laser, picture-in-picture): drawn from the
// records, keys through the main loop, each change seen as the frames on the device's queue.
#include <string>
#include <vector>

#include "accessory_fixture.h"
#include "common/marker_options.h"

namespace {

using accessory_test::AccessoryTest;
using accessory_test::Box;
using accessory_test::Frames;

using Lines = std::vector<std::string>;

constexpr uint32_t WHITE = 0xFFFFFFFF;
constexpr uint32_t RED = 0xFF0011FF;
constexpr uint32_t GREEN = 0xFF00FF00;
constexpr uint32_t LAYOUT_GREY = 0xFF606060;  // the swatch before a known colour is drawn

struct MarkerPage {
  const char* window;
  const char* row1_label;
  const char* row1_value;
  char* type_field;
  char* color_field;
  const char* reticle_frame;  // decoded name of the page's reticle command
  int types;                  // number of types offered
};

const MarkerPage PAGES[] = {
    {"Zavo_lrf_menu", "label_LRF_mode", "label_range_type", &stDevStatus.s8RangeReticleType,
     &stDevStatus.s8RangeReticleColor, "RETICLE RETICLE_RANGE_POSITION", 3},
    {"Zavo_Laser_menu", "label_laser_switch", "image_laser_switch", &stDevStatus.s8LaserReticleType,
     &stDevStatus.s8LaserReticleColor, "RETICLE RETICLE_LASER_POSITION", 3},
    {"Zavo_PIP_menu", "label_PIP_switch", "image_PIP_switch", &stDevStatus.s8PIPReticleType,
     &stDevStatus.s8PIPReticleColor, "RETICLE RETICLE_PIP_EVENT", 2},
};

class MarkerPagesTest : public AccessoryTest {
 protected:
  std::vector<std::string> focus_states(const MarkerPage& p) {
    return {state(p.row1_label), state("pip_reticle_type"), state("label_reticle_color")};
  }
};

TEST_F(MarkerPagesTest, InitDrawsRowOneFocusedAndTheValuesOfTheRecords) {
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  stUIStatus.s8LaserSwitch = 1;
  stDevStatus.s8VideoMode = 3;
  for (const MarkerPage& p : PAGES) {
    *p.type_field = 1;
    *p.color_field = 2;
    open(p.window);
    ASSERT_NE(win_, nullptr) << p.window;
    EXPECT_EQ(focus_states(p), (Lines{"focused", "normal", "normal"})) << p.window;
    EXPECT_EQ(box("image_recoil_menu_sel"), (Box{0, 0, 336, 60})) << p.window;
    EXPECT_EQ(text("label_reticle_type"), "2") << p.window;
    EXPECT_EQ(color("image_reticle_color"), GREEN) << p.window;
    EXPECT_TRUE(init_frames_.empty()) << p.window;
  }
  open("Zavo_lrf_menu");
  EXPECT_EQ(text("label_range_type"), "Continuous");
  open("Zavo_Laser_menu");
  EXPECT_EQ(image("image_laser_switch"), "switch_large_on");
  open("Zavo_PIP_menu");
  EXPECT_EQ(image("image_PIP_switch"), "switch_large_on");

  stDevStatus.s8RangeType = RANGE_SINGLE;
  stUIStatus.s8LaserSwitch = 0;
  stDevStatus.s8VideoMode = 0;
  open("Zavo_lrf_menu");
  EXPECT_EQ(text("label_range_type"), "Single");
  open("Zavo_Laser_menu");
  EXPECT_EQ(image("image_laser_switch"), "switch_large_off");
  open("Zavo_PIP_menu");
  EXPECT_EQ(image("image_PIP_switch"), "switch_large_off");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(MarkerPagesTest, ANullWindowIsRefusedWithTheLineOfItsPage) {
  const std::string out = page_test::printed([] {
    EXPECT_EQ(Zavo_lrf_menu_init(nullptr, nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(Zavo_Laser_menu_init(nullptr, nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(Zavo_PIP_menu_init(nullptr, nullptr), RET_BAD_PARAMS);
  });
  EXPECT_EQ(out,
            "Zavo_lrf_menu_init:210 condition(win != NULL) failed!\n"
            "Zavo_Laser_menu_init:213 condition(win != NULL) failed!\n"
            "Zavo_PIP_menu_init:219 condition(win != NULL) failed!\n");
}

TEST_F(MarkerPagesTest, PhotoAndRangeKeysWrapBothWaysAndCarryTheBarAndTheFocus) {
  const struct {
    uint32_t key;
    int row;
  } steps[] = {{GUI_KEY_PHOTO_S, 2},   {GUI_KEY_PHOTO_S, 3}, {GUI_KEY_PHOTO_S, 1},
               {GUI_KEY_RANGE_S, 3},   {GUI_KEY_RANGE_S, 2}, {GUI_KEY_RANGE_S, 1},
               {GUI_KEY_FOCUS_UP_S, 1}};
  uint8_t* indices[] = {&Zavo_LRF_index, &Zavo_Laser_index, &Zavo_PIP_index};
  for (size_t i = 0; i < std::size(PAGES); ++i) {
    const MarkerPage& p = PAGES[i];
    *indices[i] = 3;  // whatever a former visit left: every opening starts on row 1
    open(p.window);
    EXPECT_EQ(*indices[i], 1);
    for (const auto& s : steps) {
      key(s.key);
      EXPECT_EQ(*indices[i], s.row) << p.window << " key " << s.key;
      EXPECT_EQ(box("image_recoil_menu_sel"), (Box{0, (s.row - 1) * 60, 336, 60})) << p.window;
      Lines expected{"normal", "normal", "normal"};
      expected[s.row - 1] = "focused";
      EXPECT_EQ(focus_states(p), expected) << p.window << " row " << s.row;
    }
    EXPECT_TRUE(sent_frames().empty()) << p.window;
  }
}

TEST_F(MarkerPagesTest, TypeStepsThroughItsRangeWritingTheRecordBeforeTheCommand) {
  for (const MarkerPage& p : PAGES) {
    *p.type_field = 0;
    stUIStatus.s8ReticleTypeColorChoose = 0;
    open(p.window);
    key(GUI_KEY_PHOTO_S);
    Lines shown_types, frames;
    for (int i = 0; i < 4; ++i) {
      key(GUI_KEY_FUCTION_S);
      shown_types.push_back(text("label_reticle_type"));
      for (const std::string& line : sent())
        frames.push_back(line);
    }
    const std::string f = p.reticle_frame;
    if (p.types == 3) {
      EXPECT_EQ(shown_types, (Lines{"2", "3", "1", "2"})) << p.window;
      EXPECT_EQ(frames, (Lines{f + " sub=4 value=1", f + " sub=4 value=2", f + " sub=4 value=0",
                               f + " sub=4 value=1"}));
    } else {
      // Picture-in-picture offers types 1 and 2 only.
      EXPECT_EQ(shown_types, (Lines{"2", "1", "2", "1"})) << p.window;
      EXPECT_EQ(frames, (Lines{f + " sub=4 value=1", f + " sub=4 value=0", f + " sub=4 value=1",
                               f + " sub=4 value=0"}));
    }
    EXPECT_EQ(stUIStatus.s8ReticleTypeColorChoose, MARKER_CHOOSE_TYPE);
  }
  // A type the device stored beyond the range steps back to the first.
  stDevStatus.s8RangeReticleType = 7;
  open("Zavo_lrf_menu");
  EXPECT_EQ(text("label_reticle_type"), "8");
  act_on_row(2);
  EXPECT_EQ(text("label_reticle_type"), "1");
}

TEST_F(MarkerPagesTest, TheReticleCommandsBytesOnTheQueue) {
  struct Case {
    const char* window;
    int row;
    std::string bytes;
  } cases[] = {
      // type 0 -> 1: reticle (22), command 9/8/12, sub 4 (type), value 1
      {"Zavo_lrf_menu", 2, "aa 07 16 09 04 00 01 d5 eb aa"},
      {"Zavo_Laser_menu", 2, "aa 07 16 08 04 00 01 d4 eb aa"},
      {"Zavo_PIP_menu", 2, "aa 07 16 0c 04 00 01 d8 eb aa"},
      // colour 0 -> 1: sub 3 (colour), value 1
      {"Zavo_lrf_menu", 3, "aa 07 16 09 03 00 01 d4 eb aa"},
  };
  for (const Case& c : cases) {
    stDevStatus.s8RangeReticleType = stDevStatus.s8LaserReticleType = 0;
    stDevStatus.s8PIPReticleType = stDevStatus.s8RangeReticleColor = 0;
    open(c.window);
    act_on_row(c.row);
    const Frames frames = sent_frames();
    ASSERT_EQ(frames.size(), 1u) << c.window;
    EXPECT_EQ(framedec::hex(frames[0]), c.bytes) << c.window << " row " << c.row;
  }
}

TEST_F(MarkerPagesTest, AColourAboveTwoLeavesTheSwatchUntilSteppedThenWraps) {
  struct Case {
    char stored;
    uint32_t swatch_before;
    char stepped;
    uint32_t swatch_after;
  } cases[] = {{0, WHITE, 1, RED},
               {1, RED, 2, GREEN},
               {2, GREEN, 0, WHITE},
               {5, LAYOUT_GREY, 0, WHITE},
               {(char)200, LAYOUT_GREY, 0, WHITE}};
  for (const MarkerPage& p : PAGES) {
    for (const Case& c : cases) {
      *p.color_field = c.stored;
      open(p.window);
      EXPECT_EQ(color("image_reticle_color"), c.swatch_before) << p.window << " " << +c.stored;
      act_on_row(3);
      EXPECT_EQ(*p.color_field, c.stepped) << p.window;
      EXPECT_EQ(color("image_reticle_color"), c.swatch_after) << p.window;
      EXPECT_EQ(stUIStatus.s8ReticleTypeColorChoose, MARKER_CHOOSE_COLOR);
      EXPECT_EQ(sent(),
                Lines{std::string(p.reticle_frame) + " sub=3 value=" + std::to_string(c.stepped)});
    }
  }
}

TEST_F(MarkerPagesTest, RangeModeStopsContinuousMeasuringFirstAndOnlyThen) {
  struct Case {
    char range_mode;  // s8RangeMode when the mode is switched
    char type_before;
    Lines frames;
    const char* shown;
  } cases[] = {
      {3, RANGE_SINGLE, {"RANGE MEASURE value=0", "BASIC BASIC_RANGE_TYPE value=1"}, "Continuous"},
      {3, RANGE_CONTINUOUS, {"RANGE MEASURE value=0", "BASIC BASIC_RANGE_TYPE value=0"}, "Single"},
      {0, RANGE_CONTINUOUS, {"BASIC BASIC_RANGE_TYPE value=0"}, "Single"},
      {1, RANGE_SINGLE, {"BASIC BASIC_RANGE_TYPE value=1"}, "Continuous"},
  };
  for (const Case& c : cases) {
    stUIStatus.s8RangeMode = c.range_mode;
    stDevStatus.s8RangeType = c.type_before;
    open("Zavo_lrf_menu");
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(sent(), c.frames) << "range mode " << +c.range_mode;
    EXPECT_EQ(text("label_range_type"), c.shown);
    if (c.range_mode == 3) {
      EXPECT_EQ(stUIStatus.s8RangeMode, 0) << "measuring stopped";
    }
  }
}

TEST_F(MarkerPagesTest, LaserAndPictureInPictureSwitchBothWays) {
  open("Zavo_Laser_menu");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stUIStatus.s8LaserSwitch, 1);
  EXPECT_EQ(image("image_laser_switch"), "switch_large_on");
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_LASER_SWITCH value=1"});
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(image("image_laser_switch"), "switch_large_off");
  EXPECT_EQ(sent(), Lines{"BASIC BASIC_LASER_SWITCH value=0"});

  // Picture-in-picture is video mode 3; any other non-zero mode counts as on and switches off.
  struct Case {
    char before, after;
    const char* image;
  } cases[] = {{0, 3, "switch_large_on"}, {3, 0, "switch_large_off"}, {1, 0, "switch_large_off"}};
  for (const Case& c : cases) {
    stDevStatus.s8VideoMode = c.before;
    open("Zavo_PIP_menu");
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(stDevStatus.s8VideoMode, c.after);
    EXPECT_EQ(image("image_PIP_switch"), c.image);
    advance(100);  // the video mode goes out 100 ms later
    EXPECT_EQ(sent(), Lines{"BASIC BASIC_VIDEO_MODE value=" + std::to_string(c.after)});
  }
}

}  // namespace
