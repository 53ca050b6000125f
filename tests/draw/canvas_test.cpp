// The software canvas: colour-word byte order, blending, clipping, borders, rounded shapes,
// scaled pictures and text masks, checked pixel by pixel.
#include <gtest/gtest.h>

#include "draw/canvas.h"

using tk::draw::blend;
using tk::draw::Canvas;
using tk::draw::color_a;
using tk::draw::color_b;
using tk::draw::color_g;
using tk::draw::color_r;
using tk::draw::make_color;
using tk::draw::Mask;
using tk::draw::Pixmap;
using tk::draw::Rect;

namespace {

constexpr uint32_t kRed = 0xFF0011FF;
constexpr uint32_t kGreen = 0xFF00FF00;
constexpr uint32_t kBlue = 0xFFFF0000;
constexpr uint32_t kWhite = 0xFFFFFFFF;
constexpr uint32_t kBlack = 0xFF000001;

// Count of pixels of `color` inside `r`.
int count(const Pixmap& p, const Rect& r, uint32_t color) {
  int n = 0;
  for (int y = r.y; y < r.bottom(); ++y)
    for (int x = r.x; x < r.right(); ++x)
      n += p.at(x, y) == color ? 1 : 0;
  return n;
}

}  // namespace

TEST(CanvasColour, WordsAreRedInTheLowByteAndAlphaInTheHigh) {
  EXPECT_EQ(color_r(kRed), 255);
  EXPECT_EQ(color_g(kRed), 17);
  EXPECT_EQ(color_b(kRed), 0);
  EXPECT_EQ(color_a(kRed), 255);
  EXPECT_EQ(color_g(kGreen), 255);
  EXPECT_EQ(color_r(kGreen), 0);
  EXPECT_EQ(color_b(kBlue), 255);
  EXPECT_EQ(color_r(kBlack), 1);
  EXPECT_EQ(make_color(255, 17, 0, 255), kRed);
  // In memory a pixel is R, G, B, A: what SDL calls RGBA32 and what PNG files hold.
  Pixmap p(1, 1, kRed);
  const auto* bytes = reinterpret_cast<const uint8_t*>(p.px.data());
  EXPECT_EQ(bytes[0], 255);
  EXPECT_EQ(bytes[1], 17);
  EXPECT_EQ(bytes[2], 0);
  EXPECT_EQ(bytes[3], 255);
}

TEST(CanvasBlend, HalfBlackOverWhiteIsMidGrey) {
  // Black at alpha 128 over white: 255 * 127 / 255 = 127 in each channel, still opaque.
  uint32_t out = blend(kWhite, 0xFF000000, 128);
  EXPECT_EQ(out, make_color(127, 127, 127, 255));
  EXPECT_EQ(blend(kWhite, kRed, 255), kRed);
  EXPECT_EQ(blend(kWhite, kRed, 0), kWhite);
  // A translucent colour word scales with the coverage.
  EXPECT_EQ(blend(make_color(0, 0, 0, 255), make_color(255, 255, 255, 128), 255),
            make_color(128, 128, 128, 255));
}

TEST(CanvasBlend, OntoTransparentKeepsColourAndTakesAlpha) {
  uint32_t out = blend(0, make_color(200, 100, 50, 128), 255);
  EXPECT_EQ(out, make_color(200, 100, 50, 128));
}

TEST(CanvasFill, StaysInsideTheClipAndTheTarget) {
  Pixmap p(20, 20, kWhite);
  Canvas c(p);
  c.set_clip({5, 5, 10, 10});
  c.fill_rect({-10, -10, 100, 100}, kRed);
  EXPECT_EQ(count(p, p.rect(), kRed), 100);
  EXPECT_EQ(p.at(4, 5), kWhite);
  EXPECT_EQ(p.at(5, 5), kRed);
  EXPECT_EQ(p.at(14, 14), kRed);
  EXPECT_EQ(p.at(15, 14), kWhite);
  // A clip outside the target is cut to it.
  c.set_clip({15, 15, 50, 50});
  EXPECT_EQ(c.clip(), (Rect{15, 15, 5, 5}));
}

TEST(CanvasFill, GlobalAlphaBlendsOverWhatIsThere) {
  Pixmap p(4, 4, kWhite);
  Canvas c(p);
  c.set_alpha(128);
  c.fill_rect({0, 0, 2, 4}, 0xFF000000);
  EXPECT_EQ(p.at(0, 0), make_color(127, 127, 127, 255));
  EXPECT_EQ(p.at(2, 0), kWhite);
}

TEST(CanvasBorder, EachSideOnItsOwnAndTranslucentCornersBlendOnce) {
  Pixmap p(10, 10, kWhite);
  Canvas c(p);
  c.stroke_border({0, 0, 10, 10}, 2, 4u /* top */, 0, kBlue);
  EXPECT_EQ(count(p, p.rect(), kBlue), 20);
  EXPECT_EQ(p.at(5, 1), kBlue);
  EXPECT_EQ(p.at(5, 2), kWhite);

  Pixmap q(10, 10, kWhite);
  Canvas cq(q);
  uint32_t half_black = make_color(0, 0, 0, 128);
  cq.stroke_border({0, 0, 10, 10}, 1, 0xffff, 0, half_black);
  uint32_t once = blend(kWhite, half_black, 255);
  // Every border pixel, corners included, is blended exactly once; the inside is untouched.
  EXPECT_EQ(count(q, q.rect(), once), 36);
  EXPECT_EQ(q.at(0, 0), once);
  EXPECT_EQ(q.at(9, 9), once);
  EXPECT_EQ(count(q, {1, 1, 8, 8}, kWhite), 64);
}

