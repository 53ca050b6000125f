// Events: the common header every event starts with, the base event numbers and handlers.
#ifndef TK_EVENT_H
#define TK_EVENT_H

#include "tkc/types_def.h"

BEGIN_C_DECLS

/* Numbers of the base events (toolkit version 1.7.1). */
typedef enum _event_base_type_t {
  EVT_NONE = 0,
  EVT_PROP_WILL_CHANGE = 1,
  EVT_PROP_CHANGED = 2,
  EVT_DESTROY = 12,
  EVT_VALUE_WILL_CHANGE = 13,
  EVT_VALUE_CHANGED = 14,
  EVT_VALUE_CHANGING = 15
} event_base_type_t;

typedef struct _event_t {
  uint32_t type;
  /* sizeof the whole event structure: the *_cast helpers check it. */
  uint32_t size;
  uint64_t time;
  void* target;
  void* native_window_handle;
} event_t;

typedef ret_t (*event_func_t)(void* ctx, event_t* e);

/* Sets size = sizeof(event_t) and time = time_now_ms(). */
event_t event_init(uint32_t type, void* target);

/* An event source (opaque). Every widget gets one on its first widget_on. */
typedef struct _emitter_t emitter_t;

END_C_DECLS

#endif /* TK_EVENT_H */
