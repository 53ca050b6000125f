// Test support built into the host toolkit (not part of the real toolkit's API): a test clock,
// keys through the real main-loop path, windows from XML strings, failed-lookup counting,
// readable widget dumps, queue and log inspection, and a reset between tests.
//
// Typical use:
//   tk_testing_init();                        // tk_init(1280, 1024, APP_MOBILE, "inf_menu",
//                                             //   "./res") under the test clock
//   widget_t* win = window_open("Zavo_menu1");
//   tk_testing_advance(0);                    // run the open sequence (next idle pass)
//   tk_testing_key_hit(GUI_KEY_PHOTO_S);      // down + up through main_loop_post_key_event
//   EXPECT_EQ(tk_testing_failed_lookups(), 0u);
//
// Nothing here sleeps real time: the clock moves only when a test advances it.
#ifndef TK_TESTING_H
#define TK_TESTING_H

#include <cstdint>
#include <string>
#include <vector>

#include "awtk.h"

/* ---- set-up ---- */

// First call: tk_init(1280, 1024, APP_MOBILE, "inf_menu", "./res") on the calling thread (which
// becomes the user interface thread) with the test clock at 0. Later calls: tk_testing_reset().
void tk_testing_init(void);
// Same, with another screen size or app root (only honoured by the first call of a process).
void tk_testing_init_ex(wh_t w, wh_t h, const char* app_root);
// Back to a clean toolkit: every window, closed window and destroyed widget still waiting for
// its idle is destroyed and freed at once (EVT_DESTROY only, no window events), all timers,
// idles and queued requests dropped, window-manager handlers removed, held keys forgotten, counters
// (overflows, failed lookups) and captured log lines cleared, locale back to en_US, style cache
// dropped, the drawing state as at start (tk_testing_reset_drawing). The clock keeps its value.
void tk_testing_reset(void);

// Points the toolkit at another resource directory (one with assets/), e.g. a temporary tree a
// test writes layouts, styles and strings into; reloads the strings and drops cached styles.
void tk_testing_set_app_root(const char* app_root);

/* ---- the test clock ---- */

// Runs the main loop for `ms` of test-clock time: every step that would have happened, in time
// order (queued requests and keys, idles, due timers, layout, paint), with the clock set to each
// timer's due time. advance(0) runs everything already due now (e.g. the open sequence of a
// window just opened, or posted keys).
void tk_testing_advance(uint32_t ms);
// A nested loop (dialog_modal, or tk_run) under the test clock runs what is due, then jumps the
// clock to the next due timer whenever it has nothing else to do (possibly past the end of the
// advance that started it); when nothing at all is scheduled it waits for other threads and,
// after 2 s of real time without work, gives up with an error line (dialog_modal then returns
// DIALOG_QUIT_NONE) instead of hanging the test.
// The clock (same as time_now_ms()).
uint64_t tk_testing_now(void);

/* ---- keys, through main_loop_post_key_event and the main loop ---- */

// Posts a key-down and runs what is due (advance(0)).
ret_t tk_testing_key_press(uint32_t key);
// Posts a key-up and runs what is due.
ret_t tk_testing_key_release(uint32_t key);
// Press, then release, each followed by advance(0).
ret_t tk_testing_key_hit(uint32_t key);
// Press, advance `ms` (long press at 1000 ms), release.
ret_t tk_testing_key_hold(uint32_t key, uint32_t ms);

/* ---- windows ---- */

// Opens a window from an XML string exactly as window_open(name) would from ui/<name>.xml
// (single_instance, open sequence on the next idle pass). NULL, with the error line, when the
// XML is malformed.
widget_t* tk_testing_open_xml(const char* name, const char* xml);
// The open windows' names, bottom to top.
std::vector<std::string> tk_testing_window_names(void);

/* ---- failed lookups: widget_lookup/widget_child misses on anything but the window manager ---- */

uint32_t tk_testing_failed_lookups(void);
// "<searched widget name>/<missing name>" for each miss, in order.
std::vector<std::string> tk_testing_failed_lookup_names(void);
void tk_testing_clear_failed_lookups(void);

/* ---- readable dumps ---- */

