// Text through SDL2_ttf. Each distinct (font file, size, line) is rendered once as a coverage
// mask and then blended in any colour, so a label that keeps its text costs a blend per frame.
#include "draw/text.h"

#include <SDL_ttf.h>
#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <unordered_map>
#include <vector>

#include "tk_internal.h"

namespace tk::draw {

namespace {

// A font_size is the pixel height from the top of the highest ascender to the bottom of the
// lowest descender (ascent - descent), as on the board: the font is opened at the scale that
// gives that height. The font's own ratio of that height to its em is read once per file
// at this em size in pixels, where rounding is negligible.
constexpr int kReferenceEm = 2048;

// Rendered lines kept before the cache is emptied and refilled by what is on screen.
constexpr size_t kMaxLines = 4096;
constexpr size_t kMaxMaskBytes = size_t{32} << 20;

struct Line {
  Mask mask;
};

struct TextState {
  bool ttf_tried = false;
  bool ttf_ok = false;
  std::map<std::pair<std::string, int>, TTF_Font*> fonts;    // nullptr: failed to open
  std::map<std::string, double, std::less<>> height_per_em;  // font file -> (ascent-descent)/em
  std::map<std::string, std::string, std::less<>> files;     // asset dir + font name -> file
  std::set<std::string, std::less<>> reported;
  std::unordered_map<std::string, Line> lines;
  size_t mask_bytes = 0;

