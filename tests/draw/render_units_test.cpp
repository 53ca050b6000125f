// Image draw types and text layout, drawn on a small canvas and checked where the picture or the
// ink lands.
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
using tk::draw::draw_image;
using tk::draw::make_color;
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

Pixmap draw_type(const Pixmap& pic, image_draw_type_t type, int w, int h, Rect r) {
  Pixmap out(w, h, kGround);
  Canvas c(out);
  draw_image(c, pic, r, type);
  return out;
}

// A picture with a distinct outline: a 1-pixel white frame around red, 6 x 6.
Pixmap framed6() {
  Pixmap p(6, 6, kRed);
  for (int i = 0; i < 6; ++i) {
    p.px[static_cast<size_t>(i)] = kWhite;
    p.px[static_cast<size_t>(30 + i)] = kWhite;
    p.px[static_cast<size_t>(i * 6)] = kWhite;
    p.px[static_cast<size_t>(i * 6 + 5)] = kWhite;
  }
  return p;
}

}  // namespace

TEST(DrawImageTypes, PlacementOfUnscaledTypes) {
  Pixmap q = quadrants();
  Rect r{10, 10, 20, 12};
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_DEFAULT, 40, 40, r)), (Rect{10, 10, 4, 4}));
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_CENTER, 40, 40, r)), (Rect{18, 14, 4, 4}));
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_ICON, 40, 40, r)), (Rect{18, 14, 4, 4}));
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_SCALE_DOWN, 40, 40, r)), (Rect{18, 14, 4, 4}));
}

TEST(DrawImageTypes, ScalingTypesKeepOrStretchProportions) {
  Pixmap q = quadrants();
  Rect r{0, 0, 40, 20};
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_SCALE, 40, 40, r)), (Rect{0, 0, 40, 20}));
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_SCALE_AUTO, 40, 40, r)), (Rect{10, 0, 20, 20}));
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_SCALE_H, 40, 40, r)), (Rect{0, 0, 20, 20}));
  // scale_w makes it 40 x 40, cut to the widget's 20 rows.
  EXPECT_EQ(ink_box(draw_type(q, IMAGE_DRAW_SCALE_W, 40, 40, r)), (Rect{0, 0, 40, 20}));
  Pixmap w = draw_type(q, IMAGE_DRAW_SCALE_W, 40, 40, r);
  EXPECT_EQ(w.at(5, 5), kRed);
  EXPECT_EQ(w.at(35, 5), kGreen);
  // fill covers the widget keeping proportions: the picture's middle rows fill it.
  Pixmap f = draw_type(q, IMAGE_DRAW_FILL, 40, 40, r);
  EXPECT_EQ(ink_box(f), (Rect{0, 0, 40, 20}));
  EXPECT_EQ(f.at(5, 2), kRed);
  EXPECT_EQ(f.at(5, 17), kBlue);
  // An icon larger than its widget shrinks to fit.
  Pixmap big(40, 40, kGreen);
  EXPECT_EQ(ink_box(draw_type(big, IMAGE_DRAW_ICON, 40, 40, {0, 0, 20, 10})), (Rect{5, 0, 10, 10}));
  EXPECT_EQ(ink_box(draw_type(big, IMAGE_DRAW_SCALE_DOWN, 40, 40, {0, 0, 20, 10})),
            (Rect{5, 0, 10, 10}));
}

TEST(DrawImageTypes, RepeatTypesTileFromTheirEdge) {
  Pixmap q = quadrants();
  Pixmap t = draw_type(q, IMAGE_DRAW_REPEAT, 20, 20, {0, 0, 10, 10});
  EXPECT_EQ(ink_box(t), (Rect{0, 0, 10, 10}));
  EXPECT_EQ(t.at(4, 0), kRed);
  EXPECT_EQ(t.at(6, 0), kGreen);
  EXPECT_EQ(t.at(8, 8), kRed);
  Pixmap x = draw_type(q, IMAGE_DRAW_REPEAT_X, 20, 20, {0, 0, 10, 10});
  EXPECT_EQ(ink_box(x), (Rect{0, 0, 10, 4}));
  Pixmap y = draw_type(q, IMAGE_DRAW_REPEAT_Y, 20, 20, {0, 0, 10, 10});
  EXPECT_EQ(ink_box(y), (Rect{0, 0, 4, 10}));
  // Upwards from the bottom edge: the last rows are the picture's last rows.
  Pixmap yi = draw_type(q, IMAGE_DRAW_REPEAT_Y_INVERSE, 20, 20, {0, 0, 10, 10});
  EXPECT_EQ(yi.at(0, 9), kBlue);
  EXPECT_EQ(yi.at(0, 6), kRed);
  EXPECT_EQ(yi.at(0, 0), kBlue);
}

