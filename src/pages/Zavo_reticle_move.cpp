// "Zavo_reticle_move": aligns the aim point of the current zero pixel by pixel. Rows: the zero
// (OK steps A..E), x and y (OK toggles editing; then up and down move by one, held keys by ten),
// reset, image freeze and exit. A small preview mark stays on the aim point the page started
// from, placed for the current thermal zoom. Leaving shows a 1 s exit notice first.
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <cstdlib>

#include "common/reticle_colors.h"
#include "common/common_function.h"
#include "common/cursor_mover.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/page_timers.h"
#include "common/reticle_zeroing.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_reticle_pages.h"
#include "pages/page_list.h"

bool_t partition_move_x_enable = FALSE;
bool_t partition_move_y_enable = FALSE;

namespace {

constexpr const char* MOVE_LABELS[] = {"label_profile", "label_x",      "label_y",
                                       "label_Reset",   "label_Freeze", "label_Exit"};
constexpr menu_rows_t MOVE_ROWS{"image_reticle_move_sel", 336, MOVE_LABELS};
enum { ROW_PROFILE = 1, ROW_X, ROW_Y, ROW_RESET, ROW_FREEZE, ROW_EXIT };

enum { EXIT_TO_HOME = 1, EXIT_TO_MENU = 2 };
constexpr uint32_t EXIT_NOTICE_MS = 1000;

// The preview mark is shown only inside the circle of radius 640 around the centre and between
// these rows.
constexpr int PREVIEW_RADIUS_SQUARED = 640 * 640;
constexpr int PREVIEW_Y_MIN = 128;
constexpr int PREVIEW_Y_MAX = 1152;

uint8_t partition_zero_child_move_index = ROW_PROFILE;
int x_value = 0;  // offsets from the centre shown to the user
int y_value = 0;
uint8_t currzero = 0;                     // the zero being aligned
int16_t temp_reticle_x = RETICLE_CENTRE;  // where the aim point was when the page took the zero
int16_t temp_reticle_y = RETICLE_CENTRE;
fast_move_t fast;  // fastmovesta and tm_id of the held-key move
uint32_t tm_id_exit = 0;
int exit_type = 0;  // EXIT_TO_HOME or EXIT_TO_MENU once leaving

uint32_t* const TIMERS[] = {&fast.tm_id, &tm_id_exit};
page_timers_t timers{TIMERS};

// One axis of the aim point: its value label, its offset, its stored coordinate and its range.
struct axis_t {
  const char* label;
  int* value;
  int16_t Inf_Cursor_Zero::*stored;
  int min;
  int max;
  bool is_x;
};
const axis_t AXIS_X{
    "label_x_value", &x_value, &Inf_Cursor_Zero::s8IrCursorCurrentX, -200, 200, true};
const axis_t AXIS_Y{
    "label_y_value", &y_value, &Inf_Cursor_Zero::s8IrCursorCurrentY, -150, 200, false};

// The axis the up and down keys edit: x first when both are on.
const axis_t* editing_axis() {
  if (partition_move_x_enable) return &AXIS_X;
  if (partition_move_y_enable) return &AXIS_Y;
  return NULL;
}

// ---- drawing ----

void draw_value(widget_t* win, const axis_t& axis) {
  char text[16];
  tk_snprintf(text, sizeof(text), "%d", *axis.value);
  widget_set_text_utf8(widget_lookup(win, axis.label, TRUE), text);
}

void draw_profile_letter(widget_t* win) {
  const Inf_Cursor_Group* group = reticle_current_group();
  const char letter[2] = {reticle_zero_letter(group != NULL ? group->u8CurrentZero : -1), '\0'};
  widget_set_text_utf8(widget_lookup(win, "label_profile_value", TRUE), letter);
}

void on_partition_move_bg_display(widget_t* win, int which, bool enable) {
  widget_t* x_sel = widget_lookup(win, "view_x_value_sel", TRUE);
  widget_t* y_sel = widget_lookup(win, "view_y_value_sel", TRUE);
  if (!enable) {
    widget_set_visible(x_sel, FALSE);
    widget_set_visible(y_sel, FALSE);
  } else if (which == 1) {
    widget_set_visible(x_sel, TRUE);
    widget_set_visible(y_sel, FALSE);
  } else {
    widget_set_visible(y_sel, TRUE);
    widget_set_visible(x_sel, FALSE);
  }
}

// The preview mark: the aim point the page started from, as the zoomed picture shows it around
// the current aim point. Moved to its place and shown only inside the picture's circle.
ret_t on_temp_reticle_refresh(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  const double f = stDevStatus.s8VideoMode == 3 ? 1.0 : stUIStatus.s8IRZoom * 0.01;
  const int cx = x_value + RETICLE_CENTRE;
  const int cy = y_value + RETICLE_CENTRE;
  const int px = static_cast<int>(cx + (temp_reticle_x - cx) * f);
  const int py = static_cast<int>(cy + (temp_reticle_y - cy) * f);
  widget_t* mark = widget_lookup(win, "view_temp_reticle", TRUE);
  widget_move(mark, px - 1, py - 1);
  const long dx = px - RETICLE_CENTRE;
  const long dy = py - RETICLE_CENTRE;
  const bool inside =
      dx * dx + dy * dy <= PREVIEW_RADIUS_SQUARED && py >= PREVIEW_Y_MIN && py <= PREVIEW_Y_MAX;
  widget_set_visible(mark, inside);
  return RET_OK;
}

// The image was unfrozen by the device (a shutter correction): the freeze mark goes.
ret_t on_freeze_image_display(void* ctx, event_t* e) {
  (void)e;
  widget_set_visible(widget_lookup(static_cast<widget_t*>(ctx), "image_freeze", TRUE), FALSE);
  stUIStatus.s8Irfreeze = 0;
  return RET_OK;
}

// Loads the current zero: its offsets, the preview's reference and the preview's colour.
void partition_move_value_init(widget_t* win) {
  const Inf_Cursor_Group* group = reticle_current_group();
  currzero = group != NULL ? group->u8CurrentZero : 0;
  printf("currzero====%d\n", currzero);
  const Inf_Cursor_Zero* zero = reticle_zero(currzero);
  const int X = zero != NULL ? zero->s8IrCursorCurrentX : RETICLE_CENTRE;
  const int Y = zero != NULL ? zero->s8IrCursorCurrentY : RETICLE_CENTRE;
  x_value = X - RETICLE_CENTRE;
  y_value = Y - RETICLE_CENTRE;
  draw_value(win, AXIS_X);
  draw_value(win, AXIS_Y);
  temp_reticle_x = static_cast<int16_t>(X);
  temp_reticle_y = static_cast<int16_t>(Y);
  const unsigned colour = static_cast<unsigned char>(stDevStatus.s8ReticleColour);
  if (colour < kReticleFirstColor.size()) {
    widget_set_style_color(widget_lookup(win, "view_temp_reticle", TRUE), "normal:bg_color",
                           kReticleFirstColor[colour]);
  }
  on_temp_reticle_refresh(win, NULL);
}

// ---- moving ----

// Writes `value` as the axis's offset and stored coordinate, tells the device, redraws.
void set_axis(widget_t* win, const axis_t& axis, int value) {
  *axis.value = value;
  Inf_Cursor_Zero* zero = reticle_zero(currzero);
  if (zero != NULL) zero->*axis.stored = static_cast<int16_t>(value + RETICLE_CENTRE);
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_POSITION);
  draw_value(win, axis);
  on_temp_reticle_refresh(win, NULL);
}

