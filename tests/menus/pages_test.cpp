// Across the pages of the menus: each opens by name from its layout with every widget its code
// looks up, in every language every text is translated, the inits refuse a missing window, and
// the USB screen follows the USB connection in USB mode 1.
#include <set>

#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using menus_test::printed;
using page_test::device_frame;

const char* const PAGES[] = {
    "Zavo_menu1",  "Zavo_menu2",      "Zavo_shortcut_menu",  "Zavo_Settings", "Zavo_DataTime",
    "Zavo_SDcard", "Zavo_formatting", "Zavo_format_restart", "Zavo_Reset",    "Zavo_Restoring",
    "Zavo_Info",   "Zavo_SHUT_DOWN",  "Zavo_updata",         "Zavo_USB",
};

class PagesTest : public menus_test::MenusTest {};

// Collects every label's text and tr_text key below `widget`.
void texts_of(widget_t* widget, std::vector<std::pair<std::string, std::string>>* out) {
  const char* key = widget_get_prop_str(widget, "tr_text", nullptr);
  if (key != nullptr && key[0] != '\0') {
    char text[256] = {0};
    widget_get_text_utf8(widget, text, sizeof(text));
    out->emplace_back(key, text);
  }
  for (int32_t i = 0; i < widget_count_children(widget); ++i)
    texts_of(widget_get_child(widget, i), out);
}

TEST_F(PagesTest, EveryPageOpensFromItsLayoutAndFindsEveryWidgetItLooksUp) {
  for (const char* page : PAGES) {
    SCOPED_TRACE(page);
    restart_at_home();
    tk_testing_clear_failed_lookups();
    open(page);
    ASSERT_EQ(top_name(), page);
    EXPECT_STREQ(widget_get_prop_str(win_, "single_instance", "false"), "true");
    EXPECT_EQ(win_->w, 1280);
    EXPECT_EQ(win_->h, 1024);
    // Every key the page handles, and the timers it starts.
    for (uint32_t k : {GUI_KEY_PHOTO_S, GUI_KEY_RANGE_S, GUI_KEY_PHOTO_S, GUI_KEY_FUCTION_S}) {
      if (top_name() == page) key(k);
    }
    advance(4000);
    EXPECT_EQ(tk_testing_failed_lookups(), 0u)
        << ::testing::PrintToString(tk_testing_failed_lookup_names());
  }
}

TEST_F(PagesTest, EveryTextIsTranslatedInTheSevenLanguages) {
  const char* locales[] = {"en_US", "zh_CN", "ru_RU", "de_DE", "fr_FR", "es_ES", "it_IT"};
  for (const char* locale : locales) {
    change_locale(locale);
    for (const char* page : PAGES) {
      SCOPED_TRACE(std::string(locale) + " " + page);
      restart_at_home();
      open(page);
      std::vector<std::pair<std::string, std::string>> texts;
      texts_of(win_, &texts);
      EXPECT_GE(texts.size(), 2u);
      for (const auto& [key, text] : texts) {
        EXPECT_FALSE(text.empty()) << key;
        EXPECT_NE(text, key) << "no " << locale << " text for " << key;
      }
    }
  }
  // The keys set from code, too.
  std::set<std::string> keys = {"menus_title_file", "menus_palette_green",       "menus_scene4",
                                "menus_updata_15",  "menus_updata_keys_restart", "menus_sd_used"};
  for (const char* locale : locales) {
    change_locale(locale);
    for (const auto& k : keys)
      EXPECT_NE(std::string(locale_info_tr(locale_info(), k.c_str())), k) << locale;
  }
}

TEST_F(PagesTest, TextsFollowALanguageChangeWhileThePageIsOpen) {
  Zavo_menu1_index = 3;
  open("Zavo_menu1");
  EXPECT_EQ(text("label_menu1_title"), "File");
  change_locale("de_DE");
  advance(0);
  EXPECT_EQ(text("label_menu1_title"), "Dateien");
}

TEST_F(PagesTest, InitsRefuseAMissingWindowWithTheirName) {
  for (const char* page : PAGES) {
    SCOPED_TRACE(page);
    page_init_t init = navigator_find_page(page);
    ASSERT_NE(init, nullptr);
    ret_t ret = RET_OK;
    const std::string out = printed([&] { ret = init(nullptr, nullptr); });
    EXPECT_EQ(ret, RET_BAD_PARAMS);
    EXPECT_EQ(out.rfind(std::string(page) + "_init:", 0), 0u) << out;
    EXPECT_NE(out.find(" condition(win != NULL) failed!\n"), std::string::npos) << out;
  }
}

TEST_F(PagesTest, UsbScreenShowsWhileAComputerIsConnectedInUsbModeOne) {
  auto usb_power = [&](uint8_t type) { from_device(device_frame(15, 0, 1, {type})); };
  stUIStatus.s8UsbMode = 0;
  usb_power(1);
  EXPECT_EQ(top_name(), "Zavo_home_page_1");  // another mode: only the observation screen's icon
  usb_power(0);
  stUIStatus.s8UsbMode = 1;
  usb_power(1);
  EXPECT_EQ(top_name(), "Zavo_USB");
  usb_power(1);  // a second report opens no second screen
  EXPECT_EQ(windows(), (Lines{"Zavo_home_page_1", "Zavo_USB"}));
  usb_power(0);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  // The power key leaves it too.
  usb_power(1);
  button(KEY_POWER_S);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

}  // namespace
