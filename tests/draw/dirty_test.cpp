// Redrawing only what changed: an idle screen paints nothing, a change repaints its own area.
#include <gtest/gtest.h>

#include "draw/screen.h"
#include "draw_test_util.h"
#include "tk_testing.h"

using namespace drawtest;
using tk::draw::make_color;
using tk::draw::Rect;

TEST(DrawDirty, IdleScreenPaintsNothing) {
  ASSERT_NE(open_draw_layout(), nullptr);
  uint64_t before = tk_testing_paint_count();
  tk_testing_advance(10000);
  EXPECT_EQ(tk_testing_paint_count(), before);
  EXPECT_FALSE(tk_testing_paint());
}

TEST(DrawDirty, ChangedLabelRepaintsItsAreaOnly) {
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  // A mark the painter would wipe if it repainted the whole screen.
  tk::draw::Pixmap& frame = tk::draw::screen().frame;
  const uint32_t mark = make_color(1, 2, 3, 255);
  frame.px[static_cast<size_t>(900) * frame.w + 900] = mark;
  uint64_t before = tk_testing_paint_count();

  widget_set_text_utf8(widget_lookup(win, "label", TRUE), "changed");
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_paint_count(), before + 1);
  EXPECT_EQ(tk_testing_pixel(900, 900), mark);
  std::string message;
  // The label shows the new text: its pixels differ from the reference layout.
  EXPECT_FALSE(
      tk_testing_compare_screenshot(DRAW_TEST_DIR "/references/tk_draw_layout.png", 16, &message));
  // And back: the frame is the reference again.
  widget_set_text_utf8(widget_lookup(win, "label", TRUE), "Draw 测距 Дальность");
  tk_testing_advance(0);
  frame.px[static_cast<size_t>(900) * frame.w + 900] = kBackdrop;
  EXPECT_TRUE(
      tk_testing_compare_screenshot(DRAW_TEST_DIR "/references/tk_draw_layout.png", 16, &message))
      << message;
}

TEST(DrawDirty, MovedWidgetLeavesNoTrail) {
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  widget_move(widget_lookup(win, "red", TRUE), 600, 600);
  tk_testing_advance(0);
  EXPECT_EQ(frame_pixels_not({10, 10, 40, 40}, kBackdrop), 0);
  EXPECT_EQ(frame_pixels_not({600, 600, 40, 40}, kRed), 0);
  widget_set_visible(widget_lookup(win, "red", TRUE), FALSE);
  tk_testing_advance(0);
  EXPECT_EQ(frame_pixels_not({600, 600, 40, 40}, kBackdrop), 0);
}

TEST(DrawDirty, OverlappingRectanglesMergeAndStayInside) {
  Rect bounds{0, 0, 100, 100};
  auto out =
      tk::draw::normalize_dirty({{10, 10, 20, 20}, {20, 20, 20, 20}, {80, 80, 50, 50}}, bounds);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0], (Rect{10, 10, 30, 30}));
  EXPECT_EQ(out[1], (Rect{80, 80, 20, 20}));
  // No two rectangles overlap, so nothing is blended twice.
  std::vector<Rect> many;
  for (int i = 0; i < 60; ++i)
    many.push_back({i, i, 3, 3});
  auto merged = tk::draw::normalize_dirty(many, bounds);
  for (size_t i = 0; i < merged.size(); ++i)
    for (size_t j = i + 1; j < merged.size(); ++j)
      EXPECT_TRUE(tk::draw::intersect(merged[i], merged[j]).empty());
  // Far-apart small rectangles beyond the limit collapse into their bounding box.
  std::vector<Rect> scattered;
  for (int i = 0; i < 30; ++i)
    scattered.push_back({i * 3, (i * 7) % 90, 1, 1});
  auto box = tk::draw::normalize_dirty(scattered, bounds);
  ASSERT_EQ(box.size(), 1u);
  EXPECT_EQ(box[0].x, 0);
  EXPECT_EQ(box[0].right(), 88);
  EXPECT_TRUE(tk::draw::normalize_dirty({{200, 200, 5, 5}, {-10, -10, 5, 5}}, bounds).empty());
}
