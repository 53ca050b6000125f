// The test layout painted through the real path (XML window, styles, main-loop step, headless
// backend), checked pixel by pixel and against its reference screenshot.
#include <gtest/gtest.h>

#include "draw/canvas.h"
#include "draw_test_util.h"
#include "tk_testing.h"

using namespace drawtest;
using tk::draw::blend;
using tk::draw::color_g;
using tk::draw::color_r;
using tk::draw::make_color;

namespace {

// Triples x, y, colour word: the frame's pixel (x, y) has that colour word.
void expect_pixels(std::initializer_list<int64_t> triples) {
  for (const int64_t* t = triples.begin(); t + 2 < triples.end(); t += 3) {
    EXPECT_EQ(tk_testing_pixel(static_cast<xy_t>(t[0]), static_cast<xy_t>(t[1])),
              static_cast<uint32_t>(t[2]))
        << "at " << t[0] << "," << t[1];
  }
}

}  // namespace

TEST(DrawLayout, ColourWordsAndBordersLandAtTheirCoordinates) {
  ASSERT_NE(open_draw_layout(), nullptr);
  // Black is the word 0xFF000001 (red byte 1), which the backdrop's 0xFF000000 is not;
  // "#FF1100" read left to right is the same red as the word 0xFF0011FF.
  expect_pixels({10,  10, kRed,      49,  49, kRed,   50,  49, kBackdrop,
                 9,   30, kBackdrop, 80,  30, kGreen, 130, 30, kBlue,
                 180, 30, kBlack,    230, 30, kWhite, 280, 30, kRed});
  // Ring: a 4-pixel circle of radius 30 at (320,10), hollow, corners outside.
  const uint32_t green = make_color(0, 255, 0, 255);
  expect_pixels({350, 11, green,     321, 40, green,
                 378, 40, green,     350, 68, green,      // the ring
                 350, 40, kBackdrop, 350, 16, kBackdrop,  // its hole
                 321, 11, kBackdrop});                    // a corner
  // Framed: white inside a 3-pixel red border; bottom only: two blue rows, no other side.
  const uint32_t red = make_color(255, 0, 0, 255);
  const uint32_t blue = make_color(0, 0, 255, 255);
  expect_pixels({400, 30, red,    402, 30, red,    403, 30, kWhite, 430, 12, red,
                 430, 13, kWhite, 430, 47, red,    459, 30, red,    510, 49, blue,
                 510, 48, blue,   510, 47, kWhite, 510, 10, kWhite, 480, 30, kWhite});
}

TEST(DrawLayout, ImagesByDrawTypeAndByNameAndLabelText) {
  ASSERT_NE(open_draw_layout(), nullptr);
  // "center": the 4 x 4 quadrants unscaled in the middle of a 20 x 20 widget at (10,100);
  // "scale": stretched to 40 x 40 at (40,100), each quadrant 20 x 20.
  expect_pixels(
      {18, 108, kRed,      20, 108, kGreen,    18, 110, kBlue, 21, 111, kWhite,    // center
       17, 108, kBackdrop, 22, 111, kBackdrop,                                     // around it
       40, 100, kRed,      70, 110, kGreen,    50, 130, kBlue, 79, 139, kWhite});  // scale
  // By name from images/x1: the reticle's red dot at its centre, transparent corners, its green
  // ring crossing the line through the centre near x = 100 + 8.
  uint32_t dot = tk_testing_pixel(148, 148);
  EXPECT_TRUE(color_r(dot) > 200 && color_g(dot) < 80);
  EXPECT_EQ(tk_testing_pixel(102, 102), kBackdrop);
  int greenish = 0;
  for (int x = 100; x < 120; ++x)
    greenish += color_g(tk_testing_pixel(x, 148)) > 150 ? 1 : 0;
  EXPECT_GT(greenish, 0);
  // White text, left-aligned, over its dark ground: only greys, starting at the left edge.
  const uint32_t bg = make_color(0x20, 0x20, 0x20, 255);
  int ink = 0;
  int leftmost = 10000;
  for (int y = 100; y < 150; ++y) {
    for (int x = 220; x < 520; ++x) {
      uint32_t p = tk_testing_pixel(x, y);
      if (p == bg) continue;
      ++ink;
      leftmost = std::min(leftmost, x);
      EXPECT_TRUE(color_r(p) == color_g(p) && color_g(p) == tk::draw::color_b(p));
    }
  }
  EXPECT_GT(ink, 300);
  EXPECT_LT(leftmost, 226);
  EXPECT_EQ(frame_pixels_not({220, 150, 300, 4}, kBackdrop), 0);
}

