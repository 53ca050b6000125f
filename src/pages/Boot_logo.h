// "Boot_logo": the start-up logo shown for 5 s in the configured language.
#ifndef SCOPE_PAGES_BOOT_LOGO_H
#define SCOPE_PAGES_BOOT_LOGO_H

#include "awtk.h"

ret_t Boot_logo_init(widget_t* win, void* ctx);

#endif  // SCOPE_PAGES_BOOT_LOGO_H
