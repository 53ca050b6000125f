// "Zavo_compass_1": the compass calibration. It lists the two turns of the calibration, the level
// turn first and the vertical turn second, each with its outcome since the scope started; function
// opens the chosen turn's step page, and the outcomes are redrawn when the page is back on top.
#include "common/common_function.h"
#include "common/compass_calibration.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

// Selected row, 1..2; every opening starts on row 1.
uint8_t Zavo_compass_1_index = 1;

namespace {

constexpr const char* ROW_LABELS[] = {"label_cal_level", "label_cal_vertical"};
constexpr menu_rows_t ROWS{"image_compass_1_sel", 560, ROW_LABELS};
// The step page of each row.
constexpr const char* STEP_PAGES[] = {"Zavo_level_correction", "Zavo_vertical_correction"};

void draw_outcomes(widget_t* win) {
  widget_set_tr_text(widget_lookup(win, "label_cal_level_state", TRUE),
                     calibration_outcome_text(calibration_outcome(CALIBRATION_LEVEL)));
  widget_set_tr_text(widget_lookup(win, "label_cal_vertical_state", TRUE),
                     calibration_outcome_text(calibration_outcome(CALIBRATION_VERTICAL)));
}

ret_t on_to_foreground(void* ctx, event_t* e) {
  (void)e;
  draw_outcomes(static_cast<widget_t*>(ctx));
  return RET_OK;
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_POWER_S: window_manager_back_to(window_manager(), "Zavo_home_page_1"); break;
    case GUI_KEY_FUCTION_L: navigator_back(); break;
    case GUI_KEY_PHOTO_S:
    case GUI_KEY_RANGE_S:
      Zavo_compass_1_index =
          static_cast<uint8_t>(menu_rows_step(ROWS, evt->key, Zavo_compass_1_index));
      menu_rows_focus(win, ROWS, Zavo_compass_1_index);
      break;
    case GUI_KEY_FUCTION_S:
      if (Zavo_compass_1_index >= 1 && Zavo_compass_1_index <= 2) {
        navigator_to(STEP_PAGES[Zavo_compass_1_index - 1]);
      }
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_compass_1_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_compass_1_index = 1;
  menu_rows_focus(win, ROWS, Zavo_compass_1_index);
  draw_outcomes(win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_WINDOW_TO_FOREGROUND, on_to_foreground, win);
  return RET_OK;
}
