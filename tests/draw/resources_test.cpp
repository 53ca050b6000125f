// Missing or broken images and fonts: one clear line each, nothing drawn for them, and the rest
// of the frame drawn as usual.
#include <gtest/gtest.h>

#include <fstream>

#include "draw/canvas.h"
#include "draw_test_util.h"
#include "tk_testing.h"

using namespace drawtest;
using tk::draw::make_color;

namespace {

int log_lines_with(const std::string& text) {
  int n = 0;
  for (const std::string& line : tk_testing_log_lines())
    n += line.find(text) != std::string::npos ? 1 : 0;
  return n;
}

// Repaints the whole layout by moving a widget and back.
void repaint(widget_t* win) {
  widget_t* red = widget_lookup(win, "red", TRUE);
  widget_move(red, 11, 10);
  tk_testing_advance(0);
  widget_move(red, 10, 10);
  tk_testing_advance(0);
}

}  // namespace

TEST(DrawResources, MissingImageIsLoggedOnceAndDrawsNothing) {
  tk_testing_init();
  tk_testing_capture_log(true);
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  tk_testing_capture_log(true);
  image_set_image(widget_lookup(win, "picture", TRUE), "tk_no_such_image");
  tk_testing_advance(0);
  repaint(win);
  EXPECT_EQ(log_lines_with("!!!Asset [name=tk_no_such_image type=image] not exist!!!"), 1);
  EXPECT_EQ(frame_pixels_not({10, 100, 20, 20}, kBackdrop), 0);
  // The rest of the frame is there.
  EXPECT_EQ(tk_testing_pixel(30, 30), kRed);
  EXPECT_EQ(tk_testing_pixel(50, 110), kRed);
}

TEST(DrawResources, BrokenImageFileIsReportedAndDrawsNothing) {
  std::string path = scratch_dir() + "/broken.png";
  {
    std::ofstream out(path, std::ios::binary);
    out << "this is not a picture";
  }
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  tk_testing_capture_log(true);
  std::string name = "file://" + path;
  image_set_image(widget_lookup(win, "picture", TRUE), name.c_str());
  tk_testing_advance(0);
  repaint(win);
  EXPECT_EQ(log_lines_with("cannot decode " + path), 1);
  EXPECT_EQ(frame_pixels_not({10, 100, 20, 20}, kBackdrop), 0);
  EXPECT_EQ(tk_testing_pixel(80, 30), kGreen);
}

TEST(DrawResources, PictureGivenByPathIsReadAgainWhenTheFileChanges) {
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  tk::draw::Pixmap solid(4, 4, kGreen);
  std::string path = write_fixture(solid, "changing.png");
  std::string name = "file://" + path;
  image_set_image(widget_lookup(win, "picture", TRUE), name.c_str());
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(19, 109), kGreen);
  // The card's file is replaced under the same name (a new photo, a new thumbnail).
  tk::draw::Pixmap other(4, 4, kBlue);
  std::string error;
  write_fixture(other, "changing.png");
  repaint(win);
  widget_invalidate(widget_lookup(win, "picture", TRUE), nullptr);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(19, 109), kBlue);
}

TEST(DrawResources, MissingFontIsReportedOnceAndLabelsDrawNoText) {
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  tk_testing_capture_log(true);
  tk_testing_set_system_font("/nonexistent/fonts/missing.ttc");
  repaint(win);
  widget_set_text_utf8(widget_lookup(win, "label", TRUE), "another text");
  tk_testing_advance(0);
  EXPECT_EQ(log_lines_with("font \"default\" not found"), 1);
  // The label's ground is drawn, its text is not; everything else is there.
  EXPECT_EQ(frame_pixels_not({220, 100, 300, 50}, make_color(0x20, 0x20, 0x20, 255)), 0);
  EXPECT_EQ(tk_testing_pixel(30, 30), kRed);
  EXPECT_EQ(tk_testing_pixel(50, 230), make_color(0, 0, 255, 255));
  // With the font back, the text comes back.
  tk_testing_set_system_font(nullptr);
  widget_invalidate(widget_lookup(win, "label", TRUE), nullptr);
  tk_testing_advance(0);
  EXPECT_GT(frame_pixels_not({220, 100, 300, 50}, make_color(0x20, 0x20, 0x20, 255)), 100);
}

TEST(DrawResources, UnreadableBackdropLeavesItBlack) {
  ASSERT_NE(open_draw_layout(), nullptr);
  tk_testing_capture_log(true);
  EXPECT_EQ(tk_testing_set_backdrop("/nonexistent/backdrop.png"), RET_FAIL);
  tk_testing_advance(0);
  EXPECT_EQ(log_lines_with("backdrop /nonexistent/backdrop.png cannot be read"), 1);
  EXPECT_EQ(tk_testing_pixel(1000, 1000), kBackdrop);
  EXPECT_EQ(tk_testing_pixel(30, 30), kRed);
}
