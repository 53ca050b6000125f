// The image shortcut menu: moving between the five items, stepping their values with wraps, the
// value rows (1..5 and 6..10, palette swatches), the header after a step, and the frames.
#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using menus_test::printed;
using page_test::decoded;

// The labels of a value row, their texts and which one is focused ("" when none).
struct Row {
  Lines texts;
  std::string focused;
  bool operator==(const Row&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Row& r) {
  os << "{";
  for (const auto& t : r.texts)
    os << t << " ";
  return os << "focused " << r.focused << "}";
}

class ShortcutMenuTest : public menus_test::MenusTest {
 protected:
  Row value_row(const char* prefix, int count) const {
    Row row;
    for (int i = 1; i <= count; ++i) {
      const std::string name = prefix + std::to_string(i);
      row.texts.push_back(text(name.c_str()));
      if (state(name.c_str()) == WIDGET_STATE_FOCUSED) row.focused = row.texts.back();
    }
    return row;
  }
  // The widgets of `names` that are visible.
  Lines visible(const Lines& names) const {
    Lines out;
    for (const auto& n : names)
      if (shown(n.c_str())) out.push_back(n);
    return out;
  }
  const Lines titles = {"Zavo_title_scene", "Zavo_title_colormap", "Zavo_title_brightness",
                        "Zavo_title_contrast", "Zavo_title_Irenchance"};
  const Lines highlights = {"Zavo_bg_scene_menu_sel", "Zavo_bg_pallette_menu_sel",
                            "Zavo_bg_brightness_menu_sel", "Zavo_bg_contrast_menu_sel",
                            "Zavo_bg_enchance_menu_sel"};
  const Lines value_views = {"Zavo_label_title_scene",   "Zavo_label_title_palette",
                             "Zavo_progress_brightness", "Zavo_progress_contrast",
                             "Zavo_progress_enhance",    "progress_bar",
                             "view_Irenhance_display"};
};

TEST_F(ShortcutMenuTest, BrightnessTenStepsToOneAndItsLabelsSwitchBackToOneToFive) {
  stDevStatus.s8IrBrightness = 9;
  open("Zavo_shortcut_menu");
  keys({GUI_KEY_PHOTO_S, GUI_KEY_PHOTO_S});  // scene, palette, brightness
  EXPECT_EQ(value_row("Zavo_label_brightness", 5), (Row{{"6", "7", "8", "9", "10"}, "9"}));
  sent_frames();
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stDevStatus.s8IrBrightness, 10);
  EXPECT_EQ(value_row("Zavo_label_brightness", 5), (Row{{"6", "7", "8", "9", "10"}, "10"}));
  EXPECT_EQ(widget_get_value_int(w("progress_bar")), 100);
  key(GUI_KEY_FUCTION_S);
  EXPECT_EQ(stDevStatus.s8IrBrightness, 1);
  EXPECT_EQ(brightness_menu_num, 1);
  EXPECT_EQ(value_row("Zavo_label_brightness", 5), (Row{{"1", "2", "3", "4", "5"}, "1"}));
  EXPECT_EQ(widget_get_value_int(w("progress_bar")), 10);
  EXPECT_EQ(visible(value_views), (Lines{"Zavo_progress_brightness", "progress_bar"}));
  EXPECT_EQ(visible(titles), Lines{});  // the header shows the bar instead of the title
  EXPECT_EQ(sent(), (Lines{"INFRARED INFRARED_LIGHT value=10", "INFRARED INFRARED_LIGHT value=1"}));
}

TEST_F(ShortcutMenuTest, EveryItemStepsItsValueWithItsWrapAndItsFrame) {
  struct Case {
    int item;  // presses of photo from the scene
    char* field;
    int start, steps, end;
    const char* frame;
    const char* view;  // the header shown after the step
  };
  const Case cases[] = {
      {0, &stDevStatus.s8IrScene, 4, 1, 1, "INFRARED INFRARED_SCENE value=1",
       "Zavo_label_title_scene"},
      {1, &stDevStatus.s8IrPolarity, 4, 1, 0, "INFRARED INFRARED_POLARITY value=0",
       "Zavo_label_title_palette"},
      {3, &stDevStatus.s8IrContrast, 10, 2, 2, "INFRARED INFRARED_CONTRACT value=2",
       "Zavo_progress_contrast"},
      {4, &stDevStatus.s8IrEnchance, 5, 1, 1, "INFRARED INFRARED_ENHANCE value=1",
       "Zavo_progress_enhance"},
      {4, &stDevStatus.s8IrEnchance, 2, 1, 3, "INFRARED INFRARED_ENHANCE value=3",
       "Zavo_progress_enhance"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.frame);
    restart_at_home();
    *c.field = static_cast<char>(c.start);
    open("Zavo_shortcut_menu");
    for (int i = 0; i < c.item; ++i)
      key(GUI_KEY_PHOTO_S);
    sent_frames();
    for (int i = 0; i < c.steps; ++i)
      key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(*c.field, c.end);
    const Lines frames = sent();
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames.back(), c.frame);
    EXPECT_TRUE(shown(c.view));
  }
}

