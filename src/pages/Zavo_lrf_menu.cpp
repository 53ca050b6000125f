// "Zavo_lrf_menu": the range finder's mode (single or continuous measuring) and the type and
// colour of its range marker.
// One of the three marker option pages: rows, keys and drawing are common/marker_options,
// this page is its row of data.
#include "common/common_function.h"
#include "common/marker_options.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

uint8_t Zavo_LRF_index = 1;

namespace {

constexpr marker_page_t PAGE{
    .row1_label = "label_LRF_mode",
    .row1_value = "label_range_type",
    .row1_text_on = "acc_continuous",
    .row1_text_off = "acc_single",
    .row1_field = &stDevStatus.s8RangeType,
    .row1_on = RANGE_CONTINUOUS,
    .row1_command = BASIC_RANGE_TYPE,
    .row1_stops_continuous_ranging = true,
    .type_field = &stDevStatus.s8RangeReticleType,
    .type_max = 2,
    .color_field = &stDevStatus.s8RangeReticleColor,
    .reticle_command = RETICLE_RANGE_POSITION,
};

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  marker_visit_child(PAGE, static_cast<widget_t*>(const_cast<void*>(iter)));
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
      Zavo_LRF_index = marker_step(win, Zavo_LRF_index, evt->key);
      on_lrf_menu_display(win, Zavo_LRF_index);
      break;
    case GUI_KEY_FUCTION_S: marker_act(win, PAGE, Zavo_LRF_index); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

void on_lrf_menu_display(widget_t* win, int row) {
  marker_paint_focus(win, PAGE, row);
}

ret_t Zavo_lrf_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  if (win == NULL) {
    log_condition_failed(__func__, 210, "win != NULL");
    return RET_BAD_PARAMS;
  }
  Zavo_LRF_index = 1;
  widget_foreach(win, visit_init_child, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
