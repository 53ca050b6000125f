// "Zavo_Laser_menu": the laser on or off and the type and colour of its marker.
// One of the three marker option pages: rows, keys and drawing are common/marker_options,
// this page is its row of data.
#include "common/common_function.h"
#include "common/marker_options.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

uint8_t Zavo_Laser_index = 1;

namespace {

constexpr marker_page_t PAGE{
    .row1_label = "label_laser_switch",
    .row1_value = "image_laser_switch",
    .row1_text_on = NULL,
    .row1_text_off = NULL,
    .row1_field = &stUIStatus.s8LaserSwitch,
    .row1_on = 1,
    .row1_command = BASIC_LASER_SWITCH,
    .row1_stops_continuous_ranging = false,
    .type_field = &stDevStatus.s8LaserReticleType,
    .type_max = 2,
    .color_field = &stDevStatus.s8LaserReticleColor,
    .reticle_command = RETICLE_LASER_POSITION,
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
      Zavo_Laser_index = marker_step(win, Zavo_Laser_index, evt->key);
      on_laser_menu_display(win, Zavo_Laser_index);
      break;
    case GUI_KEY_FUCTION_S: marker_act(win, PAGE, Zavo_Laser_index); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

void on_laser_menu_display(widget_t* win, int row) {
  marker_paint_focus(win, PAGE, row);
}

ret_t Zavo_Laser_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  if (win == NULL) {
    log_condition_failed(__func__, 213, "win != NULL");
    return RET_BAD_PARAMS;
  }
  Zavo_Laser_index = 1;
  widget_foreach(win, visit_init_child, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
