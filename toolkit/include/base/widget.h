// Widgets: the tree, properties, events, timers owned by a widget, styles and geometry.
//
// Every widget call must be made on the user interface thread (the thread that called tk_init),
// except the read-only calls on the window manager itself listed in base/window_manager.h.
#ifndef TK_BASE_WIDGET_H
#define TK_BASE_WIDGET_H

#include "tkc/event.h"
#include "tkc/timer_info.h"
#include "tkc/utils.h"
#include "base/events.h"

BEGIN_C_DECLS

typedef struct _style_t style_t;
typedef struct _self_layouter_t self_layouter_t;
typedef struct _children_layouter_t children_layouter_t;
/* Private host data of a widget (not part of the API). */
typedef struct _widget_host_t widget_host_t;

typedef struct _widget_vtable_t {
  uint32_t size;
  /* The kind, e.g. "window", "dialog", "view", "label", "image", "progress_bar". */
  const char* type;
  bool_t is_window;
  bool_t is_designing_window;
  bool_t focusable;
  const char** clone_properties;
  const char** persistent_properties;
} widget_vtable_t;

/* Public fields in the toolkit's declaration order; pages only read them. x, y, w and h are
 * relative to the parent. */
struct _widget_t {
  xy_t x;
  xy_t y;
  wh_t w;
  wh_t h;
  char* name;
  char* pointer_cursor;
  char* tr_text;
  char* style;
  char* animation;
  bool_t enable;
  bool_t feedback;
  bool_t visible;
  bool_t sensitive;
  bool_t focusable;
  bool_t with_focus_state;
  bool_t auto_adjust_size;
  bool_t focused;
  bool_t auto_created;
  bool_t dirty;
  bool_t floating;
  bool_t need_update_style;
  int32_t ref_count;
  bool_t initializing;
  bool_t loading;
  bool_t destroying;
  bool_t sync_state_to_children;
  bool_t state_from_parent_sync;
  char* state;
  uint8_t opacity;
  uint16_t dirty_rect_tolerance;
  wstr_t text;
  widget_t* parent;
  widget_t* target;
  widget_t* grab_widget;
  int32_t grab_widget_count;
  widget_t* key_target;
  /* The children in order (NULL when there are none); elms are widget_t*. */
  darray_t* children;
  emitter_t* emitter;
  style_t* astyle;
  self_layouter_t* self_layout;
  children_layouter_t* children_layout;
  tk_object_t* custom_props;
  const widget_vtable_t* vt;
  /* ---- private to the host toolkit ---- */
  widget_host_t* host;
};

#define WIDGET_STATE_NORMAL "normal"
#define WIDGET_STATE_PRESSED "pressed"
#define WIDGET_STATE_OVER "over"
#define WIDGET_STATE_DISABLE "disable"
#define WIDGET_STATE_FOCUSED "focused"
#define WIDGET_STATE_CHECKED "checked"
#define WIDGET_STATE_UNCHECKED "unchecked"
#define WIDGET_STATE_SELECTED "selected"

#define WIDGET_TYPE_WINDOW_MANAGER "window_manager"
#define WIDGET_TYPE_NORMAL_WINDOW "window"
#define WIDGET_TYPE_DIALOG "dialog"
#define WIDGET_TYPE_VIEW "view"
#define WIDGET_TYPE_LABEL "label"
#define WIDGET_TYPE_IMAGE "image"
#define WIDGET_TYPE_BUTTON "button"
#define WIDGET_TYPE_PROGRESS_BAR "progress_bar"

typedef enum _image_draw_type_t {
  IMAGE_DRAW_DEFAULT = 0,
  IMAGE_DRAW_CENTER,
  IMAGE_DRAW_ICON,
  IMAGE_DRAW_SCALE,
  IMAGE_DRAW_SCALE_AUTO,
  IMAGE_DRAW_SCALE_DOWN,
  IMAGE_DRAW_SCALE_W,
  IMAGE_DRAW_SCALE_H,
  IMAGE_DRAW_REPEAT,
  IMAGE_DRAW_REPEAT_X,
  IMAGE_DRAW_REPEAT_Y,
  IMAGE_DRAW_REPEAT_Y_INVERSE,
  IMAGE_DRAW_PATCH9,
  IMAGE_DRAW_PATCH3_X,
  IMAGE_DRAW_PATCH3_Y,
  IMAGE_DRAW_PATCH3_X_SCALE_Y,
  IMAGE_DRAW_PATCH3_Y_SCALE_X,
  IMAGE_DRAW_REPEAT9,
  IMAGE_DRAW_REPEAT3_X,
  IMAGE_DRAW_REPEAT3_Y,
  IMAGE_DRAW_FILL
} image_draw_type_t;

