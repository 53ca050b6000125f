// Software canvas over an RGBA frame: rectangles, rounded shapes, borders, scaled pictures and
// text masks, all clipped and blended source-over with straight alpha.
#include "draw/canvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tk::draw {

Rect intersect(const Rect& a, const Rect& b) {
  int x0 = std::max(a.x, b.x);
  int y0 = std::max(a.y, b.y);
  int x1 = std::min(a.right(), b.right());
  int y1 = std::min(a.bottom(), b.bottom());
  if (x1 <= x0 || y1 <= y0) return {x0, y0, 0, 0};
  return {x0, y0, x1 - x0, y1 - y0};
}

Rect unite(const Rect& a, const Rect& b) {
  if (a.empty()) return b;
  if (b.empty()) return a;
  int x0 = std::min(a.x, b.x);
  int y0 = std::min(a.y, b.y);
  int x1 = std::max(a.right(), b.right());
  int y1 = std::max(a.bottom(), b.bottom());
  return {x0, y0, x1 - x0, y1 - y0};
}

Rect inset(const Rect& r, int d) {
  return {r.x + d, r.y + d, r.w - 2 * d, r.h - 2 * d};
}

uint32_t blend(uint32_t dst, uint32_t src, uint32_t coverage) {
  uint32_t sa = mul255(color_a(src), coverage);
  if (sa == 0) return dst;
  if (sa == 255) return src;
  uint32_t da = color_a(dst);
  uint32_t inv = 255 - sa;
  if (da == 255) {
    auto ch = [&](uint32_t s, uint32_t d) {
      uint32_t t = s * sa + d * inv + 128;
      return (t + (t >> 8)) >> 8;
    };
    return make_color(ch(color_r(src), color_r(dst)), ch(color_g(src), color_g(dst)),
                      ch(color_b(src), color_b(dst)), 255);
  }
  // Translucent destination: general source-over with straight alpha.
  uint32_t dw = mul255(da, inv);  // weight of the destination colour
  uint32_t oa = sa + dw;
  if (oa == 0) return 0;
  auto ch = [&](uint32_t s, uint32_t d) { return (s * sa + d * dw + oa / 2) / oa; };
  return make_color(ch(color_r(src), color_r(dst)), ch(color_g(src), color_g(dst)),
                    ch(color_b(src), color_b(dst)), oa);
}

void blend_span(uint32_t* p, int n, uint32_t src, uint32_t coverage) {
  const uint32_t sa = mul255(color_a(src), coverage);
  if (sa == 0 || n <= 0) return;
  if (sa == 255) {
    std::fill_n(p, n, src);
    return;
  }
  // The opaque-destination case of blend() with the source's share of each channel computed once.
  const uint32_t inv = 255 - sa;
  const uint32_t sr = color_r(src) * sa + 128;
  const uint32_t sg = color_g(src) * sa + 128;
  const uint32_t sb = color_b(src) * sa + 128;
  auto ch = [inv](uint32_t s, uint32_t d) {
    const uint32_t t = s + d * inv;
    return static_cast<uint8_t>((t + (t >> 8)) >> 8);
  };
  for (int i = 0; i < n; ++i) {
    const uint32_t d = p[i];
    p[i] = color_a(d) == 255
               ? make_color(ch(sr, color_r(d)), ch(sg, color_g(d)), ch(sb, color_b(d)), 255)
               : blend(d, src, coverage);
  }
}

Pixmap::Pixmap(int width, int height, uint32_t fill) {
  resize(width, height, fill);
}

void Pixmap::resize(int width, int height, uint32_t fill) {
  w = std::max(width, 0);
  h = std::max(height, 0);
  px.assign(static_cast<size_t>(w) * h, fill);
}

Canvas::Canvas(Pixmap& target) : target_(&target), clip_(target.rect()) {}

void Canvas::set_clip(const Rect& clip) {
  clip_ = intersect(clip, target_->rect());
}

