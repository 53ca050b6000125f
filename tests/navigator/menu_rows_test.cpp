// Menu rows with the 60-pixel highlight and icon rows: the shared pieces of the menu pages, on a
// window opened from XML under the test clock.
#include <gtest/gtest.h>

#include <string>

#include "common/menu_rows.h"
#include "msg/msghandler.h"
#include "tk_testing.h"

namespace {

constexpr const char* LABELS[] = {"label_a", "label_b", "label_c"};
constexpr menu_rows_t ROWS{"image_sel", 336, LABELS};

constexpr icon_row_t ICONS[] = {{"image_one", "one_def", "one_sel"},
                                {"image_two", "two_def", "two_sel"}};
constexpr const char* PANELS[] = {"view_one", nullptr};

class MenuRows : public ::testing::Test {
 protected:
  void SetUp() override {
    tk_testing_init();
    win_ = tk_testing_open_xml("rows", R"(<window name="rows" w="1280" h="1024">
        <image name="image_sel" x="0" y="0" w="10" h="10"/>
        <label name="label_a" x="0" y="0" w="336" h="60"/>
        <label name="label_b" x="0" y="60" w="336" h="60"/>
        <label name="label_c" x="0" y="120" w="336" h="60"/>
        <image name="image_one" image="one_def"/><image name="image_two" image="two_def"/>
        <view name="view_one" visible="false"/></window>)");
    ASSERT_NE(win_, nullptr);
    tk_testing_advance(0);
  }
  void TearDown() override { tk_testing_reset(); }
  std::string state(const char* name) { return widget_lookup(win_, name, TRUE)->state; }
  std::string image(const char* name) {
    return widget_get_prop_str(widget_lookup(win_, name, TRUE), "image", "");
  }
  widget_t* win_ = nullptr;
};

TEST_F(MenuRows, HighlightAndFocusFollowTheRow) {
  for (int row = 1; row <= 3; ++row) {
    menu_rows_focus(win_, ROWS, row);
    widget_t* bar = widget_lookup(win_, "image_sel", TRUE);
    EXPECT_EQ(bar->y, (row - 1) * 60);
    EXPECT_EQ(bar->w, 336);
    EXPECT_EQ(bar->h, 60);
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(state(LABELS[i]), i == row - 1 ? "focused" : "normal") << "row " << row;
  }
  // A row outside the list moves nothing.
  menu_rows_focus(win_, ROWS, 4);
  EXPECT_EQ(widget_lookup(win_, "image_sel", TRUE)->y, 120);
  EXPECT_EQ(state("label_c"), "focused");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

TEST_F(MenuRows, KeysStepAndWrapBothWays) {
  struct Case {
    int key, from, to;
  } cases[] = {{GUI_KEY_PHOTO_S, 1, 2},
               {GUI_KEY_PHOTO_S, 3, 1},
               {GUI_KEY_RANGE_S, 1, 3},
               {GUI_KEY_RANGE_S, 2, 1},
               {GUI_KEY_FUCTION_S, 2, 2}};
  for (const Case& c : cases)
    EXPECT_EQ(menu_rows_step(ROWS, c.key, c.from), c.to) << c.key << " from " << c.from;
}

TEST_F(MenuRows, IconRowsAndPanelsShowOnlyTheSelectedOne) {
  icon_rows_select(win_, ICONS, 1);
  EXPECT_EQ(image("image_one"), "one_def");
  EXPECT_EQ(image("image_two"), "two_sel");
  show_only_one_of(win_, PANELS, 0);
  EXPECT_TRUE(widget_lookup(win_, "view_one", TRUE)->visible);
  show_only_one_of(win_, PANELS, 1);
  EXPECT_FALSE(widget_lookup(win_, "view_one", TRUE)->visible);
  icon_rows_select(win_, ICONS, 5);
  EXPECT_EQ(image("image_two"), "two_def");
  EXPECT_EQ(tk_testing_failed_lookups(), 0u);
}

}  // namespace
