// Text: fonts by name from the resource tree through SDL2_ttf, scaled so that a font size is the
// text's pixel height; rendered lines cached as coverage masks, drawn aligned and clipped in a box.
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

// The file the font `name` is read from, as on the board: the theme's fonts/<name>.ttf or .otf
// (then the "default" theme's); a name without a file falls back to the system's default font
// name ("default"). "" when there is none: there is no fallback to fonts outside the tree.
std::string font_file(const std::string& name);

// Width in pixels of the widest line of `text` drawn in this style (what draw_text covers
// horizontally); -1 when the font is missing (reported once, as for drawing).
int text_width(std::string_view text, const TextStyle& style);

// Closes every font and drops every rendered text (locale change, tests).
void text_cache_clear();

}  // namespace tk::draw

#endif  // TK_DRAW_TEXT_H
