// The observation screen's resources: every image the layout or the page names exists, every
// widget the page looks up is in the layout, the overlay region is what the element table gives,
// texts exist in every language; and the screen drawn in one fixed state matches its reference.
#include <pugixml.hpp>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "home_fixture.h"
#include "reticle_layout_region.h"

namespace {

using home_test::Box;

const std::string LAYOUT = "res/assets/default/raw/ui/Zavo_home_page_1.xml";

bool image_exists(std::string name) {
  if (name.find('.') == std::string::npos) name += ".png";
  return std::filesystem::exists("res/assets/default/raw/images/x1/" + name);
}

TEST(HomeResources, EveryImageOfTheLayoutAndOfThePageExists) {
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_file(LAYOUT.c_str()));
  for (pugi::xpath_node n : doc.select_nodes("//*[@image]")) {
    EXPECT_TRUE(image_exists(n.node().attribute("image").value()))
        << n.node().attribute("name").value();
  }
  std::vector<std::string> named;
  for (const char* map : {"whitehot", "blackhot", "redface", "redhot", "greenhot"})
    named.push_back(std::string("Zavo_status_") + map);
  for (int n = 0; n <= 4; ++n)
    named.push_back("Zavo_battery" + std::to_string(n));
  for (const char* prefix : {"laser_", "LRF_"}) {
    for (const char* c : {"_w.png", "_r.png", "_g.png"}) {
      for (int n = 1; n <= 3; ++n)
        named.push_back(prefix + std::to_string(n) + c);
    }
  }
  for (const std::string& name : named)
    EXPECT_TRUE(image_exists(name)) << name;
}

TEST(HomeResources, TipsAndCaptionsHaveEveryLanguage) {
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_file("res/assets/default/raw/strings/home.xml"));
  const std::set<std::string> all = {"zh_CN", "en_US", "ru_RU", "de_DE", "fr_FR", "es_ES", "it_IT"};
  std::set<std::string> keys;
  for (pugi::xml_node s : doc.child("string_table").children("string")) {
    keys.insert(s.attribute("name").value());
    std::set<std::string> languages;
    for (pugi::xml_node l : s.children("language")) {
      if (*l.child_value() != '\0') languages.insert(l.attribute("name").value());
    }
    EXPECT_EQ(languages, all) << s.attribute("name").value();
  }
  pugi::xml_document ui;
  ASSERT_TRUE(ui.load_file(LAYOUT.c_str()));
  std::vector<std::string> used = {"home_compass_az", "home_compass_pitch", "home_compass_cant"};
  for (pugi::xpath_node n : ui.select_nodes("//*[@tr_text]"))
    used.push_back(n.node().attribute("tr_text").value());
  for (const std::string& key : used)
    EXPECT_TRUE(keys.count(key)) << key;
}

