// "Zavo_Anemometer": the wind meter. Two rows: the meter on or off and its averaging on or off;
// below them whether the meter is connected and the wind speed it reports, in miles per hour as
// the observation screen writes it. The device announces a change of connection without a screen
// event, so the page reads the connection every 500 ms.
#include "common/accessory_common.h"
#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

// Selected row, 1..2; every opening starts on row 1.
uint8_t Zavo_Anemometer_index = 1;
// The connection read-out's timer on the page's window (0: none); it dies with the window.
uint32_t timer_id_anemometer = 0;

namespace {

constexpr const char* ROW_LABELS[] = {"label_anemometer_switch", "label_anemometer_average"};
constexpr menu_rows_t ROWS{"image_anemometer_sel", 560, ROW_LABELS};
constexpr uint32_t CONNECTION_PERIOD_MS = 500;

void draw_all(widget_t* win) {
  accessory_show_switch(win, "image_anemometer_switch", stUIStatus.s8WindSwitch != 0);
  accessory_show_switch(win, "image_anemometer_average", stUIStatus.s8WindCountSwitch != 0);
  accessory_set_tr(win, "label_anemometer_state", wind_meter_state_text());
  char text[32];
  accessory_format_mph(text, sizeof(text), stUIStatus.s16WindSpeed);
  accessory_set_text(win, "label_anemometer_speed", text);
}

ret_t on_wind(void* ctx, event_t* e) {
  (void)e;
  draw_all(static_cast<widget_t*>(ctx));
  return RET_OK;
}

ret_t on_connection_timer(const timer_info_t* timer) {
  accessory_set_tr(static_cast<widget_t*>(timer->ctx), "label_anemometer_state",
                   wind_meter_state_text());
  return RET_REPEAT;
}

ret_t on_page_destroy(void* ctx, event_t* e) {
  (void)ctx;
  (void)e;
  timer_id_anemometer = 0;  // the timer went with the window
  return RET_OK;
}

// Function on a row: both records' copies of the switch first, then the command.
void act(widget_t* win, uint8_t row) {
  switch (row) {
    case 1:
      stUIStatus.s8WindSwitch = stUIStatus.s8WindSwitch != 0 ? 0 : 1;
      stUIStatus.s8AnemometerSwitch = stUIStatus.s8WindSwitch;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_WIND_SWITCH);
      break;
    case 2:
      stUIStatus.s8WindCountSwitch = stUIStatus.s8WindCountSwitch != 0 ? 0 : 1;
      stUIStatus.s8AnemometeCountSwitch = stUIStatus.s8WindCountSwitch;
      GUI_SEND_BASIC_FUNCTION_MSG(BASIC_WIND_COUNT);
      break;
    default: return;
  }
  draw_all(win);
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
      Zavo_Anemometer_index =
          static_cast<uint8_t>(menu_rows_step(ROWS, evt->key, Zavo_Anemometer_index));
      menu_rows_focus(win, ROWS, Zavo_Anemometer_index);
      break;
    case GUI_KEY_FUCTION_S: act(win, Zavo_Anemometer_index); break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

const char* wind_meter_state_text(void) {
  if (stUIStatus.s8WindSwitch == 0) return "acc_wind_meter_off";
  return stUIStatus.wind_connect_state != 0 ? "acc_wind_connected" : "acc_wind_not_connected";
}

ret_t Zavo_Anemometer_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_Anemometer_index = 1;
  menu_rows_focus(win, ROWS, Zavo_Anemometer_index);
  draw_all(win);
  widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_WIND}, on_wind, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_DESTROY, on_page_destroy, win);
  if (timer_id_anemometer == 0) {
    timer_id_anemometer = widget_add_timer(win, on_connection_timer, CONNECTION_PERIOD_MS);
  }
  return RET_OK;
}
