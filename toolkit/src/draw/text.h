// Text: fonts by name through SDL2_ttf, rendered lines cached as coverage masks, drawn aligned
// and clipped in a box.
#ifndef TK_DRAW_TEXT_H
#define TK_DRAW_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "awtk.h"
#include "draw/canvas.h"

namespace tk::draw {

struct TextStyle {
  std::string font_name = "default";
  int font_size = 18;
  uint32_t color = 0xff000000;
  align_h_t align_h = ALIGN_H_CENTER;
  align_v_t align_v = ALIGN_V_MIDDLE;
};

// Draws UTF-8 `text` (lines split at '\n') inside `box`, aligned by the style, clipped to `box`.
// A font that cannot be found or opened is reported once; nothing is drawn for it.
void draw_text(Canvas& c, const Rect& box, std::string_view text, const TextStyle& style);

// The file the font `name` is read from: the theme's fonts/<name>.ttf or .otf; for "default"
// (and any other name without a file) the system font; "" when none exists.
std::string font_file(const std::string& name);

// Replaces the system font file used when the theme has no default.ttf ("" restores the
// built-in choice). Drops every opened font and rendered text when the file changes.
void set_system_font(const std::string& path);

// Closes every font and drops every rendered text (locale change, tests).
void text_cache_clear();

}  // namespace tk::draw

#endif  // TK_DRAW_TEXT_H
