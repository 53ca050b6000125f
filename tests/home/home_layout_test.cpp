// The observation screen's resources: every image the layout or the page names is there, every
// widget the page looks up is in the layout, texts exist in every language, and the inert
// "Zavo_home_page" opens.
#include <pugixml.hpp>

#include <filesystem>
#include <set>

#include "home_fixture.h"
#include "pages/Zavo_home_page.h"

using home_test::HomeTest;

namespace {

const char* const UI_DIR = "res/assets/default/raw/ui/";
const char* const IMAGE_DIR = "res/assets/default/raw/images/x1/";

bool image_exists(const std::string& name) {
  std::string file = name;
  if (file.find('.') == std::string::npos) file += ".png";
  return std::filesystem::exists(std::string(IMAGE_DIR) + file);
}

TEST(HomeResources, EveryImageOfTheLayoutExists) {
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_file((std::string(UI_DIR) + "Zavo_home_page_1.xml").c_str()));
  int images = 0;
  for (pugi::xpath_node n : doc.select_nodes("//*[@image]")) {
    std::string name = n.node().attribute("image").value();
    ++images;
    EXPECT_TRUE(image_exists(name))
        << "image \"" << name << "\" of " << n.node().attribute("name").value();
  }
  EXPECT_GE(images, 20);
}

TEST(HomeResources, EveryImageThePageNamesExists) {
  for (const char* name : {"Zavo_battery0", "Zavo_battery1", "Zavo_battery2", "Zavo_battery3",
                           "Zavo_battery4", "Zavo_status_whitehot", "Zavo_status_blackhot",
                           "Zavo_status_redface", "Zavo_status_redhot", "Zavo_status_greenhot"}) {
    EXPECT_TRUE(image_exists(name)) << name;
  }
}

TEST(HomeResources, TipsAndCaptionsHaveEveryLanguage) {
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_file("res/assets/default/raw/strings/home.xml"));
  std::set<std::string> keys;
  for (pugi::xml_node s : doc.child("string_table").children("string")) {
    keys.insert(s.attribute("name").value());
    std::set<std::string> languages;
    for (pugi::xml_node l : s.children("language")) {
      EXPECT_FALSE(std::string(l.child_value()).empty()) << s.attribute("name").value();
      languages.insert(l.attribute("name").value());
    }
    EXPECT_EQ(languages, (std::set<std::string>{"zh_CN", "en_US", "ru_RU", "de_DE", "fr_FR",
                                                "es_ES", "it_IT"}))
        << s.attribute("name").value();
  }
  // Every tr_text of the layout is one of them.
  pugi::xml_document ui;
  ASSERT_TRUE(ui.load_file((std::string(UI_DIR) + "Zavo_home_page_1.xml").c_str()));
  for (pugi::xpath_node n : ui.select_nodes("//*[@tr_text]")) {
    EXPECT_TRUE(keys.count(n.node().attribute("tr_text").value()))
        << n.node().attribute("tr_text").value();
  }
  for (const char* key : {"home_compass_az", "home_compass_pitch", "home_compass_cant"}) {
    EXPECT_TRUE(keys.count(key)) << key;
  }
}

class HomeLookups : public HomeTest {};

// Every handler, timer and key of the page runs once; none looks up a widget the layout lacks.
TEST_F(HomeLookups, EveryWidgetThePageLooksUpIsInTheLayout) {
  stUIStatus.s8WindSwitch = 1;
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  stUIStatus.s8RangeMode = 3;
  open_home();
  tk_testing_clear_failed_lookups();
  for (int offset :
       {SCREEN_EVT_BATTERY,           SCREEN_EVT_BATTERY_TYPE,  SCREEN_EVT_RETICLE_MENU_SWITCH,
        SCREEN_EVT_DISTANCE,          SCREEN_EVT_LASER_SWITCH,  SCREEN_EVT_POLARITY,
        SCREEN_EVT_WIFI_SWITCH,       SCREEN_EVT_BRIGHT_LIGHT,  SCREEN_EVT_TEMPERATURE_REMIND,
        SCREEN_EVT_SHUTTER,           SCREEN_EVT_RANGE_SWITCH,  SCREEN_EVT_WIND,
        SCREEN_EVT_BALLISTIC_PROFILE, SCREEN_EVT_MICRO_SWITCH,  SCREEN_EVT_RECOIL_TRIGGERED,
        SCREEN_EVT_RECORD_TIP,        SCREEN_EVT_RECOIL_SWITCH, SCREEN_EVT_STANDBY,
        SCREEN_EVT_COMPASS_AZIMUTH,   SCREEN_EVT_COMPASS_PITCH, SCREEN_EVT_COMPASS_SLANT,
        SCREEN_EVT_COMPASS_SWITCH}) {
    screen_event(offset);
  }
  stUIStatus.s16BatteryValue = 560;
  screen_event(SCREEN_EVT_LASER_SWITCH);
  tk_testing_key_hit(GUI_KEY_PHOTO_L);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  stDevStatus.s8RangeSwitch = 0;
  tk_testing_key_hit(GUI_KEY_RANGE_S);
  tk_testing_advance(61000);  // blinks, tips, clock, storage check
  home_test::g_free_mib = 100;
  tk_testing_advance(60000);  // full card during the recording
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
  for (const std::string& miss : tk_testing_failed_lookup_names())
    ADD_FAILURE() << miss;
}

TEST_F(HomeLookups, InertHomePageOpensAndRejectsANullWindow) {
  ASSERT_EQ(navigator_to("Zavo_home_page"), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names().back(), "Zavo_home_page");
  tk_testing_capture_log(true);
  EXPECT_EQ(Zavo_home_page_init(nullptr, nullptr), RET_BAD_PARAMS);
  EXPECT_TRUE(tk_testing_log_contains("Zavo_home_page_init"));
  EXPECT_TRUE(tk_testing_log_contains("condition(win != NULL) failed!"));
}

}  // namespace
