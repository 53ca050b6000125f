// The core's internal API for the drawing layer (toolkit/src/draw/) and the test support.
// Everything here runs on the user interface thread unless said otherwise.
#ifndef TK_SRC_INTERNAL_H
#define TK_SRC_INTERNAL_H

#include <cstdint>
#include <string>
#include <vector>

#include "awtk.h"

namespace tk {

// ---- screen and windows ----
int32_t lcd_w();
int32_t lcd_h();
// The open windows, bottom to top (the window manager's children, closed ones excluded).
std::vector<widget_t*> windows_bottom_to_top();

// ---- widget facts ----
// The kind string ("window", "dialog", "view", "label", "image", "progress_bar", ...).
const char* kind(const widget_t* w);
// The widget's own visible flag, and whether it and every ancestor up to its window are visible.
bool visible(const widget_t* w);
bool visible_in_window(const widget_t* w);
// The widget's own opacity (0..255); the painter multiplies it down the tree. At 8 or below
// the widget and its subtree are not painted.
uint8_t opacity(const widget_t* w);
// Geometry in screen coordinates.
rect_t screen_rect(const widget_t* w);
// The state used for styling: "disable" when it or an ancestor is disabled, else the stored
// state with focus applied ("normal" <-> "focused" for focusable widgets).
const char* derived_state(const widget_t* w);
std::string text_utf8(const widget_t* w);
// Image name as set (not resolved), "" when none.
const char* image_name(const widget_t* w);
image_draw_type_t draw_type(const widget_t* w);
double progress_value(const widget_t* w);
double progress_max(const widget_t* w);
bool progress_show_text(const widget_t* w);
bool progress_vertical(const widget_t* w);
bool progress_reverse(const widget_t* w);

// ---- styles: widget-local value for exactly the derived state, then the window's style file,
// then default.xml; a missing state falls back to normal, a missing style name to default ----
bool style_color(const widget_t* w, const char* prop, uint32_t* out);
bool style_int(const widget_t* w, const char* prop, int32_t* out);
// nullptr when absent (or not a string).
const char* style_str(const widget_t* w, const char* prop);
uint32_t style_color_or(const widget_t* w, const char* prop, uint32_t defval);
int32_t style_int_or(const widget_t* w, const char* prop, int32_t defval);
std::string style_str_or(const widget_t* w, const char* prop, const char* defval);

// ---- change notification ----
// Every visible change records a dirty rectangle in screen coordinates.
void invalidate_rect(const rect_t& r);
void invalidate_widget(const widget_t* w);
bool has_dirty();
// The accumulated dirty rectangles (clipped to the screen, possibly merged), then cleared.
std::vector<rect_t> take_dirty();

// ---- resources ----
// The resolved app root ("<...>/res"), the theme ("default").
const std::string& app_root();
const std::string& theme();
// Path of the asset file of `name` for an image (resolution order of the reference), "" when
// missing. "file://" names are plain paths.
std::string image_path(const char* name);
// Path of "<app_root>/assets/<theme>/raw/<sub>/<file>", falling back to the default theme, ""
// when missing.
std::string asset_path(const std::string& sub, const std::string& file);

// ---- input (any thread) ----
// Queues a key press or release exactly like main_loop_post_key_event, for any 32-bit code.
ret_t post_key(bool pressed, uint32_t key);

// ---- environment ----
// TK_TIME_SCALE (1 when unset): the toolkit clock runs this many times faster than real time.
double time_scale();
// Whether the test clock (tk_testing.h) drives time.
bool test_clock();

}  // namespace tk

#endif  // TK_SRC_INTERNAL_H
