// Posting keys into the main loop from any thread.
#ifndef TK_MAIN_LOOP_SIMPLE_H
#define TK_MAIN_LOOP_SIMPLE_H

#include "base/main_loop.h"

BEGIN_C_DECLS

/* Capacity of the main loop's locked queue, shared by posted keys, idle_queue(), timer_queue()
 * and window requests made from other threads. */
#ifndef MAIN_LOOP_QUEUE_SIZE
#define MAIN_LOOP_QUEUE_SIZE 20
#endif

/* Thread-safe. Queues EVT_KEY_DOWN (pressed) or EVT_KEY_UP for `key`, no modifiers. One flag for
 * all keys decides whether a key-up is queued at all: only after a key-down not yet released
 * (so post strictly paired down/up events). RET_FAIL, with an error line, when the queue is
 * full: the key is lost. */
ret_t main_loop_post_key_event(main_loop_t* l, bool_t pressed, uint8_t key);

END_C_DECLS

#endif /* TK_MAIN_LOOP_SIMPLE_H */
