// "Zavo_reticle_zero_child": the distance of the chosen zero, edited digit by digit (row 1), the
// way to the alignment page (row 2) and the exit (row 3). Back and home leave through a 1 s exit
// notice: to the reticle menu with the zero list on top, or to the observation screen.
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/page_timers.h"
#include "common/reticle_zeroing.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_reticle_pages.h"
#include "pages/page_list.h"

uint8_t Zavo_reticle_zero_child_index = 1;
int16_t hundred_max_index = 9;

namespace {

constexpr const char* CHILD_LABELS[] = {"label_movement", "label_distance", "label_exit"};
constexpr menu_rows_t CHILD_ROWS{"image_zero_child_sel", 336, CHILD_LABELS};
constexpr int ROW_DISTANCE = 1;
constexpr int ROW_ALIGN = 2;
constexpr int ROW_EXIT = 3;
constexpr int ROW_NONE = 4;  // no row focused, no highlight

// The digit labels by cursor place: 0 units, 1 tens, 2 hundreds.
constexpr const char* DIGIT_LABELS[] = {"distance_value_dig_1", "distance_value_dig_2",
                                        "distance_value_dig_3"};
constexpr int PLACE_NONE = 3;  // no digit framed yet
// The digit frame over place p sits at x = (3 - p) x 27 + 238 before the cursor moves on.
constexpr int DIGIT_X0 = 238;
constexpr int DIGIT_PITCH = 27;
constexpr uint32_t EXIT_NOTICE_MS = 1000;

int zero_diatance_place = PLACE_NONE;  // digit being edited: 2 hundreds, 1 tens, 0 units
int distance_enable = 0;               // 1 while the digits are being edited
int distance_value_dig_3 = 0;          // hundreds
int distance_value_dig_2 = 0;          // tens
int distance_value_dig_1 = 0;          // units
uint8_t currzero = 0;                  // the zero whose distance is edited
uint16_t key_value = 0;                // the last key pressed
uint32_t tm_id_exit_zero = 0;          // the exit notice's timer

uint32_t* const TIMERS[] = {&tm_id_exit_zero};
page_timers_t timers{TIMERS};

int& digit_at(int place) {
  return place == 2   ? distance_value_dig_3
         : place == 1 ? distance_value_dig_2
                      : distance_value_dig_1;
}

void draw_digit(widget_t* win, int place) {
  char text[16];
  tk_snprintf(text, sizeof(text), "%d", digit_at(place));
  widget_set_text_utf8(widget_lookup(win, DIGIT_LABELS[place], TRUE), text);
}

// The alignment page was left by back: the editor shows again.
ret_t on_child_menu_display(void* ctx, event_t* e) {
  (void)e;
  widget_set_visible(widget_lookup(static_cast<widget_t*>(ctx), "view_reticle_zero_child", TRUE),
                     TRUE);
  return RET_OK;
}

ret_t visit_init_child(void* ctx, const void* iter) {
  widget_t* win = static_cast<widget_t*>(ctx);
  widget_t* child = static_cast<widget_t*>(const_cast<void*>(iter));
  if (child->name == NULL) return RET_OK;
  const std::string_view name(child->name);
  if (name == "view_reticle_zero_child") {
    widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_RETICLE_ZERO_BACK},
              on_child_menu_display, win);
  } else if (name == "label_movement") {
    widget_set_state(child, WIDGET_STATE_FOCUSED);
  } else if (name == "view_tip_exit") {
    widget_set_visible(child, FALSE);
  }
  return RET_OK;
}

// ---- drawing ----

void on_reticle_zero_child_display(widget_t* win, int index) {
  widget_t* bar = widget_lookup(win, CHILD_ROWS.highlight, TRUE);
  if (index == ROW_NONE) {
    menu_focus_one_of(win, CHILD_LABELS, -1);
    widget_set_visible(bar, FALSE);
    return;
  }
  widget_set_visible(bar, TRUE);
  menu_rows_focus(win, CHILD_ROWS, index);
}

void on_partition_distance_sel_visible(widget_t* win) {
  const bool editing = distance_enable == 1;
  widget_set_visible(widget_lookup(win, "view_distance_val", TRUE), editing);
  for (const char* name : DIGIT_LABELS) {
    widget_set_state(widget_lookup(win, name, TRUE),
                     editing ? WIDGET_STATE_FOCUSED : WIDGET_STATE_NORMAL);
  }
}

// The title's zero letter and the unit the distance is edited in.
void draw_zero_and_unit(widget_t* win) {
  const char letter[2] = {reticle_zero_letter(currzero), '\0'};
  widget_set_text_utf8(widget_lookup(win, "label_zero_child_letter", TRUE), letter);
  widget_set_text_utf8(widget_lookup(win, "label_zero_child_unit", TRUE),
                       stDevStatus.s8DistanceUint == DISTANCE_YD ? "yd" : "m");
}

// ---- the distance ----

void reticle_distance_save() {
  const int d = distance_value_dig_3 * 100 + distance_value_dig_2 * 10 + distance_value_dig_1;
  printf("distance_value_dig_3 distance_value_dig_2 distance_value_dig_1 =%d%d%d\n",
         distance_value_dig_3, distance_value_dig_2, distance_value_dig_1);
  Inf_Cursor_Zero* zero = reticle_zero(currzero);
  if (zero == NULL) return;
  if (stDevStatus.s8DistanceUint == DISTANCE_YD) {
    zero->u16IrCursorDistanceYD = static_cast<int16_t>(d);
    zero->u16IrCursorDistance = reticle_yards_to_metres(d);
  } else {
    zero->u16IrCursorDistance = static_cast<int16_t>(d);
    zero->u16IrCursorDistanceYD = reticle_metres_to_yards(d);
  }
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_DISTANCE);
}