// The layout and the zoom code read one table: the committed region is the generator's output,
// and every element stands in its group where the table puts it at zoom 1.
TEST(ReticleLayoutRegion, CommittedLayoutIsTheGeneratorsOutput) {
  std::ifstream in(LAYOUT, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  const std::string layout = s.str();
  std::string regenerated, error;
  ASSERT_TRUE(splice_reticle_overlay_region(layout, &regenerated, &error)) << error;
  EXPECT_TRUE(regenerated == layout)
      << "the reticle overlay region is out of date: run reticle_layout from the repository root";
  const struct {
    const char *layout, *error;
  } broken[] = {
      {"<window>\n</window>\n", "the reticle overlay markers are missing"},
      {"<!-- reticle overlay: begin -->\n<!-- reticle overlay: begin -->\n"
       "<!-- reticle overlay: end -->\n",
       "a reticle overlay marker appears twice"},
  };
  for (const auto& b : broken) {
    EXPECT_FALSE(splice_reticle_overlay_region(b.layout, &regenerated, &error));
    EXPECT_EQ(error, b.error);
  }
}

class HomeLayoutTest : public home_test::HomeTest {};

TEST_F(HomeLayoutTest, EveryTableElementSitsInItsGroupWhereTheTableSaysAtZoom1) {
  win_ = window_open("Zavo_home_page_1");  // the bare layout, no init
  tk_testing_advance(0);
  for (const ReticleElement& e : reticle_elements()) {
    widget_t* widget = w(e.name);
    ASSERT_NE(widget, nullptr) << e.name;
    const Box at_zoom_1{reticle_coord_at(e.x, 0.0f), reticle_coord_at(e.y, 0.0f),
                        reticle_coord_at(e.w, 0.0f), reticle_coord_at(e.h, 0.0f)};
    EXPECT_EQ(box(e.name), at_zoom_1) << e.name;
    EXPECT_STREQ(widget->parent->name, kReticleGroupName[e.group]) << e.name;
    EXPECT_STREQ(widget->vt->type, e.kind == ELEMENT_LABEL ? "label" : "view") << e.name;
  }
  for (int g = 0; g < GROUP_COUNT; ++g) {
    const int size = g < GROUP_AIM1 ? 1680 : 1280;
    EXPECT_EQ(box(kReticleGroupName[g]), (Box{0, 0, size, size})) << kReticleGroupName[g];
    EXPECT_STREQ(w(kReticleGroupName[g])->parent->name,
                 g < GROUP_AIM1 ? "view_reticle_shoot" : "image_point");
  }
}

// Every handler, timer and key of the page runs; none looks up a widget the layout lacks.
TEST_F(HomeLayoutTest, EveryWidgetThePageLooksUpIsInTheLayout) {
  stUIStatus.s8WindSwitch = 1;
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8RangeType = RANGE_CONTINUOUS;
  stUIStatus.s8RangeMode = 3;
  stDevStatus.s8VideoMode = 3;
  stDevStatus.s8ReticleColour = 5;
  info[0].ballistics_sw = 1;
  open_home();
  for (int offset = 0; offset <= 65; ++offset)
    screen_event(offset);
  stUIStatus.s16BatteryValue = 560;  // the range finder's low-battery tip
  screen_event(SCREEN_EVT_LASER_SWITCH);
  stUIStatus.s8RangeMode = 0;
  for (int type = 0; type < 8; ++type) {
    stDevStatus.s8ReticleType = static_cast<char>(type);
    screen_event(SCREEN_EVT_ZOOM);
  }
  screen_event(SCREEN_EVT_BALLISTIC_RESULT);
  for (uint32_t key : {GUI_KEY_PHOTO_L, GUI_KEY_PHOTO_S, GUI_KEY_RANGE_S, GUI_KEY_RANGE_L})
    tk_testing_key_hit(key);
  tk_testing_advance(61000);  // blinks, tips, clock, storage check
  home_test::g_free_mib = 100;
  tk_testing_advance(60000);  // full card during the recording
  EXPECT_EQ(tk_testing_failed_lookups(), 0u)
      << ::testing::PrintToString(tk_testing_failed_lookup_names());
}

TEST_F(HomeLayoutTest, ObservationScreenInAFixedState) {
  stDevStatus.s8IrEnchance = 1;
  stDevStatus.s8MicroSwitch = 1;
  stDevStatus.s8RecoilState = 1;
  stDevStatus.s8RangeSwitch = 1;
  stDevStatus.s8ReticleBrightness = 2;
  info[0].gun.scope.zeroRange_yard = 100;
  IR_Cursor.group[0].u8CurrentZero = 2;
  stUIStatus.s8WifiSwitch = 1;
  stUIStatus.s8WindSwitch = 1;
  stUIStatus.wind_connect_state = 1;
  stUIStatus.s16WindSpeed = 4470;
  stUIStatus.s16CompassAzimuth = 225;
  stUIStatus.s16CompassPitch = -4;
  stUIStatus.s16CompassSlant = 2;
  open_home();
  stUIStatus.s16Distance = 3125;  // 312 m, 341 yd
  screen_event(SCREEN_EVT_DISTANCE);
  tk_testing_key_hit(GUI_KEY_PHOTO_S);  // recording for 1 min 23 s
  tk_testing_advance(83 * 1000);
  battery_report(750);
  std::string message;
  EXPECT_TRUE(tk_testing_compare_screenshot(
      "tests/home/references/ObservationScreenInAFixedState.png", 8, &message))
      << message;
}

}  // namespace
