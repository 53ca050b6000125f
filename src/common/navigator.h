// Opening, replacing, switching and closing pages by window name.
//
// Every page is a toolkit window loaded from res/.../ui/<name>.xml; the page table binds each
// window name to its `<name>_init`. Pages and the device link call these by name.
#ifndef SCOPE_COMMON_NAVIGATOR_H
#define SCOPE_COMMON_NAVIGATOR_H

#include "awtk.h"

// A page's init: runs on the freshly opened window, returns RET_OK or an error.
typedef ret_t (*page_init_t)(widget_t* win, void* ctx);

ret_t navigator_window_open_and_close(const char* name, widget_t* to_close, void* ctx);
ret_t navigator_to_with_context(const char* target, void* ctx);
ret_t navigator_to(const char* target);
ret_t navigator_replace(const char* target);
ret_t navigator_switch_to(const char* target, bool_t close);
ret_t navigator_back_to_home(void);
ret_t navigator_back(void);
ret_t navigator_close(const char* name);
ret_t navigator_request_close(const char* name);
ret_t navigator_global_widget_on(uint32_t event, event_func_t handler, void* ctx);

// The init function bound to a window name, or null for a name outside the page table.
page_init_t navigator_find_page(const char* name);

#endif  // SCOPE_COMMON_NAVIGATOR_H