void Canvas::clear(const Rect& r, uint32_t color) {
  Rect d = intersect(r, clip_);
  if (d.empty()) return;
  for (int y = d.y; y < d.bottom(); ++y) {
    std::fill_n(target_->row(y) + d.x, d.w, color);
  }
}

void Canvas::copy(const Pixmap& src, const Rect& r) {
  Rect d = intersect(intersect(r, clip_), src.rect());
  if (d.empty()) return;
  for (int y = d.y; y < d.bottom(); ++y) {
    std::memcpy(target_->row(y) + d.x, src.row(y) + d.x, sizeof(uint32_t) * d.w);
  }
}

void Canvas::fill_rect(const Rect& r, uint32_t color) {
  Rect d = intersect(r, clip_);
  if (d.empty()) return;
  uint32_t sa = mul255(color_a(color), alpha_);
  if (sa == 0) return;
  if (sa == 255) {
    clear(d, color);
    return;
  }
  for (int y = d.y; y < d.bottom(); ++y)
    blend_span(target_->row(y) + d.x, d.w, color, alpha_);
}

namespace {

// Coverage (0..1) of the pixel whose centre is (cx, cy) by the rectangle `r` with circular
// corners of radius `radius`; 1 inside the straight parts.
float rounded_coverage(const Rect& r, float radius, float cx, float cy) {
  if (r.empty()) return 0.0f;
  if (cx < r.x || cy < r.y || cx > r.right() || cy > r.bottom()) return 0.0f;
  if (radius <= 0.0f) return 1.0f;
  float ox;
  float oy;
  if (cx < r.x + radius) {
    ox = r.x + radius;
  } else if (cx > r.right() - radius) {
    ox = r.right() - radius;
  } else {
    return 1.0f;
  }
  if (cy < r.y + radius) {
    oy = r.y + radius;
  } else if (cy > r.bottom() - radius) {
    oy = r.bottom() - radius;
  } else {
    return 1.0f;
  }
  float d = std::hypot(cx - ox, cy - oy);
  return std::clamp(radius - d + 0.5f, 0.0f, 1.0f);
}

int clamp_radius(const Rect& r, int radius) {
  return std::clamp(radius, 0, std::min(r.w, r.h) / 2);
}

}  // namespace

void Canvas::fill_rounded_coverage(const Rect& r, int radius, int inner_width, uint32_t color) {
  Rect d = intersect(r, clip_);
  if (d.empty()) return;
  radius = clamp_radius(r, radius);
  Rect inner = inset(r, inner_width);
  int inner_radius = clamp_radius(inner, radius - inner_width);
  // Pixels whose centre lies in a straight band (between the corners' rows or columns) are
  // covered fully, so the coverage is computed only where a corner may cut a pixel. For a border,
  // the pixels fully covered by the inner shape get nothing and are stepped over.
  const int straight_x0 = r.x + radius;
  const int straight_x1 = r.right() - radius;
  const int straight_y0 = r.y + radius;
  const int straight_y1 = r.bottom() - radius;
  for (int y = d.y; y < d.bottom(); ++y) {
    uint32_t* p = target_->row(y);
    float cy = y + 0.5f;
    const bool straight_row = y >= straight_y0 && y < straight_y1;
    int hole0 = 0;  // [hole0, hole1): inside the inner shape's straight parts on this row
    int hole1 = 0;
    if (inner_width > 0 && !inner.empty() && y >= inner.y && y < inner.bottom()) {
      if (y >= inner.y + inner_radius && y < inner.bottom() - inner_radius) {
        hole0 = inner.x;
        hole1 = inner.right();
      } else {
        hole0 = inner.x + inner_radius;
        hole1 = inner.right() - inner_radius;
      }
    }
    if (inner_width == 0) {
      // A fill: the straight part of the row in one span, the corner pixels one by one.
      const int span0 = straight_row ? d.x : std::clamp(straight_x0, d.x, d.right());
      const int span1 = straight_row ? d.right() : std::clamp(straight_x1, span0, d.right());
      blend_span(p + span0, span1 - span0, color, alpha_);
      for (int x = d.x; x < d.right(); ++x) {
        if (x == span0) x = span1;
        if (x >= d.right()) break;
        float cov = rounded_coverage(r, static_cast<float>(radius), x + 0.5f, cy);
        if (cov <= 0.0f) continue;
        uint32_t c = static_cast<uint32_t>(std::lround(cov * 255.0f));
        p[x] = blend(p[x], color, mul255(c, alpha_));
      }
      continue;
    }
    for (int x = d.x; x < d.right(); ++x) {
      if (x >= hole0 && x < hole1) {
        x = hole1 - 1;
        continue;
      }
      float cx = x + 0.5f;
      float cov = straight_row || (x >= straight_x0 && x < straight_x1)
                      ? 1.0f
                      : rounded_coverage(r, static_cast<float>(radius), cx, cy);
      if (inner_width > 0 && cov > 0.0f) {
        cov -= rounded_coverage(inner, static_cast<float>(inner_radius), cx, cy);
      }
      if (cov <= 0.0f) continue;
      uint32_t c = static_cast<uint32_t>(std::lround(cov * 255.0f));
      p[x] = blend(p[x], color, mul255(c, alpha_));
    }
  }
}

