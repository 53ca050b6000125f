// "Zavo_ballistic_bullet" and "Zavo_ballistic_weather" through the main loop: what each row
// shows, what each row saves (limits, kept digits, the sign and the humidity hold) with the frame
// it sends, the drag model toggle and the way back to the ballistic menu.
#include <cmath>
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

// The digit labels of each row, in buffer order.
const std::vector<std::vector<const char*>> BULLET_DIGITS = {
    {},
    {"label_coef_one", "label_coef_point1", "label_coef_point2", "label_coef_point3",
     "label_coef_point4"},
    {"label_model_setval"},
    {"label_velocity_four", "label_velocity_three", "label_velocity_two", "label_velocity_one"},
    {"label_twistrate_two", "label_twistrate_one", "label_twistrate_point1",
     "label_twistrate_point2"},
    {"label_length_two", "label_length_one", "label_length_point1", "label_length_point2"},
    {"label_diameter_two", "label_diameter_one", "label_diameter_point1", "label_diameter_point2"},
    {"label_weight_two", "label_weight_one", "label_weight_point1"},
};
const std::vector<std::vector<const char*>> WEATHER_DIGITS = {
    {},
    {"label_temp_sign", "label_temp_two", "label_temp_one", "label_temp_point"},
    {"label_press_three", "label_press_two", "label_press_one", "label_press_point1"},
    {"label_humi_three", "label_humi_two", "label_humi_one"},
};

class BulletWeatherTest : public BallisticTest {
 protected:
  std::string row_text(const std::vector<const char*>& labels) const {
    std::string out;
    for (const char* l : labels)
      out += text(l);
    return out;
  }
  void to_row(int row) {
    for (int i = 1; i < row; ++i)
      keys({DOWN});
  }
};

TEST_F(BulletWeatherTest, BulletRowsShowTheProfileDigitByDigit) {
  profile().gun.bullet.ballisticsCoef = 0.5;
  profile().gun.bullet.weight = 750;
  profile().gun.bullet.dragFunction = 7;
  profile().gun.riflingRange = 9.5;
  const std::string out = printed([&] { open("Zavo_ballistic_bullet"); });
  EXPECT_EQ(row_text(BULLET_DIGITS[1]), "05000");
  EXPECT_EQ(row_text(BULLET_DIGITS[2]), "GS");
  EXPECT_EQ(row_text(BULLET_DIGITS[3]), "0790");
  EXPECT_EQ(row_text(BULLET_DIGITS[4]), "0950");
  EXPECT_EQ(row_text(BULLET_DIGITS[5]), "1240");
  EXPECT_EQ(row_text(BULLET_DIGITS[6]), "0308");
  EXPECT_EQ(row_text(BULLET_DIGITS[7]), "750");
  EXPECT_NE(out.find("dragFunction init = 7\n"), std::string::npos);
  EXPECT_NE(out.find("tmp=750\n"), std::string::npos);
  EXPECT_EQ(state("label_coef"), "focused");
  EXPECT_EQ(box("hightlight"), (Box{0, 0, 544, 60}));
  keys({UP});
  EXPECT_EQ(state("label_weight"), "focused");
  EXPECT_EQ(box("hightlight"), (Box{0, 360, 544, 60}));

  // Names of the drag models received from the device; anything else reads G1.
  const std::pair<int, const char*> models[] = {{1, "G2"}, {5, "G8"},  {8, "GC"},
                                                {9, "G1"}, {-3, "G1"}, {1000, "G1"}};
  for (const auto& [model, name] : models) {
    profile().gun.bullet.dragFunction = model;
    open("Zavo_ballistic_bullet");
    EXPECT_EQ(text("label_model_setval"), name) << model;
  }
}