typedef enum _align_v_t {
  ALIGN_V_NONE = 0,
  ALIGN_V_MIDDLE = 1,
  ALIGN_V_TOP = 2,
  ALIGN_V_BOTTOM = 3
} align_v_t;

typedef enum _align_h_t {
  ALIGN_H_NONE = 0,
  ALIGN_H_CENTER = 1,
  ALIGN_H_LEFT = 2,
  ALIGN_H_RIGHT = 3
} align_h_t;

typedef enum _border_type_t {
  BORDER_NONE = 0,
  BORDER_LEFT = 1,
  BORDER_RIGHT = 2,
  BORDER_TOP = 4,
  BORDER_BOTTOM = 8,
  BORDER_ALL = 0xffff
} border_type_t;

/* ---- creation and destruction (user interface thread) ---- */
widget_t* view_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h);
widget_t* label_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h);
widget_t* image_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h);
widget_t* progress_bar_create(widget_t* parent, xy_t x, xy_t y, wh_t w, wh_t h);
ret_t widget_add_child(widget_t* widget, widget_t* child);
ret_t widget_remove_child(widget_t* widget, widget_t* child);
/* Destroys the widget and its subtree (deferred to an idle for open windows). */
ret_t widget_destroy(widget_t* widget);

/* ---- tree ---- */
/* Direct children only; the first whose name matches. "[N]" picks child N by index. */
widget_t* widget_child(widget_t* widget, const char* name);
/* Depth-first pre-order when `recursive`, so the first match in document order wins; the widget
 * itself is not checked. */
widget_t* widget_lookup(widget_t* widget, const char* name, bool_t recursive);
widget_t* widget_lookup_by_type(widget_t* widget, const char* type, bool_t recursive);
/* Visits the widget, then its descendants depth-first. RET_OK/RET_CONTINUE go on, RET_SKIP skips
 * the children, RET_REMOVE destroys the visited widget, RET_REPEAT warns and goes on; any other
 * value stops the walk and is returned. */
ret_t widget_foreach(widget_t* widget, tk_visit_t visit, void* ctx);
int32_t widget_count_children(widget_t* widget);
widget_t* widget_get_child(widget_t* widget, int32_t index);
int32_t widget_index_of(widget_t* widget);
/* The window (top-level widget) that contains the widget, or NULL. */
widget_t* widget_get_window(widget_t* widget);
const char* widget_get_type(widget_t* widget);
bool_t widget_is_window(widget_t* widget);
bool_t widget_is_dialog(widget_t* widget);
bool_t widget_is_normal_window(widget_t* widget);
bool_t widget_is_window_opened(widget_t* widget);

/* ---- events ---- */
/* Handler ids count per widget from 1 (0 = failure); the newest handler runs first. */
uint32_t widget_on(widget_t* widget, uint32_t type, event_func_t on_event, void* ctx);
/* RET_OK, RET_FAIL for an unknown id, RET_BAD_PARAMS when the widget never had a handler. */
ret_t widget_off(widget_t* widget, uint32_t id);
ret_t widget_off_by_func(widget_t* widget, uint32_t type, event_func_t on_event, void* ctx);
ret_t widget_off_by_ctx(widget_t* widget, void* ctx);
uint32_t widget_child_on(widget_t* widget, const char* name, uint32_t type, event_func_t on_event,
                         void* ctx);
/* The widget kind's own handler first (its RET_STOP hides the event from user handlers), then
 * the user handlers; no bubbling. RET_STOP from a handler ends the dispatch and is returned. */
ret_t widget_dispatch(widget_t* widget, event_t* e);
/* The widget, then every descendant in pre-order; RET_STOP ends the walk. */
ret_t widget_dispatch_recursive(widget_t* widget, event_t* e);
/* Copies the event and dispatches it from an idle; needs e->target == widget. */
ret_t widget_dispatch_async(widget_t* widget, event_t* e);

