// Images by name: the asset resolution comes from the core (tk::image_path); this file decodes,
// caches and draws them.
#include "draw/images.h"

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>

#include "draw/png_io.h"
#include "tk_internal.h"

namespace tk::draw {

namespace {

struct CachedImage {
  std::shared_ptr<const Pixmap> pic;  // null: missing or broken
  std::string path;
  int64_t mtime_ns = 0;
  int64_t size = 0;
  uint64_t last_use = 0;
};

struct ImageCache {
  std::map<std::string, CachedImage, std::less<>> entries;
  std::set<std::string, std::less<>> reported;  // names already logged as missing or broken
  size_t bytes = 0;
  uint64_t use_counter = 0;
};

ImageCache& cache() {
  static ImageCache c;
  return c;
}

// Decoded pictures beyond this many bytes are dropped, least recently used first.
constexpr size_t kCacheBudget = size_t{96} << 20;

bool file_stamp(const std::string& path, int64_t& mtime_ns, int64_t& size) {
  struct stat st {};
  if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return false;
  mtime_ns = int64_t{st.st_mtim.tv_sec} * 1000000000 + st.st_mtim.tv_nsec;
  size = st.st_size;
  return true;
}

size_t pic_bytes(const CachedImage& e) {
  return e.pic ? e.pic->px.size() * sizeof(uint32_t) : 0;
}

void trim(ImageCache& c) {
  while (c.bytes > kCacheBudget) {
    auto oldest = c.entries.end();
    for (auto it = c.entries.begin(); it != c.entries.end(); ++it) {
      if (it->second.pic &&
          (oldest == c.entries.end() || it->second.last_use < oldest->second.last_use)) {
        oldest = it;
      }
    }
    if (oldest == c.entries.end()) break;
    c.bytes -= pic_bytes(oldest->second);
    c.entries.erase(oldest);
  }
}

void report_once(ImageCache& c, const std::string& name, const std::string& message) {
  if (c.reported.insert(name).second) log_warn("%s\n", message.c_str());
}

bool is_file_name(std::string_view name) {
  return name.starts_with("file://");
}

}  // namespace

std::shared_ptr<const Pixmap> image_get(const char* name) {
  if (name == nullptr || *name == '\0') return nullptr;
  ImageCache& c = cache();
  auto it = c.entries.find(std::string_view(name));
  if (it != c.entries.end()) {
    CachedImage& e = it->second;
    e.last_use = ++c.use_counter;
    if (!is_file_name(name)) return e.pic;
    // A picture given by path may be replaced on the card while it is shown (thumbnails,
    // photos): decode again when the file changed or appeared.
    int64_t mtime = 0;
    int64_t size = 0;
    bool exists = file_stamp(e.path, mtime, size);
    if (exists == static_cast<bool>(e.pic) && mtime == e.mtime_ns && size == e.size) return e.pic;
    if (!exists && !e.pic) return nullptr;
    c.bytes -= pic_bytes(e);
    c.entries.erase(it);
    c.reported.erase(std::string(name));
  }

  CachedImage e;
  e.last_use = ++c.use_counter;
  e.path = image_path(name);
  if (e.path.empty()) {
    if (is_file_name(name)) e.path = std::string(name).substr(7);
    report_once(c, name, std::string("!!!Asset [name=") + name + " type=image] not exist!!!");
  } else if (e.path.ends_with(".bsvg")) {
    report_once(c, name,
                std::string("image ") + name + ": " + e.path +
                    " is a vector image, which the image widget cannot draw");
  } else {
    file_stamp(e.path, e.mtime_ns, e.size);
    auto pic = std::make_shared<Pixmap>();
    std::string error;
    if (load_picture(e.path, *pic, error)) {
      e.pic = std::move(pic);
    } else {
      report_once(c, name,
                  std::string("image ") + name + ": cannot decode " + e.path + ": " + error);
    }
  }
  c.bytes += pic_bytes(e);
  auto pic = e.pic;
  c.entries.insert_or_assign(std::string(name), std::move(e));
  trim(c);
  return pic;
}

void image_cache_clear() {
  ImageCache& c = cache();
  c.entries.clear();
  c.reported.clear();
  c.bytes = 0;
}

namespace {

// Draws copies of `src_rect` side by side over `area`, the first copy's top-left corner at
// (ox, oy); only what falls inside `area` is drawn.
void tile(Canvas& c, const Pixmap& pic, const Rect& src_rect, const Rect& area, int ox, int oy) {
  if (src_rect.empty() || area.empty()) return;
  Rect saved = c.clip();
  Rect clip = intersect(saved, area);
  if (clip.empty()) return;
  c.set_clip(clip);
  // Start from the first copy that reaches into the clip.
  int x0 =
      ox + ((clip.x - ox) / src_rect.w - ((clip.x - ox) % src_rect.w < 0 ? 1 : 0)) * src_rect.w;
  int y0 =
      oy + ((clip.y - oy) / src_rect.h - ((clip.y - oy) % src_rect.h < 0 ? 1 : 0)) * src_rect.h;
  for (int y = y0; y < clip.bottom(); y += src_rect.h) {
    for (int x = x0; x < clip.right(); x += src_rect.w) {
      c.draw_pixmap(pic, src_rect, {x, y, src_rect.w, src_rect.h});
    }
  }
  c.set_clip(saved);
}

// Splits a length into three parts: two fixed ends and a middle that stretches. The ends are
// the image's own ends (all but its centre pixel column or row pair), shrunk evenly when the
// destination is too short to hold them.
struct Split3 {
  int a;  // first end
  int b;  // last end
};

Split3 src_split(int len) {
  int end = std::max(0, (len - 1) / 2);
  return {end, end};
}

Split3 dst_split(const Split3& s, int len) {
  if (s.a + s.b <= len) return s;
  int a = len / 2;
  return {a, len - a};
}

// Draws the picture in three parts along x (horizontal = true) or y; the middle part is
// stretched, or tiled when `repeat`. The cross axis is drawn to `r` as given.
void draw3(Canvas& c, const Pixmap& pic, const Rect& r, bool horizontal, bool repeat) {
  int slen = horizontal ? pic.w : pic.h;
  Split3 s = src_split(slen);
  Split3 d = dst_split(s, horizontal ? r.w : r.h);
  int smid = slen - s.a - s.b;
  int dlen = horizontal ? r.w : r.h;
  int dmid = dlen - d.a - d.b;
  auto part = [&](int s0, int sl, int d0, int dl, bool tiled) {
    if (sl <= 0 || dl <= 0) return;
    Rect sr = horizontal ? Rect{s0, 0, sl, pic.h} : Rect{0, s0, pic.w, sl};
    Rect dr = horizontal ? Rect{r.x + d0, r.y, dl, r.h} : Rect{r.x, r.y + d0, r.w, dl};
    bool same_cross = horizontal ? sr.h == dr.h : sr.w == dr.w;
    if (tiled && same_cross) {
      tile(c, pic, sr, dr, dr.x, dr.y);
    } else {
      c.draw_pixmap(pic, sr, dr, Filter::nearest);
    }
  };
  part(0, s.a, 0, d.a, false);
  part(s.a, smid, d.a, dmid, repeat);
  part(slen - s.b, s.b, dlen - d.b, d.b, false);
}

void draw9(Canvas& c, const Pixmap& pic, const Rect& r, bool repeat) {
  Split3 sx = src_split(pic.w);
  Split3 sy = src_split(pic.h);
  Split3 dx = dst_split(sx, r.w);
  Split3 dy = dst_split(sy, r.h);
  int scol[4] = {0, sx.a, pic.w - sx.b, pic.w};
  int srow[4] = {0, sy.a, pic.h - sy.b, pic.h};
  int dcol[4] = {r.x, r.x + dx.a, r.right() - dx.b, r.right()};
  int drow[4] = {r.y, r.y + dy.a, r.bottom() - dy.b, r.bottom()};
  for (int j = 0; j < 3; ++j) {
    for (int i = 0; i < 3; ++i) {
      Rect sr{scol[i], srow[j], scol[i + 1] - scol[i], srow[j + 1] - srow[j]};
      Rect dr{dcol[i], drow[j], dcol[i + 1] - dcol[i], drow[j + 1] - drow[j]};
      if (sr.empty() || dr.empty()) continue;
      bool middle = i == 1 || j == 1;
      if (repeat && middle) {
        // Edges repeat along their length and keep their thickness; the centre repeats both ways.
        Rect tile_src = sr;
        tile(c, pic, tile_src, dr, dr.x, dr.y);
      } else {
        c.draw_pixmap(pic, sr, dr, Filter::nearest);
      }
    }
  }
}

Rect fit(const Pixmap& pic, const Rect& r, bool cover) {
  double sx = static_cast<double>(r.w) / pic.w;
  double sy = static_cast<double>(r.h) / pic.h;
  double s = cover ? std::max(sx, sy) : std::min(sx, sy);
  int w = std::max(1, static_cast<int>(std::lround(pic.w * s)));
  int h = std::max(1, static_cast<int>(std::lround(pic.h * s)));
  return {r.x + (r.w - w) / 2, r.y + (r.h - h) / 2, w, h};
}

Rect centred(int w, int h, const Rect& r) {
  return {r.x + (r.w - w) / 2, r.y + (r.h - h) / 2, w, h};
}

double pixel_ratio() {
  double ratio = system_info() != nullptr ? system_info()->device_pixel_ratio : 1.0;
  return ratio > 0.0 ? ratio : 1.0;
}

}  // namespace

void draw_image(Canvas& c, const Pixmap& pic, const Rect& r, image_draw_type_t type) {
  if (pic.empty() || r.empty()) return;
  Rect saved = c.clip();
  Rect clip = intersect(saved, r);
  if (clip.empty()) return;
  c.set_clip(clip);
  Rect all = pic.rect();
  switch (type) {
    case IMAGE_DRAW_DEFAULT: c.draw_pixmap(pic, all, {r.x, r.y, pic.w, pic.h}); break;
    case IMAGE_DRAW_CENTER: c.draw_pixmap(pic, all, centred(pic.w, pic.h, r)); break;
    case IMAGE_DRAW_ICON: {
      // Centred at its size for the device's pixel ratio; shrunk to fit a smaller widget.
      double ratio = pixel_ratio();
      int w = std::max(1, static_cast<int>(std::lround(pic.w / ratio)));
      int h = std::max(1, static_cast<int>(std::lround(pic.h / ratio)));
      if (w > r.w || h > r.h) {
        c.draw_pixmap(pic, all, fit(pic, r, false));
      } else {
        c.draw_pixmap(pic, all, centred(w, h, r));
      }
      break;
    }
    case IMAGE_DRAW_SCALE: c.draw_pixmap(pic, all, r); break;
    case IMAGE_DRAW_SCALE_AUTO: c.draw_pixmap(pic, all, fit(pic, r, false)); break;
    case IMAGE_DRAW_SCALE_DOWN:
      if (pic.w > r.w || pic.h > r.h) {
        c.draw_pixmap(pic, all, fit(pic, r, false));
      } else {
        c.draw_pixmap(pic, all, centred(pic.w, pic.h, r));
      }
      break;
    case IMAGE_DRAW_FILL:
      // Covers the whole widget keeping the picture's proportions; the overflow is cut off.
      c.draw_pixmap(pic, all, fit(pic, r, true));
      break;
    case IMAGE_DRAW_SCALE_W: {
      int h = std::max(1, static_cast<int>(std::lround(static_cast<double>(pic.h) * r.w / pic.w)));
      c.draw_pixmap(pic, all, {r.x, r.y, r.w, h});
      break;
    }
    case IMAGE_DRAW_SCALE_H: {
      int w = std::max(1, static_cast<int>(std::lround(static_cast<double>(pic.w) * r.h / pic.h)));
      c.draw_pixmap(pic, all, {r.x, r.y, w, r.h});
      break;
    }
    case IMAGE_DRAW_REPEAT: tile(c, pic, all, r, r.x, r.y); break;
    case IMAGE_DRAW_REPEAT_X:
      tile(c, pic, all, {r.x, r.y, r.w, std::min(r.h, pic.h)}, r.x, r.y);
      break;
    case IMAGE_DRAW_REPEAT_Y:
      tile(c, pic, all, {r.x, r.y, std::min(r.w, pic.w), r.h}, r.x, r.y);
      break;
    case IMAGE_DRAW_REPEAT_Y_INVERSE: {
      // Copies stacked upwards from the bottom edge.
      int top = r.bottom() - ((r.h + pic.h - 1) / pic.h) * pic.h;
      tile(c, pic, all, {r.x, r.y, std::min(r.w, pic.w), r.h}, r.x, top);
      break;
    }
    case IMAGE_DRAW_PATCH9: draw9(c, pic, r, false); break;
    case IMAGE_DRAW_REPEAT9: draw9(c, pic, r, true); break;
    case IMAGE_DRAW_PATCH3_X:
      draw3(c, pic, {r.x, r.y + (r.h - pic.h) / 2, r.w, pic.h}, true, false);
      break;
    case IMAGE_DRAW_PATCH3_Y:
      draw3(c, pic, {r.x + (r.w - pic.w) / 2, r.y, pic.w, r.h}, false, false);
      break;
    case IMAGE_DRAW_PATCH3_X_SCALE_Y: draw3(c, pic, r, true, false); break;
    case IMAGE_DRAW_PATCH3_Y_SCALE_X: draw3(c, pic, r, false, false); break;
    case IMAGE_DRAW_REPEAT3_X:
      draw3(c, pic, {r.x, r.y + (r.h - pic.h) / 2, r.w, pic.h}, true, true);
      break;
    case IMAGE_DRAW_REPEAT3_Y:
      draw3(c, pic, {r.x + (r.w - pic.w) / 2, r.y, pic.w, r.h}, false, true);
      break;
  }
  c.set_clip(saved);
}

}  // namespace tk::draw
