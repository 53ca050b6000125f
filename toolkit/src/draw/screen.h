// The picture on screen: one RGBA frame of the screen's size, the backdrop under all windows,
// and painting of the window stack into the frame where it changed.
#ifndef TK_DRAW_SCREEN_H
#define TK_DRAW_SCREEN_H

#include <cstdint>
#include <string>
#include <vector>

#include "awtk.h"
#include "draw/canvas.h"
#include "draw/text.h"

namespace tk::draw {

struct Screen {
  Pixmap frame;
  // The picture under all windows, of the frame's size; empty means black.
  Pixmap backdrop;
  // Painted since a backend last showed the frame (a window backend uploads these).
  std::vector<Rect> unpresented;
  // Paints that changed the frame, counted from screen_init.
  uint64_t paints = 0;
  bool ready = false;
};

Screen& screen();

// Makes a black frame of w x h and loads the backdrop named by TK_BACKDROP (if set). Marks the
// whole screen to be painted.
void screen_init(int w, int h);
// Frees the frame (backend shut-down).
void screen_release();

// Loads a PNG/JPEG/BMP as the backdrop, scaled to the frame; an empty path restores black.
// False (with a message line) when the file cannot be read; the backdrop is then black.
bool set_backdrop(const std::string& path);

// Paints the dirty region the core has accumulated, if any. Returns true when something was
// painted. With nothing dirty this costs one check.
bool paint_pending();
// Paints these rectangles (screen coordinates) from scratch: backdrop, then every window.
void paint_rects(std::vector<Rect> rects);

// What a widget draws as its own text: the text, the box it is aligned and clipped in (inside the
// style's margins, relative to the widget) and the style of its current state.
struct WidgetText {
  std::string text;
  Rect box;
  TextStyle style;
};
// False for a widget that draws no text of its own (windows, images, progress bars).
bool widget_text_layout(const widget_t* w, WidgetText& out);

// Turns overlapping rectangles into their unions and clips them to `bounds`, so no pixel is
// painted twice; many small rectangles collapse to their bounding box.
std::vector<Rect> normalize_dirty(std::vector<Rect> rects, const Rect& bounds);

}  // namespace tk::draw

#endif  // TK_DRAW_SCREEN_H
