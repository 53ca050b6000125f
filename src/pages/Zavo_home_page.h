// "Zavo_home_page": an inert window kept in the page table. Its init only walks the children.
#ifndef SCOPE_PAGES_ZAVO_HOME_PAGE_H
#define SCOPE_PAGES_ZAVO_HOME_PAGE_H

#include "awtk.h"

ret_t Zavo_home_page_init(widget_t* win, void* ctx);

#endif  // SCOPE_PAGES_ZAVO_HOME_PAGE_H
