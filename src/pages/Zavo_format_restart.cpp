// "Zavo_format_restart": the screen shown while the device formats the card. It stops a running
// recording, has every setting saved and, 200 ms later, sends the format command once; the device
// formats and restarts. The screen takes no keys.
#include "common/common_function.h"
#include "msg/msghandler.h"
#include "pages/system_pages.h"

namespace {

constexpr uint32_t FORMAT_DELAY_MS = 200;
uint32_t timer_id_format;  // the pending format command

ret_t on_format_command(const timer_info_t* timer) {
  (void)timer;
  timer_id_format = 0;
  GUI_SEND_BASIC_FUNCTION_MSG(BASIC_STORAGE_FORMAT);
  return RET_REMOVE;
}

}  // namespace

ret_t Zavo_format_restart_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  progress_screen_begin();
  // On this new window: the timer of an earlier one died with it.
  timer_id_format = widget_add_timer(win, on_format_command, FORMAT_DELAY_MS);
  return RET_OK;
}
