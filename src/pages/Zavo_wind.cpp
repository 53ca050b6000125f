// "Zavo_wind": the wind reading. The speed the wind meter reports, large, in miles per hour (the
// observation screen's rule) and in metres per second, whether the meter is connected, and the
// number, average and strongest (gust) of the readings since the page opened or its statistics
// were reset. Two rows: the wind meter (its state; function opens "Zavo_Anemometer") and the
// reset of the statistics, which the page keeps itself and sends nothing for.
#include <algorithm>

#include "common/accessory_common.h"
#include "common/common_function.h"
#include "common/menu_rows.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/accessory_pages.h"
#include "pages/page_list.h"

// Selected row, 1..2; every opening starts on row 1.
uint8_t Zavo_wind_index = 1;
// The connection read-out's timer on the page's window (0: none); it dies with the window.
uint32_t timer_id_wind_page = 0;

namespace {

constexpr const char* ROW_LABELS[] = {"label_wind_meter", "label_wind_reset"};
constexpr menu_rows_t ROWS{"image_wind_sel", 560, ROW_LABELS};
constexpr uint32_t CONNECTION_PERIOD_MS = 500;

// Readings since the page opened or the statistics were reset, in millimetres per second.
struct wind_statistics_t {
  uint32_t count = 0;
  int64_t sum = 0;
  int16_t gust = 0;
};
wind_statistics_t statistics;

void draw_statistics(widget_t* win) {
  char text[32];
  tk_snprintf(text, sizeof(text), "%u", statistics.count);
  accessory_set_text(win, "label_wind_readings", text);
  if (statistics.count == 0) {
    accessory_set_text(win, "label_wind_average", "--");
    accessory_set_text(win, "label_wind_gust", "--");
    return;
  }
  accessory_format_mph(
      text, sizeof(text),
      static_cast<int16_t>(statistics.sum / static_cast<int64_t>(statistics.count)));
  accessory_set_text(win, "label_wind_average", text);
  accessory_format_mph(text, sizeof(text), statistics.gust);
  accessory_set_text(win, "label_wind_gust", text);
}

void draw_reading(widget_t* win) {
  accessory_set_tr(win, "label_wind_meter_value",
                   stUIStatus.s8WindSwitch != 0 ? "acc_on" : "acc_off");
  accessory_set_tr(win, "label_wind_state", wind_meter_state_text());
  char text[32];
  accessory_format_mph(text, sizeof(text), stUIStatus.s16WindSpeed);
  accessory_set_text(win, "label_wind_speed", text);
  accessory_format_m_s(text, sizeof(text), stUIStatus.s16WindSpeed);
  accessory_set_text(win, "label_wind_speed_ms", text);
}

// A reading from the meter: counted while the meter is on and connected and the page is on top
// (switching the meter on the wind meter page above announces a cleared speed, not a reading).
ret_t on_wind(void* ctx, event_t* e) {
  (void)e;
  widget_t* win = static_cast<widget_t*>(ctx);
  if (stUIStatus.s8WindSwitch != 0 && stUIStatus.wind_connect_state != 0 &&
      window_manager_get_top_window(window_manager()) == win) {
    const int16_t speed = std::max<int16_t>(stUIStatus.s16WindSpeed, 0);
    statistics.count++;
    statistics.sum += speed;
    statistics.gust = std::max(statistics.gust, speed);
    draw_statistics(win);
  }
  draw_reading(win);
  return RET_OK;
}

ret_t on_connection_timer(const timer_info_t* timer) {
  accessory_set_tr(static_cast<widget_t*>(timer->ctx), "label_wind_state", wind_meter_state_text());
  return RET_REPEAT;
}

// Back from the wind meter page: the meter may have been switched.
ret_t on_to_foreground(void* ctx, event_t* e) {
  (void)e;
  draw_reading(static_cast<widget_t*>(ctx));
  return RET_OK;
}

ret_t on_page_destroy(void* ctx, event_t* e) {
  (void)ctx;
  (void)e;
  timer_id_wind_page = 0;  // the timer went with the window
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
      Zavo_wind_index = static_cast<uint8_t>(menu_rows_step(ROWS, evt->key, Zavo_wind_index));
      menu_rows_focus(win, ROWS, Zavo_wind_index);
      break;
    case GUI_KEY_FUCTION_S:
      if (Zavo_wind_index == 1) {
        navigator_to("Zavo_Anemometer");
      } else if (Zavo_wind_index == 2) {
        statistics = {};
        draw_statistics(win);
      }
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_wind_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_wind_index = 1;
  statistics = {};
  menu_rows_focus(win, ROWS, Zavo_wind_index);
  draw_reading(win);
  draw_statistics(win);
  widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_WIND}, on_wind, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_WINDOW_TO_FOREGROUND, on_to_foreground, win);
  widget_on(win, EVT_DESTROY, on_page_destroy, win);
  if (timer_id_wind_page == 0) {
    timer_id_wind_page = widget_add_timer(win, on_connection_timer, CONNECTION_PERIOD_MS);
  }
  return RET_OK;
}
