// The navigator: the page table and opening, replacing, switching and closing by window name,
// through the host toolkit under the test clock, and menu index stepping with the keys. The
// layouts (res/) are named after pages of the page table and one outside it.
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "../startup/tree_fixture.h"
#include "common/common_function.h"
#include "common/navigator.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

using names = std::vector<std::string>;

class Navigator : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { tk_testing_init_ex(1280, 1024, NAVIGATOR_TEST_RES); }
  void SetUp() override {
    tk_testing_reset();
    tk_testing_capture_log(true);
  }
  // A navigator call followed by the toolkit's open and close sequence; returns its result.
  static ret_t settled(ret_t ret) {
    tk_testing_advance(0);
    return ret;
  }
};

TEST(PageTable, HoldsEveryPage) {
  std::istringstream pages(
      "Zavo_Laser_menu Zavo_lrf_menu Zavo_PIP_menu Zavo_laser_move Zavo_range_move Zavo_updata "
      "Zavo_tip_ballistic Zavo_wind Zavo_bullistic_lens Zavo_ballistic_bullet "
      "Zavo_ballistic_zeroweather Zavo_ballistic_weather Zavo_ballistic_menu Zavo_Recoil_menu "
      "Zavo_home_page Zavo_SHUT_DOWN Zavo_Init Boot_logo Zavo_file_video Zavo_file_video_1 "
      "Zavo_compass_menu Zavo_compass_1 Zavo_pixel_save Zavo_pixel_child Zavo_reticle_zero "
      "Zavo_home_page_1 Zavo_reticle_move Zavo_reticle_zero_child Zavo_reticle_menu "
      "Zavo_file_image Zavo_file_menu Zavo_Magnetic_declination Zavo_vertical_correction "
      "Zavo_level_correction Zavo_pixel_menu Zavo_Anemometer Zavo_format_restart Zavo_formatting "
      "Zavo_Restoring Zavo_SDcard Zavo_Info Zavo_USB Zavo_Reset Zavo_DataTime Zavo_Settings "
      "Zavo_menu2 Zavo_menu1 Zavo_shortcut_menu");
  int count = 0;
  for (std::string page; pages >> page; ++count)
    EXPECT_NE(navigator_find_page(page.c_str()), nullptr) << page;
  EXPECT_EQ(count, 48);
  EXPECT_EQ(navigator_find_page("zavo_menu1"), nullptr);
  EXPECT_EQ(navigator_find_page(nullptr), nullptr);
}

