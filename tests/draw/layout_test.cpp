// The test layout painted through the real path (XML window, styles, main-loop step, headless
// backend), checked pixel by pixel and against its reference screenshot.
#include <gtest/gtest.h>

#include "draw/canvas.h"
#include "draw/screen.h"
#include "draw_test_util.h"
#include "tk_testing.h"

using namespace drawtest;
using tk::draw::blend;
using tk::draw::color_b;
using tk::draw::color_g;
using tk::draw::color_r;
using tk::draw::make_color;

TEST(DrawLayout, ColourWordsLandAtTheirCoordinates) {
  ASSERT_NE(open_draw_layout(), nullptr);
  EXPECT_EQ(tk_testing_pixel(30, 30), kRed);
  EXPECT_EQ(tk_testing_pixel(10, 10), kRed);
  EXPECT_EQ(tk_testing_pixel(49, 49), kRed);
  EXPECT_EQ(tk_testing_pixel(50, 49), kBackdrop);
  EXPECT_EQ(tk_testing_pixel(9, 30), kBackdrop);
  EXPECT_EQ(tk_testing_pixel(80, 30), kGreen);
  EXPECT_EQ(tk_testing_pixel(130, 30), kBlue);
  // Black is the word 0xFF000001 (red byte 1), which the backdrop's 0xFF000000 is not.
  EXPECT_EQ(tk_testing_pixel(180, 30), kBlack);
  EXPECT_EQ(tk_testing_pixel(230, 30), kWhite);
  // "#FF1100" read left to right is the same red as the word 0xFF0011FF.
  EXPECT_EQ(tk_testing_pixel(280, 30), kRed);
}

TEST(DrawLayout, BordersFollowWidthSidesAndRadius) {
  ASSERT_NE(open_draw_layout(), nullptr);
  // Ring: a 4-pixel circle of radius 30 at (320,10), hollow, corners outside.
  EXPECT_EQ(tk_testing_pixel(350, 40), kBackdrop);
  EXPECT_EQ(tk_testing_pixel(350, 11), kGreen);
  EXPECT_EQ(tk_testing_pixel(321, 40), kGreen);
  EXPECT_EQ(tk_testing_pixel(378, 40), kGreen);
  EXPECT_EQ(tk_testing_pixel(350, 68), kGreen);
  EXPECT_EQ(tk_testing_pixel(321, 11), kBackdrop);
  EXPECT_EQ(tk_testing_pixel(350, 16), kBackdrop);
  // Framed: white inside a 3-pixel red border on all sides.
  const uint32_t red = make_color(255, 0, 0, 255);
  EXPECT_EQ(tk_testing_pixel(400, 30), red);
  EXPECT_EQ(tk_testing_pixel(402, 30), red);
  EXPECT_EQ(tk_testing_pixel(403, 30), kWhite);
  EXPECT_EQ(tk_testing_pixel(430, 12), red);
  EXPECT_EQ(tk_testing_pixel(430, 13), kWhite);
  EXPECT_EQ(tk_testing_pixel(430, 47), red);
  EXPECT_EQ(tk_testing_pixel(459, 30), red);
  // Bottom only: two blue rows at the bottom, nothing on the other sides.
  const uint32_t blue = make_color(0, 0, 255, 255);
  EXPECT_EQ(tk_testing_pixel(510, 49), blue);
  EXPECT_EQ(tk_testing_pixel(510, 48), blue);
  EXPECT_EQ(tk_testing_pixel(510, 47), kWhite);
  EXPECT_EQ(tk_testing_pixel(510, 10), kWhite);
  EXPECT_EQ(tk_testing_pixel(480, 30), kWhite);
}

TEST(DrawLayout, ImagesByDrawTypeAndByName) {
  ASSERT_NE(open_draw_layout(), nullptr);
  // "center": the 4 x 4 quadrants unscaled in the middle of a 20 x 20 widget at (10,100).
  EXPECT_EQ(tk_testing_pixel(18, 108), kRed);
  EXPECT_EQ(tk_testing_pixel(20, 108), kGreen);
  EXPECT_EQ(tk_testing_pixel(18, 110), kBlue);
  EXPECT_EQ(tk_testing_pixel(21, 111), kWhite);
  EXPECT_EQ(tk_testing_pixel(17, 108), kBackdrop);
  EXPECT_EQ(tk_testing_pixel(22, 111), kBackdrop);
  // "scale": stretched to 40 x 40 at (40,100); each quadrant covers 20 x 20.
  EXPECT_EQ(tk_testing_pixel(40, 100), kRed);
  EXPECT_EQ(tk_testing_pixel(50, 110), kRed);
  EXPECT_EQ(tk_testing_pixel(70, 110), kGreen);
  EXPECT_EQ(tk_testing_pixel(50, 130), kBlue);
  EXPECT_EQ(tk_testing_pixel(79, 139), kWhite);
  // By name from images/x1: the reticle's red dot at its centre, transparent corners.
  uint32_t dot = tk_testing_pixel(148, 148);
  EXPECT_GT(color_r(dot), 200);
  EXPECT_LT(color_g(dot), 80);
  EXPECT_EQ(tk_testing_pixel(102, 102), kBackdrop);
  // Its green ring crosses the horizontal line through the centre near x = 100 + 8.
  int greenish = 0;
  for (int x = 100; x < 120; ++x)
    greenish += color_g(tk_testing_pixel(x, 148)) > 150 ? 1 : 0;
  EXPECT_GT(greenish, 0);
}

