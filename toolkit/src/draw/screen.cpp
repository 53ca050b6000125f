// Painting the window stack into the frame: windows bottom to top over the backdrop, each
// widget's background, content (text, image, progress) and border from its current style, with
// opacity multiplied down the tree. Only the dirty region is painted.
#include "draw/screen.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "draw/images.h"
#include "draw/png_io.h"
#include "draw/text.h"
#include "tk_internal.h"

namespace tk::draw {

namespace {

Screen s_screen;

// Rectangles beyond this count are painted as their bounding box.
constexpr size_t kMaxDirtyRects = 24;
// The default font size of a widget whose style gives none.
constexpr int kDefaultFontSize = 18;
// Widgets at this opacity or below are not painted, nor are their children.
constexpr uint8_t kInvisibleOpacity = 8;

Rect to_rect(const rect_t& r) {
  return {r.x, r.y, r.w, r.h};
}

bool same(const char* kind, std::string_view name) {
  return kind != nullptr && name == kind;
}

bool is_window_kind(const char* kind) {
  return same(kind, WIDGET_TYPE_NORMAL_WINDOW) || same(kind, WIDGET_TYPE_DIALOG) ||
         same(kind, "popup") || same(kind, "overlay") || same(kind, "system_bar") ||
         same(kind, "keyboard");
}

uint32_t color_or_none(const widget_t* w, const char* prop) {
  uint32_t c = 0;
  return style_color(w, prop, &c) ? c : 0;
}

TextStyle text_style_of(const widget_t* w) {
  TextStyle ts;
  const char* font = style_str(w, "font_name");
  if (font != nullptr && *font != '\0') {
    ts.font_name = font;
  } else if (system_info() != nullptr && system_info()->default_font != nullptr) {
    ts.font_name = system_info()->default_font;
  }
  ts.font_size = style_int_or(w, "font_size", kDefaultFontSize);
  ts.color = style_color_or(w, "text_color", make_color(0, 0, 0, 255));
  int h = style_int_or(w, "text_align_h", ALIGN_H_CENTER);
  int v = style_int_or(w, "text_align_v", ALIGN_V_MIDDLE);
  ts.align_h =
      (h >= ALIGN_H_CENTER && h <= ALIGN_H_RIGHT) ? static_cast<align_h_t>(h) : ALIGN_H_CENTER;
  ts.align_v =
      (v >= ALIGN_V_MIDDLE && v <= ALIGN_V_BOTTOM) ? static_cast<align_v_t>(v) : ALIGN_V_MIDDLE;
  return ts;
}

// The widget rectangle less its style margins: where text goes.
Rect content_box(const widget_t* w, const Rect& r) {
  int m = style_int_or(w, "margin", 0);
  int left = style_int_or(w, "margin_left", m);
  int right = style_int_or(w, "margin_right", m);
  int top = style_int_or(w, "margin_top", m);
  int bottom = style_int_or(w, "margin_bottom", m);
  int dx = style_int_or(w, "x_offset", 0);
  int dy = style_int_or(w, "y_offset", 0);
  return {r.x + left + dx, r.y + top + dy, r.w - left - right, r.h - top - bottom};
}

void draw_background(Canvas& c, const widget_t* w, const Rect& r, int radius) {
  uint32_t bg = color_or_none(w, "bg_color");
  if (color_a(bg) != 0) c.fill_round_rect(r, radius, bg);
  const char* bg_image = style_str(w, "bg_image");
  if (bg_image != nullptr && *bg_image != '\0') {
    if (auto pic = image_get(bg_image)) {
      int32_t type = style_int_or(w, "bg_image_draw_type", IMAGE_DRAW_CENTER);
      if (type < IMAGE_DRAW_DEFAULT || type > IMAGE_DRAW_FILL) type = IMAGE_DRAW_CENTER;
      draw_image(c, *pic, r, static_cast<image_draw_type_t>(type));
    }
  }
}

void draw_border(Canvas& c, const widget_t* w, const Rect& r, int radius) {
  uint32_t bc = color_or_none(w, "border_color");
  if (color_a(bc) == 0) return;
  int width = style_int_or(w, "border_width", 1);
  int sides = style_int_or(w, "border", BORDER_ALL);
  c.stroke_border(r, width, static_cast<unsigned>(sides), radius, bc);
}

void draw_progress(Canvas& c, const widget_t* w, const Rect& r, int radius) {
  double max = progress_max(w);
  double value = std::clamp(progress_value(w), 0.0, max > 0 ? max : 0.0);
  double frac = max > 0 ? value / max : 0.0;
  bool vertical = progress_vertical(w);
  bool reverse = progress_reverse(w);
  Rect fg = r;
  if (vertical) {
    fg.h = static_cast<int>(std::lround(r.h * frac));
    // Grows upwards from the bottom edge; reversed, downwards from the top.
    if (!reverse) fg.y = r.bottom() - fg.h;
  } else {
    fg.w = static_cast<int>(std::lround(r.w * frac));
    if (reverse) fg.x = r.right() - fg.w;
  }
  uint32_t fg_color = color_or_none(w, "fg_color");
  if (color_a(fg_color) != 0 && !fg.empty()) c.fill_round_rect(fg, radius, fg_color);
  if (!progress_show_text(w)) return;
  std::string text = text_utf8(w);
  if (text.empty()) {
    char buf[32];
    tk_snprintf(buf, sizeof(buf), "%d%%", static_cast<int>(std::lround(frac * 100)));
    text = buf;
  }
  draw_text(c, content_box(w, r), text, text_style_of(w));
}

// Windows, images and progress bars draw no text of their own (a progress bar's is separate).
bool draws_text(const char* kind) {
  return !is_window_kind(kind) && !same(kind, WIDGET_TYPE_IMAGE) &&
         !same(kind, WIDGET_TYPE_PROGRESS_BAR);
}

void draw_self(Canvas& c, const widget_t* w, const char* kind, const Rect& r) {
  int radius = style_int_or(w, "round_radius", 0);
  draw_background(c, w, r, radius);
  if (same(kind, WIDGET_TYPE_IMAGE)) {
    const char* name = image_name(w);
    if (name != nullptr && *name != '\0') {
      if (auto pic = image_get(name)) draw_image(c, *pic, r, draw_type(w));
    }
  } else if (same(kind, WIDGET_TYPE_PROGRESS_BAR)) {
    draw_progress(c, w, r, radius);
  } else if (draws_text(kind)) {
    std::string text = text_utf8(w);
    if (!text.empty()) draw_text(c, content_box(w, r), text, text_style_of(w));
  }
  draw_border(c, w, r, radius);
}

struct PaintPass {
  Canvas& c;
  const std::vector<Rect>& rects;
  Rect window_clip;
};

void paint_widget(PaintPass& p, widget_t* w, int ox, int oy, uint8_t parent_alpha) {
  if (!visible(w)) return;
  uint8_t own = opacity(w);
  if (own <= kInvisibleOpacity) return;
  auto alpha = static_cast<uint8_t>(mul255(parent_alpha, own));
  Rect r{ox + w->x, oy + w->y, w->w, w->h};
  const char* k = kind(w);
  for (const Rect& d : p.rects) {
    Rect clip = intersect(d, p.window_clip);
    if (intersect(clip, r).empty()) continue;
    p.c.set_clip(clip);
    p.c.set_alpha(alpha);
    draw_self(p.c, w, k, r);
  }
  if (w->children == nullptr) return;
  // Children are positioned relative to this widget and may reach outside it; they are only
  // clipped to their window.
  for (uint32_t i = 0; i < w->children->size; ++i) {
    paint_widget(p, static_cast<widget_t*>(w->children->elms[i]), r.x, r.y, alpha);
  }
}

// Whether the window hides everything under `area`: visible, fully opaque, square-cornered
// and covering it.
bool window_covers(const widget_t* win, const Rect& area) {
  if (!visible(win) || opacity(win) != 255) return false;
  Rect r{win->x, win->y, win->w, win->h};
  if (intersect(r, area) != area) return false;
  if (style_int_or(win, "round_radius", 0) != 0) return false;
  return color_a(color_or_none(win, "bg_color")) == 255;
}

}  // namespace

Screen& screen() {
  return s_screen;
}

bool widget_text_layout(const widget_t* w, WidgetText& out) {
  if (w == nullptr || !draws_text(kind(w))) return false;
  out.text = text_utf8(w);
  out.box = content_box(w, Rect{0, 0, w->w, w->h});
  out.style = text_style_of(w);
  return true;
}

void screen_init(int w, int h) {
  s_screen.frame.resize(w, h, make_color(0, 0, 0, 255));
  s_screen.backdrop = Pixmap();
  s_screen.unpresented.assign(1, s_screen.frame.rect());
  s_screen.paints = 0;
  s_screen.ready = true;
  const char* backdrop = getenv("TK_BACKDROP");
  if (backdrop != nullptr && *backdrop != '\0') set_backdrop(backdrop);
  invalidate_rect(rect_t{0, 0, w, h});
}

void screen_release() {
  s_screen.frame = Pixmap();
  s_screen.backdrop = Pixmap();
  s_screen.unpresented.clear();
  s_screen.ready = false;
}

bool set_backdrop(const std::string& path) {
  Pixmap& frame = s_screen.frame;
  s_screen.backdrop = Pixmap();
  if (s_screen.ready) invalidate_rect(rect_t{0, 0, frame.w, frame.h});
  if (path.empty()) return true;
  Pixmap pic;
  std::string error;
  if (!load_picture(path, pic, error)) {
    log_error("backdrop %s cannot be read (%s); the backdrop is black\n", path.c_str(),
              error.c_str());
    return false;
  }
  // Scaled once to the screen and made opaque over black, so painting only copies it.
  Pixmap scaled(frame.w, frame.h, make_color(0, 0, 0, 255));
  Canvas c(scaled);
  c.draw_pixmap(pic, pic.rect(), scaled.rect());
  s_screen.backdrop = std::move(scaled);
  return true;
}

std::vector<Rect> normalize_dirty(std::vector<Rect> rects, const Rect& bounds) {
  std::vector<Rect> out;
  out.reserve(rects.size());
  for (const Rect& r : rects) {
    Rect c = intersect(r, bounds);
    if (!c.empty()) out.push_back(c);
  }
  bool merged = true;
  while (merged && out.size() > 1) {
    merged = false;
    for (size_t i = 0; i < out.size() && !merged; ++i) {
      for (size_t j = i + 1; j < out.size(); ++j) {
        if (!intersect(out[i], out[j]).empty()) {
          out[i] = unite(out[i], out[j]);
          out.erase(out.begin() + static_cast<std::ptrdiff_t>(j));
          merged = true;
          break;
        }
      }
    }
  }
  if (out.size() > kMaxDirtyRects) {
    Rect box;
    for (const Rect& r : out)
      box = unite(box, r);
    out.assign(1, box);
  }
  return out;
}

void paint_rects(std::vector<Rect> rects) {
  if (!s_screen.ready) return;
  Pixmap& frame = s_screen.frame;
  rects = normalize_dirty(std::move(rects), frame.rect());
  if (rects.empty()) return;
  Rect box;
  for (const Rect& r : rects)
    box = unite(box, r);

  std::vector<widget_t*> wins = windows_bottom_to_top();
  // Start at the topmost window that hides everything below it in the dirty region.
  size_t first = 0;
  bool covered = false;
  for (size_t i = wins.size(); i-- > 0;) {
    if (window_covers(wins[i], box)) {
      first = i;
      covered = true;
      break;
    }
  }

  Canvas c(frame);
  if (!covered) {
    for (const Rect& d : rects) {
      c.set_clip(d);
      if (s_screen.backdrop.empty()) {
        c.clear(d, make_color(0, 0, 0, 255));
      } else {
        c.copy(s_screen.backdrop, d);
      }
    }
  }
  for (size_t i = first; i < wins.size(); ++i) {
    widget_t* win = wins[i];
    PaintPass pass{c, rects, Rect{win->x, win->y, win->w, win->h}};
    paint_widget(pass, win, 0, 0, 255);
  }

  auto& pending = s_screen.unpresented;
  pending.insert(pending.end(), rects.begin(), rects.end());
  if (pending.size() > kMaxDirtyRects) pending = normalize_dirty(std::move(pending), frame.rect());
  s_screen.paints++;
}

bool paint_pending() {
  if (!s_screen.ready || !has_dirty()) return false;
  std::vector<Rect> rects;
  for (const rect_t& r : take_dirty())
    rects.push_back(to_rect(r));
  if (rects.empty()) return false;
  paint_rects(std::move(rects));
  return true;
}

}  // namespace tk::draw
