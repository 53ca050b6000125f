// Timers and idle functions.
#ifndef TK_TIMER_INFO_H
#define TK_TIMER_INFO_H

#include "tkc/utils.h"

BEGIN_C_DECLS

typedef struct _timer_info_t timer_info_t;
typedef struct _idle_info_t idle_info_t;

/* RET_REPEAT keeps the timer (or idle); every other value, RET_OK included, removes it. */
typedef ret_t (*timer_func_t)(const timer_info_t* timer);
typedef ret_t (*idle_func_t)(const idle_info_t* idle);

struct _timer_info_t {
  tk_object_t object;
  timer_func_t on_timer;
  void* ctx;
  void* extra_ctx;
  uint32_t id;
  uint64_t now;
  uint64_t start;
  uint32_t duration;
  tk_destroy_t on_destroy;
  void* on_destroy_ctx;
  bool_t suspend;
};

struct _idle_info_t {
  tk_object_t object;
  idle_func_t on_idle;
  void* ctx;
  void* extra_ctx;
  uint32_t id;
  tk_destroy_t on_destroy;
  void* on_destroy_ctx;
};

/* User interface thread only. Ids start at 1 and grow; 0 means failure; a live id is never
 * reused. The next period of a repeating timer is measured from the time its callback ran. */
uint32_t timer_add(timer_func_t on_timer, void* ctx, uint32_t duration_ms);
/* RET_OK, RET_NOT_FOUND for an unknown id, RET_BAD_PARAMS (with a warning) for 0. */
ret_t timer_remove(uint32_t timer_id);
ret_t timer_modify(uint32_t timer_id, uint32_t duration_ms);
ret_t timer_reset(uint32_t timer_id);
/* Thread-safe: the timer is added by the user interface thread through the main-loop queue.
 * RET_FAIL (and an error line) when the queue is full. */
ret_t timer_queue(timer_func_t on_timer, void* ctx, uint32_t duration_ms);

/* User interface thread only: runs `on_idle` on the next idle pass. Returns an id, 0 = failure. */
uint32_t idle_add(idle_func_t on_idle, void* ctx);
ret_t idle_remove(uint32_t idle_id);
/* Thread-safe: posts "add this idle" into the main-loop queue (MAIN_LOOP_QUEUE_SIZE entries,
 * shared with posted keys). RET_OK, or RET_FAIL with an error line when the queue is full: the
 * request is then lost, exactly as it would be on the board. */
ret_t idle_queue(idle_func_t on_idle, void* ctx);

END_C_DECLS

#endif /* TK_TIMER_INFO_H */
