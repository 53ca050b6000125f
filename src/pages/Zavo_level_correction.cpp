// "Zavo_level_correction": the level turn of the compass calibration. Held level, the scope is
// turned once round; the page starts and stops the turn on the device and shows how much of the
// circle the reported azimuth has covered, with the elevation and cant that tell how level the
// scope is held. The page is the common step page (common/compass_calibration) for this turn.
#include "common/common_function.h"
#include "common/compass_calibration.h"
#include "pages/page_list.h"

ret_t Zavo_level_correction_init(widget_t* win, void* ctx) {
  (void)ctx;
  log_return_value_if_fail(win != NULL, RET_BAD_PARAMS);
  calibration_page_init(win, CALIBRATION_LEVEL);
  return RET_OK;
}
