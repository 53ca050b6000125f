// The image widget.
#ifndef TK_WIDGETS_IMAGE_H
#define TK_WIDGETS_IMAGE_H

#include "base/widget.h"

BEGIN_C_DECLS

/* Stores the image name and invalidates; the file is found and decoded when painted. */
ret_t image_base_set_image(widget_t* widget, const char* name);
ret_t image_set_draw_type(widget_t* widget, image_draw_type_t draw_type);

#define image_set_image(widget, name) image_base_set_image(widget, name)

END_C_DECLS

#endif /* TK_WIDGETS_IMAGE_H */
