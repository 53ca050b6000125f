// The drawing backends (a window through SDL2, or headless frames in memory) and the
// screenshot requests of the environment that both honour.
#ifndef TK_DRAW_BACKENDS_H
#define TK_DRAW_BACKENDS_H

#include <cstdint>
#include <memory>

#include "tk_backend.h"

namespace tk::draw {

// A window of w x h through SDL2; nullptr (with an error line) when no window can be made.
std::unique_ptr<Backend> sdl_backend_create(int32_t w, int32_t h);
// Frames painted in memory only; needs no display.
std::unique_ptr<Backend> headless_backend_create(int32_t w, int32_t h);

// TK_SCREENSHOT=<png> with TK_SCREENSHOT_AFTER_MS=<n> (write after n ms of toolkit time, then
// quit) and/or TK_SCREENSHOT_EVERY_MS=<n> (rewrite every n ms while the frame changes). Called
// by a backend at every paint: the first call reads the environment and starts the timers;
// after the frame is painted the requested files are written.
void screenshot_env_on_paint();
// Forgets the environment requests (backend shut-down).
void screenshot_env_reset();

}  // namespace tk::draw

#endif  // TK_DRAW_BACKENDS_H