TEST(DrawImageTypes, PatchTypesKeepTheCornersAndStretchTheMiddle) {
  Pixmap p = framed6();
  Pixmap out = draw_type(p, IMAGE_DRAW_PATCH9, 40, 40, {0, 0, 30, 20});
  // The 1-pixel frame stays 1 pixel wide on every side; the inside is red.
  EXPECT_EQ(out.at(0, 0), kWhite);
  EXPECT_EQ(out.at(15, 0), kWhite);
  EXPECT_EQ(out.at(29, 10), kWhite);
  EXPECT_EQ(out.at(15, 19), kWhite);
  EXPECT_EQ(out.at(1, 1), kRed);
  EXPECT_EQ(out.at(15, 10), kRed);
  EXPECT_EQ(out.at(28, 18), kRed);
  EXPECT_EQ(ink_box(out), (Rect{0, 0, 30, 20}));
  Pixmap x = draw_type(p, IMAGE_DRAW_PATCH3_X, 40, 40, {0, 0, 30, 20});
  EXPECT_EQ(ink_box(x), (Rect{0, 7, 30, 6}));
  EXPECT_EQ(x.at(29, 10), kWhite);
  EXPECT_EQ(x.at(15, 10), kRed);
  Pixmap ys = draw_type(p, IMAGE_DRAW_PATCH3_Y_SCALE_X, 40, 40, {0, 0, 30, 20});
  EXPECT_EQ(ink_box(ys), (Rect{0, 0, 30, 20}));
  EXPECT_EQ(ys.at(15, 19), kWhite);
  Pixmap r9 = draw_type(p, IMAGE_DRAW_REPEAT9, 40, 40, {0, 0, 30, 20});
  EXPECT_EQ(r9.at(0, 0), kWhite);
  EXPECT_EQ(r9.at(29, 19), kWhite);
  EXPECT_EQ(r9.at(15, 10), kRed);
}

TEST(DrawImageTypes, NeverOutsideTheWidget) {
  Pixmap big(50, 50, kGreen);
  for (int t = IMAGE_DRAW_DEFAULT; t <= IMAGE_DRAW_FILL; ++t) {
    Pixmap out = draw_type(big, static_cast<image_draw_type_t>(t), 60, 60, {10, 10, 20, 30});
    Rect box = ink_box(out);
    EXPECT_EQ(tk::draw::intersect(box, {10, 10, 20, 30}), box) << "draw type " << t;
    EXPECT_FALSE(box.empty()) << "draw type " << t;
  }
}

class DrawText : public ::testing::Test {
 protected:
  void SetUp() override { tk_testing_init(); }

  Pixmap draw(const char* text, align_h_t h, align_v_t v, Rect box, int size = 20) {
    Pixmap out(200, 100, kGround);
    Canvas c(out);
    tk::draw::TextStyle ts;
    ts.font_size = size;
    ts.color = kWhite;
    ts.align_h = h;
    ts.align_v = v;
    tk::draw::draw_text(c, box, text, ts);
    return out;
  }
};

TEST_F(DrawText, AlignmentPlacesTheInk) {
  Rect box{20, 20, 160, 60};
  Rect left = ink_box(draw("Range", ALIGN_H_LEFT, ALIGN_V_TOP, box));
  Rect right = ink_box(draw("Range", ALIGN_H_RIGHT, ALIGN_V_BOTTOM, box));
  Rect centre = ink_box(draw("Range", ALIGN_H_CENTER, ALIGN_V_MIDDLE, box));
  ASSERT_FALSE(left.empty());
  EXPECT_LE(left.x, 22);
  EXPECT_LE(left.y, 30);
  EXPECT_GE(right.right(), 178);
  EXPECT_GE(right.bottom(), 70);
  EXPECT_EQ(left.w, right.w);
  EXPECT_NEAR(centre.x + centre.w / 2.0, 100.0, 2.0);
  EXPECT_NEAR(centre.y + centre.h / 2.0, 50.0, 4.0);
}