// The value the step starts from: the label's number. False (the label redrawn from the value)
// when the label holds no number.
bool read_value(widget_t* win, const axis_t& axis, int* out) {
  char text[32] = {0};
  widget_get_text_utf8(widget_lookup(win, axis.label, TRUE), text, sizeof(text));
  errno = 0;
  char* end = NULL;
  const long v = std::strtol(text, &end, 10);
  if (end == text || *end != '\0' || errno != 0) {
    draw_value(win, axis);
    return false;
  }
  *out = static_cast<int>(v);
  return true;
}

// One pixel: down (+1) and up (-1) on the edited axis, refused at the axis's limits.
void single_step(widget_t* win, const axis_t& axis, int sign) {
  if (sign > 0 && *axis.value > axis.max - 1) return;
  if (sign < 0 && *axis.value < axis.min + 1) return;
  int v = 0;
  if (!read_value(win, axis, &v)) return;
  set_axis(win, axis, v + sign);
  if (sign < 0 && axis.is_x) printf("x_value = %d\n", x_value);
}

ret_t on_timer_cursor_move(const timer_info_t* timer) {
  widget_t* win = static_cast<widget_t*>(timer->ctx);
  if (!fast_move_tick(fast)) return RET_REMOVE;
  const axis_t* axis = editing_axis();
  if (axis == NULL) {
    fast_move_stop(fast);
    return RET_REMOVE;
  }
  int v = 0;
  if (read_value(win, *axis, &v)) {
    // Ten pixels towards the limit, never past it; a value already beyond it is kept.
    if (fast.fastmovesta == 1 && v > axis->min) v = std::max(v - FAST_MOVE_STEP, axis->min);
    if (fast.fastmovesta == 2 && v < axis->max) v = std::min(v + FAST_MOVE_STEP, axis->max);
    set_axis(win, *axis, v);
    if (axis->is_x) printf("////////////////////////////////////////////////////=%d\n", v);
  }
  return fast.fastmovesta != 0 ? RET_REPEAT : RET_REMOVE;
}

