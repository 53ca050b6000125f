// Widget, key and window events, numbered as in toolkit version 1.7.1. Code uses the names only.
#ifndef TK_BASE_EVENTS_H
#define TK_BASE_EVENTS_H

#include "tkc/event.h"
#include "tkc/utils.h"

BEGIN_C_DECLS

typedef struct _widget_t widget_t;

typedef enum _event_type_t {
  EVT_POINTER_DOWN = 0xff,
  EVT_POINTER_DOWN_BEFORE_CHILDREN = 256,
  EVT_POINTER_MOVE = 257,
  EVT_POINTER_MOVE_BEFORE_CHILDREN = 258,
  EVT_POINTER_UP = 259,
  EVT_POINTER_UP_BEFORE_CHILDREN = 260,
  EVT_WHEEL = 261,
  EVT_WHEEL_BEFORE_CHILDREN = 262,
  EVT_POINTER_DOWN_ABORT = 263,
  EVT_CONTEXT_MENU = 264,
  /* 265 and 266: two mouse-button events of 1.7.1 that this host does not produce. */
  EVT_POINTER_ENTER = 267,
  EVT_POINTER_LEAVE = 268,
  EVT_LONG_PRESS = 269,
  EVT_CLICK = 270,
  EVT_DOUBLE_CLICK = 271,
  EVT_FOCUS = 272,
  EVT_BLUR = 273,
  EVT_KEY_DOWN = 274,
  EVT_KEY_LONG_PRESS = 275,
  EVT_KEY_DOWN_BEFORE_CHILDREN = 276,
  EVT_KEY_REPEAT = 277,
  EVT_KEY_UP = 278,
  EVT_KEY_UP_BEFORE_CHILDREN = 279,
  EVT_WILL_MOVE = 280,
  EVT_MOVE = 281,
  EVT_WILL_RESIZE = 282,
  EVT_RESIZE = 283,
  EVT_WILL_MOVE_RESIZE = 284,
  EVT_MOVE_RESIZE = 285,
  EVT_LOCALE_CHANGED = 290,
  EVT_WINDOW_LOAD = 296,
  EVT_WIDGET_LOAD = 297,
  EVT_WINDOW_WILL_OPEN = 298,
  EVT_WINDOW_OPEN = 299,
  EVT_WINDOW_TO_BACKGROUND = 300,
  EVT_WINDOW_TO_FOREGROUND = 301,
  EVT_WINDOW_CLOSE = 302,
  EVT_REQUEST_CLOSE_WINDOW = 303,
  EVT_TOP_WINDOW_CHANGED = 304,
  /* Requests handled inside the toolkit start here. */
  EVT_REQ_START = 0x1000,
  /* Application-defined events are EVT_USER_START + n. */
  EVT_USER_START = 0x2000
} event_type_t;

typedef struct _key_event_t {
  event_t e;
  uint32_t key;
  bool_t alt;
  bool_t lalt;
  bool_t ralt;
  bool_t ctrl;
  bool_t lctrl;
  bool_t rctrl;
  bool_t shift;
  bool_t lshift;
  bool_t rshift;
  bool_t cmd;
  bool_t menu;
  bool_t capslock;
  bool_t numlock;
} key_event_t;

typedef struct _window_event_t {
  event_t e;
  widget_t* window;
} window_event_t;

typedef struct _value_change_event_t {
  event_t e;
  value_t old_value;
  value_t new_value;
} value_change_event_t;

/* NULL unless EVT_KEY_DOWN <= type <= EVT_KEY_UP_BEFORE_CHILDREN and size == sizeof(key_event_t).
 */
key_event_t* key_event_cast(event_t* event);
/* Only EVT_WINDOW_WILL_OPEN, EVT_WINDOW_OPEN and EVT_WINDOW_CLOSE with size ==
 * sizeof(window_event_t); the copies sent to the window itself are plain event_t. */
window_event_t* window_event_cast(event_t* event);
value_change_event_t* value_change_event_cast(event_t* event);

event_t* key_event_init(key_event_t* event, uint32_t type, widget_t* target, int32_t key);
event_t* window_event_init(window_event_t* event, uint32_t type, widget_t* target,
                           widget_t* window);

END_C_DECLS

#endif /* TK_BASE_EVENTS_H */
