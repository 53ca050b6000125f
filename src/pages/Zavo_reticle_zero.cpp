// "Zavo_reticle_zero": the five zeros of the current reticle group with their distances. OK on a
// zero makes it the group's current zero and opens its distance editor over the observation
// screen; the exit row returns to the reticle menu below and has the settings saved.
#include <cstdio>

#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/reticle_zeroing.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_reticle_pages.h"
#include "pages/page_list.h"

uint8_t Zavo_reticle_zero_index = 1;

namespace {

constexpr const char* ZERO_LABELS[] = {"label_zero1", "label_zero2", "label_zero3",
                                       "label_zero4", "label_zero5", "label_zero_exit"};
constexpr menu_rows_t ZERO_ROWS{"image_zero_sel", 208, ZERO_LABELS};
constexpr int ROW_EXIT = 6;

// Writes a zero's distance into its row: "%d yd" in yard mode, "%d m" in metre mode.
void draw_distance(widget_t* label, int zero) {
  const Inf_Cursor_Zero* z = reticle_zero(zero);
  if (z == NULL) return;
  char text[32];
  if (stDevStatus.s8DistanceUint == DISTANCE_YD) {
    tk_snprintf(text, sizeof(text), "%d yd", z->u16IrCursorDistanceYD);
  } else {
    tk_snprintf(text, sizeof(text), "%d m", z->u16IrCursorDistance);
  }
  widget_set_text_utf8(label, text);
}

// Fills the five distance rows.
ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  widget_t* child = static_cast<widget_t*>(const_cast<void*>(iter));
  if (child->name == NULL) return RET_OK;
  for (int zero = 0; zero < RETICLE_ZERO_COUNT; ++zero) {
    if (tk_str_eq(child->name, ZERO_LABELS[zero])) draw_distance(child, zero);
  }
  return RET_OK;
}

void on_reticle_zero_display(widget_t* win, int index) {
  printf("index===%d\n", index);
  menu_rows_focus(win, ZERO_ROWS, index);
}

// OK on a zero: it becomes the group's current zero, the device is told, the list and the
// reticle menu below it close and the zero's distance editor opens.
void choose_zero(int row) {
  Inf_Cursor_Group* group = reticle_current_group();
  if (group == NULL) return;
  group->u8CurrentZero = static_cast<uint8_t>(row - 1);
  GUI_SEND_RETICLE_MSG(RETICLE_ZERO);
  navigator_back();
  navigator_back();
  navigator_to("Zavo_reticle_zero_child");
  puts("exit Zavo_reticle_zero");
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S:
      Zavo_reticle_zero_index =
          static_cast<uint8_t>(menu_rows_step(ZERO_ROWS, evt->key, Zavo_reticle_zero_index));
      on_reticle_zero_display(win, Zavo_reticle_zero_index);
      break;
    case GUI_KEY_FUCTION_S:
      if (Zavo_reticle_zero_index == ROW_EXIT) {
        navigator_back();
        GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
      } else if (Zavo_reticle_zero_index >= 1 && Zavo_reticle_zero_index < ROW_EXIT) {
        choose_zero(Zavo_reticle_zero_index);
      }
      break;
    case GUI_KEY_FUCTION_L: navigator_back(); break;
    case GUI_KEY_POWER_S: window_manager_back_to(window_manager(), "Zavo_home_page_1"); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_reticle_zero_init(widget_t* win, void* ctx) {
  (void)ctx;  // the editor's exit opens the list with the home key's code; nothing depends on it
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  const Inf_Cursor_Group* group = reticle_current_group();
  Zavo_reticle_zero_index = static_cast<uint8_t>(group != NULL ? group->u8CurrentZero + 1 : 1);
  on_reticle_zero_display(win, Zavo_reticle_zero_index);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
