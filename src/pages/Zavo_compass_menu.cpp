// "Zavo_compass_menu": the compass. Three rows: the compass read-outs of the observation screen
// on or off, the calibration ("Zavo_compass_1") and the magnetic declination
// ("Zavo_Magnetic_declination", its value shown); below them the azimuth, elevation and cant the
// device reports, following its compass frames.
#include "common/accessory_common.h"
#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

// Selected row, 1..3; every opening starts on row 1.
uint8_t Zavo_compass_menu_index = 1;

namespace {

constexpr const char* ROW_LABELS[] = {"label_compass_switch", "label_compass_calibration",
                                      "label_compass_declination"};
constexpr menu_rows_t ROWS{"image_compass_menu_sel", 560, ROW_LABELS};

void draw_settings(widget_t* win) {
  accessory_show_switch(win, "image_compass_switch", stDevStatus.s8CompassSwitch != 0);
  char text[32];
  accessory_format_declination(text, sizeof(text), stDevStatus.s16CompassMagnetic);
  accessory_set_text(win, "label_compass_declination_value", text);
}

void draw_angles(widget_t* win) {
  char text[32];
  accessory_format_azimuth(text, sizeof(text), stUIStatus.s16CompassAzimuth);
  accessory_set_text(win, "label_compass_azimuth", text);
  accessory_format_signed_degrees(text, sizeof(text), stUIStatus.s16CompassPitch);
  accessory_set_text(win, "label_compass_pitch", text);
  accessory_format_signed_degrees(text, sizeof(text), stUIStatus.s16CompassSlant);
  accessory_set_text(win, "label_compass_slant", text);
}

ret_t on_compass_angle(void* ctx, event_t* e) {
  (void)e;
  draw_angles(static_cast<widget_t*>(ctx));
  return RET_OK;
}

// Back from the declination or calibration page: the declination may have changed.
ret_t on_to_foreground(void* ctx, event_t* e) {
  (void)e;
  draw_settings(static_cast<widget_t*>(ctx));
  return RET_OK;
}

void act(widget_t* win, uint8_t row) {
  switch (row) {
    case 1:
      stDevStatus.s8CompassSwitch = stDevStatus.s8CompassSwitch != 0 ? 0 : 1;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_COMPASS_SWITCH);
      draw_settings(win);
      break;
    case 2: navigator_to("Zavo_compass_1"); break;
    case 3: navigator_to("Zavo_Magnetic_declination"); break;
    default: break;
  }
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
      Zavo_compass_menu_index =
          static_cast<uint8_t>(menu_rows_step(ROWS, evt->key, Zavo_compass_menu_index));
      menu_rows_focus(win, ROWS, Zavo_compass_menu_index);
      break;
    case GUI_KEY_FUCTION_S: act(win, Zavo_compass_menu_index); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_compass_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_compass_menu_index = 1;
  menu_rows_focus(win, ROWS, Zavo_compass_menu_index);
  draw_settings(win);
  draw_angles(win);
  for (int offset :
       {SCREEN_EVT_COMPASS_AZIMUTH, SCREEN_EVT_COMPASS_PITCH, SCREEN_EVT_COMPASS_SLANT}) {
    widget_on(window_manager(), EVT_USER_START + offset, on_compass_angle, win);
  }
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_WINDOW_TO_FOREGROUND, on_to_foreground, win);
  return RET_OK;
}
