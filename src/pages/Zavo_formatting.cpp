// "Zavo_formatting": the last question before the card is formatted. OK (left) opens the
// formatting screen; Cancel (right, chosen at entry) goes back.
#include "common/common_function.h"
#include "common/navigator.h"
#include "msg/msghandler.h"
#include "pages/Zavo_menus.h"
#include "pages/system_pages.h"

// ---- state ----

uint8_t Zavo_format_index = 0;

namespace {

constexpr confirm_buttons_t BUTTONS{"image_OK", "image_Cancel"};

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (confirm_buttons_key(win, BUTTONS, evt->key, &Zavo_format_index)) {
    case CONFIRM_OK: navigator_to("Zavo_format_restart"); break;
    case CONFIRM_CANCEL: navigator_back(); break;
    case CONFIRM_MOVED: break;
    case CONFIRM_NONE:
      if (evt->key == GUI_KEY_FUCTION_L) navigator_back();
      if (evt->key == GUI_KEY_POWER_S) back_to_home();
      break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_formatting_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  Zavo_format_index = 0;
  confirm_buttons_show(win, BUTTONS, Zavo_format_index);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
