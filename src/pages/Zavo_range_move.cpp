// "Zavo_range_move": moves the range finder's marker on the live image, one pixel a press and ten
// a tick while a key is held, along x or y (the back key toggles the axis). Entering sets the
// picture up for it (no picture-in-picture, the range finder on and measuring continuously, the
// ballistic calculator off); OK or home leaves to the observation screen.
#include "common/common_function.h"
#include "common/cursor_mover.h"
#include "common/page_timers.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

namespace {

constexpr uint32_t RANGE_SEND_DELAY_MS = 500;
constexpr int RANGE_MEASURING = 3;  // s8RangeMode while continuous measuring runs

ret_t on_timer_pixel_move(const timer_info_t* timer);

// No limits on this side: the 16-bit offsets wrap.
void range_step(int move_direction, int sign, int amount) {
  int16_t& field =
      move_direction == DIRECTION_L_R ? stDevStatus.s16RangeOffsetX : stDevStatus.s16RangeOffsetY;
  field = static_cast<int16_t>(field + sign * amount);
  GUI_SEND_RETICLE_POSITION_MSG(RETICLE_RANGE_POSITION);
}

constexpr cursor_mover_page_t RANGE_MOVER{range_step, on_timer_pixel_move};
cursor_mover_t mover{&RANGE_MOVER, DIRECTION_L_R, {}};
uint32_t tm_id_range_send = 0;  // on_range_send, once after entering

uint32_t* const TIMERS[] = {&mover.fast.tm_id, &tm_id_range_send};
page_timers_t timers{TIMERS};

ret_t on_timer_pixel_move(const timer_info_t* timer) {
  return cursor_mover_tick(static_cast<widget_t*>(timer->ctx), mover);
}

// Half a second after entering: continuous measuring, unless it already runs.
ret_t on_range_send(const timer_info_t* timer) {
  (void)timer;
  tm_id_range_send = 0;
  if (stUIStatus.s8RangeMode != RANGE_MEASURING) {
    GUI_SEND_DISTANCE_FUNCTION_MSG(1, RANGE_COUTINUTE_SEND);
  }
  return RET_REMOVE;
}

void set_up_range_finder() {
  if (stDevStatus.s8VideoMode == 3) {
    stDevStatus.s8VideoMode = 0;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_VIDEO_MODE);
  }
  if (stDevStatus.s8RangeSwitch == 0) GUI_SEND_DISTANCE_FUNCTION_MSG(0, RANGE_OPEN);
  if (stDevStatus.s8RangeType == RANGE_SINGLE) {
    stDevStatus.s8RangeType = RANGE_CONTINUOUS;
    GUI_SEND_BASIC_FUNCTION_MSG(BASIC_RANGE_TYPE);
  }
  if (info[0].ballistics_sw == 1) {
    info[0].ballistics_sw = 0;
    GUI_SEND_BALLISTIC_PARM_MSG(BALLISTIC_OPEN_CALCU, 0);
  }
  page_timer_start(timers, tm_id_range_send, on_range_send, RANGE_SEND_DELAY_MS);
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

ret_t Zavo_range_move_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  page_timers_attach(timers, win);
  cursor_mover_enter(win, mover);
  set_up_range_finder();
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  return RET_OK;
}
