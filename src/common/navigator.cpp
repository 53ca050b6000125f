// Opening, replacing, switching and closing pages by window name, and the page table.
//
// Runs on the user interface thread only: the device link hands its navigation requests to this
// thread before calling in here.
#include "common/navigator.h"

#include <array>
#include <cstdio>
#include <string_view>

#include "common/common_function.h"
#include "pages/page_list.h"

namespace {

struct page_entry {
  std::string_view name;
  page_init_t init;
};

#define PAGE_TABLE_ROW(name) page_entry{#name, name##_init},
constexpr std::array<page_entry, PAGE_COUNT> page_table = {{PAGE_LIST(PAGE_TABLE_ROW)}};
#undef PAGE_TABLE_ROW

// Names the boot logo asks for, by the device's use mode: both are the observation screen.
struct page_alias {
  std::string_view alias;
  const char* name;
};
constexpr std::array<page_alias, 2> page_aliases = {{
    {"observe_home_page", "Zavo_home_page_1"},
    {"clipon_home_page", "Zavo_home_page_1"},
}};

// The window name a request means: an alias resolved, any other name unchanged.
const char* resolve_name(const char* name) {
  for (const page_alias& a : page_aliases) {
    if (a.alias == name) return a.name;
  }
  return name;
}

// The open window called `name` (a direct child of the window manager), or null.
widget_t* find_open_window(const char* name) {
  return widget_child(window_manager(), name);
}

}  // namespace

// Every entry point refuses a missing or empty window name with the same line.
#define navigator_return_if_no_target(target)                                         \
  do {                                                                                \
    if ((target) == NULL || *(target) == '\0') {                                      \
      log_condition_failed(__func__, __LINE__, "target != NULL &&* target != '\\0'"); \
      return RET_BAD_PARAMS;                                                          \
    }                                                                                 \
  } while (0)

page_init_t navigator_find_page(const char* name) {
  if (name == NULL) return NULL;
  const std::string_view wanted(name);
  for (const page_entry& page : page_table) {
    if (page.name == wanted) return page.init;
  }
  return NULL;
}

ret_t navigator_window_open_and_close(const char* name, widget_t* to_close, void* ctx) {
  navigator_return_if_no_target(name);
  name = resolve_name(name);

  // A single-instance page opened again starts over on a fresh window.
  widget_t* old = find_open_window(name);
  if (old != NULL && widget_get_prop_bool(old, "single_instance", FALSE)) {
    window_manager_close_window_force(window_manager(), old);
  }

  widget_t* win = window_open_and_close(name, to_close);
  log_return_value_if_fail(win != NULL, RET_FAIL);

  page_init_t init = navigator_find_page(name);
  if (init != NULL) {
    printf("name  =============%s\n", name);
    const ret_t ret = init(win, ctx);
    log_return_value_if_fail(ret == RET_OK, ret);
  }

  if (widget_is_dialog(win) && widget_get_prop_bool(win, "to_modal", TRUE)) {
    return static_cast<ret_t>(dialog_modal(win));
  }
  return RET_OK;
}

ret_t navigator_to_with_context(const char* target, void* ctx) {
  navigator_return_if_no_target(target);
  return navigator_window_open_and_close(target, NULL, ctx);
}

ret_t navigator_to(const char* target) {
  return navigator_to_with_context(target, NULL);
}

ret_t navigator_replace(const char* target) {
  navigator_return_if_no_target(target);
  widget_t* current = window_manager_get_top_main_window(window_manager());
  if (current != NULL) log_debug("close current window: %s\n", current->name);
  return navigator_window_open_and_close(target, current, NULL);
}

ret_t navigator_switch_to(const char* target, bool_t close) {
  navigator_return_if_no_target(target);
  widget_t* wm = window_manager();
  widget_t* win = find_open_window(resolve_name(target));
  if (win != NULL) {
    return window_manager_switch_to(wm, window_manager_get_top_window(wm), win, close);
  }
  return navigator_to(target);
}

ret_t navigator_back_to_home(void) {
  return window_manager_back_to_home(window_manager());
}

ret_t navigator_back(void) {
  return window_manager_back(window_manager());
}

ret_t navigator_close(const char* name) {
  navigator_return_if_no_target(name);
  widget_t* win = find_open_window(resolve_name(name));
  log_return_value_if_fail(win != NULL, RET_FAIL);
  return window_manager_close_window_force(window_manager(), win);
}

ret_t navigator_request_close(const char* name) {
  navigator_return_if_no_target(name);
  widget_t* win = find_open_window(resolve_name(name));
  log_return_value_if_fail(win != NULL, RET_FAIL);
  // The page decides: a layout with closable="confirm" hands the request to its handlers.
  event_t e = event_init(EVT_REQUEST_CLOSE_WINDOW, win);
  widget_dispatch(win, &e);
  return RET_OK;
}

ret_t navigator_global_widget_on(uint32_t event, event_func_t handler, void* ctx) {
  widget_on(window_manager(), event, handler, ctx);
  return RET_OK;
}
