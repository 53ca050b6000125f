// "Zavo_pixel_menu": the blind-pixel repair cursor. Entering switches off everything that draws
// over the picture (each only if it is on, one message each) and the device's repair cursor on.
// Up and down move the cursor one pixel (ten a tick while held) along x or y, the back key toggles
// the axis, OK opens the repair options, home leaves to the observation screen.
#include "common/blind_pixel.h"
#include "common/common_function.h"
#include "common/cursor_mover.h"
#include "common/navigator.h"
#include "common/page_timers.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

namespace {

constexpr int RANGE_MEASURING = 3;  // s8RangeMode while continuous measuring runs

ret_t on_timer_pixel_move(const timer_info_t* timer);

// The device's step codes: 0 up, 1 down, 2 left, 3 right; one pixel, or ten on a tick.
void blind_step(int move_direction, int sign, int amount) {
  const char code = move_direction == DIRECTION_L_R ? (sign > 0 ? 3 : 2) : (sign > 0 ? 1 : 0);
  if (amount == 1) {
    stUIStatus.s8BlindPosition = code;
    GUI_SEND_BLIND_MSG(BLIND_MOVE_POSITION);
  } else {
    stUIStatus.s8BlindTenPosition = code;
    GUI_SEND_BLIND_MSG(BLIND_MOVE_TENPOSITION);
  }
}

constexpr cursor_mover_page_t BLIND_MOVER{blind_step, on_timer_pixel_move};
cursor_mover_t mover{&BLIND_MOVER, DIRECTION_L_R, {}};

uint32_t* const TIMERS[] = {&mover.fast.tm_id};
page_timers_t timers{TIMERS};

ret_t on_timer_pixel_move(const timer_info_t* timer) {
  return cursor_mover_tick(static_cast<widget_t*>(timer->ctx), mover);
}

// Everything that would draw over the picture goes off, each only if it is on.
void switch_overlays_off() {
  if (stUIStatus.s8UsbMode == 1) {
    stUIStatus.s8UsbMode = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_USB_TYPE);
  }
  if (info[0].ballistics_sw == 1) {
    info[0].ballistics_sw = 0;
    GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
  }
  if (stDevStatus.s8VideoMode == 3) {
    stDevStatus.s8VideoMode = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_VIDEO_MODE);
  }
  if (stUIStatus.s8LaserSwitch == 1) {
    stUIStatus.s8LaserSwitch = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH);
  }
  if (stDevStatus.s8RangeSwitch == 1) {
    if (stUIStatus.s8RangeMode == RANGE_MEASURING) {
      GUI_SEND_DISTANCE_FUNCTION_MSG(1, RANGE_COUTINUTE_SEND_STOP);
    }
    GUI_SEND_DISTANCE_FUNCTION_MSG(0, RANGE_CLOSE);
  }
  if (stDevStatus.s8ReticleSwitch == 1) {
    stDevStatus.s8ReticleSwitch = 0;
    GUI_SEND_RETICLE_MSG(RETICLE_SWITCH);
  }
  if (stUIStatus.s8WindSwitch == 1) {
    stUIStatus.s8WindSwitch = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_WIND_SWITCH);
  }
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  if (cursor_mover_key(win, timers, mover, static_cast<int>(evt->key))) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_FUCTION_S:
      cursor_mover_reset_arrows(win);
      navigator_to("Zavo_pixel_child");
      break;
    case GUI_KEY_POWER_S:
      blind_pixel_cursor_off();
      window_manager_back_to(window_manager(), "Zavo_home_page_1");
      blind_pixel_reticle_back();
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_pixel_menu_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  page_timers_attach(timers, win);
  switch_overlays_off();
  stUIStatus.s8BlindSwitch = 1;
  cursor_mover_enter(win, mover);
  GUI_SEND_BLIND_MSG(BLIND_CURSOR_SWITCH);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
