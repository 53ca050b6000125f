// The window manager, windows and dialogs.
//
// The window manager is a widget whose children are the open windows, the last child on top.
//
// Threads. The window stack is changed only on the user interface thread (the thread that
// called tk_init). From any other thread:
// - window_manager(), window_manager_get_top_window(), window_manager_get_top_main_window() and
//   widget_child()/widget_lookup() on the window manager itself read the stack under a lock.
//   The window returned stays valid (pointer and name readable) until the user interface thread
//   destroys it, which is never before the idle pass after its close; its memory is kept until
//   the main-loop step after that.
// - window_open() and window_open_and_close() queue an "open this name" request for the user
//   interface thread and return NULL; window_close(), window_close_force(),
//   window_manager_close_window(), window_manager_close_window_force(), window_manager_back(),
//   window_manager_back_to(), window_manager_back_to_home() and window_manager_switch_to()
//   queue the same call and return RET_OK, or RET_FAIL when the main-loop queue is full. The
//   requests run on the user interface thread in the order they were made, interleaved with
//   posted keys and idle_queue() calls; no widget is touched off the user interface thread.
// Every other window call belongs to the user interface thread.
#ifndef TK_BASE_WINDOW_MANAGER_H
#define TK_BASE_WINDOW_MANAGER_H

#include "base/widget.h"

BEGIN_C_DECLS

typedef enum _dialog_quit_code_t {
  DIALOG_QUIT_NONE = 0,
  DIALOG_QUIT_OK = 1,
  DIALOG_QUIT_YES = 1,
  DIALOG_QUIT_CANCEL = 2,
  DIALOG_QUIT_NO = 2,
  DIALOG_QUIT_OTHER = 3
} dialog_quit_code_t;

widget_t* window_manager(void);
/* The topmost visible window of any kind, skipping dialogs that have quit; NULL if none. */
widget_t* window_manager_get_top_window(widget_t* widget);
/* The topmost visible window of kind "window". */
widget_t* window_manager_get_top_main_window(widget_t* widget);
/* Acts on the top window: a normal window gets EVT_REQUEST_CLOSE_WINDOW (the result of that
 * dispatch is returned), a modal dialog quits with DIALOG_QUIT_NONE, anything else closes. */
ret_t window_manager_back(widget_t* widget);
/* Closes, in an idle, every window above the first window named `name` (which must be a
 * normal window). RET_BAD_PARAMS for an unknown name. */
ret_t window_manager_back_to(widget_t* widget, const char* name);
/* back_to the lowest normal window. */
ret_t window_manager_back_to_home(widget_t* widget);
/* Moves the open window `target` to the top; with `close`, force-closes `curr`. RET_FAIL while a
 * dialog that has not quit lies above `target`. */
ret_t window_manager_switch_to(widget_t* widget, widget_t* curr, widget_t* target, bool_t close);
/* EVT_WINDOW_CLOSE, removed from the stack at once, destroyed in an idle; the window below gets
 * EVT_WINDOW_TO_FOREGROUND after the close. A window whose open sequence has not run yet is
 * force-closed in a later idle. */
ret_t window_manager_close_window(widget_t* widget, widget_t* window);
/* As above without animation; the window below gets EVT_WINDOW_TO_FOREGROUND first. */
ret_t window_manager_close_window_force(widget_t* widget, widget_t* window);
/* Image name of the mouse cursor: accepted and ignored (no cursor in this build). */
ret_t window_manager_set_cursor(widget_t* widget, const char* cursor);
/* Routes an input event (keys) along the key chain: window manager, top window, focused
 * descendants; see the key routing in the README. */
ret_t window_manager_dispatch_input_event(widget_t* widget, event_t* e);

/* Loads ui/<name> (.bin if it is an XML file, else .xml) and returns its root, already on the
 * stack; NULL (with a line naming the missing or broken file) on failure. A window of the same
 * name with single_instance="true" is force-closed first. */
widget_t* window_open(const char* name);
/* Opens `name`; `to_close` is force-closed when the new window's EVT_WINDOW_OPEN fires. */
widget_t* window_open_and_close(const char* name, widget_t* to_close);
/* Closes the window that contains `widget`. */
ret_t window_close(widget_t* widget);
ret_t window_close_force(widget_t* widget);

/* Runs a nested main loop until dialog_quit(dialog, code); returns the code. The dialog closes
 * in a later idle. */
dialog_quit_code_t dialog_modal(widget_t* widget);
/* Only for an opened dialog that has not quit yet. A non-modal dialog is closed. */
ret_t dialog_quit(widget_t* widget, uint32_t code);
bool_t dialog_is_quited(widget_t* widget);
bool_t dialog_is_modal(widget_t* widget);

END_C_DECLS

#endif /* TK_BASE_WINDOW_MANAGER_H */
