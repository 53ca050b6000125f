// The toolkit's umbrella header: application code includes this, as it would the real one.
// main_loop_post_key_event is declared separately, in main_loop/main_loop_simple.h.
#ifndef TK_AWTK_H
#define TK_AWTK_H

#include "tkc/types_def.h"
#include "tkc/log.h"
#include "tkc/utils.h"
#include "tkc/event.h"
#include "tkc/timer_info.h"
#include "base/keys.h"
#include "base/events.h"
#include "base/widget.h"
#include "base/window_manager.h"
#include "base/main_loop.h"
#include "widgets/image.h"
#include "widgets/progress_bar.h"

#endif /* TK_AWTK_H */