// OK on row 1: frames the hundreds, then the tens, then the units; the fourth press saves and
// moves on to the alignment row.
void distance_entry(widget_t* win) {
  distance_enable = 1;
  widget_move_resize(widget_lookup(win, "view_distance_val", TRUE),
                     (PLACE_NONE - zero_diatance_place) * DIGIT_PITCH + DIGIT_X0, 9, 25, 42);
  zero_diatance_place--;
  if (zero_diatance_place < 0) {
    reticle_distance_save();
    distance_enable = 0;
    zero_diatance_place = PLACE_NONE;
    Zavo_reticle_zero_child_index = ROW_ALIGN;
    on_reticle_zero_child_display(win, Zavo_reticle_zero_child_index);
  }
  on_partition_distance_sel_visible(win);
}

// Up (+1) or down (-1) on the framed digit: the hundreds run 0..hundred_max_index, the tens and
// units 0..9, each wrapping.
void digit_change(widget_t* win, int delta) {
  hundred_max_index = stDevStatus.s8DistanceUint == DISTANCE_YD ? 9 : 8;
  if (zero_diatance_place < 0 || zero_diatance_place > 2) return;
  const int max = zero_diatance_place == 2 ? hundred_max_index : 9;
  int& digit = digit_at(zero_diatance_place);
  digit += delta;
  if (digit > max)
    digit = delta > 0 ? 0 : max;  // a stored digit above the maximum steps down to it
  if (digit < 0) digit = max;
  draw_digit(win, zero_diatance_place);
}

// ---- leaving ----

ret_t on_timer_exit_zero_child(const timer_info_t* timer) {
  widget_t* win = static_cast<widget_t*>(timer->ctx);
  widget_set_visible(widget_lookup(win, "view_tip_exit", TRUE), FALSE);
  tm_id_exit_zero = 0;
  if (key_value == GUI_KEY_POWER_S) {
    window_manager_back_to(window_manager(), "Zavo_home_page_1");
  } else {
    GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
    navigator_back();
    navigator_to("Zavo_reticle_menu");
    navigator_to_with_context("Zavo_reticle_zero",
                              reinterpret_cast<void*>(static_cast<intptr_t>(GUI_KEY_POWER_S)));
  }
  return RET_REMOVE;
}

// The exit notice: shown at once, the page left 1 s later (one timer however often it is asked).
void start_exit(widget_t* win) {
  widget_set_visible(widget_lookup(win, "view_tip_exit", TRUE), TRUE);
  page_timer_start(timers, tm_id_exit_zero, on_timer_exit_zero_child, EXIT_NOTICE_MS);
}

// ---- keys ----

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  key_value = static_cast<uint16_t>(evt->key);
  // While the exit notice shows, keys only count as the last key: home still leads home.
  if (tm_id_exit_zero != 0) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_FUCTION_L:
    case GUI_KEY_POWER_S:
      start_exit(win);
      reticle_distance_save();  // also when it was not edited
      distance_enable = 0;
      on_partition_distance_sel_visible(win);
      break;
    case GUI_KEY_FUCTION_S:
      switch (Zavo_reticle_zero_child_index) {
        case ROW_DISTANCE: distance_entry(win); break;
        case ROW_ALIGN:
          widget_set_visible(widget_lookup(win, "view_reticle_zero_child", TRUE), FALSE);
          navigator_to("Zavo_reticle_move");
          break;
        case ROW_EXIT: start_exit(win); break;
        default: break;
      }
      break;
    case GUI_KEY_RANGE_S:
    case GUI_KEY_PHOTO_S:
      if (distance_enable == 1) {
        digit_change(win, evt->key == GUI_KEY_RANGE_S ? +1 : -1);
      } else {
        Zavo_reticle_zero_child_index = static_cast<uint8_t>(
            menu_rows_step(CHILD_ROWS, evt->key, Zavo_reticle_zero_child_index));
        on_reticle_zero_child_display(win, Zavo_reticle_zero_child_index);
      }
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_reticle_zero_child_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  page_timers_attach(timers, win);
  widget_set_visible(widget_lookup(win, "view_reticle_zero_child", TRUE), TRUE);

  const Inf_Cursor_Group* group = reticle_current_group();
  currzero = group != NULL ? group->u8CurrentZero : 0;
  const Inf_Cursor_Zero* zero = reticle_zero(currzero);
  int d = 0;
  if (zero != NULL) {
    d = stDevStatus.s8DistanceUint == DISTANCE_YD ? zero->u16IrCursorDistanceYD
                                                  : zero->u16IrCursorDistance;
  }
  distance_value_dig_3 = d / 100;
  distance_value_dig_2 = (d % 100) / 10;
  distance_value_dig_1 = d % 10;
  for (int place = 0; place <= 2; ++place)
    draw_digit(win, place);

  zero_diatance_place = PLACE_NONE;
  distance_enable = 0;
  key_value = 0;
  Zavo_reticle_zero_child_index = ROW_DISTANCE;
  on_partition_distance_sel_visible(win);
  printf("renter Zavo_reticle_zero_child %d\n", zero_diatance_place);

  widget_foreach(win, visit_init_child, win);
  on_reticle_zero_child_display(win, Zavo_reticle_zero_child_index);
  draw_zero_and_unit(win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
