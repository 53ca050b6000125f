// Zeroing: the zero list and the distance editor, driven by keys over the observation screen and
// observed as the frames the device reads, the windows open and the widgets shown.
#include "reticle_fixture.h"

namespace {

using reticle_test::printed;
using reticle_test::ReticleTest;
using Names = std::vector<std::string>;

class ZeroListTest : public ReticleTest {};
class ZeroEditorTest : public ReticleTest {
 protected:
  // The editor over the observation screen, in `unit`.
  void open_editor(char unit) {
    open_over_home("Zavo_reticle_zero_child");
    stDevStatus.s8DistanceUint = unit;
  }
  std::vector<std::string> digits() {
    return {text("distance_value_dig_3"), text("distance_value_dig_2"),
            text("distance_value_dig_1")};
  }
};

TEST_F(ZeroListTest, ShowsTheGroupsDistancesInTheUnitAndFocusesTheCurrentZero) {
  open_over_home("Zavo_reticle_zero");  // the observation screen has set yards
  EXPECT_EQ(text("label_zero1"), "109 yd");
  EXPECT_EQ(text("label_zero5"), "545 yd");
  EXPECT_EQ(box("image_zero_sel"), (page_test::Box{0, 120, 208, 60}));
  EXPECT_EQ(state("label_zero3"), "focused");
  EXPECT_EQ(state("label_zero1"), "normal");

  stDevStatus.s8DistanceUint = DISTANCE_M;
  IR_Cursor.group[1].u8CurrentZero = 4;
  open("Zavo_reticle_zero");
  EXPECT_EQ(text("label_zero1"), "100 m");
  EXPECT_EQ(text("label_zero4"), "400 m");
  EXPECT_EQ(state("label_zero5"), "focused");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(ZeroListTest, KeysWrapAndOkOnAZeroMakesItCurrentAndOpensItsEditor) {
  open_over_home("Zavo_reticle_menu");
  open("Zavo_reticle_zero");
  const std::string out = printed([&] {
    key(GUI_KEY_PHOTO_S);  // row 4
    key(GUI_KEY_PHOTO_S);  // row 5
    key(GUI_KEY_PHOTO_S);  // exit
    key(GUI_KEY_PHOTO_S);  // back to row 1
    key(GUI_KEY_RANGE_S);  // exit
    key(GUI_KEY_RANGE_S);  // row 5
  });
  EXPECT_NE(out.find("index===6\n"), std::string::npos);
  EXPECT_EQ(state("label_zero5"), "focused");
  EXPECT_EQ(box("image_zero_sel").y, 240);

  const std::string ok = printed([&] { key(GUI_KEY_FUCTION_S); });
  EXPECT_NE(ok.find("exit Zavo_reticle_zero\n"), std::string::npos);
  EXPECT_EQ(IR_Cursor.group[1].u8CurrentZero, 4);
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_ZERO value=4"}));
  // The list and the reticle menu closed; the editor of zero E is over the observation screen.
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1", "Zavo_reticle_zero_child"}));
  follow("Zavo_reticle_zero_child");
  EXPECT_EQ(text("label_zero_child_letter"), "E");
  EXPECT_EQ(
      text("distance_value_dig_3") + text("distance_value_dig_2") + text("distance_value_dig_1"),
      "545");
}

TEST_F(ZeroListTest, ExitBackAndHomeLeaveTheList) {
  struct Case {
    int key;
    Names windows;
    Names frames;
  } cases[] = {
      {GUI_KEY_FUCTION_L, {"Zavo_home_page_1", "Zavo_reticle_menu"}, {}},
      {GUI_KEY_POWER_S, {"Zavo_home_page_1"}, {}},
  };
  for (const Case& c : cases) {
    open_over_home("Zavo_reticle_menu");
    open("Zavo_reticle_zero");
    key(c.key);
    advance(0);
    EXPECT_EQ(windows(), c.windows) << c.key;
    EXPECT_EQ(sent(), c.frames) << c.key;
    restart();
  }
  // The exit row returns to the menu and has the settings saved.
  open_over_home("Zavo_reticle_menu");
  open("Zavo_reticle_zero");
  key(GUI_KEY_RANGE_S);
  key(GUI_KEY_RANGE_S);
  key(GUI_KEY_RANGE_S);  // row 3 -> 2 -> 1 -> exit
  EXPECT_EQ(state("label_zero_exit"), "focused");
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1", "Zavo_reticle_menu"}));
  EXPECT_EQ(sent(), (Names{"PARAM SAVE_ALLPARAM"}));
}

TEST_F(ZeroEditorTest, OpensWithTheZerosDistanceInDigitsAndRowOneFocused) {
  IR_Cursor.group[1].zero[2].u16IrCursorDistanceYD = 327;
  const std::string out = printed([&] { open_over_home("Zavo_reticle_zero_child"); });
  EXPECT_NE(out.find("renter Zavo_reticle_zero_child 3\n"), std::string::npos);
  EXPECT_EQ(digits(), (std::vector<std::string>{"3", "2", "7"}));
  EXPECT_EQ(text("label_zero_child_letter"), "C");
  EXPECT_EQ(text("label_zero_child_unit"), "yd");
  EXPECT_TRUE(shown("view_reticle_zero_child"));
  EXPECT_FALSE(shown("view_distance_val"));
  EXPECT_FALSE(shown("view_tip_exit"));
  EXPECT_EQ(state("label_movement"), "focused");
  EXPECT_EQ(box("image_zero_child_sel"), (page_test::Box{0, 0, 336, 60}));
  EXPECT_EQ(state("distance_value_dig_3"), "normal");
  EXPECT_TRUE(init_frames_.empty());
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(ZeroEditorTest, AStoredDistanceAbove999ShowsAHundredsDigitAbove9UntilEdited) {
  IR_Cursor.group[1].zero[2].u16IrCursorDistanceYD = 1234;
  open_over_home("Zavo_reticle_zero_child");
  EXPECT_EQ(digits(), (std::vector<std::string>{"12", "3", "4"}));
  key(GUI_KEY_FUCTION_S);
  key(GUI_KEY_PHOTO_S);  // down from above the maximum: the maximum
  EXPECT_EQ(text("distance_value_dig_3"), "9");
}

TEST_F(ZeroEditorTest, OkFramesEachDigitInTurnThenSavesAndMovesOnToAlignment) {
  open_editor(DISTANCE_YD);  // zero C: 327 yd
  key(GUI_KEY_FUCTION_S);
  EXPECT_TRUE(shown("view_distance_val"));
  EXPECT_EQ(box("view_distance_val"), (page_test::Box{238, 9, 25, 42}));
  EXPECT_EQ(state("distance_value_dig_1"), "focused");
  key(GUI_KEY_RANGE_S);  // hundreds 3 -> 4
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(box("view_distance_val").x, 265);
  key(GUI_KEY_PHOTO_S);  // tens 2 -> 1
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(box("view_distance_val").x, 292);
  key(GUI_KEY_RANGE_S);  // units 7 -> 8
  key(GUI_KEY_RANGE_S);  // 8 -> 9
  key(GUI_KEY_RANGE_S);  // 9 -> 0
  EXPECT_EQ(digits(), (std::vector<std::string>{"4", "1", "0"}));
  EXPECT_TRUE(sent().empty()) << "nothing is sent while editing";

  const std::string out = printed([&] { key(GUI_KEY_FUCTION_S); });
  EXPECT_NE(out.find("distance_value_dig_3 distance_value_dig_2 distance_value_dig_1 =410\n"),
            std::string::npos);
  EXPECT_EQ(zero(2).u16IrCursorDistanceYD, 410);
  EXPECT_EQ(zero(2).u16IrCursorDistance, 374);  // 410 x 0.9144 = 374.9
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_DISTANCE distance=374"}));
  EXPECT_FALSE(shown("view_distance_val"));
  EXPECT_EQ(state("distance_value_dig_1"), "normal");
  EXPECT_EQ(state("label_distance"), "focused");
  EXPECT_EQ(box("image_zero_child_sel").y, 60);
  // A fifth OK acts on the alignment row.
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(windows().back(), "Zavo_reticle_move");
}

TEST_F(ZeroEditorTest, TheHundredsDigitRunsToEightInMetresAndNineInYards) {
  struct Case {
    char unit;
    int stored;  // in the unit
    int key;
    const char* hundreds;
  } cases[] = {
      {DISTANCE_M, 812, GUI_KEY_RANGE_S, "0"},  // up on 8 gives 0: never 9xx m
      {DISTANCE_M, 12, GUI_KEY_PHOTO_S, "8"},   // down on 0 gives 8
      {DISTANCE_M, 712, GUI_KEY_RANGE_S, "8"},
      {DISTANCE_YD, 812, GUI_KEY_RANGE_S, "9"},  // 999 yd is the yard limit
      {DISTANCE_YD, 912, GUI_KEY_RANGE_S, "0"},
      {DISTANCE_YD, 12, GUI_KEY_PHOTO_S, "9"},
  };
  for (const Case& c : cases) {
    IR_Cursor.group[1].zero[2].u16IrCursorDistance = static_cast<int16_t>(c.stored);
    IR_Cursor.group[1].zero[2].u16IrCursorDistanceYD = static_cast<int16_t>(c.stored);
    open_editor(c.unit);
    open("Zavo_reticle_zero_child");  // again, now in the unit
    key(GUI_KEY_FUCTION_S);
    key(c.key);
    EXPECT_EQ(text("distance_value_dig_3"), c.hundreds) << int{c.unit} << " " << c.stored;
    restart();
  }
}

TEST_F(ZeroEditorTest, SavingConvertsToTheOtherUnitAndSendsMetres) {
  struct Case {
    char unit;
    int metres;
    int yards;
  } cases[] = {{DISTANCE_YD, 274, 300}, {DISTANCE_M, 300, 328}};
  for (const Case& c : cases) {
    IR_Cursor.group[1].zero[2].u16IrCursorDistance = 300;
    IR_Cursor.group[1].zero[2].u16IrCursorDistanceYD = 300;
    open_editor(c.unit);
    open("Zavo_reticle_zero_child");
    for (int i = 0; i < 4; ++i)
      key(GUI_KEY_FUCTION_S);  // 300 through the three digits unchanged, then saved
    EXPECT_EQ(zero(2).u16IrCursorDistance, c.metres);
    EXPECT_EQ(zero(2).u16IrCursorDistanceYD, c.yards);
    EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_DISTANCE distance=" + std::to_string(c.metres)}));
    restart();
  }
}

TEST_F(ZeroEditorTest, BackSavesShowsTheNoticeOnceAndASecondLaterOpensTheMenuWithTheList) {
  open_over_home("Zavo_reticle_zero_child");
  key(GUI_KEY_FUCTION_L);
  EXPECT_TRUE(shown("view_tip_exit"));
  // Saved though unedited: 327 yd again, sent as 299 m.
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_DISTANCE distance=299"}));
  advance(500);
  key(GUI_KEY_FUCTION_L);  // inside the notice: no second timer, no second save
  key(GUI_KEY_PHOTO_S);
  EXPECT_TRUE(sent().empty());
  EXPECT_EQ(state("label_movement"), "focused");
  advance(499);
  EXPECT_EQ(windows().back(), "Zavo_reticle_zero_child");
  advance(1);
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1", "Zavo_reticle_menu", "Zavo_reticle_zero"}));
  EXPECT_EQ(sent(), (Names{"PARAM SAVE_ALLPARAM"}));
  advance(5000);
  EXPECT_EQ(windows().size(), 3u) << "one exit timer only";
  EXPECT_TRUE(sent().empty());
}

TEST_F(ZeroEditorTest, HomeOrTheExitRowLeaveThroughTheNotice) {
  struct Case {
    std::vector<int> keys;
    Names frames_at_once;
    Names windows_after;
    Names frames_after;
  } cases[] = {
      {{GUI_KEY_POWER_S}, {"RETICLE RETICLE_DISTANCE distance=299"}, {"Zavo_home_page_1"}, {}},
      // Back, then home inside the notice: the last key decides.
      {{GUI_KEY_FUCTION_L, GUI_KEY_POWER_S},
       {"RETICLE RETICLE_DISTANCE distance=299"},
       {"Zavo_home_page_1"},
       {}},
      // The exit row leaves without saving the distance.
      {{GUI_KEY_RANGE_S, GUI_KEY_FUCTION_S},
       {},
       {"Zavo_home_page_1", "Zavo_reticle_menu", "Zavo_reticle_zero"},
       {"PARAM SAVE_ALLPARAM"}},
  };
  for (const Case& c : cases) {
    open_over_home("Zavo_reticle_zero_child");
    for (int k : c.keys)
      key(k);
    EXPECT_TRUE(shown("view_tip_exit"));
    EXPECT_EQ(sent(), c.frames_at_once);
    advance(1000);
    EXPECT_EQ(windows(), c.windows_after);
    EXPECT_EQ(sent(), c.frames_after);
    restart();
  }
}

TEST_F(ZeroEditorTest, TheAlignmentRowHidesTheEditorUntilTheAlignmentPageIsLeftByBack) {
  open_over_home("Zavo_reticle_zero_child");
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_FUCTION_S);
  EXPECT_FALSE(shown("view_reticle_zero_child"));
  EXPECT_EQ(windows().back(), "Zavo_reticle_move");
  sent();
  // Back on the alignment page: event 8239 shows the editor again at once...
  key(GUI_KEY_FUCTION_L);
  advance(0);
  EXPECT_TRUE(shown("view_reticle_zero_child"));
  // ...and after the alignment page's notice the editor is on top again.
  advance(1000);
  EXPECT_EQ(windows(), (Names{"Zavo_home_page_1", "Zavo_reticle_zero_child"}));
  EXPECT_TRUE(sent().empty()) << "the editor saves when it is left itself";
  key(GUI_KEY_FUCTION_S);  // keys reach the editor again: row 2 opens the alignment page
  EXPECT_EQ(windows().back(), "Zavo_reticle_move");
}

}  // namespace
