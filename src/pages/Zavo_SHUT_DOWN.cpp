// "Zavo_SHUT_DOWN": the shut-down countdown, opened by a long press of the power key (the page
// that was showing is named in stUIStatus.temp_window) or by the observation screen when the
// battery is empty. It ticks every second: at the first tick all settings are saved and "3"
// shows, at the second "2", at the third a running recording (and a recoil recording) is stopped
// and the scope is told to shut down. Releasing the power key before the third tick cancels and
// returns to the page that was showing.
#include <cstdio>
#include <cstring>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/records_lock.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/Zavo_home_page_1.h"
#include "pages/Zavo_menus.h"
#include "pages/system_pages.h"
#include "widgets/image.h"

// ---- state ----

uint8_t back_count = 0;

namespace {

constexpr const char* SHUT_DOWN_WINDOW = "Zavo_SHUT_DOWN";
constexpr uint32_t TICK_MS = 1000;
constexpr uint32_t RECOIL_STOP_WAIT_MS = 1000;
constexpr uint32_t SHUT_DOWN_WAIT_MS = 100;

uint32_t timer_id_shutdown;         // the countdown while it runs
widget_t* countdown_window = NULL;  // the window that timer belongs to

void shut_down() {
  stop_recording_first();
  if (timer_id_RAV != 0) {
    GUI_SEND_RECOIL_MSG(RECOIL_BREAKOUT);
    records_sleep_ms(RECOIL_STOP_WAIT_MS);
  }
  // The waits let the device link in (the shared records are released while this thread sleeps).
  records_sleep_ms(SHUT_DOWN_WAIT_MS);
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_SHUT_DOWN);
}

ret_t on_countdown_tick(const timer_info_t* timer) {
  widget_t* win = static_cast<widget_t*>(timer->ctx);
  back_count = static_cast<uint8_t>(back_count + 1);
  if (back_count == 1) {
    image_set_image(widget_lookup(win, "image_shutdown", TRUE), "Zavo_countdown3");
    GUI_SEND_PARAM_FUNCTION_MSG(SAVE_ALLPARAM);
    return RET_REPEAT;
  }
  if (back_count == 2) {
    image_set_image(widget_lookup(win, "image_shutdown", TRUE), "Zavo_countdown2");
    return RET_REPEAT;
  }
  timer_id_shutdown = 0;
  back_count = 0;
  shut_down();
  return RET_REMOVE;
}

// Back to the page the long press came from, when it is still open; any other name (none, this
// page, a page that has closed) returns to the observation screen.
void return_to_opener() {
  char name[sizeof(stUIStatus.temp_window) + 1] = {0};
  std::memcpy(name, stUIStatus.temp_window, sizeof(stUIStatus.temp_window));
  const bool usable = name[0] != '\0' && strcmp(name, SHUT_DOWN_WINDOW) != 0 &&
                      widget_child(window_manager(), name) != NULL;
  if (!usable) {
    printf("Zavo_SHUT_DOWN: cancelled; \"%s\" is not an open page, back to %s\n", name,
           HOME_WINDOW_NAME);
    navigator_close(SHUT_DOWN_WINDOW);
    back_to_home();
    return;
  }
  navigator_switch_to(name, TRUE);
}

void cancel(widget_t* win) {
  if (timer_id_shutdown == 0) return;  // the third tick has passed: nothing cancels
  widget_remove_timer(win, timer_id_shutdown);
  timer_id_shutdown = 0;
  back_count = 0;
  return_to_opener();
}

// A countdown window that goes away before its third tick (power key to the observation screen,
// a newer countdown) takes its count with it.
ret_t on_window_destroy(void* ctx, event_t* e) {
  (void)e;
  if (ctx == countdown_window) {
    countdown_window = NULL;
    if (timer_id_shutdown != 0) {
      timer_id_shutdown = 0;
      back_count = 0;
    }
  }
  return RET_OK;
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_POWER_L_POP: cancel(win); break;
    case GUI_KEY_FUCTION_S: {
      widget_t* top = window_manager_get_top_window(window_manager());
      printf("top->name======%s\n", top != NULL && top->name != NULL ? top->name : "");
      printf("stUIStatus.temp_window======%.32s\n", stUIStatus.temp_window);
      break;
    }
    case GUI_KEY_POWER_S:
      if (timer_id_shutdown != 0) back_to_home();
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_SHUT_DOWN_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_set_visible(widget_lookup(win, "label_shutdown_battery", TRUE),
                     stUIStatus.low_battery_shutdown == 2 ? TRUE : FALSE);
  countdown_window = win;
  timer_id_shutdown = widget_add_timer(win, on_countdown_tick, TICK_MS);
  widget_on(win, EVT_DESTROY, on_window_destroy, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