TEST_F(BulletWeatherTest, BulletRowsSaveTheirValueWithItsLimitAndFrame) {
  struct Case {
    const char* what;
    int row;
    void (*prepare)(Info_ballistics&);
    int ok, ups;
    double (*saved)(const Info_ballistics&);
    double expected;
    const char* shown;
    const char* frame;
  } cases[] = {
      {"weight 750 saves as 500", 7, [](Info_ballistics& p) { p.gun.bullet.weight = 750; }, 1, 0,
       [](const Info_ballistics& p) { return p.gun.bullet.weight; }, 500, "500",
       "BULLET_INFO item=2 value=500"},
      {"diameter 1.2 saves as 1.000", 6, [](Info_ballistics& p) { p.gun.bullet.diameter = 1.2; }, 1,
       0, [](const Info_ballistics& p) { return p.gun.bullet.diameter; }, 1.0, "1000",
       "BULLET_INFO item=1 value=1"},
      {"length 6.0 saves as 5.000", 5, [](Info_ballistics& p) { p.gun.bullet.length = 6.0; }, 1, 0,
       [](const Info_ballistics& p) { return p.gun.bullet.length; }, 5.0, "5000",
       "BULLET_INFO item=0 value=5"},
      {"length 1.24 to 1.34", 5, [](Info_ballistics&) {}, 2, 1,
       [](const Info_ballistics& p) { return p.gun.bullet.length; }, 1.34, "1340",
       "BULLET_INFO item=0 value=1.34"},
      {"velocity is not limited: 1790", 3, [](Info_ballistics&) {}, 1, 1,
       [](const Info_ballistics& p) { return p.gun.bullet.velocity; }, 1790, "1790",
       "BULLET_INFO item=5 value=1790"},
      {"twist rate down a hundredth", 4, [](Info_ballistics&) {}, 4, -1,
       [](const Info_ballistics& p) { return p.gun.riflingRange; }, 11.24, "1124",
       "TWIST_INFO item=0 value=11.24"},
      {"coefficient keeps its units digit", 1,
       [](Info_ballistics& p) { p.gun.bullet.ballisticsCoef = 1.505; }, 1, 1,
       [](const Info_ballistics& p) { return p.gun.bullet.ballisticsCoef; }, 1.605, "16050",
       "BULLET_INFO item=3 value=1.605"},
  };
  for (const Case& c : cases) {
    info[1] = ballistic_test::field_profile();
    c.prepare(profile());
    open("Zavo_ballistic_bullet");
    to_row(c.row);
    sent();
    ok_then_step(c.ok, c.ups);
    keys({BACK});
    EXPECT_DOUBLE_EQ(c.saved(profile()), c.expected) << c.what;
    EXPECT_EQ(row_text(BULLET_DIGITS[c.row]), c.shown) << c.what;
    EXPECT_EQ(ballistic_sent(), (Lines{std::string("BALLISTIC BALLISTIC_") + c.frame})) << c.what;
    EXPECT_EQ(top_name(), "Zavo_ballistic_bullet") << c.what;
  }
}

TEST_F(BulletWeatherTest, CoefficientSelectionNeverReachesItsUnitsDigit) {
  open("Zavo_ballistic_bullet");
  for (int index : {1, 2, 3, 4, 1, 2}) {
    keys({OK});
    EXPECT_EQ(box("view_coef_sel"), (Box{(index + 1) * 16 - 2, 4, 20, 40})) << index;
  }
  // Length and diameter skip the decimal point after the units: 0, 32, 48, 64.
  keys({BACK});  // up and down change digits while editing: save first
  to_row(5);
  for (int x : {0, 32, 48, 64, 0}) {
    keys({OK});
    EXPECT_EQ(box("view_length_sel"), (Box{x - 2, 4, 20, 40}));
  }
}

TEST_F(BulletWeatherTest, DragModelTogglesG1AndG7AndSavesOnBack) {
  profile().gun.bullet.dragFunction = 7;
  open("Zavo_ballistic_bullet");
  keys({DOWN});
  EXPECT_FALSE(shown("view_mode_sel"));
  keys({OK});
  EXPECT_EQ(text("label_model_setval"), "G1");
  EXPECT_TRUE(shown("view_mode_sel"));
  EXPECT_EQ(state("label_model_setval"), "focused");
  keys({UP, DOWN});  // nothing on this row
  EXPECT_EQ(text("label_model_setval"), "G1");
  EXPECT_EQ(state("label_model"), "focused");
  keys({OK});
  EXPECT_EQ(text("label_model_setval"), "G7");
  EXPECT_EQ(profile().gun.bullet.dragFunction, 7);  // not before back
  sent();
  const std::string out = printed([&] { keys({BACK}); });
  EXPECT_EQ(profile().gun.bullet.dragFunction, 4);
  EXPECT_NE(out.find("gun.bullet.dragFunction = 4\n"), std::string::npos);
  EXPECT_EQ(ballistic_sent(), (Lines{"BALLISTIC BALLISTIC_BULLET_INFO item=4 value=4"}));
  EXPECT_FALSE(shown("view_mode_sel"));
  EXPECT_EQ(state("label_model_setval"), "normal");
}

TEST_F(BulletWeatherTest, WeatherRowsShowSignAndDecimals) {
  profile().atmosphere.temperature = -55;
  profile().atmosphere.barometer = 29.9f;
  profile().atmosphere.relative_humidity = 65;
  open("Zavo_ballistic_weather");
  EXPECT_EQ(row_text(WEATHER_DIGITS[1]), "-055");
  EXPECT_EQ(row_text(WEATHER_DIGITS[2]), "0299");
  EXPECT_EQ(row_text(WEATHER_DIGITS[3]), "065");
  EXPECT_EQ(state("label_temp"), "focused");
  keys({UP});
  EXPECT_EQ(state("label_humi"), "focused");
  EXPECT_EQ(box("hightlight"), (Box{0, 120, 544, 60}));
  // The pressure frame skips the decimal point: 0, 16, 32, then 64.
  keys({UP});
  for (int x : {0, 16, 32, 64, 0}) {
    keys({OK});
    EXPECT_EQ(box("view_press_sel"), (Box{x - 2, 4, 20, 40}));
  }
}

