// The main menu: two halves of six rows that replace each other, in-place toggles and their
// frames, rows that open pages by name, the file browser refused while recording, and the hidden
// 7 s entry from the range-finder row.
#include "menus_fixture.h"

namespace {

using menus_test::Lines;
using menus_test::printed;

class MainMenuTest : public menus_test::MenusTest {
 protected:
  // The image each row of the open half shows, in row order.
  Lines row_images(const std::vector<const char*>& rows) const {
    Lines out;
    for (const char* r : rows)
      out.push_back(image(r));
    return out;
  }
};

const std::vector<const char*> MENU1_ROWS = {
    "image_Zavo_menu_PIP", "image_Zavo_menu_WIFI",    "image_Zavo_menu_file",
    "image_Zavo_menu_lrf", "image_Zavo_menu_reticle", "image_Zavo_menu_ballistic"};
const std::vector<const char*> MENU2_ROWS = {
    "image_Zavo_menu_micro",    "image_Zavo_menu_RAV",   "image_Zavo_menu_Anemometer",
    "image_Zavo_menu_settings", "image_Zavo_menu_pixel", "image_Zavo_menu_laser"};

TEST_F(MainMenuTest, TheHalvesReplaceEachOtherAtBothEnds) {
  struct Case {
    const char* from;
    uint8_t row;
    uint32_t key;
    const char* to;
    uint8_t to_row;
    const char* selected;  // the row image of the new half showing its "_sel" image
  };
  const Case cases[] = {
      {"Zavo_menu1", 6, GUI_KEY_PHOTO_S, "Zavo_menu2", 1, "Zavo_menu_mic_sel"},
      {"Zavo_menu2", 1, GUI_KEY_RANGE_S, "Zavo_menu1", 6, "Zavo_menu_ballistic_sel"},
      {"Zavo_menu1", 1, GUI_KEY_RANGE_S, "Zavo_menu2", 6, "Zavo_menu_laser_sel"},
      {"Zavo_menu2", 6, GUI_KEY_PHOTO_S, "Zavo_menu1", 1, "Zavo_menu_pip_sel"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.from) + " row " + std::to_string(c.row));
    restart_at_home();
    Zavo_menu1_index = c.row;
    Zavo_menu2_index = c.row;
    open(c.from);
    key(c.key);
    advance(0);
    EXPECT_EQ(windows(), (Lines{"Zavo_home_page_1", c.to}));  // only one half is ever open
    win_ = top();
    const bool first = std::string(c.to) == "Zavo_menu1";
    EXPECT_EQ(first ? Zavo_menu1_index : Zavo_menu2_index, c.to_row);
    const Lines images = row_images(first ? MENU1_ROWS : MENU2_ROWS);
    EXPECT_EQ(images[c.to_row - 1], c.selected);
    EXPECT_EQ(std::count_if(images.begin(), images.end(),
                            [](const std::string& s) { return s.ends_with("_sel"); }),
              1);
  }
  EXPECT_EQ(sent(), Lines{});  // moving sends nothing
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(MainMenuTest, FirstHalfShowsTheRowItsTitleAndTheWifiSwitchOnlyOnItsRow) {
  stUIStatus.s8WifiSwitch = 1;
  open("Zavo_menu1");
  EXPECT_EQ(row_images(MENU1_ROWS)[0], "Zavo_menu_pip_sel");
  EXPECT_EQ(text("label_menu1_title"), "PIP");
  EXPECT_FALSE(shown("image_WIFI_switch"));
  EXPECT_EQ(image("image_WIFI_switch"), "switch_large_on");
  const struct {
    const char* title;
    const char* title_image;
    bool wifi_switch;
  } rows[] = {{"Wi-Fi", "Zavo_title_wifi", true},
              {"File", "Zavo_title_file", false},
              {"LRF", "Zavo_title_lrf", false},
              {"Reticle", "Zavo_title_reticle", false},
              {"Ballistic Calc", "Zavo_title_ballistic", false}};
  int row = 2;
  for (const auto& r : rows) {
    key(GUI_KEY_PHOTO_S);
    SCOPED_TRACE(row);
    EXPECT_EQ(Zavo_menu1_index, row);
    EXPECT_TRUE(image(MENU1_ROWS[row - 1]).ends_with("_sel"));
    EXPECT_TRUE(image(MENU1_ROWS[row - 2]).ends_with("_def"));
    EXPECT_EQ(text("label_menu1_title"), r.title);
    EXPECT_EQ(image("image_menu1_title"), r.title_image);
    EXPECT_EQ(shown("image_WIFI_switch"), r.wifi_switch);
    EXPECT_FALSE(shown("bg_menu_lrf"));
    ++row;
  }
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(MainMenuTest, OpeningOnTheWifiOrRangeFinderRowKeepsTheLayoutsTitleUntilTheFirstKey) {
  // Rows 2 and 4 start not selected, with the title the layout gives; rows 1, 5 and 6 start
  // selected with their own title.
  Zavo_menu1_index = 4;
  open("Zavo_menu1");
  EXPECT_EQ(row_images(MENU1_ROWS)[3], "Zavo_menu_lrf_def");
  EXPECT_EQ(text("label_menu1_title"), "PIP");
  restart_at_home();
  Zavo_menu1_index = 5;
  open("Zavo_menu1");
  EXPECT_EQ(row_images(MENU1_ROWS)[4], "Zavo_menu_reticle_sel");
  EXPECT_EQ(text("label_menu1_title"), "Reticle");
}

TEST_F(MainMenuTest, SecondHalfShowsOneTitleAndTheSwitchesOnTheirRows) {
  stDevStatus.s8MicroSwitch = 1;
  stUIStatus.s8WindSwitch = 0;
  open("Zavo_menu2");
  const std::vector<const char*> titles = {
      "Zavo_menu2_title_micro",   "Zavo_menu2_title_RAV",   "Zavo_menu2_title_Anemometer",
      "Zavo_menu2_title_setting", "Zavo_menu2_title_pixel", "Zavo_menu2_title_laser"};
  auto shown_titles = [&] {
    Lines out;
    for (const char* t : titles)
      if (shown(t)) out.push_back(t);
    return out;
  };
  EXPECT_EQ(shown_titles(), Lines{"Zavo_menu2_title_micro"});
  EXPECT_TRUE(shown("image_micro_switch"));
  EXPECT_EQ(image("image_micro_switch"), "switch_large_on");
  EXPECT_FALSE(shown("image_anem_switch"));
  for (int row = 2; row <= 6; ++row) {
    key(GUI_KEY_PHOTO_S);
    SCOPED_TRACE(row);
    EXPECT_EQ(shown_titles(), Lines{titles[row - 1]});
    EXPECT_EQ(shown("image_micro_switch"), false);
    EXPECT_EQ(shown("image_anem_switch"), row == 3);
  }
  // Entering on a middle row shows the laser title until the first key.
  restart_at_home();
  Zavo_menu2_index = 3;
  open("Zavo_menu2");
  EXPECT_EQ(shown_titles(), Lines{"Zavo_menu2_title_laser"});
  EXPECT_EQ(row_images(MENU2_ROWS)[2], "Zavo_menu_wind_def");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(MainMenuTest, SwitchRowsToggleInPlaceWriteTheRecordAndTellTheDevice) {
  struct Case {
    const char* page;
    uint8_t row;
    const char* switch_image;
    const char* frame;  // decoded, with the new value
  };
  const Case cases[] = {
      {"Zavo_menu1", 2, "image_WIFI_switch", "WIFI WIFI_SWITCH value=1"},
      {"Zavo_menu2", 1, "image_micro_switch", "BASIC BASIC_MICRO value=1"},
      {"Zavo_menu2", 3, "image_anem_switch", "BASIC BASIC_WIND_SWITCH value=1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.frame);
    restart_at_home();
    Zavo_menu1_index = c.row;
    Zavo_menu2_index = c.row;
    open(c.page);
    sent_frames();
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(image(c.switch_image), "switch_large_on");
    EXPECT_EQ(sent(), Lines{c.frame});
    key(GUI_KEY_FUCTION_S);
    EXPECT_EQ(image(c.switch_image), "switch_large_off");
    std::string off = c.frame;
    off.back() = '0';
    EXPECT_EQ(sent(), Lines{off});
    EXPECT_EQ(top_name(), c.page);  // toggles stay on the menu
  }
  EXPECT_EQ(stUIStatus.s8WifiSwitch, 0);
  EXPECT_EQ(stDevStatus.s8MicroSwitch, 0);
  EXPECT_EQ(stUIStatus.s8WindSwitch, 0);
}

TEST_F(MainMenuTest, RowsOpenTheirPagesByName) {
  struct Case {
    const char* page;
    uint8_t row;
    const char* opens;
  };
  const Case cases[] = {
      {"Zavo_menu1", 1, "Zavo_PIP_menu"},    {"Zavo_menu1", 3, "Zavo_file_menu"},
      {"Zavo_menu1", 4, "Zavo_lrf_menu"},    {"Zavo_menu1", 6, "Zavo_ballistic_menu"},
      {"Zavo_menu2", 2, "Zavo_Recoil_menu"}, {"Zavo_menu2", 4, "Zavo_Settings"},
      {"Zavo_menu2", 6, "Zavo_Laser_menu"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.opens);
    restart_at_home();
    Zavo_menu1_index = c.row;
    Zavo_menu2_index = c.row;
    open(c.page);
    key(GUI_KEY_FUCTION_S);
    advance(0);
    EXPECT_TRUE(requested(c.opens));
    // The menu stays under the page it opened.
    EXPECT_NE(widget_child(window_manager(), c.page), nullptr);
  }
  EXPECT_EQ(sent(), Lines{});
}

TEST_F(MainMenuTest, ReticleAndPixelRowsLeaveTheMenuFirst) {
  Zavo_menu1_index = 5;
  Zavo_reticle_index = 4;
  open("Zavo_menu1");
  key(GUI_KEY_FUCTION_S);
  advance(0);
  EXPECT_EQ(widget_child(window_manager(), "Zavo_menu1"), nullptr);
  EXPECT_EQ(Zavo_reticle_index, 2);
  EXPECT_TRUE(requested("Zavo_reticle_menu"));

  restart_at_home();
  Zavo_menu2_index = 5;
  open("Zavo_menu2");
  key(GUI_KEY_FUCTION_S);
  advance(0);
  EXPECT_EQ(widget_child(window_manager(), "Zavo_menu2"), nullptr);
  EXPECT_TRUE(requested("Zavo_pixel_menu"));
}

TEST_F(MainMenuTest, FileBrowserIsRefusedWhileRecordingWithOneTipTimer) {
  stUIStatus.s8RecordingState = 1;
  Zavo_menu1_index = 3;
  open("Zavo_menu1");
  key(GUI_KEY_FUCTION_S);
  EXPECT_TRUE(shown("view_tip_record"));
  advance(1500);
  key(GUI_KEY_FUCTION_S);  // within the 2 s: no second timer
  advance(500);
  EXPECT_FALSE(shown("view_tip_record"));  // 2 s after the first press
  key(GUI_KEY_FUCTION_S);                  // a new tip, a new timer
  advance(1600);  // a timer of the second press would have hidden it at 3500 ms
  EXPECT_TRUE(shown("view_tip_record"));
  advance(400);
  EXPECT_FALSE(shown("view_tip_record"));
  EXPECT_EQ(top_name(), "Zavo_menu1");
  EXPECT_FALSE(requested("Zavo_file_menu"));
}

TEST_F(MainMenuTest, FileBrowserIsRefusedWhileARecoilVideoBlinks) {
  screen_event(SCREEN_EVT_RECOIL_TRIGGERED);  // the observation screen starts its RAV blink
  ASSERT_NE(timer_id_RAV, 0u);
  Zavo_menu1_index = 3;
  open("Zavo_menu1");
  key(GUI_KEY_FUCTION_S);
  EXPECT_TRUE(shown("view_tip_record"));
  EXPECT_FALSE(requested("Zavo_file_menu"));
}

TEST_F(MainMenuTest, ContinuousRangingStopsBeforeTheFileBrowserOpens) {
  stUIStatus.s8RangeMode = 3;
  Zavo_menu1_index = 3;
  open("Zavo_menu1");
  sent_frames();
  key(GUI_KEY_FUCTION_S);
  advance(0);
  EXPECT_EQ(sent(), Lines{"RANGE MEASURE value=0"});
  EXPECT_TRUE(requested("Zavo_file_menu"));
}

TEST_F(MainMenuTest, HiddenEntryNeedsTheLongPressHeldSevenSecondsOnTheRangeFinderRow) {
  struct Case {
    uint8_t row;
    uint32_t hold, release;
    uint32_t held_ms;
    const char* opens;  // null: nothing opens
  };
  const Case cases[] = {
      {4, GUI_KEY_PHOTO_L, GUI_KEY_PHOTO_L_POP, 7100, "Zavo_laser_move"},
      {4, GUI_KEY_RANGE_L, GUI_KEY_RANGE_L_POP, 7100, "Zavo_range_move"},
      {4, GUI_KEY_PHOTO_L, GUI_KEY_PHOTO_L_POP, 6900, nullptr},  // released early
      {4, GUI_KEY_RANGE_L, GUI_KEY_RANGE_L_POP, 6900, nullptr},
      {3, GUI_KEY_PHOTO_L, GUI_KEY_PHOTO_L_POP, 9000, nullptr},  // another row
      {5, GUI_KEY_RANGE_L, GUI_KEY_RANGE_L_POP, 9000, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.row) + " " + std::to_string(c.hold) + " " +
                 std::to_string(c.held_ms));
    restart_at_home();
    Zavo_menu1_index = c.row;
    open("Zavo_menu1");
    key(c.hold);
    advance(c.held_ms);
    key(c.release);
    advance(3000);
    if (c.opens != nullptr) {
      EXPECT_TRUE(requested(c.opens));
      EXPECT_EQ(widget_child(window_manager(), "Zavo_menu1"), nullptr);
    } else {
      EXPECT_EQ(windows(), (Lines{"Zavo_home_page_1", "Zavo_menu1"}));
      EXPECT_FALSE(requested("Zavo_laser_move"));
      EXPECT_FALSE(requested("Zavo_range_move"));
    }
    EXPECT_EQ(enter_laser_move_menu, 0);
    EXPECT_EQ(enter_range_move_menu, 0);
  }
}

TEST_F(MainMenuTest, LeavingTheMenuCancelsTheHiddenEntry) {
  Zavo_menu1_index = 4;
  open("Zavo_menu1");
  key(GUI_KEY_PHOTO_L);
  advance(3000);
  key(GUI_KEY_FUCTION_L);  // back to the observation screen while still held
  advance(6000);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
  EXPECT_FALSE(requested("Zavo_laser_move"));
}

TEST_F(MainMenuTest, FunctionHeldOrPowerGoBackToTheObservationScreen) {
  for (const char* page : {"Zavo_menu1", "Zavo_menu2"}) {
    for (uint32_t k : {GUI_KEY_FUCTION_L, GUI_KEY_POWER_S}) {
      SCOPED_TRACE(std::string(page) + " " + std::to_string(k));
      open(page);
      key(k);
      advance(0);
      EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
    }
  }
  // Other keys do nothing.
  open("Zavo_menu1");
  keys({GUI_KEY_FOCUS_UP_S, GUI_KEY_FOCUS_DOWN_S, GUI_KEY_UP_POWER_L, GUI_KEY_POWER_L_POP});
  EXPECT_EQ(windows(), (Lines{"Zavo_home_page_1", "Zavo_menu1"}));
  EXPECT_EQ(Zavo_menu1_index, 1);
}

TEST_F(MainMenuTest, TheObservationScreensLongFunctionKeyOpensTheFirstHalfThroughTheLink) {
  button(KEY_FUCTION_L);
  EXPECT_EQ(top_name(), "Zavo_menu1");
  EXPECT_EQ(Zavo_menu1_index, 1);
  button(KEY_PHOTO_S);
  button(KEY_PHOTO_S);
  win_ = top();
  EXPECT_EQ(text("label_menu1_title"), "File");
  button(KEY_FUCTION_L);
  EXPECT_EQ(windows(), Lines{"Zavo_home_page_1"});
}

TEST_F(MainMenuTest, InitsPrintTheirEndLines) {
  EXPECT_EQ(printed([&] { open("Zavo_menu1"); }),
            "name  =============Zavo_menu1\nZavo_menu1_init----------------end\n");
  EXPECT_EQ(printed([&] { open("Zavo_menu2"); }),
            "name  =============Zavo_menu2\nZavo_menu2_init----------------end\n");
}

}  // namespace
