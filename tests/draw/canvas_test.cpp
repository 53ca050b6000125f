// What the painted layout does not show of the software canvas: translucent borders blended
// once at the corners, radii limited to the shape, transparent picture edges that do not darken
// when scaled.
#include <gtest/gtest.h>

#include "draw/canvas.h"
#include "draw_test_util.h"

using namespace drawtest;
using tk::draw::blend;
using tk::draw::Canvas;
using tk::draw::color_b;
using tk::draw::color_g;
using tk::draw::color_r;
using tk::draw::make_color;
using tk::draw::Pixmap;

TEST(Canvas, TranslucentBorderCornersBlendOnceAndRadiiAreLimited) {
  Pixmap p(10, 10, kWhite);
  Canvas c(p);
  uint32_t half_black = make_color(0, 0, 0, 128);
  c.stroke_border(p.rect(), 1, 0xffff, 0, half_black);
  uint32_t once = blend(kWhite, half_black, 255);
  int blended = 0;
  for (uint32_t v : p.px)
    blended += v == once ? 1 : 0;
  EXPECT_EQ(blended, 36);  // the 36 border pixels, corners included, and nothing inside
  EXPECT_EQ(p.at(5, 5), kWhite);
  // A radius larger than half the height is limited to it: a pill, full in the middle.
  Pixmap q(30, 10, kBlack);
  Canvas cq(q);
  cq.fill_round_rect(q.rect(), 100, kRed);
  EXPECT_EQ(q.at(15, 0), kRed);
  EXPECT_EQ(q.at(15, 9), kRed);
  EXPECT_EQ(q.at(0, 0), kBlack);
}

TEST(Canvas, ScaledTransparentEdgesKeepTheirColour) {
  Pixmap src(2, 1);
  src.px = {kWhite, 0};
  const uint32_t black = make_color(0, 0, 0, 255);
  Pixmap q(8, 1, black);
  Canvas cq(q);
  cq.draw_pixmap(src, src.rect(), q.rect());
  // Between white and transparent only fainter white, never a darker colour.
  for (int x = 0; x < 8; ++x) {
    uint32_t v = q.at(x, 0);
    EXPECT_TRUE(color_r(v) == color_g(v) && color_g(v) == color_b(v)) << x;
  }
  EXPECT_EQ(q.at(0, 0), kWhite);
  EXPECT_EQ(q.at(7, 0), black);
}