  // At exit the opened fonts go back to SDL2_ttf, which is then shut down.
  ~TextState() {
    for (auto& [key, font] : fonts) {
      if (font != nullptr) TTF_CloseFont(font);
    }
    if (ttf_ok) TTF_Quit();
  }
};

TextState& st() {
  static TextState s;
  return s;
}

void report_once(const std::string& key, const std::string& message) {
  if (st().reported.insert(key).second) log_error("%s\n", message.c_str());
}

bool ttf_ready() {
  TextState& s = st();
  if (!s.ttf_tried) {
    s.ttf_tried = true;
    s.ttf_ok = TTF_WasInit() > 0 || TTF_Init() == 0;
    if (!s.ttf_ok)
      report_once("TTF_Init", std::string("text: cannot start SDL2_ttf: ") + TTF_GetError());
  }
  return s.ttf_ok;
}

void close_fonts() {
  TextState& s = st();
  for (auto& [key, font] : s.fonts) {
    if (font != nullptr) TTF_CloseFont(font);
  }
  s.fonts.clear();
  s.height_per_em.clear();
  s.files.clear();
  s.lines.clear();
  s.mask_bytes = 0;
}

// The name that stands behind every font name without a file of its own.
std::string default_font_name() {
  const system_info_t* info = system_info();
  return info != nullptr && info->default_font != nullptr && *info->default_font != '\0'
             ? info->default_font
             : "default";
}

// The file's (ascent - descent) / em; 0 when the file cannot be opened (reported once).
double height_per_em(const std::string& name, const std::string& file) {
  TextState& s = st();
  auto it = s.height_per_em.find(file);
  if (it != s.height_per_em.end()) return it->second;
  double ratio = 0;
  if (TTF_Font* probe = TTF_OpenFontIndex(file.c_str(), kReferenceEm, 0)) {
    ratio = static_cast<double>(TTF_FontHeight(probe)) / kReferenceEm;
    TTF_CloseFont(probe);
  }
  if (ratio <= 0) {
    report_once("open:" + file, "font \"" + name + "\": cannot open " + file + ": " +
                                    TTF_GetError() + "; text is not drawn");
  }
  s.height_per_em.emplace(file, ratio);
  return ratio;
}

// The opened font for a name at a pixel height; nullptr (reported once) when unavailable.
TTF_Font* font_for(const std::string& name, int size, std::string& file) {
  if (!ttf_ready()) return nullptr;
  file = font_file(name);
  if (file.empty()) {
    const std::string fonts = app_root() + "/assets/" + theme() + "/raw/fonts/";
    report_once("missing:" + fonts + name, "font \"" + name + "\" not found: no " + fonts + name +
                                               ".ttf (or .otf) and no " + default_font_name() +
                                               ".ttf; text is not drawn");
    return nullptr;
  }
  TextState& s = st();
  auto key = std::make_pair(file, size);
  auto it = s.fonts.find(key);
  if (it != s.fonts.end()) return it->second;
  TTF_Font* font = nullptr;
  if (double ratio = height_per_em(name, file); ratio > 0) {
    // At 1 point the em is dpi / 72 pixels, so the resolution gives the em in 1/72 pixel steps;
    // rounded down, so that the rounded-up line height is the size and not one more.
    const double em = size / ratio;
    const auto dpi = static_cast<unsigned>(std::floor(em * 72.0 + 1e-6));
    font = TTF_OpenFontIndexDPI(file.c_str(), 1, 0, dpi, dpi);
    if (font == nullptr) {
      report_once("open:" + file, "font \"" + name + "\": cannot open " + file + ": " +
                                      TTF_GetError() + "; text is not drawn");
    } else {
      // Vertical hinting only: widths stay unhinted, which gives the board's text extents.
      TTF_SetFontHinting(font, TTF_HINTING_LIGHT);
    }
  }
  s.fonts.emplace(key, font);
  return font;
}

// The rendered mask of one line (empty mask for an empty line).
const Mask* line_mask(TTF_Font* font, const std::string& file, int size, std::string_view text) {
  static const Mask empty_mask;
  if (text.empty()) return &empty_mask;
  TextState& s = st();
  std::string key;
  key.reserve(file.size() + text.size() + 16);
  key.append(file).append(1, '\0').append(std::to_string(size)).append(1, '\0').append(text);
  auto it = s.lines.find(key);
  if (it != s.lines.end()) return &it->second.mask;

  if (s.lines.size() >= kMaxLines || s.mask_bytes >= kMaxMaskBytes) {
    s.lines.clear();
    s.mask_bytes = 0;
  }
  Line line;
  std::string z(text);
  SDL_Surface* surf = TTF_RenderUTF8_Blended(font, z.c_str(), SDL_Color{255, 255, 255, 255});
  if (surf != nullptr) {
    SDL_Surface* argb = surf->format->format == SDL_PIXELFORMAT_ARGB8888
                            ? surf
                            : SDL_ConvertSurfaceFormat(surf, SDL_PIXELFORMAT_ARGB8888, 0);
    if (argb != nullptr) {
      line.mask.w = argb->w;
      line.mask.h = argb->h;
      line.mask.a.resize(static_cast<size_t>(argb->w) * argb->h);
      for (int y = 0; y < argb->h; ++y) {
        const auto* row = reinterpret_cast<const uint32_t*>(
            static_cast<const uint8_t*>(argb->pixels) + static_cast<size_t>(y) * argb->pitch);
        for (int x = 0; x < argb->w; ++x) {
          line.mask.a[static_cast<size_t>(y) * argb->w + x] = static_cast<uint8_t>(row[x] >> 24);
        }
      }
      if (argb != surf) SDL_FreeSurface(argb);
    }
    SDL_FreeSurface(surf);
  }
  s.mask_bytes += line.mask.a.size();
  auto [pos, inserted] = s.lines.emplace(std::move(key), std::move(line));
  return &pos->second.mask;
}

std::vector<std::string_view> split_lines(std::string_view text) {
  std::vector<std::string_view> out;
  size_t start = 0;
  while (true) {
    size_t nl = text.find('\n', start);
    std::string_view line = text.substr(start, nl == std::string_view::npos ? nl : nl - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    out.push_back(line);
    if (nl == std::string_view::npos) break;
    start = nl + 1;
  }
  return out;
}

}  // namespace

std::string font_file(const std::string& name) {
  TextState& s = st();
  std::string key = app_root() + "/assets/" + theme() + '\0' + name;
  auto it = s.files.find(key);
  if (it != s.files.end()) return it->second;
  std::string file = asset_path("fonts", name + ".ttf");
  if (file.empty()) file = asset_path("fonts", name + ".otf");
  if (file.empty() && name != default_font_name()) file = font_file(default_font_name());
  s.files.emplace(std::move(key), file);
  return file;
}

void text_cache_clear() {
  close_fonts();
  st().reported.clear();
}

int text_width(std::string_view text, const TextStyle& style) {
  if (style.font_size <= 0) return -1;
  std::string file;
  TTF_Font* font = font_for(style.font_name, style.font_size, file);
  if (font == nullptr) return -1;
  int widest = 0;
  for (auto line : split_lines(text)) {
    if (line.empty()) continue;
    int w = 0;
    int h = 0;
    std::string z(line);
    if (TTF_SizeUTF8(font, z.c_str(), &w, &h) == 0) widest = std::max(widest, w);
  }
  return widest;
}

void draw_text(Canvas& c, const Rect& box, std::string_view text, const TextStyle& style) {
  if (text.empty() || box.empty() || style.font_size <= 0) return;
  Rect saved = c.clip();
  Rect clip = intersect(saved, box);
  if (clip.empty()) return;
  std::string file;
  TTF_Font* font = font_for(style.font_name, style.font_size, file);
  if (font == nullptr) return;

  auto lines = split_lines(text);
  int line_h = TTF_FontHeight(font);
  int skip = TTF_FontLineSkip(font);
  int total_h = skip * static_cast<int>(lines.size() - 1) + line_h;
  int y;
  switch (style.align_v) {
    case ALIGN_V_TOP: y = box.y; break;
    case ALIGN_V_BOTTOM: y = box.bottom() - total_h; break;
    default: y = box.y + (box.h - total_h) / 2; break;
  }
  c.set_clip(clip);
  for (auto line : lines) {
    if (y >= clip.bottom()) break;
    if (y + line_h > clip.y) {
      const Mask* m = line_mask(font, file, style.font_size, line);
      int x;
      switch (style.align_h) {
        case ALIGN_H_LEFT: x = box.x; break;
        case ALIGN_H_RIGHT: x = box.right() - m->w; break;
        default: x = box.x + (box.w - m->w) / 2; break;
      }
      c.draw_mask(*m, x, y, style.color);
    }
    y += skip;
  }
  c.set_clip(saved);
}

}  // namespace tk::draw