TEST(DrawLayout, ProgressInvisibilityOpacityAndDisabledState) {
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  // Half of 200 pixels from the left; a quarter of 100 from the bottom of the vertical bar.
  const uint32_t grey = make_color(0x80, 0x80, 0x80, 255);
  const uint32_t blue = make_color(0, 0, 255, 255);
  const uint32_t green = make_color(0, 255, 0, 255);
  expect_pixels({10,  230, blue,  109, 230, blue,  110, 230, grey, 209, 230, grey,
                 240, 319, green, 240, 295, green, 240, 294, grey, 240, 221, grey});
  // An invisible view hides its children too.
  EXPECT_EQ(frame_pixels_not({300, 220, 40, 40}, kBackdrop), 0);
  // Black at opacity 128 over white is mid grey; its opaque red child is drawn at 128 too; the
  // disabled view uses its disable style.
  uint32_t half_red =
      blend(blend(kWhite, make_color(0, 0, 0, 255), 128), make_color(255, 0, 0, 255), 128);
  expect_pixels({365, 225, kWhite, 385, 245, make_color(127, 127, 127, 255), 400, 260, half_red,
                 480, 240, make_color(0x40, 0x40, 0x40, 255)});
  // Enabled again, it takes its normal colour; opacity 8 or below paints nothing.
  widget_set_enable(widget_lookup(win, "disabled", TRUE), TRUE);
  widget_set_opacity(widget_lookup(win, "half", TRUE), 8);
  tk_testing_advance(0);
  expect_pixels({480, 240, make_color(255, 0, 0, 255), 385, 245, kWhite, 400, 260, kWhite});
}

TEST(DrawLayout, MatchesTheReferenceScreenshot) {
  ASSERT_NE(open_draw_layout(), nullptr);
  std::string message;
  EXPECT_TRUE(
      tk_testing_compare_screenshot(DRAW_TEST_DIR "/references/tk_draw_layout.png", 16, &message))
      << message;
}

TEST(DrawLayout, TheBackdropShowsUnderTransparentWindowsOnly) {
  tk::draw::Pixmap back(2, 2);
  back.px = {kGreen, kBlue, kWhite, kRed};
  std::string path = write_fixture(back, "backdrop.png");
  ASSERT_NE(open_draw_layout(), nullptr);
  ASSERT_EQ(tk_testing_set_backdrop(path.c_str()), RET_OK);
  tk_testing_advance(0);
  // Scaled to the screen: each corner keeps its colour; opaque widgets cover it.
  expect_pixels({5, 5, kGreen, 1275, 5, kBlue, 5, 1020, kWhite, 1275, 1020, kRed, 230, 30, kWhite,
                 130, 30, kBlue});
  // An opaque window on top hides everything below; closed again, the layout comes back.
  widget_t* top = tk_testing_open_xml(
      "tk_draw_cover", "<window name=\"tk_draw_cover\" style.normal.bg_color=\"#102030\"/>");
  ASSERT_NE(top, nullptr);
  tk_testing_advance(0);
  EXPECT_EQ(frame_pixels_not({0, 0, 600, 330}, make_color(0x10, 0x20, 0x30, 255)), 0);
  window_close_force(top);
  ASSERT_EQ(tk_testing_set_backdrop(nullptr), RET_OK);
  tk_testing_advance(0);
  expect_pixels({30, 30, kRed, 1275, 1020, kBackdrop});
}
