// Software canvas over an RGBA frame.
//
// Pixels are 32-bit colour words in the toolkit's order 0xAABBGGRR: in memory the bytes are
// R, G, B, A, so a frame can be handed to SDL as SDL_PIXELFORMAT_RGBA32 and to PNG writers as
// plain RGBA without conversion, and a pixel read back compares directly with a colour word
// given to widget_set_style_color (0xFF0011FF is red).
#ifndef TK_DRAW_CANVAS_H
#define TK_DRAW_CANVAS_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tk::draw {

struct Rect {
  int x = 0;
  int y = 0;
  int w = 0;
  int h = 0;

  bool empty() const { return w <= 0 || h <= 0; }
  int right() const { return x + w; }
  int bottom() const { return y + h; }
  bool contains(int px, int py) const {
    return px >= x && py >= y && px < right() && py < bottom();
  }
  bool operator==(const Rect&) const = default;
};

Rect intersect(const Rect& a, const Rect& b);
// Smallest rectangle holding both; an empty operand is ignored.
Rect unite(const Rect& a, const Rect& b);
// Rectangle shrunk by `d` on every side (grown for negative d).
Rect inset(const Rect& r, int d);

constexpr uint8_t color_r(uint32_t c) {
  return static_cast<uint8_t>(c);
}
constexpr uint8_t color_g(uint32_t c) {
  return static_cast<uint8_t>(c >> 8);
}
constexpr uint8_t color_b(uint32_t c) {
  return static_cast<uint8_t>(c >> 16);
}
constexpr uint8_t color_a(uint32_t c) {
  return static_cast<uint8_t>(c >> 24);
}
constexpr uint32_t make_color(uint8_t r, uint8_t g, uint8_t b, uint8_t a) {
  return uint32_t{r} | (uint32_t{g} << 8) | (uint32_t{b} << 16) | (uint32_t{a} << 24);
}

// x * y / 255, rounded to nearest, exact for 0..255 operands.
constexpr uint32_t mul255(uint32_t x, uint32_t y) {
  uint32_t t = x * y + 128;
  return (t + (t >> 8)) >> 8;
}

// Source-over blend of `src` (straight alpha) scaled by `coverage` (0..255) onto `dst`.
uint32_t blend(uint32_t dst, uint32_t src, uint32_t coverage);
// blend() over `n` pixels from `p`, the same result pixel by pixel, with the per-colour work once.
void blend_span(uint32_t* p, int n, uint32_t src, uint32_t coverage);

// A picture of w x h colour words, rows top to bottom, no padding.
struct Pixmap {
  int w = 0;
  int h = 0;
  std::vector<uint32_t> px;

  Pixmap() = default;
  Pixmap(int width, int height, uint32_t fill = 0);
  void resize(int width, int height, uint32_t fill = 0);
  bool empty() const { return w <= 0 || h <= 0; }
  Rect rect() const { return {0, 0, w, h}; }
  uint32_t at(int x, int y) const { return px[static_cast<size_t>(y) * w + x]; }
  uint32_t* row(int y) { return px.data() + static_cast<size_t>(y) * w; }
  const uint32_t* row(int y) const { return px.data() + static_cast<size_t>(y) * w; }
};

// An 8-bit coverage mask (rendered text): 0 = nothing, 255 = fully covered.
struct Mask {
  int w = 0;
  int h = 0;
  std::vector<uint8_t> a;
};

// How a picture is resampled when drawn at another size.
enum class Filter { nearest, bilinear };

// Draws into a Pixmap. Every primitive is limited to the clip rectangle (never outside the
// target) and multiplied by the global alpha; nothing keeps state between calls except clip
// and alpha, so a Canvas is cheap to make per frame.
class Canvas {
 public:
  explicit Canvas(Pixmap& target);

  Pixmap& target() { return *target_; }
  // The clip is always kept inside the target.
  void set_clip(const Rect& clip);
  const Rect& clip() const { return clip_; }
  void set_alpha(uint8_t alpha) { alpha_ = alpha; }
  uint8_t alpha() const { return alpha_; }

  // Replaces pixels (no blending, no global alpha): clearing and backdrops.
  void clear(const Rect& r, uint32_t color);
  void copy(const Pixmap& src, const Rect& dst_rect);

  void fill_rect(const Rect& r, uint32_t color);
  // Filled rectangle with circular corners of `radius` (anti-aliased edges).
  void fill_round_rect(const Rect& r, int radius, uint32_t color);
  // Border of `width` pixels on the sides in `sides` (bits: left 1, right 2, top 4, bottom 8),
  // drawn inside `r`. With a radius the whole outline is drawn as a rounded ring.
  void stroke_border(const Rect& r, int width, unsigned sides, int radius, uint32_t color);

  // Draws `src_rect` of `src` into `dst_rect`, scaled when the sizes differ.
  void draw_pixmap(const Pixmap& src, const Rect& src_rect, const Rect& dst_rect,
                   Filter filter = Filter::bilinear);
  // Blends `color` through the mask placed with its top-left corner at (x, y).
  void draw_mask(const Mask& mask, int x, int y, uint32_t color);

 private:
  void fill_rounded_coverage(const Rect& r, int radius, int inner_width, uint32_t color);

  Pixmap* target_;
  Rect clip_;
  uint8_t alpha_ = 255;
};

}  // namespace tk::draw

#endif  // TK_DRAW_CANVAS_H