/* ---- timers and idles owned by a widget: info->ctx is the widget; they die with it ---- */
uint32_t widget_add_timer(widget_t* widget, timer_func_t on_timer, uint32_t duration_ms);
ret_t widget_remove_timer(widget_t* widget, uint32_t timer_id);
uint32_t widget_add_idle(widget_t* widget, idle_func_t on_idle);
ret_t widget_remove_idle(widget_t* widget, uint32_t idle_id);

/* ---- properties ---- */
ret_t widget_set_prop(widget_t* widget, const char* name, const value_t* v);
ret_t widget_get_prop(widget_t* widget, const char* name, value_t* v);
ret_t widget_set_prop_str(widget_t* widget, const char* name, const char* v);
/* The widget's own storage, `defval` when absent, NULL (with a warning) when not a string. */
const char* widget_get_prop_str(widget_t* widget, const char* name, const char* defval);
ret_t widget_set_prop_int(widget_t* widget, const char* name, int32_t v);
int32_t widget_get_prop_int(widget_t* widget, const char* name, int32_t defval);
ret_t widget_set_prop_bool(widget_t* widget, const char* name, bool_t v);
bool_t widget_get_prop_bool(widget_t* widget, const char* name, bool_t defval);
ret_t widget_set_name(widget_t* widget, const char* name);

/* ---- state, visibility, text ---- */
/* Variadic: one extra argument is accepted and ignored. */
ret_t widget_set_visible(widget_t* widget, bool_t visible, ...);
ret_t widget_set_enable(widget_t* widget, bool_t enable);
ret_t widget_set_focused(widget_t* widget, bool_t focused);
ret_t widget_set_focusable(widget_t* widget, bool_t focusable);
ret_t widget_set_sensitive(widget_t* widget, bool_t sensitive);
/* Stores the state; the state used for styling is derived (disable, focused). */
ret_t widget_set_state(widget_t* widget, const char* state);
const char* widget_get_state_for_style(widget_t* widget, bool_t active, bool_t checked);
ret_t widget_set_opacity(widget_t* widget, uint8_t opacity);
ret_t widget_set_text_utf8(widget_t* widget, const char* text);
ret_t widget_set_text(widget_t* widget, const wchar_t* text);
const wchar_t* widget_get_text(widget_t* widget);
ret_t widget_get_text_utf8(widget_t* widget, char* buff, uint32_t size);
/* Stores the translation key and shows its translation; NULL or "" clears it. */
ret_t widget_set_tr_text(widget_t* widget, const char* tr_text);
ret_t widget_set_value(widget_t* widget, float_t value);
float_t widget_get_value(widget_t* widget);
ret_t widget_set_value_int(widget_t* widget, int32_t value);
int32_t widget_get_value_int(widget_t* widget);

/* ---- styles ---- */
/* Selects a named style of the theme ("default" when NULL). */
ret_t widget_use_style(widget_t* widget, const char* style);
/* `state_and_name` is "state:name" or "state.name" (state "normal" without a separator). A
 * value applies in exactly that state. */
ret_t widget_set_style_color(widget_t* widget, const char* state_and_name, uint32_t value);
ret_t widget_set_style_int(widget_t* widget, const char* state_and_name, int32_t value);
ret_t widget_set_style_str(widget_t* widget, const char* state_and_name, const char* value);
/* Selects the style file of a window (and reloads it). */
ret_t widget_set_theme(widget_t* widget, const char* name);

/* ---- geometry ---- */
ret_t widget_move(widget_t* widget, xy_t x, xy_t y);
ret_t widget_resize(widget_t* widget, wh_t w, wh_t h);
ret_t widget_move_resize(widget_t* widget, xy_t x, xy_t y, wh_t w, wh_t h);
ret_t widget_set_self_layout(widget_t* widget, const char* params);
ret_t widget_set_children_layout(widget_t* widget, const char* params);
ret_t widget_layout(widget_t* widget);
ret_t widget_invalidate(widget_t* widget, const rect_t* r);

END_C_DECLS

#endif /* TK_BASE_WIDGET_H */
