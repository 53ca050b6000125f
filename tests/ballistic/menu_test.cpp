// "Zavo_ballistic_menu" through the main loop: row focus and the calculator switch, the selector
// rows and their frames, the three digit rows with their limits and quirks, and where the rows
// lead.
#include <string>
#include <vector>

#include "ballistic_fixture.h"

namespace {

using ballistic_test::BACK;
using ballistic_test::BallisticTest;
using ballistic_test::Box;
using ballistic_test::DOWN;
using ballistic_test::HOME;
using ballistic_test::OK;
using ballistic_test::printed;
using ballistic_test::UP;
using Lines = std::vector<std::string>;

constexpr const char* ROW_LABELS[] = {"label_ballistic_switch",
                                      "label_ballistic_profile",
                                      "label_type",
                                      "label_reticle_color",
                                      "label_wind",
                                      "label_zero_distance",
                                      "label_bullet",
                                      "label_scope",
                                      "label_weather"};

class BallisticMenuTest : public BallisticTest {
 protected:
  // The row whose focus widget is "focused" (10 for "view_OK"), or 0.
  int focused_row() const {
    for (int i = 0; i < 9; ++i) {
      if (state(ROW_LABELS[i]) == "focused") return i + 1;
    }
    return state("view_OK") == "focused" ? 10 : 0;
  }
  std::string wind() const {
    return digits({"label_winddir_two", "label_winddir_one", "label_windir_point1",
                   "label_windrate_three", "label_windrate_two", "label_windrate_one"});
  }
  std::string zero() const {
    return digits({"label_zero_dist_four", "label_zero_dist_three", "label_zero_dist_two",
                   "label_zero_dist_one"});
  }
  std::string scope() const {
    return digits(
        {"label_scope_two", "label_scope_one", "label_scope_point1", "label_scope_point2"});
  }
  // To row `row` from row 1 with the down key.
  void to_row(int row) {
    for (int i = 1; i < row; ++i)
      keys({DOWN});
  }
};

TEST_F(BallisticMenuTest, FocusStepsThroughTenRowsAndTheReturnPageChoosesTheFirst) {
  open("Zavo_ballistic_menu");
  EXPECT_EQ(focused_row(), 1);
  EXPECT_EQ(box("hightlight"), (Box{0, 0, 544, 60}));
  for (int row = 2; row <= 10; ++row) {
    const std::string out = printed([&] { keys({DOWN}); });
    EXPECT_EQ(focused_row(), row);
    EXPECT_NE(out.find("hold_menu_index = " + std::to_string(row) + "\n"), std::string::npos);
    EXPECT_EQ(shown("hightlight"), row <= 9) << row;
    if (row <= 9) {
      EXPECT_EQ(box("hightlight"), (Box{0, (row - 1) * 60, 544, 60}));
    }
  }
  keys({DOWN});
  EXPECT_EQ(focused_row(), 1);
  keys({UP});
  EXPECT_EQ(focused_row(), 10);
  EXPECT_EQ(state("label_OK"), "normal");

  // Back from the bullet page (2) focuses its row; from the weather page (1) and any other, row 1.
  struct Case {
    intptr_t ctx;
    int row;
  } cases[] = {{MENU_HOLD_BALLISTIC_BULLET, 7}, {MENU_HOLD_BALLISTIC_WEATHER, 1}, {0, 1}, {4, 1}};
  for (const Case& c : cases) {
    const std::string out =
        printed([&] { open("Zavo_ballistic_menu", reinterpret_cast<void*>(c.ctx)); });
    EXPECT_NE(out.find("ret_menu_index = " + std::to_string(c.ctx) + "\n"), std::string::npos);
    EXPECT_EQ(focused_row(), c.row) << c.ctx;
    EXPECT_EQ(box("hightlight").y, (c.row - 1) * 60);
  }
}

TEST_F(BallisticMenuTest, WithTheCalculatorOffFocusStaysOnTheSwitchAndTheOtherRowsAreDisabled) {
  info[0].ballistics_sw = 0;
  info[1].ballistics_sw = 1;  // only the first profile's switch counts
  open("Zavo_ballistic_menu");
  keys({DOWN, DOWN, UP});
  EXPECT_EQ(focused_row(), 1);
  EXPECT_EQ(image("ballistic_switch"), "switch_small_off");
  for (int row = 2; row <= 9; ++row)
    EXPECT_EQ(state(ROW_LABELS[row - 1]), "disable") << row;
  EXPECT_EQ(state("label_OK"), "disable");
  EXPECT_TRUE(ballistic_sent().empty());

  // The switch: on sends the switch and then "calculate"; off sends the switch alone; on while
  // continuous ranging runs sends the switch alone too.
  keys({OK});
  EXPECT_EQ(info[0].ballistics_sw, 1);
  EXPECT_EQ(image("ballistic_switch"), "switch_small_on");
  EXPECT_EQ(state("label_type"), "normal");
  EXPECT_EQ(ballistic_sent(), (Lines{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1",
                                     "BALLISTIC BALLISTIC_OPEN_CALCU item=1 value=1"}));
  keys({OK});
  EXPECT_EQ(ballistic_sent(), (Lines{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=0"}));
  stUIStatus.s8RangeMode = 3;
  keys({OK});
  EXPECT_EQ(ballistic_sent(), (Lines{"BALLISTIC BALLISTIC_OPEN_CALCU item=0 value=1"}));
  keys({DOWN});
  EXPECT_EQ(focused_row(), 2);
}

TEST_F(BallisticMenuTest, SelectorRowsCycleSendAndRedraw) {
  for (int g = 0; g < 5; ++g) {
    info[g].wind.angle = 10 * (g + 1);
    info[g].gun.scope.zeroRange = static_cast<int16_t>(100 * (g + 1));
    info[g].gun.scope.sightHeightOverBore = g + 1.25;
  }
  stDevStatus.s8BallisticGroup = 3;
  stDevStatus.s8BallisticReticle = 3;
  stDevStatus.s8BallisticReticleColor = 2;
  open("Zavo_ballistic_menu");
  EXPECT_EQ(text("label_ballistic_profile_vlaue"), "4");
  EXPECT_EQ(wind(), "035040");

  // Profile 4 -> 5 -> 1 (0-based 3 -> 4 -> 0): both frames each time, the digit rows redrawn.
  keys({DOWN, OK});
  EXPECT_EQ(ballistic_sent(), (Lines{"BALLISTIC BALLISTIC_OPEN_CALCU item=4 value=4",
                                     "BALLISTIC BALLISTIC_OPEN_CALCU item=1 value=1"}));
  EXPECT_EQ(text("label_ballistic_profile_vlaue"), "5");
  keys({OK});
  EXPECT_EQ(stDevStatus.s8BallisticGroup, 0);
  EXPECT_EQ(text("label_ballistic_profile_vlaue"), "1");
  EXPECT_EQ(ballistic_sent()[0], "BALLISTIC BALLISTIC_OPEN_CALCU item=4 value=0");
  EXPECT_EQ(wind(), "035010");
  EXPECT_EQ(zero(), "0100");
  EXPECT_EQ(scope(), "0125");

  // Aim-mark type 3 -> 4 -> 0: exactly one of the five shapes shows.
  keys({DOWN});
  for (int expected : {4, 0, 1}) {
    keys({OK});
    EXPECT_EQ(stDevStatus.s8BallisticReticle, expected);
    EXPECT_EQ(ballistic_sent(),
              (Lines{"BALLISTIC BALLISTIC_OPEN_CALCU item=2 value=" + std::to_string(expected)}));
    for (int i = 0; i < 5; ++i) {
      const std::string name = "view_type" + std::to_string(i + 1);
      EXPECT_EQ(shown(name.c_str()), i == expected) << name;
    }
  }
  // Colour 2 -> 0 -> 1: white, red.
  keys({DOWN});
  const uint32_t colors[] = {0xFFFFFFFF, 0xFF0011FF};
  for (int expected : {0, 1}) {
    keys({OK});
    EXPECT_EQ(ballistic_sent(),
              (Lines{"BALLISTIC BALLISTIC_OPEN_CALCU item=3 value=" + std::to_string(expected)}));
    EXPECT_EQ(color("image_reticle_color"), colors[expected]);
  }
}

// The wind row edits only the direction (digits 3..5); back saves at most 359 and sends the
// direction; a held value (direction, or a stored speed above 40.0) redraws the digits.
TEST_F(BallisticMenuTest, WindDirectionIsEditedDigitByDigitAndHeldAt359) {
  struct Case {
    const char* what;
    double speed, angle;
    int ok, ups;  // OK presses (the first selects the hundreds), then up (< 0: down) presses
    double saved_speed, saved_angle;
    const char* shown;
    const char* frame;
  } cases[] = {
      {"tens 6: 360 is held at 359", 3.5, 300, 2, 6, 3.5, 359, "035359", "value=359"},
      {"999 is held at 359", 3.5, 899, 1, 1, 3.5, 359, "035359", "value=359"},
      {"units 0 down wraps to 9, no borrow", 3.5, 90, 3, -1, 3.5, 99, "035099", "value=99"},
      {"hundreds 9 up wraps to 0", 3.5, 959, 1, 1, 3.5, 59, "035059", "value=59"},
      {"a stored speed of 123.4 shows 9 3 4 and saves as 40", 123.4, 10, 1, 0, 40, 10, "400010",
       "value=10"},
  };
  for (const Case& c : cases) {
    profile().wind.speed = c.speed;
    profile().wind.angle = c.angle;
    open("Zavo_ballistic_menu");
    to_row(5);
    sent();
    ok_then_step(c.ok, c.ups);
    const std::string out = printed([&] { keys({BACK}); });
    EXPECT_EQ(profile().wind.angle, c.saved_angle) << c.what;
    EXPECT_DOUBLE_EQ(profile().wind.speed, c.saved_speed) << c.what;
    EXPECT_EQ(wind(), c.shown) << c.what;
    EXPECT_FALSE(shown("view_wind_sel")) << c.what;
    EXPECT_FALSE(shown("view_wind_arrow")) << c.what;
    EXPECT_EQ(ballistic_sent(),
              (Lines{std::string("BALLISTIC BALLISTIC_WIND_INFO item=0 ") + c.frame}))
        << c.what;
    EXPECT_NE(out.find("save wind = "), std::string::npos) << c.what;
    EXPECT_NE(out.find("edit_index = "), std::string::npos) << c.what;
  }
  // Selection: 3, 4, 5, then 3 again; the speed digits are never selected.
  open("Zavo_ballistic_menu");
  to_row(5);
  for (int x : {176, 192, 208, 176}) {
    keys({OK});
    EXPECT_EQ(box("view_wind_sel"), (Box{x - 2, 4, 20, 40}));
  }
  keys({UP});
  EXPECT_EQ(box("view_wind_arrow"), (Box{178, -3, 12, 54}));
  EXPECT_EQ(image("image_wind_up"), "hold_menu_arrow_up_sel");
  EXPECT_EQ(state("label_windrate_three"), "focused");
  EXPECT_EQ(focused_row(), 5);  // up and down change the digit, not the row, while editing
}

TEST_F(BallisticMenuTest, ZeroDistanceSavesBothUnitsAndShowsYardsWhenHeldAt999) {
  struct Case {
    const char* what;
    char unit;
    int16_t metres, yards;
    int ok, ups;
    int16_t saved_metres, saved_yards;
    const char* shown;
    const char* unit_text;
    const char* log;
  } cases[] = {
      {"100 m saves 109 yd", DISTANCE_M, 100, 0, 1, 0, 100, 109, "0100", "m",
       "save zerorange = 109.0\n"},
      {"100 yd saves 91 m", DISTANCE_YD, 0, 100, 1, 0, 91, 100, "0100", "yd",
       "save zerorange = 91.0\n"},
      {"hundreds up: 200 m", DISTANCE_M, 100, 109, 1, 1, 200, 218, "0200", "m",
       "save zerorange = 218.0\n"},
      {"a stored 1200 m saves 999 and reads yd", DISTANCE_M, 1200, 0, 1, 0, 999, 1092, "0999", "yd",
       "save zerorange = 1092.0\n"},
  };
  for (const Case& c : cases) {
    stDevStatus.s8DistanceUint = c.unit;
    profile().gun.scope.zeroRange = c.metres;
    profile().gun.scope.zeroRange_yard = c.yards;
    open("Zavo_ballistic_menu");
    EXPECT_EQ(text("label_zero_dist_unit"), c.unit == DISTANCE_YD ? "yd" : "m") << c.what;
    to_row(6);
    sent();
    ok_then_step(c.ok, c.ups);
    const std::string out = printed([&] { keys({BACK}); });
    EXPECT_EQ(profile().gun.scope.zeroRange, c.saved_metres) << c.what;
    EXPECT_EQ(profile().gun.scope.zeroRange_yard, c.saved_yards) << c.what;
    EXPECT_EQ(zero(), c.shown) << c.what;
    EXPECT_EQ(text("label_zero_dist_unit"), c.unit_text) << c.what;
    EXPECT_NE(out.find(c.log), std::string::npos) << c.what << ": " << out;
    EXPECT_EQ(ballistic_sent(),
              (Lines{"BALLISTIC BALLISTIC_LENS_INFO item=1 m=" + std::to_string(c.saved_metres) +
                     " yd=" + std::to_string(c.saved_yards)}))
        << c.what;
  }
  // The thousands digit is never selected: hundreds, tens, units, hundreds.
  open("Zavo_ballistic_menu");
  to_row(6);
  for (int x : {16, 32, 48, 16}) {
    keys({OK});
    EXPECT_EQ(box("view_zero_dist_sel"), (Box{x - 2, 4, 20, 40}));
  }
}

TEST_F(BallisticMenuTest, SightHeightIsHeldAt5AndZeroIsAccepted) {
  struct Case {
    double stored;
    int ok, ups;
    double saved;
    const char* shown;
    const char* frame;
    const char* log;
  } cases[] = {
      {5.00, 4, 1, 5.0, "0500", "value=5", "set val = 5.01\n"},
      {5.00, 4, 1, 5.0, "0500", "value=5", "save sightHeightOverBore = 5.00\n"},
      {4.50, 2, 1, 5.0, "0500", "value=5", "set val = 5.50\n"},
      {0.01, 4, -1, 0.0, "0000", "value=0", "save sightHeightOverBore = 0.00\n"},
      {4.50, 3, 2, 4.7, "0470", "value=4.7", "save sightHeightOverBore = 4.70\n"},
  };
  for (const Case& c : cases) {
    profile().gun.scope.sightHeightOverBore = c.stored;
    open("Zavo_ballistic_menu");
    to_row(8);
    sent();
    ok_then_step(c.ok, c.ups);
    const std::string out = printed([&] { keys({BACK}); });
    EXPECT_DOUBLE_EQ(profile().gun.scope.sightHeightOverBore, c.saved) << c.stored;
    EXPECT_EQ(scope(), c.shown) << c.stored;
    EXPECT_NE(out.find(c.log), std::string::npos) << out;
    EXPECT_EQ(ballistic_sent(),
              (Lines{std::string("BALLISTIC BALLISTIC_LENS_INFO item=0 ") + c.frame}));
  }
  // Selection: 0, 16, then 48 and 64 past the decimal point.
  open("Zavo_ballistic_menu");
  to_row(8);
  for (int x : {0, 16, 48, 64, 0}) {
    keys({OK});
    EXPECT_EQ(box("view_scope_sel"), (Box{x - 2, 4, 20, 40}));
  }
}

TEST_F(BallisticMenuTest, HomeWhileEditingDiscardsTheDigitsAndBackSavesThem) {
  open_over_home("Zavo_ballistic_menu");
  to_row(5);
  keys({OK, UP});  // 090 -> 190
  EXPECT_EQ(wind(), "035190");
  keys({HOME});
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
  EXPECT_EQ(profile().wind.angle, 90);
  EXPECT_TRUE(ballistic_sent().empty());

  open("Zavo_ballistic_menu");
  EXPECT_EQ(wind(), "035090");  // redrawn from the profile
  to_row(5);
  keys({OK, UP, BACK});
  EXPECT_EQ(profile().wind.angle, 190);
  EXPECT_EQ(ballistic_sent(), (Lines{"BALLISTIC BALLISTIC_WIND_INFO item=0 value=190"}));
  EXPECT_EQ(top_name(), "Zavo_ballistic_menu");  // back while editing stays
  keys({BACK});
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
}

TEST_F(BallisticMenuTest, BulletWeatherAndConfirmRowsLeaveTheMenu) {
  struct Case {
    int row;
    const char* top;
    Lines frames;
  } cases[] = {
      {7, "Zavo_ballistic_bullet", {}},
      {9, "Zavo_ballistic_weather", {}},
      {10, "Zavo_home_page_1", {"BALLISTIC BALLISTIC_OPEN_CALCU item=1 value=1"}},
  };
  for (const Case& c : cases) {
    open_over_home("Zavo_ballistic_menu");
    to_row(c.row);
    keys({OK});
    advance(0);
    EXPECT_EQ(top_name(), c.top) << c.row;
    EXPECT_EQ(widget_child(window_manager(), "Zavo_ballistic_menu"), nullptr) << c.row;
    EXPECT_EQ(ballistic_sent(), c.frames) << c.row;
    navigator_back_to_home();
    advance(0);
  }
}

}  // namespace
