// "Zavo_laser_move": moves the laser indicator's marker on the live image, one pixel a press and
// ten a tick while a key is held, along x or y (the back key toggles the axis). Entering leaves
// picture-in-picture and switches the laser on; OK or home leaves to the observation screen.
#include "common/common_function.h"
#include "common/cursor_mover.h"
#include "common/page_timers.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

namespace {

ret_t on_timer_pixel_move(const timer_info_t* timer);

// No limits on this side: the 16-bit offsets wrap.
void laser_step(int move_direction, int sign, int amount) {
  int16_t& field =
      move_direction == DIRECTION_L_R ? stDevStatus.s16LaserIndicatX : stDevStatus.s16LaserIndicatY;
  field = static_cast<int16_t>(field + sign * amount);
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_LASER_POSITION);
}

constexpr cursor_mover_page_t LASER_MOVER{laser_step, on_timer_pixel_move};
cursor_mover_t mover{&LASER_MOVER, DIRECTION_L_R, {}};

uint32_t* const TIMERS[] = {&mover.fast.tm_id};
page_timers_t timers{TIMERS};

ret_t on_timer_pixel_move(const timer_info_t* timer) {
  return cursor_mover_tick(static_cast<widget_t*>(timer->ctx), mover);
}

void set_up_laser() {
  if (stDevStatus.s8VideoMode == 3) {
    stDevStatus.s8VideoMode = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_VIDEO_MODE);
  }
  if (stUIStatus.s8LaserSwitch == 0) {
    stUIStatus.s8LaserSwitch = 1;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_LASER_SWITCH);
  }
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  widget_t* win = static_cast<widget_t*>(ctx);
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  if (cursor_mover_key(win, timers, mover, static_cast<int>(evt->key))) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_FUCTION_S:
    case GUI_KEY_POWER_S:
      GUI_SEND_BASIC_FUNCTION_MSG(30);
      window_manager_back_to(window_manager(), "Zavo_home_page_1");
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_laser_move_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  page_timers_attach(timers, win);
  cursor_mover_enter(win, mover);
  set_up_laser();
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
