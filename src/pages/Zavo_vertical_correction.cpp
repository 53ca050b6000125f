// "Zavo_vertical_correction": the vertical turn of the compass calibration. The scope is turned
// once round in the vertical plane, from pointing straight down to straight up; the page starts
// and stops the turn on the device and shows how much of the half circle of elevation the
// reported angles have covered, with the cant that tells how upright the turn is. The page is
// the common step page (common/compass_calibration) for this turn.
#include "common/common_function.h"
#include "common/compass_calibration.h"
#include "pages/page_list.h"

ret_t Zavo_vertical_correction_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  calibration_page_init(win, CALIBRATION_VERTICAL);
  return RET_OK;
}