void Canvas::fill_round_rect(const Rect& r, int radius, uint32_t color) {
  if (clamp_radius(r, radius) <= 0) {
    fill_rect(r, color);
    return;
  }
  fill_rounded_coverage(r, radius, 0, color);
}

void Canvas::stroke_border(const Rect& r, int width, unsigned sides, int radius, uint32_t color) {
  if (r.empty() || width <= 0 || sides == 0) return;
  width = std::min(width, std::min(r.w, r.h));
  if (clamp_radius(r, radius) > 0 && (sides & 0xf) == 0xf) {
    fill_rounded_coverage(r, radius, width, color);
    return;
  }
  // Straight sides; left and right leave out the rows already covered by top and bottom, so a
  // translucent border is not blended twice at the corners.
  bool top = sides & 4u;
  bool bottom = sides & 8u;
  int y0 = r.y + (top ? width : 0);
  int y1 = r.bottom() - (bottom ? width : 0);
  if (top) fill_rect({r.x, r.y, r.w, width}, color);
  if (bottom) fill_rect({r.x, r.bottom() - width, r.w, width}, color);
  if (sides & 1u) fill_rect({r.x, y0, width, y1 - y0}, color);
  if (sides & 2u) fill_rect({r.right() - width, y0, width, y1 - y0}, color);
}

namespace {

struct Sample {
  int i0;
  int i1;
  uint32_t f;  // weight of i1, 0..256
};

// For each destination index, the two source indices and the weight between them.
void build_samples(std::vector<Sample>& out, int dst_origin, int dst_size, int from, int count,
                   int src_origin, int src_size, Filter filter) {
  out.resize(static_cast<size_t>(count));
  double scale = static_cast<double>(src_size) / dst_size;
  for (int i = 0; i < count; ++i) {
    double pos = (from + i - dst_origin + 0.5) * scale;
    if (filter == Filter::nearest) {
      int s = std::clamp(static_cast<int>(std::floor(pos)), 0, src_size - 1);
      out[static_cast<size_t>(i)] = {src_origin + s, src_origin + s, 0};
      continue;
    }
    pos -= 0.5;
    int s0 = static_cast<int>(std::floor(pos));
    double frac = pos - s0;
    int s1 = s0 + 1;
    s0 = std::clamp(s0, 0, src_size - 1);
    s1 = std::clamp(s1, 0, src_size - 1);
    out[static_cast<size_t>(i)] = {src_origin + s0, src_origin + s1,
                                   static_cast<uint32_t>(std::lround(frac * 256.0))};
  }
}

// Bilinear mix of four straight-alpha pixels, done on premultiplied values so transparent
// neighbours do not darken the edges.
uint32_t mix4(uint32_t p00, uint32_t p01, uint32_t p10, uint32_t p11, uint32_t fx, uint32_t fy) {
  uint32_t w00 = (256 - fx) * (256 - fy);
  uint32_t w01 = fx * (256 - fy);
  uint32_t w10 = (256 - fx) * fy;
  uint32_t w11 = fx * fy;
  uint64_t a = uint64_t{color_a(p00)} * w00 + uint64_t{color_a(p01)} * w01 +
               uint64_t{color_a(p10)} * w10 + uint64_t{color_a(p11)} * w11;
  if (a == 0) return 0;
  auto ch = [&](uint8_t (*get)(uint32_t)) {
    uint64_t v = uint64_t{get(p00)} * color_a(p00) * w00 + uint64_t{get(p01)} * color_a(p01) * w01 +
                 uint64_t{get(p10)} * color_a(p10) * w10 + uint64_t{get(p11)} * color_a(p11) * w11;
    return static_cast<uint8_t>(std::min<uint64_t>(255, (v + a / 2) / a));
  };
  uint8_t out_a = static_cast<uint8_t>((a + 32768) >> 16);
  return make_color(ch(color_r), ch(color_g), ch(color_b), out_a);
}

}  // namespace

