// Helpers shared by the drawing tests.
#include "draw_test_util.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "draw/png_io.h"
#include "tk_testing.h"

namespace drawtest {

std::string scratch_dir() {
  const char* out = getenv("TK_TEST_OUTPUT_DIR");
  std::filesystem::path base = out != nullptr && *out != '\0'
                                   ? std::filesystem::path(out)
                                   : std::filesystem::temp_directory_path() / "tk-test-output";
  std::filesystem::path dir = base / "draw_fixtures";
  std::filesystem::create_directories(dir);
  return std::filesystem::absolute(dir).string();
}

tk::draw::Pixmap quadrants() {
  tk::draw::Pixmap p(4, 4);
  p.px = {kRed,  kRed,  kGreen, kGreen, kRed,  kRed,  kGreen, kGreen,
          kBlue, kBlue, kWhite, kWhite, kBlue, kBlue, kWhite, kWhite};
  return p;
}

std::string write_fixture(const tk::draw::Pixmap& pic, const std::string& name) {
  std::string path = scratch_dir() + "/" + name;
  std::string error;
  EXPECT_TRUE(tk::draw::save_png(pic, path, error)) << error;
  return path;
}

std::string read_text_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

widget_t* open_draw_layout() {
  tk_testing_init();
  std::string xml = read_text_file(DRAW_TEST_DIR "/tk_draw_layout.xml");
  EXPECT_FALSE(xml.empty());
  widget_t* win = tk_testing_open_xml("tk_draw_layout", xml.c_str());
  EXPECT_NE(win, nullptr);
  if (win == nullptr) return nullptr;
  const char* names[] = {"red", "green", "blue", "black", "white"};
  const uint32_t words[] = {kRed, kGreen, kBlue, kBlack, kWhite};
  for (int i = 0; i < 5; i++) {
    EXPECT_EQ(
        widget_set_style_color(widget_lookup(win, names[i], TRUE), "normal:bg_color", words[i]),
        RET_OK);
  }
  std::string pic = "file://" + write_fixture(quadrants(), "quadrants.png");
  image_set_image(widget_lookup(win, "picture", TRUE), pic.c_str());
  image_set_image(widget_lookup(win, "picture_scaled", TRUE), pic.c_str());
  tk_testing_advance(0);
  return win;
}

int frame_pixels_not(const tk::draw::Rect& r, uint32_t color) {
  int n = 0;
  for (int y = r.y; y < r.bottom(); ++y)
    for (int x = r.x; x < r.right(); ++x)
      n += tk_testing_pixel(x, y) != color ? 1 : 0;
  return n;
}

}  // namespace drawtest