TEST(CanvasRound, RingIsHollowAndCornersStayOutside) {
  Pixmap p(40, 40, kWhite);
  Canvas c(p);
  c.stroke_border({0, 0, 40, 40}, 4, 0xffff, 20, kGreen);
  EXPECT_EQ(p.at(20, 20), kWhite);  // centre: inside the ring
  EXPECT_EQ(p.at(0, 0), kWhite);    // corner: outside the circle
  EXPECT_EQ(p.at(39, 39), kWhite);
  EXPECT_EQ(p.at(20, 1), kGreen);  // top of the ring
  EXPECT_EQ(p.at(1, 20), kGreen);  // left of the ring
  EXPECT_EQ(p.at(38, 20), kGreen);
  EXPECT_EQ(p.at(20, 10), kWhite);  // well inside the hole
  // Anti-aliased edge: some pixels between the colours exist on the outer rim.
  int between = 0;
  for (uint32_t v : p.px)
    between += (v != kWhite && v != kGreen) ? 1 : 0;
  EXPECT_GT(between, 0);
}

TEST(CanvasRound, FilledRoundRectKeepsStraightEdgesFull) {
  Pixmap p(30, 20, kBlack);
  Canvas c(p);
  c.fill_round_rect({0, 0, 30, 20}, 6, kRed);
  EXPECT_EQ(p.at(15, 0), kRed);
  EXPECT_EQ(p.at(0, 10), kRed);
  EXPECT_EQ(p.at(0, 0), kBlack);
  EXPECT_EQ(p.at(29, 19), kBlack);
  // A radius larger than half the height is limited to it.
  Pixmap q(30, 10, kBlack);
  Canvas cq(q);
  cq.fill_round_rect({0, 0, 30, 10}, 100, kRed);
  EXPECT_EQ(q.at(15, 5), kRed);
  EXPECT_EQ(q.at(0, 0), kBlack);
}

TEST(CanvasPixmap, CopiesUnscaledAndScalesByNearestAndBilinear) {
  Pixmap src(2, 2);
  src.px = {kRed, kGreen, kBlue, kWhite};
  Pixmap p(8, 8, kBlack);
  Canvas c(p);
  c.draw_pixmap(src, src.rect(), {1, 1, 2, 2});
  EXPECT_EQ(p.at(1, 1), kRed);
  EXPECT_EQ(p.at(2, 1), kGreen);
  EXPECT_EQ(p.at(1, 2), kBlue);
  EXPECT_EQ(p.at(2, 2), kWhite);
  EXPECT_EQ(p.at(0, 0), kBlack);

  Pixmap q(4, 4, kBlack);
  Canvas cq(q);
  cq.draw_pixmap(src, src.rect(), q.rect(), tk::draw::Filter::nearest);
  EXPECT_EQ(count(q, {0, 0, 2, 2}, kRed), 4);
  EXPECT_EQ(count(q, {2, 0, 2, 2}, kGreen), 4);
  EXPECT_EQ(count(q, {0, 2, 2, 2}, kBlue), 4);
  EXPECT_EQ(count(q, {2, 2, 2, 2}, kWhite), 4);

  // Bilinear: the outer corners keep their colour, inner pixels mix neighbours.
  Pixmap b(4, 4, kBlack);
  Canvas cb(b);
  cb.draw_pixmap(src, src.rect(), b.rect());
  EXPECT_EQ(b.at(0, 0), kRed);
  EXPECT_EQ(b.at(3, 3), kWhite);
  uint32_t mid = b.at(1, 0);
  EXPECT_GT(color_r(mid), color_r(kGreen));
  EXPECT_GT(color_g(mid), color_g(kRed));
}

TEST(CanvasPixmap, TransparentPixelsLeaveTheTargetAndEdgesDoNotDarken) {
  Pixmap src(2, 1);
  src.px = {kWhite, 0};
  Pixmap p(2, 1, kBlue);
  Canvas c(p);
  c.draw_pixmap(src, src.rect(), p.rect());
  EXPECT_EQ(p.at(0, 0), kWhite);
  EXPECT_EQ(p.at(1, 0), kBlue);
  // Scaled up, the half-covered pixels between white and transparent stay white, only fainter.
  const uint32_t pure_black = make_color(0, 0, 0, 255);
  Pixmap q(8, 1, pure_black);
  Canvas cq(q);
  cq.draw_pixmap(src, src.rect(), q.rect());
  for (int x = 0; x < 8; ++x) {
    uint32_t v = q.at(x, 0);
    EXPECT_EQ(color_r(v), color_g(v)) << x;
    EXPECT_EQ(color_g(v), color_b(v)) << x;
  }
  EXPECT_EQ(q.at(7, 0), pure_black);
  EXPECT_EQ(q.at(0, 0), kWhite);
}

TEST(CanvasMask, ColoursCoveredPixelsOnlyAndClips) {
  Mask m;
  m.w = 3;
  m.h = 1;
  m.a = {255, 0, 128};
  Pixmap p(4, 2, kWhite);
  Canvas c(p);
  c.draw_mask(m, 1, 1, kBlue);
  EXPECT_EQ(p.at(1, 1), kBlue);
  EXPECT_EQ(p.at(2, 1), kWhite);
  EXPECT_EQ(p.at(3, 1), blend(kWhite, kBlue, 128));
  EXPECT_EQ(count(p, {0, 0, 4, 1}, kWhite), 4);
  c.set_clip({0, 0, 2, 2});
  c.draw_mask(m, 1, 0, kRed);
  EXPECT_EQ(p.at(1, 0), kRed);
  EXPECT_EQ(p.at(3, 0), kWhite);
}
