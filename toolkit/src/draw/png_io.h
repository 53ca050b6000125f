// Reading pictures (PNG, JPEG, BMP, GIF through SDL2_image) into Pixmaps and writing Pixmaps as
// PNG files.
#ifndef TK_DRAW_PNG_IO_H
#define TK_DRAW_PNG_IO_H

#include <string>

#include "draw/canvas.h"

namespace tk::draw {

// Decodes the file at `path` into `out` (colour-word order). On failure returns false and puts
// a one-line reason into `error`.
bool load_picture(const std::string& path, Pixmap& out, std::string& error);

// Writes `pic` as an RGBA PNG. The file is written under a temporary name in the same
// directory and renamed into place, so a reader never sees half a file.
bool save_png(const Pixmap& pic, const std::string& path, std::string& error);

}  // namespace tk::draw

#endif  // TK_DRAW_PNG_IO_H
