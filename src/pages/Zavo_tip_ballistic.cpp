// "Zavo_tip_ballistic": the notice, for two seconds, that the device application loaded a
// ballistic profile while the scope was in use (the device link opens it). Then it gives the
// screen back to the window that was on top (stUIStatus.temp_window); a ballistic page, which
// would show the old profile's values, is left for the observation screen instead. The power key
// returns to the observation screen at once.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "common/common_function.h"
#include "common/navigator.h"
#include "common/status_records.h"
#include "msg/msghandler.h"
#include "pages/page_list.h"

namespace {

constexpr uint32_t TIP_MS = 2000;
constexpr const char* HOME = "Zavo_home_page_1";

// The pages that show a profile's values.
constexpr std::string_view BALLISTIC_PAGES[] = {
    "Zavo_ballistic_bullet", "Zavo_ballistic_menu", "Zavo_ballistic_weather",
    "Zavo_ballistic_zeroweather", "Zavo_bullistic_lens"};

// ---- page state ----

uint32_t tip_timer_id = 0;  // the notice's timer on its window; 0 when none runs

// ---- visit_init_child ----

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

// ---- drawing ----

void show_profile(widget_t* win) {
  char text[8];
  std::snprintf(text, sizeof(text), "%d",
                static_cast<unsigned char>(stDevStatus.s8BallisticGroup) + 1);
  widget_set_text_utf8(widget_lookup(win, "label_tip_profile_value", TRUE), text);
}

// ---- timer and keys ----

bool is_ballistic_page(std::string_view name) {
  for (std::string_view page : BALLISTIC_PAGES) {
    if (name == page) return true;
  }
  return false;
}

ret_t on_tip_timer(const timer_info_t* timer) {
  tip_timer_id = 0;
  std::printf("exit Zavo_tip_ballistic\n\n\n");
  // temp_window is 32 bytes written by the device link; read no further than them.
  const std::string_view back(stUIStatus.temp_window,
                              strnlen(stUIStatus.temp_window, sizeof(stUIStatus.temp_window)));
  std::printf("%.*s\n\n\n", static_cast<int>(back.size()), back.data());
  const std::string name(back);
  // A page opened over the notice meanwhile (a key that came with the load reached the window
  // below before the notice took the keys): the user has moved on, the notice only goes. A
  // switch would close that page instead and leave the notice at the bottom of the stack.
  widget_t* top = window_manager_get_top_window(window_manager());
  if (top != static_cast<widget_t*>(timer->ctx)) {
    navigator_close("Zavo_tip_ballistic");
    return RET_REMOVE;
  }
  if (is_ballistic_page(back) || name.empty() ||
      navigator_switch_to(name.c_str(), TRUE) != RET_OK) {
    // A ballistic page, or no window to give the screen back to (the notice opened by name, or a
    // window that cannot be opened): the observation screen.
    navigator_close("Zavo_tip_ballistic");
    window_manager_back_to(window_manager(), HOME);
  }
  return RET_REMOVE;
}

ret_t on_window_destroy(void* ctx, event_t* e) {
  (void)ctx;
  (void)e;
  tip_timer_id = 0;  // the window's timer went with it
  return RET_OK;
}

ret_t on_key_pressed_event(void* ctx, event_t* e) {
  (void)ctx;
  key_event_t* evt = key_event_cast(e);
  if (evt == NULL) return RET_OK;
  switch (evt->key) {
    case GUI_KEY_POWER_S:
      std::printf("exit Zavo_tip_ballistic\n\n\n");
      window_manager_back_to(window_manager(), HOME);
      break;
    default: break;
  }
  return RET_OK;
}

}  // namespace

ret_t Zavo_tip_ballistic_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  show_profile(win);
  widget_on(win, EVT_KEY_DOWN, on_key_pressed_event, win);
  widget_on(win, EVT_DESTROY, on_window_destroy, win);
  if (tip_timer_id == 0) tip_timer_id = widget_add_timer(win, on_tip_timer, TIP_MS);
  return RET_OK;
}