void Canvas::draw_pixmap(const Pixmap& src, const Rect& src_rect, const Rect& dst_rect,
                         Filter filter) {
  Rect s = intersect(src_rect, src.rect());
  if (s.empty() || s != src_rect || dst_rect.empty()) return;
  Rect d = intersect(dst_rect, clip_);
  if (d.empty() || alpha_ == 0) return;

  if (s.w == dst_rect.w && s.h == dst_rect.h) {
    int dx = s.x - dst_rect.x;
    int dy = s.y - dst_rect.y;
    for (int y = d.y; y < d.bottom(); ++y) {
      const uint32_t* sp = src.row(y + dy) + d.x + dx;
      uint32_t* p = target_->row(y) + d.x;
      if (alpha_ == 255) {
        for (int i = 0; i < d.w; ++i) {
          uint32_t c = sp[i];
          uint32_t a = color_a(c);
          if (a == 255) {
            p[i] = c;
          } else if (a != 0) {
            p[i] = blend(p[i], c, 255);
          }
        }
      } else {
        for (int i = 0; i < d.w; ++i)
          p[i] = blend(p[i], sp[i], alpha_);
      }
    }
    return;
  }

  thread_local std::vector<Sample> xs;
  thread_local std::vector<Sample> ys;
  build_samples(xs, dst_rect.x, dst_rect.w, d.x, d.w, s.x, s.w, filter);
  build_samples(ys, dst_rect.y, dst_rect.h, d.y, d.h, s.y, s.h, filter);
  for (int j = 0; j < d.h; ++j) {
    const Sample& sy = ys[static_cast<size_t>(j)];
    const uint32_t* r0 = src.row(sy.i0);
    const uint32_t* r1 = src.row(sy.i1);
    uint32_t* p = target_->row(d.y + j) + d.x;
    for (int i = 0; i < d.w; ++i) {
      const Sample& sx = xs[static_cast<size_t>(i)];
      uint32_t c;
      if (filter == Filter::nearest) {
        c = r0[sx.i0];
      } else {
        c = mix4(r0[sx.i0], r0[sx.i1], r1[sx.i0], r1[sx.i1], sx.f, sy.f);
      }
      p[i] = blend(p[i], c, alpha_);
    }
  }
}

void Canvas::draw_mask(const Mask& mask, int x, int y, uint32_t color) {
  Rect d = intersect({x, y, mask.w, mask.h}, clip_);
  if (d.empty()) return;
  uint32_t ca = mul255(color_a(color), alpha_);
  if (ca == 0) return;
  for (int yy = d.y; yy < d.bottom(); ++yy) {
    const uint8_t* m = mask.a.data() + static_cast<size_t>(yy - y) * mask.w + (d.x - x);
    uint32_t* p = target_->row(yy) + d.x;
    for (int i = 0; i < d.w; ++i) {
      uint32_t cov = m[i];
      if (cov == 0) continue;
      p[i] = blend(p[i], color, mul255(cov, alpha_));
    }
  }
}

}  // namespace tk::draw
