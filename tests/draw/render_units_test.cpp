// Image draw types, text layout and picture formats, drawn on a small canvas and checked where
// the picture or the ink lands.
#include <gtest/gtest.h>

#include <SDL.h>
#include <SDL_image.h>

#include "draw/canvas.h"
#include "draw/images.h"
#include "draw/text.h"
#include "draw_test_util.h"
#include "tk_testing.h"

using namespace drawtest;
using tk::draw::Canvas;
using tk::draw::Pixmap;
using tk::draw::Rect;

namespace {

constexpr uint32_t kGround = 0xFF000000;

// Bounding box of the pixels that are not the ground colour (empty when none).
Rect ink_box(const Pixmap& p) {
  Rect box;
  for (int y = 0; y < p.h; ++y)
    for (int x = 0; x < p.w; ++x)
      if (p.at(x, y) != kGround) box = tk::draw::unite(box, {x, y, 1, 1});
  return box;
}

Pixmap drawn(const Pixmap& pic, image_draw_type_t type, Rect r) {
  Pixmap out(40, 40, kGround);
  Canvas c(out);
  tk::draw::draw_image(c, pic, r, type);
  return out;
}

}  // namespace

TEST(DrawImageTypes, EachTypePlacesThePictureInsideTheWidget) {
  Pixmap q = quadrants();  // 4 x 4
  Pixmap big(40, 40, kGreen);
  struct Case {
    const Pixmap& pic;
    image_draw_type_t type;
    Rect widget;
    Rect ink;
  } cases[] = {
      {q, IMAGE_DRAW_DEFAULT, {10, 10, 20, 12}, {10, 10, 4, 4}},
      {q, IMAGE_DRAW_CENTER, {10, 10, 20, 12}, {18, 14, 4, 4}},
      {q, IMAGE_DRAW_ICON, {10, 10, 20, 12}, {18, 14, 4, 4}},
      {q, IMAGE_DRAW_SCALE_DOWN, {10, 10, 20, 12}, {18, 14, 4, 4}},
      {q, IMAGE_DRAW_SCALE, {0, 0, 40, 20}, {0, 0, 40, 20}},
      {q, IMAGE_DRAW_SCALE_AUTO, {0, 0, 40, 20}, {10, 0, 20, 20}},
      {q, IMAGE_DRAW_SCALE_H, {0, 0, 40, 20}, {0, 0, 20, 20}},
      {q, IMAGE_DRAW_SCALE_W, {0, 0, 40, 20}, {0, 0, 40, 20}},  // 40 x 40, cut to the widget
      {q, IMAGE_DRAW_FILL, {0, 0, 40, 20}, {0, 0, 40, 20}},
      {q, IMAGE_DRAW_REPEAT, {0, 0, 10, 10}, {0, 0, 10, 10}},
      {q, IMAGE_DRAW_REPEAT_X, {0, 0, 10, 10}, {0, 0, 10, 4}},
      {q, IMAGE_DRAW_REPEAT_Y, {0, 0, 10, 10}, {0, 0, 4, 10}},
      {q, IMAGE_DRAW_PATCH3_X, {0, 0, 30, 20}, {0, 8, 30, 4}},
      {big, IMAGE_DRAW_ICON, {0, 0, 20, 10}, {5, 0, 10, 10}},  // larger than the widget: shrunk
      {big, IMAGE_DRAW_SCALE_DOWN, {0, 0, 20, 10}, {5, 0, 10, 10}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ink_box(drawn(c.pic, c.type, c.widget)), c.ink) << "draw type " << c.type;
  }
  for (int t = IMAGE_DRAW_DEFAULT; t <= IMAGE_DRAW_FILL; ++t) {
    Rect box = ink_box(drawn(big, static_cast<image_draw_type_t>(t), {10, 10, 20, 30}));
    EXPECT_TRUE(!box.empty() && tk::draw::intersect(box, {10, 10, 20, 30}) == box) << t;
  }
  // fill keeps proportions (the picture's middle rows), repeat tiles from its edge, upwards
  // for repeat_y_inverse.
  Pixmap f = drawn(q, IMAGE_DRAW_FILL, {0, 0, 40, 20});
  EXPECT_TRUE(f.at(5, 2) == kRed && f.at(5, 17) == kBlue && f.at(35, 2) == kGreen);
  Pixmap t = drawn(q, IMAGE_DRAW_REPEAT, {0, 0, 10, 10});
  EXPECT_TRUE(t.at(4, 0) == kRed && t.at(6, 0) == kGreen && t.at(8, 8) == kRed);
  Pixmap yi = drawn(q, IMAGE_DRAW_REPEAT_Y_INVERSE, {0, 0, 10, 10});
  EXPECT_TRUE(yi.at(0, 9) == kBlue && yi.at(0, 6) == kRed && yi.at(0, 0) == kBlue);
}

TEST(DrawImageTypes, PatchTypesKeepTheEdgesAndStretchTheMiddle) {
  // A 1-pixel white frame around red, 6 x 6.
  Pixmap p(6, 6, kRed);
  for (int i = 0; i < 6; ++i)
    p.px[i] = p.px[30 + i] = p.px[i * 6] = p.px[i * 6 + 5] = kWhite;
  for (image_draw_type_t type : {IMAGE_DRAW_PATCH9, IMAGE_DRAW_REPEAT9}) {
    Pixmap out = drawn(p, type, {0, 0, 30, 20});
    EXPECT_EQ(ink_box(out), (Rect{0, 0, 30, 20}));
    for (auto [x, y] : {std::pair{0, 0}, {15, 0}, {29, 10}, {15, 19}})
      EXPECT_EQ(out.at(x, y), kWhite) << type << " at " << x << "," << y;
    for (auto [x, y] : {std::pair{1, 1}, {15, 10}, {28, 18}})
      EXPECT_EQ(out.at(x, y), kRed) << type << " at " << x << "," << y;
  }
}