TEST_F(Navigator, MissingTargetsAndWindowsAreRefusedWithTheirLines) {
  const std::string out = printed_by([] {
    EXPECT_EQ(navigator_to(""), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_to(nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_replace(""), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_switch_to(nullptr, TRUE), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_close(""), RET_BAD_PARAMS);
    EXPECT_EQ(navigator_request_close(nullptr), RET_BAD_PARAMS);
    EXPECT_EQ(settled(navigator_to("Zavo_menu3")), RET_FAIL);  // no such layout
    EXPECT_EQ(navigator_close("Zavo_Settings"), RET_FAIL);     // not open
    EXPECT_EQ(navigator_request_close("Zavo_Info"), RET_FAIL);
  });
  EXPECT_TRUE(tk_testing_window_names().empty());
  std::string checks;  // the check lines without their line numbers; the toolkit says more
  const std::regex check("(\\w+):[0-9]+( condition\\(.*\\) failed!\n)");
  for (std::sregex_iterator it(out.begin(), out.end(), check), end; it != end; ++it)
    checks += (*it)[1].str() + (*it)[2].str();
  const std::string no_target = " condition(target != NULL &&* target != '\\0') failed!\n";
  const std::string no_window = " condition(win != NULL) failed!\n";
  EXPECT_EQ(checks, "navigator_to_with_context" + no_target + "navigator_to_with_context" +
                        no_target + "navigator_replace" + no_target + "navigator_switch_to" +
                        no_target + "navigator_close" + no_target + "navigator_request_close" +
                        no_target + "navigator_window_open_and_close" + no_window +
                        "navigator_close" + no_window + "navigator_request_close" + no_window);
  // The same lines reach the toolkit's log at error level.
  EXPECT_TRUE(tk_testing_log_contains("condition(target != NULL &&* target != '\\0') failed!"));
}

TEST_F(Navigator, PagesOpenWithTheirInitAndSingleInstancePagesStartOver) {
  // The page's own init runs on the test layout after the navigator's line (its widgets are not
  // there; a debug toolkit says so).
  std::string out = printed_by([] { EXPECT_EQ(settled(navigator_to("Zavo_Settings")), RET_OK); });
  EXPECT_EQ(out.rfind("name  =============Zavo_Settings\n", 0), 0u) << out;
  out = printed_by([] { EXPECT_EQ(settled(navigator_to("outside_table")), RET_OK); });
  EXPECT_EQ(out, "");  // no init outside the table
  EXPECT_EQ(settled(navigator_to("Zavo_Settings")), RET_OK);
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_Settings", "outside_table", "Zavo_Settings"}));

  ASSERT_EQ(settled(navigator_to("Zavo_Info")), RET_OK);
  widget_set_prop_str(widget_child(window_manager(), "Zavo_Info"), "opened", "first");
  out = printed_by([] { EXPECT_EQ(settled(navigator_to("Zavo_Info")), RET_OK); });
  // The init ran again (the page's own lines may follow the navigator's).
  EXPECT_EQ(out.rfind("name  =============Zavo_Info\n", 0), 0u) << out;
  EXPECT_EQ(tk_testing_window_names(),
            (names{"Zavo_Settings", "outside_table", "Zavo_Settings", "Zavo_Info"}));
  EXPECT_STREQ(widget_get_prop_str(widget_child(window_manager(), "Zavo_Info"), "opened", "new"),
               "new");
}

TEST_F(Navigator, SwitchReplaceAndClose) {
  ASSERT_EQ(settled(navigator_to("Zavo_Settings")), RET_OK);
  ASSERT_EQ(settled(navigator_to("Zavo_Info")), RET_OK);
  // Switching to an open window brings it up without running its init again.
  const std::string out =
      printed_by([] { EXPECT_EQ(settled(navigator_switch_to("Zavo_Settings", FALSE)), RET_OK); });
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_Info", "Zavo_Settings"}));
  EXPECT_EQ(out, "");
  EXPECT_EQ(settled(navigator_switch_to("Zavo_Info", TRUE)), RET_OK);
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_Info"});
  EXPECT_EQ(settled(navigator_switch_to("Zavo_Settings", TRUE)), RET_OK);  // not open: opened
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_Info", "Zavo_Settings"}));

  EXPECT_EQ(settled(navigator_replace("Zavo_Reset")), RET_OK);
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_Info", "Zavo_Reset"}));
  EXPECT_TRUE(tk_testing_log_contains("close current window: Zavo_Settings"));
  EXPECT_EQ(settled(navigator_close("Zavo_Info")), RET_OK);
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_Reset"});
}

TEST_F(Navigator, BackClosesTheTopWindowAndBackToHomeAllAboveTheFirst) {
  for (const char* name : {"Zavo_Settings", "Zavo_Info", "outside_table"})
    ASSERT_EQ(settled(navigator_to(name)), RET_OK);
  settled(navigator_back());  // the window's close request (its result: the dispatch's)
  EXPECT_EQ(tk_testing_window_names(), (names{"Zavo_Settings", "Zavo_Info"}));
  ASSERT_EQ(settled(navigator_to("outside_table")), RET_OK);
  // Back to the home window (the lowest normal window), closing everything above it at once.
  EXPECT_EQ(navigator_back_to_home(), RET_OK);
  EXPECT_EQ(tk_testing_window_names().size(), 3u) << "the closing happens in an idle";
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_Settings"});
  EXPECT_EQ(settled(navigator_back_to_home()), RET_OK);  // already home: nothing closes
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_Settings"});
}

TEST_F(Navigator, RequestCloseLetsThePageRefuse) {
  ASSERT_EQ(settled(navigator_to("Zavo_Reset")), RET_OK);  // closable="confirm": the page decides
  int asked = 0;
  widget_on(
      widget_child(window_manager(), "Zavo_Reset"), EVT_REQUEST_CLOSE_WINDOW,
      [](void* ctx, event_t*) -> ret_t {
        ++*static_cast<int*>(ctx);
        return RET_OK;  // refused: the window stays
      },
      &asked);
  EXPECT_EQ(settled(navigator_request_close("Zavo_Reset")), RET_OK);
  EXPECT_EQ(asked, 1);
  ASSERT_EQ(settled(navigator_to("Zavo_Settings")), RET_OK);  // closable by default
  EXPECT_EQ(settled(navigator_request_close("Zavo_Settings")), RET_OK);
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_Reset"});
}

TEST_F(Navigator, DialogsRunModallyUnlessToModalIsFalse) {
  EXPECT_EQ(settled(navigator_to("Zavo_Restoring")), RET_OK);  // to_modal="false": at once
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_Restoring"});
  timer_add(
      [](const timer_info_t*) -> ret_t {
        dialog_quit(widget_child(window_manager(), "Zavo_SHUT_DOWN"), DIALOG_QUIT_OK);
        return RET_REMOVE;
      },
      nullptr, 300);
  EXPECT_EQ(settled(navigator_to("Zavo_SHUT_DOWN")), static_cast<ret_t>(DIALOG_QUIT_OK));
  EXPECT_EQ(tk_testing_window_names(), names{"Zavo_Restoring"});
}

TEST(IndexStepping, BoundedAndCyclicSteps) {
  struct {
    int32_t key, min, max, current, mode, expected;
    const char* printed;
  } steps[] = {
      {GUI_KEY_PHOTO_S, 0, 3, 3, 0, 0, ""},     // down past the last row wraps to the first
      {GUI_KEY_PHOTO_S, 0, 3, 2, 0, 3, ""},     // but from the row before it reaches the last
      {GUI_KEY_FOCUS_UP_S, 0, 3, 1, 0, 0, ""},  // and from the second row the first
      {GUI_KEY_FOCUS_UP_S, 0, 3, 0, 0, 3, ""},  // any other key steps down, wrapping to the last
      {GUI_KEY_RANGE_S, 0, 3, 1, 0, 0, ""},     // in mode 0 the range keys step down
      {GUI_KEY_PHOTO_L, 1, 10, 4, 0, 5, ""},
      {GUI_KEY_RANGE_S, 0, 9, 9, 1, 0, ""},  // in other modes the range keys step up
      {GUI_KEY_RANGE_L, 0, 9, 3, 2, 4, ""},
      {GUI_KEY_PHOTO_S, 0, 9, 0, 1, 9, ""},                             // and the photo keys down
      {GUI_KEY_PHOTO_S, 0, 3, 7, 0, 0, "!!!!!!!!!!para null error\n"},  // stepped anyway
      {GUI_KEY_PHOTO_S, 5, 2, 3, 0, 5,
       "!!!!!!!!!!para null error\n!!!!!!!!!!para minval(5) > maxval(2) error\n"},
  };
  for (const auto& c : steps) {
    int32_t result = 0;
    const std::string out =
        printed_by([&] { result = getIndexVal(c.key, c.min, c.max, c.current, c.mode); });
    EXPECT_EQ(result, c.expected) << "key " << c.key << " from " << c.current << " mode " << c.mode;
    EXPECT_EQ(out, c.printed);
  }

  struct {
    int32_t min, max, current, expected;
    const char* printed;
  } cycles[] = {
      {1, 3, 3, 1, ""},
      {1, 3, 2, 3, ""},  // the last is reached from the one before
      {0, 2, 5, 0, "!!!!!!!!!!cycle para null error\n"},
      {4, 1, 0, 1,
       "!!!!!!!!!!cycle para null error\n!!!!!!!!!!cycle para minval(4) > maxval(1) error\n"},
  };
  for (const auto& c : cycles) {
    int32_t result = 0;
    const std::string out =
        printed_by([&] { result = getIndexVal_cycle(c.min, c.max, c.current); });
    EXPECT_EQ(result, c.expected) << c.min << ".." << c.max << " from " << c.current;
    EXPECT_EQ(out, c.printed);
  }
}

}  // namespace
