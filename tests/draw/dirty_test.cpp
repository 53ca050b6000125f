// Redrawing only what changed: an idle screen paints nothing, a change repaints its own area,
// dirty rectangles merge without overlapping.
#include <gtest/gtest.h>

#include "draw/screen.h"
#include "draw_test_util.h"
#include "tk_testing.h"

using namespace drawtest;
using tk::draw::Rect;

TEST(DrawDirty, AnIdleScreenPaintsNothingAndAChangeRepaintsItsAreaOnly) {
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  uint64_t before = tk_testing_paint_count();
  tk_testing_advance(10000);
  EXPECT_EQ(tk_testing_paint_count(), before);
  EXPECT_FALSE(tk_testing_paint());
  // A mark the painter would wipe if it repainted the whole screen.
  tk::draw::Pixmap& frame = tk::draw::screen().frame;
  uint32_t& mark = frame.px[static_cast<size_t>(900) * frame.w + 900];
  mark = kWhite;
  widget_set_text_utf8(widget_lookup(win, "label", TRUE), "changed");
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_paint_count(), before + 1);
  EXPECT_EQ(tk_testing_pixel(900, 900), kWhite);
  std::string message;
  EXPECT_FALSE(
      tk_testing_compare_screenshot(DRAW_TEST_DIR "/references/tk_draw_layout.png", 16, &message));
  // Back to the old text: the frame is the reference again.
  widget_set_text_utf8(widget_lookup(win, "label", TRUE), "Draw 测距 Дальность");
  tk_testing_advance(0);
  mark = kBackdrop;
  EXPECT_TRUE(
      tk_testing_compare_screenshot(DRAW_TEST_DIR "/references/tk_draw_layout.png", 16, &message))
      << message;
  // A moved widget leaves no trail; a hidden one leaves the backdrop.
  widget_t* red = widget_lookup(win, "red", TRUE);
  widget_move(red, 600, 600);
  tk_testing_advance(0);
  EXPECT_EQ(frame_pixels_not({10, 10, 40, 40}, kBackdrop), 0);
  EXPECT_EQ(frame_pixels_not({600, 600, 40, 40}, kRed), 0);
  widget_set_visible(red, FALSE);
  tk_testing_advance(0);
  EXPECT_EQ(frame_pixels_not({600, 600, 40, 40}, kBackdrop), 0);
}

TEST(DrawDirty, OverlappingRectanglesMergeAndStayInside) {
  Rect bounds{0, 0, 100, 100};
  auto out =
      tk::draw::normalize_dirty({{10, 10, 20, 20}, {20, 20, 20, 20}, {80, 80, 50, 50}}, bounds);
  EXPECT_EQ(out, (std::vector<Rect>{{10, 10, 30, 30}, {80, 80, 20, 20}}));
  EXPECT_TRUE(tk::draw::normalize_dirty({{200, 200, 5, 5}, {-10, -10, 5, 5}}, bounds).empty());
  // Far-apart small rectangles beyond the limit collapse into their bounding box.
  std::vector<Rect> scattered;
  for (int i = 0; i < 30; ++i)
    scattered.push_back({i * 3, (i * 7) % 90, 1, 1});
  EXPECT_EQ(tk::draw::normalize_dirty(scattered, bounds), (std::vector<Rect>{{0, 0, 88, 86}}));
}
