// "Zavo_USB": shown while the scope is connected to a computer as a USB device. The device link
// opens it when USB power arrives in USB mode 1; it closes itself when the connection ends, and
// the power key leaves it like any system page.
#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/system_pages.h"

namespace {

ret_t on_usb_power(void* ctx, event_t* e) {
  (void)e;
  (void)ctx;
  if (stUIStatus.s8BatteryType != 1) navigator_close("Zavo_USB");
  return RET_OK;
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  (void)ctx;
  key_event_t* evt = key_event_cast(e);
  if (evt != NULL && evt->key == GUI_KEY_POWER_S) back_to_home();
  return RET_OK;
}

}  // namespace

ret_t Zavo_USB_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_on(window_manager(), EVT_USER_START + int{SCREEN_EVT_BATTERY_TYPE}, on_usb_power, win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
