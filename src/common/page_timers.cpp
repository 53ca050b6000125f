// Timers owned by a page's window: see page_timers.h.
#include "common/page_timers.h"

namespace {

void stop_all(page_timers_t& timers) {
  for (uint32_t* id : timers.ids)
    page_timer_stop(*id);
}

// The window closes: its timers end with it.
ret_t on_window_close(void* ctx, event_t* e) {
  page_timers_t& timers = *static_cast<page_timers_t*>(ctx);
  if (e != NULL && timers.win == e->target) stop_all(timers);
  return RET_OK;
}

// The window is destroyed (after its close, or at once when the toolkit is reset).
ret_t on_window_destroy(void* ctx, event_t* e) {
  page_timers_t& timers = *static_cast<page_timers_t*>(ctx);
  if (e != NULL && timers.win == e->target) {
    stop_all(timers);
    timers.win = nullptr;
  }
  return RET_OK;
}

}  // namespace

void page_timers_attach(page_timers_t& timers, widget_t* win) {
  for (uint32_t* id : timers.ids)
    *id = 0;
  timers.win = win;
  if (win == NULL) return;
  widget_on(win, EVT_WINDOW_CLOSE, on_window_close, &timers);
  widget_on(win, EVT_DESTROY, on_window_destroy, &timers);
}

bool page_timer_start(page_timers_t& timers, uint32_t& id, timer_func_t on_timer,
                      uint32_t period_ms) {
  if (id != 0 || timers.win == nullptr) return false;
  id = widget_add_timer(timers.win, on_timer, period_ms);
  return id != 0;
}

void page_timer_stop(uint32_t& id) {
  if (id == 0) return;
  timer_remove(id);
  id = 0;
}
