// The reticle menu: drawn from the settings, the icon rows with their panels and titles, the
// focus that wraps between the type and exit rows and stays put while the reticle is hidden, and
// what OK does on each row.
#include <functional>

#include "pages/Zavo_reticle_pages.h"
#include "reticle_fixture.h"

namespace {

using reticle_test::ReticleTest;
using Names = std::vector<std::string>;

constexpr const char* ICONS[] = {"image_reticle_display", "image_reticle_type",
                                 "image_reticle_color",   "image_reticle_brightness",
                                 "image_reticle_zero",    "image_reticle_exit",
                                 "image_reticle_group"};
constexpr const char* ICON_NAMES[] = {"display", "type", "color", "brightness",
                                      "zero",    "exit", "group"};
constexpr const char* PANELS[] = {"view_menu_display", "view_menu_type", "view_menu_color",
                                  "view_menu_brightness", "view_menu_group"};
constexpr const char* TITLES[] = {"view_title_display",    "view_title_type", "view_title_color",
                                  "view_title_brightness", "view_title_zero", "view_title_group"};

class MenuTest : public ReticleTest {
 protected:
  // The menu over the observation screen on `row`; `settings` run after the observation screen's
  // init (which forces the reticle on).
  void open_menu(int row = 2, const std::function<void()>& settings = {}) {
    home_ = home_scene_open();
    if (settings) settings();
    sent_frames();
    Zavo_reticle_index = static_cast<uint8_t>(row);  // as the main menu sets it
    open("Zavo_reticle_menu");
  }
  // The icon rows showing their "_sel" image, by short name.
  Names selected_icons() {
    Names out;
    for (size_t i = 0; i < std::size(ICONS); ++i) {
      if (image(ICONS[i]) == std::string("Zavo_reticle_") + ICON_NAMES[i] + "_sel")
        out.push_back(ICON_NAMES[i]);
      else
        EXPECT_EQ(image(ICONS[i]), std::string("Zavo_reticle_") + ICON_NAMES[i] + "_def");
    }
    return out;
  }
  template <size_t N>
  Names shown_of(const char* const (&names)[N]) {
    Names out;
    for (const char* n : names)
      if (shown(n)) out.push_back(n);
    return out;
  }
};

TEST_F(MenuTest, OpensOnTheTypeRowWithTheSettingsDrawn) {
  stDevStatus.s8ReticleType = 3;
  stDevStatus.s8ReticleColour = 7;
  stDevStatus.s8ReticleBrightness = 1;
  open_menu();
  EXPECT_EQ(selected_icons(), (Names{"type"}));
  EXPECT_EQ(shown_of(PANELS), (Names{"view_menu_type"}));
  EXPECT_EQ(shown_of(TITLES), (Names{"view_title_type"}));
  EXPECT_EQ(state("label_type4"), "focused");
  EXPECT_EQ(state("label_type1"), "normal");
  EXPECT_EQ(state("label_bright2"), "focused");
  EXPECT_EQ(box("view_color_sel"), (page_test::Box{457, 10, 48, 48}));  // colour 8
  EXPECT_EQ(image("image_menu_switch"), "switch_large_on");
  EXPECT_EQ(w("image_reticle_type")->opacity, 255);
  EXPECT_FALSE(shown("image_reticle_group"));
  EXPECT_TRUE(init_frames_.empty());
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(MenuTest, DownAndUpWrapBetweenTheTypeAndExitRowsShowingEachRowsPanelAndTitle) {
  struct Step {
    int key;
    const char* icon;
    Names panels;
    Names titles;
  } steps[] = {
      {GUI_KEY_PHOTO_S, "color", {"view_menu_color"}, {"view_title_color"}},
      {GUI_KEY_PHOTO_S, "brightness", {"view_menu_brightness"}, {"view_title_brightness"}},
      {GUI_KEY_PHOTO_S, "zero", {}, {"view_title_zero"}},
      {GUI_KEY_PHOTO_S, "exit", {}, {}},
      {GUI_KEY_PHOTO_S, "type", {"view_menu_type"}, {"view_title_type"}},  // 6 wraps to 2
      {GUI_KEY_RANGE_S, "exit", {}, {}},                                   // 2 wraps to 6
      {GUI_KEY_RANGE_S, "zero", {}, {"view_title_zero"}},
  };
  open_menu();
  for (const Step& s : steps) {
    key(s.key);
    EXPECT_EQ(selected_icons(), (Names{s.icon}));
    EXPECT_EQ(shown_of(PANELS), s.panels) << s.icon;
    EXPECT_EQ(shown_of(TITLES), s.titles) << s.icon;
  }
  EXPECT_TRUE(sent().empty());
}

TEST_F(MenuTest, WithTheReticleHiddenTheFocusStaysTheIconsDimAndOkStillActs) {
  open_menu(3, [] { stDevStatus.s8ReticleSwitch = 0; });
  EXPECT_EQ(image("image_menu_switch"), "switch_large_off");
  for (const char* dimmed :
       {"image_reticle_type", "image_reticle_color", "image_reticle_brightness",
        "image_reticle_zero", "image_reticle_group"})
    EXPECT_EQ(w(dimmed)->opacity, 80) << dimmed;
  EXPECT_EQ(w("image_reticle_display")->opacity, 255);
  EXPECT_EQ(w("image_reticle_exit")->opacity, 255);
  key(GUI_KEY_PHOTO_S);
  key(GUI_KEY_RANGE_S);
  EXPECT_EQ(selected_icons(), (Names{"color"}));
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_COLOR value=1"}));
}

TEST_F(MenuTest, OkAdvancesTypeColourAndBrightnessWrappingToTheFirst) {
  struct Case {
    int row;
    char type, colour, light;  // the settings before
    Names frames;
    char want_type, want_colour, want_light;
    char choose;  // s8ReticleTypeColorChoose after
  } cases[] = {
      {2, 7, 0, 0, {"RETICLE RETICLE_TYPE value=0"}, 0, 0, 0, 4},  // type 8 -> 1
      {2, 2, 0, 0, {"RETICLE RETICLE_TYPE value=3"}, 3, 0, 0, 4},
      {3, 0, 7, 0, {"RETICLE RETICLE_COLOR value=0"}, 0, 0, 0, 3},  // colour 8 -> 1
      {4, 0, 0, 2, {"RETICLE RETICLE_LIGHT value=0"}, 0, 0, 0, 0},  // brightness 3 -> 1
      {4, 0, 0, 0, {"RETICLE RETICLE_LIGHT value=1"}, 0, 0, 1, 0},
  };
  for (const Case& c : cases) {
    stDevStatus.s8ReticleType = c.type;
    stDevStatus.s8ReticleColour = c.colour;
    stDevStatus.s8ReticleBrightness = c.light;
    stUIStatus.s8ReticleTypeColorChoose = 0;
    open_menu(c.row);
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(sent(), c.frames) << "row " << c.row;
    EXPECT_EQ(stDevStatus.s8ReticleType, c.want_type);
    EXPECT_EQ(stDevStatus.s8ReticleColour, c.want_colour);
    EXPECT_EQ(stDevStatus.s8ReticleBrightness, c.want_light);
    EXPECT_EQ(stUIStatus.s8ReticleTypeColorChoose, c.choose);
    EXPECT_EQ(state((std::string("label_type") + std::to_string(c.want_type + 1)).c_str()),
              "focused");
    EXPECT_EQ(state((std::string("label_bright") + std::to_string(c.want_light + 1)).c_str()),
              "focused");
    EXPECT_EQ(box("view_color_sel").x, c.want_colour * 63 + 16);
    restart();
  }
}

TEST_F(MenuTest, TheDisplayRowTogglesTheReticleAndItsDimming) {
  open_menu(1);  // not reachable by the keys; kept in the handler
  EXPECT_EQ(selected_icons(), (Names{"display"}));
  EXPECT_EQ(shown_of(PANELS), (Names{"view_menu_display"}));
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_SWITCH value=0"}));
  EXPECT_EQ(image("image_menu_switch"), "switch_large_off");
  EXPECT_EQ(w("image_reticle_zero")->opacity, 80);
  key(GUI_KEY_PHOTO_S);  // hidden: the focus stays
  EXPECT_EQ(selected_icons(), (Names{"display"}));
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(sent(), (Names{"RETICLE RETICLE_SWITCH value=1"}));
  EXPECT_EQ(w("image_reticle_zero")->opacity, 255);
  key(GUI_KEY_PHOTO_S);  // shown again: the keys move from the display row to the type row
  EXPECT_EQ(selected_icons(), (Names{"type"}));
}

TEST_F(MenuTest, ZeroExitBackAndHomeLeaveTheMenu) {
  struct Case {
    int row;
    int key;
    Names windows;
    Names frames;
  } cases[] = {
      {5, GUI_KEY_FUCTION_S, {"Zavo_home_page_1", "Zavo_reticle_move"}, {}},
      // Exit and the long function key go back to the first half of the main menu.
      {6, GUI_KEY_FUCTION_S, {"Zavo_home_page_1", "Zavo_menu1"}, {"PARAM SAVE_ALLPARAM"}},
      {3, GUI_KEY_FUCTION_L, {"Zavo_home_page_1", "Zavo_menu1"}, {}},
      {3, GUI_KEY_POWER_S, {"Zavo_home_page_1"}, {}},
  };
  for (const Case& c : cases) {
    open_menu(c.row);
    key(c.key);
    advance(0);
    EXPECT_EQ(windows(), c.windows) << c.row << " " << c.key;
    EXPECT_EQ(sent(), c.frames) << c.row << " " << c.key;
    restart();
  }
}

}  // namespace
