// Across the pages of the menus: each opens by name from its layout and finds every widget its
// keys and timers look up, the texts set from code are translated, and the USB screen follows the
// USB connection in USB mode 1.
#include <set>

#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using page_test::device_frame;

const char* const PAGES[] = {
    "Zavo_menu1",  "Zavo_menu2",      "Zavo_shortcut_menu",  "Zavo_Settings", "Zavo_DataTime",
    "Zavo_SDcard", "Zavo_formatting", "Zavo_format_restart", "Zavo_Reset",    "Zavo_Restoring",
    "Zavo_Info",   "Zavo_SHUT_DOWN",  "Zavo_updata",         "Zavo_USB",
};

class PagesTest : public menus_test::MenusTest {};

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

// The layouts' texts are checked in every language by the every-page test; these keys are set
// from code.
TEST_F(PagesTest, TextsSetFromCodeAreTranslatedInTheSevenLanguages) {
  const char* locales[] = {"en_US", "zh_CN", "ru_RU", "de_DE", "fr_FR", "es_ES", "it_IT"};
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
