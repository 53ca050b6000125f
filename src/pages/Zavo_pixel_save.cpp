// "Zavo_pixel_save": waits for the device to store the repaired pixels. The device reports the
// end of the save by changing stUIStatus.s8BlindSaveStatus from 2; the page looks every 500 ms
// and gives up after the eighteenth look (about 9 s). Either way it leaves to the observation
// screen with the repair cursor off and the reticle back.
#include <cstdint>

#include "common/blind_pixel.h"
#include "common/common_function.h"
#include "common/navigator.h"
#include "common/page_timers.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

namespace {

constexpr char SAVE_PENDING = 2;
constexpr uint32_t SAVE_TICK_MS = 500;
constexpr uint8_t SAVE_WAIT_TICKS = 17;  // ticks waited before the one that gives up

uint8_t wait_count = 0;
uint32_t tm_id_save = 0;

uint32_t* const TIMERS[] = {&tm_id_save};
page_timers_t timers{TIMERS};

void draw_progress(widget_t* win) {
  widget_set_value_int(widget_lookup(win, "progress_pixel_save", TRUE), wait_count + 1);
}

ret_t on_timer_pixel_save(const timer_info_t* timer) {
  widget_t* win = static_cast<widget_t*>(timer->ctx);
  if (stUIStatus.s8BlindSaveStatus == SAVE_PENDING && wait_count < SAVE_WAIT_TICKS) {
    wait_count++;
    draw_progress(win);
    return RET_REPEAT;
  }
  tm_id_save = 0;
  blind_pixel_cursor_off();
  navigator_back_to_home();
  blind_pixel_reticle_back();
  return RET_REMOVE;
}

}  // namespace

ret_t Zavo_pixel_save_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  page_timers_attach(timers, win);
  stUIStatus.s8BlindSaveStatus = SAVE_PENDING;
  wait_count = 0;
  draw_progress(win);
  page_timer_start(timers, tm_id_save, on_timer_pixel_save, SAVE_TICK_MS);
  return RET_OK;
}