// ---- OK on a row ----

void next_zero(widget_t* win) {
  Inf_Cursor_Group* group = reticle_current_group();
  if (group == NULL) return;
  group->u8CurrentZero = static_cast<uint8_t>((group->u8CurrentZero + 1) % RETICLE_ZERO_COUNT);
  GUI_SEND_RETICLE_MSG(RETICLE_ZERO);
  draw_profile_letter(win);
  partition_move_value_init(win);
}

void reset_offsets(widget_t* win) {
  set_axis(win, AXIS_X, 0);
  set_axis(win, AXIS_Y, 0);
}

void toggle_freeze(widget_t* win) {
  if (stUIStatus.s8UsbMode == 1) {
    stUIStatus.s8UsbMode = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_USB_TYPE);
  }
  stUIStatus.s8Irfreeze = stUIStatus.s8Irfreeze == 1 ? 0 : 1;
  widget_set_visible(widget_lookup(win, "image_freeze", TRUE), stUIStatus.s8Irfreeze == 1);
  GUI_SEND_INFRARED_MSG(INFRARED_FREEZE);
}

// ---- leaving ----

ret_t on_timer_exit_move(const timer_info_t* timer) {
  widget_t* win = static_cast<widget_t*>(timer->ctx);
  widget_set_visible(widget_lookup(win, "view_tip_exit", TRUE), FALSE);
  tm_id_exit = 0;
  if (exit_type == EXIT_TO_HOME) {
    window_manager_back_to(window_manager(), "Zavo_home_page_1");
    return RET_REMOVE;
  }
  navigator_back();
  // Opened from the distance editor, the page returns to it (its view is already shown again);
  // opened from the reticle menu, it returns to the menu and has the settings saved.
  if (widget_child(window_manager(), "Zavo_reticle_zero_child") == NULL) {
    navigator_to("Zavo_reticle_menu");
    GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
  }
  return RET_REMOVE;
}

// Back (to the editor or the reticle menu) or home: the image unfrozen, the fast move ended, the
// exit notice for 1 s.
void leave(widget_t* win, int type) {
  if (stUIStatus.s8Irfreeze == 1) {
    stUIStatus.s8Irfreeze = 0;
    widget_set_visible(widget_lookup(win, "image_freeze", TRUE), FALSE);
    GUI_SEND_INFRARED_MSG(INFRARED_FREEZE);
  }
  if (type == EXIT_TO_MENU) GUI_SEND_RETICLE_POSITION_MSG(RETICLE_BACK_RETICLE_ZERO_CHILD);
  fast_move_stop(fast);
  widget_set_visible(widget_lookup(win, "view_tip_exit", TRUE), TRUE);
  exit_type = type;
  page_timer_start(timers, tm_id_exit, on_timer_exit_move, EXIT_NOTICE_MS);
}

