// Moving a marker on the live image with the scope's keys: the held-key fast move, and the cursor
// mover that the range-marker, laser-marker and blind-pixel pages share (the axis toggle, the
// arrow images, single steps and fast moves).
//
// Keys: GUI_KEY_RANGE_S (97) one step up or left, GUI_KEY_PHOTO_S (57) one step down or right;
// the held keys GUI_KEY_RANGE_L (98) and GUI_KEY_PHOTO_L (48) start a fast move of
// FAST_MOVE_STEP pixels every FAST_MOVE_PERIOD_MS, which their releases GUI_KEY_PHOTO_L_POP (84)
// and GUI_KEY_RANGE_L_POP (85) stop; GUI_KEY_FUCTION_L (56) toggles the axis.
//
// A fast move ends on a release, on any other key, when its page closes, and at the latest after
// FAST_MOVE_MAX_TICKS ticks: a release lost on the way (the device stops talking) moves the
// marker at most FAST_MOVE_MAX_TICKS x FAST_MOVE_STEP pixels, over FAST_MOVE_MAX_TICKS x
// FAST_MOVE_PERIOD_MS.
//
// A page describes itself as constexpr data and keeps its mover in a file-scope variable:
//
//   ret_t on_timer_pixel_move(const timer_info_t* timer);
//   void range_step(int move_direction, int sign, int amount);
//   constexpr cursor_mover_page_t RANGE_MOVER{range_step, on_timer_pixel_move};
//   cursor_mover_t mover{&RANGE_MOVER};
//   ret_t on_timer_pixel_move(const timer_info_t* timer) {
//     return cursor_mover_tick(static_cast<widget_t*>(timer->ctx), mover);
//   }
#ifndef SCOPE_COMMON_CURSOR_MOVER_H
#define SCOPE_COMMON_CURSOR_MOVER_H

#include <cstdint>

#include "awtk.h"
#include "common/page_timers.h"
#include "common/status_records.h"

inline constexpr uint32_t FAST_MOVE_PERIOD_MS = 500;
inline constexpr int FAST_MOVE_STEP = 10;
// 30 s of fast move without a release: 600 pixels, more than the reticle's whole x range
// (400) and the blind-pixel cursor's way across the sensor.
inline constexpr int FAST_MOVE_MAX_TICKS = 60;

// ---- the held-key fast move ----
struct fast_move_t {
  int fastmovesta = 0;  // 0 idle, 1 decrease (up or left), 2 increase (down or right)
  uint32_t tm_id = 0;   // the tick timer, 0 = none; list it in the page's timers
  int ticks = 0;        // ticks since the held key
};

// A held key: GUI_KEY_RANGE_L sets fastmovesta 1, GUI_KEY_PHOTO_L 2 (any other key changes
// nothing). The tick count starts again; `on_tick` starts every FAST_MOVE_PERIOD_MS on the page's
// window unless the tick timer already runs.
void fast_move_hold(page_timers_t& timers, fast_move_t& fast, int key, timer_func_t on_tick);

// Ends the fast move: fastmovesta 0, the timer removed.
void fast_move_stop(fast_move_t& fast);

// At the start of each tick: true when the page is to make its step and return RET_REPEAT;
// false (the timer id already cleared) when the move has ended or has just reached
// FAST_MOVE_MAX_TICKS (with a line), and the page returns RET_REMOVE.
bool fast_move_tick(fast_move_t& fast);

// ---- the cursor mover ----
struct cursor_mover_page_t {
  // Moves the page's marker `amount` pixels (1, or FAST_MOVE_STEP on a fast-move tick) along
  // `move_direction` (DIRECTION_L_R: x, DIRECTION_U_D: y), towards up or left when `sign` is -1
  // and down or right when it is +1, writes the record and tells the device.
  void (*step)(int move_direction, int sign, int amount);
  // The page's tick callback, which calls cursor_mover_tick with the page's mover.
  timer_func_t on_tick;
};

struct cursor_mover_t {
  const cursor_mover_page_t* page;
  int move_direction = DIRECTION_L_R;  // BLIND_PIXEL_MOVE_DIRECTION
  fast_move_t fast;
};

// Entering the page: left/right first, no fast move, the axis widgets drawn.
void cursor_mover_enter(widget_t* win, cursor_mover_t& mover);

// Draws the axis: with left/right "view_arrow_left_right" shown, "view_arrow_up_down" hidden and
// "label_X_Y_axis" reading "Y" (the axis the back key switches to); with up/down the other way
// round and "X". The four arrows show their "_def" images.
void cursor_mover_draw_axis(widget_t* win, const cursor_mover_t& mover);

// The four arrows back to "arrow_up_def", "arrow_down_def", "arrow_left_def", "arrow_right_def".
void cursor_mover_reset_arrows(widget_t* win);

// The keys every mover handles: 97 and 57 one step, 98 and 48 the fast move, 84 and 85 its end,
// 56 the axis toggle. Any key but 98 and 48 first ends a running fast move. True when `key` was
// one of these; the page handles the others.
bool cursor_mover_key(widget_t* win, page_timers_t& timers, cursor_mover_t& mover, int key);

// One fast-move tick (the page's on_tick): a step of FAST_MOVE_STEP pixels with the arrow images,
// RET_REPEAT while the move goes on, RET_REMOVE when it has ended.
ret_t cursor_mover_tick(widget_t* win, cursor_mover_t& mover);

#endif  // SCOPE_COMMON_CURSOR_MOVER_H
