// "Zavo_home_page_1": the observation screen drawn over the thermal video.
#include "pages/Zavo_home_page_1.h"

#include <cstdio>

ret_t Zavo_home_page_1_init(widget_t* win, void* ctx) {
  (void)ctx;
  if (win == NULL) {
    log_error("%s:%d condition(win != NULL) failed!\n", __FUNCTION__, __LINE__);
    return RET_BAD_PARAMS;
  }
  puts("enter Zavo_home_page_1!!!");
  puts("Zavo_home_page_1 INIT END!");
  return RET_OK;
}