// ---- keys ----

void on_ok(widget_t* win) {
  switch (partition_zero_child_move_index) {
    case ROW_PROFILE: next_zero(win); break;
    case ROW_X:
      partition_move_x_enable = partition_move_x_enable ? FALSE : TRUE;
      on_partition_move_bg_display(win, 1, partition_move_x_enable);
      break;
    case ROW_Y:
      partition_move_y_enable = partition_move_y_enable ? FALSE : TRUE;
      on_partition_move_bg_display(win, 2, partition_move_y_enable);
      break;
    case ROW_RESET: reset_offsets(win); break;
    case ROW_FREEZE: toggle_freeze(win); break;
    case ROW_EXIT: leave(win, EXIT_TO_MENU); break;
    default: break;
  }
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL || tm_id_exit != 0) return RET_OK;  // no key while the exit notice shows
  const int key = static_cast<int>(evt->key);
  if (key != GUI_KEY_RANGE_L && key != GUI_KEY_PHOTO_L) fast_move_stop(fast);
  switch (key) {
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S: {
      const axis_t* axis = editing_axis();
      if (axis != NULL) {
        single_step(win, *axis, key == GUI_KEY_PHOTO_S ? +1 : -1);
      } else {
        partition_zero_child_move_index =
            static_cast<uint8_t>(menu_rows_step(MOVE_ROWS, key, partition_zero_child_move_index));
        menu_rows_focus(win, MOVE_ROWS, partition_zero_child_move_index);
      }
      break;
    }
    case GUI_KEY_RANGE_L:
    case GUI_KEY_PHOTO_L:
      if (editing_axis() != NULL) fast_move_hold(timers, fast, key, on_timer_cursor_move);
      break;
    case GUI_KEY_FUCTION_S: on_ok(win); break;
    case GUI_KEY_FUCTION_L: leave(win, EXIT_TO_MENU); break;
    case GUI_KEY_POWER_S: leave(win, EXIT_TO_HOME); break;
    default: break;  // the releases 84 and 85 have ended the fast move above
  }
  return RET_OK;
}

ret_t on_key_released_event(void* ctx, event_t* e) {
  (void)ctx;
  (void)e;
  return RET_OK;
}

ret_t visit_init_child(void* ctx, const void* iter) {
  widget_t* win = static_cast<widget_t*>(ctx);
  widget_t* child = static_cast<widget_t*>(const_cast<void*>(iter));
  if (child->name == NULL) return RET_OK;
  const std::string_view name(child->name);
  if (name == "view_temp_reticle") {
    widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_ZOOM_CHANGED},
              on_temp_reticle_refresh, win);
  } else if (name == "image_freeze") {
    widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_FREEZE}, on_freeze_image_display,
              win);
    widget_set_visible(child, FALSE);
  } else if (name == "label_profile") {
    widget_set_state(child, WIDGET_STATE_FOCUSED);
  } else if (name == "view_tip_exit") {
    widget_set_visible(child, FALSE);
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_reticle_move_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  page_timers_attach(timers, win);
  fast = fast_move_t{};
  partition_zero_child_move_index = ROW_PROFILE;
  exit_type = 0;
  partition_move_x_enable = FALSE;
  partition_move_y_enable = FALSE;
  stUIStatus.s8Irfreeze = 0;
  partition_move_value_init(win);
  on_partition_move_bg_display(win, 1, false);
  draw_profile_letter(win);
  widget_foreach(win, visit_init_child, win);
  menu_rows_focus(win, MOVE_ROWS, partition_zero_child_move_index);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_KEY_UP, on_key_released_event, win);
  return RET_OK;
}
