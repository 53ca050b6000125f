// "Zavo_Restoring": the screen shown while the device restores its factory settings. It stops a
// running recording, has every setting saved and, 1000 ms later, sends the reset command once;
// the device restores and restarts. The screen takes no keys.
#include "common/common_function.h"
#include "msg/msghandler.h"
#include "pages/system_pages.h"

namespace {

constexpr uint32_t RESET_DELAY_MS = 1000;
uint32_t timer_id_reset;  // the pending reset command

ret_t on_reset_command(const timer_info_t* timer) {
  (void)timer;
  timer_id_reset = 0;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_RESET_MODE);
  return RET_REMOVE;
}

}  // namespace

ret_t Zavo_Restoring_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  progress_screen_begin();
  // On this new window: the timer of an earlier one died with it.
  timer_id_reset = widget_add_timer(win, on_reset_command, RESET_DELAY_MS);
  return RET_OK;
}