TEST(DrawLayout, LabelTextIsDrawnLeftAlignedInsideItsBox) {
  ASSERT_NE(open_draw_layout(), nullptr);
  const uint32_t bg = make_color(0x20, 0x20, 0x20, 255);
  int ink = 0;
  int leftmost = 10000;
  int rightmost = -1;
  for (int y = 100; y < 150; ++y) {
    for (int x = 220; x < 520; ++x) {
      uint32_t p = tk_testing_pixel(x, y);
      if (p == bg) continue;
      ++ink;
      leftmost = std::min(leftmost, x);
      rightmost = std::max(rightmost, x);
      // White text over the dark ground: only greys appear.
      EXPECT_EQ(color_r(p), color_g(p));
      EXPECT_EQ(color_g(p), color_b(p));
    }
  }
  EXPECT_GT(ink, 300);
  EXPECT_LT(leftmost, 226);
  EXPECT_LT(rightmost, 519);
  // Nothing of the label outside its ground.
  EXPECT_EQ(frame_pixels_not({220, 150, 300, 4}, kBackdrop), 0);
}

TEST(DrawLayout, ProgressBarsFillTheirValue) {
  ASSERT_NE(open_draw_layout(), nullptr);
  const uint32_t grey = make_color(0x80, 0x80, 0x80, 255);
  const uint32_t blue = make_color(0, 0, 255, 255);
  const uint32_t green = make_color(0, 255, 0, 255);
  // Half of 200 pixels from the left.
  EXPECT_EQ(tk_testing_pixel(10, 230), blue);
  EXPECT_EQ(tk_testing_pixel(109, 230), blue);
  EXPECT_EQ(tk_testing_pixel(110, 230), grey);
  EXPECT_EQ(tk_testing_pixel(209, 230), grey);
  // A quarter of 100 pixels from the bottom of the vertical bar.
  EXPECT_EQ(tk_testing_pixel(240, 319), green);
  EXPECT_EQ(tk_testing_pixel(240, 295), green);
  EXPECT_EQ(tk_testing_pixel(240, 294), grey);
  EXPECT_EQ(tk_testing_pixel(240, 221), grey);
}

TEST(DrawLayout, InvisibleOpacityAndDisabledState) {
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  // An invisible view hides its children too.
  EXPECT_EQ(frame_pixels_not({300, 220, 40, 40}, kBackdrop), 0);
  // Black at opacity 128 over white is mid grey; its opaque red child is drawn at 128 too.
  EXPECT_EQ(tk_testing_pixel(365, 225), kWhite);
  EXPECT_EQ(tk_testing_pixel(385, 245), make_color(127, 127, 127, 255));
  uint32_t half_red =
      blend(blend(kWhite, make_color(0, 0, 0, 255), 128), make_color(255, 0, 0, 255), 128);
  EXPECT_EQ(tk_testing_pixel(400, 260), half_red);
  // The disabled view uses its disable style.
  EXPECT_EQ(tk_testing_pixel(480, 240), make_color(0x40, 0x40, 0x40, 255));
  // Enabled again, it takes its normal colour.
  widget_set_enable(widget_lookup(win, "disabled", TRUE), TRUE);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(480, 240), make_color(255, 0, 0, 255));
  // Opacity 8 or below paints nothing.
  widget_set_opacity(widget_lookup(win, "half", TRUE), 8);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(385, 245), kWhite);
  EXPECT_EQ(tk_testing_pixel(400, 260), kWhite);
}

TEST(DrawLayout, MatchesTheReferenceScreenshot) {
  ASSERT_NE(open_draw_layout(), nullptr);
  std::string message;
  EXPECT_TRUE(
      tk_testing_compare_screenshot(DRAW_TEST_DIR "/references/tk_draw_layout.png", 16, &message))
      << message;
}

TEST(DrawLayout, BackdropShowsUnderTheTransparentWindowOnly) {
  tk::draw::Pixmap back(2, 2);
  back.px = {kGreen, kBlue, kWhite, kRed};
  std::string path = write_fixture(back, "backdrop.png");
  ASSERT_NE(open_draw_layout(), nullptr);
  ASSERT_EQ(tk_testing_set_backdrop(path.c_str()), RET_OK);
  tk_testing_advance(0);
  // Scaled to the screen: each corner keeps its colour.
  EXPECT_EQ(tk_testing_pixel(5, 5), kGreen);
  EXPECT_EQ(tk_testing_pixel(1275, 5), kBlue);
  EXPECT_EQ(tk_testing_pixel(5, 1020), kWhite);
  EXPECT_EQ(tk_testing_pixel(1275, 1020), kRed);
  // Opaque widgets cover it.
  EXPECT_EQ(tk_testing_pixel(230, 30), kWhite);
  EXPECT_EQ(tk_testing_pixel(80, 30), kGreen);
  EXPECT_EQ(tk_testing_pixel(130, 30), kBlue);
  // Back to black.
  ASSERT_EQ(tk_testing_set_backdrop(nullptr), RET_OK);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(1275, 1020), kBackdrop);
}

TEST(DrawLayout, OpaqueWindowOnTopHidesTheOneBelow) {
  ASSERT_NE(open_draw_layout(), nullptr);
  widget_t* top = tk_testing_open_xml(
      "tk_draw_cover", "<window name=\"tk_draw_cover\" style.normal.bg_color=\"#102030\"/>");
  ASSERT_NE(top, nullptr);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(30, 30), make_color(0x10, 0x20, 0x30, 255));
  EXPECT_EQ(frame_pixels_not({0, 0, 600, 330}, make_color(0x10, 0x20, 0x30, 255)), 0);
  // Closed again, the layout below comes back.
  window_close_force(top);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(30, 30), kRed);
}