class DrawText : public ::testing::Test {
 protected:
  void SetUp() override { tk_testing_init(); }

  static Rect ink(const char* text, align_h_t h, align_v_t v, int size = 20) {
    Pixmap out(200, 100, kGround);
    Canvas c(out);
    tk::draw::TextStyle ts;
    ts.font_size = size;
    ts.color = kWhite;
    ts.align_h = h;
    ts.align_v = v;
    tk::draw::draw_text(c, {20, 20, 160, 60}, text, ts);
    return ink_box(out);
  }
};

TEST_F(DrawText, AlignmentPlacesTheInkInItsBox) {
  Rect left = ink("Range", ALIGN_H_LEFT, ALIGN_V_TOP);
  Rect right = ink("Range", ALIGN_H_RIGHT, ALIGN_V_BOTTOM);
  Rect centre = ink("Range", ALIGN_H_CENTER, ALIGN_V_MIDDLE);
  ASSERT_FALSE(left.empty());
  EXPECT_TRUE(left.x <= 22 && left.y <= 30);
  EXPECT_TRUE(right.right() >= 178 && right.bottom() >= 70);
  EXPECT_EQ(left.w, right.w);
  EXPECT_NEAR(centre.x + centre.w / 2.0, 100.0, 2.0);
  EXPECT_NEAR(centre.y + centre.h / 2.0, 50.0, 4.0);
}

// A font size is the pixel height of the text from ascender to descender, as on the board (not a
// point size): "---- yd" at 36 covers 77 x 30 pixels there, and a line exactly fills a box of its
// size, so top and bottom alignment put the ink at the same place.
TEST_F(DrawText, AFontSizeIsThePixelHeightOfTheText) {
  Rect yd = ink("---- yd", ALIGN_H_LEFT, ALIGN_V_TOP, 36);
  EXPECT_NEAR(yd.w, 77, 1);
  EXPECT_NEAR(yd.h, 30, 1);
  tk::draw::TextStyle ts;
  for (int size : {18, 24, 28, 32, 36, 48}) {
    Rect placed[2];
    for (int i = 0; i < 2; ++i) {
      Pixmap out(200, 100, kGround);
      Canvas c(out);
      ts.font_size = size;
      ts.color = kWhite;
      ts.align_v = i == 0 ? ALIGN_V_TOP : ALIGN_V_BOTTOM;
      tk::draw::draw_text(c, {20, 20, 160, size}, "Hgjy", ts);
      placed[i] = ink_box(out);
    }
    EXPECT_EQ(placed[0], placed[1]) << "font size " << size;
    EXPECT_TRUE(!placed[0].empty() && placed[0].y >= 20 && placed[0].bottom() <= 20 + size)
        << "font size " << size;
  }
  // The measured width is what the text covers, and grows with the size.
  ts.font_size = 36;
  const int w36 = tk::draw::text_width("---- yd", ts);
  EXPECT_GE(w36, yd.w);
  EXPECT_LE(w36, yd.w + 4);
  ts.font_size = 72;
  EXPECT_NEAR(tk::draw::text_width("---- yd", ts), 2 * w36, 3);
  // The widest line of several.
  EXPECT_EQ(tk::draw::text_width("-\n---- yd\n--", ts), tk::draw::text_width("---- yd", ts));
}

TEST(DrawImageFiles, PngJpegAndBmpAllDecode) {
  tk_testing_init();
  // A 16 x 8 picture: left half red, right half blue, saved in each format the board reads.
  Pixmap src(16, 8);
  for (int i = 0; i < 16 * 8; ++i)
    src.px[i] = i % 16 < 8 ? kRed : kBlue;
  std::string png = write_fixture(src, "formats.png");
  std::string bmp = scratch_dir() + "/formats.bmp";
  std::string jpg = scratch_dir() + "/formats.jpg";
  SDL_Surface* s =
      SDL_CreateRGBSurfaceWithFormatFrom(src.px.data(), 16, 8, 32, 64, SDL_PIXELFORMAT_RGBA32);
  ASSERT_NE(s, nullptr);
  ASSERT_EQ(SDL_SaveBMP(s, bmp.c_str()), 0) << SDL_GetError();
  ASSERT_EQ(IMG_SaveJPG(s, jpg.c_str(), 95), 0) << IMG_GetError();
  SDL_FreeSurface(s);
  for (const std::string& path : {png, bmp, jpg}) {
    auto pic = tk::draw::image_get(("file://" + path).c_str());
    ASSERT_NE(pic, nullptr) << path;
    EXPECT_EQ(pic->w * 100 + pic->h, 1608) << path;
    // Lossy JPEG: close to the colours, exact for the others.
    for (auto [x, want] : {std::pair{2, kRed}, {13, kBlue}}) {
      uint32_t got = pic->at(x, 4);
      EXPECT_NEAR(tk::draw::color_r(got), tk::draw::color_r(want), path == jpg ? 12 : 0) << path;
      EXPECT_NEAR(tk::draw::color_b(got), tk::draw::color_b(want), path == jpg ? 12 : 0) << path;
      EXPECT_EQ(tk::draw::color_a(got), 255) << path;
    }
  }
}