TEST_F(DrawText, ClippedToItsBox) {
  Rect box{10, 10, 60, 20};
  Pixmap out = draw("a line much longer than its box", ALIGN_H_LEFT, ALIGN_V_MIDDLE, box, 24);
  Rect ink = ink_box(out);
  ASSERT_FALSE(ink.empty());
  EXPECT_EQ(tk::draw::intersect(ink, box), ink);
  // The same line in a wider box runs on past where the narrow box cut it.
  Rect wide = ink_box(
      draw("a line much longer than its box", ALIGN_H_LEFT, ALIGN_V_MIDDLE, {10, 10, 180, 20}, 24));
  EXPECT_GT(wide.right(), 100);
  EXPECT_GE(ink.right(), 60);
}

TEST_F(DrawText, ScriptsAndSizes) {
  Rect box{0, 0, 200, 100};
  for (const char* text : {"Дальность", "测距 录像", "Größe", "velocità"}) {
    EXPECT_FALSE(ink_box(draw(text, ALIGN_H_LEFT, ALIGN_V_TOP, box)).empty()) << text;
  }
  Rect small = ink_box(draw("H", ALIGN_H_LEFT, ALIGN_V_TOP, box, 12));
  Rect large = ink_box(draw("H", ALIGN_H_LEFT, ALIGN_V_TOP, box, 36));
  EXPECT_NEAR(static_cast<double>(large.h) / small.h, 3.0, 0.5);
  // Two lines stack: the second starts below the first.
  Rect one = ink_box(draw("H", ALIGN_H_LEFT, ALIGN_V_TOP, box));
  Rect two = ink_box(draw("H\nH", ALIGN_H_LEFT, ALIGN_V_TOP, box));
  EXPECT_GT(two.h, one.h * 2);
}

TEST(DrawImageFiles, PngJpegAndBmpAllDecode) {
  tk_testing_init();
  // A 16 x 8 picture: left half red, right half blue, saved in each format the board reads.
  Pixmap src(16, 8);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 16; ++x)
      src.px[static_cast<size_t>(y) * 16 + x] = x < 8 ? kRed : kBlue;
  std::string png = write_fixture(src, "formats.png");
  SDL_Surface* s =
      SDL_CreateRGBSurfaceWithFormatFrom(src.px.data(), 16, 8, 32, 64, SDL_PIXELFORMAT_RGBA32);
  ASSERT_NE(s, nullptr);
  std::string bmp = scratch_dir() + "/formats.bmp";
  std::string jpg = scratch_dir() + "/formats.jpg";
  ASSERT_EQ(SDL_SaveBMP(s, bmp.c_str()), 0) << SDL_GetError();
  ASSERT_EQ(IMG_SaveJPG(s, jpg.c_str(), 95), 0) << IMG_GetError();
  SDL_FreeSurface(s);
  for (const std::string& path : {png, bmp, jpg}) {
    auto pic = tk::draw::image_get(("file://" + path).c_str());
    ASSERT_NE(pic, nullptr) << path;
    EXPECT_EQ(pic->w, 16) << path;
    EXPECT_EQ(pic->h, 8) << path;
    // Lossy JPEG: close to the colours, exact for the others.
    uint32_t left = pic->at(2, 4);
    uint32_t right = pic->at(13, 4);
    EXPECT_NEAR(tk::draw::color_r(left), 255, 12) << path;
    EXPECT_NEAR(tk::draw::color_b(left), 0, 12) << path;
    EXPECT_NEAR(tk::draw::color_b(right), 255, 12) << path;
    EXPECT_NEAR(tk::draw::color_r(right), 0, 12) << path;
    EXPECT_EQ(tk::draw::color_a(left), 255) << path;
  }
  EXPECT_EQ(tk::draw::image_get(("file://" + png).c_str())->at(0, 0), kRed);
}
