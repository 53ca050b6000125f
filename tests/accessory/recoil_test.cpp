// The recoil-activated video page: its four rows, each value's steps and wrap, and the recoil
// commands on the queue.
#include <string>
#include <vector>

#include "accessory_fixture.h"

namespace {

using accessory_test::AccessoryTest;
using accessory_test::Box;
using accessory_test::Frames;
using Lines = std::vector<std::string>;

class RecoilTest : public AccessoryTest {
 protected:
  // Presses function on `row` `times` times; the value shown and the frame sent after each.
  void step(int row, int times, Lines* shown, Lines* frames, const char* value_widget) {
    open("Zavo_Recoil_menu");
    for (int i = 1; i < row; ++i)
      key(GUI_KEY_PHOTO_S);
    for (int i = 0; i < times; ++i) {
      key(GUI_KEY_FUCTION_S);
      shown->push_back(text(value_widget));
      for (const std::string& line : sent())
        frames->push_back(line);
    }
  }
};

TEST_F(RecoilTest, InitShowsTheSettingsOfTheRecord) {
  stDevStatus.s8RecoilState = 1;
  stDevStatus.s8RecoilBefore = 5;
  stDevStatus.s8RecoilAfter = 10;
  stDevStatus.s8RecoilSensitivity = 1;
  open("Zavo_Recoil_menu");
  EXPECT_EQ(image("image_recoil_switch"), "switch_large_on");
  EXPECT_EQ(text("label_recoil_before_value"), "5 s");
  EXPECT_EQ(text("label_recoil_after_value"), "10 s");
  EXPECT_EQ(text("label_recoil_sensitivity_value"), "Medium");
  EXPECT_EQ(state("label_recoil_switch"), "focused");
  EXPECT_EQ(box("image_recoil_menu_sel"), (Box{0, 0, 560, 60}));
}

TEST_F(RecoilTest, TheRowsWrapBothWays) {
  open("Zavo_Recoil_menu");
  const char* labels[] = {"label_recoil_switch", "label_recoil_before", "label_recoil_after",
                          "label_recoil_sensitivity"};
  const struct {
    uint32_t key;
    int row;
  } steps[] = {{GUI_KEY_RANGE_S, 4},
               {GUI_KEY_RANGE_S, 3},
               {GUI_KEY_PHOTO_S, 4},
               {GUI_KEY_PHOTO_S, 1},
               {GUI_KEY_PHOTO_S, 2}};
  for (const auto& s : steps) {
    key(s.key);
    EXPECT_EQ(Zavo_Recoil_index, s.row);
    EXPECT_EQ(box("image_recoil_menu_sel"), (Box{0, (s.row - 1) * 60, 560, 60}));
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(state(labels[i]), i == s.row - 1 ? "focused" : "normal") << "row " << s.row;
  }
}

TEST_F(RecoilTest, TheSwitchSendsItsStateAndTheObservationScreenFollows) {
  open_over_home("Zavo_Recoil_menu");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stDevStatus.s8RecoilState, 1);
  EXPECT_EQ(image("image_recoil_switch"), "switch_large_on");
  const Frames frames = sent_frames();
  ASSERT_EQ(frames.size(), 1u);
  EXPECT_EQ(framedec::hex(frames[0]), "aa 07 1c 00 ff 00 01 cd eb aa");
  advance(0);
  widget_t* home = widget_child(window_manager(), "Zavo_home_page_1");
  EXPECT_TRUE(widget_lookup(home, "image_Zavo_RAV", TRUE)->visible) << "its recoil icon";
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), Lines{"RECOIL RECOIL_SWITCH value=0"});
  advance(0);
  EXPECT_FALSE(widget_lookup(home, "image_Zavo_RAV", TRUE)->visible);
}

TEST_F(RecoilTest, SecondsStepThroughTheOfferedValuesAndWrap) {
  struct Case {
    int row;
    char* field;
    char stored;
    int presses;
    Lines shown;
    const char* command;
  } cases[] = {
      {2, &stDevStatus.s8RecoilBefore, 0, 4, {"5 s", "10 s", "15 s", "0 s"}, "RECOIL_BEFORE"},
      {2, &stDevStatus.s8RecoilBefore, 7, 1, {"10 s"}, "RECOIL_BEFORE"},  // between two steps
      {2, &stDevStatus.s8RecoilBefore, 90, 1, {"0 s"}, "RECOIL_BEFORE"},  // beyond the last
      {3,
       &stDevStatus.s8RecoilAfter,
       5,
       6,
       {"10 s", "15 s", "20 s", "25 s", "30 s", "5 s"},
       "RECOIL_AFTER"},
      {3, &stDevStatus.s8RecoilAfter, 0, 1, {"5 s"}, "RECOIL_AFTER"},
  };
  for (const Case& c : cases) {
    *c.field = c.stored;
    Lines shown, frames;
    step(c.row, c.presses, &shown, &frames,
         c.row == 2 ? "label_recoil_before_value" : "label_recoil_after_value");
    EXPECT_EQ(shown, c.shown) << c.command << " from " << +c.stored;
    Lines expected;
    for (const std::string& s : c.shown)
      expected.push_back(std::string("RECOIL ") + c.command +
                         " value=" + s.substr(0, s.size() - 2));
    EXPECT_EQ(frames, expected);
  }
}

TEST_F(RecoilTest, SensitivityStepsLowMediumHighAndAnUnknownLevelShowsItsNumber) {
  stDevStatus.s8RecoilSensitivity = 0;
  Lines shown, frames;
  step(4, 3, &shown, &frames, "label_recoil_sensitivity_value");
  EXPECT_EQ(shown, (Lines{"Medium", "High", "Low"}));
  EXPECT_EQ(frames, (Lines{"RECOIL RECOIL_SENSITIVITY value=1", "RECOIL RECOIL_SENSITIVITY value=2",
                           "RECOIL RECOIL_SENSITIVITY value=0"}));
  stDevStatus.s8RecoilSensitivity = 7;
  open("Zavo_Recoil_menu");
  EXPECT_EQ(text("label_recoil_sensitivity_value"), "7");
  act_on_row(4);
  EXPECT_EQ(text("label_recoil_sensitivity_value"), "Low");
  EXPECT_EQ(sent(), Lines{"RECOIL RECOIL_SENSITIVITY value=0"});
  // A language change redraws the level, and a number does not come back as a text.
  locale_info_change(locale_info(), "de", "DE");
  advance(0);
  EXPECT_EQ(text("label_recoil_sensitivity_value"), "Niedrig");
}

}  // namespace
