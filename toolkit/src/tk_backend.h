// The platform backend the main loop drives (all calls on the user interface thread, except
// wake()).
//
// One step of the main loop: queued requests and keys, long-press check, idles, timers, layout,
// then Backend::paint(). Between steps the loop calls Backend::wait_input() with the time (in
// real milliseconds) until the next timer or long press is due (at most a second; a frame while
// an idle repeats), so an idle user interface sleeps; wake() ends the wait at once.
//
// A backend turns platform key presses into tk::post_key() (the same locked queue that
// main_loop_post_key_event feeds) and paints from the window stack and the dirty region that
// tk_internal.h exposes.
#ifndef TK_SRC_BACKEND_H
#define TK_SRC_BACKEND_H

#include <cstdint>
#include <memory>

namespace tk {

class Backend {
 public:
  virtual ~Backend() = default;
  // A short name for logs ("null", "headless", "sdl").
  virtual const char* name() const = 0;
  // Waits up to `timeout_ms` of real time for platform input or for wake(); pumps platform
  // events (an SDL backend turns key events into tk::post_key). May return early.
  virtual void wait_input(uint32_t timeout_ms) = 0;
  // Thread-safe: ends a wait_input in progress (or the next one) at once. Called whenever
  // another thread posts into the main-loop queue.
  virtual void wake() = 0;
  // Called once per step after timers, idles and layout: take tk::take_dirty() and repaint it.
  virtual void paint() = 0;
};

// The backend for this run, chosen by the environment (TK_HEADLESS, DISPLAY); never null (it
// falls back to headless frames); defined with the drawing backends (draw/backend_select.cpp).
// Called once by tk_init with the screen size.
std::unique_ptr<Backend> backend_create(int32_t lcd_w, int32_t lcd_h);

}  // namespace tk

#endif  // TK_SRC_BACKEND_H