// One line per widget, indented two spaces per level:
//   kind "name" visible=1 x=0 y=0 w=100 h=20 state=normal [text="..."] [tr_text="..."]
//   [image="..."] [value=.. max=..] [opacity=N] [enable=0] [style="..."]
//   [style:<state>:<prop>=<value>]...
// Coordinates are relative to the parent; colours are 0xAABBGGRR words.
std::string tk_testing_dump(widget_t* widget);
// The style property as the painter resolves it (widget-local, window style file, default.xml).
bool tk_testing_style_color(widget_t* widget, const char* prop, uint32_t* color);
bool tk_testing_style_int(widget_t* widget, const char* prop, int32_t* value);
std::string tk_testing_style_str(widget_t* widget, const char* prop);
// Screen rectangle of a widget.
rect_t tk_testing_screen_rect(widget_t* widget);
// Dirty rectangles accumulated since the last paint or the last call (then cleared).
std::vector<rect_t> tk_testing_take_dirty(void);

/* ---- what is alive: leaks after a page closed ---- */

// Timers not removed (widget timers included), idles not removed (the toolkit's own open, close
// and burial idles included), widgets not yet freed (the window manager included).
uint32_t tk_testing_timer_count(void);
// One line per live timer: its period, the widget it belongs to and its callback's symbol
// ("?" when the program exports none) with its file and offset there
// (`addr2line -f -C -e <file> <offset>` names a static one).
std::vector<std::string> tk_testing_timer_descriptions(void);
uint32_t tk_testing_idle_count(void);
uint32_t tk_testing_widget_count(void);

/* ---- the main-loop queue ---- */

// Posts that failed because the queue (MAIN_LOOP_QUEUE_SIZE entries) was full.
uint32_t tk_testing_queue_overflows(void);
// Entries waiting in the queue now (any thread).
uint32_t tk_testing_queue_length(void);
// The most entries that ever waited in the queue at once (cleared by tk_testing_reset).
uint32_t tk_testing_queue_high_water(void);

/* ---- log lines (log_debug/info/warn/error and the check macros) ---- */

// Starts capturing (cleared by tk_testing_reset); lines are "<level>: <text>" without the
// trailing newline.
void tk_testing_capture_log(bool capture);
std::vector<std::string> tk_testing_log_lines(void);
// Whether a captured line contains `text`.
bool tk_testing_log_contains(const char* text);

/* ==== screenshots (drawing layer) ====
 * The drawing engineer adds the screenshot and comparison functions below this line. */

// Paints what is dirty now into the frame, as the next step's paint would. False when there is
// no frame (no drawing backend) or nothing was dirty.
bool tk_testing_paint(void);
// Paints that changed the frame since start-up: an idle screen adds none.
uint64_t tk_testing_paint_count(void);
// The colour word (0xAABBGGRR: 0xFF0011FF is red) of a frame pixel, after painting what is
// dirty; 0 outside the frame.
uint32_t tk_testing_pixel(xy_t x, xy_t y);
// Writes the frame (after painting what is dirty) as an RGBA PNG. RET_FAIL with a log line when
// it cannot be written.
ret_t tk_testing_screenshot(const char* png_path);
// Compares the frame (after painting what is dirty) with the reference PNG, allowing each
// channel to differ by `tolerance` (anti-aliased text differs slightly between font builds).
// True on a match. Otherwise `message` (when given) says how many pixels differ and names
// <stem>.actual.png, <stem>.expected.png and <stem>.diff.png written to TK_TEST_OUTPUT_DIR
// (default <temp dir>/tk-test-output). A missing reference fails, unless TK_UPDATE_REFERENCES=1:
// then it is written for review and the comparison passes.
bool tk_testing_compare_screenshot(const char* reference_png, int tolerance, std::string* message);
// The picture under all windows (stands in for the live video); NULL or "" for black.
// RET_FAIL (with a log line, backdrop black) when the file cannot be read.
ret_t tk_testing_set_backdrop(const char* png_path);
// The text a widget draws (label, button, ...), measured with the font it is drawn in: the width
// in pixels of its widest line at its current style's font_name and font_size. 0 for empty text
// or a widget that draws no text (window, image, progress bar); -1 when the font is missing.
int tk_testing_text_width(widget_t* widget);
// The width that text has: the widget's width less its style's left and right margins.
int tk_testing_text_room(widget_t* widget);
// The font file a font name is read from (fonts/<name>.ttf or .otf of the resource tree, else
// the default font's); "" when there is none.
std::string tk_testing_font_file(const char* font_name);
// Drops decoded images and rendered text, and forgets which names were reported missing.
void tk_testing_drop_draw_caches(void);
// Part of tk_testing_reset: decoded images dropped, the backdrop black and the whole frame to
// be painted again.
void tk_testing_reset_drawing(void);

#endif /* TK_TESTING_H */