TEST_F(BulletWeatherTest, WeatherRowsSaveInsideTheirLimits) {
  struct Case {
    const char* what;
    int row;
    float temperature, barometer, humidity;
    int ok, ups;
    float saved;
    const char* shown;
    const char* frame;
    const char* log;
  } cases[] = {
      {"-55 saves as -40", 1, -55, 98, 50, 1, 0, -40, "-040", "item=0 value=-40",
       "atmosphere.temperature = -40.000000\n"},
      {"150 saves as 122", 1, 150, 98, 50, 1, 0, 122, "+122", "item=0 value=122", nullptr},
      {"the sign digit flips 15 to -15", 1, 15, 98, 50, 1, 1, -15, "-015", "item=0 value=-15",
       nullptr},
      {"sign 1 with 0 0 0 saves as 0", 1, -5, 98, 50, 4, 5, 0, "-000", "item=0 value=0", nullptr},
      {"101.3 saves as 100.0", 2, 15, 101.3f, 50, 1, 0, 100, "1000", "item=1 value=100",
       "save info[stDevStatus.s8BallisticGroup].environment.barometer = 100.0\n"},
      {"29.9, tens up: 39.9", 2, 15, 29.9f, 50, 2, 1, 39.9f, "0399", "item=1 value=39.9", nullptr},
      {"hundreds 1 makes 165, saved as 100", 3, 15, 98, 65, 1, 1, 100, "100", "item=2 value=100",
       "set val = 165.00\n"},
      {"humidity 100", 3, 15, 98, 100, 1, 0, 100, "100", "item=2 value=100", nullptr},
  };
  for (const Case& c : cases) {
    profile().atmosphere.temperature = c.temperature;
    profile().atmosphere.barometer = c.barometer;
    profile().atmosphere.relative_humidity = c.humidity;
    open("Zavo_ballistic_weather");
    to_row(c.row);
    sent();
    ok_then_step(c.ok, c.ups);
    const std::string out = printed([&] { keys({BACK}); });
    const float saved[] = {0, profile().atmosphere.temperature, profile().atmosphere.barometer,
                           profile().atmosphere.relative_humidity};
    EXPECT_FLOAT_EQ(saved[c.row], c.saved) << c.what;
    if (c.saved == 0) {
      EXPECT_FALSE(std::signbit(saved[c.row])) << c.what << ": a negative zero";
    }
    EXPECT_EQ(row_text(WEATHER_DIGITS[c.row]), c.shown) << c.what;
    EXPECT_EQ(ballistic_sent(), (Lines{std::string("BALLISTIC BALLISTIC_WEATHER ") + c.frame}))
        << c.what;
    if (c.log != nullptr) {
      EXPECT_NE(out.find(c.log), std::string::npos) << c.what << ": " << out;
    }
  }
}

TEST_F(BulletWeatherTest, HumidityTensAndUnitsStayZeroWhileTheHundredsIs1) {
  profile().atmosphere.relative_humidity = 100;
  open("Zavo_ballistic_weather");
  to_row(3);
  keys({OK, OK});  // the tens
  keys({UP});
  EXPECT_EQ(text("label_humi_two"), "0");
  keys({DOWN});
  EXPECT_EQ(text("label_humi_two"), "0");
  keys({OK, DOWN});  // the units
  EXPECT_EQ(text("label_humi_one"), "0");
  keys({OK, DOWN});  // the hundreds to 0 releases the others
  keys({OK, UP});
  EXPECT_EQ(text("label_humi_two"), "1");
}

TEST_F(BulletWeatherTest, BackReturnsToTheMenuOnItsRowAndHomeDiscards) {
  struct Case {
    const char* page;
    int menu_row_y;
  } cases[] = {{"Zavo_ballistic_bullet", 360}, {"Zavo_ballistic_weather", 0}};
  for (const Case& c : cases) {
    open_over_home(c.page);
    keys({BACK});
    advance(0);
    EXPECT_EQ(top_name(), "Zavo_ballistic_menu") << c.page;
    EXPECT_EQ(widget_child(window_manager(), c.page), nullptr) << c.page;
    win_ = top();
    EXPECT_EQ(box("hightlight").y, c.menu_row_y) << c.page;
  }
  // Home while editing: nothing stored, nothing sent.
  open_over_home("Zavo_ballistic_weather");
  keys({OK, UP, HOME});
  advance(0);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");
  EXPECT_FLOAT_EQ(profile().atmosphere.temperature, 15);
  EXPECT_TRUE(ballistic_sent().empty());
}

}  // namespace
