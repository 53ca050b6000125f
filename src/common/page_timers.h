// Timers owned by a page's window, each id kept in a file-scope variable of the page (0 = none).
//
// A page lists its timer ids once and attaches them to its window in its init:
//
//   uint32_t tm_id = 0, tm_id_exit = 0;
//   uint32_t* const TIMERS[] = {&tm_id, &tm_id_exit};
//   page_timers_t timers{TIMERS};
//   ...  page_timers_attach(timers, win);                    // in <page>_init
//   ...  page_timer_start(timers, tm_id_exit, on_timer_exit, 1000);
//
// The timers run on the window (widget_add_timer: the callback's ctx is the window). A callback
// that ends its timer sets the id to 0 before it returns RET_REMOVE. When the window closes, or is
// destroyed without a close, every timer still running is removed and its id set to 0: no timer
// fires into a closed or freed window, and a stale id never names a later timer. A page opened
// again before its old window is destroyed keeps its new timers (the old window's close or
// destroy no longer clears them).
#ifndef SCOPE_COMMON_PAGE_TIMERS_H
#define SCOPE_COMMON_PAGE_TIMERS_H

#include <cstdint>
#include <span>

#include "awtk.h"

struct page_timers_t {
  std::span<uint32_t* const> ids;  // the page's timer ids
  widget_t* win = nullptr;         // the window they run on; null while the page is closed
};

// Sets every id to 0 and ties the timers to `win`.
void page_timers_attach(page_timers_t& timers, widget_t* win);

// Starts `on_timer` on the page's window every `period_ms` and keeps its id in `id`, unless `id`
// already names a running timer (a second trigger never starts a second timer). True when a
// timer was started.
bool page_timer_start(page_timers_t& timers, uint32_t& id, timer_func_t on_timer,
                      uint32_t period_ms);

// Removes the timer `id` names, if any, and sets it to 0.
void page_timer_stop(uint32_t& id);

#endif  // SCOPE_COMMON_PAGE_TIMERS_H
