// Images by name: resolution through the assets, decoding, a decode cache, and drawing by the
// image draw types.
#ifndef TK_DRAW_IMAGES_H
#define TK_DRAW_IMAGES_H

#include <cstdint>
#include <memory>

#include "awtk.h"
#include "draw/canvas.h"

namespace tk::draw {

// The decoded picture of an image name ("switch_large_on", "file:///abs/path.png"); nullptr
// when the name resolves to no file or the file cannot be decoded. Each missing or broken name
// is logged once. "file://" pictures are decoded again when the file changes on disk.
std::shared_ptr<const Pixmap> image_get(const char* name);

// Forgets every decoded picture and every name logged as missing.
void image_cache_clear();

// Draws `pic` into the widget rectangle `r` by `type`, clipped to `r`.
void draw_image(Canvas& c, const Pixmap& pic, const Rect& r, image_draw_type_t type);

}  // namespace tk::draw

#endif  // TK_DRAW_IMAGES_H
