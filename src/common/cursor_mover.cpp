// Moving a marker with the keys: see cursor_mover.h.
#include "common/cursor_mover.h"

#include <cstdio>

#include "msg/msghandler.h"
#include "widgets/image.h"

// ---- the held-key fast move ----

void fast_move_hold(page_timers_t& timers, fast_move_t& fast, int key, timer_func_t on_tick) {
  if (key == GUI_KEY_RANGE_L) {
    fast.fastmovesta = 1;
  } else if (key == GUI_KEY_PHOTO_L) {
    fast.fastmovesta = 2;
  } else {
    return;
  }
  fast.ticks = 0;
  page_timer_start(timers, fast.tm_id, on_tick, FAST_MOVE_PERIOD_MS);
}

void fast_move_stop(fast_move_t& fast) {
  fast.fastmovesta = 0;
  fast.ticks = 0;
  page_timer_stop(fast.tm_id);
}

bool fast_move_tick(fast_move_t& fast) {
  if (fast.fastmovesta == 0) {
    fast.tm_id = 0;
    return false;
  }
  if (++fast.ticks > FAST_MOVE_MAX_TICKS) {
    std::printf("fast move stopped after %d ticks without a key release\n", FAST_MOVE_MAX_TICKS);
    fast.fastmovesta = 0;
    fast.ticks = 0;
    fast.tm_id = 0;
    return false;
  }
  return true;
}

// ---- the cursor mover ----

namespace {

struct arrow_t {
  const char* widget;
  const char* image_def;
  const char* image_sel;
};
constexpr arrow_t ARROW_UP{"image_up", "arrow_up_def", "arrow_up_sel"};
constexpr arrow_t ARROW_DOWN{"image_down", "arrow_down_def", "arrow_down_sel"};
constexpr arrow_t ARROW_LEFT{"image_left", "arrow_left_def", "arrow_left_sel"};
constexpr arrow_t ARROW_RIGHT{"image_right", "arrow_right_def", "arrow_right_sel"};

void set_arrow(widget_t* win, const arrow_t& arrow, bool selected) {
  image_set_image(widget_lookup(win, arrow.widget, TRUE),
                  selected ? arrow.image_sel : arrow.image_def);
}

// One step of `amount` pixels: the arrow of the way moved selected and its opposite not, the
// page's step, then both arrow views hidden so that they leave the marker in sight.
void step(widget_t* win, cursor_mover_t& mover, int sign, int amount) {
  const bool across = mover.move_direction == DIRECTION_L_R;
  const arrow_t& toward =
      across ? (sign > 0 ? ARROW_RIGHT : ARROW_LEFT) : (sign > 0 ? ARROW_DOWN : ARROW_UP);
  const arrow_t& away =
      across ? (sign > 0 ? ARROW_LEFT : ARROW_RIGHT) : (sign > 0 ? ARROW_UP : ARROW_DOWN);
  set_arrow(win, toward, true);
  set_arrow(win, away, false);
  mover.page->step(mover.move_direction, sign, amount);
  widget_set_visible(widget_lookup(win, "view_arrow_up_down", TRUE), FALSE);
  widget_set_visible(widget_lookup(win, "view_arrow_left_right", TRUE), FALSE);
}

}  // namespace

void cursor_mover_reset_arrows(widget_t* win) {
  for (const arrow_t* arrow : {&ARROW_UP, &ARROW_DOWN, &ARROW_LEFT, &ARROW_RIGHT})
    set_arrow(win, *arrow, false);
}

void cursor_mover_draw_axis(widget_t* win, const cursor_mover_t& mover) {
  const bool across = mover.move_direction == DIRECTION_L_R;
  widget_set_visible(widget_lookup(win, "view_arrow_left_right", TRUE), across);
  widget_set_visible(widget_lookup(win, "view_arrow_up_down", TRUE), !across);
  widget_set_text_utf8(widget_lookup(win, "label_X_Y_axis", TRUE), across ? "Y" : "X");
  cursor_mover_reset_arrows(win);
}

void cursor_mover_enter(widget_t* win, cursor_mover_t& mover) {
  mover.move_direction = DIRECTION_L_R;
  mover.fast.fastmovesta = 0;
  mover.fast.ticks = 0;
  cursor_mover_draw_axis(win, mover);
}

bool cursor_mover_key(widget_t* win, page_timers_t& timers, cursor_mover_t& mover, int key) {
  if (key != GUI_KEY_RANGE_L && key != GUI_KEY_PHOTO_L) fast_move_stop(mover.fast);
  switch (key) {
    case GUI_KEY_PHOTO_S: step(win, mover, +1, 1); return true;
    case GUI_KEY_RANGE_S: step(win, mover, -1, 1); return true;
    case GUI_KEY_RANGE_L:
    case GUI_KEY_PHOTO_L: fast_move_hold(timers, mover.fast, key, mover.page->on_tick); return true;
    case GUI_KEY_PHOTO_L_POP:
    case GUI_KEY_RANGE_L_POP: return true;  // the fast move has just been stopped
    case GUI_KEY_FUCTION_L:
      mover.move_direction = mover.move_direction == DIRECTION_L_R ? DIRECTION_U_D : DIRECTION_L_R;
      cursor_mover_draw_axis(win, mover);
      return true;
    default: return false;
  }
}

ret_t cursor_mover_tick(widget_t* win, cursor_mover_t& mover) {
  if (!fast_move_tick(mover.fast)) return RET_REMOVE;
  step(win, mover, mover.fast.fastmovesta == 1 ? -1 : +1, FAST_MOVE_STEP);
  return RET_REPEAT;
}
