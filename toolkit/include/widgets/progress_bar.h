// The progress bar widget.
#ifndef TK_WIDGETS_PROGRESS_BAR_H
#define TK_WIDGETS_PROGRESS_BAR_H

#include "base/widget.h"

BEGIN_C_DECLS

/* On a change: EVT_VALUE_WILL_CHANGE (RET_STOP vetoes), store (unclamped), update the text,
 * EVT_VALUE_CHANGED. Drawn clamped to [0, max]. */
ret_t progress_bar_set_value(widget_t* widget, double value);
/* max defaults to 100. */
ret_t progress_bar_set_max(widget_t* widget, double max);
ret_t progress_bar_set_show_text(widget_t* widget, bool_t show_text);
ret_t progress_bar_set_format(widget_t* widget, const char* format);

END_C_DECLS

#endif /* TK_WIDGETS_PROGRESS_BAR_H */