TEST_F(ShortcutMenuTest, PaletteFiveStepsToWhiteHot) {
  stDevStatus.s8IrPolarity = 4;  // green monochrome
  open("Zavo_shortcut_menu");
  EXPECT_EQ(colormap_menu_num, 5);
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(image("Zavo_image_greenhot"), "Zavo_pallette_green_sel");
  sent_frames();
  std::string out = printed([&] { key(GUI_KEY_FUCTION_S); });
  EXPECT_NE(out.find("colormap_menu_num = 1\n"), std::string::npos) << out;
  EXPECT_EQ(stDevStatus.s8IrPolarity, 0);
  EXPECT_EQ(text("Zavo_label_title_palette"), "White Hot");
  // Position 1 is the white-hot swatch in the widget named after black hot (crossed names).
  EXPECT_EQ(image("Zavo_image_blackhot"), "Zavo_pallette_white_sel");
  EXPECT_EQ(image("Zavo_image_whitehot"), "Zavo_pallette_black_def");
  EXPECT_EQ(image("Zavo_image_greenhot"), "Zavo_pallette_green_def");
  EXPECT_EQ(sent(), Lines{"INFRARED INFRARED_POLARITY value=0"});
  // The observation screen's palette icon follows (the sender raises its event).
  home_scene_settle();
  EXPECT_EQ(std::string(widget_get_prop_str(widget_lookup(home_, "image_Zavo_colormap", TRUE),
                                            "image", "")),
            "Zavo_status_whitehot");
  const char* names[] = {"Black Hot", "Red Hot", "Red Monochrome", "Green Monochrome", "White Hot"};
  for (const char* name : names) {
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(text("Zavo_label_title_palette"), name);
  }
}

TEST_F(ShortcutMenuTest, InitCapsTheStoredValues) {
  struct Case {
    int polarity, brightness, contrast, enhance;
    int palette_position, brightness_num, contrast_num, enhance_num;
  };
  const Case cases[] = {
      {0, 1, 1, 1, 1, 1, 1, 1},      {2, 5, 6, 3, 3, 5, 6, 3}, {4, 10, 10, 5, 5, 10, 10, 5},
      {7, 12, 200, 9, 5, 10, 10, 5}, {0, 0, 0, 0, 1, 0, 0, 0},  // no lower bound: a stored 0 stays
                                                                // 0
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.polarity);
    restart_at_home();
    stDevStatus.s8IrPolarity = static_cast<char>(c.polarity);
    stDevStatus.s8IrBrightness = static_cast<char>(c.brightness);
    stDevStatus.s8IrContrast = static_cast<char>(c.contrast);
    stDevStatus.s8IrEnchance = static_cast<char>(c.enhance);
    open("Zavo_shortcut_menu");
    EXPECT_EQ(colormap_menu_num, c.palette_position);
    EXPECT_EQ(brightness_menu_num, c.brightness_num);
    EXPECT_EQ(contract_menu_num, c.contrast_num);
    EXPECT_EQ(enchance_menu_num, c.enhance_num);
  }
  // A stored enhancement of 0 focuses no label; the first step gives 1.
  EXPECT_EQ(value_row("Zavo_label_enhance", 5).focused, "");
  keys({GUI_KEY_RANGE_S, GUI_KEY_FUCTION_S});
  EXPECT_EQ(stDevStatus.s8IrEnchance, 1);
  EXPECT_EQ(value_row("Zavo_label_enhance", 5).focused, "1");
}

TEST_F(ShortcutMenuTest, ItemsMoveWithWrapShowingOneHighlightAndTitleAndSendingNothing) {
  stDevStatus.s8IrScene = 2;
  open("Zavo_shortcut_menu");
  EXPECT_EQ(Zavo_menu_index, 1);
  EXPECT_EQ(image("Zavo_image_scene"), "Zavo_scene_sel");
  EXPECT_EQ(visible(highlights), Lines{"Zavo_bg_scene_menu_sel"});
  EXPECT_EQ(visible(titles), Lines{"Zavo_title_scene"});
  EXPECT_EQ(visible(value_views), Lines{});
  EXPECT_EQ(value_row("Zavo_label_scene", 4).focused, "2");
  key(GUI_KEY_FUCTION_S);  // a header value, hidden again by the next move
  sent_frames();
  const int expected[] = {5, 4, 3, 2, 1, 5};
  for (int item : expected) {
    key(GUI_KEY_RANGE_S);
    EXPECT_EQ(Zavo_menu_index, item);
    EXPECT_EQ(visible(highlights), Lines{highlights[item - 1]});
    EXPECT_EQ(visible(titles), Lines{titles[item - 1]});
    EXPECT_EQ(visible(value_views), Lines{});
  }
  key(GUI_KEY_PHOTO_S);
  EXPECT_EQ(Zavo_menu_index, 1);
  EXPECT_EQ(image("Zavo_image_Irenchance"), "Zavo_Irenchance_def");
  EXPECT_EQ(image("Zavo_image_scene"), "Zavo_scene_sel");
  EXPECT_EQ(sent(), Lines{});
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(ShortcutMenuTest, OpeningTakesTheScopeOutOfUsbModeOne) {
  for (int mode : {0, 1, 2}) {
    SCOPED_TRACE(mode);
    restart_at_home();
    sent_frames();
    stUIStatus.s8UsbMode = static_cast<char>(mode);
    open("Zavo_shortcut_menu");
    EXPECT_EQ(stUIStatus.s8UsbMode, mode == 1 ? 0 : mode);
    EXPECT_EQ(decoded(init_frames_), mode == 1 ? Lines{"BASIC BASIC_USB_TYPE value=0"} : Lines{});
  }
}

TEST_F(ShortcutMenuTest, TheObservationScreensFunctionKeyOpensItAndItsKeysLeave) {
  button(KEY_FUCTION_S);
  EXPECT_EQ(top_name(), "Zavo_shortcut_menu");
  button(KEY_FUCTION_L);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  button(KEY_FUCTION_S);
  button(KEY_POWER_S);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

}  // namespace
