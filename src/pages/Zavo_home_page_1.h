// "Zavo_home_page_1": the observation screen drawn over the thermal video.
#ifndef SCOPE_PAGES_ZAVO_HOME_PAGE_1_H
#define SCOPE_PAGES_ZAVO_HOME_PAGE_1_H

#include "awtk.h"

ret_t Zavo_home_page_1_init(widget_t* win, void* ctx);

#endif  // SCOPE_PAGES_ZAVO_HOME_PAGE_1_H
