// The start page's module. It owns the process-wide status records: they are defined here, once,
// and declared for every other module in common/status_records.h. They start zeroed; the device
// application fills them with whole-record loads once the user interface reports ready.
#include "common/common_function.h"
#include "common/status_records.h"
#include "pages/page_list.h"

Inf_DevStatus stDevStatus;
Inf_UIStatus stUIStatus;
Inf_CustConfig s_stCustConfig;
Info_ballistics info[5];
Result_ballistics result_ball;
Inf_IR_Cursor IR_Cursor;

// ---- the start page "Zavo_Init" ----

namespace {

ret_t visit_init_child(void* ctx, const void* iter) {
  (void)ctx;
  (void)iter;
  return RET_OK;
}

}  // namespace

ret_t Zavo_Init_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  widget_foreach(win, visit_init_child, win);
  // Video steps of 600 frames until the device reports its own; no screen event before the
  // device application has sent every record again.
  stUIStatus.u8VideoCurrentFrames = 600;
  stUIStatus.event_distrubut_reday = 0;
  return RET_OK;
}
