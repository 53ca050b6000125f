// Missing or broken images, fonts and backdrops: one clear line each, nothing drawn for them,
// and the rest of the frame drawn as usual.
#include <gtest/gtest.h>

#include <filesystem>
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

TEST(DrawResources, MissingAndBrokenImagesAreNamedOnceAndDrawNothing) {
  std::string broken = scratch_dir() + "/broken.png";
  std::ofstream(broken) << "this is not a picture";
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  tk_testing_capture_log(true);
  widget_t* picture = widget_lookup(win, "picture", TRUE);
  for (std::string name : {std::string("tk_no_such_image"), "file://" + broken}) {
    image_set_image(picture, name.c_str());
    tk_testing_advance(0);
    repaint(win);
    EXPECT_EQ(frame_pixels_not({10, 100, 20, 20}, kBackdrop), 0) << name;
  }
  EXPECT_EQ(log_lines_with("!!!Asset [name=tk_no_such_image type=image] not exist!!!"), 1);
  EXPECT_EQ(log_lines_with("cannot decode " + broken), 1);
  // The rest of the frame is there.
  EXPECT_EQ(tk_testing_pixel(30, 30), kRed);
  EXPECT_EQ(tk_testing_pixel(50, 110), kRed);
  // A picture given by path is read again when the file is replaced (a new photo or thumbnail).
  std::string path = write_fixture(tk::draw::Pixmap(4, 4, kGreen), "changing.png");
  image_set_image(picture, ("file://" + path).c_str());
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(19, 109), kGreen);
  write_fixture(tk::draw::Pixmap(4, 4, kBlue), "changing.png");
  widget_invalidate(picture, nullptr);
  tk_testing_advance(0);
  EXPECT_EQ(tk_testing_pixel(19, 109), kBlue);
}

// Fonts come only from the resource tree, as on the board: a tree without fonts/default.ttf
// draws no text even though the machine has fonts of its own.
TEST(DrawResources, ATreeWithoutItsFontDrawsNoTextAndNamesTheFileOnce) {
  const std::string tree = scratch_dir() + "/tree_without_fonts";
  std::filesystem::create_directories(tree + "/assets/default/raw/styles");
  std::filesystem::copy_file("res/assets/default/raw/styles/default.xml",
                             tree + "/assets/default/raw/styles/default.xml",
                             std::filesystem::copy_options::overwrite_existing);
  widget_t* win = open_draw_layout();
  ASSERT_NE(win, nullptr);
  tk_testing_capture_log(true);
  tk_testing_set_app_root(tree.c_str());
  repaint(win);
  widget_set_text_utf8(widget_lookup(win, "label", TRUE), "another text");
  tk_testing_advance(0);
  EXPECT_EQ(log_lines_with("font \"default\" not found: no " + tree +
                           "/assets/default/raw/fonts/default.ttf"),
            1);
  EXPECT_EQ(tk_testing_font_file("default"), "");
  EXPECT_EQ(tk_testing_text_width(widget_lookup(win, "label", TRUE)), -1);
  // The label's ground is drawn, its text is not; everything else is there.
  const uint32_t ground = make_color(0x20, 0x20, 0x20, 255);
  EXPECT_EQ(frame_pixels_not({220, 100, 300, 50}, ground), 0);
  EXPECT_EQ(tk_testing_pixel(30, 30), kRed);
  EXPECT_EQ(tk_testing_pixel(50, 230), make_color(0, 0, 255, 255));
  // With the tree's font back, the text comes back.
  tk_testing_set_app_root("./res");
  widget_invalidate(widget_lookup(win, "label", TRUE), nullptr);
  tk_testing_advance(0);
  EXPECT_GT(frame_pixels_not({220, 100, 300, 50}, ground), 100);
  // An unreadable backdrop is named and stays black.
  EXPECT_EQ(tk_testing_set_backdrop("/nonexistent/backdrop.png"), RET_FAIL);
  tk_testing_advance(0);
  EXPECT_EQ(log_lines_with("backdrop /nonexistent/backdrop.png cannot be read"), 1);
  EXPECT_EQ(tk_testing_pixel(1000, 1000), kBackdrop);
}
